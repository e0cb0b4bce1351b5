// env.h -- TVXenv, the environment: parameter values, the error buffer, the log, the stop flag
//
// States   alive   magic == ENV_MAGIC, from TVXloadenv (or env_copy) to TVXfreeenv (or env_free)
//          dead    magic == 0: every call refuses it. The record of a dead master stays until its last copy is
//                  freed, so that a copy can always look whether its master lives.
// A master (is_master) owns errmsg and params. A copy, made for each model, is a byte copy that shares errmsg, params
// and master with it and has parameter values, log stream, callback record and stop flag of its own.
#pragma once
#include "env/parameter_table.h"
#include "runtime/array.h"
#include "runtime/thread.h"
#include "tarvex.h"
#include <cstdarg>
#include <cstdint>
#include <cstdio>

static constexpr uint32_t ENV_MAGIC = 0x129e2d82;
// characters of an error text, a log line slot, a string value
static constexpr int MESSAGE_LENGTH = 512;
// a caller's bound of this magnitude or more is infinite
static constexpr double INFINITE_VALUE = 1e20;
static constexpr double INFINITE_BOUND = 1e30; // how an infinite bound is stored
// no incumbent; an infinite bound as attributes report it
static constexpr double UNDEFINED_VALUE = 1e100;

// Values of the parameter LPMethod.
enum LpMethod { LP_PRIMAL_SIMPLEX = 0, LP_DUAL_SIMPLEX = 1, LP_BARRIER = 2 };

struct ParameterTable; // parameters.h
struct CallbackRecord; // callback.h

// Copied as bytes from terminate_ptr on: plain words and pointers only.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): the fields stand in table order
struct TVXenv {
    uint32_t magic;       // ENV_MAGIC while alive, 0 after
    int32_t terminate;    // non-zero asks the running solve to stop
    int32_t model_copies; // non-zero once a copy was taken from this environment
    int32_t holders;      // in a master: itself while alive, and every copy
    int32_t message_lock; // in a master: 1 while a thread writes errmsg
    // The four words above may be touched by several threads, so atomically only, and are not copied as bytes.
    int32_t *terminate_ptr; // the flag that solver loops poll
    double optimize_start;  // WallClock at the start of the current TVXoptimize
    TVXenv *master;         // owner of the parameter table; itself in a master
    char *errmsg; // [MESSAGE_LENGTH + 1] text of the last error, owned by the master
    int errcode;  // last code recorded with a text
    int err_hold; // non-zero: errmsg and errcode are frozen
    ParameterTable *params; // owned by the master
    int is_master;          // 1 when made by TVXloadenv
    FILE *log_file;         // own stream, or null
    int quiet_solve;        // the model is solved as an inner step: no closing lines
    TVXcallback cb_active;  // the caller's callback function, or null
    TVXenv *lender; // whose log and callback function this one uses, or null: its own
    CallbackRecord *cb_record; // owned block; its first word is set to 0 before it is freed
    TVXenv *
        outer; // of the solve that this one is a part of, whose callback is polled; or null

    // One field per parameter, named like it.
#define FIELD_INT(name, minimum, maximum, value) int name;
#define FIELD_DBL(name, minimum, maximum, value) double name;
#define FIELD_STR(name, value) char name[MESSAGE_LENGTH + 1];
    PUBLIC_PARAMETERS(FIELD_INT, FIELD_DBL, FIELD_STR)
    HIDDEN_PARAMETERS(FIELD_INT, FIELD_DBL, FIELD_STR)
#undef FIELD_INT
#undef FIELD_DBL
#undef FIELD_STR
};

// Bounds of this magnitude and more are infinite for a solve: by parameter TARV_PAR_INFBOUND, but never above the value
// that stands for an infinite bound, else a variable without bound would have one.
inline double infinite_bound(const TVXenv *env)
{
    return env->TARV_PAR_INFBOUND < INFINITE_BOUND ? env->TARV_PAR_INFBOUND
                                                   : INFINITE_BOUND;
}

