// sure_answers_test.cpp -- models on which a tolerance, a scale or a huge number misleads: right by exact arithmetic
// whatever the route; cutoffs, and starts in the dual form
#include "simplex/simplex.h"
#include "support/hostile_gen.h"
#include "support/model_test.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <cmath>
#include <cstring>

namespace
{
constexpr double INF = LP_INFINITY;

using SureAnswers = ModelTest;

// Either method on the model, a reduced one and its dual form, scaled and not, in both precisions.
void expect_right(const LpModel &lp, const Settings &more = {})
{
    const TestEnv env;
    const RationalResult truth = rational_solve(&lp);
    for (const Settings &way : settings_product({{"LPMethod", {0, 1}},
                                                 {"Presolve", {-1, 0}},
                                                 {"PreDual", {-1, 1}},
                                                 {"ScaleFlag", {0, 1}},
                                                 {"Quad", {-1, 0, 1}}},
                                                more))
        ASSERT_EQ(solve_and_judge(env.env, &lp, &truth, way), "")
            << lp_to_mps(&lp, settings_text(way));
}
} // namespace

// A coefficient of 1 beside a huge one: the switches of support/hostile_bigm.cpp.

// Each entry of the ray is small against the next one, and none is rounding: x_t = k x_t+1, the last one bounded.
TEST_F(SureAnswers, large_multipliers_and_steps_hide_nothing)
{
    const std::pair<double, int> chains[] = {{2, 55}, {10, 17}, {1000, 6}, {1e4, 5}};
    for (const auto &[factor, periods] : chains) {
        LpModel lp = lp_make({{-1}}, {});
        for (int t = 0; t < periods; t++)
            lp_add_row_entries(&lp, {{t, 1}, {lp_add_var(&lp, 0, 0, INF), -factor}}, '=',
                               0);
        lp.ub.back() = 1;
        expect_right(lp);
    }
    // x0 = 1e-5, each variable twice the one before, the last one at most `end`: the first row has multiplier 2^17
    const double last = 1e-5 * (1 << 17);
    for (const double end : {last - 0.01, last}) {
        LpModel lp = lp_make({{1}}, {{{1}, '=', 1e-5}});
        for (int k = 0; k < 17; k++)
            lp_add_row_entries(&lp, {{k, 2}, {lp_add_var(&lp, 1, 0, INF), -1}}, '=', 0);
        lp_add_row_entries(&lp, {{17, 1}}, '<', end);
        expect_right(lp);
    }
    // A step of 1e12 makes the distance to the bound and the tolerance one number.
    for (const double tol : {1e-6, 1e-9})
        expect_right(lp_make({{-1}, {0, 0, 1}}, {{{1, 1}, '<', 1e12}}),
                     {{"FeasibilityTol", tol}});
    // What the tolerance would allow is half a per cent of the objective: a small reduced cost, a small violation.
    expect_right(lp_make({{1, 1}, {-5e-7}}, {{{0, 1}, '<', 1e4}}));
    expect_right(lp_make({{1, 1}, {1e4}}, {{{0, 1}, '>', 5e-7}}));
    // A reduced cost within the tolerance, but x goes to 1e6: the least value, -0.5, is below the cutoff.
    expect_right(lp_make({{-5e-7}, {0}}, {{{1}, '<', 1e6}, {{0, 1}, '>', 1}}),
                 {{"Cutoff", -0.3}});
    // No pivot, no flip: nothing but looks of the stall guard ends such a run.
    expect_right(lp_make({{0, -INF, INF}, {0, 0, 0}}, {{{9}, '<', 9},
                                                       {{3}, '<', 6},
                                                       {{-1, -1e-300}, '<', 1},
                                                       {{8}, '<', 10},
                                                       {{2, 1e-20}, '=', 2},
                                                       {{-3}, '<', -3},
                                                       {{2}, '<', 2}}));
}

TEST_F(SureAnswers,
       a_model_that_is_feasible_within_the_tolerance_only_stays_so_at_any_price)
{
    for (const double method : {0, 1})
        for (const double scale : {0, 1}) {
            load(lp_make({{1e4, 0, 1 - 5e-7}}, {{{1}, '>', 1}}),
                 {{"LPMethod", method}, {"ScaleFlag", scale}});
            EXPECT_EQ(solved(), TVX_OPTIMAL);
        }
}

