// hostile_tall.cpp -- rows around one point: tall and tight models, and models over many decades
//
// Problem     Rows that meet in one point up to the rounding of their right-hand sides: a solver that trusts its own
//             rounding finds them contradictory.
// Method      A point x; bounds of all kinds around it; rows with right-hand sides from the activity of x, summed in
//             long double: tight, slack, copies stretched by a factor, and sums of other rows; costs mostly from
//             multipliers of what is tight, so that x is nearly optimal.
// Invariant   The tall family keeps activities below 5e4 in magnitude: x violates nothing by more than 1e-11.
#include "support/hostile_gen.h"

namespace
{
enum class Columns { MIXED, FREE, NONNEGATIVE, BOXED };

struct Shape {
    int cols = 0, rows = 0;
    int density = 0;                      // percent of entries
    double low = 0, high = 0;             // powers of ten of the coefficients
    double value_low = 0, value_high = 0; // ... of the point
    int digits = 0;                       // of the coefficients, or 0: all of them
    int whole = 40;                       // percent of columns that stand at an integer
    Columns columns = Columns::MIXED;
    int equations = 8;        // percent of rows
    int tight = 70;           // percent of other rows that hold with equality
    int planted = 85;         // percent of models whose costs make the point nearly optimal
    int copies = 0, sums = 0; // percent of rows that depend on others
    int near_parallel = 0;    // percent of rows that nearly depend on one other
    double largest_activity = 0; // rows beyond are scaled down; 0: none is
};

constexpr double WILD_ACTIVITY = 1e18; // right-hand sides stay below infinite ones
constexpr double TALL_ACTIVITY = 5e4;  // half a unit in the last place is 3.6e-12

struct Plan {
    const Shape *shape = nullptr;
    LpModel lp;
    std::vector<double> x; // [n] the point
};
} // namespace

static double coefficient(Dice *dice, const Shape *shape)
{
    const double a = signed_log_uniform(dice, shape->low, shape->high);
    return shape->digits > 0 ? with_digits(a, shape->digits) : a;
}

// Bounds of all kinds around x; the value may move to where the usual kind has it.
static void add_mixed_column(Dice *dice, Plan *plan, double x, double room)
{
    const double inf = LP_INFINITY;
    const struct {
        double lb, ub;
    } kinds[] = {{-inf, inf}, {x, x},          {x - room, x + room},
                 {-inf, x},   {x - room, x},   {x, x + room},
                 {x, inf},    {x - room, inf}, {-inf, x + room}};
    const auto &one = kinds[dice->range(0, 8)];
    if (dice->chance(30)) {
        x = dice->chance(50) ? 0 : std::fabs(x);
        lp_add_var(&plan->lp, 0, 0, inf);
    } else {
        lp_add_var(&plan->lp, 0, one.lb, one.ub);
    }
    plan->x.push_back(x);
}

static void add_column(Dice *dice, Plan *plan)
{
    const Shape *s = plan->shape;
    double x = signed_log_uniform(dice, s->value_low, s->value_high);
    if (dice->chance(s->whole)) x = std::round(x);
    const double room = log_uniform(dice, s->value_low, s->value_high);
    const bool at_end = dice->chance(40);
    switch (s->columns) {
    case Columns::MIXED:
        add_mixed_column(dice, plan, x, room);
        return;
    case Columns::FREE:
        lp_add_var(&plan->lp, 0, -LP_INFINITY, LP_INFINITY);
        break;
    case Columns::NONNEGATIVE:
        x = at_end ? 0 : std::fabs(x);
        lp_add_var(&plan->lp, 0, 0, LP_INFINITY);
        break;
    case Columns::BOXED:
        lp_add_var(&plan->lp, 0, at_end ? x : x - room, x + room);
        break;
    }
    plan->x.push_back(x);
}

static HostileTerms fresh_row(Dice *dice, const Plan *plan)
{
    HostileTerms terms;
    const int n = plan->lp.num_vars();
    for (int j = 0; j < n; j++)
        if (dice->chance(plan->shape->density))
            terms.push_back({j, coefficient(dice, plan->shape)});
    if (terms.empty())
        terms.push_back({dice->range(0, n - 1), coefficient(dice, plan->shape)});
    return terms;
}

static void stretch(HostileTerms *terms, double factor)
{
    for (auto &term : *terms) term.second *= factor;
}

// A row that depends on rows before it, or a fresh one.
static HostileTerms choose_row(Dice *dice, const Plan *plan,
                               const std::vector<HostileTerms> &before)
{
    const Shape *s = plan->shape;
    const int ticket = dice->range(1, 100);
    if (before.empty() || ticket > s->copies + s->sums + s->near_parallel)
        return fresh_row(dice, plan);
    HostileTerms terms = dice->pick(before);
    stretch(&terms, signed_log_uniform(dice, -1, 1));
    if (ticket <= s->copies) return terms;
    if (ticket <= s->copies + s->sums) {
        HostileTerms other = dice->pick(before);
        stretch(&other, dice->real(-2, 2));
        terms.insert(terms.end(), other.begin(), other.end());
        return terms;
    }
    auto &moved = terms[dice->range(0, int(terms.size()) - 1)];
    moved.second *= 1 + signed_log_uniform(dice, -10, -3);
    return terms;
}

static long double size_at(const HostileTerms &terms, const std::vector<double> &x)
{
    long double size = 0;
    for (const auto &[col, value] : terms)
        size += std::fabs(static_cast<long double>(value) * x[col]);
    return size;
}

