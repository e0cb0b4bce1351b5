// traps_mip_test.cpp -- small models on which MIP solvers are known to go wrong
//
// Each is solved as it stands, with rows and columns shuffled, with the objective negated and shifted by 1e6, and all that
// with presolve off, default and aggressive, and with each reduction that uses duality off and on.
#include "support/mip_gen.h"
#include "support/mip_judge.h"
#include "support/model_test.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double INFEASIBLE = NAN; // as the value of a trap

struct Trap {
    const char *name; // what goes wrong
    const char *text; // LP format, without its end; semicolons end lines
    double value;     // or INFEASIBLE
};

const Trap TRAPS[] = {
    // Levels of dual arguments
    {"level_rounded", "min 2x+3y st x+y>=4.5 x+y<=10 general y", 9},
    {"level_of_integer", "min x+2y st x+y>=20.1 bounds x<=20 8<=y<=20 general x", 28.2},
    {"level_through_big_m", "min 2b+99999z st a+b=10 a-100z<=0 binary z", 20},
    {"level_of_two_columns",
     "min 10d0+8d1 st y0-1000z0<=0 y1-1000z1<=0 y0+d0=1000 y1+d1=1000 z0+z1<=1 binary z0 "
     "z1",
     8000},
    {"level_of_absolute_value",
     "min 100g+.01t st g+x=3 t-x>=0 t+x>=0 bounds .45<=x<=3 general x", .03},
    // Propagation
    {"conflict_with_infinite_activity",
     "max x1+x2 st x3-x1>=0; 1000z-x2>=0 z+x2<=12 bounds -inf<=x3<=1 binary z", 12},
    {"fractional_bounds_in_tightening",
     "min x1 st x1-x2>=0 x0+x2-x3=0; 68x2+x3<=12 bounds x0 free x1 free general x0 x1 x3",
     0},
    {"probing_general_integers",
     "min 9856x+444y st x+y<=5; .63x+1.27y>=.65; .63x+1.27y<=1.28 general x y", 444},
    {"epigraph", "min t st 4z+4b+t>=3; 4c+t>=1 z+b+c=1 binary z", 0},
    // Implied integers
    {"half_of_a_sum", "min x st 2x-i-j=0 i-j=1 general i j", .5},
    {"distance_to_an_integer", "min x st x-i>=.5 bounds i>=1 general i", 1.5},
    {"below_an_integer", "max x st x-i<=0 bounds x<=2.5 i<=3 general i", 2.5},
    // Aggregation
    {"integrality_of_the_eliminated", "min x+y st 2x+3y=7 general x y", 3},
    {"column_step", "max y st x-.5y=0 bounds y<=3.5 general x", 2},
    {"short_parallel_column", "min x+y st x+y>=2.3 x+y+w<=9 bounds x<=3 y<=.2 general x",
     3},
    // Cliques
    {"clique_of_big_m_row", "max x+y-.1z st 3x+3y-10z<=5 binary x y z", 1.9},
    {"clique_of_both_signs", "max x-y st x+y>=1 binary x y", 1},
    {"merged_cliques", "max x st x+y<=1 y+z<=1 x+z<=1 x+y+z>=1.5 binary x y z", INFEASIBLE},
    // Cuts
    {"rounding_over_negative_column", "max x+.1y st x+y<=2.5 bounds x<=5 y>=-10 general x",
     4.75},
    {"variable_bounds_of_both_signs",
     "min 5z1-3z2+y1+2y2 st y1+y2>=6 y1-5z1<=0 y2+5z2<=8 binary z1 z2", 9},
    {"trickle_flow", "min z st y-1000000z<=0 y>=.9 binary z", 1},
    {"granularity_of_thirds",
     "min .3333333333333333x+.6666666666666666y st x+y>=2.5; 2x-y<=2 general x y",
     1.6666666666666665},
    {"granularity_of_tenths", "min .1x+.2y st 3x+4y>=10 x<=2 general x y", .4},
    // Fractional bounds
    {"no_integers_in_the_bounds", "min x st x+y<=1 bounds x>=.5 y>=.5 general x y",
     INFEASIBLE},
    {"upper_bound_with_fraction", "max x st x+y<=100 bounds x<=4.5 general x", 4},
    {"no_integers_on_a_line",
     "min w st 4y-w=0; 8x+w=-19 bounds w free x free y free general w x y", INFEASIBLE},
    // y may fall with x only in whole units, which may lead it below its bound
    {"whole_units_of_relief", "min 0x st y-x=2 bounds -2<=x<=0 .5<=y<=5.5 general x", 0},
    // Big numbers
    {"huge_cost_on_a_tiny_column",
     "max 10000000000x+n st .0001x<=1 n+x<=1.5 bounds x<=.000000001 general n", 11},
    {"big_coefficients", "max x+y st 100.4534x+1e12y<=1e12; 100.4534x-1e12y<=0 binary x y",
     1},
    {"large_integers_by_equations",
     "min 3x+y st 47x+19y=10000000002226; 23x+57y=10000000013254 general x y",
     615521855574},
    // Symmetry
    {"ties_of_symmetric_columns", "min z1 st z1+z2=1 binary z1 z2", 0},
    // Semi-continuous columns and sets
    {"semi_continuous", "min x st x>=.5 bounds 2<=x<=inf semi x", 2},
    {"semi_integer", "min x st x+0y>=.5 bounds 1.5<=x<=4.2 semi x general x", 2},
    {"semi_continuous_crossed", "max x st x+y<=1 bounds .0125<=x<=.00668 semi x", 0},
    {"semi_continuous_with_free_integers",
     "min x st 9x+7i>=13 x-i-j=0 bounds -inf<=i<=1 j free 1<=x<=3 general i j semi x", 1},
    {"set_without_bounds", "max x1+x2 st c1:x1<=3 c2:x2<=4 x1+x2<=10 sos s:S1::x1:1 x2:2",
     4},
    {"set_of_tiny_members",
     "max 1000000x+y st c:x+y<=100 bounds x<=.000009 y<=5 sos s:S1::x:1 y:2", 9},
    {"set_with_negative_bounds",
     "min x1+x2 st x1-x2<=9 bounds -3<=x1<=5 -2<=x2<=1 sos s:S1::x1:1 x2:2", -3},
    {"sets_that_share",
     "max 3x1+2x2+2x3 st x1+x2+x3<=9 bounds x1<=2 x2<=3 x3<=3 sos s:S1::x1:1 x2:2 "
     "t:S1::x1:1 x3:2 u:S2::x2:1 x1:2 x3:3",
     6},
};

