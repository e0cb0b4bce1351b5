// mip_start_file.cpp -- MIP starts as text files (".mst")
//
// Form        A line for each variable: name and value. Lines that begin with '#' are comments. The name is all before
//             the last field when that is a name of the model (it may hold blanks), else the first field.
//             A variable whose name begins like a comment goes by its number.
// Invariant   Values are returned for all variables that the file names, or, on failure, for none.
#include "files/file_names.h"
#include "files/file_number.h"
#include "files/files.h"
#include "files/text_file.h"
#include "files/text_out.h"
#include "runtime/text_number.h"

namespace
{
int problem(TVXenv *env, int error)
{
    return fail(env, error, Report::KEEP_FIRST, "Problem reading MIP start");
}

bool is_no_comment(const char *name)
{
    return *name != '#';
}

int choose_names(const ModelBody *body, FileNames *names)
{
    return file_names_choose(names, body, FileNameKind::VARIABLE, true, is_no_comment);
}

// ---- Reading ----

struct StartReader {
    TVXenv *env;
    FileNames names;
    FileNameIndex index;
    StartValues *values;
    int64_t n_unknown; // names of no variable of the model
};

int bad_line(StartReader *reader, int64_t number, TextSpan line)
{
    static constexpr int SHOWN = 128;
    char shown[SHOWN];
    text_printable(shown, SHOWN, line);
    TVXmsg(reader->env, "Error at line %lld of MIP start:\n%s\n",
           static_cast<long long>(number), shown);
    return fail(reader->env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                "MIP start: name and value expected at line %lld:\n%s",
                static_cast<long long>(number), shown);
}

int unknown_variable(StartReader *reader, TextSpan name)
{
    static constexpr int SHOWN = 128;
    static constexpr int64_t UNKNOWN_SHOWN = 100; // another model's must not flood the log
    char shown[SHOWN];
    text_printable(shown, SHOWN, name);
    if (reader->n_unknown++ < UNKNOWN_SHOWN)
        TVXmsg(reader->env, "Unknown variable '%s' in MIP start - ignored\n", shown);
    return 0;
}

int start_line(StartReader *reader, int64_t number, TextSpan line)
{
    line = span_trim(line.begin, line.end);
    if (span_empty(line) || *line.begin == '#') return 0;
    const char *last = line.end;
    while (last > line.begin && !is_white(last[-1])) last--;
    TextSpan name = span_trim(line.begin, last);
    TextSpan field = {last, line.end};
    int j = file_index_find(&reader->index, name.begin, span_length(name));
    if (j < 0) { // more text after name and value
        name.end = skip_word(line.begin, line.end);
        name.begin = line.begin;
        field = span_trim(name.end, line.end);
        field.end = skip_word(field.begin, field.end);
        j = file_index_find(&reader->index, name.begin, span_length(name));
    }
    double value = 0.0;
    if (number_read(field, &value) != NumberKind::FINITE)
        return bad_line(reader, number, line);
    if (j < 0) return unknown_variable(reader, name);
    TRY(array_append(&reader->values->var, j));
    return array_append(&reader->values->value, value);
}

int walk_lines(StartReader *reader, TextFile *text)
{
    TextSpan line;
    for (;;) {
        const TextStep step = text_next(text, &line);
        if (step == TextStep::END) break;
        if (step == TextStep::BINARY)
            return fail(reader->env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                        "MIP start: control character in line %lld, this is no text "
                        "file",
                        static_cast<long long>(text->line));
        TRY(start_line(reader, text->line, line));
    }
    if (reader->n_unknown)
        TVXmsg(reader->env, "%lld unknown variables in MIP start\n",
               static_cast<long long>(reader->n_unknown));
    return 0;
}

int read_text(const ModelBody *body, TVXenv *env, TextFile *text, StartValues *values)
{
    StartReader reader{};
    reader.env = env;
    reader.values = values;
    TRY(choose_names(body, &reader.names));
    TRY(file_index_make(&reader.index, &reader.names));
    const int error = walk_lines(&reader, text);
    file_index_free(&reader.index);
    return error;
}
} // namespace

int mip_start_read(const ModelBody *body, TVXenv *env, const char *file_name,
                   StartValues *values)
{
    TextFile text;
    const TextLoad result = text_load(file_name, &text);
    if (result == TextLoad::NOT_FOUND)
        return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                    "Unable to open file '%s' for input", file_name);
    TRY(text_load_failed(env, file_name, result));
    const int error = read_text(body, env, &text, values);
    if (!error) return 0;
    *values = StartValues{};
    return problem(env, error);
}

// ---- Writing ----

namespace
{
void write_values(const ModelBody *body, const FileNames *names, const double *x,
                  TextOut *out)
{
    char name[FILE_NAME_LENGTH];
    char number[NUMBER_LENGTH];
    text_out(out, "# MIP start\n");
    for (int j = 0; j < body->numvars; j++) {
        if (!body->vtypes.size || body->vtypes.data[j] == 'C') continue;
        text_out(out, file_name(names, j, name));
        text_out(out, " ");
        text_out_bytes(out, number, number_shortest(number, x[j]));
        text_out(out, "\n");
    }
}
} // namespace

int mip_start_write(const ModelBody *body, TVXenv *env, const double *x,
                    const char *file_name)
{
    FileNames names;
    TRY(choose_names(body, &names));
    TextOut out;
    TRY(text_out_open(&out, env, file_name));
    write_values(body, &names, x, &out);
    return text_out_close(&out);
}
