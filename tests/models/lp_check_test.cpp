// lp_check_test.cpp -- the checker passes exact optima and sees every planted fault
#include "support/lp_check.h"
#include "support/model_gen.h"
#include "support/rational_lp.h"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>

static LpSolution solution_of(const LpModel &lp, const RationalResult &exact)
{
    LpSolution s;
    s.status = 2;
    s.objval = exact.value.get_d();
    for (const mpq_class &v : exact.x) s.x.push_back(v.get_d());
    for (const mpq_class &v : exact.pi) s.pi.push_back(v.get_d());
    std::vector<mpq_class> activity(lp.rhs.size());
    for (size_t j = 0; j < lp.obj.size(); j++) {
        mpq_class rc = lp.obj[j];
        for (const LpEntry &e : lp.cols[j]) {
            rc -= e.value * exact.pi[static_cast<size_t>(e.row)];
            activity[static_cast<size_t>(e.row)] += e.value * exact.x[j];
        }
        s.rc.push_back(rc.get_d());
    }
    for (size_t i = 0; i < lp.rhs.size(); i++)
        s.slack.push_back(mpq_class(lp.rhs[i] - activity[i]).get_d());
    s.has_basis = true;
    s.vbasis = exact.vbasis;
    s.cbasis = exact.cbasis;
    return s;
}

// Calls `use` for optimal random models with their exact solution.
static void for_optimal_models(
    int count, int scaled_percent,
    const std::function<void(Dice *, const LpModel &, const LpSolution &)> &use)
{
    TinyLimits limits;
    limits.scaled_percent = scaled_percent;
    for (uint64_t seed = 0; count > 0; seed++) {
        Dice dice(seed + 1000000);
        const LpModel lp = gen_tiny(&dice, limits);
        const RationalResult exact = rational_solve(&lp);
        if (exact.status != LpStatus::OPTIMAL || lp.obj.empty() || lp.rhs.empty()) continue;
        use(&dice, lp, solution_of(lp, exact));
        count--;
        if (testing::Test::HasFailure()) return;
    }
}

static bool accepts(const LpModel &lp, const LpSolution &s)
{
    return lp_check_optimal(&lp, &s, LpTolerances{}).ok();
}

TEST(LpCheck, accepts_exact_optima)
{
    for_optimal_models(3000, 20, [](Dice *, const LpModel &lp, const LpSolution &s) {
        const LpReport report = lp_check_optimal(&lp, &s, LpTolerances{});
        ASSERT_TRUE(report.ok()) << report.text() << lp_to_mps(&lp, "");
    });
}

TEST(LpCheck, sees_a_moved_point)
{
    for_optimal_models(2000, 0, [](Dice *dice, const LpModel &lp, const LpSolution &s) {
        LpSolution wrong = s;
        const size_t j = static_cast<size_t>(dice->range(0, lp.num_vars() - 1));
        if (s.vbasis[j] == -3 && lp.cols[j].empty()) return; // any value is optimal
        wrong.x[j] += dice->nonzero(1) * 0.01 * std::max(1.0, std::fabs(s.x[j]));
        ASSERT_FALSE(accepts(lp, wrong)) << "C" << j << "\n" << lp_to_mps(&lp, "");
    });
}

TEST(LpCheck, sees_a_changed_multiplier)
{
    for_optimal_models(2000, 0, [](Dice *dice, const LpModel &lp, const LpSolution &s) {
        LpSolution wrong = s;
        const size_t i = static_cast<size_t>(dice->range(0, lp.num_rows() - 1));
        const double step = dice->nonzero(1) * std::max(1.0, std::fabs(s.pi[i]));
        wrong.pi[i] += step;
        for (size_t j = 0; j < lp.cols.size(); j++) // reduced costs that go with it
            wrong.rc[j] -=
                step * lp_get_entry(&lp, static_cast<int>(i), static_cast<int>(j));
        // Alternative multipliers exist at degenerate optima; the exact judge says whether these are.
        RationalResult claim = rational_solve(&lp);
        claim.pi[i] += step;
        if (rational_verify(&lp, &claim).empty()) return;
        wrong.has_basis = false;
        ASSERT_FALSE(accepts(lp, wrong)) << "R" << i << "\n" << lp_to_mps(&lp, "");
    });
}

