// errors_test.cpp -- what rounding leaves of sums does not end a model, and is nothing to pivot on
//
// Whole models on which this counts are those of support/hostile_gen.h (models/hostile_test.cpp).
#include "presolve/errors.h"
#include "support/model_test.h"
#include "support/presolve_try.h"

static constexpr double INF = LP_INFINITY;

using Errors = ModelTest;

// x0 + x1 = 1 after the first row is put into the second, which leaves 1e-9 of x1 and of the right-hand side.
TEST_F(Errors, entries_remember_the_size_of_their_terms)
{
    load(lp_make({{0, -INF, INF}, {0, -INF, INF}, {0, -INF, INF}},
                 {{{1, 1.0 / 3, 1}, '=', 1}, {{3, 1 + 1e-9, 3}, '=', 3}}));
    PresolveWork w;
    ASSERT_EQ(work_load(&w, model->body, model->env), 0);
    ASSERT_EQ(mark_everything(&w) + pre_activity(&w) + pre_aggregate(&w), 0);
    int seen = 0;
    for (int p = 0; p < w.Nodes.size; p++) {
        const PresolveNode &node = w.Nodes[p];
        if (node.col < 0 || std::fabs(node.value) > 1e-3) continue;
        seen++;
        EXPECT_NEAR(w.EntrySize[p], 1, 0.1);
        EXPECT_FALSE(errors_allow(&w, p, 1e-9, 1e-9)) << "nine digits lost";
        for (const double size : {1e-60, 1e60, 1e300}) { // beyond any shorter number type
            w.Nodes[p].value = size * 1e-9;
            set_entry_size(&w, p, size);
            EXPECT_EQ(size_of_entry(&w, p), size);
            EXPECT_FALSE(errors_allow(&w, p, 0, 0));
        }
    }
    EXPECT_EQ(seen, 1);
    work_free(&w);
}

TEST_F(Errors, costs_that_are_rounding_do_not_make_a_model_unbounded)
{
    for (const double scale : {1.0, 1e5, 1e9}) { // 0.1 + 0.2 is not 0.3, at this size
        LpModel lp = lp_make(
            {{0.1 * scale, -INF, INF}, {0.2 * scale, -INF, INF}, {-0.3 * scale, -INF, INF}},
            {{{1, 0, -1}, '=', 0}, {{0, 1, -1}, '=', 0}});
        expect_end(lp, {pre_columns, pre_aggregate, pre_fix_empty}, 0);
        lp.obj[2] -= 1e-3 * scale; // and this is a cost
        expect_end(lp, {pre_columns, pre_aggregate, pre_fix_empty}, END_UNBOUNDED);
    }
}
