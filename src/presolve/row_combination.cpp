// row_combination.cpp -- add a multiple of an equation to another row
//
// Method      The feasible set stays the same, since the equation holds. Entries that cancel but for rounding go.
// Way back    A^T y stays the same when the equation's dual takes factor times the dual of the other row.
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

int combine_rows(PresolveWork *w, int target, int equation, double factor)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_ROW_COMBINATION, 0);
    if (!undo) return OUT_OF_MEMORY;
    undo->row = target;
    undo->other = equation;
    undo->factor = factor;
    w->Work += 5.0 * (w->RowCnt.data[target] + w->RowCnt.data[equation]);
    for (int p = first_in_row(w, equation); p >= 0; p = next_in_row(w, p))
        w->Scratch.data[w->Nodes.data[p].col] = factor * w->Nodes.data[p].value;
    add_to_entries(w, target);
    fill_in(w, target, equation);
    const double old = w->Rhs.data[target], term = factor * w->Rhs.data[equation];
    const double sum = old + term;
    const double size = std::max(std::fabs(old), std::fabs(term));
    w->Rhs.data[target] = std::fabs(sum) <= CANCELLED_RHS * size ? 0 : sum;
    row_activity(w, target);
    mark_row(w, target);
    mark_row(w, equation);
    return 0;
}

void undo_row_combination(const UndoRecord *undo, PostPoint *point)
{
    double *y = point->d + point->n;
    y[undo->other] += undo->factor * y[undo->row];
}
