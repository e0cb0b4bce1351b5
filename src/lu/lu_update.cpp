// lu_update.cpp -- the Forrest-Tomlin update
//
// Problem     One column of the basis is replaced. Keep U triangular without a refactorisation.
// Method      The spike (new column after L and the old etas) replaces column r of U. If it has entries below the
//             diagonal, r moves to the end of the order and row r is eliminated by one row eta. The multipliers of that
//             eta are the partial result of the BTRAN of unit vector r, which the simplex has computed before: with U^T
//             z = e_r, row r = sum_k (-z_k / z_r) row k, so eta_k = z_k * u_rr. A spike without entries below the
//             diagonal replaces the column in place, without eta.
// Out         UPDATE_DONE, or a reason to refactor; the factors are then still those of the old basis.
// Cost        Entries of the spike, of row r and column r, and short searches in the rows and columns they meet.
// Literature  J. J. H. Forrest and J. A. Tomlin, Math. Prog. 2, 1972.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
constexpr double UNSTABLE_DIAGONAL = 1e-13; // a new pivot of U below this is unstable
// so is one whose two computations differ relatively by more
constexpr double UNSTABLE_RELATIVE = 1e-6;
constexpr double POOL_GROWTH = 1.5; // growth of a pool that updates filled
// smallest number of spare entries of a moved row of U
constexpr int ROW_GROWTH = 4;

// Removes the entry with index `key` from a row or column.
template<class R> void line_remove(int *ind, R *val, int beg, int *len, int key)
{
    int p = beg;
    while (ind[p] != key) p++;
    const int last = beg + --*len;
    ind[p] = ind[last];
    val[p] = val[last];
}

// Makes room for one more entry in row i of U; false if the pool is full.
template<class R> bool row_room(lufact<R> *lu, int i)
{
    const int len = lu->URowLen.data[i];
    if (len < lu->URowCap.data[i]) return true;
    const int64_t need = int64_t{len} + std::max(ROW_GROWTH, len / 2);
    if (lu->URowInd.room - lu->URowInd.size < need) return false;
    const int from = lu->URowBeg.data[i], to = static_cast<int>(lu->URowInd.size);
    std::copy_n(lu->URowInd.data + from, len, lu->URowInd.data + to);
    std::copy_n(lu->URowVal.data + from, len, lu->URowVal.data + to);
    lu->URowBeg.data[i] = to;
    lu->URowCap.data[i] = static_cast<int>(need);
    lu->URowInd.size += need;
    lu->URowVal.size += need;
    return true;
}

// Makes room for all entries of the spike before anything is changed. False if a pool is full; it will be larger after
// the next factorisation.
template<class R> bool reserve_room(lufact<R> *lu, int r, int eta_entries)
{
    if (lu->NumUpdates >= lu->MaxMoves || lu->NumPos >= lu->NumRows + lu->MaxMoves)
        return false;
    if (lu->EtaInd.room - lu->EtaInd.size < eta_entries) {
        lu->EtaFactor *= POOL_GROWTH;
        return false;
    }
    if (lu->UColCap.data[r] < lu->SpikeCount &&
        lu->UColInd.room - lu->UColInd.size < lu->SpikeCount) {
        lu->PoolFactor *= POOL_GROWTH;
        return false;
    }
    for (int k = 0; k < lu->SpikeCount; k++) {
        if (lu->SpikeInd.data[k] == r || row_room(lu, lu->SpikeInd.data[k])) continue;
        lu->PoolFactor *= POOL_GROWTH;
        return false;
    }
    return true;
}

// The spike becomes column r of U, off-diagonals only.
template<class R> void replace_column(lufact<R> *lu, int r)
{
    for (int p = lu->UColBeg.data[r], end = p + lu->UColLen.data[r]; p < end; p++) {
        const int i = lu->UColInd.data[p];
        line_remove(lu->URowInd.data, lu->URowVal.data, lu->URowBeg.data[i],
                    &lu->URowLen.data[i], r);
    }
    if (lu->UColCap.data[r] < lu->SpikeCount) {
        lu->UColBeg.data[r] = static_cast<int>(lu->UColInd.size);
        lu->UColCap.data[r] = lu->SpikeCount;
        lu->UColInd.size += lu->SpikeCount;
        lu->UColVal.size += lu->SpikeCount;
    }
    const int beg = lu->UColBeg.data[r];
    int len = 0;
    for (int k = 0; k < lu->SpikeCount; k++) {
        const int i = lu->SpikeInd.data[k];
        const R value = lu->SpikeVal.data[k];
        if (i == r || std::abs(value) <= lu->DropTol) continue;
        lu->UColInd.data[beg + len] = i;
        lu->UColVal.data[beg + len++] = value;
        const int q = lu->URowBeg.data[i] + lu->URowLen.data[i]++;
        lu->URowInd.data[q] = r;
        lu->URowVal.data[q] = value;
    }
    lu->UColLen.data[r] = len;
}

