// hostile_judge_test.cpp -- the exact judge of hostile LPs and their generators: planted faults are seen
#include "support/hostile_gen.h"
#include "support/hostile_judge.h"
#include "support/model_gen.h"
#include "support/rational_certificate.h"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

// min -x - y,  x + y <= 3,  0 <= x <= 2,  0 <= y: value -3 at (2, 1), every multiplier -1 or 0
static LpModel corner()
{
    LpModel lp;
    lp_add_var(&lp, -1, 0, 2);
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 3);
    return lp;
}

TEST(RationalLp, relaxing_and_tightening_move_every_side_exactly)
{
    LpModel lp = corner();
    EXPECT_EQ(rational_solve(&lp, 0.25).value, mpq_class(-13, 4));
    EXPECT_EQ(rational_solve(&lp, -0.25).value, mpq_class(-11, 4));
    lp_add_row_entries(&lp, {{0, 1}}, '>', 2.5); // half a unit beyond the bound
    EXPECT_EQ(rational_solve(&lp).status, LpStatus::INFEASIBLE);
    EXPECT_EQ(rational_solve(&lp, 0.1875).status, LpStatus::INFEASIBLE);
    EXPECT_EQ(rational_solve(&lp, 0.25).status, LpStatus::OPTIMAL);
    LpModel equation = corner();
    equation.senses[0] = '='; // cannot be tightened
    EXPECT_EQ(rational_solve(&equation, -0.25).value, -3);
    EXPECT_EQ(rational_solve(&equation, 0.25).value, mpq_class(-13, 4));
}

TEST(RationalLp, relaxation_sees_what_doubles_cannot_add)
{
    LpModel lp; // 1e10 <= x <= 1e10 - 1.9e-6, where 1e10 + 1e-7 is 1e10 in doubles
    const double high = 1e10 - 1.9073486328125e-06;
    lp_add_var(&lp, 1, 1e10, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}}, '<', high);
    EXPECT_EQ(rational_solve(&lp, 9.5e-7).status, LpStatus::INFEASIBLE);
    EXPECT_EQ(rational_solve(&lp, 9.6e-7).status, LpStatus::OPTIMAL);
    const RationalResult fits = rational_solve(&lp, 9.6e-7);
    EXPECT_EQ(rational_verify(&lp, &fits, 9.6e-7), "");
    EXPECT_NE(rational_verify(&lp, &fits, 9.5e-7), "");
}

// The first attempt in many digits hides the method in rationals; here it stands alone.
TEST(RationalLp, the_method_in_rationals_finds_the_same)
{
    for (uint64_t seed = 0; seed < 500; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, TinyLimits{});
        const RationalResult right = rational_solve(&lp);
        if (right.crossed >= 0) continue;
        RationalResult slow;
        ASSERT_TRUE(rational_certificate(&lp, 0, dictionary_solve<mpq_class>(&lp, 0, false),
                                         &slow));
        ASSERT_EQ(rational_verify(&lp, &slow), "") << seed;
        ASSERT_EQ(slow.status, right.status) << seed;
        ASSERT_EQ(slow.value, right.value) << seed;
    }
}

TEST(HostileGen, families_have_every_verdict_and_keep_their_word)
{
    for (const HostileFamily &family : hostile_families()) {
        int seen[3] = {0, 0, 0}, plain = 0, feasible = 0;
        for (uint64_t seed = 0; seed < 60; seed++) {
            const HostileModel h = hostile_generate(family, seed);
            const HostileModel again = hostile_generate(family, seed);
            ASSERT_TRUE(lp_same(&h.lp, &again.lp));
            const LpStatus truth = rational_solve(&h.lp, 1e-9).status;
            seen[static_cast<int>(truth)]++;
            if (h.kind != HostileKind::PLAIN) continue;
            plain++;
            feasible += rational_solve(&h.lp, 1e-11).status != LpStatus::INFEASIBLE;
        }
        for (const int count : seen) EXPECT_GE(count, 4) << family.name;
        if (family.generate == hostile_tall) {
            EXPECT_EQ(feasible, plain);
        }
    }
}

static HostileOutcome exact_outcome(const LpModel &lp)
{
    const RationalResult exact = rational_solve(&lp);
    HostileOutcome o;
    o.solution.status = TVX_OPTIMAL;
    o.solution.objval = exact.value.get_d();
    for (const mpq_class &v : exact.x) o.solution.x.push_back(v.get_d());
    for (const mpq_class &v : exact.pi) o.solution.pi.push_back(v.get_d());
    for (size_t j = 0; j < lp.obj.size(); j++) {
        mpq_class rc = lp.obj[j];
        for (const LpEntry &e : lp.cols[j]) rc -= e.value * exact.pi[e.row];
        o.solution.rc.push_back(rc.get_d());
    }
    return o;
}

