// limits_test.cpp -- a solve that is stopped says why, and the next one goes on to the right answer
#include "lp/lp_form.h"
#include "model/model.h"
#include "support/hostile_gen.h"
#include "support/settings.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace
{

// A loaded model that needs iterations, with its optimum from an unlimited solve of another copy.
struct Limited {
    LpModel lp;
    double value;
    double iterations; // of the unlimited solve
};

} // namespace

static const Family families[] = {gen_multi_period, gen_network, gen_blending,
                                  gen_planted_optimum};
static const int methods[] = {0, 1};
static const int MANY_CALLS = 3000;

static Limited make_limited(TVXenv *env, Family family, int lp_method, int presolve)
{
    Dice dice(42);
    Limited limited{.lp = family(&dice, 60).lp, .value = 0, .iterations = 0};
    const TestModel model(lp_load(env, &limited.lp));
    LpSolution solution;
    EXPECT_EQ(
        settings_apply(TVXgetenv(model), {{"LPMethod", lp_method}, {"Presolve", presolve}}),
        0);
    EXPECT_EQ(lp_solve(model, &solution), 0);
    EXPECT_EQ(judge_optimal(&limited.lp, &solution), "");
    limited.value = solution.objval;
    limited.iterations = solution.iterations;
    return limited;
}

// Calls `use` for every family and method: the environment of the model carries the method, presolve off.
template<class Use> static void for_limited_models(const Use &use)
{
    const TestEnv env;
    for (const int lp_method : methods)
        for (const Family family : families) {
            const Limited limited = make_limited(env.env, family, lp_method, 0);
            ASSERT_GE(limited.iterations, 3); // else the limits mean nothing
            const TestModel model(lp_load(env.env, &limited.lp));
            ASSERT_EQ(settings_apply(TVXgetenv(model),
                                     {{"LPMethod", lp_method}, {"Presolve", 0}}),
                      0);
            use(limited, model);
            if (testing::Test::HasFatalFailure()) return;
        }
}

static void expect_optimum(const Limited &limited, TVXmodel *model)
{
    LpSolution solution;
    ASSERT_EQ(lp_solve(model, &solution), 0);
    ASSERT_EQ(solution.status, TVX_OPTIMAL);
    ASSERT_NEAR(solution.objval, limited.value, 1e-6 * (1 + std::fabs(limited.value)));
    ASSERT_EQ(judge_optimal(&limited.lp, &solution), "");
}

static int status_of(TVXmodel *model)
{
    int status = 0;
    EXPECT_EQ(TVXgetintattr(model, "Status", &status), 0);
    return status;
}

static void expect_basic_point(const Limited &limited, TVXmodel *model)
{
    LpSolution point;
    ASSERT_EQ(lp_read_point(model, &point), 0);
    const LpModel *lp = &limited.lp;
    int basics = 0;
    for (const int code : point.vbasis) basics += code >= 0;
    for (const int code : point.cbasis) basics += code >= 0;
    EXPECT_EQ(basics, lp->num_rows());
    const auto value = static_cast<double>(lp_objective(lp, point.x));
    EXPECT_NEAR(point.objval, value, 1e-9 * (1 + std::fabs(value)));
    const std::vector<long double> activity = lp_activity(lp, point.x);
    double violation = 0, told = 0;
    for (int i = 0; i < lp->num_rows(); i++) {
        const auto over = static_cast<double>(activity[i] - lp->rhs[i]);
        if (lp->senses[i] != '>') violation = std::max(violation, over);
        if (lp->senses[i] != '<') violation = std::max(violation, -over);
    }
    ASSERT_EQ(TVXgetdblattr(model, "ConstrVio", &told), 0);
    EXPECT_NEAR(told, violation, 1e-9 * (1 + violation));
}

