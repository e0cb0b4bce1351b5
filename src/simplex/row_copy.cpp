// row_copy.cpp -- the matrix by rows, partitioned into columns that may enter and others
//
// Problem     A row of the tableau needs only the nonbasic entries of the rows that it combines.
// Method      Each row has the entries of nonbasic columns that are not fixed in its first RowFill[i] slots.
//             SlotOfEntry and EntryOfSlot map entries of both copies to each other, so a column enters or leaves the
//             front parts by one exchange per entry.
// Invariant   SlotOfEntry[EntryOfSlot[k]] == k; slot k of row i is in the front part if and only if InRowCopy is set
//             for its column.
// Cost        build O(nonzeros); insert and remove O(length of the column).
#include "simplex/sopt.h"
#include <utility>

namespace
{
void exchange_slots(sopt *s, int a, int b)
{
    if (a == b) return;
    std::swap(s->RowInd.data[a], s->RowInd.data[b]);
    std::swap(s->RowVal.data[a], s->RowVal.data[b]);
    std::swap(s->EntryOfSlot.data[a], s->EntryOfSlot.data[b]);
    s->SlotOfEntry.data[s->EntryOfSlot.data[a]] = a;
    s->SlotOfEntry.data[s->EntryOfSlot.data[b]] = b;
}
} // namespace

int row_copy_build(sopt *s)
{
    const int m = s->NumRows, n = s->NumCols;
    const int nz = s->ColBeg.data[n];
    TRY(array_assign(&s->RowBeg, int64_t{m} + 1, 0));
    TRY(array_resize(&s->RowFill, m));
    TRY(array_resize(&s->RowInd, nz));
    TRY(array_resize(&s->RowVal, nz));
    TRY(array_resize(&s->SlotOfEntry, nz));
    TRY(array_resize(&s->EntryOfSlot, nz));
    TRY(array_assign(&s->InRowCopy, n, char(1)));
    int *beg = s->RowBeg.data;
    for (int p = 0; p < nz; p++) beg[s->ColInd.data[p] + 1]++;
    for (int i = 0; i < m; i++) beg[i + 1] += beg[i];
    for (int i = 0; i < m; i++) s->RowFill.data[i] = 0;
    for (int j = 0; j < n; j++) {
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
            const int i = s->ColInd.data[p], slot = beg[i] + s->RowFill.data[i]++;
            s->RowInd.data[slot] = j;
            s->RowVal.data[slot] = s->ColVal.data[p];
            s->SlotOfEntry.data[p] = slot;
            s->EntryOfSlot.data[slot] = p;
        }
    }
    return 0;
}

void row_copy_insert(sopt *s, int j)
{
    if (j >= s->NumCols || s->InRowCopy.data[j]) return;
    s->InRowCopy.data[j] = 1;
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        const int i = s->ColInd.data[p];
        exchange_slots(s, s->SlotOfEntry.data[p], s->RowBeg.data[i] + s->RowFill.data[i]++);
    }
}

void row_copy_remove(sopt *s, int j)
{
    if (j >= s->NumCols || !s->InRowCopy.data[j]) return;
    s->InRowCopy.data[j] = 0;
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        const int i = s->ColInd.data[p];
        exchange_slots(s, s->SlotOfEntry.data[p], s->RowBeg.data[i] + --s->RowFill.data[i]);
    }
}

void row_copy_partition(sopt *s)
{
    for (int j = 0; j < s->NumCols; j++) {
        const int status = s->VStat.data[j];
        if (status == AT_LOWER || status == AT_UPPER || status == AT_FREE)
            row_copy_insert(s, j);
        else
            row_copy_remove(s, j);
    }
}
