// fuzz_kind.h -- the kinds of input that are fuzzed; corpus/KIND holds inputs of each
#pragma once
#include "fuzz/fuzz_api.h"
#include "fuzz/fuzz_file.h"

// What is wrong with the library under this input, or "".
inline std::string fuzz_kind(const std::string &kind, const std::string &bytes)
{
    return kind == "api" ? fuzz_api(bytes) : fuzz_file("." + kind, bytes);
}
