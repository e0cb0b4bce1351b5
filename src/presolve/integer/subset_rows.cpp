// subset_rows.cpp -- rows that contain a multiple of another row
//
// Problem     Row i is f (s x) + r x, where s x <= or = b is another row, and r x has the other columns of i.
// Method      Pairs are found in the shortest column of s. Then
//             - pre_subset_rows: if s is an equation, f times it is subtracted from i. Else, if i is an equation and r x
//               is shorter than s x, i over f is subtracted from s.
//             - pre_subset_coefs: if both are inequalities and f > 0, or s is an equation, the largest activity of i is at
//               most M = f b + max r x. If M does not exceed the side, i is redundant. Else coefficients of integer columns
//               of r x are tightened as in coefficients.cpp, with this M.
// Safety      All that is concluded holds for the present model, in which s stays.
// Postsolve   row_combination.cpp; none for the second.
// Cost        O(lengths of the rows of a pair that may fit), limited to a multiple of the entries
// Literature  T. Achterberg, R. E. Bixby, Z. Gu, E. Rothberg, D. Weninger, "Presolve reductions in mixed integer
//             programming", INFORMS J. Computing 32, 2020.
#include "presolve/integer/coefficients.h"
#include "presolve/reduce/row_combination.h"

namespace
{
constexpr double WORK_PER_ENTRY = 5; // limit of the effort
constexpr int LONGEST_ROW = 1000;    // that may be contained in others
constexpr int MANY_ROWS = 1000;      // rows compared with one of them
constexpr int LEAST_GAIN = 2;        // smallest decrease of the number of entries
constexpr double SAME_RATIO = 1e-12; // relative
constexpr double LARGEST_FACTOR = 100;
constexpr double ROUNDING = 1e-14; // of a sum, relative to its largest term

enum class Aim { SUBTRACT, TIGHTEN };

struct Search {
    PresolveWork *w;
    Aim aim;
    Array<uint64_t> Columns; // [NumRows] sets of columns as bits of their numbers
};

int collect_columns(Search *search)
{
    const PresolveWork *w = search->w;
    TRY(array_assign(&search->Columns, w->NumRows, uint64_t{0}));
    for (int i = 0; i < w->NumRows; i++)
        for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
            search->Columns.data[i] |=
                uint64_t{1} << (static_cast<unsigned>(w->Nodes.data[p].col) % 64);
    return 0;
}

// The factor f of row i with respect to the scattered row of this length; 0 if i does not contain it.
double factor_in(PresolveWork *w, int i, int length)
{
    double factor = 0;
    int shared = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        w->Work++;
        const double own = w->Scratch.data[w->Nodes.data[p].col];
        if (own == 0) continue; // not scattered
        const double ratio = w->Nodes.data[p].value / own;
        if (shared++ == 0) factor = ratio;
        if (std::fabs(ratio - factor) > SAME_RATIO * std::fabs(factor)) return 0;
    }
    return shared == length ? factor : 0;
}

bool is_moderate(double factor)
{
    return std::fabs(factor) <= LARGEST_FACTOR && std::fabs(factor) >= 1 / LARGEST_FACTOR;
}

// The largest activity of i minus its side, with row s for its part; *size: the largest term. False if it is infinite.
bool excess_with(const PresolveWork *w, int i, int s, double factor, Twofold *excess,
                 double *size)
{
    *excess = two_product(factor, w->Rhs.data[s]);
    *size = std::max(std::fabs(excess->high), std::fabs(w->Rhs.data[i]));
    twofold_add(excess, {-w->Rhs.data[i], 0});
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        if (w->Scratch.data[node.col] != 0) continue; // scattered
        const double most = node.value > 0 ? w->Ub.data[node.col] : w->Lb.data[node.col];
        if (std::fabs(most) >= w->INF) return false;
        const Twofold term = two_product(node.value, most);
        twofold_add(excess, term);
        *size = std::max(*size, std::fabs(term.high));
    }
    return true;
}

// Row s is scattered.
void tighten_row(PresolveWork *w, int i, int s, double factor)
{
    const bool holds = w->Sense.data[s] == '=' || factor > 0;
    const double error = rhs_error(w, i) + std::fabs(factor) * rhs_error(w, s);
    Twofold excess = {0, 0};
    double size = 0;
    if (w->Sense.data[i] == '=' || !holds || !is_moderate(factor) || error > w->FeasTol ||
        !excess_with(w, i, s, factor, &excess, &size))
        return;
    if (excess.high <= ROUNDING * size) return remove_row(w, i, ROW_REDUNDANT);
    bool changed = false;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        if (w->Scratch.data[j] == 0 && is_integer(w, j)) // not scattered
            changed = tighten_coefficient(w, p, excess, size) || changed;
    }
    if (!changed) return;
    row_activity(w, i);
    mark_row(w, i);
}

