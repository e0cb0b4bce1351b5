// self_check.cpp -- recomputes updated quantities and compares them, in debug builds on request
//
// Method      TARV_PAR_ITEST turns it on: from CHECK_FACTORS at every factorisation, from CHECK_UPDATES also after
//             every pivot. Each routine recomputes one quantity, in long double where possible, and logs a warning if
//             the updated values differ; the solve continues. Reduced costs are checked in the dual simplex only, since
//             the primal simplex has other costs in phase 1 and only some reduced costs in partial pricing.
// Cost        A solve and a pass over the matrix each; beqlu multiplies the factors.
#ifdef TVX_DEBUG
#include "simplex/sopt.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int CHECK_FACTORS = 1, CHECK_UPDATES = 2; // values of TARV_PAR_ITEST
// relative to what is checked, beside the tolerance of the run
constexpr double DRIFT = 1e-6;
constexpr double EXACT = 1e-9;                 // of factors, relative to the column
constexpr double OBJECTIVE_ERROR_LIMIT = 1e-6; // of the objective, relative

bool differs(double a, double b, double tolerance)
{
    return !(std::fabs(a - b) <=
             tolerance + DRIFT * std::fabs(b)); // what is no number differs
}

// Dual values of the costs in force, in w->Work.
template<class R> const R *fresh_duals(const sopt *s, swork<R> *w)
{
    SVec<R> *y = &w->Work;
    svec_clear(y);
    for (int k = 0; k < s->NumRows; k++)
        y->Value.data[k] = R(s->WorkCost.data[s->BasisHead.data[k]]);
    y->Count = -1;
    Btran(&w->Lu, y, SOLVE_COSTS, Keep::NO);
    y->Count = -1;
    return y->Value.data;
}

// The pivot row omits fixed variables: their reduced costs are not updated.
bool is_priced(const sopt *s, int j)
{
    return s->VStat.data[j] < 0 && s->VStat.data[j] != AT_FIXED;
}

// Dual values: the reduced cost of a slack is its (perhaps perturbed) cost minus the dual value of its row.
template<class R> int ckdualeud(const sopt *s, const swork<R> *w, const R *y)
{
    double worst = 0, dual = 0;
    for (int i = 0; i < s->NumRows; i++) {
        const int slack = s->NumCols + i;
        if (!is_priced(s, slack)) continue;
        const double fresh = static_cast<double>(y[i]),
                     held =
                         s->WorkCost.data[slack] - static_cast<double>(w->Cbar.data[slack]);
        if (!differs(held, fresh, s->OptTol) || std::fabs(held - fresh) < worst) continue;
        worst = std::fabs(held - fresh);
        dual = fresh;
    }
    if (worst == 0) return 0;
    TVXmsg(s->Env, "Warning in ckdualeud: diff = %e, Dual=%e\n", worst, dual);
    return 1;
}

// All reduced costs, from the whole matrix.
template<class R> int dckrdc(const sopt *s, const swork<R> *w, const R *y)
{
    int warnings = 0;
    for (int j = 0; j < s->NumVars; j++) {
        if (!is_priced(s, j)) continue;
        const double fresh =
                         static_cast<double>(R(s->WorkCost.data[j]) - column_dot(s, j, y)),
                     held = static_cast<double>(w->Cbar.data[j]);
        if (!differs(held, fresh, s->OptTol)) continue;
        TVXmsg(s->Env, "Warning in dckrdc: j=%d, TCbar=%13.7e, Cbar=%13.7e\n", j, fresh,
               held);
        warnings++;
    }
    return warnings;
}

// The reduced cost of variable q, from its column of the tableau in Alpha.
template<class R> int ckrdcupd(const sopt *s, const swork<R> *w, int q)
{
    long double fresh = s->WorkCost.data[q];
    for (int k = 0; k < w->Alpha.Count; k++) {
        const int i = w->Alpha.Index.data[k];
        fresh -= static_cast<long double>(s->WorkCost.data[s->BasisHead.data[i]]) *
                 w->Alpha.Value.data[i];
    }
    const double cbar1 = static_cast<double>(fresh),
                 cbar = static_cast<double>(w->Cbar.data[q]);
    if (!differs(cbar, cbar1, s->OptTol)) return 0;
    TVXmsg(s->Env, "Warning in ckrdcupd: Cbar1=%f, Cbar=%f, diff=%f\n", cbar1, cbar,
           cbar1 - cbar);
    return 1;
}

// Basic values by another solve.
template<class R> int dckrhs(const sopt *s, swork<R> *w)
{
    SVec<R> *x = &w->Work;
    R *value = x->Value.data;
    svec_clear(x);
    for (int i = 0; i < s->NumRows; i++) value[i] = s->BoxPhase ? R(0) : R(s->Rhs.data[i]);
    for (int j = 0; j < s->NumVars; j++) {
        if (is_basic(s, j)) continue;
        const R at = R(nonbasic_value(s, j));
        if (j >= s->NumCols) value[j - s->NumCols] -= at;
        for (int p = j < s->NumCols ? s->ColBeg.data[j] : 0;
             j < s->NumCols && p < s->ColBeg.data[j + 1]; p++)
            value[s->ColInd.data[p]] -= R(s->ColVal.data[p]) * at;
    }
    x->Count = -1;
    Ftran(&w->Lu, x, SOLVE_COSTS, Keep::VALUES);
    int warnings = 0;
    double largest = 1;
    for (int i = 0; i < s->NumRows; i++)
        largest = std::max(largest, static_cast<double>(std::abs(value[i])));
    for (int i = 0; i < s->NumRows; i++) {
        const double fresh = static_cast<double>(value[i]),
                     held = static_cast<double>(w->Bbar.data[i]);
        if (!differs(held, fresh, s->FeasTol + EXACT * largest)) continue;
        TVXmsg(s->Env, "Warning in dckrhs: i=%d, val=%13.7e, Bbar=%13.7e\n", i, fresh,
               held);
        warnings++;
    }
    x->Count = -1;
    svec_clear(x);
    return warnings;
}

