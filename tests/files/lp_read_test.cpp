// lp_read_test.cpp -- the LP format: what texts mean, what is refused and where, what is written
#include "files/files_support.h"
#include "support/comma_locale.h"
#include "support/inside.h"
#include <sstream>

struct LpFormat : Files {
    // What is written of the model that the text means, on one line and without what never changes.
    std::string meaning(const std::string &text)
    {
        if (read(text, "t.lp")) return message();
        EXPECT_EQ(TVXwrite(model, "w.lp"), 0);
        std::string written = file_get("w.lp");
        const std::pair<const char *, const char *> shorter[] = {
            {"Minimize\n", "min"}, {"\n\nSubject To\n", ";"},
            {"Bounds\n", ";"},     {"End\n", ""},
            {"\n", ","},           {",;", ";"}};
        for (const auto &[from, to] : shorter)
            for (size_t at = 0; (at = written.find(from)) != std::string::npos;)
                written.replace(at, strlen(from), to);
        return written;
    }
    void expect_meanings(const std::vector<std::pair<std::string, std::string>> &cases)
    {
        for (const auto &[text, expected] : cases)
            EXPECT_EQ(meaning(text), expected) << text;
    }
};

TEST_F(LpFormat, ObjectivesAndTerms)
{
    expect_meanings({
        {"min end", "min;;"},
        {"minimize\n\nst\n", "min;;"},
        {"MINIMUM cost : x end", "min + x;;"},
        {"min: x st:\n c: x > 1", "min + x; c: + x >= 1;"},
        {"\xef\xbb\xbfmin x\r\nsubject\tTo\r\n c1:x>=1\r\nEnd\r\nrest (((",
         "min + x; c1: + x >= 1;"},
        {"min\\note\n3 \\ +9y\nx\\\\\n-\ny end", "min + 3 x - y;;"},
        {"min 3x+2*y-x*4 - -z + 2 * 3 w end", "min - x + 2 y + z + 6 w;;"},
        {"min 2 x + 3 x + x - y + y + z end", "min + 6 x + 0 y + z;;"},
        {"min 2e1x + 3d1 + .5e-1y + 1.e + 4 e1 + 5 3",
         "Trouble reading file t.lp at line 1, column 42: '3': this cannot stand here\n"},
        {"min 2e1x + 3d1 + .5e-1y + 1.e + 4 e1 end",
         "min + 20 x + 3 d1 + 0.05 y + e + 4 e1;;"},
        {"min 3 + x - 5 + 2.5 end", "min + x + 0.5 Constant;; Constant = 1,"},
        {"min x + 7 Constant bounds Constant = 1", "min + x + 7 Constant;; Constant = 1,"},
        {"min x + 7 Constant bounds 1 <= Constant <= 1",
         "min + x + 7 Constant;; 1 <= Constant <= 1,"},
        {"min 2 Constant + 3 bounds Constant<=5", "min + 2 Constant + 3;; Constant <= 5,"},
        {"min x(1,2) + y[3] + a/b + _#$%&'!\"?@{|}~`.;,0 + \xc3\xa9\xff end",
         "min + x(1,2) + y[3] + a/b + _#$%&'!\"?@{|}~`.;,0 + \xc3\xa9\xff;;"},
    });
}

TEST_F(LpFormat, Constraints)
{
    expect_meanings({
        {"min x st x<1 x<=2 x=<3 x>4 x>=5 x=>6 x=7",
         "min + x; R0: + x <= 1, R1: + x <= 2, R2: + x <= 3, R3: + x >= 4, R4: + x >= 5, "
         "R5: + x >= 6, R6: + x = 7;"},
        {"min st c:\n x\n +\n y\n >=\n -\n 2\n - x - y >= 3",
         "min; c: + x + y >= -2, R1: - x - y >= 3;"},
        {"min st 3 >= x + y\n + z\n x + 1 + 2y - 4 = 3 - 6",
         "min; R0: + x + y + z <= 3, R1: + x + 2 y = 0;"},
        {"min st x + 2 <= 3 y - x + 5 c2: x <= 2 y\n c3: 0 x + y >= 1 2: y>=2\nx-1: y>=3",
         "min; R0: + 2 x - 3 y <= 3, c2: + x - 2 y <= 0, c3: + y >= 1, R0000003: + y >= 2, "
         "R0000004: + y >= 3;"},
        {"min st 1 <= x + y\n - z <= 5 c: 3 >= x >= -inf d: 4 >= y >= 4 e: 1 <= 2 + x <= 9",
         "min; R0: + x + y - z + RgR0 = 5, c: + x <= 3, d: + y = 4, e: + x + Rge = 7; RgR0 "
         "<= 4, Rge <= 8,"},
        {"min st a: 5 <= x <= 3", "min; a: + x + Rga = 3; 0 <= Rga <= -2,"},
        {"min Rga st a: 1 <= x <= 3 a: 2 <= x <= 5",
         "min + Rga; R0000000: + x + Rga_ = 3, R0000001: + x + Rga_1 = 5; Rga_ <= 2, Rga_1 "
         "<= 3,"},
        {"min st x - x + y <= 3 c: 0 <= 5 d: 1 <= 2 <= 4\n0 x >= -1",
         "min + 0 x; R0: + y <= 3, c: + 0 x <= 5, d: + Rgd = 2, R3: + 0 x >= -1; Rgd <= "
         "3,"},
        {"min Bin_ + st1 st bounds: x >= 1 + bin - free\n end >= 3 free + "
         "gen\nsemi-continuous free",
         "min + Bin_ + st1; R0000000: + x - C0000003 + C0000004 >= 1, R1: - 3 C0000004 + "
         "C0000005 - C0000006 >= 0;Semi-continuous, C0000004,"},
        {"min e1 st c: e1 <= 2e1 d: 2e1 >= 2e1 e1 + x",
         "min + e1; c: + e1 <= 20, d: + 20 e1 + x <= 20;"},
        {"min st x + y <= inf\n x - y >= -infinity",
         "min; R0: + x + y <= 1e+30, R1: + x - y >= -1e+30;"},
    });
}

