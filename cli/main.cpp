// main.cpp -- the command `tarvex`
//
// In order: silence if the words ask for it; the command line; an environment (which reads tarvex.env); OutputFlag, so
// that a parameter file is read as silently as asked; parameter files; the other parameters; each model in turn. What is
// wrong with the command line itself is found before the first model is read and gives exit code 2; a model that fails
// does not keep the next from being solved.
#include "arguments.h"
#include "parameter_file.h"
#include "parameters.h"
#include "report.h"
#include "silence.h"
#include "solve.h"
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>

struct FreeEnv {
    void operator()(TVXenv *env) const { TVXfreeenv(env); }
};
using OwnedEnv = std::unique_ptr<TVXenv, FreeEnv>;

struct Setting {
    std::string name, value;
};

// The words of the command line, sorted out.
struct Work {
    std::vector<Setting> settings;
    std::vector<std::string> models;
    SolveRequest request;
};

static ExitCode usage(const std::string &text)
{
    report_error(text);
    return EXIT_USAGE;
}

// A word with '=' is a parameter if the library knows one of that name, else a file if there is one.
static ExitCode sort_words(TVXenv *env, const Arguments &arguments, Work *work)
{
    for (const std::string &word : arguments.words) {
        Setting setting;
        const bool is_setting = split_setting(word, &setting.name, &setting.value);
        std::error_code ignored;
        if (is_setting && name_key(setting.name) == "resultfile") {
            work->request.results.push_back(setting.value);
        } else if (is_setting && TVXgetparamtype(env, setting.name.c_str()) > 0) {
            work->settings.push_back(setting);
        } else if (!is_setting || std::filesystem::exists(word, ignored)) {
            work->models.push_back(word);
        } else {
            return usage(
                "there is no parameter '" + setting.name +
                "'; tarvex --parameters lists them, and a file of that name is written ./" +
                word);
        }
    }
    work->request.start = arguments.start;
    work->request.solution = arguments.solution;
    return EXIT_SOLVED;
}

// Whether a result file could be written after the solve: better known before it.
static ExitCode check_result(const std::string &file)
{
    if (file_kind(file) == FileKind::UNKNOWN)
        return usage("ResultFile='" + file +
                     "': end the name in .sol, .bas, .mst, .prm, .mps, .rew, .lp or .rlp");
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    if (std::error_code ignored;
        !folder.empty() && !std::filesystem::is_directory(folder, ignored)) {
        report_error("ResultFile='" + file + "': there is no folder '" + folder.string() +
                     "'; make it first");
        return EXIT_ERROR;
    }
    return EXIT_SOLVED;
}

static ExitCode check_work(const Work &work)
{
    if (work.models.empty()) return usage("no model file given; see tarvex --help");
    if (!work.request.start.empty() && file_kind(work.request.start) != FileKind::START)
        return usage("--start '" + work.request.start +
                     "': a start is a basis (.bas) or a MIP start (.mst)");
    return EXIT_SOLVED;
}

static ExitCode check_results(const Work &work)
{
    if (!work.request.results.empty() && work.models.size() > 1)
        return usage("ResultFile would be overwritten by each of several models: solve "
                     "them one at a time");
    for (const std::string &file : work.request.results)
        if (const ExitCode code = check_result(file)) return code;
    return EXIT_SOLVED;
}

static ExitCode apply_settings(TVXenv *env, const Work &work, bool output_flag)
{
    for (const Setting &setting : work.settings) {
        if ((name_key(setting.name) == "outputflag") != output_flag) continue;
        std::string error;
        const ExitCode code = parameter_set(env, setting.name, setting.value, &error);
        if (code == EXIT_SOLVED) continue;
        report_error(setting.name + "=" + setting.value + ": " + error);
        return code;
    }
    return EXIT_SOLVED;
}

static ExitCode configure(TVXenv *env, const Arguments &arguments, const Work &work)
{
    if (const ExitCode code = apply_settings(env, work, true)) return code;
    for (const std::string &file : arguments.param_files)
        if (const ExitCode code = parameter_file_set(env, file)) return code;
    if (const ExitCode code = apply_settings(env, work, true))
        return code; // wins over a file that sets it too
    return apply_settings(env, work, false);
}

// A result file that a parameter file names is written like those of the command line, which win over it; an empty name
// asks for none.
static void take_result_file(TVXenv *env, Work *work)
{
    std::vector<std::string> *results = &work->request.results;
    char file[TVX_PARAM_LENGTH + 1] = "";
    TVXgetstrparam(env, "ResultFile", file);
    TVXsetstrparam(env, "ResultFile", "");
    if (results->empty()) results->emplace_back(file);
    std::erase(*results, "");
}

// The environment, or null after a report.
static OwnedEnv load_env(bool silent)
{
    TVXenv *loaded = nullptr;
    const SilentScope scope(stdout, silent); // tarvex.env tells what it sets
    if (const int code = TVXloadenv(&loaded, nullptr))
        report_error("cannot start: " + describe_failure(code, nullptr));
    return OwnedEnv(loaded);
}

static ExitCode run(const Arguments &arguments, bool silent)
{
    const OwnedEnv env = load_env(silent);
    if (!env) return EXIT_ERROR;
    if (arguments.list_parameters) {
        parameters_list(env.get());
        return EXIT_SOLVED;
    }
    Work work;
    if (const ExitCode code = sort_words(env.get(), arguments, &work)) return code;
    if (const ExitCode code = check_work(work)) return code;
    if (const ExitCode code = configure(env.get(), arguments, work)) return code;
    take_result_file(env.get(), &work);
    if (const ExitCode code = check_results(work)) return code;
    int output_flag = 1;
    TVXgetintparam(env.get(), "OutputFlag", &output_flag);
    if (output_flag == 0) silence(stderr); // also when a file has said so

    ExitCode worst = EXIT_SOLVED;
    for (const std::string &model : work.models) {
        const ExitCode code = solve_file(env.get(), model, work.request);
        if (code == EXIT_INTERRUPTED) return code;
        if (code != EXIT_SOLVED) worst = code;
    }
    return worst;
}

static ExitCode parse_and_run(int argc, char **argv)
{
    Arguments arguments;
    std::string error;
    const bool silent = silence_wanted(argc, argv);
    if (silent) silence(stderr);
    switch (arguments_parse(argc, argv, &arguments, &error)) {
    case Parsed::DONE:
        return EXIT_SOLVED;
    case Parsed::WRONG:
        return usage(error + "; see tarvex --help");
    default: // Parsed::OK
        return run(arguments, silent);
    }
}

int main(int argc, char **argv)
{
    try {
        const ExitCode code = parse_and_run(argc, argv);
        if (fflush(stdout) != 0 || ferror(stdout)) {
            report_error("standard output could not be written; check the free space");
            return EXIT_ERROR;
        }
        return code;
    } catch (const std::exception &e) {
        fprintf(stderr, "tarvex: %s; give the process more memory\n", e.what());
        return EXIT_ERROR;
    }
}
