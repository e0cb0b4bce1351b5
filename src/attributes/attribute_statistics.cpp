// attribute_statistics.cpp -- ranges of the numbers in a model, for an assessment of its scaling
//
// Method      Over coefficients, costs and right-hand sides the largest and smallest magnitude that
//             is not zero, 0 when there is none. Over bounds the largest finite upper and the
//             smallest finite lower bound, with their signs, 0 when there is none. Signs in which the
//             body differs from the caller's form do not matter to magnitudes.
// Cost        O(n + m + nonzeros), once per update.
#include "attributes/attribute_routines.h"
#include <cmath>

namespace
{
struct Extent {
    double max = 0;
    double min = 0;
    bool any = false;
};

void widen(Extent *extent, double value)
{
    if (!extent->any || value > extent->max) extent->max = value;
    if (!extent->any || value < extent->min) extent->min = value;
    extent->any = true;
}

Extent magnitudes(const double *values, int64_t n)
{
    Extent extent;
    for (int64_t k = 0; k < n; k++)
        if (values[k] != 0) widen(&extent, fabs(values[k]));
    return extent;
}

void measure(const ModelBody *body, double *statistics)
{
    const Extent coeff = magnitudes(body->vval.data, body->numnz);
    const Extent obj = magnitudes(body->obj.data, body->numvars);
    const Extent rhs = magnitudes(body->rhs.data, body->numconstrs);
    Extent lower, upper;
    for (int j = 0; j < body->numvars; j++) {
        if (body->lb[j] > -INFINITE_BOUND) widen(&lower, body->lb[j]);
        if (body->ub[j] < INFINITE_BOUND) widen(&upper, body->ub[j]);
    }
    statistics[MAX_COEFF] = coeff.max;
    statistics[MIN_COEFF] = coeff.min;
    statistics[MAX_BOUND] = upper.max;
    statistics[MIN_BOUND] = lower.min;
    statistics[MAX_OBJ_COEFF] = obj.max;
    statistics[MIN_OBJ_COEFF] = obj.min;
    statistics[MAX_RHS] = rhs.max;
    statistics[MIN_RHS] = rhs.min;
}
} // namespace

int compute_statistic(TVXmodel *model, int part, const void **place)
{
    TRY(attributes_make(model));
    AttributeTable *table = model->attributes;
    if (!(table->have & HAVE_STATISTICS)) {
        measure(model->body, table->statistics);
        table->have |= HAVE_STATISTICS;
    }
    *place = &table->statistics[part];
    return 0;
}
