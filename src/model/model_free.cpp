// model_free.cpp -- letting go of a model, or of what solves left in it
#include "api/optimize.h"
#include "attributes/attributes.h"
#include "model/model_store.h"
#include "model/warm_start.h"
#include "simplex/simplex.h"

// The result records but for the presolved model.
static void free_own_results(TVXmodel *model)
{
    record_free(model->lp_result);
    model->lp_result = nullptr;
    record_free(model->mip_result);
    model->mip_result = nullptr;
    presolve_free(model->presolve);
    model->presolve = nullptr;
}

void model_free_results(TVXmodel *model)
{
    model_free(model->presolved);
    model_free(model->dual_form);
    model->presolved = nullptr;
    model->dual_form = nullptr;
    free_own_results(model);
    attributes_clear_solution(model);
}

// The models that a model holds as one chain.
static void link_forms(TVXmodel *model)
{
    TVXmodel *last = model;
    while (last->presolved) last = last->presolved;
    last->presolved = model->dual_form;
    model->dual_form = nullptr;
}

void model_free(TVXmodel *model)
{
    while (model) { // a presolved model may hold a presolved one of its own
        link_forms(model);
        TVXmodel *presolved = model->presolved;
        interrupt_end(model);
        free_own_results(model);
        simplex_free(model->simplex);
        pending_free(model->pending);
        warm_start_free(model->warm_start);
        attributes_free(model->attributes);
        body_free(model->body);
        if (model->env_owned) env_free(model->env);
        model->magic = 0;
        record_free(model);
        model = presolved;
    }
}

int TVXfreemodel(TVXmodel *model)
{
    if (!model) return 0;
    if (model->magic != MODEL_MAGIC) return TVX_ERROR_INVALID_ARGUMENT;
    if (model_is_occupied(model))
        return finish_model(model, TVX_ERROR_OPTIMIZATION_IN_PROGRESS);
    const int error = TVXcheckmodel(model); // an orphan is told to be one, and freed
    model_free(model);
    return error;
}
