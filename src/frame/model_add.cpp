// model_add.cpp -- queueing new variables, constraints and ranges
//
// Both dimensions add sparse vectors whose indices refer to elements that exist in the body now,
// so one set of checks serves both. A call reserves all it needs, then appends: it either queues
// everything or nothing.
// Duplicates within a vector are found with a mark per element that holds the number of the vector
// in which the element was last met; numbers never repeat, so nothing is cleared.
// Cost: O(entries of the call), amortised.
#include "frame/model_store.h"

// What one call adds, the part common to both dimensions.
struct NewVectors {
    int count = 0;
    int numnz = 0;
    const int *beg = nullptr; // [count] starts; a vector ends where the next starts
    const int *ind = nullptr; // [numnz]
    const double *val = nullptr;
    const char *const *names = nullptr; // [count], or null
};

static int vector_end(const NewVectors *v, int k)
{
    return k + 1 < v->count ? v->beg[k + 1] : v->numnz;
}

static int check_starts(TVXmodel *model, const NewVectors *v)
{
    for (int k = 0; k < v->count; k++) {
        const int end = vector_end(v, k);
        if (v->beg[k] < 0 || end < v->beg[k] || end > v->numnz)
            return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                              "Invalid start %d of vector %d", v->beg[k], k);
    }
    return 0;
}

// Indices must name one of n_elements, each at most once per vector.
static int check_indices(const NewVectors *v, int n_elements, ElementChanges *scratch)
{
    TRY(array_extend(&scratch->mark, n_elements, 0));
    int *__restrict mark = scratch->mark.data;
    for (int k = v->count - 1; k >= 0; k--) {
        const int stamp = element_changes_stamp(scratch);
        const int end = vector_end(v, k);
        for (int p = v->beg[k]; p < end; p++) {
            const int at = v->ind[p];
            if (at < 0 || at >= n_elements) return TVX_ERROR_INDEX_OUT_OF_RANGE;
            if (mark[at] == stamp) return TVX_ERROR_DUPLICATES;
            mark[at] = stamp;
        }
    }
    return 0;
}

// The model as it will be must stay countable.
static int check_growth(TVXmodel *model, int64_t n_elements, int64_t n_entries)
{
    const ModelBody *body = model->body;
    const PendingChanges *p = model->pending;
    const int64_t elements = n_elements + body->numvars + body->numconstrs +
                             p->added_vars.columns.count + p->added_constrs.rows.count +
                             p->added_constrs.n_ranges;
    const int64_t entries = n_entries + body->numnz + p->added_vars.columns.ind.size +
                            p->added_constrs.rows.ind.size + p->added_constrs.n_ranges +
                            p->coef_changes.var.size;
    if (elements <= MODEL_SIZE_LIMIT && entries <= MODEL_ENTRY_LIMIT) return 0;
    return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                      "Model too large: %lld variables and constraints, %lld coefficients",
                      static_cast<long long>(elements), static_cast<long long>(entries));
}

// Names of the new elements into `names`, which stays free of them (in size) until they all stand.
static int prepare_names(ModelBody *body, NameKind kind, const NewVectors *v,
                         int first_number, Array<const char *> *names)
{
    TRY(array_grow(names, names->size + v->count));
    int number = first_number;
    for (int k = 0; k < v->count; k++) {
        const char *given = v->names ? v->names[k] : nullptr;
        const char **stored = names->data + names->size + k;
        if (given && *given)
            TRY(body_store_name(body, given, stored));
        else
            TRY(body_number_name(body, kind, number++, stored));
    }
    return 0;
}

static int reserve_vectors(PendingVectors *batch, const NewVectors *v)
{
    TRY(array_grow(&batch->beg, int64_t{batch->count} + v->count + 1));
    TRY(array_grow(&batch->ind, batch->ind.size + v->numnz));
    return array_grow(&batch->val, batch->val.size + v->numnz);
}

// Cannot fail: room and names are there.
static void append_vectors(PendingVectors *batch, const NewVectors *v)
{
    if (batch->count == 0) {
        batch->beg.size = 0;
        array_push(&batch->beg, 0);
    }
    for (int k = 0; k < v->count; k++) {
        if (v->numnz > 0) {
            const int length = vector_end(v, k) - v->beg[k];
            array_append_n(&batch->ind, v->ind + v->beg[k], length, 0);
            array_append_n(&batch->val, v->val + v->beg[k], length, 0.0);
        }
        array_push(&batch->beg, static_cast<int>(batch->ind.size));
    }
    batch->names.size += v->count;
    batch->count += v->count;
}

// How many of the new elements will take a default number.
static int unnamed(const NewVectors *v)
{
    if (!v->names) return v->count;
    int n = 0;
    for (int k = 0; k < v->count; k++) n += !(v->names[k] && *v->names[k]);
    return n;
}

static int check_vectors(TVXmodel *model, const NewVectors *v, int n_elements,
                         ElementChanges *scratch, int n_new_elements)
{
    TRY(check_growth(model, n_new_elements, v->numnz));
    if (v->numnz == 0) return 0;
    TRY(check_starts(model, v));
    return check_indices(v, n_elements, scratch);
}

static int check_counts(const NewVectors *v)
{
    if (v->numnz < 0) return TVX_ERROR_INVALID_ARGUMENT;
    if (v->numnz > 0 && !(v->beg && v->ind && v->val)) return TVX_ERROR_NULL_ARGUMENT;
    return 0;
}

// ---- Variables ----

