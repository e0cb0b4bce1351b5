// usage_test.cpp -- the command line: what is refused, with which code and words
#include "cli/command.h"
#include <algorithm>

using CliUsage = Command;

TEST_F(CliUsage, HelpVersionAndParametersGoToStandardOutput)
{
    ends(0, {"--help"}, "ResultFile");
    ends(0, {"-h"}, "ResultFile");
    ends(0, {"--version"}, "Tarvex 3.0.3");
    const Outcome list = ends(0, {"--parameters"}, "1e-10\nOptimalityTol ");
    EXPECT_THAT(list.out, HasSubstr("\nTimeLimit "));
    EXPECT_THAT(list.out, HasSubstr("\nOutputFlag "));
    EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 64);
    file_put("tarvex.env", "LPMethod 0\n");
    const Outcome two = ends(0, {"--parameters", "lp-method", "TARV_PAR_BIGM"},
                             "LPMethod: int, 0 to 2, default 1\n"
                             "  set to 0 by tarvex.env\n");
    EXPECT_THAT(two.out, HasSubstr("  Words: primal (0), dual (1), barrier (2)\n"));
    EXPECT_THAT(two.out, HasSubstr("\nTARV_PAR_BIGM: double, 10000 to 1e+13, default 1e+06"
                                   "\n  Not used yet."));
}

TEST_F(CliUsage, AttributesAreListedAndDescribed)
{
    const Outcome list = ends(0, {"--attributes"}, "\nX ");
    EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 97);
    EXPECT_THAT(list.out, testing::ContainsRegex("\nSense +char +constraint +yes\n"));
    EXPECT_THAT(list.out,
                testing::ContainsRegex("\nIISSOS +int +SOS +no +not filled yet\n"));
    const Outcome two = ends(0, {"--attributes", "v_basis", "iisub"},
                             "VBasis: int, of each variable, set: at once\n  0 basic, ");
    EXPECT_THAT(two.out,
                HasSubstr("\n  For an LP only. A start basis needs all of VBasis"));
    EXPECT_THAT(two.out, HasSubstr("\nIISUB: int, of each variable, set: no\n"
                                   "  Not filled yet. 1 if the bound belongs"));
}

