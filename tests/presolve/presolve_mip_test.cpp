// presolve_mip_test.cpp -- the whole presolve of models with integers, sets and semi-continuous columns
#include "support/inside.h"
#include "support/memory_sweep.h"
#include "support/mip_gen.h"
#include "support/mip_presolve_gen.h"
#include "support/mip_presolve_try.h"
#include <gtest/gtest.h>

// A model under random settings, every third one scaled.
static MipTry try_one(Dice *dice, uint64_t seed, std::string *text)
{
    LpModel lp = dice->chance(50) ? gen_mip(dice, 5).lp : gen_mip_with_lines(dice);
    MipQuestion question = mip_question(&lp);
    question.seed = seed;
    // rounded data may stop a ray
    if (dice->chance(33) && question.truth.status != MipStatus::UNBOUNDED)
        question.of_costs = scale_by_tens(dice, &lp);
    for (const char *name : {"TARV_PAR_DUALREDUCTION", "Aggregate", "TARV_PAR_PREPARALLEL",
                             "TARV_PAR_PREBOUND", "TARV_PAR_PRECOEFFICIENT"})
        if (dice->chance(20)) question.settings.emplace_back(name, 0);
    if (dice->chance(30)) question.settings.emplace_back("Presolve", dice->range(0, 2));
    if (dice->chance(20)) question.settings.emplace_back("PreDepRow", 1);
    if (dice->chance(10)) question.settings.emplace_back("PreCrush", 1);
    if (dice->chance(10))
        question.settings.emplace_back("TARV_PAR_PRELIMIT", dice->range(0, 12));
    MipTry t = mip_presolved(question);
    if (!t.faults.empty())
        *text = lp_to_mps(&lp, settings_text(question.settings) + t.faults) +
                lp_to_mps(&t.reduced, "reduced");
    return t;
}

// The seeds 0, 1, ...; a campaign asks for others and more: TARVEX_MIPPRE_SEED, TARVEX_MIPPRE_COUNT.
TEST(PresolveMip, keeps_the_optimum_and_maps_every_point_back)
{
    const int first = campaign("TARVEX_MIPPRE_SEED", 0),
              count = campaign("TARVEX_MIPPRE_COUNT", 1000);
    int judged = 0, crushed = 0, wrong = 0;
    for (int seed = first; seed < first + count && wrong < 5; seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        std::string text;
        const MipTry t = try_one(&dice, static_cast<uint64_t>(seed), &text);
        judged += t.judged;
        crushed += t.crushed;
        wrong += !t.faults.empty();
        EXPECT_EQ(t.faults, "") << seed << "\n" << text;
    }
    EXPECT_GE(judged, 0.8 * count);
    printf("%d judged, %d mapped to the reduced model\n", judged, crushed);
}

// Types, sets, indicators and logs of a model with all of them.
static LpModel mixed_model()
{
    LpModel lp = lp_make({{1, 2, 9},
                          {-1, 3},
                          {1, -8, -2},
                          {2, -LP_INFINITY, -1},
                          {1, 0, 5},
                          {1, 0, 5},
                          {1, 0, 5}},
                         {{{1, 1, 1, 1, 1, 1, 1}, '>', -4}, {{1, 2, -1, 1, 1}, '<', 20}});
    lp.types = {'S', 'N', 'S', 'S', 'C', 'I', 'C'};
    lp.sets = {{2, {4, 5, 6}}, {1, {0, 4}}};
    return lp;
}

static int presolve(TVXmodel *model, PresolveStatus *status, PresolveResult **result)
{
    double work = 0;
    return presolve_mip(model->body, model->env, 1, result, status, &work);
}

TEST(PresolveMip, semi_continuous_columns_get_indicators)
{
    const LpModel lp = mixed_model();
    const MipTry t = mip_presolved(mip_question(&lp, {{"Presolve", 0}}));
    EXPECT_EQ(t.faults, "");
    ASSERT_EQ(t.semi.size(), 4U);
    EXPECT_EQ(t.reduced.num_vars(), 7 + 4);
    EXPECT_EQ(t.reduced.num_rows(), 2 + 2 + 1 + 2 + 1);
    EXPECT_EQ(t.reduced.sets.size(), 2U + 2U);
    for (size_t k = 0; k < 4; k++) {
        const SemiColumn &semi = t.semi[k];
        EXPECT_EQ(semi.col, static_cast<int>(k));
        EXPECT_EQ(semi.indicator, static_cast<int>(7 + k));
        EXPECT_EQ(semi.kind == SemiKind::ON_AT_ONE, k % 3 != 1 && k != 3);
        EXPECT_EQ(semi.is_integer, k == 1);
        EXPECT_EQ(t.reduced.types[7 + k], 'B');
    }
}

TEST(PresolveMip, the_time_limit_is_heard)
{
    const LpModel lp = mixed_model();
    const TestEnv env;
    const TestModel model(lp_load(env.env, &lp, {{"TimeLimit", 0}}));
    PresolveResult *result = nullptr;
    PresolveStatus status = PRESOLVE_OK;
    ASSERT_EQ(presolve(model, &status, &result), 0);
    EXPECT_EQ(status, PRESOLVE_TIME_LIMIT);
    EXPECT_EQ(result, nullptr);
}

#ifdef TVX_DEBUG
TEST(PresolveMip, memory_may_end_anywhere)
{
    for (uint64_t seed = 0; seed < 40; seed++) {
        Dice dice(seed);
        const LpModel lp = seed == 0 ? mixed_model() : gen_mip_with_lines(&dice);
        PresolveResult *result = nullptr;
        run_sweep({"presolve_mip",
                   [&](Scene *scene) {
                       scene->model = lp_load(scene->env.env, &lp);
                       ASSERT_NE(scene->model, nullptr);
                   },
                   [&](Scene *scene) {
                       PresolveStatus status = PRESOLVE_OK;
                       return presolve(scene->model, &status, &result);
                   },
                   [&](Scene *, int) {
                       presolve_free(result);
                       result = nullptr;
                   }});
    }
}
#endif
