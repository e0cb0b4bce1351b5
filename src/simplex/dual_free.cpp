// dual_free.cpp -- free columns enter the basis before the dual starts
//
// Problem     A nonbasic free variable is dual infeasible unless its reduced cost is zero, and has no bound to flip to.
// Method      Such a column replaces the basic variable with a finite lower bound in whose row it has its largest
//             entry. Once basic it never has to leave. Columns without a usable pivot are left to phase 1.
// Cost        One FTRAN, one BTRAN and an update per column.
#include "simplex/dual.h"

namespace
{
constexpr double RELATIVE_PIVOT = 1e-5; // least pivot over the largest entry of the column

// The basis position to enter at, or -1.
template<class R> int choose_position(const sopt *s, const swork<R> *w)
{
    R largest = 0, best = 0;
    int place = -1;
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        const R a = std::abs(w->Alpha.Value.data[i]);
        largest = std::max(largest, a);
        if (a <= best || !has_lower(s, s->Lower.data[s->BasisHead.data[i]])) continue;
        best = a;
        place = i;
    }
    return best > R(s->PivotTol) && best > R(RELATIVE_PIVOT) * largest ? place : -1;
}

template<class R> int enter_column(sopt *s, swork<R> *w, int j)
{
    load_column(s, j, &w->Alpha);
    Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::YES);
    const int r = choose_position(s, w);
    if (r < 0) return 0;
    svec_unit(&w->Rho, r, R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::YES);
    const int leaving = s->BasisHead.data[r];
    const bool fixed = s->Lower.data[leaving] == s->Upper.data[leaving];
    swap_basis(s, r, j, fixed ? AT_FIXED : AT_LOWER);
    s->NPvt++;
    s->Work++;
    const int result = UpdateFactor(&w->Lu, r, w->Alpha.Value.data[r]);
    if (result == UPDATE_DONE && !wants_refactor(s, w)) return 0;
    TRY(Refactor(s, w));
    log_free(s);
    return 0;
}
} // namespace

template<class R> int dual_enter_free(sopt *s, swork<R> *w)
{
    const R tol = R(s->OptTol);
    for (int j = 0; j < s->NumCols; j++) {
        if (is_basic(s, j) || has_lower(s, s->Lower.data[j]) ||
            std::abs(w->Cbar.data[j]) <= tol)
            continue;
        if (limit_reached(s)) return 0;
        TRY(enter_column(s, w, j));
        if (s->Status != SIMPLEX_RUNNING) return 0;
    }
    return 0;
}

template int dual_enter_free<double>(sopt *, swork<double> *);
template int dual_enter_free<long double>(sopt *, swork<long double> *);
