// tree_node.cpp -- creates and releases nodes of the search tree, and keeps their bound changes
#include "mip/tree_node.h"
#include "mip/mip_state.h"
#include "mip/packed_basis.h"
#include <algorithm>
#include <cmath>

namespace
{
// Bytes by which parts of a node are counted.
constexpr double HEAD_BYTES = 48, DATA_BYTES = 128, RESULT_BYTES = 112;

constexpr double BINARY_TOLERANCE = 1e-10; // a change to 0 or 1 as a fixing

size_t block_bytes(int zeros, int ones, int changes)
{
    return sizeof(TreeNode) + sizeof(BoundDelta) * static_cast<size_t>(changes) +
           sizeof(int) * (static_cast<size_t>(zeros) + static_cast<size_t>(ones));
}

bool is_zero_fixing(const BoundDelta &delta)
{
    return delta.Sense == '<' && std::fabs(delta.Value) <= BINARY_TOLERANCE;
}

bool is_one_fixing(const BoundDelta &delta)
{
    return delta.Sense == '>' && std::fabs(delta.Value - 1) <= BINARY_TOLERANCE;
}

void free_bases(NodeBases *bases)
{
    record_free(bases->Full);
    MemFree(bases->Packed);
    *bases = {nullptr, nullptr};
}

void free_result(NodeData *data)
{
    record_free(data->Result);
    record_free(data->Outbox);
    data->Result = nullptr;
    data->Outbox = nullptr;
}

void free_data(TreeNode *node)
{
    NodeData *data = node->Data;
    if (!data) return;
    free_result(data);
    free_bases(&data->Basis);
    MemFree(data->LocalLower); // the upper bounds stand in the same block
    MemFree(data);
    node->Data = nullptr;
}

// Gives up what `level` says of one node. True if it is freed as a whole.
bool strip(TreeNode *node, TreeNode **root, int level)
{
    if (node->Data && level < RELEASE_OPEN_RESULT - 1) free_result(node->Data);
    if (level < RELEASE_BRANCHED) free_data(node);
    if (level > RELEASE_FREE) return false;
    if (node == *root) *root = nullptr;
    MemFree(node);
    return true;
}

int open_result(NodeData *data)
{
    if (!data->Result) data->Result = record_create<NodeLPResult>();
    if (!data->Outbox) data->Outbox = record_create<NodeOutbox>();
    return data->Result && data->Outbox ? 0 : OUT_OF_MEMORY;
}
} // namespace

TreeNode *node_create(MIPState *owner, TreeNode *parent, double number)
{
    TreeNode *node = static_cast<TreeNode *>(MemAllocZero(1, sizeof(TreeNode)));
    NodeData *data = static_cast<NodeData *>(MemAllocZero(1, sizeof(NodeData)));
    if (!node || !data) {
        MemFree(node);
        MemFree(data);
        return nullptr;
    }
    const NodeData *above = parent ? parent->Data : nullptr;
    node->Number = number;
    node->Parent = parent;
    node->Data = data;
    data->Owner = owner;
    data->BranchVar = -1;
    data->BranchSense = 'N';
    data->Depth = above ? above->Depth + 1 : 0;
    data->LowerBound = above ? above->LowerBound : -UNDEFINED_VALUE;
    data->HeapKey = data->LowerBound;
    data->Estimate = above ? above->Estimate : UNDEFINED_VALUE;
    data->ParentObjective = above ? above->LPObjective : -UNDEFINED_VALUE;
    data->LPObjective = -UNDEFINED_VALUE;
    data->Level = RELEASE_NOTHING;
    if (parent) parent->Children++;
    if (above) parent->Data->PayloadChildren++;
    return node;
}

