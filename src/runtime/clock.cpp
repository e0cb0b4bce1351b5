// clock.cpp -- wall-clock seconds from the system's monotonic clock, which does not change when the date is set
#include "runtime/clock.h"
#include <ctime>

namespace
{
constexpr double NANOSECOND = 1e-9;
} // namespace

double WallClock()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + NANOSECOND * static_cast<double>(now.tv_nsec);
}
