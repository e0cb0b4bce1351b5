// mps_errors_test.cpp -- bad MPS files: a code, the line, the reason, no model
#include "files/files_support.h"
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

struct BadLine {
    const char *section, *line, *reason;
};

static const char *const NOT_FREE =
    "MPS reader: not free format\na field is missing, or one too many";

TEST_F(MpsErrors, EveryBadFieldHasItsReason)
{
    const std::vector<BadLine> lines = {
        {"", " Y R2 1,5", "'1,5' is not a number"},
        {"", " Y R2 1e", "'1e' is not a number"},
        {"", " Y R2 0x10", "'0x10' is not a number"},
        {"", " Y R2 --1", "'--1' is not a number"},
        {"", " Y R2 1e400", "the number 1e400 is too large"},
        {"", " Y R2 -inf", "an infinite value cannot stand here"},
        {"", " Y R1 1 R2", NOT_FREE},
        {"", " Y R1 1 R2 2 R1 3", NOT_FREE},
        {"", " Y", NOT_FREE},
        {"", " M 'MARKER' 'SOSORG'", "this kind of marker cannot be read"},
        {"RHS\n", " RHS COST inf", "an infinite value cannot stand here"},
        {"RHS\n", " RHS", NOT_FREE},
        {"RHS\n", " RHS R1", "'R1' is not a number"},
        {"RANGES\n", " RNG R1 a", "'a' is not a number"},
        {"BOUNDS\n", " ZZ B X 1", "unknown type of bound"},
        {"BOUNDS\n", " UP B X", "'X' is not a number"},
        {"BOUNDS\n", " UP X", NOT_FREE},
        {"BOUNDS\n", " FX B X inf", "an infinite value cannot stand here"},
        {"BOUNDS\n", " UP B X nan", "'nan' is not a number"},
        {"SOS\n", " X 1", "S1 or S2 must begin a set"},
        {"SOS\n S1 s\n", " NOCOL 1", "the set's member is no column"},
        {"SOS\n S1 s\n", " X", NOT_FREE},
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
        const bool wrong_form = one.reason == NOT_FREE;
        EXPECT_EQ(logged("Error: not free format mps file.\n"), wrong_form) << one.line;
        EXPECT_TRUE(logged("Error at line " + std::to_string(number) + ":\n" + one.line +
                           "\n" + one.reason + "\n"));
    }
}

TEST_F(MpsErrors, BadRowsAndHeads)
{
    EXPECT_EQ(bad("ROWS\n N C\n Q R\nCOLUMNS\n"),
              "MPS read error at line 3:\n Q R\na row type is N, L, G or E\n");
    EXPECT_EQ(bad("ROWS\n N C\n L R\n G R\nCOLUMNS\n"),
              "MPS read error at line 4:\n G R\nthis row name is declared twice\n");
    EXPECT_EQ(bad("ROWS\n N C\n L\nCOLUMNS\n"),
              "MPS read error at line 3:\n L\n" + std::string(NOT_FREE) + "\n");
    EXPECT_EQ(
        bad("OBJSENSE\n  SIDEWAYS\nROWS\n"),
        "MPS read error at line 2:\n  SIDEWAYS\nthe objective's sense is MAX or MIN\n");
    EXPECT_EQ(bad("OBJNAME\n  R\nROWS\n N C\n L R\nCOLUMNS\n"),
              "MPS read error at line 6:\nCOLUMNS\nOBJNAME names no row of type N\n");
}

TEST_F(MpsErrors, SectionsHaveTheirTexts)
{
    EXPECT_EQ(bad(""), "MPS reader: no row section\nline 1: the file ends here\n");
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
