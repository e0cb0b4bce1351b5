// status.h -- how a solve ended, in words, and numbers as text
#pragma once
#include <string>

const char *status_text(int status); // for people: "time limit"
const char *status_word(int status); // for programs: "time_limit"

// Shortest text that reads back as the same number, whatever the locale; "inf" and "-inf" from 1e100 on.
std::string number_text(double value);
