// node_store.cpp -- the heap of open nodes
#include "mip/node_store.h"
#include <algorithm>

namespace
{
constexpr int64_t FIRST_ROOM = 50;

double key(const TreeNode *node)
{
    return node->Data->HeapKey;
}

void refresh_bound(NodeStore *store)
{
    store->HeapBound = store->Heap.size > 0 ? key(store->Heap.data[0]) : UNDEFINED_VALUE;
}

// A node with the key of its parent stays below it.
void sift_up(NodeStore *store, int64_t at)
{
    TreeNode **heap = store->Heap.data, *node = heap[at];
    while (at > 0) {
        const int64_t above = (at - 1) / 2;
        if (key(node) >= key(heap[above])) break;
        heap[at] = heap[above];
        at = above;
    }
    heap[at] = node;
}

void sift_down(NodeStore *store, int64_t at)
{
    TreeNode **heap = store->Heap.data, *node = heap[at];
    for (;;) {
        int64_t below = 2 * at + 1;
        if (below >= store->Heap.size) break;
        if (below + 1 < store->Heap.size && key(heap[below + 1]) < key(heap[below]))
            below++;
        if (key(heap[below]) >= key(node)) break;
        heap[at] = heap[below];
        at = below;
    }
    heap[at] = node;
}
} // namespace

int store_push(NodeStore *store, TreeNode *node)
{
    if (store->Heap.size == store->Heap.room)
        TRY(array_reserve(&store->Heap, std::max(FIRST_ROOM, 2 * store->Heap.room)));
    node->Data->HeapKey = node->Data->LowerBound;
    store->HeapBytes += store_size(store, node);
    array_push(&store->Heap, node);
    sift_up(store, store->Heap.size - 1);
    refresh_bound(store);
    return 0;
}

TreeNode *store_pop(NodeStore *store)
{
    if (store->Heap.size == 0) return nullptr;
    TreeNode *node = store->Heap.data[0];
    store->Heap.data[0] = store->Heap.data[--store->Heap.size];
    if (store->Heap.size > 0) sift_down(store, 0);
    store->HeapBytes -= store_size(store, node);
    if (node->Parent) node->Data->FromHeap = 1;
    refresh_bound(store);
    return node;
}

void store_prune(NodeStore *store, TreeNode **root, double limit)
{
    int64_t kept = 0;
    for (TreeNode *node : store->Heap) {
        if (node->Data->LowerBound < limit) {
            store->Heap.data[kept++] = node;
            continue;
        }
        store->HeapBytes -= store_size(store, node);
        (void)node_release(node, store, root, RELEASE_FREE); // cannot fail
    }
    if (kept == store->Heap.size) return;
    store->Heap.size = kept;
    for (int64_t k = kept / 2 - 1; k >= 0; k--) sift_down(store, k);
    refresh_bound(store);
}

void store_raise_bound(NodeStore *store, double bound)
{
    store->GlobalBound = std::max(store->GlobalBound, bound);
}

#ifdef TVX_DEBUG
int store_check(const NodeStore *store)
{
    int broken = 0;
    double bytes = 0;
    for (int64_t k = 0; k < store->Heap.size; k++) {
        const TreeNode *node = store->Heap.data[k];
        bytes += store_size(store, node);
        broken += node->Data->HeapKey != node->Data->LowerBound; // assigned
        broken += k > 0 && key(node) < key(store->Heap.data[(k - 1) / 2]);
    }
    broken += std::abs(bytes - store->HeapBytes) > 0.5; // sums of whole numbers
    broken += store->HeapBytes < 0 || store->TreeBytes < 0;
    return broken;
}
#endif