// Row r is removed from U by a row eta, and r moves to the end of the order.
template<class R> void move_to_end(lufact<R> *lu, int r)
{
    for (int p = lu->URowBeg.data[r], end = p + lu->URowLen.data[r]; p < end; p++) {
        const int j = lu->URowInd.data[p];
        line_remove(lu->UColInd.data, lu->UColVal.data, lu->UColBeg.data[j],
                    &lu->UColLen.data[j], r);
    }
    lu->URowLen.data[r] = 0;
    lu->Order.data[lu->PosOfRow.data[r]] = -1;
    lu->PosOfRow.data[r] = lu->NumPos;
    lu->Order.data[lu->NumPos++] = r;
    if (lu->PartCount <= 1) return; // row r had no entries: nothing to eliminate
    const R diag = lu->UDiag.data[r];
    int64_t next = lu->EtaInd.size;
    for (int k = 0; k < lu->PartCount; k++) {
        if (lu->PartInd.data[k] == r) continue;
        int *first = &lu->FirstEta.data[lu->PartInd.data[k]];
        *first = std::min(*first, lu->NumEtas);
        lu->EtaInd.data[next] = lu->PartInd.data[k];
        lu->EtaVal.data[next++] = lu->PartVal.data[k] * diag;
    }
    lu->EtaInd.size = lu->EtaVal.size = next;
    lu->EtaRow.data[lu->NumEtas++] = r;
    lu->EtaBeg.data[lu->NumEtas] = static_cast<int>(next);
}
} // namespace

namespace
{
template<class R> int update(lufact<R> *lu, int r, R pivot)
{
    assert(lu->SpikeCount >= 0 && lu->PartRow == r);
    const int place = lu->PosOfRow.data[r];
    R spike_r = 0;
    bool below = false; // the spike has entries below the diagonal
    R *work = lu->Active.Work.data;
    for (int k = 0; k < lu->SpikeCount; k++) {
        const int i = lu->SpikeInd.data[k];
        work[i] = lu->SpikeVal.data[k];
        if (i == r) spike_r = lu->SpikeVal.data[k];
        below = below || lu->PosOfRow.data[i] > place;
    }
    const R old_diag = lu->UDiag.data[r];
    R diag = spike_r;
    if (below)
        for (int k = 0; k < lu->PartCount; k++)
            if (lu->PartInd.data[k] != r)
                diag += lu->PartVal.data[k] * old_diag * work[lu->PartInd.data[k]];
    for (int k = 0; k < lu->SpikeCount; k++) work[lu->SpikeInd.data[k]] = R(0);

    const R expected = pivot * old_diag; // det(new U) / det(old U) is the pivot
    if (std::abs(diag) < R(UNSTABLE_DIAGONAL) ||
        std::abs(diag - expected) > R(UNSTABLE_RELATIVE) * std::abs(expected))
        return UPDATE_UNSTABLE;
    if (lu->Journal && lu_journal_record(lu, r)) return UPDATE_NO_ROOM;
    if (!reserve_room(lu, r, below ? lu->PartCount : 0)) return UPDATE_NO_ROOM;
    replace_column(lu, r);
    if (below) move_to_end(lu, r);
    lu->UDiag.data[r] = diag;
    lu->NumUpdates++;
    lu->SpikeNnz += lu->SpikeCount;
    lu->WorkUnits += 2.0 * lu->SpikeCount + lu->PartCount;
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
    return UPDATE_DONE;
}
} // namespace

template<class R> int UpdateFactor(lufact<R> *lu, int r, R pivot)
{
    const int result = update(lu, r, pivot);
    // the caller has changed the basis, or gives it up
    if (result != UPDATE_DONE) lu->NeedBasis = 1;
    return result;
}

template int UpdateFactor<double>(lufact<double> *, int, double);
template int UpdateFactor<long double>(lufact<long double> *, int, long double);
