// claim_test.cpp -- what presolve says of models without optimum is proved on the models themselves
//
// What single reductions say is looked at in presolve/reduce/reductions_test.cpp.
#include "body/certificate.h"
#include "body/signs.h"
#include "presolve/claim.h"
#include "presolve/dualise.h"
#include "support/model_gen.h"
#include "support/model_test.h"
#include "support/presolve_try.h"
#include "support/rational_lp.h"
#include <memory>

static constexpr double INF = 1e30;

using Claim = ModelTest;

struct Score {
    int holds = 0, lost = 0; // lost: none, or a wrong one
    void add(bool proof) { (proof ? holds : lost)++; }
    double share() const { return lost / (lost + holds + 1e-9); }
};

static constexpr double LOST = 0.05; // proofs that reductions may lose

// The model's own verdict; proofs never say anything else.
static void expect_right(const LpModel *lp, const LpClaim *claim, uint64_t seed)
{
    const LpStatus status = rational_solve(lp).status;
    if (claim->farkas.size > 0)
        EXPECT_EQ(status, LpStatus::INFEASIBLE) << seed;
    else
        EXPECT_NE(status, LpStatus::OPTIMAL) << seed;
}

// The exact judge's vectors of a model, in the signs of its body.
static void exact_claim(const ModelBody *body, const RationalResult &exact, LpClaim *claim)
{
    const int n = body->numvars, m = body->numconstrs;
    if (exact.status == LpStatus::UNBOUNDED && !array_assign(&claim->ray, n, 0.0))
        for (int j = 0; j < n; j++) claim->ray[j] = exact.ray[j].get_d();
    if (exact.status != LpStatus::INFEASIBLE || array_assign(&claim->farkas, m, 0.0))
        return;
    for (const int sign : {1, -1}) {
        for (int i = 0; i < m; i++)
            claim->farkas[i] = sign * row_sign(body, i) * exact.farkas[i].get_d();
        if (farkas_holds(body, INF, claim->farkas.data)) return;
    }
}

// What presolve itself says, and the exact judge's proofs of what it leaves, taken back.
TEST_F(Claim, proofs_by_presolve_and_of_reduced_models_hold_for_the_models)
{
    Score by_presolve, back[2];
    for (uint64_t seed = 0; seed < 6000; seed++) {
        Dice dice(seed);
        const int size = seed % 2 ? 12 : 8;
        const LpModel lp = gen_tiny(&dice, {.max_vars = size, .max_rows = size});
        load(lp);
        LpClaim small, claim;
        const Reduced left(model, &claim);
        if (left.status != PRESOLVE_OK && size == 8) {
            by_presolve.add(claim_proved(model->body, &claim));
            if (claim_proved(model->body, &claim)) expect_right(&lp, &claim, seed);
        }
        if (!left.body()) continue;
        LpModel reduced;
        ASSERT_EQ(lp_read_back(BodyView(model->env, left.body()), &reduced), 0);
        const RationalResult exact = rational_solve(&reduced);
        if (exact.status == LpStatus::OPTIMAL || exact.crossed >= 0) continue;
        exact_claim(left.body(), exact, &small);
        if (!claim_proved(left.body(), &small)) continue; // by rounding
        if (small.farkas.size > 0) {
            ASSERT_EQ(array_resize(&claim.farkas, lp.num_rows()), 0);
            ASSERT_EQ(postsolve_farkas(left.result, small.farkas.data, claim.farkas.data),
                      0);
        } else {
            ASSERT_EQ(array_resize(&claim.ray, lp.num_vars()), 0);
            ASSERT_EQ(postsolve_ray(left.result, small.ray.data, claim.ray.data), 0);
        }
        back[small.ray.size > 0].add(claim_proved(model->body, &claim));
        if (claim_proved(model->body, &claim)) expect_right(&lp, &claim, seed);
    }
    EXPECT_GT(by_presolve.holds, 500);
    EXPECT_GT(back[0].holds + back[1].holds, 40);
    for (const Score &score : {by_presolve, back[0], back[1]})
        EXPECT_LT(score.share(), LOST);
}

TEST_F(Claim, proofs_of_the_dual_form_are_proofs_of_the_model)
{
    int infeasible = 0, unbounded = 0;
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, {});
        load(lp);
        if (rational_solve(&lp).crossed >= 0) continue;
        ModelBody *dual = nullptr;
        ASSERT_EQ(dualise(model->body, own(), &dual), 0);
        const std::unique_ptr<ModelBody, void (*)(ModelBody *)> owner(dual, body_free);
        LpModel form;
        ASSERT_EQ(lp_read_back(BodyView(own(), dual), &form), 0);
        const RationalResult exact = rational_solve(&form);
        if (exact.status == LpStatus::OPTIMAL) continue;
        LpClaim of_dual, claim;
        exact_claim(dual, exact, &of_dual);
        if (exact.status == LpStatus::UNBOUNDED) {
            infeasible++;
            ASSERT_EQ(array_resize(&claim.farkas, lp.num_rows()), 0);
            dual_ray_to_farkas(model->body, INF, of_dual.ray.data, claim.farkas.data);
        } else {
            unbounded++;
            ASSERT_EQ(array_resize(&claim.ray, lp.num_vars()), 0);
            dual_farkas_to_ray(model->body, INF, of_dual.farkas.data, claim.ray.data);
        }
        EXPECT_TRUE(claim_proved(model->body, &claim)) << seed;
    }
    EXPECT_GT(infeasible, 100);
    EXPECT_GT(unbounded, 100);
}
