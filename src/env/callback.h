// callback.h -- CallbackRecord, what the caller's callback function is given, and the calls of that function
//
// The record belongs to one environment, that of a model; env_free releases it. A private copy of the environment has
// none, so that worker threads and inner solves never enter the caller's function. A reduced model shares the environment
// of its model, and so its callback.
#pragma once
#include "model/model.h"
#include <cstdarg>

struct PresolveWork; // presolve/work.h

static constexpr uint32_t CALLBACK_MAGIC = 0x28bf7dc5;

// What is at work when the function is called. Null where it is something else.
struct CallbackState {
    const sopt *simplex = nullptr;
    const PresolveWork *presolve = nullptr;
};

struct CallbackRecord {
    uint32_t magic;  // CALLBACK_MAGIC while alive, 0 after; the first word
    TVXmodel *model; // whose environment this is; not owned
    CallbackState state;
    void *usrdata; // the caller's, handed back on every call
    int in_message; // a message is being delivered: what is printed meanwhile is not delivered too
    char message[MESSAGE_LENGTH + 1]; // the text of the message being delivered
};

// Delivers a message to the caller's function, if there is one.
void callback_message(TVXenv *env, const char *format, va_list arguments) TVX_PRINTF(2, 0);

// Calls the caller's function, but not once the solve has been asked to stop. A result other than 0 asks it to stop, and
// becomes the code of TVXoptimize.
void callback_call(TVXenv *env, int where, const CallbackState &state);

// A solve inside another one has nothing of its own to show: the outer one's function is called as from a long loop.
inline void callback_poll(TVXenv *env, int where, const CallbackState &state)
{
    if (env->cb_active)
        callback_call(env, where, state);
    else if (env->outer && env->outer->cb_active)
        callback_call(env->outer, TVX_WHERE_POLLING, CallbackState());
}
