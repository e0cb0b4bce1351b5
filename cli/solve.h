// solve.h -- one model from file to answer
#pragma once
#include "model_input.h"
#include "report.h"
#include "tarvex.h"
#include <string>
#include <vector>

struct SolveRequest {
    InputRequest input;
    std::string start;                // basis or MIP start, or empty
    std::vector<std::string> results; // files to write after the solve
    std::string solution_file;        // --solution=FILE, or empty
    bool ranging = false;             // with the sensitivity ranges
    bool solution = false;            // print the solution
};

// Whether only a solve can make the file.
bool is_result_of_solve(const std::string &file);

// Reads, starts, solves and reports one model; errors are reported here. EXIT_SOLVED, EXIT_ERROR or
// EXIT_INTERRUPTED. *json is the result for programs; json may be null.
ExitCode solve_file(TVXenv *env, const std::string &file, const SolveRequest &request,
                    std::string *json);

// Reads `file` and writes the model as `target`.
ExitCode convert_file(TVXenv *env, const std::string &file, const std::string &target,
                      const InputRequest &input);
