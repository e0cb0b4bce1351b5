// lp_auxiliary_test.cpp -- start bases of large models from an auxiliary problem
#include "lp/lp_auxiliary.h"
#include "runtime/memory.h"
#include "simplex/simplex.h"
#include "support/model_test.h"
#include <algorithm>

namespace
{
constexpr int CORE_ROWS = 40, SIDE_ROWS = 960, CORE_COLS = 900, BOXED_COLS = 100000;

// Goods that can be bought, and turned into each other with losses; one is in demand. Prices y make all of that pay
// nothing, so that the model is bounded, but many costs are negative. The boxed variables never pay, and nothing
// tells so before the prices are known.
LpModel trading()
{
    Dice dice(7);
    LpModel lp;
    std::vector<double> y(CORE_ROWS);
    for (double &price : y) price = dice.real(5, 50);
    for (int i = 0; i < CORE_ROWS; i++) lp_add_row(&lp, '=', i == 0 ? 5 : 0);
    for (int i = 0; i < SIDE_ROWS; i++) lp_add_row(&lp, '<', 10);
    const auto convert = [&](double loss, double upper) {
        const int from = dice.range(0, CORE_ROWS - 1),
                  to = (from + dice.range(1, CORE_ROWS - 1)) % CORE_ROWS;
        const double gain = dice.real(0.7, 0.95);
        const int j = lp_add_var(&lp, gain * y[to] - y[from] + loss, 0, upper);
        lp_set_entry(&lp, from, j, -1);
        lp_set_entry(&lp, to, j, gain);
        return j;
    };
    for (int i = 0; i < CORE_ROWS; i++)
        lp_set_entry(&lp, i, lp_add_var(&lp, y[i] + dice.real(0, 5), 0, LP_INFINITY), 1);
    for (int k = 0; k < CORE_COLS; k++) convert(dice.real(0, 5), LP_INFINITY);
    for (int k = 0; k < BOXED_COLS; k++)
        lp_set_entry(&lp, CORE_ROWS + k % SIDE_ROWS, convert(20 + dice.real(0, 5), 1), 1);
    return lp;
}

struct LpAuxiliary : ModelTest {
    void SetUp() override { load(trading()); }
    // The code of a start that counts so many iterations before it.
    int begin(SimplexMethod method, double done, AuxiliaryStart *start)
    {
        LpStart run;
        run.method = method;
        return lp_auxiliary_start(model->body, model->env, run, done, start);
    }
};
} // namespace

TEST_F(LpAuxiliary, gives_either_method_a_basis)
{
    const int n = integer("NumVars"), m = integer("NumConstrs");
    for (const SimplexMethod method : {METHOD_PRIMAL, METHOD_DUAL}) {
        AuxiliaryStart start;
        ASSERT_EQ(begin(method, 0, &start), 0);
        ASSERT_EQ(start.statuses.size, n + m) << method;
        EXPECT_EQ(std::count_if(start.statuses.begin(), start.statuses.end(),
                                [](int status) { return status >= 0; }),
                  m);
    }
}

// From the start of the dual's auxiliary problem to the optimum; a limit holds for both together.
TEST_F(LpAuxiliary, its_iterations_count_and_the_solve_ends_at_an_optimum)
{
    ASSERT_EQ(TVXsetdblparam(own(), "IterationLimit", 3), 0);
    AuxiliaryStart stopped;
    ASSERT_EQ(begin(METHOD_DUAL, 1, &stopped), 0);
    EXPECT_EQ(stopped.iterations, 2);
    EXPECT_EQ(stopped.statuses.size, 0);
    EXPECT_EQ(solved(), TVX_ITERATION_LIMIT);
    EXPECT_EQ(dbl("IterCount"), 3);
    ASSERT_EQ(TVXsetdblparam(own(), "IterationLimit", 1e100), 0);
    ASSERT_EQ(TVXresetmodel(model), 0);
    EXPECT_EQ(solved(), TVX_OPTIMAL);
    EXPECT_LE(dbl("ConstrVio"), 1e-6);
    EXPECT_LE(dbl("DualVio"), 1e-6);
}

#ifdef TVX_DEBUG
TEST_F(LpAuxiliary, without_memory_says_so_and_holds_nothing)
{
    bool refused = true;
    for (int64_t k = 1; refused; k *= 2) {
        const int64_t before = mem_blocks_held();
        AuxiliaryStart start;
        mem_fault_arm(k);
        const int code = begin(METHOD_DUAL, 0, &start);
        refused = mem_fault_hits() > 0;
        mem_fault_arm(0);
        EXPECT_EQ(code, refused ? TVX_ERROR_OUT_OF_MEMORY : 0) << k;
        EXPECT_TRUE(!refused || mem_blocks_held() == before) << k;
    }
}
#endif
