// primal_ratio.cpp -- choose the leaving variable of a primal simplex step
//
// Problem     The entering variable moves by t in Direction; basic variable i moves by -t a_i, a_i = Direction alpha_i.
// Method      Phase 2: two passes with bounds relaxed by the tolerance (Harris); of all rows that block before the
//             relaxed step the one with the largest |a_i| leaves. Rows with a small |a_i| are considered only if the
//             step would violate their bound by more than the tolerance; they cannot be rounding errors then. Phase 1:
//             the sum of infeasibilities is piecewise linear in t; breakpoints are passed in order while its slope
//             stays negative, and of the last ones the last with a large enough pivot is taken. The range of the
//             entering variable is one more breakpoint: a bound flip. With TARV_PAR_SIMPLEXPWRATIO off, phase 1 stops
//             at its first breakpoint.
// Out         PivotRow, ToUpper, Step.
// Cost        O(entries of the column); phase 1 also O(k log) for the breakpoints passed.
// Literature  P. M. J. Harris, Math. Prog. 5, 1973; I. Maros, Computational Techniques of the Simplex Method, 2003,
//             9.6.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr double GOOD_SHARE = 0.1, GOOD_PIVOT = 1.0;

// Distance to the other bound of the entering variable. A free superbasic with a reduced cost of zero stops at zero.
template<class R> R entering_range(const sopt *s, const swork<R> *w)
{
    const popt<R> *p = w->Primal;
    const int q = p->PivotCol;
    const double lower = s->WorkLower.data[q], upper = s->WorkUpper.data[q];
    if (s->VStat.data[q] != AT_FREE)
        return has_lower(s, lower) && has_upper(s, upper) ? R(upper) - R(lower)
                                                          : R(HUGE_VAL);
    const double x = s->SuperVal.data[q];
    if (p->Direction > 0 && has_upper(s, upper)) return R(upper) - R(x);
    if (p->Direction < 0 && has_lower(s, lower)) return R(x) - R(lower);
    const bool aims_at_zero =
        p->Direction * x < 0 && !has_lower(s, lower) && !has_upper(s, upper);
    return aims_at_zero && std::abs(w->Cbar.data[q]) <= R(s->OptTol) ? R(std::fabs(x))
                                                                     : R(HUGE_VAL);
}

// Phase 2. Distance of basic variable i to the bound it moves to; HUGE_VAL if it has none.
template<class R> R distance(const sopt *s, const swork<R> *w, int i, R a)
{
    if (a > 0) {
        const double lower = s->BasicLower.data[i];
        return has_lower(s, lower) ? w->Bbar.data[i] - R(lower) : R(HUGE_VAL);
    }
    const double upper = s->BasicUpper.data[i];
    return has_upper(s, upper) ? R(upper) - w->Bbar.data[i] : R(HUGE_VAL);
}

// Pass 1: the longest step that keeps every row with an entry above `floor` within its bounds relaxed by the tolerance.
// PivotRow: the row that gives it, or -1.
template<class R> R relaxed_limit(const sopt *s, const swork<R> *w, R floor)
{
    popt<R> *p = w->Primal;
    const R tol = R(s->FeasTol), infinite = R(HUGE_VAL);
    const R *alpha = w->Alpha.Value.data;
    R limit = infinite;
    p->PivotRow = -1;
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        const R a = R(p->Direction) * alpha[i], size = std::abs(a);
        if (size <= floor) continue;
        const R gap = distance(s, w, i, a);
        if (gap >= infinite || gap + tol >= limit * size) continue;
        limit = (gap + tol) / size;
        p->PivotRow = i;
    }
    return limit;
}

// True if a step of this length would violate the bound of a row with an entry of at most `floor`, but more than
// `noise`.
template<class R>
bool small_entry_blocks(const sopt *s, const swork<R> *w, R floor, R noise, R step)
{
    const popt<R> *p = w->Primal;
    const R tol = R(s->FeasTol), infinite = R(HUGE_VAL);
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        const R a = R(p->Direction) * w->Alpha.Value.data[i], size = std::abs(a);
        if (size > floor || size <= noise) continue;
        const R gap = distance(s, w, i, a);
        if (gap < infinite && gap + tol < step * size) return true;
    }
    return false;
}

