// aggregate_eliminate.cpp -- elimination of a column from all rows but the pivot row
//
// Problem     Use row r, a x_j + sum a_k x_k = b, to eliminate x_j from the objective and the other rows i of column j:
//             row i -= (a_ij / a) row r, c -= (c_j / a) row r.
// Method      One sparse vector (the pattern) is scattered and added as a multiple to each of several lists: row r to
//             the rows of column j, or column j to the columns of row r, whichever lists are shorter in total. If both
//             ways have a long list, each entry is searched separately in the shorter of its two lists and moved to the
//             head, as the next pivots will need it again. New entries take nodes of the free list. If many columns are
//             substituted by the same one, its entries are mapped first (row -> entry), and no search is needed.
// Errors      With s the size of the terms of an entry, a step a_ij a_k / a has the size
//             max(s_ij a_k, s_k a_ij, a_ij a_k s / a) / a, since the factor a_ij / a has the errors of its operands. A
//             sum that is small relative to its size counts as zero, and the entry is deleted.
// Invariant   Counts, right-hand sides, activities and errors are updated with each entry.
// Cost        O(entries of the lists + length of row * length of column).
#include "presolve/errors.h"
#include "presolve/reduce/aggregate.h"

namespace
{
// sums below this share of their largest term count as zero
constexpr double CANCELLED = 1e-13;

// share of dead nodes from which compression pays
constexpr double WORTH_COMPRESSING = 0.05;

constexpr double PIVOT_EFFORT = 20;

constexpr int LOG_EVERY = 10000; // columns between progress lines

// entries of the lists from which each is searched separately
constexpr int LONG_WAY = 2000;

// a + b, or zero if the digits cancelled; `size` is the size of the terms of both.
double add_cleanly(double a, double b, double size, double zero)
{
    const double sum = a + b;
    const double noise = std::max(zero, CANCELLED * size);
    return std::fabs(sum) < noise ? 0 : sum;
}

// A number with the size of the terms that it was computed from.
struct Sized {
    double value, size;
};

Sized entry_at(const PresolveWork *w, int p)
{
    return {w->Nodes.data[p].value, size_of_entry(w, p)};
}

Sized product(Sized a, Sized b)
{
    return {a.value * b.value,
            std::max(std::fabs(a.value) * b.size, a.size * std::fabs(b.value))};
}

// -a / b
Sized factor_of(Sized a, Sized b)
{
    const double value = -a.value / b.value, size = std::fabs(b.value);
    return {value, std::max(a.size, std::fabs(value) * b.size) / size};
}

// Which way a list and its pattern run.
enum class Along { ROW, COL };

struct Pattern {
    Along along;
    int count;
    const int *index;           // columns (ROW) or rows (COL)
    const double *value, *size; // scattered
};

int first_along(const PresolveWork *w, Along along, int line)
{
    return along == Along::ROW ? first_in_row(w, line) : first_in_col(w, line);
}

int next_along(const PresolveWork *w, Along along, int p)
{
    return along == Along::ROW ? next_in_row(w, p) : next_in_col(w, p);
}

// The coefficient of column j in row i becomes `after`; notes rows whose activity lost digits.
void coefficient_moves(PresolveWork *w, int i, int j, double before, double after)
{
    if (change_coefficient(w, i, j, before, after)) w->ScratchC.data[i] = 1;
    mark_row(w, i);
    mark_col(w, j);
}

void add_to_entry(PresolveWork *w, int p, Sized step)
{
    PresolveNode *node = &w->Nodes.data[p];
    const double size = std::max(size_of_entry(w, p), step.size);
    const double after = add_cleanly(node->value, step.value, size, w->ZeroTol);
    coefficient_moves(w, node->row, node->col, node->value, after);
    if (after == 0) // assigned so
        return delete_entry(w, p);
    node->value = after;
    set_entry_size(w, p, size);
}

// A new entry, unless it would be zero.
void insert_fill(PresolveWork *w, int i, int j, Sized step)
{
    if (std::fabs(step.value) < std::max(w->ZeroTol, CANCELLED * step.size)) return;
    coefficient_moves(w, i, j, 0, step.value);
    insert_entry(w, i, j, step.value);
    set_entry_size(w, w->RowHead.data[i], step.size);
}

// Unlinks deleted entries from a list before it is read, since a list in many eliminations would collect them.
void sweep_along(PresolveWork *w, Along along, int line)
{
    if (along == Along::ROW && (w->RowMark.data[line] & NEEDS_SWEEP)) sweep_row(w, line);
    if (along == Along::COL && (w->ColMark.data[line] & NEEDS_SWEEP)) sweep_col(w, line);
}

// line += factor * pattern
void add_multiple(PresolveWork *w, const Pattern *pattern, int line, Sized factor)
{
    const Along along = pattern->along;
    sweep_along(w, along, line);
    for (int p = first_along(w, along, line); p >= 0;) {
        const int next = next_along(w, along, p);
        const PresolveNode &node = w->Nodes.data[p];
        const int k = along == Along::ROW ? node.col : node.row;
        const double v = pattern->value[k];
        if (v != 0) { // scattered
            w->Flag.data[k] = 1;
            add_to_entry(w, p, product(factor, {v, pattern->size[k]}));
        }
        p = next;
    }
    for (int q = 0; q < pattern->count; q++) {
        const int k = pattern->index[q];
        if (!w->Flag.data[k])
            insert_fill(w, along == Along::ROW ? line : k, along == Along::ROW ? k : line,
                        product(factor, {pattern->value[k], pattern->size[k]}));
        w->Flag.data[k] = 0;
    }
}

// Row or column of entry p without p into the scratch.
Pattern scatter(PresolveWork *w, Along along, int p)
{
    const PresolveNode pivot = w->Nodes.data[p];
    Pattern pattern = {along, 0, w->IndexB.data, w->Scratch.data, w->ScratchB.data};
    const int line = along == Along::ROW ? pivot.row : pivot.col;
    for (int q = first_along(w, along, line); q >= 0; q = next_along(w, along, q)) {
        if (q == p) continue;
        const PresolveNode &node = w->Nodes.data[q];
        const int k = along == Along::ROW ? node.col : node.row;
        w->IndexB.data[pattern.count++] = k;
        w->Scratch.data[k] = node.value;
        w->ScratchB.data[k] = size_of_entry(w, q);
    }
    return pattern;
}

void clear_scatter(PresolveWork *w, const Pattern *pattern)
{
    for (int q = 0; q < pattern->count; q++)
        w->Scratch.data[pattern->index[q]] = w->ScratchB.data[pattern->index[q]] = 0;
}

// Entries visited if row r is added to the rows of column j, or column j to the columns of row r.
struct Ways {
    int64_t by_rows = 0, by_cols = 0;
};

Ways ways_of(const PresolveWork *w, const PresolveNode *pivot)
{
    Ways ways;
    for (int q = first_in_col(w, pivot->col); q >= 0; q = next_in_col(w, q))
        ways.by_rows += w->RowCnt.data[w->Nodes.data[q].row];
    for (int q = first_in_row(w, pivot->row); q >= 0; q = next_in_row(w, q))
        ways.by_cols += w->ColCnt.data[w->Nodes.data[q].col];
    return ways;
}

// The entry of row i and column k, or -1; it moves to the head of the list in which it was found.
int find_entry(PresolveWork *w, int i, int k)
{
    const bool in_row = w->RowCnt.data[i] <= w->ColCnt.data[k];
    int *head = in_row ? &w->RowHead.data[i] : &w->ColHead.data[k];
    int steps = 0;
    for (int *link = head; *link >= 0; steps++) {
        const int p = *link;
        PresolveNode *node = &w->Nodes.data[p];
        int *next = in_row ? &node->next_in_row : &node->next_in_col;
        if (node->col == k && node->row == i) {
            *link = *next;
            *next = *head;
            *head = p;
            w->Work += steps;
            return p;
        }
        link = next;
    }
    w->Work += steps;
    return -1;
}

void eliminate_pairs(PresolveWork *w, int p)
{
    const PresolveNode pivot = w->Nodes.data[p];
    const Sized divisor = entry_at(w, p);
    for (int q = first_in_col(w, pivot.col); q >= 0; q = next_in_col(w, q)) {
        if (q == p) continue;
        const int i = w->Nodes.data[q].row;
        const Sized factor = factor_of(entry_at(w, q), divisor);
        for (int t = first_in_row(w, pivot.row); t >= 0; t = next_in_row(w, t)) {
            if (t == p) continue;
            const int k = w->Nodes.data[t].col;
            const Sized step = product(factor, entry_at(w, t));
            const int at = find_entry(w, i, k);
            if (at >= 0)
                add_to_entry(w, at, step);
            else
                insert_fill(w, i, k, step);
        }
    }
}

void move_objective(PresolveWork *w, int p)
{
    const PresolveNode pivot = w->Nodes.data[p];
    const Sized ratio =
        factor_of({w->Obj.data[pivot.col], w->ObjErr.data[pivot.col] / ROUNDING_UNIT},
                  entry_at(w, p));
    if (ratio.value == 0) return; // zero cost
    for (int q = first_in_row(w, pivot.row); q >= 0; q = next_in_row(w, q)) {
        const int k = w->Nodes.data[q].col;
        double *cost = &w->Obj.data[k];
        const Sized step = product(ratio, entry_at(w, q));
        add_to_cost_error(w, k, step.size, 0);
        *cost = q == p ? 0 : add_cleanly(*cost, step.value, std::fabs(*cost), w->ZeroTol);
        mark_col(w, k);
    }
    w->ObjCon -= ratio.value * w->Rhs.data[pivot.row];
}

void move_rhs(PresolveWork *w, int p)
{
    const PresolveNode pivot = w->Nodes.data[p];
    const double rhs = w->Rhs.data[pivot.row], error = w->RhsErr.data[pivot.row];
    const Sized divisor = entry_at(w, p);
    for (int q = first_in_col(w, pivot.col); q >= 0; q = next_in_col(w, q)) {
        if (q == p) continue;
        const int i = w->Nodes.data[q].row;
        const Sized factor = factor_of(entry_at(w, q), divisor);
        add_to_rhs_error(w, i, factor.size * std::fabs(rhs),
                         std::fabs(factor.value) * error);
        if (rhs == 0) continue; // exactly: nothing moves
        const double before = w->Rhs.data[i],
                     after = add_cleanly(before, factor.value * rhs, std::fabs(before), 0);
        w->Rhs.data[i] = after;
        if (move_activity(w, i, before - after)) w->ScratchC.data[i] = 1;
    }
}
} // namespace

