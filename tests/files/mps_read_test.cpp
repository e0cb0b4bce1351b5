// mps_read_test.cpp -- what the MPS reader makes of good files, in all their dialects
#include "files/files_support.h"

class MpsRead : public Files
{
  protected:
    // Reads sections around the small model; expects success.
    void good(const std::string &sections)
    {
        ASSERT_EQ(read(mps_with(sections)), 0) << message();
    }
    bool warned(const std::string &text) const
    {
        return log.find(text) != std::string::npos;
    }
};

// ---- Forms ----

TEST_F(MpsRead, FixedFormGivesNamesWithBlanks)
{
    ASSERT_EQ(read("NAME          BLANKS\n"
                   "ROWS\n"
                   " N  COST ROW\n"
                   " G  DEMAND 1\n"
                   " L  CAP  ONE\n"
                   "COLUMNS\n"
                   "    PLANT A   COST ROW             1   DEMAND 1             1\n"
                   "    PLANT A   CAP  ONE             1\n"
                   "    A 1 2     COST ROW             2   DEMAND 1           -.5\n"
                   "RHS\n"
                   "    MY RHS    DEMAND 1             4   CAP  ONE             3\n"
                   "BOUNDS\n"
                   " UP BND       A 1 2               10\n"
                   " FR BND       PLANT A\n"
                   "ENDATA\n"),
              0)
        << message();
    EXPECT_EQ(coefficient("CAP  ONE", "PLANT A"), 1);
    EXPECT_EQ(coefficient("DEMAND 1", "A 1 2"), -.5);
    EXPECT_EQ(model->body->rhs[row("DEMAND 1")], -4);
    EXPECT_EQ(domain("A 1 2"), "C [0,10]");
    EXPECT_EQ(domain("PLANT A"), "C [-inf,inf]");
}

TEST_F(MpsRead, FixedFormGivesBlankFields)
{
    // The name of the column stands once; the set's name is missing later.
    ASSERT_EQ(read("NAME\n"
                   "ROWS\n"
                   " N  COST      $ what it costs\n"
                   " G  R1        $ demand          lbs\n"
                   " L  R2\n"
                   "COLUMNS\n"
                   "    X         COST               1.5\n"
                   "              R1                 2.5   R2                 3.5\n"
                   "    Y         R1                 4.5\n"
                   "RHS\n"
                   "    RHS1      R1                  6.\n"
                   "              R2                  7.\n"
                   "BOUNDS\n"
                   " UP BND1      X                   8.\n"
                   " UP           Y                   9.\n"
                   "ENDATA\n"),
              0)
        << message();
    EXPECT_EQ(coefficient("R2", "X"), 3.5);
    EXPECT_EQ(coefficient("R1", "Y"), 4.5);
    EXPECT_EQ(model->body->rhs[row("R2")], 7);
    EXPECT_EQ(domain("Y"), "C [0,9]");
}

TEST_F(MpsRead, FixedFormKeepsCardNumbersAndLongNumbersApart)
{
    ASSERT_EQ(read("NAME\n"
                   "ROWS\n"
                   " N  COST\n"
                   " E  ROW ONE                                                            "
                   " 00000001\n"
                   "COLUMNS\n"
                   "    COL ONE   ROW ONE             1.   COST                2.          "
                   " 00000002\n"
                   "    COL TWO   ROW ONE   1.2345678901234567e+100\n"
                   "RHS\n"
                   "ENDATA\n"),
              0)
        << message();
    EXPECT_EQ(model->body->obj[0], 2);
    EXPECT_EQ(coefficient("ROW ONE", "COL TWO"), 1.2345678901234567e+100);
}

