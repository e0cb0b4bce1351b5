// branching_test.cpp -- branch sets, and that children exclude the node's point but nothing that is allowed
#include "mip/branch_sets.h"
#include "mip/search.h"
#include "support/model_test.h"
#include <functional>

namespace
{
constexpr int MEMBERS = 10;

struct Branching : ModelTest {
    MIPState *state = nullptr;

    void TearDown() override
    {
        search_free(state);
        ModelTest::TearDown();
    }
    // The search of the model as it stands, before its root.
    void open(const LpModel &lp)
    {
        search_free(state);
        state = nullptr;
        load(lp);
        SearchOrder order;
        order.Space = record_create<SearchSpace>();
        order.Space->Body = model->body;
        order.Env = model->env;
        ASSERT_EQ(search_create(order, &state), 0);
    }
};

// Exactly one of MEMBERS binaries; member k releases the continuous columns k and k + 1: w <= sum of the members beside it.
LpModel choice()
{
    LpModel lp;
    std::vector<std::pair<int, double>> all;
    for (int k = 0; k < MEMBERS; k++) all.push_back({lp_add_var(&lp, 1, 0, 1, 'B'), 1});
    lp_add_row_entries(&lp, all, '=', 1);
    for (int k = 0; k <= MEMBERS; k++) {
        const int w = lp_add_var(&lp, -1, 0, 1);
        std::vector<std::pair<int, double>> entries = {{w, 1}};
        if (k > 0) entries.push_back({k - 1, -1});
        if (k < MEMBERS) entries.push_back({k, -1});
        lp_add_row_entries(&lp, entries, '<', 0);
    }
    return lp;
}
} // namespace

TEST_F(Branching, sets_are_choices_whose_members_drive_two_small_rows_each)
{
    open(choice());
    ASSERT_EQ(state->Sets.size, 1);
    EXPECT_EQ(state->Sets.data[0].End - state->Sets.data[0].Beg, MEMBERS);
    const std::function<void(LpModel *)> breaks[] = {
        [](LpModel *lp) { lp->senses[0] = '<'; },
        [](LpModel *lp) { lp->rhs[0] = 2; },
        [](LpModel *lp) { lp_set_entry(lp, 0, 3, 2); },
        [](LpModel *lp) { lp_set_entry(lp, 0, 3, 0); }, // nine members
        [](LpModel *lp) { lp->types[3] = 'C'; },
        [](LpModel *lp) { lp->ub[3] = 2, lp->types[3] = 'I'; },
        [](LpModel *lp) { lp->rhs[4] = 1; },
        [](LpModel *lp) { lp_set_entry(lp, 4, 3, 1); }, // the member does not release it
        [](LpModel *lp) { lp_set_entry(lp, 4, MEMBERS, 1); }, // four entries
        [](LpModel *lp) { lp->types[MEMBERS + 3] = 'B'; },    // all are binary
        [](LpModel *lp) {                                     // a third small row
            lp_add_row_entries(lp, {{0, -1}, {MEMBERS + 9, 1}}, '<', 0);
        },
        [](LpModel *lp) { // seven rows
            for (int k = 0; k < 4; k++)
                lp_add_row_entries(lp, {{0, 1}, {MEMBERS, 1}}, '<', 9);
        },
    };
    for (const auto &change : breaks) {
        LpModel lp = choice();
        change(&lp);
        open(lp);
        EXPECT_EQ(state->Sets.size, 0) << &change - breaks;
    }
}

