// tree_test.cpp -- the search tree against a plain one: changes, release, bytes, heap, and which node is next
#include "mip/node_select.h"
#include "mip/packed_basis.h"
#include "mip/search_worker.h"
#include "runtime/memory.h"
#include "support/lp_tarvex.h"
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace
{
constexpr int COLUMNS = 40, ROWS = 7;

NodeBasis *random_basis(Dice *dice)
{
    NodeBasis *basis = record_create<NodeBasis>();
    basis->NumCols = COLUMNS;
    basis->NumRows = ROWS;
    EXPECT_EQ(array_resize(&basis->Statuses, COLUMNS + ROWS), 0);
    for (char &status : basis->Statuses) status = static_cast<char>(dice->range(0, 4));
    return basis;
}

// A tree that grows and shrinks at random, as a search would have it.
struct Forest {
    Dice dice;
    TestEnv env;
    MIPState state;
    SearchWorker worker;                               // its Active are the nodes in hand
    std::map<double, std::vector<BoundDelta>> changes; // of living nodes, by number

    explicit Forest(uint64_t seed) : dice(seed)
    {
        state.Env = env.env;
        state.Store.Columns = COLUMNS;
        state.Store.Rows = ROWS;
        state.Root = make(nullptr);
        worker.State = &state;
        EXPECT_EQ(array_append(&state.Workers, &worker), 0);
        EXPECT_EQ(activate_node(&worker, state.Root), 0);
    }
    ~Forest()
    {
        while (hand().size > 0) release(take(), RELEASE_FREE);
        while (TreeNode *node = store_pop(&state.Store)) release(node, RELEASE_FREE);
        pool_free(&state.Pool);
    }
    const Array<TreeNode *> &hand() const { return worker.Active; }
    std::vector<TreeNode *> in_hand() const
    {
        return {hand().data, hand().data + hand().size};
    }
    TreeNode *take()
    {
        const int at = dice.range(0, static_cast<int>(hand().size) - 1);
        TreeNode *node = hand().data[at];
        worker.Active.data[at] = worker.Active.data[--worker.Active.size];
        return node;
    }
    void release(TreeNode *node, int level)
    {
        ASSERT_EQ(node_release(node, &state.Store, &state.Root, level), 0);
    }
    BoundDelta any_change()
    {
        const double value = dice.pick<double>({0, 1, 1e-11, 1 - 1e-11, 1e-9, -3, 2, 7.5});
        return {"<>"[dice.range(0, 1)], dice.range(0, COLUMNS - 1), value};
    }
    void change(TreeNode **node)
    {
        std::vector<BoundDelta> some;
        for (int k = dice.range(0, 5); k > 0; k--) some.push_back(any_change());
        ASSERT_EQ(node_add_deltas(node, some.data(), static_cast<int>(some.size())), 0);
        std::vector<BoundDelta> *all = &changes[(*node)->Number];
        all->insert(all->end(), some.begin(), some.end());
    }
    TreeNode *make(TreeNode *parent)
    {
        TreeNode *node = node_create(&state, parent, state.NextNumber++);
        state.Store.NodeCount++;
        NodeData *data = node->Data;
        data->LowerBound = data->HeapKey =
            (parent ? data->LowerBound : 0) + dice.range(0, 9);
        data->Estimate = data->LowerBound + dice.range(0, 9);
        data->BranchVar = dice.range(-1, COLUMNS - 1);
        data->BranchValue = dice.range(0, 8) * 0.25;
        data->BranchSense = "<>"[dice.range(0, 1)];
        change(&node);
        change(&node);
        return node;
    }
    void branch(TreeNode *node)
    {
        if (dice.chance(70)) node->Data->Basis.Full = random_basis(&dice);
        node->Data->Result = record_create<NodeLPResult>();
        for (int k = dice.range(1, 3); k > 0; k--)
            ASSERT_EQ(activate_node(&worker, make(node)), 0);
        release(node, RELEASE_BRANCHED);
    }
    void wait(TreeNode *node)
    {
        release(node, RELEASE_WAITING);
        if (node->Parent && dice.chance(50)) {
            ASSERT_EQ(node_pack_basis(node->Parent, &state.Store), 0);
        }
        ASSERT_EQ(store_push(&state.Store, node), 0);
    }
    void pop()
    {
        double least = UNDEFINED_VALUE;
        for (const TreeNode *node : state.Store.Heap)
            least = std::min(least, node->Data->LowerBound);
        EXPECT_EQ(state.Store.HeapBound, least);
        TreeNode *node = store_pop(&state.Store);
        ASSERT_EQ(node != nullptr, least < UNDEFINED_VALUE);
        if (!node) return;
        EXPECT_EQ(node->Data->LowerBound, least);
        EXPECT_EQ(node->Data->FromHeap, node->Parent ? 1 : 0);
        ASSERT_EQ(activate_node(&worker, node), 0);
    }
    double any_key()
    {
        const Array<TreeNode *> &heap = state.Store.Heap;
        if (heap.size == 0) return 0;
        return heap.data[dice.range(0, static_cast<int>(heap.size) - 1)]->Data->LowerBound;
    }
    void prune(double limit)
    {
        std::set<double> expected, kept;
        for (const TreeNode *node : state.Store.Heap)
            if (node->Data->LowerBound < limit) expected.insert(node->Number);
        store_prune(&state.Store, &state.Root, limit);
        for (const TreeNode *node : state.Store.Heap) kept.insert(node->Number);
        EXPECT_EQ(kept, expected);
    }
    void move()
    {
        const int ticket = dice.range(0, 99);
        if (hand().size == 0 || ticket < 12)
            pop();
        else if (ticket < 55)
            branch(take());
        else if (ticket < 85)
            wait(take());
        else if (ticket < 96)
            release(take(), RELEASE_FREE);
        else
            prune(any_key());
    }
    std::string check() const;
};

// The bytes that a node counts for, as they are fixed.
double bytes_of(const TreeNode *node)
{
    double size =
        48 + 4. * (node->ZeroFixings + node->OneFixings) + 16. * node->BoundChanges;
    const NodeData *data = node->Data;
    if (!data) return size;
    size += 128 + (data->Basis.Full ? 4. * (COLUMNS + ROWS) : 0) +
            (data->Basis.Packed ? 4. * ((ROWS + 2 * COLUMNS + 31) / 32) : 0);
    return size + (data->Result ? 112 + 16. * (COLUMNS + ROWS) : 0);
}

// Changes in the order of their kinds.
std::string changes_text(const TreeNode *node)
{
    std::string text;
    for (int k = 0; k < node->BoundChanges; k++) {
        const BoundDelta &d = node_changes(node)[k];
        text += formatted("%c%d %g;", d.Sense, d.Var, d.Value);
    }
    for (int k = 0; k < node->ZeroFixings; k++)
        text += formatted("0 %d;", node_zeros(node)[k]);
    for (int k = 0; k < node->OneFixings; k++)
        text += formatted("1 %d;", node_ones(node)[k]);
    return text;
}

std::string changes_text(const std::vector<BoundDelta> &all)
{
    std::string others, zeros, ones;
    for (const BoundDelta &d : all)
        if (d.Sense == '<' && std::fabs(d.Value) <= 1e-10)
            zeros += formatted("0 %d;", d.Var);
        else if (d.Sense == '>' && std::fabs(d.Value - 1) <= 1e-10)
            ones += formatted("1 %d;", d.Var);
        else
            others += formatted("%c%d %g;", d.Sense, d.Var, d.Value);
    return others + zeros + ones;
}

// What is wrong. Alive are the open nodes with all above them; a payload has who is open, or has an open child.
std::string Forest::check() const
{
    std::set<const TreeNode *> alive, open;
    for (const auto *list : {&state.Store.Heap, &hand()})
        open.insert(list->data, list->data + list->size);
    std::map<const TreeNode *, int> children, open_children;
    for (const TreeNode *node : open)
        if (node->Parent) open_children[node->Parent]++;
    for (const TreeNode *node : open)
        for (; node && alive.insert(node).second; node = node->Parent)
            if (node->Parent) children[node->Parent]++;
    double bytes = 0;
    for (const TreeNode *node : alive) {
        const double number = node->Number;
        if (!open.count(node)) bytes += bytes_of(node);
        if (node->Children != children[node]) return formatted("children of %g", number);
        if (bool(node->Data) != (open.count(node) || open_children[node] > 0))
            return formatted("payload of %g", number);
        if (changes_text(node) != changes_text(changes.at(number)))
            return formatted("changes of %g: ", number) + changes_text(node);
    }
    const NodeStore *store = &state.Store;
    if (store->NodeCount != static_cast<int>(alive.size())) return "number of nodes";
    if (store->TreeBytes != bytes)
        return formatted("%g bytes, not %g", store->TreeBytes, bytes);
    if (bool(state.Root) != !alive.empty()) return "root";
#ifdef TVX_DEBUG
    if (store_check(store)) return "store";
#endif
    return "";
}

} // namespace

