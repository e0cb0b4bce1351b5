// mps_read_test.cpp -- what the MPS reader makes of good files, in all their dialects
#include "files/files_support.h"

struct MpsRead : Files {
    void good(const std::string &text) { ASSERT_EQ(read(text), 0) << message() << text; }
    bool warned(const std::string &text) const { return log.find(text) != log.npos; }
    // A text, what is held of it (rows of type G and maxima are negated), and what is warned of.
    struct Case {
        std::string text, content, warnings;
    };
    void expect(const std::vector<Case> &cases)
    {
        for (const Case &one : cases) {
            good(one.text);
            EXPECT_EQ(content(), one.content) << one.text;
            EXPECT_EQ(warnings(), one.warnings) << one.text;
        }
    }
};

TEST_F(MpsRead, FixedFormGivesNamesWithBlanksAndBlankFields)
{
    // The first line of columns fits both forms; in free form it is A, row R1, value 3, row R2, value 5.
    const std::string both = "NAME\nROWS\n N  COST\n L  R1\n L  R2\nCOLUMNS\n"
                             "    A R1 3    R2               5\n";
    expect({
        {"NAME          BLANKS\nROWS\n"
         " N  COST ROW  $ what it costs\n"
         " G  DEMAND 1  $ demand          lbs\n"
         " L  CAP  ONE                                                            "
         "00000001\nCOLUMNS\n"
         "    PLANT A   COST ROW             1   DEMAND 1             1           "
         "00000002\n"
         "              CAP  ONE             1\n" // the column's name stands once
         "    A 1 2     COST ROW             2   DEMAND 1           -.5\n"
         "    B         CAP  ONE  1.2345678901234567e+20 \nRHS\n"
         "    MY RHS    DEMAND 1             4\n"
         "              CAP  ONE             3\nBOUNDS\n"
         " UP BND       A 1 2               10\n"
         " UP           B                   9.\n" // the set's name is missing
         " FR BND       PLANT A\nENDATA\n",
         "BLANKS; constant 0; PLANT A C [-inf,inf] 1 0:-1 1:1; A 1 2 C [0,10] 2 0:0.5; B C "
         "[0,9] 0 1:1.2345678901234567e+20; DEMAND 1 < -4; CAP  ONE < 3; ",
         ""},
        {both + "    B         R1               7\nRHS\nENDATA\n",
         "; constant 0; A R1 3 C [0,inf] 0 1:5; B C [0,inf] 0 0:7; R1 < 0; R2 < 0; ", ""},
        {both + " B R1 7\nRHS\nENDATA\n",
         "; constant 0; A C [0,inf] 0 0:3 1:5; B C [0,inf] 0 0:7; R1 < 0; R2 < 0; ", ""},
    });
}

TEST_F(MpsRead, FreeFormGivesLongNamesTabsNumbersAsNamesCommentsAndAnyPlaces)
{
    expect({
        {"NAME\ta_long_name\nROWS\n N\ttotal_cost\n G   a_very_long_row_name\n    L 3.5\n"
         "COLUMNS\n x total_cost 1 a_very_long_row_name 2\n a_very_long_column_name\t\t3.5 "
         "  3\n -7 3.5 8\nRHS\n a_very_long_row_name 4 3.5 5\nBOUNDS\n UP x 6\n UP 99 -7 "
         "8\n"
         " FR a_very_long_column_name\nENDATA\n",
         "a_long_name; constant 0; x C [0,6] 1 0:-2; a_very_long_column_name C [-inf,inf] "
         "0 1:3; -7 C [0,8] 0 1:8; a_very_long_row_name < -4; 3.5 < 5; ",
         ""},
        {"$ a comment\nROWS\n N C $ cost\n L $R $ a row\nCOLUMNS\n X C 1 $R 2\n"
         " Y $R 3 $ four\n $Z C 4\n X $ nothing\nRHS\n RHS $R 5 $ six\nBOUNDS\n"
         " UP B $Z 7 $ eight\n FR B X $ nine\nENDATA\n",
         "; constant 0; X C [-inf,inf] 1 0:2; Y C [0,inf] 0 0:3; $Z C [0,7] 4; $R < 5; ",
         "Warning: a column stands in two places.\n         line 9: X\n"},
        {"rows\n n cost\n g r1\nColumns\n x cost 1 r1 1\nbounds\n up b x 3\n"
         "ranges\n rng r1 2\nrhs\n rhs r1 4\nBOUNDS\n lo b x 1\nendata\n",
         "; constant 0; x C [1,3] 1 0:1; Rgr1 C [0,2] 0 0:1; r1 = 6; ", ""},
    });
    const std::string name(100000, 'n');
    good("* " + std::string(3000000, 'c') + "\nROWS\n N COST\n L " + name +
         "\nCOLUMNS\n X " + std::string(70000, ' ') + name + " 5\nRHS\nENDATA\n");
    EXPECT_EQ(model->body->vval[0], 5);
    EXPECT_EQ(row(name), 0);
}

