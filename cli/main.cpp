// main.cpp -- the command `tarvex`
//
// In order: silence if the words ask for it; the command line, refused for what its words alone show; an environment
// (which reads tarvex.env and may begin a log); files and values; OutputFlag, so that a parameter file is read as
// silently as asked; outputs of an earlier call are removed; parameter files; the other parameters; each model in turn;
// the JSON file. What is wrong with the command line itself is found before anything is removed or a model is read and
// gives exit code 2; a model that fails does not keep the next from being solved.
#include "arguments.h"
#include "attributes.h"
#include "json_result.h"
#include "option_words.h"
#include "parameters.h"
#include "report.h"
#include "runtime/file.h"
#include "silence.h"
#include "solve.h"
#include "work.h"
#include <cstdio>
#include <exception>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <memory>

namespace
{
struct FreeEnv {
    void operator()(TVXenv *env) const { TVXfreeenv(env); }
};
using OwnedEnv = std::unique_ptr<TVXenv, FreeEnv>;

// The environment, or null after a report.
OwnedEnv load_env(bool silent)
{
    TVXenv *loaded = nullptr;
    const SilentScope scope(stdout, silent); // tarvex.env tells what it sets
    if (const int code = TVXloadenv(&loaded, nullptr))
        report_error("cannot start: " + describe_failure(code, nullptr));
    return OwnedEnv(loaded);
}

// What --parameters and --attributes ask for: all about each word, or without words the list.
ExitCode describe(TVXenv *env, const Arguments &arguments)
{
    const bool attributes = arguments.list_attributes;
    if (arguments.words.empty()) (attributes ? attributes_list : parameters_list)(env);
    ExitCode worst = EXIT_SOLVED;
    for (const std::string &word : arguments.words) {
        const auto tell = attributes ? attribute_describe : parameter_describe;
        const ExitCode code = tell(env, word);
        if (code != EXIT_SOLVED) worst = code;
    }
    return worst;
}

// out: standard output as it was, when the JSON goes there; else null.
ExitCode write_json(const Work &work, const std::vector<std::string> &objects, FILE *out)
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
ExitCode solve_all(TVXenv *env, const Work &work, std::vector<std::string> *objects)
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

ExitCode run(const Arguments &arguments, bool silent)
{
    FILE *json_out = arguments.json_file == STANDARD_INPUT ? divert_output() : nullptr;
    if (!json_out && arguments.json_file == STANDARD_INPUT) {
        report_error("--json -: standard output is closed");
        return EXIT_ERROR;
    }
    Work work;
    const bool describing = arguments.list_parameters || arguments.list_attributes;
    if (!describing)
        if (const ExitCode code = work_sort(arguments, &work)) return code;
    const OwnedEnv env = load_env(silent || describing);
    if (!env) return EXIT_ERROR;
    if (describing) return describe(env.get(), arguments);
    if (const ExitCode code = work_prepare(env.get(), arguments, &work)) return code;
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

ExitCode parse_and_run(int argc, char **argv)
{
    Arguments arguments;
    std::string error;
    const std::vector<std::string> words = option_words(argc, argv, &error);
    const bool silent = silence_wanted(words);
    if (silent) silence(stderr);
    if (!error.empty()) return report_usage(error + "; see tarvex --help");
    switch (arguments_parse(words, &arguments, &error)) {
    case Parsed::DONE:
        return EXIT_SOLVED;
    case Parsed::WRONG:
        return report_usage(error + "; see tarvex --help");
    default: // Parsed::OK
        return run(arguments, silent);
    }
}

// A solve allocates and frees large arrays many times. Pages returned to the system in between would be cleared by it
// again.
void keep_memory()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, 32 << 20); // the largest that takes effect
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
#endif
}
} // namespace

int main(int argc, char **argv)
{
    try {
        keep_memory();
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
