// claim_test.cpp -- what presolve says of models without optimum is proved on the models themselves
#include "body/certificate.h"
#include "body/signs.h"
#include "presolve/claim.h"
#include "presolve/dualise.h"
#include "support/dice.h"
#include "support/inside.h"
#include "support/model_gen.h"
#include "support/presolve_try.h"
#include "support/rational_lp.h"
#include <gtest/gtest.h>

static constexpr double INF = 1e30;

// What came of a claim.
enum class Proof { NO_CLAIM, NONE, WRONG, HOLDS };

static Proof judge(const ModelBody *body, const LpClaim *claim)
{
    if (claim->farkas.size > 0)
        return farkas_holds(body, INF, claim->farkas.data) ? Proof::HOLDS : Proof::WRONG;
    if (claim->ray.size == 0) return Proof::NONE;
    bool holds = false;
    if (ray_holds(body, INF, claim->ray.data, &holds)) abort();
    return holds ? Proof::HOLDS : Proof::WRONG;
}

static int run(PresolveWork *w, std::initializer_list<Reduction> reductions)
{
    TRY(mark_everything(w));
    for (const Reduction reduction : reductions) {
        TRY(pre_activity(w));
        TRY(reduction(w));
        TRY(compress(w));
    }
    return 0;
}

// These reductions end the model, and their claim is judged.
static Proof claim_by(const LpModel &lp, std::initializer_list<Reduction> reductions)
{
    const TestEnv env;
    const TestModel model(lp_load(env.env, &lp));
    PresolveWork w;
    LpClaim claim;
    w.WantsProof = true;
    int status = work_load(&w, model.model->body, model.model->env);
    if (status == 0) status = run(&w, reductions);
    if (status != 0 && claim_finish(&w, status, &claim)) abort();
    work_free(&w);
    return status == 0 ? Proof::NO_CLAIM : judge(model.model->body, &claim);
}

// n columns in [0, 10] at these costs.
static LpModel boxes(int n, double cost)
{
    LpModel lp;
    for (int j = 0; j < n; j++) lp_add_var(&lp, cost, 0, 10);
    return lp;
}

TEST(Claim, bounds_against_rows_with_one_entry)
{
    for (const double a : {2.0, -2.0})
        for (const double level : {-1.0, 11.0})
            for (const char sense : {'=', '<', '>'}) {
                LpModel lp = boxes(2, 1);
                lp_add_row_entries(&lp, {{0, a}}, sense, a * level);
                const bool upper = sense == '=' || (sense == '<') == (a > 0);
                const bool lower = sense == '=' || !upper;
                const bool impossible = (level < 0 && upper) || (level > 10 && lower);
                EXPECT_EQ(claim_by(lp, {pre_singleton_rows}),
                          impossible ? Proof::HOLDS : Proof::NO_CLAIM)
                    << a << level << sense;
                // the bound itself comes from another row
                lp.lb[0] = -LP_INFINITY;
                lp.ub[0] = LP_INFINITY;
                lp_add_row_entries(&lp, {{0, 4}}, '>', 0);
                lp_add_row_entries(&lp, {{0, -1}}, '>', -10);
                EXPECT_EQ(claim_by(lp, {pre_singleton_rows, pre_redundant_rows}),
                          impossible ? Proof::HOLDS : Proof::NO_CLAIM)
                    << a << level << sense;
            }
}

TEST(Claim, doubletons_whose_bounds_exclude_each_other)
{
    for (const double a : {1.0, -1.0})
        for (const double b : {2.0, -2.0})
            for (const double over : {-5.0, 5.0}) {
                LpModel lp = boxes(3, 1);
                const double least = 10 * ((a < 0 ? a : 0) + (b < 0 ? b : 0)),
                             most = 10 * ((a > 0 ? a : 0) + (b > 0 ? b : 0));
                lp_add_row_entries(&lp, {{0, a}, {1, b}}, '=',
                                   over < 0 ? least + over : most + over);
                lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 1}}, '<', 100);
                EXPECT_EQ(claim_by(lp, {pre_aggregate}), Proof::HOLDS) << a << b << over;
            }
}

