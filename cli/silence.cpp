// silence.cpp -- streams that lead nowhere; see the header
//
// Below the streams, so that whatever writes to them is silent: the command, the library, what they call.
#include "silence.h"
#include "arguments.h"
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

bool silence_wanted(int argc, char **argv)
{
    bool wanted = false;
    for (int k = 1; k < argc; k++) {
        std::string name;
        std::string value;
        if (!split_setting(argv[k], &name, &value) || name_key(name) != "outputflag")
            continue;
        char *end = nullptr;
        wanted = !value.empty() && strtol(value.c_str(), &end, 10) == 0 && !*end;
    }
    return wanted;
}

void silence(FILE *stream)
{
    fflush(stream);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    dup2(nowhere, fileno(stream));
    close(nowhere);
}

SilentScope::SilentScope(FILE *given, bool wanted) : stream(given)
{
    if (!wanted) return;
    kept = fcntl(fileno(stream), F_DUPFD_CLOEXEC, 0);
    if (kept >= 0) silence(stream);
}

SilentScope::~SilentScope()
{
    if (kept < 0) return;
    fflush(stream);
    dup2(kept, fileno(stream));
    close(kept);
}