TEST_F(LpFormat, BoundsTypesAndSets)
{
    expect_meanings({
        {"min x + y bounds x<=4 x>=-1 2<=y 3>=y end",
         "min + x + y;; -1 <= x <= 4, 2 <= y <= 3,"},
        {"min x + y bound 5>=x>=1 -Inf<=y<=+INFINITY",
         "min + x + y;; 1 <= x <= 5, y free,"},
        {"min x + y bounds -inf<=x<=-2 -inf<=y<=- 3",
         "min + x + y;; -infinity <= x <= -2, -infinity <= y <= -3,"},
        {"min x + y bounds x<=-2 0<=y<=-3", "min + x + y;; 0 <= x <= -2, 0 <= y <= -3,"},
        {"min x + free bounds x free free free 5 = x x free free = 3 bounds",
         "min + x + C0000001;; x free, C0000001 = 3,"},
        {"min x bounds x <= 1e20 x >= -1e30", "min + x;; x free,"},
        {"min x + y bin x GENERALS y bounds x<=3 y<=3",
         "min + x + y;; y <= 3,Binaries, x,Generals, y,"},
        {"min x+y+z+w binaries\n y\nINTEGER\n x\nints\n z\nint w bounds x<=7 z<=8 w<=9",
         "min + x + y + z + w;; x <= 7, z <= 8, w <= 9,Binaries, y,Generals, x z w,"},
        {"min x + y + z + w bounds -1<=x y<=7 binaries x y z w gen w",
         "min + x + y + z + w;;Binaries, x y z w,"},
        {"min x + y + z semis x y z integers y bin z bounds x<=5 2<=y",
         "min + x + y + z;; x <= 5, y >= 2, z <= 1,Generals, y z,Semi-continuous, x y z,"},
        {"min x+y+z SOS a : s2 :: x:1 y : -2.5e0\nS1::z:3 x:1e300 s1: S1:: S1 :: y:1",
         "min + x + y + z;;SOS, s0:  S2 :: x:1 y:-2.5, s1:  S1 :: z:3 x:1e+300, s2:  S1 "
         "::, s3:  S1 :: y:1,"},
        {"min s1+S1+end sos s1:S1::s1:1 S1:2 end:3 end",
         "min + s1 + S1 + C0000002;;SOS, s0:  S1 :: s1:1 S1:2 C0000002:3,"},
    });
}

