// solution.h -- the solution of the last solve in the caller's form
//
// Sign conventions, for the model exactly as the caller gave it: objective c x + constant with its
// own sense, rows a_i x {<, =, >} b_i, bounds l <= x <= u.
//   Pi     change of the optimal objective per unit of b_i
//   RC     c_j - sum over rows of a_ij * Pi_i
//   Slack  b_i - a_i x: not below 0 on a '<' row that holds, not above 0 on a '>' row
// At an optimum of a minimise model Pi is not above 0 on '<' rows and not below 0 on '>' rows, RC is
// not below 0 at a lower and not above 0 at an upper bound; for a maximise model all four the other
// way round. Pi_i * Slack_i = 0, and RC_j = 0 between the bounds. Then
//   objective = constant + sum_i Pi_i b_i + sum_j RC_j x_j.
//
// The routines return 0, TVX_ERROR_DATA_NOT_AVAILABLE without text, or OUT_OF_MEMORY. The arrays
// belong to the model and stay until its next solve or update.
#pragma once
#include "model/model.h"

int solution_status(const TVXmodel *model); // the Status attribute
// There is an LP solution to show: a simplex record, and a status that leaves a point in it.
bool solution_available(const TVXmodel *model);

[[nodiscard]] int solution_x(TVXmodel *model, const double **x); // [numvars], LP or MIP
// Solution number k of a MIP, 0 the best one; of an LP there is that one alone.
[[nodiscard]] int solution_number(TVXmodel *model, int k, const double **x);
[[nodiscard]] int solution_slack(TVXmodel *model,
                                 const double **slack); // [numconstrs], LP or MIP
[[nodiscard]] int solution_duals(TVXmodel *model, const double **pi, const double **rc);
// [numvars] codes of VBasis, then [numconstrs] of CBasis.
[[nodiscard]] int solution_basis(TVXmodel *model, const int **codes);
// Fills lp.result->quality if that has not been done since the solve (quality.h).
[[nodiscard]] int solution_quality(TVXmodel *model);