// As the list of tests shows it.
void PrintTo(const Trap &trap, std::ostream *out)
{
    *out << trap.name;
}

struct TrapMip : ModelTest, testing::WithParamInterface<Trap> {
    LpModel lp;
    Dice dice{7};

    void SetUp() override
    {
        std::string text = GetParam().text;
        std::replace(text.begin(), text.end(), ';', '\n');
        load(text);
        ASSERT_EQ(lp_read_back(model, &lp), 0);
    }
};

// Reductions that keep one optimum only, on and off, at each level of presolve.
std::vector<Settings> ways()
{
    return settings_product({{"Presolve", {-1, 0, 2}},
                             {"TARV_PAR_DUALREDUCTION", {0, 1}},
                             {"TARV_PAR_PREDUALSLACK", {0, 1}},
                             {"Symmetry", {0, 2}}},
                            {{"MIPGap", 0}, {"MIPGapAbs", 0}, {"NodeLimit", 20000}});
}

void negate(LpModel *lp)
{
    lp->sense = -lp->sense;
    for (double &c : lp->obj) c = -c + 0.0; // no -0
    lp->objcon = -lp->objcon;
}

// What is wrong under any of the ways, with the model.
std::string solve_all_ways(TVXenv *env, const LpModel *lp, bool infeasible = false)
{
    MipTruth truth = mip_truth(lp);
    if (infeasible)
        truth.status = MipStatus::INFEASIBLE; // where a proof would take too long
    for (const Settings &way : ways()) {
        const TestModel one(lp_load(env, lp, way));
        const MipAnswer answer = mip_optimize(one);
        std::string wrong = mip_judge(lp, &truth, way, &answer);
        if (answer.status == TVX_NODE_LIMIT) wrong += "does not end\n";
        if (!wrong.empty()) return wrong + lp_to_mps(lp, settings_text(way));
    }
    return "";
}
} // namespace

