// relaxed_model.cpp -- TVXrelaxmodel: the linear relaxation
//
// Method      Types and SOS constraints are removed. The bounds of a semi-continuous variable are widened to contain 0.
//             Integer variables keep their bounds, which are integers.
// Invariant   Every solution of the model is one of the relaxation, with the same objective.
#include "analysis/derived.h"
#include <algorithm>

namespace
{
int relax(TVXmodel * /*source*/, TVXmodel *copy)
{
    const ModelBody *body = copy->body;
    for (int j = 0; j < body->vtypes.size; j++) {
        const char type = body->vtypes.data[j];
        if (type != 'S' && type != 'N') continue;
        derived_set_bounds(copy, j, std::min(body->lb.data[j], 0.0),
                           std::max(body->ub.data[j], 0.0));
    }
    derived_make_linear(copy);
    return 0;
}
} // namespace

TVXmodel *TVXrelaxmodel(TVXmodel *model)
{
    return derive(model, "_relaxed", relax);
}
