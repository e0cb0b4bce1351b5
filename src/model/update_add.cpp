// update_add.cpp -- new columns behind the matrix, new entries merged into it, new SOS
//
// New columns are appended. Entries of new rows, and coefficients that were not stored before, go
// behind the entries of their columns: they are counted per column, the columns shift from the
// last to the first into their new places, then the entries are deposited. Elements deleted in the
// same update are left out of what refers to them.
// Cost: O(what is added), plus one pass over columns and matrix when entries are merged.
#include "model/update.h"
#include <cstring>

// ---- New variables ----

namespace
{
void begin_column(TVXmodel *model, const UpdatePlan *plan, const char *name)
{
    ModelBody *body = model->body;
    array_push(&body->vlen, 0);
    if (plan->has_varnames) array_push(&body->varnames, name);
    if (model->mip_start.size) array_push(&model->mip_start, START_UNSET);
    body->numvars++;
}

void push_entry(ModelBody *body, int i, double value)
{
    array_push(&body->vind, i);
    array_push(&body->vval, body->senses[i] == '>' ? -value : value);
    body->vlen[body->numvars - 1]++;
}

void end_column(ModelBody *body)
{
    body->numnz = static_cast<int>(body->vind.size);
    array_push(&body->vbeg, body->numnz);
}

void push_bounds(TVXmodel *model, const UpdatePlan *plan, char vtype, double lb, double ub)
{
    ModelBody *body = model->body;
    if (plan->has_vtypes) {
        array_push(&body->vtypes, vtype);
        array_push(&body->given_lb, lb);
        array_push(&body->given_ub, ub);
    }
    round_bounds(vtype, &lb, &ub);
    array_push(&body->lb, lb);
    array_push(&body->ub, ub);
    array_push(&body->bound_kind, bound_kind_of(lb, ub, body->kind_infinity));
}

void add_vars(TVXmodel *model, const UpdatePlan *plan)
{
    ModelBody *body = model->body;
    const PendingVars *added = &model->pending->added_vars;
    const PendingVectors *v = &added->columns;
    for (int k = 0; k < v->count; k++) {
        begin_column(model, plan, v->names[k]);
        array_push(&body->obj, body->sense * added->obj[k]);
        push_bounds(model, plan, added->vtype[k], added->lb[k], added->ub[k]);
        for (int p = v->beg[k]; p < v->beg[k + 1]; p++) {
            const int i = mapped(plan->constr_map, v->ind[p]);
            if (i >= 0) push_entry(body, i, v->val[p]);
        }
        end_column(body);
    }
}

// ---- New constraints ----

void add_constrs(ModelBody *body, const PendingConstrs *added, const UpdatePlan *plan)
{
    for (int k = 0; k < added->rows.count; k++) {
        const bool flip = added->sense[k] == '>';
        array_push(&body->senses, added->sense[k]);
        array_push(&body->rhs, flip ? -added->rhs[k] : added->rhs[k]);
        if (plan->has_constrnames) array_push(&body->constrnames, added->rows.names[k]);
    }
    body->numconstrs += added->rows.count;
}

// lower <= row <= upper is held as row + r = upper with 0 <= r <= upper - lower.
void add_range_vars(TVXmodel *model, const UpdatePlan *plan)
{
    ModelBody *body = model->body;
    const PendingConstrs *added = &model->pending->added_constrs;
    int range = 0;
    for (int k = 0; k < added->rows.count; k++) {
        if (added->lower[k] == NO_RANGE) continue; // the value that was assigned
        begin_column(model, plan, plan->range_names[range++]);
        array_push(&body->obj, 0.0);
        push_bounds(model, plan, 'C', 0, stored_bound(added->rhs[k] - added->lower[k]));
        push_entry(body, plan->kept_constrs + k, 1);
        end_column(body);
    }
}

// ---- Merging entries ----

void count_entries(const PendingVectors *rows, UpdatePlan *plan)
{
    for (const CoefEdit &edit : plan->inserts)
        plan->extra[mapped(plan->var_map, edit.var)]++;
    for (const int var : rows->ind) {
        const int j = mapped(plan->var_map, var);
        if (j >= 0) plan->extra[j]++;
    }
}

// Leaves extra[j] free places behind column j.
void spread_columns(ModelBody *body, const Array<int> &extra, int total)
{
    const int64_t numnz = int64_t{body->numnz} + total;
    body->vind.size = body->vval.size = numnz;
    body->numnz = static_cast<int>(numnz);
    int shift = total; // of the start of the column behind
    body->vbeg[body->numvars] += shift;
    for (int j = body->numvars - 1; shift > 0; j--) {
        shift -= extra[j];
        if (shift == 0) break; // the columns up to here stay
        const int from = body->vbeg[j];
        const size_t length = static_cast<size_t>(body->vlen[j]);
        memmove(body->vind.data + from + shift, body->vind.data + from,
                length * sizeof(int));
        memmove(body->vval.data + from + shift, body->vval.data + from,
                length * sizeof(double));
        body->vbeg[j] = from + shift;
    }
}

void deposit(ModelBody *body, int j, int i, double value)
{
    const int at = body->vbeg[j] + body->vlen[j]++;
    body->vind.data[at] = i;
    body->vval.data[at] = body->senses[i] == '>' ? -value : value;
}

void merge_entries(ModelBody *body, const PendingVectors *rows, UpdatePlan *plan)
{
    count_entries(rows, plan);
    int total = 0;
    for (const int n : plan->extra) total += n;
    spread_columns(body, plan->extra, total);
    for (const CoefEdit &edit : plan->inserts)
        deposit(body, mapped(plan->var_map, edit.var), mapped(plan->constr_map, edit.row),
                edit.value);
    for (int k = 0; k < rows->count; k++) {
        for (int p = rows->beg[k]; p < rows->beg[k + 1]; p++) {
            const int j = mapped(plan->var_map, rows->ind[p]);
            if (j >= 0) deposit(body, j, plan->kept_constrs + k, rows->val[p]);
        }
    }
}
} // namespace

