// lu_factor.cpp -- factorisation of a basis: driver of the stages, memory pools, final form of L and U
//
// Problem     B = L U up to row and column permutations, sparse, for the solves and updates that follow.
// Method      Triangular stage, Markowitz elimination with a dense tail, then: basis positions get the number of their
//             pivot row, U is stored by columns and by rows (rows with spare room for updates), L also by rows. If a
//             stage runs out of room, the pools grow by half and the factorisation starts again.
// Cost        O(entries of B) plus the elimination of the nucleus.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
constexpr double GROWTH = 1.5; // growth of pools that were too small
// spare entries of a row of U; if they are used up updates have to move the row
constexpr int URowSpare = 4;
constexpr int MAX_TRIES = 60; // growths until OUT_OF_MEMORY is returned

template<class R> int reserve_pair(Array<int> *ind, Array<R> *val, int64_t room)
{
    if (room > INT32_MAX) return OUT_OF_MEMORY; // positions are 32-bit
    TRY(array_reserve(ind, room));
    return array_reserve(val, room);
}

// Pools for the stages, for the entries of the basis plus fill, which is not known beforehand.
template<class R> int reserve_pools(lufact<R> *lu, int64_t entries, double scale)
{
    const int64_t m = lu->NumRows;
    const auto room =
        static_cast<int64_t>(static_cast<double>(2 * entries + m + 100) * scale);
    TRY(reserve_pair(&lu->LInd, &lu->LVal, std::max(room, entries + m)));
    TRY(reserve_pair(&lu->URowTmpInd, &lu->URowTmpVal, room));
    if (room > INT32_MAX) return OUT_OF_MEMORY;
    TRY(array_reserve(&lu->Active.Nodes, room));
    TRY(array_resize(&lu->PatInd, entries));
    return 0;
}

// The square array of the dense tail.
template<class R> int reserve_dense(lufact<R> *lu)
{
    const int64_t a = lu->Active.Lines;
    TRY(array_reserve(&lu->Dense, a * a));
    TRY(array_resize(&lu->DenseRow, a));
    TRY(array_resize(&lu->DenseCol, a));
    const int64_t half = a * (a - 1) / 2;
    TRY(reserve_pair(&lu->LInd, &lu->LVal, lu->LInd.size + half));
    return reserve_pair(&lu->URowTmpInd, &lu->URowTmpVal, lu->URowTmpInd.size + half);
}

template<class R>
int64_t count_entries(const lufact<R> *lu, const BasisMatrix *basis, const int *head)
{
    int64_t entries = 0;
    for (int k = 0; k < lu->NumRows; k++)
        if (head[k] < basis->NumCols)
            entries += basis->ColBeg[head[k] + 1] - basis->ColBeg[head[k]];
    return entries;
}

// Runs the stages with growing pools. Returns the rank deficiency, or a negated code.
template<class R>
int run_stages(lufact<R> *lu, const BasisMatrix *basis, const int *head, R tol)
{
    const int64_t entries = count_entries(lu, basis, head);
    double scale = std::pow(GROWTH, lu->Growths);
    for (int attempt = 0; attempt < MAX_TRIES; attempt++) {
        if (int error = reserve_pools(lu, entries, scale)) return -error;
        lu->LInd.size = lu->LVal.size = 0;
        lu->URowTmpInd.size = lu->URowTmpVal.size = 0;
        lu->LColOrder.size = 0;
        for (int i = 0; i < lu->NumRows; i++) lu->URowTmpLen.data[i] = 0;
        lu_singletons(lu, basis, head);
        int result = lu_markowitz(lu, basis, head, tol);
        if (result >= 0) {
            lu->WorkUnits += 2.0 * static_cast<double>(entries) + lu->NumRows;
            return result;
        }
        if (result == LU_NEED_DENSE) {
            if (int error = reserve_dense(lu)) return -error;
            continue;
        }
        lu->Growths++;
        scale *= GROWTH;
    }
    return -OUT_OF_MEMORY;
}

