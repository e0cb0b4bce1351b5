// dominated_columns.cpp -- columns that another column can always replace without loss
//
// Method      A step of x_j in its direction s together with a step of x_k in the direction t costs nothing, violates no
//             inequality and keeps every equation: s c_j + t c_k <= 0, s a_ij + t a_ik <= 0, = 0 in equations. If x_j has
//             no bound in direction s, or only one that rows imply, such steps are possible until x_k is at its bound
//             in direction t, where it is fixed. If x_j is integer, so is x_k, so that the steps are whole.
// Search      x_j has to share a row with x_k: one that a step of x_j alone would violate, or else one that it relaxes. The
//             shortest such row gives the candidates.
// Postsolve   That of fixing.
// Safety      Other optima may be lost. The bound of x_j stays in the model.
// Cost        O(entries of the two columns) per pair, limited to a multiple of the entries of the model
// Literature  G. Gamrath, T. Koch, A. Martin, M. Miltenberger, D. Weninger, "Progress in presolving for mixed integer
//             programming", Math. Prog. Comp. 7, 2015.
#include "presolve/errors.h"
#include "presolve/reduce/aggregate.h"

namespace
{
constexpr double WORK_PER_ENTRY = 10; // limit of the effort
constexpr int LONGEST_ROW = 1000;     // candidates of one column
constexpr double CLOSED =
    1e-10; // columns with a smaller range are fixed by other reductions

// Column j, in Scratch, and the direction in which it is free.
struct Dominating {
    int col, way, length;
    bool is_integer;
};

// No bound in this direction, or one that rows imply.
bool is_open(const PresolveWork *w, int j, int way)
{
    if (way > 0 ? !has_ub(w, j) : !has_lb(w, j)) return true;
    return (bounds_that_matter(w, j) & (way > 0 ? UPPER_MATTERS : LOWER_MATTERS)) == 0;
}

// The row whose columns are candidates, or -1.
int pick_row(const PresolveWork *w, int j, int way)
{
    int best = -1;
    bool needed = false;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        const bool needs = w->Sense.data[i] == '=' || way * w->Nodes.data[p].value > 0;
        if (needed && !needs) continue;
        if (best >= 0 && needs == needed && w->RowCnt.data[i] >= w->RowCnt.data[best])
            continue;
        best = i;
        needed = needs;
    }
    return best >= 0 && w->RowCnt.data[best] <= LONGEST_ROW ? best : -1;
}

// True if the step of column k in direction `way` together with that of the dominating one hurts nothing.
bool fits(const PresolveWork *w, const Dominating *d, int k, int way)
{
    if (d->way * w->Obj.data[d->col] + way * w->Obj.data[k] > 0) return false;
    int met = 0;
    for (int p = first_in_col(w, k); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const double own = w->Scratch.data[node.row];
        const double step = d->way * own + way * node.value;
        if (step > 0 || (step < 0 && w->Sense.data[node.row] == '=')) return false;
        met += own != 0; // scattered
    }
    if (met == d->length) return true;
    // Rows of the dominating column alone.
    for (int p = first_in_col(w, k); p >= 0; p = next_in_col(w, p))
        w->ScratchB.data[w->Nodes.data[p].row] = 1;
    bool good = true;
    for (int p = first_in_col(w, d->col); p >= 0 && good; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        good = w->ScratchB.data[node.row] != 0 ||
               (w->Sense.data[node.row] != '=' && d->way * node.value < 0);
    }
    for (int p = first_in_col(w, k); p >= 0; p = next_in_col(w, p))
        w->ScratchB.data[w->Nodes.data[p].row] = 0;
    return good;
}

bool may_fix(const PresolveWork *w, const Dominating *d, int k)
{
    return k != d->col && is_live_col(w, k) && w->ColFlags.data[k] == 0 &&
           w->Ub.data[k] - w->Lb.data[k] > CLOSED && (!d->is_integer || is_integer(w, k));
}

int try_candidate(PresolveWork *w, const Dominating *d, int k)
{
    if (!may_fix(w, d, k)) return 0;
    w->Work += w->ColCnt.data[k] + 2;
    for (const int way : {-1, 1}) {
        if ((way > 0 ? !has_ub(w, k) : !has_lb(w, k)) || !fits(w, d, k, way)) continue;
        w->Work += d->length + 2.0 * w->ColCnt.data[k];
        return way > 0 ? fix_at_upper(w, k) : fix_at_lower(w, k);
    }
    return 0;
}

void scatter(PresolveWork *w, int j, bool clear)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p))
        w->Scratch.data[w->Nodes.data[p].row] = clear ? 0 : w->Nodes.data[p].value;
}

// Fixes what column j dominates by steps in this direction. cols: room for the candidates.
int try_direction(PresolveWork *w, int j, int way, int *cols)
{
    const int i = pick_row(w, j, way);
    if (i < 0 || !is_open(w, j, way)) return 0;
    const Dominating d = {j, way, w->ColCnt.data[j], is_integer(w, j)};
    int count = 0, error = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        cols[count++] = w->Nodes.data[p].col;
    scatter(w, j, false);
    for (int k = 0; k < count && !error; k++) {
        error = try_candidate(w, &d, cols[k]);
        if (!error) error = check_limits(w, 1.0 + std::max(0, w->ColCnt.data[cols[k]]));
    }
    scatter(w, j, true);
    w->Work += 3.0 * d.length;
    return error;
}
} // namespace

int pre_dominated_columns(PresolveWork *w)
{
    int *list = w->IndexA.data;
    const int count = candidate_cols(w, list);
    const double limit = w->Work + WORK_PER_ENTRY * static_cast<double>(w->NumNz);
    for (int k = 0; k < count && w->Work < limit; k++)
        for (const int way : {1, -1}) {
            const int j = list[k];
            if (!is_live_col(w, j) || w->ColCnt.data[j] == 0 || w->ColFlags.data[j])
                continue;
            w->Work += 2.0 * w->ColCnt.data[j];
            TRY(try_direction(w, j, way, w->IndexB.data));
        }
    return 0;
}
