// activity.cpp -- the range of each row's activity over the bounds of its columns
//
// RMin and RMax are sums of finite terms minus the right-hand side; Rmincnt and Rmaxcnt count the infinite terms. Every
// term is rounded outwards as it is added, so that the sums are safe bounds. Changes are applied as updates; if a term
// that is subtracted was much larger than the result, digits are lost by cancellation and the activity is recomputed.
#include "presolve/errors.h"

namespace
{
constexpr double UP = 1.00000000000001, DOWN = 0.99999999999999;

// Digits count as lost if a subtracted term is this many times the remaining sum.
constexpr double CANCELLED = 1e3;

constexpr int UNKNOWN = 1 << 30; // count of infinite terms that no changes reduce to zero

double raised(double v)
{
    return v * (v > 0 ? UP : DOWN);
}

double lowered(double v)
{
    return v * (v > 0 ? DOWN : UP);
}

struct Bounds {
    double lb, ub;
};

void add_terms(PresolveWork *w, int i, double a, const Bounds &b)
{
    const double high = a > 0 ? b.ub : b.lb, low = a > 0 ? b.lb : b.ub;
    if (std::fabs(high) >= w->INF)
        w->Rmaxcnt.data[i]++;
    else
        w->RMax.data[i] += raised(a * high);
    if (std::fabs(low) >= w->INF)
        w->Rmincnt.data[i]++;
    else
        w->RMin.data[i] += lowered(a * low);
}

// Subtracts a term from one side of a row. True if the sum lost digits by cancellation.
bool take_term(const PresolveWork *w, double *sum, int *infinite, double a, double bound,
               bool upper)
{
    if (std::fabs(bound) >= w->INF) {
        --*infinite;
        return false;
    }
    *sum -= upper ? raised(a * bound) : lowered(a * bound); // what was added
    return std::fabs(a * bound) > CANCELLED * (1 + std::fabs(*sum));
}

bool move_term(const PresolveWork *w, double *sum, int *infinite, double a, double before,
               double after, bool upper)
{
    if (before == after) return false;
    const bool lost = take_term(w, sum, infinite, a, before, upper);
    if (std::fabs(after) >= w->INF)
        ++*infinite;
    else
        *sum += upper ? raised(a * after) : lowered(a * after);
    return lost;
}
} // namespace

void row_activity(PresolveWork *w, int i)
{
    w->RMax.data[i] = w->RMin.data[i] = -w->Rhs.data[i];
    w->Rmaxcnt.data[i] = w->Rmincnt.data[i] = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        add_terms(w, i, node.value, {w->Lb.data[node.col], w->Ub.data[node.col]});
    }
}

// Entries are processed in the order of memory, as a loop row by row would have a cache miss per entry.
int pre_activity(PresolveWork *w)
{
    for (int i = 0; i < w->NumRows; i++) {
        w->RMax.data[i] = w->RMin.data[i] = -w->Rhs.data[i];
        w->Rmaxcnt.data[i] = w->Rmincnt.data[i] = 0;
        TRY(check_limits(w, 1));
    }
    for (int64_t p = 0; p < w->Nodes.size; p++) {
        const PresolveNode &node = w->Nodes.data[p];
        TRY(check_limits(w, 1));
        if (node.col < 0) continue;
        add_terms(w, node.row, node.value, {w->Lb.data[node.col], w->Ub.data[node.col]});
    }
    w->Work += 5.0 * static_cast<double>(w->NumNz);
    return 0;
}

void digits_lost(PresolveWork *w, int i)
{
    if (w->RowCnt.data[i] <= LONG_STALE_ROW) return row_activity(w, i);
    w->Rmaxcnt.data[i] = w->Rmincnt.data[i] = UNKNOWN;
    if (w->RowMark.data[i] & IS_STALE) return;
    w->RowMark.data[i] |= IS_STALE;
    array_push(&w->Stale, i);
}

int sum_stale(PresolveWork *w)
{
    while (w->Stale.size > 0) {
        const int i = w->Stale.data[--w->Stale.size];
        w->RowMark.data[i] &= ~IS_STALE;
        if (!is_live_row(w, i)) continue;
        row_activity(w, i);
        mark_row(w, i);
        w->Work += w->RowCnt.data[i];
        TRY(check_limits(w, w->RowCnt.data[i]));
    }
    return 0;
}

void change_bounds(PresolveWork *w, int j, double lb, double ub)
{
    const Bounds old = {w->Lb.data[j], w->Ub.data[j]};
    w->Lb.data[j] = lb;
    w->Ub.data[j] = ub;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        const double a = w->Nodes.data[p].value;
        const bool up = a > 0;
        bool lost = move_term(w, &w->RMax.data[i], &w->Rmaxcnt.data[i], a,
                              up ? old.ub : old.lb, up ? ub : lb, true);
        lost |= move_term(w, &w->RMin.data[i], &w->Rmincnt.data[i], a, up ? old.lb : old.ub,
                          up ? lb : ub, false);
        if (lost) digits_lost(w, i);
    }
}

bool change_coefficient(PresolveWork *w, int i, int j, double before, double after)
{
    const double lb = w->Lb.data[j], ub = w->Ub.data[j];
    bool lost = false;
    if (before != 0) { // no entry
        const bool up = before > 0;
        lost =
            take_term(w, &w->RMax.data[i], &w->Rmaxcnt.data[i], before, up ? ub : lb, true);
        lost |= take_term(w, &w->RMin.data[i], &w->Rmincnt.data[i], before, up ? lb : ub,
                          false);
    }
    if (after != 0) add_terms(w, i, after, {lb, ub});
    return lost;
}

bool move_activity(PresolveWork *w, int i, double step)
{
    w->RMax.data[i] += step;
    w->RMin.data[i] += step;
    const double left = std::min(std::fabs(w->RMax.data[i]), std::fabs(w->RMin.data[i]));
    return std::fabs(step) > CANCELLED * (1 + left);
}

bool settle_term(PresolveWork *w, int p, double v)
{
    const PresolveNode &node = w->Nodes.data[p];
    const int i = node.row;
    const double a = node.value, lb = w->Lb.data[node.col], ub = w->Ub.data[node.col];
    const bool up = a > 0;
    bool lost = take_term(w, &w->RMax.data[i], &w->Rmaxcnt.data[i], a, up ? ub : lb, true);
    lost |= take_term(w, &w->RMin.data[i], &w->Rmincnt.data[i], a, up ? lb : ub, false);
    if (v == 0 && w->BoundErr.data[node.col] == 0) return lost; // the term is zero
    w->Rhs.data[i] -= a * v;
    add_to_rhs_error(w, i, size_of_entry(w, p) * std::fabs(v),
                     std::fabs(a) * w->BoundErr.data[node.col]);
    return move_activity(w, i, a * v) || lost;
}
