// lu_dense.cpp -- dense elimination of the rest of the nucleus
//
// Problem     If a third of the active matrix is nonzero, elimination with linked entries costs more than with a square
//             array.
// Method      Copy to the rows of a square array, right-looking LU with row interchanges (largest entry of the column),
//             then copy back to sparse columns of L and rows of U without entries at or below the drop tolerance. A
//             column without an entry above the tolerance stays unpivoted, and so does one row for each such column.
// In, out     LU_NEED_DENSE if the arrays may be too small for a completely dense result, else 0.
// Cost        2/3 a^3 for a active rows and columns.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
// Lists the active rows and columns and copies the live entries.
template<class R> void gather(lufact<R> *lu, int a)
{
    const LuActive<R> *active = &lu->Active;
    int rows = 0, cols = 0;
    int *place = lu->Stack.data; // column place of a basis position
    for (int i = 0; i < lu->NumRows; i++) {
        if (lu->PosOfRow.data[i] < 0) lu->DenseRow.data[rows++] = i;
        if (lu->RowOfPosn.data[i] >= 0) continue;
        lu->DenseCol.data[cols] = i;
        place[i] = cols++;
    }
    for (int r = 0; r < a; r++) {
        R *line = lu->Dense.data + int64_t{r} * a;
        for (int c = 0; c < a; c++) line[c] = R(0);
        for (int node = active->Head[1].data[lu->DenseRow.data[r]]; node >= 0;
             node = active->Nodes.data[node].Next[1]) {
            const LuNode<R> *entry = &active->Nodes.data[node];
            if (entry->Idx[0] >= 0) line[place[entry->Idx[0]]] = entry->Val;
        }
    }
}

template<class R> void swap_rows(lufact<R> *lu, int a, int r, int s)
{
    if (r == s) return;
    std::swap(lu->DenseRow.data[r], lu->DenseRow.data[s]);
    R *x = lu->Dense.data + int64_t{r} * a, *y = lu->Dense.data + int64_t{s} * a;
    std::swap_ranges(x, x + a, y);
}

template<class R> void store_pivot(lufact<R> *lu, int a, int k, int col)
{
    const int row = lu->DenseRow.data[k];
    const R *line = lu->Dense.data + int64_t{k} * a;
    lu_pivot(lu, row, lu->DenseCol.data[col], line[col]);
    lu->URowTmpBeg.data[row] = static_cast<int>(lu->URowTmpInd.size);
    for (int c = col + 1; c < a; c++) {
        if (std::abs(line[c]) <= lu->DropTol) continue;
        array_push(&lu->URowTmpInd, lu->DenseCol.data[c]);
        array_push(&lu->URowTmpVal, line[c]);
    }
    lu->URowTmpLen.data[row] =
        static_cast<int>(lu->URowTmpInd.size) - lu->URowTmpBeg.data[row];
    lu->LColBeg.data[row] = static_cast<int>(lu->LInd.size);
    for (int r = k + 1; r < a; r++) {
        const R multiplier = lu->Dense.data[int64_t{r} * a + col];
        if (std::abs(multiplier) <= lu->DropTol) continue;
        array_push(&lu->LInd, lu->DenseRow.data[r]);
        array_push(&lu->LVal, multiplier);
    }
    lu->LColLen.data[row] = static_cast<int>(lu->LInd.size) - lu->LColBeg.data[row];
    if (lu->LColLen.data[row] > 0) array_push(&lu->LColOrder, row);
}

// Eliminates one column: its largest entry at or below row k becomes the pivot of row k. False if there is none.
template<class R> bool eliminate_column(lufact<R> *lu, int a, int k, int col)
{
    R *dense = lu->Dense.data;
    int best = k;
    for (int r = k + 1; r < a; r++)
        if (std::abs(dense[int64_t{r} * a + col]) >
            std::abs(dense[int64_t{best} * a + col]))
            best = r;
    if (std::abs(dense[int64_t{best} * a + col]) <= lu->DropTol) return false;
    swap_rows(lu, a, k, best);
    const R *__restrict pivot_line = dense + int64_t{k} * a;
    const R pivot = pivot_line[col];
    for (int r = k + 1; r < a; r++) {
        R *__restrict line = dense + int64_t{r} * a;
        if (line[col] == R(0)) continue;
        const R multiplier = line[col] / pivot;
        line[col] = multiplier;
        for (int c = col + 1; c < a; c++) line[c] -= multiplier * pivot_line[c];
    }
    return true;
}
} // namespace

template<class R> int lu_dense_tail(lufact<R> *lu)
{
    const int a = lu->Active.Lines;
    const int64_t half = int64_t{a} * (a - 1) / 2;
    if (lu->Dense.room < int64_t{a} * a || lu->DenseRow.room < a || lu->DenseCol.room < a ||
        lu->LInd.room - lu->LInd.size < half ||
        lu->URowTmpInd.room - lu->URowTmpInd.size < half)
        return LU_NEED_DENSE;
    gather(lu, a);
    lu->WorkUnits += 2.0 / 3.0 * double(a) * a * a;
    int k = 0;
    for (int col = 0; col < a; col++)
        if (eliminate_column(lu, a, k, col)) store_pivot(lu, a, k++, col);
    lu->Active.Lines = a - k;
    return 0;
}

template int lu_dense_tail<double>(lufact<double> *);
template int lu_dense_tail<long double>(lufact<long double> *);
