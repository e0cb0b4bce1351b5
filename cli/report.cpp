// report.cpp -- errors of the command, one line each
//
// Problem     A script reads standard error line by line, a person wants to know what to do next.
// Method      Line breaks and other control characters inside a message become blanks; the library's message
//             says what went wrong, a hint by error code says what to do.
#include "report.h"
#include "tarvex.h"
#include <cstdio>

void report_error(const std::string &text)
{
    std::string line = "tarvex: " + text;
    while (!line.empty() && static_cast<unsigned char>(line.back()) <= ' ') line.pop_back();
    for (char &c : line)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    line += '\n';
    fflush(stdout);
    fputs(line.c_str(), stderr);
}

// What a user can do about an error of this code; empty when the message says all.
static const char *hint(int code)
{
    switch (code) {
    case TVX_ERROR_OUT_OF_MEMORY:
        return "give the process more memory, or lower Threads or NodefileStart";
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

std::string describe_failure(int code, const char *message)
{
    std::string text = message && *message ? message : "error " + std::to_string(code);
    while (!text.empty() && text.back() <= ' ') text.pop_back();
    const char *advice = hint(code);
    if (*advice) text += std::string("; ") + advice;
    return text;
}
