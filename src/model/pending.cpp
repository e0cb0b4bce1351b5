// pending.cpp -- the record of pending changes: made, emptied, freed, and the setters' queue
//
// Setters of per-element values share one shape: make room for everything first, then store and
// flag, so that a call that fails has queued nothing. Bound changes have entries of their own
// instead of flags: branching and heuristics issue them in large numbers, and an update that only
// holds a few of them must not look at all variables.
// Cost: O(entries of the call), plus once O(elements) when a per-element array is first made.
#include "model/pending.h"
#include "model/model_store.h"
#include <algorithm>

bool model_has_pending(const TVXmodel *model)
{
    const PendingChanges *p = model->pending;
    if (!p) return false;
    return p->new_sense || p->has_objcon || p->new_modelname || p->vars.touched.size ||
           p->constrs.touched.size || p->added_vars.columns.count ||
           p->added_constrs.rows.count || p->coef_changes.var.size ||
           p->bound_changes.who.size || p->sos_changes.type.size ||
           p->sos_changes.n_deleted;
}

int pending_get(TVXmodel *model)
{
    if (!model->pending) model->pending = record_create<PendingChanges>();
    return model->pending ? 0 : OUT_OF_MEMORY;
}

void pending_free(PendingChanges *pending)
{
    record_free(pending);
}

namespace
{
void clear_elements(ElementChanges *changes)
{
    for (const int k : changes->touched) changes->flags[k] = 0;
    changes->touched.size = 0;
    changes->n_deleted = changes->n_type = changes->n_value = changes->n_name = 0;
}

void clear_vectors(PendingVectors *vectors)
{
    vectors->count = 0;
    vectors->beg.size = vectors->ind.size = vectors->val.size = vectors->names.size = 0;
}
} // namespace

void pending_clear(PendingChanges *p)
{
    p->new_sense = p->has_objcon = 0;
    p->new_modelname = nullptr;
    clear_elements(&p->vars);
    clear_elements(&p->constrs);
    clear_vectors(&p->added_vars.columns);
    p->added_vars.vtype.size = 0;
    p->added_vars.lb.size = p->added_vars.ub.size = p->added_vars.obj.size = 0;
    clear_vectors(&p->added_constrs.rows);
    p->added_constrs.n_ranges = 0;
    p->added_constrs.sense.size = 0;
    p->added_constrs.rhs.size = p->added_constrs.lower.size = 0;
    p->coef_changes.var.size = p->coef_changes.row.size = p->coef_changes.val.size = 0;
    PendingBounds *bounds = &p->bound_changes;
    for (const int who : bounds->who) {
        if (who >= 0)
            bounds->upper_pos[who] = -1;
        else
            bounds->lower_pos[-who - 1] = -1;
    }
    bounds->who.size = bounds->val.size = 0;
    PendingSos *sos = &p->sos_changes;
    sos->type.size = sos->beg.size = sos->ind.size = sos->wt.size = sos->del.size = 0;
    sos->n_deleted = 0;
}

// ---- Per-element changes ----

int element_changes_reserve(ElementChanges *changes, int n_elements, int n_new)
{
    TRY(array_extend(&changes->flags, n_elements, 0));
    const int64_t need =
        std::min<int64_t>(changes->touched.size + n_new, n_elements); // each element once
    return array_grow(&changes->touched, need);
}

void element_changes_flag(ElementChanges *changes, int k, PendingFlag flag)
{
    int *flags = &changes->flags[k];
    if (*flags & flag) return;
    if (!*flags) array_push(&changes->touched, k);
    *flags |= flag;
    switch (flag) {
    case PENDING_DELETED:
        changes->n_deleted++;
        break;
    case PENDING_TYPE:
        changes->n_type++;
        break;
    case PENDING_VALUE:
        changes->n_value++;
        break;
    case PENDING_NAME:
        changes->n_name++;
        break;
    }
}

int element_changes_stamp(ElementChanges *changes)
{
    if (changes->stamp == INT32_MAX) { // start again
        for (int &entry : changes->mark) entry = 0;
        changes->stamp = 0;
    }
    return ++changes->stamp;
}