template<class R> long double value_now(const sopt *s, const swork<R> *w, int j)
{
    return is_basic(s, j) ? static_cast<long double>(w->Bbar.data[s->VStat.data[j]])
                          : static_cast<long double>(nonbasic_value(s, j));
}

template<class R> void report_residual(const sopt *s, const swork<R> *w)
{
    long double largest = 0;
    for (int i = 0; i < s->NumRows; i++) {
        long double left =
            (s->BoxPhase ? 0 : s->Rhs.data[i]) - value_now(s, w, s->NumCols + i);
        for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1]; p++)
            left -= s->RowVal.data[p] * value_now(s, w, s->RowInd.data[p]);
        largest = std::max(largest, std::fabs(left));
    }
    TVXmsg(s->Env, "Maximum residual = %16.7e\n", static_cast<double>(largest));
}

// acc := L (column r of U), a column of the basis.
template<class R> void multiply_factors(const lufact<R> *lu, int r, R *acc)
{
    const auto add = [lu, acc](int i, R u) {
        acc[i] += u;
        for (int p = lu->LColBeg.data[i], end = p + lu->LColLen.data[i]; p < end; p++)
            acc[lu->LInd.data[p]] += lu->LVal.data[p] * u;
    };
    add(r, lu->UDiag.data[r]);
    for (int p = lu->UColBeg.data[r], end = p + lu->UColLen.data[r]; p < end; p++)
        add(lu->UColInd.data[p], lu->UColVal.data[p]);
}

// Fresh factors against the basis, column by column in pivot order: row i, position o in the order, variable j.
template<class R> int beqlu(const sopt *s, swork<R> *w)
{
    R *acc = w->Work.Value.data;
    int warnings = 0;
    svec_clear(&w->Work);
    for (int o = 0; o < s->NumRows; o++) {
        const int r = w->Lu.Order.data[o], j = s->BasisHead.data[r];
        multiply_factors(&w->Lu, r, acc);
        R largest = 1;
        if (j >= s->NumCols) acc[j - s->NumCols] -= R(1);
        for (int p = j < s->NumCols ? s->ColBeg.data[j] : 0;
             j < s->NumCols && p < s->ColBeg.data[j + 1]; p++) {
            acc[s->ColInd.data[p]] -= R(s->ColVal.data[p]);
            largest = std::max(largest, std::abs(R(s->ColVal.data[p])));
        }
        for (int i = 0; i < s->NumRows; i++) {
            if (!(std::abs(acc[i]) <= R(EXACT) * largest)) {
                TVXmsg(s->Env, "Warning in beqlu: i=%d, o=%d, j=%d\n", i, o, j);
                warnings++;
            }
            acc[i] = R(0);
        }
    }
    return warnings;
}

// The objective of a finished run, from the values.
template<class R> int cksol(const sopt *s, const swork<R> *w)
{
    long double sum = 0;
    for (int j = 0; j < s->NumVars; j++) sum += s->Cost.data[j] * value_now(s, w, j);
    const double fresh = static_cast<double>(sum) / s->ObjScale;
    if (std::fabs(fresh - s->Obj) <= OBJECTIVE_ERROR_LIMIT * (1 + std::fabs(fresh)))
        return 0;
    TVXmsg(s->Env, "Warning in cksol\n");
    TVXmsg(s->Env, "sopt->Obj=%f, sopt->NPvt=%.0f\n", s->Obj, s->NPvt);
    return 1;
}

// The residual of the dual values themselves is handled by judge_residuals.
template<class R> int check_duals(const sopt *s, swork<R> *w)
{
    const R *y = fresh_duals(s, w);
    const int warnings = ckdualeud(s, w, y) + dckrdc(s, w, y);
    svec_clear(&w->Work);
    return warnings;
}
} // namespace

template<class R> int simplex_self_check(sopt *s, swork<R> *w, CheckPoint point, int q)
{
    const int level = s->Env->TARV_PAR_ITEST;
    if (level < CHECK_FACTORS) return 0;
    const bool dual = s->Method == METHOD_DUAL;
    switch (point) {
    case CheckPoint::FACTORED:
        report_residual(s, w);
        return beqlu(s, w) + dckrhs(s, w) + (dual ? check_duals(s, w) : 0);
    case CheckPoint::COLUMN:
        return level >= CHECK_UPDATES ? ckrdcupd(s, w, q) : 0;
    case CheckPoint::UPDATED:
        if (level < CHECK_UPDATES) return 0;
        return dckrhs(s, w) + (dual ? check_duals(s, w) : 0);
    case CheckPoint::FINISHED:
        return s->Status == SIMPLEX_OPTIMAL ? cksol(s, w) : 0;
    }
    return 0;
}

template int simplex_self_check<double>(sopt *, swork<double> *, CheckPoint, int);
template int simplex_self_check<long double>(sopt *, swork<long double> *, CheckPoint, int);
#endif
