// lu_markowitz.cpp -- sparse elimination of the nucleus that the triangular stage leaves
//
// Problem     Factor the active matrix with little fill and without large growth.
// Method      A line is a row or a column. Markowitz search over lines in order of their number of entries, with
//             threshold pivoting: an entry may become pivot if it exceeds tol times the largest magnitude of the line
//             in which it was found. At most SEARCH_LINES lines are searched. Rows and columns are the two axes of one
//             linked structure, so that search and elimination are written once with the axis as argument. A dense rest
//             goes to lu_dense_tail.
// In, out     LU_NEED_ROOM if a pool is too small, else the number of rows left without pivot (rank deficiency).
// Invariant   Count, Entries and the count lists are exact for live nodes; a dead node (Idx[0] == -1) is in at most one
//             list; it is unlinked and added to the free chain when that list is read next.
// Cost        Per pivot the entries of the lines that the pivot row, or the pivot column, meets, whichever are fewer.
// Literature  H. M. Markowitz, Management Science 3, 1957; U. H. and L. M. Suhl, ORSA J. on Computing 2, 1990.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
constexpr int SEARCH_LINES = 4; // lines searched for a pivot, after Suhl and Suhl

constexpr int DENSE_LINES = 4; // with fewer active lines nothing is gained

// Share of nonzeros in the active matrix from which dense elimination is faster.
constexpr double DENSE_SHARE = 0.33;

constexpr int STAMP_RESET = 1000000000; // stamps are reset from here, far below overflow

// dense tail only if lines^2 > 4 m: smaller ones take little time
constexpr int DENSE_ROWS_FACTOR = 4;

struct Pivot {
    int Node = -1;
    int64_t Cost = INT64_MAX;
    double Ratio = 0; // magnitude over the largest of its line
};

template<class R> void list_unlink(LuActive<R> *a, int axis, int line)
{
    const int prev = a->Prev[axis].data[line], next = a->Next[axis].data[line];
    if (prev >= 0)
        a->Next[axis].data[prev] = next;
    else
        a->First[axis].data[-prev - 1] = next; // the front cell holds -1 - count
    if (next >= 0) a->Prev[axis].data[next] = prev;
}

template<class R> void list_link(LuActive<R> *a, int axis, int line, int count)
{
    const int first = a->First[axis].data[count];
    a->Prev[axis].data[line] = -1 - count;
    a->Next[axis].data[line] = first;
    if (first >= 0) a->Prev[axis].data[first] = line;
    a->First[axis].data[count] = line;
}

template<class R> void node_free(LuActive<R> *a, int node)
{
    a->Nodes.data[node].Next[0] = a->FreeNode;
    a->FreeNode = node;
    a->FreeNodes++;
}

template<class R> void node_new(LuActive<R> *a, int col, int row, R value)
{
    int node = a->FreeNode;
    if (node >= 0) {
        a->FreeNode = a->Nodes.data[node].Next[0];
        a->FreeNodes--;
    } else {
        node = static_cast<int>(a->Nodes.size++);
    }
    a->Nodes.data[node] = {value, {col, row}, {a->Head[0].data[col], a->Head[1].data[row]}};
    a->Head[0].data[col] = a->Head[1].data[row] = node;
    a->Count[0].data[col]++;
    a->Count[1].data[row]++;
    a->Entries++;
}

