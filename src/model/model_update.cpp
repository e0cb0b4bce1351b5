// model_update.cpp -- TVXupdatemodel and TVXresetmodel
//
// Pending changes become real in one go: a plan that takes all memory, then steps that cannot fail
// (see update.h). When the plan runs out of memory the model stays as it was, the changes are
// discarded and the status is 0.
// A change of names alone leaves the solved state; every other change brings the model back to
// loaded, and decides what survives of the basis.
// Cost: names, bounds and values O(changes); anything that changes the matrix one pass over it,
// however many adds were queued.
#include "model/attribute_cache.h"
#include "model/update.h"
#include "model/warm_start.h"
#include "simplex/simplex.h"

namespace
{
bool changes_only_names(const PendingChanges *p)
{
    return !(p->new_sense || p->has_objcon || p->vars.n_deleted || p->vars.n_type ||
             p->vars.n_value || p->constrs.n_deleted || p->constrs.n_type ||
             p->constrs.n_value || p->added_vars.columns.count ||
             p->added_constrs.rows.count || p->coef_changes.var.size ||
             p->bound_changes.who.size || p->sos_changes.type.size ||
             p->sos_changes.n_deleted);
}

int reserve_names(ModelBody *body, const PendingChanges *p)
{
    const char *none = nullptr;
    if (p->vars.n_name) TRY(array_extend(&body->varnames, body->numvars, none));
    if (p->constrs.n_name) TRY(array_extend(&body->constrnames, body->numconstrs, none));
    return 0;
}

void apply(TVXmodel *model, UpdatePlan *plan)
{
    ModelBody *body = model->body;
    const PendingChanges *p = model->pending;
    const bool senses = p->constrs.n_type || p->constrs.n_deleted || plan->added_constrs;
    const bool types = p->vars.n_type || p->vars.n_deleted || plan->added_vars;
    body_drop_rows(body);
    model_free_results(model);
    update_release_basis(model, plan);

    update_names(model);
    update_values(model, plan);
    update_delete(model, plan);
    update_add(model, plan);
    update_sos(model, plan);

    if (senses) body_find_flipped(body);
    if (types) body_count_types(body);
    update_basis(model, plan);
    body->solve_tag = -1;
    lp_set_loaded(&model->lp);
    model_estimate_size(model);
}
} // namespace

#ifdef TVX_DEBUG

namespace
{
constexpr int64_t CHECKED_SIZE = 20000; // larger bodies are not checked at each update

bool is_sound(const TVXmodel *model)
{
    char where[BODY_CHECK_LENGTH];
    return model->size_estimate > CHECKED_SIZE || body_check(model->body, where) == 0;
}
} // namespace

#endif

namespace
{
int apply_pending(TVXmodel *model)
{
    TRY(reserve_names(model->body, model->pending));
    if (changes_only_names(model->pending)) {
        update_names(model);
    } else {
        UpdatePlan plan;
        const int error = update_plan(model, &plan);
        if (!error) apply(model, &plan);
        update_plan_free(&plan);
        TRY(error);
#ifdef TVX_DEBUG
        assert(is_sound(model));
#endif
    }
    pending_clear(model->pending);
    body_compact_names(model->body);
    attributes_clear(model);
    return 0;
}

// Another parameter value makes other bounds infinite: the model is another one for the solvers, which may start from
// the basis of before.
void follow_infinity(TVXmodel *model)
{
    const double infinite = infinite_bound(model->env);
    if (infinite == model->body->kind_infinity) return; // assigned
    body_find_kinds(model->body, infinite);
    if (model->lp.simplex) {
        const WarmStart *given = model->warm_start;
        if (!given || given->kind == WARM_NONE) warm_start_from_simplex(model);
        lp_drop_simplex(&model->lp);
    }
    model_free_results(model); // presolve alone may have made them
    attributes_clear(model);
    lp_set_loaded(&model->lp);
}

int update_steps(TVXmodel *model)
{
    ModelBody *body = model->body;
    follow_infinity(model);
    if (body->numsos > 0 && !body->sos_sorted) {
        TRY(sos_sort_members(body->numsos, body->sosbeg.data, body->sosind.data,
                             body->soswt.data));
        body->sos_sorted = 1;
    }
    model->run_time = 0;
    warm_start_validate(model);
    return model_has_pending(model) ? apply_pending(model) : 0;
}

// The queue goes, and with it the default numbers that it had taken.
void discard_pending(TVXmodel *model)
{
    const PendingChanges *p = model->pending;
    if (p && p->added_vars.columns.count)
        model->body->next_var_name = p->added_vars.columns.old_next_name;
    if (p && p->added_constrs.rows.count)
        model->body->next_constr_name = p->added_constrs.rows.old_next_name;
    pending_free(model->pending);
    model->pending = nullptr;
}
} // namespace

int model_update(TVXmodel *model)
{
    const int error = update_steps(model);
    if (error) {
        fail_model(model, error, Report::KEEP_FIRST, "Problem updating model");
        discard_pending(model);
        lp_set_broken(&model->lp);
    }
    return error;
}

namespace
{
// From inside a callback the call that runs still needs what an update would free.
int open_call(TVXmodel *model)
{
    TRY(TVXcheckmodel(model));
    return check_idle(model);
}
} // namespace

int TVXupdatemodel(TVXmodel *model)
{
    int error = open_call(model);
    if (!error) error = model_update(model);
    return finish_model(model, error);
}

int TVXresetmodel(TVXmodel *model)
{
    int error = open_call(model);
    if (error) return finish_model(model, error);
    error = model_update(model);
    if (error) {
        fail_model(model, error, Report::KEEP_FIRST, "Problem resetting model");
        return finish_model(model, error);
    }
    warm_start_drop(model);
    lp_drop_simplex(&model->lp);
    model_free_results(model);
    model->body->solve_tag = -1;
    lp_set_loaded(&model->lp);
    return finish_model(model, 0);
}
