// dominated_columns.cpp -- columns that another column can always replace without loss
//
// Method      A step of x_k in its direction t together with a step of x_j in the direction s costs nothing, violates no
//             inequality and keeps every equation: t c_k + s c_j <= 0, t a_ik + s a_ij <= 0, = 0 in equations. Such steps
//             end when x_k is at its bound in direction t, where it is fixed, or when x_j is at its own bound. The latter
//             does no harm if
//             - x_j has no bound in direction s, or only one that rows imply, or
//             - with x_j there all rows that a step of x_k alone would violate are redundant, and such a step costs
//               nothing: x_k may go on alone.
//             If x_j is integer, so is x_k, so that the steps are whole.
// Search      One column of a pair, the seed, has a step that uses up rows, and the other an entry in each of them; the
//             shortest gives the candidates. Of most pairs a comparison of two words per column says that the rows do not
//             fit. Columns with equations only fit parallel ones, which pre_duplicate_cols finds.
// Postsolve   That of fixing.
// Safety      Other optima may be lost. The bound of x_j stays in the model.
// Cost        O(candidates) for all columns, O(entries of x_j) for a pair that may fit; limited to a multiple of the
//             entries of the model
// Literature  G. Gamrath, T. Koch, A. Martin, M. Miltenberger, D. Weninger, "Progress in presolving for mixed integer
//             programming", Math. Prog. Comp. 7, 2015.
#include "presolve/errors.h"
#include "presolve/reduce/aggregate.h"

namespace
{
constexpr double WORK_PER_ENTRY = 20; // limit of the effort
constexpr double PAIR_EFFORT = 0.5;   // of the comparison of two words
constexpr int LONGEST_ROW = 10000;    // candidates of one column
constexpr double CLOSED =
    1e-10; // columns with a smaller range are fixed by other reductions
constexpr double REDUNDANT = 1e-3; // largest violation of a redundant row, in tolerances

enum Way { DOWN = -1, UP = 1 };

// Sets of rows as bits of their numbers: those that a step down or up of the column uses up, equations included.
struct RowSets {
    uint64_t down, up;
    uint64_t used_by(int way) const { return way == UP ? up : down; }
};

// A column and the direction of its step.
struct Step {
    int col, way;
};

// A step with its column scattered in Scratch.
struct Seed {
    Step step;
    int used; // rows that the step uses up
    RowSets rows;
};

RowSets rows_of(const PresolveWork *w, int j)
{
    RowSets sets = {0, 0};
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const uint64_t bit = uint64_t{1} << (static_cast<unsigned>(node.row) % 64);
        if (node.value > 0 || w->Sense.data[node.row] == '=') sets.up |= bit;
        if (node.value < 0 || w->Sense.data[node.row] == '=') sets.down |= bit;
    }
    return sets;
}

// The entry in the shortest row that a step uses up, or -1; *count: the number of such rows.
int shortest_used(const PresolveWork *w, Step step, int *count)
{
    int best = -1;
    bool equations_only = true;
    *count = 0;
    for (int p = first_in_col(w, step.col); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        equations_only = equations_only && w->Sense.data[node.row] == '=';
        if (step.way * node.value < 0 && w->Sense.data[node.row] != '=') continue;
        ++*count;
        if (best < 0 || w->RowCnt.data[node.row] < w->RowCnt.data[w->Nodes.data[best].row])
            best = p;
    }
    return equations_only ? -1 : best;
}

// True if the rows of the steps may fit each other, as far as the words tell.
bool may_fit(const Seed *seed, const RowSets &other, int way)
{
    return (seed->rows.used_by(seed->step.way) & ~other.used_by(-way)) == 0 &&
           (other.used_by(way) & ~seed->rows.used_by(-seed->step.way)) == 0;
}

// True if both steps together hurt nothing.
bool fits(PresolveWork *w, const Seed *seed, Step other)
{
    const int way = seed->step.way;
    if (way * w->Obj.data[seed->step.col] + other.way * w->Obj.data[other.col] > 0)
        return false;
    int met = 0;
    for (int p = first_in_col(w, other.col); p >= 0; p = next_in_col(w, p)) {
        w->Work++;
        const PresolveNode &node = w->Nodes.data[p];
        const double own = way * w->Scratch.data[node.row];
        const double sum = own + other.way * node.value;
        const bool equation = w->Sense.data[node.row] == '=';
        if (sum > 0 || (sum < 0 && equation)) return false;
        met += own > 0 || (own < 0 && equation);
    }
    return met == seed->used;
}

// No bound in this direction, or one that rows imply.
bool is_open(const PresolveWork *w, Step step)
{
    if (step.way == UP ? !has_ub(w, step.col) : !has_lb(w, step.col)) return true;
    return (bounds_that_matter(w, step.col) &
            (step.way == UP ? UPPER_MATTERS : LOWER_MATTERS)) == 0;
}

// Which of the two columns of a pair would be fixed.
enum class Fixed { SEED, OTHER };

