// model_add.cpp -- queueing new variables, constraints and ranges
//
// Indices refer to elements that exist in the body now. A call checks everything, reserves all it
// needs, then appends: it queues everything or nothing.
// Cost: O(entries of the call), amortised.
#include "model/add_vectors.h"

// ---- Variables ----

namespace
{
struct NewVars {
    NewVectors columns;
    const double *obj = nullptr, *lb = nullptr, *ub = nullptr; // [count], or null: default
    const char *vtype = nullptr;
};

int check_vars(TVXmodel *model, const NewVars *given)
{
    const int count = given->columns.count;
    TRY(check_values(model->env, count, given->obj));
    TRY(check_values(model->env, count, given->lb));
    TRY(check_values(model->env, count, given->ub));
    TRY(new_vectors_check(model, NameKind::VAR, &given->columns, count));
    for (int k = 0; given->vtype && k < count; k++)
        TRY(check_vtype(model->env, given->vtype[k], k));
    return 0;
}

int reserve_vars(PendingVars *batch, int64_t count)
{
    TRY(array_grow(&batch->obj, count));
    TRY(array_grow(&batch->lb, count));
    TRY(array_grow(&batch->ub, count));
    return array_grow(&batch->vtype, count);
}

int add_vars(TVXmodel *model, const NewVars *given)
{
    TRY(check_vars(model, given));
    const NewVectors *v = &given->columns;
    PendingVars *batch = &model->pending->added_vars;
    int next_name = 0;
    TRY(reserve_vars(batch, int64_t{batch->columns.count} + v->count));
    TRY(new_vectors_prepare(model->body, NameKind::VAR, &batch->columns, v, &next_name));

    model->body->next_var_name = next_name;
    new_vectors_append(&batch->columns, v);
    array_append_n(&batch->obj, given->obj, v->count, 0.0);
    for (int k = 0; k < v->count; k++) {
        array_push(&batch->lb, given->lb ? stored_bound(given->lb[k]) : 0.0);
        array_push(&batch->ub, given->ub ? stored_bound(given->ub[k]) : INFINITE_BOUND);
        array_push(&batch->vtype, given->vtype ? normal_vtype(given->vtype[k]) : 'C');
    }
    return 0;
}

int add_vars_call(TVXmodel *model, const NewVars *given)
{
    if (const int error = TVXcheckmodel(model)) return finish_model(model, error);
    int error = 0;
    if (given->columns.count > 0) error = add_vars(model, given);
    fail_model(model, error, Report::KEEP_FIRST, "Problem adding variables");
    return finish_model(model, error);
}
} // namespace

// NOLINTNEXTLINE(readability-function-size): the interface is fixed
int TVXaddvars(TVXmodel *model, int numvars, int numnz, const int *vbeg, const int *vind,
               const double *vval, const double *obj, const double *lb, const double *ub,
               const char *vtype, char **varnames)
{
    const NewVars given = {.columns = {.count = numvars,
                                       .numnz = numnz,
                                       .beg = vbeg,
                                       .ind = vind,
                                       .val = vval,
                                       .names = varnames},
                           .obj = obj,
                           .lb = lb,
                           .ub = ub,
                           .vtype = vtype};
    return add_vars_call(model, &given);
}

// NOLINTNEXTLINE(readability-function-size): the interface is fixed
int TVXaddvar(TVXmodel *model, int numnz, const int *vind, const double *vval, double obj,
              double lb, double ub, char vtype, const char *varname)
{
    const int beg = 0;
    const NewVars given = {.columns = {.count = 1,
                                       .numnz = numnz,
                                       .beg = &beg,
                                       .ind = vind,
                                       .val = vval,
                                       .names = &varname},
                           .obj = &obj,
                           .lb = &lb,
                           .ub = &ub,
                           .vtype = &vtype};
    return add_vars_call(model, &given);
}

// ---- Constraints ----

