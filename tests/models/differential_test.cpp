// differential_test.cpp -- the same model by different ways to solve it must give the same answer
//
// Models of all generated families. Every optimal answer passes the optimality checker, every planted truth must be
// found, and where there are two ways to solve one model (methods, reductions, changes against a fresh start, a copy, a
// second run, threads side by side) both must agree. Given bases are those of fuzz/api_query.cpp and model_update_test.
//   TARVEX_DIFFERENTIAL_COUNT=n    models per test (104)
#include "model/model.h"
#include "models/changes.h"
#include "simplex/sopt.h"
#include "support/structured_gen.h"
#include <array>
#include <thread>

namespace
{
struct Subject {
    int seed = 0;
    const char *family = "";
    GeneratedLp g;
    std::string text() const
    {
        return std::string(family) + " seed " + std::to_string(seed) + "\n";
    }
};
} // namespace

static int subject_count()
{
    return campaign("TARVEX_DIFFERENTIAL_COUNT", 104);
}

static Subject make_subject(int seed, Dice *dice)
{
    const FamilyRow &family = all_families()[size_t(seed) % all_families().size()];
    const int size = dice->chance(80) ? dice->range(3, 30) : dice->range(30, 90);
    return {.seed = seed, .family = family.name, .g = family.generate(dice, size)};
}

static Settings method(int lp_method, int presolve)
{
    return {{"LPMethod", lp_method}, {"Presolve", presolve}};
}

// Solves; the text of whatever is wrong by itself (errors, an optimum that is none).
static std::string solve_checked(TVXmodel *model, const LpModel *lp, LpSolution *solution)
{
    if (const int error = lp_solve(model, solution))
        return formatted("error %d: %s", error, TVXgetmerrormsg(model));
    return solution->status == TVX_OPTIMAL ? judge_optimal(lp, solution) : "";
}

static std::string differs(const LpSolution &a, const LpSolution &b)
{
    const bool same =
        a.status == b.status && a.iterations == b.iterations && a.x == b.x && a.pi == b.pi;
    return same ? "" : "another outcome";
}

// Empty when the planted truth is found.
static std::string truth_missed(const GeneratedLp &g, const LpSolution &s, bool presolve)
{
    static constexpr int STATUS[] = {TVX_OPTIMAL, TVX_INFEASIBLE,
                                     TVX_UNBOUNDED}; // by Truth
    const int expected = STATUS[size_t(g.truth)];
    const bool either = presolve && expected != TVX_OPTIMAL && s.status == TVX_INF_OR_UNBD;
    if (either || s.status == expected) return "";
    return formatted("status %d, planted %d", s.status, expected);
}

// Settings of any kind, with presolve in all its parts.
static Settings draw_settings(Dice *dice)
{
    // clang-format off
    const std::pair<const char *, std::vector<double>> table[] = {
        {"Presolve", {-1, 1, 2}}, {"Aggregate", {0, 1, 1}}, {"PrePasses", {0, 1, -1, -1}},
        {"TARV_PAR_PRELIMIT", {2e9, 2e9, double(dice->range(0, 40))}}, {"TARV_PAR_PREBOUND", {0, 1, 1}},
        {"TARV_PAR_PREPARALLEL", {0, 1, 1}}, {"PreDepRow", {-1, -1, 0, 1}}, {"PreDual", {-1, -1, 0, 1, 2}},
        {"TARV_PAR_PRETWOROWS", {-1, 0, 1, 2}}, {"TARV_PAR_PRESINGLECOL", {-1, -1, 0, 1}}};
    // clang-format on
    Settings settings = settings_draw(dice);
    for (const auto &[name, values] : table)
        settings.emplace_back(name, dice->pick(values));
    return settings;
}

