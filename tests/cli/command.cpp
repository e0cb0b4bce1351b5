// command.cpp -- run the built command and look at what it did
#include "cli/command.h"
#include <cstddef>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

const char *const PLAN_MODEL = R"(NAME plan
OBJSENSE
    MAX
ROWS
 N  gain
 L  hours
 L  metal
COLUMNS
    x  gain  3  hours  1
    x  metal  1
    y  gain  2  hours  1
    y  metal  3
    z  hours  1
RHS
    RHS  hours  4  metal  6
BOUNDS
 UP BND  x  3
ENDATA
)";

const char *const INFEASIBLE_MODEL = R"(NAME never
ROWS
 N  cost
 G  many
COLUMNS
    x  cost  1  many  1
RHS
    RHS  many  5
BOUNDS
 UP BND  x  1
ENDATA
)";

// From here on a thread or a process cannot be started: the kernel kills whoever tries.
static void forbid_threads()
{
    const auto kill_on = [](unsigned number, sock_filter *at) {
        at[0] = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1);
        at[1] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS);
    };
    sock_filter code[6];
    code[0] = BPF_STMT(BPF_LD | BPF_W | BPF_ABS,
                       static_cast<unsigned>(offsetof(seccomp_data, nr)));
    kill_on(SYS_clone, code + 1);
    kill_on(SYS_clone3, code + 3);
    code[5] = BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    const sock_fprog program = {6, code};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

static Outcome run_from(const char *input, const std::vector<std::string> &arguments,
                        Command::Confine confine)
{
    std::vector<std::string> words = {TARVEX_COMMAND};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (std::string &word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(open(input, O_RDONLY), STDIN_FILENO);
        dup2(open("stdout", O_CREAT | O_TRUNC | O_WRONLY, 0600), STDOUT_FILENO);
        dup2(open("stderr", O_CREAT | O_TRUNC | O_WRONLY, 0600), STDERR_FILENO);
        if (confine == Command::Confine::ONE_THREAD) forbid_threads();
        execv(argv[0], argv.data());
        _exit(127);
    }
    int state = 0;
    waitpid(child, &state, 0);
    Outcome outcome;
    outcome.exit_code = WIFEXITED(state) ? WEXITSTATUS(state) : -WTERMSIG(state);
    outcome.out = file_get("stdout");
    outcome.err = file_get("stderr");
    return outcome;
}

Outcome Command::run(const std::vector<std::string> &arguments, Confine confine)
{
    return run_from("/dev/null", arguments, confine);
}

Outcome Command::run_with_input(const std::vector<std::string> &arguments,
                                const std::string &input)
{
    file_put("stdin", input);
    return run_from("stdin", arguments, Confine::NO);
}

testing::AssertionResult is_one_line(const std::string &text)
{
    if (!text.starts_with("tarvex: "))
        return testing::AssertionFailure() << "does not begin with tarvex: " << text;
    if (text.find('\n') != text.size() - 1)
        return testing::AssertionFailure() << "not one line: " << text;
    return testing::AssertionSuccess();
}
