// callback_test.cpp -- lines of the log reach the caller's callback function
#include "frame/callback.h"
#include "support/model_test.h"

namespace
{

struct Seen {
    std::string text;
    int calls = 0;
    int code = -1;        // of a query made inside the function
    bool answers = false; // print from inside the function
    bool stops = false;   // ask for an interruption from there
};

int listen(TVXmodel *model, CallbackRecord *record, int where, void *usrdata)
{
    Seen *seen = static_cast<Seen *>(usrdata);
    EXPECT_EQ(where, 6);
    seen->text += record->message;
    seen->calls++;
    int vars = 0;
    seen->code = TVXgetintattr(model, "NumVars", &vars);
    if (seen->stops) TVXterminate(model);
    if (seen->answers) TVXmsg(TVXgetenv(model), "heard\n");
    return 0;
}

struct MessageCallback : ModelTest {
    Seen seen;

    void SetUp() override
    {
        LpModel lp;
        lp_add_var(&lp, -1, 0, LP_INFINITY);
        lp_add_row_entries(&lp, {{0, 2}}, '<', 6);
        load(lp);
        CallbackRecord *record =
            static_cast<CallbackRecord *>(MemAllocZero(1, sizeof(CallbackRecord)));
        record->magic = CALLBACK_MAGIC;
        record->model = model;
        record->usrdata = &seen;
        own()->cb_record = record;
        own()->cb_active = listen;
    }
};

} // namespace

TEST_F(MessageCallback, hears_every_line_of_a_solve_also_a_silent_one_and_may_query)
{
    Output silent;
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(silent.text(), "");
    EXPECT_NE(seen.text.find("Optimize a model with 1 rows, 1 columns"), std::string::npos);
    EXPECT_NE(seen.text.find("Optimal objective -3.0"), std::string::npos);
    EXPECT_EQ(seen.code, 0);
    EXPECT_EQ(model->in_callback, 0);

    ASSERT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
    seen.text.clear();
    Output output;
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(output.text(), seen.text);
}

TEST_F(MessageCallback, hears_others_only_and_a_long_message_cut)
{
    TVXmodel *copy = TVXcopymodel(model);
    ASSERT_EQ(TVXoptimize(copy), 0); // it is not passed on to copies
    EXPECT_EQ(seen.calls, 0);
    EXPECT_EQ(TVXfreemodel(copy), 0);
    seen.answers = true;
    TVXmsg(own(), "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.text, std::string(512, 'x'));
}

TEST_F(MessageCallback, may_stop_a_solve_and_the_next_one_is_not_stopped)
{
    seen.stops = true;
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(integer("Status"), TVX_INTERRUPTED);
    seen.stops = false;
    EXPECT_EQ(objective(), -3);
}
