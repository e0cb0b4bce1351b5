// basis.cpp -- factor and repair the basis, pivots, rows of the tableau
//
// Literature  R. H. Bartels, J. Stoer, C. Zenger in Wilkinson and Reinsch, Linear Algebra, 1971, for the repair of a
//             singular basis by unit columns.
#include "env/callback.h"
#include "simplex/sopt.h"
#include <algorithm>

namespace
{
constexpr double TIGHT_MARKOWITZ = 0.5;   // Markowitz tolerance after a singular basis
constexpr double TIGHTER_MARKOWITZ = 0.9; // and after the second one
// growth of the Markowitz tolerance after a wrong pivot
constexpr double STRICTER = 4;
// The row is accumulated densely if the entries touched, times this, exceed n.
constexpr double DENSE_ROW_SHARE = 1.8;
constexpr double FILL_SPIKES = 1.5, FILL_ETAS = 2,
                 FILL_FACTORS = 1.5; // weights of the fill test
// repairs in one refactorisation before the run ends in numeric trouble
constexpr int MAX_REPAIRS = 50;

// A search inside a heuristic gives up at a singular basis, any other run after TARV_PAR_STMPFIXES repairs.
bool may_repair(const sopt *s)
{
    if (s->Env->TARV_PAR_SUBMIP) return false;
    if (s->SingularCount < s->Env->TARV_PAR_STMPFIXES) return true;
    TVXmsg(s->Env, "Temporary fix limit exceeded\n");
    return false;
}

// Columns without pivot become nonbasic, slacks of the rows without pivot basic.
template<class R> void repair_basis(sopt *s, int deficiency)
{
    for (int k = 0; k < deficiency; k++) {
        const int position = s->BadCols.data[k], dropped = s->BasisHead.data[position];
        const int slack = s->NumCols + s->BadRows.data[k];
        s->VStat.data[dropped] = AT_LOWER;
        s->BasisHead.data[position] = slack;
    }
    for (int k = 0; k < s->NumRows; k++) s->VStat.data[s->BasisHead.data[k]] = k;
    settle_nonbasics(s);
}
} // namespace

template<class R> int Refactor(sopt *s, swork<R> *w)
{
    const BasisMatrix matrix{s->NumRows, s->NumCols, s->ColBeg.data, s->ColInd.data,
                             s->ColVal.data};
    s->NumFactor++;
    s->BaseLost |= s->Probing;
    if (s->Running) callback_poll(s->Env, TVX_WHERE_POLLING, {});
    for (int repairs = 0;; repairs++) {
        const int result = FactorBasis(&w->Lu, &matrix, s->BasisHead.data, s->MarkowitzTol,
                                       s->BadRows.data, s->BadCols.data);
        if (result == 0) break;
        if (result < 0) return -result;
        if (repairs >= MAX_REPAIRS || !may_repair(s)) {
            s->Status = SIMPLEX_NUMERIC;
            return 0;
        }
        if (s->SingularCount < 4)
            TVXmsg(s->Env, "Warning: %d variables dropped from basis\n", result);
        s->MarkowitzTol = std::max(
            s->MarkowitzTol, s->SingularCount == 0 ? TIGHT_MARKOWITZ : TIGHTER_MARKOWITZ);
        s->SingularCount++;
        s->NumericCount++;
        repair_basis<R>(s, result);
    }
    for (int k = 0; k < s->NumRows; k++) s->VStat.data[s->BasisHead.data[k]] = k;
    w->FactorAge = s->BasisAge;
    return 0;
}

void set_basic_bounds(sopt *s)
{
    for (int k = 0; k < s->NumRows; k++) {
        s->BasicLower.data[k] = s->WorkLower.data[s->BasisHead.data[k]];
        s->BasicUpper.data[k] = s->WorkUpper.data[s->BasisHead.data[k]];
    }
}

