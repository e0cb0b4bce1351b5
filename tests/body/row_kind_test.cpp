// row_kind_test.cpp -- rows with infinite right-hand sides and with senses that are none, by every way to solve
#include "body/row_kind.h"
#include "support/model_test.h"
#include <cmath>
#include <gmock/gmock.h>

namespace
{
// max x + 2 y  subject to  R0: x + y <= 10,  R1: x - y (sense) (side),  x, y >= 0: y = 10 when R1 asks for nothing.
struct RowKinds : ModelTest {
    const std::vector<Settings> ways = settings_product(
        {{"LPMethod", {0, 1}}, {"Presolve", {-1, 0}}, {"PreDual", {0, 1, 2}}});

    void plan(char sense, double side)
    {
        load(lp_make({{1}, {2}}, {{{1, 1}, '<', 10}, {{1, -1}, sense, side}}, -1));
    }
    // By all ways to solve; `made` gives the fixture a fresh model.
    template<class Make> void by_all_ways(const Make &made, int status)
    {
        for (const Settings &way : ways) {
            made();
            ASSERT_EQ(settings_apply(own(), way), 0);
            ASSERT_EQ(solved(), status) << settings_text(way);
            ASSERT_TRUE(status != TVX_OPTIMAL || std::fabs(dbl("ObjVal") - 20) < 1e-12)
                << settings_text(way);
        }
    }
};
} // namespace

TEST_F(RowKinds, an_infinite_side_asks_for_nothing_or_for_what_no_point_has)
{
    for (const double side : {1e20, 1e50, 1e100, 1.7e308})
        for (const auto &[sense, value, status] : {std::tuple{'<', side, int{TVX_OPTIMAL}},
                                                   {'>', -side, TVX_OPTIMAL},
                                                   {'<', -side, TVX_INFEASIBLE},
                                                   {'>', side, TVX_INFEASIBLE},
                                                   {'=', side, TVX_INFEASIBLE},
                                                   {'=', -side, TVX_INFEASIBLE},
                                                   {'?', -side, TVX_INFEASIBLE}})
            by_all_ways([&, s = sense, v = value] { plan(s, v); }, status);
    plan('<', -9.9e19); // still a number
    ASSERT_EQ(TVXsetintparam(own(), "Presolve", 0), 0);
    EXPECT_EQ(solved(), TVX_INFEASIBLE);
}

TEST_F(RowKinds, a_free_row_reads_back_as_given_and_binds_when_its_side_comes_down)
{
    plan('<', 1e100);
    EXPECT_EQ(solved(), TVX_OPTIMAL);
    EXPECT_EQ(dbl("RHS", 1), 1e100);
    EXPECT_EQ(dbl("Pi", 1), 0);
    EXPECT_EQ(dbl("SARHSLow", 1), -10) << "where the point stands";
    EXPECT_EQ(dbl("SARHSUp", 1), 1e100);
    for (const char *name : {"ConstrVio", "BoundVio", "DualVio", "ComplVio"})
        EXPECT_EQ(dbl(name), 0) << name;
    EXPECT_EQ(TVXgetdblattrelement(TestModel(TVXpresolvemodel(model)), "RHS", 0, nullptr),
              10006)
        << "nothing is left";

    const auto bind = [&](double side, double objective) {
        ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 1, side), 0);
        EXPECT_EQ(solved(), TVX_OPTIMAL);
        EXPECT_EQ(dbl("ObjVal"), objective) << side;
    };
    ASSERT_EQ(TVXsetcharattrelement(model, "Sense", 1, '>'), 0);
    bind(-4, 17); // x = 3, y = 7
    bind(-1e100, 20);
    EXPECT_EQ(dbl("SARHSUp", 1), -10);
    EXPECT_EQ(dbl("SARHSLow", 1), -1e100);
    ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 1, 1e100), 0);
    ASSERT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
    Output log;
    EXPECT_EQ(solved(), TVX_INFEASIBLE);
    EXPECT_THAT(log.text(),
                testing::HasSubstr(
                    "Warning: constraint R1 has the infinite right-hand side 1e+100\n"));
}

TEST_F(RowKinds, a_start_that_holds_a_free_row_is_mended)
{
    plan('<', 1e100);
    for (const int basics : {3, 5, 6, 9, 10, 12}) { // two of the four variables and rows
        const auto status = [=](int k) { return (basics >> k) % 2 - 1; };
        ASSERT_EQ(lp_set_basis(model, {status(0), status(1)}, {status(2), status(3)}), 0);
        EXPECT_EQ(objective(), 20);
    }
}

TEST_F(RowKinds, ranges_with_infinite_sides)
{
    const int ind[] = {0, 1};
    const double val[] = {1, -1};
    for (const auto &[lower, upper, status] : {std::tuple{-1e100, 1e100, int{TVX_OPTIMAL}},
                                               {-1e20, 1e20, TVX_OPTIMAL},
                                               {-1e100, -1e100, TVX_INFEASIBLE},
                                               {1e100, 1e100, TVX_INFEASIBLE},
                                               {1e100, 5, TVX_INFEASIBLE},
                                               {5, -1e100, TVX_INFEASIBLE},
                                               {5, 1, TVX_INFEASIBLE}})
        by_all_ways(
            [&, low = lower, up = upper] {
                plan('<', 1e100);
                ASSERT_EQ(TVXaddrangeconstr(model, 2, ind, val, low, up, nullptr), 0);
            },
            status);
}

// The new variables of a model with such rows used to lie outside their arrays.
TEST_F(RowKinds, a_sense_that_is_none_stays_and_counts_as_less)
{
    for (const char sense : {'?', '\0', 'x', '\377'}) {
        LpModel lp = lp_make({{-1}}, {});
        for (int i = 0; i < 50; i++) lp_add_row_entries(&lp, {{0, 1}}, sense, 5 + i);
        for (const Settings &way : ways) {
            load(lp, way);
            EXPECT_EQ(solved(), TVX_OPTIMAL);
            EXPECT_EQ(dbl("ObjVal"), -5);
        }
        char kept = 0, *name = nullptr;
        EXPECT_EQ(TVXgetcharattrelement(model, "Sense", 3, &kept), 0);
        EXPECT_EQ(kept, sense);
        const TestModel elastic(TVXfeasibility(model)); // one new variable a row
        EXPECT_EQ(TVXgetstrattrelement(elastic, "VarName", 51, &name), 10006);
        EXPECT_EQ(TVXgetstrattrelement(elastic, "VarName", 50, &name), 0);
        EXPECT_STREQ(name, "R49_above");
    }
}

TEST_F(RowKinds, feasibility_models_hold_to_rows_that_no_violation_satisfies)
{
    for (const auto &[sense, expected] :
         {std::pair{'<', int{TVX_OPTIMAL}}, {'=', TVX_INFEASIBLE}}) {
        plan(sense, 1e100);
        const TestModel elastic(TVXfeasibility(model));
        LpSolution solution;
        EXPECT_EQ(lp_solve(elastic, &solution), 0);
        EXPECT_EQ(solution.status, expected);
    }
    EXPECT_EQ(TVXpresolvemodel(model), nullptr);
}
