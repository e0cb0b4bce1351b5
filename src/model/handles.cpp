// handles.cpp -- the model handle: the check that opens every call on a model, and what needs no more than it
//
// Problem     Null, freed and foreign pointers, models in the middle of a solve and models whose environment is gone
//             have to be told apart before anything is touched.
#include "env/callback.h"
#include "model/model.h"

int model_check(TVXmodel *model)
{
    if (!model) return TVX_ERROR_NULL_ARGUMENT;
    if (model->magic != MODEL_MAGIC) return TVX_ERROR_INVALID_ARGUMENT;
    if (flag_load(&model->busy) && flag_load(&model->callback_thread) != ThreadSelf())
        return TVX_ERROR_OPTIMIZATION_IN_PROGRESS;
    return env_check(model->env);
}

bool model_is_occupied(TVXmodel *model)
{
    return flag_load(&model->busy) || flag_load(&model->callback_thread) != 0;
}

int check_idle(TVXmodel *model)
{
    return model_is_occupied(model) ? TVX_ERROR_OPTIMIZATION_IN_PROGRESS : 0;
}

int TVXcheckmodel(TVXmodel *model)
{
    TRY(model_check(model));
    error_clear(model->env);
    return 0;
}

TVXenv *TVXgetenv(TVXmodel *model)
{
    return TVXcheckmodel(model) ? nullptr : model->env;
}

const char *TVXgetmerrormsg(TVXmodel *model)
{
    return model_check(model) ? "" : model->env->errmsg;
}

void TVXterminate(TVXmodel *model)
{
    if (!model || model->magic != MODEL_MAGIC || !model->env ||
        model->env->magic != ENV_MAGIC)
        return;
    if (env_alive(model->env))
        flag_store(&model->env->terminate, 1);
    else
        warn_dead_master(model->env);
}

void model_open_solve(TVXmodel *model, double now)
{
    TVXenv *env = model->env;
    env->terminate_ptr = &env->terminate;
    flag_store(env->terminate_ptr, 0);
    callback_open(env);
    env->optimize_start = now;
    flag_store(&model->busy, 1);
}
