// implied.cpp -- the bounds of one column that its rows imply
//
// Method      In a row a x_j + rest <= b the least activity of the rest bounds a x_j from above; in an equation its
//             greatest activity also bounds it from below. Both are at hand: the activity of the whole row less the
//             column's own term, or the finite part when that term is the only infinite one.
// Out         Bounds that hold for every point that satisfies the rows and the bounds of the *other* columns. Whoever
//             drops a bound of j on this ground must let the activities know before another column is judged.
// Cost        O(entries of the column)
#include "presolve/work.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double SMALL_ENTRY = 1e-9; // says nothing reliable
constexpr double LARGE_ERROR = 10; // tolerances: neither does a row that is off by so much

// What is left for a x_j when the other terms of a row sum to their extreme: -(sum of the others) / a, given the sum
// over all and the bound of j that entered it. False when others are infinite.
bool rest_over(double sum, int infinite, double bound, double a, double absent, double *t)
{
    const bool own = bound <= -absent || bound >= absent;
    if (infinite > (own ? 1 : 0)) return false;
    *t = own ? -sum / a : bound - sum / a;
    return true;
}
} // namespace

ImpliedBounds implied_bounds(const PresolveWork *w, int j)
{
    ImpliedBounds b = {-w->INF, w->INF};
    const double lb = w->Lb.data[j], ub = w->Ub.data[j];
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        const double a = w->Nodes.data[p].value;
        if (std::fabs(a) < SMALL_ENTRY || w->RhsErr.data[i] > LARGE_ERROR * w->FeasTol)
            continue;
        const double in_min = a > 0 ? lb : ub, in_max = a > 0 ? ub : lb;
        double t = 0;
        if (rest_over(w->RMin.data[i], w->Rmincnt.data[i], in_min, a, w->INF, &t)) {
            if (a > 0)
                b.ub = std::min(b.ub, t);
            else
                b.lb = std::max(b.lb, t);
        }
        if (w->Sense.data[i] == '=' &&
            rest_over(w->RMax.data[i], w->Rmaxcnt.data[i], in_max, a, w->INF, &t)) {
            if (a > 0)
                b.lb = std::max(b.lb, t);
            else
                b.ub = std::min(b.ub, t);
        }
    }
    if (!is_integer(w, j)) return b;
    if (b.lb > -w->INF) b.lb = std::ceil(b.lb - w->IntTol);
    if (b.ub < w->INF) b.ub = std::floor(b.ub + w->IntTol);
    return b;
}
