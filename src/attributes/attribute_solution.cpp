// attribute_solution.cpp -- attributes of the solution, element by element (solution.h)
#include "attributes/attribute_routines.h"
#include "model/solution.h"

int compute_x(TVXmodel *model, int, const void **place)
{
    const double *x = nullptr;
    TRY(solution_x(model, &x));
    *place = x;
    return 0;
}

// Solution number 0 is the best one; others exist only where a search has collected them.
int compute_xn(TVXmodel *model, int part, const void **place)
{
    if (model->env->SolutionNumber > 0) return TVX_ERROR_DATA_NOT_AVAILABLE;
    return compute_x(model, part, place);
}

int compute_slack(TVXmodel *model, int, const void **place)
{
    const double *slack = nullptr;
    TRY(solution_slack(model, &slack));
    *place = slack;
    return 0;
}

int compute_duals(TVXmodel *model, int part, const void **place)
{
    const double *pi = nullptr, *rc = nullptr;
    TRY(solution_duals(model, &pi, &rc));
    *place = part == PART_PI ? pi : rc;
    return 0;
}
