// mps_errors_test.cpp -- bad MPS files: a code, the line, the reason, no model
#include "files/files_support.h"
#include "support/dice.h"
#include <algorithm>

class MpsErrors : public Files
{
  protected:
    // Reads a bad text; the message.
    std::string bad(const std::string &text)
    {
        EXPECT_EQ(read(text), TVX_ERROR_FILE_READ) << text;
        EXPECT_EQ(model, nullptr);
        return message();
    }
    std::string bad_sections(const std::string &sections)
    {
        return bad(mps_with(sections));
    }
    bool logged(const std::string &text) const
    {
        return log.find(text) != std::string::npos;
    }
};

TEST_F(MpsErrors, AMalformedLineIsShownWithItsNumber)
{
    EXPECT_EQ(bad_sections("    Y         R2                 nan\nRHS\nENDATA\n"),
              "MPS read error at line 10:\n    Y         R2                 nan\n'nan' is "
              "not a number\n");
    EXPECT_TRUE(logged("Error at line 10:\n    Y         R2                 nan\n'nan' is "
                       "not a number\n"));
}

TEST_F(MpsErrors, WrongFieldsFitNeitherForm)
{
    EXPECT_EQ(
        bad_sections("    Y         R2\nRHS\nENDATA\n"),
        "MPS read error at line 10:\n    Y         R2\nMPS reader: not free format\n");
    EXPECT_TRUE(
        logged("Error: not free format mps file.\nError at line 10:\n    Y         R2\n"));
}

struct BadLine {
    const char *section, *line, *reason;
};

TEST_F(MpsErrors, EveryBadFieldHasItsReason)
{
    const std::vector<BadLine> lines = {
        {"", " Y R2 1,5", "'1,5' is not a number"},
        {"", " Y R2 1e", "'1e' is not a number"},
        {"", " Y R2 0x10", "'0x10' is not a number"},
        {"", " Y R2 --1", "'--1' is not a number"},
        {"", " Y R2 1e400", "the number 1e400 is too large"},
        {"", " Y R2 -inf", "an infinite value cannot stand here"},
        {"", " Y R1 1 R2", "MPS reader: not free format"},
        {"", " Y R1 1 R2 2 R1 3", "MPS reader: not free format"},
        {"", " Y", "MPS reader: not free format"},
        {"", " M 'MARKER' 'SOSORG'", "this kind of marker cannot be read"},
        {"RHS\n", " RHS COST inf", "an infinite value cannot stand here"},
        {"RHS\n", " RHS", "MPS reader: not free format"},
        {"RHS\n", " RHS R1", "'R1' is not a number"},
        {"RANGES\n", " RNG R1 a", "'a' is not a number"},
        {"BOUNDS\n", " ZZ B X 1", "unknown type of bound"},
        {"BOUNDS\n", " UP B X", "'X' is not a number"},
        {"BOUNDS\n", " UP X", "MPS reader: not free format"},
        {"BOUNDS\n", " FX B X inf", "an infinite value cannot stand here"},
        {"BOUNDS\n", " UP B X nan", "'nan' is not a number"},
        {"SOS\n", " X 1", "S1 or S2 must begin a set"},
        {"SOS\n S1 s\n", " NOCOL 1", "the set's member is no column"},
        {"SOS\n S1 s\n", " X", "MPS reader: not free format"},
        {"SOS\n S1 s\n X 1\n", " X 2", "the column is in this set already"},
        {"SOS\n S1 s\n", " X inf", "an infinite value cannot stand here"},
    };
    for (const BadLine &one : lines) {
        const std::string before = mps_with(one.section);
        const size_t number =
            static_cast<size_t>(std::count(before.begin(), before.end(), '\n')) + 1;
        EXPECT_EQ(bad(before + one.line + "\nENDATA\n"),
                  "MPS read error at line " + std::to_string(number) + ":\n" + one.line +
                      "\n" + one.reason + "\n");
    }
}

TEST_F(MpsErrors, BadRowsAndHeads)
{
    EXPECT_EQ(bad("ROWS\n N C\n Q R\nCOLUMNS\n"),
              "MPS read error at line 3:\n Q R\na row type is N, L, G or E\n");
    EXPECT_EQ(bad("ROWS\n N C\n L R\n G R\nCOLUMNS\n"),
              "MPS read error at line 4:\n G R\nthis row name is declared twice\n");
    EXPECT_EQ(bad("ROWS\n N C\n L\nCOLUMNS\n"),
              "MPS read error at line 3:\n L\nMPS reader: not free format\n");
    EXPECT_EQ(
        bad("OBJSENSE\n  SIDEWAYS\nROWS\n"),
        "MPS read error at line 2:\n  SIDEWAYS\nthe objective's sense is MAX or MIN\n");
    EXPECT_EQ(bad("OBJNAME\n  R\nROWS\n N C\n L R\nCOLUMNS\n"),
              "MPS read error at line 6:\nCOLUMNS\nOBJNAME names no row of type N\n");
}

