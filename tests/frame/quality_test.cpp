// The measures of quality, on points made by hand with violations planted in them.
#include "frame/quality.h"
#include "support/lp_tarvex.h"
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{

// min x0 + 2 x1    x0 + x1 + x2 >= 4  (row 0)    x0 - x1 <= 2  (row 1)    x0 + x2 = 3  (row 2)
//                  0 <= x0 <= 2,  0 <= x1,  x2 free
// x2 is priced by its two rows alone, x1 by row 0: optimum (0, 1, 3), value 2, Pi = (2, 0, -2),
// RC = (1, 0, 0), slack of row 1 is 3.
LpModel small_lp()
{
    LpModel lp;
    lp_add_var(&lp, 1, 0, 2);
    lp_add_var(&lp, 2, 0, LP_INFINITY);
    lp_add_var(&lp, 0, -LP_INFINITY, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}, {2, 1}}, '>', 4);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}}, '<', 2);
    lp_add_row_entries(&lp, {{0, 1}, {2, 1}}, '=', 3);
    return lp;
}

struct QualityOfLp : testing::Test {
    TestEnv env;
    TestModel model{lp_load(env.env, &lp)};
    std::vector<double> x{0, 1, 3}, pi{2, 0, -2}, rc{1, 0, 0};
    std::vector<int> row_basis{-1, 0, -1};
    QualityScale scale;
    Quality quality;

    static inline const LpModel lp = small_lp();

    void measure()
    {
        const LpPoint point = {x.data(), pi.data(), rc.data(), row_basis.data(),
                               PointSigns::CALLER};
        TVXmodel *given = model;
        ASSERT_EQ(LpQuality(given->env, given->body, point, scale, &quality), 0);
        EXPECT_TRUE(quality.computed);
    }
};

void expect_violation(const Violation &violation, double max, double sum, int index)
{
    EXPECT_DOUBLE_EQ(violation.max, max);
    EXPECT_DOUBLE_EQ(violation.sum, sum);
    EXPECT_EQ(violation.index, index);
}

void expect_none(const Violation &violation)
{
    expect_violation(violation, 0, 0, -1);
}

const std::vector<Violation Quality::*> all_groups = {
    &Quality::BoundVio,      &Quality::BoundSVio,      &Quality::ConstrVio,
    &Quality::ConstrSVio,    &Quality::ConstrResidual, &Quality::ConstrSResidual,
    &Quality::DualVio,       &Quality::DualSVio,       &Quality::DualResidual,
    &Quality::DualSResidual, &Quality::ComplVio,       &Quality::IntVio};

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST_F(QualityOfLp, an_optimal_point_violates_nothing)
{
    measure();
    for (const auto group : all_groups) expect_none(quality.*group);
}

TEST_F(QualityOfLp, a_point_outside_its_bounds_is_measured_at_each_variable)
{
    x = {2.5, -1, 0.5}; // 0.5 above, 1 below; x2 is free
    measure();
    expect_violation(quality.BoundVio, 1, 1.5, 1);
}

TEST_F(QualityOfLp, rows_are_violated_on_their_wrong_side_only)
{
    x = {0, 0.25, 3}; // row 0: 3.25 instead of at least 4
    measure();
    expect_violation(quality.ConstrVio, 0.75, 0.75, 0);
    x = {2, -2, 2}; // row 0: 2 below by 2; row 1: 4, above by 2; row 2: 4, off by 1
    measure();
    expect_violation(quality.ConstrVio, 2, 5, 0);
    x = {0, 50, 3}; // inside all of them
    measure();
    expect_none(quality.ConstrVio);
}

TEST_F(QualityOfLp, a_slack_held_at_zero_must_be_zero_in_the_point)
{
    x = {0, 1.5, 3}; // row 0 satisfied with slack 0.5, though the basis holds it at zero
    measure();
    expect_violation(quality.ConstrResidual, 0.5, 0.5, 0);
    expect_none(quality.ConstrVio);
    row_basis = {0, 0, 0}; // basic slacks leave no residual, but for the equality
    x = {0, 1.5, 3.25};
    measure();
    expect_violation(quality.ConstrResidual, 0.25, 0.25, 2);
}

TEST_F(QualityOfLp, a_row_dual_of_the_wrong_sign_is_seen)
{
    pi = {-1, 0,
          1}; // '>' row of a minimise model: x1 3, x2 0, x0 1; only the sign of Pi_0 ...
    rc = {1, 3, 0};
    measure(); // ... and x1 between its bounds with reduced cost 3
    expect_violation(quality.DualVio, 3, 4, 1);
    expect_none(quality.DualResidual);
}