TEST(Limits, iteration_limit_stops_and_the_next_solve_continues)
{
    for (const double limit : {0.0, 1.0, 2.0, 7.0})
        for_limited_models([&](const Limited &limited, TVXmodel *model) {
            ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", limit), 0);
            ASSERT_EQ(TVXoptimize(model), 0);
            ASSERT_EQ(status_of(model),
                      limited.iterations > limit ? TVX_ITERATION_LIMIT : TVX_OPTIMAL);
            double iterations = -1;
            ASSERT_EQ(TVXgetdblattr(model, "IterCount", &iterations), 0);
            ASSERT_LE(iterations, limit);
            ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1e100), 0);
            expect_optimum(limited, model);
        });
}

// What is shown of a stopped solve is a basis of the model and the point that belongs to it, also when the reduced model
// or that of the dual form was stopped; the violations of that point are told as they are.
TEST(Limits, a_stopped_solve_shows_a_basic_point_of_the_model)
{
    const TestEnv env;
    int shown = 0;
    for (const Family family : families)
        for (const int k : {0, 1, 2, 3}) {
            const int lp_method = k % 2, pre_dual = k / 2;
            const Limited limited = make_limited(env.env, family, lp_method, 1);
            const TestModel model(lp_load(env.env, &limited.lp));
            ASSERT_EQ(settings_apply(TVXgetenv(model), {{"LPMethod", lp_method},
                                                        {"Presolve", 1},
                                                        {"PreDual", pre_dual},
                                                        {"IterationLimit", 2}}),
                      0);
            ASSERT_EQ(TVXoptimize(model), 0);
            if (status_of(model) == TVX_ITERATION_LIMIT) {
                expect_basic_point(limited, model);
                shown++;
            }
            ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1e100), 0);
            expect_optimum(limited, model);
        }
    EXPECT_GE(shown, 8);
}

TEST(Limits, a_solve_in_many_legs_arrives)
{
    for_limited_models([](const Limited &limited, TVXmodel *model) {
        double limit = 0;
        for (int leg = 0; leg < 1000; leg++) {
            limit += 5;
            ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", limit), 0);
            ASSERT_EQ(TVXoptimize(model), 0);
            if (status_of(model) != TVX_ITERATION_LIMIT) break;
        }
        expect_optimum(limited, model);
    });
}

// From nothing, stopped after `limit` iterations; the limit stays.
static void solve_anew(TVXmodel *model, double limit, LpSolution *solution)
{
    ASSERT_EQ(TVXresetmodel(model), 0);
    ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", limit), 0);
    ASSERT_EQ(lp_solve(model, solution), 0);
}

// Settings with presolve, by either method and on the dual form.
static const Settings roads[] = {
    {{"Presolve", -1}},
    {{"Presolve", 1}},
    {{"Presolve", 2}},
    {{"Presolve", 1}, {"LPMethod", 0}},
    {{"Presolve", 1}, {"PreDual", 1}},
    {{"Presolve", -1}, {"PreDual", 1}, {"LPMethod", 0}},
};
static const Settings direct_roads[] = {{{"Presolve", 0}},
                                        {{"Presolve", 0}, {"LPMethod", 0}}};

// One iteration a call: wherever a call stops, the next one gets further.
TEST(Limits, a_solve_arrives_in_steps_of_one_iteration)
{
    const TestEnv env;
    std::vector<Settings> all(std::begin(roads), std::end(roads));
    all.insert(all.end(), std::begin(direct_roads), std::end(direct_roads));
    for (const Family family : families)
        for (const Settings &road : all) {
            SCOPED_TRACE(settings_text(road));
            Dice dice(42);
            const LpModel lp = family(&dice, 60).lp;
            const TestModel model(lp_load(env.env, &lp));
            ASSERT_EQ(settings_apply(TVXgetenv(model), road), 0);
            LpSolution whole, last;
            ASSERT_EQ(lp_solve(model, &whole), 0);
            ASSERT_EQ(TVXresetmodel(model), 0);
            ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1), 0);
            int calls = 0;
            do {
                ASSERT_EQ(lp_solve(model, &last), 0);
                ASSERT_LE(last.iterations, 1);
            } while (last.status == TVX_ITERATION_LIMIT && calls++ < MANY_CALLS);
            ASSERT_EQ(last.status, TVX_OPTIMAL)
                << calls << " calls, in one " << whole.iterations << " iterations";
            EXPECT_NEAR(last.objval, whole.objval, 1e-6 * (1 + std::fabs(whole.objval)));
            EXPECT_EQ(judge_optimal(&lp, &last), "");
        }
}

