// model_edit.cpp -- see the header
#include "support/model_edit.h"
#include <algorithm>
#include <cmath>

namespace
{

struct Edit {
    Dice *dice;
    LpModel *lp;
    TVXmodel *model;
    int any_var() const { return dice->range(0, lp->num_vars() - 1); }
    int any_row() const { return dice->range(0, lp->num_rows() - 1); }
};

// The entries of a new column or row over `count` elements, as calls take them.
struct Entries {
    std::vector<int> ind;
    std::vector<double> val;
    Entries(Dice *dice, int count, int percent)
    {
        for (int k = 0; k < count; k++) {
            if (!dice->chance(percent)) continue;
            ind.push_back(k);
            val.push_back(dice->nonzero(4));
        }
    }
    int size() const { return static_cast<int>(ind.size()); }
};

} // namespace

// Each edit changes both; 0 or the code of the failing call.

static int change_bounds(Edit *e)
{
    const int j = e->any_var(), kind = e->dice->range(0, 5);
    double *lb = &e->lp->lb[j], *ub = &e->lp->ub[j];
    if (kind == 0) *lb = -LP_INFINITY;
    if (kind == 1) *ub = LP_INFINITY;
    if (kind == 2) *lb = lp_is_infinite(*ub) ? e->dice->range(-3, 3) : *ub; // fixed
    if (kind == 3) *ub = (lp_is_infinite(*lb) ? 0 : *lb) + e->dice->range(0, 6);
    if (kind == 4) *lb = std::min<double>(*ub, e->dice->range(-6, 3));
    if (kind == 5 && !lp_is_infinite(*lb) && !lp_is_infinite(*ub)) // as branching does
        *ub = std::max(*lb, std::floor((*lb + *ub) / 2));
    const int error = TVXsetdblattrelement(e->model, "LB", j, *lb);
    return error ? error : TVXsetdblattrelement(e->model, "UB", j, *ub);
}

static int change_costs(Edit *e)
{
    const int first = e->any_var(), count = std::min(3, e->lp->num_vars() - first);
    for (int j = first; j < first + count; j++)
        e->lp->obj[j] = e->dice->chance(20) ? 0 : e->dice->nonzero(9);
    return TVXsetdblattrarray(e->model, "Obj", first, count, &e->lp->obj[first]);
}

static int change_rhs(Edit *e)
{
    const int first = e->any_row(), count = std::min(3, e->lp->num_rows() - first);
    for (int i = first; i < first + count; i++) e->lp->rhs[i] += e->dice->range(-3, 4);
    return TVXsetdblattrarray(e->model, "RHS", first, count, &e->lp->rhs[first]);
}

static int change_sense(Edit *e)
{
    const int i = e->any_row();
    e->lp->senses[i] = "<>="[e->dice->range(0, 2)];
    return TVXsetcharattrelement(e->model, "Sense", i, e->lp->senses[i]);
}

static int change_objective(Edit *e)
{
    if (e->dice->chance(50)) e->lp->sense = -e->lp->sense;
    e->lp->objcon = e->dice->range(-20, 20);
    const int error = TVXsetintattr(e->model, "ModelSense", e->lp->sense);
    return error ? error : TVXsetdblattr(e->model, "ObjCon", e->lp->objcon);
}

static int change_coefficients(Edit *e)
{
    int error = 0;
    for (int k = e->dice->range(1, 4); k > 0 && !error; k--) {
        const int i = e->any_row(), j = e->any_var();
        const double value = e->dice->chance(25) ? 0 : e->dice->nonzero(5);
        lp_set_entry(e->lp, i, j, value);
        error = TVXchgcoeffs(e->model, 1, &i, &j, &value);
    }
    return error;
}

static int delete_rows(Edit *e)
{
    const int which[] = {e->any_row(), e->any_row()};
    lp_delete_row(e->lp, std::max(which[0], which[1]));
    if (which[0] != which[1]) lp_delete_row(e->lp, std::min(which[0], which[1]));
    return TVXdelconstrs(e->model, 2, which);
}

static int delete_var(Edit *e)
{
    const int which = e->any_var();
    lp_delete_var(e->lp, which);
    return TVXdelvars(e->model, 1, &which);
}

static int add_var(Edit *e)
{
    const Entries column(e->dice, e->lp->num_rows(), 15);
    const double obj = e->dice->range(-4, 9),
                 lb = e->dice->chance(20) ? -LP_INFINITY : e->dice->range(-2, 0),
                 ub = e->dice->chance(60) ? LP_INFINITY : e->dice->range(0, 9);
    const int j = lp_add_var(e->lp, obj, lb, ub);
    for (size_t k = 0; k < column.ind.size(); k++)
        lp_set_entry(e->lp, column.ind[k], j, column.val[k]);
    return TVXaddvar(e->model, column.size(), column.ind.data(), column.val.data(), obj, lb,
                     ub, 'C', nullptr);
}

// A range becomes an equation with a variable of its own behind all others.
static int add_row(Edit *e)
{
    const Entries row(e->dice, e->lp->num_vars(), 20);
    const char sense = "<<>>=r"[e->dice->range(0, 5)];
    const double low = e->dice->range(-20, 4), high = low + e->dice->range(0, 30);
    const double rhs = sense == '<' || sense == 'r' ? high : low;
    const int i = lp_add_row(e->lp, sense == 'r' ? '=' : sense, rhs);
    for (size_t k = 0; k < row.ind.size(); k++)
        lp_set_entry(e->lp, i, row.ind[k], row.val[k]);
    if (sense != 'r')
        return TVXaddconstr(e->model, row.size(), row.ind.data(), row.val.data(), sense,
                            rhs, nullptr);
    lp_set_entry(e->lp, i, lp_add_var(e->lp, 0, 0, high - low), 1);
    return TVXaddrangeconstr(e->model, row.size(), row.ind.data(), row.val.data(), low,
                             high, nullptr);
}

static const struct {
    const char *name;
    int (*apply)(Edit *edit);
    bool needs_vars, needs_rows;
    int weight;
} edits[] = {
    {"bounds", change_bounds, true, false, 6},
    {"costs", change_costs, true, false, 4},
    {"rhs", change_rhs, false, true, 4},
    {"sense", change_sense, false, true, 2},
    {"objective", change_objective, false, false, 2},
    {"coefficients", change_coefficients, true, true, 4},
    {"delete rows", delete_rows, false, true, 2},
    {"delete a variable", delete_var, true, false, 2},
    {"add a variable", add_var, false, false, 4},
    {"add a row", add_row, false, false, 4},
};

std::string edit_randomly(Dice *dice, LpModel *lp, TVXmodel *model)
{
    Edit edit{dice, lp, model};
    int total = 0;
    for (const auto &row : edits) total += row.weight;
    while (true) {
        int ticket = dice->range(1, total);
        const auto *row = edits;
        while (ticket > row->weight) ticket -= (row++)->weight;
        if (row->needs_vars && lp->num_vars() == 0) continue;
        if (row->needs_rows && lp->num_rows() == 0) continue;
        const int error = row->apply(&edit);
        if (!error) return row->name;
        return std::string("FAILED ") + row->name + ": " + TVXgetmerrormsg(model);
    }
}
