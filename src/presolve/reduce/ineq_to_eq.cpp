// ineq_to_eq.cpp -- inequalities that some optimum satisfies with equality become equations
//
// Method      Column j can increase at no cost, and only one row a x <= b blocks that before its upper bound; all its
//             other rows are relaxed. So it can be increased until that row is tight. Likewise downwards. Equations are
//             useful for the reductions that substitute columns.
// Postsolve   No undo record is needed: the column has no upper bound, or is never at it, so its reduced cost
//             c_j - y_r a - (other rows, not negative) is not negative, hence y_r <= 0. The other rows count as
//             inequalities even if they become equations later, since postsolve restores their signs first.
//             A model with integers has no dual values to be restored, so that the column may also end at its bound.
// Invariant   The bound of the column may be ignored if the row stops the column before it, in an LP by more than the
//             tolerance. Bounds do not change, so that no other reduction can depend on this.
// Cost        O(entries of the columns and of the converted rows)
#include "presolve/errors.h"

namespace
{
constexpr double CLOSED = 1e-10;

constexpr double NO_COST = 1e-10;

constexpr double AWAY = 10; // tolerances of the row between the column and its bound
constexpr double IMPLIED =
    1e-9; // in a model with integers, by which the row may stop the column too late

// Smallest entry relative to the largest of the row; with a smaller one the value of the column could become huge.
constexpr double SMALL_RATIO = 1e-3;

constexpr int NONE = -1, MANY = -2;

// The only entry that blocks a column in a direction; NONE or MANY if there is not exactly one.
struct Blocks {
    int up, down;
};

void count_block(int *block, int p)
{
    *block = *block == NONE ? p : MANY;
}

Blocks find_blocks(const PresolveWork *w, int j)
{
    const double cost = w->Obj.data[j], none = no_cost(w, j, NO_COST);
    Blocks b = {cost > none ? MANY : NONE, cost < -none ? MANY : NONE};
    for (int p = first_in_col(w, j); p >= 0 && (b.up != MANY || b.down != MANY);
         p = next_in_col(w, p)) {
        if (w->Sense.data[w->Nodes.data[p].row] == '=') return {MANY, MANY};
        count_block(w->Nodes.data[p].value > 0 ? &b.up : &b.down, p);
    }
    return b;
}

// True if the row of entry p blocks its column before the column's own bound; well before it if dual values matter.
bool stops_first(const PresolveWork *w, int p, const ImpliedBounds *implied)
{
    const int j = w->Nodes.data[p].col;
    const double a = w->Nodes.data[p].value;
    if (a > 0 ? !has_ub(w, j) : !has_lb(w, j)) return true;
    const double away = a > 0 ? w->Ub.data[j] - implied->ub : implied->lb - w->Lb.data[j];
    if (w->IsMip) return away > -IMPLIED;
    return std::fabs(a) * away > AWAY * w->FeasTol && away > AWAY * w->FeasTol;
}

// largest[i]: the largest entry of row i, 0 when it is not known yet.
bool is_large(PresolveWork *w, int p, double *largest)
{
    const PresolveNode &node = w->Nodes.data[p];
    if (largest[node.row] == 0) { // not computed
        for (int q = first_in_row(w, node.row); q >= 0; q = next_in_row(w, q))
            largest[node.row] =
                std::max(largest[node.row], std::fabs(w->Nodes.data[q].value));
        w->Work += w->RowCnt.data[node.row];
    }
    return std::fabs(node.value) >= SMALL_RATIO * largest[node.row];
}

void try_column(PresolveWork *w, int j, double *largest)
{
    const Blocks b = find_blocks(w, j);
    if (b.up < 0 && b.down < 0) return;
    const ImpliedBounds implied = implied_bounds(w, j);
    int best = -1;
    for (const int p : {b.up, b.down}) {
        if (p < 0 || !stops_first(w, p, &implied)) continue;
        if (!keeps_integers(w, p) || !is_large(w, p, largest)) continue;
        const int i = w->Nodes.data[p].row;
        if (best < 0 || w->RowCnt.data[i] < w->RowCnt.data[w->Nodes.data[best].row])
            best = p;
    }
    if (best < 0) return;
    const int i = w->Nodes.data[best].row;
    w->Sense.data[i] = '=';
    w->IneqToEq++;
    mark_row(w, i);
    mark_cols_of_row(w, i);
}
} // namespace

int pre_ineq_to_eq(PresolveWork *w)
{
    int *list = w->IndexA.data;
    const int count = candidate_cols_by_sense(w, SENSE_LESS | SENSE_EQUAL, list);
    w->Work += 5.0 * count * static_cast<double>(w->NumNz) / (w->NumCols + 1);
    for (int k = 0; k < count; k++) {
        const int j = list[k];
        TRY(check_limits(w, 1 + std::max(0, w->ColCnt.data[j])));
        if (w->ColCnt.data[j] > 0 && !w->ColFlags.data[j] &&
            w->Ub.data[j] - w->Lb.data[j] > CLOSED)
            try_column(w, j, w->ScratchB.data);
    }
    std::fill_n(w->ScratchB.data, w->NumRows, 0.0);
    return 0;
}