// Else each call would start from the costs without perturbation, and undo what the one before had done.
TEST(Limits, a_stopped_run_keeps_its_perturbation)
{
    const TestEnv env;
    Dice dice(7);
    const LpModel lp = gen_assignment(&dice, 500).lp;
    for (const Settings &road : direct_roads) {
        SCOPED_TRACE(settings_text(road));
        const TestModel model(lp_load(env.env, &lp));
        ASSERT_EQ(settings_apply(TVXgetenv(model), road), 0);
        LpSolution whole, last;
        ASSERT_EQ(lp_solve(model, &whole), 0);
        ASSERT_EQ(TVXresetmodel(model), 0);
        ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 20), 0);
        double steps = 0;
        do {
            ASSERT_EQ(lp_solve(model, &last), 0);
            steps += last.iterations;
        } while (last.status == TVX_ITERATION_LIMIT && steps < 2 * whole.iterations);
        EXPECT_EQ(last.status, TVX_OPTIMAL) << steps << " of " << whole.iterations;
    }
}

// A few rows, many free columns: optima, rays and contradictions after some steps of the box problem.
static LpModel make_free(Dice *dice)
{
    LpModel lp;
    const int columns = dice->range(2, 5), rows = dice->range(1, 4);
    for (int j = 0; j < columns; j++)
        lp_add_var(&lp, dice->range(-4, 4), dice->chance(40) ? -LP_INFINITY : 0,
                   LP_INFINITY);
    for (int i = 0; i < rows; i++) {
        std::vector<std::pair<int, double>> row;
        for (int j = 0; j < columns; j++)
            if (const int a = dice->range(-3, 3)) row.push_back({j, a});
        lp_add_row_entries(&lp, row, "<>="[dice->range(0, 2)], dice -> range(-4, 6));
    }
    return lp;
}

TEST(Limits, short_runs_arrive_whatever_the_end_is)
{
    const TestEnv env;
    for (uint64_t seed = 0; seed < 600; seed++)
        for (const Settings &road : direct_roads) {
            Dice dice(seed);
            const LpModel lp = make_free(&dice);
            const TestModel model(lp_load(env.env, &lp));
            ASSERT_EQ(settings_apply(TVXgetenv(model), road), 0);
            LpSolution whole, last;
            ASSERT_EQ(lp_solve(model, &whole), 0);
            ASSERT_EQ(TVXresetmodel(model), 0);
            ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1), 0);
            for (int calls = 0; calls < 100; calls++) {
                ASSERT_EQ(lp_solve(model, &last), 0);
                if (last.status != TVX_ITERATION_LIMIT) break;
            }
            ASSERT_EQ(last.status, whole.status) << seed << "\n" << settings_text(road);
        }
}