TEST_P(TrapMip, answer_is_right_in_every_form_and_way)
{
    LpModel negated = lp, shifted = lp;
    negate(&negated);
    shifted.objcon += 1e6;
    std::vector<int> place;
    for (const LpModel &form :
         {lp, shuffled(&dice, lp, &place), negated, shuffled(&dice, shifted, &place)}) {
        EXPECT_EQ(solve_all_ways(env.env, &form, std::isnan(GetParam().value)), "");
    }
}

// The list and the exact judge, where that comes to an end.
TEST_P(TrapMip, listed_value_is_that_of_the_exact_judge)
{
    const MipTruth truth = mip_truth(&lp);
    const double value = GetParam().value, known = truth.value.get_d();
    if (truth.status == MipStatus::UNKNOWN) GTEST_SKIP() << "too long a proof";
    const char *expected = std::isnan(value) ? "infeasible" : "optimal";
    ASSERT_EQ(mip_status_name(truth.status), std::string(expected));
    EXPECT_TRUE(std::isnan(value) ||
                std::fabs(known - value) <= 1e-9 * std::max(1.0, std::fabs(value)))
        << known;
}

static std::string trap_name(const testing::TestParamInfo<Trap> &trap)
{
    return trap.param.name;
}
INSTANTIATE_TEST_SUITE_P(All, TrapMip, testing::ValuesIn(TRAPS), trap_name);

// ---- Traps that need more than a model ----

namespace
{
struct TrapSearch : ModelTest {
    void set(const char *name, double value)
    {
        ASSERT_EQ(settings_apply(own(), {{name, value}}), 0) << name;
    }
};
} // namespace

// Rows of two binaries in all patterns of signs, against a table of their four points.
TEST_F(TrapSearch, literals_keep_their_directions)
{
    const auto clause =
        [](int signs) { // at least one of two literals holds; bit set: negated
            const double a = signs & 1 ? -1 : 1, b = signs & 2 ? -1 : 1;
            return LpRow{{a, b}, '>', 1.0 - (a < 0) - (b < 0)};
        };
    for (int pattern = 0; pattern < 64; pattern++) {
        LpModel lp =
            lp_make({{pattern & 16 ? 1. : -1., 0, 1}, {pattern & 32 ? 2. : -2., 0, 1}},
                    {clause(pattern), clause(pattern >> 2)});
        lp.types = {'B', 'B'};
        ASSERT_EQ(solve_all_ways(env.env, &lp), "") << pattern;
    }
}

// A system on which linear programming answers within tolerances mislead: no integers but 1, 2, 1, 2, ...
TEST_F(TrapSearch, chain_of_alternating_integers_is_feasible)
{
    constexpr int N = 20;
    LpModel lp;
    for (int i = 1; i <= N; i++)
        lp_add_var(&lp, i == N ? -1 : 0, 0, i < 14 ? 10 : 1e6, 'I');
    lp_add_row_entries(&lp, {{0, 7}, {1, -1}}, '>', 5);
    for (int i = 2; i < N; i++)
        lp_add_row_entries(&lp, {{i - 2, -6}, {i - 1, 7}, {i, -1}}, '>', i % 2 ? -7 : 7);
    lp_add_row_entries(&lp, {{N - 3, -6}, {N - 2, -17}, {N - 1, 3}}, '>', -23);
    load(lp, {{"MIPGap", 0}, {"NodeLimit", 1e6}});
    EXPECT_NEAR(objective(), -2, 1e-6);
    EXPECT_EQ(mip_check_point(&lp, all("X", N), {}), "");
}

