// clock.cpp -- wall-clock seconds from the system's monotonic clock: no jumps when the date is set, no wrap
#include "runtime/clock.h"
#include <ctime>

static constexpr double NANOSECOND = 1e-9;

double WallClock()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + NANOSECOND * static_cast<double>(now.tv_nsec);
}
