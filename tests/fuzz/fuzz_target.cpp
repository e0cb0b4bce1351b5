// fuzz_target.cpp -- a libFuzzer target of one kind, FUZZ_KIND: "api", or the suffix of files; built by the preset
// `fuzz`, started by `run` in an empty directory
#include "fuzz/fuzz_kind.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    const std::string wrong = fuzz_kind(FUZZ_KIND, bytes);
    if (wrong.empty()) return 0;
    fprintf(stderr, "%s\n", wrong.c_str());
    abort();
}