TEST(Tree, changes_payloads_counts_and_bytes_are_those_of_a_plain_tree)
{
#ifdef TVX_DEBUG
    const int64_t before = mem_blocks_held();
#endif
    for (uint64_t seed = 0; seed < 150; seed++) {
        Forest forest(seed);
        for (int k = 0; k < 120; k++) {
            forest.move();
            ASSERT_EQ(forest.check(), "") << seed << " " << k;
            ASSERT_FALSE(HasFatalFailure());
        }
        while (forest.hand().size > 0) forest.release(forest.take(), RELEASE_FREE);
        forest.prune(-UNDEFINED_VALUE);
        EXPECT_EQ(forest.state.Root, nullptr);
        EXPECT_EQ(forest.state.Store.HeapBytes, 0);
        EXPECT_EQ(forest.check(), "") << seed;
    }
#ifdef TVX_DEBUG
    EXPECT_EQ(mem_blocks_held(), before);
#endif
}

TEST(Tree, a_node_inherits_from_its_parent_and_the_root_from_nothing)
{
    MIPState state;
    TreeNode *root = node_create(&state, nullptr, 1);
    EXPECT_EQ(root->Data->LowerBound, -1e100);
    EXPECT_EQ(root->Data->Estimate, 1e100);
    EXPECT_EQ(root->Data->ParentObjective, -1e100);
    EXPECT_EQ(root->Data->BranchSense, 'N');
    root->Data->LowerBound = 3;
    root->Data->LPObjective = 4;
    root->Data->Estimate = 5;
    TreeNode *child = node_create(&state, root, 2);
    EXPECT_EQ(child->Data->LowerBound, 3);
    EXPECT_EQ(child->Data->HeapKey, 3);
    EXPECT_EQ(child->Data->ParentObjective, 4);
    EXPECT_EQ(child->Data->Estimate, 5);
    EXPECT_EQ(child->Data->Depth, 1);
    EXPECT_EQ(node_release(child, nullptr, &root, RELEASE_OPEN_RESULT), 0);
    EXPECT_TRUE(child->Data->Result && child->Data->Outbox);
    EXPECT_EQ(node_release(child, nullptr, &root, -1), 0);
    EXPECT_EQ(root, nullptr);
}

