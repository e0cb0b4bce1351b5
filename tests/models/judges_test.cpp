// judges_test.cpp -- the judges of exact answers, of optimality and of hostile models: planted faults are seen
//
// Each answer of the exact judge is proved from its certificate wherever it is used; here the proof is tested.
#include "support/hostile_gen.h"
#include "support/hostile_judge.h"
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

TEST(LpCheck, sees_a_vertex_that_is_not_optimal_and_a_singular_basis)
{
    // max x + y, x + 2y <= 4, x <= 3: optimum 3.5 at (3, 0.5); (0, 2) is a vertex with value 2
    LpModel lp = lp_make({{1, 0, 3}, {1}}, {{{1, 2}, '<', 4}});
    lp.sense = -1;
    const LpSolution good{2, 3.5, 0, {3, 0.5}, {0.5, 0}, {0.5}, {0}, true, {-2, 0}, {-1}};
    const LpSolution vertex{2, 2, 0, {0, 2}, {0.5, 0}, {0.5}, {0}, true, {-1, 0}, {-1}};
    EXPECT_EQ(judge_optimal(&lp, &good), "");
    EXPECT_NE(judge_optimal(&lp, &vertex), "");

    // two equal rows, two equal columns basic: the right count, but no basis
    const LpModel twice = lp_make({{}, {}}, {{{1, 1}, '=', 2}, {{1, 1}, '=', 2}});
    LpSolution s{2, 0, 0, {2, 0}, {0, 0}, {0, 0}, {0, 0}, true, {0, 0}, {-1, -1}};
    EXPECT_NE(judge_optimal(&twice, &s), "");
    s.vbasis = {0, -1};
    s.cbasis = {-1, 0};
    EXPECT_EQ(judge_optimal(&twice, &s), "");
}

// ---- The judge of hostile models, and their generators ----

// Every verdict is met, and the planned points of the tall ones violate next to nothing.
TEST(HostileGen, families_have_every_verdict_and_keep_their_word)
{
    for (const HostileFamily &family : hostile_families()) {
        int seen[3] = {0, 0, 0};
        for (uint64_t seed = 0; seed < 60; seed++) {
            const HostileModel h = hostile_generate(family, seed);
            seen[int(rational_solve(&h.lp, 1e-9).status)]++;
            if (h.kind != HostileKind::PLAIN || family.generate != hostile_tall) continue;
            EXPECT_NE(rational_solve(&h.lp, 1e-11).status, LpStatus::INFEASIBLE) << seed;
        }
        for (const int count : seen) EXPECT_GE(count, 4) << family.name;
    }
}

static HostileOutcome exact_outcome(const LpModel &lp)
{
    HostileOutcome o;
    o.solution = exact_solution(&lp, rational_solve(&lp));
    return o;
}

static Verdict verdict_of(const LpModel &lp, const HostileOutcome &outcome)
{
    HostileTruth truth(&lp);
    return hostile_judge(&truth, &outcome).verdict;
}

