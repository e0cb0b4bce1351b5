// json_check.h -- is a text valid JSON
#pragma once
#include <string>

// RFC 8259, and UTF-8 throughout.
bool is_json(const std::string &text);