TEST_F(MpsRead, HeadsRowsAndColumns)
{
    const std::string costs = "ROWS\n N COST\n N OTHER\n G R1\nCOLUMNS\n X COST 1 OTHER 3\n"
                              " X R1 1\nRHS\n RHS OTHER -7 COST 9\nENDATA\n",
                      other = "; constant 7; X C [0,inf] 3 0:-1; R1 < 0; ",
                      no_rows = "Warning: no constraints.\n",
                      marker = "Warning: marker is wrong.\n         line ";
    // The last ones: nothing at all, as of an empty model; a column in parts, with two entries of which the later
    // counts.
    expect(
        {{"OBJSENSE MIN\nNAME     my little  model  \nROWS\n N C\n L R\nCOLUMNS\n"
          " X C 1 R 1\nENDATA\n",
          "my little  model; constant 0; X C [0,inf] 1 0:1; R < 0; ",
          "Warning: rhs section not found.\n"},
         {"NAME\nOBJNAME\n    OTHER\n" + costs, other, ""},
         {"OBJNAME OTHER\n" + costs, other, ""},
         {costs, "; constant -9; X C [0,inf] 1 0:-1; R1 < 0; ",
          "Warning: more than one unconstrainted rows,\n         the first one is used "
          "for objective.\n         line 3: OTHER\n"},
         {"ROWS\n G R1\nCOLUMNS\n X R1 1\nRHS\nENDATA\n",
          "; constant 0; X C [0,inf] 0 0:-1; R1 < 0; ", "Warning: no objective.\n"},
         {"ROWS\n N C\nCOLUMNS\n X C 1\nRHS\nENDATA\n", "; constant 0; X C [0,inf] 1; ",
          no_rows},
         {"ROWS\n N C\n L R\nCOLUMNS\nRHS\n RHS R 1\nENDATA\n", "; constant 0; R < 1; ",
          "Warning: no columns.\n"},
         {"ROWS\n N C\nCOLUMNS\n A C 1\n M1 'MARKER' 'INTORG'\n B C 1\n M2 'MARKER' "
          "'INTEND'\n D C 1\n 'MARKER' 'INTORG'\n E C 1\n M 'MARKER' 'INTORG'\nRHS\n"
          "ENDATA\n",
          "; constant 0; A C [0,inf] 1; B I [0,1] 1; D C [0,inf] 1; E I [0,1] 1; ",
          marker + "11: 'INTORG'\n" + no_rows},
         {"ROWS\n N C\n L R\nCOLUMNS\n M 'MARKER' 'INTORG'\n X R 1\nRHS\nENDATA\n",
          "; constant 0; X I [0,1] 0 0:1; R < 0; ", "Warning: marker is wrong.\n"},
         {"ROWS\nCOLUMNS\nRHS\nENDATA\n", "; constant 0; ",
          "Warning: no objective.\n" + no_rows + "Warning: no columns.\n"},
         {"ROWS\n N C\n G R1\n G R2\nCOLUMNS\n X C 1 R1 1\n Y C 1 R2 1\n X R2 5\n"
          " X R1 7\n Y R1 0\n Y C 6\nRHS\nENDATA\n",
          "; constant 0; X C [0,inf] 1 0:-7 1:-5; Y C [0,inf] 6 1:-1; R1 < 0; R2 < 0; ",
          "Warning: duplicate nonzeros.\n         line 11: C\nWarning: a column stands in "
          "two places.\n         line 8: X\n         line 10: Y\n"}});
    for (const char *head : {"OBJSENSE MAX\n", "OBJSENSE\n    MAX\n",
                             "objsense\nmaximize\n", "OBJSENSE\n* comment\n    MAXIMISE\n"})
        expect({{head + mps_with("RHS\n RHS COST 3\nENDATA\n"),
                 "TEST; constant 3; X C [0,inf] -1 0:-1 1:2; Y C [0,inf] -2 0:-1; R1 < 0; "
                 "R2 < 0; ",
                 ""}});
}