TEST_F(QualityOfLp, a_dual_on_a_row_with_slack_is_a_dual_and_a_complementarity_violation)
{
    pi = {2, -0.5, -2}; // row 1 has slack 3
    rc = {1.5, -0.5, 0};
    measure();
    // of the same size as the reduced cost -0.5 that x1 gets between its bounds
    expect_violation(quality.DualVio, 0.5, 1, 3 + 1);
    EXPECT_EQ(quality.ComplVio.max, 1.5);
    EXPECT_EQ(quality.ComplVio.index, 3 + 1);
}

TEST_F(QualityOfLp, a_variable_at_its_upper_bound_wants_the_other_sign)
{
    x = {2, 1, 1}; // x0 at its upper bound with reduced cost 1
    measure();
    expect_violation(quality.DualVio, 1, 1, 0);
    expect_violation(quality.ComplVio, 2, 2,
                     0); // distance to the lower bound that it prices
}

TEST_F(QualityOfLp, reduced_costs_reported_wrongly_leave_a_dual_residual)
{
    rc = {1, 0.125, 0};
    measure();
    expect_violation(quality.DualResidual, 0.125, 0.125, 1);
    expect_none(quality.DualVio);
}

TEST_F(QualityOfLp, distances_within_the_tolerance_count_as_being_at_the_bound)
{
    x = {5e-7, 1, 3 - 5e-7};
    measure();
    expect_none(quality.DualVio);
    EXPECT_GT(quality.ComplVio.max, 0);
    x = {5e-6, 1, 3 - 5e-6};
    measure();
    expect_violation(quality.DualVio, 1, 1, 0);
}

TEST_F(QualityOfLp, the_scaled_measures_use_the_factors)
{
    const std::vector<double> row{4, 2, 1}, col{0.5, 0.25, 1};
    scale = {row.data(), col.data(), 8};
    x = {2.5, 1, 0.5}; // bound of x0 by 0.5, row 2 holds, row 0 holds
    rc = {1, 0.5, 0};
    row_basis = {0, -1, -1};
    measure(); // row 1: slack 0.5 held at zero
    EXPECT_EQ(quality.BoundSVio.max, 0.5 / 0.5);
    EXPECT_EQ(quality.ConstrSResidual.max, 2 * 0.5);
    EXPECT_EQ(quality.DualSVio.max,
              1 * 0.5 * 8); // x0 beyond its upper bound, reduced cost 1
    EXPECT_EQ(quality.DualSResidual.max, 0.5 * 0.25 * 8);
}

TEST_F(QualityOfLp, body_signs_and_callers_signs_mean_the_same_multipliers)
{
    pi = {-1, 0.5, 1};
    rc = {1, 3, 0.5};
    measure();
    const Quality callers = quality;
    const std::vector<double> body_pi{1, 0.5, 1}; // minimise already; row 0 is held negated
    const LpPoint point = {x.data(), body_pi.data(), rc.data(), row_basis.data(),
                           PointSigns::BODY};
    TVXmodel *given = model;
    ASSERT_EQ(LpQuality(given->env, given->body, point, scale, &quality), 0);
    for (const auto group : all_groups)
        expect_violation(quality.*group, (callers.*group).max, (callers.*group).sum,
                         (callers.*group).index);
}

TEST_F(QualityOfLp, what_is_not_a_number_counts_as_a_huge_violation)
{
    x[1] = NOT_A_NUMBER;
    measure();
    EXPECT_EQ(quality.BoundVio.max, 1e100);
    EXPECT_EQ(quality.ConstrVio.max, 1e100);
    x[1] = 1;
    pi[1] = NOT_A_NUMBER;
    measure();
    EXPECT_EQ(quality.DualVio.max, 1e100);
}

TEST_F(QualityOfLp, cancellation_in_an_activity_does_not_hide_or_invent_a_violation)
{
    LpModel big;
    lp_add_var(&big, 0, 0, LP_INFINITY);
    lp_add_var(&big, 0, 0, LP_INFINITY);
    lp_add_var(&big, 0, 0, LP_INFINITY);
    lp_add_row_entries(&big, {{0, 1e17}, {1, 0.375}, {2, -1e17}}, '=', 0.375);
    TestModel given(lp_load(env.env, &big));
    x = {1, 1, 1};
    pi = {0};
    row_basis = {0};
    const LpPoint point = {x.data(), pi.data(), nullptr, row_basis.data(),
                           PointSigns::CALLER};
    TVXmodel *handle = given;
    ASSERT_EQ(LpQuality(handle->env, handle->body, point, scale, &quality), 0);
    if (sizeof(long double) > sizeof(double)) expect_none(quality.ConstrVio);
}

