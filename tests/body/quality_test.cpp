// quality_test.cpp -- the measures of quality, on points made by hand with violations planted in them
//
// What is measured of solves is compared with an independent computation in tests/models; here stands what
// a solve does not come across: factors of a scaling, what is no number, signs of the body, integer models.
#include "body/quality.h"
#include "support/model_test.h"
#include <cmath>

namespace
{
// Optimum (0, 1, 3), value 2, Pi = (2, 0, -2), RC = (1, 0, 0), slack of row 1 is 3.
struct QualityOfLp : ModelTest {
    std::vector<double> x{0, 1, 3}, pi{2, 0, -2}, rc{1, 0, 0};
    std::vector<int> row_basis{-1, 0, -1};
    QualityScale scale;
    Quality quality;

    void SetUp() override
    {
        load("min x0 + 2 x1 + 0 x2\n"
             "st x0 + x1 + x2 >= 4  x0 - x1 <= 2  x0 + x2 = 3\n"
             "bounds x0 <= 2 x2 free");
    }
    void measure(PointSigns signs = PointSigns::CALLER)
    {
        const JudgedPoint point = {x.data(), pi.data(), rc.data(), row_basis.data(), signs};
        ASSERT_EQ(LpQuality(model->env, model->body, point, scale, &quality), 0);
    }
};

void expect_violation(const Violation &violation, double max, double sum, int index)
{
    EXPECT_DOUBLE_EQ(violation.max, max);
    EXPECT_DOUBLE_EQ(violation.sum, sum);
    EXPECT_EQ(violation.index, index);
}

// All measures, largest, sum and place, as one text.
std::string text_of(const Quality &q)
{
    std::string text;
    for (const Violation *v :
         {&q.BoundVio, &q.BoundSVio, &q.ConstrVio, &q.ConstrSVio, &q.ConstrResidual,
          &q.ConstrSResidual, &q.DualVio, &q.DualSVio, &q.DualResidual, &q.DualSResidual,
          &q.ComplVio, &q.IntVio})
        text += testing::PrintToString(std::tuple(v->max, v->sum, v->index));
    return text;
}
} // namespace

TEST_F(QualityOfLp, the_scaled_measures_use_the_factors)
{
    const std::vector<double> row{4, 2, 1}, col{0.5, 0.25, 1};
    scale = {row.data(), col.data(), 8};
    x = {2.5, 1, 0.5}; // bound of x0 by 0.5; rows 0 and 2 hold
    rc = {1, 0.5, 0};
    row_basis = {0, -1, -1};
    measure(); // row 1: slack 0.5 held at zero
    EXPECT_EQ(quality.BoundSVio.max, 0.5 / 0.5);
    EXPECT_EQ(quality.ConstrSResidual.max, 2 * 0.5);
    EXPECT_EQ(quality.DualSVio.max, 1 * 0.5 * 8); // x0 beyond its bound, reduced cost 1
    EXPECT_EQ(quality.DualSResidual.max, 0.5 * 0.25 * 8);
}

TEST_F(QualityOfLp, body_signs_and_callers_signs_mean_the_same_multipliers)
{
    pi = {-1, 0.5, 1};
    rc = {1, 3, 0.5};
    measure();
    const Quality callers = quality;
    pi[0] = 1; // minimise already; row 0 is held negated
    measure(PointSigns::BODY);
    EXPECT_EQ(text_of(quality), text_of(callers));
}

TEST_F(QualityOfLp, what_is_not_a_number_counts_as_a_huge_violation)
{
    x[1] = pi[1] = NAN;
    measure();
    for (const Violation &violation :
         {quality.BoundVio, quality.ConstrVio, quality.DualVio})
        EXPECT_EQ(violation.max, 1e100);
}

// ---- Integer solutions ----

struct QualityOfMip : ModelTest {
    Quality quality;

    void SetUp() override
    {
        load("min st v + i + b + s + n <= 12\n"
             "bounds v <= 10 i <= 10 2 <= s <= 5 2 <= n <= 5\n"
             "general i n binary b semi-continuous s n\n"
             "sos S1:: v:1 i:2 b:3 S2:: v:1 i:2 b:3 s:4");
    }
    // What is printed while the point is measured.
    std::string measure(const std::vector<double> &x)
    {
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
        Output output;
        EXPECT_EQ(
            MipQuality(model->env, model->body, x.data(), &quality, QualityWarnings::YES),
            0);
        return output.text();
    }
};

TEST_F(QualityOfMip, types_decide_what_is_a_violation)
{
    EXPECT_EQ(measure({0, 3, 0, 0, 4}), "");
    EXPECT_EQ(text_of(quality), text_of(Quality()));
    measure({0.5, 2.75, 0, 2.5, 3.375}); // integrality of integer types only
    expect_violation(quality.IntVio, 0.375, 0.625, 4);
    measure({0, 0, 0, 1.5, 0}); // semi-continuous: to its lower bound, not to zero
    expect_violation(quality.BoundVio, 0.5, 0.5, 3);
    measure({0, 0, 0, 0.25, 6});
    expect_violation(quality.BoundVio, 1, 1.25, 4);
}

TEST_F(QualityOfMip, an_sos_counts_what_is_outside_its_best_window)
{
    const struct {
        int set;
        std::vector<double> x;
        double violation;
    } cases[] = {{0, {1, 0, 0, 0, 0}, 0}, {0, {1, -4, 2, 0, 0}, 2},
                 {1, {0, 3, 3, 0, 0}, 0}, {1, {3, 0, 3, 0, 0}, 3},
                 {1, {1, 5, 2, 0, 0}, 1}, {1, {2, 5, 1, 0.5, 0}, 1}};
    for (const auto &c : cases)
        EXPECT_EQ(sos_violation(model->body, c.set, c.x.data()), c.violation);
}

TEST_F(QualityOfMip, warnings_tell_what_exceeds_its_tolerance)
{
    EXPECT_EQ(measure({20, 0.25, 0, 1, 0}),
              "Warning: max constraint violation (9.2500e+00) exceeds tolerance\n"
              "Warning: max bound violation (1.0000e+01) exceeds tolerance\n"
              "Warning: max integrality violation (2.5000e-01) exceeds tolerance\n"
              "Warning: max SOS violation (1.0000e+00) exceeds tolerance\n");
    EXPECT_EQ(measure({0, 1 + 1e-6, 0, 0, 0}), "");
}
