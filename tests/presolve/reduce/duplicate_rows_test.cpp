// duplicate_rows_test.cpp -- of parallel rows one stays, with the price of what went
#include "support/presolve_try.h"
#include <gtest/gtest.h>

namespace
{
struct Side {
    double factor; // of x + 2 y
    char sense;
    double rhs;
};
struct Case {
    const char *name;
    std::vector<Side> sides;
    int rows; // left
    int status;
};
} // namespace

// min cost_x x + y, 0 <= x, y <= 10, and a third row that the others have nothing to do with
static LpModel with_parallel_rows(const std::vector<Side> &sides, double cost_x)
{
    LpModel lp;
    const int x = lp_add_var(&lp, cost_x, 0, 10), y = lp_add_var(&lp, 1, 0, 10);
    for (const Side &s : sides)
        lp_add_row_entries(&lp, {{x, s.factor}, {y, 2 * s.factor}}, s.sense, s.rhs);
    lp_add_row_entries(&lp, {{x, 3}, {y, -1}}, '<', 20);
    return lp;
}

TEST(DuplicateRows, rows_that_follow_from_others_go)
{
    const Case cases[] = {
        {"two equations", {{1, '=', 4}, {-2.5, '=', -10}}, 2, 0},
        {"two equations that contradict each other", {{1, '=', 4}, {2, '=', 9}}, 0, 3},
        {"an equation keeps an upper side", {{2, '<', 9}, {1, '=', 4}}, 2, 0},
        {"an equation breaks an upper side", {{2, '<', 7}, {1, '=', 4}}, 0, 3},
        {"an equation breaks a lower side", {{1, '=', 4}, {2, '>', 9}}, 0, 3},
        {"the tighter of two upper sides stays", {{1, '<', 4}, {3, '<', 9}}, 2, 0},
        {"the tighter of two lower sides stays", {{1, '>', 4}, {-3, '<', -15}}, 2, 0},
        {"a range stays", {{1, '<', 4}, {-1, '<', -2}}, 3, 0},
        {"a range of one point is an equation", {{1, '<', 4}, {-2, '<', -8}}, 2, 0},
        {"the same, one on top", {{1, '>', 4}, {2, '<', 8}, {1, '<', 5}}, 2, 0},
        {"a range of no point", {{1, '<', 4}, {-1, '<', -5}}, 0, 3},
        {"four sides, two of each",
         {{1, '<', 4}, {2, '<', 9}, {1, '>', 1}, {3, '>', 2}},
         3,
         0},
    };
    const TestEnv env;
    for (const Case &c : cases)
        for (const double cost_x :
             {1.0, -1.0}) { // either side of the rows may have the price
            const LpModel lp = with_parallel_rows(c.sides, cost_x);
            const PresolveTry t = presolve_try(env.env, &lp, {pre_duplicate_rows});
            EXPECT_EQ(t.status, c.status) << c.name;
            EXPECT_EQ(t.faults, "") << c.name;
            EXPECT_EQ(t.rows, c.rows) << c.name;
        }
}

TEST(DuplicateRows, rows_that_are_almost_parallel_stay)
{
    const TestEnv env;
    for (const double off : {1e-5, 1e-8}) {
        LpModel lp = with_parallel_rows({{1, '<', 4}, {1, '<', 4}}, -1);
        lp_set_entry(&lp, 1, 0, 1 + off);
        const PresolveTry t = presolve_try(env.env, &lp, {pre_duplicate_rows});
        EXPECT_EQ(t.rows, 3) << off;
        EXPECT_EQ(t.faults, "");
    }
}
