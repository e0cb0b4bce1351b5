// solve.h -- one model from file to answer
#pragma once
#include "report.h"
#include "tarvex.h"
#include <string>
#include <vector>

struct SolveRequest {
    std::string start;                // basis or MIP start, or empty
    std::vector<std::string> results; // files to write after the solve
    bool solution = false;            // print the solution
};

// Reads, starts, solves and reports one model; errors are reported here. EXIT_SOLVED, EXIT_ERROR or
// EXIT_INTERRUPTED.
ExitCode solve_file(TVXenv *env, const std::string &file, const SolveRequest &request);
