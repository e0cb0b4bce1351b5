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

// What is left for a x_j when the other terms of a row sum to their extreme: -(sum of the others) / a, given the sum
// over all and the bound of j that entered it. Absent: not finite.
double rest_over(double sum, int infinite, double bound, double a, double absent)
{
    const bool own = bound <= -absent || bound >= absent;
    if (infinite > (own ? 1 : 0)) return NAN;
    return own ? -sum / a : bound - sum / a;
}
} // namespace

ImpliedBounds implied_bounds(const PresolveWork *w, int j)
{
    ImpliedBounds b = {-w->INF, w->INF};
    const double lb = w->Lb.data[j], ub = w->Ub.data[j];
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        const double a = w->Nodes.data[p].value;
        if (std::fabs(a) < SMALL_ENTRY) continue;
        const double from_min =
            rest_over(w->RMin.data[i], w->Rmincnt.data[i], a > 0 ? lb : ub, a, w->INF);
        const double from_max =
            w->Sense.data[i] == '='
                ? rest_over(w->RMax.data[i], w->Rmaxcnt.data[i], a > 0 ? ub : lb, a, w->INF)
                : NAN;
        b.ub =
            std::fmin(b.ub, a > 0 ? from_min : from_max); // of a number and NAN: the number
        b.lb = std::fmax(b.lb, a > 0 ? from_max : from_min);
    }
    if (!is_integer(w, j)) return b;
    if (b.lb > -w->INF) b.lb = std::ceil(b.lb - w->IntTol);
    if (b.ub < w->INF) b.ub = std::floor(b.ub + w->IntTol);
    return b;
}
