// callback.h -- CallbackRecord, what the caller's callback function is given, and the calls of that function
//
// The record belongs to one environment, that of a model; env_free releases it. A copy of the environment has none. An
// inner solve (env_inner) shows nothing of its own, but polls the function of the nearest outer one that has one; on a
// thread of its own it must not, and has no outer one. The solver that works on a reduced model uses the environment of
// the model, and so its callback.
#pragma once
#include "env/env.h"
#include <cstdarg>

static constexpr uint32_t CALLBACK_MAGIC = 0x28bf7dc5;

// A row that the function hands in: sum of val x <= rhs over the caller's variables.
struct CallbackRow {
    int count;
    const int *ind;
    const double *val;
    double rhs;
};

// The solver at work when the function is called answers its questions: sets *result and returns 0, or
// TVX_ERROR_CALLBACK; and takes points and rows from it. Null where there is nothing to ask, or to take.
struct CallbackSource {
    const void *solver = nullptr;
    int (*answer)(const void *solver, int what, void *result) = nullptr;
    int (*take_point)(const void *solver, const double *x) = nullptr;
    int (*take_row)(const void *solver, const CallbackRow &row) = nullptr;
};

struct CallbackRecord {
    uint32_t magic;    // CALLBACK_MAGIC while alive, 0 after; the first word
    TVXmodel *model;   // handed to the function; not owned
    uintptr_t *thread; // the model's word for the thread that runs the function
    CallbackSource source;
    void *usrdata; // the caller's, handed back on every call
    int code;      // what the function returned in this solve, if not 0: the first
    int in_message; // a message is being delivered: what is printed meanwhile is not delivered too
    char message[MESSAGE_LENGTH + 1]; // the text of the message being delivered
};

// A solve begins; what the function has returned in it.
inline void callback_open(TVXenv *env)
{
    if (env->cb_record) env->cb_record->code = 0;
}
inline int callback_code(const TVXenv *env)
{
    return env->cb_record ? env->cb_record->code : 0;
}

// Delivers a message to the caller's function, if there is one.
void callback_message(TVXenv *env, const char *format, va_list arguments) TVX_PRINTF(2, 0);

// Calls the caller's function, but not once the solve has been asked to stop. A result other than 0 asks it to stop,
// and becomes the code of TVXoptimize.
void callback_call(TVXenv *env, int where, const CallbackSource &source);

// A solve inside another one has nothing of its own to show: the outer one's function is called as from a long loop.
inline void callback_poll(TVXenv *env, int where, const CallbackSource &source)
{
    if (TVXenv *own = env_outlet(env); own->cb_active)
        return callback_call(own, where, source);
    for (TVXenv *outer = env->outer; outer; outer = outer->outer)
        if (TVXenv *own = env_outlet(outer); own->cb_active)
            return callback_call(own, TVX_WHERE_POLLING, CallbackSource());
}