void update_add(TVXmodel *model, UpdatePlan *plan)
{
    ModelBody *body = model->body;
    const PendingConstrs *added = &model->pending->added_constrs;
    add_vars(model, plan);
    add_constrs(body, added, plan);
    if (plan->n_ranges) add_range_vars(model, plan);
    if (plan->extra.size) merge_entries(body, &added->rows, plan);
}

// ---- SOS ----

namespace
{
// Sets that are deleted go, members lose deleted variables. A set without members stays a set.
void compact_sos(ModelBody *body, const PendingSos *sos, const Array<int> &var_map)
{
    int kept = 0;
    int next = 0;
    for (int s = 0; s < body->numsos; s++) {
        const int start = body->sosbeg[s];
        const int end = body->sosbeg[s + 1];
        if (sos->del.size && sos->del[s]) continue;
        body->sostype[kept] = body->sostype[s];
        body->sosbeg[kept++] = next;
        for (int p = start; p < end; p++) {
            const int j = mapped(var_map, body->sosind[p]);
            if (j < 0) continue;
            body->sosind[next] = j;
            body->soswt[next++] = body->soswt[p];
        }
    }
    if (body->numsos > 0) body->sosbeg[kept] = next;
    body->numsos = kept;
    body->sostype.size = kept;
    body->sosbeg.size = kept ? kept + 1 : 0;
    body->sosind.size = body->soswt.size = next;
}

void add_sos(ModelBody *body, const PendingSos *sos, const Array<int> &var_map)
{
    if (body->numsos == 0) {
        body->sosbeg.size = 0;
        array_push(&body->sosbeg, 0);
    }
    for (int64_t s = 0; s < sos->type.size; s++) {
        for (int p = sos->beg[s]; p < sos->beg[s + 1]; p++) {
            const int j = mapped(var_map, sos->ind[p]);
            if (j < 0) continue;
            array_push(&body->sosind, j);
            array_push(&body->soswt, sos->wt[p]);
        }
        array_push(&body->sostype, sos->type[s]);
        array_push(&body->sosbeg, static_cast<int>(body->sosind.size));
        body->numsos++;
    }
}
} // namespace

void update_sos(TVXmodel *model, const UpdatePlan *plan)
{
    const PendingSos *sos = &model->pending->sos_changes;
    if (sos->n_deleted || plan->var_map.size) compact_sos(model->body, sos, plan->var_map);
    if (sos->type.size) add_sos(model->body, sos, plan->var_map);
    model->body->sos_sorted =
        1; // what was there has been sorted before, new sets when queued
}
