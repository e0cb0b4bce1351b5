// shrink.cpp -- see the header
#include "support/shrink.h"
#include <cmath>

namespace
{

struct Case {
    LpModel lp;
    Settings settings;
    const Fails *fails;
};

} // namespace

// Keeps the candidate when it fails too.
static bool adopt(Case *c, const LpModel &candidate)
{
    if (lp_same(&candidate, &c->lp) || !(*c->fails)(candidate, c->settings)) return false;
    c->lp = candidate;
    return true;
}

static bool drop_settings(Case *c)
{
    bool changed = false;
    for (size_t k = c->settings.size(); k-- > 0;) {
        Settings fewer = c->settings;
        fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(k));
        if (!(*c->fails)(c->lp, fewer)) continue;
        c->settings = fewer;
        changed = true;
    }
    return changed;
}

static bool drop_rows_and_columns(Case *c)
{
    bool changed = false;
    for (int i = c->lp.num_rows(); i-- > 0;) {
        LpModel smaller = c->lp;
        lp_delete_row(&smaller, i);
        changed = adopt(c, smaller) || changed;
    }
    for (int j = c->lp.num_vars(); j-- > 0;) {
        LpModel smaller = c->lp;
        lp_delete_var(&smaller, j);
        changed = adopt(c, smaller) || changed;
    }
    return changed;
}

// Tries 0, then the nearest values of magnitude 1, then a rounded value, for one number of the model.
static bool simplify(Case *c, const std::function<double *(LpModel *)> &number)
{
    LpModel candidate = c->lp;
    double *value = number(&candidate);
    const double old = *value;
    if (lp_is_infinite(old)) return false;
    for (const double simple :
         {0.0, old > 0 ? 1.0 : -1.0, std::trunc(old), std::trunc(old / 2)}) {
        if (std::fabs(simple) >= std::fabs(old)) continue;
        *value = simple;
        if (adopt(c, candidate)) return true;
    }
    return false;
}

static bool simplify_numbers(Case *c)
{
    bool changed = false;
    changed = simplify(c, [](LpModel *lp) { return &lp->objcon; }) || changed;
    for (size_t i = 0; i < c->lp.rhs.size(); i++)
        changed = simplify(c, [i](LpModel *lp) { return &lp->rhs[i]; }) || changed;
    for (size_t j = 0; j < c->lp.obj.size(); j++) {
        changed = simplify(c, [j](LpModel *lp) { return &lp->obj[j]; }) || changed;
        changed = simplify(c, [j](LpModel *lp) { return &lp->lb[j]; }) || changed;
        changed = simplify(c, [j](LpModel *lp) { return &lp->ub[j]; }) || changed;
        for (size_t k = c->lp.cols[j].size(); k-- > 0;) {
            const LpEntry entry = c->lp.cols[j][k];
            LpModel without = c->lp;
            lp_set_entry(&without, entry.row, static_cast<int>(j), 0);
            if (adopt(c, without))
                changed = true;
            else
                changed = simplify(c, [=](LpModel *lp) { return &lp->cols[j][k].value; }) ||
                          changed;
        }
    }
    return changed;
}

static bool simplify_bounds(Case *c)
{
    bool changed = false;
    for (size_t j = 0; j < c->lp.obj.size(); j++) {
        LpModel plain = c->lp;
        plain.ub[j] = LP_INFINITY;
        changed = adopt(c, plain) || changed;
        plain = c->lp;
        plain.lb[j] = 0;
        changed = adopt(c, plain) || changed;
    }
    if (c->lp.sense < 0) {
        LpModel minimise = c->lp;
        minimise.sense = 1;
        for (double &v : minimise.obj) v = v == 0 ? 0 : -v;
        changed = adopt(c, minimise) || changed;
    }
    return changed;
}

void shrink(LpModel *lp, Settings *settings, const Fails &fails)
{
    Case c{*lp, *settings, &fails};
    bool changed = true;
    for (int round = 0; changed && round < 30; round++) {
        changed = drop_settings(&c);
        changed = drop_rows_and_columns(&c) || changed;
        changed = simplify_numbers(&c) || changed;
        changed = simplify_bounds(&c) || changed;
    }
    *lp = c.lp;
    *settings = c.settings;
}