// ---- Which node is next ----

namespace
{
const TreeNode *plain_ancestor(const TreeNode *node, int depth)
{
    if (depth < 0 || depth > node->Data->Depth) return nullptr;
    for (int level = node->Data->Depth; level > depth; level--) node = node->Parent;
    return node;
}

// The rule of the node with that number of nodes before it.
int rule_of(const MIPState &state, int number)
{
    if (state.QuickDive) return 6;
    if (number <= 3) return 1;
    if (number <= 6 || state.Pool.Entries.size == 0) return 2;
    return number % 11 == 0   ? 2
           : number % 7 == 0  ? 4
           : number % 13 == 0 ? 5
           : number % 19 == 0 ? 1
                              : 3;
}

// The position that the rule chooses; -1: any.
int plain_choice(const MIPState &state, const std::vector<TreeNode *> &list, int rule)
{
    if (rule == 5) return -1;
    double best = HUGE_VAL, most = -HUGE_VAL;
    const TreeNode *deepest = list[0];
    for (const TreeNode *node : list) {
        best = std::min(best, node->Data->Estimate);
        if (node->Data->Depth > deepest->Data->Depth) deepest = node;
    }
    const int level = deepest->Data->Depth - 2;
    int chosen = 0;
    for (size_t k = 0; k < list.size(); k++) {
        const NodeData *d = list[k]->Data;
        const bool near = plain_ancestor(list[k], level) == plain_ancestor(deepest, level);
        double score = -d->Estimate;
        if ((rule == 1 || rule == 6) && !near) continue;
        if (rule == 1) score = -d->Depth - (d->Estimate - best) / 1e8;
        if (rule == 3) score = d->Depth - (d->Estimate - best) / 1e8;
        if (rule == 4) {
            if (d->BranchVar < 0) continue;
            const double x = pool_best(&state.Pool)->X[d->BranchVar];
            const double side = d->BranchSense == '<' ? std::floor(d->BranchValue)
                                                      : std::ceil(d->BranchValue);
            score = d->Depth - std::fabs(x - side) / 100;
        }
        if (score <= most) continue;
        most = score;
        chosen = static_cast<int>(k);
    }
    return chosen;
}

// What stays in hand beside the node at that position.
std::vector<TreeNode *> plain_rest(const MIPState &state, std::vector<TreeNode *> list,
                                   size_t at, int number)
{
    const TreeNode *chosen = list[at];
    double bound = UNDEFINED_VALUE;
    for (const TreeNode *node : list) bound = std::min(bound, node->Data->LowerBound);
    list[at] = list.back();
    list.pop_back();
    const int depth = chosen->Data->Depth;
    const int levels = std::clamp(static_cast<int>(std::log2(1 + 0.2 * depth)), 3, 10);
    const int family = depth - (number % 23 == 7 ? 6 : levels);
    if (!plain_ancestor(chosen, family)) return list;
    const double limit =
        bound + state.Env->TARV_PAR_ASPIRE * (state.Pool.Incumbent - bound);
    std::erase_if(list, [&](const TreeNode *node) {
        return plain_ancestor(node, family) != plain_ancestor(chosen, family) ||
               node->Data->LowerBound > limit ||
               node->Data->LowerBound >= state.Pool.PruneValue;
    });
    return list;
}

void add_incumbent(Forest *forest, double objective)
{
    double *x = static_cast<double *>(MemAlloc(COLUMNS * sizeof(double)));
    for (int j = 0; j < COLUMNS; j++) x[j] = forest->dice.range(0, 3);
    SolutionPool *pool = &forest->state.Pool;
    ASSERT_EQ(pool_insert(pool, {0, objective, SolutionSource::HEURISTIC, x, nullptr}), 0);
    pool->Incumbent = objective;
    pool->PruneValue = objective - 1e-6;
    store_prune(&forest->state.Store, &forest->state.Root, pool->PruneValue);
}
} // namespace

