// forcing_rows.cpp -- forcing rows: rows that can be satisfied only with all their columns at bounds
//
// Method      If the minimal activity of a x <= b equals b (or the maximal activity of an equation does), every column
//             is fixed at the bound that gives this activity.
// Postsolve   All columns are nonbasic. The dual value of the row corrects reduced costs of the wrong sign: the column
//             that needs the largest one becomes basic, and the slack of the row nonbasic.
#include "presolve/errors.h"
#include "presolve/postsolve.h"

namespace
{
constexpr double REACHED = 1e-10;
// the range of each column has to change the activity by this many tolerances
constexpr double WORTH = 100;

bool ranges_matter(const PresolveWork *w, int i)
{
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const double range = w->Ub.data[node.col] - w->Lb.data[node.col];
        if (std::fabs(range * node.value) < WORTH * w->FeasTol ||
            w->ColFlags.data[node.col])
            return false;
    }
    return true;
}

// +1 if the minimal activity is forced, -1 if the maximal one, else 0.
int forcing_sign(const PresolveWork *w, int i)
{
    const double low = w->RMin.data[i], high = w->RMax.data[i];
    if (w->Rmincnt.data[i] == 0 && low > -REACHED && low < w->FeasTol)
        return ranges_matter(w, i) ? 1 : 0;
    if (w->Sense.data[i] == '=' && w->Rmaxcnt.data[i] == 0 && high < REACHED &&
        high > -w->FeasTol)
        return ranges_matter(w, i) ? -1 : 0;
    return 0;
}

int fix_row(PresolveWork *w, int i, int sign)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_FORCING_ROW, w->RowCnt.data[i]);
    if (!undo) return OUT_OF_MEMORY;
    undo->row = i;
    undo->mode = sign;
    int k = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        undo->entry[k++] = {w->Nodes.data[p].col, w->Nodes.data[p].value};
    w->Work += 20.0 * undo->count;
    for (k = 0; k < undo->count; k++) {
        const UndoEntry &e = undo->entry[k];
        bound_from_row(w, i, e.index, e.value, std::fabs(w->Rhs.data[i]));
        TRY(sign * e.value > 0 ? fix_at_lower(w, e.index) : fix_at_upper(w, e.index));
    }
    w->RowHead.data[i] = -1;
    w->RowCnt.data[i] = ROW_REDUNDANT;
    w->RowsRemoved++;
    return 0;
}
} // namespace

int pre_forcing_rows(PresolveWork *w)
{
    const WorkList *rows = rows_of_phase(w);
    for (int k = 0; k < rows->PendingCnt;
         k++) { // the list grows, so that chains are reduced in one pass
        const int i = rows->List.data[k];
        TRY(check_limits(w, 1));
        if (w->RowCnt.data[i] < 2) continue;
        const int sign = forcing_sign(w, i);
        TRY(check_limits(w, sign != 0 ? w->RowCnt.data[i] : 0));
        if (sign != 0) TRY(fix_row(w, i, sign));
    }
    return 0;
}

// y = -t sign, with the smallest t >= 0 that gives every d_k - y a_k the sign of its bound: at lower (sign a > 0) >= 0,
// at upper <= 0.
void undo_forcing_row(const UndoRecord *undo, PostPoint *point)
{
    const double sign = undo->mode;
    double t = 0;
    int deciding = -1;
    for (int k = 0; k < undo->count; k++) {
        const double ratio =
            -point->d[undo->entry[k].index] / (sign * undo->entry[k].value);
        if (ratio <= t) continue;
        t = ratio;
        deciding = undo->entry[k].index;
    }
    if (deciding < 0) return;
    for (int k = 0; k < undo->count; k++)
        point->d[undo->entry[k].index] += t * sign * undo->entry[k].value;
    point->d[deciding] = 0;
    point->d[point->n + undo->row] = -t * sign;
    if (!point->status) return;
    point->status[deciding] = 0;
    point->status[point->n + undo->row] = -1;
}
