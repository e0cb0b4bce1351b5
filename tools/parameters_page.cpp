// parameters_page.cpp -- writes docs/parameters.md from the tables of parameters
//
//   parameters_page          the page
//   parameters_page --uses   each name and whether anything reads it: "Cutoff used", "NodeLimit unused"
#include "env/parameter_table.h"
#include "env/parameter_texts.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

struct Row {
    std::string name, type, range, usual;
    double minimum = 0, maximum = 0; // of numbers
};

static std::string number(double value)
{
    char text[32];
    snprintf(text, sizeof text, "%.10g", value);
    return text;
}

static std::string range(double minimum, double maximum)
{
    return number(minimum) + " to " + number(maximum);
}

static std::string quoted(const char *text)
{
    return *text ? "`" + std::string(text) + "`" : "empty";
}

#define INT_ROW(name, minimum, maximum, usual)                                             \
    {#name, "int", range(minimum, maximum), number(usual), minimum, maximum},
#define DBL_ROW(name, minimum, maximum, usual)                                             \
    {#name, "double", range(minimum, maximum), number(usual), minimum, maximum},
#define STR_ROW(name, usual) {#name, "string", "", quoted(usual), 0, 0},
static const Row public_rows[] = {PUBLIC_PARAMETERS(INT_ROW, DBL_ROW, STR_ROW)};
static const Row hidden_rows[] = {HIDDEN_PARAMETERS(INT_ROW, DBL_ROW, STR_ROW)};

static const ParameterText *find_text(const std::string &name)
{
    for (const ParameterText &text : parameter_texts::rows)
        if (name == text.name) return &text;
    return nullptr;
}

static const char *const HEAD =
    "# Parameters\n"
    "\n"
    "Made from the tables of the library by `make docs`; `tarvex --parameters NAME` tells "
    "the same of one parameter.\n"
    "\n"
    "- From C: `TVXsetintparam(env, \"Presolve\", 0)` and its like, on the environment of "
    "a model (`TVXgetenv`) for that\n"
    "  model alone.\n"
    "- On the command line: `tarvex Presolve=0 plan.mps`, or `tarvex --presolve off "
    "plan.mps`. Words for values, such as\n"
    "  `off`, belong to the command line and its `--params` files; elsewhere they are "
    "numbers.\n"
    "- In a file with lines `Presolve 0`: `tarvex.env` in the current folder, "
    "`TVXreadparams`, `tarvex --params`.\n"
    "\n"
    "Case and inner underscores of a name do not matter. A value of 1e100, or of "
    "2000000000, means no limit where a limit is\n"
    "meant. What is *not used yet* can be set and read and changes nothing.\n";

static const char *const HIDDEN_HEAD =
    "\n"
    "## For experts\n"
    "\n"
    "Not in the list of `TVXgetparamname`, known by their full name only. They are for "
    "finding causes, may change from version "
    "to\n"
    "version, and the defaults are nearly always best.\n"
    "\n"
    "| Name | Type | Range | Default | What it does |\n"
    "|---|---|---|---|---|\n";

// "auto=-1 off=0" as "`auto` (-1), `off` (0)".
static std::string word_list(const char *words)
{
    std::string list;
    for (const char *at = words; *at;) {
        const size_t length = strcspn(at, " ");
        const std::string pair(at, length);
        const size_t equals = pair.find('=');
        if (!list.empty()) list += ", ";
        list += "`" + pair.substr(0, equals) + "` (" + pair.substr(equals + 1) + ")";
        at += length + (at[length] == ' ');
    }
    return list;
}

static void print_public(const Row &row, const ParameterText &text)
{
    // The number of processors takes the place of the default in the table.
    const bool threads = row.name == "Threads";
    printf("\n## %s\n\n*%s%s%s, default %s.*%s %s\n", row.name.c_str(), row.type.c_str(),
           row.range.empty() ? "" : ", ", row.range.c_str(),
           threads ? "the number of processors" : row.usual.c_str(),
           text.use == ParameterUse::NOT_YET ? " **Not used yet.**" : "", text.does);
    if (*text.when) printf("\nWhen to change it: %s\n", text.when);
    if (*text.words) printf("\nWords: %s.\n", word_list(text.words).c_str());
}

static void print_hidden(const Row &row, const ParameterText &text)
{
    printf("| `%s` | %s | %s | %s | %s%s%s%s |\n", row.name.c_str(), row.type.c_str(),
           row.range.c_str(), row.usual.c_str(),
           text.use == ParameterUse::NOT_YET ? "**Not used yet.** " : "", text.does,
           *text.when ? " When to change it: " : "", text.when);
}

// Whether every word of "auto=-1 off=0" stands for a value that the parameter can have.
static bool words_in_range(const Row &row, const char *words)
{
    for (const char *at = words; (at = strchr(at, '=')) != nullptr;) {
        const double value = strtod(++at, nullptr);
        if (value < row.minimum || value > row.maximum) return false;
    }
    return true;
}

// Prints each row of a part; false, with a message, when a text is missing.
template<size_t count>
static bool print_rows(const Row (&rows)[count],
                       void (*print)(const Row &row, const ParameterText &text))
{
    for (const Row &row : rows) {
        const ParameterText *text = find_text(row.name);
        if (!text) {
            fprintf(stderr, "parameter_texts.h says nothing of %s\n", row.name.c_str());
            return false;
        }
        if (!words_in_range(row, text->words)) {
            fprintf(stderr, "a word of %s is out of range\n", row.name.c_str());
            return false;
        }
        print(row, *text);
    }
    return true;
}

int main(int argc, char **argv)
{
    if (argc == 2 && strcmp(argv[1], "--uses") == 0) {
        for (const ParameterText &text : parameter_texts::rows)
            printf("%s %s\n", text.name, text.use == ParameterUse::YES ? "used" : "unused");
        return 0;
    }
    fputs(HEAD, stdout);
    if (!print_rows(public_rows, print_public)) return 1;
    fputs(HIDDEN_HEAD, stdout);
    return print_rows(hidden_rows, print_hidden) ? 0 : 1;
}
