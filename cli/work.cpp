// work.cpp -- from the words of the command line to what has to be done
//
// In order: parameters, options and models are told apart; everything that can be known to be wrong is refused, first
// what needs no environment (whose creation may begin the log of tarvex.env), then files and values of parameters; what
// an earlier call left in the outputs is removed; parameters are set, those of the parameter files first; the result
// file that one of them may name is treated like the others.
#include "work.h"
#include "file_use.h"
#include "near_miss.h"
#include "option_words.h"
#include "parameter_file.h"
#include "parameters.h"
#include "silence.h"
#include <algorithm>
#include <filesystem>

namespace
{
// A word with '=' is a parameter if the library knows one of that name, else a file if there is one.
ExitCode sort_words(const Arguments &arguments, Work *work)
{
    for (const std::string &word : arguments.words) {
        Setting setting;
        const bool is_setting = split_setting(word, &setting.name, &setting.value);
        std::error_code ignored;
        if (is_setting && name_key(setting.name) == "resultfile") {
            work->own_results = true;
            if (!setting.value.empty()) work->request.results.push_back(setting.value);
        } else if (is_setting && parameter_text(setting.name)) {
            work->settings.push_back(setting);
        } else if (!is_setting || std::filesystem::exists(word, ignored)) {
            work->models.push_back(word);
        } else {
            return report_usage(unknown_name("parameter", setting.name, parameter_names()) +
                                ", and a file of that name is written ./" + word);
        }
    }
    return EXIT_SOLVED;
}

// What the options ask for, parameters and models apart.
ExitCode take_options(const Arguments &arguments, Work *work)
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
        return report_usage("--format '" + arguments.format + "': it is mps or lp");
    if (!format.empty() && std::count(work->models.begin(), work->models.end(), "-") == 0)
        return report_usage(
            "--format is for standard input, and no model is '-'; the name of a "
            "file tells its format");
    if (request->ranging && request->solution_file.empty())
        return report_usage("--ranging goes into a solution file: add --solution=FILE");
    return EXIT_SOLVED;
}

// Whether a file could be written after the solve: better known before it.
ExitCode check_folder(const std::string &what, const std::string &file)
{
    const std::filesystem::path folder = std::filesystem::path(file).parent_path();
    std::error_code ignored;
    if (folder.empty() || std::filesystem::is_directory(folder, ignored))
        return EXIT_SOLVED;
    report_error(what + file + "': there is no folder '" + folder.string() +
                 "'; make it first");
    return EXIT_ERROR;
}

ExitCode check_result(const std::string &file)
{
    if (file_kind(file) == FileKind::UNKNOWN)
        return report_usage(
            "ResultFile='" + file +
            "': end the name in .sol, .bas, .mst, .prm, .mps, .rew, .lp or .rlp");
    if (file_kind(file) == FileKind::IIS)
        return report_usage("ResultFile='" + file +
                            "': what makes a model infeasible (IIS) cannot be written yet");
    return check_folder("ResultFile='", file);
}

// "--time-limit plan.mps" takes the model for a value.
std::string swallowed_model(const Work &work)
{
    std::error_code ignored;
    for (const Setting &setting : work.settings)
        if (name_key(setting.name) != "logfile" &&
            std::filesystem::exists(setting.value, ignored))
            return ": '" + setting.value + "' was taken for the value of " + setting.name;
    return "";
}

ExitCode check_work(const Work &work)
{
    const SolveRequest &request = work.request;
    if (work.models.empty())
        return report_usage("no model file given" + swallowed_model(work) +
                            "; see tarvex --help");
    if (!request.start.empty() && file_kind(request.start) != FileKind::START)
        return report_usage("--start '" + request.start +
                            "': a start is a basis (.bas) or a MIP start (.mst)");
    if (std::count(work.models.begin(), work.models.end(), STANDARD_INPUT) > 1)
        return report_usage("standard input ('-') can be read once only");
    if (work.json_file == STANDARD_INPUT && request.solution)
        return report_usage(
            "--solution and --json - both print: write one of them to a file");
    return EXIT_SOLVED;
}

