// What an update does inside: which basis survives, what is freed and what is kept, and that the
// checker of bodies sees planted faults.
#include "frame/model_store.h"
#include "frame/warm_start.h"
#include "simplex/simplex.h"
#include "support/scratch.h"
#include <cmath>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <vector>

namespace
{

// maximise 3x + 2y + z  subject to  a: x + y + z <= 4,  b: x + 3y <= 6,  c: x - z >= -5,
// x in [0, 3], y and z nonnegative: x = 3 at its bound, y = 1, z = 0; b and c are slack.
class ModelUpdate : public testing::Test
{
  protected:
    TVXenv *env = nullptr;
    TVXmodel *model = nullptr;

    void SetUp() override
    {
        ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
        TVXsetintparam(env, "OutputFlag", 0);
        const double obj[] = {3, 2, 1};
        const double ub[] = {3, 1e100, 1e100};
        const double rhs[] = {4, 7, -5};
        const int vbeg[] = {0, 3, 5};
        const int vlen[] = {3, 2, 2};
        const int vind[] = {0, 1, 2, 0, 1, 0, 2};
        const double vval[] = {1, 1, 1, 1, 3, 1, -1};
        ASSERT_EQ(TVXloadmodel(env, &model, "lp", 3, 3, -1, 0, obj, "<<>", rhs, vbeg, vlen,
                               vind, vval, nullptr, ub, nullptr, nullptr, nullptr),
                  0);
    }
    void TearDown() override
    {
        TVXfreemodel(model);
        TVXfreeenv(env);
    }
    void optimize()
    {
        ASSERT_EQ(TVXoptimize(model), 0);
        ASSERT_EQ(status(), TVX_OPTIMAL);
        ASSERT_NE(model->simplex, nullptr);
    }
    void update() { ASSERT_EQ(TVXupdatemodel(model), 0); }
    int status()
    {
        int value = -1;
        TVXgetintattr(model, "Status", &value);
        return value;
    }
    double objective()
    {
        double value = NAN;
        EXPECT_EQ(TVXoptimize(model), 0);
        EXPECT_EQ(TVXgetdblattr(model, "ObjVal", &value), 0);
        return value;
    }
    std::vector<int> statuses()
    {
        std::vector<int> list;
        if (const WarmStart *warm = warm_start_usable(model))
            list.assign(warm->statuses.begin(), warm->statuses.end());
        for (int &s : list) s = s > 0 ? 0 : s;
        return list;
    }
    bool live() const { return model->simplex != nullptr; }
    void set_bound(const char *name, int j, double value)
    {
        ASSERT_EQ(TVXsetdblattrelement(model, name, j, value), 0);
    }
};

TEST_F(ModelUpdate, ChangedBoundsKeepTheLiveRecord)
{
    optimize();
    set_bound("UB", 0, 2);
    set_bound("LB", 2, 0.5);
    update();
    EXPECT_TRUE(live());
    EXPECT_EQ(status(), TVX_LOADED);
    EXPECT_EQ(model->lp_result, nullptr);
    double x = 0;
    EXPECT_EQ(TVXgetdblattrelement(model, "X", 0, &x), 10005);
    EXPECT_NEAR(objective(), 3 * 2 + 2 * 1.5 + 0.5, 1e-9);
}

TEST_F(ModelUpdate, BecomingFreeCarriesTheBasisInstead)
{
    optimize();
    set_bound("LB", 1, -1e30);
    update();
    EXPECT_FALSE(live());
    EXPECT_EQ(statuses().size(), 6u);
    EXPECT_NEAR(objective(), 11, 1e-9);
    set_bound("LB", 1, 0);
    update();
    EXPECT_FALSE(live()) << "ceasing to be free";
    EXPECT_EQ(statuses().size(), 6u);
    EXPECT_NEAR(objective(), 11, 1e-9);
}

TEST_F(ModelUpdate, ANonbasicVariableDoesNotStandOnABoundThatIsGone)
{
    optimize();
    ASSERT_EQ(TVXsetdblattrelement(model, "Obj", 2, 0),
              0); // so that the basis is carried over
    set_bound("LB", 2, -1e30);
    set_bound("UB", 2, 8);
    update();
    EXPECT_EQ(statuses()[2], TVX_NONBASIC_UPPER);
    set_bound("UB", 2, 1e30);
    update();
    EXPECT_EQ(statuses()[2], TVX_SUPERBASIC);
    set_bound("LB", 2, 1);
    update();
    EXPECT_EQ(statuses()[2], TVX_NONBASIC_LOWER);
    EXPECT_NEAR(objective(), 9, 1e-9); // x = 3, z = 1
}

// Changes after which statuses are carried over, and how long the list is then.
struct Carried {
    const char *what;
    std::function<void(TVXmodel *)> change;
    size_t size;
};

const int ONE_INDEX = 1;
const double ONE = 1;
const int B_ROW = 1; // its slack is basic at the optimum
const int Z_VAR = 2; // nonbasic at the optimum

const std::vector<Carried> CARRIED = {
    {"rhs", [](TVXmodel *m) { TVXsetdblattrelement(m, "RHS", 0, 3); }, 6},
    {"sense", [](TVXmodel *m) { TVXsetcharattrelement(m, "Sense", 1, '='); }, 6},
    {"objective", [](TVXmodel *m) { TVXsetdblattrelement(m, "Obj", 0, 9); }, 6},
    {"constant", [](TVXmodel *m) { TVXsetdblattr(m, "ObjCon", 9); }, 6},
    {"model sense", [](TVXmodel *m) { TVXsetintattr(m, "ModelSense", 1); }, 6},
    {"added variable",
     [](TVXmodel *m) { TVXaddvar(m, 1, &ONE_INDEX, &ONE, 1, 0, 1, 'C', nullptr); }, 7},
    {"added row",
     [](TVXmodel *m) { TVXaddconstr(m, 1, &ONE_INDEX, &ONE, '<', 1, nullptr); }, 7},
    {"added range",
     [](TVXmodel *m) { TVXaddrangeconstr(m, 1, &ONE_INDEX, &ONE, 0, 1, nullptr); }, 8},
    {"deleted slack row", [](TVXmodel *m) { TVXdelconstrs(m, 1, &B_ROW); }, 5},
    {"deleted nonbasic variable", [](TVXmodel *m) { TVXdelvars(m, 1, &Z_VAR); }, 5},
    {"coefficient", [](TVXmodel *m) { TVXchgcoeffs(m, 1, &B_ROW, &Z_VAR, &ONE); }, 6},
};

TEST_F(ModelUpdate, OtherChangesCarryABasisOver)
{
    for (const Carried &c : CARRIED) {
        TearDown();
        SetUp();
        optimize();
        c.change(model);
        update();
        EXPECT_FALSE(live()) << c.what;
        const std::vector<int> list = statuses();
        EXPECT_EQ(list.size(), c.size) << c.what;
        int n_basic = 0;
        for (const int s : list) n_basic += s >= 0;
        EXPECT_EQ(n_basic, model->body->numconstrs) << c.what;
        // The start leads to the same optimum as no start.
        TVXmodel *fresh = TVXcopymodel(model);
        double scratch = NAN;
        TVXoptimize(fresh);
        TVXgetdblattr(fresh, "ObjVal", &scratch);
        EXPECT_NEAR(objective(), scratch, 1e-7) << c.what;
        TVXfreemodel(fresh);
    }
}

TEST_F(ModelUpdate, CarriedStatusesAreInTheirNewPlaces)
{
    optimize(); // basic: y, slacks of b and c; x at upper, z and slack of a at lower
    ASSERT_EQ(TVXdelvars(model, 1, &Z_VAR), 0);
    ASSERT_EQ(TVXdelconstrs(model, 1, &B_ROW), 0);
    const double lb[] = {0, -1e30, -1e30};
    const double ub[] = {1, 1, 1e30};
    ASSERT_EQ(TVXaddvars(model, 3, 0, nullptr, nullptr, nullptr, nullptr, lb, ub, nullptr,
                         nullptr),
              0);
    ASSERT_EQ(TVXaddconstr(model, 1, &ONE_INDEX, &ONE, '<', 1, nullptr), 0);
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &ONE_INDEX, &ONE, 0, 1, nullptr), 0);
    update();
    // x, y | three added | the range variable | a, c | added row | range row
    EXPECT_EQ(statuses(), (std::vector<int>{-2, 0, -1, -2, -3, 0, -1, 0, 0, -1}));
}