TEST(Tree, the_next_node_is_chosen_by_the_rule_of_its_turn_among_its_family)
{
    for (uint64_t seed = 0; seed < 200; seed++) {
        Forest forest(seed);
        MIPState *state = &forest.state;
        state->QuickDive = forest.dice.chance(20);
        state->Env->TARV_PAR_ASPIRE = forest.dice.pick<double>({1, 1, 0.2});
        const int first_solution = forest.dice.range(0, 60);
        for (int number = 0; number < 120; number++) {
            state->Nodes = number;
            if (number == first_solution) add_incumbent(&forest, forest.dice.range(10, 60));
            const std::vector<TreeNode *> list = forest.in_hand();
            std::vector<std::vector<TreeNode *>> rest; // by what is chosen
            for (size_t k = 0; k < list.size(); k++)
                rest.push_back(plain_rest(*state, list, k, number));
            int at =
                list.empty() ? -1 : plain_choice(*state, list, rule_of(*state, number));
            const double top = state->Store.HeapBound;
            TreeNode *chosen = nullptr;
            ASSERT_EQ(select_node(&forest.worker, &chosen), 0);
            if (list.empty() && top >= UNDEFINED_VALUE) {
                EXPECT_EQ(chosen, nullptr);
                break;
            }
            ASSERT_NE(chosen, nullptr);
            const size_t place = static_cast<size_t>(
                std::find(list.begin(), list.end(), chosen) - list.begin());
            if (list.empty()) {
                EXPECT_EQ(chosen->Data->LowerBound, top);
            } else {
                ASSERT_LT(place, list.size());
                ASSERT_TRUE(at < 0 || list[at] == chosen) << seed << " " << number;
                EXPECT_EQ(forest.in_hand(), rest[place]) << seed << " " << number;
            }
            forest.worker.Current = nullptr;
            if (chosen->Data->LowerBound < state->Pool.PruneValue && forest.dice.chance(75))
                forest.branch(chosen);
            else
                forest.release(chosen, RELEASE_FREE);
            ASSERT_EQ(forest.check(), "") << seed << " " << number;
        }
    }
}
