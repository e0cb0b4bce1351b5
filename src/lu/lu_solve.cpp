// lu_solve.cpp -- FTRAN and BTRAN
//
// Problem     Solve B x = b and B^T y = c with the factors, in time proportional to the entries touched if the result
//             is sparse.
// Method      Each triangle is solved in one of two ways. Sweep: all pivots in order, skipping zeros. Reach: a
//             depth-first search finds the places that can become nonzero, in topological order, and only these are
//             processed. The choice depends on the number of nonzeros of the right-hand side and on a running average
//             of the density of results of the same kind; a reach that becomes too large is abandoned for the sweep.
// In, out     x is solved in place and returned with a list of nonzeros, without entries at or below DropTol; with
//             Keep::VALUES perhaps without a list, and with smaller entries.
// Invariant   Mark is all zero on return. Nothing is allocated.
// Literature  J. R. Gilbert and T. Peierls, SIAM J. Sci. Stat. Comp. 9, 1988; J. A. J. Hall and K. I. M. McKinnon,
//             "Hyper-sparsity in the revised simplex method", Comp. Opt. and Appl. 32, 2005.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
constexpr double REACH_ENTRIES = 0.05; // share of nonzeros up to which a reach may be tried
constexpr double REACH_EXPECT = 0.10;  // expected share of nonzeros up to which it pays
// Share of places visited at which a reach is abandoned.
constexpr double REACH_GIVE_UP = 0.25;
// Share of nonzeros above which no list is kept between the two triangles.
constexpr double FULL_SHARE = 0.1;

// One triangle as a directed graph: place i updates the places Ind[Beg[i] .. Beg[i] + Len[i] - 1].
template<class R> struct Triangle {
    const int *Beg, *Len, *Ind;
    const R *Val;
    const R *Diag; // null: unit diagonal
};

// All places reachable from the listed ones, in topological order (read backwards), in lu->List. Their number, or -1 if
// there are too many.
template<class R> int reach(lufact<R> *lu, const Triangle<R> *t, const SVec<R> *x)
{
    char *__restrict mark = lu->Mark.data;
    int *__restrict stack = lu->Stack.data, *__restrict stack_pos = lu->StackPos.data,
                    *__restrict list = lu->List.data;
    const int limit = static_cast<int>(REACH_GIVE_UP * lu->NumRows);
    int count = 0, top = -1;
    for (int k = 0; k < x->Count && count <= limit; k++) {
        const int start = x->Index.data[k];
        if (mark[start]) continue;
        mark[start] = 1;
        stack[++top] = start;
        stack_pos[top] = t->Beg[start];
        while (top >= 0) {
            const int i = stack[top], end = t->Beg[i] + t->Len[i];
            int p = stack_pos[top];
            while (p < end && mark[t->Ind[p]]) p++;
            if (p == end) {
                list[count++] = i;
                top--;
            } else {
                stack_pos[top] = p + 1;
                const int child = t->Ind[p];
                mark[child] = 1;
                stack[++top] = child;
                stack_pos[top] = t->Beg[child];
            }
        }
    }
    for (int k = 0; k < count; k++) mark[list[k]] = 0;
    return count > limit ? -1 : count;
}

// x := T^-1 x over the places in lu->List.
template<class R>
void solve_reached(lufact<R> *lu, const Triangle<R> *t, SVec<R> *x, int count)
{
    R *__restrict value = x->Value.data;
    int *__restrict index = x->Index.data;
    const R drop = lu->DropTol;
    int nonzeros = 0;
    int64_t work = count;
    for (int k = count - 1; k >= 0; k--) {
        const int i = lu->List.data[k];
        R xi = value[i];
        if (std::abs(xi) <= drop) {
            value[i] = R(0);
            continue;
        }
        if (t->Diag) value[i] = xi = xi / t->Diag[i];
        index[nonzeros++] = i;
        const int beg = t->Beg[i], end = beg + t->Len[i];
        work += end - beg;
        for (int p = beg; p < end; p++) value[t->Ind[p]] -= xi * t->Val[p];
    }
    x->Count = nonzeros;
    lu->WorkUnits += static_cast<double>(work);
}