TEST_F(MpsRead, TheFirstSetStandsAndUnknownNamesAreLeftOut)
{
    std::string lines;
    for (int k = 0; k < 1000; k++) lines += "    Y         NOROW                3\n";
    const std::string at = "         line ", first = ", the first one is used.\n" + at,
                      no_row = "Warning: row name in ", undefined = " not defined.\n" + at;
    expect(
        {{mps_with("RHS\n RHS1 R1 2\n RHS2 R2 3\n RHS1 R2 4 R1 9\n RHS1 COST 4\n"
                   " RHS1 COST 5\nRANGES\n RNG1 R1 1\n RNG2 R2 1\n RNG1 R1 2\nBOUNDS\n"
                   " UP BND1 X 3\n UP BND2 X 1\n UP BND2 Y 1\n UP BND1 Y 4\nENDATA\n"),
          "TEST; constant -4; X C [0,3] 1 0:1 1:2; Y C [0,4] 2 0:1; RgR1 C [0,1] 0 0:1; "
          "R1 = 3; R2 < 4; ",
          "Warning: duplicate row in rhs section.\n" + at + "13: R1\n" + at +
              "15: COST\nWarning: duplicate range rows.\n" + at +
              "19: R1\nWarning: more than one set in rhs section" + first +
              "12: RHS2\nWarning: more than one set in ranges section" + first +
              "18: RNG2\nWarning: more than one set in bounds section" + first +
              "22: BND2\n"},
         {mps_with(lines + "RHS\n    RHS       NOROW                3   R1            4\n"
                           "RANGES\n    RNG       NOROW                3\n"
                           "BOUNDS\n UP BND       NOCOL                3\nENDATA\n"),
          "TEST; constant 0; X C [0,inf] 1 0:-1 1:2; Y C [0,inf] 2 0:-1; R1 < -4; R2 < 0; ",
          no_row + "column section" + undefined + "10: NOROW\n" + at + "11: NOROW\n" + at +
              "12: NOROW\n" + at + "13: NOROW\n" + at + "14: NOROW\n" +
              "         and 995 more\n" + no_row + "rhs section" + undefined +
              "1011: NOROW\n" + no_row + "ranges section" + undefined + "1013: NOROW\n" +
              "Warning: column name in bound section not defined\n" + at +
              "1015: NOCOL\n"}});
}

