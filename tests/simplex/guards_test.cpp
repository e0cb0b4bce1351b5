// guards_test.cpp -- the remedies of a run that makes no progress: their order, when they come, and that they end; the
// checks of debug builds see what is planted
//
// That the checks are silent on sound solves is looked at in fuzz/api_watch.cpp.
#include "simplex/primal.h"
#include "support/model_test.h"
#include <functional>

namespace
{
struct Stall : ModelTest {
    sopt *s = nullptr;

    // A run that has not pivoted yet.
    void begin(SimplexMethod method, int phase1)
    {
        load(lp_make({{1, 0, 9}}, {{{1}, '>', 1}}),
             {{"Presolve", 0}, {"ScaleFlag", 0}, {"LPMethod", method}});
        ASSERT_EQ(TVXoptimize(model), 0);
        s = model->lp.simplex;
        s->Method = method;
        s->PerturbAllowed = 1;
        s->NPvt = s->NumFactor = 0;
        if (s->Double->Primal) s->Double->Primal->Phase1 = phase1 != 0;
        s->Stall = StallGuard{};
        stall_reset(s);
    }
    // The remedies that looks bring until the run is given up, `pivots` apart; `better`: each look finds progress.
    std::vector<StallRemedy> remedies(double pivots, bool better)
    {
        std::vector<StallRemedy> found;
        for (int look = 0; look < 2000; look++) {
            s->Status = SIMPLEX_RUNNING;
            s->NPvt += pivots;
            if (better)
                for (double &best : s->Stall.Best) best = INFINITE_BOUND;
            const StallRemedy remedy = stall_look(s, s->Double);
            if (remedy == STALL_NONE) continue;
            found.push_back(remedy);
            if (remedy == STALL_END) break;
            EXPECT_NE(s->Status, SIMPLEX_NUMERIC);
        }
        EXPECT_EQ(s->Status, SIMPLEX_NUMERIC) << "it goes on for ever";
        return found;
    }
};
const std::vector<StallRemedy> OF_DUAL = {STALL_PERTURB, STALL_SWITCH, STALL_EXTENDED,
                                          STALL_STRICT, STALL_END};
constexpr double FEW = 0, SOME = 20; // pivots between factorisations
} // namespace

TEST_F(Stall, every_remedy_is_taken_once_and_then_the_run_ends)
{
    for (const double pivots : {FEW, SOME}) {
        begin(METHOD_DUAL, 0);
        EXPECT_EQ(remedies(pivots, false), OF_DUAL);
        begin(METHOD_PRIMAL, 0);
        EXPECT_EQ(remedies(pivots, false), OF_DUAL);
        begin(METHOD_PRIMAL, 1);
        s->Double->Primal->CostWeight = 1;
        std::vector<StallRemedy> all = OF_DUAL;
        all.insert(all.begin(), STALL_COSTS);
        EXPECT_EQ(remedies(pivots, false), all);
    }
}

TEST_F(Stall, remedies_that_are_not_allowed_are_passed_over)
{
    begin(METHOD_DUAL, 0);
    s->PerturbAllowed = 0;
    ASSERT_EQ(TVXsetintparam(own(), "Quad", 0), 0);
    EXPECT_EQ(remedies(SOME, false),
              (std::vector<StallRemedy>{STALL_SWITCH, STALL_STRICT, STALL_END}));
}

TEST_F(Stall, progress_that_never_ends_is_none)
{
    begin(METHOD_DUAL, 0);
    EXPECT_EQ(remedies(SOME, true), OF_DUAL);
    EXPECT_GT(s->NPvt, 5000) << "a run that gets on is left alone for long";
}

#ifdef TVX_DEBUG
namespace
{
struct SelfCheck : ModelTest {
    // Solved by the dual without scaling, factors fresh; checks are on, and heard.
    sopt *solved(const LpModel &lp)
    {
        load(lp, {{"Presolve", 0}, {"ScaleFlag", 0}});
        EXPECT_EQ(TVXoptimize(model), 0);
        EXPECT_EQ(settings_apply(own(), {{"TARV_PAR_ITEST", 2}, {"OutputFlag", 1}}), 0);
        return model->lp.simplex;
    }
};

// max x + y within a pentagon: both are basic in the end.
LpModel pentagon()
{
    return lp_make({{3}, {2}, {1}},
                   {{{1, 1, 2}, '<', 4}, {{1, 0.5, 2}, '<', 3}, {{1}, '<', 9}}, -1);
}

struct Fault {
    const char *warning;
    CheckPoint point;
    std::function<void(sopt *)> plant;
};
} // namespace

TEST_F(SelfCheck, sees_each_planted_fault)
{
    int q = -1;
    const Fault faults[] = {
        {"Warning in ckdualeud: diff = 5.000000e+00, Dual=", CheckPoint::UPDATED,
         [](sopt *s) { s->Double->Cbar[s->NumCols] += 5; }},
        {"Warning in dckrdc: j=2, TCbar=", CheckPoint::UPDATED,
         [](sopt *s) { s->Double->Cbar[2] += 5; }},
        {"Warning in dckrhs: i=1, val=", CheckPoint::UPDATED,
         [](sopt *s) { s->Double->Bbar[1] += 5; }},
        {"Warning in beqlu: i=0, o=", CheckPoint::FACTORED,
         [](sopt *s) { s->Double->Lu.UDiag[0] *= 2; }},
        {"Warning in cksol\nsopt->Obj=", CheckPoint::FINISHED,
         [](sopt *s) { s->Obj += 5; }},
        {"Warning in ckrdcupd: Cbar1=", CheckPoint::COLUMN,
         [&q](sopt *s) {
             q = 2;
             load_column(s, q, &s->Double->Alpha);
             Ftran(&s->Double->Lu, &s->Double->Alpha, SOLVE_COLUMN, Keep::NO);
             s->Double->Cbar[q] += 5;
         }},
    };
    for (const Fault &fault : faults) {
        sopt *s = solved(pentagon());
        Output sound;
        for (const CheckPoint point :
             {CheckPoint::UPDATED, CheckPoint::FACTORED, CheckPoint::FINISHED})
            EXPECT_EQ(simplex_self_check(s, s->Double, point, -1), 0);
        const std::string silent = sound.text();
        EXPECT_EQ(silent.rfind("Maximum residual = ", 0), 0u) << silent;
        EXPECT_EQ(silent.find("Warning"), std::string::npos) << silent;
        fault.plant(s);
        Output heard;
        EXPECT_GT(simplex_self_check(s, s->Double, fault.point, q), 0);
        const std::string text = heard.text();
        EXPECT_NE(text.find(fault.warning), std::string::npos) << text;
    }
}

#endif
