// callback_test.cpp -- the caller's callback function: when it is called, and what it may ask
//
// That it stops a solve anywhere is looked at in fuzz/corpus_test.cpp and models/limits_test.cpp.
#include "env/env.h"
#include "support/model_test.h"
#include "support/structured_gen.h"
#include <atomic>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>
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
        Dice dice(1);
        load(gen_assignment(&dice, 20).lp);
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

double number(void *cbdata, int where, int what)
{
    double value = NAN;
    EXPECT_EQ(TVXcbget(cbdata, where, what, &value), 0) << what;
    return value;
}

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
    TVXmodel *copy = TVXcopymodel(model); // copies do not inherit it
    calls.clear();
    EXPECT_EQ(TVXoptimize(copy), 0);
    EXPECT_TRUE(calls.empty());
    TVXenv *inner =
        nullptr; // nor do environments of inner solves: their lines are not the caller's
    ASSERT_EQ(env_inner(&inner, own()), 0);
    TVXmsg(inner, "a line\n");
    EXPECT_TRUE(calls.empty());
    env_free(inner);
    TVXgetenv(copy)->outer = own(); // as in a solve within the solve of the model
    EXPECT_EQ(TVXresetmodel(copy), 0);
    EXPECT_EQ(TVXoptimize(copy), 0);
    EXPECT_GT(calls[TVX_WHERE_POLLING], 0);
    EXPECT_EQ(calls.size(), 1U);
    TVXfreemodel(copy);
}

TEST_F(Callback, is_polled_by_solves_within_solves)
{
    TVXmodel *copy = TVXcopymodel(model);
    TVXenv *variant = nullptr, *inner = nullptr, *innermost = nullptr, *tuned = nullptr;
    ASSERT_EQ(env_variant(&variant, own()), 0); // as a search works in
    ASSERT_EQ(env_inner(&inner, variant), 0);
    ASSERT_EQ(env_inner(&innermost, inner), 0);
    ASSERT_EQ(env_variant(&tuned, innermost), 0);
    for (TVXenv *outer : {variant, inner, innermost, tuned}) {
        calls.clear();
        TVXgetenv(copy)->outer = outer;
        EXPECT_EQ(TVXresetmodel(copy), 0);
        EXPECT_EQ(TVXoptimize(copy), 0);
        EXPECT_GT(calls[TVX_WHERE_POLLING], 0);
        EXPECT_EQ(calls.size(), 1U); // and nothing else
    }
    for (TVXenv *other : {tuned, innermost, inner, variant}) env_free(other);
    TVXfreemodel(copy);
}

TEST_F(Callback, hears_every_line_also_unprinted_and_long_ones_cut)
{
    ASSERT_EQ(solve(1), 0);
    EXPECT_NE(log.find("Optimize a model with " + std::to_string(integer("NumConstrs")) +
                       " rows"),
              std::string::npos);
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
                  TVXoptimize(model), TVXsetdblattrelement(model, "Obj", 0, 1)})
                EXPECT_EQ(code, TVX_ERROR_OPTIMIZATION_IN_PROGRESS);
            EXPECT_EQ(TVXgetenv(model), nullptr);
            EXPECT_STREQ(TVXgetmerrormsg(model), "");
            refused++;
        }
        TVXterminate(model);
    };
    std::thread other;
    int count = 0;
    act = [&](void *, int) {
        EXPECT_GT(integer("NumVars"), 0);
        count++;
        if (count == 1) other = std::thread(query);
        if (count != 20) return 0;
        while (refused < 10) std::this_thread::yield();
        enough = true;
        other.join();
        return 0;
    };
    ASSERT_EQ(solve(0), 0);
    ASSERT_GE(count, 20);
    EXPECT_EQ(integer("Status"), TVX_INTERRUPTED);
}

