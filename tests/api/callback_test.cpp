// callback_test.cpp -- the caller's callback function: when it is called, and what it may ask
//
// That it stops a solve anywhere, what each moment can tell, and what is refused meanwhile is looked at in
// fuzz/api_watch.cpp.
#include "env/env.h"
#include "support/model_test.h"
#include "support/structured_gen.h"
#include <atomic>
#include <cmath>
#include <functional>
#include <map>
#include <thread>

namespace
{
struct Callback : ModelTest {
    std::map<int, int> calls; // by where
    std::string log;
    std::function<int(void *, int)> act = [](void *, int) { return 0; };

    static int enter(TVXmodel *model, void *cbdata, int where, void *usrdata)
    {
        Callback *test = static_cast<Callback *>(usrdata);
        EXPECT_EQ(model, test->model);
        test->calls[where]++;
        const char *line = nullptr;
        if (where == TVX_WHERE_MESSAGE) {
            EXPECT_EQ(TVXcbget(cbdata, where, TVX_CB_MESSAGE_TEXT, &line), 0);
            test->log += line;
        }
        return test->act(cbdata, where);
    }

    void SetUp() override
    {
        load(generated(gen_assignment, 20, 1));
        ASSERT_EQ(TVXsetcallbackfunc(model, enter, this), 0);
    }
    int solve(int presolve)
    {
        calls.clear();
        log.clear();
        EXPECT_EQ(TVXsetintparam(own(), "Presolve", presolve), 0);
        EXPECT_EQ(TVXresetmodel(model), 0);
        return TVXoptimize(model);
    }
};
} // namespace

TEST_F(Callback, is_called_from_everywhere_and_a_silent_one_changes_nothing)
{
    for (const int presolve : {0, 1}) {
        ASSERT_EQ(solve(presolve), 0);
        for (const int where : {TVX_WHERE_POLLING, TVX_WHERE_SIMPLEX, TVX_WHERE_MESSAGE})
            EXPECT_GT(calls[where], 0) << where;
        EXPECT_EQ(calls[TVX_WHERE_PRESOLVE] > 0, presolve == 1);
        const double objective = dbl("ObjVal"), iterations = dbl("IterCount");
        ASSERT_EQ(TVXsetcallbackfunc(model, nullptr, nullptr), 0);
        ASSERT_EQ(solve(presolve), 0);
        EXPECT_TRUE(calls.empty());
        EXPECT_EQ(dbl("ObjVal"), objective);
        EXPECT_EQ(dbl("IterCount"), iterations);
        ASSERT_EQ(TVXsetcallbackfunc(model, enter, this), 0);
    }
}

TEST_F(Callback, is_polled_by_solves_within_solves_and_else_inherited_by_none)
{
    const TestModel copy(TVXcopymodel(model));
    EXPECT_EQ(TVXoptimize(copy), 0);
    TVXenv *first = nullptr, *variant = nullptr, *inner = nullptr, *innermost = nullptr,
           *tuned = nullptr;
    ASSERT_EQ(env_inner(&first, own()), 0);
    ASSERT_EQ(env_variant(&variant, own()), 0); // as a search works in
    ASSERT_EQ(env_inner(&inner, variant), 0);
    ASSERT_EQ(env_inner(&innermost, inner), 0);
    ASSERT_EQ(env_variant(&tuned, innermost), 0);
    for (TVXenv *other : {first, inner}) TVXmsg(other, "a line\n"); // is not the caller's
    EXPECT_TRUE(calls.empty());
    for (TVXenv *outer : {own(), first, variant, inner, innermost, tuned}) {
        calls.clear();
        TVXgetenv(copy)->outer = outer;
        EXPECT_EQ(TVXresetmodel(copy), 0);
        EXPECT_EQ(TVXoptimize(copy), 0);
        EXPECT_GT(calls[TVX_WHERE_POLLING], 0);
        EXPECT_EQ(calls.size(), 1U); // and nothing else
    }
    for (TVXenv *other : {tuned, innermost, inner, variant, first}) env_free(other);
}

TEST_F(Callback, hears_every_line_also_unprinted_and_long_ones_cut)
{
    ASSERT_EQ(solve(1), 0);
    EXPECT_NE(log.find("Optimize a model with "), log.npos);
    ASSERT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
    log.clear();
    Output output;
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(output.text(), log);
    ASSERT_EQ(TVXsetintparam(own(), "OutputFlag", 0), 0);
    log.clear();
    act = [this](void *, int) { // what is printed meanwhile is not delivered too
        TVXmsg(own(), "heard\n");
        return 0;
    };
    TVXmsg(own(), "%s", std::string(5000, 'x').c_str());
    EXPECT_EQ(log, std::string(512, 'x'));
}

