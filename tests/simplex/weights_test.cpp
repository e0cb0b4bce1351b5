// weights_test.cpp -- pricing weights of both methods against the lengths that they stand for, by a dense inverse; and
// the best of many against a plain search
#include "simplex/dual.h"
#include "simplex/primal.h"
#include "support/inside.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

namespace
{
constexpr double DRIFT = 1e-3; // of updated weights; a wrong formula is off by far more
constexpr int RUNS = 60;

// Variable j in the basis at hand: B^-1 a_j, by position.
std::vector<long double> column(const sopt *s, const Matrix &inverse, int j)
{
    std::vector<long double> alpha(inverse.size());
    for (size_t k = 0; k < alpha.size(); k++)
        alpha[k] = column_dot(s, j, inverse[k].data());
    return alpha;
}

Matrix basis_inverse(const sopt *s)
{
    const size_t m = size_t(s->NumRows);
    Matrix b(m, std::vector<long double>(m)), unit = b;
    for (size_t i = 0; i < m; i++) unit[i][i] = 1;
    for (int k = 0; k < s->NumRows; k++) {
        const std::vector<long double> a = column(s, unit, s->BasisHead[k]);
        for (size_t i = 0; i < m; i++) b[i][k] = a[i];
    }
    return inverse(b);
}

// What is compared, and whether the formula that updates the weights is exact. Devex weights bound the lengths over the
// framework: after one step from below, and within a factor of 2.
struct Compare {
    bool exact;
    int seen = 0;
    void weight(double weight, long double length)
    {
        seen++;
        if (exact) {
            EXPECT_NEAR(weight / double(length), 1, DRIFT);
            return;
        }
        EXPECT_LE(weight, (1 + DRIFT) * std::max(length, 1.0L));
        EXPECT_LE(length, (1 + DRIFT) * 2 * weight);
    }
};

void compare_dual(const sopt *s, Compare *compare)
{
    const dopt<double> *d = s->Double->Dual;
    const Matrix b = basis_inverse(s);
    for (int k = 0; k < s->NumRows; k++) {
        long double length = 0;
        if (compare->exact)
            for (const long double v : b[k]) length += v * v;
        for (int j = 0; j < s->NumVars && !compare->exact; j++) {
            if (!d->Reference[j] || (is_basic(s, j) && j != s->BasisHead[k])) continue;
            const long double v = is_basic(s, j) ? 1 : column_dot(s, j, b[k].data());
            length += v * v;
        }
        compare->weight(d->Weights[k], length);
    }
}

void compare_primal(const sopt *s, Compare *compare)
{
    const popt<double> *p = s->Double->Primal;
    const Matrix b = basis_inverse(s);
    for (int j = 0; j < s->NumVars; j++) {
        if (is_basic(s, j) || s->VStat[j] == AT_FIXED) continue;
        long double length = p->Reference[j];
        const std::vector<long double> alpha = column(s, b, j);
        for (int k = 0; k < s->NumRows; k++)
            if (p->Reference[s->BasisHead[k]]) length += alpha[k] * alpha[k];
        compare->weight(p->Weights[j], length);
    }
}

// A run that a limit ends, in one leg or in two.
struct Stopped {
    TestEnv env;
    TestModel model;
    Stopped(Dice *dice, SimplexMethod method, int pricing, int iterations, int legs)
        : model(load(dice, env.env))
    {
        TVXenv *own = TVXgetenv(model);
        for (int leg = 1; leg <= legs; leg++) {
            EXPECT_EQ(settings_apply(own, {{"SimplexPricing", pricing},
                                           {"TARV_PAR_EXACTNORM", 1},
                                           {"IterationLimit", iterations}}),
                      0);
            EXPECT_EQ(simplex_alone(model, {.Method = method}), 0);
        }
    }
    static TVXmodel *load(Dice *dice, TVXenv *env)
    {
        const LpModel lp = dice->pick(all_families()).generate(dice, 25).lp;
        return lp_load(env, &lp);
    }
    sopt *record() const { return model->lp.simplex; }
    // The method has ended by the limit itself, with weights, and no basis had to be repaired on the way.
    bool usable(SimplexMethod method) const
    {
        const sopt *s = record();
        if (s->Status != SIMPLEX_ITERATION_LIMIT || s->Method != method || s->Quad ||
            s->SingularCount > 0 || s->SwitchCount > 0)
            return false;
        return method == METHOD_PRIMAL || dual_weights_kept(s, s->Double->Dual);
    }
};

void compare_runs(SimplexMethod method, int pricing, int most, Compare compare)
{
    for (uint64_t seed = 0; seed < RUNS; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const int iterations = dice.range(1, most),
                  legs = method == METHOD_DUAL ? dice.range(1, 2) : 1;
        const Stopped run(&dice, method, pricing, iterations, legs);
        if (!run.usable(method)) continue;
        method == METHOD_DUAL ? compare_dual(run.record(), &compare)
                              : compare_primal(run.record(), &compare);
    }
    EXPECT_GT(compare.seen, 300);
}
} // namespace

