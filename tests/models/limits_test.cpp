// limits_test.cpp -- a solve that is stopped says why, and the next one goes on to the right answer
//
// That the caller may stop it at any moment at which he hears of it is looked at in fuzz/api_watch.cpp.
#include "lp/lp_form.h"
#include "model/model.h"
#include "support/hostile_gen.h"
#include "support/model_gen.h"
#include "support/quality_check.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace
{
constexpr double NONE = 1e100; // no limit

// A model under some settings: what one solve without limit found, and what the last solve did.
struct Legs {
    TestEnv env;
    LpModel lp;
    TestModel model;
    LpSolution whole, last;

    Legs(const LpModel &given, const Settings &settings)
        : lp(given), model(lp_load(env.env, &lp, settings))
    {
        EXPECT_EQ(lp_solve(model, &whole), 0);
        EXPECT_EQ(TVXresetmodel(model), 0);
    }
    TVXenv *own() const { return TVXgetenv(model); }
    void limit(double iterations)
    {
        EXPECT_EQ(TVXsetdblparam(own(), "IterationLimit", iterations), 0);
    }
    int go_on(double iterations) // the status
    {
        limit(iterations);
        EXPECT_EQ(lp_solve(model, &last), 0);
        EXPECT_LE(last.iterations, iterations);
        return last.status;
    }
    int anew(double iterations)
    {
        EXPECT_EQ(TVXresetmodel(model), 0);
        return go_on(iterations);
    }
    // To the end in legs of so many iterations; false when it takes too many of them.
    bool in_legs(double iterations, int most)
    {
        for (int leg = 0; leg < most; leg++)
            if (go_on(iterations) != TVX_ITERATION_LIMIT) return true;
        return false;
    }
    void expect_optimum()
    {
        ASSERT_EQ(last.status, TVX_OPTIMAL)
            << "in one " << whole.iterations << " iterations";
        EXPECT_NEAR(last.objval, whole.objval, 1e-6 * (1 + std::fabs(whole.objval)));
        EXPECT_EQ(judge_optimal(&lp, &last), "");
    }
};

// Settings without presolve; and with it, by either method and on the dual form.
const std::vector<Settings> direct_ways = {{{"Presolve", 0}},
                                           {{"Presolve", 0}, {"LPMethod", 0}}};
const std::vector<Settings> ways = {
    {{"Presolve", -1}},
    {{"Presolve", 1}},
    {{"Presolve", 2}},
    {{"Presolve", 1}, {"LPMethod", 0}},
    {{"Presolve", 1}, {"PreDual", 1}},
    {{"Presolve", -1}, {"PreDual", 1}, {"LPMethod", 0}},
};

// Calls `use` with a run of every family by each of the ways to solve.
template<class Use> void on_all_ways(const Use &use)
{
    std::vector<Settings> all = direct_ways;
    all.insert(all.end(), ways.begin(), ways.end());
    for (const Settings &way : all)
        for (const Family family :
             {gen_multi_period, gen_network, gen_blending, gen_planted_optimum}) {
            SCOPED_TRACE(settings_text(way));
            Legs run(generated(family, 60, 42), way);
            ASSERT_EQ(judge_optimal(&run.lp, &run.whole), "");
            use(&run);
            if (testing::Test::HasFatalFailure()) return;
        }
}

void expect_basic_point(const Legs &run)
{
    LpSolution point;
    ASSERT_EQ(lp_read_point(run.model, &point), 0);
    int basics = 0;
    for (const auto *list : {&point.vbasis, &point.cbasis})
        for (const int code : *list) basics += code >= 0;
    EXPECT_EQ(basics, run.lp.num_rows());
    const double value = double(lp_objective(&run.lp, point.x));
    EXPECT_NEAR(point.objval, value, 1e-9 * (1 + std::fabs(value)));
    EXPECT_EQ(check_quality(run.model, &run.lp, &point), std::vector<std::string>{});
}
} // namespace

// What is shown of a stopped solve is a basis of the model and the point that belongs to it, also when the reduced
// model or that of the dual form was stopped; the violations of that point are told as they are.
TEST(Limits, a_limit_stops_shows_a_basic_point_of_the_model_and_the_next_solve_continues)
{
    int shown = 0;
    on_all_ways([&](Legs *run) {
        for (const double limit : {0.0, 1.0, 2.0, 7.0, run->whole.iterations}) {
            const int status = run->anew(limit);
            // The end itself may have to be confirmed.
            const int expected =
                run->whole.iterations < limit ? TVX_OPTIMAL : TVX_ITERATION_LIMIT;
            ASSERT_TRUE(status == expected || run->whole.iterations == limit) << status;
            if (status == TVX_ITERATION_LIMIT) expect_basic_point(*run);
            shown += status == TVX_ITERATION_LIMIT;
            run->go_on(NONE);
            run->expect_optimum();
        }
    });
    EXPECT_GE(shown, 80);
}

// One iteration a call: wherever a call stops, the next one gets further.
TEST(Limits, a_solve_arrives_in_steps_of_one_iteration_whatever_its_end_is)
{
    on_all_ways([](Legs *run) {
        EXPECT_TRUE(run->in_legs(1, 3000));
        run->expect_optimum();
    });
    for (uint64_t seed = 0; seed < 600; seed++)
        for (const Settings &way : direct_ways) {
            Dice dice(seed);
            Legs run(gen_tiny(&dice, TinyLimits{.max_vars = 5, .max_rows = 4}), way);
            run.in_legs(1, 100);
            ASSERT_EQ(run.last.status, run.whole.status) << seed << "\n"
                                                         << settings_text(way);
        }
}

