// lu_negate.cpp -- a column of the basis matrix changes its sign
//
// Method      B D = (L E^-1) (U D) with D the identity but for -1 at the position: column r of U is negated.
// Cost        The rows of U that have an entry in the column.
#include "lu/lufact.h"

template<class R> void lu_negate_column(lufact<R> *lu, int r)
{
    assert(!lu->NeedBasis && !lu->Journal);
    lu->UDiag.data[r] = -lu->UDiag.data[r];
    for (int p = lu->UColBeg.data[r], end = p + lu->UColLen.data[r]; p < end; p++) {
        const int i = lu->UColInd.data[p];
        int q = lu->URowBeg.data[i];
        while (lu->URowInd.data[q] != r) q++;
        lu->URowVal.data[q] = lu->UColVal.data[p] = -lu->UColVal.data[p];
    }
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
}

template void lu_negate_column<double>(lufact<double> *, int);
template void lu_negate_column<long double>(lufact<long double> *, int);
