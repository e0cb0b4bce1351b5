// corpus_test.cpp -- the corpus of the fuzz targets, without a fuzzer
#include "fuzz/fuzz_kind.h"
#include "support/scratch.h"

TEST(FuzzCorpus, EveryInputIsServedOrRefusedAndNothingElse)
{
    const Scratch scratch;
    int count = 0;
    const std::filesystem::path corpus = TARVEX_SOURCE_DIR "/tests/fuzz/corpus";
    for (const auto &entry : std::filesystem::recursive_directory_iterator(corpus)) {
        if (!entry.is_regular_file()) continue;
        const std::string kind = entry.path().parent_path().filename().string();
        EXPECT_EQ(fuzz_kind(kind, file_get(entry.path())), "") << entry.path();
        count++;
    }
    EXPECT_GT(count, 0);
}