TEST_F(MpsRead, FreeFormGivesLongNamesTabsAndAnyPlaces)
{
    ASSERT_EQ(read("NAME\ta_long_name\n"
                   "ROWS\n"
                   " N\ttotal_cost\n"
                   " G   a_very_long_row_name\n"
                   "    L r\n"
                   "COLUMNS\n"
                   " x total_cost 1 a_very_long_row_name 2\n"
                   " a_very_long_column_name\t\tr   3\n"
                   "RHS\n"
                   " a_very_long_row_name 4 r 5\n"
                   "BOUNDS\n"
                   " UP x 6\n"
                   " FR a_very_long_column_name\n"
                   "ENDATA\n"),
              0)
        << message();
    EXPECT_STREQ(model->body->modelname, "a_long_name");
    EXPECT_EQ(coefficient("r", "a_very_long_column_name"), 3);
    EXPECT_EQ(model->body->rhs[row("r")], 5);
    EXPECT_EQ(domain("x"), "C [0,6]");
    EXPECT_EQ(domain("a_very_long_column_name"), "C [-inf,inf]");
}

// Read as free form the first column line would be column A, row R1, value 3, row R2, value 5.
TEST_F(MpsRead, ALineThatFitsBothFormsIsFixedInAFixedFile)
{
    const std::string head = "NAME\nROWS\n N  COST\n L  R1\n L  R2\nCOLUMNS\n";
    const std::string both = "    A R1 3    R2               5\n";
    ASSERT_EQ(read(head + both + "    B         R1               7\nRHS\nENDATA\n"), 0)
        << message();
    EXPECT_EQ(coefficient("R2", "A R1 3"), 5);
    ASSERT_EQ(read(head + both + " B R1 7\nRHS\nENDATA\n"), 0) << message();
    EXPECT_EQ(coefficient("R2", "A"), 5);
    EXPECT_EQ(coefficient("R1", "A"), 3);
}

TEST_F(MpsRead, NamesThatLookLikeNumbersStayNames)
{
    ASSERT_EQ(
        read("NAME 12\nROWS\n N 1\n G 2\n L 3.5\nCOLUMNS\n 1e1 1 1 2 1\n -7 1 -2 3.5 1\n"
             "RHS\n 99 2 4 3.5 5\nBOUNDS\n UP 99 -7 8\n FR 99 1e1\nENDATA\n"),
        0)
        << message();
    EXPECT_EQ(coefficient("3.5", "-7"), 1);
    EXPECT_EQ(domain("-7"), "C [0,8]");
    EXPECT_EQ(domain("1e1"), "C [-inf,inf]");
}

TEST_F(MpsRead, LineEndsMarksAndMissingNewlinesMakeNoDifference)
{
    const std::string text =
        mps_with("RHS\n    RHS       R1                   4\nENDATA\n");
    ASSERT_EQ(read(text), 0);
    TVXmodel *plain = model;
    model = nullptr;
    const auto replaced = [&](const std::string &end) {
        std::string other;
        for (const char c : text) other += c == '\n' ? end : std::string(1, c);
        return other;
    };
    const std::vector<std::string> variants = {
        replaced("\r\n"),      replaced("\r"),
        replaced(" \t \n"),    replaced("\n\n* comment\n"),
        "\xef\xbb\xbf" + text, text.substr(0, text.size() - 1),
        text + "\x1a\n\x1a",   text + "garbage \x01\n"};
    for (const std::string &variant : variants) {
        ASSERT_EQ(read(variant), 0) << message() << variant;
        EXPECT_EQ(model_difference(plain, model, Names::COMPARE), "") << variant;
    }
    TVXfreemodel(plain);
}

TEST_F(MpsRead, LinesOfAnyLengthAreRead)
{
    const std::string name(100000, 'n');
    ASSERT_EQ(read("* " + std::string(3000000, 'c') + "\nNAME\nROWS\n N COST\n L " + name +
                   "\nCOLUMNS\n X " + std::string(70000, ' ') + name + " 5\nRHS\nENDATA\n"),
              0);
    EXPECT_EQ(coefficient(name, "X"), 5);
}

// ---- Head ----

