// kappa_test.cpp -- the condition estimates of a basis against a dense inverse
#include "support/model_test.h"
#include "support/structured_gen.h"
#include <cmath>

namespace
{
double norm1(const Matrix &b)
{
    long double norm = 0;
    for (size_t c = 0; c < b.size(); c++) {
        long double sum = 0;
        for (const auto &row : b) sum += std::fabs(row[c]);
        norm = std::max(norm, sum);
    }
    return double(norm);
}

double norm2(const Matrix &b) // by many steps of the power method
{
    const size_t m = b.size();
    std::vector<long double> x(m, 1), y(m);
    x[0] = 2;
    long double length = 1;
    for (int step = 0; step < 6000; step++) { // with B and its transpose in turn
        length = 0;
        for (size_t i = 0; i < m; i++) {
            y[i] = 0;
            for (size_t k = 0; k < m; k++) y[i] += (step % 2 ? b[k][i] : b[i][k]) * x[k];
            length += y[i] * y[i];
        }
        length = std::sqrt(length);
        for (size_t i = 0; i < m; i++) x[i] = y[i] / length;
    }
    return double(length);
}

using Kappa = ModelTest;
} // namespace

TEST_F(Kappa, is_near_the_condition_of_the_basis_and_not_above_it)
{
    for (const FamilyRow &family : all_families()) {
        for (const double quad : {0, 1}) {
            SCOPED_TRACE(family.name + std::string(quad > 0 ? ", extended" : ""));
            const LpModel lp = generated(family.generate, 12, 7);
            load(lp, {{"ScaleFlag", 0}, {"Quad", quad}});
            LpSolution s;
            ASSERT_EQ(lp_solve(model, &s), 0);
            double kappa = 0, kappa2 = 0;
            const int code = s.status == TVX_OPTIMAL ? 0 : TVX_ERROR_DATA_NOT_AVAILABLE;
            EXPECT_EQ(TVXgetdblattr(model, "Kappa", &kappa), code);
            EXPECT_EQ(TVXgetdblattr(model, "N2Kappa", &kappa2), code);
            if (code) continue;
            const Matrix b = basis_matrix(&lp, &s), b1 = inverse(b);
            const double truth = norm1(b) * norm1(b1), truth2 = norm2(b) * norm2(b1);
            EXPECT_LE(kappa, truth * (1 + 1e-6));
            EXPECT_GE(kappa, truth / 3);
            EXPECT_NEAR(kappa2 / truth2, 1, 0.01);
        }
    }
    load(lp_make({{1, 0, 1}}, {})); // without rows
    ASSERT_EQ(TVXoptimize(model), 0);
    for (const char *name : {"Kappa", "N2Kappa"}) EXPECT_EQ(dbl(name), 1);
}

// Numbers whose squares, or whose conditions, are no doubles.
TEST_F(Kappa, is_a_number_from_one_to_1e100)
{
    struct Case {
        double first, second, kappa;
    };
    for (const Case &c : {Case{1e200, 1e200, 1}, Case{1e-200, 1e-200, 1},
                          Case{1e160, 1e150, 1e10}, Case{1e200, 1, 1e100}}) {
        // The basis is diagonal, one row a variable.
        load(lp_make({{1}, {1}}, {{{c.first}, '=', 0}, {{0, c.second}, '=', 0}}),
             {{"ScaleFlag", 0}, {"Presolve", 0}});
        const std::vector<int> basic(2, TVX_BASIC), nonbasic(2, TVX_NONBASIC_LOWER);
        ASSERT_EQ(lp_set_basis(model, basic, nonbasic), 0);
        ASSERT_EQ(TVXoptimize(model), 0);
        for (const char *name : {"Kappa", "N2Kappa"})
            EXPECT_NEAR(dbl(name) / c.kappa, 1, 0.01) << name << " " << c.first;
    }
}
