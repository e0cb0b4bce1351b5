// callback.cpp -- calls the caller's callback function
//
// Invariant   The word behind `thread` is set exactly while the function runs, so that calls which it makes on the
//             model pass the model check although the model is busy. Calls may nest: a line that is logged while the
//             function runs is delivered by another call, after which the source of the outer one stands again.
#include "env/callback.h"
#include "runtime/text_number.h"

static void call(TVXenv *env, int where, const CallbackSource &source)
{
    CallbackRecord *record = env->cb_record;
    const CallbackSource outer_source = record->source;
    const uintptr_t outer = flag_load(record->thread);
    record->source = source;
    flag_store(record->thread, ThreadSelf());
    const int code = env->cb_active(record->model, record, where, record->usrdata);
    flag_store(record->thread, outer);
    record->source = outer_source;
    if (code == 0) return;
    if (record->code == 0) record->code = code;
    flag_store(env->terminate_ptr, 1);
}

void callback_call(TVXenv *env, int where, const CallbackSource &source)
{
    if (env->cb_record && !env_stop_requested(env)) call(env, where, source);
}

void callback_message(TVXenv *env, const char *format, va_list arguments)
{
    CallbackRecord *record = env->cb_record;
    if (!env->cb_active || !record || record->in_message) return;
    text_format_v(record->message, sizeof record->message, format, arguments);
    record->in_message = 1;
    call(env, TVX_WHERE_MESSAGE, CallbackSource());
    record->in_message = 0;
}