TEST_F(MpsRead, RangesBecomeEquationsWithAVariable)
{
    const struct {
        char type;
        const char *rhs, *range, *side, *variable; // as it is held: '>' rows negated
    } cases[] = {
        {'E', "10", "2", "= 12", "C [0,2]"},    {'E', "20", "-3", "= 20", "C [0,3]"},
        {'E', "30", "0", "= 30", "none"},       {'L', "40", "-4", "= 40", "C [0,4]"},
        {'G', "50", "5", "= 55", "C [0,5]"},    {'L', "60", "inf", "< 60", "none"},
        {'E', "70", "1e30", "> -70", "none"},   {'E', "80", "-inf", "< 80", "none"},
        {'G', "90", "0", "= 90", "none"},       {'G', "-inf", "", "> inf", "none"},
        {'L', "Infinity", "4", "< inf", "none"}};
    for (const auto &c : cases) {
        good(std::string("ROWS\n N C\n ") + c.type + " R\nCOLUMNS\n X R 1\nRANGES\n" +
             (*c.range ? std::string(" R R ") + c.range + "\n R C 3\n" : "") +
             "RHS\n R R " + c.rhs + "\nENDATA\n");
        EXPECT_EQ(model->body->senses[0] + (" " + shown(model->body->rhs[0])), c.side);
        EXPECT_EQ(domain("RgR"), c.variable) << c.type << c.rhs << " " << c.range;
    }
    EXPECT_TRUE(warned("range of a row with infinite right-hand side ignored"));
    expect({{"ROWS\n N C\n L R\nCOLUMNS\n RgR C 1\nRHS\n R R 4\nRANGES\n R R 3\nENDATA\n",
             "; constant 0; RgR C [0,inf] 1; RgR_ C [0,3] 0 0:1; R = 4; ",
             ""}, // the plain name is taken
            {"ROWS\n N C\n N D\n L R\nCOLUMNS\n X R 1\nRHS\nRANGES\n R C 3 D 3\nENDATA\n",
             "; constant 0; X C [0,inf] 0 0:1; R < 0; ",
             "Warning: more than one unconstrainted rows,\n         the first one is used "
             "for objective.\n         line 3: D\n"}}); // nothing of its range
}

