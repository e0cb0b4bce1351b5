// integer_reductions_test.cpp -- each reduction alone on models with integers: the optimum stays, every point of the
// reduced model is one of the model, and the reduction does find what it looks for
#include "support/mip_gen.h"
#include "support/mip_presolve_gen.h"
#include "support/mip_presolve_try.h"
#include <gtest/gtest.h>

struct Row {
    const char *name;
    std::initializer_list<Reduction> reductions;
    int effect; // least number of changes over all models
};

static const Row ROWS[] = {
    {"singleton_rows", {pre_singleton_rows}, 50},
    {"columns", {pre_columns}, 100},
    {"redundant_rows", {pre_redundant_rows}, 20},
    {"aggregate", {pre_aggregate}, 50},
    {"duplicate_cols", {pre_duplicate_cols}, 30},
    {"duplicate_rows", {pre_duplicate_rows}, 30},
    {"dual_bounds", {pre_dual_bounds}, 15},
    {"singleton_knapsack", {pre_singleton_knapsack}, 2},
    {"ineq_to_eq", {pre_ineq_to_eq, pre_aggregate}, 30},
    {"two_rows", {pre_two_rows}, 5},
    {"dual_slack", {pre_dual_slack}, 8},
    {"dual_slack and aggregate", {pre_dual_slack, pre_aggregate}, 60},
    {"dependent", {pre_dependent_rows, pre_dependent_cols}, 5},
    {"row_bounds", {pre_row_bounds}, 100},
    {"binary_coefficients", {pre_binary_coefficients}, 3},
    {"coef_rows", {pre_coef_rows}, 5},
    {"subset_coefs", {pre_subset_coefs}, 3},
    {"subset_rows", {pre_subset_rows}, 15},
    {"row_integrality", {pre_row_integrality}, 50},
    {"scale_int_columns", {pre_scale_int_columns}, 10},
    {"binary_equation", {pre_binary_equation}, 20},
    {"dominated_columns", {pre_dominated_columns}, 20},
    {"bound_dual", {pre_bound_dual}, 10},
    {"components", {pre_components}, 3},
    {"tiny_coefficients", {pre_tiny_coefficients}, 0},
    {"sets and semi-continuous",
     {pre_singleton_rows, pre_sos_fixings, pre_semi_fixings},
     50},
};

class IntegerReduction : public testing::TestWithParam<Row>
{
};

// The seeds 0, 1, ...; a campaign asks for others and more: TARVEX_MIPPRE_SEED, TARVEX_MIPPRE_COUNT.
TEST_P(IntegerReduction, keeps_the_optimum_and_maps_every_point_back)
{
    const Row &row = GetParam();
    const int first = campaign("TARVEX_MIPPRE_SEED", 0),
              count = campaign("TARVEX_MIPPRE_COUNT", 200);
    int effect = 0, wrong = 0;
    for (int seed = first; seed < first + count && wrong < 3; seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        LpModel lp = gen_mip_with_lines(&dice);
        MipQuestion question = mip_question(&lp, {{"AggFill", 100}});
        question.seed = static_cast<uint64_t>(seed);
        if (dice.chance(33) && question.truth.status != MipStatus::UNBOUNDED)
            question.of_costs = scale_by_tens(&dice, &lp);
        const MipTry t = mip_reduced_by(question, row.reductions);
        effect += t.effect;
        wrong += !t.faults.empty();
        EXPECT_EQ(t.faults, "")
            << row.name << " " << seed << "\n"
            << lp_to_mps(&lp, t.faults) << lp_to_mps(&t.reduced, "reduced");
    }
    EXPECT_GE(effect, row.effect * count / 200) << row.name;
    RecordProperty("effect", effect);
    if (getenv("TARVEX_MIPPRE_COUNT")) printf("%s: effect %d\n", row.name, effect);
}

INSTANTIATE_TEST_SUITE_P(All, IntegerReduction, testing::ValuesIn(ROWS),
                         [](const testing::TestParamInfo<Row> &row) {
                             std::string name = row.param.name;
                             for (char &c : name)
                                 if (!isalnum(c)) c = '_';
                             return name;
                         });

TEST(PresolveJudge, tells_a_ray_from_the_rounding_of_costs)
{
    // x2 follows x3 and x4 at no cost; as the slack of the second row it costs -1 / 10000, which is rounded.
    LpModel lp =
        lp_make({{.3, 0, 1}, {-.01}, {.03, 0, 3}, {.01}, {.01}},
                {{{-2000, 100, 0, -100, -100}, '<', 0}, {{0, 100, 100, -100}, '>', 1400}});
    lp.types = {'I', 'C', 'I', 'I', 'C'};
    const Settings fill = {{"AggFill", 100}};
    const MipTry right = mip_reduced_by(mip_question(&lp, fill), {pre_aggregate});
    EXPECT_EQ(right.faults, "");
    EXPECT_TRUE(right.judged);
    EXPECT_EQ(mip_truth(&right.reduced).status, MipStatus::UNBOUNDED);
    const auto spoil = [](PresolveWork *w) { // the last column earns a trifle
        w->Obj.data[4] -= 1e-6;
        return 0;
    };
    EXPECT_NE(mip_reduced_by(mip_question(&lp, fill), {pre_aggregate, spoil}).faults, "");
}

TEST(PresolveCrush, a_point_of_two_columns_is_one_of_the_merged_column)
{
    // max x + y + z / 2 with x + y + z <= 6.5: both columns at 3
    LpModel lp = lp_make({{1, 0, 3}, {1, 0, 3}, {.5, 0, 9}}, {{{1, 1, 1}, '<', 6.5}}, -1);
    lp.types = {'I', 'I', 'C'};
    const MipTry t = mip_reduced_by(mip_question(&lp), {pre_duplicate_cols});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.reduced.num_vars(), 2);
    EXPECT_TRUE(t.crushed);
}
