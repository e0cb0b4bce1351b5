// lp_sum.cpp -- sums of terms in an LP-format file, plain numbers, comparisons
//
// Terms       Signs, then a number, a variable, or a number times a variable; the product sign may be left out before a
//             variable, and so may blanks: "- 2x", "2 * x", "x*2".
// Line ends   Mean nothing inside a sum: terms behind the first need a sign, so the sum goes on when one comes. Only
//             behind a comparison that has variables before it a sum ends with its line, since the next line may begin
//             another constraint with a sign.
// Words       A word of a section ends a sum, unless a sign or factor before it on its line asks for a variable.
#include "files/lp_reader.h"
#include <climits>
#include <cmath>

namespace
{
// One term: factor, and a column or -1.
struct Term {
    double factor = 1;
    int column = -1;
    bool first = true;   // first term of its sum
    bool number = false; // a number was given
    bool infinite = false;
    TextSpan at;
    TextSpan digits; // text of the last number
};

int take_number(LpReader *reader, double *factor)
{
    const LpToken *token = &reader->token;
    *factor *= token->value;
    if (!std::isfinite(*factor)) return lp_stop_here(reader, "the number is too large");
    lp_next(reader);
    return 0;
}
} // namespace

double lp_signs(LpReader *reader, bool *any)
{
    double sign = 1.0;
    *any = false;
    for (;; lp_next(reader)) {
        const LpKind kind = reader->token.kind;
        if (kind != LpKind::PLUS && kind != LpKind::MINUS) return sign;
        if (kind == LpKind::MINUS) sign = -sign;
        *any = true;
    }
}

namespace
{
// The column of the name in hand, a new one if it was not met before.
int take_column(LpReader *reader, int *column)
{
    ModelDraft *draft = &reader->draft;
    const TextSpan name = reader->token.text;
    *column = draft_find(draft, name);
    if (*column < 0) {
        TRY(draft_column(draft, name, 'C', DRAFT_INFINITY));
        TRY(array_append(&reader->rows.latest, -1));
        *column = static_cast<int>(draft->columns.names.entries.size - 1);
    }
    lp_next(reader);
    return 0;
}

// Whether the name behind a number is no factor of it, since the number ends a constraint. "x <= 1 y >= 2" on one line
// are two of them, "x <= 2 y" is one.
bool begins_constraint(const LpReader *reader, LpPlace place, const Term *term)
{
    if (lp_before_colon(reader) || place == LpPlace::LIMIT) return true;
    if (place != LpPlace::RIGHT) return false;
    return reader->token.fresh || (term->first && lp_compared_ahead(reader));
}

// Whether the token in hand is a variable of the term, not a word or the next label.
bool is_factor(const LpReader *reader, LpPlace place, const Term *term, bool wanted)
{
    const LpToken *token = &reader->token;
    if (token->kind != LpKind::NAME) return false;
    if (term->number && !wanted && begins_constraint(reader, place, term)) return false;
    const bool head = place == LpPlace::OBJECTIVE && token->word == LpWord::SUBJECT_TO;
    if (!head && !lp_at_section(reader)) return true;
    return wanted && !token->fresh;
}

// "x <= 1d2", "x <= 5abc": behind a comparison a name that touches its number is more likely part of a number that is
// not understood, unless a variable of that name is known.
bool is_bad_number(const LpReader *reader, LpPlace place, const Term *term)
{
    const TextSpan name = reader->token.text;
    const char before = term->number ? name.begin[-1] : ' ';
    const bool touches = (before >= '0' && before <= '9') || before == '.';
    return place == LpPlace::RIGHT && touches && draft_find(&reader->draft, name) < 0;
}

// The factors of a term behind its signs; `wanted` says that one must come.
int take_factors(LpReader *reader, LpPlace place, bool wanted, Term *term)
{
    for (;;) {
        const LpToken *token = &reader->token;
        if (token->kind == LpKind::NUMBER && (wanted || !term->number)) {
            term->digits = token->text;
            TRY(take_number(reader, &term->factor));
            term->number = true;
        } else if (token->kind == LpKind::NAME && token->word == LpWord::INFINITE &&
                   !term->number && term->column < 0) {
            term->infinite = true;
            lp_next(reader);
            return 0;
        } else if (is_factor(reader, place, term, wanted)) {
            if (term->column >= 0)
                return lp_stop_here(reader, "a product of two variables is not linear");
            if (is_bad_number(reader, place, term))
                return lp_stop_here(reader, "this is no variable so far, and no number");
            TRY(take_column(reader, &term->column));
        } else if (wanted) {
            return lp_stop_here(reader, "a number or a name is missing here");
        } else {
            return 0;
        }
        wanted = reader->token.kind == LpKind::TIMES;
        if (wanted)
            lp_next(reader);
        else if (term->column >= 0)
            return 0;
    }
}

// "x + 2e1" where a variable is called e1: a number of its own, or a term.
bool is_ambiguous(const LpReader *reader, LpPlace place, const Term *term)
{
    if (!term->number || term->column >= 0) return false;
    if (place == LpPlace::RIGHT || place == LpPlace::LIMIT) return false; // is a number
    if (term->first && lp_is_comparison(reader->token.kind)) return false;
    const char *p = term->digits.begin;
    while (p < term->digits.end && *p != 'e' && *p != 'E') p++;
    return draft_find(&reader->draft, {p, term->digits.end}) >= 0;
}

// "min x + 2 bin": the word of a section behind a number of the objective, at the end of the line.
bool is_swallowed(const LpReader *reader, LpPlace place, const Term *term)
{
    const LpToken *token = &reader->token;
    const bool section = token->word >= LpWord::BOUNDS && token->word < LpWord::END;
    return place == LpPlace::OBJECTIVE && term->number && term->column < 0 &&
           !token->fresh && section && lp_at_section(reader) && lp_ends_line(reader);
}

// ---- Where terms go ----

int too_large(LpReader *reader, const Term *term)
{
    return lp_stop(reader, term->at, "the sum of these terms is too large");
}

int add_cost(LpReader *reader, const Term *term)
{
    double *cost = &reader->draft.columns.obj.data[term->column];
    *cost += term->factor;
    return std::isfinite(*cost) ? 0 : too_large(reader, term);
}

int add_entry(LpReader *reader, const Term *term, double side)
{
    LpRows *rows = &reader->rows;
    const double value = side * term->factor;
    int *latest = &rows->latest.data[term->column];
    if (*latest >= rows->begin.data[rows->begin.size - 1]) {
        double *sum = &rows->value.data[*latest];
        *sum += value;
        return std::isfinite(*sum) ? 0 : too_large(reader, term);
    }
    if (rows->column.size == INT_MAX)
        return lp_stop(reader, term->at, "more than %d entries", INT_MAX);
    *latest = static_cast<int>(rows->column.size);
    TRY(array_append(&rows->column, term->column));
    return array_append(&rows->value, value);
}

int add_term(LpReader *reader, LpPlace place, const Term *term, LpSum *sum)
{
    if (term->infinite) {
        sum->infinite = true;
        sum->constant = term->factor * DRAFT_INFINITY;
        return 0;
    }
    if (term->column < 0) {
        sum->constant += term->factor;
        return std::isfinite(sum->constant) ? 0 : too_large(reader, term);
    }
    sum->variables = true;
    if (place == LpPlace::OBJECTIVE) return add_cost(reader, term);
    return add_entry(reader, term, place == LpPlace::RIGHT ? -1.0 : 1.0);
}

// ---- Sums ----

// Whether a further term stands in hand.
bool goes_on(const LpReader *reader, LpPlace place, const LpSum *sum)
{
    const LpToken *token = &reader->token;
    if (token->kind != LpKind::PLUS && token->kind != LpKind::MINUS) return false;
    if (!token->fresh) return true;
    switch (place) {
    case LpPlace::RIGHT:
    case LpPlace::LIMIT:
        return false;
    case LpPlace::MIDDLE:
        return sum->variables;
    default:
        return true;
    }
}
} // namespace

