// ranges_test.cpp -- sensitivity ranges against the exact judge, at each end and just beyond it
//
// Within a range the optimal value moves along a line whose slope the solution tells: X for a cost, RC for the bound
// that holds a variable, Pi for a right-hand side. Beyond an end it leaves the line, when no tie lets another basis
// take over unseen.
// TARVEX_RANGES_COUNT=n   how many models (400); TARVEX_RANGES_SEED=s   the first of them (0)
#include "model/attribute_cache.h"
#include "simplex/sopt.h"
#include "support/model_gen.h"
#include "support/model_test.h"
#include "support/rational_lp.h"
#include <cmath>
#include <sstream>

namespace
{
constexpr double TIE = 1e-6;    // values closer than this to a limit are at it
constexpr double BEYOND = 0.25; // a visible step for data that are small integers
constexpr double FAR = 50;      // where a range has no end
constexpr double NEAR = 1e-6, SAME = 1e-9; // relative, of values that agree, or differ
constexpr double INSIDE = 1e-8;            // ends are rounded, the judge is not

// A number of the model that moves, and the line that the value follows.
struct Mover {
    std::string text;
    double *place;  // in the copy that is solved again
    double low, up; // the range
    double slope;
    bool no_ties; // beyond an end the value leaves the line
};

struct Ranges {
    LpModel lp;
    LpSolution solution;
    int at_ends = 0, beyond = 0;
    std::string wrong;

    // Is the value on the line there, or off it?
    void expect(const Mover &mover, double to, bool on, double tolerance)
    {
        const double from = std::exchange(*mover.place, to);
        const RationalResult truth = rational_solve(&lp);
        *mover.place = from;
        const double line =
            solution.objval + (mover.slope != 0 ? mover.slope * (to - from) : 0);
        const bool is_on =
            truth.status == LpStatus::OPTIMAL &&
            std::fabs(truth.value.get_d() - line) < tolerance * (1 + std::fabs(line));
        if (is_on == on) return;
        std::ostringstream text;
        text << mover.text << " = " << from << " in [" << mover.low << ", " << mover.up
             << "], slope " << mover.slope << (on ? ", off" : ", on") << " the line at "
             << to << "\n";
        wrong += text.str();
    }

    // side -1: the low end, +1: the up end
    void check_end(const Mover &mover, int side)
    {
        const double end = side < 0 ? mover.low : mover.up, now = *mover.place;
        if (lp_is_infinite(end)) {
            expect(mover, lp_is_infinite(now) ? now : now + side * FAR, true, NEAR);
            return;
        }
        EXPECT_GE(side * (end - now), -TIE) << mover.text;
        const bool here = std::fabs(end - now) < TIE;
        expect(mover, here ? now : end - side * INSIDE, true, NEAR);
        at_ends++;
        if (!mover.no_ties) return;
        beyond++;
        expect(mover, end + side * BEYOND, false, SAME);
    }
};

bool within(double value, double lower, double upper)
{
    return value > lower + TIE && value < upper - TIE;
}

bool primal_ties(const LpModel &lp, const LpSolution &s)
{
    for (int j = 0; j < lp.num_vars(); j++)
        if (s.vbasis[j] == 0 && !within(s.x[j], lp.lb[j], lp.ub[j])) return true;
    for (int i = 0; i < lp.num_rows(); i++)
        if (s.cbasis[i] == 0 && std::fabs(s.slack[i]) <= TIE) return true;
    return false;
}

bool dual_ties(const LpModel &lp, const LpSolution &s)
{
    for (int j = 0; j < lp.num_vars(); j++)
        if (s.vbasis[j] != 0 && lp.lb[j] < lp.ub[j] && std::fabs(s.rc[j]) <= TIE)
            return true;
    for (int i = 0; i < lp.num_rows(); i++)
        if (s.cbasis[i] != 0 && lp.senses[i] != '=' && std::fabs(s.pi[i]) <= TIE)
            return true;
    return false;
}

void check_ranges(TVXmodel *model, Ranges *r)
{
    LpModel *lp = &r->lp;
    const LpSolution &s = r->solution;
    const bool primal = primal_ties(*lp, s), dual = dual_ties(*lp, s);
    const auto check = [=](const std::string &name, int k, double *place, double slope,
                           bool ties) {
        Mover mover = {name + "[" + std::to_string(k) + "]", place, NAN, NAN, slope, !ties};
        for (double *end : {&mover.low, &mover.up}) {
            const std::string attribute = "SA" + name + (end == &mover.up ? "Up" : "Low");
            EXPECT_EQ(TVXgetdblattrelement(model, attribute.c_str(), k, end), 0);
        }
        for (const int side : {-1, 1}) r->check_end(mover, side);
    };
    for (int j = 0; j < lp->num_vars(); j++) {
        const double rc = s.vbasis[j] != 0 && std::fabs(s.rc[j]) > TIE ? s.rc[j] : 0;
        const bool up = lp->sense * rc < 0;
        check("Obj", j, &lp->obj[j], s.x[j], primal);
        check("LB", j, &lp->lb[j], up ? 0 : rc, dual);
        check("UB", j, &lp->ub[j], up ? rc : 0, dual);
    }
    for (int i = 0; i < lp->num_rows(); i++) check("RHS", i, &lp->rhs[i], s.pi[i], dual);
}

struct Sensitivity : ModelTest {
    // The bakery of the examples: 10 oven, 180 flour, 20 work; 5.82 of cake and 3.27 of bread.
    void bakery(bool solve)
    {
        load(lp_make({{45}, {80}, {30}},
                     {{{1, 1.5, 0.5}, '<', 10},
                      {{-14, -8, -9}, '>', -180},
                      {{0.6, 2, 0.8}, '<', 20}},
                     -1));
        if (solve) objective();
    }
    void unavailable()
    {
        double d = 0;
        for (const char *name : {"SAObjLow", "SALBUp", "SAUBLow"})
            refused(10005, "Unable to retrieve attribute '" + std::string(name) + "'",
                    TVXgetdblattrelement(model, name, 0, &d));
    }
};
} // namespace

