// lp_claim.cpp -- is what a form or a reduced model says of a model without optimum true of the model?
//
// Method      Presolve, or the simplex on the reduced model, gives multipliers or a ray; postsolve makes them those of
//             the form, the dual form turns one into the other, and body/certificate.h judges the result on the model
//             alone.
// Cost        O(nonzeros) for a model that is said to have no optimum, nothing otherwise.
#include "lp/lp_claim.h"
#include "body/certificate.h"
#include "presolve/dualise.h"
#include <algorithm>

namespace
{
int judge_farkas(const ModelBody *body, const TVXenv *env, double *farkas, bool *holds)
{
    farkas_clean(body, infinite_bound(env), farkas);
    *holds = farkas_holds(body, infinite_bound(env), farkas, env->FeasibilityTol);
    return 0;
}

int judge_ray(const ModelBody *body, const TVXenv *env, double *ray, bool *holds)
{
    ray_clean(body, infinite_bound(env), ray);
    return ray_holds(body, infinite_bound(env), ray, holds);
}

int judge_dual(const ModelBody *body, const TVXenv *env, const LpClaim *claim, bool *holds)
{
    const double infinite = infinite_bound(env);
    Array<double> own;
    if (claim->ray.size > 0) {
        TRY(array_resize(&own, body->numconstrs));
        dual_ray_to_farkas(body, infinite, claim->ray.data, own.data);
        return judge_farkas(body, env, own.data, holds);
    }
    if (claim->farkas.size == 0) return 0;
    TRY(array_resize(&own, body->numvars));
    dual_farkas_to_ray(body, infinite, claim->farkas.data, own.data);
    return judge_ray(body, env, own.data, holds);
}
} // namespace

int lp_presolve_claim_holds(const ModelBody *body, const TVXenv *env, const LpClaim *claim,
                            bool *holds)
{
    *holds = false;
    if (claim->farkas.size > 0) TRY(judge_farkas(body, env, claim->farkas.data, holds));
    if (*holds || claim->ray.size == 0) return 0;
    return judge_ray(body, env, claim->ray.data, holds);
}

int lp_claim_holds(const LpSolve *lp, const LpForm *form, const LpClaim *claim, bool *holds)
{
    *holds = false;
    return form->dual ? judge_dual(lp->body, lp->env, claim, holds)
                      : lp_presolve_claim_holds(lp->body, lp->env, claim, holds);
}

int lp_ray_holds(const LpSolve *lp, bool *holds)
{
    Array<double> ray;
    TRY(array_resize(&ray, lp->body->numvars));
    *holds = false;
    return simplex_get_ray(lp->simplex, ray.data)
               ? judge_ray(lp->body, lp->env, ray.data, holds)
               : 0;
}

int lp_claim_of_reduced(const LpForm *form, LpClaim *claim)
{
    const ModelBody *reduced = lp_form_reduced(form);
    if (!form->simplex) return 0;
    Array<double> own;
    TRY(array_resize(&own, std::max(reduced->numvars, reduced->numconstrs)));
    if (simplex_get_farkas(form->simplex, own.data)) {
        TRY(array_resize(&claim->farkas, form->body->numconstrs));
        return postsolve_farkas(form->presolve, own.data, claim->farkas.data);
    }
    if (!simplex_get_ray(form->simplex, own.data)) return 0;
    TRY(array_resize(&claim->ray, form->body->numvars));
    return postsolve_ray(form->presolve, own.data, claim->ray.data);
}
