// dual_update.cpp -- update of basic values and reduced costs in a dual simplex iteration
//
// With p = alpha_r the pivot, theta_d = d_q / p and theta_p = Delta / p:
//   flips             Bbar -= B^-1 sum a_j (change of x_j)
//   basic values      Bbar_i -= theta_p alpha_i
//   reduced costs     d_j -= theta_d (row entry of j), d_leaving = -theta_d
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double UNIT_ROUNDOFF = 1.2e-16; // of doubles, rounded up

template<class R> double largest_entry(const SVec<R> *x)
{
    R largest = 0;
    for (int k = 0; k < x->Count; k++)
        largest = std::max(largest, std::abs(x->Value.data[x->Index.data[k]]));
    for (int i = 0; i < x->Dim && x->Count < 0; i++)
        largest = std::max(largest, std::abs(x->Value.data[i]));
    return static_cast<double>(largest);
}

// A live record's basic values move by at most `step`.
void count_step(sopt *s, double step)
{
    s->ValueSize += step;
    s->ValueNoise += UNIT_ROUNDOFF * step;
}

// Bbar -= factor x.
template<class R> void subtract(swork<R> *w, R factor, const SVec<R> *x)
{
    R *__restrict bbar = w->Bbar.data;
    const R *__restrict value = x->Value.data;
    if (!svec_is_short(x)) {
        for (int i = 0; i < x->Dim; i++) bbar[i] -= factor * value[i];
        return;
    }
    for (int k = 0; k < x->Count; k++) {
        const int i = x->Index.data[k];
        bbar[i] -= factor * value[i];
    }
}

} // namespace

template<class R> void dual_subtract_row(const sopt *s, swork<R> *w, R theta)
{
    R *__restrict cbar = w->Cbar.data;
    const int *__restrict ind = w->RowInd.data;
    const R *__restrict val = w->RowVal.data;
    for (int k = 0; k < w->RowCount; k++) cbar[ind[k]] -= theta * val[k];
    if (!tracks_objective(s)) return;
    // The packed row has no fixed slacks, but their reduced costs are the multipliers of the rows, which bounds and
    // later re-solves need.
    for (int k = 0; k < w->Rho.Count; k++) {
        const int slack = s->NumCols + w->Rho.Index.data[k];
        if (s->VStat.data[slack] == AT_FIXED)
            cbar[slack] -= theta * w->Rho.Value.data[w->Rho.Index.data[k]];
    }
}

template<class R> void dual_add_column(const sopt *s, SVec<R> *x, int j, R factor)
{
    if (j >= s->NumCols) {
        svec_add(x, j - s->NumCols, factor);
        return;
    }
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        svec_add(x, s->ColInd.data[p], R(s->ColVal.data[p]) * factor);
}

template<class R> void dual_load_flips(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    svec_clear(&w->Work);
    for (int k = 0; k < d->FlipCount; k++) {
        const int j = d->Flips.data[k];
        const R range = R(s->WorkUpper.data[j]) - R(s->WorkLower.data[j]);
        dual_add_column(s, &w->Work, j, s->VStat.data[j] == AT_LOWER ? range : -range);
    }
    s->Work += d->FlipCount;
}

template<class R> void dual_apply_flips(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    if (d->FlipCount == 0) return;
    for (int k = 0; k < d->FlipCount; k++) {
        const int j = d->Flips.data[k];
        int *status = &s->VStat.data[j];
        const double range = s->WorkUpper.data[j] - s->WorkLower.data[j];
        dual_add_objective(s, static_cast<double>(w->Cbar.data[j]) *
                                  (*status == AT_LOWER ? range : -range));
        *status = *status == AT_LOWER ? AT_UPPER : AT_LOWER;
    }
    if (s->Live) count_step(s, largest_entry(&w->Work));
    subtract(w, R(1), &w->Work);
    if (svec_is_short(&w->Alpha))
        dual_set_merits(s, w, &w->Work); // otherwise dual_update_values sets all merits
    svec_clear(&w->Work);
}

template<class R> void dual_move_values(sopt *s, swork<R> *w)
{
    count_step(s, largest_entry(&w->Work));
    subtract(w, R(1), &w->Work);
    dual_set_merits(s, w, &w->Work);
    svec_clear(&w->Work);
}

template<class R> void dual_update_values(sopt *s, swork<R> *w)
{
    dopt<R> *d = w->Dual;
    const int r = d->PivotRow, leaving = s->BasisHead.data[r];
    const R theta = d->ThetaPrimal;
    dual_add_objective(s, static_cast<double>(w->Cbar.data[d->PivotCol] * theta));
    if (s->Live)
        count_step(s,
                   std::fabs(static_cast<double>(theta)) * (1 + largest_entry(&w->Alpha)) +
                       std::fabs(nonbasic_value(s, d->PivotCol)));
    subtract(w, theta, &w->Alpha);
    dual_set_merits(s, w, &w->Alpha);
    w->Bbar.data[r] = R(nonbasic_value(s, d->PivotCol)) + theta;
    s->DualNoise += UNIT_ROUNDOFF * std::fabs(static_cast<double>(d->ThetaDual));
    // assigned zero when the step is degenerate
    if (d->ThetaDual != R(0)) dual_subtract_row(s, w, d->ThetaDual);
    w->Cbar.data[d->PivotCol] = R(0);
    w->Cbar.data[leaving] = -d->ThetaDual;
    s->WorkUnits += 3.0 * w->Alpha.Count + w->RowCount;
}

#define INSTANTIATE(R)                                                                     \
    template void dual_add_column<R>(const sopt *, SVec<R> *, int, R);                     \
    template void dual_subtract_row<R>(const sopt *, swork<R> *, R);                       \
    template void dual_move_values<R>(sopt *, swork<R> *);                                 \
    template void dual_load_flips<R>(sopt *, swork<R> *);                                  \
    template void dual_apply_flips<R>(sopt *, swork<R> *);                                 \
    template void dual_update_values<R>(sopt *, swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