namespace
{
struct NewConstrs {
    NewVectors rows;
    const char *sense = nullptr; // [count], or null: '<'
    const double *rhs = nullptr; // [count], or null: 0
    // Ranges have these instead: lower <= row <= upper.
    const double *lower = nullptr, *upper = nullptr;
};

// One row as it will be queued.
struct RowForm {
    char sense = '<';
    double rhs = 0;
    double lower = NO_RANGE;
};

// A range with one infinite side is an ordinary row. Sides that cross stay a range, whose extra
// variable then gets crossed bounds: the model is infeasible, as it was written.
RowForm row_form(const NewConstrs *given, int k)
{
    if (!given->upper)
        return {.sense = given->sense ? normal_sense(given->sense[k]) : '<',
                .rhs = given->rhs ? given->rhs[k] : 0};
    const double lower = given->lower[k];
    const double upper = given->upper[k];
    if (lower <= -INFINITE_VALUE) return {.sense = '<', .rhs = upper};
    if (upper >= INFINITE_VALUE) return {.sense = '>', .rhs = lower};
    return {.sense = '=', .rhs = upper, .lower = lower};
}

int reserve_constrs(PendingConstrs *batch, int64_t count)
{
    TRY(array_grow(&batch->sense, count));
    TRY(array_grow(&batch->rhs, count));
    return array_grow(&batch->lower, count);
}

int add_constrs(TVXmodel *model, const NewConstrs *given)
{
    const NewVectors *v = &given->rows;
    TRY(check_values(model->env, v->count, given->rhs));
    TRY(check_values(model->env, v->count, given->lower));
    TRY(check_values(model->env, v->count, given->upper));
    int n_ranges = 0;
    for (int k = 0; k < v->count; k++) n_ranges += row_form(given, k).lower != NO_RANGE;
    TRY(new_vectors_check(model, NameKind::CONSTR, v, int64_t{v->count} + n_ranges));

    PendingConstrs *batch = &model->pending->added_constrs;
    int next_name = 0;
    TRY(reserve_constrs(batch, int64_t{batch->rows.count} + v->count));
    TRY(new_vectors_prepare(model->body, NameKind::CONSTR, &batch->rows, v, &next_name));

    model->body->next_constr_name = next_name;
    new_vectors_append(&batch->rows, v);
    batch->n_ranges += n_ranges;
    for (int k = 0; k < v->count; k++) {
        const RowForm form = row_form(given, k);
        array_push(&batch->sense, form.sense);
        array_push(&batch->rhs, form.rhs);
        array_push(&batch->lower, form.lower);
    }
    return 0;
}

int add_constrs_call(TVXmodel *model, const NewConstrs *given, bool complete)
{
    if (const int error = TVXcheckmodel(model)) return finish_model(model, error);
    int error = 0;
    if (given->rows.count > 0)
        error = complete ? add_constrs(model, given) : TVX_ERROR_NULL_ARGUMENT;
    fail_model(model, error, Report::KEEP_FIRST, "Problem adding constraints");
    return finish_model(model, error);
}
} // namespace

// NOLINTNEXTLINE(readability-function-size): the interface is fixed
int TVXaddconstrs(TVXmodel *model, int numconstrs, int numnz, const int *cbeg,
                  const int *cind, const double *cval, const char *sense, const double *rhs,
                  char **constrnames)
{
    const NewConstrs given = {.rows = {.count = numconstrs,
                                       .numnz = numnz,
                                       .beg = cbeg,
                                       .ind = cind,
                                       .val = cval,
                                       .names = constrnames},
                              .sense = sense,
                              .rhs = rhs};
    return add_constrs_call(model, &given, true);
}

int TVXaddconstr(TVXmodel *model, int numnz, const int *cind, const double *cval,
                 char sense, double rhs, const char *constrname)
{
    const int beg = 0;
    const NewConstrs given = {.rows = {.count = 1,
                                       .numnz = numnz,
                                       .beg = &beg,
                                       .ind = cind,
                                       .val = cval,
                                       .names = &constrname},
                              .sense = &sense,
                              .rhs = &rhs};
    return add_constrs_call(model, &given, true);
}

// NOLINTNEXTLINE(readability-function-size): the interface is fixed
int TVXaddrangeconstrs(TVXmodel *model, int numconstrs, int numnz, const int *cbeg,
                       const int *cind, const double *cval, const double *lower,
                       const double *upper, char **constrnames)
{
    const NewConstrs given = {.rows = {.count = numconstrs,
                                       .numnz = numnz,
                                       .beg = cbeg,
                                       .ind = cind,
                                       .val = cval,
                                       .names = constrnames},
                              .lower = lower,
                              .upper = upper};
    return add_constrs_call(model, &given, lower && upper);
}

int TVXaddrangeconstr(TVXmodel *model, int numnz, const int *cind, const double *cval,
                      double lower, double upper, const char *constrname)
{
    const int beg = 0;
    const NewConstrs given = {.rows = {.count = 1,
                                       .numnz = numnz,
                                       .beg = &beg,
                                       .ind = cind,
                                       .val = cval,
                                       .names = &constrname},
                              .lower = &lower,
                              .upper = &upper};
    return add_constrs_call(model, &given, true);
}