// By either method, plain and with presolve under any settings; postsolve hardly ever leaves work to be done.
TEST(Differential, all_methods_and_reductions_find_the_planted_truth)
{
    constexpr int DRAWS = 6;
    const TestEnv env;
    double iterations = 0, clean_up = 0;
    for (int seed = 0; seed < subject_count(); seed++) {
        Dice dice(seed);
        const Subject s = make_subject(seed, &dice);
        std::vector<Settings> ways = {method(0, 0), method(1, 0), method(0, -1),
                                      method(1, -1)};
        for (int k = 0; k < DRAWS; k++) ways.push_back(draw_settings(&dice));
        for (size_t k = 0; k < ways.size(); k++) {
            SCOPED_TRACE(s.text() + settings_text(ways[k]));
            const bool presolve = k > 1;
            const TestModel model(lp_load(env.env, &s.g.lp, ways[k]));
            LpSolution solution;
            ASSERT_EQ(solve_checked(model, &s.g.lp, &solution), "")
                << lp_to_mps(&s.g.lp, "");
            ASSERT_EQ(truth_missed(s.g, solution, presolve), "") << lp_to_mps(&s.g.lp, "");
            if (solution.status == TVX_OPTIMAL)
                (presolve ? clean_up : iterations) += model->lp.simplex->NPvt;
        }
    }
    EXPECT_LE(clean_up, 0.002 * iterations + 1);
}

TEST(Differential, solves_after_changes_agree_with_fresh_ones)
{
    const TestEnv env;
    for (int seed = 0; seed < subject_count(); seed++) {
        Dice dice(seed + 1000000);
        const Subject s = make_subject(seed, &dice);
        SCOPED_TRACE(s.text());
        const int presolve = dice.chance(70) ? 0 : -1;
        expect_agreement_through_changes(&dice, lp_load(env.env, &s.g.lp),
                                         {{"Presolve", presolve}});
        ASSERT_FALSE(testing::Test::HasFatalFailure());
    }
}

// Loads, solves, changes and solves again; what is wrong, and both outcomes.
static std::string play(TVXenv *env, const LpModel &lp, const Settings &settings,
                        LpSolution outcomes[2])
{
    const TestModel model(lp_load(env, &lp, settings)), copy(TVXcopymodel(model));
    if (!model || !copy) return "load failed";
    LpSolution again;
    std::string wrong = solve_checked(model, &lp, &outcomes[0]) +
                        solve_checked(copy, &lp, &again) + differs(outcomes[0], again);
    if (TVXresetmodel(model)) wrong += "no reset";
    wrong += solve_checked(model, &lp, &again) + differs(outcomes[0], again);
    if (lp.num_vars() > 0 && TVXsetdblattrelement(model, "Obj", 0, 3))
        wrong += "change failed";
    return lp_solve(model, &outcomes[1]) ? TVXgetmerrormsg(model) : wrong;
}

// Whoever solves: a model, its copy, the same after a reset, and several environments side by side in threads.
TEST(Differential, copies_second_runs_and_threads_do_exactly_the_same)
{
    constexpr size_t THREADS = 3;
    const size_t count = size_t(subject_count());
    std::vector<std::array<LpSolution, 2>> outcomes[THREADS];
    std::string wrong[THREADS];
    const auto run = [&](size_t t) {
        const TestEnv env;
        outcomes[t].resize(count);
        for (size_t k = 0; k < count; k++) {
            const size_t number = (k + 7 * t) % count;
            Dice dice(number + 8000000);
            const Subject s = make_subject(int(number), &dice);
            const Settings settings = settings_draw(&dice);
            const std::string told =
                play(env.env, s.g.lp, settings, outcomes[t][number].data());
            if (!told.empty()) wrong[t] += s.text() + settings_text(settings) + told + "\n";
        }
    };
    std::vector<std::thread> threads;
    for (size_t t = 0; t < THREADS; t++) threads.emplace_back(run, t);
    for (std::thread &thread : threads) thread.join();
    for (size_t t = 0; t < THREADS; t++) {
        EXPECT_EQ(wrong[t], "");
        for (size_t k = 0; k < count; k++)
            for (const int leg : {0, 1})
                EXPECT_EQ(differs(outcomes[t][k][leg], outcomes[0][k][leg]), "") << k;
    }
}
