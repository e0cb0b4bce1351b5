// draft.cpp -- ModelDraft, the model data that the readers of model files collect
//
// Ranges      A range row lower <= a x <= upper is a x + Rg = upper with 0 <= Rg <= upper - lower. Where the name of
//             the variable is taken, an underscore follows it, and perhaps a number.
#include "files/draft.h"
#include "files/file_names.h"
#include <charconv>
#include <climits>
#include <cstring>

int draft_open(ModelDraft *draft)
{
    static constexpr size_t NAME_CHUNK = 1 << 16;
    draft_free(draft);
    draft->pool = PoolCreate(NAME_CHUNK);
    return draft->pool ? 0 : OUT_OF_MEMORY;
}

void draft_free(ModelDraft *draft)
{
    PoolFree(&draft->pool);
    *draft = ModelDraft{};
}

// ---- Columns ----

namespace
{
// With a text of the pool.
int column_append(DraftColumns *columns, const char *name, int64_t length, char type,
                  double ub)
{
    TRY(name_table_append(&columns->names, name, length));
    TRY(array_append(&columns->obj, 0.0));
    TRY(array_append(&columns->lb, 0.0));
    TRY(array_append(&columns->ub, ub));
    TRY(array_append(&columns->type, type));
    return array_append(&columns->flags, static_cast<unsigned char>(0));
}
} // namespace

int draft_column(ModelDraft *draft, TextSpan name, char type, double ub)
{
    const int64_t length = span_length(name);
    const char *copy = PoolCopy(draft->pool, name.begin, static_cast<size_t>(length));
    if (!copy) return OUT_OF_MEMORY;
    return column_append(&draft->columns, copy, length, type, ub);
}

// ---- Sets ----

int draft_set_begin(DraftSets *sets, int type)
{
    TRY(array_append(&sets->type, type));
    return array_append(&sets->begin, static_cast<int>(sets->member.size));
}

int draft_set_member(DraftSets *sets, int column, double weight, bool *twice)
{
    const int set = static_cast<int>(sets->type.size - 1);
    if (sets->member.size == INT_MAX) return OUT_OF_MEMORY;
    while (sets->mark.size <= column) TRY(array_append(&sets->mark, -1));
    *twice = sets->mark.data[column] == set;
    if (*twice) return 0;
    sets->mark.data[column] = set;
    TRY(array_append(&sets->member, column));
    return array_append(&sets->weight, weight);
}

// ---- Ranges ----

namespace
{
// "Rg" and the row's name; if a column has that name, with an underscore and then a number appended. Numbers are not
// used twice, so that in total at most as many names are tried as there are columns and ranges.
int range_name(ModelDraft *draft, int i, TextSpan *name_out)
{
    char number[FILE_NAME_LENGTH];
    FileNames numbered;
    numbered.kind = FileNameKind::CONSTRAINT;
    numbered.wide = true;
    const char *row = draft->row_names.data[i];
    if (!row) row = file_name(&numbered, i, number);
    static constexpr int64_t PREFIX = 2;
    static constexpr int64_t TAIL = 24; // an underscore, a number, the end
    const int64_t row_length = static_cast<int64_t>(strlen(row));
    char *name = PoolAlloc(draft->pool, static_cast<size_t>(PREFIX + row_length + TAIL));
    if (!name) return OUT_OF_MEMORY;
    memcpy(name, "Rg", PREFIX);
    memcpy(name + PREFIX, row, static_cast<size_t>(row_length));
    char *end = name + PREFIX + row_length;
    char *digits = end + 1;
    if (draft_find(draft, {name, end}) >= 0) {
        *end++ = '_';
        while (draft_find(draft, {name, end}) >= 0)
            end = std::to_chars(digits, digits + TAIL - 2, ++draft->range_number).ptr;
    }
    *end = '\0';
    *name_out = {name, end};
    return 0;
}
} // namespace

int draft_range(ModelDraft *draft, int i, double width)
{
    DraftColumns *columns = &draft->columns;
    draft->row_sense.data[i] = '=';
    if (width == 0.0) return 0; // the value in the file, exactly
    if (columns->names.entries.size == INT_MAX || columns->entry_row.size == INT_MAX)
        return OUT_OF_MEMORY;
    TextSpan name;
    TRY(range_name(draft, i, &name));
    TRY(column_append(columns, name.begin, span_length(name), 'C', width));
    TRY(array_append(&columns->entry_row, i));
    TRY(array_append(&columns->entry_value, 1.0));
    return array_append(&draft->vbeg, static_cast<int>(columns->entry_row.size));
}
