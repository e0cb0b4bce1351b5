// log.cpp -- the log: every line the library prints
//
// Problem     Lines for people go to standard output and to the log file, both or neither, at once and whole.
// Method      TVXmsg prints a line to each open output under OutputFlag and flushes it, then hands it to the caller's
//             callback function, also when nothing is printed. Numbers print the same in every locale. Warnings about
//             the log itself and about a dead environment go to standard output alone.
// Invariant   OutputFlag == 0: nothing is written anywhere.
#include "env/callback.h"
#include "runtime/text_number.h"
#include <cstdarg>
#include <ctime>
#include <unistd.h>

namespace
{
void print_flushed(FILE *stream, const char *format, va_list arguments)
{
    va_list copy;
    va_copy(copy, arguments);
    text_print_v(stream, format, copy);
    va_end(copy);
    fflush(stream);
}

// On a full disk, for example. Told at the first line that is lost.
void warn_lost(const TVXenv *env)
{
    message_stdout(env, "Warning: the log file cannot be written to its end\n");
}

void print_log_file(const TVXenv *env, const char *format, va_list arguments)
{
    const bool failed_before = ferror(env->log_file) != 0;
    print_flushed(env->log_file, format, arguments);
    if (!failed_before && ferror(env->log_file)) warn_lost(env);
}
} // namespace

void TVXmsg(TVXenv *env, const char *format, ...)
{
    if (!env_alive(env) || !format) return;
    va_list arguments;
    va_start(arguments, format);
    if (env->OutputFlag) print_flushed(stdout, format, arguments);
    TVXenv *outlet = env_outlet(env);
    if (env->OutputFlag && outlet->log_file) print_log_file(outlet, format, arguments);
    callback_message(outlet, format, arguments);
    va_end(arguments);
}

void message_debug(TVXenv *, const char *, ...) {}

void message_stdout(const TVXenv *env, const char *format, ...)
{
    if (env->OutputFlag == 0) return;
    va_list arguments;
    va_start(arguments, format);
    print_flushed(stdout, format, arguments);
    va_end(arguments);
}

void log_started(TVXenv *env, FILE *stream)
{
    if (env->OutputFlag == 0) return;
    char date[64] = "\n"; // asctime_r needs 26
    const time_t now = time(nullptr);
    tm local{};
    if (localtime_r(&now, &local))
        asctime_r(&local, date); // as "%c" in the "C" locale, and a newline
    int major = 0;
    int minor = 0;
    int technical = 0;
    TVXversion(&major, &minor, &technical);
    text_print(stream, "\nTarvex %d.%d.%d (%s) logging started %s\n", major, minor,
               technical, TVXplatform(), date);
    if (fflush(stream)) warn_lost(env);
}

void warn_dead_master(const TVXenv *env)
{
    static constexpr char warning[] =
        "Warning: invalid Tarvex environment. Was it freed too early?\n";
    if (env->OutputFlag == 0) return;
    const ssize_t written = write(STDOUT_FILENO, warning, sizeof warning - 1);
    static_cast<void>(written); // nobody is left to tell
}
