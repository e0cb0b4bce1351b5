// mutation_test.cpp -- damaged files: whatever the bytes are, a reader ends in data or in an error
//
// Random edits of small sound files, from a fixed seed. TARVEX_MUTATIONS in the environment is how often each kind of
// file is edited, for long runs; the sanitizers see what a test cannot.
#include "files/files_support.h"
#include "support/dice.h"
#include <algorithm>
#include <cstdlib>
#include <iterator>

// A sound model file with everything in it.
static std::string full_text(bool fixed)
{
    return "NAME          FUZZ\nOBJSENSE\n    MAX\nOBJNAME\n    COST\nROWS\n N  COST\n"
           " G  R1\n L  R2\n E  R3\nCOLUMNS\n" +
           std::string(fixed ? "    X 1     " : "    X1      ") +
           "  COST               1.5   R1                -1.\n"
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
}

static const char lp_text[] =
    "Maximize\n c: 1.5 x + 2y - 4 z + 10 \\ comment\nSubject To\n c1: - x + 1e1 y >= 4\n"
    " c2: 1 <= x + y\n + z <= 3\n 2d1 + 4 * z >= 0\n x = 2 w - 1\nst: x + y < 9\n"
    "Bounds\n -infinity <= x <= 4\n y free\n w >= -2\n z = 1\n 7 >= v\nBinaries\n y\n"
    "Generals\n x z\nSemi-continuous\n w x\nSOS\n s: S1:: x:1 y:2\n S2 :: z:-3\nEnd\n";

// A few changes: one byte, a stretch cut out, an odd piece put in, a stretch doubled, the end of another text.
static std::string mutated(Dice *dice, std::string text, const std::string &other)
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

static int repetitions()
{
    const char *given = getenv("TARVEX_MUTATIONS");
    return given ? std::max(atoi(given), 1) : 1500;
}

class Mutation : public Files
{
  protected:
    // Reads edits of a side file into the full model; how many were taken.
    int read_side_files(const std::string &name, const std::string &sound)
    {
        EXPECT_EQ(read(full_text(false)), 0) << message();
        const std::string before = stored_text(model, Names::COMPARE);
        Dice dice(21);
        int taken = 0;
        for (int k = 0; k < repetitions() && !HasFailure(); k++) {
            const std::string text = mutated(&dice, sound, full_text(false));
            remove(name.c_str()); // some file systems write a truncated file to the disk
            file_put(name, text);
            Output output;
            const int code = TVXread(model, name.c_str());
            output.text();
            EXPECT_TRUE(code == 0 || code == TVX_ERROR_FILE_READ) << code << text;
            EXPECT_TRUE(code == 0 || *TVXgetmerrormsg(model)) << text;
            EXPECT_EQ(stored_text(model, Names::COMPARE), before) << text;
            taken += code == 0 && !*TVXgetmerrormsg(model);
        }
        return taken;
    }
};

// What is read is a model that a written file gives back.
TEST_F(Mutation, ModelFiles)
{
    Dice dice(20);
    for (const std::string suffix : {".mps", ".lp"}) {
        int models = 0;
        for (int k = 0; k < repetitions(); k++) {
            const bool fixed = dice.chance(50);
            const bool lp = suffix == ".lp";
            const std::string text = mutated(&dice, lp ? lp_text : full_text(fixed),
                                             lp ? lp_text : full_text(!fixed));
            const int code = read(text, "t" + suffix);
            ASSERT_TRUE(code == 0 || code == TVX_ERROR_FILE_READ)
                << code << message() << text;
            ASSERT_EQ(message().empty(), code == 0) << text;
            ASSERT_EQ(model == nullptr, code != 0);
            if (code) continue;
            models++;
            const Names names = lp ? Names::IGNORE : Names::COMPARE;
            ASSERT_EQ(round_trip("w" + suffix, names), "") << text << "\n---\n"
                                                           << file_get("w" + suffix);
        }
        EXPECT_GT(models, repetitions() / 10) << suffix;
    }
}

TEST_F(Mutation, BasisFiles)
{
    const std::string sound =
        "NAME plan 4 Variables 3 Constraints\n XL Y         R1      \n"
        " XU Z         R3      \n UL X1    \n LL W\n SB W\nENDATA\n";
    EXPECT_GT(read_side_files("b.bas", sound), repetitions() / 10);
}

TEST_F(Mutation, StartFiles)
{
    EXPECT_GT(read_side_files("s.mst", "# MIP start\nY 3\nZ -1.5e+3\nW 0\nNONE 4\n"),
              repetitions() / 10);
}
