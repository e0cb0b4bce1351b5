// arguments.h -- the command line as text
#pragma once
#include <string>
#include <vector>

// What the caller asked for.
struct Arguments {
    std::vector<std::string> words;       // Name=Value and model files, in the order given
    std::vector<std::string> param_files; // --params, in order
    std::string start;                    // --start, or empty
    std::string solution_file;            // --solution=FILE, or empty
    std::string json_file;                // --json, or empty; "-" is standard output
    std::string format;                   // --format, or empty
    bool solution = false;                // --solution
    bool ranging = false;                 // --ranging
    bool convert = false;                 // --convert
    bool maximise = false;                // --maximise
    bool minimise = false;                // --minimise
    bool list_parameters = false;         // --parameters
    bool list_attributes = false;         // --attributes
};

enum class Parsed { OK, DONE, WRONG };
// The words come from option_words. DONE: --help or --version was answered. WRONG: the reason stands in *error.
Parsed arguments_parse(const std::vector<std::string> &words, Arguments *arguments,
                       std::string *error);

// One word split at its first '='; false when it cannot be a parameter: no '=', nothing before it, or a slash
// before it, so that ./a=b.mps is always a file.
bool split_setting(const std::string &word, std::string *name, std::string *value);

// The form in which names of parameters are compared: without regard to case and inner underscores.
std::string name_key(const std::string &name);

// What a file name says by its suffix, in any case and with a compression suffix left aside.
// IIS: what makes a model infeasible; read like a model, but not written yet.
enum class FileKind { MODEL, IIS, START, SOLUTION, PARAMETERS, UNKNOWN };
FileKind file_kind(const std::string &name);
