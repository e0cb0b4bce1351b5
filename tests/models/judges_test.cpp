// judges_test.cpp -- the judges and generators themselves: planted faults are seen, promises are kept
//
// Each answer of the exact judge is proved from its certificate wherever it is used; here the proof is tested.
#include "support/model_gen.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

// The dual written down as an LP of its own has the same value.
static LpModel write_dual(const LpModel &lp)
{
    // max  rhs y + lb l - ub u    with  A'y + l - u = obj,   y by sense, l, u >= 0 where the bound exists.
    LpModel dual;
    dual.sense = -1;
    for (size_t i = 0; i < lp.rhs.size(); i++)
        lp_add_var(&dual, lp.rhs[i], lp.senses[i] == '>' ? 0 : -LP_INFINITY,
                   lp.senses[i] == '<' ? 0 : LP_INFINITY);
    for (size_t j = 0; j < lp.obj.size(); j++) {
        const int row = lp_add_row(&dual, '=', lp.obj[j] * lp.sense);
        for (const LpEntry &e : lp.cols[j]) lp_set_entry(&dual, row, e.row, e.value);
        if (!lp_is_infinite(lp.lb[j]))
            lp_set_entry(&dual, row, lp_add_var(&dual, lp.lb[j], 0, LP_INFINITY), 1);
        if (!lp_is_infinite(lp.ub[j]))
            lp_set_entry(&dual, row, lp_add_var(&dual, -lp.ub[j], 0, LP_INFINITY), -1);
    }
    return dual;
}

TEST(RationalLp, agrees_with_its_own_dual)
{
    int seen[3] = {0, 0, 0};
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, TinyLimits{});
        const LpModel dual = write_dual(lp);
        const RationalResult p = rational_solve(&lp), d = rational_solve(&dual);
        seen[static_cast<int>(p.status)]++;
        if (p.status == LpStatus::INFEASIBLE) {
            ASSERT_NE(d.status, LpStatus::OPTIMAL) << seed;
            continue;
        }
        ASSERT_EQ(d.status == LpStatus::INFEASIBLE, p.status == LpStatus::UNBOUNDED);
        if (p.status == LpStatus::OPTIMAL) {
            ASSERT_EQ(d.value * lp.sense + lp.objcon, p.value) << seed;
        }
    }
    for (const int count : seen) EXPECT_GE(count, 300); // each verdict is well represented
}

TEST(RationalLp, verifier_refuses_wrong_claims)
{
    // min -x - y,  x + y <= 3,  0 <= x <= 2,  0 <= y: value -3
    LpModel lp;
    lp_add_var(&lp, -1, 0, 2);
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 3);
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

// ---- The checker of optimality ----

static LpSolution solution_of(const LpModel &lp, const RationalResult &exact)
{
    LpSolution s;
    s.objval = exact.value.get_d();
    for (const mpq_class &v : exact.x) s.x.push_back(v.get_d());
    for (const mpq_class &v : exact.pi) s.pi.push_back(v.get_d());
    std::vector<mpq_class> activity(lp.rhs.size());
    for (size_t j = 0; j < lp.obj.size(); j++) {
        mpq_class rc = lp.obj[j];
        for (const LpEntry &e : lp.cols[j]) {
            rc -= e.value * exact.pi[e.row];
            activity[e.row] += e.value * exact.x[j];
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

TEST(LpCheck, accepts_exact_optima_and_sees_each_planted_fault)
{
    for (uint64_t seed = 1000000, count = 0; count < 1500; seed++) {
        Dice dice(seed);
        TinyLimits limits;
        limits.scaled_percent = count % 2 ? 0 : 40;
        const LpModel lp = gen_tiny(&dice, limits);
        const RationalResult exact = rational_solve(&lp);
        if (exact.status != LpStatus::OPTIMAL || lp.obj.empty() || lp.rhs.empty()) continue;
        const LpSolution good = solution_of(lp, exact);
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
    LpModel lp;
    lp.sense = -1;
    lp_add_var(&lp, 1, 0, 3);
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '<', 4);
    const LpSolution good{2, 3.5, 0, {3, 0.5}, {0.5, 0}, {0.5}, {0}, true, {-2, 0}, {-1}};
    const LpSolution vertex{2, 2, 0, {0, 2}, {0.5, 0}, {0.5}, {0}, true, {-1, 0}, {-1}};
    const LpSolution slacks{2, 0, 0, {0, 0}, {1, 1}, {0}, {4}, true, {-1, -1}, {0}};
    EXPECT_EQ(judge_optimal(&lp, &good), "");
    EXPECT_NE(judge_optimal(&lp, &vertex), "");
    EXPECT_NE(judge_optimal(&lp, &slacks), "");

    LpModel twice; // two equal rows, two equal columns basic: the right count, but no basis
    for (int k = 0; k < 2; k++) lp_add_var(&twice, 0, 0, LP_INFINITY);
    for (int k = 0; k < 2; k++) lp_add_row_entries(&twice, {{0, 1}, {1, 1}}, '=', 2);
    LpSolution s{2, 0, 0, {2, 0}, {0, 0}, {0, 0}, {0, 0}, true, {0, 0}, {-1, -1}};
    EXPECT_NE(judge_optimal(&twice, &s), "");
    s.vbasis = {0, -1};
    s.cbasis = {-1, 0};
    EXPECT_EQ(judge_optimal(&twice, &s), "");
}

// ---- Generators ----

TEST(ModelGen, planted_answers_are_right)
{
    for (const FamilyRow &family : all_families()) {
        for (uint64_t seed = 0; seed < 40; seed++) {
            Dice dice(seed);
            const GeneratedLp g = family.generate(&dice, dice.range(3, 14));
            const RationalResult exact = rational_solve(&g.lp);
            const LpStatus expected = g.truth == Truth::OPTIMAL      ? LpStatus::OPTIMAL
                                      : g.truth == Truth::INFEASIBLE ? LpStatus::INFEASIBLE
                                                                     : LpStatus::UNBOUNDED;
            ASSERT_EQ(exact.status, expected) << family.name << " seed " << seed;
            if (g.has_value) {
                ASSERT_EQ(exact.value, g.value) << family.name << " seed " << seed;
            }
        }
    }
}
