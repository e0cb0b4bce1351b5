// live_query.cpp -- results of a live record, in the units of the body, read without copies
#include "simplex/dual.h"
#include <algorithm>
#include <cmath>

namespace
{
double basic_value(const sopt *s, int r)
{
    return s->Quad ? static_cast<double>(s->Extended->Bbar.data[r])
                   : s->Double->Bbar.data[r];
}

// A value of the working LP in that of the body, with its sign.
double signed_unit(const sopt *s, int k)
{
    return k < s->NumCols ? s->ColScale.data[k] : 1 / s->RowScale.data[k - s->NumCols];
}

double minus_multiplier(const sopt *s, int i)
{
    return s->Quad ? static_cast<double>(minus_multiplier(s, s->Extended, i))
                   : minus_multiplier(s, s->Double, i);
}
} // namespace

int simplex_num_rows(const sopt *s)
{
    return s->NumRows;
}

int simplex_basic(const sopt *s, int r)
{
    return s->BasisHead.data[r];
}

bool simplex_is_basic(const sopt *s, int k)
{
    return is_basic(s, k);
}

double simplex_value(const sopt *s, int k)
{
    const double x =
        is_basic(s, k) ? basic_value(s, s->VStat.data[k]) : nonbasic_value(s, k);
    return x * signed_unit(s, k);
}

// That of a fixed variable is computed from the multipliers, as it is not updated.
double simplex_reduced_cost(const sopt *s, int j)
{
    if (is_basic(s, j)) return 0;
    const double d = s->Quad ? static_cast<double>(live_reduced_cost(s, s->Extended, j))
                             : live_reduced_cost(s, s->Double, j);
    return d / (s->ColScale.data[j] * s->ObjScale);
}

double simplex_pi(const sopt *s, int i)
{
    return -minus_multiplier(s, i) * s->RowScale.data[i] / s->ObjScale;
}

namespace
{
// A vector of extended precision is copied to RowWork.
const double *as_double(sopt *, const SVec<double> *v)
{
    return v->Value.data;
}

const double *as_double(sopt *s, const SVec<long double> *v)
{
    for (int k = 0; k < v->Count; k++) {
        const int i = v->Index.data[k];
        s->RowWork.data[i] = static_cast<double>(v->Value.data[i]);
    }
    return s->RowWork.data;
}

template<class R> LiveVector view(sopt *s, const SVec<R> *v, double factor)
{
    return {v->Count, v->Index.data, as_double(s, v), s->RowScale.data, factor};
}

template<class R> LiveVector inverse_row(sopt *s, swork<R> *w, int k)
{
    svec_unit(&w->Rho, s->VStat.data[k], R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::NO);
    s->Proof = PROOF_NONE; // its multipliers were in Rho
    return view(s, &w->Rho, signed_unit(s, k));
}

template<class R> LiveEntries tableau_row(sopt *s, swork<R> *w, int k)
{
    svec_unit(&w->Rho, s->VStat.data[k], R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::NO);
    s->Proof = PROOF_NONE; // its multipliers were in Rho
    compute_row(s, w);
    const double unit = signed_unit(s, k);
    for (int p = 0; p < w->RowCount; p++) {
        const int j = s->QueryVar.data[p] = w->RowInd.data[p];
        s->QueryVal.data[p] =
            static_cast<double>(w->RowVal.data[p]) * unit / signed_unit(s, j);
    }
    return {w->RowCount, s->QueryVar.data, s->QueryVal.data};
}

template<class R> LiveEntries tableau_column(sopt *s, swork<R> *w, int j)
{
    load_column(s, j, &w->Alpha);
    Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::NO);
    const double unit = signed_unit(s, j);
    int count = 0;
    for (int r = 0; r < s->NumRows; r++) {
        if (w->Alpha.Value.data[r] == R(0)) continue; // assigned zero, or never set
        const int k = s->QueryVar.data[count] = s->BasisHead.data[r];
        s->QueryVal.data[count++] =
            static_cast<double>(w->Alpha.Value.data[r]) * signed_unit(s, k) / unit;
    }
    svec_clear(&w->Alpha);
    return {count, s->QueryVar.data, s->QueryVal.data};
}

