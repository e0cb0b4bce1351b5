// dual_ratio.cpp -- choose the entering variable of a dual simplex step
//
// Problem     The leaving variable is infeasible by |Delta|. With the dual step t the reduced costs d_k = CandDual
//             become d_k - t a_k, a_k = CandAlpha > 0; at the breakpoint t = d_k / a_k variable k becomes dual
//             infeasible, unless it is flipped to its other bound, which reduces the slope |Delta| of the dual
//             objective by Range_k * a_k = CandRange. Find a step up to which the slope stays positive, and a pivot a_q
//             that is not small.
// Method      Bound flipping with relaxed (Harris) groups. First the breakpoints up to the sign change of the slope are
//             moved to the front, with steps that grow tenfold. They are split into groups: group g ends at
//             min (d_k + tol) / a_k over the candidates after group g - 1. From the last group backwards, the first one
//             whose largest a_k is large enough gives q; the candidates of all groups before it are flipped. If there
//             are many groups, each is searched in a window of the next breakpoints (incremental quicksort).
// Out         PivotCol, AlphaRow, Flips; false if no breakpoint makes the slope negative.
// Invariant   Reduced costs of variables that are not flipped stay above -tol after the step. The tolerance is used
//             once and not again in every step, since the infeasibilities would add up and their shifts could lead to
//             cycling.
// Literature  P. M. J. Harris, Math. Prog. 5, 1973; I. Maros, EJOR 149, 2003; A. Koberstein, Paderborn 2005.
//             R. Paredes and G. Navarro, "Optimal incremental sorting", ALENEX 2006 (the windows).
#include "simplex/dual.h"
#include <algorithm>
#include <utility>

