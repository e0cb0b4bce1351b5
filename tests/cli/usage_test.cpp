// usage_test.cpp -- the command line: what is refused, with which code and words
#include "cli/command.h"
#include <algorithm>
#include <gmock/gmock.h>
using testing::HasSubstr;

namespace
{

class CliUsage : public Command
{
  public:
    void SetUp() override { file_put("plan.mps", PLAN_MODEL); }
    // Refused as wrong usage: code 2, nothing solved, one line that holds `words`.
    void refuses(const std::vector<std::string> &arguments, const std::string &words) const
    {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exit_code, 2);
        EXPECT_TRUE(is_one_line(outcome.err));
        EXPECT_THAT(outcome.err, HasSubstr(words));
        EXPECT_EQ(outcome.out, "");
    }
};

TEST_F(CliUsage, HelpAndVersionGoToStandardOutput)
{
    for (const char *option : {"--help", "-h", "--version"}) {
        const Outcome outcome = run({option});
        EXPECT_EQ(outcome.exit_code, 0) << option;
        EXPECT_EQ(outcome.err, "") << option;
        EXPECT_THAT(outcome.out,
                    HasSubstr(option[2] == 'v' ? "Tarvex 3.0.3" : "ResultFile"))
            << option;
    }
}

TEST_F(CliUsage, ListsEveryPublicParameter)
{
    const Outcome outcome = run({"--parameters"});
    EXPECT_EQ(outcome.exit_code, 0);
    EXPECT_THAT(outcome.out, HasSubstr("\nTimeLimit "));
    EXPECT_THAT(outcome.out, HasSubstr("\nOutputFlag "));
    EXPECT_THAT(outcome.out, HasSubstr("0.0001  not used yet\nMIPGapAbs "));
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 64);
}

TEST_F(CliUsage, RefusesUnknownWords)
{
    refuses({}, "--help");
    refuses({"TimeLimit=5"}, "no model");
    refuses({"--nonsense", "plan.mps"}, "--nonsense");
    refuses({"NoSuchThing=5", "plan.mps"}, "'NoSuchThing'");
    refuses({"=5", "--start"}, "--start");
    refuses({"--solution=", "plan.mps"}, "'--solution=' needs a value");
    refuses({"-x", "plan.mps"}, "'-x'");
}

TEST_F(CliUsage, RefusesValuesThatAreNone)
{
    refuses({"TimeLimit=soon", "plan.mps"}, "'soon'");
    refuses({"TimeLimit=", "plan.mps"}, "a number");
    refuses({"TimeLimit=10s", "plan.mps"}, "'10s'");
    refuses({"TimeLimit=nan", "plan.mps"}, "'nan'");
    refuses({"TimeLimit=-1", "plan.mps"}, "TimeLimit");
    refuses({"Threads=1.5", "plan.mps"}, "whole number");
    refuses({"Threads=1e300", "plan.mps"}, "whole number");
    refuses({"MIPFocus=9", "plan.mps"}, "maximum is 3");
}

TEST_F(CliUsage, RefusesFilesThatCannotBeMeant)
{
    file_put("plan.bas", "ENDATA\n");
    refuses({"--start", "plan.mps", "plan.mps"}, ".bas");
    refuses({"ResultFile=plan.xyz", "plan.mps"}, ".sol");
    refuses({"ResultFile=a.sol", "plan.mps", "plan.mps"}, "one at a time");
}

TEST_F(CliUsage, AResultThatCouldNotBeWrittenIsToldBeforeTheSolve)
{
    const Outcome outcome = run({"ResultFile=missing/plan.sol", "plan.mps"});
    EXPECT_EQ(outcome.exit_code, 1);
    EXPECT_TRUE(is_one_line(outcome.err));
    EXPECT_THAT(outcome.err, HasSubstr("'missing'"));
    EXPECT_EQ(outcome.out, "");
}

TEST_F(CliUsage, AMessageOfSeveralLinesComesOnOne)
{
    file_put("broken.mps", "ROWS\n N cost\n Q  row\n");
    EXPECT_EQ(run({"broken.mps"}).err,
              "tarvex: cannot read 'broken.mps': MPS read error at line 3: Q  row; a row "
              "type is N, L, G or E\n");
}

} // namespace
