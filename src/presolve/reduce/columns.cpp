// columns.cpp -- the column pass: fixed, empty, singleton and dominated columns
//
// Method      A column with equal bounds is fixed; an empty one is fixed by its cost; a column singleton is handed to
//             column_singleton.cpp. A column is dominated if moving it in one direction does not increase the cost and
//             violates no inequality. It is fixed at its bound on that side; if it has none the model is infeasible or
//             unbounded, or, at cost zero, the rows of the column can always be satisfied (dominated.cpp).
// Cost        O(entries of the columns processed)
// Literature  E. D. Andersen and K. D. Andersen, "Presolving in linear programming", Math. Prog. 71, 1995.
#include "presolve/reduce/columns.h"
#include "presolve/claim.h"
#include "presolve/errors.h"

namespace
{
constexpr double CLOSED = 1e-10; // a smaller range counts as zero

constexpr double NO_COST = 1e-10;

// Directions in which neither the cost nor a row restricts column j.
struct Ways {
    bool up, down;
};

Ways free_ways(const PresolveWork *w, int j)
{
    const double cost = w->Obj.data[j], none = no_cost(w, j, NO_COST);
    Ways ways = {cost <= none, cost >= -none};
    for (int p = first_in_col(w, j); p >= 0 && (ways.up || ways.down);
         p = next_in_col(w, p)) {
        if (w->Sense.data[w->Nodes.data[p].row] == '=') return {false, false};
        if (w->Nodes.data[p].value > 0)
            ways.up = false;
        else
            ways.down = false;
    }
    return ways;
}

// Column j improves the objective without limit upwards (sign +1) or downwards (-1).
int run_away(PresolveWork *w, int j, int sign)
{
    if (sign * w->Obj.data[j] < -w->OptTol - cost_error(w, j)) {
        w->InfeasCol = j;
        return claim_unbounded(w, {{j, static_cast<double>(sign)}});
    }
    const bool costs = std::fabs(w->Obj.data[j]) > no_cost(w, j, NO_COST);
    return costs || w->KeepCrush ? 0 : pre_dominated(w, j, sign);
}

int try_dominated(PresolveWork *w, int j)
{
    const Ways ways = free_ways(w, j);
    if (ways.down && has_lb(w, j)) return fix_at_lower(w, j);
    if (ways.up && has_ub(w, j)) return fix_at_upper(w, j);
    if (ways.down) return run_away(w, j, -1);
    return ways.up ? run_away(w, j, 1) : 0;
}

int try_column(PresolveWork *w, int j, bool dual)
{
    const double lb = w->Lb.data[j], ub = w->Ub.data[j];
    if (lb > ub + w->FeasTol + bound_error(w, j)) {
        w->InfeasCol = j;
        return END_INFEASIBLE;
    }
    if (lb > ub - CLOSED) TRY(fix_by_range(w, j));
    if (!is_live_col(w, j) || w->ColFlags.data[j]) return 0;
    if (w->ColCnt.data[j] == 0) return fix_column_if_empty(w, j);
    if (dual) TRY(try_dominated(w, j));
    return w->ColCnt.data[j] == 1 ? pre_column_singleton(w, j) : 0;
}

int try_columns(PresolveWork *w, const int *list, int count, bool dual)
{
    for (int k = 0; k < count; k++) {
        const int j = list[k];
        TRY(check_limits(w, 1 + std::max(0, w->ColCnt.data[j])));
        if (is_live_col(w, j)) TRY(try_column(w, j, dual));
    }
    return 0;
}

// Processes the columns touched since the worklist had `begin` columns, so that chains are reduced in one pass.
int try_touched(PresolveWork *w, int begin, bool dual)
{
    const WorkList *touched = cols_of_phase(w);
    for (int k = begin; k < touched->PendingCnt; k++)
        TRY(try_columns(w, touched->List.data + k, 1, dual));
    return 0;
}

void forget_rows(PresolveWork *w)
{
    for (int k = 0; k < w->NumNoted; k++) {
        w->Flag.data[w->IndexB.data[k]] = 0;
        w->ScratchB.data[w->IndexB.data[k]] = 0;
    }
    w->NumNoted = 0;
}
} // namespace

void note_row(PresolveWork *w, int i, RowNote note)
{
    if (!w->Flag.data[i]) w->IndexB.data[w->NumNoted++] = i;
    w->Flag.data[i] |= static_cast<char>(note);
}

int pre_columns(PresolveWork *w)
{
    int *list = w->IndexA.data;
    const int count = candidate_cols_by_sense(w, SENSE_LESS | SENSE_EQUAL, list);
    w->Work += 10.0 * count * static_cast<double>(w->NumNz) / (w->NumCols + 1);
    const bool dual = w->Env->TARV_PAR_DUALREDUCTION != 0;
    const int begin = cols_of_phase(w)->PendingCnt;
    int status = try_columns(w, list, count, dual);
    if (status == 0) status = try_touched(w, begin, dual);
    forget_rows(w);
    return status;
}
