// implied.cpp -- the bounds of one column implied by its rows
//
// Method      In a row a x_j + rest <= b the minimal activity of the rest bounds a x_j from above; in an equation its
//             maximal activity also bounds it from below. Both follow from the activity of the row minus the term of
//             the column, or from its finite part if that term is the only infinite one.
// Out         Bounds that hold for every point that satisfies the rows and the bounds of the *other* columns. A
//             reduction that removes a bound of j for this reason has to update the activities before it considers
//             another column.
// Cost        O(entries of the column)
#include "presolve/integral.h"

namespace
{
constexpr double SMALL_ENTRY = 1e-9; // smaller entries imply no reliable bound
// ... of a model with integers, whose solutions are not repaired after postsolve: violations grow by a thousand at most
constexpr double SMALL_ENTRY_MIP = 1e-3;
constexpr double LARGE_ERROR = 10; // nor do rows with an error of this many tolerances

// The bound of x_j if the other terms of a row have their extreme sum: -(sum of the others) / a, from the sum over all
// and the bound of j in it. False if other terms are infinite.
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
    const double lb = w->Lb.data[j], ub = w->Ub.data[j],
                 small = w->IsMip ? SMALL_ENTRY_MIP : SMALL_ENTRY;
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        const double a = w->Nodes.data[p].value;
        if (std::fabs(a) < small || w->RhsErr.data[i] > LARGE_ERROR * w->FeasTol) continue;
        const double in_min = a > 0 ? lb : ub, in_max = a > 0 ? ub : lb;
        double t = 0;
        if (rest_over(w->RMin.data[i], w->Rmincnt.data[i], in_min, a, w->INF, &t)) {
            if (a > 0)
                b.ub = std::min(b.ub, upper_from_row(w, i, j, a, t));
            else
                b.lb = std::max(b.lb, lower_from_row(w, i, j, a, t));
        }
        if (w->Sense.data[i] == '=' &&
            rest_over(w->RMax.data[i], w->Rmaxcnt.data[i], in_max, a, w->INF, &t)) {
            if (a > 0)
                b.lb = std::max(b.lb, lower_from_row(w, i, j, a, t));
            else
                b.ub = std::min(b.ub, upper_from_row(w, i, j, a, t));
        }
    }
    return b;
}
