// progress.cpp -- progress lines and limits during presolve, and its answers to queries of a callback function
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

namespace
{
int answer(const void *solver, int what, void *result)
{
    const PresolveWork *w = static_cast<const PresolveWork *>(solver);
    int *count = static_cast<int *>(result);
    switch (what) {
    case TVX_CB_PRESOLVE_COLUMNS:
        *count = w->ColsRemoved;
        return 0;
    case TVX_CB_PRESOLVE_ROWS:
        *count = w->RowsRemoved;
        return 0;
    case TVX_CB_PRESOLVE_EQUATIONS:
        *count = w->IneqToEq;
        return 0;
    case TVX_CB_PRESOLVE_BOUNDS:
        *count = w->BoundsChanged;
        return 0;
    case TVX_CB_PRESOLVE_COEFFICIENTS:
        *count = w->CoefsChanged;
        return 0;
    default:
        return TVX_ERROR_CALLBACK;
    }
}
} // namespace

int presolve_check(const PresolveWork *w)
{
    callback_poll(w->Env, TVX_WHERE_PRESOLVE, {w, answer});
    return limits_reached(w->Env);
}
