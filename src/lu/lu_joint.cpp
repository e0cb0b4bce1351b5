// lu_joint.cpp -- several FTRANs in one pass over U
//
// Problem     A dual simplex iteration needs up to three FTRANs with the same factors: entering column, bound flips,
//             row weights. If the results are dense, each of them reads all of U.
// Method      The vectors are interleaved, with 2 or 4 values ("lanes") per place, and U is swept once for all of them:
//             an entry of U is loaded once, and the lanes of a place take one or two vector instructions.
// Invariant   Each result is bitwise the same as that of a single FTRAN. Lanes is all zero between uses.
#include "lu/lufact.h"

namespace
{
constexpr int LEAST_LANES = 2, MOST_LANES = 4;

// The lanes of a place: the operations of a sweep, without branches. For double, two lanes use explicit vector
// operations, which compilers do not generate here by themselves.
template<class R, int LANES> struct Lanes {
    R V[LANES];

    bool any() const
    {
        bool found = false;
        for (int l = 0; l < LANES; l++) found |= V[l] != R(0);
        return found;
    }
    // V / diag, zero where |V| is at or below drop; counts the nonzeros.
    void divide(R diag, R drop, int64_t *counts)
    {
        for (int l = 0; l < LANES; l++) {
            const bool keep = std::abs(V[l]) > drop;
            V[l] = keep ? V[l] / diag : R(0);
            counts[l] += keep;
        }
    }
    void subtract(const Lanes &factor, R a)
    {
        for (int l = 0; l < LANES; l++) V[l] -= factor.V[l] * a;
    }
};

template<int LANES> struct Lanes<double, LANES> {
    using Two = double __attribute__((vector_size(16), may_alias));
    using TwoInts = int64_t __attribute__((vector_size(16), may_alias));
    Two V[LANES / 2];

    bool any() const
    {
        TwoInts found = V[0] != 0;
        for (int l = 1; l < LANES / 2; l++) found |= V[l] != 0;
        return (found[0] | found[1]) != 0;
    }
    void divide(double diag, double drop, int64_t *counts)
    {
        for (int l = 0; l < LANES / 2; l++) {
            const TwoInts keep = (V[l] > drop) | (V[l] < -drop); // -1 where true
            V[l] = reinterpret_cast<Two>(reinterpret_cast<TwoInts>(V[l] / diag) & keep);
            counts[0] -= keep[0];
            counts[1] -= keep[1];
            counts += 2;
        }
    }
    void subtract(const Lanes &factor, double a)
    {
        for (int l = 0; l < LANES / 2; l++) V[l] -= factor.V[l] * a;
    }
};

// x := U^-1 x in all lanes, from place `last` of the order downwards; counts[lane] gets the number of nonzeros.
template<class R, int LANES> void sweep(lufact<R> *lu, int last, int64_t *counts)
{
    Lanes<R, LANES> *x = reinterpret_cast<Lanes<R, LANES> *>(lu->Lanes.data);
    const int *__restrict order = lu->Order.data, *__restrict ind = lu->UColInd.data;
    const R *__restrict val = lu->UColVal.data;
    int64_t work = last + 1;
    for (int at = last; at >= 0; at--) {
        const int i = order[at];
        if (i < 0) continue;
        Lanes<R, LANES> xi = x[i];
        if (!xi.any()) continue;
        xi.divide(lu->UDiag.data[i], lu->DropTol, counts);
        x[i] = xi;
        const int beg = lu->UColBeg.data[i], end = beg + lu->UColLen.data[i];
        work += end - beg;
        for (int p = beg; p < end; p++) x[ind[p]].subtract(xi, val[p]);
    }
    lu->WorkUnits += static_cast<double>(work);
}

template<class R> void load_lane(SVec<R> *v, R *lane, int lanes)
{
    R *value = v->Value.data;
    if (svec_is_short(v)) {
        for (int k = 0; k < v->Count; k++) {
            const int i = v->Index.data[k];
            lane[int64_t{lanes} * i] = value[i];
        }
    } else {
        for (int i = 0; i < v->Dim; i++) lane[int64_t{lanes} * i] = value[i];
    }
}

// Copies a lane back to its vector, with a list of nonzeros as from svec_tidy unless values_only.
template<class R> void store_lane(SVec<R> *v, R *lane, int lanes, R drop, bool values_only)
{
    R *__restrict value = v->Value.data;
    int *__restrict index = v->Index.data;
    int count = 0;
    for (int i = 0; i < v->Dim; i++) {
        const R x = lane[int64_t{lanes} * i];
        lane[int64_t{lanes} * i] = R(0);
        const bool keep = std::abs(x) > drop;
        value[i] = keep || values_only ? x : R(0);
        index[count] = i;
        count += keep;
    }
    v->Count = values_only ? -1 : count;
}

template<class R>
void solve_together(lufact<R> *lu, const FtranTask<R> *const *group, int size, int last)
{
    const int lanes = size <= LEAST_LANES ? LEAST_LANES : MOST_LANES;
    R *x = lu->Lanes.data;
    for (int k = 0; k < size; k++) load_lane(group[k]->X, x + k, lanes);
    int64_t counts[MOST_LANES] = {};
    if (lanes == LEAST_LANES)
        sweep<R, LEAST_LANES>(lu, last, counts);
    else
        sweep<R, MOST_LANES>(lu, last, counts);
    for (int k = 0; k < size; k++) {
        const bool values_only = group[k]->Keeps == Keep::VALUES;
        SVec<R> *v = group[k]->X;
        store_lane(v, x + k, lanes, lu->DropTol, values_only);
        lu_remember(lu, values_only ? static_cast<int>(counts[k]) : v->Count,
                    &lu->Density[group[k]->Kind][1]);
    }
}
} // namespace

template<class R> void FtranJoint(lufact<R> *lu, const FtranTask<R> *tasks, int count)
{
    const FtranTask<R> *group[MAX_FTRANS];
    int size = 0, last = 0;
    for (int k = 0; k < count; k++) {
        const FtranTask<R> *task = &tasks[k];
        ftran_lower(lu, task);
        if (ftran_sweeps(lu, task, &last))
            group[size++] = task;
        else
            ftran_upper(lu, task);
    }
    if (size == 1)
        ftran_upper(lu, group[0]);
    else if (size > 1)
        solve_together(lu, group, size, last);
}

template void FtranJoint<double>(lufact<double> *, const FtranTask<double> *, int);
template void FtranJoint<long double>(lufact<long double> *, const FtranTask<long double> *,
                                      int);
