// mps_read_test.cpp -- what the MPS reader makes of good files, in all their dialects
#include "files/files_support.h"

class MpsRead : public Files
{
  protected:
    void good(const std::string &text) { ASSERT_EQ(read(text), 0) << message() << text; }
    bool warned(const std::string &text) const
    {
        return log.find(text) != std::string::npos;
    }
    double rhs(const std::string &name) const { return model->body->rhs[row(name)]; }
};

// ---- Forms ----

TEST_F(MpsRead, FixedFormGivesNamesWithBlanksAndBlankFields)
{
    good(
        "NAME          BLANKS\n"
        "ROWS\n"
        " N  COST ROW  $ what it costs\n"
        " G  DEMAND 1  $ demand          lbs\n"
        " L  CAP  ONE                                                            00000001\n"
        "COLUMNS\n"
        "    PLANT A   COST ROW             1   DEMAND 1             1           00000002\n"
        "              CAP  ONE             1\n" // the column's name stands once
        "    A 1 2     COST ROW             2   DEMAND 1           -.5\n"
        "    B         CAP  ONE  1.2345678901234567e+100\n"
        "RHS\n"
        "    MY RHS    DEMAND 1             4\n"
        "              CAP  ONE             3\n"
        "BOUNDS\n"
        " UP BND       A 1 2               10\n"
        " UP           B                   9.\n" // the set's name is missing
        " FR BND       PLANT A\n"
        "ENDATA\n");
    EXPECT_EQ(coefficient("CAP  ONE", "PLANT A"), 1);
    EXPECT_EQ(coefficient("DEMAND 1", "A 1 2"), -.5);
    EXPECT_EQ(coefficient("CAP  ONE", "B"), 1.2345678901234567e+100);
    EXPECT_EQ(rhs("DEMAND 1"), -4); // held negated
    EXPECT_EQ(rhs("CAP  ONE"), 3);
    EXPECT_EQ(domain("A 1 2") + domain("PLANT A") + domain("B"),
              "C [0,10]C [-inf,inf]C [0,9]");
}

TEST_F(MpsRead, FreeFormGivesLongNamesTabsNumbersAsNamesAndAnyPlaces)
{
    good("NAME\ta_long_name\nROWS\n N\ttotal_cost\n G   a_very_long_row_name\n    L 3.5\n"
         "COLUMNS\n x total_cost 1 a_very_long_row_name 2\n a_very_long_column_name\t\t3.5 "
         "  "
         "3\n -7 3.5 8\nRHS\n a_very_long_row_name 4 3.5 5\nBOUNDS\n UP x 6\n"
         " UP 99 -7 8\n FR a_very_long_column_name\nENDATA\n");
    EXPECT_STREQ(model->body->modelname, "a_long_name");
    EXPECT_EQ(coefficient("3.5", "a_very_long_column_name"), 3);
    EXPECT_EQ(coefficient("3.5", "-7"), 8);
    EXPECT_EQ(rhs("3.5"), 5);
    EXPECT_EQ(domain("x") + domain("-7"), "C [0,6]C [0,8]");
    EXPECT_EQ(domain("a_very_long_column_name"), "C [-inf,inf]");
}

// Read as free form the first column line would be column A, row R1, value 3, row R2, value 5.
TEST_F(MpsRead, ALineThatFitsBothFormsIsFixedInAFixedFile)
{
    const std::string head = "NAME\nROWS\n N  COST\n L  R1\n L  R2\nCOLUMNS\n";
    const std::string both = "    A R1 3    R2               5\n";
    good(head + both + "    B         R1               7\nRHS\nENDATA\n");
    EXPECT_EQ(coefficient("R2", "A R1 3"), 5);
    good(head + both + " B R1 7\nRHS\nENDATA\n");
    EXPECT_EQ(coefficient("R2", "A"), 5);
    EXPECT_EQ(coefficient("R1", "A"), 3);
}

TEST_F(MpsRead, LinesMayHaveAnyLength)
{
    const std::string name(100000, 'n');
    good("* " + std::string(3000000, 'c') + "\nROWS\n N COST\n L " + name +
         "\nCOLUMNS\n X " + std::string(70000, ' ') + name + " 5\nRHS\nENDATA\n");
    EXPECT_EQ(coefficient(name, "X"), 5);
}

// ---- Head ----