// Other solves may have used Rho since the proof.
template<class R> void load_proof(const sopt *s, swork<R> *w)
{
    svec_clear(&w->Rho);
    for (int i = 0; i < s->NumRows; i++)
        if (s->ProofVector.data[i] != 0) svec_add(&w->Rho, i, R(s->ProofVector.data[i]));
}

template<class R> LiveVector farkas_row(sopt *s, swork<R> *w)
{
    const bool proved = s->Status == SIMPLEX_INFEASIBLE &&
                        (s->Proof == PROOF_FARKAS || s->Proof == PROOF_ROW);
    if (proved && s->Proof == PROOF_FARKAS) load_proof(s, w);
    return proved && w->Rho.Count >= 0 ? view(s, &w->Rho, 1.0)
                                       : LiveVector{0, nullptr, nullptr, nullptr, 1};
}
} // namespace

LiveVector simplex_inverse_row(sopt *s, int k)
{
    assert(is_basic(s, k));
    return s->Quad ? inverse_row(s, s->Extended, k) : inverse_row(s, s->Double, k);
}

namespace
{
// The variables that let basic variable k fall or rise, and the least ratio of reduced cost to entry among them.
template<class R> StepGains step_gains(sopt *s, swork<R> *w, int k, double down, double up)
{
    svec_unit(&w->Rho, s->VStat.data[k], R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::NO);
    s->Proof = PROOF_NONE; // its multipliers were in Rho
    compute_row(s, w);
    R ratio_fall = HUGE_VAL, ratio_rise = HUGE_VAL; // of the working variable
    for (int p = 0; p < w->RowCount; p++) {
        const int j = w->RowInd.data[p], status = s->VStat.data[j];
        const bool rises = status != AT_UPPER, falls = status != AT_LOWER;
        const R alpha = w->RowVal.data[p], d = w->Cbar.data[j],
                right = rises ? d : -d, // of a wrong sign within the tolerance: 0
            ratio = std::max(R(0), right) / std::abs(alpha);
        if (alpha > 0 ? rises : falls) ratio_fall = std::min(ratio_fall, ratio);
        if (alpha > 0 ? falls : rises) ratio_rise = std::min(ratio_rise, ratio);
    }
    const double unit = signed_unit(s, k);
    if (unit < 0) std::swap(ratio_fall, ratio_rise);
    const double per_step = 1 / (std::fabs(unit) * s->ObjScale);
    const auto gain = [&](R ratio, double step) {
        return ratio < R(HUGE_VAL) ? static_cast<double>(ratio) * step * per_step
                                   : UNDEFINED_VALUE;
    };
    return {gain(ratio_fall, down), gain(ratio_rise, up)};
}
} // namespace

StepGains simplex_step_gains(sopt *s, int k, double step_down, double step_up)
{
    assert(is_basic(s, k));
    return s->Quad ? step_gains(s, s->Extended, k, step_down, step_up)
                   : step_gains(s, s->Double, k, step_down, step_up);
}

LiveEntries simplex_tableau_row(sopt *s, int k)
{
    assert(is_basic(s, k));
    return s->Quad ? tableau_row(s, s->Extended, k) : tableau_row(s, s->Double, k);
}

LiveEntries simplex_tableau_column(sopt *s, int j)
{
    assert(!is_basic(s, j));
    return s->Quad ? tableau_column(s, s->Extended, j) : tableau_column(s, s->Double, j);
}

LiveVector simplex_farkas_row(sopt *s)
{
    return s->Quad ? farkas_row(s, s->Extended) : farkas_row(s, s->Double);
}
