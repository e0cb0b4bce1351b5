// fix.cpp -- fixes a column and removes it
//
// Postsolve needs the column's cost and entries to compute its reduced cost from the dual values.
#include "presolve/errors.h"
#include "presolve/postsolve.h"

namespace
{
constexpr double CLOSED = 1e-13; // a smaller range counts as zero
// largest effect of a range that is ignored, as a share of the tolerance
constexpr double WORTHLESS = 0.01;

int record_fix(PresolveWork *w, int j, double v, int status)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_FIX, w->ColCnt.data[j]);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = j;
    undo->value = v;
    undo->cost = w->Obj.data[j];
    undo->mode = status;
    int k = 0;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        undo->entry[k++] = {w->Nodes.data[p].row, w->Nodes.data[p].value};
    return 0;
}

void fix_term(PresolveWork *w, int p, double v)
{
    const int i = w->Nodes.data[p].row;
    const bool lost = settle_term(w, p, v);
    mark_row(w, i);
    delete_entry(w, p);
    if (lost) digits_lost(w, i);
}
} // namespace

int fix_column(PresolveWork *w, int j, double v, int status)
{
    const bool stays = w->ColFlags.data[j] != 0;
    if (!stays) TRY(record_fix(w, j, v, status));
    w->ObjCon += w->Obj.data[j] * v;
    for (int p = first_in_col(w, j); p >= 0;) {
        const int next = next_in_col(w, p);
        fix_term(w, p, v);
        p = next;
    }
    w->ColHead.data[j] = -1;
    w->Obj.data[j] = 0;
    if (stays) {
        w->Lb.data[j] = w->Ub.data[j] = v;
        mark_col(w, j);
        return 0;
    }
    w->ColCnt.data[j] = COL_FIXED;
    w->ColsRemoved++;
    return 0;
}

int fix_at_lower(PresolveWork *w, int j)
{
    return fix_column(w, j, w->Lb.data[j], -1);
}

int fix_at_upper(PresolveWork *w, int j)
{
    return fix_column(w, j, w->Ub.data[j], -2);
}

int fix_by_range(PresolveWork *w, int j)
{
    const double lb = w->Lb.data[j], ub = w->Ub.data[j], range = ub - lb,
                 cost = w->Obj.data[j];
    if (-range > 2 * w->FeasTol + bound_error(w, j)) {
        w->InfeasCol = j;
        return END_INFEASIBLE;
    }
    if (w->ColFlags.data[j] && w->ColCnt.data[j] == 0) return 0; // nothing to remove
    double largest = 0;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        largest = std::max(largest, std::fabs(w->Nodes.data[p].value));
    if (range > CLOSED && largest * range > w->FeasTol) return 0;
    double v = 0.5 * (lb + ub);
    if (WORTHLESS * w->FeasTol <= std::fabs(range * cost) &&
        std::fabs(cost) > cost_error(w, j))
        v = cost > 0 ? lb : ub;
    if (w->ColFlags.data[j] && lb <= 0 && ub >= 0) v = 0; // a value that SOS allow
    return fix_column(w, j, v, STATUS_BY_SIGN);
}

void undo_fix(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col;
    point->x[j] = point->constants * undo->value;
    if (!point->d) return;
    double d = point->constants * undo->cost;
    for (int k = 0; k < undo->count; k++)
        d -= point->d[point->n + undo->entry[k].index] * undo->entry[k].value;
    point->d[j] = d;
    if (!point->status) return;
    point->status[j] = undo->mode != STATUS_BY_SIGN ? undo->mode : d >= 0 ? -1 : -2;
}
