// node_select.cpp -- which node a worker processes next
//
// Method   A worker dives: it goes on with one of the nodes of its active list, the children of nodes that it has just
//          branched on. Which one changes from node to node between rules that prefer good estimates, depth, the side of
//          the incumbent, or chance. After each choice the list is cut down to the family of the chosen node whose bounds
//          are not far from the best one; the rest goes back to the heap, from which an empty list is refilled with the
//          node that has the lowest bound.
#include "mip/node_select.h"
#include <algorithm>
#include <cmath>

namespace
{
enum Rule {
    SHALLOW_NEAR = 1, // the shallowest near the deepest
    ESTIMATE = 2,
    DEEP = 3,
    LIKE_INCUMBENT = 4,
    AT_RANDOM = 5,
    ESTIMATE_NEAR = 6
};

constexpr double FIRST_SHALLOW = 3,
                 FIRST_ESTIMATE = 6;    // nodes until which a search starts so
constexpr double ESTIMATE_SHARE = 1e-8; // of an estimate against a level of depth
constexpr double ROUNDING_SHARE = 0.01; // of a value against a level, likewise

// Every so many nodes, the rule of that row.
struct Turn {
    int every;
    Rule rule;
};
constexpr Turn TURNS[] = {
    {11, ESTIMATE}, {7, LIKE_INCUMBENT}, {13, AT_RANDOM}, {19, SHALLOW_NEAR}};

constexpr int FAMILY = 2; // levels above the deepest node, that its family has in common

// The list keeps nodes that have an ancestor in common with the chosen one, so many levels above it: by depth.
constexpr int LEAST_LEVELS = 3, MOST_LEVELS = 10, WIDER_LEVELS = 6, WIDER_EVERY = 23,
              WIDER_AT = 7;
constexpr double LEVELS_PER_DEPTH = 0.2;

bool divides(int every, double number)
{
    return std::fmod(number, every) == 0; // whole numbers
}

Rule choose_rule(const MIPState *state, double number)
{
    if (state->QuickDive) return ESTIMATE_NEAR;
    if (number <= FIRST_SHALLOW) return SHALLOW_NEAR;
    if (number <= FIRST_ESTIMATE || !pool_best(&state->Pool)) return ESTIMATE;
    for (const Turn &turn : TURNS)
        if (divides(turn.every, number)) return turn.rule;
    return DEEP;
}

// What nodes are measured by.
struct Measure {
    const MIPState *State;
    Rule How;
    double BestEstimate;
    const TreeNode *Family; // that a node has to belong to, or null: any
    int FamilyDepth;
};

bool belongs(const Measure &measure, const TreeNode *node)
{
    if (measure.How != SHALLOW_NEAR && measure.How != ESTIMATE_NEAR) return true;
    return node_ancestor(node, measure.FamilyDepth) == measure.Family;
}

double score(const Measure &measure, const TreeNode *node)
{
    const NodeData *data = node->Data;
    const double beyond = (data->Estimate - measure.BestEstimate) * ESTIMATE_SHARE;
    switch (measure.How) {
    case SHALLOW_NEAR:
        return -data->Depth - beyond;
    case DEEP:
        return data->Depth - beyond;
    case LIKE_INCUMBENT: {
        const double *x = pool_best(&measure.State->Pool)->X;
        if (data->BranchVar < 0 || !x) return -HUGE_VAL;
        const double side = data->BranchSense == '<' ? std::floor(data->BranchValue)
                                                     : std::ceil(data->BranchValue);
        return data->Depth - std::fabs(x[data->BranchVar] - side) * ROUNDING_SHARE;
    }
    default:
        return -data->Estimate;
    }
}

Measure make_measure(const SearchWorker *worker, Rule rule)
{
    Measure measure = {worker->State, rule, HUGE_VAL, nullptr, 0};
    const TreeNode *deepest = worker->Active.data[0];
    for (const TreeNode *node : worker->Active) {
        measure.BestEstimate = std::min(measure.BestEstimate, node->Data->Estimate);
        if (node->Data->Depth > deepest->Data->Depth) deepest = node;
    }
    measure.FamilyDepth = deepest->Data->Depth - FAMILY;
    measure.Family = node_ancestor(deepest, measure.FamilyDepth);
    return measure;
}

// Position in the active list.
int64_t choose(SearchWorker *worker)
{
    const Rule rule = choose_rule(worker->State, worker->Sequence);
    if (rule == AT_RANDOM) {
        random_seed(&worker->Rng, static_cast<uint64_t>(worker->Sequence));
        return random_next(&worker->Rng) % worker->Active.size;
    }
    const Measure measure = make_measure(worker, rule);
    int64_t best = 0;
    double most = -HUGE_VAL;
    for (int64_t k = 0; k < worker->Active.size; k++) {
        const TreeNode *node = worker->Active.data[k];
        if (!belongs(measure, node)) continue;
        const double value = score(measure, node);
        if (value <= most) continue;
        most = value;
        best = k;
    }
    return best;
}

int family_depth(const SearchWorker *worker, int depth)
{
    if (std::fmod(worker->Sequence, WIDER_EVERY) == WIDER_AT) return depth - WIDER_LEVELS;
    const int levels = static_cast<int>(std::log2(1 + LEVELS_PER_DEPTH * depth));
    return depth - std::clamp(levels, LEAST_LEVELS, MOST_LEVELS);
}

// Out of the worker's hands: on the heap with a packed basis above it, or freed.
int dismiss(SearchWorker *worker, TreeNode *node)
{
    MIPState *state = worker->State;
    const bool open = node->Data->LowerBound < state->Pool.PruneValue;
    TRY(node_release(node, &state->Store, &state->Root,
                     open ? RELEASE_WAITING : RELEASE_FREE));
    if (!open) return 0;
    if (node->Parent && node->Parent->Data)
        TRY(node_pack_basis(node->Parent, &state->Store));
    return store_push(&state->Store, node);
}

// Only the family of the chosen node stays, as far as it is near the best bound.
int prune_active(SearchWorker *worker, const TreeNode *chosen)
{
    const MIPState *state = worker->State;
    const int depth = family_depth(worker, chosen->Data->Depth);
    const TreeNode *family = node_ancestor(chosen, depth);
    if (!family) return 0;
    const double best = std::min(worker_bound(worker), chosen->Data->LowerBound);
    const double limit =
        best + state->Env->TARV_PAR_ASPIRE * (state->Pool.Incumbent - best);
    int64_t kept = 0;
    int code = 0;
    for (TreeNode *node : worker->Active) {
        const bool stays = node_ancestor(node, depth) == family &&
                           node->Data->LowerBound <= limit &&
                           node->Data->LowerBound < state->Pool.PruneValue;
        // without memory for the heap it stays too: nothing may lose it
        if (stays || code || (code = dismiss(worker, node)))
            worker->Active.data[kept++] = node;
    }
    worker->Active.size = kept;
    return code;
}
} // namespace

int activate_node(SearchWorker *worker, TreeNode *node)
{
    return array_append(&worker->Active, node);
}

int select_node(SearchWorker *worker, TreeNode **out)
{
    MIPState *state = worker->State;
    *out = nullptr;
    worker->Sequence = state->Nodes;
    if (worker->Active.size == 0) {
        TreeNode *node = store_pop(&state->Store);
        if (!node) return 0;
        TRY(activate_node(worker, node)); // there is room
    }
    const int64_t at = choose(worker);
    TreeNode *node = worker->Active.data[at];
    worker->Active.data[at] = worker->Active.data[--worker->Active.size];
    worker->Current = *out = node;
    return prune_active(worker, node);
}

void update_global_bound(MIPState *state)
{
    double bound = std::min(state->Store.HeapBound, state->LostBound);
    for (const SearchWorker *worker : state->Workers)
        bound = std::min(bound, worker_bound(worker));
    store_raise_bound(&state->Store, bound);
}

int put_back_nodes(SearchWorker *worker)
{
    for (; worker->Active.size > 0; worker->Active.size--)
        TRY(dismiss(worker, worker->Active.data[worker->Active.size - 1]));
    return 0;
}
