// command.h -- run the built command and look at what it did
#pragma once
#include <gtest/gtest.h>
#include <string>
#include <vector>

struct Outcome {
    int exit_code = -1; // or minus the signal that ended it
    std::string out;    // standard output
    std::string err;    // standard error
};

// A test in a folder of its own, which is the current folder of every run and is removed afterwards.
class Command : public testing::Test
{
  public:
    void SetUp() override;
    void TearDown() override;

    enum class Confine {
        NO,
        ONE_THREAD
    }; // ONE_THREAD: the kernel kills the run when it starts a thread or process
    Outcome run(const std::vector<std::string> &arguments,
                Confine confine = Confine::NO) const;
    void write(const std::string &name, const std::string &text) const;
    std::string read(const std::string &name) const; // empty when there is no such file
    std::string path(const std::string &name) const { return folder + "/" + name; }

    std::string folder;
};

// Small models. PLAN: max 3x + 2y, x + y <= 4, x + 3y <= 6, x <= 3; optimum 11 at x = 3, y = 1.
extern const char *const PLAN_MODEL;
extern const char *const INFEASIBLE_MODEL;

testing::AssertionResult
is_one_line(const std::string &text); // one line that begins with "tarvex: "