const std::vector<Carried> DROPPED = {
    {"deleted basic variable", [](TVXmodel *m) { TVXdelvars(m, 1, &ONE_INDEX); }, 0},
    {"deleted tight row",
     [](TVXmodel *m) {
         const int a = 0;
         TVXdelconstrs(m, 1, &a);
     },
     0},
    {"type", [](TVXmodel *m) { TVXsetcharattrelement(m, "VType", 0, 'I'); }, 0},
    {"added integer",
     [](TVXmodel *m) { TVXaddvar(m, 0, nullptr, nullptr, 0, 0, 1, 'B', nullptr); }, 0},
    {"added SOS",
     [](TVXmodel *m) {
         const int type = 1;
         const int beg = 0;
         const int ind[] = {0, 1};
         const double weight[] = {1, 2};
         TVXaddsos(m, 1, 2, &type, &beg, ind, weight);
     },
     0},
};

TEST_F(ModelUpdate, WhatBreaksABasisDropsIt)
{
    for (const Carried &c : DROPPED) {
        TearDown();
        SetUp();
        optimize();
        c.change(model);
        update();
        EXPECT_FALSE(live()) << c.what;
        EXPECT_EQ(statuses().size(), c.size) << c.what;
    }
}

TEST_F(ModelUpdate, ABasicColumnThatChangesAsksForRepairUnlessTheParameterForbids)
{
    optimize();
    const int y = 1;
    const double seven = 7;
    ASSERT_EQ(TVXchgcoeffs(model, 1, &B_ROW, &y, &seven), 0);
    update();
    ASSERT_NE(warm_start_usable(model), nullptr);
    EXPECT_EQ(model->warm_start->repair, 1);
    optimize();
    TVXgetenv(model)->TARV_PAR_WARMBASIS = 0;
    ASSERT_EQ(TVXchgcoeffs(model, 1, &B_ROW, &y, &ONE), 0);
    update();
    EXPECT_EQ(warm_start_usable(model), nullptr);
}

