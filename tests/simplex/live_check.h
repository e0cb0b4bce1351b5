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
        return is_basic(s, k) ? double(w->Bbar[s->VStat[k]]) : nonbasic_value(s, k);
    }
    void values()
    {
        for (int i = 0; i < s->NumRows; i++) {
            long double sum = value(s->NumCols + i);
            double size = 1 + std::fabs(s->Rhs[i]) + std::fabs(double(sum));
            for (int p = s->RowBeg[i]; p < s->RowBeg[i + 1]; p++) {
                const double term = s->RowVal[p] * value(s->RowInd[p]);
                sum += term;
                size += std::fabs(term);
            }
            if (!(std::fabs(double(sum - s->Rhs[i])) <= 1e-7 * size))
                tell("row", i, double(sum), s->Rhs[i]);
        }
    }
    // Those of fixed columns are not kept; those of fixed slacks are, as they are the multipliers, by which those of
    // basic columns are zero.
    void reduced_costs(bool basic_only)
    {
        for (int j = 0; j < s->NumCols; j++) {
            if (s->VStat[j] == AT_FIXED || (basic_only && !is_basic(s, j))) continue;
            long double d = s->WorkCost[j];
            double size = 1 + std::fabs(s->WorkCost[j]);
            for (int p = s->ColBeg[j]; p < s->ColBeg[j + 1]; p++) {
                const double term =
                    s->ColVal[p] * double(minus_multiplier(s, w, s->ColInd[p]));
                d += term;
                size += std::fabs(term);
            }
            const double held = is_basic(s, j) ? 0 : double(w->Cbar[j]);
            if (!(std::fabs(held - double(d)) <= 1e-7 * size))
                tell("reduced cost", j, held, double(d));
        }
        if (basic_only) return;
        for (int k = 0; k < s->NumVars; k++) {
            const double d = double(w->Cbar[k]);
            const int status = s->VStat[k];
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
            const double lower = s->Lower[k], upper = s->Upper[k];
            at_free += s->VStat[k] == AT_FREE;
            if (k < s->NumCols && bounds_exclude(s, k, lower, upper)) {
                crossed++;
                continue;
            }
            if (s->WorkLower[k] != lower || s->WorkUpper[k] != upper)
                tell("bounds", k, s->WorkLower[k], lower);
            const int status = s->VStat[k];
            if (status >= 0) {
                if (s->BasisHead[status] != k || s->BasicLower[status] != lower ||
                    s->BasicUpper[status] != upper)
                    tell("position", k, s->BasisHead[status], status);
            } else if (std::fabs(nonbasic_value(s, k)) >= s->Infinity / 4) {
                tell("place", k, status, nonbasic_value(s, k));
            }
            const bool priced = status < 0 && status != AT_FIXED;
            if (k < s->NumCols && (s->InRowCopy[k] != 0) != priced)
                tell("row copy", k, s->InRowCopy[k], status);
        }
        if (crossed != s->Crossed) tell("crossed", 0, s->Crossed, crossed);
        if (at_free != w->Dual->FreeCount) tell("free", 0, w->Dual->FreeCount, at_free);
    }
    void row_copy()
    {
        for (int i = 0; i < s->NumRows; i++)
            for (int p = s->RowBeg[i]; p < s->RowBeg[i + 1]; p++) {
                const int j = s->RowInd[p], e = s->EntryOfSlot[p];
                const bool front = p < s->RowBeg[i] + s->RowFill[i];
                if ((s->InRowCopy[j] != 0) != front || s->SlotOfEntry[e] != p ||
                    s->ColInd[e] != i || s->ColVal[e] != s->RowVal[p] || e < s->ColBeg[j] ||
                    e >= s->ColBeg[j + 1])
                    tell("entry", i, p, e);
            }
    }
    void merits()
    {
        const dopt<R> *d = w->Dual;
        for (int r = 0; r < s->NumRows; r++) {
            const double x = double(w->Bbar[r]),
                         gap = std::max(s->BasicLower[r] - x, x - s->BasicUpper[r]);
            const bool eligible = gap > s->FeasTol && !d->RowRejected[r];
            const double merit = double(d->Rows.Merit[r]);
            if (std::fabs(gap - s->FeasTol) > 1e-12 && (merit > 0) != eligible)
                tell("merit", r, merit, gap);
            if (!(d->Weights[r] > 0)) tell("weight", r, double(d->Weights[r]), 1);
        }
    }
    void objective()
    {
        long double sum = 0;
        double size = 1;
        for (int k = 0; k < s->NumVars; k++) {
            const double term = s->WorkCost[k] * value(k);
            sum += term;
            size += std::fabs(term);
            if (!s->Perturbed && s->WorkCost[k] != s->Cost[k])
                tell("cost", k, s->WorkCost[k], s->Cost[k]);
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
