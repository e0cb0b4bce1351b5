// update_delete.cpp -- stored coefficients replaced or gone, rows and columns out
//
// An entry to be removed is marked with row -1; one pass then closes all gaps, renumbers rows and
// moves the columns that stay together. Cost: O(edits), plus one pass over the matrix when entries,
// rows or columns go.
#include "model/update.h"
#include <cmath>

namespace
{
constexpr int GONE = -1; // in vind: the entry is to be removed

void apply_edits(ModelBody *body, const UpdatePlan *plan, double zero)
{
    for (const CoefEdit &edit : plan->edits) {
        if (std::fabs(edit.value) < zero)
            body->vind[edit.place] = GONE;
        else
            body->vval[edit.place] =
                body->senses[edit.row] == '>' ? -edit.value : edit.value;
    }
}

void compact_matrix(ModelBody *body, const UpdatePlan *plan)
{
    const int *row_map = plan->constr_map.size ? plan->constr_map.data : nullptr;
    int *__restrict ind = body->vind.data;
    double *__restrict val = body->vval.data;
    int next = 0; // entries kept
    int kept = 0; // columns kept
    for (int j = 0; j < body->numvars; j++) {
        if (mapped(plan->var_map, j) < 0) continue;
        const int start = body->vbeg[j];
        const int end = body->vbeg[j + 1];
        const int first = next;
        for (int p = start; p < end; p++) {
            const int i = ind[p] == GONE || !row_map ? ind[p] : row_map[ind[p]];
            if (i < 0) continue;
            ind[next] = i;
            val[next++] = val[p];
        }
        body->vbeg[kept] = first; // kept <= j: what is still to be read stands behind
        body->vlen[kept++] = next - first;
    }
    body->vbeg[kept] = next;
    body->numnz = next;
    body->vind.size = body->vval.size = next;
}

// Moves the entries that stay together; an array that is not there stays so.
template<class T> void compact_array(Array<T> *a, const Array<int> &map, int kept)
{
    if (a->size == 0) return;
    for (int64_t k = 0; k < map.size; k++)
        if (map[k] >= 0) a->data[map[k]] = a->data[k];
    a->size = kept;
}
} // namespace

void update_delete(TVXmodel *model, const UpdatePlan *plan)
{
    ModelBody *body = model->body;
    apply_edits(body, plan, model->env->TARV_PAR_ZERO);
    if (plan->n_remove || plan->var_map.size || plan->constr_map.size)
        compact_matrix(body, plan);
    if (plan->constr_map.size) {
        const int m = plan->kept_constrs;
        compact_array(&body->rhs, plan->constr_map, m);
        compact_array(&body->senses, plan->constr_map, m);
        compact_array(&body->constrnames, plan->constr_map, m);
        body->numconstrs = m;
    }
    if (plan->var_map.size) {
        const int n = plan->kept_vars;
        compact_array(&body->obj, plan->var_map, n);
        compact_array(&body->lb, plan->var_map, n);
        compact_array(&body->ub, plan->var_map, n);
        compact_array(&body->bound_kind, plan->var_map, n);
        compact_array(&body->vtypes, plan->var_map, n);
        compact_array(&body->given_lb, plan->var_map, n);
        compact_array(&body->given_ub, plan->var_map, n);
        compact_array(&body->varnames, plan->var_map, n);
        compact_array(&model->mip_start, plan->var_map, n);
        body->numvars = n;
        body->vbeg.size = int64_t{n} + 1;
        body->vlen.size = n;
    }
}
