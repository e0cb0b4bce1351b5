// certificate.h -- proofs that a model has no feasible point, or that its objective has no end
//
// Both judge the vector as it is given, on the body alone and in its form: minimise, rows a x <= b (those with sense '>'
// are held negated) or a x = b. Bounds and right-hand sides of at least `infinity` in magnitude are absent.
#pragma once
#include "body/body.h"

// A model with a point that violates no bound and no row by more than this is never proved infeasible, nor, if `slack` is
// more, one with a point that violates none by more than that.
static constexpr double PROOF_SLACK = 1e-9;
// Nor is one with a point that violates nothing and has no entry beyond this.
static constexpr double PROOF_RANGE = 1e9;

// Whether the multipliers y [numconstrs] prove the body infeasible: y_i >= 0 where the row is an inequality, and the least
// value of (y A) x over the bounds exceeds y b. Cannot fail. Cost: O(nonzeros).
bool farkas_holds(const ModelBody *body, double infinity, const double *y,
                  double slack = PROOF_SLACK);

// Whether the objective of the body falls for ever along ray [numvars]: no bound and no row is ever met, and c ray < 0.
// That there is a feasible point is not looked at. *holds is set; 0 or OUT_OF_MEMORY. Cost: O(nonzeros).
[[nodiscard]] int ray_holds(const ModelBody *body, double infinity, const double *ray,
                            bool *holds);