TEST_F(MpsRead, SenseAndNameOfTheModel)
{
    for (const char *head :
         {"OBJSENSE MAX\n", "OBJSENSE\n    MAX\n", "objsense\nmaximize\n",
          "OBJSENSE\n* comment\n    MAXIMISE\n"}) {
        good(head + mps_with("RHS\n RHS COST 3\nENDATA\n"));
        EXPECT_EQ(model->body->sense, -1) << head;
        EXPECT_EQ(model->body->objcon, 3); // the caller's is -3
        EXPECT_EQ(model->body->obj[1], -2);
    }
    good(
        "OBJSENSE MIN\nNAME     my little  model  \nROWS\n N C\nCOLUMNS\n X C 1\nENDATA\n");
    EXPECT_EQ(model->body->sense, 1);
    EXPECT_STREQ(model->body->modelname, "my little  model");
    EXPECT_TRUE(warned("Warning: rhs section not found.\n"));
}

TEST_F(MpsRead, ObjnameChoosesAmongFreeRows)
{
    const std::string body =
        "ROWS\n N COST\n N OTHER\n G R1\nCOLUMNS\n X COST 1 OTHER 3\n X R1 1\n"
        "RHS\n RHS OTHER -7 COST 9\nENDATA\n";
    for (const char *head : {"NAME\nOBJNAME\n    OTHER\n", "OBJNAME OTHER\n"}) {
        good(head + body);
        EXPECT_EQ(model->body->obj[0], 3);
        EXPECT_EQ(model->body->objcon, 7);
        EXPECT_FALSE(warned("unconstrainted"));
    }
    good(body);
    EXPECT_EQ(model->body->obj[0], 1);
    EXPECT_EQ(model->body->objcon, -9);
    EXPECT_TRUE(warned("Warning: more than one unconstrainted rows,\n"
                       "         the first one is used for objective.\n"
                       "         line 3: OTHER\n"));
}

TEST_F(MpsRead, SectionNamesInAnyCaseAndInAnyOrder)
{
    good("rows\n n cost\n g r1\nColumns\n x cost 1 r1 1\nbounds\n up b x 3\n"
         "ranges\n rng r1 2\nrhs\n rhs r1 4\nBOUNDS\n lo b x 1\nendata\n");
    EXPECT_EQ(domain("x") + domain("Rgr1"), "C [1,3]C [0,2]");
    EXPECT_EQ(rhs("r1"), 6); // 4 <= r1 <= 6
}

// ---- Rows and columns ----

TEST_F(MpsRead, OddRowsAndColumns)
{
    const std::vector<std::pair<const char *, const char *>> cases = {
        {"ROWS\n G R1\nCOLUMNS\n X R1 1\nRHS\nENDATA\n", "Warning: no objective.\n"},
        {"ROWS\n N C\nCOLUMNS\n X C 1\nRHS\nENDATA\n", "Warning: no constraints.\n"},
        {"ROWS\n N C\n L R\nCOLUMNS\nRHS\n RHS R 1\nENDATA\n", "Warning: no columns.\n"},
        {"ROWS\nCOLUMNS\nRHS\nENDATA\n", ""}}; // nothing at all, as of an empty model
    for (const auto &[text, warning] : cases) {
        good(text);
        EXPECT_TRUE(warned(warning)) << text;
    }
    good("ROWS\n N C\n G R1\n G R2\nCOLUMNS\n X C 1 R1 1\n Y C 1 R2 1\n X R2 5\n" // split
         " X R1 7\n Y R1 0\n Y C 6\nRHS\nENDATA\n");
    EXPECT_EQ(model->body->numvars, 2);
    EXPECT_EQ(model->body->numnz, 3); // the zero is no entry
    EXPECT_EQ(coefficient("R2", "X"), 5);
    EXPECT_EQ(coefficient("R1", "X"), 7) << "the later of two entries";
    EXPECT_EQ(model->body->obj[1], 6);
    EXPECT_TRUE(warned("a column stands in two places.\n         line 8: X\n"));
    EXPECT_TRUE(warned("Warning: duplicate nonzeros.\n"));
}

TEST_F(MpsRead, UnknownNamesAreLeftOutWithWarningsThatAreCounted)
{
    std::string lines;
    for (int k = 0; k < 1000; k++) lines += "    Y         NOROW                3\n";
    good(mps_with(lines + "RHS\n    RHS       NOROW                3   R1            4\n"
                          "RANGES\n    RNG       NOROW                3\n"
                          "BOUNDS\n UP BND       NOCOL                3\nENDATA\n"));
    EXPECT_EQ(model->body->numnz, 3);
    EXPECT_EQ(rhs("R1"), -4);
    EXPECT_TRUE(warned(
        "Warning: row name in column section not defined.\n         line 10: NOROW\n"));
    EXPECT_TRUE(warned("         and 995 more\n"));
    EXPECT_TRUE(
        warned("Warning: row name in rhs section not defined.\n         line 1011:"));
    EXPECT_TRUE(warned("Warning: row name in ranges section not defined.\n"));
    EXPECT_TRUE(warned("Warning: column name in bound section not defined\n"));
    EXPECT_LT(log.size(), 2000u);
}

