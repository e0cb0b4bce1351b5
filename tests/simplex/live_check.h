// live_check.h -- what LIVE_FRESH promises (resolve.h), computed again from the working LP
#pragma once
#include "simplex/dual.h"
#include <cmath>
#include <string>

template<class R> struct LiveCheck {
    const sopt *s;
    const swork<R> *w;
    std::string faults;

    void tell(const char *what, int k, double held, double right)
    {
        if (faults.size() < 400)
            faults += std::string(what) + " " + std::to_string(k) + ": " +
                      std::to_string(held) + " for " + std::to_string(right) + "\n";
    }
    double value(int k) const
    {
        return is_basic(s, k) ? double(w->Bbar.data[s->VStat.data[k]])
                              : nonbasic_value(s, k);
    }
    void values()
    {
        for (int i = 0; i < s->NumRows; i++) {
            long double sum = value(s->NumCols + i);
            double size = 1 + std::fabs(s->Rhs.data[i]) + std::fabs(double(sum));
            for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++) {
                const double term = s->RowVal.data[p] * value(s->RowInd.data[p]);
                sum += term;
                size += std::fabs(term);
            }
            if (!(std::fabs(double(sum - s->Rhs.data[i])) <= 1e-7 * size))
                tell("row", i, double(sum), s->Rhs.data[i]);
        }
    }
    // Those of fixed columns are not kept; those of fixed slacks are, as they are the multipliers, by which those of
    // basic columns are zero.
    void reduced_costs(bool basic_only)
    {
        for (int j = 0; j < s->NumCols; j++) {
            if (s->VStat.data[j] == AT_FIXED || (basic_only && !is_basic(s, j))) continue;
            long double d = s->WorkCost.data[j];
            double size = 1 + std::fabs(s->WorkCost.data[j]);
            for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
                const double term =
                    s->ColVal.data[p] * double(minus_multiplier(s, w, s->ColInd.data[p]));
                d += term;
                size += std::fabs(term);
            }
            const double held = is_basic(s, j) ? 0 : double(w->Cbar.data[j]);
            if (!(std::fabs(held - double(d)) <= 1e-7 * size))
                tell("reduced cost", j, held, double(d));
        }
        if (basic_only) return;
        for (int k = 0; k < s->NumVars; k++) {
            const double d = double(w->Cbar.data[k]);
            const int status = s->VStat.data[k];
            const bool may_fall = status == AT_UPPER || status == AT_FIXED,
                       may_rise = status == AT_LOWER || status == AT_FIXED;
            const double tol = status >= 0 ? 1e-7 : 1.1 * s->OptTol;
            if ((d < -tol && !may_fall) || (d > tol && !may_rise))
                tell("sign of the reduced cost", k, d, status);
        }
    }
    void places()
    {
        int crossed = 0, at_free = 0;
        for (int k = 0; k < s->NumVars; k++) {
            const double lower = s->Lower.data[k], upper = s->Upper.data[k];
            at_free += s->VStat.data[k] == AT_FREE;
            if (k < s->NumCols && bounds_exclude(s, k, lower, upper)) {
                crossed++;
                continue;
            }
            if (s->WorkLower.data[k] != lower || s->WorkUpper.data[k] != upper)
                tell("bounds", k, s->WorkLower.data[k], lower);
            const int status = s->VStat.data[k];
            if (status >= 0) {
                if (s->BasisHead.data[status] != k || s->BasicLower.data[status] != lower ||
                    s->BasicUpper.data[status] != upper)
                    tell("position", k, s->BasisHead.data[status], status);
            } else if (std::fabs(nonbasic_value(s, k)) >= s->Infinity / 4) {
                tell("place", k, status, nonbasic_value(s, k));
            }
            const bool priced = status < 0 && status != AT_FIXED;
            if (k < s->NumCols && (s->InRowCopy.data[k] != 0) != priced)
                tell("row copy", k, s->InRowCopy.data[k], status);
        }
        if (crossed != s->Crossed) tell("crossed", 0, s->Crossed, crossed);
        if (at_free != w->Dual->FreeCount) tell("free", 0, w->Dual->FreeCount, at_free);
    }
    void row_copy()
    {
        for (int i = 0; i < s->NumRows; i++)
            for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++) {
                const int j = s->RowInd.data[p], e = s->EntryOfSlot.data[p];
                const bool front = p < s->RowBeg.data[i] + s->RowFill.data[i];
                if ((s->InRowCopy.data[j] != 0) != front || s->SlotOfEntry.data[e] != p ||
                    s->ColInd.data[e] != i || s->ColVal.data[e] != s->RowVal.data[p] ||
                    e < s->ColBeg.data[j] || e >= s->ColBeg.data[j + 1])
                    tell("entry", i, p, e);
            }
    }
    void merits()
    {
        const dopt<R> *d = w->Dual;
        for (int r = 0; r < s->NumRows; r++) {
            const double x = double(w->Bbar.data[r]),
                         gap =
                             std::max(s->BasicLower.data[r] - x, x - s->BasicUpper.data[r]);
            const bool eligible = gap > s->FeasTol && !d->RowRejected.data[r];
            const double merit = double(d->Rows.Merit.data[r]);
            if (std::fabs(gap - s->FeasTol) > 1e-12 && (merit > 0) != eligible)
                tell("merit", r, merit, gap);
            if (!(d->Weights.data[r] > 0)) tell("weight", r, double(d->Weights.data[r]), 1);
        }
    }
    void objective()
    {
        long double sum = 0;
        double size = 1;
        for (int k = 0; k < s->NumVars; k++) {
            const double term = s->WorkCost.data[k] * value(k);
            sum += term;
            size += std::fabs(term);
            if (!s->Perturbed && s->WorkCost.data[k] != s->Cost.data[k])
                tell("cost", k, s->WorkCost.data[k], s->Cost.data[k]);
        }
        if (!(std::fabs(double(sum) - s->DualObj) <= 1e-7 * size))
            tell("objective", 0, s->DualObj, double(sum));
    }
};

// Empty, or what is wrong with a record after a solve.
template<class R> std::string live_faults(sopt *s, swork<R> *w)
{
    LiveCheck<R> check{s, w, {}};
    if (s->Live != LIVE_FRESH) {
        if (s->Status == SIMPLEX_OPTIMAL) check.reduced_costs(true);
        return check.faults;
    }
    check.places();
    check.row_copy();
    check.values();
    check.reduced_costs(false);
    check.merits();
    check.objective();
    if (!has_factor(s, w)) check.tell("factors", 0, w->FactorAge, s->BasisAge);
    return check.faults;
}
inline std::string live_faults(sopt *s)
{
    return s->Quad ? live_faults(s, s->Extended) : live_faults(s, s->Double);
}