static Verdict verdict_of(const LpModel &lp, const HostileOutcome &outcome)
{
    HostileTruth truth(&lp);
    return hostile_judge(&truth, &outcome).verdict;
}

static void move_second(HostileOutcome *outcome, double step)
{
    outcome->solution.x[1] += step;
    outcome->solution.objval -= step;
}

TEST(HostileJudge, sees_each_planted_fault_of_an_optimum)
{
    const LpModel lp = corner();
    const HostileOutcome right = exact_outcome(lp);
    ASSERT_EQ(verdict_of(lp, right), Verdict::RIGHT);
    const struct {
        Verdict expected;
        std::function<void(HostileOutcome *)> plant;
    } faults[] = {
        {Verdict::SILENT, [](HostileOutcome *o) { move_second(o, 1.1e-6); }},
        {Verdict::RIGHT, [](HostileOutcome *o) { move_second(o, 0.9e-6); }},
        {Verdict::WARNED,
         [](HostileOutcome *o) {
             move_second(o, 1.1e-6);
             o->warned_primal = true;
         }},
        {Verdict::GROSS,
         [](HostileOutcome *o) {
             move_second(o, 1.1e-3);
             o->warned_primal = true;
         }},
        {Verdict::SILENT, // a warning of the other kind does not count
         [](HostileOutcome *o) {
             move_second(o, 1.1e-6);
             o->warned_dual = true;
         }},
        {Verdict::SILENT, [](HostileOutcome *o) { o->solution.pi[0] += 1.1e-6; }},
        {Verdict::SILENT, [](HostileOutcome *o) { o->solution.rc[0] += 1.1e-6; }},
        {Verdict::SILENT,
         [](HostileOutcome *o) {
             o->solution.x = {1, 1};
         }}, // not optimal
        {Verdict::OBJECTIVE, [](HostileOutcome *o) { o->solution.objval += 1e-9; }},
        {Verdict::OTHER, [](HostileOutcome *o) { o->solution.x[0] = NAN; }},
        {Verdict::OTHER, [](HostileOutcome *o) { o->solution.pi.clear(); }},
        {Verdict::OTHER, [](HostileOutcome *o) { o->error = TVX_ERROR_NUMERIC; }},
        {Verdict::OTHER, [](HostileOutcome *o) { o->solution.status = TVX_CUTOFF; }},
        {Verdict::REFUSED, [](HostileOutcome *o) { o->solution.status = TVX_INFEASIBLE; }},
        {Verdict::REFUSED_EITHER,
         [](HostileOutcome *o) { o->solution.status = TVX_INF_OR_UNBD; }},
        {Verdict::FALSE_UNBOUNDED,
         [](HostileOutcome *o) { o->solution.status = TVX_UNBOUNDED; }},
        {Verdict::NUMERIC, [](HostileOutcome *o) { o->solution.status = TVX_NUMERIC; }},
        {Verdict::RUNAWAY,
         [](HostileOutcome *o) { o->solution.status = TVX_ITERATION_LIMIT; }},
        {Verdict::RUNAWAY, [](HostileOutcome *o) { o->solution.iterations = 151; }},
        {Verdict::SLOW, [](HostileOutcome *o) { o->seconds = 10.1; }}};
    for (const auto &fault : faults) {
        HostileOutcome o = right;
        fault.plant(&o);
        EXPECT_EQ(verdict_of(lp, o), fault.expected) << &fault - faults;
    }
}

// A cost of 1e-7 on a column that can reach 1e6: the tolerance explains a value that is 0.1 off, and says so.
TEST(HostileJudge, tells_loose_values_from_wrong_ones)
{
    LpModel lp;
    lp_add_var(&lp, -1e-7, 0, 1e6);
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
        LpModel lp; // gap apart: feasible when relaxed by half of it
        lp_add_var(&lp, 1, 0, LP_INFINITY);
        lp_add_row_entries(&lp, {{0, 1}}, '<', 1);
        lp_add_row_entries(&lp, {{0, 1}}, '>', 1 + gap);
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
    LpModel lp;
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, -1}}, '<', 4);
    HostileOutcome o;
    for (const int said : {TVX_UNBOUNDED, TVX_INF_OR_UNBD}) {
        o.solution.status = said;
        EXPECT_EQ(verdict_of(lp, o), Verdict::RIGHT);
    }
    o.solution.status = TVX_INFEASIBLE;
    EXPECT_EQ(verdict_of(lp, o), Verdict::REFUSED);
}
