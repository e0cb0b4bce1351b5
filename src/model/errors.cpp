// errors.cpp -- failures of calls on a model
#include "model/model.h"

int fail_model(TVXmodel *model, int code, Report report, const char *format, ...)
{
    if (code == 0 || !model || !env_alive(model->env) || model->env->err_hold) return code;
    va_list arguments;
    va_start(arguments, format);
    fail_v(model->env, code, report, format, arguments);
    va_end(arguments);
    return code;
}

int finish_model(TVXmodel *model, int code)
{
    return model && model->magic == MODEL_MAGIC ? finish(model->env, code) : code;
}
