// optimize.cpp -- TVXoptimize: one solve from the caller's call to the last line of the log
//
// Method      Opening (clock, stop flag, busy flag), the driver, the closing lines, the result file.
//             Between opening and closing the model is busy: other calls on it are refused, but for
//             those made from inside a callback.
// Invariant   The busy flag is cleared on every way out. An error text written deep inside the solve
//             survives the closing lines (err_hold).
#include "api/file_calls.h"
#include "env/callback.h"
#include "files/files.h"
#include "model/attribute_cache.h"
#include "model/warm_start.h"
#include "runtime/clock.h"
#include "runtime/file.h"
#include <cstring>

namespace
{
// Writes model and parameters as they are about to be solved, for a bug report. Failing to do so does
// not stop the solve.
void dump(TVXmodel *model)
{
    (void)mps_write(model->body, model->env, "tarvex.rew", WriteNames::NUMBERED);
    (void)TVXwriteparams(model->env, "tarvex.prm");
    (void)finish_model(model, 0); // a failure leaves no text
}

// The model that presolve has left, likewise.
void write_reduced(const ModelBody *reduced, TVXenv *env)
{
    (void)mps_write(reduced, env, "junk.mps", WriteNames::NUMBERED);
    (void)finish(env, 0);
}

void log_size(const TVXmodel *model)
{
    const ModelBody *body = model->body;
    TVXmsg(model->env, "Optimize a model with %d rows, %d columns and %d nonzeros\n",
           body->numconstrs, body->numvars, body->numnz);
}

// Clears cached attributes before the solve and after it, since a callback may have filled them.
int run_lp(TVXmodel *model)
{
    LpSolve *lp = &model->lp;
    const double start = WallClock();
    const WarmStart *warm = warm_start_usable(model);
    LpGiven given;
    if (warm) {
        given = {warm->statuses.data, nullptr, warm->kind == WARM_CHECKED};
        if (warm->norms.size == warm->statuses.size) given.norms = warm->norms.data;
    }
    attributes_clear_solution(model);
    lp->write_reduced = write_reduced;
    const int code = lp_solve(lp, model->body, model->env, given);
    attributes_clear_solution(model);
    if (lp->simplex) warm_start_drop(model); // the record is newer
    const int outcome = lp_log_result(lp, start);
    if (code == OUT_OF_MEMORY) TVXmsg(model->env, "Out of memory\n");
    if (outcome == OUT_OF_MEMORY) lp_drop(lp);
    return code ? code : outcome;
}

int run_mip(TVXmodel *model)
{
    MipSolve *mip = &model->mip;
    lp_drop_results(&model->lp);
    lp_set_loaded(&model->lp);
    attributes_clear_solution(model);
    mip->write_reduced = write_reduced;
    const double *start =
        model->mip_start.size == model->body->numvars && model->body->numvars > 0
            ? model->mip_start.data
            : nullptr;
    const int code = mip_solve(mip, model->body, model->env, start);
    attributes_clear_solution(model);
    return code;
}
} // namespace

int optimize_run(TVXmodel *model)
{
    const double start = WallClock();
    TRY(model_update(model));
    log_size(model);
    model->run_time = 0;
    if (model->env->TARV_PAR_DUMP) dump(model);
    const int code = body_is_mip(model->body) ? run_mip(model) : run_lp(model);
    model->run_time = WallClock() - start;
    return code;
}

namespace
{
// The closing lines and the text of an error; the code of the whole call.
int close_run(TVXmodel *model, int code)
{
    TVXenv *env = model->env;
    if (!code) code = callback_code(env);
    if (model->mip.result) {
        const ErrorHold hold(code ? env : nullptr);
        const int epilogue = mip_log_result(&model->mip, code);
        if (!code) code = epilogue;
    }
    if (!code) code = callback_code(env); // returned at one of the closing lines
    interrupt_end(model);
    flag_store(&model->busy, 0);
    if (code == OUT_OF_MEMORY) // says more than the closing report, which is left out
        return fail_model(model, code, Report::KEEP_FIRST,
                          "Optimization exhausted available memory");
    return finish_model(model, code);
}

// ---- The result file ----

// What the file would hold, if only a solve can make it: the file of an earlier solve must not pass for that of this
// one.
const char *result_of_solve(const char *file_name)
{
    switch (file_type(file_name)) {
    case FILE_SOL:
    case FILE_MST:
        return "solution";
    case FILE_BAS:
        return "basis";
    default:
        return nullptr;
    }
}

void call_older(TVXenv *env)
{
    TVXmsg(env, "         The file of that name is older, not the result of this solve\n");
}

void drop_old_result(TVXenv *env, const char *name)
{
    if (FileRemove(name))
        TVXmsg(env, "         The file of that name was older and is removed\n");
    else if (FileCanRead(name))
        call_older(env);
}

// The file could not be written, for this code; or the solve has failed, and nothing was tried.
void explain_no_result(TVXenv *env, const char *name, int code, bool solved)
{
    const char *what = result_of_solve(name);
    TVXmsg(env, "WARNING: unable to write requested result file '%s'\n", name);
    if (!what) return;
    if (!solved)
        TVXmsg(env, "         The solve has failed\n");
    else if (code == TVX_ERROR_DATA_NOT_AVAILABLE)
        TVXmsg(env, "         The solve ended without a %s\n", what);
    if (code != TVX_ERROR_FILE_WRITE)
        drop_old_result(env, name);
    else if (FileCanRead(name)) // perhaps protected by its owner
        call_older(env);
}

void write_result_file(TVXmodel *model, const char *name)
{
    TVXenv *env = model->env;
    const int code = TVXwrite(model, name);
    TVXmsg(env, "\n");
    if (code)
        explain_no_result(env, name, code, true);
    else
        TVXmsg(env, "Wrote requested result file '%s'\n", name);
    TVXmsg(env, "\n");
    (void)finish_model(model, 0); // the solve went well: its call leaves no text
}

// Behind a solve with this code. A callback that receives a log line written here may change parameters and make calls
// of its own: the name is kept, and so is the text of a failure.
void settle_result_file(TVXmodel *model, int solve_code)
{
    TVXenv *env = model->env;
    char name[sizeof env->ResultFile];
    memcpy(name, env->ResultFile, sizeof name);
    if (!*name) return;
    if (!solve_code) {
        write_result_file(model, name);
    } else if (result_of_solve(name)) {
        const ErrorHold hold(env);
        explain_no_result(env, name, solve_code, false);
    }
}
} // namespace

int TVXoptimize(TVXmodel *model)
{
    const double now = WallClock();
    int code = TVXcheckmodel(model);
    if (!code && model_is_occupied(model)) // called from a callback of this very solve
        code = TVX_ERROR_OPTIMIZATION_IN_PROGRESS;
    if (code) return finish_model(model, code);
    model_open_solve(model, now);
    interrupt_begin(model);
    code = close_run(model, optimize_run(model));
    settle_result_file(model, code);
    return code;
}
