// mps_rows.cpp -- ROWS: names and types; the choice of the objective among the free rows
//
// Invariant   rows.place gives every declared name its constraint number, or says that it is the objective or a free
//             row that is dropped. A name declared twice is an error: no reader could tell the two apart.
#include "files/mps_reader.h"

namespace
{
int place_add(MpsRows *rows, int place)
{
    return array_append(&rows->place, MpsPlace{place, -1});
}

int add_constraint(MpsReader *reader, char type)
{
    MpsRows *rows = &reader->rows;
    TRY(place_add(rows, static_cast<int>(rows->type.size)));
    TRY(array_append(&rows->type, type));
    TRY(array_append(&rows->rhs, 0.0));
    TRY(array_append(&rows->range, 0.0));
    return array_append(&rows->given, char{0});
}

// A free row is the objective if it is the first, unless OBJNAME names one.
int add_free_row(MpsReader *reader, TextSpan name)
{
    MpsRows *rows = &reader->rows;
    const bool wanted = span_empty(reader->objective_name);
    if (wanted && !rows->has_objective) {
        rows->has_objective = true;
        return place_add(rows, PLACE_OBJECTIVE);
    }
    if (wanted)
        mps_warn(&reader->warnings, MpsWarning::MORE_FREE_ROWS, reader->text.line, name);
    return place_add(rows, PLACE_DROPPED);
}

int name_add(MpsReader *reader, TextSpan name)
{
    const char *copy =
        PoolCopy(reader->draft.pool, name.begin, static_cast<size_t>(span_length(name)));
    if (!copy) return OUT_OF_MEMORY;
    return name_table_append(&reader->rows.names, copy, span_length(name));
}
} // namespace

int mps_rows_line(MpsReader *reader)
{
    MpsCard card;
    TRY(mps_card(reader, &card));
    char type = span_length(card.type) == 1 ? *card.type.begin : '?';
    if (type >= 'a' && type <= 'z') type = static_cast<char>(type - 'a' + 'A');
    if (type != 'N' && type != 'L' && type != 'G' && type != 'E')
        return mps_stop(reader, MpsFault::CONTENT, "a row type is N, L, G or E\n");
    if (mps_find_row(reader, card.name) >= 0)
        return mps_stop(reader, MpsFault::CONTENT, "this row name is declared twice\n");
    TRY(name_add(reader, card.name));
    if (type == 'N') return add_free_row(reader, card.name);
    return add_constraint(reader, type);
}

int mps_rows_choose_objective(MpsReader *reader)
{
    MpsRows *rows = &reader->rows;
    if (span_empty(reader->objective_name)) return 0;
    const int k = mps_find_row(reader, reader->objective_name);
    if (k < 0 || rows->place.data[k].place >= 0)
        return mps_stop(reader, MpsFault::CONTENT, "OBJNAME names no row of type N\n");
    for (MpsPlace &row : rows->place)
        if (row.place < 0) row.place = PLACE_DROPPED;
    rows->place.data[k].place = PLACE_OBJECTIVE;
    rows->has_objective = true;
    return 0;
}
