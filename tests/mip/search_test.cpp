// search_test.cpp -- searches as a whole: nothing is lost on the way, and what a caller sees of a node is that node's
#include "support/mip_judge.h"
#include "support/model_test.h"

namespace
{
struct Search : ModelTest {
    // Two chains: one of two switches is 1, and its chain begins with 2 x_1 >= switch and goes on with
    // 2 x_k >= 2 x_(k-1) - 1: each x_k that is fixed at 1 makes the next one fractional. Least cost, or with y = 1 - x
    // greatest gain; one chain counts 3 / 4 of the other.
    LpModel chains(int length, int cheap, bool turned, double constant)
    {
        const char sense = turned ? '<' : '>';
        const double one = turned ? 1 : 0;
        LpModel lp;
        for (int k = 0; k < 2; k++) lp_add_var(&lp, 0, 0, 1, 'B');
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '=', 1);
        for (const int chain : {0, 1})
            for (int k = 0; k < length; k++) {
                const int x = lp_add_var(&lp, chain == cheap ? 0.75 : 1, 0, 1, 'B');
                if (k == 0)
                    lp_add_row_entries(&lp, {{x, 2}, {chain, turned ? 1 : -1}}, sense,
                                       2 * one);
                else
                    lp_add_row_entries(&lp, {{x, 2}, {x - 1, -2}}, sense, 2 * one - 1);
            }
        lp.sense = turned ? -1 : 1;
        lp.objcon = constant;
        return lp;
    }
};
} // namespace

// Strong branching closes one side after the other, more often than a node is looked at again.
TEST_F(Search, a_node_whose_sides_close_again_and_again_is_not_lost)
{
    constexpr int LENGTH = 40;
    for (const int cheap : {0, 1})
        for (const bool turned : {false, true})
            for (const double constant : {0., 100., -100.})
                for (const double rule : {-1., 0., 1., 2., 3.})
                    for (const double propagation : {0., 1.}) {
                        const double optimum = constant + LENGTH * (turned ? 1 : 0.75);
                        load(chains(LENGTH, cheap, turned, constant),
                             {{"Presolve", 0},
                              {"TARV_PAR_NODEPRE", propagation},
                              {"VarBranch", rule}});
                        ASSERT_EQ(solved(), TVX_OPTIMAL) << rule << turned << constant;
                        EXPECT_NEAR(dbl("ObjVal"), optimum, 1e-9) << rule << constant;
                        EXPECT_NEAR(dbl("ObjBound"), optimum, 1e-9) << rule << constant;
                    }
}
