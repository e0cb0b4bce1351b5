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

const char *const PLAN_MODEL =
    "NAME plan\nOBJSENSE MAX\nROWS\n N gain\n L hours\n L metal\n"
    "COLUMNS\n x gain 3 hours 1\n x metal 1\n y gain 2 hours 1\n y metal 3\n z hours 1\n"
    "RHS\n RHS hours 4 metal 6\nBOUNDS\n UP BND x 3\nENDATA\n";

const char *const INFEASIBLE_MODEL =
    "NAME never\nROWS\n N cost\n G many\nCOLUMNS\n x cost 1 many 1\n"
    "RHS\n RHS many 5\nBOUNDS\n UP BND x 1\nENDATA\n";

// From here on a thread or a process cannot be started: the kernel kills whoever tries.
static void forbid_threads()
{
    sock_filter code[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                          BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 1, 0),
                          BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone3, 0, 1),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
                          BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog program = {std::size(code), code};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

static Outcome run_from(const char *input, const Words &words, Confine confine)
{
    Words call = {TARVEX_COMMAND};
    call.insert(call.end(), words.begin(), words.end());
    std::vector<char *> argv;
    for (std::string &word : call) argv.push_back(word.data());
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(open(input, O_RDONLY), STDIN_FILENO);
        dup2(open("stdout", O_CREAT | O_TRUNC | O_WRONLY, 0600), STDOUT_FILENO);
        dup2(open("stderr", O_CREAT | O_TRUNC | O_WRONLY, 0600), STDERR_FILENO);
        if (confine == Confine::ONE_THREAD) forbid_threads();
        execv(argv[0], argv.data());
        _exit(127);
    }
    int state = 0;
    waitpid(child, &state, 0);
    return {WIFEXITED(state) ? WEXITSTATUS(state) : -WTERMSIG(state), file_get("stdout"),
            file_get("stderr")};
}

std::string text_of(const Words &words)
{
    std::string text;
    for (const std::string &word : words) text += " '" + word + "'";
    return text;
}

Command::Command()
{
    file_put("plan.mps", PLAN_MODEL);
    file_put("never.mps", INFEASIBLE_MODEL);
    file_put("whole.lp", "min x st c: 2 x >= 3 general x end\n");
    file_put("never_whole.lp", "min x st c: 2 x = 3 general x end\n");
    file_put("broken.mps", "ROWS\n N cost\n Q  row\n");
}

Outcome Command::run(const Words &words, Confine confine)
{
    return run_from("/dev/null", words, confine);
}

Outcome Command::run_with_input(const Words &words, const std::string &input)
{
    file_put("stdin", input);
    return run_from("stdin", words, Confine::NO);
}

int Command::shell(const std::string &words, const std::string &before)
{
    return WEXITSTATUS(system((before + TARVEX_COMMAND + " " + words).c_str()));
}

Outcome Command::ends(int code, const Words &words, const std::string &said)
{
    SCOPED_TRACE(text_of(words));
    Outcome outcome = run(words);
    EXPECT_EQ(outcome.exit_code, code);
    EXPECT_THAT(code ? outcome.err : outcome.out, HasSubstr(said));
    EXPECT_TRUE(code ? is_one_line(outcome.err) : outcome.err.empty()) << outcome.err;
    EXPECT_TRUE(code != 2 || outcome.out.empty()) << outcome.out;
    return outcome;
}

testing::AssertionResult is_one_line(const std::string &text)
{
    const bool holds = text.starts_with("tarvex: ") && text.find('\n') == text.size() - 1;
    return (holds ? testing::AssertionSuccess() : testing::AssertionFailure()) << text;
}
