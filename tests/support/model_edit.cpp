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
};
using EditRoutine = int (*)(Edit *edit); // 0 or the code of the failing call

} // namespace

static int pick_var(Edit *e)
{
    return e->dice->range(0, e->lp->num_vars() - 1);
}
static int pick_row(Edit *e)
{
    return e->dice->range(0, e->lp->num_rows() - 1);
}

static std::vector<int> pick_some(Dice *dice,
                                  int count) // a few different indices, ascending
{
    std::vector<int> chosen;
    for (int k = dice->range(1, std::min(count, 4)); k > 0; k--) {
        const int index = dice->range(0, count - 1);
        if (std::find(chosen.begin(), chosen.end(), index) == chosen.end())
            chosen.push_back(index);
    }
    std::sort(chosen.begin(), chosen.end());
    return chosen;
}

static int change_bounds(Edit *e)
{
    const int j = pick_var(e);
    double *lb = &e->lp->lb[static_cast<size_t>(j)],
           *ub = &e->lp->ub[static_cast<size_t>(j)];
    switch (e->dice->range(0, 5)) {
    case 0:
        *lb = -LP_INFINITY;
        break;
    case 1:
        *ub = LP_INFINITY;
        break;
    case 2:
        *lb = lp_is_infinite(*ub) ? e->dice->range(-3, 3) : *ub;
        break; // fixed
    case 3:
        *ub = (lp_is_infinite(*lb) ? 0 : *lb) + e->dice->range(0, 6);
        break;
    case 4:
        *lb = std::min(*ub, static_cast<double>(e->dice->range(-6, 3)));
        break;
    default: // as branching does: cut the domain in two
        if (!lp_is_infinite(*lb) && !lp_is_infinite(*ub)) *ub = std::floor((*lb + *ub) / 2);
        *ub = std::max(*lb, *ub);
        break;
    }
    const int error = TVXsetdblattrelement(e->model, "LB", j, *lb);
    return error ? error : TVXsetdblattrelement(e->model, "UB", j, *ub);
}

static int change_costs(Edit *e)
{
    const std::vector<int> which = pick_some(e->dice, e->lp->num_vars());
    std::vector<double> values;
    for (const int j : which) {
        values.push_back(e->dice->chance(20) ? 0 : e->dice->nonzero(9));
        e->lp->obj[static_cast<size_t>(j)] = values.back();
    }
    return TVXsetdblattrlist(e->model, "Obj", static_cast<int>(which.size()), which.data(),
                             values.data());
}

static int change_rhs(Edit *e)
{
    const int first = pick_row(e), count = std::min(3, e->lp->num_rows() - first);
    for (int i = first; i < first + count; i++)
        e->lp->rhs[static_cast<size_t>(i)] += e->dice->range(-3, 4);
    return TVXsetdblattrarray(e->model, "RHS", first, count,
                              &e->lp->rhs[static_cast<size_t>(first)]);
}

static int change_sense(Edit *e)
{
    const int i = pick_row(e);
    const char senses[] = {'<', '>', '='};
    const char sense = senses[e->dice->range(0, 2)];
    e->lp->senses[static_cast<size_t>(i)] = sense;
    return TVXsetcharattrelement(e->model, "Sense", i, sense);
}

static int change_objective_sense(Edit *e)
{
    e->lp->sense = -e->lp->sense;
    return TVXsetintattr(e->model, "ModelSense", e->lp->sense);
}

static int change_constant(Edit *e)
{
    e->lp->objcon = e->dice->range(-20, 20);
    return TVXsetdblattr(e->model, "ObjCon", e->lp->objcon);
}

static int change_coefficients(Edit *e)
{
    std::vector<int> rows, cols;
    std::vector<double> values;
    for (int k = e->dice->range(1, 4); k > 0; k--) {
        rows.push_back(pick_row(e));
        cols.push_back(pick_var(e));
        values.push_back(e->dice->chance(25) ? 0 : e->dice->nonzero(5));
        lp_set_entry(e->lp, rows.back(), cols.back(), values.back());
    }
    return TVXchgcoeffs(e->model, static_cast<int>(rows.size()), rows.data(), cols.data(),
                        values.data());
}

static int delete_rows(Edit *e)
{
    const std::vector<int> which = pick_some(e->dice, e->lp->num_rows());
    for (size_t k = which.size(); k-- > 0;) lp_delete_row(e->lp, which[k]);
    return TVXdelconstrs(e->model, static_cast<int>(which.size()), which.data());
}

static int delete_vars(Edit *e)
{
    const std::vector<int> which = pick_some(e->dice, e->lp->num_vars());
    for (size_t k = which.size(); k-- > 0;) lp_delete_var(e->lp, which[k]);
    return TVXdelvars(e->model, static_cast<int>(which.size()), which.data());
}

