// domain_service.cpp -- Domain as heuristics use it: fix, look, take back
#include "domain/domain_parts.h"
#include <algorithm>
#include <cmath>

int DomFix(Domain *d, int j, double value)
{
    if (array_append(&d->FixMarks, domain_mark(d))) {
        d->Error = OUT_OF_MEMORY;
        return d->Infeasible;
    }
    if (d->Rows->IsInteger[j]) value = std::nearbyint(value);
    const BoundReason reason = {ReasonKind::DECISION, -1};
    domain_tighten(d, j, BoundSide::LOWER, value, reason);
    domain_tighten(d, j, BoundSide::UPPER, value, reason);
    return DomPropagate(d, -1);
}

int DomPropagate(Domain *d, double effort)
{
    return domain_propagate(d, effort) ? 0 : 1;
}

void DomUndoLast(Domain *d)
{
    if (d->FixMarks.size == 0) return;
    const int64_t left = d->FixMarks.size - 1;
    domain_undo(d, d->FixMarks[left]);
    d->FixMarks.size = left; // earlier ones may have the same mark
}

double DomLower(const Domain *d, int j)
{
    return d->Lower[j];
}

double DomUpper(const Domain *d, int j)
{
    return d->Upper[j];
}

int DomFixedCount(const Domain *d)
{
    return d->FixedCount;
}

bool DomIsInfeasible(const Domain *d)
{
    return d->Infeasible;
}

namespace
{
// Least value of sign a x of row i by a pass over its entries.
double scan_least(const Domain *d, int i, double sign)
{
    Twofold sum;
    for (int64_t p = d->Rows->RowBeg[i]; p < d->Rows->RowBeg[i + 1]; p++) {
        const RowEntry *e = &d->Rows->Entry.data[p];
        const double a = sign * e->Val, bound = a > 0 ? d->Lower[e->Col] : d->Upper[e->Col];
        if (domain_is_infinite(bound)) return -INFINITE_BOUND;
        twofold_add(&sum, split_product(a, bound, split_number(bound)));
    }
    return sum.high;
}

double row_least(const Domain *d, int i, double sign)
{
    for (int k = d->Rows->FirstDirected[i]; k < d->Rows->FirstDirected[i + 1]; k++) {
        const DirectedRow *row = &d->Rows->Directed[k];
        if (k >= d->State.size || row->Sign != sign) continue;
        return d->State[k].Infinite ? -INFINITE_BOUND : activity_of(&d->State[k]);
    }
    return scan_least(d, i, sign);
}
} // namespace

double domain_row_least(const Domain *d, int i)
{
    return row_least(d, i, 1);
}

double domain_row_largest(const Domain *d, int i)
{
    return -row_least(d, i, -1);
}
