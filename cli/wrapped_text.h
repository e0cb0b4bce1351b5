// wrapped_text.h -- texts of any length on a screen
#pragma once
#include <string>

// Prints a text on standard output, indented, in lines that fit a screen; nothing when it is empty.
void print_wrapped(const std::string &text);