TEST_F(LpFormat, WarnsOfWhatHasOneMeaningAllTheSame)
{
    const std::string unknown = "Warning: unknown variable '",
                      line6 = "' in bounds section\n         line 6\n",
                      line7 = "' in integer section\n         line 7\n";
    const std::pair<const char *, std::string> cases[] = {
        {"min x st c: x > 1\nc: x > 2\n1 >= x >= 2 bounds\nx < 2\n x < -3\n"
         "a free b = 1 c free d free e free f free g free\ngen q bin r\nend",
         unknown + "a" + line6 + unknown + "b" + line6 + unknown + "c" + line6 + unknown +
             "d" + line6 + unknown + "e" + line6 + "         and 2 more\n" + unknown + "q" +
             line7 + unknown + "r" + line7 +
             "Warning: a bound is given twice, the later one stands: 'x'\n         line 5\n"
             "Warning: negative upper bound under the default lower bound 0: 'x'\n"
             "Warning: constraint name used twice: 'c'\n         line 2\n"
             "Warning: lower side of a range above its upper side: '1'\n         line 3\n"},
        {"min x + y bounds x<=3 binary x y\nend\n\n\\ note\nbounds y<=5",
         "Warning: bounds of a binary variable are cut to 0 and 1: 'x'\n"
         "Warning: text behind the end is not read: 'bounds'\n         line 5\n"},
        {"min x + y bounds 1<=x binary x y end \\ note\n\n", ""},
        {"min x st c: x > 1\nend\n", ""}};
    for (const auto &[text, expected] : cases) {
        ASSERT_EQ(read(text, "t.lp"), 0) << message();
        EXPECT_EQ(warnings(), expected) << text;
    }
    ASSERT_EQ(read("min x st c: x > 1\n", "t.lp"), 0); // may be cut short
    EXPECT_NE(log.find("Warning: no End at the end of the file"), log.npos);
}

// Heads that are misspelt, or sections of other dialects, must not leave the names below them to the section above.
TEST_F(LpFormat, AWordThatMayHeadASectionIsNeverPassedOver)
{
    for (const char *word :
         {"generls", "Intgers", "GNERAL", "binaris", "semicontinuos", "sec", "SIN", "sos2",
          "Bonds", "free", "inf", "Lazy", "subject"}) {
        const std::string text =
            std::string("min x + y\nst\nc: x + y >= 1\nbinary\ny\n") + word + "\nx\nend";
        EXPECT_EQ(read(text, "t.lp"), TVX_ERROR_FILE_READ) << word;
        EXPECT_NE(message().find("line 6, column 1: '"), std::string::npos) << message();
    }
    // An unknown name among names is one, and so is a variable whose name looks like a head.
    ASSERT_EQ(read("min x + generls\nbinary\n x ghost\n ghost\n  generls\nend", "t.lp"), 0);
    EXPECT_EQ(domain("generls"), "B [0,1]");
}

