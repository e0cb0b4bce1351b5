// mutation_test.cpp -- damaged files: whatever the bytes are, a reader ends in data or in an error
//
// Random edits of the sound files of fuzz/corpus, from a fixed seed, judged as the fuzz targets judge them.
// TARVEX_MUTATIONS in the environment is how often each file is edited, for long runs; the sanitizers see what a test
// cannot.
#include "fuzz/fuzz_kind.h"
#include "support/dice.h"
#include "support/scratch.h"
#include "support/settings.h"
#include <algorithm>
#include <iterator>
#include <map>

// A few changes: one byte, a stretch cut out, an odd piece put in, a stretch doubled, the end of another text.
static std::string mutated(Dice *dice, std::string text, const std::string &other)
{
    static const char *const pieces[] = {
        "\n",     " ",    "\t",          "RHS\n", "COLUMNS\n", "ENDATA\n", "nan",
        "1e999",  "\r",   "*",           "$",     "'MARKER'",  "S1",       "-",
        "\xff",   "\x01", " FR BND X\n", "Rg",    "<=",        ":",        "free",
        "bounds", "st",   "1e308",       "="};
    for (int times = dice->range(1, 4); times > 0 && !text.empty(); times--) {
        const size_t at =
            static_cast<size_t>(dice->range(0, static_cast<int>(text.size()) - 1));
        const size_t length = static_cast<size_t>(dice->range(0, 12));
        const int kind = dice->range(0, 4);
        if (kind == 0)
            text[at] = static_cast<char>(dice->range(0, 255));
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
    std::map<std::filesystem::path, std::string> corpus; // in the order of names
    for (const auto &entry : std::filesystem::recursive_directory_iterator(
             TARVEX_SOURCE_DIR "/tests/fuzz/corpus"))
        if (entry.is_regular_file() && entry.path().parent_path().filename() != "api")
            corpus[entry.path()] = file_get(entry.path());
    ASSERT_GT(corpus.size(), 10u);
    std::string wrong;
    Output output;
    for (const auto &[path, sound] : corpus)
        for (int k = campaign("TARVEX_MUTATIONS", 150); k > 0 && wrong.empty(); k--) {
            const auto other = std::next(
                corpus.begin(), dice.range(0, static_cast<int>(corpus.size()) - 1));
            const std::string text = mutated(&dice, sound, other->second);
            wrong = fuzz_file("." + path.parent_path().filename().string(), text);
            if (!wrong.empty()) wrong += "\n" + text;
        }
    EXPECT_EQ(output.text() + wrong, "") << "nothing printed, nothing wrong";
}
