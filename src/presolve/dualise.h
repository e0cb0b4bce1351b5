// dualise.h -- the dual of a linear model as a body of its own, and the way back from its basis
#pragma once
#include "body/body.h"

// The dual of a body, as a body. An infeasible dual means an infeasible or unbounded
// model, an unbounded one an infeasible model. A PresolveStatus of the limits, OUT_OF_MEMORY, or
// TVX_ERROR_INVALID_ARGUMENT when it would be too large; *out is null on failure.
[[nodiscard]] int dualise(const ModelBody *body, TVXenv *env, ModelBody **out);
// What is said of the dual is proved for the model: a ray of the dual [its variables] gives multipliers of the rows of the
// model that prove it infeasible, and multipliers of the rows of the dual give a ray of the model (body/certificate.h).
void dual_ray_to_farkas(const ModelBody *body, double infinite, const double *dual_ray,
                        double *farkas);
void dual_farkas_to_ray(const ModelBody *body, double infinite, const double *dual_farkas,
                        double *ray);
// The basis of the dual that belongs to a basis of the model; statuses as in warm starts, variables before rows.
void primal_basis_to_dual(const ModelBody *body, double infinite, const int *status,
                          int *dual_status);
// The basis of the model that belongs to a basis of its dual; statuses as in warm starts, variables before rows.
void dual_basis_to_primal(const ModelBody *body, double infinite, const int *dual_status,
                          int *status);
