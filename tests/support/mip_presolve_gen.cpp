// mip_presolve_gen.cpp -- see the header
#include "support/mip_presolve_gen.h"
#include "support/mip_gen.h"

// A column parallel to one of the model, of any type, with more or less cost.
static void add_parallel_column(Dice *dice, LpModel *lp)
{
    const int j = dice->range(0, lp->num_vars() - 1), f = dice->nonzero(2);
    const char type = dice->pick<char>({lp->type(j), 'I', 'C'});
    const double cost = f * lp->obj[j] + (dice->chance(50) ? 0 : dice->range(-3, 3));
    const double low = dice->chance(70) ? 0 : -dice->range(0, 3);
    const double most =
        dice->chance(40) ? LP_INFINITY : low + dice->range(0, 4) * 0.5 * dice->range(1, 2);
    const int k = lp_add_var(lp, cost, low, most, type);
    for (const LpEntry &e : std::vector<LpEntry>(lp->cols[j]))
        lp_set_entry(lp, e.row, k, f * e.value);
}

static void add_parallel_row(Dice *dice, LpModel *lp)
{
    const int i = dice->range(0, lp->num_rows() - 1), f = dice->nonzero(3);
    const int k =
        lp_add_row(lp, "<>="[dice->range(0, 2)],
                   f * lp -> rhs[i] + (dice->chance(50) ? 0 : dice->range(-2, 2)));
    for (int j = 0; j < lp->num_vars(); j++)
        lp_set_entry(lp, k, j, f * lp_get_entry(lp, i, j));
    if (dice->chance(30))
        lp_set_entry(lp, k, dice->range(0, lp->num_vars() - 1), dice->nonzero(3));
}

static void add_slack(Dice *dice, LpModel *lp)
{
    const double low = dice->pick<double>({-LP_INFINITY, -2, 0, 0});
    const int j = lp_add_var(lp, dice->range(-3, 3), low,
                             dice->pick<double>({0, 3, LP_INFINITY, LP_INFINITY}),
                             dice->pick<char>({'C', 'I', 'I'}));
    lp_set_entry(lp, dice->range(0, lp->num_rows() - 1), j, dice->nonzero(3));
}

// A new column that an equation with one or two others determines, in some more rows.
static void add_equation(Dice *dice, LpModel *lp)
{
    const int n = lp->num_vars(), m = lp->num_rows();
    const double low = dice->range(-3, 1);
    const int x = lp_add_var(lp, dice->range(-3, 3), low,
                             dice->chance(30) ? LP_INFINITY : low + dice->range(0, 6),
                             dice->pick<char>({'C', 'I', 'I'}));
    if (m > 0) lp_set_entry(lp, dice->range(0, m - 1), x, dice->nonzero(3));
    std::vector<std::pair<int, double>> row = {{x, dice->nonzero(4)},
                                               {dice->range(0, n - 1), dice->nonzero(4)}};
    if (dice->chance(40)) row.emplace_back(dice->range(0, n - 1), dice->nonzero(6));
    lp_add_row_entries(lp, row, '=', dice->range(-4, 8));
}

LpModel gen_mip_with_lines(Dice *dice)
{
    LpModel lp = gen_mip(dice, 4).lp;
    if (lp.num_vars() == 0) return lp;
    for (int more = dice->range(0, 3); more > 0 && lp.num_vars() < 8; more--) {
        const int kind = dice->range(0, 3);
        if (kind == 0) add_parallel_column(dice, &lp);
        if (kind == 1 && lp.num_rows() > 0) add_parallel_row(dice, &lp);
        if (kind == 2 && lp.num_rows() > 0) add_slack(dice, &lp);
        if (kind == 3) add_equation(dice, &lp);
    }
    return lp;
}
