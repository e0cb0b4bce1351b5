// callback.cpp -- calls the caller's callback function
//
// Invariant   The model's in_callback is set exactly while the function runs, so that calls which it makes on the
//             model pass the model check although the model is busy.
#include "frame/callback.h"
#include "frame/runtime/text_number.h"

static int call(TVXenv *env, int where)
{
    CallbackRecord *record = env->cb_record;
    const int outer = flag_load(&record->model->in_callback);
    flag_store(&record->model->in_callback, 1);
    const int code = env->cb_active(record->model, record, where, record->usrdata);
    flag_store(&record->model->in_callback, outer);
    return code;
}

void callback_message(TVXenv *env, const char *format, va_list arguments)
{
    CallbackRecord *record = env->cb_record;
    if (!env->cb_active || !record || record->in_message) return;
    text_format_v(record->message, sizeof record->message, format, arguments);
    record->in_message = 1;
    static_cast<void>(call(env, WHERE_MESSAGE));
    record->in_message = 0;
}
