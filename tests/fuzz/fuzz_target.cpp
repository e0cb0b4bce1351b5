// fuzz_target.cpp -- a libFuzzer target for the files of one kind, FUZZ_SUFFIX; built by the preset `fuzz`
#include "fuzz/fuzz_file.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

// Files go to memory where there is such a file system.
extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    std::string folder = std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp";
    folder += "/tarvex_fuzzXXXXXX";
    if (!mkdtemp(folder.data())) abort();
    std::filesystem::current_path(folder);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    const std::string wrong = fuzz_file(FUZZ_SUFFIX, bytes);
    if (wrong.empty()) return 0;
    fprintf(stderr, "%s\n", wrong.c_str());
    abort();
}
