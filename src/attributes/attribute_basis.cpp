// attribute_basis.cpp -- attributes of the basis and of its pricing norms
//
// Method   Reading returns the basis of the last solve; setting writes the start basis of the next one
//          (warm_start.h). So a basis that was set cannot be read before the next solve.
#include "attributes/attribute_routines.h"
#include "model/solution.h"
#include "model/warm_start.h"
#include "simplex/simplex.h"

namespace
{
// Where the group's part of an array over variables, then constraints, begins.
int64_t offset(const TVXmodel *model, int part)
{
    return part == PART_OF_VARS ? 0 : model->body->numvars;
}
} // namespace

int compute_basis(TVXmodel *model, int part, const void **place)
{
    const int *codes = nullptr;
    TRY(solution_basis(model, &codes));
    *place = codes + offset(model, part);
    return 0;
}

int set_basis(TVXmodel *model, int part, ElementRange range, const void *values)
{
    const int *codes = static_cast<const int *>(values);
    return part == PART_OF_VARS ? warm_start_set_vars(model, range, codes)
                                : warm_start_set_constrs(model, range, codes);
}

namespace
{
int norms_kind(const TVXmodel *model)
{
    return model->lp.simplex ? simplex_get_norms(model->lp.simplex, nullptr) : 0;
}
} // namespace

// During a run there are no weights that belong to a final basis.
int get_has_norms(TVXmodel *model, int, ElementRange, void *values)
{
    TRY(check_idle(model));
    *static_cast<int *>(values) = norms_kind(model);
    return 0;
}

int compute_norms(TVXmodel *model, int part, const void **place)
{
    TRY(check_idle(model));
    if (!norms_kind(model)) return TVX_ERROR_DATA_NOT_AVAILABLE;
    TRY(attributes_make(model));
    AttributeTable *table = model->attributes;
    if (!(table->have & HAVE_NORMS)) {
        const int64_t size = int64_t{model->body->numvars} + model->body->numconstrs;
        TRY(array_resize(&table->norms, size));
        simplex_get_norms(model->lp.simplex, table->norms.data);
        table->have |= HAVE_NORMS;
    }
    *place = table->norms.data + offset(model, part);
    return 0;
}

int set_norms(TVXmodel *model, int part, ElementRange range, const void *values)
{
    const double *norms = static_cast<const double *>(values);
    return part == PART_OF_VARS ? warm_start_set_var_norms(model, range, norms)
                                : warm_start_set_constr_norms(model, range, norms);
}