namespace
{
int queue_values(ElementChanges *changes, int n_elements, ElementRange range,
                 const double *values)
{
    TRY(element_changes_reserve(changes, n_elements, range.len));
    if (changes->value.size < n_elements) TRY(array_resize(&changes->value, n_elements));
    for (int k = 0; k < range.len; k++) {
        const int at = element_at(range, k);
        changes->value[at] = values[k];
        element_changes_flag(changes, at, PENDING_VALUE);
    }
    return 0;
}

int queue_types(ElementChanges *changes, int n_elements, ElementRange range,
                const char *values, char (*normal)(char))
{
    TRY(element_changes_reserve(changes, n_elements, range.len));
    if (changes->type.size < n_elements) TRY(array_resize(&changes->type, n_elements));
    for (int k = 0; k < range.len; k++) {
        const int at = element_at(range, k);
        changes->type[at] = normal(values[k]);
        element_changes_flag(changes, at, PENDING_TYPE);
    }
    return 0;
}

int queue_names(ModelBody *body, ElementChanges *changes, NameKind kind, ElementRange range,
                const char *const *values)
{
    const int n_elements = kind == NameKind::VAR ? body->numvars : body->numconstrs;
    TRY(element_changes_reserve(changes, n_elements, range.len));
    if (changes->name.size < n_elements) TRY(array_resize(&changes->name, n_elements));
    Array<const char *> stored;
    TRY(array_resize(&stored, range.len));
    for (int k = 0; k < range.len; k++) {
        const char *text = values[k];
        if (text && *text)
            TRY(body_store_name(body, text, &stored[k]));
        else
            TRY(body_number_name(body, kind, element_at(range, k), &stored[k]));
    }
    for (int k = 0; k < range.len; k++) {
        const int at = element_at(range, k);
        changes->name[at] = stored[k];
        element_changes_flag(changes, at, PENDING_NAME);
    }
    return 0;
}
} // namespace

int pending_set_obj(TVXmodel *model, ElementRange range, const double *values)
{
    TRY(pending_get(model));
    return queue_values(&model->pending->vars, model->body->numvars, range, values);
}

int pending_set_rhs(TVXmodel *model, ElementRange range, const double *values)
{
    TRY(pending_get(model));
    return queue_values(&model->pending->constrs, model->body->numconstrs, range, values);
}

int pending_set_vtype(TVXmodel *model, ElementRange range, const char *values)
{
    for (int k = 0; k < range.len; k++)
        TRY(check_vtype(model->env, values[k], element_at(range, k)));
    TRY(pending_get(model));
    return queue_types(&model->pending->vars, model->body->numvars, range, values,
                       normal_vtype);
}

int pending_set_senses(TVXmodel *model, ElementRange range, const char *values)
{
    TRY(pending_get(model));
    return queue_types(&model->pending->constrs, model->body->numconstrs, range, values,
                       normal_sense);
}

int pending_set_varnames(TVXmodel *model, ElementRange range, const char *const *values)
{
    TRY(pending_get(model));
    return queue_names(model->body, &model->pending->vars, NameKind::VAR, range, values);
}

int pending_set_constrnames(TVXmodel *model, ElementRange range, const char *const *values)
{
    TRY(pending_get(model));
    return queue_names(model->body, &model->pending->constrs, NameKind::CONSTR, range,
                       values);
}

// ---- Bounds ----

int pending_set_bounds(TVXmodel *model, BoundSide side, ElementRange range,
                       const double *values)
{
    TRY(pending_get(model));
    PendingBounds *bounds = &model->pending->bound_changes;
    const int n = model->body->numvars;
    TRY(array_extend(&bounds->lower_pos, n, -1));
    TRY(array_extend(&bounds->upper_pos, n, -1));
    const int64_t need = std::min<int64_t>(bounds->who.size + range.len, 2 * int64_t{n});
    TRY(array_grow(&bounds->who, need));
    TRY(array_grow(&bounds->val, need));

    const bool upper = side == BoundSide::UPPER;
    Array<int> *pos = upper ? &bounds->upper_pos : &bounds->lower_pos;
    for (int k = 0; k < range.len; k++) {
        const int j = element_at(range, k);
        int *at = &(*pos)[j];
        if (*at < 0) {
            *at = static_cast<int>(bounds->who.size);
            array_push(&bounds->who, upper ? j : -j - 1);
            array_push(&bounds->val, 0.0);
        }
        bounds->val[*at] = stored_bound(values[k]);
    }
    return 0;
}

// ---- The model as a whole ----

int pending_set_model_sense(TVXmodel *model, int sense)
{
    TRY(pending_get(model));
    model->pending->new_sense = sense < 1 ? -1 : 1;
    return 0;
}

int pending_set_objcon(TVXmodel *model, double value)
{
    TRY(pending_get(model));
    model->pending->has_objcon = 1;
    model->pending->new_objcon = value;
    return 0;
}

int pending_set_modelname(TVXmodel *model, const char *name)
{
    TRY(pending_get(model));
    return body_store_name(model->body, name ? name : "", &model->pending->new_modelname);
}
