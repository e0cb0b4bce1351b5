// parameter_file.h -- the files of --params
#pragma once
#include "file_use.h"
#include "report.h"
#include "tarvex.h"
#include <string>

// Sets what the file says, line by line. EXIT_SOLVED; or EXIT_ERROR, reported, when the file cannot be read or at the
// first line that cannot be used; or EXIT_USAGE, reported, when a line names a log file that the call
// reads or writes otherwise.
ExitCode parameter_file_set(TVXenv *env, const std::string &file, FileUse *files);