void sum_anew_if_lost(PresolveWork *w, int i)
{
    if (w->ScratchC.data[i] == 0) return; // not remembered
    w->ScratchC.data[i] = 0;
    w->Work += w->RowCnt.data[i];
    row_activity(w, i);
}

double largest_in_row(const PresolveWork *w, int i)
{
    double largest = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        largest = std::max(largest, std::fabs(w->Nodes.data[p].value));
    return largest;
}

double largest_in_col(const PresolveWork *w, int j)
{
    double largest = 0;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        largest = std::max(largest, std::fabs(w->Nodes.data[p].value));
    return largest;
}

int room_for_fill(PresolveWork *w, int64_t fill, bool *there)
{
    const double dead = static_cast<double>(w->DeadCount);
    if (fill > w->FreeCount &&
        dead >= WORTH_COMPRESSING * static_cast<double>(w->Nodes.size))
        TRY(compress(w));
    *there = fill <= w->FreeCount;
    return 0;
}

void eliminate_from_others(PresolveWork *w, int p)
{
    const PresolveNode pivot = w->Nodes.data[p];
    const Ways ways = ways_of(w, &pivot);
    move_objective(w, p);
    move_rhs(w, p);
    if (std::min(ways.by_rows, ways.by_cols) > LONG_WAY) return eliminate_pairs(w, p);
    w->Work += 2.0 * static_cast<double>(std::min(ways.by_rows, ways.by_cols));
    const Along way = ways.by_cols > ways.by_rows ? Along::ROW : Along::COL;
    const Pattern pattern = scatter(w, way, p);
    // Inserting puts entries at the heads of other lists, never of the one walked here.
    const Along lines = way == Along::ROW ? Along::COL : Along::ROW;
    const int through = way == Along::ROW ? pivot.col : pivot.row;
    const Sized divisor = entry_at(w, p);
    for (int q = first_along(w, lines, through); q >= 0; q = next_along(w, lines, q)) {
        if (q == p) continue;
        const PresolveNode &node = w->Nodes.data[q];
        add_multiple(w, &pattern, way == Along::ROW ? node.row : node.col,
                     factor_of(entry_at(w, q), divisor));
    }
    clear_scatter(w, &pattern);
}

