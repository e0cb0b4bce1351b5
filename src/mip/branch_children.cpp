// branch_children.cpp -- the children of a node
//
// Method      A variable with value x is divided at f = floor(x): x <= f, x >= f + 1. Of an SOS constraint the members
//             before a place between the first and the last that is not zero are fixed to zero in one child, those behind
//             it in the other one; a member at the place itself stays in both for type 2.
// Literature  E. M. L. Beale, J. A. Tomlin, "Special facilities in a general mathematical programming system for
//             non-convex problems using ordered sets of variables", 1970.
#include "mip/branch_sets.h"
#include "mip/sos_window.h"
#include <algorithm>

namespace
{
constexpr double SMALL_GAIN = 1e-6; // of a variable without pseudo-costs

constexpr double SAME_BOUND = 1e-6;

int add_child(SearchWorker *worker, TreeNode *node, const BoundDelta *deltas, int count,
              Children *children)
{
    MIPState *state = worker->State;
    TreeNode *child = node_create(state, node, state->NextNumber);
    if (!child) return OUT_OF_MEMORY;
    state->NextNumber++;
    state->Store.NodeCount++;
    const int code = node_add_deltas(&child, deltas, count);
    children->Node[children->Count++] = child;
    return code;
}

// Bound and estimate of a child on that side.
void set_child_values(const MIPState *state, TreeNode *child,
                      const BranchCandidate &candidate, char sense)
{
    const NodeData *parent = child->Parent->Data;
    NodeData *data = child->Data;
    const bool down = sense == '<';
    GainEstimate gain = {SMALL_GAIN, SMALL_GAIN};
    if (pseudo_observations(&state->Costs, candidate.Var) > 0)
        gain = pseudo_estimate(&state->Costs, candidate.Var,
                               branch_fraction(state, candidate.Value));
    data->BranchVar = candidate.Var;
    data->BranchValue = candidate.Value;
    data->BranchSense = sense;
    data->LowerBound = std::max(parent->LowerBound, down ? candidate.Down : candidate.Up);
    data->Estimate =
        std::max(down ? gain.Down : gain.Up, data->LowerBound - parent->LPObjective) +
        parent->Estimate - std::min(gain.Down, gain.Up);
    data->HeapKey = data->LowerBound;
}

// A child in which these columns are fixed to zero.
int add_zero_child(SearchWorker *worker, TreeNode *node, const int *columns, int count,
                   Children *children)
{
    const Domain *bounds = worker->Bounds;
    worker->Deltas.size = 0;
    TRY(array_reserve(&worker->Deltas, 2 * int64_t{count}));
    for (int k = 0; k < count; k++) {
        const int j = columns[k];
        if (bounds->Upper.data[j] > 0) array_push(&worker->Deltas, {'<', j, 0.0});
        if (bounds->Lower.data[j] < 0) array_push(&worker->Deltas, {'>', j, 0.0});
    }
    return add_child(worker, node, worker->Deltas.data,
                     static_cast<int>(worker->Deltas.size), children);
}
} // namespace

int make_children(SearchWorker *worker, TreeNode *node, const BranchCandidate &candidate,
                  Children *children)
{
    const MIPState *state = worker->State;
    const Domain *bounds = worker->Bounds;
    const int j = candidate.Var;
    const double floor = branch_floor(state, candidate.Value);
    const BoundDelta sides[] = {{'<', j, floor}, {'>', j, floor + 1}};
    for (const BoundDelta &side : sides) {
        const bool down = side.Sense == '<';
        if (down ? side.Value < bounds->Lower.data[j] - SAME_BOUND
                 : side.Value > bounds->Upper.data[j] + SAME_BOUND)
            continue;
        TRY(add_child(worker, node, &side, 1, children));
        set_child_values(state, children->Node[children->Count - 1], candidate, side.Sense);
    }
    return 0;
}

int make_sos_children(SearchWorker *worker, TreeNode *node, int sos, Children *children)
{
    const MIPState *state = worker->State;
    const ModelBody *body = state->Body;
    const Domain *bounds = worker->Bounds;
    const bool has_point = node->Data->Status == NODE_FRACTIONAL && node->Data->Result &&
                           node->Data->Result->Kind == TVX_OPTIMAL;
    const int type = body->sostype.data[sos];
    SosWindow window;
    if (has_point)
        window = sos_branch_window(
            state, sos, [&](int j) { return simplex_value(worker->Lp.simplex, j); });
    if (window.fits(type))
        window = sos_window(state, sos, [&](int j) {
            return bounds->Lower.data[j] < 0 || bounds->Upper.data[j] > 0 ? 1.0 : 0.0;
        });
    if (window.fits(type)) return 0; // nothing to divide
    const bool pair = type == 2;
    // Strictly behind the first one, and not behind the last one.
    const int split = (window.First + window.Last + (pair ? 0 : 1)) / 2;
    const int beg = body->sosbeg.data[sos], end = body->sosbeg.data[sos + 1];
    const int *members = body->sosind.data;
    TRY(add_zero_child(worker, node, members + beg, split - beg, children));
    return add_zero_child(worker, node, members + split + pair, end - split - pair,
                          children);
}

int make_set_children(SearchWorker *worker, TreeNode *node, int set, Children *children)
{
    const BranchSet members = worker->State->Sets.data[set];
    const int *columns = worker->State->SetMembers.data;
    const int middle = (members.Beg + members.End) / 2;
    TRY(add_zero_child(worker, node, columns + members.Beg, middle - members.Beg,
                       children));
    return add_zero_child(worker, node, columns + middle, members.End - middle, children);
}