TEST(HostileJudge, sees_each_planted_fault_of_an_optimum)
{
    const LpModel lp = corner();
    const HostileOutcome right = exact_outcome(lp);
    ASSERT_EQ(verdict_of(lp, right), Verdict::RIGHT);
    using Outcome = HostileOutcome;
    const struct {
        Verdict expected;
        double step; // of the second column, with its objective
        std::function<void(Outcome *)> plant;
    } faults[] = {
        {Verdict::SILENT, 1.1e-6, [](Outcome *) {}},
        {Verdict::RIGHT, 0.9e-6, [](Outcome *) {}},
        {Verdict::WARNED, 1.1e-6, [](Outcome *o) { o->warned_primal = true; }},
        {Verdict::GROSS, 1.1e-3, [](Outcome *o) { o->warned_primal = true; }},
        {Verdict::SILENT, 1.1e-6, [](Outcome *o) { o->warned_dual = true; }}, // other kind
        {Verdict::SILENT, 0, [](Outcome *o) { o->solution.pi[0] += 1.1e-6; }},
        {Verdict::SILENT, 0, [](Outcome *o) { o->solution.rc[0] += 1.1e-6; }},
        {Verdict::SILENT, 0, [](Outcome *o) { o->solution.x[0] = 1; }}, // not optimal
        {Verdict::OBJECTIVE, 0, [](Outcome *o) { o->solution.objval += 1e-9; }},
        {Verdict::OTHER, 0, [](Outcome *o) { o->solution.x[0] = NAN; }},
        {Verdict::OTHER, 0, [](Outcome *o) { o->solution.pi.clear(); }},
        {Verdict::OTHER, 0, [](Outcome *o) { o->error = TVX_ERROR_NUMERIC; }},
        {Verdict::OTHER, 0, [](Outcome *o) { o->solution.status = TVX_CUTOFF; }},
        {Verdict::REFUSED, 0, [](Outcome *o) { o->solution.status = TVX_INFEASIBLE; }},
        {Verdict::REFUSED_EITHER, 0,
         [](Outcome *o) { o->solution.status = TVX_INF_OR_UNBD; }},
        {Verdict::FALSE_UNBOUNDED, 0,
         [](Outcome *o) { o->solution.status = TVX_UNBOUNDED; }},
        {Verdict::NUMERIC, 0, [](Outcome *o) { o->solution.status = TVX_NUMERIC; }},
        {Verdict::RUNAWAY, 0, [](Outcome *o) { o->solution.status = TVX_ITERATION_LIMIT; }},
        {Verdict::RUNAWAY, 0, [](Outcome *o) { o->solution.iterations = 151; }},
        {Verdict::SLOW, 0, [](Outcome *o) { o->seconds = 10.1; }}};
    for (const auto &fault : faults) {
        HostileOutcome o = right;
        o.solution.x[1] += fault.step;
        o.solution.objval -= fault.step;
        fault.plant(&o);
        EXPECT_EQ(verdict_of(lp, o), fault.expected) << &fault - faults;
    }
}

// A cost of 1e-7 on a column that can reach 1e6: the tolerance explains a value that is 0.1 off, and says so.
TEST(HostileJudge, tells_loose_values_from_wrong_ones)
{
    const LpModel lp = lp_make({{-1e-7, 0, 1e6}}, {});
    HostileOutcome o = exact_outcome(lp);
    o.solution.x[0] = 0;
    o.solution.objval = 0;
    EXPECT_EQ(verdict_of(lp, o), Verdict::LOOSE);
    o.optimality = 1e-8;
    EXPECT_EQ(verdict_of(lp, o), Verdict::SILENT);
}

TEST(HostileJudge, draws_the_line_of_infeasibility_where_it_is_said)
{
    const auto status = [](double gap, int said) {
        // gap apart: feasible when relaxed by half of it
        const LpModel lp = lp_make({{1}}, {{{1}, '<', 1}, {{1}, '>', 1 + gap}});
        HostileOutcome o;
        o.solution.status = said;
        o.solution.objval = 1;
        o.solution.x = {1};
        o.solution.rc = {0};
        o.solution.pi = {0, 1};
        o.warned_primal = o.warned_dual = true;
        return verdict_of(lp, o);
    };
    EXPECT_EQ(status(1.9e-9, TVX_INFEASIBLE), Verdict::REFUSED);
    EXPECT_EQ(status(2.1e-9, TVX_INFEASIBLE), Verdict::RIGHT);
    EXPECT_EQ(status(1.9e-9, TVX_INF_OR_UNBD), Verdict::REFUSED_EITHER);
    EXPECT_EQ(status(2.1e-9, TVX_INF_OR_UNBD), Verdict::RIGHT);
    EXPECT_EQ(status(2.1e-9, TVX_UNBOUNDED), Verdict::FALSE_UNBOUNDED);
    EXPECT_EQ(status(1, TVX_UNBOUNDED), Verdict::FALSE_UNBOUNDED);
    EXPECT_EQ(status(0.9e-6, TVX_OPTIMAL), Verdict::RIGHT);
    EXPECT_EQ(status(3.9e-6, TVX_OPTIMAL), Verdict::WARNED);
    EXPECT_EQ(status(4.1e-6, TVX_OPTIMAL), Verdict::FALSE_OPTIMAL);
}

TEST(HostileJudge, a_ray_makes_unbounded_right)
{
    const LpModel lp = lp_make({{-1}}, {{{-1}, '<', 4}});
    HostileOutcome o;
    for (const int said : {TVX_UNBOUNDED, TVX_INF_OR_UNBD, TVX_INFEASIBLE}) {
        o.solution.status = said;
        EXPECT_EQ(verdict_of(lp, o),
                  said == TVX_INFEASIBLE ? Verdict::REFUSED : Verdict::RIGHT);
    }
}
