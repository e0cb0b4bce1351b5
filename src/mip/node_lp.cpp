// node_lp.cpp -- the LP relaxation of a node
//
// Method   The record of the worker's LP stays live (simplex/resolve.h): changed bounds go to it, and the dual simplex
//          continues, from the basis in which the parent ended. That is usually the live one; else it is loaded.
// Status   of the LP   optimal: integral or fractional; infeasible; cutoff; numeric trouble: failed; a limit: stopped
#include "mip/node_lp.h"
#include "mip/packed_basis.h"
#include "mip/semi.h"
#include "mip/sos_window.h"
#include "mip/user_rows.h"
#include <algorithm>
#include <cmath>

namespace
{
// The nearest ancestor that has a basis, or the node itself.
const TreeNode *basis_source(const TreeNode *node)
{
    for (; node; node = node->Parent)
        if (node->Data && (node->Data->Basis.Full || node->Data->Basis.Packed)) return node;
    return nullptr;
}

// The basis to start from, null for the live one. 0 or OUT_OF_MEMORY.
int start_basis(SearchWorker *worker, const TreeNode *node, const NodeBasis **basis)
{
    *basis = nullptr;
    const TreeNode *source = basis_source(node);
    if (!source || source->Number == worker->LpNode) return 0; // assigned alike
    const NodeData *data = source->Data;
    *basis = data->Basis.Full;
    if (*basis) return 0;
    *basis = &worker->Basis;
    return basis_unpack(data->Basis.Packed, worker->State->Body->numvars, data->LPRows,
                        &worker->Basis);
}

double iterations_left(const MIPState *state)
{
    return state->Env->IterationLimit - state->Iterations;
}

bool is_fractional(const MIPState *state, double x)
{
    return std::fabs(x - std::round(x)) > state->Env->IntFeasTol;
}

void add_candidate(NodeLPResult *result, int j, double x)
{
    array_push(&result->Candidates, {j, x, 0, 0, 0, 0, false, false});
}

// Integer columns that are basic with a fractional value: nonbasic ones are at bounds, which are whole.
int find_fractionals(SearchWorker *worker, NodeLPResult *result)
{
    const MIPState *state = worker->State;
    const sopt *lp = worker->Lp.simplex;
    const int m = simplex_num_rows(lp);
    result->Candidates.size = 0;
    for (int r = 0; r < m; r++) {
        const int j = simplex_basic(lp, r);
        if (j >= state->Body->numvars || !state->IsInteger.data[j]) continue;
        const double x = simplex_value(lp, j);
        if (!is_fractional(state, x)) continue;
        TRY(array_grow(&result->Candidates, result->Candidates.size + 1));
        add_candidate(result, j, x);
    }
    result->Fractionals = static_cast<int>(result->Candidates.size);
    return 0;
}

// Semi-continuous columns with a value that is not allowed: their indicators are candidates, also when they are whole.
int find_semis(SearchWorker *worker, NodeLPResult *result)
{
    const MIPState *state = worker->State;
    const sopt *lp = worker->Lp.simplex;
    result->SemiViolated = 0;
    for (int k = 0; k < state->NumSemis; k++) {
        const SemiColumn &semi = state->Semis[k];
        if (semi_violation(semi, simplex_value(lp, semi.col)) <= state->Env->FeasibilityTol)
            continue;
        result->SemiViolated++;
        const double z = simplex_value(lp, semi.indicator);
        if (is_fractional(state, z) || domain_is_fixed(worker->Bounds, semi.indicator))
            continue; // a candidate already, or decided
        TRY(array_grow(&result->Candidates, result->Candidates.size + 1));
        add_candidate(result, semi.indicator, near_integer(z, 0, 1));
    }
    return 0;
}

int find_sos(const SearchWorker *worker, NodeLPResult *result)
{
    const MIPState *state = worker->State;
    result->Sos.size = 0;
    for (int k = 0; k < state->Body->numsos; k++) {
        if (sos_window(state, k, [&](int j) {
                return simplex_value(worker->Lp.simplex, j);
            }).fits(state->Body->sostype.data[k]))
            continue;
        TRY(array_append(&result->Sos, k));
    }
    result->SosViolated = static_cast<int>(result->Sos.size);
    return 0;
}

NodeStatus status_of(const NodeLPResult *result)
{
    return result->Candidates.size == 0 && result->Sos.size == 0 &&
                   result->SemiViolated == 0
               ? NODE_INTEGRAL
               : NODE_FRACTIONAL;
}

int take_optimum(SearchWorker *worker, NodeData *data, const ResolveOutcome &outcome)
{
    data->LPObjective = outcome.Value;
    data->Result->Bound = outcome.Bound;
    data->LowerBound = std::max(data->LowerBound, outcome.Bound);
    if (data->LowerBound >= worker->State->Pool.PruneValue) {
        data->Status = NODE_CUTOFF;
        return 0;
    }
    TRY(node_find_candidates(worker, data->Result));
    data->Status = status_of(data->Result);
    return 0;
}

int take_outcome(SearchWorker *worker, TreeNode *node, const ResolveOutcome &outcome)
{
    NodeData *data = node->Data;
    data->Result->Kind = outcome.Status;
    switch (outcome.Status) {
    case TVX_OPTIMAL:
        return take_optimum(worker, data, outcome);
    case TVX_INFEASIBLE:
        data->Status = NODE_INFEASIBLE;
        return 0;
    case TVX_CUTOFF:
        data->Status = NODE_CUTOFF;
        return 0;
    case TVX_ITERATION_LIMIT:
    case TVX_TIME_LIMIT:
    case TVX_INTERRUPTED:
        data->Status = NODE_STOPPED;
        return 0;
    default: // TVX_UNBOUNDED too: Kind tells
        data->Status = NODE_FAILED;
        return 0;
    }
}
} // namespace

