// callback_test.cpp -- lines of the log reach the caller's callback function
#include "frame/callback.h"
#include "support/lp_tarvex.h"
#include "support/scratch.h"
#include <gtest/gtest.h>
#include <string>

namespace
{

struct Seen {
    std::string text;
    int calls = 0;
    int code = -1;        // of a query made inside the function
    bool answers = false; // print from inside the function
};

int listen(TVXmodel *model, CallbackRecord *record, int where, void *usrdata)
{
    Seen *seen = static_cast<Seen *>(usrdata);
    EXPECT_EQ(record->magic, CALLBACK_MAGIC);
    EXPECT_EQ(where, 6);
    seen->text += record->message;
    seen->calls++;
    int vars = 0;
    seen->code = TVXgetintattr(model, "NumVars", &vars);
    if (seen->answers) TVXmsg(TVXgetenv(model), "heard\n");
    return 0;
}

struct MessageCallback : testing::Test {
    TestEnv env;
    LpModel lp;
    TVXmodel *model = nullptr;
    Seen seen;

    void SetUp() override
    {
        lp_add_var(&lp, -1, 0, 3);
        model = lp_load(env.env, &lp);
        ASSERT_NE(model, nullptr);
        TVXenv *own = TVXgetenv(model);
        own->cb_record =
            static_cast<CallbackRecord *>(MemAllocZero(1, sizeof(CallbackRecord)));
        own->cb_record->magic = CALLBACK_MAGIC;
        own->cb_record->model = model;
        own->cb_record->usrdata = &seen;
        own->cb_active = listen;
    }
    void TearDown() override { TVXfreemodel(model); }
};

} // namespace

TEST_F(MessageCallback, hears_every_line_of_a_solve_also_a_silent_one)
{
    Output silent;
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(silent.text(), "");
    EXPECT_NE(seen.text.find("Optimize a model with 0 rows, 1 columns"), std::string::npos);
    EXPECT_NE(seen.text.find("Optimal objective -3.0"), std::string::npos);

    ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "OutputFlag", 1), 0);
    seen.text.clear();
    Output output;
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(output.text(), seen.text);
}

TEST_F(MessageCallback, may_query_the_model_that_is_being_solved)
{
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(seen.code, 0);
    EXPECT_EQ(model->in_callback, 0);
}

TEST_F(MessageCallback, does_not_hear_what_it_prints_itself)
{
    seen.answers = true;
    TVXmsg(TVXgetenv(model), "once\n");
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.text, "once\n");
}

TEST_F(MessageCallback, cuts_a_long_message)
{
    TVXmsg(TVXgetenv(model), "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(seen.text, std::string(512, 'x'));
}

TEST_F(MessageCallback, is_not_passed_on_to_copies)
{
    TVXmodel *copy = TVXcopymodel(model);
    ASSERT_NE(copy, nullptr);
    seen = Seen{};
    ASSERT_EQ(TVXoptimize(copy), 0);
    EXPECT_EQ(seen.calls, 0);
    EXPECT_EQ(TVXfreemodel(copy), 0);
}