TEST(DualWeights, are_the_norms_of_the_rows_of_the_inverse_or_bounds_over_a_framework)
{
    compare_runs(METHOD_DUAL, PRICE_STEEPEST, 40, {true});
    compare_runs(METHOD_DUAL, PRICE_DEVEX, 1, {false});
}

TEST(DualWeights, a_worn_framework_is_replaced_by_the_basis_at_hand)
{
    Dice dice(1);
    const Stopped run(&dice, METHOD_DUAL, PRICE_DEVEX, 20, 1);
    sopt *s = run.record();
    dopt<double> *d = s->Double->Dual;
    ASSERT_EQ(d->PricingCur, PRICE_DEVEX);
    d->FrameworkWork = 1000.0 * s->NumRows;
    dual_change_pricing(s, s->Double);
    EXPECT_EQ(d->FrameworkWork, 0);
    for (int j = 0; j < s->NumVars; j++) EXPECT_EQ(d->Reference[j], is_basic(s, j)) << j;
    for (int k = 0; k < s->NumRows; k++) EXPECT_EQ(d->Weights[k], 1) << k;
}

TEST(PrimalPrice, weights_are_the_lengths_of_the_edges_or_bounds_over_a_framework)
{
    compare_runs(METHOD_PRIMAL, PRICE_STEEPEST, 40, {true});
    compare_runs(METHOD_PRIMAL, PRICE_QUICK, 40, {true});
    compare_runs(METHOD_PRIMAL, PRICE_DEVEX, 1, {false});
}

TEST(PrimalPrice, a_framework_with_bad_weights_is_replaced)
{
    Dice dice(1);
    const Stopped run(&dice, METHOD_PRIMAL, PRICE_DEVEX, 20, 1);
    sopt *s = run.record();
    popt<double> *p = s->Double->Primal;
    ASSERT_EQ(p->PricingCur, PRICE_DEVEX);
    svec_clear(&s->Double->Alpha);
    s->Double->RowCount = p->PivotRow = p->PivotCol = 0;
    p->BadWeights = 100;
    primal_update_weights(s, s->Double, 1.0);
    EXPECT_EQ(p->BadWeights, 0);
    for (int j = 0; j < s->NumVars; j++) EXPECT_EQ(p->Reference[j], !is_basic(s, j)) << j;
}

// A nonbasic may enter where that improves the objective; a free one either way.
TEST(PrimalPrice, merits_belong_to_columns_that_improve)
{
    Dice dice(3);
    const Stopped run(&dice, METHOD_PRIMAL, PRICE_STEEPEST, 5, 1);
    sopt *s = run.record();
    popt<double> *p = s->Double->Primal;
    struct Case {
        int status;
        double cost;
        bool improves;
    };
    for (const Case &c :
         {Case{AT_LOWER, -1, true}, Case{AT_LOWER, 1, false}, Case{AT_UPPER, 1, true},
          Case{AT_UPPER, -1, false}, Case{AT_FREE, 1, true}, Case{AT_FREE, -1, true},
          Case{AT_FREE, 1e-9, false}, Case{AT_FIXED, -1, false}, Case{0, -1, false}}) {
        s->VStat[0] = c.status;
        s->Double->Cbar[0] = c.cost;
        p->Weights[0] = 2;
        p->ColRejected[0] = 0;
        primal_set_merit(s, s->Double, 0);
        EXPECT_EQ(p->Columns.Merit[0], c.improves ? 0.5 : 0) << c.status << " " << c.cost;
    }
}

TEST(PriceList, finds_the_best_of_all_whatever_has_changed)
{
    for (uint64_t seed = 0; seed < 40; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const int dim = dice.pick<int>({1, 5, 50, 1000});
        PriceList<double> list;
        ASSERT_EQ(price_list_alloc(&list, dim), 0);
        std::vector<double> merit(dim);
        for (int step = 0; step < 400; step++) {
            for (int k = dice.range(0, std::min(dim, 20)); k >= 0; k--) {
                const int i = dice.range(0, dim - 1);
                merit[i] = dice.chance(40) ? 0 : std::pow(10, dice.real(-12, 3));
                price_list_set(&list, i, merit[i]);
            }
            if (dice.chance(3)) price_list_reset(&list);
            const double most = *std::max_element(merit.begin(), merit.end());
            const int best = price_list_best(&list);
            ASSERT_EQ(best < 0 ? 0 : merit[best], most) << "step " << step;
            if (best >= 0 && dice.chance(50)) price_list_set(&list, best, merit[best] = 0);
        }
    }
}
