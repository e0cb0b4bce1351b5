// interrupt_test.cpp -- signals end a solve and nothing else; each case is a process of its own
#include "support/model_test.h"
#include <csignal>
#include <functional>
#include <unistd.h>
#include <utility>

namespace
{
// Solves the model, and sends the process the signal at its first iteration.
struct Interrupt : ModelTest {
    int to_send = 0; // a signal, or 0 when it was sent

    static int enter(TVXmodel *, void *, int where, void *test)
    {
        Interrupt *self = static_cast<Interrupt *>(test);
        if (where == TVX_WHERE_SIMPLEX) raise(std::exchange(self->to_send, 0));
        return 0;
    }
    void SetUp() override
    {
        load("max x + y st x + 2 y <= 4\n3 x + y <= 6");
        ASSERT_EQ(TVXsetintparam(own(), "Presolve", 0), 0);
        ASSERT_EQ(TVXsetcallbackfunc(model, enter, this), 0);
    }
    // Sets the signals, if asked; the status of a solve that is sent the signal while it runs.
    int set_and_solve(int number) { return TVXsetsignal(model) ? -1 : solve(number); }
    int solve(int number)
    {
        to_send = number;
        EXPECT_EQ(TVXresetmodel(model), 0);
        return solved();
    }
    // In a process of its own: what must hold there, else it ends with 1.
    void expect_in_child(const std::function<bool()> &holds)
    {
        EXPECT_EXIT(_exit(holds() ? 0 : 1), testing::ExitedWithCode(0), "");
    }
    static bool is_default(int number)
    {
        struct sigaction now = {};
        sigaction(number, nullptr, &now);
        return now.sa_handler == SIG_DFL;
    }
};
volatile sig_atomic_t own_calls = 0;
void own_handler(int /*signal*/)
{
    own_calls = own_calls + 1;
}
} // namespace

TEST_F(Interrupt, a_signal_ends_the_solve_and_what_signals_meant_comes_back)
{
    for (const int number : {SIGINT, SIGTERM})
        expect_in_child([&] {
            return set_and_solve(number) == TVX_INTERRUPTED && is_default(SIGINT) &&
                   is_default(SIGTERM) && solve(0) == TVX_OPTIMAL;
        });
    expect_in_child([&] { // between the call and the solve
        return TVXsetsignal(model) == 0 && raise(SIGINT) == 0 &&
               solve(0) == TVX_INTERRUPTED && solve(0) == TVX_OPTIMAL &&
               set_and_solve(0) == TVX_OPTIMAL;
    });
    expect_in_child([&] { // of two models the last one; the first goes meanwhile
        TVXmodel *other = TVXcopymodel(model);
        const bool set = TVXsetsignal(other) == 0 && TVXsetsignal(model) == 0;
        TVXfreemodel(other);
        return set && solve(SIGINT) == TVX_INTERRUPTED && is_default(SIGINT);
    });
}

TEST_F(Interrupt, the_second_signal_and_one_without_a_model_end_the_program)
{
    for (const int first : {SIGINT, SIGTERM, 0})
        for (const int second : {SIGINT, SIGTERM})
            EXPECT_EXIT(
                {
                    TVXsetsignal(model);
                    first ? raise(first) : TVXfreemodel(model);
                    raise(second);
                },
                testing::KilledBySignal(second), "");
}

TEST_F(Interrupt, handlers_of_the_program_are_left_alone_or_brought_back)
{
    expect_in_child([&] { // SIGTERM is the program's own
        signal(SIGTERM, own_handler);
        return set_and_solve(SIGTERM) == TVX_OPTIMAL && own_calls == 1;
    });
    expect_in_child([&] { // both ignored
        signal(SIGTERM, SIG_IGN);
        signal(SIGINT, SIG_IGN);
        return set_and_solve(SIGTERM) == TVX_OPTIMAL &&
               set_and_solve(SIGINT) == TVX_OPTIMAL;
    });
    expect_in_child([&] { // the program's own comes back when the model goes
        signal(SIGINT, own_handler);
        const bool set = TVXsetsignal(model) == 0;
        TVXfreemodel(model);
        return set && raise(SIGINT) == 0 && own_calls == 1;
    });
    expect_in_child([&] { // one that is installed after the call stays
        const bool set = TVXsetsignal(model) == 0;
        signal(SIGINT, own_handler);
        return set && solve(SIGTERM) == TVX_INTERRUPTED && raise(SIGINT) == 0 &&
               own_calls == 1;
    });
}