TEST_F(MpsRead, MarkersMakeIntegers)
{
    good("ROWS\n N C\nCOLUMNS\n A C 1\n M1 'MARKER' 'INTORG'\n B C 1\n M2 'MARKER' "
         "'INTEND'\n D C 1\n 'MARKER' 'INTORG'\n E C 1\n M 'MARKER' "
         "'INTORG'\nRHS\nENDATA\n");
    EXPECT_EQ(domain("A") + domain("B") + domain("D") + domain("E"),
              "C [0,inf]I [0,1]C [0,inf]I [0,1]");
    EXPECT_TRUE(warned("Warning: marker is wrong.\n         line 11: 'INTORG'\n"));
}

// ---- Right-hand sides and ranges ----

TEST_F(MpsRead, TheFirstSetAndTheFirstRightHandSideStand)
{
    good(mps_with(
        "RHS\n RHS1 R1 2\n RHS2 R2 3\n RHS1 R2 4 R1 9\n RHS1 COST 4\n"
        " RHS1 COST 5\nRANGES\n RNG1 R1 1\n RNG2 R2 1\n RNG1 R1 2\n"
        "BOUNDS\n UP BND1 X 3\n UP BND2 X 1\n UP BND2 Y 1\n UP BND1 Y 4\nENDATA\n"));
    EXPECT_EQ(rhs("R1"), 3); // 2 <= R1 <= 3
    EXPECT_EQ(rhs("R2"), 4);
    EXPECT_EQ(model->body->objcon, -4);
    EXPECT_EQ(model->body->numvars, 3); // one range
    EXPECT_EQ(domain("X") + domain("Y"), "C [0,3]C [0,4]");
    EXPECT_TRUE(warned("more than one set in rhs section, the first one is used.\n         "
                       "line 12: RHS2\n"));
    EXPECT_TRUE(warned("more than one set in ranges section"));
    EXPECT_TRUE(warned("more than one set in bounds section"));
    EXPECT_TRUE(warned("Warning: duplicate row in rhs section.\n         line 13: R1\n     "
                       "    line 15: COST\n"));
    EXPECT_TRUE(warned("Warning: duplicate range rows.\n"));
}

TEST_F(MpsRead, RangesBecomeEquationsWithAVariable)
{
    struct Case {
        char type;
        const char *rhs, *range, *side, *variable; // as it is held: '>' rows negated
    };
    const Case cases[] = {
        {'E', "10", "2", "= 12", "C [0,2]"},    {'E', "20", "-3", "= 20", "C [0,3]"},
        {'E', "30", "0", "= 30", "none"},       {'L', "40", "-4", "= 40", "C [0,4]"},
        {'G', "50", "5", "= 55", "C [0,5]"},    {'L', "60", "inf", "< 60", "none"},
        {'E', "70", "1e30", "> -70", "none"},   {'E', "80", "-inf", "< 80", "none"},
        {'G', "90", "0", "= 90", "none"},       {'G', "-inf", "", "> inf", "none"},
        {'L', "Infinity", "4", "< inf", "none"}};
    for (const Case &c : cases) {
        good(std::string("ROWS\n N C\n ") + c.type + " R\nCOLUMNS\n X R 1\nRANGES\n" +
             (*c.range ? std::string(" R R ") + c.range + "\n R C 3\n" : "") +
             "RHS\n R R " + c.rhs + "\nENDATA\n");
        EXPECT_EQ(model->body->senses[0] + (" " + shown(rhs("R"))), c.side);
        EXPECT_EQ(domain("RgR"), c.variable) << c.type << c.rhs << " " << c.range;
    }
    EXPECT_TRUE(warned("range of a row with infinite right-hand side ignored"));
    good("ROWS\n N C\n L R\nCOLUMNS\n RgR C 1\nRHS\n R R 4\nRANGES\n R R 3\nENDATA\n");
    EXPECT_EQ(domain("RgR_"), "C [0,3]") << "the plain name is taken";
    EXPECT_EQ(coefficient("R", "RgR_"), 1);
    good("ROWS\n N C\n N D\n L R\nCOLUMNS\n X R 1\nRHS\nRANGES\n R C 3 D 3\nENDATA\n");
    EXPECT_FALSE(warned("not defined")) << "a range of a free row says nothing";
}

// ---- Bounds ----

