// lp_constraints.cpp -- the objective and the constraints of an LP-format file
//
// Forms       "name: sum <= number", with any comparison; numbers and variables may stand on both sides. With a number
//             on the left also "number <= sum <= number", a range, whose comparisons point the same way.
// Where it ends  A constraint ends where nothing more can follow; see lp_sum.cpp for line ends. "x <= 2 y" and a next
//             line "- z >= 1" could be two constraints or one: that is an error, a label says what is meant.
// Infinite    An infinite side of a range leaves an inequality.
#include "files/lp_names.h"
#include "files/lp_reader.h"
#include <climits>
#include <cmath>

// ---- Rows ----

namespace
{
// The name of a row, which may be empty: then it gets its number.
int name_row(LpReader *reader, TextSpan label)
{
    ModelDraft *draft = &reader->draft;
    NameTable *names = &reader->rows.names;
    const int64_t length = span_length(label);
    if (!length) return array_append(&draft->row_names, static_cast<const char *>(nullptr));
    const char *copy = PoolCopy(draft->pool, label.begin, static_cast<size_t>(length));
    if (!copy) return OUT_OF_MEMORY;
    TRY(array_append(&draft->row_names, copy));
    if (name_table_find(names, copy, length) < 0)
        return name_table_append(names, copy, length);
    lp_warn(reader, LpWarning::NAME_TWICE, label);
    return 0;
}

int open_row(LpReader *reader, TextSpan label)
{
    LpRows *rows = &reader->rows;
    if (rows->begin.size == INT_MAX)
        return lp_stop_here(reader, "there are too many constraints");
    TRY(array_append(&rows->begin, static_cast<int>(rows->column.size)));
    return name_row(reader, label);
}

int close_row(LpReader *reader, LpKind sense, double rhs)
{
    const char letter = sense == LpKind::LESS ? '<' : sense == LpKind::GREATER ? '>' : '=';
    TRY(array_append(&reader->draft.row_sense, letter));
    return array_append(&reader->draft.rhs, rhs);
}

LpKind mirrored(LpKind sense)
{
    if (sense == LpKind::EQUAL) return sense;
    return sense == LpKind::LESS ? LpKind::GREATER : LpKind::LESS;
}

// ---- Sides ----

// A constraint in work: its text begins at `at`.
struct Constraint {
    TextSpan at;
    LpSum left, middle, right;
    LpKind first = LpKind::END;  // comparison operator
    LpKind second = LpKind::END; // second one, of a range
};

bool is_infinite(const LpSum *side)
{
    return side->infinite || std::fabs(side->constant) >= DRAFT_HUGE;
}

// side - constant, infinite sides as they are.
int shifted(LpReader *reader, const Constraint *row, const LpSum *side, double constant,
            double *value)
{
    *value = side->infinite ? side->constant : side->constant - constant;
    if (std::isfinite(*value)) return 0;
    return lp_stop(reader, row->at, "the sum of the numbers is too large");
}

// sum <= number, whichever side the variables are on.
int settle_plain(LpReader *reader, const Constraint *row)
{
    const bool turned = !row->left.variables && row->middle.variables;
    const LpSum *sum = turned ? &row->middle : &row->left;
    const LpSum *side = turned ? &row->left : &row->middle;
    if (sum->infinite && side->infinite)
        return lp_stop(reader, row->at, "both sides are infinite");
    if (sum->infinite || (side->infinite && row->first == LpKind::EQUAL))
        return lp_stop(reader, row->at, "infinity cannot stand here");
    double rhs = 0.0;
    TRY(shifted(reader, row, side, sum->constant, &rhs));
    return close_row(reader, turned ? mirrored(row->first) : row->first, rhs);
}

// low <= sum <= high.
int settle_range(LpReader *reader, const Constraint *row)
{
    LpRows *rows = &reader->rows;
    const bool rising = row->first == LpKind::LESS;
    const LpSum *low = rising ? &row->left : &row->right;
    const LpSum *high = rising ? &row->right : &row->left;
    if (row->middle.infinite) return lp_stop(reader, row->at, "infinity cannot stand here");
    double lower = 0.0;
    double upper = 0.0;
    TRY(shifted(reader, row, low, row->middle.constant, &lower));
    TRY(shifted(reader, row, high, row->middle.constant, &upper));
    if (is_infinite(low) && low->constant < 0.0)
        return close_row(reader, LpKind::LESS, upper);
    if (is_infinite(high) && high->constant > 0.0)
        return close_row(reader, LpKind::GREATER, lower);
    if (is_infinite(low) || is_infinite(high))
        return lp_stop(reader, row->at, "the sides of the range exclude each other");
    if (upper < lower) lp_warn(reader, LpWarning::EMPTY_RANGE, row->at);
    TRY(array_append(&rows->range_row, static_cast<int>(rows->begin.size - 1)));
    TRY(array_append(&rows->width, upper - lower));
    return close_row(reader, LpKind::EQUAL, upper);
}

// ---- Constraints ----

// The second comparison and what follows it.
int take_limit(LpReader *reader, Constraint *row)
{
    const TextSpan at = reader->token.text;
    TRY(lp_comparison(reader, &row->second));
    if (row->left.variables)
        return lp_stop(reader, at, "a chain of comparisons begins and ends with a number");
    if (row->second != row->first || row->first == LpKind::EQUAL)
        return lp_stop(reader, at, "the comparisons of a chain are twice <= or twice >=");
    TRY(lp_sum(reader, LpPlace::LIMIT, &row->right));
    if (!row->right.variables) return 0;
    return lp_stop(reader, at, "a chain of comparisons begins and ends with a number");
}

// What the first token of a constraint must not be: a number behind that of the constraint before, as in "<= 1 000"; a
// section with a colon, as in "bounds:", whose lines would become constraints; or a word that looks like a heading,
// alone on its line and unknown so far, which a sign on the next line would make a variable.
int check_begin(LpReader *reader, const LpToken *begin, bool named, bool alone)
{
    const bool first = !reader->rows.begin.size;
    if (!named && alone && begin->kind == LpKind::NAME && lp_like_heading(begin->text) &&
        draft_find(&reader->draft, begin->text) < 0)
        return lp_stop(reader, begin->text, "this is neither a variable nor a section");
    if (!named && begin->kind == LpKind::NUMBER && !begin->fresh && !first)
        return lp_stop(reader, begin->text, "a number cannot follow a number");
    const bool section = begin->word >= LpWord::BOUNDS && begin->word <= LpWord::END;
    if (named && section && begin->fresh && reader->token.fresh)
        return lp_stop(reader, begin->text, "the word of a section has no colon behind it");
    return 0;
}

int take_constraint(LpReader *reader)
{
    Constraint row;
    TextSpan label;
    row.at = reader->token.text;
    const LpToken begin = reader->token;
    const bool alone = begin.fresh && lp_ends_line(reader);
    const bool named = lp_take_label(reader, &label);
    TRY(check_begin(reader, &begin, named, alone));
    TRY(open_row(reader, label));
    TRY(lp_sum(reader, LpPlace::LEFT, &row.left));
    TRY(lp_comparison(reader, &row.first));
    const LpPlace place = row.left.variables ? LpPlace::RIGHT : LpPlace::MIDDLE;
    TRY(lp_sum(reader, place, &row.middle));
    const LpKind next = reader->token.kind;
    if (lp_is_comparison(next)) TRY(take_limit(reader, &row));
    if (place == LpPlace::RIGHT && row.middle.variables &&
        (next == LpKind::PLUS || next == LpKind::MINUS))
        return lp_stop_here(reader, "name the constraints: this line could continue the "
                                    "one above or begin another");
    return row.second == LpKind::END ? settle_plain(reader, &row)
                                     : settle_range(reader, &row);
}
} // namespace

int lp_constraints(LpReader *reader)
{
    if (reader->token.kind == LpKind::COLON) lp_next(reader);
    while (reader->token.kind != LpKind::END && !lp_at_section(reader))
        TRY(take_constraint(reader));
    return 0;
}

int lp_objective(LpReader *reader)
{
    TextSpan label;
    LpSum sum;
    if (reader->token.kind == LpKind::COLON) lp_next(reader);
    const bool head = reader->token.word == LpWord::SUBJECT_TO && reader->token.fresh;
    if (!head) lp_take_label(reader, &label);
    const TextSpan at = reader->token.text;
    TRY(lp_sum(reader, LpPlace::OBJECTIVE, &sum));
    if (sum.infinite) return lp_stop(reader, at, "infinity cannot be part of a sum");
    reader->draft.objcon = sum.constant;
    return 0;
}
