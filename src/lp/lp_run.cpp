// lp_run.cpp -- one run of the simplex within an LP solve
//
// Method      All runs of a solve count their iterations on, so that the limit holds for all of them together. A large
//             body that starts from scratch may first get a basis from an auxiliary problem.
#include "lp/lp_run.h"
#include "lp/lp_auxiliary.h"

int lp_run(LpSolve *lp, const LpTarget &target, const LpStart &start)
{
    LpResult *result = lp->result;
    AuxiliaryStart auxiliary;
    SimplexCall call;
    call.Method = start.method;
    call.Cutoff = target.cutoff;
    call.Root = start.root;
    if (start.statuses.size > 0) {
        call.Statuses = start.statuses.data;
        if (start.norms.size > 0) call.Norms = start.norms.data;
    } else if (!*target.simplex) {
        TRY(lp_auxiliary_start(target.body, lp->env, start, result->itercount, &auxiliary));
        result->itercount += auxiliary.iterations;
        lp->work += auxiliary.work;
        if (auxiliary.statuses.size > 0) call.Statuses = auxiliary.statuses.data;
    }
    call.Iterations = result->itercount;
    call.Total = &result->itercount;
    TRY(SimplexOptimize(target.simplex, target.body, lp->env, call));
    if (target.simplex == &lp->simplex) return 0;
    lp->work += simplex_take_work(*target.simplex);
    return 0;
}
