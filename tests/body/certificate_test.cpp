// certificate_test.cpp -- proofs of infeasibility and unboundedness: right ones and near misses (exact ones:
// presolve/claim_test.cpp)
#include "body/certificate.h"
#include "support/model_test.h"
#include <cmath>

static constexpr double INF = 1e30;

struct Certificate : ModelTest {
    bool farkas(const std::vector<double> &y)
    {
        return farkas_holds(model->body, INF, y.data());
    }
    bool ray(const std::vector<double> &r)
    {
        bool holds = true;
        EXPECT_EQ(ray_holds(model->body, INF, r.data(), &holds), 0);
        return holds;
    }
};

// x + y >= 3 or so with x, y <= 1
static LpModel too_much(double rhs)
{
    const LpColumn x = {0, -LP_INFINITY, 1};
    return lp_make({x, x}, {{{1, 1}, '>', rhs}, {{1, -1}, '<', 7}});
}

TEST_F(Certificate, rows_that_bounds_cannot_meet_are_infeasible)
{
    load(too_much(3));
    for (const double size : {1e-300, 1e-8, 1.0, 1e200}) EXPECT_TRUE(farkas({size, 0}));
    EXPECT_TRUE(farkas({1, -1e-14})) << "a sign wrong by rounding";
    EXPECT_FALSE(farkas({1, -1e-9})) << "a sign that is wrong";
    EXPECT_FALSE(farkas({1, 1.5})) << "a side without bound";
    for (const double size : {-1.0, 0.0, double{NAN}, HUGE_VAL})
        EXPECT_FALSE(farkas({size, 0})) << size;
    for (const double above : {0.0, 2.9e-9, 3.1e-9}) { // 1e-9 for each bound and the row
        load(too_much(2 + above));
        EXPECT_EQ(farkas({1, 0}), above > 3e-9) << above;
    }
}

// x + y = 1 and (1 + error) x + y = 1 - gap with x free: far out there is a point if error is there at all.
static LpModel nearly_parallel(double error, double gap)
{
    return lp_make({{0, -LP_INFINITY, LP_INFINITY}, {0, 0, 1}},
                   {{{1, 1}, '=', 1}, {{1 + error, 1}, '=', 1 - gap}});
}

TEST_F(Certificate, entries_on_an_open_side_count_as_zero_when_they_are_rounding)
{
    const struct {
        double error, gap;
        bool proof;
        const char *why;
    } cases[] = {{0, 1, true, "nothing is left of x"},
                 {4e-16, 1, true, "points up to 1e9 are excluded"},
                 {4e-16, 1e-7, false, "a point of 1e9 is not"},
                 {1e-11, 1, false, "no rounding"}};
    for (const auto &c : cases) { // g_x = error, y b = -gap
        load(nearly_parallel(c.error, c.gap));
        EXPECT_EQ(farkas({-1, 1}), c.proof) << c.why;
    }
}

TEST_F(Certificate, absent_rows_prove_nothing_and_hinder_nothing)
{
    LpModel lp = too_much(3);
    lp.rhs[0] = -1e30; // x + y >= minus infinity
    lp.obj = {1, 0};
    load(lp);
    EXPECT_FALSE(farkas({1, 0}));
    EXPECT_TRUE(ray({-1, 0}));
}

// minimise x - 2 y, x - y >= -1 or so
static LpModel endless(char sense)
{
    return lp_make({{1, 0, LP_INFINITY}, {-2, -5, LP_INFINITY}, {0, 0, 1}},
                   {{{1, -1, 1}, sense, -1}});
}

TEST_F(Certificate, directions_that_no_row_or_bound_stops_are_rays)
{
    for (const char sense : {'>', '='}) {
        load(endless(sense));
        for (const double size : {1e-300, 1.0, 1e250})
            EXPECT_TRUE(ray({size, size, 0})) << sense;
        EXPECT_TRUE(ray({1, 1, 1e-14})) << "a bound met by rounding";
        EXPECT_FALSE(ray({1, 1, 1e-9})) << "a bound that is met";
        EXPECT_FALSE(ray({-1, -1, 0})) << "bounds and costs against it";
        EXPECT_FALSE(ray({1, 1 + 1e-9, 0})) << "a row that is met";
        EXPECT_EQ(ray({1, 1 - 1e-9, 0}), sense == '>');
        for (const double y : {0.0, double{NAN}, HUGE_VAL})
            EXPECT_FALSE(ray({y * y, y, 0}));
    }
}

TEST_F(Certificate, a_cost_that_is_rounding_is_no_gain)
{
    for (const double gain : {1e-12, 1e-10}) {
        LpModel lp = endless('>');
        lp.obj[0] = 2 - gain;
        load(lp);
        EXPECT_EQ(ray({1, 1, 0}), gain == 1e-10);
    }
}