int node_add_deltas(TreeNode **place, const BoundDelta *deltas, int count)
{
    if (count == 0) return 0;
    TreeNode *node = *place;
    assert(node->Children == 0);
    int zeros = 0, ones = 0;
    for (int k = 0; k < count; k++) {
        zeros += is_zero_fixing(deltas[k]);
        ones += is_one_fixing(deltas[k]);
    }
    const int changes = count - zeros - ones;
    node = static_cast<TreeNode *>(
        MemRealloc(node, block_bytes(node->ZeroFixings + zeros, node->OneFixings + ones,
                                     node->BoundChanges + changes)));
    if (!node) return OUT_OF_MEMORY;
    *place = node;
    if (!node->Parent && node->Data->Owner) node->Data->Owner->Root = node;
    int *old_ones = const_cast<int *>(node_ones(node)),
        *old_zeros = const_cast<int *>(node_zeros(node));
    BoundDelta *next = const_cast<BoundDelta *>(node_changes(node)) + node->BoundChanges;
    int *new_zeros = reinterpret_cast<int *>(next + changes),
        *new_ones = new_zeros + node->ZeroFixings + zeros;
    std::copy_backward(old_ones, old_ones + node->OneFixings, new_ones + node->OneFixings);
    std::copy_backward(old_zeros, old_zeros + node->ZeroFixings,
                       new_zeros + node->ZeroFixings);
    new_zeros += node->ZeroFixings;
    new_ones += node->OneFixings;
    for (int k = 0; k < count; k++) {
        if (is_zero_fixing(deltas[k]))
            *new_zeros++ = deltas[k].Var;
        else if (is_one_fixing(deltas[k]))
            *new_ones++ = deltas[k].Var;
        else
            *next++ = deltas[k];
    }
    node->ZeroFixings += zeros;
    node->OneFixings += ones;
    node->BoundChanges += changes;
    return 0;
}

double node_size(const TreeNode *node, int columns, int rows)
{
    double size = HEAD_BYTES + 4.0 * (node->ZeroFixings + node->OneFixings) +
                  16.0 * node->BoundChanges;
    const NodeData *data = node->Data;
    if (!data) return size;
    size += DATA_BYTES;
    if (data->Basis.Full) size += 4.0 * (double{1} * columns + rows);
    if (data->Basis.Packed) size += 4.0 * static_cast<double>(packed_words(columns, rows));
    if (data->LocalLower) size += 16.0 * columns;
    if (data->Result) size += RESULT_BYTES + 16.0 * (double{1} * columns + rows);
    return size;
}

const TreeNode *node_ancestor(const TreeNode *node, int depth)
{
    const NodeData *data = node->Data;
    if (depth < 0 || depth > data->Depth) return nullptr;
    for (int d = data->Depth; d > depth; d--) node = node->Parent;
    return node;
}

int node_pack_basis(TreeNode *node, NodeStore *store)
{
    NodeBases *bases = &node->Data->Basis;
    if (!bases->Full) return 0;
    uint32_t *packed = nullptr;
    TRY(basis_pack(bases->Full, &packed));
    const bool counted = store && node->Data->Level == RELEASE_BRANCHED;
    if (counted) store->TreeBytes -= store_size(store, node);
    record_free(bases->Full);
    *bases = {nullptr, packed};
    if (counted) store->TreeBytes += store_size(store, node);
    return 0;
}

int node_release(TreeNode *node, NodeStore *store, TreeNode **root, int level)
{
    if (level == RELEASE_OPEN_RESULT) return open_result(node->Data);
    level = std::max(level, 0);
    for (bool first = true; node; first = false) {
        // Without a payload it has been released to RELEASE_BARE.
        const int old = node->Data ? node->Data->Level : RELEASE_BARE;
        if (node->Data) node->Data->Level = level;
        if (store && !first) store->TreeBytes -= store_size(store, node);
        TreeNode *parent = node->Parent;
        if (strip(node, root, level)) {
            if (store) store->NodeCount--;
            if (parent) parent->Children--;
        } else if (store && level != RELEASE_WAITING) { // else the heap counts it
            store->TreeBytes += store_size(store, node);
        }
        if (!parent) break;
        if (parent->Children == 0) {
            level = RELEASE_FREE;
        } else {
            const bool starts_no_more = old >= RELEASE_WAITING && level < RELEASE_WAITING;
            if (!parent->Data || !starts_no_more || --parent->Data->PayloadChildren > 0 ||
                parent->Data->Level < RELEASE_BRANCHED)
                break;
            level = RELEASE_BARE;
        }
        node = parent;
    }
    return 0;
}