// The reduced model is solved, and the basis that comes back from it is not optimal yet.
TEST(Limits, a_limit_in_the_run_behind_presolve_is_gone_on_from)
{
    const TestEnv env;
    int stopped = 0;
    for (uint64_t seed = 0; seed < 60; seed++)
        for (const Settings &road : roads) {
            SCOPED_TRACE(settings_text(road));
            Dice dice(seed);
            const LpModel lp = hostile_tall(&dice);
            const TestModel model(lp_load(env.env, &lp));
            ASSERT_EQ(settings_apply(TVXgetenv(model), road), 0);
            LpSolution whole, last;
            ASSERT_EQ(lp_solve(model, &whole), 0);
            if (whole.status != TVX_OPTIMAL ||
                whole.iterations <= model.model->lp.result->reduced_itercount)
                continue;
            solve_anew(model, whole.iterations - 1, &last);
            stopped += last.status == TVX_ITERATION_LIMIT && !model.model->lp.form;
            ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1), 0);
            for (int call = 0; call < 50 && last.status == TVX_ITERATION_LIMIT; call++)
                ASSERT_EQ(lp_solve(model, &last), 0);
            ASSERT_EQ(last.status, TVX_OPTIMAL) << seed;
            EXPECT_NEAR(last.objval, whole.objval, 1e-3 * (1 + std::fabs(whole.objval)))
                << "more than tolerances are worth where numbers differ by 1e8";
        }
    EXPECT_GT(stopped, 0);
}

// A bound of -9.9e19 leads the first run to a point that misses a row by 10; others are looked for, and a limit may come
// in between.
TEST(Limits, an_unsure_answer_is_not_final)
{
    LpModel lp;
    const double obj[] = {6, 6, 1, -5, -5, -3, -1, 6, -1, -3},
                 lb[] = {0, 0, -2, -5, -1, -LP_INFINITY, -LP_INFINITY, -4, -9.9e19, -4},
                 ub[] = {LP_INFINITY, 1, LP_INFINITY, 5, -1, 0, LP_INFINITY, 7, 1e15, 1};
    for (int j = 0; j < 10; j++) lp_add_var(&lp, obj[j], lb[j], ub[j]);
    lp_add_row_entries(&lp, {{3, -1}, {7, 2}, {9, -3}}, '<', 14);
    lp_add_row_entries(&lp, {{0, -3}, {2, -5}, {3, 4}, {5, 3}, {6, -2}, {8, 2}}, '<', -13);
    lp_add_row_entries(&lp, {{1, 2}, {2, -8}, {3, -3}, {4, 2}, {6, -3}, {8, -3}, {9, -3}},
                       '=', -13);
    const TestEnv env;
    const TestModel model(lp_load(env.env, &lp));
    const Settings road = {
        {"LPMethod", 0}, {"ScaleFlag", 0}, {"PreDual", 0}, {"Presolve", 2}};
    ASSERT_EQ(settings_apply(TVXgetenv(model), road), 0);
    LpSolution whole, last;
    ASSERT_EQ(lp_solve(model, &whole), 0);
    ASSERT_EQ(judge_optimal(&lp, &whole), "");
    int limited = 0;
    for (double limit = 0; limit < whole.iterations; limit++) {
        solve_anew(model, limit, &last);
        limited += last.status == TVX_ITERATION_LIMIT;
        ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1e100), 0);
        ASSERT_EQ(lp_solve(model, &last), 0);
        EXPECT_EQ(judge_optimal(&lp, &last), "") << limit;
        EXPECT_NEAR(last.objval, whole.objval, 1e-6) << limit;
    }
    EXPECT_EQ(limited, whole.iterations);
}

struct StopAt {
    int call = 0, stop = 0; // calls of the function so far; the one that stops the solve
};

static int stop_at(TVXmodel *model, void *, int, void *data)
{
    StopAt *at = static_cast<StopAt *>(data);
    if (++at->call == at->stop) TVXterminate(model);
    return 0;
}

