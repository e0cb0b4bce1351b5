// report.cpp -- errors of the command, one line each
//
// Problem     A script reads standard error line by line, a person wants to know what to do next.
// Method      Lines of a message are joined by semicolons, or by a blank behind a colon, and other control
//             characters become blanks; the library's message says what went wrong, a hint by error code says
//             what to do.
#include "report.h"
#include "tarvex.h"
#include <cstdio>

namespace
{
bool is_control(char c)
{
    return static_cast<unsigned char>(c) < ' ';
}
} // namespace

// Blanks that a line began with go with its beginning.
std::string one_line(const std::string &text)
{
    std::string line;
    bool at_begin = true;
    for (const char c : text) {
        const bool blank = c == ' ' || is_control(c);
        if (blank && at_begin) continue;
        if (at_begin && !line.empty()) line += line.back() == ':' ? " " : "; ";
        at_begin = c == '\n';
        if (!at_begin) line += blank ? ' ' : c;
    }
    while (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
}

void report_error(const std::string &text)
{
    const std::string line = "tarvex: " + one_line(text) + '\n';
    fflush(stdout);
    fputs(line.c_str(), stderr);
}

ExitCode report_usage(const std::string &text)
{
    report_error(text);
    return EXIT_USAGE;
}

namespace
{
// What a user can do about an error of this code; empty when the message says all.
const char *hint(int code)
{
    switch (code) {
    case TVX_ERROR_OUT_OF_MEMORY:
        return "give the process more memory: a higher limit (ulimit -v), fewer programs "
               "beside it";
    case TVX_ERROR_INVALID_ARGUMENT: // of the calls made here: a file that cannot be opened
        return "check name, folder and permissions";
    case TVX_ERROR_FILE_WRITE:
        return "check folder, permissions and free space";
    case TVX_ERROR_DATA_NOT_AVAILABLE:
        return "the solve ended without it; see its status in the log";
    case TVX_ERROR_NUMERIC:
        return "try ScaleFlag=1, Quad=1 or another LPMethod";
    default:
        return "";
    }
}
} // namespace

std::string describe_failure(int code, const char *message)
{
    std::string text = message && *message ? message : "error " + std::to_string(code);
    while (!text.empty() && (text.back() == ' ' || is_control(text.back())))
        text.pop_back();
    const bool no_command = text.find("needs the command") != std::string::npos;
    const char *advice = no_command ? "install it" : hint(code);
    if (*advice) text += std::string("; ") + advice;
    return text;
}
