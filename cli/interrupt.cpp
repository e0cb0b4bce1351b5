// interrupt.cpp -- Ctrl-C ends the running solve, not the program
//
// The handler only calls TVXterminate, which stores one word. SA_RESETHAND gives the second interrupt back its
// usual meaning. SA_RESTART keeps the library's writes whole.
#include "interrupt.h"
#include <atomic>
#include <csignal>

// A signal handler has no other way to its model.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
static std::atomic<TVXmodel *> watched{nullptr};
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
static std::atomic<bool> interrupted{false};

extern "C" {
static void on_interrupt(int /*signal*/)
{
    interrupted = true;
    if (TVXmodel *model = watched) TVXterminate(model);
}
}

void interrupt_watch(TVXmodel *model)
{
    interrupted = false;
    watched = model;
    struct sigaction action = {};
    sigaction(SIGINT, nullptr, &action);
    if (action.sa_handler == SIG_IGN)
        return; // started in the background: interrupts are not for us
    action = {};
    action.sa_handler = on_interrupt;
    action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

bool interrupt_unwatch()
{
    struct sigaction action = {};
    sigaction(SIGINT, nullptr, &action);
    if (action.sa_handler == on_interrupt) signal(SIGINT, SIG_DFL);
    watched = nullptr;
    return interrupted;
}
