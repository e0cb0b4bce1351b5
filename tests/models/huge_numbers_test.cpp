// huge_numbers_test.cpp -- numbers near what a double can hold, and what counts as an infinite bound
//
// An answer may be numeric trouble where products overflow; it is never a wrong status, nor an optimum without value.
#include "simplex/simplex.h"
#include "support/model_test.h"
#include <cmath>

namespace
{
constexpr double INF = LP_INFINITY;
const double SIZES[] = {1e15, 1e19, 1e20, 1e30, 1e99, 1e100, 1e200, 1e300, 1e307};

struct HugeNumbers : ModelTest {
    Settings more; // by all ways to solve

    // Calls look(status) after each solve.
    template<class Look> void solve_all(const LpModel &lp, const Look &look)
    {
        for (const Settings &way : settings_product({{"LPMethod", {0, 1}},
                                                     {"PreDual", {0, 1, 2}},
                                                     {"Presolve", {-1, 0}},
                                                     {"ScaleFlag", {0, 1}}},
                                                    more)) {
            SCOPED_TRACE(settings_text(way));
            load(lp, way);
            look(solved());
            if (HasFailure()) return;
        }
    }
    void expect_optimum(const LpModel &lp, double value)
    {
        solve_all(lp, [&](int status) {
            ASSERT_EQ(status, TVX_OPTIMAL);
            EXPECT_NEAR(dbl("ObjVal") / value, 1, 1e-9) << value;
        });
    }
    void expect_unbounded(const LpModel &lp)
    {
        solve_all(lp, [](int status) {
            EXPECT_TRUE(status == TVX_UNBOUNDED || status == TVX_INF_OR_UNBD) << status;
        });
    }
    // An optimum has numbers, and its point misses no constraint.
    void expect_honest(const LpModel &lp)
    {
        solve_all(lp, [&](int status) {
            if (status == TVX_NUMERIC) return;
            ASSERT_EQ(status, TVX_OPTIMAL);
            EXPECT_TRUE(std::isfinite(dbl("ObjVal")));
            EXPECT_LE(dbl("BoundVio"), 1e-3);
            EXPECT_LE(dbl("ConstrVio"), 1e-3);
        });
    }
};

// min a x + b y  subject to  x + y >= 3,  0 <= x, y <= ub
LpModel two_costs(double a, double b, double ub)
{
    return lp_make({{a, 0, ub}, {b, 0, ub}}, {{{1, 1}, '>', 3}});
}
} // namespace

TEST_F(HugeNumbers, an_objective_beyond_any_cutoff_is_an_optimum_unless_a_cutoff_is_set)
{
    for (const double size : SIZES) {
        expect_optimum(two_costs(size, size, INF), 3 * size);
        expect_optimum(two_costs(size, -size, 4), -4 * size);
        LpModel lp = two_costs(-size, -size, 5);
        lp.sense = -1;
        expect_optimum(lp, -3 * size);
        lp = two_costs(1, 1, INF);
        lp.objcon = size;
        expect_optimum(lp, size);
    }
    more = {{"Cutoff", 1e80}};
    solve_all(two_costs(1e90, 1e90, INF),
              [](int status) { EXPECT_EQ(status, TVX_CUTOFF); });
}

TEST_F(HugeNumbers, overflow_is_told_as_numeric_trouble)
{
    expect_honest(two_costs(1.7e308, 1.7e308, INF));
    for (const double size : {1e10, 1e19, 1e100, 1e160, 1e300, 1.7e308}) {
        // Scaled away, x = 0 looks feasible; and products of coefficients overflow.
        expect_honest(lp_make({{1}, {1}}, {{{size, 1}, '>', 3}}));
        expect_honest(lp_make({{-1}, {-2}}, {{{size, 1}, '<', 1e10}, {{1, size}, '<', 4}}));
    }
}

