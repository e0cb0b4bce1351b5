// integer_cases_test.cpp -- small models on which one reduction for integers has to find what it looks for
#include "support/mip_presolve_try.h"
#include <gtest/gtest.h>

struct Sizes {
    int rows, cols, entries;
    bool operator==(const Sizes &) const = default;
};

struct Case {
    const char *name;
    std::string types;
    LpModel lp; // lp_make: columns {obj, lb, ub}, rows {coefficients, sense, side}
    std::initializer_list<Reduction> reductions;
    Sizes left;
};

static int count_entries(const LpModel &lp)
{
    int count = 0;
    for (const auto &col : lp.cols) count += static_cast<int>(col.size());
    return count;
}

static const Case CASES[] = {
    {"a set that covers more at the same cost",
     "BBB",
     lp_make({{2, 0, 1}, {2, 0, 1}, {1, 0, 1}},
             {{{1, 1, 1}, '>', 1}, {{0, 1, 1}, '>', 1}, {{0, 1, 0}, '>', 0.5}}),
     {pre_dominated_columns},
     {3, 2, 5}},
    {"a set that takes up less and earns more",
     "BBB",
     lp_make({{2, 0, 1}, {3, 0, 1}, {1, 0, 1}}, {{{1, 1, 1}, '<', 1}, {{1, 0, 1}, '<', 1}},
             -1),
     {pre_dominated_columns},
     {2, 1, 2}},
    {"the bound of the other column makes the row redundant",
     "III",
     lp_make({{1, 0, 4}, {3, 0, 9}, {1, 0, 3}}, {{{2, 1, 1}, '>', 7}, {{1, 1}, '<', 9}}),
     {pre_dominated_columns},
     {2, 2, 3}},
    {"not with one unit less",
     "III",
     lp_make({{1, 0, 3}, {3, 0, 9}, {1, 0, 3}}, {{{2, 1, 1}, '>', 7}, {{1, 1}, '<', 9}}),
     {pre_dominated_columns},
     {2, 3, 5}},
    {"a binary column that ends at its bound is substituted",
     "BBBB",
     lp_make({{3, 0, 1}, {0, 0, 1}, {0, 0, 1}, {2, 0, 1}},
             {{{1, -1}, '<', 0}, {{0, 1, 1, 1}, '<', 2}, {{0, 0, 1, 1}, '>', 1}}, -1),
     {pre_ineq_to_eq, pre_aggregate},
     {1, 2, 1}},
    {"a row within another one bounds their common part",
     "BBBI",
     lp_make({{1, 0, 1}, {1, 0, 1}, {1, 0, 1}, {1, 0, 5}},
             {{{1, 1, 1}, '<', 1}, {{2, 2, 2, 1}, '<', 7}}, -1),
     {pre_subset_coefs},
     {1, 4, 3}},
    {"an equation within another row is subtracted",
     "CCCC",
     lp_make({{1}, {1}, {1}, {1}}, {{{1, 2, 3}, '=', 6}, {{2, 4, 6, 1}, '>', 13}}),
     {pre_subset_rows},
     {2, 4, 4}},
    {"a row within an equation becomes what that has besides",
     "CCCC",
     lp_make({{1}, {1}, {1}, {1}}, {{{1, 2, 3}, '>', 2}, {{2, 4, 6, 1}, '=', 13}}),
     {pre_subset_rows},
     {2, 4, 5}},
    {"a part of its own is solved",
     "BBCB",
     lp_make({{3, 0, 1}, {2, 0, 1}, {1}, {1, 0, 1}},
             {{{1, 1}, '>', 1}, {{0, 0, 1, 2}, '>', 2.5}, {{0, 0, 1, -1}, '>', 0}}),
     {pre_components, pre_redundant_rows},
     {1, 2, 2}},
};

TEST(IntegerCases, are_reduced_as_far_as_meant)
{
    for (const Case &c : CASES) {
        LpModel lp = c.lp;
        lp.types.assign(c.types.begin(), c.types.end());
        const MipTry t = mip_reduced_by(mip_question(&lp), c.reductions);
        EXPECT_EQ(t.faults, "") << c.name;
        EXPECT_TRUE(t.judged) << c.name;
        const Sizes left = {t.reduced.num_rows(), t.reduced.num_vars(),
                            count_entries(t.reduced)};
        EXPECT_TRUE(left == c.left)
            << c.name << ": " << left.rows << " " << left.cols << " " << left.entries;
    }
}

static LpModel with_types(LpModel lp, const std::string &types)
{
    lp.types.assign(types.begin(), types.end());
    return lp;
}

TEST(IntegerCases, coefficients_fall_to_what_a_row_within_leaves)
{
    // Of the first three one is true at most: 2 + 5 x <= 5 is redundant at x = 0 by 3.
    const LpModel lp =
        with_types(lp_make({{1, 0, 1}, {1, 0, 1}, {1, 0, 1}, {1, 0, 1}},
                           {{{1, 1, 1}, '<', 1}, {{2, 2, 2, 5}, '<', 5}}, -1),
                   "BBBB");
    const MipTry t = mip_reduced_by(mip_question(&lp), {pre_subset_coefs});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(lp_get_entry(&t.reduced, 1, 3), 2);
    EXPECT_EQ(t.reduced.rhs[1], 2);
}

TEST(IntegerCases, columns_that_together_use_up_a_slack_make_an_equation)
{
    // Both producers may stop at their upper bound, but not both: the demand of at least 6 is met exactly.
    const LpModel lp = with_types(lp_make({{2, 0, 8}, {3, 0, 5}, {0, 0, 4}},
                                          {{{1, 1, 1}, '>', 6}, {{0, 0, 1}, '>', 1}}),
                                  "CCI");
    const MipTry two = mip_reduced_by(mip_question(&lp), {pre_dual_slack});
    EXPECT_EQ(two.faults, "");
    EXPECT_EQ(two.reduced.senses[0], '=');
    // Columns that earn do not use it up.
    const LpModel earning = with_types(lp_make({{-1, 0, .8}, {-1, 0, .8}, {1, 0, 4}},
                                               {{{1, 1}, '>', 1}, {{1, 1, 1}, '<', 3}}),
                                       "CCI");
    const MipTry kept = mip_reduced_by(mip_question(&earning), {pre_dual_slack});
    EXPECT_EQ(kept.faults, "");
    EXPECT_EQ(kept.reduced.senses[0], '<');
    // With integers the slack of 2.5 x + ... may be a fraction of a step.
    const LpModel coarse = with_types(lp_make({{2, 0, 8}, {3, 0, 5}, {0, 0, 4}},
                                              {{{2, 3, 1}, '>', 6}, {{0, 0, 1}, '>', 1}}),
                                      "III");
    const MipTry none = mip_reduced_by(mip_question(&coarse), {pre_dual_slack});
    EXPECT_EQ(none.faults, "");
    EXPECT_EQ(none.reduced.senses[0], '<');
}

TEST(IntegerCases, a_part_with_a_set_stays)
{
    // The first part is the larger one; in the second one of two columns is zero.
    LpModel lp =
        with_types(lp_make({{1, 0, 1}, {1, 0, 1}, {1, 0, 1}, {-1, 0, 2}, {-1, 0, 2}},
                           {{{1, 1, 1}, '>', 1}, {{0, 0, 0, 1, 1}, '<', 3}}),
                   "BBBCC");
    lp.sets = {{1, {3, 4}}};
    const MipTry t = mip_reduced_by(mip_question(&lp), {pre_components});
    EXPECT_EQ(t.faults, "");
    EXPECT_EQ(t.reduced.num_vars(), 5);
}
