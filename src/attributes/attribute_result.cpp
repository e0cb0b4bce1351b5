// attribute_result.cpp -- results of the last solve: status, objective, counts, time
//
// Method   Results are in the record of the last solve: that of the MIP if there is one, else that of
//          the LP. The routines return pointers into this record; without a record there is no value.
#include "attributes/attribute_routines.h"
#include "model/solution.h"

int get_status(TVXmodel *model, int, ElementRange, void *values)
{
    *static_cast<int *>(values) = solution_status(model);
    return 0;
}

int get_solcount(TVXmodel *model, int, ElementRange, void *values)
{
    int count = 0;
    if (model->mip.result)
        count = model->mip.result->sol_count;
    else if (lp_has_point(&model->lp))
        count = model->lp.status == TVX_OPTIMAL;
    *static_cast<int *>(values) = count;
    return 0;
}

int compute_runtime(TVXmodel *model, int, const void **place)
{
    *place = &model->run_time;
    return 0;
}

namespace
{
// Sets *place to the value in the record, or returns that there is none.
int stand_at(const void *figure, const void **place)
{
    *place = figure;
    return figure ? 0 : TVX_ERROR_DATA_NOT_AVAILABLE;
}

// There is an objective value only with a point or a bound.
bool has_objective(const TVXmodel *model)
{
    const int status = solution_status(model);
    return status > TVX_LOADED && status != TVX_INFEASIBLE && status != TVX_INF_OR_UNBD &&
           status != TVX_UNBOUNDED;
}
} // namespace

int compute_objval(TVXmodel *model, int, const void **place)
{
    const MipResult *mip = model->mip.result;
    const LpResult *lp = model->lp.result;
    const double *figure = nullptr;
    if (mip)
        figure = &mip->objval;
    else if (lp)
        figure = &lp->objval;
    return stand_at(has_objective(model) ? figure : nullptr, place);
}

int compute_objbound(TVXmodel *model, int, const void **place)
{
    const MipResult *mip = model->mip.result;
    return stand_at(mip && has_objective(model) ? &mip->objbound : nullptr, place);
}

int compute_itercount(TVXmodel *model, int, const void **place)
{
    if (model->mip.result) return stand_at(&model->mip.result->iter_count, place);
    return stand_at(model->lp.result ? &model->lp.result->itercount : nullptr, place);
}

int compute_bar_itercount(TVXmodel *model, int, const void **place)
{
    if (model->mip.result) return stand_at(&model->mip.result->bar_iter_count, place);
    return stand_at(model->lp.result ? &model->lp.result->bar_itercount : nullptr, place);
}

int compute_nodecount(TVXmodel *model, int, const void **place)
{
    if (model->mip.result) return stand_at(&model->mip.result->node_count, place);
    return stand_at(model->lp.result ? &model->lp.work : nullptr, place);
}
