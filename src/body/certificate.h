// certificate.h -- verification of proofs that a model is infeasible or its objective unbounded
//
// Both functions verify the given vector with the body alone, in its form: minimise, rows a x <= b (those with sense
// '>' are stored negated) or a x = b. Bounds and right-hand sides of at least `infinity` in magnitude are infinite.
#pragma once
#include "body/body.h"

// A model with a point that violates every bound and row by at most PROOF_SLACK, or at most `slack` if that is larger,
// is never proved infeasible.
static constexpr double PROOF_SLACK = 1e-9;
// Nor is a model with a feasible point without entries beyond this.
static constexpr double PROOF_RANGE = 1e9;

// True if the multipliers y [numconstrs] prove the body infeasible: y_i >= 0 for inequalities, and the minimum of (y A)
// x over the bounds exceeds y b. Cannot fail. Cost: O(nonzeros).
bool farkas_holds(const ModelBody *body, double infinity, const double *y,
                  double slack = PROOF_SLACK);

// *holds: the objective decreases without limit along ray [numvars], that is, no bound and no row blocks and c ray < 0.
// Does not test whether there is a feasible point. 0 or OUT_OF_MEMORY. Cost: O(nonzeros).
[[nodiscard]] int ray_holds(const ModelBody *body, double infinity, const double *ray,
                            bool *holds);
