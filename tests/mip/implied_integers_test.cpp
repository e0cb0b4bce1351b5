// implied_integers_test.cpp -- continuous columns that are integral anyway, and the grid of objectives that they allow
#include "mip/implied_integers.h"
#include "mip/semi.h"
#include "support/dice.h"
#include "support/mip_oracle.h"
#include "support/model_test.h"
#include <cmath>

namespace
{
struct ImpliedIntegers : ModelTest {
    // What is found in the model as it stands: a letter per column, '.' not, 'a' always, 'o' optimal.
    std::string found(const Settings &settings = {})
    {
        ObjectiveGrid grid;
        return found(settings, &grid);
    }
    std::string found(const Settings &settings, ObjectiveGrid *grid)
    {
        EXPECT_EQ(settings_apply(own(), settings), 0);
        MIPState state;
        state.Body = model->body;
        state.Env = own();
        state.Recursive = true;
        EXPECT_EQ(propagation_rows_of_body(&state.Rows, model->body), 0);
        EXPECT_EQ(array_assign(&state.IsInteger, model->body->numvars, char{0}), 0);
        for (int j = 0; j < model->body->vtypes.size; j++)
            state.IsInteger[j] = model->body->vtypes[j] != 'C';
        EXPECT_EQ(find_implied_integers(&state), 0);
        *grid = objective_grid(model->body, state.Implied.data);
        propagation_rows_free(state.Rows);
        std::string letters;
        for (const char implied : state.Implied)
            letters += ".ao"[static_cast<int>(implied)];
        return letters;
    }
    std::string found(const std::string &text, const Settings &settings = {})
    {
        load(text);
        return found(settings);
    }
};

// Integers and continuous columns in rows that are nearly, or really, those of a network.
LpModel network_like(Dice *dice)
{
    LpModel lp;
    std::vector<int> integers, others;
    for (int k = dice->range(1, 3); k > 0; k--)
        integers.push_back(lp_add_var(&lp, dice->range(-3, 6), 0, dice->range(1, 3), 'I'));
    const int m = dice->range(1, 4);
    std::vector<std::vector<std::pair<int, double>>> rows(static_cast<size_t>(m));
    for (int k = dice->range(1, 4); k > 0; k--) {
        const double low = dice->chance(70) ? 0 : dice->range(-2, 0),
                     high = dice->chance(90) ? dice->range(1, 4) : 2.5;
        const int j = lp_add_var(&lp, dice->range(-2, 4), low, high);
        const double sign = dice->chance(50) ? 1 : -1, odd = dice->chance(8) ? 2 : 1;
        rows[static_cast<size_t>(dice->range(0, m - 1))].emplace_back(j, sign * odd);
        if (dice->chance(70))
            rows[static_cast<size_t>(dice->range(0, m - 1))].emplace_back(
                j, dice->chance(80) ? -sign : sign);
    }
    for (auto &row : rows) {
        for (const int j : integers)
            if (dice->chance(60)) row.emplace_back(j, dice->range(-3, 3));
        const double unit = dice->chance(80) ? 1 : dice->pick<double>({0.5, 2, 10});
        for (auto &entry : row) entry.second *= unit;
        lp_add_row_entries(&lp, row, "<>="[dice->range(0, 2)],
                           unit * (dice->chance(95) ? dice->range(-2, 6) : 1.5));
    }
    return lp;
}
} // namespace

TEST_F(ImpliedIntegers, an_equation_with_whole_multiples_fixes_a_column_for_all_points)
{
    EXPECT_EQ(found("min x st 2x-4i-6k=8 general i k"), "a..");
    EXPECT_EQ(found("min x st 2x-i-k=0 general i k"), "...");    // half of a sum
    EXPECT_EQ(found("min x st 2x-4i=3 general i"), "..");        // a side between
    EXPECT_EQ(found("min x st x-i+y=0 general i"), "...");       // two of them
    EXPECT_EQ(found("min x st x-i>=0\nx<=2.5 general i"), ".."); // no equation, odd side
    EXPECT_EQ(found("min x st x-2i=0\ny-x-i=1\nw-y<=0 bounds w<=2.5 general i"), "a.a.");
    EXPECT_EQ(found("min x st x-2i=0 general i", {{"TARV_PAR_IMPLIEDINT", 0}}), "..");
}

TEST_F(ImpliedIntegers, a_column_alone_among_integers_is_integral_at_an_optimum)
{
    EXPECT_EQ(found("min x st x-i>=0\nx+2i>=1 general i"), "o.");
    EXPECT_EQ(found("min x st x-i>=0.5 general i"), "..");
    EXPECT_EQ(found("min x st x-i>=0 bounds x<=2.5 general i"), "..");
    EXPECT_EQ(found("min x st 3x-i>=0 general i"), "..");
    EXPECT_EQ(found("min x st x-i>=0\nx+y>=1 general i"), "..."); // y is beside it
    EXPECT_EQ(found("min x st x-i>=0 general i", {{"TARV_PAR_DUALREDUCTION", 0}}), "..");
}

