// lp_point.cpp -- the point of an LP solve and its measures: from the simplex record, or, where a solver has left none,
// from the result
#include "lp/lp.h"
#include <algorithm>

bool lp_has_point(const LpSolve *lp)
{
    return lp->simplex || (lp->result && lp->result->has_point);
}

bool lp_has_duals(const LpSolve *lp)
{
    return lp->simplex || (lp->result && lp->result->has_duals);
}

void lp_get_x(const LpSolve *lp, double *x)
{
    if (lp->simplex)
        simplex_get_primal(lp->simplex, x);
    else
        std::copy_n(lp->result->x.data, lp->body->numvars, x);
}

void lp_get_duals(const LpSolve *lp, double *pi, double *rc)
{
    if (lp->simplex) return simplex_get_dual(lp->simplex, pi, rc);
    const ModelBody *body = lp->body;
    std::copy_n(lp->result->pi.data, body->numconstrs, pi);
    for (int j = 0; j < body->numvars; j++) {
        long double d = body->obj.data[j];
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            d -= static_cast<long double>(body->vval.data[p]) * pi[body->vind.data[p]];
        rc[j] = static_cast<double>(d);
    }
}

int lp_quality(LpSolve *lp)
{
    LpResult *result = lp->result;
    if (!result || !lp_has_point(lp) || !lp_has_duals(lp))
        return TVX_ERROR_DATA_NOT_AVAILABLE;
    if (result->quality.computed) return 0;
    const int n = lp->body->numvars, m = lp->body->numconstrs;
    Array<double> x, pi, rc;
    Array<int> basis;
    TRY(array_resize(&x, n));
    TRY(array_resize(&pi, m));
    TRY(array_resize(&rc, n));
    lp_get_x(lp, x.data);
    lp_get_duals(lp, pi.data, rc.data);
    JudgedPoint point = {x.data, pi.data, rc.data};
    QualityScale scale;
    if (lp->simplex) {
        TRY(array_resize(&basis, int64_t{n} + m));
        simplex_get_basis(lp->simplex, basis.data);
        simplex_get_scaling(lp->simplex, &scale.row, &scale.col, &scale.obj);
        point.row_basis = basis.data + n;
    }
    return LpQuality(lp->env, lp->body, point, scale, &result->quality);
}