// Else each call would start from the costs without perturbation, and undo what the one before had done.
TEST(Limits, a_stopped_run_keeps_its_perturbation)
{
    for (const Settings &way : direct_ways) {
        SCOPED_TRACE(settings_text(way));
        Legs run(generated(gen_assignment, 500, 7), way);
        EXPECT_TRUE(run.in_legs(20, int(run.whole.iterations / 10)));
        EXPECT_EQ(run.last.status, TVX_OPTIMAL);
    }
}

// The reduced model is solved, and the basis that comes back from it is not optimal yet.
TEST(Limits, a_limit_in_the_run_behind_presolve_is_gone_on_from)
{
    int stopped = 0;
    for (uint64_t seed = 0; seed < 60; seed++)
        for (const Settings &way : ways) {
            SCOPED_TRACE(settings_text(way));
            Dice dice(seed);
            Legs run(hostile_tall(&dice), way);
            run.anew(NONE);
            if (run.last.status != TVX_OPTIMAL ||
                run.last.iterations <= run.model->lp.result->reduced_itercount)
                continue;
            const bool is_stopped =
                run.anew(run.whole.iterations - 1) == TVX_ITERATION_LIMIT;
            stopped += is_stopped && !run.model->lp.form;
            EXPECT_TRUE(!is_stopped || run.in_legs(1, 50)) << seed;
            ASSERT_EQ(run.last.status, TVX_OPTIMAL) << seed;
            EXPECT_NEAR(run.last.objval, run.whole.objval,
                        1e-3 * (1 + std::fabs(run.whole.objval)))
                << "more than tolerances are worth where numbers differ by 1e8";
        }
    EXPECT_GT(stopped, 0);
}

// A bound of -9.9e19 leads the first run to a point that misses a row by 10; others are looked for, and a limit may
// come in between.
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
    Legs run(lp, {{"LPMethod", 0}, {"ScaleFlag", 0}, {"PreDual", 0}, {"Presolve", 2}});
    ASSERT_EQ(judge_optimal(&lp, &run.whole), "");
    int limited = 0;
    for (double limit = 0; limit < run.whole.iterations; limit++) {
        limited += run.anew(limit) == TVX_ITERATION_LIMIT;
        run.go_on(NONE);
        run.expect_optimum();
    }
    EXPECT_EQ(limited, run.whole.iterations);
}

// The reduced model is solved, postsolve has not begun: as a limit leaves it there.
TEST(Limits, the_next_solve_begins_with_postsolve)
{
    for (const Settings &way : ways) {
        SCOPED_TRACE(settings_text(way));
        Legs run(generated(gen_multi_period, 30, 5), way);
        run.go_on(5);
        LpForm *form = run.model->lp.form;
        ASSERT_NE(form, nullptr);
        run.limit(NONE);
        const SimplexCall call = {.Method = METHOD_DUAL, .Iterations = run.last.iterations};
        ASSERT_EQ(SimplexOptimize(&form->simplex, lp_form_reduced(form), run.own(), call),
                  0);
        ASSERT_EQ(simplex_status(form->simplex), TVX_OPTIMAL);
        run.go_on(NONE);
        run.expect_optimum();
        EXPECT_LE(run.last.iterations, 2) << "those of the reduced model are done";
    }
}

// What a solve in two legs tells of its work is that of the second leg alone.
TEST(Limits, work_is_that_of_the_last_call)
{
    for (const double presolve : {0, 1}) {
        Legs run(generated(gen_multi_period, 60, 42), {{"Presolve", presolve}});
        double work[3] = {}; // of the whole, and of the two legs
        for (int k = 0; k < 3; k++) {
            k == 1 ? run.anew(run.whole.iterations - 5) : run.go_on(NONE);
            ASSERT_EQ(TVXgetdblattr(run.model, "NodeCount", &work[k]), 0);
        }
        EXPECT_GT(work[1], 0.5 * work[0]);
        EXPECT_LT(work[2], 0.5 * work[0]);
        EXPECT_GT(work[2], 0);
    }
}

// On the model itself, a reduced one, and its dual, whose values come from the other side.
TEST(Limits, cutoff_below_the_optimum_gives_status_6_and_lifting_it_continues)
{
    on_all_ways([](Legs *run) {
        const double value = run->whole.objval,
                     step = run->lp.sense * 1e-3 * (1 + std::fabs(value));
        LpSolution point;
        ASSERT_EQ(TVXsetdblparam(run->own(), "Cutoff", value - step), 0);
        ASSERT_EQ(run->go_on(NONE), TVX_CUTOFF);
        ASSERT_EQ(lp_read_point(run->model, &point), 0);
        ASSERT_EQ(TVXsetdblparam(run->own(), "Cutoff", value + step), 0);
        run->go_on(NONE);
        run->expect_optimum();
    });
}

TEST(Limits, absurd_bounds_are_told_apart)
{
    const auto status = [](double obj, double lb, double ub) {
        LpModel lp = lp_make({{obj, lb, ub}, {1}}, {{{0, 1}, '>', 1}});
        return Legs(lp, {{"Presolve", 0}}).whole.status;
    };
    EXPECT_EQ(status(0, 2, 1), TVX_INFEASIBLE);
    EXPECT_EQ(status(-1, LP_INFINITY, LP_INFINITY), TVX_UNBOUNDED);
    EXPECT_EQ(status(1, LP_INFINITY, LP_INFINITY), TVX_INFEASIBLE);
    EXPECT_EQ(status(1, -LP_INFINITY, -LP_INFINITY), TVX_UNBOUNDED);
    EXPECT_EQ(status(-1, -LP_INFINITY, -LP_INFINITY), TVX_INFEASIBLE);
}
