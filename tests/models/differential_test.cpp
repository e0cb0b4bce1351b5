// differential_test.cpp -- the same model by different roads must give the same answer
//
// Models of all generated families. Every optimal answer passes the optimality checker, every planted truth must be
// found, and where two roads lead to one model (methods, changes against a fresh start, a copy, a basis
// taken along, a second run) both must agree.
//   TARVEX_DIFFERENTIAL_COUNT=n    models per test (104)
#include "fuzz/api_model.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

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
    const FamilyRow &family =
        all_families()[static_cast<size_t>(seed) % all_families().size()];
    const int size = dice->chance(80) ? dice->range(3, 30) : dice->range(30, 90);
    Subject s{.seed = seed, .family = family.name, .g = family.generate(dice, size)};
    return s;
}

static Settings method(int lp_method, int presolve)
{
    return {{"LPMethod", lp_method}, {"Presolve", presolve}};
}

// Solves; the text of whatever is wrong by itself (errors, an optimum that is none).
static std::string solve_checked(TVXmodel *model, const LpModel *lp, LpSolution *solution)
{
    if (const int error = lp_solve(model, solution))
        return "error " + std::to_string(error) + ": " + TVXgetmerrormsg(model);
    return solution->status == TVX_OPTIMAL ? judge_optimal(lp, solution) : "";
}

static std::string solve_fresh(TVXenv *env, const LpModel *lp, const Settings &settings,
                               LpSolution *solution)
{
    const TestModel model(lp_load(env, lp));
    if (!model || settings_apply(TVXgetenv(model), settings)) return "load failed";
    return solve_checked(model, lp, solution);
}

static bool truth_met(const GeneratedLp &g, const LpSolution &s, bool presolve)
{
    const bool either = presolve && s.status == TVX_INF_OR_UNBD;
    switch (g.truth) {
    case Truth::UNKNOWN:
        return true;
    case Truth::INFEASIBLE:
        return s.status == TVX_INFEASIBLE || either;
    case Truth::UNBOUNDED:
        return s.status == TVX_UNBOUNDED || either;
    case Truth::OPTIMAL:
        break;
    }
    return s.status == TVX_OPTIMAL &&
           (!g.has_value || std::abs(s.objval - g.value) <= 1e-6 * (1 + std::abs(g.value)));
}

TEST(Differential, primal_and_dual_find_the_planted_truth)
{
    const TestEnv env;
    for (int seed = 0; seed < subject_count(); seed++) {
        Dice dice(seed);
        const Subject s = make_subject(seed, &dice);
        for (const int presolve : {0, -1})
            for (const int lp_method : {0, 1}) {
                LpSolution solution;
                const std::string wrong =
                    solve_fresh(env.env, &s.g.lp, method(lp_method, presolve), &solution);
                ASSERT_EQ(wrong, "") << s.text() << "method " << lp_method;
                ASSERT_TRUE(truth_met(s.g, solution, presolve != 0))
                    << s.text() << "method " << lp_method << " presolve " << presolve
                    << " status " << solution.status << " value " << solution.objval
                    << " planted " << s.g.value;
            }
    }
}

// A live model goes through random changes; after each few it must agree with a fresh start of the same model by
// the other method.
TEST(Differential, solves_after_changes_agree_with_fresh_ones)
{
    const TestEnv env;
    for (int seed = 0; seed < subject_count(); seed++) {
        Dice dice(seed + 1000000);
        const Subject s = make_subject(seed, &dice);
        LpModel lp = s.g.lp;
        ApiModel live(&dice, lp_load(env.env, &lp));
        live.player.linear = true;
        ASSERT_TRUE(live.from_lp(lp));
        const int presolve = dice.chance(70) ? 0 : -1;
        for (int round = 0; round < 6 && live.to_lp(&lp); round++) {
            SCOPED_TRACE(s.text() + "round " + std::to_string(round));
            const int lp_method = dice.range(0, 1);
            LpSolution warm, fresh;
            ASSERT_EQ(settings_apply(live.env(), method(lp_method, presolve)), 0);
            ASSERT_EQ(solve_checked(live.model, &lp, &warm), "");
            ASSERT_EQ(solve_fresh(env.env, &lp, method(1 - lp_method, 0), &fresh), "");
            ASSERT_EQ(same_outcome(&warm, &fresh), "") << lp_to_mps(&lp, "");
            for (int k = dice.range(1, 3); k > 0; k--) {
                live.player.step();
                live.player.reference.update();
                ASSERT_EQ(live.player.wrong, "");
                if (k == 1) break; // the last change is left to TVXoptimize
                ASSERT_EQ(TVXupdatemodel(live.model), 0);
            }
        }
    }
}

