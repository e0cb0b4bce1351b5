// lu_product.cpp -- product form updates, for runs that are undone as a whole
//
// Problem     Strong branching pivots a few times from one basis and then returns to it, for many candidates. The
//             Forrest-Tomlin update changes U in place; undoing it would mean to copy all of U.
// Method      B_k = B_0 F_1 .. F_k with eta columns F_t: the unit matrix with column r replaced by alpha = B^-1 a_q,
//             the FTRAN of the entering column. Solves apply the inverses of the F_t after (FTRAN) or before (BTRAN)
//             those of B_0. Undoing all updates is to forget the eta columns.
// Cost        Each solve: entries of the eta columns. Good for some dozens of pivots.
// Literature  G. B. Dantzig and W. Orchard-Hays, "The product form for the inverse in the simplex method", Math. Tables
//             and Other Aids to Computation 8, 1954.
#include "lu/lufact.h"

namespace
{
template<class R> inline void add_entry(SVec<R> *x, int i, R value)
{
    if (x->Count >= 0)
        svec_add(x, i, value);
    else
        x->Value.data[i] += value;
}
} // namespace

template<class R> int lu_product_update(lufact<R> *lu, int r, const SVec<R> *alpha)
{
    const int t = lu->NumProducts;
    const int64_t beg = lu->ProductBeg.data[t];
    TRY(array_resize(&lu->ProductRow, int64_t{t} + 1));
    TRY(array_resize(&lu->ProductPivot, int64_t{t} + 1));
    TRY(array_resize(&lu->ProductBeg, int64_t{t} + 2));
    const int64_t need = beg + (alpha->Count >= 0 ? alpha->Count : alpha->Dim);
    if (need > INT32_MAX) return OUT_OF_MEMORY; // positions are 32-bit
    if (need > lu->ProductInd.room) {
        TRY(array_reserve(&lu->ProductInd, need + need / 2));
        TRY(array_reserve(&lu->ProductVal, need + need / 2));
    }
    int *ind = lu->ProductInd.data;
    R *val = lu->ProductVal.data;
    int64_t next = beg;
    const auto put = [&](int i) {
        ind[next] = i;
        val[next] = alpha->Value.data[i];
        next += i != r && std::abs(alpha->Value.data[i]) > lu->DropTol;
    };
    if (alpha->Count >= 0)
        for (int k = 0; k < alpha->Count; k++) put(alpha->Index.data[k]);
    else
        for (int i = 0; i < alpha->Dim; i++) put(i);
    lu->ProductRow.data[t] = r;
    lu->ProductPivot.data[t] = alpha->Value.data[r];
    lu->ProductBeg.data[t + 1] = static_cast<int>(next);
    lu->NumProducts++;
    lu->NumUpdates++;
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
    lu->WorkUnits += static_cast<double>(next - beg);
    return 0;
}

template<class R> void lu_drop_products(lufact<R> *lu)
{
    lu->NumUpdates -= lu->NumProducts;
    lu->NumProducts = 0;
    lu->SpikeCount = lu->PartCount = lu->PartRow = -1;
}

template<class R> void lu_apply_products(lufact<R> *lu, SVec<R> *x)
{
    const int *__restrict beg = lu->ProductBeg.data, *__restrict ind = lu->ProductInd.data;
    const R *__restrict val = lu->ProductVal.data;
    const bool listed = x->Count >= 0;
    int64_t work = lu->NumProducts;
    for (int t = 0; t < lu->NumProducts; t++) {
        const int r = lu->ProductRow.data[t];
        R xr = x->Value.data[r];
        if (std::abs(xr) <= lu->DropTol) continue;
        x->Value.data[r] = xr = xr / lu->ProductPivot.data[t];
        for (int p = beg[t]; p < beg[t + 1]; p++) add_entry(x, ind[p], -val[p] * xr);
        work += beg[t + 1] - beg[t];
    }
    lu->WorkUnits += static_cast<double>(work);
    if (listed) svec_tidy(x, lu->DropTol);
}

template<class R> void lu_apply_products_transposed(lufact<R> *lu, SVec<R> *x)
{
    const int *__restrict beg = lu->ProductBeg.data, *__restrict ind = lu->ProductInd.data;
    const R *__restrict val = lu->ProductVal.data;
    const R *value = x->Value.data; // changes below
    for (int t = lu->NumProducts - 1; t >= 0; t--) {
        const int r = lu->ProductRow.data[t];
        R sum = value[r];
        for (int p = beg[t]; p < beg[t + 1]; p++) sum -= val[p] * value[ind[p]];
        sum /= lu->ProductPivot.data[t];
        if (sum != value[r]) add_entry(x, r, sum - value[r]);
    }
    lu->WorkUnits += beg[lu->NumProducts] + lu->NumProducts;
    if (x->Count >= 0) svec_tidy(x, lu->DropTol);
}

#define INSTANTIATE(R)                                                                     \
    template int lu_product_update<R>(lufact<R> *, int, const SVec<R> *);                  \
    template void lu_drop_products<R>(lufact<R> *);                                        \
    template void lu_apply_products<R>(lufact<R> *, SVec<R> *);                            \
    template void lu_apply_products_transposed<R>(lufact<R> *, SVec<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
