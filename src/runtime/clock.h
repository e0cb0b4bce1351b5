// clock.h -- wall-clock seconds
#pragma once
// Seconds since some fixed moment, monotonic, finer than a microsecond. All time limits are measured with it.
double WallClock();
