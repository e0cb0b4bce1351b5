// two_rows.cpp -- adds multiples of an equation to rows with nearly the same columns, so that entries cancel
//
// Method      A row with all but MAX_FILL of the columns of an equation has an entry in at least one of the equation's
//             MAX_FILL + 1 shortest columns; rows with enough entries in the scanned columns are compared entry by
//             entry. The multiple that cancels most entries is the most frequent ratio of shared entries. The sum is
//             formed if it has at least LEAST_GAIN fewer entries.
// Postsolve   row_combination.cpp
// Cost        Limited by a multiple of the entries, and per equation by the lengths of a few short columns.
// Literature  S. F. Chang and S. T. McCormick, "A hierarchical algorithm for making sparse matrices sparser", Math.
//             Prog. 56, 1992; P. Gemander et al., "Two-row and two-column mixed-integer presolve using hashing-based
//             pairing methods", EURO J. Comput. Optim. 8, 2020.
#include "presolve/reduce/row_combination.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int MAX_FILL = 1; // new entries per sum

constexpr int SCANNED = 3; // columns, in addition to MAX_FILL, whose rows are counted

constexpr int LEAST_GAIN = 2; // smallest decrease of the number of entries

// equations with more rows in the scanned columns are skipped
constexpr int MANY_ROWS = 1000;

constexpr int MANY_CANDIDATES = 50; // rows compared with one equation

constexpr double SAME_RATIO = 1e-12; // relative

// A sum smaller than this share of the larger term would be inaccurate.
constexpr double NEAR_CANCEL = 1e-4;

// With integers, cancelled sums have at most this share of the tolerance as effect; size of a column without a bound.
constexpr double LITTLE = 1e-3, UNBOUNDED_SIZE = 1e7;

constexpr double LARGEST_FACTOR = 100;

constexpr double WORK_PER_ENTRY = 10; // limit of the effort

struct EqEntry {
    int col, length; // entries of the column
};

struct Pairing {
    PresolveWork *w;
    Array<EqEntry> Entries; // of the equation, [NumCols]
    Array<double> Ratios;   // of shared entries, [NumCols]
};

// Rows with entries in most of the scanned columns, in `list`; Scratch counts.
int rows_met(Pairing *pair, int equation, int *list)
{
    PresolveWork *w = pair->w;
    EqEntry *entry = pair->Entries.data;
    int length = 0;
    for (int p = first_in_row(w, equation); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        entry[length++] = {j, w->ColCnt.data[j]};
    }
    const int scanned = std::min(length, MAX_FILL + SCANNED);
    std::partial_sort(
        entry, entry + scanned, entry + length, [](const EqEntry &a, const EqEntry &b) {
            return a.length < b.length || (a.length == b.length && a.col < b.col);
        });
    int total = 0, met = 0, kept = 0;
    for (int k = 0; k < scanned && total <= MANY_ROWS; k++) total += entry[k].length;
    w->Work += length;
    if (total > MANY_ROWS) return 0;
    w->Work += 2.0 * total;
    for (int k = 0; k < scanned; k++)
        for (int p = first_in_col(w, entry[k].col); p >= 0; p = next_in_col(w, p)) {
            const int i = w->Nodes.data[p].row;
            if (i == equation) continue;
            if (w->Scratch.data[i] == 0) list[met++] = i;
            w->Scratch.data[i] += 1;
        }
    for (int q = 0; q < met; q++) {
        const int i = list[q];
        if (w->Scratch.data[i] >= scanned - MAX_FILL) list[kept++] = i;
        w->Scratch.data[i] = 0;
    }
    return std::min(kept, MANY_CANDIDATES);
}

// The most frequent ratio of shared entries; returns its frequency.
int common_ratio(double *ratio, int count, double *common)
{
    std::sort(ratio, ratio + count);
    int best = 0;
    for (int begin = 0, end = 0; begin < count; begin = end) {
        for (end = begin + 1; end < count; end++)
            if (ratio[end] - ratio[begin] > SAME_RATIO * std::fabs(ratio[begin])) break;
        if (end - begin <= best) continue;
        best = end - begin;
        *common = ratio[begin];
    }
    return best;
}

