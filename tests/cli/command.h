// command.h -- run the built command and look at what it did
#pragma once
#include "support/scratch.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>
using testing::HasSubstr;
using testing::Not;

struct Outcome {
    int exit_code = -1; // or minus the signal that ended it
    std::string out;    // standard output
    std::string err;    // standard error
};

using Words = std::vector<std::string>;
std::string text_of(const Words &words);

// ONE_THREAD: the kernel kills a run that starts a thread or process.
enum class Confine { NO, ONE_THREAD };

// Small models. PLAN: max 3x + 2y, x + y <= 4, x + 3y <= 6, x <= 3; optimum 11 at x = 3, y = 1.
extern const char *const PLAN_MODEL;
extern const char *const INFEASIBLE_MODEL;

// A test in a folder of its own, which is the current folder of every run. There are plan.mps and never.mps, whole.lp
// and never_whole.lp with an integer variable, and broken.mps, which is refused at line 3.
class Command : public testing::Test
{
  public:
    Command();
    static Outcome run(const Words &words, Confine confine = Confine::NO);
    // With `input` on standard input, which is empty otherwise.
    static Outcome run_with_input(const Words &words, const std::string &input);
    // The exit code of the command behind `before`, with what a shell makes of `words`.
    static int shell(const std::string &words, const std::string &before = "");
    // A run that ends with `code`. After 0 `said` is in the output and there are no errors, else it is in the one line
    // of error; after 2, wrong usage, nothing is printed.
    static Outcome ends(int code, const Words &words, const std::string &said = "");
    struct Case {
        std::string said;
        Words words;
    };

    Scratch scratch;
};

// One line that begins with "tarvex: ".
testing::AssertionResult is_one_line(const std::string &text);