// Where log stream and callback function stand.
inline TVXenv *env_outlet(TVXenv *env)
{
    return env->lender ? env->lender : env;
}

// Which files a copy writes. AS_SOURCE, for a model: those of its source; an open log is opened again (a failure there
// is a warning). NONE, for inner solves: no log, and no files that parameters ask for (env_write_no_files).
enum class EnvFiles { NONE, AS_SOURCE };
// A private copy. terminate_ptr stays that of the source until the solve that uses the copy repoints it. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int env_copy(TVXenv **copy_out, TVXenv *source, EnvFiles files);
// The environment of a solve inside another one: silent, without files and callback record; it stops when the outer one
// is asked to, and long loops call the outer one's callback function. What differs else is set in it. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int env_inner(TVXenv **inner_out, TVXenv *outer);
// A copy for a solve with other parameter values: log, callback function and stop flag are those of `env`, which has to
// outlive it. 0 or OUT_OF_MEMORY.
[[nodiscard]] int env_variant(TVXenv **variant_out, TVXenv *env);
// For the copy of a derived model or an inner solve: the files that parameters ask for (ResultFile, TARV_PAR_DUMP) are
// those of the caller's own model.
void env_write_no_files(TVXenv *copy);
void env_free(TVXenv *env);        // a copy or a master; null is ignored
bool env_alive(const TVXenv *env); // not null, alive, and its master too; prints nothing
int env_check(TVXenv *env); // 0, or the code of the first failed test; clears nothing
// env_check, and on success forgets the last error: the start of an exported function.
int env_enter(TVXenv *env);
// Opens `name` as this environment's log, or closes the log for an empty name. 0 or TVX_ERROR_FILE_WRITE.
int env_open_log(TVXenv *env, const char *name);

// A solver loop asks whether it has to stop.
inline bool env_stop_requested(const TVXenv *env)
{
    return flag_load(env->terminate_ptr) != 0;
}

// ---- Errors (error.cpp) ----
// The first specific text of a failing call survives to its end; FORCE replaces it.
enum class Report { KEEP_FIRST, FORCE };
// Records code and text and returns code; code 0 does nothing.
int fail(TVXenv *env, int code, Report report, const char *format, ...) TVX_PRINTF(4, 5);
int fail_v(TVXenv *env, int code, Report report, const char *format, va_list arguments)
    TVX_PRINTF(4, 0);
// The end of every exported function: completes the message for `code` and returns it.
int finish(TVXenv *env, int code);
// NaN and infinities in data from a caller. 0 or TVX_ERROR_INVALID_ARGUMENT; a null array or n < 1 passes.
int check_value(TVXenv *env, double value);
int check_values(TVXenv *env, int64_t n, const double *values);

// While it lives a recorded error stands: no clearing, no other text.
struct ErrorHold {
    TVXenv *env; // null: nothing is held
    explicit ErrorHold(TVXenv *held) : env(held)
    {
        if (env) env->err_hold = 1;
    }
    ~ErrorHold()
    {
        if (env) env->err_hold = 0;
    }
    ErrorHold(const ErrorHold &) = delete;
    ErrorHold &operator=(const ErrorHold &) = delete;
};
void error_clear(TVXenv *env); // forgets the last error, unless err_hold; env is alive

// ---- Log (log.cpp; TVXmsg is the routine for lines) ----
// For conditions met before or outside the log: standard output only, nothing unless OutputFlag > 0.
void message_stdout(const TVXenv *env, const char *format, ...) TVX_PRINTF(2, 3);
void log_started(TVXenv *env, FILE *stream); // the line that opens a log
void warn_dead_master(const TVXenv *env);    // on standard output; safe in a signal handler
// Diagnostics of the engine: the single point through which such lines pass. Prints nothing.
void message_debug(TVXenv *env, const char *format, ...) TVX_PRINTF(2, 3);
