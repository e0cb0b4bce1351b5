// interrupt.cpp -- Ctrl-C on the console ends the running solve, not the program
//
// Method      TVXsetsignal installs a handler that is good for one interrupt: it stores the stop flag, and the next
//             interrupt has its usual meaning again. The end of the solve brings back what was installed before. Where
//             interrupts are ignored (a program started in the background) they stay ignored.
// Invariant   One model at a time is watched; the last call wins.
#include "frame/optimize.h"
#include <atomic>
#include <csignal>
#include <unistd.h>

// A signal handler has no other way to its model.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
static std::atomic<TVXmodel *> watched{nullptr};
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
static struct sigaction before;

extern "C" {
static void on_interrupt(int /*signal*/)
{
    TVXmodel *model = watched;
    if (!model) return;
    static constexpr char text[] = "\nInterrupt request received\n";
    if (model->env->OutputFlag > 0)
        static_cast<void>(!write(STDOUT_FILENO, text, sizeof text - 1));
    TVXterminate(model);
}
}

int TVXsetsignal(TVXmodel *model)
{
    TRY(model_check(model));
    struct sigaction now = {};
    sigaction(SIGINT, nullptr, &now);
    if (now.sa_handler == SIG_IGN) return 0;
    if (!watched.exchange(model)) before = now;
    model->signal_set = 1;
    now = {};
    now.sa_handler = on_interrupt;
    now.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART; // writes stay whole
    sigemptyset(&now.sa_mask);
    sigaction(SIGINT, &now, nullptr);
    return 0;
}

void interrupt_end(TVXmodel *model)
{
    if (!model->signal_set) return;
    model->signal_set = 0;
    TVXmodel *mine = model;
    if (watched.compare_exchange_strong(mine, nullptr)) sigaction(SIGINT, &before, nullptr);
}