TEST_F(MpsRead, BoundLinesFollowTheTable)
{
    const struct {
        const char *lines;
        const char *continuous, *integer; // domains of X outside and between markers
        // clang-format off
    } cases[] = {
        {"", "C [0,inf]", "I [0,1]"}, {" LO B X 2\n", "C [2,inf]", "I [2,inf]"},
        {" LO B X 0\n", "C [0,inf]", "I [0,inf]"}, {" UP B X 5\n", "C [0,5]", "I [0,5]"},
        {" UP B X 0\n", "C [0,0]", "I [0,0]"}, {" UP B X -2\n", "C [-inf,-2]", "I [-inf,-2]"},
        {" LO B X 0\n UP B X -2\n", "C [0,-2]", "I [0,-2]"}, {" LO B X -5\n UP B X -2\n", "C [-5,-2]", "I [-5,-2]"},
        {" UP B X 3\n LO B X 5\n", "C [5,3]", "I [5,3]"}, {" FX B X 3\n", "C [3,3]", "I [3,3]"},
        {" FR B X\n UP B X 4\n", "C [-inf,4]", "I [-inf,4]"}, {" MI B X\n", "C [-inf,inf]", "I [-inf,1]"},
        {" MI B X\n UP B X 4\n", "C [-inf,4]", "I [-inf,4]"}, {" PL B X\n", "C [0,inf]", "I [0,inf]"},
        {" BV B X\n", "B [0,1]", "B [0,1]"}, {" BV B X\n FX B X 1\n", "B [1,1]", "B [1,1]"},
        {" UP B X 1\n BV B X\n", "B [0,1]", "B [0,1]"}, {" LI B X 2\n", "I [2,inf]", "I [2,inf]"},
        {" LI B X 2\n UI B X 7\n", "I [2,7]", "I [2,7]"}, {" SC B X 9\n LO B X 2\n", "S [2,9]", "N [2,9]"},
        {" SC B X 1e30\n", "S [0,inf]", "N [0,inf]"}, {" SC B X\n", "S [0,inf]", "N [0,inf]"},
        {" SC B X Inf\n LO B X -3\n", "S [-3,inf]", "N [-3,inf]"}, {" SI B X 9\n", "N [0,9]", "N [0,9]"},
        {" SC B X 9\n LI B X 1\n", "N [1,9]", "N [1,9]"},
        {" LO B X -1e30\n UP B X 1e30\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" LO B X -Infinity\n UP B X inf\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" LO B X 1.5D+1\n", "C [15,inf]", "I [15,inf]"}, {" UP B X 7\n UP B X 3\n", "C [0,7]", "I [0,7]"},
        {" UP B X 7\n FX B X 3\n", "C [0,7]", "I [0,7]"}, {" UP B X 4\n FR B X\n", "C [0,4]", "I [0,4]"},
        {" UP B X 4\n PL B X\n", "C [0,4]", "I [0,4]"}, {" FR B X 0\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" FR X\n", "C [-inf,inf]", "I [-inf,inf]"}, {" FR X 0\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" UP X 4\n LO X 1\n", "C [1,4]", "I [1,4]"}, {" up B X 4\n", "C [0,4]", "I [0,4]"}};
    // clang-format on
    for (const auto &one : cases) {
        const std::string lines = one.lines, tail = "RHS\nBOUNDS\n" + lines + "ENDATA\n";
        good("ROWS\n N C\nCOLUMNS\n X C 1\n" + tail);
        EXPECT_EQ(domain("X"), one.continuous) << one.lines;
        EXPECT_EQ(warned("Warning: duplicate bounds for a column.\n         line 8: X\n"),
                  lines.starts_with(" UP B X ") && lines.find("LO") == lines.npos &&
                      lines.size() > 11);
        good("ROWS\n N C\nCOLUMNS\n M 'MARKER' 'INTORG'\n X C 1\n" + tail);
        EXPECT_EQ(domain("X"), one.integer) << one.lines;
        EXPECT_EQ(
            warned("integer column with lower bound MI keeps its default upper bound"),
            lines == " MI B X\n");
    }
}

TEST_F(MpsRead, SetsInAllTheirFormsAndBoundsThatBinariesCannotHave)
{
    std::vector<Case> cases = {
        // Members named like headers and with blanks.
        {"ROWS\n N  C\nCOLUMNS\n    S1        C                    1\n"
         "    A B       C                    1\nRHS\nSOS\n S2 set\n"
         "    S1                   3\n    A B                  4\nENDATA\n",
         "; constant 0; S1 C [0,inf] 1; A B C [0,inf] 1; S2 0:3 1:4; ",
         "Warning: no constraints.\n"},
        {mps_with("RHS\nBOUNDS\n BV B X\n UP B X 3\n BV B Y\n FX B Y 1\nENDATA\n"),
         "TEST; constant 0; X B [0,1] 1 0:-1 1:2; Y B [1,1] 2 0:-1; R1 < 0; R2 < 0; ",
         "Warning: bounds of a binary variable are cut to 0 and 1.\n         X\n"}};
    for (const std::string form :
         {"SOS\n S1 one\n    X         1\n    Y         2\n S2 two\n    Y         5\n    X "
          " "
          "       7\n",
          "SETS\n s1 one\n one X 1\n one Y 2\n s2\n Y 5\n X 7\n",
          "sos\n S1 SOS       SET1      5\n    SOS       X                    1\n"
          "    SOS       Y                    2\n S2 SOS       SET2      5\n"
          "    SOS       Y                    5\n    SOS       X                    7\n"})
        cases.push_back({mps_with("RHS\n" + form + "ENDATA\n"),
                         "TEST; constant 0; X C [0,inf] 1 0:-1 1:2; Y C [0,inf] 2 0:-1; R1 "
                         "< 0; R2 < 0; S1 0:1 1:2; S2 1:5 0:7; ",
                         ""});
    expect(cases);
}
