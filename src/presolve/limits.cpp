// limits.cpp -- progress lines and limits during presolve
#include "env/callback.h"
#include "presolve/work.h"
#include "runtime/clock.h"
#include <cmath>

void presolve_log(PresolveWork *w)
{
    const double interval = w->Env->DisplayInterval, now = WallClock();
    if (interval <= 0) return;
    const double tick = std::floor((now - w->StartTime) / interval);
    if (tick <= std::floor((w->LastLogTime - w->StartTime) / interval)) return;
    w->LastLogTime = now;
    TVXmsg(w->Env, "Presolve removed %d rows and %d columns (presolve time = %.0fs) ...\n",
           w->RowsRemoved, w->ColsRemoved, now - w->StartTime);
}

int limits_reached(const TVXenv *env)
{
    if (!env) return PRESOLVE_OK;
    if (env_stop_requested(env)) return PRESOLVE_INTERRUPTED;
    const bool late = WallClock() - env->optimize_start >= env->TimeLimit;
    return late ? PRESOLVE_TIME_LIMIT : PRESOLVE_OK;
}

int presolve_check(const PresolveWork *w)
{
    callback_poll(w->Env, TVX_WHERE_PRESOLVE, {.presolve = w});
    return limits_reached(w->Env);
}

PresolveCounts presolve_counts(const PresolveWork *w)
{
    return {w->BoundsChanged, w->CoefsChanged, w->IneqToEq, w->RowsRemoved, w->ColsRemoved};
}
