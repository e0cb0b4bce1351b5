// oom_test.cpp -- every allocation of a whole solve fails once
//
// For k = 1, 2, 3, ...: the k-th request of the step under test, and all after it, are refused. The step must say so
// (10001, "Out of memory") or get by without; the same step then succeeds when memory is back, the answer is right, and
// after freeing everything no block is held. The sweep ends with the first k that no request reaches.
#include "frame/runtime/memory.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <cmath>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <unistd.h>

#ifdef TVX_DEBUG

namespace
{

// What a step works on. `lp` says what the model should hold once the step has succeeded.
struct Scene {
    TestEnv env;
    TVXmodel *model = nullptr;
    LpModel lp;
    Scene() = default;
    ~Scene() { TVXfreemodel(model); }
    Scene(const Scene &) = delete;
    Scene &operator=(const Scene &) = delete;
};

struct Sweep {
    const char *name;
    std::function<void(Scene *)> prepare;
    std::function<int(Scene *)> step;        // the code of the call under test
    std::function<void(Scene *, int)> after; // with memory back; gets that code
};

} // namespace

static void run_sweep(const Sweep &sweep)
{
    const int64_t before = mem_blocks_held();
    bool refused = true;
    for (int64_t k = 1; refused; k++) {
        {
            Scene scene;
            sweep.prepare(&scene);
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << sweep.name;
            mem_fault_arm(k);
            const int code = sweep.step(&scene);
            refused = mem_fault_hits() > 0;
            mem_fault_arm(0);
            ASSERT_TRUE(code == 0 || (refused && code == TVX_ERROR_OUT_OF_MEMORY))
                << sweep.name << ", request " << k << ": code " << code;
            sweep.after(&scene, code);
            ASSERT_FALSE(testing::Test::HasFatalFailure())
                << sweep.name << ", request " << k;
        }
        ASSERT_EQ(mem_blocks_held(), before) << sweep.name << ", request " << k;
    }
}

static LpModel example(Family family, int size)
{
    Dice dice(5);
    return family(&dice, size).lp;
}

static void load_example(Scene *scene)
{
    scene->lp = example(gen_multi_period, 12);
    scene->model = lp_load(scene->env.env, &scene->lp);
    ASSERT_TRUE(scene->model);
}

// With memory back the model gives the optimum of scene->lp.
static void expect_solves(Scene *scene)
{
    const RationalResult truth = rational_solve(&scene->lp);
    LpSolution solution;
    ASSERT_EQ(lp_solve(scene->model, &solution), 0) << TVXgetmerrormsg(scene->model);
    ASSERT_EQ(judge_exact(&scene->lp, &truth, true, &solution), "");
}

// A failed update may leave the content half changed, but never a model that crashes or cannot be freed.
TEST(OutOfMemory, update_of_a_solved_model)
{
    run_sweep({"update",
               [](Scene *s) {
                   load_example(s);
                   ASSERT_EQ(TVXoptimize(s->model), 0);
                   const double values[] = {1, 2};
                   const int rows[] = {2, 3}, cols[] = {0, 4};
                   TVXmodel *model = s->model;
                   ASSERT_EQ(TVXaddvar(model, 2, rows, values, 1, 0, 9, 'C', nullptr), 0);
                   ASSERT_EQ(TVXaddrangeconstr(model, 2, cols, values, 0, 90, nullptr), 0);
                   ASSERT_EQ(TVXaddconstr(model, 2, cols, values, '>', 1, nullptr), 0);
                   ASSERT_EQ(TVXchgcoeffs(model, 2, rows, cols, values), 0);
                   ASSERT_EQ(TVXdelconstrs(model, 1, rows), 0);
                   ASSERT_EQ(TVXdelvars(model, 1, cols), 0);
                   ASSERT_EQ(TVXsetdblattrelement(model, "LB", 5, 1), 0);
                   ASSERT_EQ(TVXsetcharattrelement(model, "Sense", 5, '>'), 0);
               },
               [](Scene *s) { return TVXupdatemodel(s->model); },
               [](Scene *s, int) {
                   ASSERT_EQ(lp_read_back(s->model, &s->lp), 0);
                   expect_solves(s);
               }});
}