TEST_F(MpsRead, SenseStandsOnItsLineOrTheNext)
{
    for (const char *text :
         {"OBJSENSE MAX\n", "OBJSENSE\n    MAX\n", "objsense\nmaximize\n",
          "OBJSENSE\n* comment\n    MAXIMISE\n"}) {
        ASSERT_EQ(read(text + mps_with("RHS\n RHS COST 3\nENDATA\n")), 0)
            << text << message();
        EXPECT_EQ(model->body->sense, -1) << text;
        double constant = 0;
        EXPECT_EQ(TVXgetdblattr(model, "ObjCon", &constant), 0);
        EXPECT_EQ(constant, -3);
        EXPECT_EQ(model->body->obj[1], -2); // stored for minimisation
    }
    ASSERT_EQ(read("OBJSENSE MIN\n" + mps_with("RHS\nENDATA\n")), 0);
    EXPECT_EQ(model->body->sense, 1);
}

TEST_F(MpsRead, ObjnameChoosesAmongFreeRows)
{
    const std::string body =
        "ROWS\n N COST\n N OTHER\n G R1\nCOLUMNS\n X COST 1 OTHER 3\n X R1 1\n"
        "RHS\n RHS OTHER -7 COST 9\nENDATA\n";
    for (const char *head : {"NAME\nOBJNAME\n    OTHER\n", "OBJNAME OTHER\n"}) {
        ASSERT_EQ(read(head + body), 0) << message();
        EXPECT_EQ(model->body->obj[0], 3);
        EXPECT_EQ(model->body->objcon, 7);
        EXPECT_FALSE(warned("unconstrainted"));
    }
    ASSERT_EQ(read(body), 0);
    EXPECT_EQ(model->body->obj[0], 1);
    EXPECT_EQ(model->body->objcon, -9);
    EXPECT_TRUE(warned("Warning: more than one unconstrainted rows,\n"
                       "         the first one is used for objective.\n"
                       "         line 3: OTHER\n"));
}

TEST_F(MpsRead, NameIsTheRestOfItsLine)
{
    ASSERT_EQ(
        read("NAME     my little  model  \nROWS\n N C\nCOLUMNS\n X C 1\nRHS\nENDATA\n"), 0);
    EXPECT_STREQ(model->body->modelname, "my little  model");
    ASSERT_EQ(read("NAME\nROWS\n N C\nCOLUMNS\n X C 1\nRHS\nENDATA\n"), 0);
    EXPECT_EQ(model->body->modelname, nullptr);
}

TEST_F(MpsRead, SectionNamesInAnyCaseAndInAnyOrder)
{
    ASSERT_EQ(read("rows\n n cost\n g r1\nColumns\n x cost 1 r1 1\nbounds\n up b x 3\n"
                   "ranges\n rng r1 2\nrhs\n rhs r1 4\nBOUNDS\n lo b x 1\nendata\n"),
              0)
        << message();
    EXPECT_EQ(domain("x"), "C [1,3]");
    EXPECT_EQ(model->body->rhs[0], 6); // 4 <= r1 <= 6
    EXPECT_EQ(domain("Rgr1"), "C [0,2]");
}

// ---- Rows and columns ----

TEST_F(MpsRead, OddRowsAndColumns)
{
    ASSERT_EQ(read("ROWS\n G R1\nCOLUMNS\n X R1 1\nRHS\nENDATA\n"), 0);
    EXPECT_TRUE(warned("Warning: no objective.\n"));
    ASSERT_EQ(read("ROWS\n N C\nCOLUMNS\n X C 1\nRHS\nENDATA\n"), 0)
        << "a model of bounds only";
    EXPECT_EQ(model->body->numconstrs, 0);
    EXPECT_TRUE(warned("Warning: no constraints.\n"));
    ASSERT_EQ(read("ROWS\n N C\n L R\nCOLUMNS\nRHS\n RHS R 1\nENDATA\n"), 0)
        << "rows without columns";
    EXPECT_EQ(model->body->numconstrs, 1);
    EXPECT_EQ(model->body->numvars, 0);
    EXPECT_TRUE(warned("Warning: no columns.\n"));
    ASSERT_EQ(read("ROWS\nCOLUMNS\nRHS\nENDATA\n"), 0)
        << "nothing at all, as of an empty model";
    ASSERT_EQ(read(mps_with("ENDATA\n")), 0);
    EXPECT_TRUE(warned("Warning: rhs section not found.\n"));
}

