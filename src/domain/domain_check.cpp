// domain_check.cpp -- the invariants of a Domain, computed anew
#include "domain/domain_parts.h"
#include <cmath>

#ifdef TVX_DEBUG
namespace
{
// Activity of a directed row in long double, the sum of its terms' sizes, and the infinite ones.
struct PlainActivity {
    long double Sum = 0, Size = 0;
    int Infinite = 0;
};

PlainActivity plain_activity(const Domain *d, const DirectedRow *row)
{
    PlainActivity plain;
    for (int64_t p = d->Rows->RowBeg[row->Row]; p < d->Rows->RowBeg[row->Row + 1]; p++) {
        const RowEntry e = d->Rows->Entry[p];
        const double a = row->Sign * e.Val,
                     bound = a > 0 ? d->Lower[e.Col] : d->Upper[e.Col];
        if (domain_is_infinite(bound)) {
            plain.Infinite++;
            continue;
        }
        plain.Sum += static_cast<long double>(a) * bound;
        plain.Size += fabsl(static_cast<long double>(a) * bound);
    }
    return plain;
}

// long double rounds at 2^-63, and double-double has added terms of the row's size.
int check_activities(const Domain *d)
{
    int wrong = 0;
    for (int64_t k = 0; k < d->State.size; k++) {
        const DirectedRow *row = &d->Rows->Directed[k];
        const DirectedState *r = &d->State[k];
        const PlainActivity plain = plain_activity(d, row);
        wrong += plain.Infinite != r->Infinite;
        const long double sum = static_cast<long double>(r->High) + r->Low;
        const long double room = 1e-17L * plain.Size + 1e-25L * row->Size + 1e-300L;
        wrong += fabsl(plain.Sum - sum) > room;
    }
    return wrong;
}

int check_queue(const Domain *d)
{
    int wrong = 0, marked = 0;
    for (int64_t k = 0; k < d->State.size; k++) marked += d->State[k].Queued;
    wrong += marked != d->QueueCount;
    for (int k = 0; k < d->QueueCount; k++)
        wrong += !d->State[d->Queue[(d->QueueHead + int64_t{k}) % d->Queue.size]].Queued;
    return wrong;
}

int check_trail(const Domain *d)
{
    int wrong = 0;
    int64_t reached = 0;
    for (int64_t k = 0; k < d->Newest.size; k++) {
        const double bound = (k & 1 ? d->Upper : d->Lower)[k / 2];
        double value = bound;
        int last = INT32_MAX;
        for (int at = d->Newest[k]; at >= 0; at = d->Trail[at].Before) {
            const TrailEntry e = d->Trail[at];
            wrong += e.New != value || at >= last || at >= d->Trail.size; // stored values
            wrong += bound_number(e.Col, e.Side) != k;
            value = e.Old;
            last = at;
            reached++;
        }
    }
    return wrong + (reached != d->Trail.size);
}

int check_columns(const Domain *d)
{
    int wrong = 0, fixed = 0, changed = 0;
    for (int j = 0; j < d->Rows->NumCols; j++) {
        const double l = d->Lower[j], u = d->Upper[j];
        wrong += !(l <= u);
        fixed += u - l <= DOMAIN_ZERO;
        changed += d->IsChanged[j];
        if (d->Rows->IsInteger[j] && !domain_is_infinite(l)) wrong += l != std::floor(l);
        if (d->Rows->IsInteger[j] && !domain_is_infinite(u)) wrong += u != std::floor(u);
    }
    return wrong + (fixed != d->FixedCount) + (changed != d->NumChanged);
}
} // namespace

int domain_check(const Domain *d)
{
    return check_activities(d) + check_queue(d) + check_trail(d) + check_columns(d);
}
#endif
