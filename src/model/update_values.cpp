// update_values.cpp -- new values for elements that exist: names, sides, senses, objective, types,
// bounds
//
// Indices are those before deletions. Order matters twice: a new side is stored by the row's old
// sense before the sense changes (which then negates it with the row), and bounds are rounded for
// integer variables when both types and bounds are final, from the bounds as they were given.
// Cost: O(changes); plus one pass over the matrix when a row becomes or ceases to be '>', and one
// over the objective when its sense changes.
#include "model/update.h"

namespace
{
void apply_names(const ElementChanges *changes, Array<const char *> *names)
{
    if (changes->n_name == 0) return;
    for (const int k : changes->touched)
        if (changes->flags[k] & PENDING_NAME) (*names)[k] = changes->name[k];
}
} // namespace

void update_names(TVXmodel *model)
{
    const PendingChanges *p = model->pending;
    if (p->new_modelname) model->body->modelname = p->new_modelname;
    apply_names(&p->vars, &model->body->varnames);
    apply_names(&p->constrs, &model->body->constrnames);
}

namespace
{
void apply_constrs(ModelBody *body, const ElementChanges *changes, const UpdatePlan *plan)
{
    for (const int i : changes->touched)
        if (changes->flags[i] & PENDING_VALUE)
            body->rhs[i] = body->senses[i] == '>' ? -changes->value[i] : changes->value[i];
    for (const int i : changes->touched) {
        if (!(changes->flags[i] & PENDING_TYPE)) continue;
        if (plan->negate.size && plan->negate[i]) body->rhs[i] = -body->rhs[i];
        body->senses[i] = changes->type[i];
    }
    if (plan->negate.size) body_negate_rows(body, plan->negate.data);
}

void apply_objective(ModelBody *body, const PendingChanges *p)
{
    if (p->new_sense && p->new_sense != body->sense) {
        for (double &obj : body->obj) obj = -obj;
        body->objcon = -body->objcon;
        body->sense = p->new_sense;
    }
    if (p->has_objcon) body->objcon = body->sense * p->new_objcon;
    for (const int j : p->vars.touched)
        if (p->vars.flags[j] & PENDING_VALUE) body->obj[j] = body->sense * p->vars.value[j];
}

// From the bounds as given: what an earlier type has made of them does not count.
void settle_bounds(ModelBody *body, int j)
{
    double *lb = &body->lb[j], *ub = &body->ub[j];
    if (body->vtypes.size) {
        *lb = body->given_lb[j];
        *ub = body->given_ub[j];
        round_bounds(body->vtypes[j], lb, ub);
    }
    body->bound_kind[j] = bound_kind_of(*lb, *ub, body->kind_infinity);
}

void apply_types_and_bounds(ModelBody *body, const PendingChanges *p)
{
    const bool typed = body->vtypes.size > 0;
    Array<double> *lower = typed ? &body->given_lb : &body->lb,
                  *upper = typed ? &body->given_ub : &body->ub;
    for (const int j : p->vars.touched)
        if (p->vars.flags[j] & PENDING_TYPE) body->vtypes[j] = p->vars.type[j];
    const PendingBounds *bounds = &p->bound_changes;
    for (int64_t k = 0; k < bounds->who.size; k++) {
        const int who = bounds->who[k];
        if (who >= 0)
            (*upper)[who] = bounds->val[k];
        else
            (*lower)[-who - 1] = bounds->val[k];
    }
    for (const int j : p->vars.touched)
        if (p->vars.flags[j] & PENDING_TYPE) settle_bounds(body, j);
    for (const int who : bounds->who) settle_bounds(body, who >= 0 ? who : -who - 1);
}
} // namespace

void update_values(TVXmodel *model, const UpdatePlan *plan)
{
    const PendingChanges *p = model->pending;
    apply_constrs(model->body, &p->constrs, plan);
    apply_objective(model->body, p);
    apply_types_and_bounds(model->body, p);
}
