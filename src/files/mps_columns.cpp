// mps_columns.cpp -- COLUMNS: names, types and matrix entries; the hot loop of the reader
//
// Method      Entries are appended in file order, a column is the segment that begins with its first line. The latest
//             entry of each row is remembered, so that a second entry of a row inside the segment is found at once; a
//             column that comes back later opens a new segment, and mps_build.cpp joins the segments of a column.
// Cost        One look-up of the row's name and one number per entry; the column's name is compared with the last one.
#include "files/mps_reader.h"
#include <climits>
#include <cstring>

namespace
{
int segment_open(MpsReader *reader, int column)
{
    MpsSegments *segments = &reader->segments;
    const int begin = static_cast<int>(reader->draft.columns.entry_row.size);
    TRY(array_append(&segments->column, column));
    TRY(array_append(&segments->begin, begin));
    segments->current = column;
    return 0;
}

int column_add(MpsReader *reader, TextSpan name)
{
    if (!reader->segments.integer_mode)
        return draft_column(&reader->draft, name, 'C', DRAFT_INFINITY);
    TRY(draft_column(&reader->draft, name, 'I', 1.0));
    Array<unsigned char> *flags = &reader->draft.columns.flags;
    flags->data[flags->size - 1] = MARKED_INTEGER;
    return 0;
}

// Makes the column of this line the current one.
int column_select(MpsReader *reader, TextSpan name)
{
    const Array<TableName> *names = &reader->draft.columns.names.entries;
    const int64_t length = span_length(name);
    if (reader->segments.current >= 0) {
        const TableName *last = &names->data[reader->segments.current];
        if (last->length == length &&
            !memcmp(last->text, name.begin, static_cast<size_t>(length)))
            return 0;
    }
    int column = mps_find_column(reader, name);
    if (column < 0) {
        TRY(column_add(reader, name));
        column = static_cast<int>(names->size - 1);
    } else {
        reader->segments.split = true;
        mps_warn(&reader->warnings, MpsWarning::SPLIT_COLUMN, reader->text.line, name);
    }
    return segment_open(reader, column);
}

int set_cost(MpsReader *reader, TextSpan row, double value)
{
    DraftColumns *columns = &reader->draft.columns;
    const int column = reader->segments.current;
    if (columns->flags.data[column] & COST_GIVEN)
        mps_warn(&reader->warnings, MpsWarning::DUPLICATE_ENTRY, reader->text.line, row);
    columns->flags.data[column] |= COST_GIVEN;
    columns->obj.data[column] = value;
    return 0;
}

// An entry of the current column in the row that is name k, or NAME_ABSENT.
int add_entry(MpsReader *reader, int k, TextSpan row, double value)
{
    DraftColumns *columns = &reader->draft.columns;
    if (k == NAME_ABSENT) {
        reader->segments.n_left_out++;
        return mps_unknown(reader, MpsWarning::UNKNOWN_ROW_IN_COLUMNS, row);
    }
    MpsPlace *place = &reader->rows.place.data[k];
    if (place->place == PLACE_OBJECTIVE) return set_cost(reader, row, value);
    if (place->place == PLACE_DROPPED) return 0;
    const Array<int> *begin = &reader->segments.begin;
    if (place->mark >= begin->data[begin->size - 1]) {
        mps_warn(&reader->warnings, MpsWarning::DUPLICATE_ENTRY, reader->text.line, row);
        columns->entry_value.data[place->mark] = value;
        return 0;
    }
    if (columns->entry_row.size == INT_MAX)
        return mps_stop(reader, MpsFault::CONTENT, "more than %d entries\n", INT_MAX);
    place->mark = static_cast<int>(columns->entry_row.size);
    TRY(array_append(&columns->entry_row, place->place));
    return array_append(&columns->entry_value, value);
}

// The look-ups of both rows are under way while the numbers are read.
int add_entries(MpsReader *reader, const MpsCard *card)
{
    TableKey key[2];
    for (int k = 0; k < card->entries; k++)
        key[k] = name_table_key(&reader->rows.names, card->entry[k].begin,
                                span_length(card->entry[k]));
    double value[2] = {0.0, 0.0};
    for (int k = 0; k < card->entries; k++)
        TRY(mps_finite(reader, card->value[k], &value[k]));
    for (int k = 0; k < card->entries; k++)
        TRY(add_entry(reader, name_table_find_key(&reader->rows.names, &key[k]),
                      card->entry[k], value[k]));
    return 0;
}

int marker_line(MpsReader *reader, TextSpan which)
{
    const bool starts = span_is_word(which, "'INTORG'");
    if (!starts && !span_is_word(which, "'INTEND'"))
        return mps_stop(reader, MpsFault::CONTENT, "this kind of marker cannot be read\n");
    if (reader->segments.integer_mode == starts)
        mps_warn(&reader->warnings, MpsWarning::MARKER, reader->text.line, which);
    reader->segments.integer_mode = starts;
    return 0;
}
} // namespace

int mps_columns_line(MpsReader *reader)
{
    MpsCard card;
    TRY(mps_card(reader, &card));
    if (card.marker) return marker_line(reader, card.value[0]);
    if (!span_empty(card.name)) TRY(column_select(reader, card.name));
    if (reader->segments.current < 0) // only fixed form may leave the name out
        return mps_stop(reader, MpsFault::CONTENT, "the name of the column is missing\n");
    return add_entries(reader, &card);
}
