// model_gen.cpp -- random tiny LPs, see the header
#include "support/model_gen.h"
#include <algorithm>
#include <cmath>

namespace
{
// What one model is made with.
struct Flavour {
    int density = 50;         // percent of entries that are not 0
    int magnitude = 3;        // of the entries
    bool plant_point = false; // rhs from a point within the bounds
    bool plant_dual = false;  // objective from multipliers of the right signs
    bool all_tight = false;   // every planted row holds with equality: degenerate
};
} // namespace

static void add_random_var(Dice *dice, LpModel *lp)
{
    const double inf = LP_INFINITY, low = dice->range(-5, 4),
                 high = low + dice->range(1, 6);
    const double obj = dice->chance(25) ? 0 : dice->nonzero(6);
    const bool crossed = dice->chance(30);
    const struct {
        int percent; // of all variables, with those before
        double lb, ub;
    } kinds[] = {{40, 0, inf},
                 {52, 0, double(dice->range(1, 8))},
                 {64, low, high},
                 {74, -inf, inf},
                 {82, -inf, high},
                 {90, low, inf},
                 {95, low, low},
                 {98, 0, 0},
                 {100, crossed ? high : dice->range(-2000, 0),
                  crossed ? low : dice->range(1, 2000)}};
    const int ticket = dice->range(1, 100);
    const auto *kind = kinds;
    while (kind->percent < ticket) kind++;
    lp_add_var(lp, obj, kind->lb, kind->ub);
}

static char random_sense(Dice *dice)
{
    const int kind = dice->range(1, 10);
    return kind <= 4 ? '<' : kind <= 7 ? '>' : '=';
}

// An integer point within the bounds (where they are not crossed).
static std::vector<double> random_point(Dice *dice, const LpModel *lp)
{
    std::vector<double> x;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const double lb = lp->lb[j], ub = lp->ub[j];
        double value = dice->range(-4, 4);
        if (dice->chance(40)) value = lp_is_infinite(lb) ? ub : lb;
        if (dice->chance(20)) value = ub;
        if (lp_is_infinite(value)) value = dice->range(0, 3);
        value = std::min(std::max(value, lb), ub);
        x.push_back(value);
    }
    return x;
}

static void add_random_row(Dice *dice, const Flavour &flavour, LpModel *lp)
{
    const int row = lp_add_row(lp, random_sense(dice), dice->range(-6, 12));
    if (dice->chance(4)) return; // empty
    for (int j = 0; j < lp->num_vars(); j++)
        if (dice->chance(flavour.density))
            lp_set_entry(lp, row, j, dice->nonzero(flavour.magnitude));
}

// A row that repeats an earlier one, a multiple of it perhaps, perhaps with another sense or right-hand side.
static void add_parallel_row(Dice *dice, LpModel *lp)
{
    const int from = dice->range(0, lp->num_rows() - 1);
    const double factor = dice->chance(50) ? 1 : dice->nonzero(2);
    char sense = lp->senses[from];
    if (factor < 0 && sense != '=') sense = sense == '<' ? '>' : '<';
    if (dice->chance(30)) sense = random_sense(dice);
    double rhs = factor * lp->rhs[from];
    if (dice->chance(40)) rhs += dice->range(-3, 3);
    const int row = lp_add_row(lp, sense, rhs);
    for (int j = 0; j < lp->num_vars(); j++)
        lp_set_entry(lp, row, j, factor * lp_get_entry(lp, from, j));
}

static void copy_column(Dice *dice, LpModel *lp)
{
    const int from = dice->range(0, lp->num_vars() - 1);
    const int to = dice->range(0, lp->num_vars() - 1);
    lp->cols[to] = lp->cols[from];
    if (dice->chance(60)) lp->obj[to] = lp->obj[from];
}

static void plant_point(Dice *dice, const Flavour &flavour, LpModel *lp)
{
    const std::vector<long double> activity = lp_activity(lp, random_point(dice, lp));
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const int slack = flavour.all_tight || dice->chance(40) ? 0 : dice->range(1, 5);
        lp->rhs[i] = double(activity[i]);
        if (lp->senses[i] == '<') lp->rhs[i] += slack;
        if (lp->senses[i] == '>') lp->rhs[i] -= slack;
    }
}

