// search_restart.cpp -- a search that goes on with a smaller body
//
// Problem     Bounds found for the whole search fix columns and make rows redundant. The LPs of all later nodes are smaller,
//             and presolve finds more, when these are removed.
// Method      The body with the bounds of the search is presolved again, and a new search for what is left takes the place
//             of the old one: its solutions are mapped, pseudo-costs are taken over as first estimates, statistics go on.
//             The tree is given up: at the root, when a fifth of the columns is fixed; once more when the tree has several
//             hundred nodes and grows, since presolve may probe harder then and pseudo-costs are known; later seldom.
// Literature  T. Achterberg, "Constraint Integer Programming", 2007, section 10.9.
#include "body/build.h"
#include "mip/accept.h"
#include "mip/search.h"
#include "mip/search_bounds.h"
#include "mip/search_log.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double ROOT_SHARE = 0.2, TREE_SHARE = 0.5, LEAST_FIXED = 10; // fixed columns
constexpr int FOCUS_BOUND = 2, FOCUS_DEEP = 3;                         // of MIPFocus
constexpr double FACTOR_BOUND = 2, FACTOR_DEEP = 5; // a fixed column counts so often
constexpr double LATER_RESTARTS = 5;                // times the nodes of the first one
constexpr double MARK_EVERY = 100, MARK_AT = 10, MARK_NODES = 90, MARK_OPEN = 9;
constexpr double SAME_STEP = 1e-8; // incumbent and bound one step of the grid apart
constexpr double GAP_HALVED = 2;   // the distance to the bound of the root, in present gaps
constexpr int PROBING_DEEP = 2, PROBING_MOST = 3; // levels of presolve
constexpr double MANY_PER_OPEN = 5;               // nodes

// Presolve's records of semi-continuous columns, and rows from callbacks, belong to the body that is searched.
bool is_possible(const MIPState *state)
{
    return state->Env->TARV_PAR_MIPLIM > 0 && !state->Recursive && state->NumSemis == 0 &&
           row_count(&state->UserRows) == 0 && state->LostBound >= UNDEFINED_VALUE;
}

double fixed_count(MIPState *state)
{
    RestartRecord *record = &state->Restart;
    if (record->ChangesSeen != state->GlobalChanges.size) {
        record->ChangesSeen = state->GlobalChanges.size;
        record->Fixed = fixed_columns(state);
    }
    const int focus = state->Env->MIPFocus;
    return record->Fixed * (focus == FOCUS_BOUND  ? FACTOR_BOUND
                            : focus == FOCUS_DEEP ? FACTOR_DEEP
                                                  : 1);
}

bool one_step_is_left(const MIPState *state)
{
    if (state->Grid.Step <= 0 || state->Pool.Incumbent >= UNDEFINED_VALUE) return false;
    const double distance = state->Pool.Incumbent - state->LastRootObjective;
    return std::fabs(state->Grid.Step - distance) < SAME_STEP;
}

bool is_due_in_tree(MIPState *state)
{
    RestartRecord *record = &state->Restart;
    if (!record->OneStep && one_step_is_left(state)) {
        record->OneStep = true;
        return true;
    }
    const double first = std::trunc(state->Env->TARV_PAR_MIPLIM *
                                    std::sqrt(static_cast<double>(state->Workers.size))),
                 least = record->InTree ? LATER_RESTARTS * first : first,
                 marked = record->MarkedNodes + MARK_NODES;
    if (least > marked || marked > state->Nodes) return false;
    if (open_nodes(state) < record->MarkedOpen + MARK_OPEN) return false;
    if (!record->InTree) return true;
    const double fixed = fixed_count(state),
                 columns = static_cast<double>(state->Body->numvars);
    const double gap = state->Pool.Incumbent - state->Store.GlobalBound;
    if (fixed >= 1 && state->Pool.Incumbent < UNDEFINED_VALUE &&
        record->Incumbent - record->RootBound > GAP_HALVED * gap)
        return true;
    return fixed > std::max(TREE_SHARE * columns, LEAST_FIXED);
}

// ---- The new search ----

int presolve_level(const MIPState *state)
{
    if (state->Env->Presolve == 2) return PROBING_MOST;
    return state->Nodes > 0 ? PROBING_DEEP : state->Env->TARV_PAR_PREPROBE;
}

int presolve_again(const MIPState *state, const ModelBody *body, PresolveResult **presolved,
                   PresolveStatus *status)
{
    TVXenv *quiet = nullptr;
    double work = 0;
    TRY(env_inner(&quiet, state->Env));
    const int code =
        presolve_mip(body, quiet, presolve_level(state), presolved, status, &work);
    if (!code && *presolved) presolve_set_env(*presolved, state->Env);
    env_free(quiet);
    return code;
}

// Presolve has decided what the bounds leave: nothing better, or one point.
int settle(MIPState *state, const PresolveResult *presolved, PresolveStatus status)
{
    switch (status) {
    case PRESOLVE_TIME_LIMIT:
        state->Status = TVX_TIME_LIMIT;
        return 0;
    case PRESOLVE_INTERRUPTED:
        state->Status = TVX_INTERRUPTED;
        return 0;
    case PRESOLVE_OK:
        break;
    case PRESOLVE_INFEASIBLE:
        search_close(state);
        return 0;
    default: // the old body is as good
        return 0;
    }
    Acceptance outcome = Acceptance::INFEASIBLE;
    postsolve_primal(presolved, nullptr, state->Workers.data[0]->Values.data);
    TRY(accept_solution(state, state->Workers.data[0]->Values.data, SolutionSource::BEFORE,
                        &outcome));
    if (outcome == Acceptance::IMPROVED || outcome == Acceptance::NOT_BETTER)
        search_close(state);
    return 0;
}

