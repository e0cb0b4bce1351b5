// fuzz_file.h -- one file of any bytes given to its reader, and what must hold then
#pragma once
#include <string>

// The current directory must be empty but for what earlier calls left. suffix is that of the file's kind: ".mps", ".lp",
// ".bas", ".mst" or ".prm". What is wrong, or "".
std::string fuzz_file(const std::string &suffix, const std::string &bytes);