// The rows and basis positions without pivot.
template<class R> void list_unpivoted(const lufact<R> *lu, int *bad_rows, int *bad_cols)
{
    int rows = 0, cols = 0;
    for (int i = 0; i < lu->NumRows; i++) {
        if (lu->PosOfRow.data[i] < 0) bad_rows[rows++] = i;
        if (lu->RowOfPosn.data[i] < 0) bad_cols[cols++] = i;
    }
}

// An entry of the basis column at position k belongs to U if its row was pivoted in the triangular stage before k.
template<class R> inline bool in_upper(const lufact<R> *lu, int i, int pos)
{
    const int place = lu->PosOfRow.data[i];
    return place < pos && place < lu->NumTriangular;
}

template<class R> void count_upper(lufact<R> *lu, const BasisMatrix *basis, const int *head)
{
    int *col_len = lu->UColLen.data, *row_len = lu->URowLen.data;
    for (int i = 0; i < lu->NumRows; i++) col_len[i] = row_len[i] = 0;
    for (int k = 0; k < lu->NumRows; k++) {
        const int var = head[k], r = lu->RowOfPosn.data[k], pos = lu->PosOfRow.data[r];
        if (var >= basis->NumCols) continue;
        for (int p = basis->ColBeg[var]; p < basis->ColBeg[var + 1]; p++) {
            const int i = basis->ColInd[p];
            if (!in_upper(lu, i, pos)) continue;
            if (std::abs(R(basis->ColVal[p])) <= lu->DropTol) continue;
            col_len[r]++;
            row_len[i]++;
        }
    }
    for (int i = 0; i < lu->NumRows; i++) {
        if (lu->URowTmpLen.data[i] == 0) continue;
        row_len[i] += lu->URowTmpLen.data[i];
        for (int p = lu->URowTmpBeg.data[i], end = p + lu->URowTmpLen.data[i]; p < end; p++)
            col_len[lu->RowOfPosn.data[lu->URowTmpInd.data[p]]]++;
    }
}

// Stores U by columns and rows. 0 or OUT_OF_MEMORY.
template<class R> int build_upper(lufact<R> *lu, const BasisMatrix *basis, const int *head)
{
    const int m = lu->NumRows;
    count_upper(lu, basis, head);
    int64_t cols = 0, rows = 0;
    for (int i = 0; i < m; i++) {
        cols += lu->UColLen.data[i];
        rows += lu->URowLen.data[i] + URowSpare;
    }
    lu->UNonzeros = cols + m;
    const auto spare = static_cast<int64_t>(
        lu->PoolFactor * static_cast<double>(cols + 2 * int64_t{m}) + 1000);
    TRY(reserve_pair(&lu->UColInd, &lu->UColVal, cols + spare));
    TRY(reserve_pair(&lu->URowInd, &lu->URowVal, rows + spare));
    lu->UColInd.size = lu->UColVal.size = cols;
    lu->URowInd.size = lu->URowVal.size = rows;
    int col = 0, row = 0;
    for (int pos = 0; pos < m;
         pos++) { // in pivot order, so that sweeps access memory sequentially
        const int i = lu->Order.data[pos];
        lu->UColBeg.data[i] = col;
        lu->UColCap.data[i] = lu->UColLen.data[i];
        col += lu->UColLen.data[i];
        lu->URowBeg.data[i] = row;
        lu->URowCap.data[i] = lu->URowLen.data[i] + URowSpare;
        row += lu->URowCap.data[i];
        lu->UColLen.data[i] = lu->URowLen.data[i] = 0;
    }
    return 0;
}

template<class R> inline void put_upper(lufact<R> *lu, int i, int r, R value)
{
    const int p = lu->UColBeg.data[r] + lu->UColLen.data[r]++;
    lu->UColInd.data[p] = i;
    lu->UColVal.data[p] = value;
    const int q = lu->URowBeg.data[i] + lu->URowLen.data[i]++;
    lu->URowInd.data[q] = r;
    lu->URowVal.data[q] = value;
}

