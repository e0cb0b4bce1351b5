// solution.cpp -- turns what the simplex holds into the solution that a caller sees
//
// Method   The simplex record is in the body's form: minimise, rows '>' negated. With s the sense (+1, -1)
//          and f_i = -1 for a '>' row, else 1:   Pi_i = s * f_i * pi_i,   RC_j = s * rc_j,
//          Slack_i = f_i * (rhs_i - activity_i). Each group is made once per solve and kept.
// Cost     O(n + m), Slack O(nonzeros).
#include "model/solution.h"
#include "body/row_activity.h"
#include "body/signs.h"
#include "model/attribute_cache.h"
#include "simplex/simplex.h"

int solution_status(const TVXmodel *model)
{
    return model->mip.result ? model->mip.result->status : model->lp.status;
}

int solution_quality(TVXmodel *model)
{
    return solution_available(model) ? lp_quality(&model->lp)
                                     : TVX_ERROR_DATA_NOT_AVAILABLE;
}

bool solution_available(const TVXmodel *model)
{
    if (!model->body || !lp_has_point(&model->lp) || model->mip.result) return false;
    switch (model->lp.status) {
    case TVX_OPTIMAL:
    case TVX_CUTOFF:
    case TVX_ITERATION_LIMIT:
    case TVX_TIME_LIMIT:
    case TVX_INTERRUPTED:
    case TVX_NUMERIC:
    case TVX_SUBOPTIMAL:
        return true;
    default:
        return false;
    }
}

namespace
{
// Tests that there is a solution, and makes the table that keeps what is derived from it.
int enter(TVXmodel *model, AttributeTable **table)
{
    if (!solution_available(model)) return TVX_ERROR_DATA_NOT_AVAILABLE;
    TRY(attributes_make(model));
    *table = model->attributes;
    if ((*table)->lp_version != model->lp.version) attributes_clear_solution(model);
    (*table)->lp_version = model->lp.version;
    return 0;
}
} // namespace

int solution_x(TVXmodel *model, const double **x)
{
    const MipResult *mip = model->mip.result;
    if (mip) {
        *x = mip->x.data;
        return mip->has_solution ? 0 : TVX_ERROR_DATA_NOT_AVAILABLE;
    }
    AttributeTable *table = nullptr;
    TRY(enter(model, &table));
    if (!(table->have & HAVE_X)) {
        TRY(array_resize(&table->x, model->body->numvars));
        lp_get_x(&model->lp, table->x.data);
        table->have |= HAVE_X;
    }
    *x = table->x.data;
    return 0;
}

int solution_number(TVXmodel *model, int k, const double **x)
{
    const MipResult *mip = model->mip.result;
    if (k == 0) return solution_x(model, x);
    if (!mip || k > mip->other_count) return TVX_ERROR_DATA_NOT_AVAILABLE;
    *x = mip->others.data + int64_t{k - 1} * model->body->numvars;
    return 0;
}

int solution_slack(TVXmodel *model, const double **slack)
{
    const MipResult *mip = model->mip.result;
    if (mip) {
        *slack = mip->slack.data;
        return mip->has_solution ? 0 : TVX_ERROR_DATA_NOT_AVAILABLE;
    }
    AttributeTable *table = nullptr;
    TRY(enter(model, &table));
    if (!(table->have & HAVE_SLACK)) {
        const ModelBody *body = model->body;
        const double *x = nullptr;
        TRY(solution_x(model, &x));
        RowActivity rows;
        TRY(row_activity(body, x, &rows));
        TRY(array_resize(&table->slack, body->numconstrs));
        for (int i = 0; i < body->numconstrs; i++)
            table->slack[i] =
                turned(row_sign(body, i), static_cast<double>(body->rhs[i] - rows.sum[i]));
        table->have |= HAVE_SLACK;
    }
    *slack = table->slack.data;
    return 0;
}

int solution_duals(TVXmodel *model, const double **pi, const double **rc)
{
    AttributeTable *table = nullptr;
    TRY(enter(model, &table));
    if (!lp_has_duals(&model->lp)) return TVX_ERROR_DATA_NOT_AVAILABLE;
    if (!(table->have & HAVE_DUALS)) {
        const ModelBody *body = model->body;
        TRY(array_resize(&table->pi, body->numconstrs));
        TRY(array_resize(&table->rc, body->numvars));
        lp_get_duals(&model->lp, table->pi.data, table->rc.data);
        for (int i = 0; i < body->numconstrs; i++)
            table->pi[i] = turned(body->sense * row_sign(body, i), table->pi[i]);
        for (int j = 0; j < body->numvars; j++)
            table->rc[j] = turned(body->sense, table->rc[j]);
        table->have |= HAVE_DUALS;
    }
    *pi = table->pi.data;
    *rc = table->rc.data;
    return 0;
}

namespace
{
// The codes of a caller for a status of the simplex; temporary fixes read as the bound they sit at.
int var_code(int status)
{
    switch (status) {
    case -1:
    case -4:
        return TVX_NONBASIC_LOWER;
    case -2:
    case -5:
        return TVX_NONBASIC_UPPER;
    default:
        return status >= 0 ? TVX_BASIC : TVX_SUPERBASIC;
    }
}

int constr_code(int status)
{
    return status >= 0 ? TVX_BASIC : TVX_NONBASIC_LOWER;
}
} // namespace

int solution_basis(TVXmodel *model, const int **codes)
{
    AttributeTable *table = nullptr;
    TRY(enter(model, &table));
    if (!model->lp.simplex) return TVX_ERROR_DATA_NOT_AVAILABLE;
    if (!(table->have & HAVE_BASIS)) {
        const int n = model->body->numvars, m = model->body->numconstrs;
        TRY(array_resize(&table->basis, int64_t{n} + m));
        int *basis = table->basis.data;
        simplex_get_basis(model->lp.simplex, basis);
        for (int j = 0; j < n; j++) basis[j] = var_code(basis[j]);
        for (int64_t k = n; k < int64_t{n} + m; k++) basis[k] = constr_code(basis[k]);
        table->have |= HAVE_BASIS;
    }
    *codes = table->basis.data;
    return 0;
}
