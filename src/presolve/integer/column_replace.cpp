// column_replace.cpp -- a column that is a multiple of a binary column in each feasible point is substituted
//
// Method      Entries, cost and right-hand sides as for x_j = offset + factor x_z. Bounds of x_j are those of the
//             expression at x_z = 0 and 1, which the caller has found to be within them.
// Postsolve   That of a substitution by a row x_j - factor x_z = offset; such a row is not in the model, so that there are
//             no dual values.
// Cost        O(entries of both columns)
#include "presolve/integer/column_replace.h"
#include "presolve/errors.h"
#include "presolve/reduce/aggregate.h"

namespace
{
// Sums below this share of their largest term are zero.
constexpr double CANCELLED = 1e-13;
// A binary column that is integral within its tolerance moves the other one by this much more.
constexpr double LARGEST_FACTOR = 1000;

int push_undo(PresolveWork *w, const ColumnReplacement &r)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_SUBSTITUTE, 1);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = r.col;
    undo->row = -1;
    undo->value = r.offset;
    undo->factor = 1;
    undo->cost = w->Obj.data[r.col];
    undo->split = 1;
    undo->entry[0] = {r.by, -r.factor};
    return 0;
}

void move_cost(PresolveWork *w, const ColumnReplacement &r)
{
    const double cost = w->Obj.data[r.col], step = cost * r.factor;
    double *to = &w->Obj.data[r.by];
    const double size = std::max(std::fabs(*to), std::fabs(step));
    add_to_cost_error(w, r.by, size, std::fabs(r.factor) * w->ObjErr.data[r.col]);
    *to += step;
    if (std::fabs(*to) <= CANCELLED * size) *to = 0;
    w->ObjCon += cost * r.offset;
    w->Obj.data[r.col] = 0;
}

// A term of the column that is replaced is added to entry q of the other column, or to a new one (q < 0). True if the
// activity lost digits.
bool add_term(PresolveWork *w, int i, int z, int q, double step, double step_size)
{
    const double before = q >= 0 ? w->Nodes.data[q].value : 0;
    const double size = std::max(q >= 0 ? size_of_entry(w, q) : 0, step_size);
    double after = before + step;
    if (std::fabs(after) <= std::max(w->ZeroTol, CANCELLED * size)) after = 0;
    const bool lost = change_coefficient(w, i, z, before, after);
    if (q < 0 && after != 0) {
        insert_entry(w, i, z, after);
        set_entry_size(w, w->RowHead.data[i], size);
    } else if (q >= 0 && after == 0) {
        delete_entry(w, q);
    } else if (q >= 0) {
        w->Nodes.data[q].value = after;
        set_entry_size(w, q, size);
    }
    return lost;
}

void move_entry(PresolveWork *w, int p, const ColumnReplacement &r)
{
    const int i = w->Nodes.data[p].row;
    const int q = w->Flag.data[i] ? w->IndexB.data[i] : -1;
    const double step = w->Nodes.data[p].value * r.factor,
                 size = size_of_entry(w, p) * std::fabs(r.factor);
    bool lost = settle_term(w, p, r.offset);
    delete_entry(w, p);
    w->Flag.data[i] = 0; // the entry may go; no other of this row follows
    lost |= add_term(w, i, r.by, q, step, size);
    mark_row(w, i);
    if (lost) digits_lost(w, i);
}
} // namespace

bool may_replace(const PresolveWork *w, const ColumnReplacement &r)
{
    return w->ColFlags.data[r.col] == 0 && std::fabs(r.factor) <= LARGEST_FACTOR &&
           std::fabs(r.offset) <= LARGEST_FACTOR;
}

int replace_column(PresolveWork *w, const ColumnReplacement &r)
{
    TRY(push_undo(w, r));
    move_cost(w, r);
    w->Work += 5.0 * w->ColCnt.data[r.col];
    map_column(w, r.by);
    for (int p = first_in_col(w, r.col); p >= 0;) {
        const int next = next_in_col(w, p);
        move_entry(w, p, r);
        p = next;
    }
    unmap_column(w, r.by);
    mark_col(w, r.by);
    w->ColHead.data[r.col] = -1;
    w->ColCnt.data[r.col] = COL_FIXED;
    w->ColsRemoved++;
    return 0;
}
