// build.cpp -- creates the reduced model and the data for postsolve from the presolve record
#include "body/build.h"
#include "domain/clique_table.h"
#include "domain/implication_log.h"
#include "presolve/errors.h"
#include "presolve/presolve.h"
#include "presolve/semi_expand.h"
#include <algorithm>
#include <utility>

namespace
{
int number_live(const int *state, int count, Array<int> *map, int *live)
{
    TRY(array_resize(map, count));
    *live = 0;
    for (int k = 0; k < count; k++) map->data[k] = state[k] >= 0 ? (*live)++ : state[k];
    return 0;
}

int collect_rows(PresolveWork *w, const PresolveResult *result, int m, ModelArrays *r)
{
    TRY(array_resize(&r->rhs, m));
    TRY(array_resize(&r->senses, m));
    for (int i = 0; i < w->NumRows; i++) {
        const int k = result->RowMap.data[i];
        if (k < 0) continue;
        r->rhs.data[k] = w->Rhs.data[i];
        r->senses.data[k] = w->Sense.data[i];
    }
    return check_limits(w, w->NumRows);
}

// Bounds that are crossed by rounding meet; others have not been looked at before the step limit.
int close_crossed(PresolveWork *w, int j, double *lb, double *ub)
{
    if (*lb <= *ub) return 0;
    if (*lb - *ub > 2 * w->FeasTol + bound_error(w, j)) {
        w->InfeasCol = j;
        return END_INFEASIBLE;
    }
    *lb = *ub = 0.5 * (*lb + *ub);
    return 0;
}

int64_t count_entries(const PresolveWork *w)
{
    int64_t entries = 0;
    for (int j = 0; j < w->NumCols; j++) entries += std::max(0, w->ColCnt.data[j]);
    return entries;
}

// Entries of column j from place *at on.
void collect_entries(const PresolveWork *w, const PresolveResult *result, int j,
                     ModelArrays *r, int *at)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        r->vind.data[*at] = result->RowMap.data[w->Nodes.data[p].row];
        r->vval.data[(*at)++] = w->Nodes.data[p].value;
    }
}

int collect_cols(PresolveWork *w, const PresolveResult *result, int n, ModelArrays *r)
{
    const int64_t entries = count_entries(w);
    for (Array<double> *a : {&r->obj, &r->lb, &r->ub}) TRY(array_resize(a, n));
    TRY(array_resize(&r->vbeg, int64_t{n} + 1));
    TRY(array_resize(&r->vind, entries));
    TRY(array_resize(&r->vval, entries));
    int at = 0;
    for (int j = 0; j < w->NumCols; j++) {
        const int k = result->ColMap.data[j];
        if (k < 0) continue;
        r->obj.data[k] = w->Obj.data[j];
        r->lb.data[k] = w->Lb.data[j];
        r->ub.data[k] = w->Ub.data[j];
        if (w->IsMip) TRY(close_crossed(w, j, &r->lb.data[k], &r->ub.data[k]));
        r->vbeg.data[k] = at;
        TRY(check_limits(w, 1 + w->ColCnt.data[j]));
        collect_entries(w, result, j, r, &at);
    }
    r->vbeg.data[n] = at;
    return presolve_check(w);
}

int collect_types(const PresolveWork *w, const PresolveResult *result, int n,
                  ModelArrays *r)
{
    TRY(array_resize(&r->vtypes, n));
    for (int j = 0; j < w->NumCols; j++) {
        const int k = result->ColMap.data[j];
        if (k < 0) continue;
        const bool binary = w->Lb.data[j] == 0 && w->Ub.data[j] == 1; // integral
        r->vtypes.data[k] = is_integer(w, j) ? (binary ? 'B' : 'I') : 'C';
    }
    return 0;
}

