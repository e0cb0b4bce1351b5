// domain_activity.cpp -- least activities of directed rows, kept in double-double
//
// Problem     sum_j min(a_j l_j, a_j u_j) of every directed row, right after any number of changes and their undo.
// Method      A change of a bound adds a (new - old): the difference as the exact sum of two doubles, the product with
//             its rounding error. Undo adds the negative of the same numbers.
// Invariant   High is the double nearest to High + Low, whose error is about 2^-102 of the row's Size a change.
// Cost        O(1) a directed row that has the bound in its least activity; others are not touched.
// Literature  T. J. Dekker, "A floating-point technique for extending the available precision", Numer. Math. 18, 1971.
#include "domain/domain_parts.h"

namespace
{
inline void add_term(DirectedState *r, Twofold term)
{
    const Twofold sum = two_sum(r->High, term.high);
    const double low = sum.low + (r->Low + term.low);
    r->High = sum.high + low;
    r->Low = low - (r->High - sum.high);
}

inline void queue_if_it_acts(Domain *d, DirectedState *r, int directed, RowsMay act)
{
    if (act == RowsMay::NOT || r->Queued || r->Infinite > 1 || r->High <= r->Trigger)
        return;
    queue_row(d, directed);
}

// state += a (to - from) for each entry a.                                            cost: entries
inline void shift_terms(Domain *d, const DirectedEntry *__restrict e, int64_t count,
                        double from, double to, RowsMay act)
{
    DirectedState *state = d->State.data;
    const Twofold step = two_sum(to, -from);
    const SplitNumber part = split_number(step.high);
    const bool exact =
        part.Low == 0 && step.low == 0 && std::fabs(step.high) == 1; // assigned
    for (int64_t k = 0; k < count; k++) {
        DirectedState *r = &state[e[k].Directed];
        const double a = e[k].Val;
        Twofold term = {a * step.high, 0};
        if (!exact) {
            term = split_product(a, step.high, part);
            term.low += a * step.low;
        }
        add_term(r, term);
        queue_if_it_acts(d, r, e[k].Directed, act);
    }
}

// A term that was infinite becomes a bound, or the other way round.
inline void replace_terms(Domain *d, const DirectedEntry *__restrict e, int64_t count,
                          double bound, int infinite_more, RowsMay act)
{
    DirectedState *state = d->State.data;
    const double sign = infinite_more > 0 ? -1 : 1;
    const SplitNumber part = split_number(bound);
    for (int64_t k = 0; k < count; k++) {
        DirectedState *r = &state[e[k].Directed];
        add_term(r, split_product(sign * e[k].Val, bound, part));
        r->Infinite += infinite_more;
        queue_if_it_acts(d, r, e[k].Directed, act);
    }
}
// The same for the rows of a block; `list` is the place in ColumnBlock::Beg.
void change_in_block(Domain *d, const ColumnBlock *block, int64_t list, double from,
                     double to, RowsMay act)
{
    const int64_t begin = block->Beg.data[list];
    const int64_t count = block->Beg.data[list + 1] - begin;
    const DirectedEntry *entry = block->Entry.data + begin;
    if (domain_is_infinite(from))
        replace_terms(d, entry, count, to, -1, act);
    else if (domain_is_infinite(to))
        replace_terms(d, entry, count, from, 1, act);
    else
        shift_terms(d, entry, count, from, to, act);
    d->Effort += count;
}
} // namespace

void activity_change(Domain *d, int j, BoundSide side, double from, double to, RowsMay act)
{
    if (domain_is_infinite(from) && domain_is_infinite(to)) return;
    const int64_t list = bound_number(j, side);
    change_in_block(d, &d->Rows->ModelCols, list, from, to, act);
    if (d->Appended) change_in_block(d, &d->Rows->AppendedCols, list, from, to, act);
}

void activity_compute(Domain *d, int directed)
{
    const DirectedRow *row = &d->Rows->Directed.data[directed];
    const int64_t begin = d->Rows->RowBeg.data[row->Row];
    const int64_t end = d->Rows->RowBeg.data[row->Row + 1];
    DirectedState *r = &d->State.data[directed];
    r->High = r->Low = 0;
    r->Infinite = 0;
    Twofold sum;
    for (int64_t p = begin; p < end; p++) {
        const RowEntry *e = &d->Rows->Entry.data[p];
        const double a = row->Sign * e->Val;
        const double bound = a > 0 ? d->Lower.data[e->Col] : d->Upper.data[e->Col];
        if (domain_is_infinite(bound))
            r->Infinite++;
        else
            twofold_add(&sum, split_product(a, bound, split_number(bound)));
    }
    r->High = sum.high;
    r->Low = sum.low;
    d->Effort += end - begin;
}
