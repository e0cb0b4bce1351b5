// attribute_quality.cpp -- attributes of solution quality: violations, residuals, condition number of the basis
//
// Method   The measures (quality.h) and the condition number are computed when first asked for after a solve, and
//          kept in its result. A MIP has the measures of bounds, constraints and integrality only.
#include "attributes/attribute_routines.h"
#include "body/quality.h"
#include "model/solution.h"
#include "simplex/simplex.h"

namespace
{
// In the order of QualityGroup.
constexpr Violation Quality::*const groups[QUALITY_GROUPS] = {
    &Quality::BoundVio,      &Quality::BoundSVio,      &Quality::ConstrVio,
    &Quality::ConstrSVio,    &Quality::ConstrResidual, &Quality::ConstrSResidual,
    &Quality::DualVio,       &Quality::DualSVio,       &Quality::DualResidual,
    &Quality::DualSResidual, &Quality::ComplVio,       &Quality::IntVio,
};

int show(const Quality *quality, int part, const void **place)
{
    const Violation *violation = &(quality->*groups[part / VIOLATION_PARTS]);
    switch (part % VIOLATION_PARTS) {
    case PART_MAX:
        *place = &violation->max;
        break;
    case PART_SUM:
        *place = &violation->sum;
        break;
    default:
        *place = &violation->index;
        break;
    }
    return 0;
}

int mip_quality(TVXmodel *model, int part, const void **place)
{
    const int group = part / VIOLATION_PARTS;
    if (group != BOUND_VIO && group != CONSTR_VIO && group != INT_VIO)
        return TVX_ERROR_DATA_NOT_AVAILABLE;
    const double *x = nullptr;
    TRY(solution_x(model, &x));
    Quality *quality = &model->mip.result->quality;
    if (!quality->computed)
        TRY(MipQuality(model->env, model->body, x, quality, QualityWarnings::NO));
    return show(quality, part, place);
}
} // namespace

int compute_quality(TVXmodel *model, int part, const void **place)
{
    if (model->mip.result) return mip_quality(model, part, place);
    TRY(solution_quality(model));
    return show(&model->lp.result->quality, part, place);
}

namespace
{
// Makes sure that there are factors of the current basis. If it is singular its repair changes the values.
int need_factor(TVXmodel *model)
{
    if (!model->lp.simplex) return TVX_ERROR_DATA_NOT_AVAILABLE;
    if (simplex_has_factor(model->lp.simplex)) return 0;
    attributes_clear_solution(model);
    const int code = simplex_refactor(model->lp.simplex);
    if (code == OUT_OF_MEMORY) return code;
    return simplex_has_factor(model->lp.simplex) ? 0 : TVX_ERROR_DATA_NOT_AVAILABLE;
}
} // namespace

int compute_kappa(TVXmodel *model, int part, const void **place)
{
    if (!solution_available(model)) return TVX_ERROR_DATA_NOT_AVAILABLE;
    TRY(check_idle(model)); // the estimate works on the record
    TRY(need_factor(model));
    TRY(attributes_make(model));
    AttributeTable *table = model->attributes;
    const int group = part == 0 ? HAVE_KAPPA : HAVE_N2KAPPA;
    if (!(table->have & group))
        TRY(simplex_kappa(model->lp.simplex, part == 0 ? KappaNorm::ONE : KappaNorm::TWO,
                          &table->kappa[part]));
    table->have |= group;
    *place = &table->kappa[part];
    return 0;
}