// True if the step of the one that would be fixed costs nothing and all rows that it uses up, which both have, are
// redundant with the remaining column at its bound.
bool freed_at_bound(const PresolveWork *w, const Seed *seed, Step other, Fixed fixed)
{
    const Step leaving = fixed == Fixed::SEED ? seed->step : other;
    const int stays = fixed == Fixed::SEED ? other.col : seed->step.col;
    const double range = w->Ub.data[stays] - w->Lb.data[stays];
    if (leaving.way * w->Obj.data[leaving.col] > 0 || !(range < w->INF)) return false;
    for (int p = first_in_col(w, other.col); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const double of_seed = w->Scratch.data[node.row];
        const double leaves = fixed == Fixed::SEED ? of_seed : node.value,
                     keeps = fixed == Fixed::SEED ? node.value : of_seed;
        if (w->Sense.data[node.row] == '=') return false;
        if (leaving.way * leaves <= 0) continue;
        if (w->Rmaxcnt.data[node.row] > 0 ||
            w->RMax.data[node.row] - std::fabs(keeps) * range > REDUNDANT * w->FeasTol)
            return false;
    }
    return true;
}

// True if the first column may be fixed at the end of its step for the sake of the second one.
bool may_be_fixed(const PresolveWork *w, Step step, int other)
{
    return (step.way == UP ? has_ub(w, step.col) : has_lb(w, step.col)) &&
           w->Ub.data[step.col] - w->Lb.data[step.col] > CLOSED &&
           (is_integer(w, step.col) || !is_integer(w, other));
}

int fix_at_end(PresolveWork *w, Step step)
{
    return step.way == UP ? fix_at_upper(w, step.col) : fix_at_lower(w, step.col);
}

// Fixes one of a pair that fits, if possible.
int try_pair(PresolveWork *w, const Seed *seed, Step other)
{
    w->Work += 2.0 * w->ColCnt.data[other.col];
    if (may_be_fixed(w, seed->step, other.col) &&
        (is_open(w, other) || freed_at_bound(w, seed, other, Fixed::SEED)))
        return fix_at_end(w, seed->step);
    if (may_be_fixed(w, other, seed->step.col) &&
        (is_open(w, seed->step) || freed_at_bound(w, seed, other, Fixed::OTHER)))
        return fix_at_end(w, other);
    return 0;
}

// Tries the columns of the row of entry p with the seed until it is fixed itself.
int try_row(PresolveWork *w, const Seed *seed, int p, const RowSets *sets)
{
    const PresolveNode pivot = w->Nodes.data[p];
    w->Work += PAIR_EFFORT * w->RowCnt.data[pivot.row];
    for (int q = first_in_row(w, pivot.row); q >= 0 && is_live_col(w, seed->step.col);) {
        const PresolveNode node = w->Nodes.data[q];
        const bool same_sign = (node.value > 0) == (pivot.value > 0);
        const Step other = {node.col, same_sign ? -seed->step.way : seed->step.way};
        q = next_in_row(w, q);
        if (node.col != seed->step.col && may_fit(seed, sets[node.col], other.way) &&
            w->ColFlags.data[node.col] == 0 && fits(w, seed, other))
            TRY(try_pair(w, seed, other));
    }
    return 0;
}

// The column as seed, with steps in this direction.
int try_step(PresolveWork *w, Step step, const RowSets *sets)
{
    Seed seed = {step, 0, sets[step.col]};
    const int p = shortest_used(w, step, &seed.used), length = w->ColCnt.data[step.col];
    w->Work += 3.0 * length;
    if (p < 0 || w->RowCnt.data[w->Nodes.data[p].row] > LONGEST_ROW) return 0;
    int *rows = w->IndexB.data, count = 0;
    for (int q = first_in_col(w, step.col); q >= 0; q = next_in_col(w, q)) {
        rows[count++] = w->Nodes.data[q].row;
        w->Scratch.data[w->Nodes.data[q].row] = w->Nodes.data[q].value;
    }
    const int end = try_row(w, &seed, p, sets);
    for (int k = 0; k < count; k++) w->Scratch.data[rows[k]] = 0; // the column may be gone
    return end;
}

bool is_candidate(const PresolveWork *w, int k)
{
    return is_live_col(w, k) && w->ColCnt.data[k] > 0 && w->ColFlags.data[k] == 0 &&
           w->Ub.data[k] - w->Lb.data[k] > CLOSED;
}

// All columns: any may dominate one of the list.
int collect_rows(PresolveWork *w, Array<RowSets> *sets)
{
    TRY(array_resize(sets, w->NumCols));
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_live_col(w, j)) continue;
        sets->data[j] = rows_of(w, j);
        w->Work += w->ColCnt.data[j];
        TRY(check_limits(w, w->ColCnt.data[j]));
    }
    return 0;
}
} // namespace

int pre_dominated_columns(PresolveWork *w)
{
    int *list = w->IndexA.data;
    const int count = candidate_cols(w, list);
    if (count == 0) return 0;
    Array<RowSets> sets;
    TRY(collect_rows(w, &sets));
    const double limit = w->Work + WORK_PER_ENTRY * static_cast<double>(w->NumNz);
    for (int k = 0; k < count && w->Work < limit; k++)
        for (const Way way : {DOWN, UP}) {
            const double before = w->Work;
            if (is_candidate(w, list[k])) TRY(try_step(w, {list[k], way}, sets.data));
            TRY(check_limits(w, w->Work - before));
        }
    return 0;
}
