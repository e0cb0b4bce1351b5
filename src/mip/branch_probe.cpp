// branch_probe.cpp -- strong branching on candidates, and what it says about the node
//
// Method      Each side of a candidate is first propagated: many infeasible sides end there. The others are solved from
//             one saved state of the LP for a limited number of iterations (simplex/strong_branch.cpp). A side that is
//             infeasible or cut off tightens the other one: for the whole search at the root, else for the node. With a
//             budget of one iteration only the first step of the dual simplex is computed.
// Bounds      An objective is a bound also when a limit has stopped the solve, as strong_branch_probe returns valid
//             lower bounds only.
// Literature  D. Applegate, R. Bixby, V. Chvatal, W. Cook, "Finding cuts in the TSP", 1995.
#include "mip/branch.h"
#include "mip/search_bounds.h"
#include <algorithm>
#include <cmath>

namespace
{
// Without a budget of the table: iterations of a side as a multiple of those of a node, and at least.
constexpr double ITERATIONS_PER_NODE = 2, LEAST_ITERATIONS = 10, MOST_ITERATIONS = 500;

// Candidates without a better score than the best so far after which the rest is not probed (Achterberg, Koch, Martin
// 2005 stop after 8).
constexpr int LOOKAHEAD = 8;

double iteration_limit(const MIPState *state)
{
    if (state->Costs.Budget > 0) return state->Costs.Budget;
    const double nodes = std::max(1.0, state->Nodes);
    const double mean =
        std::max(0.0, state->Iterations - std::max(0.0, state->RootIterations)) / nodes;
    return std::clamp(ITERATIONS_PER_NODE * mean, LEAST_ITERATIONS, MOST_ITERATIONS);
}

BoundDelta side_delta(const MIPState *state, const BranchCandidate &candidate, bool down)
{
    const double floor = branch_floor(state, candidate.Value);
    return down ? BoundDelta{'<', candidate.Var, floor}
                : BoundDelta{'>', candidate.Var, floor + 1};
}

// True if propagation alone closes the side. 0 or OUT_OF_MEMORY in *code.
bool closed_by_propagation(SearchWorker *worker, const BoundDelta &side, int *code)
{
    if (worker->State->Env->TARV_PAR_NODEPRE == 0) return false;
    const int64_t mark = domain_mark(worker->Bounds);
    tighten_by_delta(worker->Bounds, side, ReasonKind::DECISION);
    *code = worker_propagate(worker);
    const bool closed = worker->Bounds->Infeasible;
    domain_undo(worker->Bounds, mark);
    return closed;
}

struct SideResult {
    double Objective;
    bool Closed;
};

int probe_side(SearchWorker *worker, StrongBranch *branch, const BranchCandidate &candidate,
               bool down, double limit, SideResult *result)
{
    MIPState *state = worker->State;
    const BoundDelta side = side_delta(state, candidate, down);
    int code = 0;
    *result = {UNDEFINED_VALUE, true};
    if (closed_by_propagation(worker, side, &code) || code) return code;
    BranchOutcome outcome = {};
    TRY(strong_branch_probe(branch, candidate.Var, down ? BranchSide::DOWN : BranchSide::UP,
                            side.Value, limit, &outcome));
    state->Costs.Iterations += outcome.Iterations;
    worker->ProbeIterations += outcome.Iterations;
    result->Closed = branch_is_closed(outcome) || outcome.Value >= state->Pool.PruneValue;
    result->Objective = result->Closed ? UNDEFINED_VALUE : outcome.Value;
    return 0;
}

int probe_candidates(SearchWorker *worker, NodeData *data, StrongBranch *branch, int first,
                     int count)
{
    MIPState *state = worker->State;
    const double limit = iteration_limit(state), base = data->LPObjective;
    double best = 0;
    int idle = 0;
    for (int k = first; k < first + count && idle < LOOKAHEAD; k++) {
        BranchCandidate *c = &data->Result->Candidates.data[k];
        SideResult down, up;
        TRY(probe_side(worker, branch, *c, true, limit, &down));
        TRY(probe_side(worker, branch, *c, false, limit, &up));
        c->Down = std::max(c->Down, down.Objective);
        c->Up = std::max(c->Up, up.Objective);
        c->DownClosed = down.Closed;
        c->UpClosed = up.Closed;
        const double fraction = branch_fraction(state, c->Value);
        if (!down.Closed) pseudo_update(&state->Costs, c->Var, -fraction, c->Down - base);
        if (!up.Closed) pseudo_update(&state->Costs, c->Var, 1 - fraction, c->Up - base);
        const double score = branch_score(c->Down - base, c->Up - base);
        idle = score > best ? 0 : idle + 1;
        best = std::max(best, score);
        if (env_stop_requested(state->Env)) break;
    }
    return 0;
}

// Sides that are closed: the other side holds.
int apply_closed(SearchWorker *worker, TreeNode **node, bool *moved)
{
    MIPState *state = worker->State;
    const NodeLPResult *result = (*node)->Data->Result;
    worker->Deltas.size = 0;
    for (const BranchCandidate &c : result->Candidates) {
        if (c.DownClosed && c.UpClosed) {
            (*node)->Data->Status = NODE_INFEASIBLE;
            return 0;
        }
        if (!c.DownClosed && !c.UpClosed) continue;
        TRY(array_append(&worker->Deltas, side_delta(state, c, c.UpClosed)));
    }
    if (worker->Deltas.size == 0) return 0;
    *moved = true;
    return tighten_node_bounds(worker, node);
}
} // namespace

int branch_by_probes(SearchWorker *worker, TreeNode **node, int first, int count,
                     bool *moved)
{
    StrongBranch *branch = nullptr;
    TRY(strong_branch_open(worker->Lp.simplex, &branch));
    if (!branch) return 0; // not optimal with fresh factors: no probe
    const int code = probe_candidates(worker, (*node)->Data, branch, first, count);
    strong_branch_close(branch);
    worker->Work[WORK_STRONG_BRANCH] += simplex_take_work(worker->Lp.simplex);
    TRY(code);
    return apply_closed(worker, node, moved);
}

void estimate_sides(SearchWorker *worker, double bound, BranchCandidate *candidate)
{
    const MIPState *state = worker->State;
    sopt *lp = worker->Lp.simplex;
    if (!simplex_is_basic(lp, candidate->Var)) return;
    // Of an integer that is whole within the tolerance, Value is not the value in the LP.
    const double x = simplex_value(lp, candidate->Var),
                 floor = branch_floor(state, candidate->Value),
                 least = state->Env->IntFeasTol; // a step within it is none
    const StepGains gain = simplex_step_gains(lp, candidate->Var, std::max(0.0, x - floor),
                                              std::max(0.0, floor + 1 - x));
    if (x - floor > least) candidate->Down = std::max(candidate->Down, bound + gain.Down);
    if (floor + 1 - x > least) candidate->Up = std::max(candidate->Up, bound + gain.Up);
}