TEST_F(ModelUpdate, NamesAloneLeaveTheSolvedState)
{
    optimize();
    ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 1, "renamed"), 0);
    ASSERT_EQ(TVXsetstrattrelement(model, "ConstrName", 0, nullptr), 0);
    ASSERT_EQ(TVXsetstrattr(model, "ModelName", ""), 0);
    update();
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_TRUE(live());
    double x = 0;
    EXPECT_EQ(TVXgetdblattrelement(model, "X", 0, &x), 0);
    char *name = nullptr;
    EXPECT_EQ(TVXgetstrattrelement(model, "VarName", 1, &name), 0);
    EXPECT_STREQ(name, "renamed");
    EXPECT_EQ(TVXgetstrattrelement(model, "ConstrName", 0, &name), 0);
    EXPECT_STREQ(name, "R0");
}

TEST_F(ModelUpdate, AnUpdateWithoutChangesKeepsEverything)
{
    optimize();
    update();
    EXPECT_EQ(status(), TVX_OPTIMAL);
    EXPECT_TRUE(live());
    set_bound("UB", 0, 2);
    update();
    const int tag = 77;
    model->body->solve_tag = tag;
    update(); // the record of pending changes is there, but empty
    EXPECT_EQ(model->body->solve_tag, tag);
    EXPECT_FALSE(model_has_pending(model));
}

