// aggregate.cpp -- aggregation: implied free columns are substituted out through equations
//
// Problem     A column whose bounds are implied by the rows (implied free) can be computed from an equation;
//             substituting it in the other rows removes a column and a row but causes fill.
// Method      Doubleton equations first, since they cause no fill. Then columns in the order of the possible fill with
//             their shortest equation; each is tested again on the current model when its turn comes, so that the
//             bounds of two columns are not both implied by each other. Last, free columns without equations become
//             slacks.
// Numerics    The errors of rows grow by the largest entry of the column over the pivot, the error of the point by the
//             largest entry of the row over the pivot: one of the two must be small, and none large.
// Cost        O(entries of the candidates) for ranking; eliminations as they are.
// Literature  H. M. Markowitz, "The elimination form of the inverse and its application to linear programming",
//             Management Science 3, 1957. A. L. Brearley, G. Mitra, H. P. Williams, "Analysis of mathematical
//             programming problems prior to applying the simplex algorithm", Math. Prog. 8, 1975.
#include "presolve/reduce/aggregate.h"
#include "presolve/errors.h"
#include "presolve/sort_keys.h"
#include <climits>

namespace
{
constexpr double IMPLIED = 1e-9; // by which an implied bound may be weaker than the bound
constexpr double LEAST_PIVOT = 1e-6;
// smallest pivot over the largest entry of its column or of its row
constexpr double RELATIVE_PIVOT = 0.1;
constexpr double WORST_PIVOT = 1e-3; // smallest pivot over the largest entry of both
// limits of the possible fill (most_threat)
constexpr int THREAT_SHARE = 10, THREAT_LEAST = 40;
// limit of the steps to count the true fill of one pivot
constexpr int OVERLAP_STEPS = 1000;
// Limits of the effort of one call and of all calls, so that dense rows and columns that take part in many eliminations
// do not cost their square.
constexpr double EFFORT_PER_ENTRY = 100, EFFORT_AT_LEAST = 1e6, CALLS = 3;

bool may_leave(const PresolveWork *w, int j)
{
    return is_live_col(w, j) && w->ColFlags.data[j] == 0 && w->ColCnt.data[j] > 0;
}

// Upper bound of new entries minus removed entries if x_j is substituted through a row of this length.
int64_t net_fill(int64_t col_length, int64_t row_length)
{
    return (col_length - 2) * (row_length - 2) - 2;
}

bool is_stable(const PresolveWork *w, int p, double col_largest)
{
    const PresolveNode &pivot = w->Nodes.data[p];
    const double size = std::fabs(pivot.value);
    const double row_largest = largest_in_row(w, pivot.row);
    return size >= LEAST_PIVOT &&
           size >= WORST_PIVOT * std::max(row_largest, col_largest) &&
           size >= RELATIVE_PIVOT * std::min(row_largest, col_largest) &&
           errors_allow(w, p, col_largest, row_largest);
}

// Lower bound of the number of entries that the other rows of the pivot column already have in the pattern of the pivot
// row.
int64_t overlap(PresolveWork *w, int p)
{
    const PresolveNode pivot = w->Nodes.data[p];
    for (int q = first_in_row(w, pivot.row); q >= 0; q = next_in_row(w, q))
        w->Flag.data[w->Nodes.data[q].col] = q != p;
    int64_t common = 0, steps = 0;
    for (int q = first_in_col(w, pivot.col); q >= 0; q = next_in_col(w, q)) {
        const int i = w->Nodes.data[q].row;
        if (q == p || steps + w->RowCnt.data[i] > OVERLAP_STEPS) continue;
        steps += w->RowCnt.data[i];
        for (int t = first_in_row(w, i); t >= 0; t = next_in_row(w, t))
            common += w->Flag.data[w->Nodes.data[t].col];
    }
    for (int q = first_in_row(w, pivot.row); q >= 0; q = next_in_row(w, q))
        w->Flag.data[w->Nodes.data[q].col] = 0;
    w->Work += static_cast<double>(steps);
    return common;
}

// Possible fill up to which the true fill is counted: on Netlib and Meszaros that removes 1 % more rows.
int64_t most_threat(const PresolveWork *w)
{
    return THREAT_SHARE * int64_t{w->Env->AggFill} + THREAT_LEAST;
}

bool fills_little(PresolveWork *w, int p)
{
    const PresolveNode &pivot = w->Nodes.data[p];
    const int64_t threat = net_fill(w->ColCnt.data[pivot.col], w->RowCnt.data[pivot.row]);
    const int64_t most = w->Env->AggFill;
    if (threat <= most || threat > most_threat(w)) return threat <= most;
    return threat - overlap(w, p) <= most;
}

// The entry of column j in its shortest equation with an acceptable pivot, or -1.
int best_pivot(PresolveWork *w, int j)
{
    const double largest = largest_in_col(w, j);
    const int64_t most = most_threat(w);
    int best = -1, length = INT_MAX;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        if (w->Sense.data[i] != '=' || w->RowCnt.data[i] >= length) continue;
        if (net_fill(w->ColCnt.data[j], w->RowCnt.data[i]) > most) continue;
        w->Work += w->RowCnt.data[i];
        if (!is_stable(w, p, largest) || !keeps_integers(w, p) || !fills_little(w, p))
            continue;
        best = p;
        length = w->RowCnt.data[i];
    }
    return best;
}