// Largest effect of a sum that is near zero, but not zero.
bool matters(const PresolveWork *w, int j, double sum)
{
    const double lb = has_lb(w, j) ? std::fabs(w->Lb.data[j]) : UNBOUNDED_SIZE,
                 ub = has_ub(w, j) ? std::fabs(w->Ub.data[j]) : UNBOUNDED_SIZE;
    return sum * std::max(lb, ub) > LITTLE * w->FeasTol;
}

// True if every entry of row - ratio * equation (in Scratch) is zero or not small relative to its terms.
bool is_accurate(const PresolveWork *w, int row, double ratio)
{
    for (int p = first_in_row(w, row); p >= 0; p = next_in_row(w, p)) {
        const double term = ratio * w->Scratch.data[w->Nodes.data[p].col];
        const double a = w->Nodes.data[p].value;
        const double size = std::max(std::fabs(a), std::fabs(term)),
                     sum = std::fabs(a - term);
        if (term != 0 && sum > 2 * SAME_RATIO * size && sum < NEAR_CANCEL * size)
            return false;
        if (w->IsMip && term != 0 && sum <= 2 * SAME_RATIO * size && // scattered
            matters(w, w->Nodes.data[p].col, sum))
            return false;
    }
    return true;
}

// The equation, of this length, is in Scratch. Sets the ratio; false if the row would not become shorter.
bool gains(Pairing *pair, int row, int length, double *ratio)
{
    PresolveWork *w = pair->w;
    int shared = 0;
    for (int p = first_in_row(w, row); p >= 0; p = next_in_row(w, p)) {
        const double a = w->Scratch.data[w->Nodes.data[p].col];
        if (a != 0) pair->Ratios.data[shared++] = w->Nodes.data[p].value / a; // scattered
    }
    w->Work += w->RowCnt.data[row] + 4.0 * shared;
    const int fill = length - shared;
    if (shared - fill < LEAST_GAIN || fill > std::min(MAX_FILL, w->FreeCount)) return false;
    const int cancelled = common_ratio(pair->Ratios.data, shared, ratio);
    const double size = std::fabs(*ratio);
    if (cancelled - fill < LEAST_GAIN || size > LARGEST_FACTOR || size < 1 / LARGEST_FACTOR)
        return false;
    return is_accurate(w, row, *ratio);
}

void scatter(PresolveWork *w, int row, bool clear)
{
    for (int p = first_in_row(w, row); p >= 0; p = next_in_row(w, p))
        w->Scratch.data[w->Nodes.data[p].col] = clear ? 0 : w->Nodes.data[p].value;
}

// If an equation is satisfied in the slack basis, its slack may stay basic to the end, but postsolve needs it nonbasic.
bool holds_at_bounds(const PresolveWork *w, int equation)
{
    double left = w->Rhs.data[equation];
    for (int p = first_in_row(w, equation); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        const double bound = has_lb(w, j)   ? w->Lb.data[j]
                             : has_ub(w, j) ? w->Ub.data[j]
                                            : 0;
        left -= w->Nodes.data[p].value * bound;
    }
    return std::fabs(left) <= w->FeasTol;
}

int try_equation(Pairing *pair, int equation)
{
    PresolveWork *w = pair->w;
    int *list = w->IndexB.data;
    const int count = rows_met(pair, equation, list), length = w->RowCnt.data[equation];
    for (int k = 0; k < count; k++) {
        double ratio = 0;
        scatter(w, equation, false);
        const bool use = gains(pair, list[k], length, &ratio);
        scatter(w, equation, true);
        w->Work += 2.0 * length;
        if (use) TRY(combine_rows(w, list[k], equation, -ratio, -1));
    }
    return 0;
}
} // namespace

int pre_two_rows(PresolveWork *w)
{
    int *rows = w->IndexA.data;
    const int count = candidate_rows(w, rows);
    Pairing pair;
    pair.w = w;
    TRY(array_resize(&pair.Entries, w->NumCols));
    TRY(array_resize(&pair.Ratios, w->NumCols));
    const double limit = w->Work + WORK_PER_ENTRY * static_cast<double>(w->NumNz);
    for (int k = 0; k < count && w->Work < limit; k++) {
        const double before = w->Work - std::max(1, w->RowCnt.data[rows[k]]);
        if (w->Sense.data[rows[k]] == '=' && w->RowCnt.data[rows[k]] >= 2 &&
            !holds_at_bounds(w, rows[k]))
            TRY(try_equation(&pair, rows[k]));
        TRY(check_limits(w, w->Work - before));
    }
    return 0;
}
