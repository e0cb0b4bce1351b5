// mps_errors_test.cpp -- bad MPS files: a code, the line, the reason, no model
#include "files/files_support.h"
#include <algorithm>
#include <gmock/gmock.h>
using testing::HasSubstr;

struct MpsErrors : Files {
    // Reads a bad text; the message.
    std::string bad(const std::string &text)
    {
        EXPECT_EQ(read(text), TVX_ERROR_FILE_READ) << text;
        EXPECT_EQ(model, nullptr);
        return message();
    }
    bool logged(const std::string &text) const { return log.find(text) != log.npos; }
};

struct BadLine {
    std::string section, line, reason;
};

static const char *const NOT_FREE =
    "MPS reader: not free format\na field is missing, or one too many";

TEST_F(MpsErrors, EveryBadFieldHasItsReason)
{
    const std::string infinite = "an infinite value cannot stand here",
                      too_far = "the bound is infinite, nothing can meet it",
                      set = "SOS\n S1 s\n";
    // clang-format off
    std::vector<BadLine> lines = {
        {"", " Y R2 -inf", infinite}, {"", " Y R1 1 R2", NOT_FREE}, {"", " Y R1 1 R2 2 R1 3", NOT_FREE},
        {"", " Y", NOT_FREE}, {"", " M 'MARKER' 'SOSORG'", "this kind of marker cannot be read"},
        {"RHS\n", " RHS COST inf", infinite}, {"RHS\n", " RHS", NOT_FREE}, {"RHS\n", " RHS R1", "'R1' is not a number"},
        {"BOUNDS\n", " ZZ B X 1", "unknown type of bound"}, {"BOUNDS\n", " UP B X", "'X' is not a number"},
        {"BOUNDS\n", " UP X", NOT_FREE}, {"BOUNDS\n", " FX B X inf", infinite}, {"BOUNDS\n", " UP B X -inf", too_far},
        {"BOUNDS\n", " LI B X inf", too_far}, {"SOS\n", " X 1", "S1 or S2 must begin a set"},
        {set, " NOCOL 1", "the set's member is no column"}, {set, " X", NOT_FREE},
        {set + " X 1\n", " X 2", "the column is in this set already"}, {set, " X inf", infinite}};
    // clang-format on
    for (const std::string number : {"1,5", "1e", "0x10", "--1", "nan", "1e400"})
        for (const auto &[section, line] : {std::pair{"", " Y R2 "},
                                            {"RHS\n", " RHS R1 "},
                                            {"RANGES\n", " RNG R1 "},
                                            {"BOUNDS\n", " UP B X "},
                                            {"SOS\n S1 s\n", " X "}})
            lines.push_back({section, line + number,
                             number == "1e400" ? "the number 1e400 is too large"
                                               : "'" + number + "' is not a number"});
    for (const BadLine &one : lines) {
        const std::string before = mps_with(one.section);
        const auto number = std::count(before.begin(), before.end(), '\n') + 1;
        const std::string told = " at line " + std::to_string(number) + ":\n" + one.line +
                                 "\n" + one.reason + "\n";
        EXPECT_EQ(bad(before + one.line + "\nENDATA\n"), "MPS read error" + told);
        EXPECT_TRUE(logged("Error" + told));
        EXPECT_EQ(logged("Error: not free format mps file.\n"), one.reason == NOT_FREE);
    }
}

TEST_F(MpsErrors, BadRowsHeadsAndSectionsHaveTheirTexts)
{
    const std::string at = "MPS read error at line ",
                      no_rows = "MPS reader: no row section\n",
                      no_columns = "MPS reader: no column section\n",
                      no_end = "MPS reader: line 10 not right or no ENDATA\n";
    const std::string unknown = "MPS reader: line 11 not right or no ENDATA\n";
    const struct {
        std::string text, message, log; // the message may go on
        // clang-format off
    } cases[] = {
        {"ROWS\n N C\n Q R\nCOLUMNS\n", at + "3:\n Q R\na row type is N, L, G or E\n", ""},
        {"ROWS\n N C\n L R\n G R\nCOLUMNS\n", at + "4:\n G R\nthis row name is declared twice\n", ""},
        {"ROWS\n N C\n L\nCOLUMNS\n", at + "3:\n L\n" + NOT_FREE + "\n", ""},
        {"OBJSENSE\n  SIDEWAYS\nROWS\n", at + "2:\n  SIDEWAYS\nthe objective's sense is MAX or MIN\n", ""},
        {"OBJNAME\n  R\nROWS\n N C\n L R\nCOLUMNS\n", at + "6:\nCOLUMNS\nOBJNAME names no row of type N\n", ""},
        {"", no_rows + "line 1: the file ends here\n", "Error: no row section.\n"},
        {"NAME x\nCOLUMNS\n", no_rows + "line 2: COLUMNS\nCOLUMNS stands before ROWS\n", ""},
        {" NAME x\n", no_rows, ""}, {"ROWS\n N C\nRHS\n", no_columns, "Error: no column section.\n"},
        {"ROWS\n N C\n", no_columns, ""},
        {"ROWS\n N C\nCOLUMNS\n X R 1\nRHS\nENDATA\n",
         "MPS reader: no columns or no nonzeros\n", "Error: no columns or no nonzeros.\n"},
        {mps_with("RHS\n"), no_end + "li", "Error: line 10 not right or no ENDATA.\n"},
        {mps_with("RHS\nQUADOBJ\n X X 1\nENDATA\n"),
         unknown + "line 11: QUADOBJ\nthis section is not known or not supported\n", ""},
        {mps_with("RHS   R1 4\nENDATA\n"), no_end + "line 10: RHS   R1 4\ntext behind the name of the section\n", ""},
        {mps_with("ROWS\n L R3\nENDATA\n"), no_end, ""}};
    // clang-format on
    for (const auto &one : cases) {
        EXPECT_TRUE(bad(one.text).starts_with(one.message)) << one.text << message();
        EXPECT_TRUE(logged(one.log)) << log;
    }
}

TEST_F(MpsErrors, BinaryFilesAreRefusedAndOffendingLinesShownHarmlessly)
{
    std::string text = mps_with("    Y         R2  0                1\nRHS\nENDATA\n");
    text[text.find("R2  0") + 4] = '\0';
    EXPECT_THAT(bad(text), HasSubstr("at line 10:"));
    EXPECT_THAT(message(),
                HasSubstr("the line holds a control character: this is no text file"));
    for (const char *device : {"/dev/zero", "/dev/null"})
        EXPECT_EQ(TVXreadmodel(env, device, &model), TVX_ERROR_FILE_READ);
    const std::string tail = std::string(5000, 'x') + "\n";
    bad(mps_with("    Y \x1b[31m \xff\xfe \xc3\xa9 " + tail));
    EXPECT_EQ(message().find('\x1b'), std::string::npos);
    EXPECT_LT(message().size(), 512u);
    EXPECT_THAT(bad(mps_with("    Y \xff\xfe \xc3\xa9 \xc2\x9b " + tail)),
                HasSubstr("Y ?? \xc3\xa9 ?? xxx"));
}