TEST_F(ImpliedIntegers, a_network_needs_rows_of_one_size_and_signs_that_fit)
{
    const Settings network = {{"TARV_PAR_IMPLIEDINT", 0}, {"TARV_PAR_NETIMPLIED", 1}};
    EXPECT_EQ(found("min x+y st x+y-i>=0\nx-y<=1 general i", network), "..."); // odd cycle
    EXPECT_EQ(found("min x+y st x+y-i>=0\nx+y<=4 general i", network), "oo.");
    EXPECT_EQ(found("min x+y st 2x-2y-4i>=0\n5y-5x<=10 general i", network), "oo.");
    EXPECT_EQ(found("min x+y st x+y-i>=0\nx+y<=4\n2x+w<=7 general i", network), "....");
    EXPECT_EQ(found("min x+y st x+y-i>=0 bounds x<=1.5 general i", network), "...");
    EXPECT_EQ(found("min x+y st x+y-.5i>=0 general i", network), "...");
}

// The exact optimum is a value of the grid, and columns that are always integral are.
TEST_F(ImpliedIntegers, the_optimum_is_on_the_grid)
{
    int loose = 0, always = 0;
    for (int seed = 0; seed < campaign("TARVEX_IMPLIED_COUNT", 1500); seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        const LpModel lp = network_like(&dice);
        const MipTruth truth = mip_truth(&lp);
        if (truth.status != MipStatus::OPTIMAL) continue;
        load(lp);
        ObjectiveGrid grid;
        const std::string letters = found(
            {{"TARV_PAR_IMPLIEDINT", dice.range(0, 1)}, {"TARV_PAR_NETIMPLIED", 1}}, &grid);
        for (size_t j = 0; j < letters.size(); j++) {
            if (letters[j] != 'a') continue;
            always++;
            EXPECT_EQ(truth.x[j].get_den(), 1) << seed;
        }
        if (grid.Step <= 0) continue;
        loose += grid.Loose;
        const mpq_class steps = (truth.value - grid.Constant) / grid.Step;
        ASSERT_EQ(steps.get_den(), 1) << "seed " << seed << "\n" << lp_to_mps(&lp, letters);
    }
    EXPECT_GT(loose, 100);
    EXPECT_GT(always, 10);
}

TEST_F(ImpliedIntegers, an_incumbent_between_two_values_leaves_the_next_one)
{
    ObjectiveGrid grid;
    grid.Step = 1;
    EXPECT_LT(prune_value_of_incumbent(grid, 3), 2.1); // 2 is next
    grid.Loose = true;
    EXPECT_LT(prune_value_of_incumbent(grid, 3), 2.1);
    EXPECT_GT(prune_value_of_incumbent(grid, 3), 2);
    EXPECT_GT(prune_value_of_incumbent(grid, 2.4), 2);
    EXPECT_LT(prune_value_of_incumbent(grid, 2.4), 2.1);
    EXPECT_EQ(prune_value_of_incumbent(grid, 1e100), 1e100);
}

// A value beyond its bound by a rounding error has nothing on its other side.
TEST(NearInteger, is_branched_on_within_its_bounds)
{
    EXPECT_EQ(near_integer(2 + 1e-7, 0, 5), 2.5);
    EXPECT_EQ(near_integer(2 - 1e-7, 0, 5), 1.5);
    EXPECT_EQ(near_integer(1 + 1e-10, 0, 1), 0.5);
    EXPECT_EQ(near_integer(-1e-10, 0, 1), 0.5);
    EXPECT_EQ(near_integer(3 + 1e-9, -1e30, 3), 2.5);
}

// The start is 4, the grid makes 3 next, and a row that comes at the first node leaves 3.4.
TEST_F(ImpliedIntegers, rows_from_callbacks_end_what_only_optimal_points_have)
{
    load("min x+4i st x+i>=3 bounds i<=2 general i");
    ASSERT_EQ(settings_apply(own(), {{"Presolve", 0}, {"MIPGap", 0}}), 0);
    const double start[] = {4, 0};
    ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, 2, const_cast<double *>(start)), 0);
    const auto cut = [](TVXmodel *, void *data, int where, void *done) {
        if (where != TVX_WHERE_NODE || *static_cast<bool *>(done)) return 0;
        *static_cast<bool *>(done) = true;
        const int ind[] = {0};
        const double val[] = {1};
        return TVXcbcut(data, 1, ind, val, '>', 3.4);
    };
    bool done = false;
    ASSERT_EQ(TVXsetcallbackfunc(model, cut, &done), 0);
    EXPECT_NEAR(objective(), 3.4, 1e-9);
    EXPECT_TRUE(done);
    EXPECT_EQ(integer("Status"), TVX_OPTIMAL);
}