// At any moment of the solve at which the caller hears of it.
TEST(Limits, a_solve_that_is_interrupted_anywhere_is_gone_on_from)
{
    const TestEnv env;
    for (const Settings &road : roads) {
        SCOPED_TRACE(settings_text(road));
        Dice dice(5);
        const LpModel lp = gen_multi_period(&dice, 12).lp;
        StopAt at;
        LpSolution whole, last;
        const TestModel model(lp_load(env.env, &lp));
        ASSERT_EQ(settings_apply(TVXgetenv(model), road), 0);
        ASSERT_EQ(TVXsetcallbackfunc(model, stop_at, &at), 0);
        ASSERT_EQ(lp_solve(model, &whole), 0);
        for (int stop = 1, calls = at.call; stop <= calls; stop++) {
            ASSERT_EQ(TVXresetmodel(model), 0);
            at = {0, stop};
            ASSERT_EQ(lp_solve(model, &last), 0);
            at = {0, 0};
            ASSERT_EQ(lp_solve(model, &last), 0);
            ASSERT_EQ(last.status, TVX_OPTIMAL) << stop;
            EXPECT_NEAR(last.objval, whole.objval, 1e-6 * (1 + std::fabs(whole.objval)));
        }
    }
}

// The reduced model is solved, the way back has not begun: as a limit leaves it there.
TEST(Limits, the_way_back_from_presolve_is_gone_on_from)
{
    const TestEnv env;
    for (const Settings &road : roads) {
        SCOPED_TRACE(settings_text(road));
        Dice dice(5);
        const LpModel lp = gen_multi_period(&dice, 30).lp;
        const TestModel model(lp_load(env.env, &lp));
        LpSolution whole, last;
        ASSERT_EQ(settings_apply(TVXgetenv(model), road), 0);
        ASSERT_EQ(lp_solve(model, &whole), 0);
        solve_anew(model, 5, &last);
        ASSERT_NE(model.model->lp.form, nullptr);
        ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1e100), 0);
        LpForm *form = model.model->lp.form;
        const SimplexCall call = {.Method = METHOD_DUAL, .Iterations = last.iterations};
        ASSERT_EQ(
            SimplexOptimize(&form->simplex, lp_form_reduced(form), TVXgetenv(model), call),
            0);
        ASSERT_EQ(simplex_status(form->simplex), TVX_OPTIMAL);
        ASSERT_NE(model.model->lp.form, nullptr);
        ASSERT_EQ(lp_solve(model, &last), 0);
        ASSERT_EQ(last.status, TVX_OPTIMAL);
        EXPECT_NEAR(last.objval, whole.objval, 1e-6 * (1 + std::fabs(whole.objval)));
        EXPECT_EQ(judge_optimal(&lp, &last), "");
        EXPECT_LE(last.iterations, 2) << "those of the reduced model are done";
    }
}

// What a solve in two legs tells of its work is that of the second leg alone.
TEST(Limits, work_is_that_of_the_last_call)
{
    const TestEnv env;
    for (const double presolve : {0, 1}) {
        Dice dice(42);
        const LpModel lp = gen_multi_period(&dice, 60).lp;
        const TestModel model(lp_load(env.env, &lp));
        ASSERT_EQ(settings_apply(TVXgetenv(model), {{"Presolve", presolve}}), 0);
        LpSolution whole, leg;
        double work = 0, first = 0, second = 0;
        ASSERT_EQ(lp_solve(model, &whole), 0);
        ASSERT_EQ(TVXgetdblattr(model, "NodeCount", &work), 0);
        ASSERT_EQ(TVXresetmodel(model), 0);
        ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", whole.iterations - 5),
                  0);
        ASSERT_EQ(lp_solve(model, &leg), 0);
        ASSERT_EQ(TVXgetdblattr(model, "NodeCount", &first), 0);
        ASSERT_EQ(lp_solve(model, &leg), 0);
        ASSERT_EQ(TVXgetdblattr(model, "NodeCount", &second), 0);
        EXPECT_GT(first, 0.5 * work);
        EXPECT_LT(second, 0.5 * work);
        EXPECT_GT(second, 0);
    }
}