void map_column(PresolveWork *w, int j)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        w->IndexB.data[w->Nodes.data[p].row] = p;
        w->Flag.data[w->Nodes.data[p].row] = 1;
    }
    w->Work += w->ColCnt.data[j];
}

void unmap_column(PresolveWork *w, int j)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        w->Flag.data[w->Nodes.data[p].row] = 0;
}

void drop_from_others(PresolveWork *w, int p)
{
    const PresolveNode pivot = w->Nodes.data[p];
    for (int q = first_in_col(w, pivot.col); q >= 0;) {
        const int next = next_in_col(w, q), i = w->Nodes.data[q].row;
        if (q != p) {
            coefficient_moves(w, i, pivot.col, w->Nodes.data[q].value, 0);
            delete_entry(w, q);
            sum_anew_if_lost(w, i);
        }
        q = next;
    }
}

namespace
{
// Entries of column j move into the mapped column k: a x_j + b x_k = rhs.
void merge_into_mapped(PresolveWork *w, int p, int k, Sized b)
{
    const PresolveNode pivot = w->Nodes.data[p];
    const Sized divisor = entry_at(w, p);
    for (int q = first_in_col(w, pivot.col); q >= 0; q = next_in_col(w, q)) {
        const PresolveNode node = w->Nodes.data[q];
        if (q == p) continue;
        const Sized step = product(factor_of(entry_at(w, q), divisor), b);
        int *at = &w->IndexB.data[node.row];
        if (w->Flag.data[node.row]) {
            add_to_entry(w, *at, step);
            w->Flag.data[node.row] = w->Nodes.data[*at].col == k;
        } else {
            const int head = w->ColHead.data[k];
            insert_fill(w, node.row, k, step);
            *at = w->ColHead.data[k];
            w->Flag.data[node.row] = *at != head;
        }
    }
}

// Removes row and column of entry p.
void remove_pivot(PresolveWork *w, int p)
{
    const int r = w->Nodes.data[p].row, j = w->Nodes.data[p].col;
    drop_from_others(w, p);
    remove_row(w, r, ROW_PIVOT);
    w->ColHead.data[j] = -1;
    w->ColCnt.data[j] = col_substituted(r);
    w->ColsRemoved++;
    if (w->ColsRemoved % LOG_EVERY == 0) presolve_log(w);
}
} // namespace

int substitute_out(PresolveWork *w, int p)
{
    const PresolveNode &pivot = w->Nodes.data[p];
    TRY(push_substitution(w, p));
    w->Work += PIVOT_EFFORT * w->ColCnt.data[pivot.col] * w->RowCnt.data[pivot.row];
    eliminate_from_others(w, p);
    remove_pivot(w, p);
    return 0;
}

int substitute_by_mapped(PresolveWork *w, int p, int q)
{
    const int r = w->Nodes.data[p].row, k = w->Nodes.data[q].col;
    TRY(push_substitution(w, p));
    w->Work += 2 * PIVOT_EFFORT * w->ColCnt.data[w->Nodes.data[p].col];
    move_objective(w, p);
    move_rhs(w, p);
    merge_into_mapped(w, p, k, entry_at(w, q));
    remove_pivot(w, p);
    w->Flag.data[r] = 0;
    return 0;
}
