// simplex.cpp -- placeholder bodies until the simplex subsystem is there: no record ever exists
#include "simplex/simplex.h"

int SimplexOptimize(TVXmodel *, int, const int *, const int *, const double *, const double *)
{
    return TVX_ERROR_NUMERIC;
}
void simplex_free(sopt *) {}
void simplex_get_primal(const sopt *, double *) {}
void simplex_get_dual(const sopt *, double *, double *) {}
void simplex_get_basis(const sopt *, int *) {}
double simplex_objective(const sopt *)
{
    return 0;
}
double simplex_iterations(const sopt *)
{
    return 0;
}
double simplex_work_units(const sopt *)
{
    return 0;
}
int simplex_status(const sopt *)
{
    return TVX_NUMERIC;
}
void simplex_get_scaling(const sopt *, const double **, const double **, double *) {}
int simplex_get_norms(const sopt *, double *)
{
    return 0;
}
int simplex_refactor(TVXmodel *)
{
    return TVX_ERROR_NUMERIC;
}
bool simplex_change_bound(sopt *, int, double, double)
{
    return false;
}
