// search_space.cpp -- the bodies that stand for each other, and the way of a solution through them
#include "mip/mip_state.h"
#include <algorithm>

int space_extend(SearchSpace *outer, ModelBody *copy, PresolveResult *presolved,
                 SearchSpace **out)
{
    *out = record_create<SearchSpace>();
    if (*out) {
        **out = {presolve_reduced(presolved), presolved, copy, outer};
        return 0;
    }
    presolve_free(presolved);
    body_free(copy);
    return OUT_OF_MEMORY;
}

int space_create(const ModelBody *body, PresolveResult *presolved, SearchSpace **out)
{
    SearchSpace *outer = record_create<SearchSpace>();
    if (!outer) {
        presolve_free(presolved);
        return OUT_OF_MEMORY;
    }
    outer->Body = body;
    const int code = space_extend(outer, nullptr, presolved, out);
    if (code) record_free(outer);
    return code;
}

void space_free(SearchSpace *space)
{
    while (space) {
        SearchSpace *outer = space->Outer;
        presolve_free(space->Presolve);
        body_free(space->Copy);
        record_free(space);
        space = outer;
    }
}

const ModelBody *space_outermost(const SearchSpace *space)
{
    while (space->Outer) space = space->Outer;
    return space->Body;
}

int space_map_back(const SearchSpace *space, const double *x, double *full)
{
    Array<double> point, outer;
    TRY(array_copy(&point, x, space->Body->numvars));
    for (; space->Outer; space = space->Outer) {
        TRY(array_resize(&outer, space->Outer->Body->numvars));
        if (space->Presolve)
            postsolve_primal(space->Presolve, point.data, outer.data);
        else
            std::copy(point.begin(), point.end(), outer.begin());
        std::swap(point, outer);
    }
    std::copy_n(point.data, space->Body->numvars, full);
    return 0;
}

namespace
{
// The body next to `at` on the way inwards.
const SearchSpace *next_inner(const SearchSpace *innermost, const SearchSpace *at)
{
    while (innermost->Outer != at) innermost = innermost->Outer;
    return innermost;
}
} // namespace

int space_map_in(const SearchSpace *space, const double *full, double *x, bool *mapped)
{
    Array<double> point, inner;
    const SearchSpace *at = space;
    while (at->Outer) at = at->Outer;
    TRY(array_copy(&point, full, at->Body->numvars));
    for (*mapped = true; at != space && *mapped;) {
        at = next_inner(space, at);
        TRY(array_resize(&inner, at->Body->numvars));
        if (at->Presolve)
            TRY(presolve_crush_point(at->Presolve, point.data, inner.data, mapped));
        else
            std::copy(point.begin(), point.end(), inner.begin());
        std::swap(point, inner);
    }
    if (*mapped) std::copy_n(point.data, space->Body->numvars, x);
    return 0;
}

int space_row_in(const SearchSpace *space, Array<double> *row, double *rhs, bool *mapped)
{
    Array<double> inner;
    const SearchSpace *at = space;
    while (at->Outer) at = at->Outer;
    for (*mapped = true; at != space && *mapped;) {
        at = next_inner(space, at);
        if (!at->Presolve) continue;
        TRY(array_resize(&inner, at->Body->numvars));
        TRY(presolve_crush_row(at->Presolve, row->data, rhs, inner.data, mapped));
        std::swap(*row, inner);
    }
    return 0;
}