TEST(OutOfMemory, solve)
{
    const Settings roads[] = {{{"LPMethod", 0}},
                              {{"LPMethod", 1}},
                              {{"LPMethod", 0}, {"Quad", 1}},
                              {{"LPMethod", 1}, {"Quad", 1}, {"Presolve", 0}}};
    for (const Settings &road : roads)
        for (const Family family : {gen_multi_period, gen_planted_infeasible,
                                    gen_planted_unbounded, gen_badly_scaled})
            run_sweep({"solve",
                       [&](Scene *s) {
                           s->lp = example(family, 10);
                           s->model = lp_load(s->env.env, &s->lp);
                           ASSERT_TRUE(s->model);
                           ASSERT_EQ(settings_apply(TVXgetenv(s->model), road), 0);
                       },
                       [](Scene *s) { return TVXoptimize(s->model); },
                       [](Scene *s, int code) {
                           int status = 0;
                           ASSERT_EQ(TVXgetintattr(s->model, "Status", &status), 0);
                           if (code) {
                               ASSERT_EQ(status, TVX_LOADED);
                           }
                           expect_solves(s);
                       }});
}

// The second solve starts from what the first left behind.
TEST(OutOfMemory, solve_again_after_changes)
{
    for (const int lp_method : {0, 1})
        run_sweep(
            {"solve again",
             [&](Scene *s) {
                 load_example(s);
                 ASSERT_EQ(TVXsetintparam(TVXgetenv(s->model), "LPMethod", lp_method), 0);
                 ASSERT_EQ(TVXoptimize(s->model), 0);
                 const int cols[] = {1, 3};
                 const double values[] = {4, 1};
                 ASSERT_EQ(TVXaddconstr(s->model, 2, cols, values, '>', 6, nullptr), 0);
                 lp_add_row_entries(&s->lp, {{1, 4}, {3, 1}}, '>', 6);
                 ASSERT_EQ(TVXupdatemodel(s->model), 0);
             },
             [](Scene *s) { return TVXoptimize(s->model); },
             [](Scene *s, int) { expect_solves(s); }});
}

TEST(OutOfMemory, queries)
{
    const char *const names[] = {"X",       "RC",      "Xn",    "SAObjLow",
                                 "SAObjUp", "SALBLow", "SAUBUp"};
    const char *const scalars[] = {"BoundVio", "ConstrVio", "DualVio", "ComplVio",
                                   "MaxCoeff", "Kappa",     "N2Kappa", "ObjVal"};
    const auto solve = [](Scene *s) {
        load_example(s);
        ASSERT_EQ(TVXoptimize(s->model), 0);
    };
    const auto still_right = [](Scene *s, int) { expect_solves(s); };
    for (const char *name : names) {
        const auto query = [name](Scene *s) {
            std::vector<double> values(s->lp.obj.size());
            const int code =
                TVXgetdblattrarray(s->model, name, 0, s->lp.num_vars(), values.data());
            return code == TVX_ERROR_DATA_NOT_AVAILABLE ? 0 : code;
        };
        run_sweep({name, solve, query, still_right});
    }
    for (const char *name : scalars) {
        const auto query = [name](Scene *s) {
            double value = 0;
            const int code = TVXgetdblattr(s->model, name, &value);
            return code == TVX_ERROR_DATA_NOT_AVAILABLE ? 0 : code;
        };
        run_sweep({name, solve, query, still_right});
    }
    run_sweep({"basis", solve,
               [](Scene *s) {
                   const std::vector<int> vbasis(s->lp.obj.size(), -1),
                       cbasis(s->lp.rhs.size(), 0);
                   return lp_set_basis(s->model, vbasis, cbasis);
               },
               still_right});
    run_sweep({"rows", load_example,
               [](Scene *s) {
                   int numnz = 0;
                   std::vector<int> beg(s->lp.rhs.size() + 1), ind(1000);
                   std::vector<double> val(1000);
                   return TVXgetconstrs(s->model, &numnz, beg.data(), ind.data(),
                                        val.data(), 0, s->lp.num_rows());
               },
               still_right});
}

TEST(OutOfMemory, files)
{
    for (const char *suffix : {".mps", ".mps.gz"}) {
        const std::string name =
            testing::TempDir() + "tarvex_oom_" + std::to_string(getpid()) + suffix;
        const auto write = [&](Scene *s) { return TVXwrite(s->model, name.c_str()); };
        run_sweep({"write", load_example, write, [&](Scene *s, int) {
                       ASSERT_EQ(TVXwrite(s->model, name.c_str()), 0);
                       expect_solves(s);
                   }});
        const auto read = [&](Scene *s) {
            return TVXreadmodel(s->env.env, name.c_str(), &s->model);
        };
        run_sweep({"read", [](Scene *s) { s->lp = example(gen_multi_period, 12); }, read,
                   [&](Scene *s, int code) {
                       if (code) {
                           ASSERT_EQ(s->model, nullptr);
                           ASSERT_EQ(read(s), 0);
                       }
                       expect_solves(s);
                   }});
        remove(name.c_str());
    }
}

#endif
