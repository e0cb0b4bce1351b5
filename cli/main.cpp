// main.cpp -- the command `tarvex`
//
// In order: silence if the words ask for it; the command line; an environment (which reads tarvex.env); OutputFlag, so
// that a parameter file is read as silently as asked; outputs of an earlier call are removed; parameter files; the other
// parameters; each model in turn; the JSON file. What is wrong with the command line itself is found before anything is
// removed or a model is read and gives exit code 2; a model that fails does not keep the next from being solved.
#include "arguments.h"
#include "file_use.h"
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
    bool own_results =
        false; // the command line names result files, or asks for none by an empty name
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
            work->own_results = true;
            if (!setting.value.empty()) work->request.results.push_back(setting.value);
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
    if (file_kind(file) == FileKind::IIS)
        return usage("ResultFile='" + file +
                     "': what makes a model infeasible (IIS) cannot be written yet");
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
    if (file_kind(target) == FileKind::IIS)
        return usage("--convert to '" + target +
                     "': what makes a model infeasible (IIS) cannot be written yet");
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

// ---- The files ----

static bool is_log_file(const std::string &name)
{
    return name_key(name) == "logfile";
}

// Refuses to write what is read, and one file twice. tarvex.env has been read by now, and its log file is open.
static ExitCode check_files(TVXenv *env, const Arguments &arguments, const Work &work,
                            FileUse *files)
{
    const SolveRequest &request = work.request;
    const size_t n_models = work.convert ? 1 : work.models.size();
    for (size_t k = 0; k < n_models; k++)
        if (work.models[k] == STANDARD_INPUT)
            files->reads_standard_input();
        else
            files->reads("the model", work.models[k]);
    if (!request.start.empty()) files->reads("the start", request.start);
    for (const std::string &file : arguments.param_files)
        files->reads("the parameter file", file);
    files->reads("the parameter file", "tarvex.env");

    char log[TVX_PARAM_LENGTH + 1] = "";
    TVXgetstrparam(env, "LogFile", log);
    const std::string json = work.json_file == STANDARD_INPUT ? "" : work.json_file;
    std::vector<std::string> faults = {files->writes("LogFile", log, Output::LOG)};
    for (const Setting &setting : work.settings)
        if (is_log_file(setting.name)) {
            faults.push_back(ending_refused("LogFile", setting.value));
            faults.push_back(files->writes("LogFile", setting.value, Output::LOG));
        }
    faults.push_back(ending_refused("--json", json));
    faults.push_back(files->writes("--json", json, Output::RESULT));
    faults.push_back(ending_refused("--solution", request.solution_file));
    faults.push_back(files->writes("--solution", request.solution_file, Output::RESULT));
    if (work.convert)
        faults.push_back(files->writes("--convert", work.models[1], Output::RESULT));
    for (const std::string &file : request.results)
        faults.push_back(files->writes("ResultFile", file, Output::RESULT));
    for (const std::string &fault : faults)
        if (!fault.empty()) return usage(fault);
    return EXIT_SOLVED;
}

// Every file is tried, and every failure reported.
static ExitCode clear_outputs(const std::vector<std::string> &files)
{
    ExitCode worst = EXIT_SOLVED;
    for (const std::string &file : files) {
        const std::string fault = clear_output(file);
        if (fault.empty()) continue;
        report_error(fault);
        worst = EXIT_ERROR;
    }
    return worst;
}

// Result files that only a solve can make: an older one must not pass for the result of this call, whatever ends it. Other
// kinds hold the model and the parameters, which are what they are without a solve.
static std::vector<std::string> results_of_solve(const Work &work)
{
    std::vector<std::string> files;
    for (const std::string &file : work.request.results)
        if (is_result_of_solve(file)) files.push_back(file);
    return files;
}

static ExitCode clear_all(const Work &work)
{
    std::vector<std::string> files = results_of_solve(work);
    if (!work.request.solution_file.empty()) files.push_back(work.request.solution_file);
    if (!work.json_file.empty() && work.json_file != STANDARD_INPUT)
        files.push_back(work.json_file);
    return clear_outputs(files);
}

// ---- The parameters ----

enum class Which { OUTPUT_FLAG, VALUES, ALL }; // VALUES: all but those that open a file

static bool is_among(const std::string &name, Which which)
{
    if (which == Which::OUTPUT_FLAG) return name_key(name) == "outputflag";
    return which == Which::ALL || !is_log_file(name);
}

static ExitCode apply_settings(TVXenv *env, const Work &work, Which which)
{
    for (const Setting &setting : work.settings) {
        if (!is_among(setting.name, which)) continue;
        std::string error;
        const ExitCode code = parameter_set(env, setting.name, setting.value, &error);
        if (code == EXIT_SOLVED) continue;
        report_error(setting.name + "=" + setting.value + ": " + error);
        return code;
    }
    return EXIT_SOLVED;
}

// Whether the values can be set, found out by doing it: a wrong one is a wrong command line.
static ExitCode check_settings(TVXenv *env, const Work &work)
{
    if (const ExitCode code = apply_settings(env, work, Which::OUTPUT_FLAG)) return code;
    return apply_settings(env, work, Which::VALUES);
}

// The parameter files, and over them the words of the command line once more.
static ExitCode configure(TVXenv *env, const Arguments &arguments, const Work &work,
                          FileUse *files)
{
    for (const std::string &file : arguments.param_files)
        if (const ExitCode code = parameter_file_set(env, file, files)) return code;
    if (const ExitCode code = apply_settings(env, work, Which::OUTPUT_FLAG)) return code;
    return apply_settings(env, work, Which::ALL);
}

// A result file that a parameter file names is written like those of the command line, which win over it; an empty name
// asks for none.
static void take_result_file(TVXenv *env, Work *work)
{
    char file[TVX_PARAM_LENGTH + 1] = "";
    TVXgetstrparam(env, "ResultFile", file);
    TVXsetstrparam(env, "ResultFile", "");
    if (*file) work->request.results.emplace_back(file);
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

// The same checks for the result file that tarvex.env or a parameter file asks for; the command line names none then.
static ExitCode take_named_result(TVXenv *env, Work *work, FileUse *files)
{
    take_result_file(env, work);
    if (const ExitCode code = check_results(*work)) return code;
    for (const std::string &file : work->request.results) {
        const std::string fault = files->writes("ResultFile", file, Output::RESULT);
        if (!fault.empty()) return usage(fault);
    }
    return clear_outputs(results_of_solve(*work));
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
    if (const ExitCode code = work->convert ? check_convert(*work) : check_results(*work))
        return code;
    FileUse files;
    if (const ExitCode code = check_files(env, arguments, *work, &files)) return code;
    if (const ExitCode code = check_settings(env, *work)) return code;
    if (const ExitCode code = clear_all(*work)) return code;
    const ExitCode configured = configure(env, arguments, *work, &files);
    if (work->convert) return configured;
    if (!work->own_results) {
        // Also when a parameter file was wrong in a later line.
        const SilentScope scope(stderr, configured != EXIT_SOLVED);
        const ExitCode named = take_named_result(env, work, &files);
        if (configured == EXIT_SOLVED) return named;
    }
    TVXsetstrparam(env, "ResultFile", ""); // the command line wins
    return configured;
}

static ExitCode run(const Arguments &arguments, bool silent)
{
    FILE *json_out = arguments.json_file == STANDARD_INPUT ? divert_output() : nullptr;
    if (!json_out && arguments.json_file == STANDARD_INPUT) {
        report_error("--json -: standard output is closed");
        return EXIT_ERROR;
    }
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
        hold_streams();
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
