// dualise.h -- the dual of a linear model as a body, and the mapping of its basis to the model
#pragma once
#include "body/body.h"

// The dual of a body, as a body. If the dual is infeasible, the model is infeasible or unbounded; if the dual is
// unbounded, the model is infeasible. *out is null when a limit stops it, or when the dual would be too large in size
// or numbers. 0 or OUT_OF_MEMORY.
[[nodiscard]] int dualise(const ModelBody *body, TVXenv *env, ModelBody **out);
// Mapping of proofs: a ray of the dual [its variables] gives row multipliers that prove the model infeasible; row
// multipliers that prove the dual infeasible give a ray of the model (body/certificate.h).
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
