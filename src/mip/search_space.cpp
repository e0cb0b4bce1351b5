// search_space.cpp -- the bodies that stand for each other, and the way of a solution through them
#include "mip/mip_state.h"
#include <algorithm>

void space_free(SearchSpace *space)
{
    while (space) {
        SearchSpace *outer = space->Outer;
        presolve_free(space->Presolve);
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
