// mip_gen.cpp -- the families; see the header
#include "support/mip_gen.h"
#include "support/model_gen.h"
#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{
constexpr double INF = LP_INFINITY;
using Terms = std::vector<std::pair<int, double>>; // column, coefficient

int add_integer(Dice *dice, LpModel *lp, double obj, int most)
{
    return lp_add_var(lp, obj, 0, dice->range(1, most), 'I');
}

int add_binary(LpModel *lp, double obj)
{
    return lp_add_var(lp, obj, 0, 1, 'B');
}

// Rows over columns that stand in the model, with a right-hand side that a point near the lower bounds reaches.
void add_rows(Dice *dice, int count, LpModel *lp)
{
    for (; count > 0; count--) {
        Terms row;
        double reached = dice->range(-2, 3);
        for (int j = 0; j < lp->num_vars(); j++) {
            if (!dice->chance(60)) continue;
            row.emplace_back(j, dice->nonzero(5));
            const double lb = lp->lb[j];
            if (!lp_is_infinite(lb)) reached += row.back().second * (std::floor(lb) + 1);
        }
        lp_add_row_entries(lp, row, "<>="[dice->range(0, 2)], reached);
    }
}

// ---- Of every type ----

// Bounds of every pattern: both signs, zero, infinite, fractional, and for semi-continuous columns above 0, below it,
// around it and crossed.
void add_typed(Dice *dice, char type, LpModel *lp)
{
    const double half = dice->chance(25) ? 0.5 : 0, low = dice->range(-4, 3) + half,
                 high = low + dice->range(0, 6) + (dice->chance(20) ? 0.25 : 0);
    const double cost = dice->chance(20) ? 0 : dice->nonzero(6);
    const std::pair<double, double> patterns[] = {{0, dice->range(1, 8)},
                                                  {low, high},
                                                  {dice->range(1, 3) + half, 7},
                                                  {-7, -dice->range(1, 3) - half},
                                                  {0, INF},
                                                  {-INF, high},
                                                  {-INF, INF},
                                                  {low, low},
                                                  {dice->range(1, 3), INF},
                                                  {-INF, -dice->range(1, 3)},
                                                  {3, 2}};
    const bool semi = type == 'S' || type == 'N';
    const int kinds = static_cast<int>(std::size(patterns)),
              kind = dice->range(0, dice->chance(60) ? 3 : kinds - (semi ? 1 : 2));
    lp_add_var(lp, cost, patterns[kind].first, patterns[kind].second, type);
}

void typed(Dice *dice, int size, LpModel *lp)
{
    const std::vector<char> types = {'C', 'C', 'B', 'I', 'I', 'I', 'S', 'N'};
    for (int n = dice->range(1, size); n > 0; n--) add_typed(dice, dice->pick(types), lp);
    add_rows(dice, dice->range(0, 4), lp);
}

void semi_continuous(Dice *dice, int size, LpModel *lp)
{
    for (int n = dice->range(1, size); n > 0; n--)
        add_typed(dice, dice->chance(60) ? 'S' : dice->chance(70) ? 'N' : 'C', lp);
    add_rows(dice, dice->range(1, 3), lp);
}

// Sets that share members; some have negative bounds, or none.
void sets(Dice *dice, int size, LpModel *lp)
{
    for (int n = dice->range(2, size); n > 0; n--) {
        const char type = dice->chance(70) ? 'C' : dice->chance(50) ? 'I' : 'S';
        const double low = dice->chance(75) ? 0 : -dice->range(1, 4);
        const double high = dice->chance(85) ? dice->range(1, 6) : INF;
        lp_add_var(lp, dice->nonzero(6), type == 'S' ? 1 : low, high, type);
    }
    for (int k = dice->range(1, 3); k > 0; k--) {
        std::vector<int> members(lp->obj.size());
        std::iota(members.begin(), members.end(), 0);
        dice->shuffle(&members);
        members.resize(static_cast<size_t>(dice->range(1, lp->num_vars())));
        lp->sets.push_back({dice->range(1, 2), members});
    }
    add_rows(dice, dice->range(0, 3), lp);
}

// The shapes of the tiny LPs, some columns integer.
void odd_shapes(Dice *dice, int size, LpModel *lp)
{
    *lp = gen_tiny(dice, {.max_vars = size, .max_rows = size, .scaled_percent = 0});
    lp->types.assign(lp->obj.size(), 'C');
    for (size_t j = 0; j < lp->obj.size(); j++)
        if (dice->chance(60)) lp->types[j] = dice->chance(70) ? 'I' : 'B';
}

// ---- Knapsacks and big numbers ----

