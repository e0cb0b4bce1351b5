// tiny_lp_test.cpp -- many tiny LPs under random settings, against the exact judge
//
// TARVEX_TINY_COUNT=n   how many models (20000; a campaign takes some 100000)
// TARVEX_TINY_SEED=s    the first of them (0)
// TARVEX_TINY_SIZE=n    the most rows and columns (8)
// A third of the solves has a cutoff near the optimum, which ends it only when no point is better. A failing case is
// printed as MPS with its settings and seed. Models that change are those of fuzz/corpus_test.cpp.
#include "support/model_gen.h"
#include "support/solve_judge.h"
#include <cmath>
#include <gtest/gtest.h>

static constexpr int MAX_FAILURES = 5;
static constexpr int CUTOFF_PERCENT = 33;

// One case; the text of a failure, or empty.
static std::string try_seed(TVXenv *env, uint64_t seed)
{
    Dice dice(seed);
    const int size = campaign("TARVEX_TINY_SIZE", 8);
    const LpModel lp = gen_tiny(&dice, TinyLimits{.max_vars = size, .max_rows = size});
    const RationalResult truth = rational_solve(&lp);
    Settings settings = settings_draw(&dice);
    if (dice.chance(CUTOFF_PERCENT)) {
        const double optimum =
            truth.status == LpStatus::OPTIMAL ? truth.value.get_d() : dice.range(-9, 9);
        const double step = dice.pick<double>({-1, -1e-3, 0, 1e-3, 1});
        settings.emplace_back("Cutoff", optimum + step * (1 + std::fabs(optimum)));
    }
    const std::string wrong = solve_and_judge(env, &lp, &truth, settings);
    if (wrong.empty()) return "";
    return wrong + "\nTARVEX_TINY_SEED=" + std::to_string(seed) + "\n" +
           lp_to_mps(&lp, settings_text(settings));
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
