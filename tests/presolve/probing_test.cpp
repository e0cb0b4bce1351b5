// probing_test.cpp -- probing and cliques in presolve: the optimum stays, every point of the reduced model is one of the
// model, and what the search is told is true
#include "support/clique_gen.h"
#include "support/inside.h"
#include "support/memory_sweep.h"
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

constexpr double INF = LP_INFINITY;

namespace
{
} // namespace

static LpModel binaries(const std::vector<double> &costs, const std::vector<LpRow> &rows,
                        int sense = 1)
{
    std::vector<LpColumn> cols;
    for (const double c : costs) cols.push_back({c, 0, 1});
    return lp_make(cols, rows, sense);
}

static const std::vector<PresolveTrap> TRAPS = {
    {"a clique of a row with a negative entry", "BBB",
     binaries({1, 1, -.1}, {{{3, 3, -10}, '<', 5}}, -1), 1.9},
    {"at least one", "BB", binaries({1, -1}, {{{1, 1}, '>', 1}}, -1), 1},
    {"at most one", "BB", binaries({1, 1}, {{{1, 1}, '<', 1}}, -1), 1},
    {"the first implies the second", "BB", binaries({1, -2}, {{{1, -1}, '<', 0}}, -1), 0},
    {"the second implies the first", "BB", binaries({-2, 1}, {{{-1, 1}, '<', 0}}, -1), 0},
    {"two of a triangle", "BBB",
     binaries({0, 0, 0}, {{{1, 1}, '<', 1},
                          {{0, 1, 1}, '<', 1},
                          {{1, 0, 1}, '<', 1},
                          {{1, 1, 1}, '>', 1.5}}),
     NAN},
    {"general integers", "II",
     lp_make({{9856}, {444}},
             {{{1, 1}, '<', 5}, {{.63, 1.27}, '<', 1.28}, {{.63, 1.27}, '>', .65}}),
     444},
    {"an epigraph", "CBBB",
     lp_make({{1, -INF, INF}, {0, 0, 1}, {0, 0, 1}, {0, 0, 1}},
             {{{1, 4, 4}, '>', 3}, {{1, 0, 0, 4}, '>', 1}, {{0, 1, 1, 1}, '=', 1}}),
     1},
    {"integrality of the column that goes", "II", lp_make({{1}, {1}}, {{{2, 3}, '=', 7}}),
     3},
    {"bounds of one half", "II", lp_make({{0, .5}, {0, .5}}, {{{1, 1}, '<', 1}}), NAN},
    {"a semi-continuous column that z decides", "BSC",
     lp_make({{1, 0, 1}, {-1, 2, 3}, {0, 0, 3}}, {{{3, 1, 1}, '=', 3}}), -3},
    {"members of a set that z decides", "BIC",
     [] {
         LpModel lp = lp_make({{1, 0, 1}, {-1, 0, 3}, {-2, 0, 1}}, {{{4, 1, 1}, '=', 4}});
         lp.sets = {{1, {1, 2}}};
         return lp;
     }(),
     1},
    {"a replaced column whose bounds are tightened later", "BII",
     lp_make({{-1, 0, 1}, {-1, 0, 3}, {1, 0, 9}},
             {{{3, -1}, '=', 0}, {{0, 1, -1}, '<', 2}, {{1, 0, 1}, '<', 1}}),
     0},
};

TEST(PresolveProbing, traps_keep_the_optimum)
{
    const std::vector<Settings> all = settings_product({{"TARV_PAR_DUALREDUCTION", {0, 1}},
                                                        {"Aggregate", {0, 1}},
                                                        {"TARV_PAR_PREBOUND", {0, 1}},
                                                        {"TARV_PAR_PREPROBE", {0, 1, 2}},
                                                        {"TARV_PAR_PRECLIQUE", {0, 2}},
                                                        {"TARV_PAR_PRECLIQSUB", {0, 1}}});
    for (const PresolveTrap &trap : TRAPS) EXPECT_EQ(mip_trap_faults(trap, all), "");
}

static MipTry reduced(LpModel lp, const std::string &types,
                      std::initializer_list<Reduction> reductions)
{
    lp.types.assign(types.begin(), types.end());
    const MipTry t = mip_reduced_by(mip_question(&lp), reductions);
    EXPECT_EQ(t.faults, "");
    return t;
}

TEST(PresolveProbing, an_equation_that_one_binary_column_decides_goes)
{
    const MipTry t = reduced(lp_make({{1, 0, 1}, {1, 0, 2}, {-4, 1, 2}, {1, 0, 1}},
                                     {{{4, 1, -1, 1}, '=', 2}, {{1, 1, 1, 1}, '<', 9}}),
                             "BICB", {pre_probe_simple});
    EXPECT_EQ(t.reduced.num_vars(), 1);
    EXPECT_EQ(t.reduced.num_rows(), 1);
}

