// Out of memory while a model is built, updated, copied and read: each call either works or
// returns the code and leaves the model as it was; the rest of the work then succeeds, and
// nothing is held in the end.
#include "frame/model_store.h"
#include "support/model_text.h"
#include <functional>
#include <gtest/gtest.h>

#ifdef TVX_DEBUG
namespace
{

using Call = std::function<int(TVXmodel *)>;
using Phase = std::vector<Call>; // what is queued before one update

int queue_vars(TVXmodel *model)
{
    const double ub[] = {4, 5, 1e20, 1};
    const double obj[] = {1, 2, 3, 4};
    char *names[] = {const_cast<char *>("a"), nullptr, const_cast<char *>("c"), nullptr};
    return TVXaddvars(model, 4, 0, nullptr, nullptr, nullptr, obj, nullptr, ub, "CCIB",
                      names);
}

int queue_constrs(TVXmodel *model)
{
    const int beg[] = {0, 2, 4};
    const int ind[] = {0, 1, 1, 2, 3};
    const double val[] = {1, 2, 3, 4, 5};
    const double rhs[] = {10, -2, 3};
    return TVXaddconstrs(model, 3, 5, beg, ind, val, "<>=", rhs, nullptr);
}

int queue_range(TVXmodel *model)
{
    const int ind[] = {0, 3};
    const double val[] = {1, 1};
    return TVXaddrangeconstr(model, 2, ind, val, 1, 5, "range");
}

int queue_sos(TVXmodel *model)
{
    const int type = 2;
    const int beg = 0;
    const int ind[] = {2, 0, 1};
    const double weight[] = {3, 1, 2};
    return TVXaddsos(model, 1, 3, &type, &beg, ind, weight);
}

int queue_column(TVXmodel *model)
{
    const int ind[] = {0, 1};
    const double val[] = {7, 8};
    return TVXaddvar(model, 2, ind, val, 1, -1e30, 9, 'C', "late");
}

int queue_coefs(TVXmodel *model)
{
    const int rows[] = {0, 1, 2, 1};
    const int vars[] = {0, 0, 0, 1};
    const double values[] = {0, 6, 7, -3};
    return TVXchgcoeffs(model, 4, rows, vars, values);
}

int queue_deletions(TVXmodel *model)
{
    const int var = 3;
    const int row = 2;
    if (const int error = TVXdelvars(model, 1, &var)) return error;
    return TVXdelconstrs(model, 1, &row);
}

int queue_attributes(TVXmodel *model)
{
    for (const auto &[name, value] : {std::pair{"LB", 1.0}, {"UB", 3.0}, {"Obj", -1.0}})
        if (const int error = TVXsetdblattrelement(model, name, 0, value)) return error;
    if (const int error = TVXsetcharattrelement(model, "Sense", 0, '>')) return error;
    if (const int error = TVXsetcharattrelement(model, "VType", 1, 'I')) return error;
    if (const int error = TVXsetstrattrelement(model, "VarName", 1, "renamed"))
        return error;
    if (const int error = TVXsetstrattrelement(model, "ConstrName", 0, "row")) return error;
    if (const int error = TVXsetstrattr(model, "ModelName", "changed")) return error;
    return TVXsetintattr(model, "ModelSense", -1);
}

int read_all(TVXmodel *model)
{
    int count = 0;
    int constrs = 0;
    if (const int error = TVXgetintattr(model, "NumConstrs", &constrs)) return error;
    return constrs ? TVXgetconstrs(model, &count, nullptr, nullptr, nullptr, 0, constrs)
                   : 0;
}

int copy_and_free(TVXmodel *model)
{
    TVXmodel *copy = TVXcopymodel(model);
    return copy ? TVXfreemodel(copy) : TVX_ERROR_OUT_OF_MEMORY;
}

// A start for the present shape, all slacks basic: so that updates have a basis to carry over.
int set_start(TVXmodel *model)
{
    int n = 0;
    int m = 0;
    TVXgetintattr(model, "NumVars", &n);
    TVXgetintattr(model, "NumConstrs", &m);
    const std::vector<int> vars(static_cast<size_t>(n), TVX_NONBASIC_LOWER);
    const std::vector<int> constrs(static_cast<size_t>(m), TVX_BASIC);
    if (const int error = TVXsetintattrarray(model, "VBasis", 0, n, vars.data()))
        return error;
    return TVXsetintattrarray(model, "CBasis", 0, m, constrs.data());
}

const std::vector<Phase> PHASES = {
    {queue_vars},
    {queue_constrs, queue_range, queue_sos},
    {read_all, queue_column, queue_coefs, queue_deletions},
    {queue_attributes, queue_coefs, set_start},
    {read_all, copy_and_free, queue_constrs, queue_column, queue_range},
};

struct Sweep {
    TVXenv *env = nullptr;
    TVXmodel *model = nullptr;
    int faults = 0; // calls that ran out of memory

