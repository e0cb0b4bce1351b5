// command.h -- run the built command and look at what it did
#pragma once
#include "support/scratch.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

struct Outcome {
    int exit_code = -1; // or minus the signal that ended it
    std::string out;    // standard output
    std::string err;    // standard error
};

// A test in a folder of its own, which is the current folder of every run.
class Command : public testing::Test
{
  public:
    enum class Confine {
        NO,
        ONE_THREAD
    }; // ONE_THREAD: the kernel kills a run that starts a thread or process
    static Outcome run(const std::vector<std::string> &arguments,
                       Confine confine = Confine::NO);
    // With `input` on standard input, which is empty otherwise.
    static Outcome run_with_input(const std::vector<std::string> &arguments,
                                  const std::string &input);

    Scratch scratch;
};

// Small models. PLAN: max 3x + 2y, x + y <= 4, x + 3y <= 6, x <= 3; optimum 11 at x = 3, y = 1.
extern const char *const PLAN_MODEL;
extern const char *const INFEASIBLE_MODEL;

testing::AssertionResult
is_one_line(const std::string &text); // one line that begins with "tarvex: "