TEST_F(MpsErrors, SectionsHaveTheirTexts)
{
    EXPECT_EQ(bad(""), "MPS reader: no row section\nline 1: \nthe file ends here\n");
    EXPECT_TRUE(logged("Error: no row section.\n"));
    EXPECT_EQ(bad("NAME x\nCOLUMNS\n"),
              "MPS reader: no row section\nline 2: COLUMNS\nCOLUMNS stands before ROWS\n");
    EXPECT_EQ(bad(" NAME x\n").substr(0, 27), "MPS reader: no row section\n");
    EXPECT_EQ(bad("ROWS\n N C\nRHS\n").substr(0, 30), "MPS reader: no column section\n");
    EXPECT_TRUE(logged("Error: no column section.\n"));
    EXPECT_EQ(bad("ROWS\n N C\n").substr(0, 30), "MPS reader: no column section\n");
    EXPECT_EQ(bad("ROWS\n N C\nCOLUMNS\n X R 1\nRHS\nENDATA\n").substr(0, 38),
              "MPS reader: no columns or no nonzeros\n");
    EXPECT_TRUE(logged("Error: no columns or no nonzeros.\n"));
    EXPECT_EQ(bad_sections("RHS\n").substr(0, 45),
              "MPS reader: line 10 not right or no ENDATA\nli");
    EXPECT_TRUE(logged("Error: line 10 not right or no ENDATA.\n"));
    EXPECT_EQ(bad_sections("RHS\nQUADOBJ\n X X 1\nENDATA\n"),
              "MPS reader: line 11 not right or no ENDATA\nline 11: QUADOBJ\n"
              "this section is not known or not supported\n");
    EXPECT_EQ(bad_sections("RHS   R1 4\nENDATA\n"),
              "MPS reader: line 10 not right or no ENDATA\nline 10: RHS   R1 4\n"
              "text behind the name of the section\n");
    EXPECT_EQ(bad_sections("ROWS\n L R3\nENDATA\n").substr(0, 43),
              "MPS reader: line 10 not right or no ENDATA\n");
}

TEST_F(MpsErrors, BinaryFilesAreRefusedAtTheirFirstOddByte)
{
    std::string text = mps_with("    Y         R2                   1\nRHS\nENDATA\n");
    text[text.find("R2                   1") + 3] = '\0';
    EXPECT_NE(bad(text).find("at line 10:"), std::string::npos) << message();
    EXPECT_NE(message().find("the line holds a control character: this is no text file"),
              std::string::npos);
    bad(std::string("\x7f"
                    "ELF\x02\x01\x01\0\0\0\0",
                    11));
    bad(std::string(100000, '\0'));
    EXPECT_EQ(TVXreadmodel(env, "/dev/zero", &model), TVX_ERROR_FILE_READ);
    EXPECT_EQ(TVXreadmodel(env, "/dev/null", &model), TVX_ERROR_FILE_READ);
}

TEST_F(MpsErrors, OffendingLinesAreShownHarmlessly)
{
    const std::string shown =
        bad_sections("    Y \x1b[31m \xff\xfe \xc3\xa9 " + std::string(5000, 'x') + "\n");
    EXPECT_EQ(shown.find('\x1b'), std::string::npos);
    EXPECT_LT(shown.size(), 512u);
    bad_sections("    Y \xff\xfe \xc3\xa9 \xc2\x9b " + std::string(5000, 'x') + "\n");
    EXPECT_NE(message().find("Y ?? \xc3\xa9 ?? xxx"), std::string::npos) << message();
}

// ---- Any byte sequence ----

// A sound model file with everything in it.
static std::string full_text(bool fixed)
{
    const std::string x = fixed ? "X 1" : "X1";
    return "NAME          FUZZ\nOBJSENSE\n    MAX\nOBJNAME\n    COST\nROWS\n N  COST\n G  "
           "R1\n L  R2\n"
           " E  R3\nCOLUMNS\n"
           "    " +
           x + (fixed ? "     " : "      ") +
           "  COST               1.5   R1                -1.\n"
           "    M         'MARKER'                 'INTORG'\n"
           "    Y         R2                 1e1   R3               2D-1\n"
           "    Z         R1                  1.   R3                 4.\n"
           "    M         'MARKER'                 'INTEND'\n"
           "    W         R1                  1.\n"
           "RHS\n    RHS       R1                  4.   R2               inf\n    RHS      "
           " COST               -9.\n"
           "RANGES\n    RNG       R1                  2.   R3                -1.\n"
           "BOUNDS\n UP BND       Y                  11.\n FR BND       W\n SC BND       Z "
           "                 5.\n"
           "SOS\n S1 set1\n    Y                  1\n    Z                  2\nENDATA\n";
}

static std::string mutated(Dice *dice, std::string text, const std::string &other)
{
    static const char *const pieces[] = {
        "\n",    " ",    "\t",          "RHS\n", "COLUMNS\n", "ENDATA\n", "nan",
        "1e999", "\r",   "*",           "$",     "'MARKER'",  "S1",       "-",
        "\xff",  "\x01", " FR BND X\n", "Rg",    ""};
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
            text.insert(at, pieces[dice->range(0, 18)]);
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

// No crash (sanitizers see more), and what is read is a model that a written file gives back.
TEST_F(MpsErrors, MutatedFilesEndInAModelOrAnError)
{
    Dice dice(20);
    int models = 0;
    for (int k = 0; k < 1500; k++) {
        const bool fixed = dice.chance(50);
        const std::string text = mutated(&dice, full_text(fixed), full_text(!fixed));
        const int code = read(text);
        ASSERT_TRUE(code == 0 || code == TVX_ERROR_FILE_READ) << code << message() << text;
        ASSERT_EQ(message().empty(), code == 0) << text;
        if (code) continue;
        models++;
        ASSERT_EQ(round_trip("w.mps", Names::COMPARE), "") << text << "\n---\n"
                                                           << file_get("w.mps");
    }
    EXPECT_GT(models, 150);
}
