// primal_test.cpp -- pricings and starts of the primal: whatever the way, the same answer in a vertex
#include "simplex/primal.h"
#include "support/model_test.h"
#include "support/structured_gen.h"

namespace
{
// Solves as set up; with `x` from that point.
const sopt *solve(TVXmodel *model, SimplexMethod method, const double *x = nullptr)
{
    EXPECT_EQ(simplex_alone(model, {.Method = method, .X = x}), 0);
    return model->lp.simplex;
}

void expect_same(const sopt *a, const sopt *b)
{
    ASSERT_EQ(a->Status, b->Status);
    if (a->Status != SIMPLEX_OPTIMAL) return;
    EXPECT_NEAR(a->Obj, b->Obj, 1e-6 * (1 + std::abs(a->Obj)));
}

// More columns than rows by far: the automatic choice begins with partial pricing.
LpModel wide_covering(Dice *dice, int rows, int columns)
{
    LpModel lp;
    for (int i = 0; i < rows; i++) lp_add_row(&lp, '>', dice->range(1, 9));
    for (int j = 0; j < columns + rows; j++) { // the last ones cover each row without limit
        const bool last = j >= columns;
        lp_add_var(&lp, last ? 100 : dice->range(1, 50), 0,
                   !last && dice->chance(30) ? dice->range(1, 3) : LP_INFINITY);
        for (int i = 0; i < rows; i++)
            if (last ? i == j - columns : dice->chance(40))
                lp_set_entry(&lp, i, j, last ? 1 : dice->range(1, 5));
    }
    return lp;
}

// A point within the bounds, on them here and there; free variables anywhere.
std::vector<double> draw_point(const LpModel *lp, Dice *dice)
{
    std::vector<double> x;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const bool lower = !lp_is_infinite(lp->lb[j]), upper = !lp_is_infinite(lp->ub[j]);
        const double low = lower ? lp->lb[j] : upper ? lp->ub[j] - 10 : -10;
        const double high = upper ? lp->ub[j] : low + 10;
        x.push_back(dice->chance(30) ? low : dice->real(low, high));
    }
    return x;
}

int superbasics_left(const sopt *s)
{
    int count = 0;
    for (int j = 0; j < s->NumVars; j++) count += is_superbasic(s, j);
    return count;
}
} // namespace

// The other kinds are drawn in models/exact_test.cpp and models/differential_test.cpp.
TEST(PrimalPricing, every_partial_kind_finds_the_same_answer)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 40; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed + 77);
        const LpModel lp = seed % 4 == 0 ? wide_covering(&dice, 8, 300)
                                         : dice.pick(all_families()).generate(&dice, 30).lp;
        const TestModel first(lp_load(env.env, &lp));
        solve(first, METHOD_PRIMAL);
        for (const int kind : {1, 2, 3}) {
            const TestModel other(lp_load(env.env, &lp,
                                          {{"SimplexPricing", 0},
                                           {"TARV_PAR_PRIMALPARTIAL", kind},
                                           {"IterationLimit", 50000}}));
            expect_same(solve(other, METHOD_PRIMAL), first.model->lp.simplex);
        }
    }
}

// Exact weights from slacks; those of the framework from another basis; parts of very many columns; and Devex after the
// dual. What the caller asks for is done.
TEST(PrimalPricing, is_chosen_by_the_shape_and_the_start)
{
    const TestEnv env;
    for (const int columns : {10, 300}) {
        Dice dice(1);
        const LpModel lp = wide_covering(&dice, 8, columns);
        const TestModel model(lp_load(env.env, &lp));
        solve(model, METHOD_PRIMAL);
        sopt *s = model->lp.simplex;
        const auto chosen = [s] {
            primal_choose_pricing(s, s->Double);
            return s->Double->Primal->PricingCur;
        };
        s->SwitchCount = 0;
        ASSERT_FALSE(is_slack_basis(s));
        EXPECT_EQ(chosen(), columns == 300 ? PRICE_PARTIAL : PRICE_QUICK);
        s->SwitchCount = 1;
        EXPECT_EQ(chosen(), PRICE_DEVEX);
        s->Env->SimplexPricing = PRICE_STEEPEST;
        EXPECT_EQ(chosen(), PRICE_STEEPEST);
        s->Env->SimplexPricing = -1;
        s->SwitchCount = 0;
        start_slack_basis(s);
        EXPECT_EQ(chosen(), columns == 300 ? PRICE_PARTIAL : PRICE_STEEPEST);
    }
}

TEST(PrimalSuper, a_start_from_a_point_ends_in_a_vertex_with_the_same_answer)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 60; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed + 31);
        const LpModel lp = dice.pick(all_families()).generate(&dice, dice.range(4, 40)).lp;
        const TestModel plain(lp_load(env.env, &lp)), started(lp_load(env.env, &lp));
        const std::vector<double> x = draw_point(&lp, &dice);
        const sopt *s = solve(started, METHOD_DUAL, x.data());
        expect_same(solve(plain, METHOD_DUAL), s);
        if (s->Status != SIMPLEX_OPTIMAL) continue; // a ray may be met amid the pushes
        EXPECT_EQ(superbasics_left(s), 0);
        EXPECT_EQ(s->Superbasics, 0);
    }
}

TEST(PrimalSuper, a_limit_amid_the_pushes_leaves_a_start_for_the_next_solve)
{
    const TestEnv env;
    Dice dice(5);
    const LpModel lp = gen_blending(&dice, 30).lp;
    const TestModel plain(lp_load(env.env, &lp)), started(lp_load(env.env, &lp));
    const std::vector<double> x = draw_point(&lp, &dice);
    TVXgetenv(started)->IterationLimit = 3;
    ASSERT_EQ(solve(started, METHOD_AUTO, x.data())->Status, SIMPLEX_ITERATION_LIMIT);
    EXPECT_GT(superbasics_left(started.model->lp.simplex), 0);
    TVXgetenv(started)->IterationLimit = 1e9;
    expect_same(solve(started, METHOD_AUTO), solve(plain, METHOD_DUAL));
    EXPECT_EQ(superbasics_left(started.model->lp.simplex), 0);
}

// Each step goes where the sum of infeasibilities is least, and no further.
TEST(PrimalRatio, a_step_of_phase_1_never_adds_infeasibility)
{
    const TestEnv env;
    int steps = 0;
    for (uint64_t seed = 0; seed < 60; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        LpModel lp = dice.pick(all_families()).generate(&dice, 20).lp;
        for (double &cost : lp.obj) cost = 0; // nothing else counts
        const TestModel model(
            lp_load(env.env, &lp, {{"PerturbValue", 0}, {"IterationLimit", 0}}));
        double before = LP_INFINITY;
        for (int k = 0; k < 40; k++) {
            const sopt *s = solve(model, METHOD_PRIMAL);
            if (s->Status != SIMPLEX_ITERATION_LIMIT || s->Method != METHOD_PRIMAL) break;
            const double sum = measure_infeasibility(s, s->Double).PrimalSum;
            EXPECT_LE(sum, before + 1e-6 * (1 + sum)) << k;
            before = sum;
            steps += k > 0;
            TVXgetenv(model)->IterationLimit = 1;
        }
    }
    EXPECT_GT(steps, 200);
}
