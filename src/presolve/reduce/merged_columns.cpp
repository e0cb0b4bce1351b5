// merged_columns.cpp -- merges two parallel columns
//
// Method      a_p x_p + a_q x_q = a_p (x_p + f x_q) if a_q = f a_p. The sum replaces x_p; its bounds are the sums of
//             the bounds.
// Postsolve   If the sum is at a bound both columns are at theirs. Otherwise one of them is set to a bound such that
//             the other one, which gets the status of the sum, is within its bounds: possible unless no bound is
//             finite. Reduced costs are d_q = f d_p.
// Cost        O(entries of q).
#include "presolve/reduce/merged_columns.h"
#include "presolve/errors.h"
#include "presolve/postsolve.h"

namespace
{
constexpr double SAME_SUM = 1e-9; // relative

constexpr double LARGE_BOUND = 1e9; // a sum with a larger finite bound would lose digits

int sum_bounds(const PresolveWork *w, const MergedPair *pair, double *lb, double *ub)
{
    const bool up = pair->f > 0;
    const double q_low = up ? pair->lb_q : pair->ub_q,
                 q_high = up ? pair->ub_q : pair->lb_q;
    *lb = -w->INF;
    *ub = w->INF;
    if (pair->lb_p > -w->INF && std::fabs(q_low) < w->INF)
        *lb = pair->lb_p + pair->f * q_low;
    if (pair->ub_p < w->INF && std::fabs(q_high) < w->INF)
        *ub = pair->ub_p + pair->f * q_high;
    for (double bound :
         {pair->lb_p, pair->ub_p, pair->f * pair->lb_q, pair->f * pair->ub_q})
        if (std::fabs(bound) > LARGE_BOUND && std::fabs(bound) < LARGE_BOUND * LARGE_BOUND)
            return 0;
    return 1;
}

double violation(double x, double lb, double ub)
{
    return std::max({0.0, lb - x, x - ub});
}
} // namespace

int merge_columns(PresolveWork *w, int p, int q, double f)
{
    const MergedPair pair = {w->Lb.data[p], w->Ub.data[p], w->Lb.data[q], w->Ub.data[q], f};
    double lb = 0, ub = 0;
    if (!sum_bounds(w, &pair, &lb, &ub)) return 0;
    UndoRecord *undo = undo_push(&w->Undo, UNDO_MERGE_COLS, 0);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = p;
    undo->other = q;
    undo->factor = f;
    const double bounds[4] = {pair.lb_p, pair.ub_p, pair.lb_q, pair.ub_q};
    std::copy_n(bounds, 4, undo->bound);
    for (int e = first_in_col(w, q); e >= 0;) {
        const int next = next_in_col(w, e), i = w->Nodes.data[e].row;
        const bool lost = settle_term(w, e, 0);
        mark_row(w, i);
        delete_entry(w, e);
        if (lost) digits_lost(w, i);
        e = next;
    }
    w->ColHead.data[q] = -1;
    w->ColCnt.data[q] = COL_EMPTY;
    w->Obj.data[q] = 0;
    w->ColsRemoved++;
    raise_to(&w->BoundErr.data[p], std::fabs(f) * w->BoundErr.data[q]);
    raise_to(&w->ObjErr.data[p], w->ObjErr.data[q] / std::fabs(f));
    change_bounds(w, p, lb, ub);
    if (is_integer(w, p)) w->VType.data[p] = lb == 0 && ub == 1 ? 'B' : 'I'; // integral
    mark_col(w, p);
    return 0;
}

Split split_merged_columns(const MergedPair *pair, double INF, double sum, double *x_p,
                           double *x_q)
{
    const double f = pair->f;
    const double bound[4] = {pair->lb_q, pair->ub_q, pair->lb_p, pair->ub_p};
    Split best = Split::NONE;
    double least = 1e100, smallest = 0;
    *x_q = 0;
    *x_p = sum;
    for (int k = 0; k < 4; k++) {
        if (std::fabs(bound[k]) >= INF) continue;
        const double q = k < 2 ? bound[k] : (sum - bound[k]) / f;
        const double p = k < 2 ? sum - f * bound[k] : bound[k];
        const double wrong = k < 2 ? violation(p, pair->lb_p, pair->ub_p)
                                   : violation(q, pair->lb_q, pair->ub_q);
        const double size = std::max(std::fabs(p), std::fabs(q));
        // Of the feasible splits the one with the smaller values.
        if (wrong > least || (wrong == least && best != Split::NONE && size >= smallest))
            continue;
        least = wrong;
        smallest = size;
        best = static_cast<Split>(-1 - k);
        *x_p = p;
        *x_q = q;
    }
    return best;
}

namespace
{
// Puts both columns at their bounds, as the sum is. False if that does not give the sum.
bool both_at_bounds(const UndoRecord *undo, const MergedPair *pair, double sum,
                    PostPoint *point)
{
    const int p = undo->col, q = undo->other, status = point->status[p];
    const int status_q = pair->f > 0 ? status : -3 - status;
    const double x_p = status == -1 ? pair->lb_p : pair->ub_p,
                 x_q = status_q == -1 ? pair->lb_q : pair->ub_q;
    if (std::fabs(x_p) >= point->INF || std::fabs(x_q) >= point->INF) return false;
    if (std::fabs(x_p + pair->f * x_q - sum) > SAME_SUM * (1 + std::fabs(sum)))
        return false;
    point->x[p] = x_p;
    point->x[q] = x_q;
    point->status[q] = status_q;
    return true;
}

// Status of a nonbasic column at x after a split: at a bound if x equals it, otherwise superbasic.
int status_at(double x, double lb, double ub)
{
    return x == lb ? -1 : x == ub ? -2 : -3; // copied, so compared exactly
}
} // namespace

void undo_merge_cols(const UndoRecord *undo, PostPoint *point)
{
    const int p = undo->col, q = undo->other;
    const double sum = point->x[p], *bound = undo->bound;
    const MergedPair pair = {bound_of(point, bound[0]), bound_of(point, bound[1]),
                             bound_of(point, bound[2]), bound_of(point, bound[3]),
                             undo->factor};
    double x_p = 0, x_q = 0;
    const Split split = split_merged_columns(&pair, point->INF, sum, &x_p, &x_q);
    point->x[p] = x_p;
    point->x[q] = x_q;
    if (!point->d) return;
    point->d[q] = pair.f * point->d[p];
    if (!point->status) return;
    const int status = point->status[p];
    if ((status == -1 || status == -2) && both_at_bounds(undo, &pair, sum, point)) return;
    const bool q_at_bound = split != Split::P_LOWER && split != Split::P_UPPER;
    const int at = split == Split::NONE                                 ? -3
                   : split == Split::Q_LOWER || split == Split::P_LOWER ? -1
                                                                        : -2;
    int other = status; // of the column between its bounds
    if (status < 0)
        other = q_at_bound ? status_at(x_p, pair.lb_p, pair.ub_p)
                           : status_at(x_q, pair.lb_q, pair.ub_q);
    point->status[q] = q_at_bound ? at : other;
    point->status[p] = q_at_bound ? other : at;
}
