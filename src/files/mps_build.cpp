// mps_build.cpp -- the model of an MPS file that was read to its end
//
// Method      The segments of each column are joined, entries of value 0 dropped (a file may hold them, a matrix should
//             not), ranges turned into equations with one more variable each, and everything handed to the common
//             worker behind all new models.
// Ranges      A range row lower <= a x <= upper becomes a x + Rg = upper with 0 <= Rg <= upper - lower; "Rg" and the
//             row's name is the variable's name. Ranges of width 0 are plain equations, infinite ones plain inequalities.
// Memory      The text of the file is given back before the model is made.
#include "files/file_number.h"
#include "files/mps_reader.h"
#include "frame/model.h"
#include "frame/runtime/text_number.h"
#include <climits>
#include <cmath>
#include <cstring>

static int out_of_memory(TVXenv *env)
{
    TVXmsg(env, "Error: out of memory.\n");
    return fail(env, OUT_OF_MEMORY, Report::KEEP_FIRST, "Out of memory in MPS reader\n");
}

// The parts of ModelData that are made here.
struct Parts {
    Array<int> vbeg;                 // [n + 1]
    Array<char> sense;               // [m]
    Array<const char *> varnames;    // [n]
    Array<const char *> constrnames; // [m]
    const char *name = nullptr;
};

// ---- Columns ----

// Puts the segments of each column together, in file order. A later entry of a row replaces an earlier one.
static int join_segments(MpsReader *reader, Array<int> *vbeg)
{
    MpsColumns *columns = &reader->columns;
    const int64_t n = columns->names.entries.size;
    const int64_t n_segments = columns->segment_column.size;
    const int64_t n_entries = columns->entry_row.size;
    Array<int> place;
    Array<int> row;
    Array<double> value;
    TRY(array_resize(&place, n));
    TRY(array_resize(&row, n_entries));
    TRY(array_resize(&value, n_entries));
    for (int64_t j = 0; j <= n; j++) vbeg->data[j] = 0;
    TRY(array_append(&columns->segment_begin, static_cast<int>(n_entries)));
    const int *begin = columns->segment_begin.data;
    for (int64_t s = 0; s < n_segments; s++)
        vbeg->data[columns->segment_column.data[s] + 1] += begin[s + 1] - begin[s];
    for (int64_t j = 0; j < n; j++) {
        vbeg->data[j + 1] += vbeg->data[j];
        place.data[j] = vbeg->data[j];
    }
    for (int64_t s = 0; s < n_segments; s++) {
        int *to = &place.data[columns->segment_column.data[s]];
        for (int p = begin[s]; p < begin[s + 1]; p++) {
            row.data[*to] = columns->entry_row.data[p];
            value.data[(*to)++] = columns->entry_value.data[p];
        }
    }
    columns->entry_row = static_cast<Array<int> &&>(row);
    columns->entry_value = static_cast<Array<double> &&>(value);
    return 0;
}

// Entries of one row in one column become one, the later value stands: only joined segments have such.
static int merge_duplicates(MpsReader *reader, Array<int> *vbeg)
{
    MpsColumns *columns = &reader->columns;
    Array<int> latest; // [m] the row's latest entry
    TRY(array_assign(&latest, reader->rows.type.size, -1));
    int to = 0;
    for (int64_t j = 0; j < columns->names.entries.size; j++) {
        const int begin = to;
        const int end = vbeg->data[j + 1];
        for (int p = vbeg->data[j]; p < end; p++) {
            const int i = columns->entry_row.data[p];
            const double value = columns->entry_value.data[p];
            int *mark = &latest.data[i];
            if (*mark >= begin) {
                mps_warn(&reader->warnings, MpsWarning::DUPLICATE_ENTRY, 0, TextSpan{});
                columns->entry_value.data[*mark] = value;
                continue;
            }
            *mark = to;
            columns->entry_row.data[to] = i;
            columns->entry_value.data[to++] = value;
        }
        vbeg->data[j] = begin;
    }
    vbeg->data[columns->names.entries.size] = to;
    columns->entry_row.size = columns->entry_value.size = to;
    return 0;
}

static void drop_zeros(MpsColumns *columns, Array<int> *vbeg)
{
    int to = 0;
    for (int64_t j = 0; j < columns->names.entries.size; j++) {
        const int begin = to;
        const int end = vbeg->data[j + 1];
        for (int p = vbeg->data[j]; p < end; p++) {
            if (columns->entry_value.data[p] == 0.0) continue; // as the file says it
            columns->entry_row.data[to] = columns->entry_row.data[p];
            columns->entry_value.data[to++] = columns->entry_value.data[p];
        }
        vbeg->data[j] = begin;
    }
    vbeg->data[columns->names.entries.size] = to;
    columns->entry_row.size = columns->entry_value.size = to;
}