TEST(Claim, chains_of_substitutions_that_end_in_an_empty_row)
{
    for (const double sign : {1.0, -1.0})
        for (const int length : {2, 5, 30}) {
            LpModel lp; // x_{k+1} = 3/7 x_k + x_{k+2}, ends are tied otherwise
            for (int j = 0; j <= length; j++) lp_add_var(&lp, 1, -LP_INFINITY, LP_INFINITY);
            for (int j = 0; j < length; j++)
                lp_add_row_entries(&lp, {{j, 3.0 / 7}, {j + 1, -1}}, '=', 0.1 * j);
            std::vector<std::pair<int, double>> sum;
            for (int j = 0; j < length; j++) { // the sum of all rows, moved
                sum.emplace_back(j, 3.0 / 7);
                sum.emplace_back(j + 1, -1.0);
            }
            lp_add_row_entries(&lp, sum, '=', 0.05 * length * (length - 1) + sign);
            EXPECT_EQ(claim_by(lp, {pre_aggregate, pre_redundant_rows}), Proof::HOLDS)
                << length << sign;
        }
}

TEST(Claim, bounds_that_rows_imply_and_that_exclude_each_other)
{
    LpModel lp = boxes(3, 1);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 4);
    lp_add_row_entries(&lp, {{1, -1}, {2, 1}}, '<', -2);
    lp_add_row_entries(&lp, {{0, -1}, {2, -1}}, '<', -9);
    EXPECT_EQ(claim_by(lp, {pre_implied_bounds}), Proof::HOLDS);
}

TEST(Claim, parallel_and_dependent_rows)
{
    for (const char sense : {'=', '<', '>'})
        for (const double f : {2.0, -0.5}) {
            LpModel lp;
            for (int j = 0; j < 3; j++) lp_add_var(&lp, 1, -LP_INFINITY, LP_INFINITY);
            const bool at_most = (sense == '<') == (f > 0);
            lp_add_row_entries(&lp, {{0, 1}, {1, 2}, {2, 3}}, '=', 4);
            lp_add_row_entries(&lp, {{0, f}, {1, 2 * f}, {2, 3 * f}}, sense,
                               f * (at_most ? 3 : 5));
            EXPECT_EQ(claim_by(lp, {pre_duplicate_rows}), Proof::HOLDS) << sense << f;
            lp.senses[0] = at_most ? '>' : '<';
            if (sense == '=') continue;
            EXPECT_EQ(claim_by(lp, {pre_duplicate_rows}), Proof::HOLDS) << sense << f;
        }
    for (const double rhs : {5.0, 7.0}) {
        LpModel lp;
        for (int j = 0; j < 4; j++) lp_add_var(&lp, 0, -LP_INFINITY, LP_INFINITY);
        lp_add_row_entries(&lp, {{0, 1}, {1, 2}, {3, 1}}, '=', 2);
        lp_add_row_entries(&lp, {{1, 1}, {2, 3}, {3, 2}}, '=', 4);
        lp_add_row_entries(&lp, {{0, 1}, {1, 3}, {2, 3}, {3, 3}}, '=', rhs);
        EXPECT_EQ(claim_by(lp, {pre_dependent_rows}), Proof::HOLDS) << rhs;
    }
}