// The start is dearer than what dual arguments leave: it is taken, and then improved on.
TEST_F(TrapSearch, start_that_dual_arguments_exclude_is_accepted_and_not_proved)
{
    const char *text = "min 2b+99999z st a+b=10 a-100z<=0 binary z";
    const double start[] = {0, 1, 10}; // b z a
    for (const double limit : {0.0, 1e100}) {
        load(std::string(text));
        set("NodeLimit", limit);
        ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, 3, start), 0);
        const MipAnswer answer = mip_optimize(model);
        ASSERT_EQ(answer.code, 0);
        if (answer.status == TVX_OPTIMAL)
            EXPECT_NEAR(answer.objval, 20, 1e-6);
        else
            EXPECT_LE(answer.objbound, 20 + 1e-6);
        EXPECT_GE(answer.sol_count, 1);
    }
}

// Costs that are nearly, but not, multiples of one number; a start that is nearly optimal; cutoffs at the optimum.
TEST_F(TrapSearch, granularity_cuts_nothing_off)
{
    load(std::string("min 1.0000001x+y st x+y>=3 bounds x<=3 y<=3 general x y"));
    set("MIPGap", 0);
    set("MIPGapAbs", 0);
    const double start[] = {3, 0};
    ASSERT_EQ(TVXsetdblattrarray(model, "Start", 0, 2, start), 0);
    EXPECT_NEAR(objective(), 3, 1e-8);
    for (const double above : {1e-5, 0.01, 0.3, 0.5, 0.9, 1.0})
        for (const double step : {1., 1. / 3, 0.1, 100.}) {
            const LpModel lp = [&] {
                LpModel m =
                    lp_make({{2 * step, 0, 5}, {3 * step, 0, 5}}, {{{2, 3}, '>', 7}});
                m.types = {'I', 'I'};
                m.objcon = 0.5;
                return m;
            }();
            const Settings cutoff = {{"Cutoff", 7 * step + 0.5 + above * step}};
            const MipTruth truth = mip_truth(&lp);
            load(lp, cutoff);
            const MipAnswer answer = mip_optimize(model);
            EXPECT_EQ(mip_judge(&lp, &truth, cutoff, &answer), "") << above << " " << step;
        }
}

// Symmetric columns and ties, stopped at nodes and continued: the optimum is that of one run.
TEST_F(TrapSearch, stopping_and_going_on_keeps_the_optimum)
{
    LpModel lp;
    for (int j = 0; j < 12; j++) lp_add_var(&lp, -1, 0, 3, 'I');
    for (int i = 0; i < 12; i++)
        lp_add_row_entries(&lp, {{i, 2}, {(i + 1) % 12, 2}, {(i + 5) % 12, 2}}, '<', 5);
    const MipTruth truth = mip_truth(&lp, 20000);
    ASSERT_EQ(truth.status, MipStatus::OPTIMAL);
    for (const double symmetry : {0., 2.}) {
        load(lp, {{"Symmetry", symmetry}, {"MIPGap", 0}});
        for (const double limit : {0., 1., 10., 100.}) {
            set("NodeLimit", limit);
            const MipAnswer stopped = mip_optimize(model);
            EXPECT_EQ(mip_judge(&lp, &truth, {{"NodeLimit", limit}}, &stopped), "")
                << limit;
        }
        set("NodeLimit", 1e100);
        const MipAnswer answer = mip_optimize(model);
        EXPECT_EQ(mip_judge(&lp, &truth, {}, &answer), "");
    }
}
