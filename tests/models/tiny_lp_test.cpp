// tiny_lp_test.cpp -- many tiny LPs under random settings, against the exact judge
//
// TARVEX_TINY_COUNT=n   how many models (20000; a campaign takes some 100000)
// TARVEX_TINY_SEED=s    the first of them (0)
// TARVEX_TINY_SIZE=n    the most rows and columns (8)
// A failing case is shrunk and printed as MPS with its settings and seed.
#include "support/model_gen.h"
#include "support/shrink.h"
#include "support/solve_judge.h"
#include <cstdlib>
#include <gtest/gtest.h>

static constexpr int MAX_FAILURES = 5; // each is shrunk, which takes a while

static uint64_t from_environment(const char *name, uint64_t otherwise)
{
    const char *text = getenv(name);
    return text ? strtoull(text, nullptr, 10) : otherwise;
}

// One case; the text of a shrunk failure, or empty.
static std::string try_seed(TVXenv *env, uint64_t seed)
{
    Dice dice(seed);
    const int size = static_cast<int>(from_environment("TARVEX_TINY_SIZE", 8));
    LpModel lp = gen_tiny(&dice, TinyLimits{.max_vars = size, .max_rows = size});
    Settings settings = settings_draw(&dice);
    if (solve_and_judge(env, &lp, settings).empty()) return "";
    shrink(&lp, &settings, [env](const LpModel &smaller, const Settings &fewer) {
        return !solve_and_judge(env, &smaller, fewer).empty();
    });
    return solve_and_judge(env, &lp, settings) +
           "\nTARVEX_TINY_SEED=" + std::to_string(seed) + "\n" +
           lp_to_mps(&lp, settings_text(settings));
}

TEST(TinyLp, status_and_value_are_right_under_any_settings)
{
    const TestEnv env;
    const uint64_t first = from_environment("TARVEX_TINY_SEED", 0),
                   count = from_environment("TARVEX_TINY_COUNT", 20000);
    int failures = 0;
    for (uint64_t seed = first; seed < first + count && failures < MAX_FAILURES; seed++) {
        const std::string wrong = try_seed(env.env, seed);
        failures += !wrong.empty();
        EXPECT_EQ(wrong, "");
    }
}
