// callback_mip_test.cpp -- points and cuts that the caller's function hands to a search
//
// That valid cuts and any points never make an answer wrong is looked at in fuzz/api_mip.cpp.
#include "support/model_test.h"
#include <cmath>
#include <functional>
#include <limits>
#include <map>

namespace
{
constexpr double UNKNOWN = 1e100, NAN_VALUE = std::numeric_limits<double>::quiet_NaN();

// max 5x + 4y + 3z    2x + 3y + z <= 5    4x + y + 2z <= 11    3x + 4y + 2z <= 8    integers from 0 to 9
// Optimum (2, 0, 1), value 13; with x <= 1 it is (0, 0, 4), value 12.
constexpr const char *PLAN =
    "max 5x+4y+3z st\n2x+3y+z<=5\n4x+y+2z<=11\n3x+4y+2z<=8\nbounds x<=9 y<=9 z<=9 general "
    "x y z";

struct MipCallback : ModelTest {
    std::map<int, int> calls; // by where
    std::function<int(void *, int)> act = [](void *, int) { return 0; };

    static int enter(TVXmodel *, void *cbdata, int where, void *usrdata)
    {
        MipCallback *test = static_cast<MipCallback *>(usrdata);
        test->calls[where]++;
        return test->act(cbdata, where);
    }
    void open(const char *text, int presolve)
    {
        load(std::string(text));
        ASSERT_EQ(TVXsetcallbackfunc(model, enter, this), 0);
        for (const auto &[name, value] : {std::pair{"Presolve", presolve},
                                          {"PreCrush", 1},
                                          {"TARV_PAR_DUALREDUCTION", 0}})
            ASSERT_EQ(TVXsetintparam(own(), name, value), 0);
        calls.clear();
    }
};
} // namespace

// Rows that the model does not know: they hold for every point of the answer, whether the search, a start or the caller
// has found it.
TEST_F(MipCallback, a_row_handed_in_is_a_constraint_from_then_on)
{
    const int x = 0;
    const double one = 1, minus = -1, optimum[3] = {2, 0, 1};
    for (const int presolve : {0, -1})
        for (const bool greater : {false, true})
            for (const bool start : {false, true}) {
                open(PLAN, presolve);
                if (start) {
                    ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, 3, optimum), 0);
                }
                bool done = false;
                act = [&](void *data, int where) {
                    if (where != TVX_WHERE_NODE || done) return 0;
                    done = true;
                    EXPECT_EQ(TVXcbcut(data, 1, &x, greater ? &minus : &one,
                                       greater ? '>' : '<', greater ? -1 : 1),
                              0);
                    EXPECT_EQ(TVXcbsolution(data, optimum), 0); // is not taken any more
                    return 0;
                };
                ASSERT_EQ(TVXoptimize(model), 0);
                EXPECT_EQ(integer("Status"), TVX_OPTIMAL);
                EXPECT_NEAR(dbl("ObjVal"), 12, 1e-6) << presolve << greater << start;
                EXPECT_LE(dbl("ObjBound"), 12 + 1e-2);
                EXPECT_EQ(minus, -1);
            }
}

// Stopped in the solve that follows, too: the solution that the row excludes is not told any more, and the next call goes
// on.
TEST_F(MipCallback, a_row_takes_the_best_solution_away_though_the_search_is_stopped)
{
    const int x = 0;
    const double one = 1, optimum[3] = {2, 0, 1};
    for (int limit = 0; limit <= 12; limit++) {
        open(PLAN, 0);
        ASSERT_EQ(settings_apply(own(), {{"IterationLimit", limit}}), 0);
        ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, 3, optimum), 0);
        act = [&](void *data, int where) {
            const bool first = where == TVX_WHERE_NODE && calls[where] == 1;
            return first ? TVXcbcut(data, 1, &x, &one, '<', 1) : 0;
        };
        ASSERT_EQ(TVXoptimize(model), 0);
        const bool told = calls[TVX_WHERE_NODE] > 0 && integer("SolCount") > 0;
        EXPECT_LE(told ? dbl("X", 0) : 0, 1) << limit;
        ASSERT_EQ(settings_apply(own(), {{"IterationLimit", UNKNOWN}}), 0);
        EXPECT_EQ(solved(), TVX_OPTIMAL);
        EXPECT_NEAR(dbl("ObjVal"), 12, 1e-6) << limit;
    }
}

// Nodes that propagation closes have no relaxation; none of the nodes before them lends its own.
TEST_F(MipCallback, a_node_shows_its_own_relaxation_only)
{
    open("min x1+2x2+3x3+4x4+5x5 st\n2x1+2x2+2x3+2x4+2x5=5\nbinary x1 x2 x3 x4 x5", 0);
    ASSERT_EQ(settings_apply(own(), {{"VarBranch", 2}, {"TARV_PAR_NODEPRE", 1}}), 0);
    std::map<int, int> seen; // by status
    act = [&](void *data, int where) {
        int status = 0;
        double x[5];
        if (where != TVX_WHERE_NODE) return 0;
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_NODE_STATUS, &status), 0);
        seen[status]++;
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_NODE_VALUES, x),
                  status == TVX_OPTIMAL ? 0 : TVX_ERROR_DATA_NOT_AVAILABLE);
        return 0;
    };
    EXPECT_EQ(solved(), TVX_INFEASIBLE);
    EXPECT_GT(seen[TVX_OPTIMAL], 0);
    EXPECT_GT(seen[TVX_INFEASIBLE], 0);
}

