// interrupt.cpp -- Ctrl-C on the console and SIGTERM end the running solve, not the program
//
// Method      TVXsetsignal installs a handler that is good for one signal: it stores the stop flag, and the next signal
//             has its usual meaning again. The end of the solve, or of the model, brings back what was installed
//             before. Where interrupts are ignored (a program started in the background) they stay ignored; SIGTERM is
//             only taken over where it would end the program.
// Invariant   One model at a time is watched; the last call wins. A model that is watched is alive: before it goes,
//             `watched` is cleared and every handler that may have read it has returned.
// Order       A signal that comes before the solve has begun stops it all the same: `pending` keeps it.
#include "model/model.h"
#include "runtime/thread.h"
#include <atomic>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace
{
constexpr int SIGNALS = 2;

constexpr int numbers[SIGNALS] = {SIGINT, SIGTERM};

// A signal handler has no other way to its model.
// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
std::atomic<TVXmodel *> watched{nullptr};

std::atomic<int32_t> handlers{0}; // that run now

std::atomic<int32_t> pending{0}; // 1: the watched model has been asked to stop

struct sigaction before[SIGNALS]; // while a model is watched

bool taken[SIGNALS]; // the handler was installed for this signal

// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

void stop_watched()
{
    TVXmodel *model = watched;
    if (!model) return;
    static constexpr char text[] = "\nInterrupt request received\n";
    if (model->env->OutputFlag > 0)
        static_cast<void>(!write(STDOUT_FILENO, text, sizeof text - 1));
    pending = 1;
    TVXterminate(model);
}
} // namespace

extern "C" {
static void on_signal(int signal);
}

namespace
{
// From now on the signals have their usual meaning, unless someone else has given them one.
void restore_defaults()
{
    struct sigaction usual = {}, now = {};
    usual.sa_handler = SIG_DFL;
    sigemptyset(&usual.sa_mask);
    for (const int number : numbers)
        if (sigaction(number, nullptr, &now) == 0 && now.sa_handler == on_signal)
            sigaction(number, &usual, nullptr);
}
} // namespace

extern "C" {
static void on_signal(int /*signal*/)
{
    const int error = errno;
    handlers++;
    restore_defaults();
    stop_watched();
    handlers--;
    errno = error;
}
}

namespace
{
// Whether the present meaning of the signal may be taken over.
bool may_take(int number, const struct sigaction *now)
{
    if (now->sa_handler == SIG_IGN) return false;
    return number == SIGINT || now->sa_handler == SIG_DFL || now->sa_handler == on_signal;
}

void take(int k)
{
    const bool again = taken[k];
    struct sigaction now = {};
    sigaction(numbers[k], nullptr, &now);
    taken[k] = may_take(numbers[k], &now);
    if (!taken[k]) return;
    if (!again) before[k] = now;
    now = {};
    now.sa_handler = on_signal;
    now.sa_flags = SA_RESTART; // writes stay whole
    sigemptyset(&now.sa_mask);
    for (const int number : numbers) sigaddset(&now.sa_mask, number);
    sigaction(numbers[k], &now, nullptr);
}

// Back to what stood before, unless someone else has set something since.
void give_back(int k)
{
    struct sigaction now = {};
    sigaction(numbers[k], nullptr, &now);
    const bool ours = now.sa_handler == on_signal || now.sa_handler == SIG_DFL;
    if (taken[k] && ours) sigaction(numbers[k], &before[k], nullptr);
    taken[k] = false;
}
} // namespace

int TVXsetsignal(TVXmodel *model)
{
    TRY(model_check(model));
    pending = 0;
    watched = model;
    model->signal_set = 1;
    for (int k = 0; k < SIGNALS; k++) take(k);
    return 0;
}

void interrupt_begin(TVXmodel *model)
{
    if (model->signal_set && watched == model && pending) TVXterminate(model);
}

void interrupt_end(TVXmodel *model)
{
    if (!model->signal_set) return;
    model->signal_set = 0;
    if (watched != model) return;
    for (int k = 0; k < SIGNALS; k++) give_back(k);
    watched = nullptr;
    for (int round = 0; handlers; round++) ThreadPause(round); // on another thread
}
