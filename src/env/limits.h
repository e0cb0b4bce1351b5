// limits.h -- time limit and interruption, within long loops and between steps
#pragma once
#include "env/env.h"

// 0, TVX_INTERRUPTED or TVX_TIME_LIMIT: what stops the solve; nothing does without an environment.
[[nodiscard]] int limits_reached(const TVXenv *env);

// In a scan: so many entries (or what takes as long) have been looked at since the last call. The limits are looked at
// when it has been many, so that none is overrun by more than some hundredths of a second.
static constexpr double CHECK_ENTRIES = 1e5;
struct LimitWatch {
    const TVXenv *env;  // or null
    double entries = 0; // since the last look
};
[[nodiscard]] inline int limits_watch(LimitWatch *watch, double entries)
{
    watch->entries += entries;
    if (watch->entries < CHECK_ENTRIES) return 0;
    watch->entries = 0;
    return limits_reached(watch->env);
}
