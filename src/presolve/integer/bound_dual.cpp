// bound_dual.cpp -- columns need not go further than any of their rows can ask
//
// Method      Let x have cost c >= 0 and inequalities only. A row a x + rest <= b with a < 0 asks for x >= (rest - b) / -a,
//             at most for that with the largest activity of the rest. Beyond the largest such value, and its lower
//             bound, x can be decreased without loss. So that value is an upper bound for some optimum. Likewise
//             downwards for c <= 0.
// Integers    The value is rounded up: the last unit may be needed in part, and cost less elsewhere.
// Postsolve   None: points that keep the new bounds keep the old ones.
// Invariant   Other optima may be lost, so the bound depends on the current model only and stays in it.
// Cost        O(entries)
// Literature  T. Achterberg, R. E. Bixby, Z. Gu, E. Rothberg, D. Weninger, "Presolve reductions in mixed integer
//             programming", INFORMS J. Computing 32, 2020.
#include "presolve/errors.h"

namespace
{
constexpr double LARGEST_BOUND = 1e8; // larger ones are of no use
constexpr double LEAST_GAIN = 1000;   // tolerances
constexpr double LEAST_ENTRY = 1e-3;  // smaller entries ask for inaccurate values
// Share by which the bound of a continuous column is moved outwards.
constexpr double SPARE = 1e-6;
// Above an integer by no more than this share, a demand is that integer.
constexpr double ROUNDING = 1e-9;

// How far the row of entry p can ask its column to move. False if there is no limit.
bool demand(const PresolveWork *w, int p, double *t)
{
    const PresolveNode &node = w->Nodes.data[p];
    const int i = node.row, j = node.col;
    const double own = node.value > 0 ? w->Ub.data[j] : w->Lb.data[j]; // in the activity
    const bool absent = std::fabs(own) >= w->INF;
    if (w->Rmaxcnt.data[i] != (absent ? 1 : 0) || std::fabs(node.value) < LEAST_ENTRY)
        return false;
    *t = (absent ? 0 : own) - w->RMax.data[i] / node.value;
    return std::fabs(*t) < LARGEST_BOUND;
}

// The value in direction `sign` beyond which no row asks column j to move. False if there is none.
bool largest_demand(const PresolveWork *w, int j, int sign, double *value)
{
    const double near = sign > 0 ? w->Lb.data[j] : w->Ub.data[j];
    if (std::fabs(near) >= LARGEST_BOUND) return false;
    *value = near;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        double t = 0;
        if (w->Sense.data[node.row] == '=') return false;
        if (sign * node.value > 0) continue; // moving back relaxes the row
        if (!demand(w, p, &t)) return false;
        *value = sign > 0 ? std::max(*value, t) : std::min(*value, t);
    }
    if (is_integer(w, j))
        *value = sign * std::ceil(sign * *value - ROUNDING * (1 + std::fabs(*value))) + 0.0;
    else
        *value += sign * SPARE * (1 + std::fabs(*value));
    return true;
}

int try_column(PresolveWork *w, int j)
{
    const double cost = w->Obj.data[j];
    for (const int sign : {1, -1}) {
        double t = 0;
        if (sign * cost < 0 || !largest_demand(w, j, sign, &t)) continue;
        const double old = sign > 0 ? w->Ub.data[j] : w->Lb.data[j];
        if (sign * (old - t) <= LEAST_GAIN * w->FeasTol) continue;
        change_bounds(w, j, sign > 0 ? w->Lb.data[j] : t, sign > 0 ? t : w->Ub.data[j]);
        w->BoundsChanged++;
        mark_col(w, j);
        mark_rows_of_col(w, j);
        TRY(check_limits(w, 2.0 * w->ColCnt.data[j]));
    }
    return 0;
}
} // namespace

int pre_bound_dual(PresolveWork *w)
{
    int *list = w->IndexA.data;
    const int count = candidate_cols(w, list);
    for (int k = 0; k < count; k++) {
        const int j = list[k];
        TRY(check_limits(w, 1 + std::max(0, w->ColCnt.data[j])));
        w->Work += 2.0 * std::max(0, w->ColCnt.data[j]);
        if (w->ColCnt.data[j] >= 2 && w->ColFlags.data[j] == 0) TRY(try_column(w, j));
    }
    return 0;
}
