// solution_quality.cpp -- takes the measures of the LP solution that stands (solution.h)
//
// Cost   O(n + m + nonzeros) at the first call after a solve, then none.
#include "attributes/solution.h"
#include "body/quality.h"
#include "simplex/simplex.h"

int solution_quality(TVXmodel *model)
{
    if (!solution_available(model) || !model->lp_result)
        return TVX_ERROR_DATA_NOT_AVAILABLE;
    Quality *quality = &model->lp_result->quality;
    if (quality->computed) return 0;
    LpPoint point = {.signs = PointSigns::CALLER};
    const int *basis = nullptr;
    TRY(solution_x(model, &point.x));
    TRY(solution_duals(model, &point.pi, &point.rc));
    TRY(solution_basis(model, &basis));
    point.row_basis = basis + model->body->numvars;
    QualityScale scale;
    simplex_get_scaling(model->simplex, &scale.row, &scale.col, &scale.obj);
    return LpQuality(model->env, model->body, point, scale, quality);
}
