// working_lp_test.cpp -- what a run is made of before its first iteration: scaled numbers and a start basis
//
// The row copy is looked at by simplex/live_check.h.
#include "simplex/sopt.h"
#include "support/hostile_gen.h"
#include "support/inside.h"
#include "support/model_gen.h"
#include "support/structured_gen.h"
#include <algorithm>
#include <gtest/gtest.h>

namespace
{
// The working LP of a model.
struct Working {
    TestEnv env;
    TestModel model;
    sopt *s = nullptr;
    explicit Working(const LpModel &lp, const Settings &settings = {})
        : model(lp_load(env.env, &lp, settings))
    {
        EXPECT_EQ(sopt_create(body(), model->env, {}, &s), 0);
    }
    ~Working() { simplex_free(s); }
    const ModelBody *body() const { return model->body; }
};

LpModel any_model(Dice *dice)
{
    if (dice->chance(30)) return gen_tiny(dice, TinyLimits{.max_vars = 6, .max_rows = 6});
    if (dice->chance(40)) return dice->pick(hostile_families()).generate(dice);
    return dice->pick(all_families()).generate(dice, 20).lp;
}

bool close(double a, double b)
{
    return a == b || std::fabs(a - b) <= 1e-12 * std::max(std::fabs(a), std::fabs(b));
}

void check_bounds(const sopt *s, const ModelBody *body, int j)
{
    const double c = s->ColScale[j], end = s->Infinity;
    const auto scaled = [&](double bound) { return working_bound(s, bound) / c; };
    const double infinite = infinite_bound(s->Env);
    const bool low = body->lb[j] > -infinite, up = body->ub[j] < infinite;
    EXPECT_EQ(c < 0, !low && up) << "columns with an upper bound only are reversed";
    const double lower = c < 0 ? scaled(body->ub[j])
                         : low ? scaled(body->lb[j])
                               : -end,
                 upper = c < 0 || !up ? end : scaled(body->ub[j]);
    EXPECT_TRUE(close(s->Lower[j], lower)) << j;
    EXPECT_TRUE(close(s->Upper[j], upper)) << j;
    EXPECT_EQ(has_lower(s, s->Lower[j]), low || up) << j;
    EXPECT_EQ(has_upper(s, s->Upper[j]), c > 0 && up) << j;
}
} // namespace

TEST(Scaling, the_working_lp_is_the_model_times_its_factors)
{
    int scaled = 0;
    for (uint64_t seed = 0; seed < 300; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const LpModel lp = any_model(&dice);
        const bool wished = dice.chance(80);
        const Working w(lp, {{"ScaleFlag", wished},
                             {"TARV_PAR_ALTSCALE", dice.chance(20)},
                             {"ObjScale", dice.pick<double>({0, 0, 1, 8, -0.5})}});
        const sopt *s = w.s;
        const ModelBody *body = w.body();
        scaled += s->Scaled;
        EXPECT_LE(s->Scaled, wished);
        for (int j = 0; j < s->NumCols; j++) {
            const double c = s->ColScale[j];
            EXPECT_TRUE(close(s->Cost[j], body->obj[j] * c * s->ObjScale)) << j;
            ASSERT_EQ(s->ColBeg[j + 1] - s->ColBeg[j], body->vlen[j]);
            for (int k = 0; k < body->vlen[j]; k++) {
                const int p = s->ColBeg[j] + k, q = body->vbeg[j] + k;
                ASSERT_EQ(s->ColInd[p], body->vind[q]);
                const double a = body->vval[q] * s->RowScale[s->ColInd[p]] * c;
                EXPECT_TRUE(close(s->ColVal[p], a)) << j;
            }
            check_bounds(s, body, j);
        }
        for (int i = 0; i < s->NumRows; i++)
            EXPECT_TRUE(close(s->Rhs[i], body->rhs[i] * s->RowScale[i])) << i;
    }
    EXPECT_GT(scaled, 100);
}

// Entries between 1e-24 and 1 ask for factors that would make the bound of the first column as good as none.
TEST(Scaling, finite_bounds_stay_finite)
{
    LpModel lp = lp_make({{1, 0, 9e19}, {1, 0, 1.0}, {1, 0, 1.0}},
                         {{{1e24, 1}, '<', 1}, {{0, 1, 1}, '<', 1}});
    const Working w(lp);
    for (int j = 0; j < 3; j++) EXPECT_TRUE(has_upper(w.s, w.s->Upper[j])) << j;
}

// In the caller's terms: a nonbasic stands at the bound that it was given, or at the one that there is.
TEST(StartBasis, nonbasics_stand_at_bounds_that_exist)
{
    int taken = 0;
    for (uint64_t seed = 0; seed < 400; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const Working w(any_model(&dice));
        sopt *s = w.s;
        const ModelBody *body = w.body();
        std::vector<int> status(s->NumVars);
        for (int k = 0; k < s->NumVars; k++) status[k] = k < s->NumRows ? 0 : -1;
        dice.shuffle(&status);
        for (int &code : status) code = code < 0 ? dice.range(AT_FREE, AT_LOWER) : code;
        const bool spoilt = s->NumRows > 0 && dice.chance(20);
        if (spoilt) *std::find(status.begin(), status.end(), 0) = AT_LOWER;
        std::vector<double> lower(body->lb.begin(), body->lb.end());
        for (int j = 0; j < s->NumCols; j++) { // bounds of reversed columns may move later
            if (s->ColScale[j] > 0 || dice.chance(50)) continue;
            lower[j] = body->ub[j] - 3;
            s->Upper[j] = lower[j] / s->ColScale[j];
        }
        ASSERT_EQ(start_from_statuses(s, status.data()), !spoilt);
        if (spoilt) continue;
        taken++;
        const double infinite = infinite_bound(s->Env);
        for (int j = 0; j < s->NumVars; j++) {
            const int place = s->VStat[j];
            ASSERT_EQ(place >= 0, status[j] >= 0) << j;
            if (place >= 0) {
                EXPECT_EQ(s->BasisHead[place], j);
                continue;
            }
            EXPECT_EQ(place == AT_FIXED, s->Lower[j] == s->Upper[j]) << j;
            if (j >= s->NumCols) continue;
            const double lb = lower[j], ub = body->ub[j];
            const bool low = lb > -infinite, up = ub < infinite;
            if (low && up && status[j] == AT_FREE) continue; // either will do
            const bool at_upper = up && (!low || status[j] == AT_UPPER);
            const double stands = place == AT_UPPER  ? s->Upper[j]
                                  : place == AT_FREE ? 0
                                                     : s->Lower[j];
            EXPECT_TRUE(close(stands * s->ColScale[j], at_upper ? ub : low ? lb : 0)) << j;
        }
    }
    EXPECT_GT(taken, 200);
}
