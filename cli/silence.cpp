// silence.cpp -- streams that lead nowhere; see the header
//
// Below the streams, so that whatever writes to them is silent: the command, the library, what they call.
#include "silence.h"
#include "arguments.h"
#include "option_words.h"
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

bool silence_wanted(const std::vector<std::string> &words)
{
    bool wanted = false;
    for (const std::string &word : words) {
        std::string name;
        std::string value;
        if (!split_setting(word, &name, &value) || name_key(name) != "outputflag") continue;
        value = value_of_word(name, value);
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

void hold_streams()
{
    // The lowest free number is the one of the stream that is missing; opened the wrong way round it still fails.
    static constexpr int WAYS[] = {O_WRONLY, O_RDONLY, O_WRONLY};
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; stream++)
        if (fcntl(stream, F_GETFD) < 0) static_cast<void>(open("/dev/null", WAYS[stream]));
}

FILE *divert_output()
{
    fflush(stdout);
    const int kept = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    FILE *before = kept >= 0 ? fdopen(kept, "w") : nullptr;
    if (before) dup2(STDERR_FILENO, STDOUT_FILENO);
    return before;
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
