// citizen_test.cpp -- the library in its host: a solve makes no files and takes no signals
//
// That it is silent when asked is looked at in tests/fuzz, threads in cli/solve_test.cpp, exported names in tests/install.
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
    Dice dice(1);
    load(gen_multi_period(&dice, 12).lp);
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
