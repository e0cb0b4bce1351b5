// corpus_test.cpp -- the corpus of the fuzz targets, and random programs of API calls, without a fuzzer
//
// TARVEX_PROGRAMS=n        random programs (1000; a campaign takes some thousands)
// TARVEX_PROGRAM_SEED=s    the first of them (0)
#include "fuzz/fuzz_kind.h"
#include "support/scratch.h"
#include "support/settings.h"

// Programs leave OutputFlag at 0 and files are read by a silent environment: nothing may be printed.
static std::string run_silently(const std::string &kind, const std::string &bytes)
{
    Output output;
    const std::string wrong = fuzz_kind(kind, bytes);
    const std::string printed = output.text();
    return wrong + (printed.empty() ? "" : "printed: " + printed);
}

TEST(FuzzCorpus, EveryInputIsServedOrRefusedAndNothingElse)
{
    const Scratch scratch;
    int count = 0;
    const std::filesystem::path corpus = TARVEX_SOURCE_DIR "/tests/fuzz/corpus";
    for (const auto &entry : std::filesystem::recursive_directory_iterator(corpus)) {
        if (!entry.is_regular_file()) continue;
        const std::string kind = entry.path().parent_path().filename().string();
        EXPECT_EQ(run_silently(kind, file_get(entry.path())), "") << entry.path();
        count++;
    }
    EXPECT_GT(count, 0);
}

// Any calls in any order: what is read is what was set, and what is found is what the exact judge finds (README.md).
TEST(ApiPrograms, RandomOnesDoWhatTheirReferencesSay)
{
    const Scratch scratch;
    const int first = campaign("TARVEX_PROGRAM_SEED", 0),
              count = campaign("TARVEX_PROGRAMS", 1000);
    for (int seed = first; seed < first + count && !testing::Test::HasFailure(); seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        std::string bytes(static_cast<size_t>(dice.range(200, 2000)), '\0');
        for (char &c : bytes) c = static_cast<char>(dice.range(0, 255));
        EXPECT_EQ(run_silently("api", bytes), "") << "TARVEX_PROGRAM_SEED=" << seed;
    }
}
