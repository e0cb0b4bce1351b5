// dual_slack.cpp -- inequalities whose slack is zero in some optimum, as several columns together can use it up
//
// Method      Let J be columns of a x <= b whose step that raises the activity costs nothing and is blocked by no other row.
//             If the activity is at least b with J at the ends of these steps and all other columns at their worst, some
//             column of J can still move wherever the slack is positive. So the row becomes an equation. The steps have
//             to be as fine as the slack: J is continuous, or of integer columns whose coefficient divides all others and
//             the side.
//             pre_ineq_to_eq does the same with one column.
// Safety      Other optima may be lost. Bounds do not change; a column of a row that has become an equation is in J no more.
// Postsolve   None: a model with integers has no dual values to be restored.
// Cost        O(entries)
#include "presolve/errors.h"

namespace
{
constexpr double NO_COST = 1e-10;
constexpr double SHORT = 1e-3; // by which J may fail to use up the slack, in tolerances
constexpr double CLOSED = 1e-10;
constexpr int GRAIN_TESTS = 3; // coefficients of a row that are tried
constexpr int NONE = -1, MANY = -2;

// The rows that block a column upwards and downwards: a row, NONE or MANY.
struct Blocks {
    int *up, *down; // [NumCols]
};

void block(int *by, int row)
{
    *by = *by == NONE ? row : MANY;
}

void find_blocks(const PresolveWork *w, int j, Blocks b)
{
    const double cost = w->Obj.data[j], none = no_cost(w, j, NO_COST);
    const bool open = w->ColFlags.data[j] == 0 && w->Ub.data[j] - w->Lb.data[j] > CLOSED;
    b.up[j] = open && cost <= none ? NONE : MANY;
    b.down[j] = open && cost >= -none ? NONE : MANY;
    for (int p = first_in_col(w, j); p >= 0 && (b.up[j] != MANY || b.down[j] != MANY);
         p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        if (w->Sense.data[node.row] == '=' || node.value > 0) block(&b.up[j], node.row);
        if (w->Sense.data[node.row] == '=' || node.value < 0) block(&b.down[j], node.row);
    }
}

// Which integer columns of a row are fine enough; only those of one coefficient are.
struct Grain {
    double size = 0; // that coefficient, 0 if not known
    int tests = GRAIN_TESTS;
};

bool is_fine(const PresolveWork *w, int p, Grain *grain)
{
    const double size = std::fabs(w->Nodes.data[p].value);
    if (!is_integer(w, w->Nodes.data[p].col) || size == grain->size) return true; // exactly
    if (grain->size > 0 || grain->tests-- == 0 || !keeps_integers(w, p)) return false;
    grain->size = size;
    return true;
}

// True if the row becomes tight: what J can add to its least activity covers the side.
bool uses_up(const PresolveWork *w, int i, Blocks b)
{
    double most = w->RMin.data[i];
    int infinite = w->Rmincnt.data[i];
    Grain grain;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const int j = node.col, blocked = node.value > 0 ? b.up[j] : b.down[j];
        if (blocked != i || !is_fine(w, p, &grain)) continue;
        const double low = node.value > 0 ? w->Lb.data[j] : w->Ub.data[j],
                     high = node.value > 0 ? w->Ub.data[j] : w->Lb.data[j];
        if (std::fabs(high) >= w->INF) continue; // left to pre_ineq_to_eq
        const bool absent = std::fabs(low) >= w->INF;
        infinite -= absent;
        most += node.value * (absent ? high : high - low);
    }
    return infinite == 0 && most >= -SHORT * w->FeasTol;
}

void become_equation(PresolveWork *w, int i, Blocks b)
{
    w->Sense.data[i] = '=';
    w->IneqToEq++;
    mark_row(w, i);
    mark_cols_of_row(w, i);
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        b.up[w->Nodes.data[p].col] = b.down[w->Nodes.data[p].col] = MANY;
}
} // namespace

int pre_dual_slack(PresolveWork *w)
{
    const int count = candidate_rows(w, w->IndexA.data);
    if (count == 0) return 0;
    const Blocks blocks = {w->IndexB.data, w->IndexC.data};
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_live_col(w, j)) continue;
        find_blocks(w, j, blocks);
        w->Work += w->ColCnt.data[j];
        TRY(check_limits(w, 1 + w->ColCnt.data[j]));
    }
    for (int k = 0; k < count; k++) {
        const int i = w->IndexA.data[k];
        w->Work += w->RowCnt.data[i];
        TRY(check_limits(w, 1 + w->RowCnt.data[i]));
        if (w->Sense.data[i] == '<' && uses_up(w, i, blocks)) become_equation(w, i, blocks);
    }
    return 0;
}