TEST(SensitivityRanges, hold_up_to_their_ends_and_not_beyond)
{
    const TestEnv env;
    const int first = campaign("TARVEX_RANGES_SEED", 0),
              count = campaign("TARVEX_RANGES_COUNT", 400);
    int solved = 0, at_ends = 0, beyond = 0;
    for (int seed = first; seed < first + count && !testing::Test::HasFailure(); seed++) {
        Dice dice(seed);
        Ranges r;
        r.lp = gen_tiny(&dice, TinyLimits{.max_vars = 6, .max_rows = 5});
        const Settings settings = settings_draw(&dice);
        const TestModel model(lp_load(env.env, &r.lp, settings));
        ASSERT_EQ(lp_solve(model, &r.solution), 0);
        if (r.solution.status != TVX_OPTIMAL) continue;
        solved++;
        check_ranges(model, &r);
        EXPECT_EQ(r.wrong, "") << "TARVEX_RANGES_SEED=" << seed << "\n"
                               << lp_to_mps(&r.lp, settings_text(settings));
        at_ends += r.at_ends;
        beyond += r.beyond;
    }
    EXPECT_GT(solved, count / 4);
    EXPECT_GT(at_ends, count);
    EXPECT_GT(beyond, count / 2);
}

TEST_F(Sensitivity, is_there_for_an_optimal_lp_only)
{
    bakery(false);
    unavailable(); // not solved
    objective();
    EXPECT_GT(dbl("SAObjUp", 0), 45);
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 3), 0);
    update();
    unavailable(); // changed
    ASSERT_EQ(TVXsetdblparam(own(), "IterationLimit", 0), 0);
    ASSERT_EQ(TVXresetmodel(model), 0);
    ASSERT_EQ(TVXoptimize(model), 0);
    unavailable(); // stopped
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 0, 'I'), 0);
    static_cast<void>(TVXoptimize(model));
    unavailable(); // a MIP
}

TEST_F(Sensitivity, a_basis_that_is_lost_is_found_again)
{
    bakery(true);
    const std::vector<double> before = all("SARHSUp", 3);
    const double iterations = dbl("IterCount"), value = dbl("ObjVal");
    start_slack_basis(model->lp.simplex); // as if the factors had to be mended
    attributes_clear_solution(model);
    ASSERT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
    Output log;
    EXPECT_EQ(all("SARHSUp", 3), before);
    EXPECT_GT(dbl("SAObjUp", 1), 80);
    EXPECT_EQ(log.text(), "Warning: basis changed during sensitity analysis.\n");
    EXPECT_GT(dbl("IterCount"), iterations);
    EXPECT_DOUBLE_EQ(dbl("ObjVal"), value);
}