TEST_F(CliUsage, WrongUsageIsRefusedInOneLineAndNothingIsSolved)
{
    file_put("plan.bas", "ENDATA\n");
    file_put("TimeLimit=5", PLAN_MODEL); // a parameter, whatever stands in the folder
    // clang-format off
    const Case cases[] = {
        {"--help", {}}, {"no model", {"TimeLimit=5"}}, {"--nonsense", {"--nonsense", "plan.mps"}},
        {"'NoSuchThing'", {"NoSuchThing=5", "plan.mps"}}, {"--start", {"=5", "--start"}},
        {"'--solution=' needs a value", {"--solution=", "plan.mps"}},
        {"'--time-limit' needs a value", {"--time-limit", "--presolve", "plan.mps"}}, {"'-x'", {"-x", "plan.mps"}},
        {"", {"", "plan.mps"}}, {"'soon'", {"TimeLimit=soon", "plan.mps"}}, {"a number", {"TimeLimit=", "plan.mps"}},
        {"'10s'", {"TimeLimit=10s", "plan.mps"}}, {"'nan'", {"TimeLimit=nan", "plan.mps"}},
        {"TimeLimit", {"TimeLimit=-1", "plan.mps"}}, {"whole number", {"Threads=1.5", "plan.mps"}},
        {"whole number", {"Threads=1e300", "plan.mps"}}, {"maximum is 3", {"MIPFocus=9", "plan.mps"}},
        {"primal, dual, barrier", {"--method", "dul", "plan.mps"}}, {".bas", {"--start", "plan.mps", "plan.mps"}},
        {".sol", {"ResultFile=plan.xyz", "plan.mps"}}, {"one at a time", {"ResultFile=a.sol", "plan.mps", "plan.mps"}},
        {"", {"--solution=a.txt", "plan.mps", "never.mps"}}, {"", {"ResultFile=c.ilp", "never.mps"}},
        {"", {"--ranging", "plan.mps"}}, {"", {"--ranging=1", "plan.mps"}},
        {"", {"--json", "-", "--solution", "plan.mps"}}, {"", {"--maximise=false", "plan.mps"}},
        {"", {"--minimise", "--maximise", "plan.mps"}}, {"", {"--convert", "plan.mps"}},
        {"", {"--convert=no", "plan.mps", "x.lp"}}, {"", {"--convert", "plan.mps", "plan.sol"}},
        {"", {"--convert", "plan.mps", "c.ilp"}}, {"", {"--convert", "--solution", "plan.mps", "x.lp"}},
        {"once", {"-", "-"}}, {"mps or lp", {"--format", "xls", "-"}},
        {"standard input", {"--format", "mps", "plan.mps"}},
        {"did you mean '--time-limit'", {"--tme-limit", "5", "plan.mps"}},
        {"did you mean '--solution'", {"--solutoin", "plan.mps"}},
        {"did you mean 'TimeLimit'", {"TimLimit=5", "plan.mps"}},
        {"did you mean 'Presolve'", {"--parameters", "Pressolve"}}, {"did you mean 'Kappa'", {"--attributes", "Kapa"}},
        {"excludes", {"--attributes", "--parameters"}},
        {"take names, not '--convert'", {"--attributes", "Pi", "--convert"}},
        {"take names, not '--json'", {"--parameters", "--json", "-"}},
        {"take names, not 'Cuts=2'", {"--parameters", "Cuts=2"}},
        {"'plan.mps' was taken for the value of TimeLimit", {"--time-limit", "plan.mps"}}};
    // clang-format on
    for (const auto &one : cases) ends(2, one.words, one.said);
    for (const char *option : {"--json", "--start", "--params", "--solution-file",
                               "--log-file", "--time-limit", "--method", "--format"}) {
        ends(2, {"plan.mps", option}, "needs a value");
        for (const char *next : {"", "--quiet", "--presolve=off", "--"})
            ends(2, {option, next, "plan.mps"}, "needs a value");
        ends(2, {std::string(option) + "=", "plan.mps"}, "needs a value");
    }
    // No log is begun by a call that is refused for its words.
    file_put("tarvex.env", "LogFile begun.log\n");
    ends(2, {"NoSuchThing=5", "plan.mps"}, "'NoSuchThing'");
    ends(2, {"--convert", "plan.mps"});
    std::filesystem::remove("tarvex.env");
    const auto files = std::filesystem::directory_iterator(".");
    EXPECT_EQ(std::distance(begin(files), end(files)), 9); // models, streams, two above
}

TEST_F(CliUsage, WhatFailsBeforeTheSolveIsToldInOneLine)
{
    file_put("plan.txt", PLAN_MODEL);
    file_put("other.bas", "NAME other\n XL stranger  hours\nENDATA\n");
    std::filesystem::create_directory("folder.mps");
    // clang-format off
    const Case cases[] = {
        {"absent.mps", {"absent.mps"}}, {"folder.mps", {"folder.mps"}},
        {"tarvex: cannot read 'broken.mps': MPS read error at line 3: Q  row; a "
         "row type is N, L, G or E\n",
         {"broken.mps"}},
        {"none with .mps", {"afiro"}}, {"tarvex - <FILE", {"plan.txt"}},
        {"'missing'", {"ResultFile=missing/plan.sol", "plan.mps"}},
        {"missing/run.log", {"LogFile=missing/run.log", "plan.mps"}}, {"", {"--json", "missing/x.json", "plan.mps"}},
        {"", {"--convert", "plan.mps", "missing/x.lp"}}, {"", {"--convert", "absent.mps", "x.lp"}},
        {"absent.prm", {"--params", "absent.prm", "plan.mps"}}, {"stranger", {"--start", "other.bas", "plan.mps"}},
        {"absent.bas", {"--start", "absent.bas", "plan.mps"}}};
    // clang-format on
    for (const auto &one : cases)
        EXPECT_THAT(ends(1, one.words, one.said).out, Not(HasSubstr("Optimal objective")));
    EXPECT_FALSE(std::filesystem::exists("x.lp"));
    // The next model is solved all the same.
    EXPECT_THAT(ends(1, {"plan.mps", "absent.mps", "never.mps"}, "absent.mps").out,
                testing::ContainsRegex("plan: 2 rows(.|\n)*never: 1 rows"));
}
