// attribute_model.cpp -- attributes of the model's content: counts, bounds, costs, rows, MIP start
//
// Method      Values are returned in the caller's form: a maximise objective and rows with sense '>' are
//             stored negated and converted back here; infinite bounds are returned as -1e100 and 1e100.
//             Setters add to the pending changes (pending.h), so the body is never changed here.
// Cost        The elements asked for.
#include "attributes/attribute_routines.h"
#include "body/signs.h"

namespace
{
template<class T> T *out(void *values)
{
    return static_cast<T *>(values);
}

template<class T> const T *in(const void *values)
{
    return static_cast<const T *>(values);
}
} // namespace

// ---- Counts and senses ----

int compute_count(TVXmodel *model, int part, const void **place)
{
    const ModelBody *body = model->body;
    const int *const counts[] = {&body->numconstrs, &body->numvars,    &body->numsos,
                                 &body->numnz,      &body->numintvars, &body->numbinvars};
    *place = counts[part];
    return 0;
}

int compute_model_sense(TVXmodel *model, int, const void **place)
{
    *place = &model->body->sense;
    return 0;
}

int set_model_sense(TVXmodel *model, int, ElementRange, const void *values)
{
    return pending_set_model_sense(model, *in<int>(values));
}

int compute_senses(TVXmodel *model, int, const void **place)
{
    *place = model->body->senses.data;
    return 0;
}

int set_senses(TVXmodel *model, int, ElementRange range, const void *values)
{
    return pending_set_senses(model, range, in<char>(values));
}

int get_is_mip(TVXmodel *model, int, ElementRange, void *values)
{
    *out<int>(values) = body_is_mip(model->body);
    return 0;
}

// ---- Objective ----

int get_objcon(TVXmodel *model, int, ElementRange, void *values)
{
    *out<double>(values) = turned(model->body->sense, model->body->objcon);
    return 0;
}

int set_objcon(TVXmodel *model, int, ElementRange, const void *values)
{
    return pending_set_objcon(model, *in<double>(values));
}

int get_obj(TVXmodel *model, int, ElementRange range, void *values)
{
    const ModelBody *body = model->body;
    for (int k = 0; k < range.len; k++)
        out<double>(values)[k] = turned(body->sense, body->obj[element_at(range, k)]);
    return 0;
}

int set_obj(TVXmodel *model, int, ElementRange range, const void *values)
{
    return pending_set_obj(model, range, in<double>(values));
}

// ---- Variables ----

int get_bounds(TVXmodel *model, int part, ElementRange range, void *values)
{
    const Array<double> &bounds = part == PART_LOWER ? model->body->lb : model->body->ub;
    for (int k = 0; k < range.len; k++) {
        const double bound = bounds[element_at(range, k)];
        double shown = bound;
        if (bound >= INFINITE_BOUND) shown = UNDEFINED_VALUE;
        if (bound <= -INFINITE_BOUND) shown = -UNDEFINED_VALUE;
        out<double>(values)[k] = shown;
    }
    return 0;
}

int set_bounds(TVXmodel *model, int part, ElementRange range, const void *values)
{
    const BoundSide side = part == PART_LOWER ? BoundSide::LOWER : BoundSide::UPPER;
    return pending_set_bounds(model, side, range, in<double>(values));
}

int get_vtype(TVXmodel *model, int, ElementRange range, void *values)
{
    const Array<char> &vtypes = model->body->vtypes; // empty: all continuous
    for (int k = 0; k < range.len; k++)
        out<char>(values)[k] = vtypes.size ? vtypes[element_at(range, k)] : 'C';
    return 0;
}

int set_vtype(TVXmodel *model, int, ElementRange range, const void *values)
{
    return pending_set_vtype(model, range, in<char>(values));
}

namespace
{
// A MIP start is valid only for the variables that it was set for.
bool has_start(const TVXmodel *model)
{
    return model->mip_start.size > 0 && model->mip_start.size == model->body->numvars;
}
} // namespace

int get_start(TVXmodel *model, int, ElementRange range, void *values)
{
    if (!has_start(model)) return TVX_ERROR_DATA_NOT_AVAILABLE;
    for (int k = 0; k < range.len; k++)
        out<double>(values)[k] = model->mip_start[element_at(range, k)];
    return 0;
}

int set_start(TVXmodel *model, int, ElementRange range, const void *values)
{
    if (!has_start(model))
        TRY(array_assign(&model->mip_start, model->body->numvars, START_UNSET));
    for (int k = 0; k < range.len; k++) {
        const double value = in<double>(values)[k];
        const bool defined = value > -UNDEFINED_VALUE && value < UNDEFINED_VALUE;
        model->mip_start[element_at(range, k)] = defined ? value : START_UNSET;
    }
    return 0;
}

// ---- Constraints ----

int get_rhs(TVXmodel *model, int, ElementRange range, void *values)
{
    const ModelBody *body = model->body;
    for (int k = 0; k < range.len; k++) {
        const int i = element_at(range, k);
        out<double>(values)[k] = turned(row_sign(body, i), body->rhs[i]);
    }
    return 0;
}

int set_rhs(TVXmodel *model, int, ElementRange range, const void *values)
{
    return pending_set_rhs(model, range, in<double>(values));
}