void equality_knapsack(Dice *dice, int size, LpModel *lp)
{
    Terms row;
    for (int n = dice->range(2, size); n > 0; n--) {
        const int j = dice->chance(80) ? add_integer(dice, lp, dice->nonzero(9), 12)
                                       : lp_add_var(lp, dice->range(1, 9), 0, INF, 'I');
        row.emplace_back(j, dice->range(2, 40));
    }
    lp_add_row_entries(lp, row, '=', dice->range(1, 150));
}

void general_knapsack(Dice *dice, int size, LpModel *lp)
{
    for (int n = dice->range(2, size); n > 0; n--)
        add_integer(dice, lp, -dice->range(1, 30), 9);
    for (int rows = dice->range(1, 3); rows > 0; rows--) {
        Terms row;
        for (int j = 0; j < lp->num_vars(); j++) row.emplace_back(j, dice->range(1, 25));
        lp_add_row_entries(lp, row, '<', dice->range(10, 120));
    }
}

// Free integers, and ranges up to 1e9, held together by rows.
void huge_range(Dice *dice, int size, LpModel *lp)
{
    const double far = std::pow(10.0, dice->range(4, 9));
    for (int n = dice->range(1, size); n > 0; n--) {
        const bool is_free = dice->chance(30);
        lp_add_var(lp, dice->nonzero(5), is_free ? -INF : -far, is_free ? INF : far,
                   dice->chance(75) ? 'I' : 'C');
    }
    for (int rows = dice->range(1, 3); rows > 0; rows--) {
        Terms row;
        for (int j = 0; j < lp->num_vars(); j++) row.emplace_back(j, dice->nonzero(9));
        const double side = dice->range(-1000, 1000);
        lp_add_row_entries(lp, row, '<', side + dice->range(0, 50));
        if (dice->chance(70)) lp_add_row_entries(lp, row, '>', side);
    }
}

// An improving ray of the relaxation, along which there may be no integers: 2x - 2y = 1.
void unbounded_relaxation(Dice *dice, int size, LpModel *lp)
{
    const int step = dice->range(1, 3), x = lp_add_var(lp, -1, 0, INF, 'I'),
              y = lp_add_var(lp, dice->range(-1, 1), 0, INF, dice->chance(80) ? 'I' : 'C');
    const double most = dice->range(2, 9);
    lp_add_row_entries(lp, {{x, step}, {y, -step}}, '=', dice->range(0, 3));
    for (int n = dice->range(0, size - 2); n > 0; n--)
        add_typed(dice, "CIBS"[dice->range(0, 3)], lp);
    if (dice->chance(30)) lp_add_row_entries(lp, {{x, 2}, {y, 1}}, '<', 2 * most + 1);
    add_rows(dice, dice->range(0, 2), lp);
}

// ---- Binary structure ----

void set_rows(Dice *dice, int size, LpModel *lp)
{
    const char sense = "<>="[dice->range(0, 2)];
    for (int n = dice->range(2, size + 4); n > 0; n--)
        add_binary(lp, dice->range(1, 9) * (sense == '<' ? -1 : 1));
    for (int rows = dice->range(1, size); rows > 0; rows--) {
        Terms row;
        for (int j = 0; j < lp->num_vars(); j++)
            if (dice->chance(45)) row.emplace_back(j, dice->chance(95) ? 1 : -1);
        lp_add_row_entries(lp, row, dice->chance(85) ? sense : '<', 1);
    }
}

void assignment(Dice *dice, int size, LpModel *lp)
{
    const int side = dice->range(2, size >= 6 ? 3 : 2), most = dice->chance(50) ? 2 : 20;
    for (int k = 0; k < side * side; k++) add_binary(lp, dice->range(1, most));
    for (int k = 0; k < 2 * side; k++) {
        Terms row;
        for (int p = 0; p < side; p++)
            row.emplace_back(k < side ? k * side + p : p * side + k - side, 1);
        lp_add_row_entries(lp, row, '=', 1);
    }
    if (dice->chance(40)) add_rows(dice, 1, lp);
}

// y <= M z with a cost for z, and a demand for the sum of y.
void fixed_charge(Dice *dice, int size, LpModel *lp)
{
    const double m = dice->pick<double>({5, 20, 100, 1000});
    Terms supply;
    for (int n = dice->range(1, std::max(size / 2, 1)); n > 0; n--) {
        const int z = add_binary(lp, dice->range(1, 60)),
                  y = lp_add_var(lp, dice->range(-2, 5), 0, INF,
                                 dice->chance(70) ? 'C' : 'I');
        lp_add_row_entries(lp, {{y, 1}, {z, -m}}, '<', 0);
        if (dice->chance(30)) lp_add_row_entries(lp, {{y, 1}, {z, -2}}, '>', 0);
        supply.emplace_back(y, dice->range(1, 2));
    }
    lp_add_row_entries(lp, supply, dice->chance(60) ? '>' : '=',
                       dice->range(1, 2 * static_cast<int>(m)));
}

