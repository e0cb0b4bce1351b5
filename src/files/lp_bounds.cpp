// lp_bounds.cpp -- bounds in an LP-format file
//
// Forms       "x <= v" with any comparison, also turned round, "l <= x <= u" and "u >= x >= l", "x = v", "x free". A
//             number may have signs or be an infinite word.
// Rules       Of two lines for one bound the later is used, with a warning.
#include "files/lp_reader.h"

namespace
{
// A variable and what a line says of it.
struct Bound {
    TextSpan name;
    double value[2] = {0.0, 0.0}; // of lower and upper bound
    bool given[2] = {false, false};
    bool equal = false; // both from one "="
};

// Takes "name <comparison> value" into *bound; the comparison may stand on the other side of the name.
int note(LpReader *reader, Bound *bound, LpKind sense, double value, TextSpan at)
{
    const bool less = sense == LpKind::LESS;
    bound->equal = sense == LpKind::EQUAL;
    for (int side = 0; side < 2; side++) {
        const bool upper = side == 1;
        if (!bound->equal && upper != less) continue;
        if (bound->given[side])
            return lp_stop(reader, at,
                           "the comparisons of a chain are twice <= or twice >=");
        bound->value[side] = value;
        bound->given[side] = true;
    }
    return 0;
}

// Tests the bound "name <sense> infinite value": a word for infinity sets no bound, or removes one.
int check_infinite(LpReader *reader, LpKind sense, double value, TextSpan at)
{
    if (sense == LpKind::EQUAL)
        return lp_stop(reader, at, "a variable cannot be fixed at infinity");
    if ((sense == LpKind::LESS) == (value < 0.0))
        return lp_stop(reader, at, "the bound is infinite, nothing can meet it");
    return 0;
}

// "value <comparison>" before the name.
int take_left(LpReader *reader, Bound *bound)
{
    const TextSpan at = reader->token.text;
    bool infinite = false;
    double value = 0.0;
    LpKind sense{};
    TRY(lp_value(reader, &value, &infinite));
    TRY(lp_comparison(reader, &sense));
    if (sense != LpKind::EQUAL)
        sense = sense == LpKind::LESS ? LpKind::GREATER : LpKind::LESS;
    if (infinite) TRY(check_infinite(reader, sense, value, at));
    return note(reader, bound, sense, value, at);
}

int take_right(LpReader *reader, Bound *bound)
{
    const TextSpan at = reader->token.text;
    LpKind sense{};
    bool infinite = false;
    double value = 0.0;
    TRY(lp_comparison(reader, &sense));
    const TextSpan behind = reader->token.text;
    TRY(lp_value(reader, &value, &infinite));
    if (infinite) TRY(check_infinite(reader, sense, value, behind));
    return note(reader, bound, sense, value, at);
}

void set_free(Bound *bound)
{
    bound->value[0] = -DRAFT_INFINITY;
    bound->value[1] = DRAFT_INFINITY;
    bound->given[0] = bound->given[1] = true;
}

int take_bound(LpReader *reader, Bound *bound)
{
    const LpToken *token = &reader->token;
    if (token->kind != LpKind::NAME || token->word == LpWord::INFINITE)
        TRY(take_left(reader, bound));
    if (token->kind != LpKind::NAME)
        return lp_stop_here(reader, "the name of a variable is missing here");
    bound->name = token->text;
    lp_next(reader);
    const bool left = bound->given[0] || bound->given[1];
    if (left && !lp_is_comparison(token->kind)) return 0;
    if (token->kind == LpKind::NAME && token->word == LpWord::FREE) {
        lp_next(reader);
        set_free(bound);
        return 0;
    }
    return take_right(reader, bound);
}

void apply(LpReader *reader, const Bound *bound)
{
    const int j = draft_find(&reader->draft, bound->name);
    if (j < 0) {
        lp_warn(reader, LpWarning::UNKNOWN_IN_BOUNDS, bound->name);
        return;
    }
    DraftColumns *columns = &reader->draft.columns;
    unsigned char *flags = &columns->flags.data[j];
    const bool again = (bound->given[0] && (*flags & LP_LOWER_GIVEN)) ||
                       (bound->given[1] && (*flags & LP_UPPER_GIVEN));
    if (again) lp_warn(reader, LpWarning::BOUND_TWICE, bound->name);
    if (bound->given[0]) columns->lb.data[j] = bound->value[0];
    if (bound->given[1]) columns->ub.data[j] = bound->value[1];
    int now = *flags & (LP_LOWER_GIVEN | LP_UPPER_GIVEN);
    if (bound->given[0]) now |= LP_LOWER_GIVEN;
    if (bound->given[1]) now |= LP_UPPER_GIVEN;
    if (bound->equal && bound->value[0] == 1.0)
        now |= LP_SET_TO_ONE; // exactly 1 in the file
    *flags = static_cast<unsigned char>(now);
}
} // namespace

int lp_bounds(LpReader *reader)
{
    while (reader->token.kind != LpKind::END && !lp_at_section(reader)) {
        Bound bound;
        TRY(take_bound(reader, &bound));
        apply(reader, &bound);
    }
    return 0;
}