static int assemble_columns(MpsReader *reader, Array<int> *vbeg)
{
    MpsColumns *columns = &reader->columns;
    const int64_t n = columns->names.entries.size;
    TRY(array_resize(vbeg, n + 1));
    if (columns->split) {
        TRY(join_segments(reader, vbeg));
        TRY(merge_duplicates(reader, vbeg));
    } else {
        for (int64_t j = 0; j < n; j++) vbeg->data[j] = columns->segment_begin.data[j];
        vbeg->data[n] = static_cast<int>(columns->entry_row.size);
    }
    drop_zeros(columns, vbeg);
    return 0;
}

// An upper bound below 0 on a column whose lower bound nobody set makes that lower bound infinite.
static void settle_bounds(MpsReader *reader)
{
    MpsColumns *columns = &reader->columns;
    for (int64_t j = 0; j < columns->names.entries.size; j++) {
        const unsigned char flags = columns->flags.data[j];
        if (columns->lb.data[j] == 0.0 && columns->ub.data[j] < 0.0 &&
            !(flags & LOWER_GIVEN))
            columns->lb.data[j] = -MPS_INFINITY;
        const bool odd = (flags & MINUS_INFINITY) && (flags & MARKED_INTEGER) &&
                         !(flags & UPPER_GIVEN) && columns->ub.data[j] == 1.0;
        if (!odd) continue;
        const TableName *name = &columns->names.entries.data[j];
        mps_warn(&reader->warnings, MpsWarning::INTEGER_MINUS_INFINITY, 0,
                 {name->text, name->text + name->length});
    }
}

// ---- Ranges ----

// "Rg" and the row's name, made different from every column's name by underscores.
static int range_name(MpsReader *reader, const TableName *row, const char **name_out)
{
    static constexpr int PREFIX = 2;
    char *name = PoolAlloc(reader->pool, static_cast<size_t>(row->length) + PREFIX + 1);
    if (!name) return OUT_OF_MEMORY;
    memcpy(name, "Rg", PREFIX);
    memcpy(name + PREFIX, row->text, static_cast<size_t>(row->length) + 1);
    int64_t length = row->length + PREFIX;
    while (name_table_find(&reader->columns.names, name, length) >= 0) {
        char *longer = PoolAlloc(reader->pool, static_cast<size_t>(length) + 2);
        if (!longer) return OUT_OF_MEMORY;
        memcpy(longer, name, static_cast<size_t>(length));
        longer[length++] = '_';
        longer[length] = '\0';
        name = longer;
    }
    *name_out = name;
    return name_table_append(&reader->columns.names, name, length);
}

static int add_range_variable(MpsReader *reader, int i, double width, Parts *parts)
{
    MpsColumns *columns = &reader->columns;
    if (columns->names.entries.size == INT_MAX || columns->entry_row.size == INT_MAX)
        return OUT_OF_MEMORY;
    const TableName row = {parts->constrnames.data[i],
                           static_cast<int>(strlen(parts->constrnames.data[i]))};
    const char *name = nullptr;
    TRY(range_name(reader, &row, &name));
    TRY(array_append(&columns->obj, 0.0));
    TRY(array_append(&columns->lb, 0.0));
    TRY(array_append(&columns->ub, width));
    TRY(array_append(&columns->type, 'C'));
    TRY(array_append(&columns->entry_row, i));
    TRY(array_append(&columns->entry_value, 1.0));
    return array_append(&parts->vbeg, static_cast<int>(columns->entry_row.size));
}

// The sides of row i with its range.
static int apply_range(MpsReader *reader, int i, Parts *parts)
{
    static constexpr double HUGE_SIDE = 1e20; // a side of this magnitude is infinite
    MpsRows *rows = &reader->rows;
    const double b = rows->rhs.data[i];
    const double range = rows->range.data[i];
    const double width = std::fabs(range);
    char *sense = &parts->sense.data[i];
    if (std::fabs(b) >= HUGE_SIDE) {
        const char *name = parts->constrnames.data[i];
        mps_warn(&reader->warnings, MpsWarning::RANGE_OF_INFINITE, 0,
                 {name, name + strlen(name)});
        return 0;
    }
    if (width >= HUGE_SIDE) {
        if (*sense == 'E') *sense = range > 0.0 ? 'G' : 'L';
        return 0;
    }
    const bool upward = *sense == 'G' || (*sense == 'E' && range > 0.0);
    *sense = 'E';
    if (width == 0.0) return 0; // as the file says it
    if (upward) rows->rhs.data[i] = b + width;
    return add_range_variable(reader, i, width, parts);
}

static int apply_ranges(MpsReader *reader, Parts *parts)
{
    MpsRows *rows = &reader->rows;
    TRY(array_copy(&parts->sense, rows->type.data, rows->type.size));
    for (int64_t i = 0; i < rows->type.size; i++)
        if (rows->given.data[i] & RANGE_GIVEN)
            TRY(apply_range(reader, static_cast<int>(i), parts));
    return 0;
}

// ---- Names ----

