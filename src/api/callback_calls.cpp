// callback_calls.cpp -- the calls by which a caller installs a callback function, and asks from inside it
#include "env/callback.h"
#include "model/model.h"
#include "runtime/clock.h"
#include <cmath>

namespace
{
enum WhatType { INT_TYPE = 1, DOUBLE_TYPE = 2, STRING_TYPE = 3 };

constexpr int ANYWHERE = -1;

struct What {
    int what, where;
    WhatType type;
    bool array;
};

// By code. What no solver can tell yet has a type all the same.
constexpr What WHATS[] = {
    {TVX_CB_PRESOLVE_COLUMNS, TVX_WHERE_PRESOLVE, INT_TYPE, false},
    {TVX_CB_PRESOLVE_ROWS, TVX_WHERE_PRESOLVE, INT_TYPE, false},
    {TVX_CB_PRESOLVE_EQUATIONS, TVX_WHERE_PRESOLVE, INT_TYPE, false},
    {TVX_CB_PRESOLVE_BOUNDS, TVX_WHERE_PRESOLVE, INT_TYPE, false},
    {TVX_CB_PRESOLVE_COEFFICIENTS, TVX_WHERE_PRESOLVE, INT_TYPE, false},
    {TVX_CB_SIMPLEX_ITERATIONS, TVX_WHERE_SIMPLEX, DOUBLE_TYPE, false},
    {TVX_CB_SIMPLEX_OBJECTIVE, TVX_WHERE_SIMPLEX, DOUBLE_TYPE, false},
    {TVX_CB_SIMPLEX_PRIMAL_INFEASIBILITY, TVX_WHERE_SIMPLEX, DOUBLE_TYPE, false},
    {TVX_CB_SIMPLEX_DUAL_INFEASIBILITY, TVX_WHERE_SIMPLEX, DOUBLE_TYPE, false},
    {TVX_CB_SIMPLEX_PERTURBED, TVX_WHERE_SIMPLEX, INT_TYPE, false},
    {TVX_CB_MIP_OBJECTIVE, TVX_WHERE_MIP, DOUBLE_TYPE, false},
    {TVX_CB_MIP_BOUND, TVX_WHERE_MIP, DOUBLE_TYPE, false},
    {TVX_CB_MIP_NODES, TVX_WHERE_MIP, DOUBLE_TYPE, false},
    {TVX_CB_MIP_SOLUTIONS, TVX_WHERE_MIP, INT_TYPE, false},
    {TVX_CB_MIP_CUTS, TVX_WHERE_MIP, INT_TYPE, false},
    {TVX_CB_MIP_OPEN_NODES, TVX_WHERE_MIP, DOUBLE_TYPE, false},
    {TVX_CB_MIP_ITERATIONS, TVX_WHERE_MIP, DOUBLE_TYPE, false},
    {TVX_CB_SOLUTION_VALUES, TVX_WHERE_SOLUTION, DOUBLE_TYPE, true},
    {TVX_CB_SOLUTION_OBJECTIVE, TVX_WHERE_SOLUTION, DOUBLE_TYPE, false},
    {TVX_CB_SOLUTION_BEST, TVX_WHERE_SOLUTION, DOUBLE_TYPE, false},
    {TVX_CB_SOLUTION_BOUND, TVX_WHERE_SOLUTION, DOUBLE_TYPE, false},
    {TVX_CB_SOLUTION_NODES, TVX_WHERE_SOLUTION, DOUBLE_TYPE, false},
    {TVX_CB_SOLUTION_COUNT, TVX_WHERE_SOLUTION, INT_TYPE, false},
    {TVX_CB_NODE_STATUS, TVX_WHERE_NODE, INT_TYPE, false},
    {TVX_CB_NODE_VALUES, TVX_WHERE_NODE, DOUBLE_TYPE, true},
    {TVX_CB_NODE_BEST, TVX_WHERE_NODE, DOUBLE_TYPE, false},
    {TVX_CB_NODE_BOUND, TVX_WHERE_NODE, DOUBLE_TYPE, false},
    {TVX_CB_NODE_NODES, TVX_WHERE_NODE, DOUBLE_TYPE, false},
    {TVX_CB_NODE_SOLUTIONS, TVX_WHERE_NODE, INT_TYPE, false},
    {TVX_CB_MESSAGE_TEXT, TVX_WHERE_MESSAGE, STRING_TYPE, false},
    {TVX_CB_SECONDS, ANYWHERE, DOUBLE_TYPE, false},
    {TVX_CB_BARRIER_ITERATIONS, TVX_WHERE_BARRIER, INT_TYPE, false},
    {TVX_CB_BARRIER_PRIMAL_OBJECTIVE, TVX_WHERE_BARRIER, DOUBLE_TYPE, false},
    {TVX_CB_BARRIER_DUAL_OBJECTIVE, TVX_WHERE_BARRIER, DOUBLE_TYPE, false},
    {TVX_CB_BARRIER_PRIMAL_INFEASIBILITY, TVX_WHERE_BARRIER, DOUBLE_TYPE, false},
    {TVX_CB_BARRIER_DUAL_INFEASIBILITY, TVX_WHERE_BARRIER, DOUBLE_TYPE, false},
    {TVX_CB_BARRIER_COMPLEMENTARITY, TVX_WHERE_BARRIER, DOUBLE_TYPE, false},
};

const What *find_what(int what)
{
    for (const What &row : WHATS)
        if (row.what == what) return &row;
    return nullptr;
}

const CallbackRecord *record_of(const void *cbdata)
{
    const CallbackRecord *record = static_cast<const CallbackRecord *>(cbdata);
    return record && record->magic == CALLBACK_MAGIC ? record : nullptr;
}

int answer(const CallbackRecord *record, int where, int what, void *result)
{
    if (what == TVX_CB_SECONDS) {
        *static_cast<double *>(result) = WallClock() - record->model->env->optimize_start;
        return 0;
    }
    const What *row = find_what(what);
    if (!row || row->where != where) return TVX_ERROR_CALLBACK;
    if (where == TVX_WHERE_MESSAGE) {
        if (!record->in_message) return TVX_ERROR_CALLBACK;
        *static_cast<const char **>(result) = record->message;
        return 0;
    }
    const CallbackSource &source = record->source;
    if (source.answer && source.answer(source.solver, what, result) == 0) return 0;
    return row->array ? TVX_ERROR_DATA_NOT_AVAILABLE : TVX_ERROR_CALLBACK;
}

int install(TVXmodel *model, TVXcallback function, void *usrdata)
{
    TVXenv *env = model->env;
    if (!function) {
        env->cb_active = nullptr;
        return 0;
    }
    if (!env->cb_record) {
        env->cb_record =
            static_cast<CallbackRecord *>(MemAllocZero(1, sizeof(CallbackRecord)));
        if (!env->cb_record) return OUT_OF_MEMORY;
        env->cb_record->magic = CALLBACK_MAGIC;
        env->cb_record->model = model;
        env->cb_record->thread = &model->callback_thread;
    }
    env->cb_record->usrdata = usrdata;
    env->cb_active = function;
    return 0;
}
} // namespace

