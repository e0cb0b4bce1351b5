// main.cpp -- the command `tarvex`
//
// In order: silence if the words ask for it; the command line; an environment (which reads tarvex.env); OutputFlag, so
// that a parameter file is read as silently as asked; parameter files; the other parameters; each model in turn; the JSON
// file. What is wrong with the command line itself is found before the first model is read and gives exit code 2; a model
// that fails does not keep the next from being solved.
#include "arguments.h"
#include "json_result.h"
#include "near_miss.h"
#include "option_words.h"
#include "parameter_file.h"
#include "parameters.h"
#include "report.h"
#include "runtime/file.h"
#include "silence.h"
#include "solve.h"
#include <algorithm>
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
    std::vector<std::string> models; // of a conversion: from, to
    SolveRequest request;
    std::string json_file; // or empty
    bool convert = false;
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
                "there is no parameter '" + setting.name + "'" +
                nearest_hint(setting.name, parameter_names()) +
                "; tarvex --parameters lists them, and a file of that name is written ./" +
                word);
        }
    }
    return EXIT_SOLVED;
}

// What the options ask for, parameters and models apart.
static ExitCode take_options(const Arguments &arguments, Work *work)
{
    SolveRequest *request = &work->request;
    request->start = arguments.start;
    request->solution = arguments.solution;
    request->solution_file = arguments.solution_file;
    request->ranging = arguments.ranging;
    request->input.sense = arguments.maximise ? -1 : arguments.minimise ? 1 : 0;
    work->json_file = arguments.json_file;
    work->convert = arguments.convert;
    const std::string format = name_key(arguments.format);
    if (format == "mps") request->input.format = ModelFormat::MPS;
    if (format == "lp") request->input.format = ModelFormat::LP;
    if (!format.empty() && request->input.format == ModelFormat::UNKNOWN)
        return usage("--format '" + arguments.format + "': it is mps or lp");
    if (!format.empty() && std::count(work->models.begin(), work->models.end(), "-") == 0)
        return usage("--format is for standard input, and no model is '-'; the name of a "
                     "file tells its format");
    if (request->ranging && request->solution_file.empty())
        return usage("--ranging goes into a solution file: add --solution=FILE");
    return EXIT_SOLVED;
}

// Whether a file could be written after the solve: better known before it.
static ExitCode check_folder(const std::string &what, const std::string &file)
{
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    std::error_code ignored;
    if (folder.empty() || std::filesystem::is_directory(folder, ignored))
        return EXIT_SOLVED;
    report_error(what + file + "': there is no folder '" + folder.string() +
                 "'; make it first");
    return EXIT_ERROR;
}

static ExitCode check_result(const std::string &file)
{
    if (file_kind(file) == FileKind::UNKNOWN)
        return usage("ResultFile='" + file +
                     "': end the name in .sol, .bas, .mst, .prm, .mps, .rew, .lp or .rlp");
    return check_folder("ResultFile='", file);
}

// "--time-limit plan.mps" takes the model for a value.
static std::string swallowed_model(const Work &work)
{
    std::error_code ignored;
    for (const Setting &setting : work.settings)
        if (name_key(setting.name) != "logfile" &&
            std::filesystem::exists(setting.value, ignored))
            return ": '" + setting.value + "' was taken for the value of " + setting.name;
    return "";
}

static ExitCode check_work(const Work &work)
{
    const SolveRequest &request = work.request;
    if (work.models.empty())
        return usage("no model file given" + swallowed_model(work) + "; see tarvex --help");
    if (!request.start.empty() && file_kind(request.start) != FileKind::START)
        return usage("--start '" + request.start +
                     "': a start is a basis (.bas) or a MIP start (.mst)");
    if (std::count(work.models.begin(), work.models.end(), STANDARD_INPUT) > 1)
        return usage("standard input ('-') can be read once only");
    if (work.json_file == STANDARD_INPUT && request.solution)
        return usage("--solution and --json - both print: write one of them to a file");
    return EXIT_SOLVED;
}

// A conversion solves nothing, so nothing may be asked for that a solve gives.
static ExitCode check_convert(const Work &work)
{
    const SolveRequest &request = work.request;
    if (work.models.size() != 2)
        return usage("--convert takes two files: the model, and the file to write");
    const std::string &target = work.models[1];
    if (file_kind(target) != FileKind::MODEL)
        return usage("--convert to '" + target +
                     "': end the name in .mps, .rew, .lp or .rlp");
    if (!request.start.empty() || request.solution || !request.solution_file.empty() ||
        !request.results.empty() || !work.json_file.empty())
        return usage("--convert does not solve: leave out --start, --solution, --json and "
                     "ResultFile");
    return check_folder("--convert to '", target);
}

