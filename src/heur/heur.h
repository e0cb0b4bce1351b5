// heur.h -- the interface of this folder: HeurState, and the heuristics that a search runs at its nodes
//
// A heuristic proposes points. It knows the model, an LP solution and the bounds of a node, and hands what it finds to the
// search, which checks it and keeps it or not. Nothing here changes the search, its bounds or its LP.
//
// Work   Counted in entries of the matrix that are looked at, plus the work of the LPs and searches that are run: never in
//        seconds, so that two runs do the same.
#pragma once
#include "domain/domain.h"
#include "presolve/presolve.h"
#include "runtime/random.h"

// ---- What the search gives ----
// The model of a search. All of it outlives the HeurState.
struct HeurModel {
    const ModelBody *Body = nullptr;
    const PropagationRows *Rows = nullptr; // of Body: the rows by entries
    const char *IsInteger = nullptr;       // [columns]
    const SemiColumn *Semis = nullptr;     // [NumSemis]
    int NumSemis = 0;
    double RowTolerance = 1e-6; // a row counts as violated beyond it
};
// What a heuristic may ask for. The functions return 0 or a code, and a code ends the heuristics.
struct HeurSearch {
    void *Owner = nullptr; // their first argument
    // Offers a point [columns] of the model. *improved: it is the new incumbent.
    int (*Try)(void *owner, const double *x, bool *improved) = nullptr;
    // Searches the model with these bounds [columns] and offers the best point. *work: what that has cost. Null: a search
    // inside another one runs none itself.
    int (*SubMip)(void *owner, const double *lower, const double *upper, bool *improved,
                  double *work) = nullptr;
    // By how much the gains of the two ways to branch on a column differ, as far as is known.
    double (*BranchDifference)(void *owner, int j) = nullptr;
    bool (*GoOn)(void *owner) =
        nullptr; // asked between two steps; false: a limit, or an end
};
// The node: its LP is solved and its solution is fractional.
enum class HeurStage {
    NODE,      // of the tree
    ROOT_PASS, // the root, after a pass
    ROOT_END   // the root, after the last one
};
struct HeurCall {
    HeurStage Stage = HeurStage::NODE;
    double Nodes = 0;          // explored so far
    const double *X = nullptr; // [columns] the LP solution
    double Objective = 0;      // of it
    Domain *Bounds = nullptr;  // of the node; as before when the call returns
    const double *PruneValue =
        nullptr; // only points below it are of use; falls when one is found
    const double *Incumbent = nullptr; // objective of the best point, or 1e100
    double Share = 0;                  // of the work that heuristics may take: Heuristics
    double GapClosed = 0;  // share of the gap of the root that the bound has closed
    double SearchWork = 0; // of the search so far
    double HeurWork = 0;   // of heuristics before this call
    TVXenv *Env = nullptr; // for LPs of its own
    HeurSearch Search;
};

// ---- The record ----
struct HeurState; // heur_state.h: locks, and a working point with its rows
// 0 or OUT_OF_MEMORY; *out is null on failure. Cost: O(columns + entries), once per search.
[[nodiscard]] int heur_create(const HeurModel &model, HeurState **out);
void heur_free(HeurState *h); // null is ignored
// The work since it was last taken.
double heur_take_work(HeurState *h);

// ---- The calls ----
// Runs what is due at the node, in a fixed order (heur_node.cpp). 0 or a code.
[[nodiscard]] int HeurNode(HeurState *h, const HeurCall &call);
// The same at the root, under either of its stages, where more is due.
[[nodiscard]] int HeurRoot(HeurState *h, const HeurCall &call);
// At this node HeurNode does more than round the LP solution to the nearest integers and repair that by moves.
bool heur_is_due(double nodes);

// One-opt: integer columns move as far towards a better objective as the rows allow, one by one. A better point than x
// [columns], a feasible one, valid until the next call; or null. May be called from within HeurSearch::Try.
// Cost: O(columns log columns + entries)
const double *heur_improve(HeurState *h, const double *lower, const double *upper,
                           const double *x);
