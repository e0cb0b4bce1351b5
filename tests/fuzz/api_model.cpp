// api_model.cpp -- between the reference of the store and the judges' own form of an LP
#include "fuzz/api_model.h"

bool ApiModel::is_mip() const
{
    bool continuous = player.reference.sos.empty();
    for (const StoreReference::Var &var : player.reference.vars)
        continuous = continuous && var.vtype == 'C';
    return !continuous;
}

std::string ApiModel::settings() const
{
    Settings all;
    for (const auto &[name, value] : values) all.emplace_back(name, value);
    return settings_text(all);
}

bool ApiModel::to_lp(LpModel *lp) const
{
    const StoreReference &r = player.reference;
    bool clear = true;
    *lp = LpModel{};
    lp->sense = r.sense;
    lp->objcon = r.objcon;
    for (const StoreReference::Constr &row : r.constrs) {
        lp_add_row(lp, row.sense, row.rhs);
        clear = clear && !lp_is_infinite(row.rhs);
    }
    for (const StoreReference::Var &var : r.vars) {
        const int j = lp_add_var(lp, var.obj, var.lb, var.ub, var.vtype);
        for (const auto &[i, value] : var.column) lp_set_entry(lp, i, j, value);
        clear = clear && var.lb < 1e20 && var.ub > -1e20;
    }
    for (const StoreReference::Sos &sos : r.sos) {
        LpSet *set = &lp->sets.emplace_back(LpSet{sos.type, {}});
        for (const auto &[j, weight] : sos.members) set->members.push_back(j);
    }
    return clear;
}

bool ApiModel::from_lp(const LpModel &lp)
{
    StoreReference *r = &player.reference;
    int failures = 0;
    r->sense = lp.sense;
    r->objcon = lp.objcon;
    for (size_t j = 0; j < lp.obj.size(); j++) {
        StoreReference::Var var;
        var.name = "x" + std::to_string(j);
        var.obj = lp.obj[j] + 0.0; // no -0
        var.lb = bounded(lp.lb[j]);
        var.ub = bounded(lp.ub[j]);
        var.vtype = lp.type(j);
        for (const LpEntry &e : lp.cols[j]) var.column.emplace_back(e.row, e.value);
        r->vars.push_back(var);
        failures += TVXsetstrattrelement(model, "VarName", int(j), var.name.c_str()) != 0;
    }
    for (size_t i = 0; i < lp.rhs.size(); i++) {
        r->constrs.push_back({"r" + std::to_string(i), lp.senses[i], lp.rhs[i] + 0.0, {}});
        failures += TVXsetstrattrelement(model, "ConstrName", int(i),
                                         r->constrs[i].name.c_str()) != 0;
    }
    for (const LpSet &set : lp.sets) {
        StoreReference::Sos *sos = &r->sos.emplace_back(StoreReference::Sos{set.type, {}});
        for (const int j : set.members)
            sos->members.emplace_back(j, static_cast<double>(sos->members.size() + 1));
    }
    return TVXupdatemodel(model) == 0 && failures == 0;
}