TEST(Differential, an_optimal_basis_taken_along_needs_no_iterations)
{
    const TestEnv env;
    for (int seed = 0; seed < subject_count(); seed++) {
        Dice dice(seed + 3000000);
        const Subject s = make_subject(seed, &dice);
        LpSolution first, second;
        ASSERT_EQ(solve_fresh(env.env, &s.g.lp, method(1, 0), &first), "") << s.text();
        if (first.status != TVX_OPTIMAL) continue;
        const int lp_method = dice.range(0, 1);
        const TestModel model(lp_load(env.env, &s.g.lp));
        ASSERT_TRUE(model);
        ASSERT_EQ(settings_apply(TVXgetenv(model), method(lp_method, 0)), 0);
        ASSERT_EQ(lp_set_basis(model, first.vbasis, first.cbasis), 0);
        ASSERT_EQ(solve_checked(model, &s.g.lp, &second), "")
            << s.text() << "method " << lp_method;
        ASSERT_EQ(same_outcome(&first, &second), "") << s.text();
        ASSERT_EQ(second.iterations, 0) << s.text() << "method " << lp_method;
    }
}

TEST(Differential, a_random_basis_is_as_good_a_start_as_any)
{
    const TestEnv env;
    for (int seed = 0; seed < subject_count(); seed++) {
        Dice dice(seed + 4000000);
        const Subject s = make_subject(seed, &dice);
        const size_t n = s.g.lp.obj.size(), m = s.g.lp.rhs.size();
        std::vector<int> places(n + m), vbasis(n, -1), cbasis(m, -1);
        for (size_t k = 0; k < n + m; k++) places[k] = static_cast<int>(k);
        dice.shuffle(&places);
        if (dice.chance(10) && m > 1) places.resize(m - 1); // one basic too few
        for (size_t j = 0; j < n; j++) vbasis[j] = -dice.range(1, 3);
        for (size_t k = 0; k < std::min(m, places.size()); k++) {
            const size_t v = static_cast<size_t>(places[k]);
            (v < n ? vbasis[v] : cbasis[v - n]) = 0;
        }
        LpSolution solution;
        const int lp_method = dice.range(0, 1), presolve = dice.range(-1, 0);
        const TestModel model(lp_load(env.env, &s.g.lp));
        ASSERT_EQ(settings_apply(TVXgetenv(model), method(lp_method, presolve)), 0);
        ASSERT_EQ(lp_set_basis(model, vbasis, cbasis), 0);
        ASSERT_EQ(solve_checked(model, &s.g.lp, &solution), "") << s.text() << lp_method;
        ASSERT_TRUE(truth_met(s.g, solution, presolve != 0))
            << s.text() << "method " << lp_method << " presolve " << presolve << " status "
            << solution.status << " value " << solution.objval << " planted " << s.g.value;
    }
}

TEST(Differential, copies_and_second_runs_do_exactly_the_same)
{
    const TestEnv env;
    for (int seed = 0; seed < subject_count(); seed++) {
        Dice dice(seed + 8000000);
        const Subject s = make_subject(seed, &dice);
        const Settings settings = settings_draw(&dice);
        const TestModel model(lp_load(env.env, &s.g.lp)), same(lp_load(env.env, &s.g.lp));
        ASSERT_EQ(settings_apply(TVXgetenv(model), settings), 0);
        ASSERT_EQ(settings_apply(TVXgetenv(same), settings), 0);
        const TestModel copy(TVXcopymodel(model));
        ASSERT_TRUE(copy);
        LpModel held;
        ASSERT_EQ(lp_read_back(copy, &held), 0);
        ASSERT_TRUE(lp_same(&held, &s.g.lp)) << s.text();
        LpSolution first, second, third, fourth;
        ASSERT_EQ(solve_checked(model, &s.g.lp, &first), "")
            << s.text() << settings_text(settings);
        ASSERT_EQ(solve_checked(same, &s.g.lp, &second), "") << s.text();
        ASSERT_EQ(solve_checked(copy, &s.g.lp, &third), "") << s.text();
        ASSERT_EQ(TVXresetmodel(model), 0);
        ASSERT_EQ(solve_checked(model, &s.g.lp, &fourth), "") << s.text();
        for (const LpSolution *other : {&second, &third, &fourth}) {
            ASSERT_EQ(first.status, other->status) << s.text() << settings_text(settings);
            ASSERT_EQ(first.iterations, other->iterations)
                << s.text() << settings_text(settings);
            ASSERT_EQ(first.x, other->x) << s.text() << settings_text(settings);
            ASSERT_EQ(first.pi, other->pi) << s.text() << settings_text(settings);
        }
    }
}
