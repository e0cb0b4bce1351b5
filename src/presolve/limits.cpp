// limits.cpp -- progress lines and limits during presolve
#include "frame/callback.h"
#include "frame/runtime/clock.h"
#include "presolve/work.h"
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

int presolve_check(PresolveWork *w)
{
    callback_poll(w->Env, TVX_WHERE_PRESOLVE, {.presolve = w});
    if (env_stop_requested(w->Env)) return PRESOLVE_INTERRUPTED;
    const bool late = WallClock() - w->Env->optimize_start >= w->Env->TimeLimit;
    return late ? PRESOLVE_TIME_LIMIT : PRESOLVE_OK;
}

PresolveCounts presolve_counts(const PresolveWork *w)
{
    return {w->BoundsChanged, w->CoefsChanged, w->IneqToEq, w->RowsRemoved, w->ColsRemoved};
}
