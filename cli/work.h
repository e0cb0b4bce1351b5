// work.h -- what one call has to do
#pragma once
#include "arguments.h"
#include "report.h"
#include "solve.h"
#include "tarvex.h"
#include <string>
#include <vector>

struct Setting {
    std::string name, value;
};

// The words of the command line, sorted out.
struct Work {
    std::vector<Setting> settings;
    std::vector<std::string> models; // of a conversion: from, to
    SolveRequest request;
    std::string json_file; // or empty
    bool convert = false;
    // the command line names result files, or asks for none by an empty name
    bool own_results = false;
};

// Sorts the words, and refuses what can be known to be wrong from them alone. EXIT_SOLVED; else reported.
ExitCode work_sort(const Arguments &arguments, Work *work);
// After work_sort: checks files and values, removes what an earlier call left in the outputs and sets the parameters of
// *env, which has read tarvex.env. EXIT_SOLVED; else reported: EXIT_USAGE for a wrong command line, where nothing has
// been removed unless a parameter file is at fault, or EXIT_ERROR.
ExitCode work_prepare(TVXenv *env, const Arguments &arguments, Work *work);
