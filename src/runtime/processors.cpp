// processors.cpp -- how many processors this process may use
//
// Problem     A default number of threads that fits containers as well as large machines.
// Method      The smallest of: the environment variable NUMBER_OF_PROCESSORS, the processors online, the affinity
//             mask, and the CPU quota of the control groups from this process's own up to the root (version 2:
//             cpu.max; version 1: cpu.cfs_quota_us / cpu.cfs_period_us). CoreCount also counts the physical cores
//             that the affinity mask touches, by the lowest of the siblings of each processor.
// In, out     Reads small system files into buffers on the stack; a file that cannot be read sets no limit.
#include "runtime/processors.h"
#include "runtime/thread.h"
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace
{
constexpr int MOST_PROCESSORS = 8192; // largest count Linux can be built for

constexpr int PATH_LENGTH = 4096;

constexpr int TEXT_LENGTH = 4096; // of a system file; the rest is ignored
} // namespace

int processors_from_text(const char *text)
{
    if (!text || *text < '0' || *text > '9') return NO_PROCESSOR_LIMIT;
    int value = 0;
    for (; *text >= '0' && *text <= '9' && value < NO_PROCESSOR_LIMIT; text++)
        value = 10 * value + (*text - '0');
    return *text == '\0' && value >= 1 && value < NO_PROCESSOR_LIMIT ? value
                                                                     : NO_PROCESSOR_LIMIT;
}

namespace
{
// The head of a small file, terminated; false when it cannot be read.
bool read_text(const char *path, char *text)
{
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    ssize_t length = 0;
    do length = read(descriptor, text, TEXT_LENGTH - 1);
    while (length < 0 && errno == EINTR);
    close(descriptor);
    text[std::max<ssize_t>(length, 0)] = '\0';
    return length > 0;
}

int round_up(long long quota, long long period)
{
    if (quota <= 0 || period <= 0) return INT_MAX;
    return static_cast<int>(std::min<long long>((quota + period - 1) / period, INT_MAX));
}

// The limit one group sets: version 2 in cpu.max ("max 100000" is none), version 1 in two files (-1 is none).
int group_limit(const char *group)
{
    char path[PATH_LENGTH + 32];
    char text[TEXT_LENGTH];
    snprintf(path, sizeof path, "%s/cpu.max", group);
    if (read_text(path, text)) {
        char *end = text;
        const long long quota = strtoll(text, &end, 10);
        return end == text ? INT_MAX : round_up(quota, strtoll(end, nullptr, 10));
    }
    snprintf(path, sizeof path, "%s/cpu.cfs_quota_us", group);
    if (!read_text(path, text)) return INT_MAX;
    const long long quota = strtoll(text, nullptr, 10);
    snprintf(path, sizeof path, "%s/cpu.cfs_period_us", group);
    return read_text(path, text) ? round_up(quota, strtoll(text, nullptr, 10)) : INT_MAX;
}

// The smallest limit from group `name` (which starts with '/') up to the top of the hierarchy mounted at `mount`.
int hierarchy_limit(const char *root, const char *mount, const char *name)
{
    char group[PATH_LENGTH];
    const int top = snprintf(group, sizeof group, "%s%s", root, mount);
    if (top < 0 || static_cast<size_t>(top) + strlen(name) >= sizeof group) return INT_MAX;
    if (access(group, F_OK) != 0) return INT_MAX; // the hierarchy is not mounted
    if (name[strspn(name, "/")] != '\0')
        strcpy(group + top, name); // else only the top group
    int limit = INT_MAX;
    while (true) {
        limit = std::min(limit, group_limit(group));
        char *slash = strrchr(group + top, '/');
        if (!slash) return limit;
        *slash = '\0';
    }
}

// A line "0::/name" is of version 2, "4:cpu,cpuacct:/name" one hierarchy of version 1.
int line_limit(const char *root, char *line)
{
    char *controllers = strchr(line, ':');
    char *name = controllers ? strchr(controllers + 1, ':') : nullptr;
    if (!name) return INT_MAX;
    *name++ = '\0';
    controllers++;
    if (*controllers == '\0')
        return std::min(hierarchy_limit(root, "/sys/fs/cgroup", name),
                        hierarchy_limit(root, "/sys/fs/cgroup/unified", name));
    char *state = nullptr;
    for (const char *word = strtok_r(controllers, ",", &state); word;
         word = strtok_r(nullptr, ",", &state))
        if (!strcmp(word, "cpu"))
            return std::min(hierarchy_limit(root, "/sys/fs/cgroup/cpu", name),
                            hierarchy_limit(root, "/sys/fs/cgroup/cpu,cpuacct", name));
    return INT_MAX;
}
} // namespace

int processors_from_quota(const char *root)
{
    char path[PATH_LENGTH];
    char text[TEXT_LENGTH];
    const int length = snprintf(path, sizeof path, "%s/proc/self/cgroup", root);
    if (length < 0 || length >= static_cast<int>(sizeof path) || !read_text(path, text))
        return INT_MAX;
    int limit = INT_MAX;
    char *state = nullptr;
    for (char *line = strtok_r(text, "\n", &state); line;
         line = strtok_r(nullptr, "\n", &state))
        limit = std::min(limit, line_limit(root, line));
    return limit;
}

namespace
{
struct AffinityMask {
    cpu_set_t Sets[MOST_PROCESSORS / CPU_SETSIZE];
};

// False if the mask is not available.
bool affinity_read(AffinityMask *mask)
{
    memset(mask, 0, sizeof *mask);
    return sched_getaffinity(0, sizeof *mask, mask->Sets) == 0;
}

bool affinity_has(const AffinityMask *mask, int processor)
{
    return CPU_ISSET(processor % CPU_SETSIZE, &mask->Sets[processor / CPU_SETSIZE]);
}
} // namespace

int ProcessorCount()
{
    int count = processors_from_text(getenv("NUMBER_OF_PROCESSORS"));
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    if (online > 0) count = static_cast<int>(std::min<long>(count, online));
    AffinityMask mask;
    if (affinity_read(&mask)) count = std::min(count, CPU_COUNT_S(sizeof mask, mask.Sets));
    count = std::min(count, processors_from_quota(""));
    return std::max(count, 1);
}

namespace
{
// The lowest processor that shares the core, or the processor itself if that is unknown.
int core_of(int processor)
{
    char path[PATH_LENGTH];
    char text[TEXT_LENGTH];
    snprintf(path, sizeof path,
             "/sys/devices/system/cpu/cpu%d/topology/thread_siblings_list", processor);
    if (!read_text(path, text)) return processor;
    const long first = strtol(text, nullptr, 10); // "0,4" or "0-1"
    return first >= 0 && first < processor ? static_cast<int>(first) : processor;
}
} // namespace

int CoreCount()
{
    const int count = ProcessorCount();
    AffinityMask mask;
    if (count == 1 || !affinity_read(&mask)) return count;
    AffinityMask cores;
    memset(&cores, 0, sizeof cores);
    for (int p = 0; p < MOST_PROCESSORS; p++) {
        if (!affinity_has(&mask, p)) continue;
        const int core = core_of(p);
        CPU_SET(core % CPU_SETSIZE, &cores.Sets[core / CPU_SETSIZE]);
    }
    return std::max(1, std::min(count, CPU_COUNT_S(sizeof cores, cores.Sets)));
}
