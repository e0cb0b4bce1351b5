// user_rows.cpp -- rows that the caller's function hands in at nodes
#include "mip/user_rows.h"
#include "mip/implied_integers.h"
#include "simplex/resolve.h"
#include <cmath>

namespace
{
constexpr double NO_ENTRY =
    1e-13; // a smaller coefficient left by presolve's substitutions is rounding

int spread(const ModelBody *body, const CallbackRow &row, Array<double> *dense)
{
    TRY(array_assign(dense, body->numvars, 0.0));
    for (int k = 0; k < row.count; k++) dense->data[row.ind[k]] += row.val[k];
    return 0;
}

int gather(const Array<double> *dense, Array<int> *ind, Array<double> *val)
{
    for (int j = 0; j < dense->size; j++) {
        if (std::fabs(dense->data[j]) <= NO_ENTRY) continue;
        TRY(array_append(ind, j));
        TRY(array_append(val, dense->data[j]));
    }
    return 0;
}
} // namespace

int add_user_row(MIPState *state, const CallbackRow &row)
{
    Array<double> dense, val;
    Array<int> ind;
    bool mapped = false;
    double rhs = row.rhs;
    TRY(spread(space_outermost(state->Space), row, &dense));
    TRY(space_row_in(state->Space, &dense, &rhs, &mapped));
    if (!mapped)
        return fail(state->Env, TVX_ERROR_CALLBACK, Report::KEEP_FIRST,
                    "Presolve has removed columns of the cut: set parameter PreCrush");
    TRY(gather(&dense, &ind, &val));
    TRY(row_append(&state->CallerRows, row.count, row.ind, row.val, row.rhs));
    TRY(row_append(&state->UserRows, static_cast<int>(ind.size), ind.data, val.data, rhs));
    drop_optimal_implied(state);
    const SolutionEntry *best = pool_best(&state->Pool);
    if (best && !callers_rows_hold(state, best->Full)) state->IncumbentGone = true;
    return 0;
}

namespace
{
// value(j): of column j.
template<class Value>
bool rows_hold(const MIPState *state, const RowList *rows, int first, Value value)
{
    for (int i = first; i < row_count(rows); i++) {
        double activity = 0;
        for (int64_t p = rows->Beg.data[i]; p < rows->Beg.data[i + 1]; p++)
            activity += rows->Val.data[p] * value(rows->Ind.data[p]);
        if (activity > rows->Rhs.data[i] + state->Env->FeasibilityTol) return false;
    }
    return true;
}
} // namespace

bool user_rows_hold(const MIPState *state, const double *x)
{
    return rows_hold(state, &state->UserRows, 0, [x](int j) { return x[j]; });
}

bool callers_rows_hold(const MIPState *state, const double *full)
{
    return rows_hold(state, &state->CallerRows, 0, [full](int j) { return full[j]; });
}

bool new_rows_hold(const SearchWorker *worker, int first)
{
    const sopt *lp = worker->Lp.simplex;
    return rows_hold(worker->State, &worker->State->UserRows, first,
                     [lp](int j) { return simplex_value(lp, j); });
}

int append_user_rows(SearchWorker *worker)
{
    const RowList *rows = &worker->State->UserRows;
    for (; worker->UserRows < row_count(rows); worker->UserRows++) {
        const int i = worker->UserRows;
        const int64_t beg = rows->Beg.data[i];
        const LiveRow row = {static_cast<int>(rows->Beg.data[i + 1] - beg),
                             rows->Ind.data + beg, rows->Val.data + beg, '<',
                             rows->Rhs.data[i]};
        TRY(simplex_append_rows(worker->Lp.simplex, &row, 1));
    }
    return 0;
}
