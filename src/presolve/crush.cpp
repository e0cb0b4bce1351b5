// crush.cpp -- maps a basis of the model to the reduced model: columns and rows that were not removed keep their status
#include "presolve/work.h"

// If basic entries are missing, slacks become basic; if there are too many, the last ones become nonbasic, columns
// first.
void presolve_mend_basis(int n, int m, int *statuses)
{
    int basic = 0;
    for (int k = 0; k < n + m; k++) basic += statuses[k] >= 0;
    for (int k = n + m - 1; k >= n && basic < m; k--)
        if (statuses[k] < 0) {
            statuses[k] = 0;
            basic++;
        }
    for (int j = n - 1; j >= 0 && basic > m; j--)
        if (statuses[j] >= 0) {
            statuses[j] = -1;
            basic--;
        }
    for (int k = n; k < n + m && basic > m; k++)
        if (statuses[k] >= 0) {
            statuses[k] = -1;
            basic--;
        }
}

void presolve_crush_basis(const PresolveResult *result, const int *full, int *reduced)
{
    const int n = result->Reduced->numvars, m = result->Reduced->numconstrs;
    for (int j = 0; j < result->NumCols; j++)
        if (result->ColMap.data[j] >= 0) reduced[result->ColMap.data[j]] = full[j];
    for (int i = 0; i < result->NumRows; i++)
        if (result->RowMap.data[i] >= 0)
            reduced[n + result->RowMap.data[i]] = full[result->NumCols + i];
    presolve_mend_basis(n, m, reduced);
}
