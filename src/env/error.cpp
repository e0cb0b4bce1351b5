// error.cpp -- how failures are reported
//
// Problem     A caller gets one code and one text per failing call: the most specific text, written where the failure
//             was met, not the general one of the outermost routine.
// Method      fail() records a text where a code is born; finish() completes the message at the end of an exported
//             function. The buffer belongs to the master and is shared by its copies, on which worker threads
//             may fail at the same time: writers take turns.
// Invariant   errmsg is terminated within MESSAGE_LENGTH + 1 bytes at every moment.
#include "env/env.h"
#include "runtime/text_number.h"
#include <bit>
#include <cstring>

// The text of a code for which nothing more specific was recorded, or null.
static const char *default_text(int code)
{
    switch (code) {
    case TVX_ERROR_OUT_OF_MEMORY:
        return "Out of memory";
    case TVX_ERROR_NULL_ARGUMENT:
        return "NULL argument for required parameter";
    case TVX_ERROR_INVALID_ARGUMENT:
        return "Invalid argument value for required parameter";
    case TVX_ERROR_UNKNOWN_ATTRIBUTE:
        return "Unknown attribute";
    case TVX_ERROR_DATA_NOT_AVAILABLE:
        return "Requested data not available";
    case TVX_ERROR_INDEX_OUT_OF_RANGE:
        return "Index is out of range";
    case TVX_ERROR_UNKNOWN_PARAMETER:
        return "Unknown parameter requested";
    case TVX_ERROR_VALUE_OUT_OF_RANGE:
        return "Tried to set parameter to value outside its valid range";
    case TVX_ERROR_CALLBACK:
        return "Problem with callback";
    case TVX_ERROR_FILE_READ:
        return "Unable to read file";
    case TVX_ERROR_FILE_WRITE:
        return "Unable to write file";
    case TVX_ERROR_NUMERIC:
        return "Numerical error encountered";
    case TVX_ERROR_NOT_FOR_MIP:
        return "Not available for MIP models";
    case TVX_ERROR_OPTIMIZATION_IN_PROGRESS:
        return "Attempted to access a model while optimization is in progress";
    case TVX_ERROR_NODEFILE:
        return "Trouble reading or writing a MIP node file";
    default:
        return nullptr;
    }
}

static void message_lock(TVXenv *env)
{
    for (int round = 0;
         std::atomic_ref(env->master->message_lock).exchange(1, std::memory_order_acquire);
         round++)
        ThreadPause(round);
}
static void message_unlock(TVXenv *env)
{
    flag_store(&env->master->message_lock, 0);
}

// No text to keep. That of a call refused because another thread solves the model does not count: it must not hide
// what the solve itself has to say.
static bool message_is_free(const TVXenv *env)
{
    return env->errmsg[0] == '\0' ||
           !strcmp(env->errmsg, default_text(TVX_ERROR_OPTIMIZATION_IN_PROGRESS));
}

void error_clear(TVXenv *env)
{
    if (env->err_hold) return;
    message_lock(env);
    env->errcode = 0;
    env->errmsg[0] = '\0';
    message_unlock(env);
}

static void record(TVXenv *env, int code, Report report, const char *format,
                   va_list arguments)
{
    char text[MESSAGE_LENGTH + 1]; // first, since an argument may be the old message
    text_format_v(text, sizeof text, format, arguments);
    message_lock(env);
    env->errcode = code;
    if (report == Report::FORCE || message_is_free(env))
        memcpy(env->errmsg, text, sizeof text);
    message_unlock(env);
}

int fail_v(TVXenv *env, int code, Report report, const char *format, va_list arguments)
{
    if (code == 0 || !env_alive(env) || (env->err_hold && env->errmsg[0])) return code;
    record(env, code, report, format, arguments);
    return code;
}

int fail(TVXenv *env, int code, Report report, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    fail_v(env, code, report, format, arguments);
    va_end(arguments);
    return code;
}

int finish(TVXenv *env, int code)
{
    if (!env_alive(env)) return code;
    message_lock(env);
    const char *text = default_text(code);
    if (code == 0)
        env->errmsg[0] = '\0';
    else if (code != TVX_ERROR_OUT_OF_MEMORY && !message_is_free(env))
        ; // the specific text stands
    else if (text)
        text_format(env->errmsg, MESSAGE_LENGTH + 1, "%s", text);
    else
        text_format(env->errmsg, MESSAGE_LENGTH + 1, "Error number %d", code);
    message_unlock(env);
    return code;
}

// All ones in the exponent, by the bits: no comparison can be optimised away.
static bool is_nan_or_infinite(double value)
{
    static constexpr uint64_t EXPONENT = 0x7ff0000000000000u;
    return (std::bit_cast<uint64_t>(value) & EXPONENT) == EXPONENT;
}

int check_value(TVXenv *env, double value)
{
    if (!is_nan_or_infinite(value)) return 0;
    return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                "Double value is Nan or Inf.");
}

int check_values(TVXenv *env, int64_t n, const double *values)
{
    if (!values) return 0;
    for (int64_t k = 0; k < n; k++)
        if (is_nan_or_infinite(values[k]))
            return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                        "Element %lld of a double array is Nan or Inf.",
                        static_cast<long long>(k));
    return 0;
}
