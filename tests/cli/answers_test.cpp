// answers_test.cpp -- results in files: JSON, solutions with all values, converted models, parameters with comments
#include "cli/command.h"
#include "cli/json_check.h"
#include <filesystem>
#include <gmock/gmock.h>
#include <sstream>
using testing::HasSubstr;
using testing::Not;

namespace
{

class CliAnswers : public Command
{
  public:
    void SetUp() override
    {
        file_put("plan.mps", PLAN_MODEL);
        file_put("never.mps", INFEASIBLE_MODEL);
    }
    // The JSON of a call that ends with `code`.
    std::string json(std::vector<std::string> arguments, int code) const
    {
        arguments.insert(arguments.begin(), {"--quiet", "--json", "out.json"});
        EXPECT_EQ(run(arguments).exit_code, code);
        const std::string text = file_get("out.json");
        EXPECT_TRUE(is_json(text)) << text;
        return text;
    }
};

TEST(JsonCheck, KnowsJsonFromWhatLooksLikeIt)
{
    for (const char *good :
         {"null", "[]", "{}", " [1, -0.5e+3,{\"a\": \"\\u00e9\\n\xc3\xa9\"}]\n"})
        EXPECT_TRUE(is_json(good)) << good;
    for (const char *bad :
         {"", "nan", "inf", "-", "01", "1.", "[1,]", "{\"a\"}", "{a:1}", "\"\n\"",
          "\"\\x\"", "\"\xff\"", "\"\xc3\"", "1 2", "[1", "\"", "{\"a\":1,}"})
        EXPECT_FALSE(is_json(bad)) << bad;
}

TEST_F(CliAnswers, JsonTellsHowASolveEnded)
{
    const std::string optimal = json({"Presolve=0", "plan.mps"}, 0);
    for (const char *part :
         {"\"version\": \"3.0.3\"", "\"file\": \"plan.mps\"", "\"name\": \"plan\"",
          "\"sense\": \"maximise\"", "\"variables\": 3", "\"constraints\": 2",
          "\"nonzeros\": 5", "\"status\": \"optimal\"", "\"status_number\": 2",
          "\"objective\": 11,", "\"bound\": 11,", "\"gap\": 0,", "\"bound\": 0,",
          "\"nodes\": 0,", "\"error\": null"})
        EXPECT_THAT(optimal, HasSubstr(part));
    EXPECT_THAT(optimal, Not(HasSubstr("\"iterations\": 0,")));
    const std::string never = json({"never.mps"}, 0);
    EXPECT_THAT(never, HasSubstr("\"status\": \"infeasible"));
    EXPECT_THAT(never, HasSubstr("\"objective\": null, \"bound\": null, \"gap\": null"));
    EXPECT_THAT(json({"Presolve=0", "IterationLimit=0", "plan.mps"}, 0),
                HasSubstr("\"status\": \"iteration_limit\", \"status_number\": 7"));
}

TEST_F(CliAnswers, JsonIsValidWhateverNamesAndErrorsSay)
{
    EXPECT_THAT(json({"absent\"\\\xff\xc3\x28\xed\xa0\x80\n\x7f.mps"}, 1),
                HasSubstr("\"error\": {\"code\": 10003, "));
    file_put("odd.mps",
             "NAME a\"b\\c\xff\xc3\xa9\nROWS\n N o\nCOLUMNS\n x o -1\nRHS\nENDATA\n");
    EXPECT_THAT(json({"Presolve=0", "odd.mps"}, 0),
                HasSubstr("a\\\"b\\\\c\\ufffd\xc3\xa9"));
    file_put("whole.lp", "min x st c: x >= 1 general x end\n");
    EXPECT_THAT(json({"whole.lp"}, 1), HasSubstr("\"status\": \"error\""));
    file_put("empty.lp", "min 0\nst\nend\n");
    json({"empty.lp"}, 0);
    const std::string several = json({"plan.mps", "absent.mps", "never.mps"}, 1);
    EXPECT_EQ(several[0], '[');
    EXPECT_LT(several.find("\"plan.mps\""), several.find("\"absent.mps\""));
    EXPECT_LT(several.find("\"absent.mps\""), several.find("\"never.mps\""));
}

TEST_F(CliAnswers, JsonHasStandardOutputToItself)
{
    const Outcome told = run({"--json", "-", "plan.mps"});
    EXPECT_EQ(told.exit_code, 0);
    EXPECT_TRUE(is_json(told.out)) << told.out;
    EXPECT_THAT(told.err, HasSubstr("Optimal objective"));
    const Outcome silent = run({"--json=-", "--quiet", "absent.mps"});
    EXPECT_EQ(silent.exit_code, 1);
    EXPECT_TRUE(is_json(silent.out)) << silent.out;
    EXPECT_EQ(silent.err, "");
    EXPECT_EQ(run({"--json", "-", "--solution", "plan.mps"}).exit_code, 2);
    EXPECT_EQ(run({"--json", "missing/x.json", "plan.mps"}).exit_code, 1);
    if (std::filesystem::exists("/dev/full")) {
        EXPECT_EQ(run({"--json", "/dev/full", "plan.mps"}).exit_code, 1);
    }
}

TEST_F(CliAnswers, ASolutionFileHoldsValuesPricesAndBasis)
{
    run({"--solution=plan.txt", "plan.mps"});
    EXPECT_EQ(file_get("plan.txt"),
              "# Solution of model plan\n# Status 2 optimal\n# Objective 11\n"
              "[variables]\nname\tvalue\treduced_cost\tbasis\n"
              "x\t3\t1\tupper\ny\t1\t0\tbasic\nz\t0\t-2\tlower\n"
              "[constraints]\nname\tslack\tdual\tbasis\n"
              "hours\t0\t2\ttight\nmetal\t0\t0\tbasic\n");
    run({"--solution-file", "plan.txt", "--ranging", "plan.mps"});
    EXPECT_THAT(file_get("plan.txt"),
                HasSubstr("\tcost\tcost_low\tcost_up\tlower\tlower_low\t"));
    EXPECT_THAT(file_get("plan.txt"), HasSubstr("\trhs\trhs_low\trhs_up\n"));
    run({"--solution=plan.txt", "--ranging", "Presolve=0", "IterationLimit=0", "plan.mps"});
    EXPECT_THAT(file_get("plan.txt"), HasSubstr("# Status 7 iteration limit\n"));
    EXPECT_THAT(file_get("plan.txt"),
                Not(HasSubstr("cost_low"))); // no ranges of such a point
    run({"--solution=never.txt", "Presolve=0", "never.mps"});
    EXPECT_EQ(file_get("never.txt"), "# Solution of model never\n# Status 3 infeasible\n");
    file_put("whole.lp", "min x st c: x >= 1 general x end\n");
    file_put("never.txt", "older\n"); // must not pass for the result
    EXPECT_EQ(run({"--solution=never.txt", "whole.lp"}).exit_code, 1);
    EXPECT_FALSE(std::filesystem::exists("never.txt"));
    EXPECT_EQ(run({"--solution=a.txt", "plan.mps", "never.mps"}).exit_code, 2);
    EXPECT_EQ(run({"--ranging", "plan.mps"}).exit_code, 2);
}

TEST_F(CliAnswers, AModelIsConvertedAndTurnedRound)
{
    EXPECT_EQ(run({"--convert", "plan.mps", "plan.lp"}).exit_code, 0);
    EXPECT_THAT(run({"--solution", "plan.lp"}).out,
                HasSubstr("# Objective value 11\nx 3\ny 1\n"));
    EXPECT_EQ(run({"--convert", "plan.lp", "again.mps.gz"}).exit_code, 0);
    EXPECT_THAT(json({"again"}, 0),
                HasSubstr("\"objective\": -11,")); // MPS: minimised, signs turned
    EXPECT_THAT(json({"--minimise", "plan.mps"}, 0), HasSubstr("\"objective\": 0,"));
    EXPECT_THAT(json({"--maximize", "plan.mps"}, 0), HasSubstr("\"objective\": 11,"));
    EXPECT_EQ(run({"--convert", "--minimize", "plan.mps", "least.lp"}).exit_code, 0);
    EXPECT_THAT(file_get("least.lp"), HasSubstr("Minimize\n + 3 x + 2 y"));
    EXPECT_EQ(run({"--minimise", "--maximise", "plan.mps"}).exit_code, 2);
    EXPECT_EQ(run({"--convert", "plan.mps"}).exit_code, 2);
    EXPECT_EQ(run({"--convert", "plan.mps", "plan.sol"}).exit_code, 2);
    EXPECT_EQ(run({"--convert", "--solution", "plan.mps", "x.lp"}).exit_code, 2);
    EXPECT_EQ(run({"--convert", "plan.mps", "missing/x.lp"}).exit_code, 1);
    EXPECT_EQ(run({"--convert", "absent.mps", "x.lp"}).exit_code, 1);
    EXPECT_FALSE(std::filesystem::exists("x.lp"));
}

// The lines themselves are those of the library, as the compressed file shows.
TEST_F(CliAnswers, AParameterFileSaysWhatItsParametersDo)
{
    EXPECT_EQ(run({"TimeLimit=60", "TARV_PAR_BIGM=1e7", "ResultFile=set.prm",
                   "ResultFile=bare.prm.gz", "plan.mps"})
                  .exit_code,
              0);
    ASSERT_EQ(system("gzip -d bare.prm.gz"), 0);
    std::istringstream lines(file_get("set.prm"));
    std::string bare;
    int comments = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line[0] == '#')
            comments++;
        else
            bare += line + "\n";
    }
    EXPECT_EQ(comments, 2);
    EXPECT_EQ(bare, "TimeLimit  60\nTARV_PAR_BIGM  1e+07\n");
    EXPECT_EQ(file_get("bare.prm"), bare);
    EXPECT_EQ(run({"--params", "set.prm", "plan.mps"}).exit_code, 0);
}

} // namespace
