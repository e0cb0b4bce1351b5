// rows.cpp -- the row-wise copy of the matrix
//
// Counting sort by row; columns are walked in order, so that each row lists its columns in
// increasing order. Built when first needed, dropped by the next update that changes content.
// Cost: O(rows + columns + entries).
#include "body/body.h"

int body_build_rows(ModelBody *body)
{
    const int m = body->numconstrs;
    if (body->row_beg.size == m + 1) return 0;
    Array<int> beg, ind;
    Array<double> val;
    TRY(array_assign(&beg, int64_t{m} + 1, 0));
    TRY(array_resize(&ind, body->numnz));
    TRY(array_resize(&val, body->numnz));

    // next[i] counts row i, becomes its end, and after filling from the back is its start.
    int *__restrict next = beg.data;
    const int *__restrict row = body->vind.data;
    for (int p = 0; p < body->numnz; p++) next[row[p]]++;
    for (int i = 1; i < m; i++) next[i] += next[i - 1];
    next[m] = body->numnz;
    for (int j = body->numvars - 1; j >= 0; j--) {
        for (int p = body->vbeg[j + 1] - 1; p >= body->vbeg[j]; p--) {
            const int at = --next[row[p]];
            ind.data[at] = j;
            val.data[at] = body->vval.data[p];
        }
    }
    body->row_beg = static_cast<Array<int> &&>(beg);
    body->row_ind = static_cast<Array<int> &&>(ind);
    body->row_val = static_cast<Array<double> &&>(val);
    return 0;
}
