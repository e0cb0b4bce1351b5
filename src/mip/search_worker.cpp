// search_worker.cpp -- the bounds of a worker: from node to node, and into its LP
//
// Cost   Of a move: the changes of the nodes that are left and entered, with what follows from them.
#include "mip/search_worker.h"
#include "mip/search_bounds.h"

namespace
{
constexpr int MOST_ACTIVE = 200; // nodes in its hands, usually

// Effort of one propagation, in entries of the matrix: a multiple of its size, so that slow convergence ends.
constexpr double PROPAGATION_ROUNDS = 10;

double propagation_limit(const MIPState *state)
{
    return PROPAGATION_ROUNDS * (state->Body->numnz + state->Body->numvars);
}

int alloc(SearchWorker *worker)
{
    MIPState *state = worker->State;
    const int n = state->Body->numvars;
    TRY(array_reserve(&worker->Active, MOST_ACTIVE));
    TRY(array_resize(&worker->Columns, n));
    TRY(array_resize(&worker->Values, n));
    TRY(array_reserve(&worker->Changes, n));
    TRY(array_copy(&worker->LpLower, state->Body->lb.data, n));
    TRY(array_copy(&worker->LpUpper, state->Body->ub.data, n));
    return domain_create(&worker->Bounds, state->Rows, state->Cliques, state->Implications,
                         state->Lower.data, state->Upper.data,
                         {state->Env->FeasibilityTol, state->Env->IntFeasTol});
}

void apply_node(Domain *bounds, const TreeNode *node)
{
    const BoundDelta *changes = node_changes(node);
    const int *zeros = node_zeros(node), *ones = node_ones(node);
    for (int k = 0; k < node->BoundChanges; k++)
        tighten_by_delta(bounds, changes[k], ReasonKind::DECISION);
    for (int k = 0; k < node->ZeroFixings; k++)
        tighten_by_delta(bounds, {'<', zeros[k], 0}, ReasonKind::DECISION);
    for (int k = 0; k < node->OneFixings; k++)
        tighten_by_delta(bounds, {'>', ones[k], 1}, ReasonKind::DECISION);
}

// The path is cut behind the first `depth` nodes.
void leave(SearchWorker *worker, int64_t depth)
{
    if (depth >= worker->Path.size) return;
    domain_undo(worker->Bounds, worker->Path.data[depth].Mark);
    worker->Path.size = depth;
}

bool on_path(const SearchWorker *worker, const TreeNode *node, int64_t depth)
{
    return depth < worker->Path.size &&
           worker->Path.data[depth].Number == node->Number; // assigned alike
}
} // namespace

int worker_create(MIPState *state, int index, SearchWorker **out)
{
    SearchWorker *worker = record_create<SearchWorker>();
    if (!worker) return OUT_OF_MEMORY;
    *out = worker;
    worker->State = state;
    worker->Index = index;
    random_seed(&worker->Rng, index);
    return alloc(worker);
}

void worker_free(SearchWorker *worker)
{
    if (!worker) return;
    domain_free(worker->Bounds);
    record_free(worker->Spare);
    lp_drop(&worker->Lp);
    env_free(worker->LpEnv);
    record_free(worker);
}

int worker_take_globals(SearchWorker *worker, bool *feasible)
{
    const MIPState *state = worker->State;
    *feasible = true;
    if (worker->GlobalsSeen == state->GlobalChanges.size) return 0;
    worker->Path.size = 0;
    worker->GlobalsSeen = state->GlobalChanges.size;
    domain_reset(worker->Bounds, state->Lower.data, state->Upper.data);
    TRY(worker_propagate(worker));
    *feasible = !worker->Bounds->Infeasible;
    return 0;
}

int worker_move_to(SearchWorker *worker, const TreeNode *node, bool *feasible)
{
    TRY(worker_take_globals(worker, feasible));
    if (!*feasible) return 0;
    const int depth = node->Data->Depth;
    worker->Ancestors.size = 0;
    int64_t common = depth;
    for (const TreeNode *at = node; at && !on_path(worker, at, common); at = at->Parent) {
        TRY(array_append(&worker->Ancestors, const_cast<TreeNode *>(at)));
        common--;
    }
    leave(worker, common + 1);
    TRY(array_grow(&worker->Path, int64_t{depth} + 1));
    while (worker->Ancestors.size > 0 && !worker->Bounds->Infeasible) {
        const TreeNode *next = worker->Ancestors.data[--worker->Ancestors.size];
        array_push(&worker->Path, {next->Number, domain_mark(worker->Bounds)});
        apply_node(worker->Bounds, next);
        TRY(worker_propagate(worker));
    }
    *feasible = !worker->Bounds->Infeasible;
    return 0;
}

double worker_bound(const SearchWorker *worker)
{
    double bound = worker->Current ? worker->Current->Data->LowerBound : UNDEFINED_VALUE;
    for (const TreeNode *node : worker->Active)
        bound = std::min(bound, node->Data->LowerBound);
    return bound;
}

int worker_propagate(SearchWorker *worker)
{
    Domain *bounds = worker->Bounds;
    const int64_t before = bounds->Effort;
    if (worker->State->Env->TARV_PAR_NODEPRE != 0)
        (void)domain_propagate(bounds, propagation_limit(worker->State));
    worker->Work[WORK_PROPAGATION] += static_cast<double>(bounds->Effort - before);
    return bounds->Error;
}

namespace
{
// The tightest bound of a continuous column that branching has set: what propagation finds is wider by tolerances, and
// follows from the rows in the LP anyway.
double decided_bound(const SearchWorker *worker, int j, BoundSide side)
{
    const MIPState *state = worker->State;
    const Domain *bounds = worker->Bounds;
    int64_t at = bounds->Newest.data[bound_number(j, side)];
    for (; at >= 0; at = bounds->Trail.data[at].Before)
        if (bounds->Trail.data[at].Reason.Kind == ReasonKind::DECISION)
            return bounds->Trail.data[at].New;
    return side == BoundSide::LOWER ? state->Lower.data[j] : state->Upper.data[j];
}

void list_column(SearchWorker *worker, int j)
{
    const MIPState *state = worker->State;
    const Domain *bounds = worker->Bounds;
    if (!state->InLp.data[j]) return;
    const bool whole = state->IsInteger.data[j];
    const double lower = whole ? bounds->Lower.data[j]
                               : decided_bound(worker, j, BoundSide::LOWER),
                 upper = whole ? bounds->Upper.data[j]
                               : decided_bound(worker, j, BoundSide::UPPER);
    if (lower == worker->LpLower.data[j] && upper == worker->LpUpper.data[j])
        return; // copies
    array_push(&worker->Changes, {j, lower, upper});
    worker->LpLower.data[j] = lower;
    worker->LpUpper.data[j] = upper;
}
} // namespace

void worker_list_changes(SearchWorker *worker)
{
    const int count = domain_take_changed(worker->Bounds, worker->Columns.data);
    worker->Changes.size = 0;
    for (int k = 0; k < count; k++) list_column(worker, worker->Columns.data[k]);
    for (const int j : worker->Dirty) list_column(worker, j);
    worker->Dirty.size = 0;
}
