// redundant_rows.cpp -- removes redundant rows, and entries too small to matter
#include "presolve/claim.h"
#include "presolve/errors.h"
#include <algorithm>

namespace
{
// Largest total effect of the deleted entries of a row, as a share of the tolerance.
constexpr double TINY_SHARE = 1e-3;
constexpr double LEAST_RANGE = 0.5; // smallest range of a column whose entry is deleted
// From this share of all rows, entries are processed in the order of memory.
constexpr double SHARE_SCANNED = 0.1;

bool is_redundant(const PresolveWork *w, int i)
{
    if (w->Rmaxcnt.data[i] > 0 || w->RMax.data[i] >= w->FeasTol) return false;
    return w->Sense.data[i] == '<' ||
           (w->Rmincnt.data[i] == 0 && w->RMin.data[i] > -w->FeasTol);
}

// Entries whose effect on the row is negligible are replaced by their value at the middle of the column's range.
void drop_tiny(PresolveWork *w, int i)
{
    double moved = 0;
    int dropped = 0;
    for (int p = first_in_row(w, i); p >= 0;) {
        const int next = next_in_row(w, p), j = w->Nodes.data[p].col;
        const double a = w->Nodes.data[p].value, lb = w->Lb.data[j], ub = w->Ub.data[j];
        const double worth = std::fabs(a) * (ub - lb);
        if (std::fabs(lb) < w->INF && std::fabs(ub) < w->INF &&
            moved + worth < TINY_SHARE * w->FeasTol && ub - lb > LEAST_RANGE) {
            moved += worth;
            w->Rhs.data[i] -= a * 0.5 * (lb + ub);
            add_to_rhs_error(w, i, size_of_entry(w, p) * std::max(-lb, ub), moved);
            mark_col(w, j);
            delete_entry(w, p);
            dropped++;
        }
        p = next;
    }
    if (dropped == 0) return;
    row_activity(w, i);
    mark_row(w, i);
    w->CoefsChanged += dropped;
}

bool is_short_list(const PresolveWork *w, int count)
{
    return count < SHARE_SCANNED * w->NumRows;
}

void clear_flags(PresolveWork *w, const int *list, int count)
{
    if (is_short_list(w, count))
        for (int k = 0; k < count; k++) w->Flag.data[list[k]] = 0;
    else
        std::fill_n(w->Flag.data, w->NumRows, char(0));
}

// Flags the rows that may have such an entry, so that the others need not be read.
int flag_tiny(PresolveWork *w, const int *list, int count)
{
    const double most = TINY_SHARE * w->FeasTol / LEAST_RANGE;
    if (is_short_list(w, count)) {
        for (int k = 0; k < count; k++) w->Flag.data[list[k]] = 1;
        return 0;
    }
    for (int64_t p = 0; p < w->Nodes.size; p++) {
        const PresolveNode &node = w->Nodes.data[p];
        TRY(check_limits(w, 1));
        if (node.col >= 0 && std::fabs(node.value) < most) w->Flag.data[node.row] = 1;
    }
    return 0;
}

int remove_empty(PresolveWork *w, int i)
{
    const double b = w->Rhs.data[i], zero = w->FeasTol + rhs_error(w, i);
    if (b < -zero || (w->Sense.data[i] == '=' && b > zero)) {
        w->InfeasRow = i;
        return claim_infeasible(w, {{i, b > 0 ? 1.0 : -1.0}});
    }
    remove_row(w, i, ROW_EMPTY);
    return 0;
}
} // namespace

int pre_redundant_rows(PresolveWork *w)
{
    int *list = w->IndexA.data;
    const int count = active_rows(w, list);
    w->Work += 3.0 * count;
    TRY(flag_tiny(w, list, count));
    for (int k = 0; k < count; k++) {
        const int i = list[k];
        const bool tiny = w->Flag.data[i] && w->RowCnt.data[i] > 0;
        const bool redundant = w->RowCnt.data[i] > 0 && is_redundant(w, i);
        TRY(check_limits(w, tiny || redundant ? w->RowCnt.data[i] : 1));
        if (tiny && !redundant) drop_tiny(w, i);
        if (w->RowCnt.data[i] == 0)
            TRY(remove_empty(w, i));
        else if (w->RowCnt.data[i] > 0 && is_redundant(w, i))
            remove_row(w, i, ROW_REDUNDANT);
    }
    clear_flags(w, list, count);
    return 0;
}
