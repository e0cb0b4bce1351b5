// branch.cpp -- what a node is divided by
//
// Method   The rules run one after the other over the candidates, each leaving fewer, until one is left. A side that a
//          rule closes tightens the node; its LP is solved again, and the choice begins anew, several times at most.
#include "mip/branch.h"
#include "mip/branch_sets.h"
#include "mip/node_lp.h"
#include "mip/search_bounds.h"
#include "mip/sos_window.h"
#include "mip/sub_mip.h"
#include <algorithm>
#include <cmath>

namespace
{
enum VarBranchRule {
    RULE_AUTOMATIC = -1,
    RULE_PSEUDO_COST,
    RULE_MULTIPLIER,
    RULE_FRACTION,
    RULE_STRONG
};

constexpr int MOST_ROUNDS = 20; // of closed sides at one node; then no side is looked at

int var_branch(const MIPState *state)
{
    const int rule = state->VarBranch;
    if (rule != RULE_AUTOMATIC) return rule;
    return state->QuickDive ? RULE_MULTIPLIER : RULE_PSEUDO_COST;
}

double distance_to_integer(const BranchCandidate &c)
{
    return std::fabs(c.Value - std::round(c.Value));
}

void keep_most_fractional(NodeLPResult *result, int count)
{
    int best = 0;
    for (int k = 1; k < count; k++)
        if (distance_to_integer(result->Candidates.data[k]) >
            distance_to_integer(result->Candidates.data[best]))
            best = k;
    std::swap(result->Candidates.data[0], result->Candidates.data[best]);
}

// By the products of what strong branching has found.
void keep_best_probe(NodeLPResult *result, double base)
{
    int best = 0;
    double most = -1;
    for (int k = 0; k < result->Candidates.size; k++) {
        const BranchCandidate &c = result->Candidates.data[k];
        const double score = branch_score(c.Down - base, c.Up - base);
        if (score <= most) continue;
        most = score;
        best = k;
    }
    std::swap(result->Candidates.data[0], result->Candidates.data[best]);
}

// Objectives of the sides are at least that of the node.
void open_candidates(NodeData *data)
{
    for (BranchCandidate &c : data->Result->Candidates) {
        c.Down = c.Up = data->Result->Bound;
        c.DownGain = c.UpGain = 0;
        c.DownClosed = c.UpClosed = false;
    }
}

// The rules behind the reliability pass, until the first candidate is the one.
void apply_filters(SearchWorker *worker, NodeLPResult *result, int rule)
{
    int count = static_cast<int>(result->Candidates.size);
    const bool pseudo = rule == RULE_PSEUDO_COST || rule == RULE_MULTIPLIER;
    if (pseudo && count > 1) count = filter_by_multipliers(worker, result, count);
    if (pseudo && count > 1 && worker->State->Env->TARV_PAR_NODEPRE)
        count = filter_by_implications(worker, result, count);
    if (count > 1) keep_most_fractional(result, count);
}

// The chosen candidate's sides by one dual step; a closed one tightens the node.
int check_choice(SearchWorker *worker, TreeNode **node, bool *moved)
{
    MIPState *state = worker->State;
    NodeData *data = (*node)->Data;
    BranchCandidate *c = &data->Result->Candidates.data[0];
    estimate_sides(worker, data->Result->Bound, c);
    const double prune = state->Pool.PruneValue;
    const bool down = c->Down >= prune, up = c->Up >= prune;
    if (down && up) {
        data->Status = NODE_CUTOFF;
        return 0;
    }
    if (!down && !up) return 0;
    const double floor = branch_floor(state, c->Value);
    worker->Deltas.size = 0;
    TRY(array_append(&worker->Deltas, down ? BoundDelta{'>', c->Var, floor + 1}
                                           : BoundDelta{'<', c->Var, floor}));
    *moved = true;
    return tighten_node_bounds(worker, node);
}

// A choice by what is known already.
void choose_without_probes(SearchWorker *worker, NodeData *data, BranchChoice *choice)
{
    NodeLPResult *result = data->Result;
    *choice = BranchChoice{};
    open_candidates(data);
    if (result->Candidates.size == 0) {
        if (result->Sos.size > 0) choice->Sos = result->Sos.data[0];
        return;
    }
    apply_filters(worker, result, var_branch(worker->State));
    choice->Candidate = 0;
}

// One round: a choice, or a tighter node (*moved), or another status.
int choose(SearchWorker *worker, TreeNode **node, BranchChoice *choice, bool *moved)
{
    NodeData *data = (*node)->Data;
    NodeLPResult *result = data->Result;
    const int rule = var_branch(worker->State);
    *choice = BranchChoice{};
    open_candidates(data);
    if (rule == RULE_PSEUDO_COST)
        TRY(branch_by_reliability(worker, node, choice, moved));
    else if (rule == RULE_STRONG && result->Candidates.size > 1)
        TRY(branch_by_probes(worker, node, 0, static_cast<int>(result->Candidates.size),
                             moved));
    data = (*node)->Data;
    if (*moved || data->Status != NODE_FRACTIONAL || choice->Sos >= 0 || choice->Set >= 0)
        return 0;
    if (result->Candidates.size == 0) {
        if (result->Sos.size > 0) choice->Sos = result->Sos.data[0];
        return 0;
    }
    if (rule == RULE_STRONG)
        keep_best_probe(result, data->LPObjective);
    else
        apply_filters(worker, result, rule);
    choice->Candidate = 0;
    return check_choice(worker, node, moved);
}

// Nothing is left to divide, and the LP cannot tell what the node holds.
void give_up(MIPState *state, const TreeNode *node)
{
    state->LostBound = std::min(state->LostBound, node->Data->LowerBound);
}

// The LP of the node is unbounded, and SOS constraints do not hold any more: with rational data the model is unbounded if
// the node has an integer point (Meyer 1974).
int settle_unbounded(SearchWorker *worker, TreeNode *node)
{
    MIPState *state = worker->State;
    const Domain *bounds = worker->Bounds;
    Array<double> none;
    SubMipOutcome found;
    TRY(array_assign(&none, state->Body->numvars, 0.0));
    TRY(sub_mip_run({state->Body, bounds->Lower.data, bounds->Upper.data, none.data,
                     state->Env, std::max(0.0, state->Env->NodeLimit - state->Nodes),
                     UNDEFINED_VALUE},
                    &found));
    state->SubNodes += found.Nodes;
    state->SubIterations += found.Iterations;
    if (found.Found)
        state->Status = TVX_UNBOUNDED;
    else if (found.Complete)
        node->Data->Status = NODE_INFEASIBLE;
    else if (is_limit(found.Status) || found.Status == TVX_NODE_LIMIT) {
        state->Status = found.Status;
        node->Data->Status = NODE_STOPPED;
    } else
        give_up(state, node);
    return 0;
}

// A node whose LP has no usable solution: by the variables that are not fixed.
int choose_unfixed(SearchWorker *worker, TreeNode *node, BranchChoice *choice)
{
    const MIPState *state = worker->State;
    const Domain *bounds = worker->Bounds;
    NodeLPResult *result = node->Data->Result;
    result->Candidates.size = 0;
    for (int k = 0; k < state->Body->numsos; k++) {
        const SosWindow window = sos_window(state, k, [&](int j) {
            return bounds->Lower.data[j] < 0 || bounds->Upper.data[j] > 0 ? 1.0 : 0.0;
        });
        if (window.fits(state->Body->sostype.data[k])) continue;
        choice->Sos = k;
        return 0;
    }
    if (result->Kind == TVX_UNBOUNDED) return settle_unbounded(worker, node);
    int best = -1;
    double width = HUGE_VAL;
    for (int j = 0; j < state->Body->numvars; j++) {
        if (!state->IsInteger.data[j]) continue;
        const double range = bounds->Upper.data[j] - bounds->Lower.data[j];
        if (range < 0.5 || range >= width) continue;
        best = j;
        width = range;
    }
    if (best < 0) {
        give_up(worker->State, node);
        return 0;
    }
    double middle = 0.5 * (bounds->Lower.data[best] + bounds->Upper.data[best]);
    middle = std::clamp(middle, bounds->Lower.data[best], bounds->Upper.data[best]);
    TRY(array_append(&result->Candidates,
                     {best, std::floor(middle) + 0.5, node->Data->LowerBound,
                      node->Data->LowerBound, 0, 0, false, false}));
    choice->Candidate = 0;
    return 0;
}
} // namespace

