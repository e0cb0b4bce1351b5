// lu_singletons.cpp -- the triangular stage of a factorisation
//
// Problem     Most of a simplex basis can be permuted to triangular form. Find these pivots without a pivot search.
// Method      Unit columns are pivoted first. Then two stacks: a column with one active entry is pivoted there (its row
//             becomes a row of U), a row with one active entry is pivoted there (its column becomes a column of L).
//             Each pivot may create new singletons. The index of the last active entry of a row or column is known
//             without a search, as the xor of its active indices.
// Out         Pivots in pivot order; columns of L; RowCount, ColCount of the remaining active matrix.
// Cost        O(entries of the basis).
#include "lu/lufact.h"

namespace
{
template<class R> struct Pass {
    lufact<R> *lu;
    const BasisMatrix *basis;
    const int *head;
    int *col_stack; // columns with one active entry
    int *row_stack; // rows with one active entry
    int cols = 0, rows = 0;
};

// Pivots the unit columns, then computes counts, xors and the row pattern of the other columns.
template<class R> void load(Pass<R> *pass)
{
    lufact<R> *lu = pass->lu;
    const BasisMatrix *basis = pass->basis;
    const int m = lu->NumRows;
    int *row_count = lu->RowCount.data, *row_sum = lu->RowSum.data;
    for (int i = 0; i < m; i++) {
        lu->PosOfRow.data[i] = -1;
        lu->RowOfPosn.data[i] = -1;
        lu->LColLen.data[i] = 0;
        row_count[i] = row_sum[i] = 0;
    }
    for (int k = 0; k < m; k++) {
        const int row = pass->head[k] - basis->NumCols;
        if (row >= 0 && lu->PosOfRow.data[row] < 0) lu_pivot(lu, row, k, R(1));
    }
    for (int k = 0; k < m; k++) {
        const int var = pass->head[k];
        int count = 0, sum = 0;
        if (var < basis->NumCols) {
            for (int p = basis->ColBeg[var]; p < basis->ColBeg[var + 1]; p++) {
                const int i = basis->ColInd[p];
                if (lu->PosOfRow.data[i] >= 0 ||
                    std::abs(R(basis->ColVal[p])) <= lu->DropTol)
                    continue;
                row_count[i]++;
                row_sum[i] ^= k;
                count++;
                sum ^= i;
            }
        }
        lu->ColCount.data[k] = count;
        lu->ColSum.data[k] = sum;
    }
    int *beg = lu->PatBeg.data;
    beg[0] = 0;
    for (int i = 0; i < m; i++) beg[i + 1] = beg[i] + row_count[i];
    for (int k = 0; k < m; k++) {
        const int var = pass->head[k];
        if (var >= basis->NumCols || lu->ColCount.data[k] == 0) continue;
        for (int p = basis->ColBeg[var]; p < basis->ColBeg[var + 1]; p++) {
            const int i = basis->ColInd[p];
            if (lu->PosOfRow.data[i] >= 0 || std::abs(R(basis->ColVal[p])) <= lu->DropTol)
                continue;
            lu->PatInd.data[beg[i]++] = k;
        }
    }
    for (int i = m; i > 0; i--) beg[i] = beg[i - 1];
    beg[0] = 0;
}

template<class R> R entry_of(const Pass<R> *pass, int row, int position)
{
    const BasisMatrix *basis = pass->basis;
    const int var = pass->head[position];
    int p = basis->ColBeg[var];
    while (basis->ColInd[p] != row) p++;
    return R(basis->ColVal[p]);
}

// The pivot is the only active entry of the column: L gets no entry.
template<class R> void pivot_column_singleton(Pass<R> *pass, int position)
{
    lufact<R> *lu = pass->lu;
    const int row = lu->ColSum.data[position];
    lu_pivot(lu, row, position, entry_of(pass, row, position));
    for (int p = lu->PatBeg.data[row]; p < lu->PatBeg.data[row + 1]; p++) {
        const int k = lu->PatInd.data[p];
        if (lu->RowOfPosn.data[k] >= 0) continue;
        lu->ColSum.data[k] ^= row;
        if (--lu->ColCount.data[k] == 1) pass->col_stack[pass->cols++] = k;
    }
}

// The pivot is the only active entry of the row: the other entries of the column become multipliers of L.
template<class R> void pivot_row_singleton(Pass<R> *pass, int row)
{
    lufact<R> *lu = pass->lu;
    const BasisMatrix *basis = pass->basis;
    const int position = lu->RowSum.data[row], var = pass->head[position];
    const R pivot = entry_of(pass, row, position);
    lu_pivot(lu, row, position, pivot);
    if (lu->ColCount.data[position] == 1) return;
    lu->LColBeg.data[row] = static_cast<int>(lu->LInd.size);
    for (int p = basis->ColBeg[var]; p < basis->ColBeg[var + 1]; p++) {
        const int i = basis->ColInd[p];
        const R value = R(basis->ColVal[p]);
        if (lu->PosOfRow.data[i] >= 0 || std::abs(value) <= lu->DropTol) continue;
        array_push(&lu->LInd, i);
        array_push(&lu->LVal, value / pivot);
        lu->RowSum.data[i] ^= position;
        if (--lu->RowCount.data[i] == 1) pass->row_stack[pass->rows++] = i;
    }
    lu->LColLen.data[row] = static_cast<int>(lu->LInd.size) - lu->LColBeg.data[row];
    array_push(&lu->LColOrder, row);
}
} // namespace

template<class R>
int lu_singletons(lufact<R> *lu, const BasisMatrix *basis, const int *head)
{
    Pass<R> pass{lu, basis, head, lu->Stack.data, lu->StackPos.data};
    const int m = lu->NumRows;
    lu->NumPivots = 0;
    load(&pass);
    for (int k = 0; k < m; k++) {
        if (lu->ColCount.data[k] == 1) pass.col_stack[pass.cols++] = k;
        if (lu->RowCount.data[k] == 1) pass.row_stack[pass.rows++] = k;
    }
    while (pass.cols > 0 || pass.rows > 0) {
        while (pass.cols > 0) {
            const int k = pass.col_stack[--pass.cols];
            if (lu->RowOfPosn.data[k] < 0 && lu->ColCount.data[k] == 1) {
                // Only this row has the column as active one: other rows of the column are pivoted already.
                pivot_column_singleton(&pass, k);
            }
        }
        if (pass.rows > 0) {
            const int i = pass.row_stack[--pass.rows];
            if (lu->PosOfRow.data[i] < 0 && lu->RowCount.data[i] == 1)
                pivot_row_singleton(&pass, i);
        }
    }
    lu->NumTriangular = lu->NumPivots;
    return 0;
}

template int lu_singletons<double>(lufact<double> *, const BasisMatrix *, const int *);
template int lu_singletons<long double>(lufact<long double> *, const BasisMatrix *,
                                        const int *);
