// column_shift.cpp -- a column x is replaced by x' with x = offset + factor x'
//
// Method      Entries and cost are multiplied by the factor, right-hand sides and the objective constant take up the
//             offset. x' has the index of x and bounds that the caller has computed.
// Postsolve   x from x'. Its reduced cost is that of x' divided by the factor.
// Cost        O(entries of the column)
#include "presolve/integer/column_shift.h"
#include "presolve/errors.h"
#include "presolve/postsolve.h"

int shift_column(PresolveWork *w, int j, const ColumnShift &shift)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_COLUMN_SHIFT, 0);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = j;
    undo->value = shift.offset;
    undo->factor = shift.factor;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        const double a = w->Nodes.data[p].value, size = size_of_entry(w, p);
        w->Nodes.data[p].value = a * shift.factor;
        set_entry_size(w, p, size * std::fabs(shift.factor));
        w->Rhs.data[i] -= a * shift.offset;
        add_to_rhs_error(w, i, size * std::fabs(shift.offset), 0);
        mark_row(w, i);
    }
    w->Lb.data[j] = shift.lb;
    w->Ub.data[j] = shift.ub;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        row_activity(w, w->Nodes.data[p].row);
    add_to_cost_error(w, j, std::fabs(w->Obj.data[j] * shift.factor), 0);
    w->ObjErr.data[j] *= std::fabs(shift.factor);
    w->ObjCon += w->Obj.data[j] * shift.offset;
    w->Obj.data[j] *= shift.factor;
    w->BoundErr.data[j] = 0;
    w->Work += 5.0 * w->ColCnt.data[j];
    mark_col(w, j);
    return 0;
}

void undo_column_shift(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col;
    point->x[j] = point->constants * undo->value + undo->factor * point->x[j];
    if (!point->d) return;
    point->d[j] /= undo->factor;
    if (point->status && undo->factor < 0 && point->status[j] < 0 && point->status[j] > -3)
        point->status[j] = -3 - point->status[j];
}
