// rational_lp.h -- the exact judge of small LPs
//
// Problem     Is this LP optimal (with which value), infeasible or unbounded, beyond any rounding?
// Method      The data are doubles, so they are rationals. The dictionary method (dictionary.h) in 320 bits ends with
//             a basis; the certificate of that basis is computed exactly (rational_certificate.cpp). Should it
//             prove nothing, the method runs again in more bits.
// Trust       Every answer comes with a certificate in terms of the model alone: a primal and a dual point, a
//             Farkas row, or a feasible point and a ray. rational_verify proves the answer from the certificate
//             with code that knows nothing of the method; rational_solve calls it and aborts on failure.
// Relaxed     With `relax`, at least 0, every row and bound gives way by that much: bounds [lb - relax, ub + relax],
//             rows a x <= rhs + relax, and so on; all in rationals.
// Cost        Dense: some milliseconds for 20 x 60, tens for 40 x 200.
#pragma once
#include "support/lp_model.h"
#include <gmpxx.h>
#include <string>
#include <vector>

enum class LpStatus { OPTIMAL, INFEASIBLE, UNBOUNDED };
const char *lp_status_name(LpStatus status);

struct RationalResult {
    LpStatus status = LpStatus::OPTIMAL;
    mpq_class value; // OPTIMAL: the objective in the model's own sense, constant included
    std::vector<mpq_class> x;      // [n] OPTIMAL, UNBOUNDED: a feasible point (optimal)
    std::vector<mpq_class> pi;     // [m] OPTIMAL: change of the value per unit of rhs
    std::vector<mpq_class> farkas; // [m] INFEASIBLE: row multipliers, 0 if `crossed` tells
    std::vector<mpq_class> ray;    // [n] UNBOUNDED: a direction that improves for ever
    int crossed = -1;              // INFEASIBLE: a column with lb > ub, or -1
    std::vector<int> vbasis; // [n] OPTIMAL: 0 basic, -1 at lower, -2 at upper, -3 free
    std::vector<int> cbasis; // [m] OPTIMAL: 0 basic, -1 not
};

// A range whose ends may be absent.
struct RationalRange {
    bool has_low = false, has_high = false;
    mpq_class low, high;
};
// Of the activity of a row, or of a column, in the relaxed model.
RationalRange relaxed_row(const LpModel *lp, size_t row, double relax);
RationalRange relaxed_column(const LpModel *lp, size_t col, double relax);

// Answer with certificate, already verified. A lower bound of plus infinity, or an upper bound of minus infinity,
// is not accepted (aborts).
RationalResult rational_solve(const LpModel *lp, double relax = 0);
// Empty when the certificates prove the claim, else what is wrong with them; and when the point is feasible.
std::string rational_verify_point(const LpModel *lp, const std::vector<mpq_class> &point,
                                  double relax);
std::string rational_verify(const LpModel *lp, const RationalResult *result,
                            double relax = 0);
