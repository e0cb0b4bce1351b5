// attribute_ranges.cpp -- attributes of sensitivity (sensitivity.h)
//
// Method      Both ends of a range, which one solve with the factors gives, are kept until the next solve of the model,
//             so that reading the lower and then the upper end costs one solve.
// Cost        For each element not read before that of its range; and once O(n) or O(m).
#include "attributes/attribute_routines.h"
#include "attributes/sensitivity.h"
#include <cmath>
#include <limits>

namespace
{
int fill_ranges(TVXmodel *model, int part, int k)
{
    Array<double> *ends = model->attributes->ranges;
    const auto put = [ends, k](int low, const RangePair &range) {
        ends[low][k] = range.Low;
        ends[low + 1][k] = range.Up;
    };
    if (part <= OBJ_UP) {
        put(OBJ_LOW, range_of_cost(model, k));
    } else if (part <= UB_UP) {
        const BoundRanges ranges = ranges_of_bounds(model, k);
        put(LB_LOW, ranges.Lower);
        put(UB_LOW, ranges.Upper);
    } else {
        RangePair range;
        TRY(range_of_rhs(model, k, &range));
        put(RHS_LOW, range);
    }
    return 0;
}

// Allocates both ends of this kind of range, as unknown.
int make_room(TVXmodel *model, int part)
{
    const bool rows = part >= RHS_LOW;
    const int first = rows             ? RHS_LOW
                      : part <= OBJ_UP ? OBJ_LOW
                                       : LB_LOW,
              last = rows             ? RHS_UP
                     : part <= OBJ_UP ? OBJ_UP
                                      : UB_UP,
              size = rows ? model->body->numconstrs : model->body->numvars;
    for (int end = first; end <= last; end++) {
        Array<double> *ends = &model->attributes->ranges[end];
        if (ends->size != size)
            TRY(array_assign(ends, size, std::numeric_limits<double>::quiet_NaN()));
    }
    return 0;
}
} // namespace

int get_range(TVXmodel *model, int part, ElementRange range, void *values)
{
    TRY(SensitivityPrepare(model));
    TRY(make_room(model, part));
    double *out = static_cast<double *>(values);
    for (int i = 0; i < range.len; i++) {
        const int k = element_at(range, i);
        if (std::isnan(model->attributes->ranges[part][k]))
            TRY(fill_ranges(model, part, k));
        out[i] = model->attributes->ranges[part][k];
    }
    return 0;
}