struct NewVars {
    NewVectors columns;
    const double *obj = nullptr, *lb = nullptr, *ub = nullptr; // [count], or null: default
    const char *vtype = nullptr;
};

static int add_vars(TVXmodel *model, const NewVars *given)
{
    const NewVectors *v = &given->columns;
    ModelBody *body = model->body;
    TRY(check_counts(v));
    TRY(check_values(model->env, v->count, given->obj));
    TRY(check_values(model->env, v->count, given->lb));
    TRY(check_values(model->env, v->count, given->ub));
    TRY(check_values(model->env, v->numnz, v->val));
    for (int k = 0; given->vtype && k < v->count; k++)
        TRY(check_vtype(model->env, given->vtype[k], k));
    TRY(pending_get(model));
    TRY(check_vectors(model, v, body->numconstrs, &model->pending->constrs, v->count));

    PendingVars *batch = &model->pending->added_vars;
    const int64_t count = int64_t{batch->columns.count} + v->count;
    const int number =
        body->next_var_name > body->numvars ? body->next_var_name : body->numvars;
    TRY(reserve_vectors(&batch->columns, v));
    TRY(array_grow(&batch->obj, count));
    TRY(array_grow(&batch->lb, count));
    TRY(array_grow(&batch->ub, count));
    TRY(array_grow(&batch->vtype, count));
    TRY(prepare_names(body, NameKind::VAR, v, number, &batch->columns.names));

    if (const int n = unnamed(v)) body->next_var_name = number + n;
    append_vectors(&batch->columns, v);
    array_append_n(&batch->obj, given->obj, v->count, 0.0);
    for (int k = 0; k < v->count; k++) {
        array_push(&batch->lb, given->lb ? stored_bound(given->lb[k]) : 0.0);
        array_push(&batch->ub, given->ub ? stored_bound(given->ub[k]) : INFINITE_BOUND);
        array_push(&batch->vtype, given->vtype ? normal_vtype(given->vtype[k]) : 'C');
    }
    return 0;
}

static int add_vars_call(TVXmodel *model, const NewVars *given)
{
    if (const int error = TVXcheckmodel(model)) return finish_model(model, error);
    int error = 0;
    if (given->columns.count > 0) error = add_vars(model, given);
    fail_model(model, error, Report::KEEP_FIRST, "Problem adding variables");
    return finish_model(model, error);
}

int TVXaddvars(TVXmodel *model, int numvars, int numnz, const int *vbeg,
               const int *vind, // NOLINT(readability-function-size): fixed interface
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

int TVXaddvar(TVXmodel *model, int numnz, const int *vind, const double *vval,
              double obj, // NOLINT(readability-function-size): fixed interface
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
static RowForm row_form(const NewConstrs *given, int k)
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

static int add_constrs(TVXmodel *model, const NewConstrs *given)
{
    const NewVectors *v = &given->rows;
    ModelBody *body = model->body;
    TRY(check_counts(v));
    TRY(check_values(model->env, v->count, given->rhs));
    TRY(check_values(model->env, v->count, given->lower));
    TRY(check_values(model->env, v->count, given->upper));
    TRY(check_values(model->env, v->numnz, v->val));
    int n_ranges = 0;
    for (int k = 0; k < v->count; k++) n_ranges += row_form(given, k).lower != NO_RANGE;
    TRY(pending_get(model));
    const int64_t n_new = int64_t{v->count} + n_ranges;
    if (n_new > MODEL_SIZE_LIMIT) return check_growth(model, n_new, v->numnz);
    TRY(check_vectors(model, v, body->numvars, &model->pending->vars,
                      static_cast<int>(n_new)));

    PendingConstrs *batch = &model->pending->added_constrs;
    const int64_t count = int64_t{batch->rows.count} + v->count;
    const int number = body->next_constr_name > body->numconstrs ? body->next_constr_name
                                                                 : body->numconstrs;
    TRY(reserve_vectors(&batch->rows, v));
    TRY(array_grow(&batch->sense, count));
    TRY(array_grow(&batch->rhs, count));
    TRY(array_grow(&batch->lower, count));
    TRY(prepare_names(body, NameKind::CONSTR, v, number, &batch->rows.names));

    if (const int n = unnamed(v)) body->next_constr_name = number + n;
    append_vectors(&batch->rows, v);
    batch->n_ranges += n_ranges;
    for (int k = 0; k < v->count; k++) {
        const RowForm form = row_form(given, k);
        array_push(&batch->sense, form.sense);
        array_push(&batch->rhs, form.rhs);
        array_push(&batch->lower, form.lower);
    }
    return 0;
}

static int add_constrs_call(TVXmodel *model, const NewConstrs *given, bool complete)
{
    if (const int error = TVXcheckmodel(model)) return finish_model(model, error);
    int error = 0;
    if (given->rows.count > 0)
        error = complete ? add_constrs(model, given) : TVX_ERROR_NULL_ARGUMENT;
    fail_model(model, error, Report::KEEP_FIRST, "Problem adding constraints");
    return finish_model(model, error);
}

int TVXaddconstrs(TVXmodel *model, int numconstrs, int numnz,
                  const int *cbeg, // NOLINT(readability-function-size): fixed interface
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

int TVXaddrangeconstrs(
    TVXmodel *model, int numconstrs, int numnz,
    const int *cbeg, // NOLINT(readability-function-size): fixed interface
    const int *cind, const double *cval, const double *lower, const double *upper,
    char **constrnames)
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