TEST(Claim, columns_that_run_away)
{
    for (const double sign : {1.0, -1.0}) {
        LpModel lp = boxes(2, 1);
        lp_add_var(&lp, -sign, sign > 0 ? 0 : -LP_INFINITY, sign > 0 ? LP_INFINITY : 0);
        EXPECT_EQ(claim_by(lp, {pre_fix_empty}), Proof::HOLDS);
        lp_add_row_entries(&lp, {{0, 1}, {2, -sign}}, '<', 4);
        EXPECT_EQ(claim_by(lp, {pre_columns}), Proof::HOLDS);
    }
    LpModel lp;
    lp_add_var(&lp, 2, 0, LP_INFINITY);
    lp_add_var(&lp, 1, -LP_INFINITY, 10);
    lp_add_var(&lp, 5, 0, 10);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}, {2, 1}}, '=', 3);
    lp_add_row_entries(&lp, {{0, 2}, {1, -2}, {2, -1}}, '<', 3);
    lp.obj[1] = -1;
    EXPECT_EQ(claim_by(lp, {pre_duplicate_cols}), Proof::NO_CLAIM);
    lp.obj[1] = -3;
    lp.lb[1] = 0;
    lp.ub[1] = LP_INFINITY;
    EXPECT_EQ(claim_by(lp, {pre_duplicate_cols}), Proof::HOLDS);
    LpModel free_ones;
    for (int j = 0; j < 3; j++) lp_add_var(&free_ones, j, -LP_INFINITY, LP_INFINITY);
    lp_add_row_entries(&free_ones, {{0, 1}, {2, 1}}, '=', 3);
    lp_add_row_entries(&free_ones, {{1, 1}, {2, 2}}, '=', 3);
    lp_add_row_entries(&free_ones, {{0, 2}, {1, 1}, {2, 4}}, '<', 3);
    EXPECT_EQ(claim_by(free_ones, {pre_dependent_cols}), Proof::NO_CLAIM);
    free_ones.obj[2] = 7;
    EXPECT_EQ(claim_by(free_ones, {pre_dependent_cols}), Proof::HOLDS);
}

TEST(Claim, duals_that_exclude_each_other)
{
    LpModel lp; // x0 - x1 has no end
    for (const double cost : {-2.0, 1.0}) lp_add_var(&lp, cost, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}}, '<', 4);
    lp_add_row_entries(&lp, {{0, -1}, {1, -1}}, '<', 4);
    EXPECT_EQ(claim_by(lp, {pre_dual_bounds}), Proof::HOLDS);
}

TEST(Claim, the_way_back_takes_proofs_through_what_came_before)
{
    LpModel lp = boxes(4, 1); // a forced row, a slack, and then a contradiction
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 0);
    const int slack = lp_add_var(&lp, 0, 0, 3);
    lp_add_row_entries(&lp, {{0, -5}, {2, 1}, {3, 2}, {slack, 1}}, '=', 40);
    const TestEnv env;
    const TestModel model(lp_load(env.env, &lp));
    LpClaim claim;
    EXPECT_EQ(Reduced(model, &claim).status, PRESOLVE_INF_OR_UNBD);
    EXPECT_EQ(judge(model.model->body, &claim), Proof::HOLDS);
}

// ---- random models ----
struct Score {
    int holds = 0, without = 0, wrong = 0;
    void add(Proof proof)
    {
        holds += proof == Proof::HOLDS;
        without += proof == Proof::NONE;
        wrong += proof == Proof::WRONG;
    }
    int lost() const { return without + wrong; }
    double share() const { return lost() / (lost() + holds + 1e-9); }
};

static constexpr double LOST = 0.05; // proofs that reductions may lose

// The model's own verdict; proofs never say anything else.
static void expect_right(const LpModel *lp, const LpClaim *claim, Proof proof,
                         uint64_t seed)
{
    if (proof != Proof::HOLDS) return;
    const LpStatus status = rational_solve(lp).status;
    if (claim->farkas.size > 0)
        EXPECT_EQ(status, LpStatus::INFEASIBLE) << seed;
    else
        EXPECT_NE(status, LpStatus::OPTIMAL) << seed;
}

TEST(Claim, tiny_models_are_proved_to_be_what_presolve_says)
{
    const TestEnv env;
    Score score;
    for (uint64_t seed = 0; seed < 6000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, {});
        const TestModel model(lp_load(env.env, &lp));
        LpClaim claim;
        if (Reduced(model, &claim).status == 0) continue;
        const Proof proof = judge(model.model->body, &claim);
        score.add(proof);
        expect_right(&lp, &claim, proof, seed);
    }
    EXPECT_GT(score.holds, 500);
    EXPECT_LT(score.share(), LOST)
        << score.without << " without, " << score.wrong << " wrong";
}

