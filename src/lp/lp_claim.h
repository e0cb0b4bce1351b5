// lp_claim.h -- verifies on the model what presolve or the reduced model claims
#pragma once
#include "lp/lp_form.h"

// Does the claim about the form prove that the model has no optimum? Infeasibility counts when it is there with all
// rows and bounds relaxed by FeasibilityTol. 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_claim_holds(const LpSolve *lp, const LpForm *form,
                                 const LpClaim *claim, bool *holds);
// The claim about a form from the status of the simplex on its reduced model; empty when the simplex has no proof. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int lp_claim_of_reduced(const LpForm *form, LpClaim *claim);
// Does the ray of the simplex on the model itself hold in the user's units? 0 or OUT_OF_MEMORY.
[[nodiscard]] int lp_ray_holds(const LpSolve *lp, bool *holds);