template<class R> void load(lufact<R> *lu, const BasisMatrix *basis, const int *head)
{
    LuActive<R> *a = &lu->Active;
    const int m = lu->NumRows;
    a->Nodes.size = 0;
    a->FreeNode = -1;
    a->FreeNodes = 0;
    a->Entries = 0;
    a->Lines = m - lu->NumPivots;
    if (a->StampNow > STAMP_RESET) {
        for (int i = 0; i < m; i++) a->Stamp.data[i] = 0;
        a->StampNow = 0;
    }
    for (int i = 0; i < m; i++) {
        a->Count[1].data[i] = lu->PosOfRow.data[i] < 0 ? 0 : -1;
        a->Count[0].data[i] = lu->RowOfPosn.data[i] < 0 ? 0 : -1;
        a->Head[0].data[i] = a->Head[1].data[i] = -1;
        a->Max[0].data[i] = a->Max[1].data[i] = R(0);
    }
    for (int k = 0; k < m; k++) {
        const int var = head[k];
        if (lu->RowOfPosn.data[k] >= 0 || var >= basis->NumCols) continue;
        for (int p = basis->ColBeg[var]; p < basis->ColBeg[var + 1]; p++) {
            const int i = basis->ColInd[p];
            const R value = R(basis->ColVal[p]);
            if (lu->PosOfRow.data[i] < 0 && std::abs(value) > lu->DropTol)
                node_new(a, k, i, value);
        }
    }
    for (int axis = 0; axis < 2; axis++) {
        for (int c = 0; c <= a->Lines; c++) a->First[axis].data[c] = -1;
        for (int i = 0; i < m; i++)
            if (a->Count[axis].data[i] > 0) list_link(a, axis, i, a->Count[axis].data[i]);
    }
}

// Unlinks the dead nodes of a line and computes its largest magnitude.
template<class R> void refresh_line(LuActive<R> *a, int axis, int line)
{
    LuNode<R> *nodes = a->Nodes.data;
    int *link = &a->Head[axis].data[line];
    R largest = 0;
    for (int node = *link; node >= 0; node = *link) {
        if (nodes[node].Idx[0] < 0) {
            *link = nodes[node].Next[axis];
            node_free(a, node);
            continue;
        }
        largest = std::max(largest, std::abs(nodes[node].Val));
        link = &nodes[node].Next[axis];
    }
    a->Max[axis].data[line] = largest;
}

// Compares the entries of one line that pass the threshold with the best pivot so far.
template<class R> void inspect_line(LuActive<R> *a, int axis, int line, R tol, Pivot *best)
{
    if (a->Max[axis].data[line] == R(0)) refresh_line(a, axis, line);
    const R largest = a->Max[axis].data[line], limit = tol * largest;
    const int64_t length = a->Count[axis].data[line] - 1;
    for (int node = a->Head[axis].data[line]; node >= 0;
         node = a->Nodes.data[node].Next[axis]) {
        const LuNode<R> *entry = &a->Nodes.data[node];
        if (entry->Idx[0] < 0) continue;
        const R magnitude = std::abs(entry->Val);
        if (magnitude <= limit && magnitude < largest) continue;
        const int64_t cost = length * (a->Count[1 - axis].data[entry->Idx[1 - axis]] - 1);
        const double ratio = static_cast<double>(magnitude / largest);
        if (cost < best->Cost || (cost == best->Cost && ratio > best->Ratio))
            *best = {node, cost, ratio};
    }
}

template<class R> int search(LuActive<R> *a, R tol)
{
    Pivot best;
    int inspected = 0;
    for (int64_t count = 1; count <= a->Lines; count++) {
        for (int axis = 0; axis < 2; axis++) {
            for (int line = a->First[axis].data[count]; line >= 0;
                 line = a->Next[axis].data[line]) {
                inspect_line(a, axis, line, tol, &best);
                if (best.Cost <= (count - 1) * (count - 1)) return best.Node;
                if (++inspected >= SEARCH_LINES && best.Node >= 0) return best.Node;
            }
            // The remaining entries are in lines with at least count + axis entries, crossed by lines with at least
            // count + 1 entries, which bounds their Markowitz cost (row entries - 1) * (column entries - 1) from below.
            if (best.Cost <= count * (count - 1 + axis)) return best.Node;
        }
    }
    return best.Node;
}

// After an entry was changed or removed: the maximum of its line is unknown if the entry may have been it.
template<class R>
inline void forget_max(LuActive<R> *a, int axis, int line, R old_magnitude)
{
    if (old_magnitude >= a->Max[axis].data[line]) a->Max[axis].data[line] = R(0);
}

