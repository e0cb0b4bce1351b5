// update_plan.cpp -- all of an update that needs memory
//
// Coefficient changes are resolved by sorting them by variable and row: the last one to a place
// counts; one scan of each column concerned finds which of them are stored. A change to an element
// that is deleted in the same update is dropped.
// Cost: O(c log c + entries of the columns concerned) for c coefficient changes, O(rows + columns)
// when elements are added or deleted.
#include "model/update.h"
#include <algorithm>
#include <cmath>

// ---- Shape ----

namespace
{
int plan_map(const ElementChanges *changes, int count, Array<int> *map, int *kept)
{
    *kept = count - changes->n_deleted;
    if (changes->n_deleted == 0) return 0;
    TRY(array_resize(map, count));
    int next = 0;
    for (int k = 0; k < count; k++)
        (*map)[k] = changes->flags[k] & PENDING_DELETED ? -1 : next++;
    return 0;
}

int plan_shape(const TVXmodel *model, UpdatePlan *plan)
{
    const PendingChanges *p = model->pending;
    plan->added_vars = p->added_vars.columns.count;
    plan->added_constrs = p->added_constrs.rows.count;
    plan->n_ranges = p->added_constrs.n_ranges;
    TRY(plan_map(&p->vars, model->body->numvars, &plan->var_map, &plan->kept_vars));
    return plan_map(&p->constrs, model->body->numconstrs, &plan->constr_map,
                    &plan->kept_constrs);
}

// ---- Coefficient changes ----

// The changes that count, by variable and row.
int collect_edits(const PendingCoefs *coefs, const UpdatePlan *plan, Array<CoefEdit> *edits)
{
    TRY(array_resize(edits, coefs->var.size));
    edits->size = 0;
    for (int64_t k = 0; k < coefs->var.size; k++) {
        const int j = coefs->var[k];
        const int i = coefs->row[k];
        if (mapped(plan->var_map, j) < 0 || mapped(plan->constr_map, i) < 0) continue;
        array_push(
            edits,
            {.var = j, .row = i, .order = static_cast<int>(k), .value = coefs->val[k]});
    }
    std::sort(edits->begin(), edits->end(), [](const CoefEdit &a, const CoefEdit &b) {
        if (a.var != b.var) return a.var < b.var;
        return a.row != b.row ? a.row < b.row : a.order < b.order;
    });
    int64_t n = 0; // the last of equal places stays
    for (int64_t k = 0; k < edits->size; k++) {
        const CoefEdit &edit = (*edits)[k];
        if (n > 0 && (*edits)[n - 1].var == edit.var && (*edits)[n - 1].row == edit.row)
            n--;
        (*edits)[n++] = edit;
    }
    edits->size = n;
    return 0;
}

// Finds the entries of column j among its edits first .. last - 1, which are sorted by row.
void find_places(const ModelBody *body, CoefEdit *first, CoefEdit *last)
{
    const int j = first->var;
    for (int p = body->vbeg[j]; p < body->vbeg[j + 1]; p++) {
        CoefEdit *edit =
            std::lower_bound(first, last, body->vind[p],
                             [](const CoefEdit &e, int row) { return e.row < row; });
        if (edit < last && edit->row == body->vind[p]) edit->place = p;
    }
}

int plan_coefs(const TVXmodel *model, UpdatePlan *plan)
{
    const PendingCoefs *coefs = &model->pending->coef_changes;
    const double zero = model->env->TARV_PAR_ZERO;
    if (coefs->var.size == 0) return 0;
    Array<CoefEdit> edits;
    TRY(collect_edits(coefs, plan, &edits));
    for (int64_t k = 0, next = 0; k < edits.size; k = next) {
        while (next < edits.size && edits[next].var == edits[k].var) next++;
        find_places(model->body, edits.data + k, edits.data + next);
    }

    int64_t n_inserts = 0;
    for (const CoefEdit &edit : edits) n_inserts += edit.place < 0;
    TRY(array_reserve(&plan->inserts, n_inserts));
    TRY(array_reserve(&plan->edits, edits.size - n_inserts));
    for (const CoefEdit &edit : edits) {
        const bool vanishes = std::fabs(edit.value) < zero;
        if (edit.place >= 0) {
            array_push(&plan->edits, edit);
            plan->n_remove += vanishes;
        } else if (!vanishes) {
            array_push(&plan->inserts, edit);
        }
    }
    std::sort(plan->inserts.begin(), plan->inserts.end(),
              [](const CoefEdit &a, const CoefEdit &b) { return a.order < b.order; });
    return 0;
}

// ---- Rooms ----

bool adds_type(const PendingVars *vars)
{
    for (const char vtype : vars->vtype)
        if (vtype != 'C') return true;
    return false;
}

int reserve_vars(ModelBody *body, int64_t n)
{
    TRY(array_grow(&body->obj, n));
    TRY(array_grow(&body->lb, n));
    TRY(array_grow(&body->ub, n));
    TRY(array_grow(&body->bound_kind, n));
    TRY(array_grow(&body->vbeg, n + 1));
    return array_grow(&body->vlen, n);
}

// All 'C' and their bounds as they are say the same as no arrays.
int reserve_types(ModelBody *body, int64_t n)
{
    TRY(array_grow(&body->vtypes, n));
    TRY(array_grow(&body->given_lb, n));
    TRY(array_grow(&body->given_ub, n));
    if (body->vtypes.size > 0) return 0;
    array_append_n(&body->vtypes, static_cast<const char *>(nullptr), body->numvars, 'C');
    array_append_n(&body->given_lb, body->lb.data, body->numvars, 0.0);
    array_append_n(&body->given_ub, body->ub.data, body->numvars, 0.0);
    return 0;
}

// Arrays that may be absent: types, names, start. No names say the same as no array.
int reserve_var_options(TVXmodel *model, UpdatePlan *plan)
{
    ModelBody *body = model->body;
    const PendingChanges *p = model->pending;
    const int64_t n = int64_t{body->numvars} + plan->added_vars + plan->n_ranges;
    plan->has_vtypes =
        body->vtypes.size > 0 || p->vars.n_type > 0 || adds_type(&p->added_vars);
    plan->has_varnames = body->varnames.size > 0 || n > body->numvars;
    if (plan->has_vtypes) TRY(reserve_types(body, n));
    if (plan->has_varnames) {
        TRY(array_extend(&body->varnames, body->numvars,
                         static_cast<const char *>(nullptr)));
        TRY(array_grow(&body->varnames, n));
    }
    return model->mip_start.size ? array_grow(&model->mip_start, n) : 0;
}

int reserve_constrs(ModelBody *body, UpdatePlan *plan)
{
    const int64_t m = int64_t{body->numconstrs} + plan->added_constrs;
    plan->has_constrnames = body->constrnames.size > 0 || m > body->numconstrs;
    if (m == body->numconstrs) return 0;
    TRY(array_grow(&body->rhs, m));
    TRY(array_grow(&body->senses, m));
    TRY(array_extend(&body->constrnames, body->numconstrs,
                     static_cast<const char *>(nullptr)));
    return array_grow(&body->constrnames, m);
}

int reserve_matrix(TVXmodel *model, UpdatePlan *plan)
{
    ModelBody *body = model->body;
    const PendingChanges *p = model->pending;
    const int64_t merged = plan->inserts.size + p->added_constrs.rows.ind.size;
    const int64_t numnz =
        body->numnz + merged + p->added_vars.columns.ind.size + plan->n_ranges;
    TRY(array_grow(&body->vind, numnz));
    TRY(array_grow(&body->vval, numnz));
    return merged > 0 ? array_assign(&plan->extra, plan->numvars(), 0) : 0;
}

int reserve_sos(ModelBody *body, const PendingSos *sos)
{
    if (sos->type.size == 0) return 0;
    TRY(array_grow(&body->sostype, body->sostype.size + sos->type.size));
    TRY(array_grow(&body->sosbeg, body->numsos + sos->type.size + 1));
    TRY(array_grow(&body->sosind, body->sosind.size + sos->ind.size));
    return array_grow(&body->soswt, body->soswt.size + sos->ind.size);
}

int plan_negations(const TVXmodel *model, UpdatePlan *plan)
{
    const ElementChanges *changes = &model->pending->constrs;
    const ModelBody *body = model->body;
    for (const int i : changes->touched) {
        if (!(changes->flags[i] & PENDING_TYPE)) continue;
        if ((changes->type[i] == '>') == (body->senses[i] == '>')) continue;
        if (!plan->negate.size) TRY(array_assign(&plan->negate, body->numconstrs, '\0'));
        plan->negate[i] = 1;
    }
    return 0;
}

int plan_range_names(const TVXmodel *model, UpdatePlan *plan)
{
    const PendingConstrs *added = &model->pending->added_constrs;
    TRY(array_reserve(&plan->range_names, plan->n_ranges));
    for (int k = 0; k < plan->added_constrs; k++) {
        if (added->lower[k] == NO_RANGE) continue; // the value that was assigned
        const char *name = nullptr;
        TRY(body_join_name(model->body, "Rg", added->rows.names[k], &name));
        array_push(&plan->range_names, name);
    }
    return 0;
}
} // namespace

int update_plan(TVXmodel *model, UpdatePlan *plan)
{
    TRY(plan_shape(model, plan));
    TRY(plan_coefs(model, plan));
    TRY(plan_negations(model, plan));
    TRY(plan_range_names(model, plan));
    TRY(reserve_vars(model->body,
                     int64_t{model->body->numvars} + plan->added_vars + plan->n_ranges));
    TRY(reserve_var_options(model, plan));
    TRY(reserve_constrs(model->body, plan));
    TRY(reserve_matrix(model, plan));
    TRY(reserve_sos(model->body, &model->pending->sos_changes));
    return update_plan_basis(model, plan);
}
