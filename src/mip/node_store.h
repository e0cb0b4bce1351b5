// node_store.h -- NodeStore, the open nodes of a tree, how many nodes there are, and how many bytes they take
//
// Open nodes wait in a binary min-heap on the key; nodes that a worker has taken are in its lists. Only the thread that
// coordinates the search touches the heap.
#pragma once
#include "mip/tree_node.h"

struct NodeStore {
    int Columns = 0, Rows = 0; // of the searched model, for sizes
    int NodeCount = 0;         // nodes alive
    double TreeBytes = 0;      // of nodes that have been branched on
    double HeapBytes = 0;
    Array<TreeNode *> Heap;
    double HeapBound = 1e100;    // key of the top; 1e100: empty
    double GlobalBound = -1e100; // no solution is better; only raised
};
inline double store_size(const NodeStore *store, const TreeNode *node)
{
    return node_size(node, store->Columns, store->Rows);
}
// 0 or OUT_OF_MEMORY: the node is not in the heap then.
[[nodiscard]] int store_push(NodeStore *store, TreeNode *node);
TreeNode *
store_pop(NodeStore *store); // the top, marked as taken from the heap; null: empty
// Takes out and releases every node whose lower bound is not below `limit`.
void store_prune(NodeStore *store, TreeNode **root, double limit);
// Raises the global bound, if `bound` is higher.
void store_raise_bound(NodeStore *store, double bound);
#ifdef TVX_DEBUG
int store_check(const NodeStore *store); // number of broken invariants
#endif