// Pass 2: of the rows that block before `limit` the one with the largest entry. The row that gave the limit is always
// considered, although rounding may give gap > limit * size for it.
template<class R> void choose_blocking(const sopt *s, const swork<R> *w, R floor, R limit)
{
    popt<R> *p = w->Primal;
    const R *alpha = w->Alpha.Value.data;
    R best = std::abs(alpha[p->PivotRow]);
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        const R a = R(p->Direction) * alpha[i], size = std::abs(a);
        if (size <= floor || size <= best || distance(s, w, i, a) > limit * size) continue;
        best = size;
        p->PivotRow = i;
    }
    const R a = R(p->Direction) * alpha[p->PivotRow];
    p->ToUpper = a < 0;
    p->Step = distance(s, w, p->PivotRow, a) / best;
}

template<class R> R largest_entry(const SVec<R> *x)
{
    R most = 0;
    for (int k = 0; k < x->Count; k++)
        most = std::max(most, std::abs(x->Value.data[x->Index.data[k]]));
    return most;
}

template<class R> RatioResult ratio_phase2(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const R infinite = R(HUGE_VAL), range = entering_range(s, w);
    R floor = pivot_floor(w), limit = relaxed_limit(s, w, floor);
    const R step = std::min(limit, range);
    if (step * floor > R(s->FeasTol)) {
        const R noise = noise_share(w) * largest_entry(&w->Alpha);
        if (small_entry_blocks(s, w, floor, noise, step)) {
            floor = noise;
            limit = relaxed_limit(s, w, floor);
        }
    }
    if (range <= limit && range < infinite) {
        p->PivotRow = -1;
        p->Step = range;
        return RATIO_FLIP;
    }
    if (p->PivotRow < 0) return RATIO_UNBOUNDED;
    choose_blocking(s, w, floor, limit);
    return RATIO_PIVOT;
}

template<class R> void add_break(popt<R> *p, int row, bool to_upper, R step)
{
    p->BreakStep.data[p->BreakCount] = std::max(step, R(0));
    p->BreakRow.data[p->BreakCount++] = to_upper ? -1 - row : row;
}

template<class R> void collect_breaks(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    const R floor = pivot_floor(w);
    p->BreakCount = 0;
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        const R a = R(p->Direction) * w->Alpha.Value.data[i], size = std::abs(a);
        if (size <= floor) continue;
        const signed char state = p->RowState.data[i];
        const double lower = s->BasicLower.data[i], upper = s->BasicUpper.data[i];
        const R x = w->Bbar.data[i];
        if (a >
            0) { // decreases: reaches its upper bound if it is above it, then its lower bound
            if (state == ROW_ABOVE) add_break(p, i, true, (x - R(upper)) / size);
            if (state != ROW_BELOW && has_lower(s, lower))
                add_break(p, i, false, (x - R(lower)) / size);
        } else {
            if (state == ROW_BELOW) add_break(p, i, false, (R(lower) - x) / size);
            if (state != ROW_ABOVE && has_upper(s, upper))
                add_break(p, i, true, (R(upper) - x) / size);
        }
    }
}

// Heap of breakpoints by step, smallest on top, over two parallel arrays.
template<class R> void sift_down(popt<R> *p, int at, int count)
{
    const R step = p->BreakStep.data[at];
    const int row = p->BreakRow.data[at];
    for (int child = 2 * at + 1; child < count; child = 2 * at + 1) {
        if (child + 1 < count && p->BreakStep.data[child + 1] < p->BreakStep.data[child])
            child++;
        if (p->BreakStep.data[child] >= step) break;
        p->BreakStep.data[at] = p->BreakStep.data[child];
        p->BreakRow.data[at] = p->BreakRow.data[child];
        at = child;
    }
    p->BreakStep.data[at] = step;
    p->BreakRow.data[at] = row;
}

inline int break_row(int code)
{
    return code >= 0 ? code : -1 - code;
}

// What ends the step in phase 1: a breakpoint of a row, the range of the entering variable, nothing.
enum class Stop { BREAK, RANGE, NOTHING };

