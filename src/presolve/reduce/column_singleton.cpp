// column_singleton.cpp -- column singletons: free ones are removed with their row, others become the slack of the row
//
// Method      Column j has its only entry a in row r: a x_j + rest = b, or <= b if the cost makes the row tight in some
//             optimum, so that it may be taken as an equation. The cost moves to the other columns:
//             c_j x_j = c_j / a (b - rest). If bounds of x_j are infinite or implied by the row,
//             - on both sides, row and column are removed;
//             - on one side, the other bound gives rest <= b - a bound (or >=), and the column becomes its slack.
//             The remaining row is brought to '<' and, if |a| < 1, to the units of x_j, so that its tolerance is one of
//             x_j.
// Postsolve   x_j = (b - rest) / a. With y' the dual value of the remaining row, y = y' + c_j / a, and the column
//             replaces the slack of that row: basic if the slack is basic, otherwise at the bound that became the row.
// Invariant   Implied bounds are computed from the current bounds of the other columns, which are kept.
// Cost        O(length of the row) per column removed. Of the slacks of an inequality one is removed; the others are
//             dominated then.
#include "presolve/errors.h"
#include "presolve/postsolve.h"
#include "presolve/reduce/columns.h"

namespace
{
constexpr double IMPLIED = 1e-9; // by which an implied bound may be weaker than the bound

constexpr double NO_COST = 1e-9; // reduced cost of the row's slack that counts as zero

constexpr double LITTLE_RANGE = 1e-6, LITTLE_COST = 1e-6;

// Smallest entry relative to the largest of the row: for a free column, ...
constexpr double FREE_RATIO = 1e-6;

// ... for an implied free column, as errors of other columns may violate its bounds,
constexpr double IMPLIED_RATIO = 1e-3;

constexpr double SLACK_RATIO = 1e-3; // ... for a slack column

// A column singleton in the pass.
struct Singleton {
    int p, row, col;
    double a, cost;
    bool free_below, free_above;
    bool bounded; // some of these bounds are infinite only by implication
    bool is_free() const { return free_below && free_above; }
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

// True if cost and range are so different in size that the tolerance of the row would dominate the cost.
bool is_weak(const PresolveWork *w, int j, double a)
{
    const double range = w->Ub.data[j] - w->Lb.data[j];
    return std::fabs(a) * range < LITTLE_RANGE &&
           range * std::fabs(w->Obj.data[j]) > LITTLE_COST;
}

Singleton examine(const PresolveWork *w, int j)
{
    const int p = first_in_col(w, j);
    const PresolveNode &node = w->Nodes.data[p];
    Singleton s = {
        p, node.row, j, node.value, w->Obj.data[j], !has_lb(w, j), !has_ub(w, j), false};
    if (s.is_free()) return s;
    const ImpliedBounds implied = implied_bounds(w, j);
    s.bounded = true;
    s.free_below |= implied.lb >= w->Lb.data[j] - IMPLIED;
    s.free_above |= implied.ub <= w->Ub.data[j] + IMPLIED;
    return s;
}

// True if the row may be taken as an equation, and at least one bound is infinite or implied.
bool may_leave(const PresolveWork *w, const Singleton *s)
{
    if (w->Sense.data[s->row] == '=') return s->free_below || s->free_above;
    // The dual value of the inequality must not be positive, and on the side on which the row bounds x_j its own bound
    // must be infinite or implied.
    const double none = w->IsMip ? 0 : NO_COST;
    return s->cost * s->a <= none * s->a * s->a &&
           (s->a > 0 ? s->free_above : s->free_below);
}

// Of the slacks of an inequality, the one with the smallest c / a: its dual value makes the others dominated.
Singleton best_slack(PresolveWork *w, Singleton best)
{
    for (int q = first_in_row(w, best.row); q >= 0; q = next_in_row(w, q)) {
        const int k = w->Nodes.data[q].col;
        if (w->ColCnt.data[k] != 1 || w->ColFlags.data[k] || !may_try(w, k)) continue;
        const Singleton s = examine(w, k);
        if (s.cost / s.a < best.cost / best.a && may_leave(w, &s) && !s.is_free()) best = s;
    }
    w->Work += 3.0 * w->RowCnt.data[best.row];
    return best;
}

// Properties of the rest of the row that matter for accuracy and for the start of the dual simplex.
struct Rest {
    double largest;
    // columns that would be dual infeasible: no bound for the sign of their reduced cost
    int wrong;
};

Rest examine_rest(PresolveWork *w, const Singleton *s)
{
    Rest rest = {0, 0};
    const double y = s->cost / s->a;
    for (int q = first_in_row(w, s->row); q >= 0; q = next_in_row(w, q)) {
        if (q == s->p) continue;
        const int k = w->Nodes.data[q].col;
        const double d = w->Obj.data[k] - y * w->Nodes.data[q].value;
        rest.largest = std::max(rest.largest, std::fabs(w->Nodes.data[q].value));
        rest.wrong += (d < -NO_COST && !has_ub(w, k)) || (d > NO_COST && !has_lb(w, k));
    }
    w->Work += w->RowCnt.data[s->row];
    return rest;
}

bool is_safe(PresolveWork *w, const Singleton *s)
{
    if (is_weak(w, s->col, s->a) || !keeps_integers(w, s->p)) return false;
    const Rest rest = examine_rest(w, s);
    if (!s->is_free() && std::fabs(s->cost) > NO_COST && rest.wrong > 0) return false;
    const double ratio = !s->is_free() ? SLACK_RATIO
                         : s->bounded  ? IMPLIED_RATIO
                                       : FREE_RATIO;
    return std::fabs(s->a) >= ratio * rest.largest;
}

// Moves the cost of the column to the others of its row.
void move_cost(PresolveWork *w, const Singleton *s)
{
    if (s->cost == 0) return; // as stored
    const double y = s->cost / s->a, size = std::fabs(s->a),
                 lost = size_of_entry(w, s->p) / size,
                 error = w->ObjErr.data[s->col] / size;
    for (int q = first_in_row(w, s->row); q >= 0; q = next_in_row(w, q)) {
        const int k = w->Nodes.data[q].col;
        const double shift = y * w->Nodes.data[q].value, cost = w->Obj.data[k] - shift;
        add_to_cost_error(w, k, std::fabs(y) * size_of_entry(w, q) * lost,
                          error * std::fabs(w->Nodes.data[q].value));
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

// Factor on the remaining row if the bound on that side (+1: lower, -1: upper) becomes its right-hand side.
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

// Removes the column as the slack of its row; its bound on that side becomes part of the row.
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
    for (int q = first_in_row(w, i); q >= 0; q = next_in_row(w, q)) {
        const double size = std::fabs(factor) * size_of_entry(w, q);
        w->Nodes.data[q].value *= factor;
        set_entry_size(w, q, size);
    }
    add_to_rhs_error(w, i, size_of_entry(w, s->p) * std::fabs(bound),
                     std::fabs(s->a) * w->BoundErr.data[s->col]);
    w->RhsErr.data[i] *= std::fabs(factor);   // at least 1
    w->ScratchB.data[i] *= std::fabs(factor); // value noted by pre_columns
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
    if ((w->Flag.data[s.row] & SINGLETON_REFUSED) || !may_leave(w, &s)) return 0;
    if (w->Sense.data[s.row] != '=' && !s.is_free()) {
        if (s.cost == 0) // as stored: nothing is lost at the bound that relaxes the row
            return s.a > 0 ? fix_at_lower(w, j) : fix_at_upper(w, j);
        s = best_slack(w, s);
    }
    if (!is_safe(w, &s)) {
        if (w->RowCnt.data[s.row] > LONG_ROW) note_row(w, s.row, SINGLETON_REFUSED);
        return 0;
    }
    return s.is_free() ? substitute(w, &s) : absorb(w, &s, s.free_above ? 1 : -1);
}

void undo_slack_column(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col, i = point->n + undo->row;
    const double a = undo->factor;
    double left = point->constants * undo->value;
    for (int k = 0; k < undo->count; k++)
        left -= undo->entry[k].value * point->x[undo->entry[k].index];
    point->x[j] = left / a;
    if (!point->d) return;
    const double y = undo->bound[1] * point->d[i];
    point->d[j] = -a * y;
    point->d[i] = y + point->constants * undo->cost / a;
    if (!point->status) return;
    const bool basic = point->status[i] >= 0;
    if (!basic) point->x[j] = undo->bound[0];
    point->status[j] = basic ? 0 : undo->mode;
    point->status[i] = -1;
}
