// mutation_test.cpp -- damaged files: whatever the bytes are, a reader ends in data or in an error
//
// Random edits of small sound files, from a fixed seed, judged as the fuzz targets judge them. TARVEX_MUTATIONS in the
// environment is how often each kind of file is edited, for long runs; the sanitizers see what a test cannot.
#include "fuzz/fuzz_file.h"
#include "support/dice.h"
#include "support/scratch.h"
#include "support/settings.h"
#include <algorithm>
#include <iterator>

namespace
{
// Sound files with everything in them. Side files name the variables x, y, z, w of the model that fuzz_file reads.
const std::string fixed_mps =
    "NAME          FUZZ\nOBJSENSE\n    MAX\nOBJNAME\n    COST\nROWS\n N  COST\n"
    " G  R1\n L  R2\n E  R3\nCOLUMNS\n"
    "    X 1       COST               1.5   R1                -1.\n"
    "    M         'MARKER'                 'INTORG'\n"
    "    Y         R2                 1e1   R3               2D-1\n"
    "    Z         R1                  1.   R3                 4.\n"
    "    M         'MARKER'                 'INTEND'\n"
    "    W         R1                  1.\nRHS\n"
    "    RHS       R1                  4.   R2               inf\n"
    "    RHS       COST               -9.\nRANGES\n"
    "    RNG       R1                  2.   R3                -1.\nBOUNDS\n"
    " UP BND       Y                  11.\n FR BND       W\n"
    " SC BND       Z                   5.\nSOS\n S1 set1\n"
    "    Y                  1\n    Z                  2\nENDATA\n";
const std::string lp_text =
    "Maximize\n c: 1.5 x + 2y - 4 z + 10 \\ comment\nSubject To\n c1: - x + 1e1 y >= 4\n"
    " c2: 1 <= x + y\n + z <= 3\n 2d1 + 4 * z >= 0\n x = 2 w - 1\nst: x + y < 9\n"
    "Bounds\n -infinity <= x <= 4\n y free\n w >= -2\n z = 1\n 7 >= v\nBinaries\n y\n"
    "Generals\n x z\nSemi-continuous\n w x\nSOS\n s: S1:: x:1 y:2\n S2 :: z:-3\nEnd\n";
const std::string basis_text =
    "NAME plan 4 Variables 3 Constraints\n XL y         c1      \n"
    " XU z         c3      \n UL x     \n LL w\n SB w\nENDATA\n";

std::string free_mps()
{
    std::string text = fixed_mps;
    text.replace(text.find("X 1 "), 4, "X1  ");
    return text;
}

// A few changes: one byte, a stretch cut out, an odd piece put in, a stretch doubled, the end of another text.
std::string mutated(Dice *dice, std::string text, const std::string &other)
{
    static const char *const pieces[] = {
        "\n",     " ",    "\t",          "RHS\n", "COLUMNS\n", "ENDATA\n", "nan",
        "1e999",  "\r",   "*",           "$",     "'MARKER'",  "S1",       "-",
        "\xff",   "\x01", " FR BND X\n", "Rg",    "<=",        ":",        "free",
        "bounds", "st",   "1e308",       "="};
    const int times = dice->range(1, 4);
    for (int k = 0; k < times && !text.empty(); k++) {
        const size_t at =
            static_cast<size_t>(dice->range(0, static_cast<int>(text.size()) - 1));
        const size_t length = static_cast<size_t>(dice->range(0, 12));
        switch (dice->range(0, 4)) {
        case 0:
            text[at] = static_cast<char>(dice->range(0, 255));
            break;
        case 1:
            text.erase(at, length);
            break;
        case 2:
            text.insert(at, pieces[dice->range(0, std::size(pieces) - 1)]);
            break;
        case 3:
            text.insert(at, text.substr(at / 2, length * 5));
            break;
        default:
            text.resize(at);
            text += other.substr(std::min(at, other.size()));
            break;
        }
    }
    return text;
}
} // namespace

TEST(Mutation, DamagedFilesAreServedOrRefusedAndNothingElse)
{
    const Scratch scratch;
    Dice dice(20);
    const struct {
        const char *suffix;
        std::string sound, other;
    } files[] = {{".mps", fixed_mps, free_mps()},
                 {".mps", free_mps(), fixed_mps},
                 {".lp", lp_text, lp_text},
                 {".bas", basis_text, fixed_mps},
                 {".mst", "# MIP start\ny 3\nz -1.5e+3\nw 0\nNONE 4\n", fixed_mps},
                 {".prm", "# some\nCuts 2\nTimeLimit  1e3\nTARV_PAR_ITEST 0\n", lp_text}};
    for (const auto &file : files) {
        EXPECT_EQ(fuzz_file(file.suffix, file.sound), "");
        for (int k = campaign("TARVEX_MUTATIONS", 400);
             k > 0 && !testing::Test::HasFailure(); k--) {
            const std::string text = mutated(&dice, file.sound, file.other);
            EXPECT_EQ(fuzz_file(file.suffix, text), "") << text;
        }
    }
}