// Subtracts from a line of `axis` `factor` times the vector in Work, whose nonzeros are in the lines `others` of the
// other axis.
template<class R>
void update_line(LuActive<R> *a, int axis, int line, R factor, const int *others,
                 int n_others, R drop)
{
    LuNode<R> *nodes = a->Nodes.data;
    const int cross = 1 - axis;
    const R *__restrict work = a->Work.data;
    const int stamp = ++a->StampNow;
    int *link = &a->Head[axis].data[line];
    R largest = 0;
    for (int node = *link; node >= 0; node = *link) {
        LuNode<R> *entry = &nodes[node];
        if (entry->Idx[0] < 0) {
            *link = entry->Next[axis];
            node_free(a, node);
            continue;
        }
        const int other = entry->Idx[cross];
        if (work[other] != R(0)) {
            a->Stamp.data[other] = stamp;
            forget_max(a, cross, other, std::abs(entry->Val));
            entry->Val -= factor * work[other];
            const R magnitude = std::abs(entry->Val);
            if (magnitude <= drop) {
                *link = entry->Next[axis];
                entry->Idx[0] = -1;
                a->Count[axis].data[line]--;
                a->Count[cross].data[other]--;
                a->Entries--;
                continue;
            }
            R *cross_max = &a->Max[cross].data[other];
            if (*cross_max != R(0) && magnitude > *cross_max) *cross_max = magnitude;
        }
        largest = std::max(largest, std::abs(entry->Val));
        link = &entry->Next[axis];
    }
    for (int k = 0; k < n_others; k++) {
        const int other = others[k];
        if (a->Stamp.data[other] == stamp) continue;
        const R value = -factor * work[other];
        const R magnitude = std::abs(value);
        if (magnitude <= drop) continue;
        node_new(a, axis == 0 ? line : other, axis == 0 ? other : line, value);
        R *cross_max = &a->Max[cross].data[other];
        if (*cross_max != R(0) && magnitude > *cross_max) *cross_max = magnitude;
        largest = std::max(largest, magnitude);
    }
    a->Max[axis].data[line] = largest;
}

// Removes the pivot line from the active matrix: its live entries except the pivot are moved to (ind, val).
template<class R>
int take_line(LuActive<R> *a, int axis, int line, int pivot_node, int *ind, R *val)
{
    const int cross = 1 - axis;
    int count = 0;
    for (int node = a->Head[axis].data[line], next = -1; node >= 0; node = next) {
        LuNode<R> *entry = &a->Nodes.data[node];
        next = entry->Next[axis];
        if (node == pivot_node) continue;
        if (entry->Idx[0] < 0) { // deleted, and no longer in another list
            node_free(a, node);
            continue;
        }
        const int other = entry->Idx[cross];
        ind[count] = other;
        val[count++] = entry->Val;
        forget_max(a, cross, other, std::abs(entry->Val));
        entry->Idx[0] = -1;
        a->Count[cross].data[other]--;
        list_unlink(a, cross, other);
    }
    a->Entries -= count;
    list_unlink(a, axis, line);
    a->Count[axis].data[line] = -1;
    a->Head[axis].data[line] = -1;
    return count;
}

template<class R> bool has_room(const lufact<R> *lu, int64_t rows, int64_t cols)
{
    const LuActive<R> *a = &lu->Active;
    return a->FreeNodes + a->Nodes.room - a->Nodes.size >= rows * cols &&
           lu->LInd.room - lu->LInd.size >= rows &&
           lu->URowTmpInd.room - lu->URowTmpInd.size >= cols;
}

