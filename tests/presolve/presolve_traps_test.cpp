// presolve_traps_test.cpp -- small models with integers on which a plausible reduction is wrong, with their optima
#include "support/mip_presolve_try.h"
#include <gtest/gtest.h>

constexpr double INF = LP_INFINITY;

static LpModel with_sets(LpModel lp, const std::vector<LpSet> &sets)
{
    lp.sets = sets;
    return lp;
}

// lp_make: columns {obj, lb, ub}, rows {coefficients, sense, side}.
static const std::vector<PresolveTrap> TRAPS = {
    {"the level that a row asks for, rounded", "CI",
     lp_make({{2}, {3}}, {{{1, 1}, '>', 4.5}, {{1, 1}, '<', 10}}), 9},
    {"the last unit overshoots", "IC",
     lp_make({{1, 0, 20}, {2, 8, 20}}, {{{1, 1}, '>', 20.1}}), 28.2},
    {"through a large coefficient", "CCB",
     lp_make({{0}, {2}, {99999, 0, 1}}, {{{1, 1}, '=', 10}, {{1, 0, -100}, '<', 0}}), 20},
    {"demand met by stock or production", "CCCCBB",
     lp_make({{0}, {0}, {10}, {8}, {0, 0, 1}, {0, 0, 1}}, {{{1, 0, 0, 0, -1000}, '<', 0},
                                                           {{0, 1, 0, 0, 0, -1000}, '<', 0},
                                                           {{1, 0, 1}, '=', 1000},
                                                           {{0, 1, 0, 1}, '=', 1000},
                                                           {{0, 0, 0, 0, 1, 1}, '<', 1}}),
     8000},
    {"an absolute value", "CIC",
     lp_make({{100}, {0, .45, 3}, {.01, -INF, INF}},
             {{{1, 1}, '=', 3}, {{0, -1, 1}, '>', 0}, {{0, 1, 1}, '>', 0}}),
     .03},
    {"fractional bounds in coefficients", "IICI",
     lp_make({{0, -INF, INF}, {1, -INF, INF}, {0}, {0}},
             {{{0, 1, -1}, '>', 0}, {{1, 0, 1, -1}, '=', 0}, {{0, 0, 68, 2}, '<', 12}}),
     0},
    {"half an integer", "CII",
     lp_make({{1}, {0, 0, 9}, {0, 0, 9}}, {{{2, -1, -1}, '=', 0}, {{0, 1, -1}, '=', 1}}),
     .5},
    {"an integer plus a half", "CI", lp_make({{1}, {0, 1}}, {{{1, -1}, '>', .5}}), 1.5},
    {"a continuous column below an integer", "CI",
     lp_make({{1, 0, 2.5}, {0, 0, 3}}, {{{1, -1}, '<', 0}}, -1), 2.5},
    {"integrality of the column that goes", "II", lp_make({{1}, {1}}, {{{2, 3}, '=', 7}}),
     3},
    {"of half the other column", "IC",
     lp_make({{0}, {1, 0, 3.5}}, {{{1, -.5}, '=', 0}}, -1), 2},
    {"a short continuous parallel column", "ICC",
     lp_make({{1, 0, 3}, {1, 0, .2}, {0}}, {{{1, 1}, '>', 2.3}, {{1, 1, 1}, '<', 9}}), 3},
    {"nearly fixed at a huge cost", "C", lp_make({{1e10, 0, 1e-9}}, {{{1e-4}, '<', 1}}, -1),
     10},
    {"bounds of one half", "II", lp_make({{0, .5}, {0, .5}}, {{{1, 1}, '<', 1}}), NAN},
    {"a fractional upper bound", "I", lp_make({{1, 0, 4.5}}, {}, -1), 4},
    {"residues that exclude each other", "III",
     lp_make({{0, -INF, INF}, {0, -INF, INF}, {0, -INF, INF}},
             {{{0, 4, -1}, '=', 0}, {{8, 0, 1}, '=', -19}}),
     NAN},
    {"sides of 1e13", "II",
     lp_make({{3}, {1}},
             {{{47, 19}, '=', 10000000002226}, {{23, 57}, '=', 10000000013254}}),
     3 * 169491525368.0 + 107047279470},
    {"coefficients of 1e12", "BB",
     lp_make({{-1, 0, 1}, {0, 0, 1}},
             {{{100.4534, 1e12}, '<', 1e12}, {{100.4534, -1e12}, '<', 0}}),
     0},
    {"a little flow", "CB", lp_make({{0, .9}, {1, 0, 1}}, {{{1, -1e6}, '<', 0}}), 1},
    {"semi-continuous above a row", "S", lp_make({{1, 2}}, {{{1}, '>', .5}}), 2},
    {"semi-integer with fractional bounds", "N", lp_make({{1, 1.5, 4.2}}, {{{1}, '>', .5}}),
     2},
    {"semi-continuous with crossed bounds", "S", lp_make({{-1, .0125, .00668}}, {}), 0},
    {"semi-continuous below zero", "SC",
     lp_make({{1, -3, -1}, {0, 0, .5}}, {{{1, 1}, '>', -.5}, {{2, 1}, '<', 4}}), -1},
    {"semi-continuous equal to integers", "SIII",
     lp_make({{1, 1, 3}, {0, -INF, 1}, {0, -INF, INF}, {0, -INF, INF}},
             {{{9, 7}, '>', 13}, {{1, -1, -1}, '=', 0}}),
     1},
    {"a set without bounds", "CC",
     with_sets(lp_make({{1}, {1}}, {{{1}, '<', 3}, {{0, 1}, '<', 4}}, -1), {{1, {0, 1}}}),
     4},
    {"a column that its row pushes up", "IC",
     lp_make({{0}, {1, 0, 3.3}}, {{{-1, 1}, '<', .1}}, -1), 3.3},
    {"a small cost of a large column", "I", lp_make({{-5e-7, 0, 1e6}}, {}), -.5},
    {"a tiny entry that alone bounds its column", "C",
     lp_make({{-1}}, {{{1e-14}, '<', 1e-13}}), -10},
    {"a set of fractions", "CC",
     with_sets(lp_make({{1, 0, 1}, {1, 0, 1}}, {{{5}, '<', 3}, {{0, 5}, '<', 3}}, -1),
               {{1, {0, 1}}}),
     .6},
    {"a zero between members", "CCC",
     with_sets(lp_make({{1, 0, 3}, {1, 0, 0}, {1, 0, 4}}, {}, -1), {{2, {0, 1, 2}}}), 4},
    {"negative members, shared", "CCC",
     with_sets(lp_make({{1, -2, 1}, {1, -3, 1}, {1, -4, 1}}, {}),
               {{1, {0, 1}}, {2, {0, 1, 2}}}),
     -7},
    {"a binary set as a row", "BIN",
     with_sets(lp_make({{1, 0, 1}, {2, 0, 1}, {3, 1, 1}}, {}, -1), {{1, {0, 1, 2}}}), 3},
};

TEST(PresolveTraps, every_switch_keeps_the_optimum)
{
    const std::vector<Settings> all = settings_product({{"TARV_PAR_DUALREDUCTION", {0, 1}},
                                                        {"Aggregate", {0, 1}},
                                                        {"TARV_PAR_PREBOUND", {0, 1}},
                                                        {"TARV_PAR_PRECOEFFICIENT", {0, 1}},
                                                        {"Presolve", {-1, 0, 2}}});
    for (const PresolveTrap &trap : TRAPS) EXPECT_EQ(mip_trap_faults(trap, all), "");
}