template<class R> void fill_upper(lufact<R> *lu, const BasisMatrix *basis, const int *head)
{
    for (int k = 0; k < lu->NumRows; k++) {
        const int var = head[k], r = lu->RowOfPosn.data[k], pos = lu->PosOfRow.data[r];
        if (var >= basis->NumCols) continue;
        for (int p = basis->ColBeg[var]; p < basis->ColBeg[var + 1]; p++) {
            const int i = basis->ColInd[p];
            const R value = R(basis->ColVal[p]);
            if (in_upper(lu, i, pos) && std::abs(value) > lu->DropTol)
                put_upper(lu, i, r, value);
        }
    }
    for (int i = 0; i < lu->NumRows; i++)
        for (int p = lu->URowTmpBeg.data[i], end = p + lu->URowTmpLen.data[i]; p < end; p++)
            put_upper(lu, i, lu->RowOfPosn.data[lu->URowTmpInd.data[p]],
                      lu->URowTmpVal.data[p]);
}

// L by rows, and the rows of L in pivot order.
template<class R> int build_lower_rows(lufact<R> *lu)
{
    const int m = lu->NumRows;
    const int64_t entries = lu->LInd.size;
    TRY(array_resize(&lu->LRowInd, entries));
    TRY(array_resize(&lu->LRowVal, entries));
    int *beg = lu->LRowBeg.data, *len = lu->LRowLen.data;
    for (int i = 0; i < m; i++) len[i] = 0;
    for (int64_t p = 0; p < entries; p++) len[lu->LInd.data[p]]++;
    int next = 0;
    lu->LRowOrder.size = 0;
    for (int pos = 0; pos < m; pos++) {
        const int i = lu->Order.data[pos];
        beg[i] = next;
        next += len[i];
        if (len[i] > 0) array_push(&lu->LRowOrder, i);
        len[i] = 0;
    }
    for (int64_t k = 0; k < lu->LColOrder.size; k++) {
        const int r = lu->LColOrder.data[k];
        for (int p = lu->LColBeg.data[r], end = p + lu->LColLen.data[r]; p < end; p++) {
            const int i = lu->LInd.data[p], q = beg[i] + len[i]++;
            lu->LRowInd.data[q] = r;
            lu->LRowVal.data[q] = lu->LVal.data[p];
        }
    }
    lu->LNonzeros = entries + m;
    return 0;
}
} // namespace

template<class R>
int lu_alloc(lufact<R> *lu, int num_rows, int max_updates, double drop_tol)
{
    lu->NeedBasis = 1;
    lu->DropTol = R(drop_tol);
    lu->MaxMoves = max_updates;
    TRY(array_resize(&lu->EtaRow, max_updates));
    TRY(array_resize(&lu->EtaBeg, int64_t{max_updates} + 1));
    return lu_grow(lu, num_rows);
}

template<class R>
int FactorBasis(lufact<R> *lu, const BasisMatrix *basis, int *head, double markowitz_tol,
                int *bad_rows, int *bad_cols)
{
    const int m = lu->NumRows;
    lu->NeedBasis = 1;
    lu_journal_end(lu);
    const int deficiency = run_stages(lu, basis, head, R(markowitz_tol));
    if (deficiency < 0) return deficiency;
    if (deficiency > 0) {
        list_unpivoted(lu, bad_rows, bad_cols);
        return deficiency;
    }
    if (int error = build_upper(lu, basis, head)) return -error;
    fill_upper(lu, basis, head);
    if (int error = build_lower_rows(lu)) return -error;
    for (int k = 0; k < m; k++) lu->HeadNew.data[lu->RowOfPosn.data[k]] = head[k];
    for (int k = 0; k < m; k++) head[k] = lu->HeadNew.data[k];
    lu_forget_updates(lu);
    const auto eta_room = static_cast<int64_t>(lu->EtaFactor * m) + 1000;
    if (int error = reserve_pair(&lu->EtaInd, &lu->EtaVal, eta_room)) return -error;
    lu->NeedBasis = 0;
    return 0;
}

template int lu_alloc<double>(lufact<double> *, int, int, double);
template int lu_alloc<long double>(lufact<long double> *, int, int, double);
template int FactorBasis<double>(lufact<double> *, const BasisMatrix *, int *, double,
                                 int *, int *);
template int FactorBasis<long double>(lufact<long double> *, const BasisMatrix *, int *,
                                      double, int *, int *);
