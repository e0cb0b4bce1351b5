// limits.cpp -- time limit and interruption
#include "env/limits.h"
#include "runtime/clock.h"

int limits_reached(const TVXenv *env)
{
    if (!env) return 0;
    if (env_stop_requested(env)) return TVX_INTERRUPTED;
    return WallClock() - env->optimize_start >= env->TimeLimit ? TVX_TIME_LIMIT : 0;
}
