// errors_test.cpp -- what rounding leaves of sums does not end a model, and is nothing to pivot on
//
// Whole models on which this counts are those of support/hostile_gen.h (models/hostile_test.cpp).
#include "presolve/errors.h"
#include "support/inside.h"
#include "support/lp_tarvex.h"
#include "support/presolve_try.h"
#include <gtest/gtest.h>

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
