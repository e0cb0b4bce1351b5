// search_create.cpp -- the record of a search, with the structures that it finds in the body
#include "heur/heur.h"
#include "mip/branch_sets.h"
#include "mip/implied_integers.h"
#include "mip/node_select.h"
#include "mip/search.h"
#include "mip/user_rows.h"

namespace
{
int copy_columns(MIPState *state)
{
    const ModelBody *body = state->Body;
    const int n = body->numvars;
    TRY(array_copy(&state->Lower, body->lb.data, n));
    TRY(array_copy(&state->Upper, body->ub.data, n));
    TRY(array_resize(&state->Candidate, n));
    TRY(array_assign(&state->IsInteger, n, char{0}));
    for (int j = 0; j < body->vtypes.size; j++)
        state->IsInteger.data[j] = body->vtypes.data[j] != 'C';
    TRY(array_copy(&state->InLp, state->IsInteger.data, n));
    for (const int j : body->sosind) state->InLp.data[j] = 1;
    return 0;
}

// What presolve knows beside the body.
int take_structures(MIPState *state)
{
    if (!state->Space->Presolve) return 0;
    state->Semis = presolved_semi(state->Space->Presolve, &state->NumSemis);
    state->Cliques = presolve_take_found_cliques(state->Space->Presolve);
    state->Implications = presolve_take_implications(state->Space->Presolve);
    for (int k = 0; k < state->NumSemis; k++) state->InLp.data[state->Semis[k].col] = 1;
    return 0;
}

int make_root(MIPState *state)
{
    state->Root = node_create(state, nullptr, state->NextNumber);
    if (!state->Root) return OUT_OF_MEMORY;
    state->NextNumber++;
    state->Store.NodeCount = 1;
    return 0;
}

int make_worker(MIPState *state, int index)
{
    SearchWorker *worker = nullptr;
    TRY(array_grow(&state->Workers, state->Workers.size + 1));
    const int code = worker_create(state, index, &worker);
    if (worker) array_push(&state->Workers, worker);
    return code;
}

void log_structures(const MIPState *state)
{
    if (state->Grid.Step <= 0 || state->Recursive || state->Again) return;
    TVXmsg(state->Env, "Objective GCD is %g\n", state->Grid.Step);
}

int fill(MIPState *state)
{
    const ModelBody *body = state->Body;
    state->VarBranch = state->Env->VarBranch;
    state->QuickDive = state->Env->TARV_PAR_QUICKDIVE != 0;
    state->Store.Columns = body->numvars;
    state->Store.Rows = body->numconstrs;
    TRY(copy_columns(state));
    TRY(take_structures(state));
    TRY(pseudo_alloc(&state->Costs, body->numvars));
    TRY(propagation_rows_of_body(&state->Rows, body));
    TRY(find_branch_sets(state));
    TRY(find_implied_integers(state));
    state->Grid = objective_grid(body, state->Implied.data);
    log_structures(state);
    state->Pool.PruneValue = search_prune_value(state);
    TRY(make_worker(state, 0));
    TRY(make_root(state));
    return activate_node(state->Workers.data[0], state->Root);
}

void free_nodes(MIPState *state)
{
    for (SearchWorker *worker : state->Workers) {
        for (TreeNode *node : worker->Active)
            (void)node_release(node, nullptr, &state->Root, RELEASE_FREE); // cannot fail
        worker->Active.size = 0;
    }
    for (TreeNode *node : state->Store.Heap)
        (void)node_release(node, nullptr, &state->Root, RELEASE_FREE);
    if (state->Root) (void)node_release(state->Root, nullptr, &state->Root, RELEASE_FREE);
}
} // namespace

int search_create(const SearchOrder &order, MIPState **out)
{
    MIPState *state = record_create<MIPState>();
    *out = state;
    if (!state) {
        space_free(order.Space);
        return OUT_OF_MEMORY;
    }
    state->Space = order.Space;
    state->Body = order.Space->Body;
    state->Env = order.Env;
    state->Recursive = order.Recursive;
    state->Again = order.Again;
    state->Cutoff = order.Cutoff;
    state->StartTime = state->Env->optimize_start;
    const int code = fill(state);
    if (!code) return 0;
    search_free(state);
    *out = nullptr;
    return code;
}

void search_free(MIPState *state)
{
    if (!state) return;
    free_nodes(state);
    for (SearchWorker *worker : state->Workers) worker_free(worker);
    heur_free(state->Heur);
    pool_free(&state->Pool);
    propagation_rows_free(state->Rows);
    clique_table_free(state->Cliques);
    implication_log_free(state->Implications);
    space_free(state->Space);
    record_free(state);
}

void search_set_env(MIPState *state, TVXenv *env)
{
    state->Env = env;
    for (SearchSpace *space = state->Space; space; space = space->Outer)
        if (space->Presolve) presolve_set_env(space->Presolve, env);
    for (SearchWorker *worker : state->Workers) {
        if (!worker->LpEnv) continue;
        worker->LpEnv->TimeLimit = env->TimeLimit;
        worker->LpEnv->optimize_start = env->optimize_start;
    }
}

void search_close(MIPState *state)
{
    free_nodes(state);
    state->Store.Heap.size = 0;
    state->Store.HeapBound = UNDEFINED_VALUE;
    store_raise_bound(&state->Store, UNDEFINED_VALUE);
}

int search_begin_anew(MIPState *state)
{
    const ModelBody *body = state->Body;
    state->IncumbentGone = false;
    free_nodes(state);
    state->Store = NodeStore{};
    state->Store.Columns = body->numvars;
    state->Store.Rows = body->numconstrs;
    state->Reduced = ReducedCosts{};
    pool_filter(&state->Pool, [&](const SolutionEntry &entry) {
        return callers_rows_hold(state, entry.Full);
    });
    state->Pool.PruneValue = search_prune_value(state);
    TRY(array_copy(&state->Lower, body->lb.data, body->numvars));
    TRY(array_copy(&state->Upper, body->ub.data, body->numvars));
    // Workers see that there is something new, and take all bounds again.
    TRY(array_append(&state->GlobalChanges, {'<', 0, body->ub.data[0]}));
    TRY(make_root(state));
    return activate_node(state->Workers.data[0], state->Root);
}
