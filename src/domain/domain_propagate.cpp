// domain_propagate.cpp -- bounds that rows, cliques and implications imply
//
// Problem     Tighten bounds until no row implies a tighter one that is worth it, or a contradiction is found.
// Method      For a directed row a x <= b with least activity m, every column gets a_j x_j <= b - m + (its term of m).
//             The scan over the row ends at the first key |a| (u - l) of build time that is not above b - m; in a row
//             with two sides no term can move further than the distance between least and largest activity. With one
//             infinite term only its column gets a bound, with more nothing follows.
// Accepted    Bounds of integer columns, rounded, when they gain SHARE_OF_INTEGERS of the range; bounds of continuous
//             columns when they gain SHARE of the range and LEAST_GAIN tolerances; where a bound was infinite, up to
//             LARGEST_NEW. Chains such as x <= 0.5 y, y <= 0.5 x end by that.
// Invariant   See Sound in domain.h: b is relaxed by tol (1 + sum of |a| of continuous columns), so that a point that
//             violates the row and bounds of continuous columns by the tolerance stays within it of each new bound.
// Cost        O(entries looked at); Effort counts them.
// Literature  M. W. P. Savelsbergh, "Preprocessing and probing techniques for mixed integer programming problems",
//             ORSA J. Computing 6, 1994.
//             T. Achterberg, "Constraint Integer Programming", dissertation, TU Berlin 2007, section 7.1.
#include "domain/domain_parts.h"
#include <algorithm>
#include <cmath>
#include <limits>

