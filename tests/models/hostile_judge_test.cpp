// hostile_judge_test.cpp -- the exact judge of hostile LPs and their generators: planted faults are seen
#include "support/hostile_gen.h"
#include "support/hostile_judge.h"
#include "support/solve_judge.h"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

// min -x - y,  x + y <= 3,  0 <= x <= 2,  0 <= y: value -3 at (2, 1), every multiplier -1 or 0
static LpModel corner()
{
    return lp_make({{-1, 0, 2}, {-1}}, {{{1, 1}, '<', 3}});
}

// Every verdict is met, and the planned points of the tall ones violate next to nothing.
TEST(HostileGen, families_have_every_verdict_and_keep_their_word)
{
    for (const HostileFamily &family : hostile_families()) {
        int seen[3] = {0, 0, 0};
        for (uint64_t seed = 0; seed < 60; seed++) {
            const HostileModel h = hostile_generate(family, seed);
            seen[static_cast<int>(rational_solve(&h.lp, 1e-9).status)]++;
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
        {Verdict::SILENT, 1.1e-6,
         [](Outcome *o) { o->warned_dual = true; }}, // the other kind does not count
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
    for (const int said : {TVX_UNBOUNDED, TVX_INF_OR_UNBD}) {
        o.solution.status = said;
        EXPECT_EQ(verdict_of(lp, o), Verdict::RIGHT);
    }
    o.solution.status = TVX_INFEASIBLE;
    EXPECT_EQ(verdict_of(lp, o), Verdict::REFUSED);
}
