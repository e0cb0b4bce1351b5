// lp_tarvex.h -- between the test's own models and the library, through the public interface only
#pragma once
#include "support/lp_check.h"
#include "support/settings.h"
#include "tarvex.h"
#include <utility>

// A silent environment, and a model; both end with their scope.
struct TestEnv {
    TVXenv *env = nullptr;
    TestEnv();
    ~TestEnv() { TVXfreeenv(env); }
    TestEnv(const TestEnv &) = delete;
    TestEnv &operator=(const TestEnv &) = delete;
};
struct TestModel {
    TVXmodel *model = nullptr;
    explicit TestModel(TVXmodel *given) : model(given) {}
    ~TestModel() { TVXfreemodel(model); }
    TestModel(TestModel &&other) noexcept : model(std::exchange(other.model, nullptr)) {}
    operator TVXmodel *() const { return model; }
    TVXmodel *operator->() const { return model; }
};

// The model in one call (columns with TVXloadmodel), under these settings; or null.
TVXmodel *lp_load(TVXenv *env, const LpModel *lp, const Settings &settings = {});
// What the library holds, by queries. 0, or a code when some fail.
int lp_read_back(TVXmodel *model, LpModel *lp);

// TVXoptimize and lp_read_solution. 0 or the first code.
int lp_solve(TVXmodel *model, LpSolution *solution);
// Status and iterations; with status 2 all the rest.
int lp_read_solution(TVXmodel *model, LpSolution *solution);
// All the rest, which is there under other statuses too. 0 or the first code.
int lp_read_point(TVXmodel *model, LpSolution *solution);
// A basis as attributes take it. 0 or a code.
int lp_set_basis(TVXmodel *model, const std::vector<int> &vbasis,
                 const std::vector<int> &cbasis);
