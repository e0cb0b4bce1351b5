// strong_branch_test.cpp -- the record as it was after strong branching, what TVXstrongbranch refuses, and huge values
//
// Its values are judged by the random programs of fuzz/corpus_test.cpp, exactly, and in simplex/resolve_test.cpp.
#include "simplex/dual.h"
#include "support/model_test.h"
#include "support/structured_gen.h"
#include <cfloat>
#include <cmath>

namespace
{
constexpr double MANY = 1e9; // iterations

using StrongBranching = ModelTest;
} // namespace

// The record of the simplex itself, to the last bit: basis, values, reduced costs and weights.
TEST_F(StrongBranching, brings_the_record_back_after_each_probe)
{
    double iterations = 0;
    for (const FamilyRow &family : all_families()) {
        SCOPED_TRACE(family.name);
        load(generated(family.generate, 30, 4));
        ASSERT_EQ(simplex_alone(model, {.Method = METHOD_DUAL}), 0);
        sopt *s = model->lp.simplex;
        if (s->Status != SIMPLEX_OPTIMAL || s->Quad) continue;
        ASSERT_EQ(simplex_refactor(s), 0);
        StrongBranch *branch = nullptr;
        ASSERT_EQ(strong_branch_open(s, &branch), 0);
        const auto record = [s] {
            swork<double> *w = s->Double;
            std::vector<double> all(w->Bbar.begin(), w->Bbar.end());
            for (const Array<double> *list :
                 {&w->Cbar, &w->Dual->Weights, &s->Lower, &s->Upper, &s->WorkLower,
                  &s->WorkUpper, &s->BasicLower, &s->BasicUpper})
                all.insert(all.end(), list->begin(), list->end());
            for (const Array<int> *list : {&s->VStat, &s->BasisHead})
                all.insert(all.end(), list->begin(), list->end());
            return all;
        };
        const std::vector<double> before = record();
        for (int j = 0; j < s->NumCols; j++)
            for (const BranchSide side : {BranchSide::DOWN, BranchSide::UP}) {
                const double x = simplex_place(s, j).Value;
                BranchOutcome outcome;
                ASSERT_EQ(strong_branch_probe(branch, j, side,
                                              side == BranchSide::DOWN ? x - 0.5 : x + 0.5,
                                              20, &outcome),
                          0);
                iterations += outcome.Iterations;
                ASSERT_EQ(record(), before) << j;
            }
        strong_branch_close(branch);
    }
    EXPECT_GT(iterations, 500);
}

TEST_F(StrongBranching, refuses_what_it_cannot_do)
{
    load(lp_make({{1}}, {{{2}, '<', 7}}, -1));
    const int ind[] = {0, 1};
    double down = -1, up = -1;
    int status = -1;
    const auto probe = [&](TVXmodel *m, int count, const int *list, double limit) {
        return TVXstrongbranch(m, count, list, limit, &down, &up, &status);
    };
    refused(10005, "Requested data not available", probe(model, 1, ind, 10));
    EXPECT_EQ(status, 0);
    EXPECT_EQ(objective(), 3.5);
    EXPECT_EQ(probe(nullptr, 1, ind, 10), 10002);
    EXPECT_EQ(probe(model, 1, nullptr, 10), 10002);
    EXPECT_EQ(probe(model, -1, ind, 10), 10003);
    for (const double limit : {-1.0, double{NAN}})
        EXPECT_EQ(probe(model, 1, ind, limit), 10003);
    refused(10006, "Index 1 out of range for strong branching", probe(model, 2, ind, 10));
    EXPECT_TRUE(down == -1 && up == -1);
    EXPECT_EQ(TVXstrongbranch(model, 0, nullptr, 10, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(probe(model, 1, ind, 10), 0);
    EXPECT_TRUE(down == 3 && up == -1e100 && status == 2);
    ASSERT_EQ(TVXsetdblparam(own(), "Cutoff", 3.2), 0); // maximise: at least this
    EXPECT_EQ(objective(), 3.5);
    EXPECT_EQ(TVXstrongbranch(model, 1, ind, 10, &down, nullptr, &status), 0);
    EXPECT_EQ(down, -1e100);
    ASSERT_EQ(TVXsetdblparam(own(), "TimeLimit", 0), 0);
    EXPECT_EQ(probe(model, 1, ind, 10), 0);
    EXPECT_TRUE(down == 3.5 && up == 3.5 && status == TVX_TIME_LIMIT);
}

// What stands for no solution must not pass for the value of one, nor the other way round.
TEST_F(StrongBranching, values_as_large_as_the_one_for_no_solution_are_told_apart_from_it)
{
    const int ind[] = {0};
    double down = 0, up = 0;
    for (const int sense : {1, -1})
        for (const double cost : {1e99, 1e100, 1e101, 1e150}) {
            // cost x >= cost 2.5, x at most 2.75 or 8
            LpModel lp = lp_make({{sense * cost, 0, 8}}, {{{2}, '>', 5}}, sense);
            for (const bool open : {true, false}) {
                lp.ub[0] = open ? 8 : 2.75;
                load(lp, {{"Presolve", 0}});
                ASSERT_EQ(solved(), TVX_OPTIMAL) << cost;
                ASSERT_EQ(TVXstrongbranch(model, 1, ind, MANY, &down, &up, nullptr), 0);
                const double none = cost < 1e99 * 2.5 ? 1e100 : DBL_MAX;
                EXPECT_EQ(sense * down, none) << cost;
                if (open)
                    EXPECT_NEAR(sense * up / cost, 3, 1e-9) << cost;
                else
                    EXPECT_EQ(sense * up, none) << cost;
            }
        }
}
