// svec.h -- SVec, the sparse work vector of every solve
//
// Values are stored by index, so that any entry is found directly; a list of the nonzeros makes sparse vectors cheap.
//   listed   Count >= 0    every nonzero Value[i] has its i once in Index[0..Count-1]
//   dense    Count == -1   there is no list; only Value is valid
// A listed entry may have the value SVEC_TINY: it cancelled to zero, but stays nonzero so that it is not listed twice.
// Entries that are not listed are exactly zero.
#pragma once
#include "runtime/array.h"
#include <cmath>

// Replaces a zero in the list.
template<class R>
// NOLINTNEXTLINE(bugprone-dynamic-static-initializers): a constant expression, seen through a template
inline constexpr R SVEC_TINY = R(1e-100);

// Above this share of nonzeros a loop over all entries is faster than one over the list.
static constexpr double SVEC_LIST_SHARE = 0.3;

template<class R> struct SVec {
    int Dim = 0;      // length of the vector
    int Count = 0;    // entries listed, or -1
    Array<int> Index; // [Dim]
    Array<R> Value;   // [Dim]
};

template<class R> [[nodiscard]] int svec_alloc(SVec<R> *v, int dim)
{
    TRY(array_resize(&v->Index, dim));
    TRY(array_assign(&v->Value, dim, R(0)));
    v->Dim = dim;
    v->Count = 0;
    return 0;
}

template<class R> bool svec_is_short(const SVec<R> *v)
{
    return v->Count >= 0 && v->Count < SVEC_LIST_SHARE * v->Dim;
}

// All zero again.                                                    cost: entries when short, else Dim
template<class R> void svec_clear(SVec<R> *v)
{
    R *value = v->Value.data;
    if (svec_is_short(v)) {
        for (int k = 0; k < v->Count; k++) value[v->Index.data[k]] = R(0);
    } else {
        for (int i = 0; i < v->Dim; i++) value[i] = R(0);
    }
    v->Count = 0;
}

// Adds to entry i of a listed vector.
template<class R> inline void svec_add(SVec<R> *v, int i, R x)
{
    R *value = v->Value.data;
    if (value[i] == R(0)) v->Index.data[v->Count++] = i; // exactly zero: not listed yet
    value[i] += x;
    if (value[i] == R(0)) value[i] = SVEC_TINY<R>;
}

// Unit vector.
template<class R> void svec_unit(SVec<R> *v, int i, R x)
{
    svec_clear(v);
    v->Count = 1;
    v->Index.data[0] = i;
    v->Value.data[i] = x;
}

// Makes the list contain exactly the entries above drop in magnitude; the others become zero.
template<class R> void svec_tidy(SVec<R> *v, R drop)
{
    R *value = v->Value.data;
    int *index = v->Index.data;
    int count = 0;
    if (v->Count >= 0) {
        for (int k = 0; k < v->Count; k++) {
            const int i = index[k];
            if (std::abs(value[i]) > drop)
                index[count++] = i;
            else
                value[i] = R(0);
        }
    } else {
        for (int i = 0; i < v->Dim; i++) { // no branch: it would be unpredictable
            const bool keep = std::abs(value[i]) > drop;
            value[i] = keep ? value[i] : R(0);
            index[count] = i;
            count += keep;
        }
    }
    v->Count = count;
}

// to = from; both of one dimension.
template<class R> void svec_copy(SVec<R> *to, const SVec<R> *from)
{
    svec_clear(to);
    to->Count = from->Count;
    if (from->Count >= 0) {
        for (int k = 0; k < from->Count; k++) {
            const int i = from->Index.data[k];
            to->Index.data[k] = i;
            to->Value.data[i] = from->Value.data[i];
        }
    } else {
        for (int i = 0; i < from->Dim; i++) to->Value.data[i] = from->Value.data[i];
    }
}