TEST_F(MpsRead, ASplitColumnIsOneColumn)
{
    ASSERT_EQ(read("ROWS\n N C\n G R1\n G R2\nCOLUMNS\n X C 1 R1 1\n Y C 1 R2 1\n X R2 5\n"
                   " X R1 7\n Y R1 0\nRHS\nENDATA\n"),
              0);
    EXPECT_EQ(model->body->numvars, 2);
    EXPECT_EQ(model->body->numnz, 3); // the zero is no entry
    EXPECT_EQ(coefficient("R2", "X"), 5);
    EXPECT_EQ(coefficient("R1", "X"), 7);
    EXPECT_TRUE(warned("a column stands in two places.\n         line 8: X\n"));
    EXPECT_TRUE(warned("Warning: duplicate nonzeros.\n"));
}

TEST_F(MpsRead, TheLaterOfTwoEntriesStands)
{
    ASSERT_EQ(read(mps_with("    Y         R1                   5\n"
                            "    Y         COST                 6\nRHS\nENDATA\n")),
              0);
    EXPECT_EQ(coefficient("R1", "Y"), 5);
    EXPECT_EQ(model->body->obj[1], 6);
    EXPECT_TRUE(warned(
        "Warning: duplicate nonzeros.\n         line 10: R1\n         line 11: COST\n"));
}

TEST_F(MpsRead, UnknownNamesAreLeftOutWithAWarning)
{
    good("    Y         NOROW                3\n"
         "RHS\n"
         "    RHS       NOROW                3   R1                   4\n"
         "RANGES\n"
         "    RNG       NOROW                3\n"
         "BOUNDS\n"
         " UP BND       NOCOL                3\n"
         "ENDATA\n");
    EXPECT_EQ(model->body->numnz, 3);
    EXPECT_EQ(model->body->rhs[0], -4);
    EXPECT_TRUE(warned(
        "Warning: row name in column section not defined.\n         line 10: NOROW\n"));
    EXPECT_TRUE(
        warned("Warning: row name in rhs section not defined.\n         line 12: NOROW\n"));
    EXPECT_TRUE(warned("Warning: row name in ranges section not defined.\n"));
    EXPECT_TRUE(warned(
        "Warning: column name in bound section not defined\n         line 16: NOCOL\n"));
}

TEST_F(MpsRead, ManyWarningsOfAKindAreCounted)
{
    std::string lines;
    for (int k = 0; k < 1000; k++) lines += "    Y         NOROW                3\n";
    good(lines + "RHS\nENDATA\n");
    EXPECT_TRUE(warned("         and 995 more\n"));
    EXPECT_LT(log.size(), 1500u);
}

TEST_F(MpsRead, MarkersMakeIntegers)
{
    ASSERT_EQ(
        read("ROWS\n N C\nCOLUMNS\n A C 1\n M1 'MARKER' 'INTORG'\n B C 1\n M2 'MARKER' "
             "'INTEND'\n"
             " D C 1\n 'MARKER' 'INTORG'\n E C 1\n M 'MARKER' 'INTORG'\nRHS\nENDATA\n"),
        0)
        << message();
    EXPECT_EQ(domain("A"), "C [0,inf]");
    EXPECT_EQ(domain("B"), "I [0,1]");
    EXPECT_EQ(domain("D"), "C [0,inf]");
    EXPECT_EQ(domain("E"), "I [0,1]");
    EXPECT_TRUE(warned("Warning: marker is wrong.\n         line 11: 'INTORG'\n"));
}