// The sets with the members that are left. sosbeg lacks its last entry, since more sets may follow.
int collect_sets(PresolveWork *w, const PresolveResult *result, ModelArrays *r)
{
    for (int s = 0; s < w->NumSos; s++) {
        if (w->SosType.data[s] == 0) continue;
        const int begin = w->SosBeg.data[s], end = w->SosEnd.data[s];
        TRY(check_limits(w, end - begin));
        TRY(array_append(&r->sostype, w->SosType.data[s]));
        TRY(array_append(&r->sosbeg, static_cast<int>(r->sosind.size)));
        const int64_t size = r->sosind.size;
        TRY(array_extend(&r->sosind, size + end - begin, 0));
        TRY(array_extend(&r->soswt, size + end - begin, 0.0));
        for (int k = begin; k < end; k++) {
            r->sosind.data[size + k - begin] = result->ColMap.data[w->SosInd.data[k]];
            r->soswt.data[size + k - begin] = w->SosWeight.data[k];
        }
    }
    return 0;
}

int build_body(PresolveWork *w, PresolveResult *result, int m, int n)
{
    ModelArrays arrays;
    arrays.sense = w->Body->sense;
    arrays.objcon = w->ObjCon;
    TRY(collect_rows(w, result, m, &arrays));
    TRY(collect_cols(w, result, n, &arrays));
    if (w->IsMip) {
        TRY(collect_types(w, result, n, &arrays));
        TRY(collect_sets(w, result, &arrays));
        TRY(expand_semi(w, result, &arrays));
        if (arrays.sostype.size > 0)
            TRY(array_append(&arrays.sosbeg, static_cast<int>(arrays.sosind.size)));
    }
    const int code = body_adopt(w->Env, &arrays, &result->Reduced);
    return code == TVX_ERROR_INVALID_ARGUMENT ? int{END_OVERGROWN} : code;
}

int fill_result(PresolveWork *w, PresolveResult *result)
{
    int m = 0, n = 0;
    result->Full = w->Body;
    result->Env = w->Env;
    result->NumCols = w->NumCols;
    result->NumRows = w->NumRows;
    result->INF = w->INF;
    result->ObjCon = w->Body->sense * w->ObjCon;
    TRY(number_live(w->RowCnt.data, w->NumRows, &result->RowMap, &m));
    TRY(number_live(w->ColCnt.data, w->NumCols, &result->ColMap, &n));
    if (n > 0 || m > 0) TRY(build_body(w, result, m, n));
    result->GivenBounds = static_cast<Array<char> &&>(w->GivenBounds);
    result->Undo = w->Undo; // the result owns the stack from now on
    w->Undo = UndoStack{};
    return 0;
}
} // namespace

int build_reduced(PresolveWork *w, PresolveResult **out)
{
    *out = nullptr;
    PresolveResult *result = record_create<PresolveResult>();
    if (!result) return OUT_OF_MEMORY;
    if (const int status = fill_result(w, result)) {
        presolve_free(result);
        return status;
    }
    *out = result;
    return 0;
}

void presolve_free(PresolveResult *result)
{
    if (!result) return;
    undo_free(&result->Undo);
    clique_table_free(result->Cliques);
    clique_table_free(result->Found);
    implication_log_free(result->Implications);
    body_free(result->Reduced);
    record_free(result);
}

void presolve_set_env(PresolveResult *result, TVXenv *env)
{
    result->Env = env;
}

const ModelBody *presolve_reduced(const PresolveResult *result)
{
    return result->Reduced;
}

ModelBody *presolve_take_reduced(PresolveResult *result)
{
    return std::exchange(result->Reduced, nullptr);
}

CliqueTable *presolve_take_cliques(PresolveResult *result)
{
    return std::exchange(result->Cliques, nullptr);
}

CliqueTable *presolve_take_found_cliques(PresolveResult *result)
{
    return std::exchange(result->Found, nullptr);
}

ImplicationLog *presolve_take_implications(PresolveResult *result)
{
    return std::exchange(result->Implications, nullptr);
}

int presolved_var(const PresolveResult *result, int j)
{
    return result->ColMap.data[j];
}

int presolved_constr(const PresolveResult *result, int i)
{
    return result->RowMap.data[i];
}

const SemiColumn *presolved_semi(const PresolveResult *result, int *count)
{
    *count = static_cast<int>(result->Semi.size);
    return result->Semi.data;
}

double presolved_constant(const PresolveResult *result)
{
    return result->ObjCon;
}
