// crush.cpp -- a basis of the model in terms of the reduced model
//
// What is left keeps its status. A basis has exactly one basic variable a row: too many basic columns fall to a bound, from
// the last on, and missing ones are made up for by slacks.
#include "presolve/work.h"
#include <algorithm>

void presolve_crush_basis(const TVXmodel *model, const int *full, int *reduced)
{
    const PresolveResult *result = model->presolve;
    const int n = model->presolved->body->numvars, m = model->presolved->body->numconstrs;
    int basic = 0;
    for (int j = 0; j < result->NumCols; j++)
        if (result->ColMap.data[j] >= 0) {
            reduced[result->ColMap.data[j]] = full[j];
            basic += full[j] >= 0;
        }
    for (int i = 0; i < result->NumRows; i++)
        if (result->RowMap.data[i] >= 0) {
            reduced[n + result->RowMap.data[i]] = full[result->NumCols + i];
            basic += full[result->NumCols + i] >= 0;
        }
    for (int k = n + m - 1; k >= n && basic < m; k--)
        if (reduced[k] < 0) {
            reduced[k] = 0;
            basic++;
        }
    for (int j = n - 1; j >= 0 && basic > m; j--)
        if (reduced[j] >= 0) {
            reduced[j] = -1;
            basic--;
        }
    for (int k = n; k < n + m && basic > m; k++)
        if (reduced[k] >= 0) {
            reduced[k] = -1;
            basic--;
        }
}
