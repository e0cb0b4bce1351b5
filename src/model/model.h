// model.h -- TVXmodel, the model store: body, pending changes, warm start, results
//
// State     Condition                  Entered by                                  Left by
// alive     magic == MODEL_MAGIC       model_of_body                               model_free
// loaded    lp.status TVX_LOADED       model_of_body; model_update with changes    optimize_run
//                                      or a new value of TARV_PAR_INFBOUND;
//                                      warm_start_validate with a valid basis;
//                                      TVXresetmodel; out of memory in a solve
// solved    lp.status > TVX_LOADED,    optimize_run (lp_solve, mip_solve)          as loaded is entered
//           or mip.result
// broken    lp.status 0                model_update without memory                 as loaded is entered
// changed   model_has_pending          adds, deletes, sets of attributes           model_update
// busy      busy != 0                  model_open_solve                            the end of that call
// In the state solved the records lp and mip hold what attributes show. They are released by model_update, by the next
// solve and by model_free. While a model is busy only calls from inside a callback pass model_check.
#pragma once
#include "body/build.h"
#include "lp/lp.h"
#include "mip/mip.h"

static constexpr uint32_t MODEL_MAGIC = 0x231d8a78;

struct PendingChanges; // pending.h
struct AttributeTable; // attribute_cache.h

enum WarmStartKind {
    WARM_NONE = 0,
    WARM_UNCHECKED = 1,
    WARM_CHECKED = 2,
    WARM_CARRIED = 3
};
static constexpr int STATUS_UNSET = -10; // entry of `statuses` that nobody has set

struct WarmStart {
    int count = 0; // numvars the arrays were made for; negative: stale
    int kind = WARM_NONE;
    // coefficients of basic columns changed; nothing reads it yet, as a start is factored anyway
    int repair = 0;
    // [numvars + numconstrs] >= 0 basic, -1 lower, -2 upper, -3 superbasic
    Array<int> statuses;
    // [numvars + numconstrs] dual pricing norms given by a caller, or empty
    Array<double> norms;
};

static constexpr double START_UNSET = 1e101; // entry of `mip_start` that nobody has set

struct TVXmodel {
    uint32_t magic = 0;
    int busy = 0;                  // TVXoptimize is running
    uintptr_t callback_thread = 0; // that runs a user callback on this model, or 0
    int signal_set = 0;            // TVXsetsignal was called for this solve
    double run_time = 0;           // seconds of the last solve
    int64_t size_estimate = 0;     // 13 per variable + 7 per constraint + 23 per nonzero
    ModelBody *body = nullptr;
    TVXenv *env = nullptr;
    int env_owned = 0; // env is this model's own copy
    LpSolve lp;        // of an LP: what solves have left, and the Status attribute
    MipSolve mip;      // of a MIP: what solves have left
    PendingChanges *pending = nullptr;
    WarmStart *warm_start = nullptr;
    AttributeTable *attributes = nullptr;
    // [numvars] Start attribute, START_UNSET where undefined; empty when none
    Array<double> mip_start;
};

// ---- model_create.cpp ----
// A model of the caller's data. 0 or a code; *model_out is null on failure.
enum class EnvUse { PRIVATE_COPY, SHARED };
[[nodiscard]] int model_create(TVXenv *env, EnvUse use, const ModelData *data,
                               TVXmodel **model_out);
// A model of a body, which belongs to it from now on (and is freed on failure). 0 or OUT_OF_MEMORY.
[[nodiscard]] int model_of_body(TVXenv *env, EnvUse use, ModelBody *body,
                                TVXmodel **model_out);
// A model of a settled draft (files/draft.h), with an environment of its own. 0 or a code; *model_out is null on
// failure.
struct ModelDraft;
[[nodiscard]] int model_from_draft(TVXenv *env, const ModelDraft *draft,
                                   TVXmodel **model_out);
// A copy of the content, with an environment of its own and these names (null: default ones). 0 or OUT_OF_MEMORY.
[[nodiscard]] int model_copy(TVXmodel *source, const char *const *varnames,
                             const char *const *constrnames, TVXmodel **copy_out);
void model_free(TVXmodel *model); // any state, half-built too; null is ignored
void model_free_results(
    TVXmodel *model); // drops lp, mip and presolve results, keeps simplex and warm start
int model_check(TVXmodel *model); // as TVXcheckmodel but keeps the error state
// Opens a call that solves, or works as long as a solve: the model is busy (the caller ends that), TimeLimit counts
// from `now`, and what has stopped an earlier call is forgotten.
void model_open_solve(TVXmodel *model, double now);
// A solve runs, or a callback, which receives a log line of any call: nothing may be updated, solved or freed.
bool model_is_occupied(TVXmodel *model);
// TVX_ERROR_OPTIMIZATION_IN_PROGRESS then, else 0: opens whatever works on the live simplex record.
[[nodiscard]] int check_idle(TVXmodel *model);

// ---- Changes asked for ----
bool model_has_pending(
    const TVXmodel *model); // something waits for an update (pending.cpp)
// Makes pending changes real: TVXupdatemodel without its checks and closing report. 0 or OUT_OF_MEMORY.
[[nodiscard]] int model_update(TVXmodel *model);

// ---- interrupt.cpp: Ctrl-C on the console and SIGTERM end the running solve, not the program ----
// A solve opens, its stop flag cleared: a signal that has come since TVXsetsignal stops it.
void interrupt_begin(TVXmodel *model);
// After a solve, or before the model goes, signals mean what they meant before TVXsetsignal.
void interrupt_end(TVXmodel *model);

// ---- errors.cpp: as fail and finish, for calls on a model ----
int fail_model(TVXmodel *model, int code, Report report, const char *format, ...)
    TVX_PRINTF(4, 5);
int finish_model(TVXmodel *model, int code);
