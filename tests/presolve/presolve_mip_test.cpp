// presolve_mip_test.cpp -- the whole presolve of models with integers, sets and semi-continuous columns
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
