// fuzz_api.h -- a program of API calls read from bytes, and what must hold during it and at its end
#pragma once
#include <string>

// The current directory must be empty but for what earlier calls left. What is wrong, or "".
std::string fuzz_api(const std::string &bytes);
