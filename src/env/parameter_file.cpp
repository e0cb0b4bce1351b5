// parameter_file.cpp -- parameter files: one "name value" a line
//
// Problem     Set parameters from a text file, tell the user what was set, and write the values that are not default.
// Method      Lines of at most 159 characters; what is longer comes as a line of its own, but for comments: lines that
//             start with #, of any length. A blank line is nothing. The second word is a number when all of it is one.
//             Unknown names are warnings and bad values are told line by line: reading goes on to the end of the file,
//             or to a character that no text holds.
// In, out     Values go through the setters of parameters.h, with their ranges.
#include "env/parameters.h"
#include "runtime/file.h"
#include "runtime/text_number.h"
#include <cmath>
#include <cstring>

namespace
{
constexpr int LINE_LENGTH = 159; // characters of a file that are taken at once
} // namespace

static_assert(LINE_LENGTH <= PARAMETER_LINE);

namespace
{
// White space of the "C" locale.
bool is_space(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// Length of the word that starts at *text after white space; *text moves to it.
int next_word(const char **text)
{
    while (is_space(**text)) ++*text;
    int length = 0;
    while ((*text)[length] && !is_space((*text)[length])) length++;
    return length;
}

void copy_word(char *target, const char *word, int length)
{
    const int kept = length < PARAMETER_LINE ? length : PARAMETER_LINE;
    memcpy(target, word, static_cast<size_t>(kept));
    target[kept] = '\0';
}
} // namespace

bool parameter_line_scan(const char *line, ParameterLine *scanned)
{
    scanned->text[0] = '\0';
    scanned->numeric = false;
    const char *word = line;
    int length = next_word(&word);
    copy_word(scanned->name, word, length);
    word += length;
    length = next_word(&word);
    const char *end = word;
    scanned->numeric = text_to_double(word, &end, &scanned->number) == 0 &&
                       end == word + length && !std::isnan(scanned->number);
    if (!scanned->numeric) copy_word(scanned->text, word, length);
    return scanned->name[0] != '\0';
}

namespace
{
int set_from_line(TVXenv *env, const ParameterRow *row, const ParameterLine *line)
{
    if (row->type == PARAMETER_INT && line->numeric)
        return parameter_set_int(env, row, line->number);
    if (row->type == PARAMETER_DBL && line->numeric)
        return parameter_set_dbl(env, row, line->number);
    if (row->type == PARAMETER_STR) return parameter_set_text(env, row, line->text);
    return TVX_ERROR_INVALID_ARGUMENT;
}

// ---- Reading ----

enum class LineStep { LINE, END, BINARY };

// The next line without its end, or LINE_LENGTH characters of a longer one. Of a comment only the start.
LineStep next_line(FILE *stream, char *text)
{
    static constexpr int DOS_END = 26; // the old end-of-file character
    int length = 0;
    int c = getc(stream);
    if (c == EOF) return LineStep::END;
    for (; c != EOF && c != '\n' && c != '\r' && c != DOS_END; c = getc(stream)) {
        if (c < ' ' && !is_space(static_cast<char>(c))) return LineStep::BINARY;
        if (length < LINE_LENGTH) {
            text[length++] = static_cast<char>(c);
        } else if (text[0] != '#') {
            ungetc(c, stream);
            break;
        }
    }
    text[length] = '\0';
    if (c != '\r') return LineStep::LINE;
    c = getc(stream);
    if (c != '\n') ungetc(c, stream); // EOF is not put back
    return LineStep::LINE;
}

// The text behind a byte-order mark of UTF-8, which can only stand at the very beginning.
const char *behind_mark(const char *text)
{
    static constexpr char MARK[] = "\xef\xbb\xbf";
    return strncmp(text, MARK, sizeof MARK - 1) ? text : text + sizeof MARK - 1;
}

// One line that is no comment. False when the name is unknown.
bool read_line(TVXenv *env, const char *file_name, const char *text)
{
    ParameterLine line;
    if (!parameter_line_scan(text, &line)) return true; // blank
    const ParameterRow *row = parameter_find(env, line.name);
    if (!row) {
        TVXmsg(env, "Warning: unknown parameter %s in %s\n", line.name, file_name);
        return false;
    }
    const char *outcome = set_from_line(env, row, &line) ? "Failed to set" : "Set";
    if (line.numeric)
        TVXmsg(env, "%s parameter %s to value %g\n", outcome, line.name, line.number);
    else
        TVXmsg(env, "%s parameter %s to value %s\n", outcome, line.name, line.text);
    return true;
}
} // namespace

int parameters_read(TVXenv *env, const char *file_name)
{
    FileHandle file;
    if (FileOpen(file_name, 'r', &file))
        return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::FORCE,
                    "Unable to read parameter file %s", file_name);
    char text[LINE_LENGTH + 1] = "";
    int warnings = 0;
    LineStep step = LineStep::LINE;
    int line = 1;
    for (; (step = next_line(file.stream, text)) == LineStep::LINE; line++) {
        const char *content = line == 1 ? behind_mark(text) : text;
        if (*content != '#' && !read_line(env, file_name, content)) warnings++;
    }
    if (warnings)
        TVXmsg(env, "%d warnings while reading parameter file %s\n", warnings, file_name);
    if (FileClose(&file))
        return fail(env, TVX_ERROR_FILE_READ, Report::FORCE,
                    "Unable to read parameter file %s", file_name);
    if (step == LineStep::BINARY)
        return fail(env, TVX_ERROR_FILE_READ, Report::FORCE,
                    "Parameter file %s is no text file: control character in line %d",
                    file_name, line);
    return 0;
}

// ---- Writing ----

namespace
{
void write_row(TVXenv *env, const ParameterRow *row, FILE *stream)
{
    if (row->no_write) return;
    if (row->type == PARAMETER_INT) {
        const int value = *parameter_int(env, row);
        if (value != static_cast<int>(row->default_value))
            text_print(stream, "%s  %d\n", row->name, value);
    } else if (row->type == PARAMETER_DBL) {
        const double value = *parameter_dbl(env, row);
        if (value != row->default_value) // exact: the default was stored, not computed
            text_print(stream, "%s  %g\n", row->name, value);
    }
}
} // namespace

int parameters_write(TVXenv *env, const char *file_name)
{
    FileHandle file;
    if (FileOpen(file_name, 'w', &file))
        return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::FORCE,
                    "Unable to write to parameter file %s", file_name);
    for (const ParameterRow &row : env->params->rows) write_row(env, &row, file.stream);
    if (FileClose(&file)) {
        return fail(env, TVX_ERROR_FILE_WRITE, Report::FORCE,
                    "Unable to write to parameter file %s", file_name);
    }
    return 0;
}
