// domain.cpp -- the record Domain: creation, tightening, trail and undo
//
// Invariant   Lower <= Upper, whatever happens; a bound that would cross the other one is not stored, but makes the
//             Domain infeasible.
// Cost        Tightening and undo: the entries of the column in the rows that the bound limits.
#include "domain/domain_parts.h"
#include "runtime/record.h"
#include <algorithm>
#include <cmath>

namespace
{
// Larger bounds of integer columns are rounded outwards: the tolerance would be lost in their last digits.
constexpr double LARGEST_ROUNDED = 1e9;

double round_bound(const Domain *d, BoundSide side, double value)
{
    if (domain_is_infinite(value)) return value;
    const bool lower = side == BoundSide::LOWER;
    if (std::fabs(value) > LARGEST_ROUNDED)
        return lower ? std::floor(value) : std::ceil(value);
    const double tol = d->Tol.Integrality;
    return (lower ? std::ceil(value - tol) : std::floor(value + tol)) + 0.0; // no -0
}

double side_limit(const Domain *d, const DirectedRow *row)
{
    const double tol = d->Tol.Feasibility;
    return row->Side + tol * (1 + row->Soft) + rounding_margin(row->Size, tol);
}

// Limit, trigger and activity of directed rows from `first` on, all queued.
void load_rows(Domain *d, int64_t first)
{
    for (int64_t k = first; k < d->State.size; k++) {
        const DirectedRow *row = &d->Rows->Directed.data[k];
        DirectedState *r = &d->State.data[k];
        d->Limit.data[k] = side_limit(d, row);
        r->Trigger = d->Limit.data[k] - row->Reach;
        r->Queued = 0;
        activity_compute(d, static_cast<int>(k));
        queue_row(d, static_cast<int>(k));
    }
}

void load_bounds(Domain *d, const double *lower, const double *upper)
{
    const int n = d->Rows->NumCols;
    d->FixedCount = 0;
    for (int j = 0; j < n; j++) {
        double l = lower[j], u = upper[j];
        if (d->Rows->IsInteger.data[j]) {
            l = round_bound(d, BoundSide::LOWER, l);
            u = round_bound(d, BoundSide::UPPER, u);
        }
        if (l > u) {
            const bool gap = d->Rows->IsInteger.data[j] || l - u > 2 * d->Tol.Feasibility;
            if (gap) domain_refuse(d, {u, j, {ReasonKind::GLOBAL, -1}, BoundSide::UPPER});
            u = l;
        }
        d->Lower.data[j] = l;
        d->Upper.data[j] = u;
        d->FixedCount += u - l <= DOMAIN_ZERO;
        d->Changed.data[j] = j;
        d->IsChanged.data[j] = 1;
    }
    d->NumChanged = n;
}

int allocate(Domain *d)
{
    const int64_t n = d->Rows->NumCols, rows = d->Rows->Directed.size;
    TRY(array_resize(&d->Lower, n));
    TRY(array_resize(&d->Upper, n));
    TRY(array_reserve(&d->Trail, 2 * n + 16));
    TRY(array_resize(&d->Newest, 2 * n));
    TRY(array_resize(&d->State, rows));
    TRY(array_resize(&d->Limit, rows));
    TRY(array_resize(&d->Queue, rows));
    TRY(array_resize(&d->Changed, n));
    return array_resize(&d->IsChanged, n);
}

// The change is stored without a test. False without memory for the trail.
bool record_change(Domain *d, int j, BoundSide side, double from, double to,
                   BoundReason why)
{
    int *newest = &d->Newest.data[bound_number(j, side)];
    if (d->Trail.size == INT32_MAX ||
        array_append(&d->Trail, {from, to, j, *newest, why, side})) {
        d->Error = OUT_OF_MEMORY;
        return false;
    }
    *newest = static_cast<int>(d->Trail.size - 1);
    return true;
}

// The bound itself, with all that counts it.
inline void set_bound(Domain *d, int j, BoundSide side, double from, double to, RowsMay act)
{
    const bool was_fixed = domain_is_fixed(d, j);
    (side == BoundSide::LOWER ? d->Lower : d->Upper).data[j] = to;
    d->FixedCount += domain_is_fixed(d, j) - was_fixed;
    if (!d->IsChanged.data[j]) {
        d->IsChanged.data[j] = 1;
        d->Changed.data[d->NumChanged++] = j;
    }
    activity_change(d, j, side, from, to, act);
}

void clear_queue(Domain *d)
{
    for (; d->QueueCount > 0; d->QueueCount--) {
        d->State.data[d->Queue.data[d->QueueHead]].Queued = 0;
        if (++d->QueueHead == d->Queue.size) d->QueueHead = 0;
    }
    d->QueueHead = 0;
}

// The queue without rows from `first` on, at the start of its ring.
void keep_queued(Domain *d, int first)
{
    const int64_t ring = d->Queue.size;
    if (ring > 0)
        std::rotate(d->Queue.begin(), d->Queue.data + d->QueueHead, d->Queue.end());
    int *end = std::remove_if(d->Queue.begin(), d->Queue.data + d->QueueCount,
                              [first](int k) { return k >= first; });
    d->QueueHead = 0;
    d->QueueCount = static_cast<int>(end - d->Queue.data);
}
} // namespace

