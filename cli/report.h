// report.h -- errors of the command, and its exit codes
#pragma once
#include <string>

enum ExitCode { EXIT_SOLVED = 0, EXIT_ERROR = 1, EXIT_USAGE = 2, EXIT_INTERRUPTED = 130 };

// A text on one line: line ends become semicolons, or a blank behind a colon, other control characters blanks.
std::string one_line(const std::string &text);

// Writes "tarvex: <text>" to standard error as one line, whatever `text` holds, after what the log has written.
void report_error(const std::string &text);

// The same for a wrong command line: EXIT_USAGE.
ExitCode report_usage(const std::string &text);

// The library's own words for a failed call, or "error <code>" when it has none; then what to do about it.
std::string describe_failure(int code, const char *message);
