// callback.h -- CallbackRecord, what the caller's callback function is given, and the calls of that function
//
// The record belongs to one environment, that of a model; env_free releases it. A private copy of the environment has
// none, so that worker threads and inner solves never enter the caller's function.
#pragma once
#include "frame/model.h"
#include <cstdarg>

static constexpr uint32_t CALLBACK_MAGIC = 0x28bf7dc5;

struct CallbackRecord {
    uint32_t magic;  // CALLBACK_MAGIC while alive, 0 after; the first word
    TVXmodel *model; // whose environment this is; not owned
    void *usrdata;   // the caller's, handed back on every call
    int in_message; // a message is being delivered: what is printed meanwhile is not delivered too
    char message[MESSAGE_LENGTH + 1]; // the text of the message being delivered
};

static constexpr int WHERE_MESSAGE = 6; // a message is being logged

// Delivers a message to the caller's function, if there is one. Its result counts for nothing: a line of the log
// cannot fail.
void callback_message(TVXenv *env, const char *format, va_list arguments) TVX_PRINTF(2, 0);
