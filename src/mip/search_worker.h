// search_worker.h -- SearchWorker, one thread of the search: its LP, its bounds, and the nodes it works on
//
// The Domain of a worker holds the bounds of one node, its current one; its trail is divided by the path from the root.
// To go to another node it is undone to the last common ancestor, and the changes of the nodes below are applied again.
// The LP follows by the columns whose bounds have changed in the Domain.
#pragma once
#include "domain/domain.h"
#include "lp/lp.h"
#include "mip/tree_node.h"
#include "runtime/random.h"

// Phases whose work is counted one by one.
enum WorkPhase {
    WORK_ROOT_LP,
    WORK_NODE_LP,
    WORK_PROPAGATION,
    WORK_STRONG_BRANCH,
    WORK_HEURISTICS,
    WORK_PHASES = 12
};

// A node whose changes are in the Domain, and where they begin on its trail.
struct PathEntry {
    double Number;
    int64_t Mark;
};

static constexpr double NO_NODE = -1; // instead of a node's number

struct SearchWorker {
    MIPState *State = nullptr;
    int Index = 0;

    // ---- Bounds ----
    Domain *Bounds = nullptr; // owned
    Array<PathEntry> Path;    // by depth
    int64_t GlobalsSeen = 0;  // of MIPState::GlobalChanges, that are in Bounds

    // ---- LP ----
    LpSolve Lp;              // of the body; its simplex record is live after the root
    TVXenv *LpEnv = nullptr; // owned; of Lp
    Array<double> LpLower, LpUpper; // [columns] bounds that the live record has
    Array<int> Dirty;        // columns whose bounds were given to the LP against the Domain
    int UserRows = 0;        // of MIPState::UserRows, that the LP has
    double LpNode = NO_NODE; // the node whose final basis is the live one

    // ---- Nodes ----
    TreeNode *Current = nullptr; // that is being processed, or null
    Array<TreeNode *> Active;    // near the current one
    double Sequence = 0; // nodes processed by all workers when the current one was chosen

    double ProbeIterations = 0;    // of strong branching since a node was last finished
    NodeLPResult *Spare = nullptr; // owned; of a finished node, for the next one
    double Work[WORK_PHASES] = {}; // since they were last added to those of the search
    Random Rng;

    // ---- Scratch ----
    Array<BoundChange> Changes;
    Array<BoundDelta> Deltas;
    Array<TreeNode *> Ancestors;
    Array<int> Columns;   // [columns]
    Array<double> Values; // [columns]
    NodeBasis Basis;
};

// A worker of the search, with a Domain of its global bounds; the LP comes with the root. 0 or OUT_OF_MEMORY.
[[nodiscard]] int worker_create(MIPState *state, int index, SearchWorker **out);
void worker_free(SearchWorker *worker); // null is ignored
// Bounds become those of the node, propagated. *feasible: false when they exclude every solution. 0 or OUT_OF_MEMORY.
[[nodiscard]] int worker_move_to(SearchWorker *worker, const TreeNode *node,
                                 bool *feasible);
// Global bounds that are new enter the Domain, which then is at the root. False: nothing is feasible any more.
// 0 or OUT_OF_MEMORY.
[[nodiscard]] int worker_take_globals(SearchWorker *worker, bool *feasible);
// Smallest lower bound of the nodes in the worker's hands; UNDEFINED_VALUE: it has none.
double worker_bound(const SearchWorker *worker);
// Propagates what has been tightened in Bounds, if nodes are presolved. 0 or OUT_OF_MEMORY.
[[nodiscard]] int worker_propagate(SearchWorker *worker);
// The bounds that the LP does not have yet become its own: they are in Changes, and have to be given to it.
void worker_list_changes(SearchWorker *worker);