// x := T^-1 x over order[first], order[first + step], ... (n places); -1 cells are skipped. The list is lost.
// Returns how many of these places are nonzero.
template<class R>
int solve_sweep(lufact<R> *lu, const Triangle<R> *t, SVec<R> *x, const int *order,
                int first, int step, int n)
{
    R *__restrict value = x->Value.data;
    const R drop = lu->DropTol;
    int64_t work = n;
    int nonzeros = 0;
    for (int k = 0, at = first; k < n; k++, at += step) {
        const int i = order[at];
        if (i < 0) continue;
        R xi = value[i];
        // most places; cheaper than a comparison with the drop tolerance
        if (xi == R(0)) continue;
        if (std::abs(xi) <= drop) {
            value[i] = R(0);
            continue;
        }
        nonzeros++;
        if (t->Diag) value[i] = xi = xi / t->Diag[i];
        const int beg = t->Beg[i], end = beg + t->Len[i];
        work += end - beg;
        for (int p = beg; p < end; p++) value[t->Ind[p]] -= xi * t->Val[p];
    }
    x->Count = -1;
    lu->WorkUnits += static_cast<double>(work);
    return nonzeros;
}

template<class R> bool reach_pays(const lufact<R> *lu, const SVec<R> *x, double expected)
{
    return x->Count >= 0 && x->Count <= REACH_ENTRIES * lu->NumRows &&
           expected <= REACH_EXPECT;
}

// Smallest or largest place in the order among the listed entries.
template<class R> int edge_place(const lufact<R> *lu, const SVec<R> *x, bool largest)
{
    if (!svec_is_short(x)) return largest ? lu->NumPos - 1 : 0;
    int edge = largest ? 0 : lu->NumPos - 1;
    for (int k = 0; k < x->Count; k++) {
        const int place = lu->PosOfRow.data[x->Index.data[k]];
        edge = largest ? std::max(edge, place) : std::min(edge, place);
    }
    return edge;
}

// After the first triangle of a solve: a dense result gets no list.
template<class R> void after_first(lufact<R> *lu, SVec<R> *x, int swept, double *density)
{
    const bool full = swept > FULL_SHARE * lu->NumRows;
    if (!full) svec_tidy(x, lu->DropTol);
    lu_remember(lu, full ? swept : x->Count, density);
}

template<class R> void solve_lower(lufact<R> *lu, SVec<R> *x, double *density)
{
    if (lu->LColOrder.size == 0) return;
    const Triangle<R> t{lu->LColBeg.data, lu->LColLen.data, lu->LInd.data, lu->LVal.data,
                        nullptr};
    const int count = reach_pays(lu, x, *density) ? reach(lu, &t, x) : -1;
    if (count >= 0) {
        solve_reached(lu, &t, x, count);
        lu_remember(lu, x->Count, density);
        return;
    }
    const int columns = static_cast<int>(lu->LColOrder.size);
    after_first(lu, x, solve_sweep(lu, &t, x, lu->LColOrder.data, 0, 1, columns), density);
}

template<class R> void solve_lower_transposed(lufact<R> *lu, SVec<R> *x, double *density)
{
    if (lu->LRowOrder.size == 0) return;
    const Triangle<R> t{lu->LRowBeg.data, lu->LRowLen.data, lu->LRowInd.data,
                        lu->LRowVal.data, nullptr};
    const int count = reach_pays(lu, x, *density) ? reach(lu, &t, x) : -1;
    const int rows = static_cast<int>(lu->LRowOrder.size);
    if (count >= 0)
        solve_reached(lu, &t, x, count);
    else
        solve_sweep(lu, &t, x, lu->LRowOrder.data, rows - 1, -1, rows);
    svec_tidy(x, lu->DropTol);
    lu_remember(lu, x->Count, density);
}

