// lp_build.cpp -- the model of an LP-format file that was read to its end
//
// Method      The entries of the rows are counted by column and deposited in order of row, sums that came to 0 left
//             out, so that each column lists its rows in ascending order. Ranges become equations with one more
//             variable.
// Constant    The older form of a constant c of the objective is a term "c Constant" with the bound "Constant = 1". A
//             variable of that name that is used nowhere else becomes the constant.
// Memory      The text of the file and the rows are freed before the model is created.
#include "body/body.h"
#include "files/lp_reader.h"
#include <cmath>

namespace
{
const WarningText texts[] = { // in the order of LpWarning
    {"Warning: unknown variable '", "' in bounds section\n"},
    {"Warning: unknown variable '", "' in integer section\n"},
    {"Warning: a bound is given twice, the later one stands: '", "'\n"},
    {"Warning: negative upper bound under the default lower bound 0: '", "'\n"},
    {"Warning: constraint name used twice: '", "'\n"},
    {"Warning: lower side of a range above its upper side: '", "'\n"},
    {"Warning: bounds of a binary variable are cut to 0 and 1: '", "'\n"},
    {"Warning: text behind the end is not read: '", "'\n"},
    {"Warning: no End at the end of the file, which may be cut short", "\n"}};
} // namespace

void lp_warnings_show(const LpReader *reader, TVXenv *env)
{
    static constexpr int KINDS = static_cast<int>(LpWarning::COUNT_);
    static_assert(sizeof texts / sizeof *texts == KINDS && KINDS <= WARNING_KINDS);
    warnings_show(&reader->warnings, texts, KINDS, env);
}

namespace
{
void warn_of(LpReader *reader, LpWarning kind, TextSpan name)
{
    warning_note(&reader->warnings, static_cast<int>(kind), 0, name);
}

// Warns of bounds that may not mean what their author intended. An upper bound below 0 does not change the lower bound
// 0: the bounds are then infeasible.
void check_bounds(LpReader *reader)
{
    const DraftColumns *columns = &reader->draft.columns;
    for (int64_t j = 0; j < columns->names.entries.size; j++) {
        const double lb = columns->lb.data[j], ub = columns->ub.data[j];
        const TableName *entry = &columns->names.entries.data[j];
        const TextSpan name = {entry->text, entry->text + entry->length};
        if (ub < 0.0 && lb == 0.0 && !(columns->flags.data[j] & LP_LOWER_GIVEN))
            warn_of(reader, LpWarning::NEGATIVE_UPPER, name);
        if (columns->type.data[j] == 'B' && (lb < 0.0 || ub > 1.0))
            warn_of(reader, LpWarning::BINARY_CUT, name);
    }
}

// vbeg[j + 1] becomes the end of column j.
int count_entries(LpReader *reader)
{
    const LpRows *rows = &reader->rows;
    Array<int> *vbeg = &reader->draft.vbeg;
    const int64_t n = reader->draft.columns.names.entries.size;
    TRY(array_assign(vbeg, n + 1, 0));
    for (int64_t p = 0; p < rows->column.size; p++)
        vbeg->data[rows->column.data[p] + 1] += rows->value.data[p] != 0.0;
    for (int64_t j = 0; j < n; j++) vbeg->data[j + 1] += vbeg->data[j];
    return 0;
}

int settle_columns(LpReader *reader)
{
    LpRows *rows = &reader->rows;
    DraftColumns *columns = &reader->draft.columns;
    TRY(count_entries(reader));
    const Array<int> *vbeg = &reader->draft.vbeg;
    TRY(array_copy(&rows->latest, vbeg->data,
                   vbeg->size)); // from now on the next free place
    TRY(array_resize(&columns->entry_row, vbeg->data[vbeg->size - 1]));
    TRY(array_resize(&columns->entry_value, vbeg->data[vbeg->size - 1]));
    TRY(array_append(&rows->begin, static_cast<int>(rows->column.size)));
    int *__restrict next = rows->latest.data;
    for (int64_t i = 0; i + 1 < rows->begin.size; i++) {
        for (int p = rows->begin.data[i]; p < rows->begin.data[i + 1]; p++) {
            if (rows->value.data[p] == 0.0) continue;
            const int at = next[rows->column.data[p]]++;
            columns->entry_row.data[at] = static_cast<int>(i);
            columns->entry_value.data[at] = rows->value.data[p];
        }
    }
    return 0;
}

int settle_ranges(LpReader *reader)
{
    const LpRows *rows = &reader->rows;
    for (int64_t k = 0; k < rows->range_row.size; k++)
        TRY(draft_range(&reader->draft, rows->range_row.data[k], rows->width.data[k]));
    return 0;
}

// ---- The constant ----

// The variable that stands for the constant, or -1.
int find_constant(const ModelDraft *draft)
{
    static constexpr char NAME[] = "Constant";
    const DraftColumns *columns = &draft->columns;
    const int j = draft_find(draft, {NAME, NAME + sizeof NAME - 1});
    if (j < 0 || !(columns->flags.data[j] & LP_SET_TO_ONE)) return -1;
    if (columns->lb.data[j] != 1.0 || columns->ub.data[j] != 1.0)
        return -1; // values from the file, compared exactly
    const bool used = draft->vbeg.data[j + 1] > draft->vbeg.data[j] ||
                      columns->type.data[j] != 'C' || columns->obj.data[j] == 0.0;
    if (used) return -1;
    for (const int member : draft->sets.member)
        if (member == j) return -1;
    return std::isfinite(draft->objcon + columns->obj.data[j]) ? j : -1;
}

template<class T> void erase(Array<T> *a, int64_t k)
{
    memmove(a->data + k, a->data + k + 1, static_cast<size_t>(a->size - k - 1) * sizeof(T));
    a->size--;
}

// Of a column without entries; names cannot be looked up any more.
void fold_constant(ModelDraft *draft, int j)
{
    DraftColumns *columns = &draft->columns;
    draft->objcon += columns->obj.data[j];
    erase(&columns->names.entries, j);
    array_free(&columns->names.slots);
    erase(&columns->obj, j);
    erase(&columns->lb, j);
    erase(&columns->ub, j);
    erase(&columns->type, j);
    erase(&draft->vbeg, j);
    for (int &member : draft->sets.member) member -= member > j;
}
} // namespace

// ---- The model ----

int lp_build(TVXenv *env, LpReader *reader)
{
    ModelDraft *draft = &reader->draft;
    check_bounds(reader);
    lp_warnings_show(reader, env);
    reader->text = TextFile{};
    TRY(settle_columns(reader));
    TRY(settle_ranges(reader));
    reader->rows = LpRows{};
    const int constant = find_constant(draft);
    if (constant >= 0) fold_constant(draft, constant);
    return 0;
}