TEST_F(SureAnswers, the_bound_stops_the_dual_at_a_cutoff)
{
    for (const Family family : {gen_multi_period, gen_network, gen_planted_optimum}) {
        const LpModel lp = generated(family, 60, 7);
        load(lp, {{"LPMethod", 1}, {"Presolve", 0}});
        const double value = objective(), iterations = dbl("IterCount"),
                     size = std::fabs(value);
        for (const double share : {-100.0, -1e-3, 1e-3}) { // of the value
            const double cutoff = value + lp.sense * share * (1 + size);
            load(lp, {{"LPMethod", 1}, {"Presolve", 0}, {"Cutoff", cutoff}});
            EXPECT_EQ(solved(), share < 0 ? TVX_CUTOFF : TVX_OPTIMAL);
            EXPECT_LE(dbl("IterCount"),
                      share < -1 ? 0.7 * iterations : 2 * iterations + 10);
        }
    }
}

TEST_F(SureAnswers, the_dual_form_takes_a_basis)
{
    for (const double presolve : {-1, 1, 2}) {
        const Settings settings = {{"PreDual", 1}, {"Presolve", presolve}};
        const LpModel lp = generated(gen_multi_period, 80, 11);
        load(lp, settings);
        const double value = objective(), iterations = dbl("IterCount");
        LpSolution optimum;
        ASSERT_EQ(lp_read_solution(model, &optimum), 0);

        load(lp, settings);
        ASSERT_EQ(lp_set_basis(model, optimum.vbasis, optimum.cbasis), 0);
        EXPECT_NEAR(objective(), value, 1e-6 * (1 + std::fabs(value)));
        EXPECT_LE(dbl("IterCount"), 0.6 * iterations);
    }
}

namespace
{
struct Heard {
    bool again = false;    // other ways were tried
    double iterations = 0; // the most that a simplex has told of
};

int hear(TVXmodel *, void *cbdata, int where, void *data)
{
    Heard *heard = static_cast<Heard *>(data);
    const char *line = "";
    double iterations = 0;
    if (where == TVX_WHERE_MESSAGE && !TVXcbget(cbdata, where, TVX_CB_MESSAGE_TEXT, &line))
        heard->again |= strstr(line, "solving again in other ways") != nullptr;
    if (where == TVX_WHERE_SIMPLEX &&
        !TVXcbget(cbdata, where, TVX_CB_SIMPLEX_ITERATIONS, &iterations))
        heard->iterations = std::fmax(heard->iterations, iterations);
    return 0;
}
} // namespace

// A cost of millions scales the objective down, and with it a reduced cost of -5e-6 into the tolerance. The simplex
// sees to it by itself, without another way.
TEST_F(SureAnswers, violations_count_in_the_units_of_the_model)
{
    for (const double method : {0, 1}) {
        load(lp_make({{-5e-6}, {9e6}}, {{{1}, '<', 1}, {{0, 1}, '>', 1}}),
             {{"LPMethod", method}, {"Presolve", 0}});
        Heard heard;
        ASSERT_EQ(TVXsetcallbackfunc(model, hear, &heard), 0);
        EXPECT_EQ(solved(), TVX_OPTIMAL);
        EXPECT_FALSE(heard.again) << method;
        EXPECT_LE(dbl("DualVio"), 1e-6);
    }
}

TEST_F(SureAnswers, figures_hold_the_iterations_and_the_work_of_all_ways)
{
    int again = 0;
    for (uint64_t seed = 0; seed < 200; seed++) {
        Dice dice(seed);
        load(hostile_wide(&dice), {{"Presolve", 0}});
        Heard heard;
        ASSERT_EQ(TVXsetcallbackfunc(model, hear, &heard), 0);
        ASSERT_EQ(TVXoptimize(model), 0);
        EXPECT_GE(dbl("IterCount"), heard.iterations) << seed;
        if (!heard.again || !model->lp.simplex) continue;
        again++;
        const double shown = simplex_work_units(model->lp.simplex); // one way's
        EXPECT_GT(dbl("NodeCount"), 1.3 * shown) << seed;
    }
    EXPECT_GT(again, 5);
}