template<class R>
void solve_upper(lufact<R> *lu, SVec<R> *x, double *density, bool values_only)
{
    const Triangle<R> t{lu->UColBeg.data, lu->UColLen.data, lu->UColInd.data,
                        lu->UColVal.data, lu->UDiag.data};
    const int count = reach_pays(lu, x, *density) ? reach(lu, &t, x) : -1;
    int nonzeros = 0;
    if (count >= 0) {
        solve_reached(lu, &t, x, count);
        nonzeros = x->Count;
    } else {
        const int last = edge_place(lu, x, true);
        nonzeros = solve_sweep(lu, &t, x, lu->Order.data, last, -1, last + 1);
    }
    if (!values_only) svec_tidy(x, lu->DropTol);
    lu_remember(lu, nonzeros, density);
}

template<class R> void solve_upper_transposed(lufact<R> *lu, SVec<R> *x, double *density)
{
    const Triangle<R> t{lu->URowBeg.data, lu->URowLen.data, lu->URowInd.data,
                        lu->URowVal.data, lu->UDiag.data};
    const int count = reach_pays(lu, x, *density) ? reach(lu, &t, x) : -1;
    if (count >= 0) {
        solve_reached(lu, &t, x, count);
        lu_remember(lu, x->Count, density);
        return;
    }
    const int first = edge_place(lu, x, false);
    after_first(lu, x, solve_sweep(lu, &t, x, lu->Order.data, first, 1, lu->NumPos - first),
                density);
}

// Adds to entry i, which is added to the list if there is one.
template<class R> inline void add_entry(SVec<R> *x, int i, R value)
{
    if (x->Count >= 0)
        svec_add(x, i, value);
    else
        x->Value.data[i] += value;
}

// The oldest eta that reads an entry of x.
template<class R> int first_eta(const lufact<R> *lu, const SVec<R> *x)
{
    if (!svec_is_short(x)) return 0;
    int first = lu->NumEtas;
    for (int k = 0; k < x->Count; k++)
        first = std::min(first, lu->FirstEta.data[x->Index.data[k]]);
    return first;
}

// x[row] += sum Val * x[Ind], oldest eta first.
template<class R> void apply_etas(lufact<R> *lu, SVec<R> *x)
{
    const int *__restrict beg = lu->EtaBeg.data, *__restrict ind = lu->EtaInd.data;
    const R *__restrict val = lu->EtaVal.data;
    const R *__restrict value = x->Value.data;
    const int first = first_eta(lu, x);
    for (int t = first; t < lu->NumEtas; t++) {
        R sum = 0;
        for (int p = beg[t]; p < beg[t + 1]; p++) sum += val[p] * value[ind[p]];
        if (std::abs(sum) > lu->DropTol) add_entry(x, lu->EtaRow.data[t], sum);
    }
    lu->WorkUnits += beg[lu->NumEtas] - beg[first];
}

// x[Ind] += Val * x[row], newest eta first.
template<class R> void apply_etas_transposed(lufact<R> *lu, SVec<R> *x)
{
    const int *__restrict beg = lu->EtaBeg.data, *__restrict ind = lu->EtaInd.data;
    const R *__restrict val = lu->EtaVal.data;
    int64_t work = lu->NumEtas;
    for (int t = lu->NumEtas - 1; t >= 0; t--) {
        const R xr = x->Value.data[lu->EtaRow.data[t]];
        if (std::abs(xr) <= lu->DropTol) continue;
        work += beg[t + 1] - beg[t];
        for (int p = beg[t]; p < beg[t + 1]; p++) add_entry(x, ind[p], val[p] * xr);
    }
    lu->WorkUnits += static_cast<double>(work);
}

