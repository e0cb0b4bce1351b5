// answers_test.cpp -- results in files: JSON, solutions with all values, converted models, parameters with comments
#include "cli/command.h"
#include <filesystem>

namespace
{
// A strict reader: numbers as JSON has them, sound UTF-8, no name twice.
const char *const JUDGE = R"(
import json, sys
def once(pairs):
    assert len(dict(pairs)) == len(pairs)
text = open(sys.argv[1], 'rb').read().decode('utf-8', 'strict')
json.loads(text, parse_constant=lambda word: 1 / 0, object_pairs_hook=once)
)";

bool is_json(const std::string &file)
{
    return system(("python3 judge.py " + file + " 2>complaint").c_str()) == 0;
}

using CliAnswers = Command;

struct CliJson : Command {
    void SetUp() override
    {
        if (system("command -v python3 >/dev/null")) GTEST_SKIP() << "python3 is missing";
        file_put("judge.py", JUDGE);
        file_put("bad.json", "[nan]");
        ASSERT_FALSE(is_json("bad.json"));
    }
    // The JSON of a call that ends with `code`.
    static std::string json(Words words, int code)
    {
        words.insert(words.begin(), {"--quiet", "--json", "out.json"});
        EXPECT_EQ(run(words).exit_code, code);
        EXPECT_TRUE(is_json("out.json")) << file_get("complaint");
        return file_get("out.json");
    }
};

TEST_F(CliJson, TellsHowASolveEnded)
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

TEST_F(CliJson, TellsBoundAndGapOfAModelWithIntegers)
{
    const std::string whole = json({"whole.lp"}, 0);
    for (const char *part :
         {"\"integer_variables\": 1", "\"status\": \"optimal\"",
          "\"objective\": 2, \"bound\": 2, \"gap\": 0,", "\"error\": null"})
        EXPECT_THAT(whole, HasSubstr(part));
    const std::string never = json({"Presolve=0", "never_whole.lp"}, 0);
    EXPECT_THAT(never, HasSubstr("\"status\": \"infeasible\""));
    EXPECT_THAT(never, HasSubstr("\"objective\": null"));
}

TEST_F(CliJson, IsValidWhateverNamesAndErrorsSay)
{
    EXPECT_THAT(json({"absent\"\\\xff\xc3\x28\xed\xa0\x80\n\x7f.mps"}, 1),
                HasSubstr("\"error\": {\"code\": 10003, "));
    file_put("odd.mps",
             "NAME a\"b\\c\xff\xc3\xa9\nROWS\n N o\nCOLUMNS\n x o -1\nRHS\nENDATA\n");
    EXPECT_THAT(json({"Presolve=0", "odd.mps"}, 0),
                HasSubstr("a\\\"b\\\\c\\ufffd\xc3\xa9"));
    EXPECT_THAT(json({"broken.mps"}, 1), HasSubstr("\"status\": \"error\""));
    file_put("empty.lp", "min 0\nst\nend\n");
    json({"empty.lp"}, 0);
    const std::string several = json({"plan.mps", "absent.mps", "never.mps"}, 1);
    EXPECT_EQ(several[0], '[');
    EXPECT_LT(several.find("\"plan.mps\""), several.find("\"absent.mps\""));
    EXPECT_LT(several.find("\"absent.mps\""), several.find("\"never.mps\""));
}

TEST_F(CliJson, HasStandardOutputToItself)
{
    const Outcome told = run({"--json", "-", "plan.mps"});
    EXPECT_EQ(told.exit_code, 0);
    EXPECT_TRUE(is_json("stdout")) << told.out;
    EXPECT_THAT(told.err, HasSubstr("Optimal objective"));
    const Outcome silent = run({"--json=-", "--quiet", "absent.mps"});
    EXPECT_EQ(silent.exit_code, 1);
    EXPECT_TRUE(is_json("stdout")) << silent.out;
    EXPECT_EQ(silent.err, "");
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
    EXPECT_THAT(file_get("plan.txt"), Not(HasSubstr("cost_low"))); // has no ranges
    run({"--solution=never.txt", "Presolve=0", "never.mps"});
    EXPECT_EQ(file_get("never.txt"), "# Solution of model never\n# Status 3 infeasible\n");
}

TEST_F(CliAnswers, AModelIsConvertedAndTurnedRound)
{
    ends(0, {"--convert", "plan.mps", "plan.lp"});
    ends(0, {"--convert", "plan.lp", "again.mps.gz"});
    ends(0, {"--convert", "--minimize", "plan.mps", "least.lp"});
    EXPECT_THAT(file_get("least.lp"), HasSubstr("Minimize\n + 3 x + 2 y"));
    ends(0, {"--solution", "plan.lp"}, "# Objective value 11\nx 3\ny 1\n");
    ends(0, {"--solution", "again"}, "# Objective value -11\n"); // MPS minimises
    ends(0, {"--solution", "--minimise", "plan.mps"}, "# Objective value 0\n");
    ends(0, {"--solution", "--maximize", "plan.mps"}, "# Objective value 11\n");
}

// The lines themselves are those of the library, as the compressed file shows.
TEST_F(CliAnswers, AParameterFileSaysWhatItsParametersDo)
{
    EXPECT_EQ(run({"TimeLimit=60", "TARV_PAR_BIGM=1e7", "ResultFile=set.prm",
                   "ResultFile=bare.prm.gz", "plan.mps"})
                  .exit_code,
              0);
    ASSERT_EQ(system("gzip -d bare.prm.gz"), 0);
    EXPECT_EQ(file_get("bare.prm"), "TimeLimit  60\nTARV_PAR_BIGM  1e+07\n");
    ASSERT_EQ(system("grep -v '^#' set.prm | cmp - bare.prm"), 0);
    EXPECT_EQ(system("test $(grep -c '^# ' set.prm) = 2"), 0);
    EXPECT_EQ(run({"--params", "set.prm", "plan.mps"}).exit_code, 0);
}
} // namespace
