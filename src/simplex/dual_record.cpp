// dual_record.cpp -- memory of dopt, the record of the dual simplex method
#include "simplex/dual.h"

template<class R> int dopt_create(const sopt *s, dopt<R> **out)
{
    *out = nullptr;
    void *block = MemAllocZero(1, sizeof(dopt<R>));
    if (!block) return OUT_OF_MEMORY;
    dopt<R> *d = *out = static_cast<dopt<R> *>(block);
    *d = dopt<R>{};
    const int m = s->NumRows;
    TRY(array_assign(&d->Weights, m, R(0)));
    TRY(price_list_alloc(&d->Rows, m));
    for (Array<R> *a : {&d->WeightOf, &d->CandAlpha, &d->CandDual, &d->CandRange})
        TRY(array_resize(a, s->NumVars));
    for (Array<int> *a : {&d->CandPlace, &d->Flips}) TRY(array_resize(a, s->NumVars));
    TRY(array_resize(&d->GroupEnd, int64_t{s->NumVars} + 1));
    TRY(array_assign(&d->Reference, s->NumVars, char(0)));
    return array_assign(&d->RowRejected, m, char(0));
}

template<class R> void dopt_free(dopt<R> **d)
{
    if (!*d) return;
    **d = dopt<R>{};
    MemFree(*d);
    *d = nullptr;
}

#define INSTANTIATE(R)                                                                     \
    template int dopt_create<R>(const sopt *, dopt<R> **);                                 \
    template void dopt_free<R>(dopt<R> **);
INSTANTIATE(double)
INSTANTIATE(long double)
