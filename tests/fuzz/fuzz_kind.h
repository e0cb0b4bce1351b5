// fuzz_kind.h -- the kinds of input that are fuzzed; corpus/KIND holds inputs of each
#pragma once
#include <string>

// A program of API calls read from bytes, and what must hold during it and at its end. The current directory must be
// empty but for what earlier calls left. What is wrong, or "".
std::string fuzz_api(const std::string &bytes);

// One file of any bytes given to its reader, and what must hold then. suffix is that of the file's kind: ".mps", ".lp",
// ".bas", ".mst" or ".prm". The rest as above.
std::string fuzz_file(const std::string &suffix, const std::string &bytes);

// What is wrong with the library under this input, or "".
inline std::string fuzz_kind(const std::string &kind, const std::string &bytes)
{
    return kind == "api" ? fuzz_api(bytes) : fuzz_file("." + kind, bytes);
}
