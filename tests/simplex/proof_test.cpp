// proof_test.cpp -- what a method claims at its end, against what is so: multipliers and rays that hold and near misses
#include "simplex/sopt.h"
#include "support/model_test.h"

namespace
{
struct Proof : ModelTest {
    // Not scaled, at the basis of slacks, with factors.
    sopt *at_slacks(const LpModel &lp)
    {
        load(lp, {{"Presolve", 0}, {"ScaleFlag", 0}, {"IterationLimit", 0}});
        EXPECT_EQ(TVXoptimize(model), 0);
        return model->lp.simplex;
    }
    // Does this multiplier of the one row prove the model infeasible?
    bool refuted(const LpModel &lp, double multiplier)
    {
        sopt *s = at_slacks(lp);
        s->LimitedFarkas = LimitedProof{};
        svec_clear(&s->Double->Rho);
        svec_add(&s->Double->Rho, 0, multiplier);
        return proves_infeasible(s, s->Double);
    }
    bool unbounded(const LpModel &lp)
    {
        sopt *s = at_slacks(lp);
        return proves_unbounded(s, s->Double, 0, 1);
    }
};

// x + entry z >= 1 with x at most 1 - gap: feasible from z = gap / entry on.
LpModel far_point(double gap, double entry)
{
    return lp_make({{1, 0, 1 - gap}, {0}}, {{{1, entry}, '>', 1}});
}

// min cost x, entry x - y <= 1 with y at most `most`
LpModel far_end(double cost, double entry, double most)
{
    return lp_make({{cost}, {0, 0, most}}, {{{entry, -1}, '<', 1}});
}
} // namespace

TEST_F(Proof, infeasibility_reaches_as_far_as_it_says)
{
    struct Case {
        double gap, entry;
        bool full, widened, limited_exact, limited_widened;
    };
    constexpr Case CASES[] = {
        {0.01, 0, true, true, true, true},
        {0.01, 1e-15, false, false, true, true},   // a point at 1e13
        {0.01, 1e-13, false, false, false, true},  // at 1e11
        {0.01, 1e-10, false, false, false, false}, // at 1e8
        {1e-6, 0, true, false, true, false},       // row and bound give half of it each
        {4e-6, 0, true, true, true, true},
        {3e-9, 0, true, false, true, false},
        {1.5e-9, 0, false, false, true, false}, // violations below 1e-9 each
        {-1, 0, false, false, false, false},
        {0, 0, false, false, false, false},
    };
    for (const Case &c : CASES)
        for (const double multiplier : {1.0, -1.0}) {
            const bool full = refuted(far_point(c.gap, c.entry), multiplier);
            const sopt *s = model->lp.simplex;
            const std::string text = formatted("gap %g, entry %g", c.gap, c.entry);
            EXPECT_EQ(full, c.full) << text;
            EXPECT_EQ(s->WidenedProof != 0, c.widened) << text;
            EXPECT_EQ(s->LimitedFarkas.Exact, c.limited_exact) << text;
            EXPECT_EQ(s->LimitedFarkas.Widened, c.limited_widened) << text;
        }
}

TEST_F(Proof, multipliers_are_solved_for_again_and_kept_with_the_sign_of_the_proof)
{
    for (const double multiplier : {1 + 1e-7, -1 + 1e-7}) {
        ASSERT_TRUE(refuted(far_point(0.01, 0), multiplier));
        EXPECT_EQ(model->lp.simplex->Proof, PROOF_FARKAS);
        EXPECT_EQ(model->lp.simplex->ProofVector[0], 1) << multiplier; // of -x <= -1
    }
}

TEST_F(Proof, a_ray_gains_and_meets_nothing)
{
    EXPECT_TRUE(unbounded(far_end(-1, -1, 1)));
    EXPECT_TRUE(unbounded(far_end(-1, 0, 1)));
    EXPECT_FALSE(unbounded(far_end(1, -1, 1))) << "it costs";
    EXPECT_FALSE(unbounded(far_end(0, -1, 1))) << "it gains nothing";
    EXPECT_FALSE(unbounded(far_end(-1, 1e-12, 1))) << "the row blocks";
    EXPECT_FALSE(unbounded(far_end(-1, 1, LP_INFINITY))) << "the row blocks x alone";
}

// The factors are those of other numbers, as after many updates: solving again corrects small errors and shows large
// ones.
TEST_F(Proof, a_ray_by_wrong_factors_is_mended_or_refused)
{
    for (const double wrong : {1.0, 1 + 1e-6, 3.0}) {
        // min -x - y, x = 2 y, both basic or at a bound
        load(lp_make({{-1}, {-1}}, {{{1, -2}, '=', 0}}),
             {{"Presolve", 0}, {"ScaleFlag", 0}});
        ASSERT_EQ(solved(), TVX_UNBOUNDED);
        sopt *s = model->lp.simplex;
        const int basic = s->BasisHead[0];
        ASSERT_LT(basic, 2);
        ASSERT_EQ(s->Double->Lu.NumUpdates, 0);
        s->Double->Lu.UDiag[0] *= wrong;
        EXPECT_EQ(proves_unbounded(s, s->Double, 1 - basic, 1), wrong < 2) << wrong;
    }
}
