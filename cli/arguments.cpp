// arguments.cpp -- the command line as text
//
// Options are parsed by CLI11. Everything else is collected in order as words; which of them are parameters is
// decided later, when the library can be asked for their names.
#include "arguments.h"
#include "near_miss.h"
#include "option_words.h"
#include "tarvex.h"
#include <CLI/CLI.hpp>
#include <algorithm>

namespace
{
constexpr const char *DESCRIPTION =
    "Solves linear and mixed-integer programs.\n"
    "\n"
    "MODEL is a file in MPS (.mps, .rew) or LP format (.lp, .rlp, .ilp), also compressed "
    "(.gz,\n.bz2), or - for standard input. Several models are solved in turn.\n"
    "Name=Value sets a parameter, for example TimeLimit=60 Threads=1 LPMethod=dual "
    "Presolve=off\nLogFile=run.log. Every parameter is an option as well: --time-limit 60 "
    "--lp-method dual;\n--method and --quiet are short for --lp-method and OutputFlag=0.\n"
    "ResultFile=NAME writes the result after the solve: .sol, .bas, .mst, .mps, .rew, "
    ".lp,\n.rlp or .prm; may be repeated.\n";
constexpr const char *CLOSING =
    "A file whose name holds a '=' is written with its folder: ./a=b.mps\n"
    "OutputFlag=0 prints nothing but what an option asks for, not even errors.\n"
    "Exit code: 0 solved or stopped at a limit, 1 an error, 2 wrong usage, "
    "130 interrupted (Ctrl-C, SIGTERM).";

std::string version_text()
{
    int major = 0;
    int minor = 0;
    int technical = 0;
    TVXversion(&major, &minor, &technical);
    return "Tarvex " + std::to_string(major) + "." + std::to_string(minor) + "." +
           std::to_string(technical) + " (" + TVXplatform() + ")";
}

void add_answers(CLI::App *app, Arguments *arguments)
{
    app->add_flag(
        "--solution", arguments->solution,
        "Print the variables that are not zero, by name; --solution=FILE writes all\n"
        "values, prices and the basis");
    app->add_option("--solution-file", arguments->solution_file, "As --solution=FILE")
        ->type_name("FILE");
    app->add_flag("--ranging", arguments->ranging,
                  "With --solution=FILE: also the sensitivity ranges");
    app->add_option(
           "--json", arguments->json_file,
           "Write status, objective and figures of the solve as JSON; - writes them to\n"
           "standard output, and the log to standard error")
        ->type_name("FILE");
    app->add_flag("--convert", arguments->convert,
                  "Write the first file as the second one, without solving");
    CLI::Option *parameters = app->add_flag(
        "--parameters", arguments->list_parameters,
        "List all parameters with type, range and default, or tell all about those\n"
        "that are named behind it, and exit");
    app->add_flag(
           "--attributes", arguments->list_attributes,
           "The same for the attributes of models: type, of what, whether one can be set")
        ->excludes(parameters);
}

void add_inputs(CLI::App *app, Arguments *arguments)
{
    // For the help text alone; see options_of.
    app->add_option("words", arguments->words, "Parameters and model files, in any order")
        ->type_name("[Name=Value ...] MODEL ...");
    app->add_option("--start", arguments->start,
                    "Start from this basis (.bas) or MIP start (.mst)")
        ->type_name("FILE");
    app->add_option("--params", arguments->param_files,
                    "Read parameters from this file; Name=Value wins over it")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app->add_option("--format", arguments->format,
                    "The format of standard input, where its text does not tell")
        ->type_name("mps|lp");
    CLI::Option *most = app->add_flag("--maximise,--maximize", arguments->maximise,
                                      "Maximise, whatever the model says");
    app->add_flag("--minimise,--minimize", arguments->minimise,
                  "Minimise, whatever the model says")
        ->excludes(most);
}

// The first of the words left over that looks like an option, with what may have been meant.
std::string unknown_option(const CLI::App &app)
{
    std::vector<std::string> known;
    for (const CLI::Option *option : app.get_options())
        for (const std::string &name : option->get_lnames()) known.push_back("--" + name);
    for (const std::string &name : parameter_names())
        known.push_back(parameter_option(name));
    known.insert(known.end(), {"--method", "--quiet"});
    for (const std::string &word : app.remaining()) {
        if (!word.starts_with("-")) continue;
        return "there is no option '" + word + "'" +
               nearest_hint(word.substr(0, word.find('=')), known);
    }
    return "";
}

// --solution=FILE is two things at once to the parser: a flag, and a file.
std::string name_solution_file(const std::string &word)
{
    static constexpr std::string_view FLAG = "--solution=";
    if (!word.starts_with(FLAG)) return word;
    return "--solution-file=" + word.substr(FLAG.size());
}

// What stands beside --parameters or --attributes although they take names alone.
std::string not_a_name(const CLI::App &app, const std::vector<std::string> &others)
{
    for (const CLI::Option *option : app.get_options()) {
        const std::string name = option->get_name();
        if (option->count() > 0 && name != "--parameters" && name != "--attributes")
            return name;
    }
    for (const std::string &word : others)
        if (word.find('=') != std::string::npos) return word;
    return "";
}

// "--maximise=false" would be read as the opposite of what stands in front of it.
bool is_flag_with_value(const CLI::App &app, const std::string &word)
{
    const size_t equals = word.find('=');
    if (equals == std::string::npos) return false;
    const CLI::Option *option = app.get_option_no_throw(word.substr(0, equals));
    return option && option->get_items_expected_max() == 0;
}

// The options for the parser; all other words go to *others as they stand, for the parser would take "[a.lp]" apart.
std::vector<std::string> options_of(const std::vector<std::string> &words,
                                    std::vector<std::string> *others)
{
    std::vector<std::string> options;
    bool all_words = false; // behind "--"
    for (const std::string &word : words) {
        if (all_words || !word.starts_with("-") || word == "-")
            others->push_back(word);
        else if (word == "--")
            all_words = true;
        else
            options.push_back(name_solution_file(word));
    }
    return options;
}
} // namespace

