// model_delete.cpp -- queueing deletions and coefficient changes
//
// Nothing moves before the update. All indices are tested first, so that a call queues everything
// or nothing; deleting an element twice is the same as once. Cost: O(entries of the call).
#include "model/model_store.h"

namespace
{
int check_list(int count, const int *ind, int n_elements)
{
    if (!ind) return TVX_ERROR_NULL_ARGUMENT;
    for (int k = 0; k < count; k++)
        if (ind[k] < 0 || ind[k] >= n_elements) return TVX_ERROR_INDEX_OUT_OF_RANGE;
    return 0;
}

int delete_elements(TVXmodel *model, NameKind kind, int numdel, const int *ind)
{
    const bool vars = kind == NameKind::VAR;
    const int n_elements = vars ? model->body->numvars : model->body->numconstrs;
    TRY(check_list(numdel, ind, n_elements));
    TRY(pending_get(model));
    ElementChanges *changes = vars ? &model->pending->vars : &model->pending->constrs;
    TRY(element_changes_reserve(changes, n_elements, numdel));
    for (int k = 0; k < numdel; k++) element_changes_flag(changes, ind[k], PENDING_DELETED);
    return 0;
}
} // namespace

int TVXdelvars(TVXmodel *model, int numdel, const int *ind)
{
    int error = TVXcheckmodel(model);
    if (error || numdel < 1) return finish_model(model, error);
    error = delete_elements(model, NameKind::VAR, numdel, ind);
    fail_model(model, error, Report::KEEP_FIRST, "Problem deleting variable");
    return finish_model(model, error);
}

int TVXdelconstrs(TVXmodel *model, int numdel, const int *ind)
{
    int error = TVXcheckmodel(model);
    if (error || numdel < 1) return finish_model(model, error);
    error = delete_elements(model, NameKind::CONSTR, numdel, ind);
    fail_model(model, error, Report::KEEP_FIRST, "Problem deleting constraint");
    return finish_model(model, error);
}

namespace
{
int delete_sos(TVXmodel *model, int numdel, const int *ind)
{
    TRY(check_list(numdel, ind, model->body->numsos));
    TRY(pending_get(model));
    PendingSos *sos = &model->pending->sos_changes;
    TRY(array_extend(&sos->del, model->body->numsos, '\0'));
    for (int k = 0; k < numdel; k++) {
        sos->n_deleted += !sos->del[ind[k]];
        sos->del[ind[k]] = 1;
    }
    return 0;
}
} // namespace

int TVXdelsos(TVXmodel *model, int numdel, const int *ind)
{
    int error = TVXcheckmodel(model);
    if (error || numdel < 1) return finish_model(model, error);
    error = delete_sos(model, numdel, ind);
    fail_model(model, error, Report::KEEP_FIRST, "Problem deleting sos");
    return finish_model(model, error);
}

// ---- Coefficients ----

namespace
{
int change_coeffs(TVXmodel *model, int numchgs, const int *cind, const int *vind,
                  const double *val)
{
    const ModelBody *body = model->body;
    TRY(check_list(numchgs, cind, body->numconstrs));
    TRY(check_list(numchgs, vind, body->numvars));
    if (!val) return TVX_ERROR_NULL_ARGUMENT;
    TRY(check_values(model->env, numchgs, val));
    TRY(pending_get(model));
    PendingChanges *p = model->pending;
    PendingCoefs *coefs = &p->coef_changes;
    const int64_t count = coefs->var.size + numchgs;
    if (count + body->numnz + p->added_vars.columns.ind.size +
            p->added_constrs.rows.ind.size + p->added_constrs.n_ranges >
        MODEL_ENTRY_LIMIT)
        return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                          "Too many coefficient changes before an update");
    TRY(array_grow(&coefs->var, count));
    TRY(array_grow(&coefs->row, count));
    TRY(array_grow(&coefs->val, count));
    array_append_n(&coefs->var, vind, numchgs, 0);
    array_append_n(&coefs->row, cind, numchgs, 0);
    array_append_n(&coefs->val, val, numchgs, 0.0);
    return 0;
}
} // namespace

int TVXchgcoeffs(TVXmodel *model, int numchgs, const int *cind, const int *vind,
                 const double *val)
{
    int error = TVXcheckmodel(model);
    if (error || numchgs < 1) return finish_model(model, error);
    error = change_coeffs(model, numchgs, cind, vind, val);
    fail_model(model, error, Report::KEEP_FIRST, "Problem changing coefficient");
    return finish_model(model, error);
}