// ---- Right-hand sides and ranges ----

TEST_F(MpsRead, TheFirstSetCounts)
{
    good("RHS\n RHS1 R1 2\n RHS2 R2 3\n RHS1 R2 4\n"
         "RANGES\n RNG1 R1 1\n RNG2 R2 1\n"
         "BOUNDS\n UP BND1 X 3\n UP BND2 X 1\n UP BND2 Y 1\n UP BND1 Y 4\nENDATA\n");
    EXPECT_EQ(model->body->rhs[1], 4);
    EXPECT_EQ(model->body->numvars, 3); // one range
    EXPECT_EQ(domain("X"), "C [0,3]");
    EXPECT_EQ(domain("Y"), "C [0,4]");
    EXPECT_TRUE(warned("more than one set in rhs section, the first one is used.\n         "
                       "line 12: RHS2\n"));
    EXPECT_TRUE(warned("more than one set in ranges section"));
    EXPECT_TRUE(warned("more than one set in bounds section"));
}

TEST_F(MpsRead, TheFirstRightHandSideStands)
{
    good("RHS\n RHS R1 2\n RHS R1 3\n RHS COST 4\n RHS COST 5\nRANGES\n RNG R1 1\n RNG R1 "
         "2\nENDATA\n");
    EXPECT_EQ(model->body->rhs[0], 3); // 2 <= R1 <= 3
    EXPECT_EQ(model->body->objcon, -4);
    EXPECT_TRUE(warned("Warning: duplicate row in rhs section.\n         line 12: R1\n     "
                       "    line 14: COST\n"));
    EXPECT_TRUE(warned("Warning: duplicate range rows.\n"));
}

TEST_F(MpsRead, RangesBecomeEquationsWithAVariable)
{
    ASSERT_EQ(read("ROWS\n N C\n E E+\n E E-\n E E0\n L L\n G G\n L Linf\n E Einf\n E "
                   "E-inf\n G G0\n"
                   "COLUMNS\n X E+ 1 E- 1\n X E0 1 L 1\n X G 1 Linf 1\n X Einf 1 E-inf 1\n "
                   "X G0 1\n"
                   " RgL C 1\n"
                   "RANGES\n R E+ 2 E- -3\n R E0 0 L -4\n R G 5 Linf inf\n R Einf 1e30 "
                   "E-inf -inf\n"
                   " R G0 0 C 3\n"
                   "RHS\n R E+ 10 E- 20\n R E0 30 L 40\n R G 50 Linf 60\n R Einf 70 E-inf "
                   "80\n R G0 90\n"
                   "ENDATA\n"),
              0)
        << message();
    const ModelBody *body = model->body;
    const auto side = [&](const char *name) {
        const int i = row(name);
        return std::string(1, body->senses[i]) + " " +
               std::to_string(static_cast<int>(body->rhs[i]));
    };
    EXPECT_EQ(side("E+"), "= 12"); // [10, 12]
    EXPECT_EQ(domain("RgE+"), "C [0,2]");
    EXPECT_EQ(side("E-"), "= 20"); // [17, 20]
    EXPECT_EQ(domain("RgE-"), "C [0,3]");
    EXPECT_EQ(side("E0"), "= 30");
    EXPECT_EQ(domain("RgE0"), "none");
    EXPECT_EQ(side("L"), "= 40"); // [36, 40]
    EXPECT_EQ(domain("RgL_"), "C [0,4]") << "the plain name is taken";
    EXPECT_EQ(coefficient("L", "RgL_"), 1);
    EXPECT_EQ(side("G"), "= 55"); // [50, 55]
    EXPECT_EQ(side("Linf"), "< 60");
    EXPECT_EQ(side("Einf"), "> -70"); // held negated
    EXPECT_EQ(side("E-inf"), "< 80");
    EXPECT_EQ(side("G0"), "= 90");
}

