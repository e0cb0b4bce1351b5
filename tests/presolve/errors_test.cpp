// errors_test.cpp -- what rounding leaves of sums does not end a model, and is nothing to pivot on
//
// Tall models: a point that satisfies all rows up to rounding, many more rows than columns, most of them tight there,
// coefficients over eight orders of magnitude. Substitutions leave rows and costs that are rounding and nothing else.
#include "presolve/errors.h"
#include "presolve/presolve.h"
#include "support/dice.h"
#include "support/inside.h"
#include "support/lp_tarvex.h"
#include "support/presolve_try.h"
#include <gtest/gtest.h>

static double wide(Dice *dice)
{
    return (dice->chance(50) ? 1 : -1) * std::pow(10.0, dice->real(-4, 4));
}

struct Tall {
    LpModel lp;
    std::vector<double> point;
};

static void add_column(Dice *dice, Tall *tall)
{
    const double x = dice->range(-9, 9);
    const bool below = dice->chance(60), above = dice->chance(60);
    lp_add_var(&tall->lp, dice->range(-5, 5), below ? x - dice->range(0, 9) : -LP_INFINITY,
               above ? x + dice->range(0, 9) : LP_INFINITY);
    tall->point.push_back(x);
}

static void add_row(Dice *dice, int density, int equations, Tall *tall)
{
    std::vector<std::pair<int, double>> entries;
    long double activity = 0;
    for (int j = 0; j < tall->lp.num_vars(); j++) {
        if (!dice->chance(density)) continue;
        entries.emplace_back(j, wide(dice));
        activity += static_cast<long double>(entries.back().second) *
                    tall->point[static_cast<size_t>(j)];
    }
    const char sense = dice->chance(equations) ? '=' : dice->chance(50) ? '<' : '>';
    const double slack = sense == '=' || dice->chance(50) ? 0 : dice->real(0, 100);
    const double rhs = static_cast<double>(activity);
    lp_add_row_entries(&tall->lp, entries, sense, sense == '<' ? rhs + slack : rhs - slack);
}

// All columns stand in some equation of their own, so that there is an optimum.
static Tall gen_tall(Dice *dice)
{
    Tall tall;
    const int n = dice->range(5, 25), m = n * dice->range(3, 8);
    for (int j = 0; j < n; j++) add_column(dice, &tall);
    const int density = dice->range(10, 40), equations = dice->range(20, 100);
    for (int i = 0; i < m; i++) add_row(dice, density, equations, &tall);
    for (int j = 0; j < n; j++) {
        const double a = wide(dice), b = wide(dice);
        const int k = (j + 1) % n;
        lp_add_row_entries(&tall.lp, {{j, a}, {k, b}}, '=',
                           a * tall.point[static_cast<size_t>(j)] +
                               b * tall.point[static_cast<size_t>(k)]);
    }
    return tall;
}

TEST(Errors, tall_models_with_a_known_point_are_not_refused)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 400; seed++) {
        Dice dice(seed);
        const Tall tall = gen_tall(&dice);
        const TestModel model(lp_load(env.env, &tall.lp));
        LpClaim claim;
        EXPECT_EQ(Reduced(model, &claim).status, 0) << seed;
    }
}

// Some of these models make bases of presolve that the simplex cannot factor at once: other ways lead to the optimum then.
TEST(Errors, tall_models_have_the_same_optimum_with_presolve_and_without)
{
    constexpr int MODELS = 150;
    const TestEnv env;
    for (const int presolve : {1, 2}) {
        for (uint64_t seed = 1000; seed < 1000 + MODELS; seed++) {
            Dice dice(seed);
            const Tall tall = gen_tall(&dice);
            LpSolution without, with;
            set_parameters(env.env, {{"Presolve", 0}});
            ASSERT_EQ(lp_solve(TestModel(lp_load(env.env, &tall.lp)), &without), 0) << seed;
            set_parameters(env.env, {{"Presolve", presolve}});
            ASSERT_EQ(lp_solve(TestModel(lp_load(env.env, &tall.lp)), &with), 0) << seed;
            EXPECT_EQ(without.status, TVX_OPTIMAL) << seed;
            ASSERT_EQ(with.status, TVX_OPTIMAL) << seed << ", Presolve " << presolve;
            EXPECT_NEAR(with.objval, without.objval, 1e-6 * (1 + std::fabs(with.objval)))
                << seed;
        }
    }
}

// x0 + x1 = 1 after the first row is put into the second, which leaves 1e-10 of x1 and of the right-hand side.
static LpModel cancelling(double left)
{
    LpModel lp;
    for (int j = 0; j < 3; j++) lp_add_var(&lp, 0, -LP_INFINITY, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1.0 / 3}, {2, 1}}, '=', 1);
    lp_add_row_entries(&lp, {{0, 3}, {1, 1 + left}, {2, 3}}, '=', 3);
    return lp;
}

TEST(Errors, entries_remember_the_size_of_their_terms)
{
    const TestEnv env;
    const LpModel lp = cancelling(1e-9);
    const TestModel model(lp_load(env.env, &lp));
    PresolveWork w;
    ASSERT_EQ(work_load(&w, model.model->body, model.model->env), 0);
    ASSERT_EQ(mark_everything(&w), 0);
    ASSERT_EQ(pre_activity(&w), 0);
    ASSERT_EQ(pre_aggregate(&w), 0);
    for (int64_t p = 0; p < w.Nodes.size; p++) {
        const PresolveNode &node = w.Nodes[p];
        if (node.col < 0 || std::fabs(node.value) > 1e-3) continue;
        EXPECT_NEAR(w.EntrySize[p], 1, 0.1);
        const double node_value = node.value;
        EXPECT_FALSE(errors_allow(&w, static_cast<int>(p), 1e-9, 1e-9))
            << "nine digits lost";
        for (const double size : {1e-60, 1e60, 1e300}) { // beyond any shorter number type
            w.Nodes[p].value = size * 1e-9;
            set_entry_size(&w, static_cast<int>(p), size);
            EXPECT_EQ(size_of_entry(&w, static_cast<int>(p)), size);
            EXPECT_FALSE(errors_allow(&w, static_cast<int>(p), 0, 0));
        }
        w.Nodes[p].value = node_value;
    }
    work_free(&w);
}

TEST(Errors, costs_that_are_rounding_do_not_make_a_model_unbounded)
{
    const TestEnv env;
    for (const double scale : {1.0, 1e5, 1e9}) { // 0.1 + 0.2 is not 0.3, at this size
        LpModel lp;
        lp_add_var(&lp, 0.1 * scale, -LP_INFINITY, LP_INFINITY);
        lp_add_var(&lp, 0.2 * scale, -LP_INFINITY, LP_INFINITY);
        lp_add_var(&lp, -0.3 * scale, -LP_INFINITY, LP_INFINITY);
        lp_add_row_entries(&lp, {{0, 1}, {2, -1}}, '=', 0);
        lp_add_row_entries(&lp, {{1, 1}, {2, -1}}, '=', 0);
        const PresolveTry t =
            presolve_try(env.env, &lp, {pre_columns, pre_aggregate, pre_fix_empty});
        EXPECT_EQ(t.status, 0) << scale;
        lp.obj[2] -= 1e-3 * scale; // and this is a cost
        const PresolveTry u =
            presolve_try(env.env, &lp, {pre_columns, pre_aggregate, pre_fix_empty});
        EXPECT_EQ(u.status, PRESOLVE_UNBOUNDED) << scale;
    }
}
