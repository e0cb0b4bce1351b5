// optimize.cpp -- TVXoptimize: one solve from the caller's call to the last line of the log
//
// Method      Opening (clock, stop flag, busy flag), the driver, the closing lines, the result file.
//             Between opening and closing the model is busy: other calls on it are refused, but for
//             those made from inside a callback.
// Invariant   The busy flag is cleared on every way out. An error text written deep inside the solve
//             survives the closing lines (err_hold).
#include "frame/optimize.h"
#include "files/files.h"
#include "frame/optimize_log.h"
#include "frame/runtime/clock.h"

// Writes model and parameters as they are about to be solved, for a bug report. Failing to do so does
// not stop the solve.
static void dump(TVXmodel *model)
{
    (void)mps_write(model, "tarvex.rew", WriteNames::NUMBERED);
    (void)TVXwriteparams(model->env, "tarvex.prm");
    (void)finish_model(model, 0); // a failure leaves no text
}

int optimize_run(TVXmodel *model)
{
    const double start = WallClock();
    TRY(model_update(model));
    log_model_size(model);
    model->start_time = start;
    model->run_time = 0;
    if (model->env->TARV_PAR_DUMP) dump(model);
    const int code = model_is_mip(model) ? mip_driver(model) : lp_driver(model);
    model->run_time = WallClock() - start;
    return code;
}

void optimize_open(TVXmodel *model, double now)
{
    TVXenv *env = model->env;
    env->terminate_ptr = &env->terminate;
    flag_store(env->terminate_ptr, 0);
    env->callback_code = 0;
    env->optimize_start = now;
    flag_store(&model->busy, 1);
}

// The closing lines and the text of an error; the code of the whole call.
static int close_run(TVXmodel *model, int code)
{
    TVXenv *env = model->env;
    if (!code) code = env->callback_code;
    if (code) env->err_hold = 1;
    if (model->mip_result) {
        const int epilogue = log_mip_epilogue(model, code);
        if (!code) code = epilogue;
    }
    env->err_hold = 0;
    interrupt_end(model);
    flag_store(&model->busy, 0);
    if (code == OUT_OF_MEMORY) // says more than the closing report, which is left out
        return fail_model(model, code, Report::KEEP_FIRST,
                          "Optimization exhausted available memory");
    return finish_model(model, code);
}

static void write_result_file(TVXmodel *model)
{
    TVXenv *env = model->env;
    if (!env->ResultFile[0]) return;
    const int code = TVXwrite(model, env->ResultFile);
    TVXmsg(env, "\n");
    if (code)
        TVXmsg(env, "WARNING: unable to write requested result file '%s'\n",
               env->ResultFile);
    else
        TVXmsg(env, "Wrote requested result file '%s'\n", env->ResultFile);
    TVXmsg(env, "\n");
    (void)finish_model(model, 0); // the solve went well: its call leaves no text
}

int TVXoptimize(TVXmodel *model)
{
    const double now = WallClock();
    int code = TVXcheckmodel(model);
    if (!code && model_is_occupied(model)) // called from a callback of this very solve
        code = TVX_ERROR_OPTIMIZATION_IN_PROGRESS;
    if (code) return finish_model(model, code);
    optimize_open(model, now);
    code = close_run(model, optimize_run(model));
    if (!code) write_result_file(model);
    return code;
}
