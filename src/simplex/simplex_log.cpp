// simplex_log.cpp -- progress lines of both methods, and the test of limits
#include "env/callback.h"
#include "runtime/clock.h"
#include "simplex/sopt.h"
#include <cmath>

namespace
{
// Iterations between tests of the clock if TARV_PAR_SDISPINTERVAL is 0.
constexpr double LOG_STEP = 100;

double elapsed(const sopt *s)
{
    return WallClock() - s->StartTime;
}

void write_header(sopt *s)
{
    if (s->HeaderDone) return;
    if (s->RootLog) TVXmsg(s->Env, "\nRoot simplex log...\n\n");
    TVXmsg(s->Env, "Iteration    Objective       Primal Inf.    Dual Inf.      Time\n");
    s->HeaderDone = 1;
}

void line_written(sopt *s, double time)
{
    s->LastLogIter = iterations(s);
    s->TickIndex = std::floor(time / s->TickLength);
}
} // namespace

// Every `interval` pivots and flips; true at most once per interval.
bool log_is_due(sopt *s)
{
    if (!s->Env->OutputFlag) return false;
    if (s->RootLog && elapsed(s) < s->TickLength)
        return false; // most roots are solved before
    const double interval =
        s->Env->TARV_PAR_SDISPINTERVAL > 0 ? s->Env->TARV_PAR_SDISPINTERVAL : LOG_STEP;
    if (s->Work - s->NextLogIter < interval && s->LastLogIter >= 0) return false;
    s->NextLogIter = interval * std::floor(s->Work / interval);
    return s->LastLogIter < 0 || std::floor(elapsed(s) / s->TickLength) > s->TickIndex;
}

void log_iteration(sopt *s, double objective, double primal_inf, double dual_inf)
{
    const double time = elapsed(s), count = iterations(s);
    if (count == s->LastLogIter) return; // counts are whole numbers
    write_header(s);
    TVXmsg(s->Env, " %7.0f   %14.7e  %13.6e  %13.6e %6.0fs\n", count,
           s->Sense * (objective + s->ObjOffset), primal_inf, dual_inf, time);
    line_written(s, time);
}

void log_free(sopt *s)
{
    if (!log_is_due(s)) return;
    const double time = elapsed(s);
    write_header(s);
    TVXmsg(s->Env, " %7.0f      handle free variables                     %6.0fs\n",
           iterations(s), time);
    line_written(s, time);
}

void simplex_log_final(const sopt *s)
{
    if (s->Status != SIMPLEX_OPTIMAL || s->Env->quiet_solve) return;
    const double value = s->Sense * (s->Obj + s->ObjOffset);
    if (s->Method == METHOD_DUAL)
        TVXmsg(s->Env, "Iteration: %7.0f    Optimal Objective = %16.7e\n", iterations(s),
               value);
    else
        TVXmsg(s->Env, "Iteration: %7.0f   Optimal Objective = %16.7e\n", iterations(s),
               value);
}

bool limit_reached(sopt *s)
{
    if (s->Running) callback_poll(s->Env, TVX_WHERE_SIMPLEX, {s, simplex_answer});
    if (env_stop_requested(s->Env))
        s->Status = SIMPLEX_INTERRUPTED;
    else if (iterations(s) >= s->IterLimit)
        s->Status = SIMPLEX_ITERATION_LIMIT;
    else if (WallClock() - s->Env->optimize_start >= s->Env->TimeLimit)
        s->Status = SIMPLEX_TIME_LIMIT;
    return s->Status != SIMPLEX_RUNNING;
}