static int collect_constraint_names(MpsReader *reader, Parts *parts)
{
    const MpsRows *rows = &reader->rows;
    TRY(array_reserve(&parts->constrnames, rows->type.size));
    for (int64_t k = 0; k < rows->names.entries.size; k++)
        if (rows->place.data[k].place >= 0)
            array_push(&parts->constrnames, rows->names.entries.data[k].text);
    return 0;
}

static int collect_variable_names(MpsReader *reader, Parts *parts)
{
    const Array<TableName> *names = &reader->columns.names.entries;
    TRY(array_reserve(&parts->varnames, names->size));
    for (const TableName &name : *names) array_push(&parts->varnames, name.text);
    return 0;
}

// The writer shows the objective's constant behind the name, as in "plan with objcon=         5"; that is no part of
// the name when it is the constant of this file.
static TextSpan without_constant(const MpsReader *reader)
{
    static constexpr int SHOWN = 64;
    TextSpan name = reader->model_name;
    char shown[SHOWN];
    const double stored = reader->sense * reader->objcon;
    const int length = text_format(shown, SHOWN, " with objcon=%12g", stored);
    if (stored == 0.0 || span_length(name) + 1 < length) return name;
    // A model without name leaves only the words behind the blank.
    const TextSpan whole = {shown + 1, shown + length};
    if (span_length(name) == length - 1)
        return memcmp(name.begin, whole.begin, static_cast<size_t>(length - 1))
                   ? name
                   : TextSpan{};
    const char *tail = name.end - length;
    if (!memcmp(tail, shown, static_cast<size_t>(length)))
        name = span_trim(name.begin, tail);
    return name;
}

static int copy_model_name(MpsReader *reader, Parts *parts)
{
    const TextSpan name = without_constant(reader);
    if (span_empty(name)) return 0;
    char *copy = PoolCopy(reader->pool, name.begin, static_cast<size_t>(span_length(name)));
    if (!copy) return OUT_OF_MEMORY;
    for (char *c = copy; *c; c++) *c = line_char(*c); // as the writer does
    parts->name = copy;
    return 0;
}

// ---- The model ----

static void warn_of_whole(MpsReader *reader)
{
    MpsWarnings *warnings = &reader->warnings;
    if (!reader->seen_rhs) mps_warn(warnings, MpsWarning::NO_RHS, 0, TextSpan{});
    if (!reader->rows.type.size)
        mps_warn(warnings, MpsWarning::NO_CONSTRAINTS, 0, TextSpan{});
    if (!reader->columns.names.entries.size)
        mps_warn(warnings, MpsWarning::NO_COLUMNS, 0, TextSpan{});
}

static int make_parts(MpsReader *reader, Parts *parts)
{
    settle_bounds(reader);
    TRY(assemble_columns(reader, &parts->vbeg));
    TRY(collect_constraint_names(reader, parts));
    TRY(apply_ranges(reader, parts));
    TRY(collect_variable_names(reader, parts));
    return copy_model_name(reader, parts);
}

static int create(TVXenv *env, const MpsReader *reader, const Parts *parts,
                  TVXmodel **model_out)
{
    const MpsColumns *columns = &reader->columns;
    const ModelData model_data = {
        .name = parts->name,
        .numvars = static_cast<int>(columns->names.entries.size),
        .numconstrs = static_cast<int>(reader->rows.type.size),
        .sense = reader->sense,
        .objcon = reader->objcon,
        .obj = columns->obj.data,
        .senses = parts->sense.data,
        .rhs = reader->rows.rhs.data,
        .vbeg = parts->vbeg.data,
        .vind = columns->entry_row.data,
        .vval = columns->entry_value.data,
        .lb = columns->lb.data,
        .ub = columns->ub.data,
        .vtype = columns->type.data,
        .varnames = parts->varnames.data,
        .constrnames = parts->constrnames.data,
    };
    return model_create(env, EnvUse::PRIVATE_COPY, &model_data, model_out);
}

static int add_sets(const MpsSos *sos, TVXmodel *model)
{
    if (!sos->type.size) return 0;
    TRY(TVXaddsos(model, static_cast<int>(sos->type.size),
                  static_cast<int>(sos->member.size), sos->type.data, sos->begin.data,
                  sos->member.data, sos->weight.data));
    return TVXupdatemodel(model);
}

int mps_build(TVXenv *env, MpsReader *reader, TVXmodel **model_out)
{
    Parts parts;
    *model_out = nullptr;
    if (make_parts(reader, &parts)) return out_of_memory(env); // the only way it fails
    warn_of_whole(reader);
    mps_warnings_show(&reader->warnings, env);
    reader->text = TextFile{};
    TVXmodel *model = nullptr;
    int error = create(env, reader, &parts, &model);
    if (!error) error = add_sets(&reader->sos, model);
    if (error) {
        model_free(model);
        return error == OUT_OF_MEMORY ? out_of_memory(env) : error;
    }
    *model_out = model;
    return 0;
}