// Removes breakpoints from the heap while the slope stays negative; the removed ones are at the end of the arrays, last
// first. The sum of infeasibilities is bounded below, so a slope that stays negative is a rounding error, unless
// phase 1 contains a share of the true costs.
template<class R> Stop pass_breaks(sopt *s, swork<R> *w, R range, int *first_popped)
{
    popt<R> *p = w->Primal;
    int left = p->BreakCount;
    for (int k = left / 2 - 1; k >= 0; k--) sift_down(p, k, left);
    // The reduced cost of a superbasic may be zero: then the first breakpoint ends the step.
    R slope = -std::max(std::abs(w->Cbar.data[p->PivotCol]), R(s->ZeroTol));
    while (left > 0 && slope < 0 && p->BreakStep.data[0] <= range) {
        const int row = break_row(p->BreakRow.data[0]);
        slope += std::abs(w->Alpha.Value.data[row]);
        left--;
        std::swap(p->BreakStep.data[0], p->BreakStep.data[left]);
        std::swap(p->BreakRow.data[0], p->BreakRow.data[left]);
        sift_down(p, 0, left);
    }
    *first_popped = left;
    if (slope < 0 && range < R(HUGE_VAL)) return Stop::RANGE;
    const bool endless = p->CostWeight > 0 && slope < -R(s->OptTol);
    return endless || left == p->BreakCount ? Stop::NOTHING : Stop::BREAK;
}

template<class R> RatioResult ratio_phase1(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    collect_breaks(s, w);
    const R range = entering_range(s, w);
    int left = 0;
    const Stop stop = pass_breaks(s, w, range, &left);
    if (stop == Stop::NOTHING) return RATIO_UNBOUNDED;
    if (stop == Stop::RANGE) {
        p->PivotRow = -1;
        p->Step = range;
        return RATIO_FLIP;
    }
    R largest = 0;
    for (int k = left; k < p->BreakCount; k++)
        largest = std::max(largest,
                           std::abs(w->Alpha.Value.data[break_row(p->BreakRow.data[k])]));
    const R wanted = std::min(R(GOOD_SHARE) * largest, R(GOOD_PIVOT));
    for (int k = left; k < p->BreakCount; k++) {
        const int row = break_row(p->BreakRow.data[k]);
        if (std::abs(w->Alpha.Value.data[row]) < wanted) continue;
        p->PivotRow = row;
        p->ToUpper = p->BreakRow.data[k] < 0;
        p->Step = p->BreakStep.data[k];
        break;
    }
    return RATIO_PIVOT;
}

// Phase 1 without passing breakpoints: the two passes of Harris over the first breakpoint of each row.
template<class R> RatioResult ratio_first_break(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    collect_breaks(s, w);
    R limit = R(HUGE_VAL), best = 0;
    for (int k = 0; k < p->BreakCount; k++) {
        const R size = std::abs(w->Alpha.Value.data[break_row(p->BreakRow.data[k])]);
        limit = std::min(limit, p->BreakStep.data[k] + R(s->FeasTol) / size);
    }
    const R range = entering_range(s, w);
    if (range <= limit && range < R(HUGE_VAL)) {
        p->PivotRow = -1;
        p->Step = range;
        return RATIO_FLIP;
    }
    if (p->BreakCount == 0) return RATIO_UNBOUNDED;
    for (int k = 0; k < p->BreakCount; k++) {
        const int row = break_row(p->BreakRow.data[k]);
        const R size = std::abs(w->Alpha.Value.data[row]);
        if (p->BreakStep.data[k] > limit || size <= best) continue;
        best = size;
        p->PivotRow = row;
        p->ToUpper = p->BreakRow.data[k] < 0;
        p->Step = p->BreakStep.data[k];
    }
    return RATIO_PIVOT;
}
} // namespace

template<class R> RatioResult primal_ratio(sopt *s, swork<R> *w)
{
    s->WorkUnits += 2.0 * w->Alpha.Count;
    w->Primal->PivotRow = -1;
    if (!w->Primal->Phase1) return ratio_phase2(s, w);
    return s->Env->TARV_PAR_SIMPLEXPWRATIO ? ratio_phase1(s, w) : ratio_first_break(s, w);
}

template RatioResult primal_ratio<double>(sopt *, swork<double> *);

template RatioResult primal_ratio<long double>(sopt *, swork<long double> *);