// What no row of the model holds may still be held by rows to come: z is in none, and once there are no rows at all.
TEST_F(MipCallback, a_row_holds_variables_that_are_in_no_row_of_the_model)
{
    const int z = 2;
    const double one = 1;
    for (const char *text :
         {"max 5x+4y+3z st\n2x+3y<=5\n4x+y<=11\n3x+4y<=8\nbounds x<=9 y<=9 z<=9 general x "
          "y z",
          "max 5x+0y+3z st\nx+y<=30\nbounds x<=2 y<=9 z<=9 general x y z"})
        for (const int presolve : {0, -1}) {
            open(text, presolve);
            act = [&](void *data, int where) {
                const bool first = where == TVX_WHERE_NODE && calls[where] == 1;
                return first ? TVXcbcut(data, 1, &z, &one, '<', 1) : 0;
            };
            ASSERT_EQ(TVXoptimize(model), 0);
            EXPECT_EQ(integer("Status"), TVX_OPTIMAL);
            EXPECT_NEAR(dbl("ObjVal"), 13, 1e-6) << presolve;
        }
}

TEST_F(MipCallback, rows_that_leave_no_point_make_the_model_infeasible)
{
    const int ind[] = {0, 1, 2};
    const double ones[] = {1, 1, 1};
    for (const int presolve : {0, -1}) {
        open(PLAN, presolve);
        act = [&](void *data, int where) {
            const bool first = where == TVX_WHERE_NODE && calls[where] == 1;
            return first ? TVXcbcut(data, 3, ind, ones, '>', 20) : 0;
        };
        ASSERT_EQ(TVXoptimize(model), 0);
        EXPECT_EQ(integer("Status"), TVX_INFEASIBLE);
        EXPECT_EQ(integer("SolCount"), 0);
    }
}

// Each call is made where nothing better is known yet; a point in part is completed.
TEST_F(MipCallback, a_point_handed_in_is_taken_if_it_is_feasible_and_better)
{
    const struct {
        double point[3];
        int taken;
    } cases[] = {{{2, 0, 1}, 1},   {{UNKNOWN, 0, 1}, 1}, {{1, 1, 0}, 1},
                 {{1.5, 0, 0}, 1}, {{-5, 0, 1}, 1},      {{9, 9, 9}, 0}};
    for (const auto &one : cases) {
        open(PLAN, 0);
        bool done = false;
        act = [&](void *data, int where) {
            if (where != TVX_WHERE_NODE || done) return 0;
            done = true;
            int before = -1, after = -1;
            EXPECT_EQ(TVXcbget(data, where, TVX_CB_NODE_SOLUTIONS, &before), 0);
            EXPECT_EQ(TVXcbsolution(data, one.point), 0);
            EXPECT_EQ(TVXcbget(data, where, TVX_CB_NODE_SOLUTIONS, &after), 0);
            EXPECT_EQ(before, 0);
            EXPECT_EQ(after, one.taken) << one.point[0];
            return 0;
        };
        ASSERT_EQ(TVXoptimize(model), 0);
        EXPECT_TRUE(done);
        EXPECT_GT(calls[TVX_WHERE_SOLUTION], 0);
        EXPECT_NEAR(dbl("ObjVal"), 13, 1e-6);
    }
}

TEST_F(MipCallback, points_and_cuts_that_cannot_be_are_refused)
{
    const int ind[] = {0, 3};
    const double val[] = {1, NAN_VALUE}, point[] = {0, NAN_VALUE, 0};
    int garbage = 5;
    for (int *data : {static_cast<int *>(nullptr), &garbage}) {
        EXPECT_EQ(TVXcbsolution(data, point), TVX_ERROR_CALLBACK);
        EXPECT_EQ(TVXcbcut(data, 1, ind, val, '<', 1), TVX_ERROR_CALLBACK);
    }
    open(PLAN, 0);
    act = [&](void *data, int where) {
        EXPECT_EQ(TVXcbsolution(data, nullptr), TVX_ERROR_NULL_ARGUMENT);
        EXPECT_EQ(TVXcbsolution(data, point), TVX_ERROR_CALLBACK);
        if (where != TVX_WHERE_NODE) {
            EXPECT_EQ(TVXcbcut(data, 1, ind, val, '<', 1), TVX_ERROR_CALLBACK) << where;
            return 0;
        }
        EXPECT_EQ(TVXcbcut(data, -1, ind, val, '<', 1), TVX_ERROR_CALLBACK);
        EXPECT_EQ(TVXcbcut(data, 2, ind, val, '<', 1), TVX_ERROR_CALLBACK);
        EXPECT_EQ(TVXcbcut(data, 1, nullptr, val, '<', 1), TVX_ERROR_NULL_ARGUMENT);
        EXPECT_EQ(TVXcbcut(data, 1, ind, val + 1, '<', 1), TVX_ERROR_CALLBACK);
        EXPECT_EQ(TVXcbcut(data, 1, ind, val, '<', NAN_VALUE), TVX_ERROR_CALLBACK);
        return 0;
    };
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_GT(calls[TVX_WHERE_NODE], 0);
    EXPECT_NEAR(dbl("ObjVal"), 13, 1e-6);
}

