// parallel_use_test.cpp -- environments and models side by side in many threads do not disturb each other
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>
#include <thread>

static constexpr int THREADS = 4;
static constexpr int MODELS = 26; // two of each family

static GeneratedLp model_number(int k)
{
    const size_t family = static_cast<size_t>(k) % all_families().size();
    Dice dice(static_cast<uint64_t>(k));
    return all_families()[family].generate(&dice, 25);
}

static Settings settings_number(int k)
{
    Dice dice(static_cast<uint64_t>(k) + 500);
    return settings_draw(&dice);
}

// Loads, changes, solves and reads model k in the given environment.
static std::string solve_number(TVXenv *env, int k, LpSolution *solution)
{
    const GeneratedLp g = model_number(k);
    const TestModel model(lp_load(env, &g.lp));
    if (!model || settings_apply(TVXgetenv(model), settings_number(k)))
        return "load failed";
    if (lp_solve(model, solution)) return TVXgetmerrormsg(model);
    if (solution->status == TVX_OPTIMAL) {
        const std::string wrong = judge_optimal(&g.lp, solution);
        if (!wrong.empty()) return wrong;
    }
    if (TVXsetdblattrelement(model, "Obj", 0, 3)) return "change failed";
    return lp_solve(model, solution) ? TVXgetmerrormsg(model) : "";
}

static void expect_same(const LpSolution &a, const LpSolution &b, int k)
{
    EXPECT_EQ(a.status, b.status) << k;
    EXPECT_EQ(a.iterations, b.iterations) << k;
    EXPECT_EQ(a.x, b.x) << k;
    EXPECT_EQ(a.pi, b.pi) << k;
}

static std::vector<LpSolution> solve_one_by_one()
{
    std::vector<LpSolution> alone(MODELS);
    for (int k = 0; k < MODELS; k++) {
        const TestEnv env;
        EXPECT_EQ(solve_number(env.env, k, &alone[k]), "") << k;
    }
    return alone;
}

TEST(ParallelUse, an_environment_per_thread)
{
    const std::vector<LpSolution> alone = solve_one_by_one();
    std::vector<std::thread> threads;
    std::vector<std::vector<LpSolution>> found(THREADS, std::vector<LpSolution>(MODELS));
    std::vector<std::string> wrong(THREADS);
    for (size_t t = 0; t < THREADS; t++)
        threads.emplace_back([&, t] {
            const TestEnv env;
            for (int k = 0; k < MODELS; k++) {
                const int model = (k + static_cast<int>(t) * 7) % MODELS;
                wrong[t] += solve_number(env.env, model, &found[t][model]);
            }
        });
    for (std::thread &thread : threads) thread.join();
    for (size_t t = 0; t < THREADS; t++) {
        EXPECT_EQ(wrong[t], "");
        for (int k = 0; k < MODELS; k++) expect_same(found[t][k], alone[k], k);
    }
}
