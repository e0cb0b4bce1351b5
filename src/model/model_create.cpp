// model_create.cpp -- new models
#include "model/model_store.h"

void model_estimate_size(TVXmodel *model)
{
    const ModelBody *body = model->body;
    model->size_estimate = 13 * int64_t{body->numvars} + 7 * int64_t{body->numconstrs} +
                           23 * int64_t{body->numnz};
}

namespace
{
int fill_model(TVXmodel *model, TVXenv *env, EnvUse use, ModelBody *body)
{
    model->magic = MODEL_MAGIC;
    lp_set_loaded(&model->lp);
    model->body = body;
    model_estimate_size(model);
    if (use == EnvUse::SHARED) {
        model->env = env;
        return 0;
    }
    TRY(env_copy(&model->env, env, EnvFiles::AS_SOURCE));
    model->env_owned = 1;
    return 0;
}
} // namespace

int model_of_body(TVXenv *env, EnvUse use, ModelBody *body, TVXmodel **model_out)
{
    *model_out = nullptr;
    TVXmodel *model = record_create<TVXmodel>();
    if (!model) {
        body_free(body);
        return OUT_OF_MEMORY;
    }
    if (const int error = fill_model(model, env, use, body)) {
        model_free(model);
        return error;
    }
    *model_out = model;
    return 0;
}

int model_create(TVXenv *env, EnvUse use, const ModelData *data, TVXmodel **model_out)
{
    ModelBody *body = nullptr;
    *model_out = nullptr;
    TRY(body_build(env, data, &body));
    return model_of_body(env, use, body, model_out);
}