// Averages become first estimates: an observation replaces one that is smaller.
void take_pseudo_costs(PseudoCostTable *to, const PseudoCostTable *from,
                       const PresolveResult *presolved, int columns)
{
    for (int j = 0; j < columns; j++) {
        const int k = presolved_var(presolved, j);
        if (k < 0) continue;
        for (int way = 0; way < 2; way++)
            if (from->Count[way].data[j] > 0)
                to->Sum[way].data[k] = from->Sum[way].data[j] / from->Count[way].data[j];
    }
    to->Reliability = from->Reliability;
    to->Iterations = from->Iterations;
    to->MeanGain = from->MeanGain;
}

// Nodes from all over the heap, the first ones of which are those with the best bounds.
void take_sample(RestartRecord *record, const NodeStore *store)
{
    const int64_t step = 1 + store->Heap.size / OPEN_SAMPLE;
    record->SampleSize = 0;
    for (int64_t k = 0; k < store->Heap.size; k += step) {
        const NodeData *data = store->Heap.data[k]->Data;
        record->Sample[record->SampleSize++] = {data->Depth, data->LowerBound};
    }
}

void take_statistics(MIPState *to, const MIPState *from)
{
    to->Nodes = from->Nodes;
    to->Iterations = from->Iterations;
    to->BarIterations = from->BarIterations;
    std::copy_n(from->Work, WORK_PHASES, to->Work);
    to->SubNodes = from->SubNodes;
    to->SubIterations = from->SubIterations;
    to->HeaderPrinted = from->HeaderPrinted;
    to->LastTick = from->LastTick;
    to->StartTime = from->StartTime;
    to->QuickDive = false;
    to->Restart = from->Restart;
    to->Restart.Count++;
    to->Restart.ChangesSeen = -1;
    to->Restart.RootIterations = from->RootIterations;
    if (from->Nodes == 0) return;
    const double open = open_nodes(from);
    const bool many = from->Nodes > MANY_PER_OPEN * open;
    if (from->Env->VarBranch < 0 && (from->Grid.Step >= 0 || many)) to->VarBranch = 0;
    to->Restart.InTree = true;
    take_sample(&to->Restart, &from->Store);
    to->Restart.Open = open;
    to->Restart.Nodes = from->Nodes;
    to->Restart.Incumbent = from->Pool.Incumbent;
    to->Restart.RootBound = from->LastRootObjective;
}

// Solutions change hands; each gets its counterpart in the new body, where there is one.
int take_solutions(MIPState *to, MIPState *from)
{
    std::swap(to->Pool, from->Pool);
    for (SolutionEntry &entry : to->Pool.Entries) {
        MemFree(entry.X);
        entry.X = nullptr;
        TRY(crush_point(to, entry.Full, &entry.X));
    }
    to->Pool.PruneValue = search_prune_value(to);
    return 0;
}

int replace(MIPState **search, ModelBody *body, PresolveResult *presolved)
{
    MIPState *old = *search, *fresh = nullptr;
    SearchOrder order;
    TRY(space_extend(old->Space, body, presolved, &order.Space));
    old->Space = nullptr; // changes hands
    order.Env = old->Env;
    order.Cutoff = old->Cutoff;
    order.Again = true;
    int code = search_create(order, &fresh);
    if (!code) {
        take_statistics(fresh, old);
        take_pseudo_costs(&fresh->Costs, &old->Costs, presolved, old->Body->numvars);
        store_raise_bound(&fresh->Store, old->Store.GlobalBound);
        code = take_solutions(fresh, old);
    }
    // Without the new search the old one can only be freed: an outcome that the caller sees as a code.
    if (code) {
        search_free(fresh);
        return code;
    }
    search_free(old);
    *search = fresh;
    return 0;
}
} // namespace

bool restart_is_due(MIPState *state)
{
    if (!is_possible(state)) return false;
    if (state->Nodes > 0 && std::fmod(state->Nodes, MARK_EVERY) == MARK_AT) {
        state->Restart.MarkedNodes = state->Nodes;
        state->Restart.MarkedOpen = open_nodes(state);
    }
    if (state->Nodes > 0) return is_due_in_tree(state);
    const double columns = static_cast<double>(state->Body->numvars);
    return fixed_count(state) > std::max(ROOT_SHARE * columns, LEAST_FIXED);
}

int search_restart(MIPState **search)
{
    MIPState *state = *search;
    ModelBody *body = nullptr;
    PresolveResult *presolved = nullptr;
    PresolveStatus status = PRESOLVE_OK;
    state->Restart.Wanted = false;
    state->Restart.ChangesSeen = state->GlobalChanges.size; // not again for these alone
    state->Restart.Fixed = 0;
    TRY(body_copy_changed(state->Body, state->Env,
                          {nullptr, state->Lower.data, state->Upper.data}, &body));
    int code = presolve_again(state, body, &presolved, &status);
    const ModelBody *reduced = presolved ? presolve_reduced(presolved) : nullptr;
    if (!code && reduced && reduced->numvars > 0) return replace(search, body, presolved);
    if (!code) code = settle(state, presolved, status);
    presolve_free(presolved);
    body_free(body);
    return code;
}