// Objective = y A + d with signs that make (y, d) feasible for the dual.
static void plant_dual(Dice *dice, LpModel *lp)
{
    std::vector<double> y;
    for (const char sense : lp->senses) {
        double value = dice->chance(40) ? 0 : dice->range(1, 3);
        if (sense == '<' || (sense == '=' && dice->chance(50))) value = -value;
        y.push_back(value * lp->sense);
    }
    for (size_t j = 0; j < lp->obj.size(); j++) {
        double d = dice->chance(30) ? 0 : dice->nonzero(4);
        if (lp_is_infinite(lp->lb[j])) d = -std::fabs(d);
        if (lp_is_infinite(lp->ub[j])) d = lp_is_infinite(lp->lb[j]) ? 0 : std::fabs(d);
        d *= lp->sense;
        for (const LpEntry &e : lp->cols[j]) d += y[e.row] * e.value;
        lp->obj[j] = d;
    }
}

void stretch_lines(Dice *dice, LpModel *lp, int power)
{
    std::vector<double> row_factor;
    for (double &b : lp->rhs) {
        row_factor.push_back(std::pow(2.0, dice->range(-power, power)));
        b *= row_factor.back();
    }
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const double factor = std::pow(2.0, dice->range(-power, power));
        for (LpEntry &e : lp->cols[j]) e.value *= row_factor[e.row] * factor;
        lp->obj[j] *= factor;
        if (!lp_is_infinite(lp->lb[j])) lp->lb[j] /= factor;
        if (!lp_is_infinite(lp->ub[j])) lp->ub[j] /= factor;
    }
}

LpModel gen_planted(Dice *dice, int rows, int cols, int density, bool all_tight)
{
    const Flavour flavour = {.density = density, .magnitude = 5, .all_tight = all_tight};
    LpModel lp;
    lp.sense = dice->chance(50) ? 1 : -1;
    lp.objcon = dice->range(-50, 50);
    for (int j = 0; j < cols; j++) {
        add_random_var(dice, &lp);
        if (lp.lb[j] > lp.ub[j]) std::swap(lp.lb[j], lp.ub[j]);
    }
    for (int i = 0; i < rows; i++) add_random_row(dice, flavour, &lp);
    plant_point(dice, flavour, &lp);
    plant_dual(dice, &lp);
    return lp;
}

LpModel gen_tiny(Dice *dice, const TinyLimits &limits)
{
    LpModel lp;
    Flavour flavour;
    flavour.density = dice->range(2, 10) * 10;
    flavour.magnitude = dice->chance(80) ? 3 : 9;
    flavour.plant_point = dice->chance(60);
    flavour.plant_dual = dice->chance(45);
    flavour.all_tight = dice->chance(20);
    lp.sense = dice->chance(50) ? 1 : -1;
    lp.objcon = dice->chance(70) ? 0 : dice->range(-9, 9);

    const bool no_vars = dice->chance(1);
    const bool no_rows = dice->chance(2);
    const int n = no_vars ? 0 : dice->range(1, limits.max_vars);
    int m = no_rows ? 0 : dice->range(1, limits.max_rows);
    if (dice->chance(5)) m = std::min(m, 1);
    for (int j = 0; j < n; j++) add_random_var(dice, &lp);
    for (int i = 0; i < m; i++) {
        if (i > 0 && dice->chance(8))
            add_parallel_row(dice, &lp);
        else
            add_random_row(dice, flavour, &lp);
    }
    if (n > 1 && dice->chance(8)) copy_column(dice, &lp);
    if (flavour.plant_point) plant_point(dice, flavour, &lp);
    if (flavour.plant_dual) plant_dual(dice, &lp);
    if (dice->chance(4)) lp.obj.assign(lp.obj.size(), 0);
    if (dice->chance(limits.scaled_percent)) stretch_lines(dice, &lp, 8);
    return lp;
}