TEST(LpCheck, sees_each_wrong_report)
{
    for_optimal_models(500, 0, [](Dice *dice, const LpModel &lp, const LpSolution &s) {
        const size_t j = static_cast<size_t>(dice->range(0, lp.num_vars() - 1));
        const size_t i = static_cast<size_t>(dice->range(0, lp.num_rows() - 1));
        const double nan = std::numeric_limits<double>::quiet_NaN();
        const std::function<void(LpSolution *)> faults[] = {
            [&](LpSolution *w) { w->objval += 1e-4 * (1 + std::fabs(w->objval)) * 10; },
            [&](LpSolution *w) { w->objval = nan; },
            [&](LpSolution *w) { w->rc[j] += 1e-3 * (1 + std::fabs(w->rc[j])); },
            [&](LpSolution *w) { w->slack[i] += 1e-3 * (1 + std::fabs(lp.rhs[i])); },
            [&](LpSolution *w) { w->x[j] = nan; },
            [&](LpSolution *w) { w->x.pop_back(); },
            [&](LpSolution *w) { w->vbasis[j] = w->vbasis[j] == 0 ? -1 : 0; },
            [&](LpSolution *w) { w->cbasis[i] = w->cbasis[i] == 0 ? -1 : 0; },
            [&](LpSolution *w) { w->vbasis[j] = -4; },
            [&](LpSolution *w) { w->cbasis.pop_back(); },
        };
        for (const auto &plant : faults) {
            LpSolution wrong = s;
            plant(&wrong);
            ASSERT_FALSE(accepts(lp, wrong)) << (&plant - faults) << "\n"
                                             << lp_to_mps(&lp, "");
        }
    });
}

TEST(LpCheck, sees_a_feasible_point_that_is_not_optimal)
{
    // max x + y, x + 2y <= 4, x <= 3: optimum 3.5 at (3, 0.5); (0, 2) is a vertex with value 2
    LpModel lp;
    lp.sense = -1;
    lp_add_var(&lp, 1, 0, 3);
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '<', 4);
    const LpSolution good{.status = 2,
                          .objval = 3.5,
                          .iterations = 0,
                          .x = {3, 0.5},
                          .rc = {0.5, 0},
                          .pi = {0.5},
                          .slack = {0},
                          .has_basis = true,
                          .vbasis = {-2, 0},
                          .cbasis = {-1}};
    EXPECT_TRUE(accepts(lp, good));
    const LpSolution vertex{.status = 2,
                            .objval = 2,
                            .iterations = 0,
                            .x = {0, 2},
                            .rc = {0.5, 0},
                            .pi = {0.5},
                            .slack = {0},
                            .has_basis = true,
                            .vbasis = {-1, 0},
                            .cbasis = {-1}};
    EXPECT_FALSE(accepts(lp, vertex));
    LpSolution slack_basis = vertex; // multipliers 0, everything nonbasic at lower
    slack_basis.objval = 0;
    slack_basis.x = {0, 0};
    slack_basis.pi = {0};
    slack_basis.rc = {1, 1};
    slack_basis.slack = {4};
    slack_basis.vbasis = {-1, -1};
    slack_basis.cbasis = {0};
    EXPECT_FALSE(accepts(lp, slack_basis));
}

TEST(LpCheck, sees_a_singular_basis)
{
    // Two equal rows, two equal columns basic: the right count, but no basis.
    LpModel lp;
    lp_add_var(&lp, 0, 0, LP_INFINITY);
    lp_add_var(&lp, 0, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '=', 2);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '=', 2);
    LpSolution s{.status = 2,
                 .objval = 0,
                 .iterations = 0,
                 .x = {2, 0},
                 .rc = {0, 0},
                 .pi = {0, 0},
                 .slack = {0, 0},
                 .has_basis = true,
                 .vbasis = {0, 0},
                 .cbasis = {-1, -1}};
    EXPECT_FALSE(accepts(lp, s));
    s.vbasis = {0, -1};
    s.cbasis = {-1, 0};
    EXPECT_TRUE(accepts(lp, s));
}

TEST(LpCheck, plain_point_violations_are_unscaled)
{
    LpModel lp;
    lp_add_var(&lp, 1, 0, 10);
    lp_add_row_entries(&lp, {{0, 1000}}, '<', 5000);
    const PointReport inside = lp_check_point(&lp, {5}),
                      outside = lp_check_point(&lp, {11});
    EXPECT_EQ(inside.row_vio, 0);
    EXPECT_EQ(inside.bound_vio, 0);
    EXPECT_EQ(outside.row_vio, 6000);
    EXPECT_EQ(outside.bound_vio, 1);
    EXPECT_EQ(outside.value, 11);
}
