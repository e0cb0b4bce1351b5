// accept_node.cpp -- the point of an integral node, made exact
//
// Problem  The LP solution is integral within the tolerance. Rounded, it may violate rows with large coefficients: with
//          y <= 1e6 z and y >= 0.9, z = 9e-7 counts as 0.
// Method   First the integers are rounded. Where this violates the model, the LP is solved with all integers fixed at their
//          rounded values, and members of SOS constraints and semi-continuous columns at 0. If the point that is accepted
//          is worse than the LP of the node, or none is, integers that have moved are branched on like fractional ones.
#include "mip/accept.h"
#include "mip/node_lp.h"
#include "mip/semi.h"
#include "mip/sos_window.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int CLEAN_ROUNDS = 5;
constexpr double EXACT = 1e-12; // an integer this near is whole by its own rounding error

double lp_value(const SearchWorker *worker, int j)
{
    return simplex_value(worker->Lp.simplex, j);
}

int fix(SearchWorker *worker, int j, double value)
{
    array_push(&worker->Changes, {j, value, value}); // there is room for each column once
    worker->LpLower.data[j] = worker->LpUpper.data[j] = value;
    return array_append(&worker->Dirty, j);
}

bool is_listed(const SearchWorker *worker, int j)
{
    return worker->LpLower.data[j] == worker->LpUpper.data[j]; // fixed already, or now
}

// Bounds that hold integers at whole values, and what has to be zero at zero.
int list_fixings(SearchWorker *worker)
{
    const MIPState *state = worker->State;
    const ModelBody *body = state->Body;
    worker->Changes.size = 0;
    for (int j = 0; j < body->numvars; j++)
        if (state->IsInteger.data[j] && !is_listed(worker, j))
            TRY(fix(worker, j, std::round(lp_value(worker, j))));
    for (int k = 0; k < body->numsos; k++) {
        const SosWindow window =
            sos_window(state, k, [&](int j) { return lp_value(worker, j); });
        for (int p = body->sosbeg.data[k]; p < body->sosbeg.data[k + 1]; p++) {
            const int j = body->sosind.data[p];
            if ((p < window.First || p > window.Last) && !is_listed(worker, j))
                TRY(fix(worker, j, 0));
        }
    }
    for (int k = 0; k < state->NumSemis; k++) {
        const SemiColumn &semi = state->Semis[k];
        const double x = lp_value(worker, semi.col);
        const bool off =
            std::fabs(x) < std::fabs(x - std::clamp(x, semi.lower, semi.upper));
        if (off && !is_listed(worker, semi.col)) TRY(fix(worker, semi.col, 0));
    }
    return 0;
}

// The best point with integers as they are, offered. 0 or a code.
int solve_fixed(SearchWorker *worker, Acceptance *outcome)
{
    TRY(list_fixings(worker));
    ResolveCall call;
    call.Changes = worker->Changes.data;
    call.NumChanges = static_cast<int>(worker->Changes.size);
    call.Cutoff = worker->State->Pool.PruneValue;
    ResolveOutcome lp;
    TRY(simplex_resolve(worker->Lp.simplex, call, &lp));
    worker->LpNode = NO_NODE;
    worker->Work[WORK_NODE_LP] += simplex_take_work(worker->Lp.simplex);
    *outcome = lp.Status == TVX_CUTOFF ? Acceptance::NOT_BETTER : Acceptance::INFEASIBLE;
    if (lp.Status != TVX_OPTIMAL) return 0;
    node_get_x(worker, worker->Values.data);
    return accept_solution(worker->State, worker->Values.data, SolutionSource::NODE_LP,
                           outcome);
}

// Integers of the LP solution that are not exactly whole become candidates.
int list_inexact(SearchWorker *worker, NodeLPResult *result)
{
    const MIPState *state = worker->State;
    result->Candidates.size = 0;
    for (int j = 0; j < state->Body->numvars; j++) {
        if (!state->IsInteger.data[j] || domain_is_fixed(worker->Bounds, j)) continue;
        const double x = lp_value(worker, j);
        if (std::fabs(x - std::round(x)) <= EXACT) continue;
        TRY(array_append(
            &result->Candidates,
            {j,
             near_integer(x, worker->Bounds->Lower.data[j], worker->Bounds->Upper.data[j]),
             0, 0, 0, 0, false, false}));
    }
    return 0;
}
} // namespace

namespace
{
// The values of the LP are computed afresh; where they violate the model in its own units the LP is solved on.
int clean_point(SearchWorker *worker, TreeNode *node)
{
    for (int round = 0; round < CLEAN_ROUNDS; round++) {
        CleanOutcome outcome = CleanOutcome::OPTIMAL;
        TRY(simplex_clean(worker->Lp.simplex, &outcome));
        if (outcome != CleanOutcome::SOLVE_AGAIN) return 0;
        TRY(node_solve_lp(worker, node));
        if (node->Data->Status != NODE_INTEGRAL) return 0;
    }
    return 0;
}
} // namespace

int accept_node(SearchWorker *worker, TreeNode **node)
{
    TRY(clean_point(worker, *node));
    if ((*node)->Data->Status != NODE_INTEGRAL) return 0;
    MIPState *state = worker->State;
    NodeData *data = (*node)->Data;
    NodeLPResult *result = data->Result;
    Acceptance outcome = Acceptance::INFEASIBLE;
    node_get_x(worker, worker->Values.data);
    TRY(list_inexact(worker, result)); // before the LP moves
    TRY(accept_solution(state, worker->Values.data, SolutionSource::NODE_LP, &outcome));
    if (outcome == Acceptance::INFEASIBLE) TRY(solve_fixed(worker, &outcome));
    if (outcome == Acceptance::NOT_BETTER) data->Status = NODE_CUTOFF;
    if (data->LowerBound >= state->Pool.PruneValue) return 0; // nothing better is left
    if (result->Candidates.size > 0) {
        data->Status = NODE_FRACTIONAL;
        if (worker->LpNode == NO_NODE) TRY(node_restore_lp(worker, *node));
    } else if (outcome == Acceptance::LOST || outcome == Acceptance::INFEASIBLE) {
        state->LostBound = std::min(state->LostBound, data->LowerBound);
    }
    return 0;
}