    // A call under the injector: after a fault it must have changed nothing, and work again.
    void run(const Call &call, const char *what);
    void update(const Phase &phase);
    void play();
};

int code_of(const Call &call, TVXmodel *model)
{
    const int64_t hits = mem_fault_hits();
    const int code = call(model);
    EXPECT_TRUE(code == 0 || code == TVX_ERROR_OUT_OF_MEMORY) << code;
    if (code == 0) return 0;
    EXPECT_GT(mem_fault_hits(), hits);
    EXPECT_STREQ(TVXgetmerrormsg(model), "Out of memory");
    mem_fault_arm(0);
    char where[BODY_CHECK_LENGTH];
    EXPECT_EQ(body_check(model->body, model->env->TARV_PAR_INFBOUND, where), 0) << where;
    return code;
}

void Sweep::run(const Call &call, const char *what)
{
    if (code_of(call, model) == 0) return;
    faults++;
    EXPECT_EQ(call(model), 0) << what;
}

void Sweep::update(const Phase &phase)
{
    for (const Call &call : phase) run(call, "queueing");
    if (code_of(TVXupdatemodel, model) == 0) return;
    faults++;
    int status = -1;
    EXPECT_EQ(TVXgetintattr(model, "Status", &status), 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(model->pending, nullptr);
    for (const Call &call : phase) EXPECT_EQ(call(model), 0); // the queue was lost
    EXPECT_EQ(TVXupdatemodel(model), 0);
}

void Sweep::play()
{
    const auto make = [this] {
        return TVXnewmodel(env, &model, "swept", 0, nullptr, nullptr, nullptr, nullptr,
                           nullptr);
    };
    if (make()) {
        EXPECT_EQ(model, nullptr);
        faults++;
        mem_fault_arm(0);
        ASSERT_EQ(make(), 0);
    }
    for (const Phase &phase : PHASES) update(phase);
    run(TVXresetmodel, "reset");
}

TEST(ModelMemory, EveryFailedAllocationLeavesAModelThatWorks)
{
    Sweep sweep;
    ASSERT_EQ(TVXloadenv(&sweep.env, nullptr), 0);
    TVXsetintparam(sweep.env, "OutputFlag", 0);
    sweep.play();
    const std::string expected = model_text(sweep.model);
    TVXfreemodel(sweep.model);
    const int64_t held = mem_blocks_held();
    for (int fail_at = 1;; fail_at++) {
        SCOPED_TRACE(fail_at);
        Sweep one;
        one.env = sweep.env;
        mem_fault_arm(fail_at);
        one.play();
        mem_fault_arm(0);
        ASSERT_EQ(model_text(one.model), expected);
        TVXfreemodel(one.model);
        ASSERT_EQ(mem_blocks_held(), held);
        ASSERT_FALSE(HasFailure());
        if (one.faults == 0) {
            EXPECT_GT(fail_at, 100) << "the sweep met few allocations";
            break;
        }
    }
    TVXfreeenv(sweep.env);
}

TEST(ModelMemory, LoadingAndCopyingAWholeModelHoldsNothingAfterAFailure)
{
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
    TVXsetintparam(env, "OutputFlag", 0);
    const int beg[] = {2, 0}; // out of order, so that the check of overlaps runs too
    const int len[] = {1, 2};
    const int ind[] = {0, 1, 1};
    const double val[] = {1, 2, 3};
    const double rhs[] = {4, 5};
    char *names[] = {const_cast<char *>("n0"), nullptr};
    const int64_t held = mem_blocks_held();
    for (int fail_at = 1;; fail_at++) {
        TVXmodel *model = nullptr;
        mem_fault_arm(fail_at);
        const int code =
            TVXloadmodel(env, &model, "m", 2, 2, -1, 1, nullptr, "<>", rhs, beg, len, ind,
                         val, nullptr, nullptr, "CI", names, names);
        TVXmodel *copy = code == 0 ? TVXcopymodel(model) : nullptr;
        const bool complete = mem_fault_hits() == 0;
        mem_fault_arm(0);
        ASSERT_TRUE(code == 0 || (code == TVX_ERROR_OUT_OF_MEMORY && !model)) << code;
        EXPECT_EQ(copy != nullptr, complete);
        TVXfreemodel(copy);
        TVXfreemodel(model);
        ASSERT_EQ(mem_blocks_held(), held) << fail_at;
        if (complete) break;
    }
    TVXfreeenv(env);
}

} // namespace
#endif
