// release_slacks.cpp -- slacks of equations leave an optimal basis
//
// Problem     The slack of an equation may be basic at zero in an optimal basis; the dual value of the row is zero
//             then. A caller that wants a nonzero dual value for the row needs the slack to be nonbasic.
// Method      A dual simplex pivot with primal step zero: the slack leaves, and as its reduced cost may have any sign
//             both directions are allowed. Of the variables in its tableau row the one enters whose reduced cost
//             reaches zero first; of those nearly as close, the one with the largest entry. An empty tableau row
//             belongs to an equation that depends on others: its slack stays basic.
// Cost        One BTRAN, one tableau row, one FTRAN and an update per slack.
#include "simplex/simplex.h"
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr double SLOPPY = 1e-3;         // share of OptTol that a reduced cost may pass zero
constexpr double RELATIVE_PIVOT = 1e-6; // least entry over the largest of the tableau row
constexpr double AGREEMENT = 1e-6;      // of the pivot by row and by column

// The position of the entering variable in the packed row, or -1.
template<class R> int choose_entering(const sopt *s, const swork<R> *w)
{
    const R tol = R(SLOPPY * s->OptTol);
    R largest = 0, bound = R(s->Infinity);
    for (int k = 0; k < w->RowCount; k++)
        largest = std::max(largest, std::abs(w->RowVal.data[k]));
    const R floor = std::max(pivot_floor(w), R(RELATIVE_PIVOT) * largest);
    for (int k = 0; k < w->RowCount; k++) {
        const R a = std::abs(w->RowVal.data[k]),
                d = std::abs(w->Cbar.data[w->RowInd.data[k]]);
        if (a > floor && d + tol < bound * a) bound = (d + tol) / a;
    }
    R best = 0;
    int place = -1;
    for (int k = 0; k < w->RowCount; k++) {
        const R a = std::abs(w->RowVal.data[k]),
                d = std::abs(w->Cbar.data[w->RowInd.data[k]]);
        if (a <= floor || a <= best || d > bound * a) continue;
        best = a;
        place = k;
    }
    return place;
}

template<class R> int release(sopt *s, swork<R> *w, int slack)
{
    const int r = s->VStat.data[slack];
    svec_unit(&w->Rho, r, R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::YES);
    compute_row(s, w);
    const int k = choose_entering(s, w);
    if (k < 0) return 0;
    const int q = w->RowInd.data[k];
    const R pivot = w->RowVal.data[k], theta = w->Cbar.data[q] / pivot;
    load_column(s, q, &w->Alpha);
    Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::YES);
    const R check = w->Alpha.Value.data[r];
    if (std::abs(check - pivot) > R(AGREEMENT) * std::abs(pivot)) return 0;
    for (int p = 0; p < w->RowCount; p++)
        w->Cbar.data[w->RowInd.data[p]] -= theta * w->RowVal.data[p];
    w->Cbar.data[q] = 0;
    w->Cbar.data[slack] = -theta;
    swap_basis(s, r, q, AT_FIXED);
    s->NPvt++;
    s->Work++;
    s->WorkUnits += 3.0 * w->Alpha.Count + w->RowCount;
    const bool updated = UpdateFactor(&w->Lu, r, check) == UPDATE_DONE;
    return updated && !wants_refactor(s, w) ? 0 : Refactor(s, w);
}

template<class R> int release_all(sopt *s, swork<R> *w, const char *rows)
{
    if (!has_factor(s, w)) TRY(Refactor(s, w));
    row_copy_partition(s);
    for (int i = 0; i < s->NumRows && s->Status == SIMPLEX_OPTIMAL; i++) {
        const int slack = s->NumCols + i;
        if (!rows[i] || !is_basic(s, slack) || s->Upper.data[slack] != 0) continue;
        if (env_stop_requested(s->Env)) break;
        TRY(release(s, w, slack));
    }
    if (w->Lu.NumUpdates > 0) TRY(Refactor(s, w));
    finish_values(s, w);
    return 0;
}
} // namespace

int simplex_release_slacks(sopt *s, const char *rows)
{
    if (s->Status != SIMPLEX_OPTIMAL) return 0;
    TRY(s->Quad ? release_all(s, s->Extended, rows) : release_all(s, s->Double, rows));
    s->Obj = s->Quad ? true_objective(s, s->Extended) : true_objective(s, s->Double);
    return 0;
}
