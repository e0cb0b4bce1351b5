// corpus_test.cpp -- the corpus of the fuzz targets, its files damaged, and random programs of API calls, without a fuzzer
//
// TARVEX_MUTATIONS=n       how often each file is damaged (150); the sanitizers see what a test cannot
// TARVEX_PROGRAMS=n        random programs (1000; a campaign takes some thousands)
// TARVEX_PROGRAM_SEED=s    the first of them (0)
#include "fuzz/fuzz_kind.h"
#include "support/scratch.h"
#include "support/settings.h"
#include <algorithm>
#include <map>

// The inputs by their paths, in the order of names.
static std::map<std::filesystem::path, std::string> corpus()
{
    std::map<std::filesystem::path, std::string> inputs;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(
             TARVEX_SOURCE_DIR "/tests/fuzz/corpus"))
        if (entry.is_regular_file()) inputs[entry.path()] = file_get(entry.path());
    return inputs;
}

static std::string kind_of(const std::filesystem::path &path)
{
    return path.parent_path().filename().string();
}

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
    const auto inputs = corpus();
    EXPECT_GT(inputs.size(), 10u);
    for (const auto &[path, bytes] : inputs)
        EXPECT_EQ(run_silently(kind_of(path), bytes), "") << path;
}

// Any calls in any order: what is read is what was set, and what is found is what the exact judge finds (README.md).
TEST(ApiPrograms, RandomOnesDoWhatTheirReferencesSay)
{
    const Scratch scratch;
    const int first = campaign("TARVEX_PROGRAM_SEED", 0),
              count = campaign("TARVEX_PROGRAMS", 1000);
    for (int seed = first; seed < first + count && !testing::Test::HasFailure(); seed++) {
        Dice dice(seed);
        std::string bytes(dice.range(200, 2000), '\0');
        for (char &c : bytes) c = char(dice.range(0, 255));
        EXPECT_EQ(run_silently("api", bytes), "") << "TARVEX_PROGRAM_SEED=" << seed;
    }
}

// A few changes: one byte, a stretch cut out, an odd piece put in, a stretch doubled, the end of another text.
static std::string mutated(Dice *dice, std::string text, const std::string &other)
{
    static const char *const pieces[] = {
        "\n",     " ",    "\t",          "RHS\n", "COLUMNS\n", "ENDATA\n", "nan",
        "1e999",  "\r",   "*",           "$",     "'MARKER'",  "S1",       "-",
        "\xff",   "\x01", " FR BND X\n", "Rg",    "<=",        ":",        "free",
        "bounds", "st",   "1e308",       "="};
    for (int times = dice->range(1, 4); times > 0 && !text.empty(); times--) {
        const size_t at = dice->range(0, int(text.size()) - 1);
        const size_t length = dice->range(0, 12);
        const int kind = dice->range(0, 4);
        if (kind == 0)
            text[at] = char(dice->range(0, 255));
        else if (kind == 1)
            text.erase(at, length);
        else if (kind == 2)
            text.insert(at, pieces[dice->range(0, std::size(pieces) - 1)]);
        else if (kind == 3)
            text.insert(at, text.substr(at / 2, length * 5));
        else
            text.replace(at, text.npos, other.substr(std::min(at, other.size())));
    }
    return text;
}

TEST(Mutation, DamagedFilesAreServedOrRefusedAndNothingElse)
{
    const Scratch scratch;
    Dice dice(20);
    auto files = corpus();
    std::erase_if(files, [](const auto &file) { return kind_of(file.first) == "api"; });
    std::string wrong;
    Output output;
    for (const auto &[path, sound] : files)
        for (int k = campaign("TARVEX_MUTATIONS", 150); k > 0 && wrong.empty(); k--) {
            const auto other =
                std::next(files.begin(), dice.range(0, int(files.size()) - 1));
            const std::string text = mutated(&dice, sound, other->second);
            wrong = fuzz_kind(kind_of(path), text);
            if (!wrong.empty()) wrong += "\n" + text;
        }
    EXPECT_EQ(output.text() + wrong, "") << "nothing printed, nothing wrong";
}
