// free_to_slack.cpp -- a free column with inequalities only is replaced by the slack of one of them
//
// Problem     a x + sum a_k x_k <= b with x free or implied free: with the slack s >= 0 the row is an equation, through
//             which x can be substituted out.
// Method      s takes the index of x. The row is removed, the cost of s is -c_x / a, its entries in the other rows are
//             -a_ix / a: one row fewer, but fill.
// Postsolve   The index of x holds s, its status and its reduced cost, which is -y_r. They become those of the row; x
//             follows from the row and is basic.
// Cost        That of an elimination (aggregate_eliminate.cpp).
#include "presolve/errors.h"
#include "presolve/postsolve.h"
#include "presolve/reduce/aggregate.h"

namespace
{
// smallest pivot relative to the largest entry of the column
constexpr double RELATIVE_PIVOT = 0.01;
constexpr double PIVOT_EFFORT = 20;
constexpr double LEAST_PIVOT = 1e-6;

// The entry of column j in its shortest row with an acceptable pivot, or -1.
int best_pivot(const PresolveWork *w, int j)
{
    const double largest = largest_in_col(w, j);
    const int64_t count = w->ColCnt.data[j];
    int best = -1;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        if (w->Sense.data[node.row] == '=') return -1;
        const double size = std::fabs(node.value);
        const int64_t length = w->RowCnt.data[node.row];
        if (size < std::max(LEAST_PIVOT, RELATIVE_PIVOT * largest) ||
            (count - 2) * (length - 1) > w->Env->AggFill)
            continue;
        if (best >= 0) {
            const PresolveNode &old = w->Nodes.data[best];
            const int shortest = w->RowCnt.data[old.row];
            if (length > shortest || (length == shortest && size <= std::fabs(old.value)))
                continue;
        }
        best = p;
    }
    return best;
}

int push_record(PresolveWork *w, int p)
{
    const PresolveNode &pivot = w->Nodes.data[p];
    UndoRecord *undo =
        undo_push(&w->Undo, UNDO_FREE_TO_SLACK, w->RowCnt.data[pivot.row] - 1);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = pivot.col;
    undo->row = pivot.row;
    undo->value = w->Rhs.data[pivot.row];
    undo->factor = pivot.value;
    int k = 0;
    for (int q = first_in_row(w, pivot.row); q >= 0; q = next_in_row(w, q))
        if (q != p) undo->entry[k++] = {w->Nodes.data[q].col, w->Nodes.data[q].value};
    return 0;
}

// Column j, whose entries are still those of x, becomes the slack.
void become_slack(PresolveWork *w, int p)
{
    const int j = w->Nodes.data[p].col;
    const double a = w->Nodes.data[p].value;
    change_bounds(w, j, 0, w->INF);
    for (int q = first_in_col(w, j); q >= 0; q = next_in_col(w, q)) {
        PresolveNode *node = &w->Nodes.data[q];
        if (q == p) continue;
        const double after = -node->value / a, size = size_of_entry(w, q) / std::fabs(a);
        if (change_coefficient(w, node->row, j, node->value, after))
            w->ScratchC.data[node->row] = 1;
        node->value = after;
        set_entry_size(w, q, size);
        sum_anew_if_lost(w, node->row);
        mark_row(w, node->row);
    }
}

int swap(PresolveWork *w, int p)
{
    const int r = w->Nodes.data[p].row, j = w->Nodes.data[p].col;
    TRY(push_record(w, p));
    w->Work += PIVOT_EFFORT * w->ColCnt.data[j] * w->RowCnt.data[r];
    const double cost = -w->Obj.data[j] / w->Nodes.data[p].value,
                 error = w->ObjErr.data[j] / std::fabs(w->Nodes.data[p].value);
    eliminate_from_others(w, p);
    become_slack(w, p);
    w->Obj.data[j] = cost;
    w->ObjErr.data[j] = error;
    w->BoundErr.data[j] = 0;
    remove_row(w, r, ROW_PIVOT);
    mark_col(w, j);
    return 0;
}

int try_column(PresolveWork *w, int j)
{
    if (!is_live_col(w, j) || w->ColCnt.data[j] < 2 || w->ColFlags.data[j] != 0 ||
        is_integer(w, j))
        return 0;
    const int p = best_pivot(w, j);
    if (p < 0 || bounds_that_matter(w, j) != 0 ||
        !errors_allow(w, p, largest_in_col(w, j), largest_in_row(w, w->Nodes.data[p].row)))
        return 0;
    const int64_t fill =
        int64_t{w->ColCnt.data[j] - 1} * (w->RowCnt.data[w->Nodes.data[p].row] - 1);
    bool room = false;
    TRY(room_for_fill(w, fill, &room));
    return room ? swap(w, p) : 0;
}
} // namespace

int free_to_slack(PresolveWork *w, double most_work)
{
    int *list = w->IndexA.data;
    const int count = candidate_cols_by_sense(w, SENSE_LESS, list);
    for (int k = 0; k < count && w->Work < most_work; k++) {
        const double before = w->Work - std::max(1, w->ColCnt.data[list[k]]);
        TRY(try_column(w, list[k]));
        TRY(check_limits(w, w->Work - before));
    }
    return 0;
}

void undo_free_to_slack(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col, i = point->n + undo->row;
    const double slack = point->x[j];
    double left = point->constants * undo->value - slack;
    for (int k = 0; k < undo->count; k++)
        left -= undo->entry[k].value * point->x[undo->entry[k].index];
    point->x[j] = left / undo->factor;
    if (!point->d) return;
    point->x[i] = slack;
    point->d[i] = -point->d[j];
    point->d[j] = 0;
    if (!point->status) return;
    point->status[i] = point->status[j];
    point->status[j] = 0;
}
