// mps_bounds.cpp -- BOUNDS: bounds and the types that are declared with them
//
// Rules       A bound set by a line is kept: a later line that would set it again changes no bound and gives a
//             warning, but a type that it declares (integer, binary, semi-continuous) is always taken over, since
//             losing it would change the model. FR, MI and PL leave the upper bound open for a later UP. The bounds 0
//             and 1 of BV and of integer columns between markers are defaults, which later lines may change.
#include "files/file_number.h"
#include "files/mps_reader.h"
#include <cmath>

namespace
{
enum class Bound { LO, UP, FX, FR, MI, PL, BV, LI, UI, SC, SI, COUNT_ };

// In the order of Bound.
const struct {
    const char *name;
    MpsBoundValue value;
} bounds[] = {{"LO", MpsBoundValue::REQUIRED}, {"UP", MpsBoundValue::REQUIRED},
              {"FX", MpsBoundValue::REQUIRED}, {"FR", MpsBoundValue::NONE},
              {"MI", MpsBoundValue::NONE},     {"PL", MpsBoundValue::NONE},
              {"BV", MpsBoundValue::NONE},     {"LI", MpsBoundValue::REQUIRED},
              {"UI", MpsBoundValue::REQUIRED}, {"SC", MpsBoundValue::OPTIONAL},
              {"SI", MpsBoundValue::OPTIONAL}};

Bound bound_find(TextSpan type)
{
    int k = 0;
    while (k < static_cast<int>(Bound::COUNT_) && !span_is_word(type, bounds[k].name)) k++;
    return static_cast<Bound>(k);
}
} // namespace

MpsBoundValue mps_bound_value(TextSpan type)
{
    const Bound bound = bound_find(type);
    return bound == Bound::COUNT_ ? MpsBoundValue::UNKNOWN
                                  : bounds[static_cast<int>(bound)].value;
}

namespace
{
// Columns of one line's work.
struct BoundLine {
    MpsReader *reader;
    int column;
    TextSpan name;
};

// True when none of these bounds has been set; else a warning, and the line must not set them.
bool is_open(const BoundLine *line, int given)
{
    MpsReader *reader = line->reader;
    if (!(reader->draft.columns.flags.data[line->column] & given)) return true;
    mps_warn(&reader->warnings, MpsWarning::DUPLICATE_BOUND, reader->text.line, line->name);
    return false;
}

void set_lower(const BoundLine *line, double value)
{
    DraftColumns *columns = &line->reader->draft.columns;
    const int j = line->column;
    columns->lb.data[j] = value;
    columns->flags.data[j] |= LOWER_GIVEN;
}

void set_upper(const BoundLine *line, double value)
{
    DraftColumns *columns = &line->reader->draft.columns;
    const int j = line->column;
    columns->ub.data[j] = value;
    columns->flags.data[j] |= UPPER_GIVEN;
}

// The default upper bound 1 of an integer column goes as soon as its lower bound or PL says more.
void drop_default_upper(const BoundLine *line)
{
    DraftColumns *columns = &line->reader->draft.columns;
    const int j = line->column;
    if (columns->type.data[j] != 'B' && !(columns->flags.data[j] & UPPER_GIVEN))
        columns->ub.data[j] = DRAFT_INFINITY;
}

void lower_line(const BoundLine *line, double value)
{
    if (!is_open(line, LOWER_GIVEN)) return;
    set_lower(line, value);
    drop_default_upper(line);
}

void upper_line(const BoundLine *line, double value)
{
    if (is_open(line, UPPER_GIVEN)) set_upper(line, value);
}

void binary_line(const BoundLine *line)
{
    DraftColumns *columns = &line->reader->draft.columns;
    const int j = line->column;
    char *type = &columns->type.data[j];
    *type = *type == 'S' || *type == 'N' ? 'N' : 'B';
    if (!is_open(line, LOWER_GIVEN | UPPER_GIVEN)) return;
    columns->lb.data[j] = 0.0;
    columns->ub.data[j] = 1.0;
}

void make_integer(const BoundLine *line)
{
    char *type = &line->reader->draft.columns.type.data[line->column];
    if (*type == 'C') *type = 'I';
    if (*type == 'S') *type = 'N';
}

void make_semicontinuous(const BoundLine *line, Bound bound)
{
    char *type = &line->reader->draft.columns.type.data[line->column];
    const bool continuous = *type == 'C' || *type == 'S';
    *type = continuous && bound != Bound::SI ? 'S' : 'N';
}

void apply(const BoundLine *line, Bound bound, double value)
{
    switch (bound) {
    case Bound::LI:
        make_integer(line);
        [[fallthrough]];
    case Bound::LO:
        lower_line(line, value);
        return;
    case Bound::UI:
        make_integer(line);
        [[fallthrough]];
    case Bound::UP:
        upper_line(line, value);
        return;
    case Bound::SC:
    case Bound::SI:
        make_semicontinuous(line, bound);
        upper_line(line, value);
        return;
    case Bound::FX:
        if (!is_open(line, LOWER_GIVEN | UPPER_GIVEN)) return;
        set_lower(line, value);
        set_upper(line, value);
        return;
    case Bound::FR:
        if (!is_open(line, LOWER_GIVEN | UPPER_GIVEN)) return;
        set_lower(line, -DRAFT_INFINITY);
        drop_default_upper(line);
        return;
    case Bound::MI:
        if (!is_open(line, LOWER_GIVEN)) return;
        set_lower(line, -DRAFT_INFINITY);
        line->reader->draft.columns.flags.data[line->column] |= MINUS_INFINITY;
        return;
    case Bound::PL:
        if (is_open(line, UPPER_GIVEN)) drop_default_upper(line);
        return;
    case Bound::BV:
        binary_line(line);
        return;
    default:
        return;
    }
}

// The value of the line, infinite words taken as infinite bounds. 0 or TVX_ERROR_FILE_READ.
int value_read(MpsReader *reader, Bound bound, TextSpan field, double *value)
{
    const MpsBoundValue demand = bounds[static_cast<int>(bound)].value;
    *value = DRAFT_INFINITY; // bound type SC without a value
    if (demand == MpsBoundValue::NONE ||
        (demand == MpsBoundValue::OPTIONAL && span_empty(field)))
        return 0;
    if (bound == Bound::FX || number_read(field, value) != NumberKind::INFINITE)
        return mps_finite(reader, field, value);
    *value = std::copysign(DRAFT_INFINITY, *value);
    const bool lower = bound == Bound::LO || bound == Bound::LI;
    if (lower == (*value > 0.0))
        return mps_stop(reader, MpsFault::CONTENT,
                        "the bound is infinite, nothing can meet it\n");
    return 0;
}
} // namespace

int mps_bounds_line(MpsReader *reader)
{
    MpsCard card;
    TRY(mps_card(reader, &card));
    const Bound bound = bound_find(card.type);
    if (bound == Bound::COUNT_)
        return mps_stop(reader, MpsFault::CONTENT, "unknown type of bound\n");
    if (!mps_set_counts(reader, &reader->bound_set, card.name, MpsWarning::MORE_BOUND_SETS))
        return 0;
    double value = 0.0;
    TRY(value_read(reader, bound, card.value[0], &value));
    const int column = mps_find_column(reader, card.entry[0]);
    if (column < 0)
        return mps_unknown(reader, MpsWarning::UNKNOWN_COLUMN_IN_BOUNDS, card.entry[0]);
    const BoundLine line = {reader, column, card.entry[0]};
    apply(&line, bound, value);
    return 0;
}