template<class R> int eliminate(lufact<R> *lu, int pivot_node)
{
    LuActive<R> *a = &lu->Active;
    const LuNode<R> pivot = a->Nodes.data[pivot_node];
    const int col = pivot.Idx[0], row = pivot.Idx[1];
    if (!has_room(lu, a->Count[0].data[col] - 1, a->Count[1].data[row] - 1))
        return LU_NEED_ROOM;

    int *const l_ind = lu->LInd.data + lu->LInd.size, *const u_ind = lu->URowTmpInd.data +
                                                                     lu->URowTmpInd.size;
    R *const l_val = lu->LVal.data + lu->LVal.size, *const u_val = lu->URowTmpVal.data +
                                                                   lu->URowTmpVal.size;
    const int n_cols = take_line(a, 1, row, pivot_node, u_ind, u_val);
    const int n_rows = take_line(a, 0, col, pivot_node, l_ind, l_val);
    a->Entries--; // the pivot
    a->Lines--;
    node_free(a, pivot_node);
    for (int k = 0; k < n_rows; k++) l_val[k] /= pivot.Val;

    int64_t by_cols = 0, by_rows = 0; // entries read if columns or if rows are updated
    for (int k = 0; k < n_cols; k++) by_cols += a->Count[0].data[u_ind[k]];
    for (int k = 0; k < n_rows; k++) by_rows += a->Count[1].data[l_ind[k]];
    lu->WorkUnits +=
        static_cast<double>(std::min(by_cols, by_rows) + int64_t{n_rows} * n_cols);
    const int axis = by_cols < by_rows ? 0 : 1;
    const int n_lines = axis == 0 ? n_cols : n_rows, n_others = axis == 0 ? n_rows : n_cols;
    const int *lines = axis == 0 ? u_ind : l_ind, *others = axis == 0 ? l_ind : u_ind;
    const R *factors = axis == 0 ? u_val : l_val, *values = axis == 0 ? l_val : u_val;
    for (int k = 0; k < n_others; k++) a->Work.data[others[k]] = values[k];
    if (n_others > 0)
        for (int k = 0; k < n_lines; k++)
            update_line(a, axis, lines[k], factors[k], others, n_others, lu->DropTol);
    for (int k = 0; k < n_others; k++) a->Work.data[others[k]] = R(0);

    for (int k = 0; k < n_cols; k++)
        if (a->Count[0].data[u_ind[k]] > 0)
            list_link(a, 0, u_ind[k], a->Count[0].data[u_ind[k]]);
    for (int k = 0; k < n_rows; k++)
        if (a->Count[1].data[l_ind[k]] > 0)
            list_link(a, 1, l_ind[k], a->Count[1].data[l_ind[k]]);

    lu_pivot(lu, row, col, pivot.Val);
    lu->URowTmpBeg.data[row] = static_cast<int>(lu->URowTmpInd.size);
    lu->URowTmpLen.data[row] = n_cols;
    lu->URowTmpInd.size += n_cols;
    lu->URowTmpVal.size += n_cols;
    if (n_rows > 0) {
        lu->LColBeg.data[row] = static_cast<int>(lu->LInd.size);
        lu->LColLen.data[row] = n_rows;
        lu->LInd.size += n_rows;
        lu->LVal.size += n_rows;
        array_push(&lu->LColOrder, row);
    }
    return 0;
}

template<class R> bool wants_dense(const lufact<R> *lu)
{
    const double lines = lu->Active.Lines;
    return lines > DENSE_LINES && lines * lines > DENSE_ROWS_FACTOR * double(lu->NumRows) &&
           static_cast<double>(lu->Active.Entries) > DENSE_SHARE * lines * lines;
}
} // namespace

template<class R>
int lu_markowitz(lufact<R> *lu, const BasisMatrix *basis, const int *head, R tol)
{
    LuActive<R> *a = &lu->Active;
    if (lu->NumPivots == lu->NumRows) return 0;
    load(lu, basis, head);
    while (a->Lines > 0) {
        if (wants_dense(lu)) {
            TRY(lu_dense_tail(lu));
            break;
        }
        const int node = search(a, tol);
        if (node < 0) break;
        TRY(eliminate(lu, node));
    }
    return lu->NumRows - lu->NumPivots;
}

template int lu_markowitz<double>(lufact<double> *, const BasisMatrix *, const int *,
                                  double);

template int lu_markowitz<long double>(lufact<long double> *, const BasisMatrix *,
                                       const int *, long double);
