// clock.h -- wall-clock seconds
#pragma once
// Seconds since a fixed moment, monotonic, with a resolution below a microsecond. Used for all time limits.
double WallClock();