static void add_rows(Dice *dice, Plan *plan)
{
    std::vector<HostileTerms> before;
    const Shape *s = plan->shape;
    for (int i = 0; i < s->rows; i++) {
        HostileTerms terms = choose_row(dice, plan, before);
        while (s->largest_activity > 0 && size_at(terms, plan->x) > s->largest_activity)
            stretch(&terms, 1.0 / 16);
        before.push_back(terms);
        const int ticket = dice->range(1, 100);
        lp_add_row_entries(&plan->lp, terms, "<>="[(ticket > 45) + (ticket > 92)], 0);
    }
    const std::vector<long double> activity = lp_activity(&plan->lp, plan->x);
    for (size_t i = 0; i < plan->lp.rhs.size(); i++) {
        const char sense = plan->lp.senses[i];
        long double rhs = activity[i];
        if (sense != '=' && !dice->chance(s->tight)) {
            const double room = log_uniform(dice, -9, 1);
            rhs += sense == '<' ? room : -room;
        }
        plan->lp.rhs[i] = double(rhs);
    }
}

// Multipliers of the rows and of the bounds that x meets; zero for most rows.
static void plant_costs(Dice *dice, Plan *plan)
{
    LpModel *lp = &plan->lp;
    std::vector<double> y;
    for (const char sense : lp->senses) {
        const double size = dice->chance(60) ? 0 : log_uniform(dice, -2, 1);
        const bool negative = sense == '<' || (sense == '=' && dice->chance(50));
        y.push_back((negative ? -size : size) * lp->sense);
    }
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const bool low = plan->x[j] == lp->lb[j], high = plan->x[j] == lp->ub[j];
        double d = dice->chance(30) ? 0 : log_uniform(dice, -2, 2);
        if (!low && !high) d = 0;
        if (high && (!low || dice->chance(50))) d = -d;
        long double cost = d * lp->sense;
        for (const LpEntry &e : lp->cols[j])
            cost += static_cast<long double>(y[e.row]) * e.value;
        lp->obj[j] = double(cost);
    }
}

static LpModel around_point(Dice *dice, const Shape &shape)
{
    Plan plan;
    plan.shape = &shape;
    plan.lp.sense = dice->chance(70) ? 1 : -1;
    plan.lp.objcon = dice->chance(20) ? dice->range(-50, 50) : 0;
    for (int j = 0; j < shape.cols; j++) add_column(dice, &plan);
    add_rows(dice, &plan);
    if (dice->chance(shape.planted))
        plant_costs(dice, &plan);
    else
        for (double &c : plan.lp.obj) c = dice->range(-4, 4);
    return plan.lp;
}

LpModel hostile_tall(Dice *dice)
{
    Shape s;
    s.cols = dice->chance(70) ? dice->range(5, 14) : dice->range(5, 40);
    s.rows = s.cols * dice->range(3, s.cols > 25 ? 6 : 10);
    s.density = dice->chance(60) ? dice->range(10, 40) : dice->range(40, 90);
    s.low = dice->chance(60) ? -4 : dice->range(-4, 0);
    s.high = dice->chance(60) ? 4 : dice->range(0, 4);
    s.value_low = -1;
    s.value_high = 1.5;
    s.whole = dice->pick(std::vector<int>{40, 100});
    s.columns =
        dice->pick(std::vector<Columns>{Columns::MIXED, Columns::MIXED, Columns::FREE,
                                        Columns::NONNEGATIVE, Columns::BOXED});
    s.equations = dice->pick(std::vector<int>{0, 8, 30, 100});
    s.tight = dice->pick(std::vector<int>{30, 70, 100});
    s.planted =
        s.columns == Columns::FREE && s.equations < 100 ? 100 : 50; // else mostly unbounded
    s.digits = dice->pick(std::vector<int>{0, 0, 0, 3, 6});
    s.copies = dice->chance(50) ? 0 : dice->range(0, 15);
    s.sums = dice->chance(50) ? 0 : dice->range(0, 25);
    s.largest_activity = TALL_ACTIVITY;
    return around_point(dice, s);
}

LpModel hostile_wide(Dice *dice)
{
    const bool medium = dice->chance(50); // 6 decades and nearly parallel rows
    Shape s;
    s.cols = dice->range(3, 14);
    s.rows = dice->range(s.cols / 2 + 1, 3 * s.cols);
    s.density = dice->range(20, 80);
    s.low = medium ? -3 : dice->real(-9, -5);
    s.high = medium ? 3 : dice->real(5, 9);
    s.value_low = medium ? -2 : -5;
    s.value_high = medium ? 3 : 6;
    s.digits = dice->pick(std::vector<int>{0, 2, 6});
    s.copies = 5;
    s.sums = 10;
    s.near_parallel = medium ? 30 : 5;
    return around_point(dice, s);
}

LpModel hostile_wild(Dice *dice)
{
    Shape s;
    s.cols = dice->range(3, 24);
    s.rows = dice->range(2, 24);
    s.density = dice->range(10, 60);
    s.low = dice->real(-18, -6);
    s.high = dice->real(6, 18);
    s.value_low = dice->range(-9, 0);
    s.value_high = dice->range(0, 9);
    s.digits = dice->pick(std::vector<int>{0, 1, 6});
    s.columns = dice->pick(
        std::vector<Columns>{Columns::MIXED, Columns::NONNEGATIVE, Columns::BOXED});
    s.equations = dice->pick(std::vector<int>{0, 20, 60});
    s.planted = 60;
    s.copies = 5;
    s.near_parallel = 10;
    s.largest_activity = WILD_ACTIVITY;
    return around_point(dice, s);
}
