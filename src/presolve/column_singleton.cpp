// column_singleton.cpp -- a column with a single entry: free ones take their row along, others become its slack
//
// Method      Column j has its only entry a in row r: a x_j + rest = b, or <= b where the cost pushes x_j against the
//             row, so that it may be taken to hold with equality. The cost then moves to the rest:
//             c_j x_j = c_j / a (b - rest). Where bounds of x_j are absent or implied by the row,
//             - on both sides, row and column go: any rest will do;
//             - on one side, the other bound says rest <= b - a bound (or >=), and the column goes as the slack of that.
//             The row that is left is brought to '<' and, when |a| < 1, into the units of x_j, so that its tolerance is
//             one of x_j.
// Way back    x_j = (b - rest) / a. With y' the dual of the row that was left, y = y' + c_j / a, and the column takes the
//             place of the row's slack: basic with it, else at the bound that had become the row.
// Invariant   A bound counts as implied by the bounds of the other columns as they stand in the record, and these stay.
// Cost        O(length of the row) per column that goes; a pass has a budget for rows that keep losing slacks.
#include "presolve/columns.h"
#include "presolve/postsolve.h"
#include <cmath>

namespace
{
constexpr double IMPLIED = 1e-9; // by how much a bound may miss being implied
constexpr double NO_COST = 1e-9; // reduced cost of the row's slack that counts as none
constexpr double LITTLE_RANGE = 1e-6, LITTLE_COST = 1e-6;
constexpr double FREE_RATIO =
    1e-6; // least entry beside the largest of the row: free column
constexpr double IMPLIED_RATIO =
    1e-3; // ... implied free: errors of others show in its bounds
constexpr double SLACK_RATIO = 1e-3; // ... slack column

// What the pass needs to know of a column singleton.
struct Singleton {
    int p, row, col;
    double a, cost, largest; // largest: entry of the rest of the row
    bool free_below, free_above;
    bool bounded; // some of this is implied only
};

bool may_try(const PresolveWork *w, int j)
{
    switch (w->Env->TARV_PAR_PRESINGLECOL) {
    case 0:
        return false;
    case 1:
        return !is_integer(w, j);
    case 2:
        return w->VType.size == 0 || w->VType.data[j] != 'B';
    default:
        return true;
    }
}

// Cost and range so out of proportion that the row's tolerance would decide about the cost.
bool is_weak(const PresolveWork *w, int j, double a)
{
    const double range = w->Ub.data[j] - w->Lb.data[j];
    return std::fabs(a) * range < LITTLE_RANGE &&
           range * std::fabs(w->Obj.data[j]) > LITTLE_COST;
}

double largest_other(PresolveWork *w, int i, int p)
{
    double largest = 0;
    for (int q = first_in_row(w, i); q >= 0; q = next_in_row(w, q))
        if (q != p) largest = std::fmax(largest, std::fabs(w->Nodes.data[q].value));
    w->Work += w->RowCnt.data[i];
    return largest;
}

Singleton examine(const PresolveWork *w, int j)
{
    const int p = first_in_col(w, j);
    const PresolveNode &node = w->Nodes.data[p];
    Singleton s = {
        p, node.row, j, node.value, w->Obj.data[j], 0, !has_lb(w, j), !has_ub(w, j), false};
    if (s.free_below && s.free_above) return s;
    const ImpliedBounds implied = implied_bounds(w, j);
    s.bounded = true;
    s.free_below |= implied.lb >= w->Lb.data[j] - IMPLIED;
    s.free_above |= implied.ub <= w->Ub.data[j] + IMPLIED;
    return s;
}

// The cost of the column moves to the others of its row.
void move_cost(PresolveWork *w, const Singleton *s)
{
    if (s->cost == 0) return; // as stored
    const double y = s->cost / s->a;
    for (int q = first_in_row(w, s->row); q >= 0; q = next_in_row(w, q)) {
        const int k = w->Nodes.data[q].col;
        const double shift = y * w->Nodes.data[q].value, cost = w->Obj.data[k] - shift;
        const bool cancelled = std::fabs(cost) <= w->ZeroTol * std::fabs(shift);
        w->Obj.data[k] = cancelled ? 0 : cost;
    }
    w->Obj.data[s->col] = 0;
    w->ObjCon += y * w->Rhs.data[s->row];
}

int substitute(PresolveWork *w, const Singleton *s)
{
    TRY(push_substitution(w, s->p));
    move_cost(w, s);
    delete_entry(w, s->p);
    remove_row(w, s->row, ROW_PIVOT);
    w->ColHead.data[s->col] = -1;
    w->ColCnt.data[s->col] = col_substituted(s->row);
    w->ColsRemoved++;
    return 0;
}

// Factor of the row that is left when the bound on that side (+1: lower, -1: upper) becomes it.
double row_factor(double a, int side)
{
    int exponent = 0;
    std::frexp(a, &exponent); // a power of two: no rounding
    const double size = std::fabs(a) < 1 ? std::ldexp(1.0, 1 - exponent) : 1;
    return (a > 0) == (side > 0) ? size : -size;
}

int record_slack(PresolveWork *w, const Singleton *s, double bound, int side, double factor)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_SLACK_COLUMN, w->RowCnt.data[s->row] - 1);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = s->col;
    undo->row = s->row;
    undo->value = w->Rhs.data[s->row];
    undo->factor = s->a;
    undo->cost = s->cost;
    undo->mode = side > 0 ? -1 : -2;
    undo->bound[0] = bound;
    undo->bound[1] = factor;
    int k = 0;
    for (int q = first_in_row(w, s->row); q >= 0; q = next_in_row(w, q))
        if (q != s->p) undo->entry[k++] = {w->Nodes.data[q].col, w->Nodes.data[q].value};
    return 0;
}