namespace
{
constexpr double SHARE = 0.3;       // least gain of a continuous bound, of the range
constexpr double LEAST_GAIN = 1000; // and in feasibility tolerances
constexpr double LARGEST_NEW = 1e8; // largest value of a bound that was infinite

// An integer column moves at least this share of its range, so that two rows cannot walk a large range in steps of 1.
constexpr double SHARE_OF_INTEGERS = 1e-3;

// Larger steps of an integer column are rounded outwards: the tolerance would be lost in their last digits.
constexpr double LARGEST_ROUNDED = 1e9;

// Changes of bounds that a call of domain_propagate makes at most: CHANGES_PER_COLUMN n + CHANGES_MORE. Binary columns
// need one each; what needs many is a chain of small steps.
constexpr int64_t CHANGES_PER_COLUMN = 4, CHANGES_MORE = 1000;

// One directed row while it is looked at.
struct Scan {
    const DirectedRow *Row;
    double Slack;  // limit minus least activity of the finite terms
    double Margin; // by which the limit is above the side
};

bool is_worth_it(const Domain *d, int j, double old, double value)
{
    const double gain = std::fabs(value - old);
    if (domain_is_infinite(old)) return std::fabs(value) <= LARGEST_NEW;
    double range = d->Upper.data[j] - d->Lower.data[j];
    if (range >= DOMAIN_INFINITE) range = std::max(1.0, std::fabs(old));
    if (d->Rows->IsInteger.data[j]) return gain >= SHARE_OF_INTEGERS * range;
    return gain > LEAST_GAIN * d->Tol.Feasibility && gain >= SHARE * range;
}

// The bound of column e->Col on the far side of `base`, where its term of the least activity is (0 for an infinite
// one): base + direction * slack / |a|, rounded outwards.
double implied_bound(const Domain *d, const Scan *scan, const RowEntry *e, double base,
                     double direction)
{
    const double size = std::fabs(e->Val), step = scan->Slack / size;
    if (d->Rows->IsInteger.data[e->Col]) {
        if (std::fabs(step) > LARGEST_ROUNDED) return base + direction * std::ceil(step);
        return base + direction * std::floor(step + d->Tol.Integrality);
    }
    // The limit allows for a violation of this column's bounds, which the new bound may have too.
    const double tol = d->Tol.Feasibility, margin = std::min(scan->Margin / size, 2 * tol);
    const double rounding = rounding_margin(std::fabs(base) + std::fabs(step), tol);
    return base + direction * (step - margin + rounding);
}

void try_entry(Domain *d, const Scan *scan, const RowEntry *e, double base)
{
    const bool upper = scan->Row->Sign * e->Val > 0;
    const double value = implied_bound(d, scan, e, base, upper ? 1 : -1);
    const double old = upper ? d->Upper.data[e->Col] : d->Lower.data[e->Col];
    if (upper ? value >= old : value <= old) return;
    if (!is_worth_it(d, e->Col, old, value)) return;
    domain_tighten(d, e->Col, upper ? BoundSide::UPPER : BoundSide::LOWER, value,
                   {ReasonKind::ROW, scan->Row->Row});
}

// All terms of the least activity are finite: each column whose term can move further than the slack gets a bound.
void scan_finite(Domain *d, const Scan *scan)
{
    const PropagationRows *rows = d->Rows;
    const RowEntry *__restrict e = rows->Entry.data + rows->RowBeg.data[scan->Row->Row];
    const RowEntry *const begin = e;
    const RowEntry *const end = rows->Entry.data + rows->RowBeg.data[scan->Row->Row + 1];
    const double *lower = d->Lower.data, *upper = d->Upper.data;
    for (; e < end && scan->Slack < static_cast<double>(e->Key); e++) {
        const double l = lower[e->Col], u = upper[e->Col];
        if (std::fabs(e->Val) * (u - l) <= scan->Slack) continue;
        try_entry(d, scan, e, scan->Row->Sign * e->Val > 0 ? l : u);
        if (d->Infeasible || d->Error) break;
    }
    d->Effort += e - begin;
}

// One term is infinite: its column gets a bound.
void scan_infinite(Domain *d, const Scan *scan)
{
    const PropagationRows *rows = d->Rows;
    const RowEntry *e = rows->Entry.data + rows->RowBeg.data[scan->Row->Row];
    const RowEntry *const begin = e;
    const RowEntry *const end = rows->Entry.data + rows->RowBeg.data[scan->Row->Row + 1];
    for (; e < end && std::isinf(e->Key); e++) {
        const bool positive = scan->Row->Sign * e->Val > 0;
        const double bound = positive ? d->Lower.data[e->Col] : d->Upper.data[e->Col];
        if (!domain_is_infinite(bound)) continue;
        try_entry(d, scan, e, 0);
        break;
    }
    d->Effort += e - begin + 1;
}

// No column can move the activity beyond the slack: the distance of least and largest activity is too small.
bool is_idle(const Domain *d, const Scan *scan, const DirectedState *state)
{
    if (scan->Row->Sibling < 0) return false;
    const DirectedState *other = &d->State.data[scan->Row->Sibling];
    return other->Infinite == 0 && scan->Slack >= -activity_of(state) - activity_of(other);
}

void refuse_row(Domain *d, const DirectedRow *row)
{
    domain_refuse(d, {0,
                      -1,
                      {ReasonKind::ROW, row->Row},
                      row->Sign > 0 ? BoundSide::UPPER : BoundSide::LOWER});
}

void look_at_row(Domain *d, int directed)
{
    const DirectedState *state = &d->State.data[directed];
    Scan scan = {&d->Rows->Directed.data[directed], 0, 0};
    d->Effort++;
    if (state->Infinite > 1) return;
    const double limit = d->Limit.data[directed];
    scan.Slack = (limit - state->High) - state->Low;
    scan.Margin = limit - scan.Row->Side;
    if (state->Infinite == 1) return scan_infinite(d, &scan);
    if (scan.Slack < 0) {
        activity_compute(d, directed); // beyond doubt
        scan.Slack = (limit - state->High) - state->Low;
        if (scan.Slack < 0) return refuse_row(d, scan.Row);
    }
    if (!is_idle(d, &scan, state)) scan_finite(d, &scan);
}

int take_row(Domain *d)
{
    const int directed = d->Queue.data[d->QueueHead];
    if (++d->QueueHead == d->Queue.size) d->QueueHead = 0;
    d->QueueCount--;
    d->State.data[directed].Queued = 0;
    return directed;
}

// The rest of the queue is given up: correct, and some propagation is missed.
void drop_queue(Domain *d)
{
    while (d->QueueCount > 0) take_row(d);
}
} // namespace

bool domain_propagate(Domain *d, double effort)
{
    const double last = effort < 0 ? std::numeric_limits<double>::infinity()
                                   : static_cast<double>(d->Effort) + effort;
    const int64_t most =
        d->Trail.size + CHANGES_PER_COLUMN * d->Rows->NumCols + CHANGES_MORE;
    while (!d->Infeasible && !d->Error && static_cast<double>(d->Effort) < last) {
        domain_follow_literals(d);
        if (d->Infeasible || d->QueueCount == 0) break;
        if (d->Trail.size > most)
            drop_queue(d);
        else
            look_at_row(d, take_row(d));
    }
    return !d->Infeasible;
}
