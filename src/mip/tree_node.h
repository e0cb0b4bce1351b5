// tree_node.h -- TreeNode, a node of the search tree: its bound changes against its parent, and its payload NodeData
//
// A node keeps its own changes only; the bounds that hold at it are those of the path from the root. The changes stand
// in the same block as the node, which moves when some are added: only nodes without children get changes. A node that
// waits in a heap keeps of its payload the numbers; the basis to start from is that of its parent.
//
// ReleaseLevel   what is left
//   5   everything: the node has just been made, or is being worked on
//   4   no NodeLPResult, no NodeOutbox: it waits in a heap
//   3   likewise: it has been branched on, and its children start from its basis
//   1   no NodeData: only the changes, for the path of its descendants
//   0   the node is freed
// Level 6 in a call of node_release only makes sure that NodeLPResult exists.
#pragma once
#include "mip/node_result.h"
#include "simplex/resolve.h"

struct MIPState;
struct NodeStore;

enum NodeStatus {
    NODE_UNSOLVED = 0,
    NODE_INTEGRAL = 1,   // the LP solution is feasible for the model
    NODE_FRACTIONAL = 2, // to be branched on
    NODE_FAILED = 3,     // the LP could not be solved
    NODE_INFEASIBLE = 4,
    NODE_CUTOFF = 5,  // no solution better than the incumbent
    NODE_STOPPED = 6, // by a limit; the node goes back unprocessed
    NODE_EXPLODED = 7 // the LP has become too large
};

enum ReleaseLevel {
    RELEASE_FREE = 0,
    RELEASE_BARE = 1,
    RELEASE_BRANCHED = 3,
    RELEASE_WAITING = 4,
    RELEASE_NOTHING = 5,
    RELEASE_OPEN_RESULT = 6
};

// A bound of one variable: sense '<' an upper, '>' a lower bound.
struct BoundDelta {
    char Sense;
    int Var;
    double Value;
};

// The basis in which a node's LP ended: with its weights as long as the search stays near, packed when it may be long
// until a child needs it. Both null: none.
struct NodeBases {
    NodeBasis *Full; // owned
    uint32_t
        *Packed; // owned; 2 bits a column, 1 bit a row, in whole words (packed_basis.h)
};

// Plain words and pointers: made and freed with its node.
struct NodeData {
    MIPState *Owner;
    int BranchVar;      // that its parent was branched on, -1 for none
    double BranchValue; // its value at the parent
    char BranchSense;   // '<', '>', or 'N' for none
    double HeapKey;     // LowerBound when it was entered in a heap
    int Depth;
    int FromHeap; // it was taken out of the heap: a separation round runs at it
    int Status;   // NodeStatus
    double LPObjective;
    double LowerBound;
    double Estimate; // of the best integer objective below it
    double ParentObjective;
    int Level;                       // ReleaseLevel
    int PayloadChildren;             // children that have a NodeData
    int Golden;                      // its bounds contain the reference solution
    double *LocalLower, *LocalUpper; // one block, or null: bounds are those of a Domain
    int LPRows;                      // rows that the basis covers
    NodeBases Basis;
    NodeLPResult *Result; // owned, or null
    NodeOutbox *Outbox;   // owned, or null
};

// Followed in the same block by BoundDelta [BoundChanges], then int [ZeroFixings]: variables whose upper bound becomes 0,
// then int [OneFixings]: variables whose lower bound becomes 1.
struct TreeNode {
    double Number; // serial number, from 1 on
    TreeNode *Parent;
    int Children; // that are alive
    int ZeroFixings, OneFixings, BoundChanges;
    NodeData *Data; // owned, or null
};

inline const BoundDelta *node_changes(const TreeNode *node)
{
    return reinterpret_cast<const BoundDelta *>(node + 1);
}
inline const int *node_zeros(const TreeNode *node)
{
    return reinterpret_cast<const int *>(node_changes(node) + node->BoundChanges);
}
inline const int *node_ones(const TreeNode *node)
{
    return node_zeros(node) + node->ZeroFixings;
}

// A node below `parent` (null: the root) with that number; null without memory.
[[nodiscard]] TreeNode *node_create(MIPState *owner, TreeNode *parent, double number);
// Adds changes. The node may move: *node is its new place, and so is the root pointer of its owner. 0 or OUT_OF_MEMORY, with the node as before.
[[nodiscard]] int node_add_deltas(TreeNode **node, const BoundDelta *deltas, int count);
// Bytes by which the size of the tree is counted; columns and rows of the model that is searched.
double node_size(const TreeNode *node, int columns, int rows);
// The ancestor at that depth, the node itself at its own; null for a negative depth or one below the node's.
const TreeNode *node_ancestor(const TreeNode *node, int depth);
// Gives up what `level` says, and what nobody needs any more of the path to the root. Sizes and the number of nodes are
// counted in the store, if there is one. *root becomes null with the root. 0, or OUT_OF_MEMORY for RELEASE_OPEN_RESULT.
[[nodiscard]] int node_release(TreeNode *node, NodeStore *store, TreeNode **root,
                               int level);
// Replaces the full basis by the packed one. 0 or OUT_OF_MEMORY, with the full basis still there.
[[nodiscard]] int node_pack_basis(TreeNode *node, NodeStore *store);
