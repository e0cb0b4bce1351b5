// basis_file.cpp -- bases as text files (".bas")
//
// Problem     Write any basis by names, so that it is read back exactly.
// Form        Lines of a key in columns 2-3 and names. Columns and rows not mentioned have their default status: rows
//             basic, columns nonbasic at their lower bound, free columns superbasic (nonbasic at 0).
//               XL, XU  column row    the column is basic, the row is not: there are as many basic columns as
//                                     nonbasic rows
//               UL      column        nonbasic at its upper bound
//               LL      column        nonbasic at its lower bound, said of free columns
//               SB      column        superbasic, said of columns that are not free
//             Lines with other keys, and lines that do not begin with a blank, are skipped; E ends the file.
// Names       With blanks in names the places of two names are found by trying which split gives two known names.
// Invariant   Statuses are returned only if the whole file was read without error.
// Literature  B. A. Murtagh, M. A. Saunders, "MINOS 5.5 User's Guide", 1998, section 5 (basis files).
#include "files/file_names.h"
#include "files/files.h"
#include "files/text_file.h"
#include "files/text_out.h"

namespace
{
bool is_free(const ModelBody *body, const TVXenv *env, int j)
{
    const double infinite = infinite_bound(env);
    return body->lb.data[j] <= -infinite && body->ub.data[j] >= infinite;
}

int default_status(const ModelBody *body, const TVXenv *env, int j)
{
    return is_free(body, env, j) ? TVX_SUPERBASIC : TVX_NONBASIC_LOWER;
}

// The names of both kinds, and a status of every column and row in the caller's form.
struct BasisWork {
    FileNames vars, constrs;
    Array<int> vbasis, cbasis;
};

int work_make(const ModelBody *body, BasisWork *work)
{
    TRY(file_names_choose(&work->vars, body, FileNameKind::VARIABLE, false));
    TRY(file_names_choose(&work->constrs, body, FileNameKind::CONSTRAINT, false));
    // Own and numbered names are compared in the same width.
    if (work->vars.wide && !work->constrs.wide)
        TRY(file_names_choose(&work->constrs, body, FileNameKind::CONSTRAINT, true));
    if (work->constrs.wide && !work->vars.wide)
        TRY(file_names_choose(&work->vars, body, FileNameKind::VARIABLE, true));
    TRY(array_resize(&work->vbasis, body->numvars));
    return array_resize(&work->cbasis, body->numconstrs);
}

// ---- Writing ----

// Some basis of the model, with as many basic columns as nonbasic rows.
bool is_balanced(const BasisWork *work)
{
    int64_t surplus = 0;
    for (const int status : work->vbasis) surplus += status == TVX_BASIC;
    for (const int status : work->cbasis) surplus -= status != TVX_BASIC;
    return surplus == 0;
}

void write_pairs(const BasisWork *work, TextOut *out)
{
    char column[FILE_NAME_LENGTH];
    char row[FILE_NAME_LENGTH];
    int i = 0;
    for (int j = 0; j < work->vbasis.size; j++) {
        if (work->vbasis.data[j] != TVX_BASIC) continue;
        while (work->cbasis.data[i] == TVX_BASIC)
            i++; // exists: as many nonbasic rows as basic columns
        text_out(out, " XL ");
        text_out_padded(out, file_name(&work->vars, j, column));
        text_out(out, "  ");
        text_out_padded(out, file_name(&work->constrs, i++, row));
        text_out(out, "\n");
    }
}

const char *key_of(int status)
{
    if (status == TVX_NONBASIC_UPPER) return " UL ";
    return status == TVX_SUPERBASIC ? " SB " : " LL ";
}

void write_lines(const ModelBody *body, const TVXenv *env, const BasisWork *work,
                 TextOut *out)
{
    char buffer[FILE_NAME_LENGTH];
    text_out(out, "NAME ");
    if (body->modelname) text_out_line(out, body->modelname);
    text_out(out, " ");
    text_out_int(out, body->numvars);
    text_out(out, " Variables ");
    text_out_int(out, body->numconstrs);
    text_out(out, " Constraints\n");
    write_pairs(work, out);
    for (int j = 0; j < work->vbasis.size; j++) {
        const int status = work->vbasis.data[j];
        if (status == TVX_BASIC || status == default_status(body, env, j)) continue;
        text_out(out, key_of(status));
        text_out_padded(out, file_name(&work->vars, j, buffer));
        text_out(out, "\n");
    }
    text_out(out, "ENDATA\n");
}
} // namespace

int basis_write(const ModelBody *body, TVXenv *env, const int *vbasis, const int *cbasis,
                const char *file_name)
{
    BasisWork work;
    TRY(work_make(body, &work));
    TRY(array_copy(&work.vbasis, vbasis, work.vbasis.size));
    TRY(array_copy(&work.cbasis, cbasis, work.cbasis.size));
    if (!is_balanced(&work)) return TVX_ERROR_DATA_NOT_AVAILABLE;
    TextOut out;
    TRY(text_out_open(&out, env, file_name));
    write_lines(body, env, &work, &out);
    return text_out_close(&out);
}

// ---- Reading ----