// Packs the entries above drop into (ind, val). Their number.
template<class R> int pack(const SVec<R> *x, R drop, int *ind, R *val)
{
    int count = 0;
    if (x->Count >= 0) {
        for (int k = 0; k < x->Count; k++) {
            ind[k] = x->Index.data[k];
            val[k] = x->Value.data[ind[k]];
        }
        return x->Count;
    }
    for (int i = 0; i < x->Dim; i++) { // no branch: it would be unpredictable
        const R value = x->Value.data[i];
        ind[count] = i;
        val[count] = value;
        count += std::abs(value) > drop;
    }
    return count;
}
} // namespace

template<class R> void ftran_lower(lufact<R> *lu, const FtranTask<R> *task)
{
    SVec<R> *x = task->X;
    if (task->Keeps == Keep::YES) lu->SpikeCount = 0;
    if (x->Count == 0) return;
    solve_lower(lu, x, &lu->Density[task->Kind][0]);
    if (lu->NumEtas > 0) apply_etas(lu, x);
    if (task->Keeps == Keep::YES)
        lu->SpikeCount = pack(x, lu->DropTol, lu->SpikeInd.data, lu->SpikeVal.data);
}

template<class R> void ftran_upper(lufact<R> *lu, const FtranTask<R> *task)
{
    if (task->X->Count == 0) return;
    solve_upper(lu, task->X, &lu->Density[task->Kind][1], task->Keeps == Keep::VALUES);
}

template<class R>
bool ftran_sweeps(const lufact<R> *lu, const FtranTask<R> *task, int *last)
{
    const SVec<R> *x = task->X;
    if (x->Count == 0 || reach_pays(lu, x, lu->Density[task->Kind][1])) return false;
    *last = std::max(*last, edge_place(lu, x, true));
    return true;
}

template<class R> void Ftran(lufact<R> *lu, SVec<R> *x, SolveKind kind, Keep keep)
{
    const FtranTask<R> task{x, kind, keep};
    ftran_lower(lu, &task);
    ftran_upper(lu, &task);
}

template<class R> void Btran(lufact<R> *lu, SVec<R> *x, SolveKind kind, Keep keep)
{
    if (x->Count == 0) return;
    const int row = x->Count > 0 ? x->Index.data[0] : -1;
    solve_upper_transposed(lu, x, &lu->Density[kind][1]);
    if (keep == Keep::YES) {
        lu->PartRow = row;
        lu->PartCount = pack(x, lu->DropTol, lu->PartInd.data, lu->PartVal.data);
    }
    if (lu->NumEtas > 0) apply_etas_transposed(lu, x);
    solve_lower_transposed(lu, x, &lu->Density[kind][0]);
    svec_tidy(x, lu->DropTol);
}

template<class R> void lu_solve_upper_transposed(lufact<R> *lu, SVec<R> *x)
{
    if (x->Count != 0) solve_upper_transposed(lu, x, &lu->Density[SOLVE_COSTS][1]);
}

template void lu_solve_upper_transposed<double>(lufact<double> *, SVec<double> *);
template void lu_solve_upper_transposed<long double>(lufact<long double> *,
                                                     SVec<long double> *);
template void Ftran<double>(lufact<double> *, SVec<double> *, SolveKind, Keep);
template void Ftran<long double>(lufact<long double> *, SVec<long double> *, SolveKind,
                                 Keep);
template void ftran_lower<double>(lufact<double> *, const FtranTask<double> *);
template void ftran_lower<long double>(lufact<long double> *,
                                       const FtranTask<long double> *);
template void ftran_upper<double>(lufact<double> *, const FtranTask<double> *);
template void ftran_upper<long double>(lufact<long double> *,
                                       const FtranTask<long double> *);
template bool ftran_sweeps<double>(const lufact<double> *, const FtranTask<double> *,
                                   int *);
template bool ftran_sweeps<long double>(const lufact<long double> *,
                                        const FtranTask<long double> *, int *);
template void Btran<double>(lufact<double> *, SVec<double> *, SolveKind, Keep);
template void Btran<long double>(lufact<long double> *, SVec<long double> *, SolveKind,
                                 Keep);