// What may be non-zero under a constraint stays possible in one child; each child loses something.
TEST_F(Branching, children_of_sets_leave_each_window_to_one_of_them)
{
    Dice dice(5);
    for (int round = 0; round < 200; round++) {
        const int count = dice.range(3, 9), type = dice.range(1, 2);
        LpModel lp;
        std::vector<int> members;
        for (int k = 0; k < count; k++)
            members.push_back(lp_add_var(&lp, 1, -dice.range(0, 1), dice.range(0, 1)));
        lp_add_var(&lp, 1, 0, 1, 'B');
        dice.shuffle(&members);
        lp.sets = {{type, members}};
        open(lp);
        SearchWorker *worker = state->Workers.data[0];
        TreeNode *node = worker->Active.data[0];
        bool feasible = false;
        ASSERT_EQ(worker_move_to(worker, node, &feasible), 0);
        node->Data->Status = NODE_FAILED; // no point: all that may differ from zero counts
        Children children;
        ASSERT_EQ(make_sos_children(worker, node, 0, &children), 0);
        const auto may = [&](int p) {
            return lp.lb[members[p]] < 0 || lp.ub[members[p]] > 0;
        };
        int first = -1, last = -1;
        for (int p = 0; p < count; p++)
            if (may(p)) last = p, first = first < 0 ? p : first;
        ASSERT_EQ(children.Count, last - first < type ? 0 : 2);
        std::vector<char> zero[2];
        for (int c = 0; c < children.Count; c++) {
            zero[c].assign(count, 0);
            bool all_fixed = true, any_fixed = false;
            ASSERT_EQ(worker_move_to(worker, children.Node[c], &feasible), 0);
            for (int p = 0; p < count; p++) {
                const int j = members[p];
                zero[c][p] = worker->Bounds->Lower.data[j] == 0 &&
                             worker->Bounds->Upper.data[j] == 0;
                any_fixed |= may(p) && zero[c][p];
                all_fixed &= !may(p) || zero[c][p];
            }
            EXPECT_TRUE(any_fixed && !all_fixed) << round;
        }
        for (int p = 0; children.Count > 0 && p + type <= count; p++) {
            bool open_in[2] = {true, true};
            for (const int c : {0, 1})
                for (int q = p; q < p + type; q++) open_in[c] &= !may(q) || !zero[c][q];
            EXPECT_TRUE(open_in[0] || open_in[1]) << round << " " << p;
        }
        for (int c = 0; c < children.Count; c++)
            ASSERT_EQ(array_append(&worker->Active, children.Node[c]), 0);
        if (children.Count > 0)
            worker->Active.data[0] = worker->Active.data[--worker->Active.size];
    }
}

// Both sides of a variable, but not one that its bounds exclude; bounds and estimates as they are defined.
TEST_F(Branching, children_of_a_variable_have_its_sides_bounds_and_estimates)
{
    LpModel lp;
    lp_add_var(&lp, 1, 2, 5, 'I');
    open(lp);
    SearchWorker *worker = state->Workers.data[0];
    TreeNode *node = worker->Active.data[0];
    NodeData *data = node->Data;
    data->LowerBound = 10;
    data->LPObjective = 10.5;
    data->Estimate = 20;
    const auto child = [&](const BranchCandidate &candidate, size_t which) {
        Children children;
        EXPECT_EQ(make_children(worker, node, candidate, &children), 0);
        NodeData of = {};
        char sense = 'N';
        double value = 0;
        for (int k = 0; k < children.Count; k++) {
            TreeNode *one = children.Node[k];
            if (k == static_cast<int>(which)) {
                of = *one->Data;
                sense = node_changes(one)[0].Sense;
                value = node_changes(one)[0].Value;
            }
        }
        EXPECT_TRUE(sense == 'N' || sense == of.BranchSense);
        node->Children++, data->PayloadChildren++; // it stays
        for (int k = 0; k < children.Count; k++)
            EXPECT_EQ(
                node_release(children.Node[k], &state->Store, &state->Root, RELEASE_FREE),
                0);
        node->Children--, data->PayloadChildren--;
        return std::tuple{sense, value, of.LowerBound, of.Estimate};
    };
    using Side = std::tuple<char, double, double, double>;
    // without pseudo-costs: 1e-6 both ways
    EXPECT_EQ(child({0, 3.25, 9, 12, 0, 0, false, false}, 0), Side('<', 3, 10, 20));
    EXPECT_EQ(child({0, 3.25, 9, 12, 0, 0, false, false}, 1),
              Side('>', 4, 12, 21.5 - 1e-6));
    EXPECT_EQ(child({0, 5 - 1e-7, 9, 9, 0, 0, false, false}, 1),
              Side('N', 0, 0, 0)); // floor 5
    EXPECT_EQ(child({0, 1.5, 9, 9, 0, 0, false, false}, 0), Side('>', 2, 10, 20));
    pseudo_update(&state->Costs, 0, -1, 8);
    pseudo_update(&state->Costs, 0, 1, 2);
    EXPECT_EQ(child({0, 3.25, 9, 9, 0, 0, false, false}, 0),
              Side('<', 3, 10, 20 + 2 - 1.5));
    EXPECT_EQ(child({0, 3.25, 9, 9, 0, 0, false, false}, 1), Side('>', 4, 10, 20));
}
