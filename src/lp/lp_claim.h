// lp_claim.h -- is what a form or a reduced model says of a model without optimum true of the model?
#pragma once
#include "model/model.h"
#include "presolve/presolve.h"

// Does the claim about `form` (the model, or its dual) prove that `model` has no optimum? Infeasibility counts when it is
// there with all rows and bounds held wider by FeasibilityTol. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_claim_holds(const TVXmodel *model, const TVXmodel *form,
                                 const LpClaim *claim, bool *holds);
// The claim about `form` from the status of the simplex on its reduced model; empty when the simplex has no proof. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int lp_claim_of_reduced(const TVXmodel *form, LpClaim *claim);
// Does the ray of the simplex on the model itself hold in the user's units? 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_ray_holds(const TVXmodel *model, bool *holds);