// Stock of a period = stock before + production - demand; production needs a set-up.
void lot_sizing(Dice *dice, int size, LpModel *lp)
{
    int stock = -1;
    double rest = 0;
    const int periods = dice->range(1, std::max(size / 3, 1));
    std::vector<int> demand;
    for (int t = 0; t < periods; t++) rest += demand.emplace_back(dice->range(0, 9));
    for (int t = 0; t < periods; t++) {
        const int made = lp_add_var(lp, dice->range(0, 3), 0, INF),
                  setup = add_binary(lp, dice->range(1, 20)),
                  next = lp_add_var(lp, dice->range(0, 3), 0, INF);
        lp_add_row_entries(lp, {{made, 1}, {setup, -std::max(rest, 1.0)}}, '<', 0);
        Terms balance = {{made, 1}, {next, -1}};
        if (stock >= 0) balance.emplace_back(stock, 1);
        lp_add_row_entries(lp, balance, '=', demand[t]);
        rest -= demand[t];
        stock = next;
    }
}
} // namespace

const std::vector<MipFamily> &mip_families()
{
    static const std::vector<MipFamily> families = {
        {"typed", typed},
        {"semi_continuous", semi_continuous},
        {"sets", sets},
        {"odd_shapes", odd_shapes},
        {"equality_knapsack", equality_knapsack},
        {"general_knapsack", general_knapsack},
        {"huge_range", huge_range},
        {"unbounded_relaxation", unbounded_relaxation},
        {"set_rows", set_rows},
        {"assignment", assignment},
        {"fixed_charge", fixed_charge},
        {"lot_sizing", lot_sizing},
    };
    return families;
}

// ---- Around a family ----

LpModel shuffled(Dice *dice, const LpModel &lp, std::vector<int> *place)
{
    std::vector<int> rows(lp.rhs.size()), back(lp.rhs.size()), moved(lp.obj.size());
    place->resize(lp.obj.size());
    std::iota(rows.begin(), rows.end(), 0);
    std::iota(place->begin(), place->end(), 0);
    dice->shuffle(&rows);
    dice->shuffle(place);
    LpModel result;
    result.sense = lp.sense;
    result.objcon = lp.objcon;
    for (size_t i = 0; i < rows.size(); i++) {
        back[rows[i]] = lp_add_row(&result, lp.senses[rows[i]], lp.rhs[rows[i]]);
    }
    for (size_t j = 0; j < place->size(); j++) {
        const size_t old = static_cast<size_t>((*place)[j]);
        moved[old] = lp_add_var(&result, lp.obj[old], lp.lb[old], lp.ub[old], lp.type(old));
        for (const LpEntry &e : lp.cols[old])
            result.cols.back().push_back({back[e.row], e.value});
    }
    result.sets = lp.sets;
    for (LpSet &set : result.sets)
        for (int &j : set.members) j = moved[j];
    return result;
}

static void vary_objective(Dice *dice, LpModel *lp)
{
    const int kind = dice->range(1, 100);
    if (kind <= 4) lp->obj.assign(lp->obj.size(), 0);
    if (kind > 4 && kind <= 12) // many optima
        for (double &c : lp->obj) c = c < 0 ? -1 : 1;
    if (dice->chance(25)) lp->objcon = dice->range(-40, 40) + (dice->chance(30) ? 0.5 : 0);
    if (!dice->chance(40)) return;
    lp->sense = -lp->sense;
    for (double &c : lp->obj) c = -c + 0.0; // no -0
}

// What has come out linear gets an integer column.
static void make_mip(LpModel *lp)
{
    const bool linear =
        lp->sets.empty() && std::count(lp->types.begin(), lp->types.end(), 'C') ==
                                static_cast<int64_t>(lp->types.size());
    if (!linear) return;
    if (lp->obj.empty()) lp_add_var(lp, -1, 0, 3.5, 'I');
    lp->types.resize(lp->obj.size(), 'C');
    lp->types.back() = 'I';
}

GeneratedMip gen_mip(Dice *dice, int most_size)
{
    const MipFamily &family = dice->pick(mip_families());
    LpModel lp;
    family.add(dice, most_size, &lp);
    make_mip(&lp);
    vary_objective(dice, &lp);
    std::vector<int> place;
    return {family.name, dice->chance(70) ? lp : shuffled(dice, lp, &place)};
}

double scale_by_tens(Dice *dice, LpModel *lp)
{
    std::vector<double> factors;
    for (double &b : lp->rhs) b *= factors.emplace_back(std::pow(10.0, dice->range(-1, 3)));
    const double of_costs = std::pow(10.0, dice->range(-3, 3));
    for (size_t j = 0; j < lp->obj.size(); j++) {
        lp->obj[j] *= of_costs;
        for (LpEntry &e : lp->cols[j]) e.value *= factors[e.row];
    }
    lp->objcon *= of_costs;
    return of_costs;
}