TEST_F(Callback, may_ask_for_what_belongs_to_the_moment)
{
    double iterations = 0, objective = NAN;
    act = [&](void *data, int where) {
        EXPECT_GE(number(data, where, TVX_CB_SECONDS), 0);
        double any = 0;
        for (const int what :
             {0, 999, 1005, int{TVX_CB_MIP_NODES}, int{TVX_CB_BARRIER_ITERATIONS}})
            EXPECT_EQ(TVXcbget(data, where, what, &any), TVX_ERROR_CALLBACK) << what;
        EXPECT_EQ(TVXcbget(data, TVX_WHERE_NODE, TVX_CB_NODE_VALUES, &any),
                  TVX_ERROR_DATA_NOT_AVAILABLE);
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SECONDS, nullptr), TVX_ERROR_NULL_ARGUMENT);
        int count = 0;
        for (int what = TVX_CB_PRESOLVE_COLUMNS; what <= TVX_CB_PRESOLVE_COEFFICIENTS;
             what++)
            EXPECT_EQ(TVXcbget(data, TVX_WHERE_PRESOLVE, what, &count),
                      where == TVX_WHERE_PRESOLVE ? 0 : TVX_ERROR_CALLBACK);
        EXPECT_GE(count, 0);
        if (where == TVX_WHERE_SIMPLEX) {
            const double now = number(data, where, TVX_CB_SIMPLEX_ITERATIONS);
            EXPECT_GE(now, iterations);
            iterations = now;
            objective = number(data, where, TVX_CB_SIMPLEX_OBJECTIVE);
            EXPECT_GE(number(data, where, TVX_CB_SIMPLEX_PRIMAL_INFEASIBILITY), 0);
            EXPECT_GE(number(data, where, TVX_CB_SIMPLEX_DUAL_INFEASIBILITY), 0);
            int perturbed = -1;
            EXPECT_EQ(TVXcbget(data, where, TVX_CB_SIMPLEX_PERTURBED, &perturbed), 0);
            EXPECT_TRUE(perturbed >= 0 && perturbed <= 2);
        }
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

// At any moment, also when lines after the run are logged and the solution is there already.
TEST_F(Callback, queries_that_would_work_on_the_running_simplex_are_refused)
{
    int refused = 0;
    act = [&](void *, int) {
        double value = 0;
        int norms = 0;
        const int first = 0;
        std::vector<int> codes = {
            TVXgetdblattr(model, "Kappa", &value), TVXgetdblattr(model, "N2Kappa", &value),
            TVXgetintattr(model, "HasDualNorm", &norms),
            TVXstrongbranch(model, 1, &first, 1, &value, &value, nullptr)};
        for (const char *name : {"SAObjLow", "SALBUp", "SAUBLow", "SARHSLow", "SARHSUp",
                                 "VDualNorm", "CDualNorm"})
            codes.push_back(TVXgetdblattrelement(model, name, 0, &value));
        for (const int code : codes) {
            EXPECT_THAT(code, testing::AnyOf(TVX_ERROR_OPTIMIZATION_IN_PROGRESS,
                                             TVX_ERROR_DATA_NOT_AVAILABLE));
            refused += code == TVX_ERROR_OPTIMIZATION_IN_PROGRESS;
        }
        return 0;
    };
    for (const int presolve : {0, 1}) {
        refused = 0;
        ASSERT_EQ(solve(presolve), 0);
        EXPECT_GT(refused, 20);
        EXPECT_EQ(integer("Status"), TVX_OPTIMAL);
        EXPECT_GE(dbl("Kappa"), 1);
        EXPECT_LE(dbl("SAObjLow", 0), dbl("Obj", 0));
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
    for (void *data : {static_cast<void *>(nullptr), static_cast<void *>(&garbage)}) {
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
        EXPECT_EQ(TVXoptimize(model), TVX_ERROR_OPTIMIZATION_IN_PROGRESS);
        return 0;
    };
    ASSERT_EQ(solve(0), 0);
}
