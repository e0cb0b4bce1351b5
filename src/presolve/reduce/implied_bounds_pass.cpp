// implied_bounds_pass.cpp -- rows that are redundant because of bounds implied by other rows
//
// Problem     A row may be redundant or infeasible not because of the bounds of its columns, but because of bounds that
//             other rows imply for them.
// Method      Bounds are propagated outside of the model, with all rows slightly widened. A row that is satisfied by
//             these bounds, without those that it implied itself, is removed; the rows that this depends on are kept
//             (bound_origins.cpp), so that no row is removed because of itself. A contradiction counts only if it
//             remains with all rows widened by the whole tolerance. The bounds of the model do not change.
// Postsolve   The slack of the row is basic. No undo record is needed.
// Cost        O(entries) for each of a few rounds.
// Literature  M. W. P. Savelsbergh, "Preprocessing and probing techniques for mixed integer programming problems",
//             ORSA J. Computing 6, 1994.
#include "presolve/bound_propagation.h"
#include "presolve/claim.h"
#include <algorithm>

namespace
{
constexpr int ROUNDS = 3;
// Tolerances by which rows are widened, so that rows redundant only by about ten propagation steps are still found.
constexpr double WIDER = 0.1;

// Propagates bounds from the rows of the list, each widened by `relax`.
int propagate(BoundPropagation *p, PresolveWork *w, const int *list, int count,
              double relax)
{
    TRY(propagation_alloc(p, w, PROPAGATE_PRIMAL));
    propagation_set_rows(p, relax);
    for (int k = 0; k < count; k++) propagation_list(p, list[k]);
    TRY(propagation_run(p, ROUNDS));
    w->Work += p->Effort;
    return 0;
}

int remove_implied(BoundPropagation *p, PresolveWork *w, const int *list, int count)
{
    for (int k = 0; k < count; k++) {
        const int i = list[k];
        if (!is_live_row(w, i)) continue;
        TRY(propagation_check(p));
        if (activity_of_others(p, i, LOWER_SIDE) > w->Rhs.data[i] + w->FeasTol) continue;
        const bool equation = w->Sense.data[i] == '=';
        if (equation && activity_of_others(p, i, UPPER_SIDE) < w->Rhs.data[i] - w->FeasTol)
            continue;
        const int sides = 1 << LOWER_SIDE | (equation ? 1 << UPPER_SIDE : 0);
        if (claim_con(p, i, sides)) remove_row(w, i, ROW_REDUNDANT);
    }
    return 0;
}
} // namespace

int pre_implied_bounds(PresolveWork *w)
{
    if (!w->Env->TARV_PAR_PREBOUND) return 0;
    int *list = w->IndexA.data;
    const int count = candidate_rows(w, list);
    if (count == 0) return 0;
    BoundPropagation p;
    TRY(propagate(&p, w, list, count, WIDER * w->FeasTol));
    if (p.Contradiction) {
        p = BoundPropagation{};
        TRY(propagate(&p, w, list, count, w->FeasTol));
    }
    if (p.Contradiction) {
        w->InfeasRow = p.WrongCon;
        return claim_propagated(w, &p);
    }
    return remove_implied(&p, w, list, count);
}