// A conversion solves nothing, so nothing may be asked for that a solve gives.
ExitCode check_convert(const Work &work)
{
    const SolveRequest &request = work.request;
    if (work.models.size() != 2)
        return report_usage("--convert takes two files: the model, and the file to write");
    const std::string &target = work.models[1];
    if (file_kind(target) == FileKind::IIS)
        return report_usage("--convert to '" + target +
                            "': what makes a model infeasible (IIS) cannot be written yet");
    if (file_kind(target) != FileKind::MODEL)
        return report_usage("--convert to '" + target +
                            "': end the name in .mps, .rew, .lp or .rlp");
    if (!request.start.empty() || request.solution || !request.solution_file.empty() ||
        !request.results.empty() || !work.json_file.empty())
        return report_usage(
            "--convert does not solve: leave out --start, --solution, --json and "
            "ResultFile");
    return check_folder("--convert to '", target);
}

ExitCode check_results(const Work &work)
{
    const SolveRequest &request = work.request;
    if (work.models.size() > 1 &&
        (!request.results.empty() || !request.solution_file.empty()))
        return report_usage(
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

bool is_log_file(const std::string &name)
{
    return name_key(name) == "logfile";
}

// Refuses to write what is read, and one file twice. tarvex.env has been read by now, and its log file is open.
ExitCode check_files(TVXenv *env, const Arguments &arguments, const Work &work,
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
        if (!fault.empty()) return report_usage(fault);
    return EXIT_SOLVED;
}

// Every file is tried, and every failure reported.
ExitCode clear_outputs(const std::vector<std::string> &files)
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

// Result files that only a solve can make: an older one must not pass for the result of this call, whatever ends it.
// Other kinds hold the model and the parameters, which are what they are without a solve.
std::vector<std::string> results_of_solve(const Work &work)
{
    std::vector<std::string> files;
    for (const std::string &file : work.request.results)
        if (is_result_of_solve(file)) files.push_back(file);
    return files;
}

ExitCode clear_all(const Work &work)
{
    std::vector<std::string> files = results_of_solve(work);
    if (!work.request.solution_file.empty()) files.push_back(work.request.solution_file);
    if (!work.json_file.empty() && work.json_file != STANDARD_INPUT)
        files.push_back(work.json_file);
    return clear_outputs(files);
}

// ---- The parameters ----

enum class Which { OUTPUT_FLAG, VALUES, ALL }; // VALUES: all but those that open a file

bool is_among(const std::string &name, Which which)
{
    if (which == Which::OUTPUT_FLAG) return name_key(name) == "outputflag";
    return which == Which::ALL || !is_log_file(name);
}

ExitCode apply_settings(TVXenv *env, const Work &work, Which which)
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
ExitCode check_settings(TVXenv *env, const Work &work)
{
    if (const ExitCode code = apply_settings(env, work, Which::OUTPUT_FLAG)) return code;
    return apply_settings(env, work, Which::VALUES);
}

// The parameter files, and over them the words of the command line once more.
ExitCode configure(TVXenv *env, const Arguments &arguments, const Work &work,
                   FileUse *files)
{
    for (const std::string &file : arguments.param_files)
        if (const ExitCode code = parameter_file_set(env, file, files)) return code;
    if (const ExitCode code = apply_settings(env, work, Which::OUTPUT_FLAG)) return code;
    return apply_settings(env, work, Which::ALL);
}

// A result file that a parameter file names is written like those of the command line, which win over it; an empty name
// asks for none.
void take_result_file(TVXenv *env, Work *work)
{
    char file[TVX_PARAM_LENGTH + 1] = "";
    TVXgetstrparam(env, "ResultFile", file);
    TVXsetstrparam(env, "ResultFile", "");
    if (*file) work->request.results.emplace_back(file);
}

// The same checks for the result file that tarvex.env or a parameter file asks for; the command line names none then.
ExitCode take_named_result(TVXenv *env, Work *work, FileUse *files)
{
    take_result_file(env, work);
    if (const ExitCode code = check_results(*work)) return code;
    for (const std::string &file : work->request.results) {
        const std::string fault = files->writes("ResultFile", file, Output::RESULT);
        if (!fault.empty()) return report_usage(fault);
    }
    return clear_outputs(results_of_solve(*work));
}
} // namespace

// ---- All of it ----

ExitCode work_sort(const Arguments &arguments, Work *work)
{
    if (const ExitCode code = sort_words(arguments, work)) return code;
    if (const ExitCode code = take_options(arguments, work)) return code;
    if (const ExitCode code = check_work(*work)) return code;
    return work->convert ? check_convert(*work) : check_results(*work);
}

ExitCode work_prepare(TVXenv *env, const Arguments &arguments, Work *work)
{
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
