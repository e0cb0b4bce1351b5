// dispensable_bounds.cpp -- bounds of columns that are implied by rows
//
// Problem     A column without an upper bound has a reduced cost >= 0, one without a lower bound <= 0, which limits the
//             dual values. A bound implied by the rows can be treated as infinite.
// Method      Shorter columns first, each bound in turn: it is dispensable if one row with the bounds that are not yet
//             dispensable implies it. From then on it counts as infinite in the rows, so that all dispensable bounds
//             can be removed together without a change of the feasible set.
// In, out     given[j] bits, 1 << Side of the bounds that are dispensable or absent. The counts of missing terms of the
//             record are used and restored.
// Cost        O(entries).
#include "presolve/reduce/dual_bounds.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double SMALL_ENTRY = 1e-9;
// Smallest entry relative to the largest of its row: a smaller one implies an inaccurate bound.
constexpr double SMALL_SHARE = 1e-3;
constexpr double TOUCHING = 1e-9; // the bound may be tighter than the implied one by this

// The largest entry of each live row, in Scratch.
int largest_of_rows(PresolveWork *w)
{
    for (int64_t p = 0; p < w->Nodes.size; p++) {
        const PresolveNode &node = w->Nodes.data[p];
        TRY(check_limits(w, 1));
        if (node.col < 0) continue;
        double *largest = &w->Scratch.data[node.row];
        *largest = std::max(*largest, std::fabs(node.value));
    }
    return 0;
}

// True if the row of entry p implies the bound of its column by its upper (a x <= b) or lower limit.
bool row_implies(const PresolveWork *w, int p, int side, int row_side, int given)
{
    const PresolveNode &node = w->Nodes.data[p];
    const int i = node.row, j = node.col;
    const bool least = row_side == UPPER_SIDE; // minimal activity of the others
    const double sum = least ? w->RMin.data[i] : w->RMax.data[i];
    const int infinite = least ? w->Rmincnt.data[i] : w->Rmaxcnt.data[i];
    const double own = side == UPPER_SIDE ? w->Lb.data[j] : w->Ub.data[j]; // in the sum
    const bool absent = std::fabs(own) >= w->INF;
    const bool counted = absent || (given & (1 << (1 - side)));
    if (infinite != (counted ? 1 : 0)) return false;
    const double t = (absent ? 0 : own) - sum / node.value;
    const double bound = side == UPPER_SIDE ? w->Ub.data[j] : w->Lb.data[j];
    const double beyond = side == UPPER_SIDE ? t - bound : bound - t;
    return beyond <= TOUCHING && std::fabs(node.value) >= SMALL_SHARE * w->Scratch.data[i];
}

bool rows_imply(const PresolveWork *w, int j, int side, int given)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        if (std::fabs(node.value) < SMALL_ENTRY) continue;
        const int row_side =
            (node.value > 0) == (side == UPPER_SIDE) ? UPPER_SIDE : LOWER_SIDE;
        if (row_side == LOWER_SIDE && w->Sense.data[node.row] != '=') continue;
        if (row_implies(w, p, side, row_side, given)) return true;
    }
    return false;
}

// The terms of a bound become infinite (step 1) or finite again (-1).
void count_missing(PresolveWork *w, int j, int side, int step)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const bool in_least = (node.value > 0) == (side == LOWER_SIDE);
        (in_least ? w->Rmincnt : w->Rmaxcnt).data[node.row] += step;
    }
}

// Columns by length, in IndexA.
int sort_by_length(PresolveWork *w, Array<int> *start)
{
    int longest = 0;
    for (int j = 0; j < w->NumCols; j++) longest = std::max(longest, w->ColCnt.data[j]);
    TRY(array_assign(start, int64_t{longest} + 2, 0));
    for (int j = 0; j < w->NumCols; j++)
        if (is_live_col(w, j)) start->data[w->ColCnt.data[j] + 1]++;
    for (int k = 0; k <= longest; k++) start->data[k + 1] += start->data[k];
    for (int j = 0; j < w->NumCols; j++)
        if (is_live_col(w, j)) w->IndexA.data[start->data[w->ColCnt.data[j]]++] = j;
    return presolve_check(w);
}
} // namespace

int dispensable_bounds(PresolveWork *w, Array<char> *given)
{
    TRY(array_assign(given, w->NumCols, char(0)));
    Array<int> start;
    TRY(sort_by_length(w, &start));
    TRY(largest_of_rows(w));
    int live = 0;
    for (int j = 0; j < w->NumCols; j++) live += is_live_col(w, j);
    for (const int side : {LOWER_SIDE, UPPER_SIDE})
        for (int k = 0; k < live; k++) {
            const int j = w->IndexA.data[k];
            TRY(check_limits(w, 1 + w->ColCnt.data[j]));
            const bool absent = side == LOWER_SIDE ? !has_lb(w, j) : !has_ub(w, j);
            if (w->ColFlags.data[j] || is_integer(w, j) || absent) continue;
            if (!rows_imply(w, j, side, given->data[j])) continue;
            given->data[j] |= static_cast<char>(1 << side);
            count_missing(w, j, side, 1);
        }
    for (int j = 0; j < w->NumCols; j++) {
        TRY(check_limits(w, given->data[j] ? 1 + w->ColCnt.data[j] : 1));
        for (const int side : {LOWER_SIDE, UPPER_SIDE})
            if (given->data[j] & (1 << side)) count_missing(w, j, side, -1);
    }
    std::fill_n(w->Scratch.data, w->NumRows, 0.0);
    w->Work += 5.0 * static_cast<double>(w->NumNz);
    return 0;
}
