// tiny_lp_test.cpp -- many tiny LPs under random settings, against the exact judge
//
// TARVEX_TINY_COUNT=n   how many models (20000; a campaign takes some 100000)
// TARVEX_TINY_SEED=s    the first of them (0)
// TARVEX_TINY_SIZE=n    the most rows and columns (8)
// A failing case is printed as MPS with its settings and seed.
#include "support/model_edit.h"
#include "support/model_gen.h"
#include "support/solve_judge.h"
#include <gtest/gtest.h>

static constexpr int MAX_FAILURES = 5;
static constexpr int ROUNDS = 4; // solves of a model that changes

// One case; the text of a failure, or empty.
static std::string try_seed(TVXenv *env, uint64_t seed)
{
    Dice dice(seed);
    const int size = campaign("TARVEX_TINY_SIZE", 8);
    const LpModel lp = gen_tiny(&dice, TinyLimits{.max_vars = size, .max_rows = size});
    const Settings settings = settings_draw(&dice);
    const std::string wrong = solve_and_judge(env, &lp, settings);
    if (wrong.empty()) return "";
    return wrong + "\nTARVEX_TINY_SEED=" + std::to_string(seed) + "\n" +
           lp_to_mps(&lp, settings_text(settings));
}

// A model that is solved, changed and solved again several times, judged each time; the text of the first failure.
static std::string try_changes(TVXenv *env, uint64_t seed)
{
    Dice dice(seed);
    LpModel lp = gen_tiny(&dice, TinyLimits{.max_vars = 5, .max_rows = 4});
    const TestModel model(lp_load(env, &lp));
    TVXenv *own = TVXgetenv(model);
    std::string story = "\nTARVEX_TINY_SEED=" + std::to_string(seed) + "\n";
    for (int round = 0; round < ROUNDS; round++) {
        const Settings settings = settings_draw(&dice);
        if (settings_apply(own, settings)) return "settings refused" + story;
        story += settings_text(settings) + "\n";
        LpSolution solution;
        if (const int error = lp_solve(model, &solution))
            return "error " + std::to_string(error) + story;
        const RationalResult truth = rational_solve(&lp);
        const std::string wrong = judge_exact(&lp, &truth, true, &solution);
        if (!wrong.empty()) return wrong + story + lp_to_mps(&lp, "");
        for (int k = dice.range(1, 3); k > 0; k--) {
            story += edit_randomly(&dice, &lp, model) + "\n";
            if (TVXupdatemodel(model)) return "update failed" + story;
        }
    }
    return "";
}

TEST(TinyLp, status_and_value_are_right_after_changes)
{
    const TestEnv env;
    const uint64_t first = campaign("TARVEX_TINY_SEED", 0),
                   count = campaign("TARVEX_TINY_COUNT", 20000) / ROUNDS;
    int failures = 0;
    for (uint64_t seed = first; seed < first + count && failures < MAX_FAILURES; seed++) {
        const std::string wrong = try_changes(env.env, seed);
        failures += !wrong.empty();
        EXPECT_EQ(wrong, "");
    }
}

TEST(TinyLp, status_and_value_are_right_under_any_settings)
{
    const TestEnv env;
    const uint64_t first = campaign("TARVEX_TINY_SEED", 0),
                   count = campaign("TARVEX_TINY_COUNT", 20000);
    int failures = 0;
    for (uint64_t seed = first; seed < first + count && failures < MAX_FAILURES; seed++) {
        const std::string wrong = try_seed(env.env, seed);
        failures += !wrong.empty();
        EXPECT_EQ(wrong, "");
    }
}