// w is at the bound that its cost asks for: presolve removes it, and no point of the reduced model stands for one with
// another value.
TEST_F(MipCallback, a_point_that_presolve_has_excluded_has_to_satisfy_rows_handed_in)
{
    const int x = 0;
    const double one = 1, point[] = {2, 0, 1, 1};
    for (const int dual : {0, 1}) {
        open("max 5x+4y+3z-.1w st\n2x+3y+z<=5\n4x+y+2z<=11\n3x+4y+2z<=8\nbounds x<=9 y<=9 "
             "z<=9 w<=1 general x y z",
             -1);
        ASSERT_EQ(TVXsetintparam(own(), "TARV_PAR_DUALREDUCTION", dual), 0);
        act = [&](void *data, int where) {
            if (where != TVX_WHERE_NODE || calls[where] > 1) return 0;
            EXPECT_EQ(TVXcbcut(data, 1, &x, &one, '<', 1), 0);
            EXPECT_EQ(TVXcbsolution(data, point), 0);
            return 0;
        };
        ASSERT_EQ(TVXoptimize(model), 0);
        EXPECT_NEAR(dbl("ObjVal"), 12, 1e-6) << dual;
    }
}

// The function lets no point of x + y = 3000 pass but the last one, by one row after the other at one node.
TEST_F(MipCallback, rounds_at_a_node_end_only_when_no_row_is_violated)
{
    const int x = 0;
    const double one = 1;
    open("min x+2y st x+y=3000 bounds x<=3000 general x y", 0);
    act = [&](void *data, int where) {
        double point[2] = {};
        if (where != TVX_WHERE_NODE || TVXcbget(data, where, TVX_CB_NODE_VALUES, point))
            return 0;
        return point[0] > .5 ? TVXcbcut(data, 1, &x, &one, '<', point[0] - 1) : 0;
    };
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_NEAR(dbl("ObjVal"), 6000, 1e-6);
    EXPECT_EQ(dbl("NodeCount"), 1);
    EXPECT_EQ(calls[TVX_WHERE_NODE], 3001);
}

TEST_F(MipCallback, a_row_that_presolve_should_have_known_brings_a_warning)
{
    const int x = 0;
    const double one = 1;
    for (const int presolve : {0, -1}) {
        open("max 3x+2y st\n2x+2y<=9\n3x+y<=11\nbounds x<=4 y<=4 general x y", presolve);
        ASSERT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
        Output output;
        act = [&](void *data, int where) {
            double point[2] = {};
            if (where != TVX_WHERE_NODE || TVXcbget(data, where, TVX_CB_NODE_VALUES, point))
                return 0;
            return point[0] > 1.5 ? TVXcbcut(data, 1, &x, &one, '<', 1) : 0;
        };
        ASSERT_EQ(TVXoptimize(model), 0);
        const bool warned = output.text().find("Warning: a cut excludes an integer "
                                               "solution") != std::string::npos;
        EXPECT_EQ(warned, presolve != 0);
    }
}

TEST_F(MipCallback, a_solution_of_presolve_alone_is_announced_without_a_search)
{
    open("max x+y st x<=3 y<=4 general x y", -1);
    act = [&](void *data, int where) {
        if (where != TVX_WHERE_SOLUTION) return 0;
        double point[2] = {}, objective = 0, best = 0, bound = 0;
        int count = 0;
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SOLUTION_VALUES, point), 0);
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SOLUTION_OBJECTIVE, &objective), 0);
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SOLUTION_BEST, &best), 0);
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SOLUTION_BOUND, &bound), 0);
        EXPECT_EQ(TVXcbget(data, where, TVX_CB_SOLUTION_COUNT, &count), 0);
        EXPECT_EQ(point[0] + point[1], 7);
        EXPECT_EQ(objective, 7);
        EXPECT_EQ(count, 1);
        EXPECT_EQ(best, UNKNOWN); // sense -1
        EXPECT_EQ(bound, -UNKNOWN);
        EXPECT_EQ(TVXcbsolution(data, point), TVX_ERROR_CALLBACK);
        return 0;
    };
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(calls[TVX_WHERE_SOLUTION], 1);
}
