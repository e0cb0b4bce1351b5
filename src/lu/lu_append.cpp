// lu_append.cpp -- the basis matrix grows by rows whose slacks are basic
//
// Problem     Rows are added to the LP and their slacks to the basis. Keep the factors with their updates.
// Method      With R the entries of a new row in the basic columns,
//                 [ B  0 ]   [ L E^-1  0 ] [ U  0 ]
//                 [ R  1 ] = [ v^T     1 ] [ 0  1 ],   U^T v = R,
//             so the new row of the left factor is one more row eta, and U grows by a unit row and column.
// Cost        A row: one solve with U^T.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
template<class R> int grow_arrays(lufact<R> *lu, int64_t m)
{
    LuActive<R> *a = &lu->Active;
    TRY(array_resize(&lu->Order, m + lu->MaxMoves));
    for (Array<int> *array :
         {&lu->PosOfRow, &lu->LColLen,    &lu->LRowBeg,  &lu->LRowLen,  &lu->UColBeg,
          &lu->UColLen,  &lu->UColCap,    &lu->URowBeg,  &lu->URowLen,  &lu->URowCap,
          &lu->SpikeInd, &lu->PartInd,    &lu->Stack,    &lu->StackPos, &lu->List,
          &lu->RowCount, &lu->URowTmpLen, &lu->RowSum,   &lu->ColCount, &lu->ColSum,
          &lu->HeadNew,  &lu->RowOfPosn,  &lu->FirstEta, &a->Head[0],   &a->Head[1],
          &a->Count[0],  &a->Count[1],    &a->Prev[0],   &a->Prev[1],   &a->Next[0],
          &a->Next[1]})
        TRY(array_resize(array, m));
    for (Array<R> *array :
         {&lu->UDiag, &lu->SpikeVal, &lu->PartVal, &a->Max[0], &a->Max[1]})
        TRY(array_resize(array, m));
    for (Array<int> *array : {&a->First[0], &a->First[1], &lu->PatBeg})
        TRY(array_resize(array, m + 1));
    for (Array<int> *order : {&lu->LColOrder, &lu->LRowOrder}) TRY(array_reserve(order, m));
    TRY(array_extend(&a->Work, m, R(0)));
    TRY(array_extend(&a->Stamp, m, 0));
    TRY(array_extend(&lu->Mark, m, char(0)));
    // the starts of empty columns and rows are read but not used
    TRY(array_extend(&lu->LColBeg, m, 0));
    TRY(array_extend(&lu->URowTmpBeg, m, 0));
    return array_extend(&lu->Lanes, 4 * m, R(0));
}
} // namespace

template<class R> int lu_grow(lufact<R> *lu, int num_rows)
{
    TRY(grow_arrays(lu, num_rows));
    const int old = lu->NumRows, more = num_rows - old;
    if (!lu->NeedBasis) {
        const int64_t etas = int64_t{lu->NumEtas} + lu->MaxMoves + more;
        TRY(array_resize(&lu->EtaRow, std::max(etas, lu->EtaRow.size)));
        TRY(array_resize(&lu->EtaBeg, std::max(etas + 1, lu->EtaBeg.size)));
    }
    lu->NumRows = num_rows;
    for (int i = old; i < num_rows && !lu->NeedBasis; i++) {
        lu->LColLen.data[i] = lu->LRowLen.data[i] = lu->LRowBeg.data[i] = 0;
        lu->UColBeg.data[i] = lu->UColLen.data[i] = lu->UColCap.data[i] = 0;
        lu->URowBeg.data[i] = lu->URowLen.data[i] = lu->URowCap.data[i] = 0;
        lu->UDiag.data[i] = R(1);
        lu->FirstEta.data[i] = INT32_MAX;
        lu->PosOfRow.data[i] = lu->NumPos;
        lu->Order.data[lu->NumPos++] = i;
    }
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
    return 0;
}

template<class R> int lu_append_row(lufact<R> *lu, int i, SVec<R> *row)
{
    assert(!lu->Journal);
    lu_solve_upper_transposed(lu, row);
    svec_tidy(row, lu->DropTol);
    if (row->Count == 0) return 0;
    int64_t next = lu->EtaInd.size;
    if (next + row->Count > lu->EtaInd.room) {
        const int64_t room = lu->EtaInd.room + lu->EtaInd.room / 2 + row->Count;
        if (room > INT32_MAX) return OUT_OF_MEMORY; // positions are 32-bit
        TRY(array_reserve(&lu->EtaInd, room));
        TRY(array_reserve(&lu->EtaVal, room));
    }
    for (int k = 0; k < row->Count; k++) {
        const int r = row->Index.data[k];
        lu->FirstEta.data[r] = std::min(lu->FirstEta.data[r], lu->NumEtas);
        lu->EtaInd.data[next] = r;
        lu->EtaVal.data[next++] = -row->Value.data[r];
    }
    lu->EtaInd.size = lu->EtaVal.size = next;
    lu->EtaRow.data[lu->NumEtas++] = i;
    lu->EtaBeg.data[lu->NumEtas] = static_cast<int>(next);
    lu->WorkUnits += row->Count;
    return 0;
}

#define INSTANTIATE(R)                                                                     \
    template int lu_grow<R>(lufact<R> *, int);                                             \
    template int lu_append_row<R>(lufact<R> *, int, SVec<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