template<class R> void load_column(const sopt *s, int j, SVec<R> *x)
{
    svec_clear(x);
    if (j >= s->NumCols) {
        svec_unit(x, j - s->NumCols, R(1));
        return;
    }
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        const int i = s->ColInd.data[p];
        x->Index.data[x->Count++] = i;
        x->Value.data[i] = R(s->ColVal.data[p]);
    }
}

namespace
{
// Long rows: accumulate without a list of nonzeros, then test every column.
template<class R> void accumulate_dense(sopt *s, swork<R> *w)
{
    R *__restrict acc = w->RowAcc.data;
    const int *__restrict ind = s->RowInd.data;
    const double *__restrict val = s->RowVal.data;
    for (int k = 0; k < w->Rho.Count; k++) {
        const int i = w->Rho.Index.data[k], beg = s->RowBeg.data[i],
                  end = beg + s->RowFill.data[i];
        const R rho = w->Rho.Value.data[i];
        for (int p = beg; p < end; p++) acc[ind[p]] += rho * R(val[p]);
    }
    int count = 0;
    const R drop = R(ROUNDING_SHARE<R> * s->ZeroTol);
    int *__restrict list = w->RowInd.data;
    R *__restrict row = w->RowVal.data;
    for (int j = 0; j < s->NumCols; j++) { // no branch, since it would be unpredictable
        const R a = acc[j];
        acc[j] = SVEC_TINY<R>;
        list[count] = j;
        row[count] = a;
        count += std::abs(a) > drop;
    }
    w->RowCount = count;
}

// Short rows: an entry that still has the value SVEC_TINY is new and is added to the list.
template<class R> void accumulate_sparse(sopt *s, swork<R> *w)
{
    R *__restrict acc = w->RowAcc.data;
    int *__restrict list = w->RowInd.data;
    const int *__restrict ind = s->RowInd.data;
    const double *__restrict val = s->RowVal.data;
    int touched = 0;
    for (int k = 0; k < w->Rho.Count; k++) {
        const int i = w->Rho.Index.data[k], beg = s->RowBeg.data[i],
                  end = beg + s->RowFill.data[i];
        const R rho = w->Rho.Value.data[i];
        for (int p = beg; p < end; p++) {
            const int j = ind[p];
            if (acc[j] == SVEC_TINY<R>) list[touched++] = j;
            acc[j] += rho * R(val[p]);
        }
    }
    int count = 0;
    const R drop = R(ROUNDING_SHARE<R> * s->ZeroTol);
    for (int k = 0; k < touched; k++) {
        const int j = list[k];
        const R a = acc[j];
        acc[j] = SVEC_TINY<R>;
        if (std::abs(a) <= drop) continue;
        list[count] = j;
        w->RowVal.data[count++] = a;
    }
    w->RowCount = count;
}
} // namespace

// Row r of the tableau over the nonbasics that may enter: rho^T (A I).
template<class R> void compute_row(sopt *s, swork<R> *w)
{
    int64_t entries = 0;
    for (int k = 0; k < w->Rho.Count; k++) entries += s->RowFill.data[w->Rho.Index.data[k]];
    s->WorkUnits += 1.2 * static_cast<double>(entries);
    if (s->NumCols < DENSE_ROW_SHARE * static_cast<double>(entries))
        accumulate_dense(s, w);
    else
        accumulate_sparse(s, w);
    for (int k = 0; k < w->Rho.Count; k++) {
        const int i = w->Rho.Index.data[k], status = s->VStat.data[s->NumCols + i];
        if (status >= 0 || status == AT_FIXED) continue;
        w->RowInd.data[w->RowCount] = s->NumCols + i;
        w->RowVal.data[w->RowCount++] = w->Rho.Value.data[i];
    }
}

void swap_basis(sopt *s, int r, int q, int status)
{
    const int leaving = s->BasisHead.data[r];
    s->Pivots++;
    s->BasisHead.data[r] = q;
    s->VStat.data[q] = r;
    s->SuperVal.data[q] = 0;
    row_copy_remove(s, q);
    s->VStat.data[leaving] = status;
    if (status != AT_FIXED) row_copy_insert(s, leaving);
    s->BasicLower.data[r] = s->WorkLower.data[q];
    s->BasicUpper.data[r] = s->WorkUpper.data[q];
}