namespace
{
constexpr double WIDEN = 10; // growth of the step up to which breakpoints are collected
// A pivot is large enough with this share of the largest entry of all groups, or with size GOOD_PIVOT.
constexpr double GOOD_SHARE = 0.1;
constexpr double GOOD_PIVOT = 1.0;
// With TARV_PAR_NONDEGENFLIP a reduced cost changes its sign if it becomes more negative than this share of OptTol.
constexpr double NONDEGENERATE_SHARE = 1e-3;

template<class R> void swap_candidates(dopt<R> *d, int a, int b)
{
    std::swap(d->CandPlace.data[a], d->CandPlace.data[b]);
    std::swap(d->CandAlpha.data[a], d->CandAlpha.data[b]);
    std::swap(d->CandDual.data[a], d->CandDual.data[b]);
    std::swap(d->CandRange.data[a], d->CandRange.data[b]);
}

// Candidates from the packed row. No branches on signs, since they are unpredictable.
template<class R> void collect(sopt *s, swork<R> *w, R small)
{
    dopt<R> *d = w->Dual;
    const R side = d->Delta < 0 ? R(-1) : R(1);
    const int *__restrict vstat = s->VStat.data, *__restrict ind = w->RowInd.data;
    const R *__restrict val = w->RowVal.data, *__restrict cbar = w->Cbar.data;
    int *__restrict place = d->CandPlace.data;
    R *__restrict cand_alpha = d->CandAlpha.data, *__restrict cand_dual = d->CandDual.data;
    int count = 0;
    for (int k = 0; k < w->RowCount; k++) {
        const int j = ind[k];
        const R sign = vstat[j] == AT_UPPER ? -side : side;
        const R a = sign * val[k];
        place[count] = k;
        cand_alpha[count] = a;
        cand_dual[count] = sign * side * cbar[j];
        count += a > small;
    }
    d->CandCount = count;
}

// Free variables block in both directions.
template<class R> void collect_free(sopt *s, swork<R> *w, R small)
{
    dopt<R> *d = w->Dual;
    int count = d->CandCount;
    for (int k = 0; k < count; k++)
        if (s->VStat.data[w->RowInd.data[d->CandPlace.data[k]]] == AT_FREE)
            d->CandDual.data[k] = R(0);
    const R side = d->Delta < 0 ? R(-1) : R(1);
    for (int k = 0; k < w->RowCount; k++) {
        const R a = -side * w->RowVal.data[k];
        if (a <= small || s->VStat.data[w->RowInd.data[k]] != AT_FREE) continue;
        d->CandPlace.data[count] = k;
        d->CandAlpha.data[count] = a;
        d->CandDual.data[count++] = R(0);
    }
    d->CandCount = count;
}

// Decrease of the slope at the breakpoint of candidate k.
template<class R> R range_of(const sopt *s, const swork<R> *w, int k)
{
    const dopt<R> *d = w->Dual;
    const int j = w->RowInd.data[d->CandPlace.data[k]];
    const double range = s->WorkUpper.data[j] - s->WorkLower.data[j];
    return range < s->Infinity ? R(range) * d->CandAlpha.data[k] : R(HUGE_VAL);
}

// Longest step that keeps the reduced costs of candidates first..end-1 above -tol.
template<class R> R step_bound(const dopt<R> *d, int first, int end, R tol, R bound)
{
    const R *__restrict alpha = d->CandAlpha.data, *__restrict dual = d->CandDual.data;
    for (int k = first; k < end; k++)
        if (dual[k] + tol < bound * alpha[k])
            bound = std::max((dual[k] + tol) / alpha[k], R(0));
    return bound;
}

// Moves the breakpoint at which the slope changes sign, and all before it, to the front. Returns their number.
template<class R> int collect_front(sopt *s, swork<R> *w, R slope)
{
    dopt<R> *d = w->Dual;
    R step = R(WIDEN) * step_bound(d, 0, d->CandCount, R(s->OptTol), R(HUGE_VAL)) + R(1e-7);
    int front = 0;
    for (;;) {
        for (int k = front; k < d->CandCount; k++) {
            if (d->CandDual.data[k] > step * d->CandAlpha.data[k]) continue;
            d->CandRange.data[k] = range_of(s, w, k);
            slope -= d->CandRange.data[k];
            swap_candidates(d, front++, k);
        }
        if (slope < 0 || front == d->CandCount) return front;
        step *= R(WIDEN);
    }
}

// ---- Groups ----

// The next candidates of a large front, so that a group is not searched among all remaining ones. Windows are nested:
// candidates before End[k] have their breakpoint at most at Bound[k], those behind it beyond.
template<class R> struct Window {
    static constexpr int LEVELS = 40;
    int End[LEVELS];
    R Bound[LEVELS];
    int Depth = 1; // level 0: the whole front
};
constexpr int SMALL_WINDOW = 256; // fronts up to this are taken as they are
constexpr int WHOLE_GROUPS = 8;   // so are the first groups: most fronts have no more
constexpr int SAMPLES = 9;        // of which medium_step takes the median

// A breakpoint of medium size among the candidates first..end-1.
template<class R> R medium_step(const dopt<R> *d, int first, int end)
{
    R step[SAMPLES];
    for (int k = 0; k < SAMPLES; k++) {
        const int at =
            first + static_cast<int>(int64_t{end - 1 - first} * k / (SAMPLES - 1));
        step[k] = d->CandDual.data[at] / d->CandAlpha.data[at];
    }
    std::nth_element(step, step + SAMPLES / 2, step + SAMPLES);
    return step[SAMPLES / 2];
}

// Moves the candidates before `end` with a breakpoint up to `bound` to the front; returns their end.
template<class R> int part(dopt<R> *d, int first, int end, R bound)
{
    for (int k = first; k < end; k++)
        if (!(d->CandDual.data[k] > bound * d->CandAlpha.data[k]))
            swap_candidates(d, first++, k);
    return first;
}

// Splits the window that begins at `done` until it is small.
template<class R> void narrow(dopt<R> *d, int done, Window<R> *w)
{
    while (w->Depth > 1 && w->End[w->Depth - 1] <= done) w->Depth--;
    while (w->Depth < Window<R>::LEVELS) {
        const int end = w->End[w->Depth - 1];
        if (end - done <= SMALL_WINDOW) return;
        const R bound = medium_step(d, done, end);
        const int middle = part(d, done, end, bound);
        if (middle == done || middle == end) return; // many equal breakpoints
        w->End[w->Depth] = middle;
        w->Bound[w->Depth++] = bound;
    }
}

// End of the next group. Candidates behind the window matter only if it exceeds the bound of the window.
template<class R> R group_bound(const dopt<R> *d, int done, R tol, R infinity, Window<R> *w)
{
    for (;; w->Depth--) {
        const R bound = step_bound(d, done, w->End[w->Depth - 1], tol, infinity);
        if (w->Depth == 1 || bound <= w->Bound[w->Depth - 1]) return bound;
    }
}

// Splits the front into groups; the last one contains the sign change of the slope. Without bound flipping there is
// one. Cost: O(front) for few groups, O(front log front) for many.
template<class R> int split_groups(sopt *s, dopt<R> *d, R slope, int front)
{
    const R tol = R(s->OptTol), infinity = R(HUGE_VAL);
    const int most = s->Env->TARV_PAR_SIMPLEXPWRATIO ? front : 1;
    int groups = 0, done = 0;
    Window<R> window;
    window.End[0] = front;
    while (done < front && slope >= 0 && groups < most) {
        if (groups >= WHOLE_GROUPS) narrow(d, done, &window);
        const R bound = group_bound(d, done, tol, infinity, &window);
        const int before = done, end = window.End[window.Depth - 1];
        for (int k = done; k < end; k++) {
            if (d->CandDual.data[k] > bound * d->CandAlpha.data[k]) continue;
            slope -= d->CandRange.data[k];
            swap_candidates(d, done++, k);
        }
        if (done == before) done = front; // by rounding no candidate is within the bound
        d->GroupEnd.data[groups++] = done;
    }
    return groups;
}

// The pivot: from the last group backwards, the first group with a large enough entry.
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
    return -1; // not reached: the group with the largest entry qualifies
}
// The candidates passed that do not flip, and those that flip before their breakpoint, get reduced costs of the wrong
// sign.
template<class R>
void count_sign_errors(sopt *s, const swork<R> *w, int flip_end, int groups, int best)
{
    const dopt<R> *d = w->Dual;
    const R step = d->CandDual.data[best] / d->CandAlpha.data[best];
    for (int k = 0; k < d->GroupEnd.data[groups - 1]; k++) {
        const R left = d->CandDual.data[k] - step * d->CandAlpha.data[k];
        dual_count_sign(s, w->RowInd.data[d->CandPlace.data[k]],
                        static_cast<double>(k < flip_end ? left : -left));
    }
}

