// citizen_test.cpp -- the library in its host: no files and signals of its own, and a point in numbers in any locale
//
// That it is silent when asked is looked at in tests/fuzz, threads in cli/solve_test.cpp, exported names in
// tests/install.
#include "support/comma_locale.h"
#include "support/model_test.h"
#include "support/structured_gen.h"
#include <csignal>

namespace
{
// What every signal leads to, and how many files there are.
std::string seen_from_outside()
{
    std::string all;
    for (int number = 1; number < NSIG; number++) {
        struct sigaction now = {};
        sigaction(number, nullptr, &now);
        all += testing::PrintToString(now.sa_handler) + std::to_string(now.sa_flags) + " ";
    }
    const auto files = std::filesystem::directory_iterator(".");
    return all + std::to_string(std::distance(begin(files), end(files)));
}

struct Inside {
    const std::string before = seen_from_outside();
    int lines = 0;
    int changed = 0;
};

int look(TVXmodel *, void *, int where, void *usrdata)
{
    Inside *inside = static_cast<Inside *>(usrdata);
    inside->lines += where == TVX_WHERE_MESSAGE;
    inside->changed += seen_from_outside() != inside->before;
    return 0;
}
} // namespace

TEST_F(ModelTest, a_solve_makes_no_file_and_takes_no_signal)
{
    const Scratch scratch;
    setenv("TMPDIR", scratch.path.c_str(), 1);
    load(generated(gen_multi_period, 12, 1));
    Inside inside;
    ASSERT_EQ(TVXsetcallbackfunc(model, look, &inside), 0);
    for (const int method : {0, 1}) {
        ASSERT_EQ(TVXsetintparam(own(), "LPMethod", method), 0);
        ASSERT_EQ(TVXresetmodel(model), 0);
        ASSERT_EQ(TVXoptimize(model), 0);
    }
    EXPECT_GE(inside.lines, 8);
    EXPECT_EQ(inside.changed, 0);
    EXPECT_EQ(seen_from_outside(), inside.before);
    unsetenv("TMPDIR");
}

TEST_F(ModelTest, models_parameters_and_messages_have_a_point_in_any_locale)
{
    const CommaLocale comma;
    if (!comma.in_force)
        GTEST_SKIP() << "the C library does not take the locale made for this test";
    double value = 0;
    file_put("in.prm", "TimeLimit 2.5\nCutoff 123456789.123456789123456789\n");
    ASSERT_EQ(TVXreadparams(env.env, "in.prm"), 0);
    ASSERT_EQ(TVXgetdblparam(env.env, "TimeLimit", &value), 0);
    EXPECT_EQ(value, 2.5);
    ASSERT_EQ(TVXgetdblparam(env.env, "Cutoff", &value), 0);
    EXPECT_EQ(value, 123456789.123456789123456789);
    ASSERT_EQ(TVXsetdblparam(env.env, "Cutoff", 1e100), 0);
    ASSERT_EQ(TVXwriteparams(env.env, "out.prm"), 0);
    EXPECT_NE(file_get("out.prm").find("TimeLimit  2.5\n"), std::string::npos);
    EXPECT_EQ(TVXsetdblparam(env.env, "Heuristics", 1.5), TVX_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_STREQ(TVXgeterrormsg(env.env),
                 "Unable to set parameter Heuristics to value 1.5 (maximum is 1)");

    file_put("half.mps", "ROWS\n N obj\n G c\nCOLUMNS\n x obj 0.5 c 1\n y obj 1.25 c 2\n"
                         "RHS\n r c 3.75\nBOUNDS\n UP b x 1.5\nENDATA\n");
    for (const char *file : {"half.mps", "copy.mps"}) {
        TVXfreemodel(model);
        ASSERT_EQ(TVXreadmodel(env.env, file, &model), 0);
        EXPECT_DOUBLE_EQ(objective(), 0.5 * 1.5 + 1.25 * 1.125);
        ASSERT_EQ(TVXwrite(model, "copy.mps"), 0);
    }
    ASSERT_EQ(TVXwrite(model, "half.sol"), 0);
    EXPECT_NE(file_get("half.sol").find("y 1.125\n"), std::string::npos);
    EXPECT_STREQ(localeconv()->decimal_point, ","); // the caller's is still in force
}
