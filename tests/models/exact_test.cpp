// exact_test.cpp -- tiny LPs, and LPs on which floating point goes wrong, under drawn settings, against exact arithmetic
//
// TARVEX_TINY_COUNT=n      how many tiny models (20000; a campaign takes some 100000)
// TARVEX_TINY_SEED=s       the first of them (0)
// TARVEX_TINY_SIZE=n       the most rows and columns (8)
// TARVEX_HOSTILE_COUNT=n   models a family, of the tall ones half as many (300; a campaign takes thousands)
// TARVEX_HOSTILE_SEED=s    the first of each family (0)
// A third of the tiny ones has a cutoff near the optimum, which ends the solve only when no point is better; models that
// change are those of fuzz/corpus_test.cpp. Every fourth hostile model is solved at the defaults, the others under
// settings_draw. A failing case is printed as MPS with what is wrong and its settings. Violations that a warning names,
// and values that the tolerances explain, are no failures; in the wild family only unbounded claims and runs without end
// count: its numbers leave a double no digit for the rest.
#include "support/hostile_gen.h"
#include "support/hostile_judge.h"
#include "support/model_gen.h"
#include "support/solve_judge.h"
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

static constexpr int MAX_FAILURES = 3; // of the tiny ones, and of a family
static constexpr int CUTOFF_PERCENT = 33;
static constexpr int DEFAULTS_EVERY = 4;
static constexpr uint64_t SETTINGS_SEED = 7000000; // not the choices of the model

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

// Infeasible and unbounded are claims; one that exact arithmetic refutes is wrong whatever the numbers.
static bool is_failure(const HostileFamily &family, Verdict verdict)
{
    if (family.generate != hostile_wild) return verdict_wrong(verdict);
    static constexpr Verdict FAILURES[] = {Verdict::FALSE_UNBOUNDED, Verdict::RUNAWAY,
                                           Verdict::SLOW, Verdict::OTHER};
    return std::find(std::begin(FAILURES), std::end(FAILURES), verdict) !=
           std::end(FAILURES);
}

static std::string judge_seed(TVXenv *env, const HostileFamily &family, uint64_t seed)
{
    Dice dice(SETTINGS_SEED + seed);
    Settings settings;
    if (seed % DEFAULTS_EVERY != 0) settings = settings_draw(&dice);
    const HostileModel h = hostile_generate(family, seed);
    HostileTruth truth(&h.lp);
    const HostileOutcome outcome = hostile_solve(env, &h.lp, settings);
    const HostileJudgement j = hostile_judge(&truth, &outcome);
    if (!is_failure(family, j.verdict)) return "";
    return std::string(verdict_name(j.verdict)) + ": " + j.text + "\n" + h.name + "\n" +
           lp_to_mps(&h.lp, settings_text(settings));
}

class Hostile : public testing::TestWithParam<size_t>
{
};

TEST_P(Hostile, every_answer_is_right_by_exact_arithmetic)
{
    const TestEnv env;
    const HostileFamily &family = hostile_families()[GetParam()];
    const uint64_t first = campaign("TARVEX_HOSTILE_SEED", 0),
                   all = campaign("TARVEX_HOSTILE_COUNT", 300),
                   count = family.generate == hostile_tall ? all / 2 : all;
    int failures = 0;
    for (uint64_t seed = first; seed < first + count && failures < MAX_FAILURES; seed++) {
        const std::string wrong = judge_seed(env.env, family, seed);
        failures += !wrong.empty();
        EXPECT_EQ(wrong, "");
    }
}

INSTANTIATE_TEST_SUITE_P(Families, Hostile,
                         testing::Range<size_t>(0, hostile_families().size()),
                         [](const testing::TestParamInfo<size_t> &family) {
                             return std::string(hostile_families()[family.param].name);
                         });