TEST_F(ModelUpdate, ResetForgetsEverySolve)
{
    optimize();
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr), 0);
    ASSERT_EQ(TVXresetmodel(model), 0);
    EXPECT_EQ(model->body->numvars, 4);
    EXPECT_FALSE(live());
    EXPECT_EQ(statuses().size(), 0u);
    EXPECT_EQ(status(), TVX_LOADED);
    EXPECT_NEAR(objective(), 11, 1e-9);
}

// ---- The caller's start ----

class StartBasis : public ModelUpdate
{
  protected:
    void set_basis(std::vector<int> vars, std::vector<int> constrs)
    {
        ASSERT_EQ(TVXsetintattrarray(model, "VBasis", 0, 3, vars.data()), 0);
        ASSERT_EQ(TVXsetintattrarray(model, "CBasis", 0, 3, constrs.data()), 0);
    }
    std::string update_output()
    {
        TVXsetintparam(TVXgetenv(model), "OutputFlag", 1);
        Output output;
        update();
        const std::string text = output.text();
        TVXsetintparam(TVXgetenv(model), "OutputFlag", 0);
        return text;
    }
};

TEST_F(StartBasis, IsTakenWhenItIsOne)
{
    set_basis({-2, 0, -1}, {-1, 0, 0});
    EXPECT_EQ(update_output(), "");
    EXPECT_EQ(model->warm_start->kind, WARM_CHECKED);
    EXPECT_NEAR(objective(), 11, 1e-9);
    double iterations = -1;
    EXPECT_EQ(TVXgetdblattr(model, "IterCount", &iterations), 0);
    EXPECT_EQ(iterations, 0) << "it was optimal";
}

TEST_F(StartBasis, IsDiscardedWithAWarningWhenItIsNone)
{
    const char *warning = "Warning, invalid warm-start basis discarded\n";
    const int vars[] = {-2, 0, -1};
    ASSERT_EQ(TVXsetintattrarray(model, "VBasis", 0, 3, vars), 0);
    EXPECT_EQ(update_output(), warning) << "CBasis not set";
    set_basis({-2, 0, 0}, {-1, 0, 0});
    EXPECT_EQ(update_output(), warning) << "four basic";
    EXPECT_EQ(warm_start_usable(model), nullptr);
    const int basis[] = {-1, 0, 0};
    ASSERT_EQ(TVXsetintattrelement(model, "VBasis", 2, -1), 0); // completes it after all
    ASSERT_EQ(TVXsetintattrarray(model, "CBasis", 0, 3, basis), 0);
    EXPECT_EQ(update_output(), "");
    EXPECT_NE(warm_start_usable(model), nullptr);
}

TEST_F(StartBasis, DisplacesAnEarlierSolve)
{
    optimize();
    set_basis({-1, -1, -1}, {0, 0, 0});
    update();
    EXPECT_FALSE(live());
    EXPECT_EQ(status(), TVX_LOADED);
    EXPECT_EQ(statuses(), (std::vector<int>{-1, -1, -1, 0, 0, 0}));
    EXPECT_NEAR(objective(), 11, 1e-9);
}

TEST_F(StartBasis, SurvivesChangesOfBoundsWithItsNorms)
{
    set_basis({-2, 0, -1}, {-1, 0, 0});
    const double norms[] = {1, 2, 3};
    ASSERT_EQ(TVXsetdblattrarray(model, "VDualNorm", 0, 3, norms), 0);
    set_bound("UB", 0, 2);
    ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 0, 5), 0);
    update();
    ASSERT_NE(warm_start_usable(model), nullptr);
    EXPECT_EQ(model->warm_start->kind, WARM_CARRIED);
    EXPECT_EQ(model->warm_start->norms.size, 6);
    EXPECT_EQ(statuses(), (std::vector<int>{-2, 0, -1, -1, 0, 0}));
}

