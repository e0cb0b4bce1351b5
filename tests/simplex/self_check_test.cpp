// self_check_test.cpp -- the checks of debug builds see what is planted
//
// That they are silent on sound solves is looked at in fuzz/api_watch.cpp.
#ifdef TVX_DEBUG
#include "simplex/sopt.h"
#include "support/model_test.h"
#include <functional>

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
