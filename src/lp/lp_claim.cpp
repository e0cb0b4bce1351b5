// lp_claim.cpp -- is what a form or a reduced model says of a model without optimum true of the model?
//
// Method      Presolve, or the simplex on the reduced model, gives multipliers or a ray; postsolve makes them those of the
//             form, the dual form turns one into the other, and body/certificate.h judges the result on the model alone.
// Cost        O(nonzeros) for a model that is said to have no optimum, nothing otherwise.
#include "lp/lp_claim.h"
#include "body/certificate.h"
#include "presolve/dualise.h"
#include "simplex/simplex.h"
#include <algorithm>

namespace
{
int judge_farkas(const TVXmodel *model, double *farkas, bool *holds)
{
    const TVXenv *env = model->env;
    farkas_clean(model->body, infinite_bound(env), farkas);
    *holds = farkas_holds(model->body, infinite_bound(env), farkas, env->FeasibilityTol);
    return 0;
}

int judge_ray(const TVXmodel *model, double *ray, bool *holds)
{
    ray_clean(model->body, infinite_bound(model->env), ray);
    return ray_holds(model->body, infinite_bound(model->env), ray, holds);
}

int judge_dual(const TVXmodel *model, const LpClaim *claim, bool *holds)
{
    const double infinite = infinite_bound(model->env);
    Array<double> own;
    if (claim->ray.size > 0) {
        TRY(array_resize(&own, model->body->numconstrs));
        dual_ray_to_farkas(model->body, infinite, claim->ray.data, own.data);
        return judge_farkas(model, own.data, holds);
    }
    if (claim->farkas.size == 0) return 0;
    TRY(array_resize(&own, model->body->numvars));
    dual_farkas_to_ray(model->body, infinite, claim->farkas.data, own.data);
    return judge_ray(model, own.data, holds);
}
} // namespace

int lp_claim_holds(const TVXmodel *model, const TVXmodel *form, const LpClaim *claim,
                   bool *holds)
{
    *holds = false;
    if (form != model) return judge_dual(model, claim, holds);
    if (claim->farkas.size > 0) TRY(judge_farkas(model, claim->farkas.data, holds));
    if (*holds || claim->ray.size == 0) return 0;
    return judge_ray(model, claim->ray.data, holds);
}

int lp_ray_holds(const TVXmodel *model, bool *holds)
{
    Array<double> ray;
    TRY(array_resize(&ray, model->body->numvars));
    *holds = false;
    return simplex_get_ray(model->simplex, ray.data) ? judge_ray(model, ray.data, holds)
                                                     : 0;
}

int lp_claim_of_reduced(const TVXmodel *form, LpClaim *claim)
{
    const TVXmodel *reduced = form->presolved;
    if (!reduced->simplex) return 0;
    Array<double> own;
    TRY(array_resize(&own, std::max(reduced->body->numvars, reduced->body->numconstrs)));
    if (simplex_get_farkas(reduced->simplex, own.data)) {
        TRY(array_resize(&claim->farkas, form->body->numconstrs));
        return postsolve_farkas(form, own.data, claim->farkas.data);
    }
    if (!simplex_get_ray(reduced->simplex, own.data)) return 0;
    TRY(array_resize(&claim->ray, form->body->numvars));
    return postsolve_ray(form, own.data, claim->ray.data);
}