TEST_F(HugeNumbers, what_counts_as_infinite_never_exceeds_what_is_stored_as_infinite)
{
    const LpModel rising = lp_make({{-1, -INF, INF}, {0.5}}, {{{1, -1}, '>', -5}});
    LpModel capped = two_costs(-1, 1, 5e6);
    for (const double infinite : {1e6, 1e20, 1e30, 1e31, 1e100}) {
        more = {{"TARV_PAR_INFBOUND", infinite}};
        expect_unbounded(rising);
        if (infinite == 1e6)
            expect_unbounded(capped);
        else
            expect_optimum(capped, -5e6);
    }
}

TEST_F(HugeNumbers, the_infinite_bound_may_change_between_solves)
{
    load(two_costs(-1, 1, 5e6));
    EXPECT_EQ(objective(), -5e6);
    ASSERT_EQ(TVXsetdblparam(own(), "TARV_PAR_INFBOUND", 1e6), 0);
    EXPECT_EQ(solved(), TVX_UNBOUNDED);
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 1, 7e6), 0);
    update(); // bounds of both kinds, checked in debug builds
    ASSERT_EQ(TVXsetdblparam(own(), "TARV_PAR_INFBOUND", 1e30), 0);
    EXPECT_EQ(objective(), -5e6);

    // Presolve alone finds it infeasible, and no simplex record is left.
    load(lp_make({{1, 0, 5e6}, {1, 0, 5e6}}, {{{1, 1}, '>', 2e7}}));
    EXPECT_EQ(solved(), TVX_INFEASIBLE);
    EXPECT_EQ(model->lp.simplex, nullptr);
    ASSERT_EQ(TVXsetdblparam(own(), "TARV_PAR_INFBOUND", 1e6), 0);
    update();
    EXPECT_EQ(integer("Status"), TVX_LOADED);
    double iterations = 0;
    EXPECT_EQ(TVXgetdblattr(model, "IterCount", &iterations), 10005);
    EXPECT_EQ(objective(), 2e7);
}

// Products of entries overflow or vanish, and so would factors made of them. Unscaled, slacks go as far as the entries
// of their rows are large.
TEST_F(HugeNumbers, lines_of_huge_and_tiny_entries_are_scaled)
{
    for (const double size : {1e-200, 1e-160, 1e154, 1e170, 1e290})
        for (const Settings &way : settings_product(
                 {{"LPMethod", {0, 1}}, {"ScaleFlag", {0, 1}}}, {{"Presolve", 0}})) {
            SCOPED_TRACE(testing::Message() << size << settings_text(way));
            // min x + y,  size (x - y / 2) >= 0,  size (1e-11 x - y) <= 0,  y >= 4
            load(lp_make({{1, 0, 10}, {1, 4, 10}},
                         {{{size, -size / 2}, '>', 0}, {{1e-11 * size, -size}, '<', 0}}),
                 way);
            EXPECT_NE(solved(), TVX_INFEASIBLE);
            if (own()->ScaleFlag == 0) continue;
            const double *row = nullptr, *col = nullptr;
            double factor = 0;
            simplex_get_scaling(model->lp.simplex, &row, &col, &factor);
            ASSERT_NE(row, nullptr);
            for (const double f : {row[0], row[1], col[0], col[1], factor})
                EXPECT_TRUE(std::isnormal(f)) << f;
            EXPECT_EQ(integer("Status"), TVX_OPTIMAL);
            if (size > 1) { // else the rows ask for nothing that a tolerance would not hide
                EXPECT_NEAR(dbl("ObjVal"), 6, 1e-6);
            }
        }
}

TEST_F(HugeNumbers, a_bound_that_counts_as_infinite_is_not_violated)
{
    LpModel lp = two_costs(-1, 1, 5e6);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 6e6);
    load(lp, {{"TARV_PAR_INFBOUND", 1e6}, {"Presolve", 0}});
    EXPECT_EQ(objective(), -6e6);
    EXPECT_EQ(dbl("X", 0), 6e6);
    for (const char *name : {"BoundVio", "DualVio", "ComplVio"})
        EXPECT_LE(dbl(name), 1e-6) << name;
}