namespace
{
struct BasisReader {
    TVXenv *env;
    BasisWork work;
    FileNameIndex vars, constrs;
};

int unknown_name(TVXenv *env, const char *kind, TextSpan name)
{
    static constexpr int SHOWN = 80;
    char shown[SHOWN];
    text_printable(shown, SHOWN, name);
    TVXmsg(env, "Error: %s name %s doesn't exist\n", kind, shown);
    return fail(env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                "MPS reader: %s name %s doesn't exist\n", kind, shown);
}

int find_column(BasisReader *reader, TextSpan name)
{
    return file_index_find(&reader->vars, name.begin, span_length(name));
}

int find_row(BasisReader *reader, TextSpan name)
{
    return file_index_find(&reader->constrs, name.begin, span_length(name));
}

// Two names: the first split at white space whose parts are both known; else that at the first white space.
void split_names(BasisReader *reader, TextSpan both, TextSpan *column, TextSpan *row)
{
    const char *first = skip_word(both.begin, both.end);
    for (const char *cut = first; cut < both.end;) {
        const TextSpan left = span_trim(both.begin, cut);
        const TextSpan right = span_trim(cut, both.end);
        if (find_column(reader, left) >= 0 && find_row(reader, right) >= 0) {
            *column = left;
            *row = right;
            return;
        }
        cut = skip_word(right.begin, both.end);
    }
    const TextSpan rest = span_trim(first, both.end);
    *column = {both.begin, first};
    *row = {rest.begin, skip_word(rest.begin, rest.end)};
}

int pair_line(BasisReader *reader, TextSpan names)
{
    TextSpan column;
    TextSpan row;
    split_names(reader, names, &column, &row);
    const int j = find_column(reader, column);
    if (j < 0) return unknown_name(reader->env, "variable", column);
    const int i = find_row(reader, row);
    if (i < 0) return unknown_name(reader->env, "row", row);
    reader->work.vbasis.data[j] = TVX_BASIC;
    reader->work.cbasis.data[i] = TVX_NONBASIC_LOWER;
    return 0;
}

// One name, perhaps followed by a value, as some programs write.
int column_line(BasisReader *reader, TextSpan name, int status)
{
    int j = find_column(reader, name);
    if (j < 0) {
        name.end = skip_word(name.begin, name.end);
        j = find_column(reader, name);
    }
    if (j < 0) return unknown_name(reader->env, "variable", name);
    reader->work.vbasis.data[j] = status;
    return 0;
}

// A line that begins with a blank: a key whose first letter stands in the second place, and names.
int take_line(BasisReader *reader, TextSpan line)
{
    if (span_length(line) < 2) return 0;
    const char key = line.begin[1];
    const TextSpan names = span_trim(skip_word(line.begin + 1, line.end), line.end);
    switch (key) {
    case 'X':
    case 'x':
        return pair_line(reader, names);
    case 'U':
    case 'u':
        return column_line(reader, names, TVX_NONBASIC_UPPER);
    case 'L':
    case 'l':
        return column_line(reader, names, TVX_NONBASIC_LOWER);
    case 'S':
    case 's':
        return column_line(reader, names, TVX_SUPERBASIC);
    default:
        return 0;
    }
}

int binary_file(TVXenv *env, const char *file_name, long long line)
{
    TVXmsg(env, "Error: file %s is no text file: control character in line %lld\n",
           file_name, line);
    return fail(env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                "File %s is no text file: control character in line %lld\n", file_name,
                line);
}

int walk_lines(BasisReader *reader, const char *file_name, TextFile *text)
{
    TextSpan line;
    for (;;) {
        const TextStep step = text_next(text, &line);
        if (step == TextStep::END) {
            TVXmsg(reader->env, "Warning: no ENDATA in file %s\n", file_name);
            return 0;
        }
        if (step == TextStep::BINARY)
            return binary_file(reader->env, file_name, text->line);
        if (span_empty(line)) continue;
        const char first = *line.begin;
        if (first == 'E' || first == 'e') return 0;
        if (first == ' ') TRY(take_line(reader, line));
    }
}

int reader_make(const ModelBody *body, TVXenv *env, BasisReader *reader)
{
    BasisWork *work = &reader->work;
    reader->env = env;
    TRY(work_make(body, work));
    for (int j = 0; j < work->vbasis.size; j++)
        work->vbasis.data[j] = default_status(body, env, j);
    for (int &status : work->cbasis) status = TVX_BASIC;
    TRY(file_index_make(&reader->vars, &work->vars));
    return file_index_make(&reader->constrs, &work->constrs);
}
} // namespace

int basis_read(const ModelBody *body, TVXenv *env, const char *file_name, BasisCodes *codes)
{
    if (!body->numvars || !body->numconstrs) return 0;
    TextFile text;
    TRY(text_load_failed(env, file_name, text_load(file_name, &text)));
    BasisReader reader{};
    int error = reader_make(body, env, &reader);
    if (!error) error = walk_lines(&reader, file_name, &text);
    if (!error) {
        codes->vbasis = static_cast<Array<int> &&>(reader.work.vbasis);
        codes->cbasis = static_cast<Array<int> &&>(reader.work.cbasis);
    }
    file_index_free(&reader.vars);
    file_index_free(&reader.constrs);
    return error;
}