static int add_vars(Edit *e)
{
    const int count = e->dice->range(1, 3);
    std::vector<int> beg, ind;
    std::vector<double> val, obj, lb, ub;
    for (int k = 0; k < count; k++) {
        obj.push_back(e->dice->range(-4, 9));
        lb.push_back(e->dice->chance(20) ? -LP_INFINITY : e->dice->range(-2, 0));
        ub.push_back(e->dice->chance(60) ? LP_INFINITY : e->dice->range(0, 9));
        const int j = lp_add_var(e->lp, obj.back(), lb.back(), ub.back());
        beg.push_back(static_cast<int>(ind.size()));
        for (int i = 0; i < e->lp->num_rows(); i++) {
            if (!e->dice->chance(15)) continue;
            ind.push_back(i);
            val.push_back(e->dice->nonzero(4));
            lp_set_entry(e->lp, i, j, val.back());
        }
    }
    ind.reserve(1);
    val.reserve(1);
    return TVXaddvars(e->model, count, static_cast<int>(ind.size()), beg.data(), ind.data(),
                      val.data(), obj.data(), lb.data(), ub.data(), nullptr, nullptr);
}

static int add_rows(Edit *e)
{
    const int count = e->dice->range(1, 3);
    std::vector<int> beg, ind;
    std::vector<double> val, rhs;
    std::vector<char> senses;
    for (int k = 0; k < count; k++) {
        senses.push_back(e->dice->chance(50) ? '<' : e->dice->chance(70) ? '>' : '=');
        rhs.push_back(senses.back() == '<' ? e->dice->range(0, 40)
                                           : e->dice->range(-20, 4));
        const int i = lp_add_row(e->lp, senses.back(), rhs.back());
        beg.push_back(static_cast<int>(ind.size()));
        for (int j = 0; j < e->lp->num_vars(); j++) {
            if (!e->dice->chance(20)) continue;
            ind.push_back(j);
            val.push_back(e->dice->nonzero(4));
            lp_set_entry(e->lp, i, j, val.back());
        }
    }
    ind.reserve(1);
    val.reserve(1);
    return TVXaddconstrs(e->model, count, static_cast<int>(ind.size()), beg.data(),
                         ind.data(), val.data(), senses.data(), rhs.data(), nullptr);
}

// A range becomes an equation with a variable of its own behind all others.
static int add_range(Edit *e)
{
    std::vector<int> ind;
    std::vector<double> val;
    for (int j = 0; j < e->lp->num_vars(); j++) {
        if (!e->dice->chance(20)) continue;
        ind.push_back(j);
        val.push_back(e->dice->nonzero(4));
    }
    const double lower = e->dice->range(-20, 4), upper = lower + e->dice->range(0, 30);
    const int i = lp_add_row(e->lp, '=', upper);
    for (size_t k = 0; k < ind.size(); k++) lp_set_entry(e->lp, i, ind[k], val[k]);
    lp_set_entry(e->lp, i, lp_add_var(e->lp, 0, 0, upper - lower), 1);
    ind.reserve(1);
    val.reserve(1);
    return TVXaddrangeconstr(e->model, static_cast<int>(ind.size()), ind.data(), val.data(),
                             lower, upper, nullptr);
}

namespace
{

struct EditRow {
    const char *name;
    EditRoutine apply;
    bool needs_vars, needs_rows;
    int weight;
};

} // namespace

static const EditRow edits[] = {
    {"bounds", change_bounds, true, false, 6},
    {"costs", change_costs, true, false, 4},
    {"rhs", change_rhs, false, true, 4},
    {"sense", change_sense, false, true, 2},
    {"objective sense", change_objective_sense, false, false, 1},
    {"constant", change_constant, false, false, 1},
    {"coefficients", change_coefficients, true, true, 4},
    {"delete rows", delete_rows, false, true, 2},
    {"delete vars", delete_vars, true, false, 2},
    {"add vars", add_vars, false, false, 3},
    {"add rows", add_rows, false, false, 3},
    {"add range", add_range, false, false, 1},
};

std::string edit_randomly(Dice *dice, LpModel *lp, TVXmodel *model)
{
    Edit edit{dice, lp, model};
    int total = 0;
    for (const EditRow &row : edits) total += row.weight;
    while (true) {
        int ticket = dice->range(1, total);
        const EditRow *row = edits;
        while (ticket > row->weight) ticket -= (row++)->weight;
        if (row->needs_vars && lp->num_vars() == 0) continue;
        if (row->needs_rows && lp->num_rows() == 0) continue;
        const int error = row->apply(&edit);
        if (!error) return row->name;
        return std::string("FAILED ") + row->name + ": " + TVXgetmerrormsg(model);
    }
}
