// arguments.cpp -- the command line as text
//
// Options are parsed by CLI11. Everything else is collected in order as words; which of them are parameters is
// decided later, when the library can be asked for their names.
#include "arguments.h"
#include "tarvex.h"
#include <CLI/CLI.hpp>

static constexpr const char *DESCRIPTION =
    "Solves linear programs.\n"
    "\n"
    "MODEL is a file in MPS (.mps, .rew) or LP format (.lp, .rlp, .ilp), also compressed "
    "(.gz,\n.bz2). Several models are solved in turn.\n"
    "Name=Value sets a parameter, for example TimeLimit=60 Threads=1 LPMethod=0 "
    "LogFile=run.log.\n"
    "ResultFile=NAME writes the result after the solve: .sol, .bas, .mst, .mps, .rew, "
    ".lp,\n.rlp or .prm; may be repeated.\n";
static constexpr const char *CLOSING =
    "A file whose name holds a '=' is written with its folder: ./a=b.mps\n"
    "OutputFlag=0 prints nothing but what an option asks for, not even errors.\n"
    "Exit code: 0 solved or stopped at a limit, 1 an error was reported, 2 wrong usage, "
    "130 interrupted (Ctrl-C, SIGTERM).";

static std::string version_text()
{
    int major = 0;
    int minor = 0;
    int technical = 0;
    TVXversion(&major, &minor, &technical);
    return "Tarvex " + std::to_string(major) + "." + std::to_string(minor) + "." +
           std::to_string(technical) + " (" + TVXplatform() + ")";
}

Parsed arguments_parse(int argc, char **argv, Arguments *arguments, std::string *error)
{
    CLI::App app(DESCRIPTION, "tarvex");
    app.footer(CLOSING);
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    app.set_help_flag("-h,--help", "Print this text and exit");
    app.set_version_flag("--version", version_text(), "Print the version and exit");
    app.add_option("words", arguments->words, "Parameters and model files, in any order")
        ->type_name("[Name=Value ...] MODEL ...");
    app.add_option("--start", arguments->start,
                   "Start from this basis (.bas) or MIP start (.mst)")
        ->type_name("FILE");
    app.add_option("--params", arguments->param_files,
                   "Read parameters from this file; Name=Value wins over it")
        ->type_name("FILE")
        ->allow_extra_args(false)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--solution", arguments->solution,
                 "Print the variables that are not zero, by name");
    app.add_flag("--parameters", arguments->list_parameters,
                 "List all parameters with type, range and default, and exit");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &e) {
        if (e.get_exit_code() == 0) {
            app.exit(e);
            return Parsed::DONE;
        }
        *error = e.what();
        return Parsed::WRONG;
    }
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

static char small_letter(char c)
{
    return static_cast<char>('A' <= c && c <= 'Z' ? c - 'A' + 'a' : c);
}

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
    for (const std::string_view suffix : {".mps", ".rew", ".lp", ".rlp", ".ilp"})
        if (stem.ends_with(suffix)) return FileKind::MODEL;
    if (stem.ends_with(".sol")) return FileKind::SOLUTION;
    if (stem.ends_with(".prm")) return FileKind::PARAMETERS;
    return FileKind::UNKNOWN;
}