// row `target` - factor * equation
int subtract(PresolveWork *w, int target, int equation, double factor)
{
    const int fill = std::max(0, w->RowCnt.data[equation] - w->RowCnt.data[target]);
    return fill <= w->FreeCount ? combine_rows(w, target, equation, -factor, -1) : 0;
}

int use_pair(Search *search, int i, int s, double factor)
{
    PresolveWork *w = search->w;
    const int rest = w->RowCnt.data[i] - w->RowCnt.data[s];
    if (search->aim == Aim::TIGHTEN) {
        tighten_row(w, i, s, factor);
        return 0;
    }
    if (!is_moderate(factor)) return 0;
    if (w->Sense.data[s] == '=') return subtract(w, i, s, factor);
    if (w->Sense.data[i] == '=' && rest <= w->RowCnt.data[s] - LEAST_GAIN)
        return subtract(w, s, i, 1 / factor);
    return 0;
}

int shortest_column(const PresolveWork *w, int s)
{
    int best = -1;
    for (int p = first_in_row(w, s); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        if (best < 0 || w->ColCnt.data[j] < w->ColCnt.data[best]) best = j;
    }
    return best;
}

void scatter(PresolveWork *w, int s, int *cols, int *count)
{
    *count = 0;
    for (int p = first_in_row(w, s); p >= 0; p = next_in_row(w, p)) {
        cols[(*count)++] = w->Nodes.data[p].col;
        w->Scratch.data[w->Nodes.data[p].col] = w->Nodes.data[p].value;
    }
}

void clear_scatter(PresolveWork *w, const int *cols, int count)
{
    for (int k = 0; k < count; k++) w->Scratch.data[cols[k]] = 0;
}

// Rows that may contain row s, in `rows`; their number.
int find_rows(const Search *search, int s, int *rows)
{
    const PresolveWork *w = search->w;
    int count = 0;
    const uint64_t own = search->Columns.data[s];
    for (int p = first_in_col(w, shortest_column(w, s)); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        if (w->RowCnt.data[i] > w->RowCnt.data[s] &&
            (own & ~search->Columns.data[i]) == 0 && count < MANY_ROWS)
            rows[count++] = i;
    }
    return count;
}

// Row s with all rows that contain it, until it has changed itself.
int try_subset(Search *search, int s)
{
    PresolveWork *w = search->w;
    int *rows = w->IndexB.data, *cols = w->IndexC.data, scattered = 0;
    const int count = find_rows(search, s, rows), length = w->RowCnt.data[s];
    w->Work += 2.0 * length + count;
    for (int k = 0; k < count && w->RowCnt.data[s] == length; k++) {
        scatter(w, s, cols, &scattered);
        const double factor = factor_in(w, rows[k], length);
        const bool tighten = factor != 0 && search->aim == Aim::TIGHTEN; // contained
        if (tighten) TRY(use_pair(search, rows[k], s, factor));
        clear_scatter(w, cols, scattered);
        if (factor != 0 && !tighten) TRY(use_pair(search, rows[k], s, factor));
        w->Work += 2.0 * length;
    }
    return 0;
}

int search_rows(PresolveWork *w, Aim aim)
{
    Search search = {w, aim, {}};
    const int count = candidate_rows(w, w->IndexA.data);
    if (count == 0) return 0;
    TRY(collect_columns(&search));
    const double limit = w->Work + WORK_PER_ENTRY * static_cast<double>(w->NumNz);
    for (int k = 0; k < count && w->Work < limit; k++) {
        const int s = w->IndexA.data[k];
        if (w->RowCnt.data[s] < 2 || w->RowCnt.data[s] > LONGEST_ROW) continue;
        const double before = w->Work;
        TRY(try_subset(&search, s));
        TRY(check_limits(w, w->Work - before));
    }
    return 0;
}
} // namespace

int pre_subset_rows(PresolveWork *w)
{
    return search_rows(w, Aim::SUBTRACT);
}

int pre_subset_coefs(PresolveWork *w)
{
    return search_rows(w, Aim::TIGHTEN);
}
