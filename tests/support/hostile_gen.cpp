// hostile_gen.cpp -- the table of families, and what makes a member infeasible or unbounded
#include "support/hostile_gen.h"

static constexpr int INFEASIBLE_PERCENT = 20, UNBOUNDED_PERCENT = 20;
static constexpr double SMALLEST_MARGIN = -9; // power of ten

const std::vector<HostileFamily> &hostile_families()
{
    static const std::vector<HostileFamily> families = {{"tall", hostile_tall},
                                                        {"bigm", hostile_bigm},
                                                        {"residue", hostile_residue},
                                                        {"wide", hostile_wide},
                                                        {"wild", hostile_wild}};
    return families;
}

void contradict_rows(Dice *dice, LpModel *lp, double margin)
{
    const std::vector<HostileTerms> rows = rows_of(lp);
    HostileTerms sum;
    double right = 0; // what the sum is at most by the rows
    for (int k = dice->range(1, 3); k > 0; k--) {
        const int i = dice->range(0, lp->num_rows() - 1);
        double y = dice->range(1, 3);
        if (lp->senses[i] == '>') y = -y;
        for (const auto &[col, value] : rows[i]) sum.push_back({col, y * value});
        right += y * lp->rhs[i];
    }
    lp_add_row_entries(lp, sum, dice->chance(70) ? '>' : '=', right + margin);
}

// A row that asks for more than the bounds of its columns allow, by a margin; false when a bound is missing.
static bool exceed_bounds(Dice *dice, LpModel *lp, double margin)
{
    const std::vector<HostileTerms> rows = rows_of(lp);
    HostileTerms terms = rows[dice->range(0, lp->num_rows() - 1)];
    long double most = 0;
    for (const auto &[col, value] : terms) {
        const double bound = value > 0 ? lp->ub[col] : lp->lb[col];
        if (lp_is_infinite(bound)) return false;
        most += static_cast<long double>(value) * bound;
    }
    if (terms.empty()) return false;
    lp_add_row_entries(lp, terms, '>', double(most + margin));
    return true;
}

static void make_infeasible(Dice *dice, LpModel *lp)
{
    const double margin = log_uniform(dice, SMALLEST_MARGIN, 0);
    if (dice->chance(40) && exceed_bounds(dice, lp, margin)) return;
    contradict_rows(dice, lp, margin);
}

void add_cancelling_pair(Dice *dice, LpModel *lp, double gain)
{
    const int u = lp_add_var(lp, 2.0 * lp->sense, 0, LP_INFINITY);
    const int v = lp_add_var(lp, -(2.0 + gain) * lp->sense, 0, LP_INFINITY);
    const std::vector<HostileTerms> rows = rows_of(lp);
    for (int i = 0; i < lp->num_rows(); i++) {
        if (rows[i].empty() || !dice->chance(30)) continue;
        const double a = dice->pick(rows[i]).second * dice->range(1, 3);
        const double harmless = dice->chance(30) ? std::fabs(a) * dice->range(1, 4) : 0;
        const int way = lp->senses[i] - '='; // -1 where less is asked for, 1 where more
        lp_set_entry(lp, i, u, a);
        lp_set_entry(lp, i, v, -a + way * harmless);
    }
}

// u <= M v and no bound on v: the ray grows by M.
static void add_growing_pair(Dice *dice, LpModel *lp, double gain)
{
    const double big = std::pow(10.0, dice->range(0, 8));
    const int u = lp_add_var(lp, -gain * lp->sense, 0, LP_INFINITY);
    const int v = lp_add_var(lp, 0, 0, LP_INFINITY);
    lp_add_row_entries(lp, {{u, 1}, {v, -big}}, '<', dice->range(0, 3));
    for (int i = 0; i < lp->num_rows() - 1; i++)
        if (dice->chance(20) && lp->senses[i] != '=')
            lp_set_entry(lp, i, v,
                         lp->senses[i] == '<' ? -dice->range(1, 5) : dice->range(1, 5));
}

static void make_unbounded(Dice *dice, LpModel *lp)
{
    const double gain = with_digits(log_uniform(dice, -6, 0), 3);
    if (dice->chance(50))
        add_cancelling_pair(dice, lp, gain);
    else
        add_growing_pair(dice, lp, gain);
}

HostileModel hostile_generate(const HostileFamily &family, uint64_t seed)
{
    uint64_t start = seed; // families do not share their choices
    for (const char *c = family.name; *c; c++) start = start * 31 + uint64_t(*c);
    Dice dice(start);
    const int ticket = dice.range(1, 100);
    HostileModel h;
    h.name = std::string(family.name) + "-" + std::to_string(seed);
    h.lp = family.generate(&dice);
    if (ticket <= INFEASIBLE_PERCENT) {
        h.kind = HostileKind::INFEASIBLE;
        make_infeasible(&dice, &h.lp);
    } else if (ticket <= INFEASIBLE_PERCENT + UNBOUNDED_PERCENT) {
        h.kind = HostileKind::UNBOUNDED;
        make_unbounded(&dice, &h.lp);
    }
    return h;
}
