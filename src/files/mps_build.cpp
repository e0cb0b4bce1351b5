// mps_build.cpp -- the model of an MPS file that was read to its end
//
// Method      The segments of each column are joined, entries of value 0 dropped (a file may hold them, a matrix should
//             not), ranges turned into equations with one more variable each, and everything handed to the common
//             worker behind all new models.
// Ranges      Of width 0 they are plain equations, infinite ones plain inequalities, others as in draft.cpp.
// Memory      The text of the file is freed before the model is created.
#include "body/body.h"
#include "files/file_number.h"
#include "files/mps_reader.h"
#include "runtime/text_number.h"
#include <climits>
#include <cmath>
#include <cstring>

namespace
{
int out_of_memory(TVXenv *env)
{
    TVXmsg(env, "Error: out of memory.\n");
    return fail(env, OUT_OF_MEMORY, Report::KEEP_FIRST, "Out of memory in MPS reader\n");
}

// ---- Columns ----

// Puts the segments of each column together, in file order. A later entry of a row replaces an earlier one.
int join_segments(MpsReader *reader, Array<int> *vbeg)
{
    DraftColumns *columns = &reader->draft.columns;
    MpsSegments *segments = &reader->segments;
    const int64_t n = columns->names.entries.size;
    const int64_t n_segments = segments->column.size;
    const int64_t n_entries = columns->entry_row.size;
    Array<int> place;
    Array<int> row;
    Array<double> value;
    TRY(array_resize(&place, n));
    TRY(array_resize(&row, n_entries));
    TRY(array_resize(&value, n_entries));
    for (int64_t j = 0; j <= n; j++) vbeg->data[j] = 0;
    TRY(array_append(&segments->begin, static_cast<int>(n_entries)));
    const int *begin = segments->begin.data;
    for (int64_t s = 0; s < n_segments; s++)
        vbeg->data[segments->column.data[s] + 1] += begin[s + 1] - begin[s];
    for (int64_t j = 0; j < n; j++) {
        vbeg->data[j + 1] += vbeg->data[j];
        place.data[j] = vbeg->data[j];
    }
    for (int64_t s = 0; s < n_segments; s++) {
        int *to = &place.data[segments->column.data[s]];
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
int merge_duplicates(MpsReader *reader, Array<int> *vbeg)
{
    DraftColumns *columns = &reader->draft.columns;
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

void drop_zeros(DraftColumns *columns, Array<int> *vbeg)
{
    int to = 0;
    for (int64_t j = 0; j < columns->names.entries.size; j++) {
        const int begin = to;
        const int end = vbeg->data[j + 1];
        for (int p = vbeg->data[j]; p < end; p++) {
            if (columns->entry_value.data[p] == 0.0) continue; // zero in the file, exactly
            columns->entry_row.data[to] = columns->entry_row.data[p];
            columns->entry_value.data[to++] = columns->entry_value.data[p];
        }
        vbeg->data[j] = begin;
    }
    vbeg->data[columns->names.entries.size] = to;
    columns->entry_row.size = columns->entry_value.size = to;
}

int assemble_columns(MpsReader *reader)
{
    DraftColumns *columns = &reader->draft.columns;
    const MpsSegments *segments = &reader->segments;
    Array<int> *vbeg = &reader->draft.vbeg;
    const int64_t n = columns->names.entries.size;
    TRY(array_resize(vbeg, n + 1));
    if (segments->split) {
        TRY(join_segments(reader, vbeg));
        TRY(merge_duplicates(reader, vbeg));
    } else {
        for (int64_t j = 0; j < n; j++) vbeg->data[j] = segments->begin.data[j];
        vbeg->data[n] = static_cast<int>(columns->entry_row.size);
    }
    drop_zeros(columns, vbeg);
    return 0;
}

// An upper bound below 0 on a column whose lower bound nobody set makes that lower bound infinite.
void settle_bounds(MpsReader *reader)
{
    DraftColumns *columns = &reader->draft.columns;
    for (int64_t j = 0; j < columns->names.entries.size; j++) {
        const unsigned char flags = columns->flags.data[j];
        if (columns->lb.data[j] == 0.0 && columns->ub.data[j] < 0.0 &&
            !(flags & LOWER_GIVEN))
            columns->lb.data[j] = -DRAFT_INFINITY;
        const TableName *entry = &columns->names.entries.data[j];
        const TextSpan name = {entry->text, entry->text + entry->length};
        const bool odd = (flags & MINUS_INFINITY) && (flags & MARKED_INTEGER) &&
                         !(flags & UPPER_GIVEN) && columns->ub.data[j] == 1.0;
        if (odd) mps_warn(&reader->warnings, MpsWarning::INTEGER_MINUS_INFINITY, 0, name);
        if (columns->type.data[j] == 'B' &&
            (columns->lb.data[j] < 0.0 || columns->ub.data[j] > 1.0))
            mps_warn(&reader->warnings, MpsWarning::BINARY_CUT, 0, name);
    }
}

// ---- Ranges ----

// The sides of row i with its range.
int apply_range(MpsReader *reader, int i)
{
    ModelDraft *draft = &reader->draft;
    const double b = draft->rhs.data[i];
    const double range = reader->rows.range.data[i];
    const double width = std::fabs(range);
    char *sense = &draft->row_sense.data[i];
    if (std::fabs(b) >= DRAFT_HUGE) {
        const char *name = draft->row_names.data[i];
        mps_warn(&reader->warnings, MpsWarning::RANGE_OF_INFINITE, 0,
                 {name, name + strlen(name)});
        return 0;
    }
    if (width >= DRAFT_HUGE) {
        if (*sense == 'E') *sense = range > 0.0 ? 'G' : 'L';
        return 0;
    }
    const bool upward = *sense == 'G' || (*sense == 'E' && range > 0.0);
    if (upward && width > 0.0) draft->rhs.data[i] = b + width;
    return draft_range(draft, i, width);
}

// ---- Rows ----

int settle_rows(MpsReader *reader)
{
    MpsRows *rows = &reader->rows;
    ModelDraft *draft = &reader->draft;
    const int64_t m = rows->type.size;
    draft->rhs = static_cast<Array<double> &&>(rows->rhs);
    draft->row_sense = static_cast<Array<char> &&>(rows->type);
    TRY(array_reserve(&draft->row_names, m));
    for (int64_t k = 0; k < rows->names.entries.size; k++)
        if (rows->place.data[k].place >= 0)
            array_push(&draft->row_names, rows->names.entries.data[k].text);
    for (int64_t i = 0; i < m; i++)
        if (rows->given.data[i] & RANGE_GIVEN)
            TRY(apply_range(reader, static_cast<int>(i)));
    return 0;
}

// ---- Names ----

// The writer shows the objective's constant behind the name, as in "plan with objcon=         5"; that is no part of
// the name when it is the constant of this file.
TextSpan without_constant(const MpsReader *reader)
{
    static constexpr int SHOWN = 64;
    TextSpan name = reader->model_name;
    char shown[SHOWN];
    const double stored = reader->draft.sense * reader->draft.objcon;
    const int length = text_format(shown, SHOWN, " with objcon=%12g", stored);
    if (stored == 0.0 || span_length(name) + 1 < length) return name;
    // Without a model name only the text after the blank is used.
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

int copy_model_name(MpsReader *reader)
{
    const TextSpan name = without_constant(reader);
    if (span_empty(name)) return 0;
    char *copy =
        PoolCopy(reader->draft.pool, name.begin, static_cast<size_t>(span_length(name)));
    if (!copy) return OUT_OF_MEMORY;
    for (char *c = copy; *c; c++) *c = line_char(*c); // same as in mps_write
    reader->draft.name = copy;
    return 0;
}

// ---- The model ----

// Before ranges become columns.
void warn_of_whole(MpsReader *reader)
{
    ReadWarnings *warnings = &reader->warnings;
    if (reader->segments.integer_mode) // 'INTEND' never came
        mps_warn(warnings, MpsWarning::MARKER, 0, TextSpan{});
    if (!reader->seen_rhs) mps_warn(warnings, MpsWarning::NO_RHS, 0, TextSpan{});
    if (!reader->rows.type.size)
        mps_warn(warnings, MpsWarning::NO_CONSTRAINTS, 0, TextSpan{});
    if (!reader->draft.columns.names.entries.size)
        mps_warn(warnings, MpsWarning::NO_COLUMNS, 0, TextSpan{});
}

int settle(MpsReader *reader)
{
    settle_bounds(reader);
    TRY(assemble_columns(reader));
    warn_of_whole(reader);
    TRY(settle_rows(reader));
    return copy_model_name(reader);
}
} // namespace

int mps_build(TVXenv *env, MpsReader *reader)
{
    if (settle(reader)) return out_of_memory(env);
    mps_warnings_show(&reader->warnings, env);
    return 0;
}
