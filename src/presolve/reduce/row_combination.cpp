// row_combination.cpp -- add a multiple of an equation to another row
//
// Method      The feasible set does not change, since the equation holds. Entries that cancel up to rounding are
//             deleted.
// Postsolve   A^T y does not change if factor times the dual value of the other row is added to that of the equation.
//             For that the slack of the equation must not be basic. If it is, and at most one column of the row is
//             basic, the column whose reduced cost reaches zero first becomes basic instead.
// Cost        O(entries of both rows).
#include "presolve/reduce/row_combination.h"
#include "presolve/errors.h"
#include "presolve/postsolve.h"

namespace
{
// a sum below this share of the larger term is a rounding error
constexpr double CANCELLED = 3e-10;

// sums with at most this many entries are stored for postsolve
constexpr int SHORT_ROW = 2;

constexpr double CANCELLED_RHS = 1e-13;

// Largest contribution of a small deleted entry to the row, if known.
double worth(const PresolveWork *w, int j, double entry)
{
    const double lb = has_lb(w, j) ? w->Lb.data[j] : 0,
                 ub = has_ub(w, j) ? w->Ub.data[j] : 0;
    return std::fabs(entry) * std::max(std::fabs(lb), std::fabs(ub));
}

// Adds to existing entries of the target, and removes these terms from Scratch.
void add_to_entries(PresolveWork *w, int target)
{
    for (int p = first_in_row(w, target); p >= 0;) {
        const int next = next_in_row(w, p), j = w->Nodes.data[p].col;
        const double term = w->Scratch.data[j], old = w->Nodes.data[p].value;
        w->Scratch.data[j] = 0;
        if (term != 0) { // assigned below, or zero
            const double sum = old + term,
                         size = std::max(size_of_entry(w, p), std::fabs(term));
            mark_col(w, j);
            w->CoefsChanged++;
            if (std::fabs(sum) <= CANCELLED * std::max(std::fabs(old), std::fabs(term))) {
                add_to_rhs_error(w, target, 0, worth(w, j, sum));
                delete_entry(w, p);
            } else {
                w->Nodes.data[p].value = sum;
                set_entry_size(w, p, size);
            }
        }
        p = next;
    }
}

void fill_in(PresolveWork *w, int target, int equation)
{
    for (int p = first_in_row(w, equation); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        const double term = w->Scratch.data[j];
        if (term == 0) continue; // already taken
        w->Scratch.data[j] = 0;
        insert_entry(w, target, j, term);
        mark_col(w, j);
        w->CoefsChanged++;
    }
}

int record_row(const PresolveWork *w, int i, int but, UndoEntry *entry)
{
    int k = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        if (w->Nodes.data[p].col != but)
            entry[k++] = {w->Nodes.data[p].col, w->Nodes.data[p].value};
    return k;
}

void add_rhs(PresolveWork *w, int target, int equation, double factor)
{
    const double old = w->Rhs.data[target], term = factor * w->Rhs.data[equation];
    const double sum = old + term, size = std::max(std::fabs(old), std::fabs(term));
    w->Rhs.data[target] = std::fabs(sum) <= CANCELLED_RHS * size ? 0 : sum;
    add_to_rhs_error(w, target, size, std::fabs(factor) * w->RhsErr.data[equation]);
}
} // namespace

int combine_rows(PresolveWork *w, int target, int equation, double factor, int own)
{
    const int count = w->RowCnt.data[equation];
    UndoRecord *undo = undo_push(&w->Undo, UNDO_ROW_COMBINATION, count + SHORT_ROW);
    if (!undo) return OUT_OF_MEMORY;
    undo->row = target;
    undo->other = equation;
    undo->factor = factor;
    undo->split = record_row(w, equation, -1, undo->entry);
    w->Work += 5.0 * (w->RowCnt.data[target] + count);
    for (int k = 0; k < count; k++)
        w->Scratch.data[undo->entry[k].index] = factor * undo->entry[k].value;
    add_to_entries(w, target);
    fill_in(w, target, equation);
    add_rhs(w, target, equation, factor);
    row_activity(w, target);
    mark_row(w, target);
    mark_row(w, equation);
    undo->count = undo->split;
    if (own < 0 || w->RowCnt.data[target] > SHORT_ROW) return 0;
    undo->col = own;
    undo->count += record_row(w, target, own, undo->entry + undo->split);
    return 0;
}

namespace
{
// The variable that replaces the slack of the equation in the basis, and the new dual value of the equation.
struct Entering {
    int index = -1;
    double dual = 0, least = INFINITY;
};

void consider(Entering *best, int index, double dual)
{
    if (std::fabs(dual) >= best->least) return;
    *best = {index, dual, std::fabs(dual)};
}

// With dual value t of the equation the reduced costs are d_q - t a_q: the q with the smallest |d_q / a_q| reaches zero
// first, and no sign changes. If the column `own` is basic, its d stays 0 by adding t * through to the dual value of
// the target: then the reduced costs of the target's other columns and of its slack change as well. With other basic
// columns the row of the inverse is not known.
Entering choose_entering(const UndoRecord *undo, const PostPoint *point, double through)
{
    const int target = point->n + undo->row;
    Entering best;
    bool own_is_basic = false;
    for (int k = 0; k < undo->split; k++) {
        const int q = undo->entry[k].index;
        if (point->status[q] < 0)
            consider(&best, q, point->d[q] / undo->entry[k].value);
        else if (q == undo->col)
            own_is_basic = true;
        else
            return Entering{};
    }
    if (!own_is_basic) return best;
    consider(&best, target, -point->d[target] / through);
    for (int k = undo->split; k < undo->count; k++) {
        const int q = undo->entry[k].index;
        if (point->status[q] >= 0) return Entering{};
        consider(&best, q, point->d[q] / (through * undo->entry[k].value));
    }
    return best;
}

// Makes the basic slack of the equation nonbasic if the record allows it.
void release_slack(const UndoRecord *undo, PostPoint *point)
{
    const int target = point->n + undo->row, equation = point->n + undo->other;
    const bool own_is_basic = undo->col >= 0 && point->status[undo->col] >= 0;
    const double through = -1 / undo->factor;
    const Entering entering = choose_entering(undo, point, through);
    if (entering.index < 0) return;
    const double t = entering.dual;
    for (int k = 0; k < undo->split; k++)
        if (undo->entry[k].index != undo->col || !own_is_basic)
            point->d[undo->entry[k].index] -= t * undo->entry[k].value;
    for (int k = undo->split; k < undo->count && own_is_basic; k++)
        point->d[undo->entry[k].index] -= t * through * undo->entry[k].value;
    if (own_is_basic) point->d[target] += t * through;
    point->d[equation] = t;
    point->d[entering.index] = 0;
    point->status[entering.index] = 0;
    point->status[equation] = -1;
}
} // namespace

void undo_row_combination(const UndoRecord *undo, PostPoint *point)
{
    const int target = point->n + undo->row, equation = point->n + undo->other;
    const bool slack_is_basic = point->status && point->status[equation] >= 0;
    if (point->d[target] != 0) {
        if (slack_is_basic && point->d[equation] == 0) release_slack(undo, point);
        point->d[equation] += undo->factor * point->d[target];
        return;
    }
    if (!slack_is_basic || undo->col < 0 || point->status[undo->col] < 0 ||
        point->status[target] >= 0)
        return;
    // The column `own` is removed from the target: it would be basic in the equation only, besides the basic slack.
    point->status[target] = 0;
    point->status[equation] = -1;
}
