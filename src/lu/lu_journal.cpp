// lu_journal.cpp -- a journal of updates, for runs that are undone as a whole
//
// Problem     Strong branching pivots from one basis and then returns to it, for many candidates.
// Method      A Forrest-Tomlin update of position r changes column r and row r of U, the rows in which the old or the
//             new column has entries, and the columns in which row r has entries. Each of these lines is copied before
//             its first change. Undoing puts the copies back to their old places, which nobody else uses, since lines
//             that outgrow theirs move to the end of the pool. The order, the etas and the pools are cut back.
// Cost        Recording: the entries of the lines, like the update itself. Undoing: the entries recorded.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
// The arrays of the columns (axis 0) or rows (axis 1) of U.
template<class R> struct Lines {
    Array<int> *Beg, *Len, *Cap, *Ind;
    Array<R> *Val;
};

template<class R> Lines<R> lines_of(lufact<R> *lu, int axis)
{
    if (axis == 0)
        return {&lu->UColBeg, &lu->UColLen, &lu->UColCap, &lu->UColInd, &lu->UColVal};
    return {&lu->URowBeg, &lu->URowLen, &lu->URowCap, &lu->URowInd, &lu->URowVal};
}

template<class R> int save_line(lufact<R> *lu, int axis, int index)
{
    char *saved = &lu->LineSaved[axis].data[index];
    if (*saved) return 0;
    const Lines<R> lines = lines_of(lu, axis);
    const int beg = lines.Beg->data[index], len = lines.Len->data[index];
    const int64_t at = lu->OldInd.size;
    TRY(array_grow(&lu->OldInd, at + len));
    TRY(array_grow(&lu->OldVal, at + len));
    TRY(array_append(&lu->OldLines,
                     LuLine{axis, index, beg, len, lines.Cap->data[index], at}));
    std::copy_n(lines.Ind->data + beg, len, lu->OldInd.data + at);
    std::copy_n(lines.Val->data + beg, len, lu->OldVal.data + at);
    lu->OldInd.size = lu->OldVal.size = at + len;
    *saved = 1;
    return 0;
}

template<class R> void put_back(lufact<R> *lu, const LuLine &old)
{
    const Lines<R> lines = lines_of(lu, old.Axis);
    lines.Beg->data[old.Index] = old.Beg;
    lines.Len->data[old.Index] = old.Len;
    lines.Cap->data[old.Index] = old.Cap;
    std::copy_n(lu->OldInd.data + old.At, old.Len, lines.Ind->data + old.Beg);
    std::copy_n(lu->OldVal.data + old.At, old.Len, lines.Val->data + old.Beg);
}

template<class R> void forget(lufact<R> *lu)
{
    for (int64_t k = 0; k < lu->OldLines.size; k++)
        lu->LineSaved[lu->OldLines.data[k].Axis].data[lu->OldLines.data[k].Index] = 0;
    lu->OldLines.size = lu->OldInd.size = lu->OldVal.size = lu->Replaced.size = 0;
}

// Etas and order as they were.
template<class R> void cut_back(lufact<R> *lu)
{
    const LuFigures &old = lu->Begin;
    for (int64_t p = old.Etas; p < lu->EtaInd.size; p++) {
        int *first = &lu->FirstEta.data[lu->EtaInd.data[p]];
        if (*first >= old.NumEtas) *first = INT32_MAX;
    }
    for (int64_t k = lu->Replaced.size - 1; k >= 0; k--) {
        const LuReplaced<R> &replaced = lu->Replaced.data[k];
        lu->UDiag.data[replaced.Row] = replaced.Diag;
        lu->PosOfRow.data[replaced.Row] = replaced.Place;
        lu->Order.data[replaced.Place] = replaced.Row;
    }
}
} // namespace

template<class R> int lu_journal_begin(lufact<R> *lu)
{
    assert(!lu->Journal && !lu->NeedBasis);
    for (Array<char> &saved : lu->LineSaved)
        TRY(array_extend(&saved, lu->NumRows, char(0)));
    lu->Begin = {lu->NumPos,       lu->NumEtas,      lu->NumUpdates, lu->EtaInd.size,
                 lu->UColInd.size, lu->URowInd.size, lu->SpikeNnz,   {}};
    std::copy_n(lu->Density[0], 2 * SOLVE_KINDS, lu->Begin.Density[0]);
    lu->Journal = 1;
    return 0;
}

template<class R> int lu_journal_record(lufact<R> *lu, int r)
{
    TRY(save_line(lu, 0, r));
    TRY(save_line(lu, 1, r));
    for (int p = lu->UColBeg.data[r], end = p + lu->UColLen.data[r]; p < end; p++)
        TRY(save_line(lu, 1, lu->UColInd.data[p]));
    for (int p = lu->URowBeg.data[r], end = p + lu->URowLen.data[r]; p < end; p++)
        TRY(save_line(lu, 0, lu->URowInd.data[p]));
    for (int k = 0; k < lu->SpikeCount; k++) TRY(save_line(lu, 1, lu->SpikeInd.data[k]));
    return array_append(&lu->Replaced,
                        LuReplaced<R>{r, lu->PosOfRow.data[r], lu->UDiag.data[r]});
}

template<class R> void lu_journal_undo(lufact<R> *lu)
{
    assert(lu->Journal);
    const LuFigures &old = lu->Begin;
    for (int64_t k = 0; k < lu->OldLines.size; k++) put_back(lu, lu->OldLines.data[k]);
    cut_back(lu);
    lu->NeedBasis = 0; // also after an update that failed
    lu->NumPos = old.NumPos;
    lu->NumEtas = old.NumEtas;
    lu->NumUpdates = old.NumUpdates;
    lu->EtaInd.size = lu->EtaVal.size = old.Etas;
    lu->UColInd.size = lu->UColVal.size = old.ColEntries;
    lu->URowInd.size = lu->URowVal.size = old.RowEntries;
    lu->SpikeNnz = old.SpikeNnz;
    std::copy_n(old.Density[0], 2 * SOLVE_KINDS, lu->Density[0]);
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
    lu_journal_end(lu);
}

template<class R> void lu_journal_end(lufact<R> *lu)
{
    if (!lu->Journal) return;
    forget(lu);
    lu->Journal = 0;
}

#define INSTANTIATE(R)                                                                     \
    template int lu_journal_begin<R>(lufact<R> *);                                         \
    template int lu_journal_record<R>(lufact<R> *, int);                                   \
    template void lu_journal_undo<R>(lufact<R> *);                                         \
    template void lu_journal_end<R>(lufact<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