TEST(QualityOfLpMaximise, signs_follow_the_sense)
{
    // max x0 with x0 <= 5 as a row: Pi = 1, RC = 0
    LpModel lp;
    lp.sense = -1;
    lp_add_var(&lp, 1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}}, '<', 5);
    TestEnv env;
    TestModel model(lp_load(env.env, &lp));
    TVXmodel *given = model;
    const double x = 5, rc = 0, good = 1, bad = -1;
    Quality quality;
    LpPoint point = {&x, &good, &rc, nullptr, PointSigns::CALLER};
    ASSERT_EQ(LpQuality(given->env, given->body, point, QualityScale{}, &quality), 0);
    for (const auto group : all_groups) expect_none(quality.*group);
    point.pi = &bad;
    ASSERT_EQ(LpQuality(given->env, given->body, point, QualityScale{}, &quality), 0);
    expect_violation(quality.DualVio, 2, 3,
                     0); // x0 is left with reduced cost 2, the row with -1
}

// ---- Integer solutions ----

namespace
{

struct QualityOfMip : testing::Test {
    TestEnv env;
    TVXmodel *model = nullptr;
    Quality quality;

    void SetUp() override
    {
        // five variables: continuous, integer, binary, semi-continuous 2..5, semi-integer 2..5
        const std::vector<double> lb{0, 0, 0, 2, 2}, ub{10, 10, 1, 5, 5};
        ASSERT_EQ(TVXnewmodel(env.env, &model, nullptr, 5, nullptr, lb.data(), ub.data(),
                              "CIBSN", nullptr),
                  0);
        const std::vector<int> ind{0, 1, 2, 3, 4};
        const std::vector<double> val{1, 1, 1, 1, 1};
        ASSERT_EQ(TVXaddconstr(model, 5, ind.data(), val.data(), '<', 12, nullptr), 0);
        const std::vector<int> types{1, 2}, beg{0, 3}, members{0, 1, 2, 0, 1, 2, 3};
        const std::vector<double> weight{1, 2, 3, 1, 2, 3, 4};
        ASSERT_EQ(
            TVXaddsos(model, 2, 7, types.data(), beg.data(), members.data(), weight.data()),
            0);
        ASSERT_EQ(TVXupdatemodel(model), 0);
    }
    void TearDown() override { TVXfreemodel(model); }

    void measure(const std::vector<double> &x)
    {
        ASSERT_EQ(MipQuality(model, x.data(), &quality, QualityWarnings::NO), 0);
    }
};

} // namespace

TEST_F(QualityOfMip, a_feasible_point_violates_nothing)
{
    measure({0, 3, 0, 0, 4});
    for (const auto group : all_groups) expect_none(quality.*group);
    EXPECT_EQ(sos_violation(model->body, 0, std::vector<double>{0, 3, 0, 0, 4}.data()), 0);
}

TEST_F(QualityOfMip,
       integrality_is_the_distance_to_the_nearest_integer_of_integer_types_only)
{
    measure({0.5, 2.75, 0, 2.5, 3.375});
    expect_violation(quality.IntVio, 0.375, 0.625, 4);
}

TEST_F(QualityOfMip, a_semi_continuous_variable_may_be_zero_or_within_its_bounds)
{
    measure({0, 0, 0, 0, 0});
    expect_none(quality.BoundVio);
    measure({0, 0, 0, 1.5, 0});
    expect_violation(quality.BoundVio, 0.5, 0.5, 3); // to its lower bound, not to zero
    measure({0, 0, 0, 0.25, 6});
    expect_violation(quality.BoundVio, 1, 1.25, 4);
}

TEST_F(QualityOfMip, an_sos_counts_what_is_outside_its_best_window)
{
    const auto sos = [&](int k, const std::vector<double> &x) {
        return sos_violation(model->body, k, x.data());
    };
    EXPECT_EQ(sos(0, {1, 0, 0, 0, 0}), 0);
    EXPECT_EQ(sos(0, {1, -4, 2, 0, 0}), 2);
    EXPECT_EQ(sos(1, {0, 3, 3, 0, 0}), 0);
    EXPECT_EQ(sos(1, {3, 0, 3, 0, 0}), 3);
    EXPECT_EQ(sos(1, {1, 5, 2, 0, 0}), 1);
    EXPECT_EQ(sos(1, {2, 5, 1, 0.5, 0}), 1);
}

TEST_F(QualityOfMip, warnings_tell_what_exceeds_its_tolerance)
{
    ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "OutputFlag", 1), 0);
    testing::internal::CaptureStdout();
    const std::vector<double> x{20, 0.25, 0, 1, 0};
    ASSERT_EQ(MipQuality(model, x.data(), &quality, QualityWarnings::YES), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Warning: max constraint violation (9.2500e+00) exceeds tolerance\n"
              "Warning: max bound violation (1.0000e+01) exceeds tolerance\n"
              "Warning: max integrality violation (2.5000e-01) exceeds tolerance\n"
              "Warning: max SOS violation (1.0000e+00) exceeds tolerance\n");
    testing::internal::CaptureStdout();
    const std::vector<double> good{0, 1 + 1e-6, 0, 0, 0};
    ASSERT_EQ(MipQuality(model, good.data(), &quality, QualityWarnings::YES), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}