TEST_F(Callback, lets_its_own_thread_at_the_model_and_no_other)
{
    std::atomic<int> refused{0};
    std::atomic<bool> enough{false};
    const auto query = [this, &refused, &enough] {
        while (!enough) {
            int status = 0;
            double x[2];
            for (const int code :
                 {TVXgetintattr(model, "Status", &status),
                  TVXgetdblattrarray(model, "X", 0, 2, x), TVXupdatemodel(model),
                  TVXresetmodel(model), TVXfreemodel(model), TVXoptimize(model),
                  TVXsetdblattrelement(model, "Obj", 0, 1)})
                EXPECT_EQ(code, TVX_ERROR_OPTIMIZATION_IN_PROGRESS);
            EXPECT_EQ(TVXgetenv(model), nullptr);
            EXPECT_STREQ(TVXgetmerrormsg(model), "");
            refused++;
        }
        TVXterminate(model);
    };
    int count = 0;
    act = [&](void *, int) {
        EXPECT_GT(integer("NumVars"), 0);
        if (++count != 20) return 0;
        std::thread other(query);
        while (refused < 10) std::this_thread::yield();
        enough = true;
        other.join();
        return 0;
    };
    ASSERT_EQ(solve(0), 0);
    ASSERT_GE(count, 20);
    EXPECT_EQ(integer("Status"), TVX_INTERRUPTED);
}

TEST_F(Callback, hears_iterations_and_objective_up_to_those_of_the_result)
{
    double iterations = 0, objective = NAN;
    act = [&](void *data, int where) {
        if (where != TVX_WHERE_SIMPLEX) return 0;
        const double before = iterations;
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SIMPLEX_ITERATIONS, &iterations), 0);
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SIMPLEX_OBJECTIVE, &objective), 0);
        EXPECT_GE(iterations, before);
        return 0;
    };
    for (const int sense : {1, -1})
        for (const int presolve : {0, 1}) {
            ASSERT_EQ(TVXsetintattr(model, "ModelSense", sense), 0);
            iterations = 0;
            ASSERT_EQ(solve(presolve), 0);
            EXPECT_EQ(iterations, dbl("IterCount"));
            EXPECT_NEAR(objective, dbl("ObjVal"), 1e-6 * std::fabs(objective));
        }
}

TEST_F(Callback, ends_the_solve_with_its_code_whichever_call_returns_it)
{
    for (const char *text :
         {"max x+y st\n2x+2y<=3\n2x-y<=1\nbounds x<=3 y<=3",
          "max x+y st\n2x+2y<=3\n2x-y<=1\nbounds x<=3 y<=3 general x y"}) {
        load(std::string(text));
        ASSERT_EQ(TVXsetcallbackfunc(model, enter, this), 0);
        int count = 0, at = 0;
        act = [&](void *, int) { return ++count == at ? 77 : 0; };
        ASSERT_EQ(solve(0), 0);
        const int all = count;
        ASSERT_GT(all, 5);
        for (at = 1; at <= all; at++) {
            count = 0;
            EXPECT_EQ(solve(0), 77) << "call " << at << " of " << all;
            EXPECT_EQ(TVXsetintparam(own(), "Presolve", -1), 0);
        }
    }
}

TEST_F(Callback, misuse_is_told)
{
    int type = 0, size = 0, garbage = 5;
    TVXcallback function = nullptr;
    EXPECT_EQ(TVXgetcallbackfunc(model, &function), 0);
    EXPECT_EQ(function, enter);
    refused(TVX_ERROR_NULL_ARGUMENT, "Unable to query callback function",
            TVXgetcallbackfunc(model, nullptr));
    EXPECT_EQ(TVXsetcallbackfunc(nullptr, enter, nullptr), TVX_ERROR_NULL_ARGUMENT);
    for (int *data : {static_cast<int *>(nullptr), &garbage}) {
        EXPECT_EQ(TVXcbget(data, 2, TVX_CB_SECONDS, &size), TVX_ERROR_CALLBACK);
        EXPECT_EQ(TVXgetcbwhatinfo(data, TVX_CB_SECONDS, &type, &size), TVX_ERROR_CALLBACK);
    }
    act = [&](void *data, int) {
        for (const auto &[what, expected] : {std::pair{int{TVX_CB_SOLUTION_VALUES}, 21},
                                             {TVX_CB_MESSAGE_TEXT, 30},
                                             {TVX_CB_MIP_CUTS, 10}}) {
            EXPECT_EQ(TVXgetcbwhatinfo(data, what, &type, &size), 0);
            EXPECT_EQ(10 * type + size, expected);
        }
        EXPECT_EQ(TVXgetcbwhatinfo(data, 4000, &type, &size), TVX_ERROR_CALLBACK);
        EXPECT_EQ(TVXgetcbwhatinfo(data, 4001, nullptr, &size), TVX_ERROR_NULL_ARGUMENT);
        EXPECT_EQ(TVXcbget(data, 0, TVX_CB_SECONDS, nullptr), TVX_ERROR_NULL_ARGUMENT);
        return 0;
    };
    ASSERT_EQ(solve(0), 0);
}