// The exact judge's vectors of a model, in the signs of its body.
static void exact_claim(const ModelBody *body, const RationalResult &exact, LpClaim *claim)
{
    const int n = body->numvars, m = body->numconstrs;
    if (exact.status == LpStatus::UNBOUNDED && !array_assign(&claim->ray, n, 0.0))
        for (int j = 0; j < n; j++)
            claim->ray[j] = exact.ray[static_cast<size_t>(j)].get_d();
    if (exact.status != LpStatus::INFEASIBLE || array_assign(&claim->farkas, m, 0.0))
        return;
    for (const int sign : {1, -1}) {
        for (int i = 0; i < m; i++)
            claim->farkas[i] =
                sign * row_sign(body, i) * exact.farkas[static_cast<size_t>(i)].get_d();
        if (farkas_holds(body, INF, claim->farkas.data)) return;
    }
}

TEST(Claim, proofs_of_reduced_models_are_proofs_of_the_models)
{
    const TestEnv env;
    Score score[2];
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed);
        LpModel lp = gen_tiny(&dice, {.max_vars = 12, .max_rows = 12});
        const TestModel model(lp_load(env.env, &lp));
        const Reduced left(model);
        if (!left.body()) continue;
        LpModel reduced;
        ASSERT_EQ(lp_read_back(BodyView(model.model->env, left.body()), &reduced), 0);
        const RationalResult exact = rational_solve(&reduced);
        if (exact.status == LpStatus::OPTIMAL || exact.crossed >= 0) continue;
        LpClaim small, claim;
        exact_claim(left.body(), exact, &small);
        if (judge(left.body(), &small) != Proof::HOLDS) continue; // by rounding
        if (small.farkas.size > 0) {
            ASSERT_EQ(array_resize(&claim.farkas, lp.num_rows()), 0);
            ASSERT_EQ(postsolve_farkas(left.result, small.farkas.data, claim.farkas.data),
                      0);
        } else {
            ASSERT_EQ(array_resize(&claim.ray, lp.num_vars()), 0);
            ASSERT_EQ(postsolve_ray(left.result, small.ray.data, claim.ray.data), 0);
        }
        const Proof proof = judge(model.model->body, &claim);
        score[small.ray.size > 0].add(proof);
        expect_right(&lp, &claim, proof, seed);
    }
    EXPECT_GT(score[0].holds + score[1].holds, 40);
    EXPECT_LT(score[0].share(), LOST) << score[0].holds << " " << score[0].wrong;
    EXPECT_LT(score[1].share(), LOST) << score[1].holds << " " << score[1].wrong;
}

TEST(Claim, proofs_of_the_dual_form_are_proofs_of_the_model)
{
    const TestEnv env;
    int infeasible = 0, unbounded = 0;
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, {});
        const TestModel model(lp_load(env.env, &lp));
        if (rational_solve(&lp).crossed >= 0) continue;
        ModelBody *dual = nullptr;
        TVXmodel *out = nullptr;
        ASSERT_EQ(dualise(model.model->body, TVXgetenv(model), &dual), 0);
        ASSERT_EQ(model_of_body(TVXgetenv(model), EnvUse::SHARED, dual, &out), 0);
        const TestModel owner(out);
        LpModel form;
        ASSERT_EQ(lp_read_back(out, &form), 0);
        const RationalResult exact = rational_solve(&form);
        if (exact.status == LpStatus::OPTIMAL) continue;
        LpClaim of_dual, claim;
        exact_claim(dual, exact, &of_dual);
        if (exact.status == LpStatus::UNBOUNDED) {
            infeasible++;
            ASSERT_EQ(array_resize(&claim.farkas, lp.num_rows()), 0);
            dual_ray_to_farkas(model.model->body, INF, of_dual.ray.data, claim.farkas.data);
        } else {
            unbounded++;
            ASSERT_EQ(array_resize(&claim.ray, lp.num_vars()), 0);
            dual_farkas_to_ray(model.model->body, INF, of_dual.farkas.data, claim.ray.data);
        }
        EXPECT_EQ(judge(model.model->body, &claim), Proof::HOLDS) << seed;
    }
    EXPECT_GT(infeasible, 100);
    EXPECT_GT(unbounded, 100);
}
