// branch.h -- branching: what a node is divided by, and the children
//
// branch.cpp               the order of the steps, and the choice among what they leave
// branch_reliability.cpp   pseudo-costs, with strong branching for the variables that have too few of them
// branch_probe.cpp         strong branching, and the bound of one step of the dual simplex
// branch_filter.cpp        cheaper rules: multipliers, implications
// branch_children.cpp      the children of a variable, of an SOS constraint or a set
#pragma once
#include "mip/mip_state.h"

// The children of a node, in the order in which they were made.
struct Children {
    TreeNode *Node[2];
    int Count = 0;
};
// Divides a fractional or failed node, or finds that it holds nothing: its status tells. With `test` bounds are tightened,
// but no children are made. 0 or a code.
enum class BranchMode { DIVIDE, TEST };
[[nodiscard]] int branch_node(SearchWorker *worker, TreeNode **node, BranchMode mode,
                              Children *children);

// ---- The steps, on the candidates of the node's NodeLPResult ----
// What is branched on: one candidate, an SOS constraint or a branch set.
struct BranchChoice {
    int Candidate = -1; // in NodeLPResult::Candidates
    int Sos = -1;
    int Set = -1;
};
// Sides of candidates that strong branching has closed are applied to the node: *moved, and the LP has to be solved
// again. Without that the gains of the candidates are set.
[[nodiscard]] int branch_by_reliability(SearchWorker *worker, TreeNode **node,
                                        BranchChoice *choice, bool *moved);
[[nodiscard]] int branch_by_probes(SearchWorker *worker, TreeNode **node, int first,
                                   int count, bool *moved);
// The bound of one dual step for both sides of a candidate, where `bound` is that of the LP.
void estimate_sides(SearchWorker *worker, double bound, BranchCandidate *candidate);
// Leave the better candidates in front. Return their number.
int filter_by_multipliers(SearchWorker *worker, NodeLPResult *result, int count);
int filter_by_implications(SearchWorker *worker, NodeLPResult *result, int count);
// Both children of the node, unless their bounds exclude each other. 0 or OUT_OF_MEMORY.
[[nodiscard]] int make_children(SearchWorker *worker, TreeNode *node,
                                const BranchCandidate &candidate, Children *children);
[[nodiscard]] int make_sos_children(SearchWorker *worker, TreeNode *node, int sos,
                                    Children *children);

// Gains below this count as so much in a product.
static constexpr double LEAST_SCORE_GAIN = 1e-4;
inline double branch_score(double down, double up)
{
    return (down > LEAST_SCORE_GAIN ? down : LEAST_SCORE_GAIN) *
           (up > LEAST_SCORE_GAIN ? up : LEAST_SCORE_GAIN);
}
// Distance of the value to the branch below it.
double branch_fraction(const MIPState *state, double x);
double branch_floor(const MIPState *state, double x);
