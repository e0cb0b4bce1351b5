// processors.h -- parts of the processor count, declared for tests
#pragma once
// The value of NUMBER_OF_PROCESSORS if it is 1 to 1023, else NO_PROCESSOR_LIMIT. Null counts as unset.
static constexpr int NO_PROCESSOR_LIMIT = 1024;
int processors_from_text(const char *text);
// The CPU quota of this process's control groups, rounded up to whole processors; INT_MAX without one. `root` is put
// before every path read ("" for the system's own).
int processors_from_quota(const char *root);