// A long step gives a reduced cost a wrong sign of any size through an entry that is too small for a candidate. It
// counts as noise, so that a live record computes its reduced costs anew and repairs the signs.
template<class R> void count_ignored(sopt *s, const swork<R> *w, R small, int best)
{
    const dopt<R> *d = w->Dual;
    const R step = d->CandDual.data[best] / d->CandAlpha.data[best],
            side = d->Delta < 0 ? R(-1) : R(1);
    if (small * step <= R(NOISE_SHARE * s->OptTol)) return;
    for (int k = 0; k < w->RowCount; k++) {
        const int j = w->RowInd.data[k];
        const R sign = s->VStat.data[j] == AT_UPPER ? -side : side,
                a = sign * w->RowVal.data[k];
        if (a <= R(0) || a > small) continue;
        const double gap = static_cast<double>(step * a - sign * side * w->Cbar.data[j]);
        dual_count_sign(s, j, gap);
        s->DualNoise += std::max(gap, 0.0);
    }
}

// The variables to flip. With TARV_PAR_NONDEGENFLIP only those whose reduced cost changes its sign.
template<class R> void list_flips(const sopt *s, swork<R> *w, int flip_end, int best)
{
    dopt<R> *d = w->Dual;
    const R step = d->CandDual.data[best] / d->CandAlpha.data[best];
    const R least = R(NONDEGENERATE_SHARE * s->OptTol);
    for (int k = 0; k < flip_end; k++) {
        if (s->Env->TARV_PAR_NONDEGENFLIP &&
            d->CandDual.data[k] > step * d->CandAlpha.data[k] - least)
            continue;
        d->Flips.data[d->FlipCount++] = w->RowInd.data[d->CandPlace.data[k]];
    }
}
} // namespace

template<class R> bool dual_ratio(sopt *s, swork<R> *w, R floor)
{
    dopt<R> *d = w->Dual;
    d->PivotCol = -1;
    d->FlipCount = 0;
    collect(s, w, floor);
    if (d->FreeCount > 0) collect_free(s, w, floor);
    s->WorkUnits += w->RowCount;
    if (d->CandCount == 0) return false;
    const R slope = std::abs(d->Delta);
    const int front = collect_front(s, w, slope);
    R left = slope;
    for (int k = 0; k < front; k++) left -= d->CandRange.data[k];
    if (left > R(s->FeasTol))
        return false; // the row stays infeasible even if every variable is flipped
    const int groups = split_groups(s, d, slope, front);
    int flip_end = 0;
    const int best = pick(d, groups, &flip_end);
    d->PivotCol = w->RowInd.data[d->CandPlace.data[best]];
    d->AlphaRow = w->RowVal.data[d->CandPlace.data[best]];
    if (s->Live) count_sign_errors(s, w, flip_end, groups, best);
    if (s->Live) count_ignored(s, w, floor, best);
    list_flips(s, w, flip_end, best);
    return true;
}

template bool dual_ratio<double>(sopt *, swork<double> *, double);
template bool dual_ratio<long double>(sopt *, swork<long double> *, long double);
