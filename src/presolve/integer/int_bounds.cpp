// int_bounds.cpp -- integral bounds of integer columns, and which of these are binary
#include "presolve/work.h"
#include <algorithm>
#include <cmath>

namespace
{
// Larger bounds are not rounded here: the model store has done it.
constexpr double LARGEST_ROUNDED = 1e9;
} // namespace

int pre_round_int_bounds(PresolveWork *w)
{
    for (int j = 0; j < w->NumCols; j++) {
        TRY(check_limits(w, 1));
        if (!is_integer(w, j)) continue;
        double *lb = &w->Lb.data[j], *ub = &w->Ub.data[j];
        if (std::fabs(*lb) < LARGEST_ROUNDED) *lb = std::ceil(*lb - w->IntTol) + 0.0;
        if (std::fabs(*ub) < LARGEST_ROUNDED) *ub = std::floor(*ub + w->IntTol) + 0.0;
        if (w->VType.data[j] == 'B') {
            *lb = std::max(*lb, 0.0);
            *ub = std::min(*ub, 1.0);
        }
        if (*lb == 0 && *ub == 1) w->VType.data[j] = 'B'; // rounded
        if (*lb <= *ub) continue;
        w->InfeasCol = j;
        return END_INFEASIBLE;
    }
    return 0;
}

int pre_relabel_binaries(PresolveWork *w)
{
    const WorkList *cols = cols_of_phase(w);
    for (int k = 0; k < cols->PendingCnt; k++) {
        const int j = cols->List.data[k];
        TRY(check_limits(w, 1));
        if (w->VType.data[j] == 'I' && w->Lb.data[j] == 0 && w->Ub.data[j] == 1)
            w->VType.data[j] = 'B';
    }
    return 0;
}