Parsed arguments_parse(const std::vector<std::string> &words, Arguments *arguments,
                       std::string *error)
{
    CLI::App app(DESCRIPTION, "tarvex");
    app.footer(CLOSING);
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.set_version_flag("--version", version_text(), "Print the version and exit");
    add_inputs(&app, arguments);
    add_answers(&app, arguments);
    std::vector<std::string> others;
    std::vector<std::string> options = options_of(words, &others);
    for (const std::string &option : options)
        if (is_flag_with_value(app, option)) {
            *error = "'" + option + "': this option takes no value";
            return Parsed::WRONG;
        }
    for (const std::string &word : others)
        if (word.empty()) {
            *error = "an empty word ('') names no file";
            return Parsed::WRONG;
        }
    std::reverse(options.begin(),
                 options.end()); // the last one first, as the parser wants them
    try {
        app.parse(std::move(options));
    } catch (const CLI::ParseError &e) {
        if (e.get_exit_code() == 0) {
            app.exit(e);
            return Parsed::DONE;
        }
        *error = unknown_option(app);
        if (error->empty()) *error = e.what();
        return Parsed::WRONG;
    }
    if (arguments->list_parameters || arguments->list_attributes)
        if (const std::string odd = not_a_name(app, others); !odd.empty()) {
            *error = "--parameters and --attributes take names, not '" + odd + "'";
            return Parsed::WRONG;
        }
    arguments->words = others;
    return Parsed::OK;
}

bool split_setting(const std::string &word, std::string *name, std::string *value)
{
    const size_t equals = word.find('=');
    if (equals == std::string::npos || equals == 0 || word.find('/') < equals) return false;
    *name = word.substr(0, equals);
    *value = word.substr(equals + 1);
    return true;
}

namespace
{
char small_letter(char c)
{
    return static_cast<char>('A' <= c && c <= 'Z' ? c - 'A' + 'a' : c);
}
} // namespace

std::string name_key(const std::string &name)
{
    std::string key;
    for (const char c : name)
        if (c != '_' || key.find_first_not_of('_') == std::string::npos)
            key += small_letter(c);
    return key;
}

FileKind file_kind(const std::string &name)
{
    std::string small = name;
    for (char &c : small) c = small_letter(c);
    std::string_view stem = small;
    for (const std::string_view packed : {".gz", ".bz2"})
        if (stem.ends_with(packed)) {
            stem.remove_suffix(packed.size());
            break;
        }
    for (const std::string_view suffix : {".bas", ".mst"})
        if (stem.ends_with(suffix)) return FileKind::START;
    for (const std::string_view suffix : {".mps", ".rew", ".lp", ".rlp"})
        if (stem.ends_with(suffix)) return FileKind::MODEL;
    if (stem.ends_with(".ilp")) return FileKind::IIS;
    if (stem.ends_with(".sol")) return FileKind::SOLUTION;
    if (stem.ends_with(".prm")) return FileKind::PARAMETERS;
    return FileKind::UNKNOWN;
}
