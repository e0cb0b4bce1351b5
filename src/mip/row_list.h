// row_list.h -- RowList, inequalities a x <= b one behind the other
#pragma once
#include "runtime/array.h"

struct RowList {
    Array<int64_t> Beg; // [count + 1], or empty
    Array<int> Ind;
    Array<double> Val;
    Array<double> Rhs; // [count]
};
inline int row_count(const RowList *rows)
{
    return static_cast<int>(rows->Rhs.size);
}
// 0 or OUT_OF_MEMORY; the list is unchanged on failure.
[[nodiscard]] inline int row_append(RowList *rows, int count, const int *ind,
                                    const double *val, double rhs)
{
    if (rows->Beg.size == 0) TRY(array_append(&rows->Beg, int64_t{0}));
    TRY(array_grow(&rows->Beg, rows->Beg.size + 1));
    TRY(array_grow(&rows->Ind, rows->Ind.size + count));
    TRY(array_grow(&rows->Val, rows->Val.size + count));
    TRY(array_append(&rows->Rhs, rhs));
    for (int k = 0; k < count; k++) {
        array_push(&rows->Ind, ind[k]);
        array_push(&rows->Val, val[k]);
    }
    array_push(&rows->Beg, rows->Ind.size);
    return 0;
}
