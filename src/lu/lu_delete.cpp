// lu_delete.cpp -- the basis matrix shrinks by rows whose slacks are basic in them
//
// Problem     Rows leave the LP and their slacks the basis. Keep the factors with their updates.
// Method      The reverse of lu_append.cpp: if column i of U has its pivot alone, and no column of L and no row eta
//             takes row i to another, position i belongs to the slack of row i, and row and column i leave all parts
//             without a change of the others. Lines keep their places in the pools; indices are numbered anew.
// Cost        O(entries of the factors).
#include "lu/lufact.h"
#include <algorithm>

namespace
{
// The entries of a line in rows that stay, numbered anew; returns how many.
template<class R> int compact_line(int *ind, R *val, int len, const int *number)
{
    int kept = 0;
    for (int p = 0; p < len; p++) {
        const int k = number[ind[p]];
        if (k < 0) continue;
        ind[kept] = k;
        val[kept++] = val[p];
    }
    return kept;
}

// Line i of L or U becomes line `to`.
template<class R>
void move_line(Array<int> *beg, Array<int> *len, Array<int> *ind, Array<R> *val, int i,
               int to, const int *number)
{
    const int at = beg->data[i];
    beg->data[to] = at;
    len->data[to] = compact_line(ind->data + at, val->data + at, len->data[i], number);
}

void compact_order(Array<int> *order, const int *number)
{
    int64_t kept = 0;
    for (int64_t k = 0; k < order->size; k++)
        if (number[order->data[k]] >= 0) order->data[kept++] = number[order->data[k]];
    order->size = kept;
}

// The pivot order keeps the gaps that updates have left.
template<class R> void compact_pivots(lufact<R> *lu, const int *number)
{
    int places = 0;
    for (int k = 0; k < lu->NumPos; k++) {
        const int r = lu->Order.data[k], to = r < 0 ? -1 : number[r];
        if (r >= 0 && to < 0) continue;
        if (to >= 0) lu->PosOfRow.data[to] = places;
        lu->Order.data[places++] = to;
    }
    lu->NumPos = places;
}

// Etas of deleted rows go; the others read no deleted row.
template<class R> void compact_etas(lufact<R> *lu, const int *number)
{
    int kept = 0, next = 0, beg = 0;
    std::fill_n(lu->FirstEta.data, lu->NumRows, INT32_MAX);
    for (int t = 0; t < lu->NumEtas; t++) {
        const int row = number[lu->EtaRow.data[t]], end = lu->EtaBeg.data[t + 1];
        for (int p = beg; p < end && row >= 0; p++) {
            const int from = number[lu->EtaInd.data[p]];
            lu->FirstEta.data[from] = std::min(lu->FirstEta.data[from], kept);
            lu->EtaInd.data[next] = from;
            lu->EtaVal.data[next++] = lu->EtaVal.data[p];
        }
        beg = end;
        if (row < 0) continue;
        lu->EtaRow.data[kept++] = row;
        lu->EtaBeg.data[kept] = next;
    }
    lu->NumEtas = kept;
    lu->EtaInd.size = lu->EtaVal.size = next;
}
} // namespace

template<class R> bool lu_delete_rows(lufact<R> *lu, const int *number)
{
    assert(!lu->Journal && !lu->NeedBasis);
    int left = 0;
    for (int i = 0; i < lu->NumRows; i++) {
        left += number[i] >= 0;
        if (number[i] < 0 && (lu->UColLen.data[i] > 0 || lu->LColLen.data[i] > 0 ||
                              lu->FirstEta.data[i] != INT32_MAX))
            return false;
    }
    for (int i = 0; i < lu->NumRows; i++) {
        const int to = number[i];
        if (to < 0) continue;
        move_line(&lu->LColBeg, &lu->LColLen, &lu->LInd, &lu->LVal, i, to, number);
        move_line(&lu->LRowBeg, &lu->LRowLen, &lu->LRowInd, &lu->LRowVal, i, to, number);
        move_line(&lu->UColBeg, &lu->UColLen, &lu->UColInd, &lu->UColVal, i, to, number);
        move_line(&lu->URowBeg, &lu->URowLen, &lu->URowInd, &lu->URowVal, i, to, number);
        lu->UColCap.data[to] = lu->UColCap.data[i];
        lu->URowCap.data[to] = lu->URowCap.data[i];
        lu->UDiag.data[to] = lu->UDiag.data[i];
    }
    compact_order(&lu->LColOrder, number);
    compact_order(&lu->LRowOrder, number);
    compact_pivots(lu, number);
    compact_etas(lu, number);
    lu->NumRows = left;
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
    lu->WorkUnits += static_cast<double>(lu->LNonzeros + lu->UNonzeros);
    return true;
}

template bool lu_delete_rows<double>(lufact<double> *, const int *);
template bool lu_delete_rows<long double>(lufact<long double> *, const int *);