int node_find_candidates(SearchWorker *worker, NodeLPResult *result)
{
    TRY(find_fractionals(worker, result));
    TRY(find_semis(worker, result));
    std::sort(
        result->Candidates.begin(), result->Candidates.end(),
        [](const BranchCandidate &a, const BranchCandidate &b) { return a.Var < b.Var; });
    return find_sos(worker, result);
}

void node_get_x(const SearchWorker *worker, double *x)
{
    for (int j = 0; j < worker->State->Body->numvars; j++)
        x[j] = simplex_value(worker->Lp.simplex, j);
}

namespace
{
int solve(SearchWorker *worker, const TreeNode *node, ResolveOutcome *outcome)
{
    const MIPState *state = worker->State;
    sopt *lp = worker->Lp.simplex;
    ResolveCall call;
    TRY(append_user_rows(worker));
    TRY(start_basis(worker, node, &call.Basis));
    worker_list_changes(worker);
    call.Changes = worker->Changes.data;
    call.NumChanges = static_cast<int>(worker->Changes.size);
    call.Iterations = iterations_left(state);
    call.Cutoff = state->Pool.PruneValue;
    TRY(simplex_resolve(lp, call, outcome));
    worker->LpNode = node->Number;
    node->Data->Result->Iterations += outcome->Iterations;
    worker->Work[WORK_NODE_LP] += simplex_take_work(lp);
    return 0;
}
} // namespace

int node_solve_lp(SearchWorker *worker, TreeNode *node)
{
    ResolveOutcome outcome;
    TRY(solve(worker, node, &outcome));
    return take_outcome(worker, node, outcome);
}

int node_restore_lp(SearchWorker *worker, TreeNode *node)
{
    ResolveOutcome outcome;
    TRY(solve(worker, node, &outcome));
    if (outcome.Status != TVX_OPTIMAL) node->Data->Status = NODE_FAILED;
    return 0;
}
