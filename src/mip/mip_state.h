// mip_state.h -- MIPState, one branch-and-cut search: its model, bounds, tree, solutions, statistics and workers
//
// A search belongs to one body, the presolved one. It outlives the call of mip_solve that made it, so that the next call
// can continue it. A restart makes a new MIPState for a body that is reduced further, and a sub-MIP has one of its own.
//
// Status   1 (running)       search_create; search_resume
//          any other         search_check, or a step that cannot go on; then only search_resume goes back to 1
// Bounds   Lower, Upper are valid for the whole search: every worker's Domain has them, or tighter ones, at its base.
//          They are only tightened, and each tightening is logged in GlobalChanges for the workers.
// Objective values are those of the body's minimisation form, constant included.
#pragma once
#include "mip/mip.h"
#include "mip/node_store.h"
#include "mip/objective_grid.h"
#include "mip/pseudo_cost.h"
#include "mip/reduced_costs.h"
#include "mip/search_worker.h"
#include "mip/solution_pool.h"
#include "presolve/presolve.h"

static constexpr int RUNNING = 1; // of MIPState::Status

// A body that stands for another one: its solutions are mapped back by postsolve.
struct SearchSpace {
    const ModelBody *Body = nullptr;
    PresolveResult *Presolve =
        nullptr; // owned; maps to Outer. Null: the bodies are the same
    // Owned: the copy of Outer's body, with the bounds of a search, that Presolve has reduced; null: that body itself.
    ModelBody *Copy = nullptr;
    SearchSpace *Outer = nullptr; // owned; null: Body is the caller's
};
// The space of the reduced body that presolve has made of the body. It takes over the result of presolve, also on failure.
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int space_create(const ModelBody *body, PresolveResult *presolved,
                               SearchSpace **out);
// The same within another space, of whose body `copy` is a copy with other bounds; it changes hands like the result.
[[nodiscard]] int space_extend(SearchSpace *outer, ModelBody *copy,
                               PresolveResult *presolved, SearchSpace **out);
void space_free(SearchSpace *space); // with all outer ones; null is ignored
// The caller's body.
const ModelBody *space_outermost(const SearchSpace *space);
// Maps a point of the innermost body, x, to the caller's, full. 0 or OUT_OF_MEMORY.
[[nodiscard]] int space_map_back(const SearchSpace *space, const double *x, double *full);
// Maps a point of the caller's body to the innermost one; *mapped is false where reductions have excluded it. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int space_map_in(const SearchSpace *space, const double *full, double *x,
                               bool *mapped);
// The same for a row  row x <= *rhs , [columns] of the caller's body, then of the innermost one.
[[nodiscard]] int space_row_in(const SearchSpace *space, Array<double> *row, double *rhs,
                               bool *mapped);

struct HeurState; // heur/heur.h
struct BranchSet {
    int Beg, End; // members in MIPState::SetMembers
};

// An open node of the tree that a restart has given up, for the log.
struct OpenSample {
    int Depth;
    double Bound;
};
static constexpr int OPEN_SAMPLE = 20; // kept at most

// What restarts leave behind, and what decides about the next one (search_restart.cpp).
struct RestartRecord {
    bool Wanted = false; // the tree has stopped for one
    int Count = 0;       // restarts so far
    bool InTree = false; // one of them after the root
    bool OneStep =
        false; // one of them since bound and incumbent were one step of the grid apart
    double RootIterations = 0; // of all roots before
    // At the last restart in the tree: open nodes, which are shown as long as the new tree is smaller (falling with each
    // better incumbent), nodes explored, incumbent and bound of the root.
    double Open = 0, Nodes = 0, Incumbent = 1e100, RootBound = -1e100;
    OpenSample Sample[OPEN_SAMPLE]; // of the open nodes
    int SampleSize = 0;
    double MarkedNodes = 0, MarkedOpen = 0; // every hundred nodes: explored, open
    // Columns fixed by the search, as counted when there were so many GlobalChanges; -1: not yet.
    double Fixed = 0;
    int64_t ChangesSeen = -1;
};

struct MIPState {
    SearchSpace *Space = nullptr; // owned; its Body is the one that is searched
    const ModelBody *Body = nullptr;
    TVXenv *Env = nullptr; // of the call that runs it: parameters with presets; not owned
    int Status = RUNNING;
    bool Recursive = false; // within another search, or for a start: no lines, no callbacks
    bool Again = false;     // after a restart
    bool QuickDive = false; // TARV_PAR_QUICKDIVE, until the first restart
    int VarBranch = -1;     // the parameter, or what the root has made of it

    // ---- The problem ----
    Array<char> IsInteger; // [columns]
    Array<char>
        InLp; // [columns] the LP gets its bounds: integers, and what branching fixes
    const SemiColumn *Semis = nullptr; // [NumSemis] of the body; not owned
    int NumSemis = 0;
    Array<double> Lower, Upper;      // [columns] valid for the whole search
    Array<BoundDelta> GlobalChanges; // tightenings of them, in order
    Array<char> Implied; // [columns] continuous ones that are integral (implied_integers.h)
    ObjectiveGrid Grid;
    PropagationRows *Rows = nullptr; // owned
    // Owned, or null: the cliques that propagation over the rows does not find.
    CliqueTable *Cliques = nullptr;
    ImplicationLog *Implications = nullptr; // owned, or null
    Array<int> SetMembers;                  // of the branch sets
    Array<BranchSet> Sets;
    bool IncumbentGone =
        false;          // a row from a callback has cut it off: the tree has to begin anew
    RowList UserRows;   // from callbacks: part of the model from then on
    RowList CallerRows; // the same over the caller's variables: what points are judged by
    bool LazyWarned =
        false; // that presolve may have lost solutions which lazy constraints need

    // ---- The tree ----
    TreeNode *Root = nullptr;
    NodeStore Store;
    double NextNumber = 1; // of a node
    SolutionPool Pool;
    double Cutoff = 1e100;   // the caller's, minimisation form
    Array<double> Candidate; // [columns] scratch of accept_solution
    PseudoCostTable Costs;
    Array<SearchWorker *> Workers; // owned
    ReducedCosts Reduced;          // of the root, for fixing
    HeurState *Heur = nullptr;     // owned, or null: no heuristic has run

    // ---- Statistics ----
    double Nodes = 0;      // explored
    double Iterations = 0; // simplex
    double BarIterations = 0;
    double RootIterations = -1;        // of the root LP; -1: it has not been solved
    double RootObjective = -1e100;     // LP objective of the first pass
    double LastRootObjective = -1e100; // of the last pass
    int RootFractionals = 0;           // least number at the root
    double Work[WORK_PHASES] = {};
    double SubNodes = 0, SubIterations = 0; // of recursive searches
    // Lower bound of what was given up because its LP could not be solved: the bound of the search cannot exceed it.
    double LostBound = 1e100;

    RestartRecord Restart;

    // ---- Log ----
    bool HeaderPrinted = false;
    double LastTick = -1, ForcedLine = -1;
    int DepthOffset = 0;
    double StartTime = 0; // of the call that runs it
};

// The value from which nodes are cut off, by incumbent and cutoff.
inline double search_prune_value(const MIPState *state)
{
    const double incumbent = prune_value_of_incumbent(state->Grid, state->Pool.Incumbent),
                 cutoff = prune_value_of_cutoff(state->Grid, state->Cutoff);
    return incumbent < cutoff ? incumbent : cutoff;
}
// Deterministic work of all phases.
double search_work(const MIPState *state);
