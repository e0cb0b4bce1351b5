// substitute.cpp -- undo record of a column substituted out through an equation, and its postsolve step
//
// Method      Row r holds with equality: a x_j + sum a_k x_k = b gives x_j. The caller substitutes it in the cost and
//             in the other rows of the column; then both the row and the column are removed.
// In          A column without bounds, or whose bounds are implied by the rows and the bounds of other columns. The row
//             may be an inequality if its dual value will have the right sign at equality.
// Postsolve   x_j from the row; the dual value of the row is the one that makes the reduced cost of x_j zero; x_j is
//             basic instead of the slack of the row. Reduced costs of other columns and dual values of other rows do
//             not change: with y_r = (c_j - sum y_i a_ij) / a the substituted cost of column k is c_k - y_r a_k
//             already.
#include "presolve/postsolve.h"
#include <algorithm>
#include <cmath>

namespace
{
// Size assumed for an integer column without a bound.
constexpr double UNBOUNDED_SIZE = 1e7;
// Largest distance to an integer of a value computed from integers, in tolerances of the rows of the column.
constexpr double MOST_DRIFT = 0.1;

double largest_value(const PresolveWork *w, int j)
{
    const double lb = has_lb(w, j) ? std::fabs(w->Lb.data[j]) : UNBOUNDED_SIZE,
                 ub = has_ub(w, j) ? std::fabs(w->Ub.data[j]) : UNBOUNDED_SIZE;
    return std::max(lb, ub);
}

// Distance of a quotient to the nearest integer. A product that gives the dividend exactly counts as exact: 0.3 / 0.1.
double distance_to_integer(double dividend, double divisor)
{
    const double quotient = std::round(dividend / divisor);
    return std::fabs(std::fma(-quotient, divisor, dividend) / divisor);
}
} // namespace

bool keeps_integers(const PresolveWork *w, int p)
{
    const PresolveNode &own = w->Nodes.data[p];
    if (!is_integer(w, own.col)) return true;
    double drift = distance_to_integer(w->Rhs.data[own.row], own.value);
    if (drift > INTEGRAL) return false;
    for (int q = first_in_row(w, own.row); q >= 0; q = next_in_row(w, q)) {
        const PresolveNode &node = w->Nodes.data[q];
        if (!is_integer(w, node.col)) return false;
        const double off = distance_to_integer(node.value, own.value);
        if (off > INTEGRAL) return false;
        drift += off * largest_value(w, node.col);
    }
    double largest = 1;
    for (int q = first_in_col(w, own.col); q >= 0; q = next_in_col(w, q))
        largest = std::max(largest, std::fabs(w->Nodes.data[q].value));
    return drift * largest <= MOST_DRIFT * w->FeasTol;
}

int push_substitution(PresolveWork *w, int p)
{
    const int i = w->Nodes.data[p].row, j = w->Nodes.data[p].col;
    const int in_row = w->RowCnt.data[i] - 1, in_col = w->ColCnt.data[j] - 1;
    UndoRecord *undo = undo_push(&w->Undo, UNDO_SUBSTITUTE, in_row + in_col);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = j;
    undo->row = i;
    undo->value = w->Rhs.data[i];
    undo->factor = w->Nodes.data[p].value;
    undo->cost = w->Obj.data[j];
    undo->split = in_row;
    int k = 0;
    for (int q = first_in_row(w, i); q >= 0; q = next_in_row(w, q))
        if (q != p) undo->entry[k++] = {w->Nodes.data[q].col, w->Nodes.data[q].value};
    for (int q = first_in_col(w, j); q >= 0; q = next_in_col(w, q))
        if (q != p) undo->entry[k++] = {w->Nodes.data[q].row, w->Nodes.data[q].value};
    return 0;
}

void undo_substitute(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col, i = point->n + undo->row;
    double left = point->constants * undo->value, cost = point->constants * undo->cost;
    for (int k = 0; k < undo->split; k++)
        left -= undo->entry[k].value * point->x[undo->entry[k].index];
    point->x[j] = left / undo->factor;
    if (!point->d) return;
    for (int k = undo->split; k < undo->count; k++)
        cost -= undo->entry[k].value * point->d[point->n + undo->entry[k].index];
    point->d[j] = 0;
    point->d[i] = cost / undo->factor;
    if (!point->status) return;
    point->status[j] = 0;
    point->status[i] = -1;
}
