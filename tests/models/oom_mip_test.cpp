// oom_mip_test.cpp -- every allocation of the solve of a MIP fails once
#include "support/memory_sweep.h"
#include "support/mip_judge.h"

#ifdef TVX_DEBUG

namespace
{
// min -sum (k + 3) x_k, cyclic rows 2 x_k + 3 x_(k+1) + x_(k+3) <= 4: several nodes.
LpModel ring(int size, char type)
{
    LpModel lp;
    for (int k = 0; k < size; k++) lp_add_var(&lp, -(k + 3), 0, 2, type);
    for (int k = 0; k < size; k++)
        lp_add_row_entries(&lp, {{k, 2}, {(k + 1) % size, 3}, {(k + 3) % size, 1}}, '<', 4);
    return lp;
}

// With sets and columns of all types.
LpModel mixture()
{
    LpModel lp = ring(9, 'I');
    for (const int k : {1, 4}) lp.types[k] = 'S', lp.lb[k] = 0.5;
    lp.types[7] = 'N', lp.lb[7] = 1;
    for (const int k : {2, 6}) lp.types[k] = 'C';
    lp.sets = {{1, {0, 2, 3}}, {2, {8, 6, 5, 4}}};
    return lp;
}

// At the first node: a point in part, and a row that all solutions satisfy.
int helpful(TVXmodel *model, void *cbdata, int where, void *calls)
{
    if (where != TVX_WHERE_NODE || ++*static_cast<int *>(calls) > 1) return 0;
    int count = 0, code = TVXgetintattr(model, "NumVars", &count);
    std::vector<double> point(code ? 0 : count, 1e100), x(point.size());
    const int ind[] = {0, 1, 3};
    const double val[] = {2, 3, 1};
    if (!code) point[0] = 1;
    if (!code) code = TVXcbsolution(cbdata, point.data());
    if (!code) code = TVXcbcut(cbdata, 3, ind, val, '<', 4);
    if (!code) code = TVXcbget(cbdata, where, TVX_CB_NODE_VALUES, x.data());
    return code == TVX_ERROR_DATA_NOT_AVAILABLE ? 0 : code;
}

struct MipSweep {
    const char *name;
    LpModel lp;
    Settings settings;
    bool start, callback;
};

void sweep(const MipSweep &one)
{
    const MipTruth truth = mip_truth(&one.lp);
    ASSERT_EQ(mip_status_name(truth.status), std::string("optimal")) << one.name;
    int calls = 0;
    const auto load = [&](Scene *s) {
        calls = 0;
        s->model = lp_load(s->env.env, &one.lp, one.settings);
        ASSERT_TRUE(s->model);
        if (one.start) {
            const double values[] = {1, 1e101, 0};
            ASSERT_EQ(TVXsetdblattrarray(s->model, "Start", 0, 3, values), 0);
        }
        ASSERT_EQ(TVXsetcallbackfunc(s->model, one.callback ? helpful : nullptr, &calls),
                  0);
    };
    run_sweep({one.name, load, [](Scene *s) { return TVXoptimize(s->model); },
               [&](Scene *s, int code) {
                   const MipAnswer found = mip_read(s->model);
                   if (found.status ==
                       TVX_OPTIMAL) { // a failure may still hit the last lines
                       ASSERT_EQ(mip_judge(&one.lp, &truth, one.settings, &found), "");
                   } else {
                       ASSERT_TRUE(code && (found.status == TVX_INTERRUPTED ||
                                            found.status == TVX_LOADED));
                   }
                   const MipAnswer answer = mip_optimize(s->model);
                   ASSERT_EQ(mip_judge(&one.lp, &truth, one.settings, &answer), "");
               }});
}
} // namespace

TEST(OutOfMemory, solve_of_a_mip)
{
    const Settings tree = {{"Presolve", 0}, {"MIPGap", 0}};
    Settings shallow = tree, probing = tree;
    shallow.emplace_back("TARV_PAR_ASPIRE", 0); // most nodes go to the heap
    probing.emplace_back("VarBranch", 3);
    const MipSweep sweeps[] = {
        {"tree", ring(7, 'I'), tree, false, false},
        {"heap", ring(7, 'I'), shallow, false, false},
        {"strong branching", ring(7, 'B'), probing, false, false},
        {"sets and semi-continuous columns", mixture(), tree, false, false},
        {"start", ring(7, 'I'), tree, true, false},
        {"callback",
         ring(7, 'I'),
         {{"Presolve", 0}, {"MIPGap", 0}, {"VarBranch", 2}},
         false,
         true},
        {"presolve", ring(7, 'I'), {{"Presolve", 2}}, true, false},
        {"presolve of a mixture",
         mixture(),
         {{"Presolve", 2}, {"PreCrush", 1}},
         false,
         true},
    };
    for (const MipSweep &one : sweeps) {
        sweep(one);
        if (HasFatalFailure()) return;
    }
}

// A search that a limit has stopped is lost with a failure, or goes on.
TEST(OutOfMemory, continued_search)
{
    const LpModel lp = ring(7, 'I');
    const MipTruth truth = mip_truth(&lp);
    run_sweep({"continued",
               [&](Scene *s) {
                   s->model = lp_load(s->env.env, &lp, {{"Presolve", 0}, {"NodeLimit", 4}});
                   ASSERT_EQ(TVXoptimize(s->model), 0);
                   ASSERT_EQ(TVXsetdblparam(TVXgetenv(s->model), "NodeLimit", 1e100), 0);
               },
               [](Scene *s) { return TVXoptimize(s->model); },
               [&](Scene *s, int) {
                   const MipAnswer answer = mip_optimize(s->model);
                   ASSERT_EQ(mip_judge(&lp, &truth, {}, &answer), "");
               }});
}

#endif
