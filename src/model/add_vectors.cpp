// add_vectors.cpp -- checking new columns or rows, and appending them to their batch
//
// Duplicates within a vector are found with a mark per element that holds the number of the vector
// in which the element was last met; numbers never repeat, so nothing is cleared. Vectors are
// tested from the last to the first.
// Cost: O(entries of the call), amortised.
#include "model/add_vectors.h"
#include <algorithm>

namespace
{
int vector_end(const NewVectors *v, int k)
{
    return k + 1 < v->count ? v->beg[k + 1] : v->numnz;
}

int check_starts(TVXmodel *model, const NewVectors *v)
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
int check_indices(const NewVectors *v, int n_elements, ElementChanges *scratch)
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
int check_growth(TVXmodel *model, int64_t n_elements, int64_t n_entries)
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

int check_counts(const NewVectors *v)
{
    if (v->numnz < 0) return TVX_ERROR_INVALID_ARGUMENT;
    if (v->numnz > 0 && !(v->beg && v->ind && v->val)) return TVX_ERROR_NULL_ARGUMENT;
    return 0;
}
} // namespace

int new_vectors_check(TVXmodel *model, NameKind kind, const NewVectors *v, int64_t n_new)
{
    TRY(check_counts(v));
    TRY(check_values(model->env, v->numnz, v->val));
    TRY(pending_get(model));
    TRY(check_growth(model, n_new, v->numnz));
    if (v->numnz == 0) return 0;
    TRY(check_starts(model, v));
    if (kind == NameKind::VAR)
        return check_indices(v, model->body->numconstrs, &model->pending->constrs);
    return check_indices(v, model->body->numvars, &model->pending->vars);
}

namespace
{
int reserve_batch(PendingVectors *batch, const NewVectors *v)
{
    TRY(array_grow(&batch->beg, int64_t{batch->count} + v->count + 1));
    TRY(array_grow(&batch->ind, batch->ind.size + v->numnz));
    TRY(array_grow(&batch->val, batch->val.size + v->numnz));
    return array_grow(&batch->names, batch->names.size + v->count);
}
} // namespace

int new_vectors_prepare(ModelBody *body, NameKind kind, PendingVectors *batch,
                        const NewVectors *v, int *next)
{
    TRY(reserve_batch(batch, v));
    const bool vars = kind == NameKind::VAR;
    *next = vars ? body->next_var_name : body->next_constr_name;
    if (batch->count == 0) batch->old_next_name = *next;
    for (int k = 0; k < v->count; k++) {
        const char *given = v->names ? v->names[k] : nullptr;
        const char **stored = batch->names.data + batch->names.size + k;
        if (given && *given) {
            TRY(body_store_name(body, given, stored));
        } else {
            *next = std::max(*next, vars ? body->numvars : body->numconstrs);
            TRY(body_number_name(body, kind, (*next)++, stored));
        }
    }
    return 0;
}

void new_vectors_append(PendingVectors *batch, const NewVectors *v)
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