TEST_F(LpFormat, RefusesWhatHasNoOrTwoMeaningsAndSaysWhere)
{
    const struct {
        std::string text, place;
        // clang-format off
    } cases[] = {
        {"", "line 1, column 1: the end of the file: the file must begin with"},
        {"min x + 3", "no constraints and no End"},
        {"min x + y\nbinary\n  y\n whole\n  x\nend", "line 4, "}, // left of the names
        {"min x + bin\ngeneral\n x\n bin\nend", "line 4, "}, // a variable, too
        {"subject to", "line 1, column 1: 'subject to'"},
        {"min x\nmax y", "line 2, column 1: 'max': this section must stand before"},
        {"min x\nbounds\nst\nc: x >= 1", "line 3, column 1: 'st'"},
        {"min x y", "column 7: 'y': this cannot stand here"},
        {"min 3 * x * y", "column 13: 'y': a product of two variables"}, {"min x^2", "column 6: '^': quadratic"},
        {"min x + [ x * y ] / 2", "column 9: '[': quadratic"}, {"min 2\u00a0x", "a blank or dash that is not"},
        {"min 2 x \u2212 y", "column 9: '\u2212': a blank or dash that is not"},
        {"min 3 (x + y)", "column 7: '(x': brackets"}, {"max: 3x+2y;", "column 10: 'y;'"},
        {"min x\nst\n \xc3\xa9: x +\n <= 2", "line 4, column 2: '<=': a number or a name"},
        {"min x\nst\n \xc3\xa9\xc3\xa9: ^", "line 3, column 6: '^'"},
        {"min x st c: x >=\nend", "line 2, column 1: 'end': a number or a name"},
        {"min x st c: x", "column 14: the end of the file: <=, >= or ="},
        {"min x st c1: x <= 1 <= 2", "column 21: '<=': a chain"},
        {"min x st 1 <= x >= 2", "column 17: '>=': the comparisons"},
        {"min x st 1 = x = 1", "column 16: '=': the comparisons"}, {"min x st 1 <= x <= y", "column 17: '<=': a chain"},
        {"min x st x <= y\n- z >= 2", "line 2, column 1: '-': name the constraints"},
        {"min x st x + inf <= 3", "column 12: '+': infinity"}, {"min inf", "column 5: 'inf': infinity"},
        {"min x st inf = x", "column 10: 'inf': infinity"},
        {"min x st inf <= x <= 5", "column 10: 'inf': the sides of the range exclude"},
        {"min 1e400 x", "column 5: '1e400': the number is too large"},
        {"min 1e308 x + 1e308 x", "column 13: '+': the sum of these terms is too large"},
        {"min x st c: x + 1e308 > -1e308", "column 10: 'c': the sum of the numbers"},
        {"min 1,5 x", "column 6: ',5': this is no name"}, {"min x bounds 2 x <= 4", "column 16: 'x': <=, >= or ="},
        {"min x bounds x <= y", "column 19: 'y': a number is missing"},
        {"min x bounds x <= 2 <= 4", "column 21: '<=': a number is missing"},
        {"min x bounds 1 <= x >= 4", "column 21: '>=': the comparisons"},
        {"min x bounds x = inf", "column 18: 'inf': a variable cannot be fixed"},
        {"min x bounds - free", "column 16: 'free': a number is missing"},
        {"min x gen x, y", "column 11: 'x,': this is no name"},
        {"min x st c: x <= 1 000\n y >= 2", "column 20: '000': a number cannot follow"},
        {"min x st x <= 1e5e3", "column 18: 'e3': this is no variable so far"},
        {"min x st\nc: x >= 1\nbounds:\nx <= 5", "line 3, column 1: 'bounds': the word"},
        {"min x st\nc: x >= 1\nlazy\n+ x <= 5", "line 3, column 1: 'lazy': this is neither"},
        {"min x + end st\nend + x >= 2\nx <= 1", "line 2, column 1: 'end': this ends"},
        {"min x bounds x <= -inf", "column 19: '-': the bound is infinite"},
        {"min x bounds inf <= x", "column 14: 'inf': the bound is infinite"},
        {"min x + 2 bin\nst\n", "column 11: 'bin': this could be a section"},
        {"min x + 2 end\nst\n", "line 1, column 11: 'end': this ends"},
        {"min e1 st x + 2e1 <= 4", "column 15: '2e1': this could be a number, or"},
        {"min x gen 3", "column 11: '3': only names"}, {"min x sos x:1", "column 11: 'x': S1:: or S2:: must begin"},
        {"min x sos S1:: y:1", "column 16: 'y': the set's member"},
        {"min x sos S1:: x:1 x:2", "column 20: 'x': the variable is in this set"},
        {"min x sos S1:: x", "column 16: 'x'"},
        {std::string("min x\n st \0 c: x>=1", 20), "line 2, column 5: the end of the file: a control"},
        {"min x \\ \x01\n", "control character"}};
    // clang-format on
    for (const auto &one : cases) {
        EXPECT_EQ(read(one.text, "t.lp"), TVX_ERROR_FILE_READ) << one.text;
        EXPECT_EQ(message().find("Trouble reading file t.lp at line "), 0u) << message();
        EXPECT_NE(message().find(one.place), std::string::npos)
            << one.text << ": " << message();
        EXPECT_EQ(log.find("Unexpected symbol at line "), 0u) << log;
        EXPECT_EQ(model, nullptr);
    }
}

TEST_F(LpFormat, LongNamesLinesAndTheLocaleDoNotMatter)
{
    const std::string name(100000, 'n');
    std::string text = "min ";
    for (int k = 0; k < 50000; k++) text += "+ 0.5 x";
    text +=
        " st " + name + ": 1.5" + name + " >= 2.25 -" + std::string(100001, '-') + "x end";
    CommaLocale comma;
    ASSERT_EQ(read(text, "t.lp"), 0) << message();
    EXPECT_EQ(row(name) + column("x"), 0);
    EXPECT_EQ(column(name), 1);
    EXPECT_EQ(model->body->vval[0], 1); // the row is held negated
    EXPECT_EQ(model->body->vval[1], -1.5);
    EXPECT_EQ(model->body->obj[0], 25000);
    EXPECT_EQ(round_trip("w.lp", Names::COMPARE), "");
}

// ---- Writing ----

TEST_F(LpFormat, LinesHave75BytesUnlessANameNeedsMore)
{
    std::string text = "max 0.1a + 123456789b + 1e100c + 0.333333333333333333d - 2 st";
    const std::string name(90, 'l');
    for (int k = 0; k < 40; k++) text += " + variable" + std::to_string(k);
    text += " + " + name + " >= 1000000 gen";
    for (int k = 0; k < 40; k++) text += " variable" + std::to_string(k);
    ASSERT_EQ(read(text, "t.lp"), 0) << message();
    ASSERT_EQ(round_trip("w.lp", Names::COMPARE), "");
    std::istringstream lines(file_get("w.lp"));
    int longer = 0, numbers = 0;
    for (std::string line; std::getline(lines, line);) {
        numbers +=
            line == " + 0.1 a + 123456789 b + 1e+100 c + 0.3333333333333333 d - 2 Constant";
        EXPECT_TRUE(line.size() <= 75 || (line == "   + " + name && !longer++)) << line;
    }
    EXPECT_EQ(numbers, 1);
}
