// dual_ratio.cpp -- choose the entering variable of a dual simplex step
//
// Problem     The leaving variable is infeasible by |Delta|. Moving along its row, reduced costs d_k = CandDual fall with
//             slope a_k = CandAlpha > 0; at t = d_k / a_k variable k would become dual infeasible, unless it is flipped to
//             its other bound, which takes Range_k * a_k = CandRange from the slope |Delta| of the dual objective. Find a
//             step that keeps the slope positive and a pivot a_q that is not small.
// Method      Bound flipping with relaxed (Harris) groups. First the breakpoints up to the sign change of the slope are
//             brought to the front with steps that grow tenfold. Those are split into groups: group g ends at
//             min (d_k + tol) / a_k over what is left after group g - 1. From the last group back the first one whose
//             largest a_k is good enough gives q; all groups before it are flipped.
// Out         PivotCol, AlphaRow, Flips; false when no breakpoint stops the slope.
// Invariant   Reduced costs of what is not flipped stay above -tol after the step.
// Literature  P. M. J. Harris, Math. Prog. 5, 1973; I. Maros, EJOR 149, 2003; A. Koberstein, Paderborn 2005.
#include "simplex/dual.h"
#include <algorithm>
#include <utility>

namespace
{
constexpr double SMALL_PIVOT[] = {
    1e-9, 1e-8, 1e-7}; // entries below cannot pivot: fresh factors, some, many updates
constexpr int SOME_UPDATES = 10, MANY_UPDATES = 20;
constexpr double WIDEN = 10; // growth of the step that collects breakpoints
constexpr double GOOD_SHARE =
    0.1; // a pivot this large against the largest of all groups is taken
constexpr double GOOD_PIVOT = 1.0; // so is one of this size

template<class R> void swap_candidates(dopt<R> *d, int a, int b)
{
    std::swap(d->CandPlace.data[a], d->CandPlace.data[b]);
    std::swap(d->CandAlpha.data[a], d->CandAlpha.data[b]);
    std::swap(d->CandDual.data[a], d->CandDual.data[b]);
    std::swap(d->CandRange.data[a], d->CandRange.data[b]);
}

// Candidates from the packed row.
template<class R> void collect(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int updates = w->Lu.NumUpdates;
    const R small = R(SMALL_PIVOT[updates < SOME_UPDATES   ? 0
                                  : updates < MANY_UPDATES ? 1
                                                           : 2]);
    const R side = d->Delta < 0 ? R(-1) : R(1);
    const int *__restrict vstat = s->VStat.data;
    int count = 0;
    for (int k = 0; k < w->RowCount; k++) {
        const int j = w->RowInd.data[k], status = vstat[j];
        R a = side * w->RowVal.data[k], dual = w->Cbar.data[j];
        if (status == AT_UPPER) {
            a = -a;
            dual = -dual;
        } else if (status == AT_FREE) {
            a = std::abs(a);
            dual = 0;
        }
        if (a <= small) continue;
        d->CandPlace.data[count] = k;
        d->CandAlpha.data[count] = a;
        d->CandDual.data[count] = std::max(dual, R(0));
        const double range = s->WorkUpper.data[j] - s->WorkLower.data[j];
        d->CandRange.data[count++] = range < s->Infinity ? R(range) * a : R(s->Infinity);
    }
    d->CandCount = count;
}

// Brings the breakpoints at which the slope changes sign, and all before them, to the front; returns their number.
template<class R> int collect_front(sopt *s, dopt<R> *d, R slope)
{
    const R tol = R(s->OptTol);
    R step = R(s->Infinity);
    for (int k = 0; k < d->CandCount; k++)
        step = std::min(step, (d->CandDual.data[k] + tol) / d->CandAlpha.data[k]);
    step = R(WIDEN) * step + R(1e-7);
    int front = 0;
    for (;;) {
        for (int k = front; k < d->CandCount; k++) {
            if (d->CandDual.data[k] > step * d->CandAlpha.data[k]) continue;
            slope -= d->CandRange.data[k];
            swap_candidates(d, front++, k);
        }
        if (slope < 0 || front == d->CandCount) return front;
        step *= R(WIDEN);
    }
}

// Splits the front into groups; the last one holds the sign change or everything.
template<class R> int split_groups(sopt *s, dopt<R> *d, R slope, int front)
{
    const R tol = R(s->OptTol);
    int groups = 0, done = 0;
    while (done < front && slope >= 0) {
        R bound = R(s->Infinity);
        for (int k = done; k < front; k++)
            if (d->CandDual.data[k] + tol < bound * d->CandAlpha.data[k])
                bound = (d->CandDual.data[k] + tol) / d->CandAlpha.data[k];
        const int before = done;
        for (int k = done; k < front; k++) {
            if (d->CandDual.data[k] > bound * d->CandAlpha.data[k]) continue;
            slope -= d->CandRange.data[k];
            swap_candidates(d, done++, k);
        }
        if (done == before) break; // rounding: nothing passes its own bound
        d->GroupEnd.data[groups++] = done;
    }
    return groups;
}

// The pivot: from the last group back, the first with a good enough entry.
template<class R> int pick(const dopt<R> *d, int groups, int *flip_end)
{
    R largest = 0;
    for (int k = 0; k < d->GroupEnd.data[groups - 1]; k++)
        largest = std::max(largest, d->CandAlpha.data[k]);
    const R wanted = std::min(R(GOOD_SHARE) * largest, R(GOOD_PIVOT));
    for (int g = groups - 1; g >= 0; g--) {
        const int beg = g > 0 ? d->GroupEnd.data[g - 1] : 0;
        int best = beg;
        for (int k = beg + 1; k < d->GroupEnd.data[g]; k++)
            if (d->CandAlpha.data[k] > d->CandAlpha.data[best]) best = k;
        *flip_end = beg;
        if (d->CandAlpha.data[best] >= wanted) return best;
    }
    return -1; // not reached: the group of the largest entry qualifies
}
} // namespace

template<class R> bool dual_ratio(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    d->PivotCol = -1;
    d->FlipCount = 0;
    collect(s, w);
    s->WorkUnits += w->RowCount;
    if (d->CandCount == 0) return false;
    const R slope = std::abs(d->Delta);
    const int front = collect_front(s, d, slope);
    R left = slope;
    for (int k = 0; k < front; k++) left -= d->CandRange.data[k];
    if (left > R(s->FeasTol))
        return false; // even with every variable flipped the row stays infeasible
    const int groups = split_groups(s, d, slope, front);
    int flip_end = 0;
    const int best = pick(d, groups, &flip_end);
    d->PivotCol = w->RowInd.data[d->CandPlace.data[best]];
    d->AlphaRow = w->RowVal.data[d->CandPlace.data[best]];
    for (int k = 0; k < flip_end; k++)
        d->Flips.data[d->FlipCount++] = w->RowInd.data[d->CandPlace.data[k]];
    return true;
}

template bool dual_ratio<double>(sopt *, swork<double> *);
template bool dual_ratio<long double>(sopt *, swork<long double> *);