TEST_F(StartBasis, RefusesCodesThatMeanNothing)
{
    EXPECT_EQ(TVXsetintattrelement(model, "VBasis", 0, -4), 10003);
    EXPECT_STREQ(TVXgetmerrormsg(model), "Invalid VBasis value -4");
    EXPECT_EQ(TVXsetintattrelement(model, "CBasis", 0, -2), 10003);
    EXPECT_EQ(model->warm_start, nullptr);
    EXPECT_EQ(TVXsetdblattrelement(model, "VDualNorm", 0, 1), 10003) << "no start yet";
}

// ---- Pieces inside ----

TEST_F(ModelUpdate, CallsFromACallbackDoNotPullTheModelAway)
{
    model->busy = 1;
    EXPECT_EQ(TVXupdatemodel(model), 10017);
    EXPECT_EQ(TVXfreemodel(model), 10017);
    EXPECT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr), 10017);
    model->in_callback = 1;
    EXPECT_EQ(TVXupdatemodel(model), 10017);
    EXPECT_EQ(TVXresetmodel(model), 10017);
    EXPECT_EQ(TVXfreemodel(model), 10017);
    double value = 0;
    EXPECT_EQ(TVXgetcoeff(model, 1, 1, &value), 0);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr), 0);
    model->busy = model->in_callback = 0;
    update();
    EXPECT_EQ(model->body->numvars, 4);
}

TEST_F(ModelUpdate, TheSameBoundSetTwiceIsOneEntry)
{
    for (const double value : {5.0, 1e25, 7.0}) set_bound("UB", 1, value);
    set_bound("LB", 1, -1e20);
    const PendingBounds &bounds = model->pending->bound_changes;
    EXPECT_EQ(bounds.who.size, 2);
    update();
    EXPECT_EQ(model->body->ub[1], 7);
    EXPECT_EQ(model->body->lb[1], -INFINITE_BOUND);
    EXPECT_EQ(bounds.who.size, 0);
    EXPECT_EQ(bounds.upper_pos[1], -1);
    EXPECT_EQ(bounds.lower_pos[1], -1);
}

TEST_F(ModelUpdate, IntegerVariablesKeepIntegralBoundsWhateverIsSet)
{
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 0, 'B'), 0);
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 1, 'I'), 0);
    set_bound("LB", 1, 0.5);
    update();
    EXPECT_EQ(model->body->ub[0], 1);
    EXPECT_EQ(model->body->lb[1], 1);
    EXPECT_EQ(model->body->numintvars, 2);
    EXPECT_EQ(model->body->numbinvars, 1);
    set_bound("UB", 1, 4.5);
    set_bound("UB", 0, 4);
    update();
    EXPECT_EQ(model->body->ub[1], 4);
    EXPECT_EQ(model->body->ub[0], 1);
}

TEST_F(ModelUpdate, AStartPointMovesWithItsVariables)
{
    const double start[] = {1, 2, 3};
    ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, 3, start), 0);
    ASSERT_EQ(TVXdelvars(model, 1, &ONE_INDEX), 0);
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr), 0);
    update();
    ASSERT_EQ(model->mip_start.size, 3);
    EXPECT_EQ(model->mip_start[0], 1);
    EXPECT_EQ(model->mip_start[1], 3);
    EXPECT_EQ(model->mip_start[2], START_UNSET);
}

TEST_F(ModelUpdate, NamesThatComeAndGoDoNotPileUp)
{
    const std::string text(1000, 'n');
    for (int round = 0; round < 20000; round++) { // 20 MB of names in all
        ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 0, text.c_str()), 0);
        update();
        ASSERT_LT(model->body->name_bytes, 3 << 20);
    }
    char *name = nullptr;
    ASSERT_EQ(TVXgetstrattrelement(model, "VarName", 0, &name), 0);
    EXPECT_EQ(name, text);
    ASSERT_EQ(TVXgetstrattrelement(model, "VarName", 1, &name), 0);
    EXPECT_STREQ(name, "C1");
}