int lp_sum(LpReader *reader, LpPlace place, LpSum *sum)
{
    *sum = LpSum{};
    bool first = true;
    do {
        Term term;
        bool signs = false;
        term.at = reader->token.text;
        term.first = first;
        term.factor = lp_signs(reader, &signs);
        const bool wanted = signs || place != LpPlace::OBJECTIVE;
        TRY(take_factors(reader, place, wanted, &term));
        if (!term.number && term.column < 0 && !term.infinite) return 0; // the sum is empty
        if (is_ambiguous(reader, place, &term))
            return lp_stop(reader, term.digits,
                           "this could be a number, or a factor and a variable");
        if (is_swallowed(reader, place, &term))
            return lp_stop_here(reader,
                                "this could be a section, or a variable with its factor");
        if (sum->infinite || (term.infinite && !first))
            return lp_stop(reader, term.at, "infinity cannot be part of a sum");
        TRY(add_term(reader, place, &term, sum));
        first = false;
    } while (goes_on(reader, place, sum));
    return 0;
}

int lp_comparison(LpReader *reader, LpKind *sense)
{
    *sense = reader->token.kind;
    if (!lp_is_comparison(*sense))
        return lp_stop_here(reader, "<=, >= or = must stand here");
    lp_next(reader);
    return 0;
}

int lp_value(LpReader *reader, double *value, bool *infinite)
{
    bool signs = false;
    const double sign = lp_signs(reader, &signs);
    const LpToken *token = &reader->token;
    *infinite = token->kind == LpKind::NAME && token->word == LpWord::INFINITE;
    *value = sign;
    if (*infinite) {
        *value *= DRAFT_INFINITY;
        lp_next(reader);
        return 0;
    }
    if (token->kind != LpKind::NUMBER)
        return lp_stop_here(reader, "a number is missing here");
    return take_number(reader, value);
}
