// model_load.cpp -- TVXnewmodel, TVXloadmodel, TVXcopymodel: callers' ways to a new model
#include "model/model_store.h"

namespace
{
constexpr char COPY_SUFFIX[] = "_copy";

constexpr char NO_NAME[] = "(null)"; // stands for a missing name in a copy's name

int new_model(TVXenv *env, TVXmodel **model_out, const ModelData *data)
{
    if (!model_out) return TVX_ERROR_NULL_ARGUMENT;
    return model_create(env, EnvUse::PRIVATE_COPY, data, model_out);
}
} // namespace

// NOLINTNEXTLINE(readability-function-size): the interface is fixed
int TVXnewmodel(TVXenv *env, TVXmodel **model_out, const char *name, int numvars,
                const double *obj, const double *lb, const double *ub, const char *vtype,
                char **varnames)
{
    if (model_out) *model_out = nullptr;
    if (const int error = env_check(env)) return error;
    error_clear(env);
    const ModelData data = {.name = name,
                            .numvars = numvars,
                            .obj = obj,
                            .lb = lb,
                            .ub = ub,
                            .vtype = vtype,
                            .varnames = varnames};
    return finish(env, new_model(env, model_out, &data));
}

namespace
{
bool lacks_array(const ModelData *data)
{
    if (data->numvars > 0 && !(data->vbeg && data->vlen && data->vind && data->vval))
        return true;
    return data->numconstrs > 0 && !(data->senses && data->rhs);
}
} // namespace

// NOLINTNEXTLINE(readability-function-size): the interface is fixed
int TVXloadmodel(TVXenv *env, TVXmodel **model_out, const char *name, int numvars,
                 int numconstrs, int objsense, double objcon, const double *obj,
                 const char *sense, const double *rhs, const int *vbeg, const int *vlen,
                 const int *vind, const double *vval, const double *lb, const double *ub,
                 const char *vtype, char **varnames, char **constrnames)
{
    if (model_out) *model_out = nullptr;
    if (const int error = env_check(env)) return error;
    error_clear(env);
    const ModelData data = {.name = name,
                            .numvars = numvars,
                            .numconstrs = numconstrs,
                            .sense = objsense,
                            .objcon = objcon,
                            .obj = obj,
                            .senses = sense,
                            .rhs = rhs,
                            .vbeg = vbeg,
                            .vlen = vlen,
                            .vind = vind,
                            .vval = vval,
                            .lb = lb,
                            .ub = ub,
                            .vtype = vtype,
                            .varnames = varnames,
                            .constrnames = constrnames};
    if (numvars >= 0 && numconstrs >= 0 && lacks_array(&data))
        return finish(env, TVX_ERROR_NULL_ARGUMENT);
    return finish(env, new_model(env, model_out, &data));
}

// ---- Copies ----

namespace
{
// What model_create does not know, and signs: it has negated the '>' rows a second time, and was
// given the minimisation form of the objective.
int complete_copy(ModelBody *copy, const ModelBody *source)
{
    if (source->row_flipped > 0) {
        Array<char> flipped;
        TRY(array_resize(&flipped, copy->numconstrs));
        for (int i = 0; i < copy->numconstrs; i++) {
            flipped[i] = copy->senses[i] == '>';
            copy->rhs[i] = source->rhs[i];
        }
        body_negate_rows(copy, flipped.data);
    }
    copy->sense = source->sense;
    TRY(array_copy(&copy->given_lb, source->given_lb.data, source->given_lb.size));
    TRY(array_copy(&copy->given_ub, source->given_ub.data, source->given_ub.size));
    copy->numsos = source->numsos;
    copy->sos_sorted = source->sos_sorted;
    TRY(array_copy(&copy->sostype, source->sostype.data, source->sostype.size));
    TRY(array_copy(&copy->sosbeg, source->sosbeg.data, source->sosbeg.size));
    TRY(array_copy(&copy->sosind, source->sosind.data, source->sosind.size));
    TRY(array_copy(&copy->soswt, source->soswt.data, source->soswt.size));
    copy->next_var_name = source->next_var_name;
    copy->next_constr_name = source->next_constr_name;
    return body_join_name(copy, source->modelname ? source->modelname : NO_NAME,
                          COPY_SUFFIX, &copy->modelname);
}
} // namespace

int model_copy(TVXmodel *source, const char *const *varnames,
               const char *const *constrnames, TVXmodel **copy_out)
{
    const ModelBody *body = source->body;
    const ModelData data = {.numvars = body->numvars,
                            .numconstrs = body->numconstrs,
                            .objcon = body->objcon,
                            .obj = body->obj.data,
                            .senses = body->senses.data,
                            .rhs = body->rhs.data,
                            .vbeg = body->vbeg.data,
                            .vlen = body->vlen.data,
                            .vind = body->vind.data,
                            .vval = body->vval.data,
                            .lb = body->lb.data,
                            .ub = body->ub.data,
                            .vtype = body->vtypes.size ? body->vtypes.data : nullptr,
                            .varnames = varnames,
                            .constrnames = constrnames};
    TRY(model_create(source->env, EnvUse::PRIVATE_COPY, &data, copy_out));
    if (const int error = complete_copy((*copy_out)->body, body)) {
        model_free(*copy_out);
        *copy_out = nullptr;
        return error;
    }
    return 0;
}

TVXmodel *TVXcopymodel(TVXmodel *model)
{
    if (const int error = TVXcheckmodel(model)) {
        finish_model(model, error);
        return nullptr;
    }
    if (model_has_pending(model)) {
        TVXmsg(model->env, "Warning: model has pending changes.\n");
        TVXmsg(model->env, "New model does not contain these changes.\n");
    }
    TVXmodel *copy = nullptr;
    const ModelBody *body = model->body;
    finish_model(model,
                 model_copy(model, body->varnames.size ? body->varnames.data : nullptr,
                            body->constrnames.size ? body->constrnames.data : nullptr,
                            &copy));
    return copy;
}