// The column goes as the slack of its row; its bound on that side becomes the row.
int absorb(PresolveWork *w, const Singleton *s, int side)
{
    const int i = s->row;
    const double bound = side > 0 ? w->Lb.data[s->col] : w->Ub.data[s->col];
    const double factor = row_factor(s->a, side);
    TRY(record_slack(w, s, bound, side, factor));
    move_cost(w, s);
    delete_entry(w, s->p);
    w->ColHead.data[s->col] = -1;
    w->ColCnt.data[s->col] = COL_FIXED;
    w->ColsRemoved++;
    for (int q = first_in_row(w, i); q >= 0; q = next_in_row(w, q))
        w->Nodes.data[q].value *= factor;
    w->Rhs.data[i] = factor * (w->Rhs.data[i] - s->a * bound);
    w->Sense.data[i] = '<';
    row_activity(w, i);
    mark_row(w, i);
    mark_cols_of_row(w, i);
    w->Work += 10.0 * w->RowCnt.data[i];
    return 0;
}
} // namespace

int pre_column_singleton(PresolveWork *w, int j)
{
    if (!may_try(w, j)) return 0;
    Singleton s = examine(w, j);
    const bool equation = w->Sense.data[s.row] == '=';
    // The dual that an inequality held at equality gets must not be positive.
    if (!equation && s.cost * s.a > NO_COST * s.a * s.a) return 0;
    // An inequality pushes x_j back on one side only; there its own bound must not matter.
    if (!equation && !(s.a > 0 ? s.free_above : s.free_below)) return 0;
    if (!s.free_below && !s.free_above) return 0;
    if (is_weak(w, j, s.a) || !keeps_integers(w, s.p)) return 0;
    s.largest = largest_other(w, s.row, s.p);
    const bool both = s.free_below && s.free_above;
    const double ratio = !both ? SLACK_RATIO : s.bounded ? IMPLIED_RATIO : FREE_RATIO;
    if (std::fabs(s.a) < ratio * s.largest) return 0;
    if (both) return substitute(w, &s);
    return absorb(w, &s, s.free_above ? 1 : -1);
}

void undo_slack_column(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col, i = point->n + undo->row;
    const double a = undo->factor, y = undo->bound[1] * point->d[i];
    double left = undo->value;
    for (int k = 0; k < undo->count; k++)
        left -= undo->entry[k].value * point->x[undo->entry[k].index];
    point->x[j] = left / a;
    point->d[j] = -a * y;
    point->d[i] = y + undo->cost / a;
    if (!point->status) return;
    const bool basic = point->status[i] >= 0;
    if (!basic) point->x[j] = undo->bound[0];
    point->status[j] = basic ? 0 : undo->mode;
    point->status[i] = -1;
}