// Possible fill of column j with its shortest equation, or -1 if it has no equation with an acceptable pivot.
int rank_of(const PresolveWork *w, int j)
{
    int64_t length = INT_MAX;
    const int64_t count = w->ColCnt.data[j];
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        if (w->Sense.data[i] == '=') length = std::min<int64_t>(length, w->RowCnt.data[i]);
    }
    if (length == INT_MAX || net_fill(count, length) > most_threat(w)) return -1;
    const int64_t fill = (count - 1) * (length - 1);
    return static_cast<int>(std::min<int64_t>(fill, INT_MAX));
}

// Candidates in the order of their rank.
int rank_columns(PresolveWork *w, int *list, int *count_out)
{
    const int count = candidate_cols_by_sense(w, SENSE_EQUAL, list);
    w->Work += 10.0 * count * static_cast<double>(w->NumNz) / (w->NumCols + 1.0);
    int *rank = w->IndexC.data, kept = 0;
    for (int k = 0; k < count; k++) {
        const int j = list[k];
        TRY(check_limits(w, 1 + std::max(0, w->ColCnt.data[j])));
        if (!may_leave(w, j)) continue;
        rank[j] = rank_of(w, j);
        if (rank[j] >= 0) list[kept++] = j;
    }
    *count_out = kept;
    return sort_by_rank(w, list, w->IndexB.data, kept, rank);
}

int try_column(PresolveWork *w, int j)
{
    if (!may_leave(w, j) || bounds_that_matter(w, j) != 0) return 0;
    const int p = best_pivot(w, j);
    if (p < 0) return 0;
    const int64_t fill =
        int64_t{w->ColCnt.data[j] - 1} * (w->RowCnt.data[w->Nodes.data[p].row] - 1);
    bool room = false;
    TRY(room_for_fill(w, fill, &room));
    return room ? substitute_out(w, p) : 0;
}

int aggregate_columns(PresolveWork *w, double most_work)
{
    int *list = w->IndexA.data, count = 0;
    TRY(rank_columns(w, list, &count));
    for (int k = 0; k < count && w->Work < most_work; k++) {
        const double before = w->Work - std::max(1, w->ColCnt.data[list[k]]);
        TRY(try_column(w, list[k]));
        TRY(check_limits(w, w->Work - before));
    }
    return 0;
}
} // namespace

int bounds_that_matter(const PresolveWork *w, int j)
{
    const bool lower = has_lb(w, j), upper = has_ub(w, j);
    if (!lower && !upper) return 0;
    const ImpliedBounds implied = implied_bounds(w, j);
    return (lower && implied.lb < w->Lb.data[j] - IMPLIED ? LOWER_MATTERS : 0) |
           (upper && implied.ub > w->Ub.data[j] + IMPLIED ? UPPER_MATTERS : 0);
}

int pre_aggregate(PresolveWork *w)
{
    const double per_call =
        EFFORT_PER_ENTRY * static_cast<double>(w->NumNz) + EFFORT_AT_LEAST;
    const double begin = w->Work,
                 most_work =
                     begin + std::min(per_call, CALLS * per_call - w->AggregateWork);
    TRY(aggregate_doubletons(w, most_work));
    TRY(aggregate_columns(w, most_work));
    TRY(free_to_slack(w, most_work));
    w->AggregateWork += w->Work - begin;
    return 0;
}