double branch_floor(const MIPState *state, double x)
{
    return std::floor(x + state->Env->IntFeasTol);
}

double branch_fraction(const MIPState *state, double x)
{
    return std::clamp(x - branch_floor(state, x), 0.0, 1.0);
}

int branch_node(SearchWorker *worker, TreeNode **node, BranchMode mode, Children *children)
{
    BranchChoice choice;
    for (int round = 0; (*node)->Data->Status == NODE_FRACTIONAL; round++) {
        bool moved = false;
        if (round < MOST_ROUNDS)
            TRY(choose(worker, node, &choice, &moved));
        else
            choose_without_probes(worker, (*node)->Data, &choice);
        if (!moved || (*node)->Data->Status != NODE_FRACTIONAL) break;
        TRY(node_solve_lp(worker, *node));
    }
    const NodeData *data = (*node)->Data;
    if (data->Status == NODE_FAILED)
        TRY(choose_unfixed(worker, *node, &choice));
    else if (data->Status != NODE_FRACTIONAL)
        return 0;
    if (mode == BranchMode::TEST) return 0;
    if (choice.Sos >= 0) return make_sos_children(worker, *node, choice.Sos, children);
    if (choice.Set >= 0) return make_set_children(worker, *node, choice.Set, children);
    if (choice.Candidate < 0) return 0;
    const BranchCandidate candidate = data->Result->Candidates.data[choice.Candidate];
    return make_children(worker, *node, candidate, children);
}
