// restart_test.cpp -- a search that goes on with a reduced body finds what one without restarts finds
#include "mip/mip_state.h"
#include "model/model.h"
#include "support/dice.h"
#include "support/mip_check.h"
#include "support/model_test.h"
#include <cmath>

namespace
{
constexpr int MODELS = 40, COLUMNS = 36, ROWS = 4;

// Knapsacks whose values are near their weights, so that trees are large; some columns continuous or general integer, some
// in a set; a few are so dear that reduced costs fix them.
LpModel knapsacks(Dice *dice)
{
    LpModel lp;
    lp.sense = -1;
    lp.objcon = dice->range(-5, 5);
    for (int i = 0; i < ROWS; i++) lp_add_row(&lp, '<', 0);
    for (int j = 0; j < COLUMNS; j++) {
        const bool poor = dice->chance(35);
        const int kind = dice->range(1, 10), weight = dice->range(20, 60);
        const double upper = kind > 8 ? dice->range(1, 3) : 1;
        lp_add_var(&lp, weight / (poor ? 4 : 1) + dice->range(-3, 3), 0, upper,
                   kind == 1  ? 'C'
                   : kind > 8 ? 'I'
                              : 'B');
        for (int i = 0; i < ROWS; i++) {
            const int a = weight + dice->range(-15, 15);
            lp_set_entry(&lp, i, j, a);
            lp.rhs[i] += 0.4 * a * upper;
        }
    }
    if (dice->chance(30)) lp.sets.push_back({1, {0, 1, 2}});
    return lp;
}

int restarts_of(const TVXmodel *model)
{
    return model->mip.search ? model->mip.search->Restart.Count : 0;
}

Settings settings(int limit, int focus, int nodes)
{
    return {{"TARV_PAR_MIPLIM", limit}, {"MIPFocus", focus},  {"MIPGap", 0},
            {"MIPGapAbs", 0},           {"NodeLimit", nodes}, {"Heuristics", 0}};
}

bool is_complete(const MipAnswer &answer)
{
    return answer.status != TVX_NODE_LIMIT;
}
} // namespace

TEST(Restart, changes_no_answer)
{
    TestEnv env;
    int restarts = 0, compared = 0;
    for (int seed = 0; seed < MODELS; seed++) {
        Dice dice(static_cast<uint64_t>(seed));
        const LpModel lp = knapsacks(&dice);
        const TestModel plain(lp_load(env.env, &lp, settings(0, 0, 3000)));
        const MipAnswer truth = mip_optimize(plain);
        EXPECT_EQ(restarts_of(plain), 0);
        for (const int focus : {0, 3}) {
            const Settings way = settings(1, focus, 3000);
            const TestModel one(lp_load(env.env, &lp, way));
            const MipAnswer answer = mip_optimize(one);
            restarts += restarts_of(one);
            EXPECT_EQ(mip_check(&lp, &answer, mip_tolerances(way)), "") << seed;
            if (!is_complete(truth) || !is_complete(answer)) continue;
            compared++;
            EXPECT_EQ(answer.status, truth.status) << seed;
            if (truth.has_point) {
                EXPECT_NEAR(answer.objval, truth.objval, 1e-6 * (1 + fabs(truth.objval)))
                    << seed;
            }
        }
    }
    EXPECT_GT(restarts, 10);
    EXPECT_GT(compared, MODELS);
}