TEST(PresolveProbing, a_column_that_follows_a_binary_one_is_replaced)
{
    // x = 2 z, by two inequalities and an equation each with another column
    const MipTry t =
        reduced(lp_make({{1, 0, 1}, {-1, 0, 3}, {0, 0, 9}},
                        {{{-2, 1}, '<', 0}, {{3, -2}, '<', 0}, {{1, 1, 1}, '>', 1}}),
                "BIC", {pre_probe});
    EXPECT_EQ(t.reduced.num_vars(), 2);
}

TEST(PresolveProbing, rows_of_two_become_one_clique)
{
    const MipTry t = reduced(binaries({-3, -2, -2, 1}, {{{1, 1}, '<', 1},
                                                        {{0, 2, 2}, '<', 3},
                                                        {{1, 0, 1}, '<', 1},
                                                        {{1, 1, 1, -1}, '>', -1}}),
                             "BBBB", {pre_cliques, pre_clique_merge});
    EXPECT_EQ(t.reduced.num_rows(), 2);
}

// a + b <= 1 could become a + b + c + d + e <= 1, but only a + c <= 1 would go for it.
TEST(PresolveProbing, a_row_that_is_not_extended_does_not_replace_others)
{
    const MipTry t =
        reduced(binaries({-5, -1, -5, -1, -1, -1}, {{{1, 1}, '<', 1},
                                                    {{1, 0, 1}, '<', 1},
                                                    {{0, 2, 2, 2, 2, 1}, '<', 3},
                                                    {{2, 0, 0, 2, 0, 1}, '<', 3},
                                                    {{2, 0, 0, 0, 2, 1}, '<', 3}}),
                "BBBBBB", {pre_cliques, pre_clique_merge});
    EXPECT_EQ(t.reduced.num_rows(), 5);
}

TEST(PresolveProbing, a_clique_makes_a_row_redundant_and_tightens_another)
{
    const MipTry t = reduced(
        binaries({-3, -2, -4, 1},
                 {{{1, 1, 1}, '<', 1}, {{2, 3, 4, 1}, '<', 5}, {{2, 3, 4, 9}, '<', 10}}),
        "BBBB", {pre_clique_rows});
    EXPECT_EQ(t.reduced.num_rows(), 2);
    EXPECT_EQ(lp_get_entry(&t.reduced, 1, 3), 3);
    EXPECT_EQ(t.reduced.rhs[1], 4);
}

TEST(PresolveProbing, a_row_that_two_literals_satisfy_with_equality_is_no_clique)
{
    const MipTry t =
        reduced(binaries({-3, -2, -1, -9}, {{{3, 3, 4}, '<', 6}, {{1, 1, 1, 2}, '<', 3}}),
                "BBBB", {pre_clique_rows});
    EXPECT_EQ(t.reduced.num_rows(), 2);
}

// z = 0 implies x <= 2, which is not true of x + y.
TEST(PresolveProbing, what_is_known_of_a_merged_column_goes)
{
    reduced(lp_make({{1, 0, 1}, {-1, 1, 9}, {-1, 1, 9}}, {{{-9, 1, 1}, '<', 3}}), "BII",
            {pre_probe, pre_duplicate_cols});
}

// The row must not be removed because of the clique that only it implies.
TEST(PresolveProbing, a_row_is_no_reason_to_remove_itself)
{
    const MipTry t = reduced(binaries({-3, -2, -1}, {{{3, 3, 1}, '<', 5}}), "BBB",
                             {pre_cliques, pre_clique_merge, pre_clique_rows});
    EXPECT_EQ(t.reduced.num_rows(), 1);
}

TEST(PresolveProbing, what_is_learned_is_told_in_columns_of_the_reduced_model)
{
    int pairs = 0, bounds = 0;
    for (uint64_t seed = 0; seed < 300; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_mip_with_cliques(&dice);
        // reductions that keep more of the model to tell of
        const MipTry t = mip_presolved(
            mip_question(&lp, {{"TARV_PAR_DUALREDUCTION", 0}, {"Aggregate", 0}}));
        EXPECT_EQ(t.faults, "") << seed;
        pairs += t.pairs;
        bounds += t.bounds;
    }
    EXPECT_GT(pairs, 100);
    EXPECT_GT(bounds, 30);
}

#ifdef TVX_DEBUG
TEST(PresolveProbing, memory_may_end_anywhere)
{
    for (uint64_t seed = 0; seed < 25; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_mip_with_cliques(&dice);
        PresolveResult *result = nullptr;
        run_sweep({"presolve_mip",
                   [&](Scene *scene) {
                       scene->model = lp_load(
                           scene->env.env, &lp,
                           {{"TARV_PAR_PRECLIQSUB", 1}, {"TARV_PAR_DUALREDUCTION", 0}});
                       ASSERT_NE(scene->model, nullptr);
                   },
                   [&](Scene *scene) {
                       PresolveStatus status = PRESOLVE_OK;
                       double work = 0;
                       return presolve_mip(scene->model->body, scene->model->env, 2,
                                           &result, &status, &work);
                   },
                   [&](Scene *, int) {
                       presolve_free(result);
                       result = nullptr;
                   }});
    }
}
#endif
