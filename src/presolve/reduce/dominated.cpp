// dominated.cpp -- a column with cost zero, without a bound on one side, that can satisfy all its rows
//
// Method      All rows of the column are inequalities that are relaxed by moving it in one direction. For any values of
//             the other columns all of them are satisfied if it is moved far enough: rows and column are removed.
// Postsolve   The column is moved as far as its rows and its bound on the other side require. If a row requires most,
//             its slack is nonbasic with dual value 0 and the column basic; otherwise the column is nonbasic at its
//             bound.
// Invariant   No row is removed if the entry of the column is tiny relative to the largest of the row, as the value of
//             the column could become huge.
// Cost        O(entries of the rows)
#include "presolve/postsolve.h"
#include "presolve/reduce/columns.h"
#include <algorithm>
#include <cmath>

namespace
{
// smallest entry of the column relative to the largest of the row
constexpr double SMALL_RATIO = 1e-6;

// The largest entry of row i; stored for long rows, as many columns may need it. Entries may have been deleted since
// then.
double largest_of(PresolveWork *w, int i)
{
    if (w->Flag.data[i] & LARGEST_KNOWN) return w->ScratchB.data[i];
    double largest = 0;
    for (int q = first_in_row(w, i); q >= 0; q = next_in_row(w, q))
        largest = std::max(largest, std::fabs(w->Nodes.data[q].value));
    w->Work += w->RowCnt.data[i];
    if (w->RowCnt.data[i] <= LONG_ROW) return largest;
    note_row(w, i, LARGEST_KNOWN);
    w->ScratchB.data[i] = largest;
    return largest;
}

// Entries of the record, 0 when a row should stay.
int64_t record_length(PresolveWork *w, int j)
{
    int64_t length = 0;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        if (std::fabs(node.value) < SMALL_RATIO * largest_of(w, node.row)) return 0;
        length += 1 + w->RowCnt.data[node.row];
    }
    return length;
}

// Per row: {row, right-hand side}, {entries that follow, entry of column j}, the other entries.
int append_row(const PresolveWork *w, int p, UndoEntry *entry)
{
    const int i = w->Nodes.data[p].row;
    entry[0] = {i, w->Rhs.data[i]};
    entry[1] = {w->RowCnt.data[i] - 1, w->Nodes.data[p].value};
    int k = 2;
    for (int q = first_in_row(w, i); q >= 0; q = next_in_row(w, q))
        if (q != p) entry[k++] = {w->Nodes.data[q].col, w->Nodes.data[q].value};
    return k;
}

int record(PresolveWork *w, int j, int sign, int length)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_DOMINATED, length);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = j;
    undo->mode = sign;
    undo->other = is_integer(w, j);
    undo->value = sign > 0 ? w->Lb.data[j] : w->Ub.data[j];
    undo->cost = w->Obj.data[j];
    int k = 0;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        k += append_row(w, p, undo->entry + k);
    return 0;
}
} // namespace

int pre_dominated(PresolveWork *w, int j, int sign)
{
    const int64_t length = record_length(w, j);
    w->Work += 2.0 * static_cast<double>(length);
    if (length == 0 || length > INT32_MAX) return 0;
    TRY(record(w, j, sign, static_cast<int>(length)));
    for (int p = first_in_col(w, j); p >= 0;) {
        const int i = w->Nodes.data[p].row;
        p = next_in_col(w, p); // before its row goes
        remove_row(w, i, ROW_REDUNDANT);
    }
    w->ColHead.data[j] = -1;
    w->ColCnt.data[j] = COL_FIXED;
    w->Obj.data[j] = 0;
    w->ColsRemoved++;
    return 0;
}

void undo_dominated(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col;
    const double sign = undo->mode;
    double x = point->constants * undo->value;
    int deciding = -1;
    for (int k = 0; k < undo->count;) {
        const int i = undo->entry[k].index, others = undo->entry[k + 1].index;
        const double a = undo->entry[k + 1].value;
        double left = point->constants * undo->entry[k].value;
        k += 2;
        for (const int end = k + others; k < end; k++)
            left -= undo->entry[k].value * point->x[undo->entry[k].index];
        if (sign * (left / a - x) <= 0) continue;
        x = left / a;
        deciding = i;
    }
    point->x[j] = undo->other ? sign * std::ceil(sign * x) : x;
    if (!point->d) return;
    point->d[j] = point->constants * undo->cost;
    if (!point->status) return;
    point->status[j] = deciding >= 0 ? 0 : sign > 0 ? -1 : -2;
    if (deciding >= 0) point->status[point->n + deciding] = -1;
}