TEST_F(MpsRead, InfiniteSidesOfInequalities)
{
    good("RHS\n RHS R1 -inf R2 Infinity\nRANGES\n RNG R2 4\nENDATA\n");
    EXPECT_EQ(model->body->rhs[0], 1e30); // held negated
    EXPECT_EQ(model->body->rhs[1], 1e30);
    EXPECT_EQ(model->body->numvars, 2);
    EXPECT_TRUE(warned("range of a row with infinite right-hand side ignored"));
}

// ---- Bounds ----

struct BoundCase {
    const char *lines;
    const char *continuous, *integer; // domains of X outside and between markers
};

TEST_F(MpsRead, BoundLinesFollowTheTable)
{
    const std::vector<BoundCase> cases = {
        {"", "C [0,inf]", "I [0,1]"},
        {" LO B X 2\n", "C [2,inf]", "I [2,inf]"},
        {" LO B X 0\n", "C [0,inf]", "I [0,inf]"},
        {" UP B X 5\n", "C [0,5]", "I [0,5]"},
        {" UP B X 0\n", "C [0,0]", "I [0,0]"},
        {" UP B X -2\n", "C [-inf,-2]", "I [-inf,-2]"},
        {" LO B X 0\n UP B X -2\n", "C [0,-2]", "I [0,-2]"},
        {" LO B X -5\n UP B X -2\n", "C [-5,-2]", "I [-5,-2]"},
        {" UP B X 3\n LO B X 5\n", "C [5,3]", "I [5,3]"},
        {" FX B X 3\n", "C [3,3]", "I [3,3]"},
        {" FR B X\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" FR B X\n UP B X 4\n", "C [-inf,4]", "I [-inf,4]"},
        {" MI B X\n", "C [-inf,inf]", "I [-inf,1]"},
        {" MI B X\n UP B X 4\n", "C [-inf,4]", "I [-inf,4]"},
        {" PL B X\n", "C [0,inf]", "I [0,inf]"},
        {" BV B X\n", "B [0,1]", "B [0,1]"},
        {" BV B X\n FX B X 1\n", "B [1,1]", "B [1,1]"},
        {" UP B X 1\n BV B X\n", "B [0,1]", "B [0,1]"},
        {" LI B X 2\n", "I [2,inf]", "I [2,inf]"},
        {" UI B X 7\n", "I [0,7]", "I [0,7]"},
        {" LI B X 2\n UI B X 7\n", "I [2,7]", "I [2,7]"},
        {" SC B X 9\n", "S [0,9]", "N [0,9]"},
        {" SC B X 9\n LO B X 2\n", "S [2,9]", "N [2,9]"},
        {" SC B X 1e30\n", "S [0,inf]", "N [0,inf]"},
        {" SC B X\n", "S [0,inf]", "N [0,inf]"},
        {" SC B X Inf\n LO B X -3\n", "S [-3,inf]", "N [-3,inf]"},
        {" SI B X 9\n", "N [0,9]", "N [0,9]"},
        {" SC B X 9\n LI B X 1\n", "N [1,9]", "N [1,9]"},
        {" LO B X -1e30\n UP B X 1e30\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" LO B X -Infinity\n UP B X inf\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" LO B X 1.5D+1\n", "C [15,inf]", "I [15,inf]"},
        {" UP B X 7\n UP B X 3\n", "C [0,7]", "I [0,7]"},
        {" UP B X 7\n FX B X 3\n", "C [0,7]", "I [0,7]"},
        {" UP B X 4\n FR B X\n", "C [0,4]", "I [0,4]"},
        {" UP B X 4\n PL B X\n", "C [0,4]", "I [0,4]"},
        {" FR B X 0\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" FR X\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" FR X 0\n", "C [-inf,inf]", "I [-inf,inf]"},
        {" UP X 4\n LO X 1\n", "C [1,4]", "I [1,4]"},
        {" up B X 4\n", "C [0,4]", "I [0,4]"},
    };
    for (const BoundCase &one : cases) {
        const std::string tail = std::string("RHS\nBOUNDS\n") + one.lines + "ENDATA\n";
        ASSERT_EQ(read("ROWS\n N C\nCOLUMNS\n X C 1\n" + tail), 0)
            << one.lines << message();
        EXPECT_EQ(domain("X"), one.continuous) << one.lines;
        ASSERT_EQ(read("ROWS\n N C\nCOLUMNS\n M 'MARKER' 'INTORG'\n X C 1\n" + tail), 0)
            << one.lines;
        EXPECT_EQ(domain("X"), one.integer) << one.lines;
    }
}

TEST_F(MpsRead, DoubtfulBoundsAreReported)
{
    good("RHS\nBOUNDS\n UP B X 7\n UP B X 3\nENDATA\n");
    EXPECT_TRUE(warned("Warning: duplicate bounds for a column.\n         line 13: X\n"));
    ASSERT_EQ(read("ROWS\n N C\nCOLUMNS\n M 'MARKER' 'INTORG'\n X C 1\nRHS\nBOUNDS\n MI B "
                   "X\nENDATA\n"),
              0);
    EXPECT_TRUE(warned("integer column with lower bound MI keeps its default upper bound "
                       "1.\n         X\n"));
    good("RHS\nBOUNDS\n BV B X\n FX B X 1\nENDATA\n");
    EXPECT_FALSE(warned("duplicate bounds"));
}

// ---- Sets ----

TEST_F(MpsRead, SetsInAllTheirForms)
{
    const std::vector<std::string> forms = {
        "SOS\n S1 one\n    X         1\n    Y         2\n S2 two\n    Y         5\n    X   "
        "      7\n",
        "SETS\n s1 one\n one X 1\n one Y 2\n s2\n Y 5\n X 7\n",
        "sos\n S1 SOS       SET1      5\n    SOS       X                    1\n"
        "    SOS       Y                    2\n S2 SOS       SET2      5\n"
        "    SOS       Y                    5\n    SOS       X                    7\n"};
    for (const std::string &form : forms) {
        good("RHS\n" + form + "ENDATA\n");
        const ModelBody *body = model->body;
        ASSERT_EQ(body->numsos, 2) << form;
        EXPECT_EQ(body->sostype[0], 1);
        EXPECT_EQ(body->sostype[1], 2);
        EXPECT_EQ(body->sosbeg[1], 2);
        EXPECT_EQ(body->sosind[0], 0);
        EXPECT_EQ(body->soswt[3], 7);
    }
}

TEST_F(MpsRead, MembersNamedLikeHeadersAndWithBlanks)
{
    ASSERT_EQ(read("ROWS\n N  C\nCOLUMNS\n    S1        C                    1\n"
                   "    A B       C                    1\nRHS\nSOS\n S2 set\n"
                   "    S1                   3\n    A B                  4\nENDATA\n"),
              0)
        << message();
    EXPECT_EQ(model->body->numsos, 1);
    EXPECT_EQ(model->body->sosind[1], 1);
    EXPECT_EQ(model->body->soswt[1], 4);
}

// ---- Comments ----

TEST_F(MpsRead, DollarBeginsACommentUnlessItIsAName)
{
    ASSERT_EQ(read("$ a comment\nROWS\n N C $ cost\n L $R $ a row\nCOLUMNS\n X C 1 $R 2\n"
                   " Y $R 3 $ four\n $Z C 4\n X $ nothing\nRHS\n RHS $R 5 $ six\nBOUNDS\n"
                   " UP B $Z 7 $ eight\n FR B X $ nine\nENDATA\n"),
              0)
        << message();
    EXPECT_EQ(coefficient("$R", "X"), 2);
    EXPECT_EQ(coefficient("$R", "Y"), 3);
    EXPECT_EQ(model->body->rhs[0], 5);
    EXPECT_EQ(domain("$Z"), "C [0,7]");
    EXPECT_EQ(domain("X"), "C [-inf,inf]");
}
