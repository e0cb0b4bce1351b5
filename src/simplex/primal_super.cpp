// primal_super.cpp -- superbasic variables go to a bound or into the basis
//
// Problem     A start from a point leaves superbasic variables: nonbasics strictly between their bounds. The result has
//             to be a vertex, and pricing and the dual simplex assume nonbasics at bounds.
// Method      Superbasics enter before all other columns, one after the other, in the direction of their reduced cost,
//             downwards if it is zero. The usual ratio test decides whether the variable reaches a bound (a bound flip)
//             or a basic variable blocks and leaves. A free variable that no row blocks goes to zero. If neither is
//             possible for numerical reasons the variable is put at its nearest bound, and phase 1 removes the
//             infeasibilities that this causes.
// Invariant   Superbasics is the number of those left; pricing begins when it is 0. It decreases with every step.
// Literature  R. E. Bixby and M. J. Saltzman, "Recovering an optimal LP basis from an interior point solution", OR
//             Letters 15, 1994.
#include "simplex/primal.h"
#include <algorithm>

template<class R> int primal_count_superbasics(sopt *s, swork<R> *w)
{
    int count = 0;
    for (int j = 0; j < s->NumVars; j++) count += is_superbasic(s, j);
    s->Superbasics = count;
    w->Primal->SuperNext = s->NumVars;
    return count;
}

namespace
{
// The direction of the reduced cost; if that is zero, towards a finite bound.
template<class R> int super_direction(const sopt *s, const swork<R> *w, int q)
{
    const R d = w->Cbar.data[q], tol = R(s->OptTol);
    const bool lower = has_lower(s, s->WorkLower.data[q]),
               upper = has_upper(s, s->WorkUpper.data[q]);
    if (d < -tol) return 1;
    if (d > tol) return -1;
    if (lower != upper) return lower ? -1 : 1;
    if (!lower) return s->SuperVal.data[q] > 0 ? -1 : 1; // free: towards zero
    return d < 0 ? 1 : -1;
}
} // namespace

template<class R> void primal_choose_superbasic(sopt *s, swork<R> *w)
{
    popt<R> *p = w->Primal;
    while (p->SuperNext > 0 && !is_superbasic(s, p->SuperNext - 1)) p->SuperNext--;
    if (p->SuperNext == 0) { // repairs of the basis have removed the others
        s->Superbasics = 0;
        p->PivotCol = -1;
        return;
    }
    const int q = p->PivotCol = p->SuperNext - 1;
    load_column(s, q, &w->Alpha);
    Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::YES);
    w->Cbar.data[q] = primal_exact_cbar(s, w);
    p->Direction = super_direction(s, w, q);
}

template<class R> void primal_settle_superbasic(sopt *s, swork<R> *w)
{
    const int q = w->Primal->PivotCol;
    const double lower = s->WorkLower.data[q], upper = s->WorkUpper.data[q],
                 x = s->SuperVal.data[q];
    if (has_lower(s, lower) && (!has_upper(s, upper) || x - lower <= upper - x))
        s->VStat.data[q] = AT_LOWER;
    else if (has_upper(s, upper))
        s->VStat.data[q] = AT_UPPER;
    s->SuperVal.data[q] = 0;
    s->Superbasics--;
    s->RefacReason = REFAC_START; // basic values have to be recomputed
}

template int primal_count_superbasics<double>(sopt *, swork<double> *);

template int primal_count_superbasics<long double>(sopt *, swork<long double> *);

template void primal_choose_superbasic<double>(sopt *, swork<double> *);

template void primal_choose_superbasic<long double>(sopt *, swork<long double> *);

template void primal_settle_superbasic<double>(sopt *, swork<double> *);

template void primal_settle_superbasic<long double>(sopt *, swork<long double> *);
