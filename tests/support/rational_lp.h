// rational_lp.h -- the exact judge of small LPs
//
// Problem     Is this LP optimal (with which value), infeasible or unbounded, beyond any rounding?
// Method      The data are doubles, so they are rationals. Work on the dictionary of structural and row variables
//             (row variable i = activity of row i) with general bounds. Phase 1 repairs the first violated
//             basic variable by the first nonbasic one that can move (Bland's order, terminates); phase 2 is
//             the primal simplex with Bland's rule.
// Trust       Every answer comes with a certificate in terms of the model alone: a primal and a dual point, a
//             Farkas row, or a feasible point and a ray. rational_verify proves the answer from the certificate
//             with code that knows nothing of the method; rational_solve calls it and aborts on failure.
// Cost        Dense: for tens of rows and columns.
// Literature  R. G. Bland, "New finite pivoting rules for the simplex method", Math. Oper. Res. 2, 1977.
//             B. Dutertre, L. de Moura, "A fast linear-arithmetic solver for DPLL(T)", CAV 2006.
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
    std::vector<mpq_class> x;  // [n] OPTIMAL, UNBOUNDED: a feasible point (optimal)
    std::vector<mpq_class> pi; // [m] OPTIMAL: change of the value per unit of rhs
    std::vector<mpq_class>
        farkas; // [m] INFEASIBLE: row multipliers, all 0 when `crossed` says enough
    std::vector<mpq_class> ray; // [n] UNBOUNDED: a direction that improves for ever
    int crossed = -1;           // INFEASIBLE: a column with lb > ub, or -1
    std::vector<int> vbasis;    // [n] OPTIMAL: 0 basic, -1 at lower, -2 at upper, -3 free
    std::vector<int> cbasis;    // [m] OPTIMAL: 0 basic, -1 not
};

// Answer with certificate, already verified. A lower bound of plus infinity, or an upper bound of minus infinity,
// is not accepted (aborts).
RationalResult rational_solve(const LpModel *lp);
// Empty when the certificates prove the claim, else what is wrong with them.
std::string rational_verify(const LpModel *lp, const RationalResult *result);
