// lp_run.cpp -- one run of the simplex within an LP solve
//
// Method      The form counts its iterations on from those of the model, so that the limit holds for all runs of a solve
//             together. A large form that starts from scratch may first get a basis from an auxiliary problem.
#include "lp/lp_run.h"
#include "lp/lp_auxiliary.h"
#include "model/warm_start.h"
#include "simplex/simplex.h"

namespace
{
// The form's own count, where its simplex record begins. 0 or OUT_OF_MEMORY.
int carry_count(const TVXmodel *model, TVXmodel *form)
{
    if (form == model) return 0;
    if (!form->lp_result)
        form->lp_result = static_cast<LpResult *>(MemAllocZero(1, sizeof(LpResult)));
    if (!form->lp_result) return OUT_OF_MEMORY;
    form->lp_result->itercount = model->lp_result->itercount;
    return 0;
}

int start_from_auxiliary(TVXmodel *model, TVXmodel *form, int method, Array<int> *statuses)
{
    AuxiliaryStart start;
    TRY(lp_auxiliary_start(form, method, model->lp_result->itercount, &start));
    model->lp_result->itercount += start.iterations;
    model->node_count += start.work;
    *statuses = static_cast<Array<int> &&>(start.statuses);
    return 0;
}
} // namespace

int lp_run(TVXmodel *model, TVXmodel *form, int method, const Array<int> *statuses)
{
    Array<int> own;
    if (statuses->size == 0 && !form->simplex && !warm_start_usable(form)) {
        TRY(start_from_auxiliary(model, form, method, &own));
        statuses = &own;
    }
    TRY(carry_count(model, form));
    const bool given = statuses->size > 0;
    const int code = SimplexOptimize(form, method, given ? statuses->data : nullptr,
                                     given ? statuses->data + form->body->numvars : nullptr,
                                     nullptr, nullptr);
    if (form == model || !form->simplex) return code;
    model->lp_result->itercount = simplex_iterations(form->simplex);
    model->node_count += simplex_take_work(form->simplex);
    return code;
}
