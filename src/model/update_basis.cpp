// update_basis.cpp -- what survives of the basis when the model changes
//
// The source is the live simplex record, else a warm start that was checked or carried over.
//   LIVE   only bounds change, and no variable becomes or ceases to be free: the factorisation
//          stays and follows the bounds
//   CARRY  statuses move to the new shape: deleted variables were nonbasic and deleted rows had
//          basic slacks, so that every row keeps one basic variable; added rows bring their slack,
//          a range row its range variable
//   DROP   no source, integer variables or SOS involved, or a deletion that breaks the basis
// Cost: LIVE O(bound changes); CARRY O(rows + columns).
#include "model/update.h"
#include "model/warm_start.h"
#include "simplex/simplex.h"

// ---- Which changes there are ----

namespace
{
// After the update the model has, or had before, something that a plain basis does not serve.
bool concerns_mip(const TVXmodel *model)
{
    const PendingChanges *p = model->pending;
    if (body_is_mip(model->body) || p->sos_changes.type.size) return true;
    for (const char vtype : p->added_vars.vtype)
        if (vtype != 'C') return true;
    for (const int j : p->vars.touched)
        if ((p->vars.flags[j] & PENDING_TYPE) && p->vars.type[j] != 'C') return true;
    return false;
}

bool changes_matrix(const PendingChanges *p, const UpdatePlan *plan)
{
    return plan->edits.size || plan->inserts.size || p->constrs.n_type ||
           plan->var_map.size || plan->constr_map.size || plan->added_vars ||
           plan->added_constrs;
}

bool changes_only_bounds(const PendingChanges *p, const UpdatePlan *plan)
{
    return !changes_matrix(p, plan) && !p->new_sense && !p->has_objcon &&
           !p->vars.n_value && !p->constrs.n_value;
}

// Some variable becomes or ceases to be free.
bool changes_freedom(const TVXmodel *model)
{
    const PendingBounds *bounds = &model->pending->bound_changes;
    const ModelBody *body = model->body;
    const double infinite = infinite_bound(model->env);
    for (const int who : bounds->who) {
        const int j = who >= 0 ? who : -who - 1;
        const int lower = bounds->lower_pos[j];
        const int upper = bounds->upper_pos[j];
        const double lb = lower >= 0 ? bounds->val[lower] : body->lb[j];
        const double ub = upper >= 0 ? bounds->val[upper] : body->ub[j];
        const bool was_free = body->bound_kind[j] == KIND_FREE;
        if (was_free != (bound_kind_of(lb, ub, infinite) == KIND_FREE)) return true;
    }
    return false;
}

// ---- Carrying statuses over ----

bool breaks_basis(const TVXmodel *model, const int *statuses)
{
    const PendingChanges *p = model->pending;
    const int n = model->body->numvars;
    for (const int i : p->constrs.touched)
        if ((p->constrs.flags[i] & PENDING_DELETED) && statuses[n + i] < 0) return true;
    for (const int j : p->vars.touched)
        if ((p->vars.flags[j] & PENDING_DELETED) && statuses[j] >= 0) return true;
    return false;
}

bool edits_basic_column(const UpdatePlan *plan, const int *statuses)
{
    for (const CoefEdit &edit : plan->edits)
        if (statuses[edit.var] >= 0) return true;
    for (const CoefEdit &edit : plan->inserts)
        if (statuses[edit.var] >= 0) return true;
    return false;
}

constexpr int BASIC = 0; // any status at or above it

int added_var_status(double lb, double ub, double infinite)
{
    if (lb > -infinite) return TVX_NONBASIC_LOWER;
    return ub < infinite ? TVX_NONBASIC_UPPER : TVX_SUPERBASIC;
}

int carry_statuses(const TVXmodel *model, const int *statuses, const UpdatePlan *plan,
                   WarmStart *carried)
{
    const ModelBody *body = model->body;
    const PendingVars *vars = &model->pending->added_vars;
    const PendingConstrs *constrs = &model->pending->added_constrs;
    const double infinite = infinite_bound(model->env);
    Array<int> *to = &carried->statuses;
    TRY(array_reserve(to, int64_t{plan->numvars()} + plan->numconstrs()));
    for (int j = 0; j < body->numvars; j++)
        if (mapped(plan->var_map, j) >= 0) array_push(to, statuses[j]);
    for (int k = 0; k < plan->added_vars; k++)
        array_push(to, added_var_status(vars->lb[k], vars->ub[k], infinite));
    for (int k = 0; k < plan->n_ranges; k++) array_push(to, BASIC);
    for (int i = 0; i < body->numconstrs; i++)
        if (mapped(plan->constr_map, i) >= 0) array_push(to, statuses[body->numvars + i]);
    for (int k = 0; k < plan->added_constrs; k++) {
        const bool is_range = constrs->lower[k] != NO_RANGE; // the value that was assigned
        array_push(to, is_range ? TVX_NONBASIC_LOWER : BASIC);
    }
    carried->count = plan->numvars();
    carried->kind = WARM_CARRIED;
    return 0;
}

int plan_carry(TVXmodel *model, UpdatePlan *plan)
{
    const WarmStart *warm = model->lp.simplex ? nullptr : warm_start_usable(model);
    Array<int> live;
    if (!warm) {
        TRY(array_resize(&live, int64_t{model->body->numvars} + model->body->numconstrs));
        simplex_get_basis(model->lp.simplex, live.data);
    }
    const int *statuses = warm ? warm->statuses.data : live.data;
    const bool repair = edits_basic_column(plan, statuses);
    if (breaks_basis(model, statuses) || (repair && model->env->TARV_PAR_WARMBASIS == 0)) {
        plan->mode = BasisMode::DROP;
        return 0;
    }
    plan->mode = BasisMode::CARRY;
    if (warm && !changes_matrix(model->pending, plan)) return 0; // serves as it is
    plan->carried = record_create<WarmStart>();
    if (!plan->carried) return OUT_OF_MEMORY;
    plan->carried->repair = repair || (warm && warm->repair);
    return carry_statuses(model, statuses, plan, plan->carried);
}
} // namespace

