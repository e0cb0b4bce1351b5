// primal_record.cpp -- memory of popt, the record of the primal simplex method
#include "simplex/primal.h"

namespace
{
template<class R> int alloc_columns(const sopt *s, popt<R> *p)
{
    const int nv = s->NumVars;
    TRY(array_resize(&p->Weights, nv));
    TRY(price_list_alloc(&p->Columns, nv));
    TRY(array_assign(&p->PhaseCost, nv, 0.0));
    for (Array<char> *a : {&p->Reference, &p->InClass, &p->ColRejected})
        TRY(array_assign(a, nv, char(0)));
    TRY(array_resize(&p->AuxList, nv));
    return array_resize(&p->ClassNext, nv);
}

template<class R> int alloc_rows(const sopt *s, popt<R> *p)
{
    const int m = s->NumRows;
    TRY(svec_alloc(&p->CostChange, m));
    TRY(array_resize(&p->RowState, m));
    TRY(array_assign(&p->Pi, m, R(0)));
    TRY(array_resize(&p->BreakStep, 2 * int64_t{m}));
    return array_resize(&p->BreakRow, 2 * int64_t{m});
}
} // namespace

template<class R> int popt_create(const sopt *s, popt<R> **out)
{
    *out = nullptr;
    void *block = MemAllocZero(1, sizeof(popt<R>));
    if (!block) return OUT_OF_MEMORY;
    popt<R> *p = *out = static_cast<popt<R> *>(block);
    *p = popt<R>{};
    TRY(alloc_columns(s, p));
    return alloc_rows(s, p);
}

template<class R> void popt_free(popt<R> **p)
{
    if (!*p) return;
    **p = popt<R>{};
    MemFree(*p);
    *p = nullptr;
}

#define INSTANTIATE(R)                                                                     \
    template int popt_create<R>(const sopt *, popt<R> **);                                 \
    template void popt_free<R>(popt<R> **);
INSTANTIATE(double)
INSTANTIATE(long double)
