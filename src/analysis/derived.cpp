// derived.cpp -- common part of the calls that make a model from another one
#include "analysis/derived.h"
#include "model/model.h"

void derived_set_bounds(TVXmodel *copy, int j, double lb, double ub)
{
    ModelBody *body = copy->body;
    body->lb.data[j] = lb;
    body->ub.data[j] = ub;
    body->bound_kind.data[j] = bound_kind_of(lb, ub, body->kind_infinity);
    if (body->vtypes.size == 0) return;
    body->given_lb.data[j] = lb;
    body->given_ub.data[j] = ub;
}

void derived_make_linear(TVXmodel *copy)
{
    ModelBody *body = copy->body;
    array_free(&body->vtypes);
    array_free(&body->given_lb);
    array_free(&body->given_ub);
    body_count_types(body);
    body->numsos = 0;
    array_free(&body->sostype);
    array_free(&body->sosbeg);
    array_free(&body->sosind);
    array_free(&body->soswt);
}

int derived_finish(TVXmodel *copy, const TVXmodel *source, const char *suffix)
{
    const char *name = source->body->modelname;
    env_write_no_files(copy->env);
    return body_join_name(copy->body, name ? name : "", suffix, &copy->body->modelname);
}

namespace
{
int make_copy(TVXmodel *source, const char *suffix, Derivation change, TVXmodel **out)
{
    const ModelBody *body = source->body;
    TRY(model_copy(source, body->varnames.size ? body->varnames.data : nullptr,
                   body->constrnames.size ? body->constrnames.data : nullptr, out));
    TRY(derived_finish(*out, source, suffix));
    return change(source, *out);
}
} // namespace

TVXmodel *derive(TVXmodel *source, const char *suffix, Derivation change)
{
    if (const int error = TVXcheckmodel(source)) {
        finish_model(source, error);
        return nullptr;
    }
    TVXmodel *copy = nullptr;
    const int code = make_copy(source, suffix, change, &copy);
    if (code) {
        model_free(copy);
        copy = nullptr;
    }
    finish_model(source, code);
    return copy;
}
