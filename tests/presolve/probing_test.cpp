// probing_test.cpp -- probing and cliques in presolve: the optimum stays, every point of the reduced model is one of the
// model, and what the search is told is true
#include "support/clique_gen.h"
#include "support/mip_gen.h"
#include "support/mip_presolve_gen.h"
#include "support/mip_presolve_try.h"
#include <gtest/gtest.h>

namespace
{
struct Row {
    const char *name;
    std::initializer_list<Reduction> reductions;
    int effect; // least number of changes over 200 models
};
const Row ROWS[] = {
    {"probe_simple", {pre_probe_simple}, 5},
    {"probe", {pre_probe}, 50},
    {"probe_twice", {pre_probe, pre_probe}, 50},
    {"cliques", {pre_cliques}, 20},
    {"clique_merge", {pre_cliques, pre_clique_merge}, 30},
    {"clique_rows", {pre_clique_rows}, 5},
    {"facts_followed", {pre_probe, pre_aggregate, pre_duplicate_cols, pre_columns}, 50},
};

class Probing : public testing::TestWithParam<Row>
{
};

LpModel generated(Dice *dice)
{
    return dice->chance(75) ? gen_mip_with_cliques(dice) : gen_mip_with_lines(dice);
}
} // namespace

// The seeds 0, 1, ...; a campaign asks for others and more: TARVEX_MIPPRE_SEED, TARVEX_MIPPRE_COUNT.
TEST_P(Probing, keeps_the_optimum_and_maps_every_point_back)
{
    const Row &row = GetParam();
    const int first = campaign("TARVEX_MIPPRE_SEED", 0),
              count = campaign("TARVEX_MIPPRE_COUNT", 200);
    int effect = 0, wrong = 0, pairs = 0, bounds = 0;
    for (int seed = first; seed < first + count && wrong < 3; seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        LpModel lp = generated(&dice);
        MipQuestion question = mip_question(&lp, {{"AggFill", 100}});
        question.seed = static_cast<uint64_t>(seed);
        if (dice.chance(40)) question.settings.emplace_back("TARV_PAR_PRECLIQUE", 2);
        if (dice.chance(33) && question.truth.status != MipStatus::UNBOUNDED)
            question.of_costs = scale_by_tens(&dice, &lp);
        const MipTry t = mip_reduced_by(question, row.reductions);
        effect += t.effect;
        pairs += t.pairs;
        bounds += t.bounds;
        wrong += !t.faults.empty();
        EXPECT_EQ(t.faults, "")
            << row.name << " " << seed << "\n"
            << lp_to_mps(&lp, t.faults) << lp_to_mps(&t.reduced, "reduced");
    }
    EXPECT_GE(effect, row.effect * count / 200) << row.name;
    if (getenv("TARVEX_MIPPRE_COUNT"))
        printf("%s: effect %d, %d pairs, %d bounds\n", row.name, effect, pairs, bounds);
}

INSTANTIATE_TEST_SUITE_P(All, Probing, testing::ValuesIn(ROWS),
                         [](const testing::TestParamInfo<Row> &row) {
                             return std::string(row.param.name);
                         });

TEST(PresolveProbing, the_whole_presolve_with_cliques_keeps_the_optimum)
{
    const int first = campaign("TARVEX_MIPPRE_SEED", 0),
              count = campaign("TARVEX_MIPPRE_COUNT", 1000);
    int judged = 0, pairs = 0, bounds = 0, wrong = 0;
    for (int seed = first; seed < first + count && wrong < 5; seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        LpModel lp = generated(&dice);
        MipQuestion question = mip_question(&lp);
        question.seed = static_cast<uint64_t>(seed);
        if (dice.chance(33) && question.truth.status != MipStatus::UNBOUNDED)
            question.of_costs = scale_by_tens(&dice, &lp);
        for (const char *name : {"TARV_PAR_PREPROBE", "TARV_PAR_PRECLIQUE"})
            if (dice.chance(50)) question.settings.emplace_back(name, dice.range(0, 2));
        for (const char *name : {"TARV_PAR_DUALREDUCTION", "Aggregate",
                                 "TARV_PAR_PREPARALLEL", "TARV_PAR_PREBOUND"})
            if (dice.chance(30)) question.settings.emplace_back(name, 0);
        if (dice.chance(50)) question.settings.emplace_back("TARV_PAR_PRECLIQSUB", 1);
        if (dice.chance(20)) question.settings.emplace_back("PreCrush", 1);
        const MipTry t = mip_presolved(question);
        judged += t.judged;
        pairs += t.pairs;
        bounds += t.bounds;
        wrong += !t.faults.empty();
        EXPECT_EQ(t.faults, "")
            << seed << "\n"
            << lp_to_mps(&lp, settings_text(question.settings) + t.faults)
            << lp_to_mps(&t.reduced, "reduced");
    }
    EXPECT_GE(judged, 0.8 * count);
    printf("%d judged, %d pairs, %d bounds\n", judged, pairs, bounds);
}
