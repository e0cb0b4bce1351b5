// row_combination.cpp -- add a multiple of an equation to another row
//
// Method      The feasible set stays the same, since the equation holds. Entries that cancel but for rounding go.
// Way back    A^T y stays the same when the equation's dual takes factor times the dual of the other row. The slack of the
//             equation must not be basic for that. Where it is, and none but one of the row's columns is basic, a column
//             whose reduced cost comes down to zero first takes its place.
// Cost        O(entries of both rows).
#include "presolve/row_combination.h"
#include "presolve/postsolve.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double CANCELLED = 3e-10; // of the larger of two terms: their sum is rounding
constexpr double CANCELLED_RHS = 1e-13;

// Adds to the entries that the target has, and takes the terms out of Scratch.
void add_to_entries(PresolveWork *w, int target)
{
    for (int p = first_in_row(w, target); p >= 0;) {
        const int next = next_in_row(w, p), j = w->Nodes.data[p].col;
        const double term = w->Scratch.data[j], old = w->Nodes.data[p].value;
        w->Scratch.data[j] = 0;
        if (term != 0) { // assigned below, or zero
            const double sum = old + term;
            mark_col(w, j);
            w->CoefsChanged++;
            if (std::fabs(sum) <= CANCELLED * std::max(std::fabs(old), std::fabs(term)))
                delete_entry(w, p);
            else
                w->Nodes.data[p].value = sum;
        }
        p = next;
    }
}

void fill_in(PresolveWork *w, int target, int equation)
{
    for (int p = first_in_row(w, equation); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        const double term = w->Scratch.data[j];
        if (term == 0) continue; // taken
        w->Scratch.data[j] = 0;
        insert_entry(w, target, j, term);
        mark_col(w, j);
        w->CoefsChanged++;
    }
}
} // namespace

int combine_rows(PresolveWork *w, int target, int equation, double factor, int own)
{
    const int count = w->RowCnt.data[equation];
    UndoRecord *undo = undo_push(&w->Undo, UNDO_ROW_COMBINATION, count);
    if (!undo) return OUT_OF_MEMORY;
    undo->row = target;
    undo->other = equation;
    undo->factor = factor;
    record_row(w, equation, undo);
    w->Work += 5.0 * (w->RowCnt.data[target] + count);
    for (int k = 0; k < count; k++)
        w->Scratch.data[undo->entry[k].index] = factor * undo->entry[k].value;
    add_to_entries(w, target);
    fill_in(w, target, equation);
    undo->col = own;
    undo->mode = w->RowCnt.data[target] == 1;
    const double old = w->Rhs.data[target], term = factor * w->Rhs.data[equation];
    const double sum = old + term;
    const double size = std::max(std::fabs(old), std::fabs(term));
    w->Rhs.data[target] = std::fabs(sum) <= CANCELLED_RHS * size ? 0 : sum;
    row_activity(w, target);
    mark_row(w, target);
    mark_row(w, equation);
    return 0;
}

void record_row(const PresolveWork *w, int i, UndoRecord *undo)
{
    int k = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        undo->entry[k++] = {w->Nodes.data[p].col, w->Nodes.data[p].value};
}

// With y_i = theta and d_q - theta a_iq, the q with the least |d_q / a_iq| reaches zero first, and no sign changes. A
// basic column `own` that stands in row i and alone in row `single` keeps d = 0 by y_single = theta through; then the
// slack of that row is a candidate as well.
void release_slack(const UndoRecord *undo, int i, int single, PostPoint *point)
{
    const int slack = point->n + i, other = point->n + single;
    if (!point->status || point->status[slack] < 0 || point->d[slack] != 0) return;
    const double through = -1 / undo->factor;
    double least = INFINITY, theta = 0;
    int entering = -1;
    bool own_is_basic = false;
    for (int k = 0; k < undo->count; k++) {
        const int q = undo->entry[k].index;
        const double ratio = point->d[q] / undo->entry[k].value;
        if (point->status[q] >= 0) {
            if (q != undo->col || single < 0) return; // the row of the inverse is not known
            own_is_basic = true;
        } else if (std::fabs(ratio) < least) {
            least = std::fabs(ratio);
            theta = ratio;
            entering = q;
        }
    }
    if (own_is_basic && point->status[other] < 0 &&
        std::fabs(point->d[other] / through) < least) {
        theta = -point->d[other] / through;
        entering = other;
    }
    if (entering < 0) return;
    for (int k = 0; k < undo->count; k++)
        if (point->status[undo->entry[k].index] < 0)
            point->d[undo->entry[k].index] -= theta * undo->entry[k].value;
    if (own_is_basic) point->d[other] += theta * through;
    point->d[slack] = theta;
    point->d[entering] = 0;
    point->status[entering] = 0;
    point->status[slack] = -1;
}

void undo_row_combination(const UndoRecord *undo, PostPoint *point)
{
    const int target = point->n + undo->row, equation = point->n + undo->other;
    const bool own_is_basic =
        point->status && undo->col >= 0 && point->status[undo->col] >= 0;
    if (point->d[target] != 0) {
        release_slack(undo, undo->other, undo->mode ? undo->row : -1, point);
        point->d[equation] += undo->factor * point->d[target];
    } else if (own_is_basic && point->status[equation] >= 0 && point->status[target] < 0) {
        // The column leaves the target, and would stand in the equation only, next to the basic slack.
        point->status[target] = 0;
        point->status[equation] = -1;
    }
}