static ExitCode check_results(const Work &work)
{
    const SolveRequest &request = work.request;
    if (work.models.size() > 1 &&
        (!request.results.empty() || !request.solution_file.empty()))
        return usage(
            std::string(request.results.empty() ? "--solution=FILE" : "ResultFile") +
            " would be overwritten by each of several models: solve "
            "them one at a time");
    for (const std::string &file : request.results)
        if (const ExitCode code = check_result(file)) return code;
    if (const ExitCode code = check_folder("--solution='", request.solution_file))
        return code;
    return check_folder("--json '", work.json_file);
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

static ExitCode describe_parameters(TVXenv *env, const std::vector<std::string> &words)
{
    if (words.empty()) parameters_list(env);
    ExitCode worst = EXIT_SOLVED;
    for (const std::string &word : words) {
        const ExitCode code = parameter_describe(env, word.substr(0, word.find('=')));
        if (code != EXIT_SOLVED) worst = code;
    }
    return worst;
}

// out: standard output as it was, when the JSON goes there; else null.
static ExitCode write_json(const Work &work, const std::vector<std::string> &objects,
                           FILE *out)
{
    if (work.json_file.empty()) return EXIT_SOLVED;
    // Also when an interrupt has ended the call after the first of several.
    const JsonForm form = work.models.size() > 1 ? JsonForm::ARRAY : JsonForm::OBJECT;
    const std::string text = json_document(objects, form);
    FileHandle handle;
    if (out)
        handle = {.stream = out, .kind = 'f', .mode = 'w'};
    else if (FileOpen(work.json_file.c_str(), 'w', &handle))
        handle.stream = nullptr;
    bool written = handle.stream != nullptr;
    if (written) fwrite(text.data(), 1, text.size(), handle.stream);
    if (FileClose(&handle) != 0) written = false;
    if (written) return EXIT_SOLVED;
    if (!out) FileRemove(work.json_file.c_str());
    report_error("cannot write '" + work.json_file +
                 "': check folder, permissions and free space");
    return EXIT_ERROR;
}

// Each model in turn, until one is interrupted.
static ExitCode solve_all(TVXenv *env, const Work &work, std::vector<std::string> *objects)
{
    ExitCode worst = EXIT_SOLVED;
    for (const std::string &model : work.models) {
        if (!work.json_file.empty()) objects->emplace_back();
        std::string *json = objects->empty() ? nullptr : &objects->back();
        const ExitCode code = solve_file(env, model, work.request, json);
        if (code == EXIT_INTERRUPTED) return code;
        if (code != EXIT_SOLVED) worst = code;
    }
    return worst;
}

// From the words to what has to be done, all of it checked.
static ExitCode prepare(TVXenv *env, const Arguments &arguments, Work *work)
{
    if (const ExitCode code = sort_words(env, arguments, work)) return code;
    if (const ExitCode code = take_options(arguments, work)) return code;
    if (const ExitCode code = check_work(*work)) return code;
    if (work->convert)
        if (const ExitCode code = check_convert(*work)) return code;
    if (const ExitCode code = configure(env, arguments, *work)) return code;
    if (work->convert) return EXIT_SOLVED;
    take_result_file(env, work);
    return check_results(*work);
}

static ExitCode run(const Arguments &arguments, bool silent)
{
    FILE *json_out = arguments.json_file == STANDARD_INPUT ? divert_output() : nullptr;
    const OwnedEnv env = load_env(silent || arguments.list_parameters);
    if (!env) return EXIT_ERROR;
    if (arguments.list_parameters) return describe_parameters(env.get(), arguments.words);
    Work work;
    if (const ExitCode code = prepare(env.get(), arguments, &work)) return code;
    int output_flag = 1;
    TVXgetintparam(env.get(), "OutputFlag", &output_flag);
    if (output_flag == 0) silence(stderr); // also when a file has said so

    if (work.convert)
        return convert_file(env.get(), work.models[0], work.models[1], work.request.input);
    // An older file must not pass for the result of this call, whatever ends it.
    if (!work.json_file.empty() && !json_out) FileRemove(work.json_file.c_str());
    std::vector<std::string> objects;
    const ExitCode solved = solve_all(env.get(), work, &objects);
    const ExitCode written = write_json(work, objects, json_out);
    return solved != EXIT_SOLVED ? solved : written;
}

static ExitCode parse_and_run(int argc, char **argv)
{
    Arguments arguments;
    std::string error;
    const std::vector<std::string> words = option_words(argc, argv, &error);
    const bool silent = silence_wanted(words);
    if (silent) silence(stderr);
    if (!error.empty()) return usage(error + "; see tarvex --help");
    switch (arguments_parse(words, &arguments, &error)) {
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