int domain_create(Domain **out, const PropagationRows *rows, const CliqueTable *cliques,
                  const ImplicationLog *log, const double *lower, const double *upper,
                  DomainTolerances tolerances)
{
    *out = nullptr;
    Domain *d = record_create<Domain>();
    if (!d) return OUT_OF_MEMORY;
    d->Rows = rows;
    d->Cliques = cliques;
    d->Log = log;
    d->Tol = tolerances;
    if (const int error = allocate(d)) {
        domain_free(d);
        return error;
    }
    domain_reset(d, lower, upper);
    *out = d;
    return 0;
}

void domain_free(Domain *d)
{
    record_free(d);
}

void domain_reset(Domain *d, const double *lower, const double *upper)
{
    d->Trail.size = d->FixMarks.size = 0;
    std::fill(d->Newest.begin(), d->Newest.end(), -1);
    d->QueueHead = d->QueueCount = 0;
    d->NextLiteral = 0;
    d->FreshLiterals = true;
    d->Infeasible = false;
    d->Error = 0;
    load_bounds(d, lower, upper);
    load_rows(d, 0);
    d->QueuedFrom = -1;
    if (d->Rows->Impossible >= 0)
        domain_refuse(d, {0, -1, {ReasonKind::ROW, d->Rows->Impossible}, BoundSide::UPPER});
    d->InfeasibleAt = -1;
}

int domain_rows_changed(Domain *d)
{
    const int model = d->Rows->NumModelDirected;
    const int64_t rows = d->Rows->Directed.size;
    d->Appended = false;
    keep_queued(d, model);
    d->State.size = model;
    if (rows == model) return 0;
    TRY(array_reserve(&d->Limit, rows));
    TRY(array_reserve(&d->State, rows));
    if (d->Queue.size < rows) TRY(array_resize(&d->Queue, rows));
    TRY(array_resize(&d->Limit, rows));
    TRY(array_resize(&d->State, rows));
    const bool was_empty = d->QueueCount == 0;
    load_rows(d, model);
    if (was_empty) d->QueuedFrom = -1; // new rows are not there because of a change
    d->Appended = true;
    return 0;
}

void domain_refuse(Domain *d, DomainConflict conflict)
{
    if (d->Infeasible) return;
    d->Infeasible = true;
    d->InfeasibleAt = d->Trail.size;
    d->Conflict = conflict;
}

void domain_tighten(Domain *d, int j, BoundSide side, double value, BoundReason reason)
{
    const bool is_integer = d->Rows->IsInteger[j];
    if (is_integer) value = round_bound(d, side, value);
    const bool lower = side == BoundSide::LOWER;
    const double old = lower ? d->Lower[j] : d->Upper[j];
    const double other = lower ? d->Upper[j] : d->Lower[j];
    const bool tighter = lower ? value > old : value < old; // false for NaN
    if (!tighter || d->Infeasible || d->Error) return;
    const double crossing = lower ? value - other : other - value;
    if (crossing > 0) {
        if (is_integer || crossing > 2 * d->Tol.Feasibility)
            return domain_refuse(d, {value, j, reason, side});
        value = other;            // both bounds hold within the tolerance
        if (value == old) return; // assigned
    }
    if (!record_change(d, j, side, old, value, reason)) return;
    set_bound(d, j, side, old, value, RowsMay::ACT);
}

void domain_undo(Domain *d, int64_t mark)
{
    if (mark <= d->QueuedFrom) clear_queue(d); // all of it comes from changes that go
    while (d->Trail.size > mark) {
        const TrailEntry e = d->Trail.data[--d->Trail.size];
        d->Newest.data[bound_number(e.Col, e.Side)] = e.Before;
        set_bound(d, e.Col, e.Side, e.New, e.Old, RowsMay::NOT);
    }
    if (mark <= d->InfeasibleAt) d->Infeasible = false;
    d->NextLiteral = std::min(d->NextLiteral, mark);
    while (d->FixMarks.size > 0 && d->FixMarks[d->FixMarks.size - 1] >= mark)
        d->FixMarks.size--;
}

int domain_take_changed(Domain *d, int *list)
{
    const int count = d->NumChanged;
    for (int k = 0; k < count; k++) {
        list[k] = d->Changed.data[k];
        d->IsChanged.data[list[k]] = 0;
    }
    d->NumChanged = 0;
    return count;
}