int update_plan_basis(TVXmodel *model, UpdatePlan *plan)
{
    plan->mode = BasisMode::DROP;
    if (!model->lp.simplex && !warm_start_usable(model)) return 0;
    if (concerns_mip(model)) return 0;
    if (model->lp.simplex && changes_only_bounds(model->pending, plan) &&
        !changes_freedom(model)) {
        plan->mode = BasisMode::LIVE;
        return 0;
    }
    return plan_carry(model, plan);
}

void update_plan_free(UpdatePlan *plan)
{
    warm_start_free(plan->carried);
    *plan = UpdatePlan{};
}

// ---- After the body has changed ----

void update_release_basis(TVXmodel *model, const UpdatePlan *plan)
{
    if (plan->mode == BasisMode::LIVE) return;
    lp_drop_simplex(&model->lp);
}

namespace
{
// Hands the new bounds to the live record; where it cannot follow, its statuses are carried over.
void move_bounds(TVXmodel *model)
{
    for (const int who : model->pending->bound_changes.who) {
        const int j = who >= 0 ? who : -who - 1;
        if (lp_bound_changed(&model->lp, j)) continue;
        warm_start_from_simplex(model);
        lp_drop_simplex(&model->lp);
        return;
    }
}

// A nonbasic variable stands on a bound that exists.
void settle_statuses(const TVXmodel *model, const UpdatePlan *plan, WarmStart *warm)
{
    const ModelBody *body = model->body;
    for (const int who : model->pending->bound_changes.who) {
        const int j = mapped(plan->var_map, who >= 0 ? who : -who - 1);
        if (j < 0) continue;
        int *status = &warm->statuses[j];
        const bool has_lower = !(body->bound_kind[j] & 1);
        const bool has_upper = !(body->bound_kind[j] & 2);
        const bool stands = (*status == TVX_NONBASIC_LOWER && has_lower) ||
                            (*status == TVX_NONBASIC_UPPER && has_upper) ||
                            *status >= BASIC;
        if (stands) continue;
        if (has_lower)
            *status = TVX_NONBASIC_LOWER;
        else
            *status = has_upper ? TVX_NONBASIC_UPPER : TVX_SUPERBASIC;
    }
}
} // namespace

void update_basis(TVXmodel *model, UpdatePlan *plan)
{
    if (plan->mode != BasisMode::CARRY) warm_start_drop(model);
    if (plan->mode == BasisMode::LIVE) move_bounds(model);
    if (plan->mode == BasisMode::CARRY && plan->carried) {
        warm_start_free(model->warm_start);
        model->warm_start = plan->carried;
        plan->carried = nullptr;
    }
    if (model->warm_start && model->warm_start->kind != WARM_NONE) {
        model->warm_start->kind = WARM_CARRIED;
        settle_statuses(model, plan, model->warm_start);
    }
}
