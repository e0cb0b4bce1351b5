// judges_test.cpp -- the judges of exact answers and of optimality: planted faults are seen
//
// Each answer of the exact judge is proved from its certificate wherever it is used; here the proof is tested.
#include "support/model_gen.h"
#include "support/solve_judge.h"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

// min -x - y,  x + y <= 3,  0 <= x <= 2,  0 <= y: value -3 at (2, 1), every multiplier -1 or 0
static LpModel corner()
{
    return lp_make({{-1, 0, 2}, {-1}}, {{{1, 1}, '<', 3}});
}

TEST(RationalLp, verifier_refuses_wrong_claims)
{
    const LpModel lp = corner();
    const RationalResult right = rational_solve(&lp);
    ASSERT_EQ(right.value, -3);
    void (*const faults[])(RationalResult *) = {
        [](RationalResult *r) { r->value = -4; },
        [](RationalResult *r) { r->x[0] += 1; },
        [](RationalResult *r) { r->pi[0] = 1; },
        [](RationalResult *r) { r->pi[0] /= 2; },
        [](RationalResult *r) {
            r->status = LpStatus::UNBOUNDED, r->ray = {0, 1};
        },
        [](RationalResult *r) { r->status = LpStatus::INFEASIBLE, r->farkas = {1}; },
        [](RationalResult *r) { r->status = LpStatus::INFEASIBLE, r->crossed = 0; }};
    for (const auto plant : faults) {
        RationalResult wrong = right;
        plant(&wrong);
        EXPECT_NE(rational_verify(&lp, &wrong), "") << &plant - faults;
    }
}

TEST(RationalLp, relaxing_moves_every_side_exactly)
{
    LpModel lp = corner();
    EXPECT_EQ(rational_solve(&lp, 0.25).value, mpq_class(-13, 4));
    lp.senses[0] = '=';
    EXPECT_EQ(rational_solve(&lp, 0.25).value, mpq_class(-13, 4));
    lp_add_row_entries(&lp, {{0, 1}}, '>', 2.5); // half a unit beyond the bound
    EXPECT_EQ(rational_solve(&lp, 0.1875).status, LpStatus::INFEASIBLE);
    EXPECT_EQ(rational_solve(&lp, 0.25).status, LpStatus::OPTIMAL);
    // 1e10 <= x <= 1e10 - 1.9e-6, where 1e10 + 1e-7 is 1e10 in doubles
    lp = lp_make({{1, 1e10}}, {{{1}, '<', 1e10 - 1.9073486328125e-06}});
    EXPECT_EQ(rational_solve(&lp, 9.5e-7).status, LpStatus::INFEASIBLE);
    const RationalResult fits = rational_solve(&lp, 9.6e-7);
    EXPECT_EQ(fits.status, LpStatus::OPTIMAL);
    EXPECT_NE(rational_verify(&lp, &fits, 9.5e-7), "");
}

// ---- The checker of optimality ----

TEST(LpCheck, accepts_exact_optima_and_sees_each_planted_fault)
{
    for (uint64_t seed = 1000000, count = 0; count < 1500; seed++) {
        Dice dice(seed);
        TinyLimits limits;
        limits.scaled_percent = count % 2 ? 0 : 40;
        const LpModel lp = gen_tiny(&dice, limits);
        const RationalResult exact = rational_solve(&lp);
        if (exact.status != LpStatus::OPTIMAL || lp.obj.empty() || lp.rhs.empty()) continue;
        const LpSolution good = exact_solution(&lp, exact);
        ASSERT_EQ(judge_optimal(&lp, &good), "") << lp_to_mps(&lp, "");
        if (count++ % 2 == 0) continue; // scaled: the same faults may be tolerable
        const int j = dice.range(0, lp.num_vars() - 1),
                  i = dice.range(0, lp.num_rows() - 1);
        const double sign = dice.nonzero(1), step = sign * std::max(1.0, fabs(good.pi[i]));
        RationalResult claim = exact; // a degenerate optimum has other multipliers, too
        claim.pi[i] += step;
        const bool another = rational_verify(&lp, &claim).empty();
        const std::function<void(LpSolution *)> faults[] = {
            [&](LpSolution *w) {
                if (good.vbasis[j] != -3 || !lp.cols[j].empty()) // any value is optimal
                    w->x[j] += sign * 0.01 * std::max(1.0, fabs(w->x[j]));
                else
                    w->x[j] = NAN;
            },
            [&](LpSolution *w) {
                w->has_basis = false;
                w->pi[i] = another ? NAN : w->pi[i] + step;
                for (int k = 0; k < lp.num_vars(); k++) // reduced costs that go with it
                    w->rc[k] -= step * lp_get_entry(&lp, i, k);
            },
            [&](LpSolution *w) { w->objval += 1e-3 * (1 + fabs(w->objval)); },
            [&](LpSolution *w) { w->objval = NAN; },
            [&](LpSolution *w) { w->rc[j] += 1e-3 * (1 + fabs(w->rc[j])); },
            [&](LpSolution *w) { w->slack[i] += 1e-3 * (1 + fabs(lp.rhs[i])); },
            [&](LpSolution *w) { w->x.pop_back(); },
            [&](LpSolution *w) { w->vbasis[j] = w->vbasis[j] == 0 ? -1 : 0; },
            [&](LpSolution *w) { w->cbasis[i] = w->cbasis[i] == 0 ? -1 : 0; },
            [&](LpSolution *w) { w->vbasis[j] = -4; },
            [&](LpSolution *w) { w->cbasis.pop_back(); },
        };
        for (const auto &plant : faults) {
            LpSolution wrong = good;
            plant(&wrong);
            ASSERT_NE(judge_optimal(&lp, &wrong), "") << (&plant - faults) << "\n"
                                                      << lp_to_mps(&lp, "");
        }
    }
}

TEST(LpCheck, sees_vertices_that_are_not_optimal_and_a_singular_basis)
{
    // max x + y, x + 2y <= 4, x <= 3: optimum 3.5 at (3, 0.5); (0, 2) is a vertex with value 2
    LpModel lp = lp_make({{1, 0, 3}, {1}}, {{{1, 2}, '<', 4}});
    lp.sense = -1;
    const LpSolution good{2, 3.5, 0, {3, 0.5}, {0.5, 0}, {0.5}, {0}, true, {-2, 0}, {-1}};
    const LpSolution vertex{2, 2, 0, {0, 2}, {0.5, 0}, {0.5}, {0}, true, {-1, 0}, {-1}};
    const LpSolution slacks{2, 0, 0, {0, 0}, {1, 1}, {0}, {4}, true, {-1, -1}, {0}};
    EXPECT_EQ(judge_optimal(&lp, &good), "");
    EXPECT_NE(judge_optimal(&lp, &vertex), "");
    EXPECT_NE(judge_optimal(&lp, &slacks), "");

    // two equal rows, two equal columns basic: the right count, but no basis
    const LpModel twice = lp_make({{}, {}}, {{{1, 1}, '=', 2}, {{1, 1}, '=', 2}});
    LpSolution s{2, 0, 0, {2, 0}, {0, 0}, {0, 0}, {0, 0}, true, {0, 0}, {-1, -1}};
    EXPECT_NE(judge_optimal(&twice, &s), "");
    s.vbasis = {0, -1};
    s.cbasis = {-1, 0};
    EXPECT_EQ(judge_optimal(&twice, &s), "");
}