TEST_F(MpsRead, BoundLinesFollowTheTable)
{
    struct Case {
        const char *lines;
        const char *continuous, *integer; // domains of X outside and between markers
    };
    const Case cases[] = {
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
        {" FR B X\n UP B X 4\n", "C [-inf,4]", "I [-inf,4]"},
        {" MI B X\n", "C [-inf,inf]", "I [-inf,1]"},
        {" MI B X\n UP B X 4\n", "C [-inf,4]", "I [-inf,4]"},
        {" PL B X\n", "C [0,inf]", "I [0,inf]"},
        {" BV B X\n", "B [0,1]", "B [0,1]"},
        {" BV B X\n FX B X 1\n", "B [1,1]", "B [1,1]"},
        {" UP B X 1\n BV B X\n", "B [0,1]", "B [0,1]"},
        {" LI B X 2\n", "I [2,inf]", "I [2,inf]"},
        {" LI B X 2\n UI B X 7\n", "I [2,7]", "I [2,7]"},
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
    const std::string repeated = "Warning: duplicate bounds for a column.\n";
    for (const Case &one : cases) {
        const std::string tail = std::string("RHS\nBOUNDS\n") + one.lines + "ENDATA\n";
        good("ROWS\n N C\nCOLUMNS\n X C 1\n" + tail);
        EXPECT_EQ(domain("X"), one.continuous) << one.lines;
        const std::string lines = one.lines;
        EXPECT_EQ(warned(repeated + "         line 8: X\n"),
                  lines.starts_with(" UP B X ") && lines.find("LO") == std::string::npos &&
                      lines.size() > 11);
        good("ROWS\n N C\nCOLUMNS\n M 'MARKER' 'INTORG'\n X C 1\n" + tail);
        EXPECT_EQ(domain("X"), one.integer) << one.lines;
        EXPECT_EQ(
            warned("integer column with lower bound MI keeps its default upper bound"),
            lines == " MI B X\n");
    }
}

// ---- Sets and comments ----

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
        good(mps_with("RHS\n" + form + "ENDATA\n"));
        const ModelBody *body = model->body;
        ASSERT_EQ(body->numsos, 2) << form;
        EXPECT_EQ(body->sostype[0] + 10 * body->sostype[1], 21);
        EXPECT_EQ(body->sosbeg[1], 2);
        EXPECT_EQ(body->sosind[0], 0);
        EXPECT_EQ(body->soswt[3], 7);
    }
    // Members named like headers and with blanks.
    good("ROWS\n N  C\nCOLUMNS\n    S1        C                    1\n"
         "    A B       C                    1\nRHS\nSOS\n S2 set\n"
         "    S1                   3\n    A B                  4\nENDATA\n");
    EXPECT_EQ(model->body->numsos, 1);
    EXPECT_EQ(model->body->sosind[1], 1);
    EXPECT_EQ(model->body->soswt[1], 4);
}

TEST_F(MpsRead, DollarBeginsACommentUnlessItIsAName)
{
    good("$ a comment\nROWS\n N C $ cost\n L $R $ a row\nCOLUMNS\n X C 1 $R 2\n"
         " Y $R 3 $ four\n $Z C 4\n X $ nothing\nRHS\n RHS $R 5 $ six\nBOUNDS\n"
         " UP B $Z 7 $ eight\n FR B X $ nine\nENDATA\n");
    EXPECT_EQ(coefficient("$R", "X"), 2);
    EXPECT_EQ(coefficient("$R", "Y"), 3);
    EXPECT_EQ(rhs("$R"), 5);
    EXPECT_EQ(domain("$Z") + domain("X"), "C [0,7]C [-inf,inf]");
}

TEST_F(MpsRead, WarnsOfMarkersThatAreLeftOpenAndOfBoundsThatBinariesCannotHave)
{
    ASSERT_EQ(
        read("ROWS\n N C\n L R\nCOLUMNS\n M 'MARKER' 'INTORG'\n X R 1\nRHS\nENDATA\n"), 0);
    EXPECT_TRUE(warned("Warning: marker is wrong.\n"));
    EXPECT_EQ(domain("X"), "I [0,1]");
    ASSERT_EQ(
        read(mps_with("RHS\nBOUNDS\n BV B X\n UP B X 3\n BV B Y\n FX B Y 1\nENDATA\n")), 0);
    EXPECT_TRUE(
        warned("Warning: bounds of a binary variable are cut to 0 and 1.\n         X\n"));
    EXPECT_EQ(domain("X"), "B [0,1]");
    EXPECT_EQ(domain("Y"), "B [1,1]");
}
