// memory_sweep.h -- every allocation of a step fails once
//
// For k = 1, 2, 3, ...: the k-th request of the step under test, and all after it, are refused. The step must say so
// (10001, "Out of memory") or get by without; the same step then succeeds when memory is back, the answer is right, and
// after freeing everything no block is held. The sweep ends with the first k that no request reaches.
#pragma once
#ifdef TVX_DEBUG
#include "runtime/memory.h"
#include "support/solve_judge.h"
#include <functional>
#include <gtest/gtest.h>

// What a step works on. `lp` says what the model should hold once the step has succeeded.
struct Scene {
    TestEnv env;
    TVXmodel *model = nullptr;
    LpModel lp;
    ~Scene() { TVXfreemodel(model); }
};

struct Sweep {
    const char *name;
    std::function<void(Scene *)> prepare;
    std::function<int(Scene *)> step;        // the code of the call under test
    std::function<void(Scene *, int)> after; // with memory back; gets that code
};

inline void run_sweep(const Sweep &sweep)
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

// With memory back the model gives the optimum of scene->lp.
inline void expect_solves(Scene *scene)
{
    const RationalResult truth = rational_solve(&scene->lp);
    LpSolution solution;
    ASSERT_EQ(lp_solve(scene->model, &solution), 0) << TVXgetmerrormsg(scene->model);
    ASSERT_EQ(judge_exact(&scene->lp, &truth, true, &solution), "");
}

// A fresh model solved under these settings.
inline void sweep_solve(const LpModel &lp, const Settings &settings)
{
    run_sweep({"solve",
               [&](Scene *s) {
                   s->lp = lp;
                   s->model = lp_load(s->env.env, &lp, settings);
                   ASSERT_TRUE(s->model);
               },
               [](Scene *s) { return TVXoptimize(s->model); },
               [](Scene *s, int code) {
                   int status = 0;
                   ASSERT_EQ(TVXgetintattr(s->model, "Status", &status), 0);
                   ASSERT_TRUE(code == 0 || status == TVX_LOADED);
                   expect_solves(s);
               }});
}
#endif
