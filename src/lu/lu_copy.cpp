// lu_copy.cpp -- save fresh factors, and restore them after updates or a refactorisation
//
// Method      Updates change only U, its order and the etas; L is copied back only after a refactorisation.
// Cost        O(m + entries), a small part of a factorisation. Restoring allocates nothing, as arrays never shrink.
#include "lu/lufact.h"
#include <algorithm>

namespace
{
// Calls copy(array of one record, array of the other) for all arrays until one call fails; returns its code, or 0.
template<class R, class F>
int for_each_upper(const lufact<R> *from, lufact<R> *to, const F &copy)
{
    using Record = lufact<R>;
    for (Array<int> Record::*a : {&Record::PosOfRow, &Record::UColBeg, &Record::UColLen,
                                  &Record::UColCap, &Record::UColInd, &Record::URowBeg,
                                  &Record::URowLen, &Record::URowCap, &Record::URowInd})
        TRY(copy(from->*a, &(to->*a)));
    for (Array<R> Record::*a : {&Record::UColVal, &Record::URowVal, &Record::UDiag})
        TRY(copy(from->*a, &(to->*a)));
    return 0;
}

template<class R, class F>
int for_each_lower(const lufact<R> *from, lufact<R> *to, const F &copy)
{
    using Record = lufact<R>;
    for (Array<int> Record::*a :
         {&Record::LColBeg, &Record::LColLen, &Record::LInd, &Record::LColOrder,
          &Record::LRowBeg, &Record::LRowLen, &Record::LRowInd, &Record::LRowOrder})
        TRY(copy(from->*a, &(to->*a)));
    for (Array<R> Record::*a : {&Record::LVal, &Record::LRowVal})
        TRY(copy(from->*a, &(to->*a)));
    return 0;
}

constexpr auto copy_array = [](const auto &from, auto *to) {
    return array_copy(to, from.data, from.size);
};

template<class R> void copy_figures(const lufact<R> *from, lufact<R> *to)
{
    to->LNonzeros = from->LNonzeros;
    to->UNonzeros = from->UNonzeros;
    std::copy_n(from->Density[0], 2 * SOLVE_KINDS, to->Density[0]);
}
} // namespace

template<class R> int lu_keep(const lufact<R> *lu, lufact<R> *kept)
{
    assert(lu->NeedBasis == 0 && lu->NumUpdates == 0);
    TRY(array_copy(&kept->Order, lu->Order.data, lu->NumRows));
    TRY(for_each_upper(lu, kept, copy_array));
    TRY(for_each_lower(lu, kept, copy_array));
    copy_figures(lu, kept);
    return 0;
}

template<class R> void lu_go_back(const lufact<R> *kept, LuParts parts, lufact<R> *lu)
{
    const auto put_back = [](const auto &from, auto *to) {
        assert(to->room >= from.size);
        std::copy_n(from.data, from.size, to->data);
        to->size = from.size;
        return 0;
    };
    std::copy_n(kept->Order.data, lu->NumRows, lu->Order.data);
    static_cast<void>(for_each_upper(kept, lu, put_back));
    if (parts == LuParts::ALL) static_cast<void>(for_each_lower(kept, lu, put_back));
    copy_figures(kept, lu);
    lu_forget_updates(lu);
    lu->NeedBasis = 0;
}

#define INSTANTIATE(R)                                                                     \
    template int lu_keep<R>(const lufact<R> *, lufact<R> *);                               \
    template void lu_go_back<R>(const lufact<R> *, LuParts, lufact<R> *);
INSTANTIATE(double)
INSTANTIATE(long double)
