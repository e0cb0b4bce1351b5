// presolved_model.cpp -- TVXpresolvemodel: the presolved model as a new model
//
// Results of earlier solves in the model do not change. During the call the model is busy as in a solve: TVXterminate
// stops the call, other calls are refused.
#include "analysis/derived.h"
#include "body/row_kind.h"
#include "model/model.h"
#include "presolve/presolve.h"
#include "runtime/clock.h"
#include <cstring>
#include <utility>

namespace
{
constexpr size_t POOL_CHUNK = 4096;

// Names of the rows and columns; default names show the original index.
struct Names {
    TextPool *pool = nullptr;
    Array<const char *> vars, constrs;
    ~Names() { PoolFree(&pool); }
};

const char *copy_text(TextPool *pool, const char *text)
{
    return PoolCopy(pool, text, strlen(text));
}

int name_column(Names *names, const ModelBody *body, int j, const char **name)
{
    char buffer[DEFAULT_NAME_LENGTH];
    *name = copy_text(names->pool, var_name(body, j, buffer));
    return *name ? 0 : OUT_OF_MEMORY;
}

int name_row(Names *names, const ModelBody *body, int i, const char **name)
{
    char buffer[DEFAULT_NAME_LENGTH];
    *name = copy_text(names->pool, constr_name(body, i, buffer));
    return *name ? 0 : OUT_OF_MEMORY;
}

int collect_names(const ModelBody *body, const PresolveResult *result, Names *names)
{
    const ModelBody *reduced = presolve_reduced(result);
    names->pool = PoolCreate(POOL_CHUNK);
    if (!names->pool) return OUT_OF_MEMORY;
    TRY(array_resize(&names->vars, reduced->numvars));
    TRY(array_resize(&names->constrs, reduced->numconstrs));
    for (int j = 0; j < body->numvars; j++) {
        const int k = presolved_var(result, j);
        if (k >= 0) TRY(name_column(names, body, j, &names->vars[k]));
    }
    for (int i = 0; i < body->numconstrs; i++) {
        const int k = presolved_constr(result, i);
        if (k >= 0) TRY(name_row(names, body, i, &names->constrs[k]));
    }
    return 0;
}

int refuse(TVXmodel *model, PresolveStatus status)
{
    const char *why = status == PRESOLVE_TIME_LIMIT    ? "the time limit is reached"
                      : status == PRESOLVE_INTERRUPTED ? "it was interrupted"
                      : status == PRESOLVE_OVERGROWN   ? "its numbers are too large"
                                                     : "the model has no optimal solution";
    return fail_model(model, TVX_ERROR_DATA_NOT_AVAILABLE, Report::KEEP_FIRST,
                      "Presolve leaves no model: %s", why);
}

// A model without rows and columns, with the constant of the objective.
int make_empty(TVXmodel *model, const PresolveResult *result, TVXmodel **out)
{
    const ModelData empty = {.sense = model->body->sense,
                             .objcon = presolved_constant(result)};
    return model_create(model->env, EnvUse::PRIVATE_COPY, &empty, out);
}

// With Presolve 0 nothing is reduced, as in a solve.
int make_unreduced(TVXmodel *model, TVXmodel **out)
{
    const ModelBody *body = model->body;
    return model_copy(model, body->varnames.size ? body->varnames.data : nullptr,
                      body->constrnames.size ? body->constrnames.data : nullptr, out);
}

int make_from_result(TVXmodel *model, PresolveResult *result, TVXmodel **out)
{
    const ModelBody *reduced = presolve_reduced(result);
    if (!reduced) return make_empty(model, result, out);
    Names names;
    TRY(collect_names(model->body, result, &names));
    TRY(model_of_body(model->env, EnvUse::PRIVATE_COPY, presolve_take_reduced(result),
                      out));
    return body_set_names((*out)->body, names.vars.data, names.constrs.data);
}

int make_reduced(TVXmodel *model, TVXmodel **out)
{
    if (body_is_extreme(model->body)) return refuse(model, PRESOLVE_OVERGROWN);
    if (find_row(model->body, RowKind::IMPOSSIBLE) >= 0)
        return refuse(model, PRESOLVE_INFEASIBLE);
    LpClaim claim;
    PresolveResult *result = nullptr;
    bool proved = false;
    double work = 0;
    PresolveStatus status = PRESOLVE_OK;
    const LpMethod method = static_cast<LpMethod>(model->env->LPMethod);
    TRY(presolve_lp(model->body, model->env, method, &result, &status, &work, &claim));
    const bool no_optimum = status == PRESOLVE_INFEASIBLE ||
                            status == PRESOLVE_INF_OR_UNBD || status == PRESOLVE_UNBOUNDED;
    if (no_optimum) {
        TRY(lp_presolve_claim_holds(model->body, model->env, &claim, &proved));
        if (!proved) return make_unreduced(model, out); // a reduction was wrong by rounding
    }
    if (status != PRESOLVE_OK) return refuse(model, status);
    const int code = make_from_result(model, result, out);
    presolve_free(result);
    return code;
}

int make_copy(TVXmodel *model, TVXmodel **out)
{
    if (body_is_mip(model->body))
        return fail_model(model, TVX_ERROR_NOT_FOR_MIP, Report::KEEP_FIRST,
                          "Presolve of models with integer variables is not available yet");
    TRY(model->env->Presolve == 0 ? make_unreduced(model, out) : make_reduced(model, out));
    return derived_finish(*out, model, "_presolved");
}
} // namespace

TVXmodel *TVXpresolvemodel(TVXmodel *model)
{
    int code = TVXcheckmodel(model);
    if (!code && model_is_occupied(model)) // called from a callback
        code = TVX_ERROR_OPTIMIZATION_IN_PROGRESS;
    if (code) {
        finish_model(model, code);
        return nullptr;
    }
    TVXmodel *out = nullptr;
    model_open_solve(model, WallClock());
    code = make_copy(model, &out);
    flag_store(&model->busy, 0);
    if (code) {
        model_free(out);
        out = nullptr;
    }
    finish_model(model, code);
    return out;
}
