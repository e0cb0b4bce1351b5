// build.cpp -- the reduced model and the way back, from the presolve record
#include "frame/model_store.h"
#include "presolve/work.h"

namespace
{
int number_live(const int *state, int count, Array<int> *map, int *live)
{
    TRY(array_resize(map, count));
    *live = 0;
    for (int k = 0; k < count; k++) map->data[k] = state[k] >= 0 ? (*live)++ : state[k];
    return 0;
}

// Arrays of the reduced model.
struct Reduced {
    int n = 0, m = 0;
    Array<double> obj, lb, ub, rhs, val;
    Array<char> senses;
    Array<int> beg, ind;
};

int collect_rows(const PresolveWork *w, const PresolveResult *result, Reduced *r)
{
    TRY(array_resize(&r->rhs, r->m));
    TRY(array_resize(&r->senses, r->m));
    for (int i = 0; i < w->NumRows; i++) {
        const int k = result->RowMap.data[i];
        if (k < 0) continue;
        r->rhs.data[k] = w->Rhs.data[i];
        r->senses.data[k] = w->Sense.data[i];
    }
    return 0;
}

int collect_cols(PresolveWork *w, const PresolveResult *result, Reduced *r)
{
    int64_t entries = 0;
    for (int j = 0; j < w->NumCols; j++)
        if (is_live_col(w, j)) entries += w->ColCnt.data[j];
    for (Array<double> *a : {&r->obj, &r->lb, &r->ub}) TRY(array_resize(a, r->n));
    TRY(array_resize(&r->beg, int64_t{r->n} + 1));
    TRY(array_resize(&r->ind, entries));
    TRY(array_resize(&r->val, entries));
    const double sense = w->Model->body->sense;
    int at = 0;
    for (int j = 0; j < w->NumCols; j++) {
        const int k = result->ColMap.data[j];
        if (k < 0) continue;
        r->obj.data[k] = sense * w->Obj.data[j];
        r->lb.data[k] = w->Lb.data[j];
        r->ub.data[k] = w->Ub.data[j];
        r->beg.data[k] = at;
        TRY(check_limits(w, 1.0 + w->ColCnt.data[j]));
        for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
            r->ind.data[at] = result->RowMap.data[w->Nodes.data[p].row];
            r->val.data[at++] = w->Nodes.data[p].value;
        }
    }
    r->beg.data[r->n] = at;
    return 0;
}

int make_model(const PresolveWork *w, const Reduced *r, TVXmodel **out)
{
    ModelData data;
    data.numvars = r->n;
    data.numconstrs = r->m;
    data.sense = w->Model->body->sense;
    data.objcon = data.sense * w->ObjCon;
    data.obj = r->obj.data;
    data.lb = r->lb.data;
    data.ub = r->ub.data;
    data.rhs = r->rhs.data;
    data.senses = r->senses.data;
    data.vbeg = r->beg.data;
    data.vind = r->ind.data;
    data.vval = r->val.data;
    return model_create(w->Env, EnvUse::SHARED, &data, out);
}

int fill_result(PresolveWork *w, PresolveResult *result, Reduced *reduced)
{
    result->NumCols = w->NumCols;
    result->NumRows = w->NumRows;
    result->INF = w->INF;
    result->ObjCon = w->Model->body->sense * w->ObjCon;
    TRY(number_live(w->RowCnt.data, w->NumRows, &result->RowMap, &reduced->m));
    TRY(number_live(w->ColCnt.data, w->NumCols, &result->ColMap, &reduced->n));
    if (reduced->n > 0 || reduced->m > 0) {
        TRY(collect_rows(w, result, reduced));
        TRY(collect_cols(w, result, reduced));
        TRY(make_model(w, reduced, &w->Model->presolved));
    }
    result->Undo = w->Undo; // the stack changes hands
    w->Undo = UndoStack{};
    return 0;
}
} // namespace

int build_reduced(PresolveWork *w)
{
    PresolveResult *result = record_create<PresolveResult>();
    if (!result) return OUT_OF_MEMORY;
    w->Model->presolve = result;
    Reduced reduced;
    return fill_result(w, result, &reduced); // on failure the caller frees the result
}

void presolve_free(PresolveResult *result)
{
    if (!result) return;
    undo_free(&result->Undo);
    record_free(result);
}

int presolved_var(const PresolveResult *result, int j)
{
    return result->ColMap.data[j];
}

int presolved_constr(const PresolveResult *result, int i)
{
    return result->RowMap.data[i];
}

double presolved_constant(const PresolveResult *result)
{
    return result->ObjCon;
}