int TVXsetcallbackfunc(TVXmodel *model, TVXcallback function, void *usrdata)
{
    int code = TVXcheckmodel(model);
    if (!code) {
        code = install(model, function, usrdata);
        fail_model(model, code, Report::KEEP_FIRST, "Unable to set callback");
    }
    return finish_model(model, code);
}

int TVXgetcallbackfunc(TVXmodel *model, TVXcallback *function_out)
{
    const int code = TVXcheckmodel(model);
    if (code) return finish_model(model, code);
    if (!function_out)
        return finish_model(model,
                            fail_model(model, TVX_ERROR_NULL_ARGUMENT, Report::KEEP_FIRST,
                                       "Unable to query callback function"));
    *function_out = model->env->cb_active;
    return finish_model(model, 0);
}

int TVXcbget(void *cbdata, int where, int what, void *result_out)
{
    const CallbackRecord *record = record_of(cbdata);
    if (!record) return TVX_ERROR_CALLBACK;
    int code = TVXcheckmodel(record->model);
    if (!code)
        code =
            result_out ? answer(record, where, what, result_out) : TVX_ERROR_NULL_ARGUMENT;
    return finish_model(record->model, code);
}

int TVXgetcbwhatinfo(void *cbdata, int what, int *type_out, int *size_out)
{
    const CallbackRecord *record = record_of(cbdata);
    if (!record) return TVX_ERROR_CALLBACK;
    const What *row = find_what(what);
    int code = TVXcheckmodel(record->model);
    if (!code)
        code = !row                     ? TVX_ERROR_CALLBACK
               : !type_out || !size_out ? TVX_ERROR_NULL_ARGUMENT
                                        : 0;
    if (!code) {
        *type_out = row->type;
        *size_out = row->array;
    }
    return finish_model(record->model, code);
}

namespace
{
int take_solution(const CallbackRecord *record, const double *solution)
{
    const CallbackSource &source = record->source;
    if (!source.take_point) return TVX_ERROR_CALLBACK;
    TVXmodel *model = record->model;
    for (int j = 0; j < model->body->numvars; j++)
        if (std::isnan(solution[j])) return TVX_ERROR_CALLBACK;
    return source.take_point(source.solver, solution);
}

// Rows with sense '>' are negated on the way in.
int take_cut(const CallbackRecord *record, const CallbackRow &row, char sense)
{
    const CallbackSource &source = record->source;
    TVXmodel *model = record->model;
    if (!source.take_row || row.count < 0) return TVX_ERROR_CALLBACK;
    for (int k = 0; k < row.count; k++)
        if (row.ind[k] < 0 || row.ind[k] >= model->body->numvars ||
            !std::isfinite(row.val[k]))
            return TVX_ERROR_CALLBACK;
    if (!std::isfinite(row.rhs)) return TVX_ERROR_CALLBACK;
    if (normal_sense(sense) != '>') return source.take_row(source.solver, row);
    Array<double> negated;
    TRY(array_resize(&negated, row.count));
    for (int k = 0; k < row.count; k++) negated.data[k] = -row.val[k];
    return source.take_row(source.solver, {row.count, row.ind, negated.data, -row.rhs});
}
} // namespace

int TVXcbsolution(void *cbdata, const double *solution)
{
    const CallbackRecord *record = record_of(cbdata);
    if (!record) return TVX_ERROR_CALLBACK;
    int code = TVXcheckmodel(record->model);
    if (!code) code = solution ? take_solution(record, solution) : TVX_ERROR_NULL_ARGUMENT;
    return finish_model(record->model, code);
}

int TVXcbcut(void *cbdata, int cutlen, const int *cutind, const double *cutval,
             char cutsense, double cutrhs)
{
    const CallbackRecord *record = record_of(cbdata);
    if (!record) return TVX_ERROR_CALLBACK;
    int code = TVXcheckmodel(record->model);
    if (!code && cutlen > 0 && (!cutind || !cutval)) code = TVX_ERROR_NULL_ARGUMENT;
    if (!code) code = take_cut(record, {cutlen, cutind, cutval, cutrhs}, cutsense);
    return finish_model(record->model, code);
}