TEST(Limits, terminate_from_another_thread_interrupts_and_the_next_solve_continues)
{
    for (const int presolve : {0, 1})
        for_limited_models([presolve](const Limited &limited, TVXmodel *model) {
            ASSERT_EQ(
                settings_apply(TVXgetenv(model), {{"Presolve", presolve}, {"PreDual", 2}}),
                0);
            std::atomic<bool> done{false};
            std::thread stopper([&] {
                while (!done) // the start of a solve clears the request: repeat it
                    TVXterminate(model);
            });
            const int error = TVXoptimize(model);
            done = true;
            stopper.join();
            ASSERT_EQ(error, 0);
            const int status = status_of(model);
            ASSERT_TRUE(status == TVX_INTERRUPTED || status == TVX_OPTIMAL) << status;
            expect_optimum(limited, model);
        });
}

// On the model itself, a reduced one, and its dual, whose values come from the other side.
TEST(Limits, cutoff_below_the_optimum_gives_status_6_and_lifting_it_continues)
{
    for_limited_models([](const Limited &limited, TVXmodel *model) {
        if (limited.lp.sense < 0) return;
        const double step = 1e-3 * (1 + std::fabs(limited.value));
        for (const Settings &form : {Settings{{"Presolve", 0}}, Settings{{"Presolve", 1}},
                                     Settings{{"Presolve", 1}, {"PreDual", 1}}}) {
            LpSolution point;
            TVXenv *env = TVXgetenv(model);
            ASSERT_EQ(TVXresetmodel(model), 0);
            ASSERT_EQ(settings_apply(env, form), 0);
            ASSERT_EQ(TVXsetdblparam(env, "Cutoff", limited.value - step), 0);
            ASSERT_EQ(TVXoptimize(model), 0);
            ASSERT_EQ(status_of(model), TVX_CUTOFF) << settings_text(form);
            ASSERT_EQ(lp_read_point(model, &point), 0) << settings_text(form);
            ASSERT_EQ(TVXsetdblparam(env, "Cutoff", limited.value + step), 0);
            expect_optimum(limited, model);
        }
    });
}

TEST(Limits, a_change_after_a_limit_is_respected)
{
    for_limited_models([](const Limited &limited, TVXmodel *model) {
        ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 3), 0);
        ASSERT_EQ(TVXoptimize(model), 0);
        ASSERT_EQ(TVXsetdblparam(TVXgetenv(model), "IterationLimit", 1e100), 0);
        Limited changed = limited;
        for (size_t j = 0; j < changed.lp.obj.size(); j++) changed.lp.obj[j] *= 2;
        changed.value = 2 * (limited.value - limited.lp.objcon) + limited.lp.objcon;
        ASSERT_EQ(TVXsetdblattrarray(model, "Obj", 0, changed.lp.num_vars(),
                                     changed.lp.obj.data()),
                  0);
        expect_optimum(changed, model);
    });
}

TEST(Limits, absurd_bounds_are_told_apart)
{
    const TestEnv env;
    const auto solve = [&](double obj, double lb, double ub) {
        LpModel lp;
        lp_add_var(&lp, obj, lb, ub);
        lp_add_var(&lp, 1, 0, LP_INFINITY);
        lp_add_row_entries(&lp, {{1, 1}}, '>', 1);
        const TestModel model(lp_load(env.env, &lp));
        EXPECT_EQ(TVXsetintparam(TVXgetenv(model), "Presolve", 0), 0);
        EXPECT_EQ(TVXoptimize(model), 0);
        return status_of(model);
    };
    EXPECT_EQ(solve(0, 2, 1), TVX_INFEASIBLE);
    EXPECT_EQ(solve(-1, LP_INFINITY, LP_INFINITY), TVX_UNBOUNDED);
    EXPECT_EQ(solve(1, LP_INFINITY, LP_INFINITY), TVX_INFEASIBLE);
    EXPECT_EQ(solve(1, -LP_INFINITY, -LP_INFINITY), TVX_UNBOUNDED);
    EXPECT_EQ(solve(-1, -LP_INFINITY, -LP_INFINITY), TVX_INFEASIBLE);
}
