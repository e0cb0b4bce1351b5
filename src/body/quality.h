// quality.h -- how well a point satisfies a model: violations and residuals
//
// The measures share no code with the solvers. They are computed on the unscaled body with sums in
// long double, so that they verify the result of a solver. The measures, each as maximum, sum
// and index of the maximum (-1 if nothing is violated):
//   BoundVio        violation of the bounds of x_j
//   ConstrVio       violation of a row
//   ConstrResidual  |b_i - a_i x| of rows with a nonbasic slack, and of equalities
//   DualVio         violation of the sign that optimality requires of a multiplier: for a variable,
//                   or the slack of a row, at the lower bound, at the upper bound, at both (any
//                   sign), or between (it must be 0). The multiplier of a variable is
//                   c_j - sum_i a_ij Pi_i, computed here
//   DualResidual    |c_j - sum_i a_ij Pi_i - RC_j|, the error of the solver's reduced costs
//   ComplVio        product of a multiplier with the distance to the bound of its sign
//   IntVio          distance of an integer variable to the nearest integer
// Indices are variables; rows for ConstrVio and ConstrResidual; for DualVio and ComplVio, which
// have both, i + numvars is row i. The measures with S are those of the scaled model:
// x_j / col_j, rows times row_i, costs times col_j * obj.
// A value that is not a number counts as a violation of 1e100.
#pragma once
#include "body/body.h"

// One group of violations: the largest, where it is, and the sum.
struct Violation {
    double max = 0;
    double sum = 0;
    int index = -1; // row or variable of the maximum, -1 when nothing is violated
};

// Measures of one solution; the names of the quality attributes.
struct Quality {
    int computed = 0; // the fields below are valid
    Violation BoundVio, BoundSVio, ConstrVio, ConstrSVio, ConstrResidual, ConstrSResidual;
    Violation DualVio, DualSVio, DualResidual, DualSResidual, ComplVio, IntVio;
};

// Factors of the scaled model: column j times col[j], row i times row[i], costs times obj.
struct QualityScale {
    const double *row = nullptr; // [numconstrs], or null: 1
    const double *col = nullptr; // [numvars], or null: 1
    double obj = 1;
};

enum class PointSigns {
    BODY,  // minimise, rows with sense '>' negated
    CALLER // as attributes show it (solution.h)
};
struct JudgedPoint {
    const double *x = nullptr;      // [numvars]
    const double *pi = nullptr;     // [numconstrs]
    const double *rc = nullptr;     // [numvars], or null: no dual residual
    const int *row_basis = nullptr; // [numconstrs] negative: slack is nonbasic; or null
    PointSigns signs = PointSigns::BODY; // of pi and rc
};

enum class QualityWarnings { NO, YES };

// All measures of an LP's point; tolerances from env. 0 or OUT_OF_MEMORY.
[[nodiscard]] int LpQuality(TVXenv *env, const ModelBody *body, const JudgedPoint &point,
                            const QualityScale &scale, Quality *result);
// BoundVio, ConstrVio and IntVio of a MIP's point, and warnings on the log for those above their
// tolerance, the violation of SOS constraints included. 0 or OUT_OF_MEMORY.
[[nodiscard]] int MipQuality(TVXenv *env, const ModelBody *body, const double *x,
                             Quality *result, QualityWarnings warnings);

// Largest magnitude of a member outside the window of one (type 1) or two adjacent (type 2)
// members that the SOS allows, for the best place of the window.
double sos_violation(const ModelBody *body, int k, const double *x);