// True if the update limit is reached, or if the fill by updates makes solves slower than a refactorisation is worth. A
// live record could go on without it, so the reduced costs, which are computed anew with it, count as its cost, too: the
// fill of u updates has cost u / 2 times its entries in the solves of each of the u iterations.
template<class R> bool wants_refactor(const sopt *s, const swork<R> *w)
{
    const lufact<R> *lu = &w->Lu;
    const double u = lu->NumUpdates, m = s->NumRows;
    if (u >= s->MaxUpdates) return true;
    if (u < s->MinUpdates) return false;
    const double factors =
        static_cast<double>(lu->UNonzeros + lu->LNonzeros) - FILL_FACTORS * m;
    const double spikes = static_cast<double>(lu->SpikeNnz),
                 etas = static_cast<double>(lu->EtaInd.size);
    const double refresh = s->Live == LIVE_NO ? 0 : 2 * m * s->ColBeg.data[s->NumCols] / u;
    const double limit = std::min(s->MinUpdates * 4.0 * m * m, factors * factors) + refresh;
    return (FILL_SPIKES * spikes + FILL_ETAS * etas) * m > limit;
}

bool wants_confirmation(const sopt *s)
{
    return s->EndFactor || s->MarkowitzTol > s->Env->MarkowitzTol;
}

void distrust_factors(sopt *s)
{
    s->RefacReason = REFAC_PIVOT;
    s->MarkowitzTol =
        std::max(s->MarkowitzTol, std::min(TIGHT_MARKOWITZ, STRICTER * s->MarkowitzTol));
}

template<class R> Infeasibility measure_infeasibility(const sopt *s, const swork<R> *w)
{
    Infeasibility inf;
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        const double x = static_cast<double>(w->Bbar.data[k]);
        const double gap = std::max(s->Lower.data[j] - x, x - s->Upper.data[j]);
        if (gap <= 0) continue;
        inf.PrimalMax = std::max(inf.PrimalMax, gap);
        if (gap > s->FeasTol) {
            inf.PrimalSum += gap;
            inf.PrimalCount++;
        }
    }
    for (int j = 0; j < s->NumVars; j++) {
        const int status = s->VStat.data[j];
        if (status >= 0 || status == AT_FIXED) continue;
        const double d = static_cast<double>(w->Cbar.data[j]);
        const double gap = status == AT_LOWER ? -d : status == AT_UPPER ? d : std::fabs(d);
        if (gap <= 0) continue;
        if (gap > s->OptTol) {
            inf.DualSum += gap;
            inf.DualCount++;
        }
    }
    return inf;
}

template<class R> double true_objective(const sopt *s, const swork<R> *w)
{
    long double sum = 0;
    for (int k = 0; k < s->NumRows; k++)
        sum += w->Bbar.data[k] * R(s->Cost.data[s->BasisHead.data[k]]);
    for (int j = 0; j < s->NumVars; j++)
        if (s->VStat.data[j] < 0 && s->Cost.data[j] != 0)
            sum += static_cast<long double>(s->Cost.data[j]) *
                   (s->BoxPhase                    ? nonbasic_value(s, j)
                    : s->VStat.data[j] == AT_UPPER ? s->Upper.data[j]
                    : s->VStat.data[j] == AT_FREE  ? s->SuperVal.data[j]
                                                   : s->Lower.data[j]);
    return static_cast<double>(sum) / s->ObjScale;
}

#define INSTANTIATE(R)                                                                     \
    template int Refactor<R>(sopt *, swork<R> *);                                          \
    template void compute_row<R>(sopt *, swork<R> *);                                      \
    template void load_column<R>(const sopt *, int, SVec<R> *);                            \
    template bool wants_refactor<R>(const sopt *, const swork<R> *);                       \
    template Infeasibility measure_infeasibility<R>(const sopt *, const swork<R> *);       \
    template double true_objective<R>(const sopt *, const swork<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
