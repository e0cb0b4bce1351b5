// fuzz_target.cpp -- a libFuzzer target for the files of one kind, FUZZ_SUFFIX; built by the preset `fuzz`, started by
// `run` in an empty directory
#include "fuzz/fuzz_file.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    const std::string wrong = fuzz_file(FUZZ_SUFFIX, bytes);
    if (wrong.empty()) return 0;
    fprintf(stderr, "%s\n", wrong.c_str());
    abort();
}