TEST_F(ModelUpdate, DuplicateTestsOutliveTheirNumbers)
{
    const int ind[] = {0, 1};
    const double val[] = {1, 1};
    ASSERT_EQ(TVXaddvar(model, 2, ind, val, 0, 0, 1, 'C', nullptr), 0);
    model->pending->constrs.stamp = INT32_MAX - 1;
    for (int k = 0; k < 4; k++) {
        EXPECT_EQ(TVXaddvar(model, 2, ind, val, 0, 0, 1, 'C', nullptr), 0);
        const int twice[] = {2, 2};
        EXPECT_EQ(TVXaddvar(model, 2, twice, val, 0, 0, 1, 'C', nullptr), 10018);
    }
    update();
    EXPECT_EQ(model->body->numvars, 8);
}

TEST_F(ModelUpdate, AThousandAddsAreOneModel)
{
    for (int k = 0; k < 1000; k++) {
        const int row = k % 3;
        const double value = k + 1;
        ASSERT_EQ(TVXaddvar(model, 1, &row, &value, k, 0, k, 'C', nullptr), 0);
        const int var = k % 2;
        ASSERT_EQ(TVXaddconstr(model, 1, &var, &value, k % 3 ? '<' : '>', k, nullptr), 0);
    }
    update();
    const ModelBody *body = model->body;
    ASSERT_EQ(body->numvars, 1003);
    ASSERT_EQ(body->numconstrs, 1003);
    ASSERT_EQ(body->numnz, 2007);
    EXPECT_EQ(body->vlen[0], 503);
    for (int k = 0; k < 1000; k++) {
        double value = 0;
        ASSERT_EQ(TVXgetcoeff(model, k % 3, 3 + k, &value), 0);
        ASSERT_EQ(value, k + 1);
        ASSERT_EQ(TVXgetcoeff(model, 3 + k, k % 2, &value), 0);
        ASSERT_EQ(value, k + 1);
        ASSERT_EQ(body->ub[3 + k], k);
    }
}

#ifdef TVX_DEBUG
TEST_F(ModelUpdate, TheCheckerSeesPlantedFaults)
{
    ModelBody *body = model->body;
    char where[BODY_CHECK_LENGTH];
    const double infinite = model->env->TARV_PAR_INFBOUND;
    ASSERT_EQ(body_build_rows(body), 0);
    ASSERT_EQ(body_check(body, infinite, where), 0) << where;
    // Each fault is planted, seen, and taken back.
    const auto sees = [&](auto &place, auto fault, const char *text) {
        const auto good = place;
        place = static_cast<std::remove_reference_t<decltype(place)>>(fault);
        EXPECT_GT(body_check(body, infinite, where), 0) << text;
        EXPECT_STREQ(where, text);
        place = good;
        EXPECT_EQ(body_check(body, infinite, where), 0) << where;
    };
    sees(body->numvars, 4, "obj has the wrong size, -1");
    sees(body->sense, 0, "sense, 0");
    sees(body->ub[1], 1e25, "bounds of variable, 1");
    sees(body->bound_kind[1], 3, "bound_kind of variable, 1");
    sees(body->numintvars, 1, "numintvars, -1");
    sees(body->row_flipped, -1, "row_flipped, -1");
    sees(body->vlen[0], 2, "start or length of column, 0");
    sees(body->vind[1], 0, "row index in column, 0");
    sees(body->vind[4], 3, "row index in column, 1");
    sees(body->rhs[2], NAN, "rhs of row, 2");
    sees(body->row_val[0], 9.0, "row-wise copy, column, 0");
}
#endif

} // namespace
