// mps_rhs.cpp -- RHS and RANGES: right-hand sides, the objective's constant, ranges
//
// The two sections may come in any order: ranges are only kept here and meet the right-hand sides in mps_build.cpp.
#include "files/file_number.h"
#include "files/mps_reader.h"
#include <cmath>

namespace
{
// A number, or an infinite value in the place of a side of an inequality. 0 or TVX_ERROR_FILE_READ.
int side_read(MpsReader *reader, TextSpan field, bool may_be_infinite, double *value)
{
    if (!may_be_infinite || number_read(field, value) != NumberKind::INFINITE)
        return mps_finite(reader, field, value);
    *value = std::copysign(DRAFT_INFINITY, *value);
    return 0;
}

int set_constant(MpsReader *reader, TextSpan row, TextSpan field)
{
    double value = 0.0;
    TRY(mps_finite(reader, field, &value));
    if (reader->objcon_given) {
        mps_warn(&reader->warnings, MpsWarning::DUPLICATE_RHS, reader->text.line, row);
        return 0;
    }
    reader->objcon_given = true;
    reader->draft.objcon = -value;
    return 0;
}

int set_rhs(MpsReader *reader, TextSpan row, TextSpan field)
{
    MpsRows *rows = &reader->rows;
    double value = 0.0;
    const int k = mps_find_row(reader, row);
    const int i = k < 0 ? static_cast<int>(PLACE_DROPPED) : rows->place.data[k].place;
    if (i == PLACE_OBJECTIVE) return set_constant(reader, row, field);
    TRY(side_read(reader, field, i >= 0 && rows->type.data[i] != 'E', &value));
    if (k < 0) return mps_unknown(reader, MpsWarning::UNKNOWN_ROW_IN_RHS, row);
    if (i == PLACE_DROPPED) return 0;
    if (rows->given.data[i] & RHS_GIVEN) {
        mps_warn(&reader->warnings, MpsWarning::DUPLICATE_RHS, reader->text.line, row);
        return 0;
    }
    rows->given.data[i] |= RHS_GIVEN;
    rows->rhs.data[i] = value;
    return 0;
}

int set_range(MpsReader *reader, TextSpan row, TextSpan field)
{
    MpsRows *rows = &reader->rows;
    double value = 0.0;
    TRY(side_read(reader, field, true, &value));
    const int k = mps_find_row(reader, row);
    if (k < 0) return mps_unknown(reader, MpsWarning::UNKNOWN_ROW_IN_RANGES, row);
    const int i = rows->place.data[k].place;
    if (i < 0) return 0; // a range of a free row has no effect
    if (rows->given.data[i] & RANGE_GIVEN) {
        mps_warn(&reader->warnings, MpsWarning::DUPLICATE_RANGE, reader->text.line, row);
        return 0;
    }
    rows->given.data[i] |= RANGE_GIVEN;
    rows->range.data[i] = value;
    return 0;
}
} // namespace

int mps_rhs_line(MpsReader *reader)
{
    MpsCard card;
    TRY(mps_card(reader, &card));
    if (!mps_set_counts(reader, &reader->rhs_set, card.name, MpsWarning::MORE_RHS_SETS))
        return 0;
    for (int k = 0; k < card.entries; k++)
        TRY(set_rhs(reader, card.entry[k], card.value[k]));
    return 0;
}

int mps_ranges_line(MpsReader *reader)
{
    MpsCard card;
    TRY(mps_card(reader, &card));
    if (!mps_set_counts(reader, &reader->range_set, card.name, MpsWarning::MORE_RANGE_SETS))
        return 0;
    for (int k = 0; k < card.entries; k++)
        TRY(set_range(reader, card.entry[k], card.value[k]));
    return 0;
}
