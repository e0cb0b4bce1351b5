// model_free.cpp -- letting go of a model, or of what solves left in it
#include "model/attribute_cache.h"
#include "model/model_store.h"
#include "model/warm_start.h"

void model_free_results(TVXmodel *model)
{
    lp_drop_results(&model->lp);
    mip_drop(&model->mip);
    attributes_clear_solution(model);
}

void model_free(TVXmodel *model)
{
    if (!model) return;
    interrupt_end(model);
    model_free_results(model);
    lp_drop_simplex(&model->lp);
    pending_free(model->pending);
    warm_start_free(model->warm_start);
    attributes_free(model->attributes);
    body_free(model->body);
    if (model->env_owned) env_free(model->env);
    model->magic = 0;
    record_free(model);
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
