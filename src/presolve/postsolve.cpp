// postsolve.cpp -- maps a solution of the reduced model to the original model
//
// Method      The solution of the reduced model is copied through the index maps; removed rows have a basic slack and
//             dual value 0 until a record changes that. Then the records of the undo stack are undone from its top. At
//             the end slacks are computed from the original model.
// Invariant   After each record the point is primal feasible, dual feasible and basic for the model before that
//             reduction, if it was so for the model after it.
// Literature  E. D. Andersen and K. D. Andersen, "Presolving in linear programming", Math. Prog. 71, 1995.
#include "presolve/postsolve.h"
#include <algorithm>
#include <cmath>

namespace
{
// A nonbasic fixed column is at both bounds: its status follows the sign of its reduced cost.
int status_of(const ModelBody *body, const LpPoint *reduced, int k)
{
    const int status = reduced->status.data[k];
    if (!body || status >= 0 || body->lb.data[k] != body->ub.data[k]) return status;
    return reduced->dual.data[k] >= 0 ? -1 : -2;
}

void scatter(const PresolveResult *result, const LpPoint *reduced, PostPoint *point)
{
    const int n = point->n, m = point->m;
    const ModelBody *small = result->Reduced;
    const int reduced_n = small ? small->numvars : 0;
    for (int j = 0; j < n; j++) {
        const int k = result->ColMap.data[j];
        point->x[j] = k >= 0 ? reduced->x.data[k] : 0;
        point->d[j] = k >= 0 ? reduced->dual.data[k] : 0;
        if (point->status) point->status[j] = k >= 0 ? status_of(small, reduced, k) : -1;
    }
    for (int i = 0; i < m; i++) {
        const int k = result->RowMap.data[i];
        point->x[n + i] = k >= 0 ? reduced->x.data[reduced_n + k] : 0;
        point->d[n + i] = k >= 0 ? reduced->dual.data[reduced_n + k] : 0;
        if (point->status)
            point->status[n + i] = k >= 0 ? reduced->status.data[reduced_n + k] : 0;
    }
}

// Kinds that determine values of columns.
void undo_values(const UndoRecord *undo, PostPoint *point)
{
    switch (undo->kind) {
    case UNDO_FIX:
        return undo_fix(undo, point);
    case UNDO_SUBSTITUTE:
        return undo_substitute(undo, point);
    case UNDO_SLACK_COLUMN:
        return undo_slack_column(undo, point);
    case UNDO_DOMINATED:
        return undo_dominated(undo, point);
    case UNDO_MERGE_COLS:
        return undo_merge_cols(undo, point);
    case UNDO_COLUMN_SHIFT:
        return undo_column_shift(undo, point);
    case UNDO_FREE_TO_SLACK:
        return undo_free_to_slack(undo, point);
    default:
        return;
    }
}

void undo_record(const UndoRecord *undo, PostPoint *point)
{
    switch (undo->kind) {
    case UNDO_PARALLEL_ROWS:
        return undo_parallel_rows(undo, point);
    case UNDO_BOUND_TRANSFER:
        return undo_bound_transfer(undo, point);
    case UNDO_SINGLETON_ROW:
        return undo_singleton_row(undo, point);
    case UNDO_FORCING_ROW:
        return undo_forcing_row(undo, point);
    case UNDO_ROW_COMBINATION:
        return undo_row_combination(undo, point);
    default:
        return undo_values(undo, point);
    }
}

int compute_slacks(const ModelBody *body, PostPoint *point, LimitWatch *watch)
{
    double *slack = point->x + point->n;
    std::copy_n(body->rhs.data, point->m, slack);
    for (int j = 0; j < point->n; j++) {
        TRY(limits_watch(watch, 1.0 + body->vlen.data[j]));
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            slack[body->vind.data[p]] -= body->vval.data[p] * point->x[j];
    }
    return 0;
}

// 0, OUT_OF_MEMORY or a PresolveEnd of the limits of `env`, when it is not null.
int map_point(const PresolveResult *result, const LpPoint *reduced, const TVXenv *env,
              LpPoint *full)
{
    const ModelBody *body = result->Full;
    TRY(lp_point_alloc(full, body, !reduced || reduced->status.size > 0));
    PostPoint point = {body->numvars,   body->numconstrs,  full->x.data,
                       full->dual.data, full->status.data, result->INF};
    LimitWatch watch = {env};
    TRY(limits_reached(env));
    scatter(result, reduced, &point);
    TRY(limits_reached(env));
    TRY(undo_all(result->Undo.head, &point, &watch));
    return compute_slacks(body, &point, &watch);
}
} // namespace

int undo_all(const UndoRecord *undo, PostPoint *point, LimitWatch *watch)
{
    for (; undo; undo = undo->next) {
        undo_record(undo, point);
        TRY(limits_watch(watch, 2.0 + undo->count));
    }
    return 0;
}

int lp_point_alloc(LpPoint *point, const ModelBody *body, bool with_basis)
{
    const int64_t size = int64_t{body->numvars} + body->numconstrs;
    TRY(array_assign(&point->x, size, 0.0));
    TRY(array_assign(&point->dual, size, 0.0));
    return with_basis ? array_assign(&point->status, size, 0) : 0;
}

int postsolve_equations(const PresolveResult *result, char *rows)
{
    int count = 0;
    for (const UndoRecord *undo = result->Undo.head; undo; undo = undo->next) {
        if (undo->kind != UNDO_ROW_COMBINATION) continue;
        const int i = result->RowMap.data[undo->other];
        if (i < 0 || rows[i]) continue;
        rows[i] = 1;
        count++;
    }
    return count;
}

namespace
{
void make_integral(const ModelBody *body, int j, double *x)
{
    if (j < 0 || body->vtypes.size == 0) return;
    const char type = body->vtypes.data[j];
    if (type != 'C' && type != 'S') x[j] = std::round(x[j]) + 0.0; // no negative zero
}
} // namespace

void postsolve_primal(const PresolveResult *result, const double *x_reduced, double *x_full)
{
    const ModelBody *body = result->Full;
    PostPoint point = {body->numvars, body->numconstrs, x_full,
                       nullptr,       nullptr,          result->INF};
    for (int j = 0; j < body->numvars; j++) {
        const int k = result->ColMap.data[j];
        x_full[j] = k >= 0 ? x_reduced[k] : 0;
        make_integral(body, j, x_full);
    }
    for (const UndoRecord *undo = result->Undo.head; undo; undo = undo->next) {
        undo_values(undo, &point);
        make_integral(body, undo->col, x_full);
        if (undo->kind == UNDO_MERGE_COLS) make_integral(body, undo->other, x_full);
    }
}

int postsolve_lp(const PresolveResult *result, const LpPoint *reduced, LpPoint *full,
                 PresolveStatus *stopped)
{
    const int end = map_point(result, reduced, stopped ? result->Env : nullptr, full);
    if (end == OUT_OF_MEMORY) return end;
    if (stopped) *stopped = presolve_status_of(end);
    return 0;
}
