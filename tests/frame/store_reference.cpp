#include "frame/store_reference.h"
#include "frame/model_store.h"
#include "frame/pending.h"
#include <algorithm>
#include <cmath>
#include <sstream>

static void round_to_type(StoreReference::Var *var)
{
    if (var->vtype == 'C' || var->vtype == 'S') return;
    var->lb = std::ceil(var->lb - 1e-5);
    var->ub = std::floor(var->ub + 1e-5);
    if (var->vtype == 'B') {
        var->lb = std::max(var->lb, 0.0);
        var->ub = std::min(var->ub, 1.0);
    }
}

static double bounded(double value)
{
    if (value >= 1e20) return 1e30;
    return value <= -1e20 ? -1e30 : value;
}

void StoreReference::add_var(Var var)
{
    if (var.name.empty()) {
        const int number = std::max(next_var_name, static_cast<int>(vars.size()));
        var.name = "C" + std::to_string(number);
        next_var_name = number + 1;
    }
    var.lb = bounded(var.lb);
    var.ub = bounded(var.ub);
    new_vars.push_back(var);
}

void StoreReference::add_constr(NewConstr added)
{
    if (added.constr.name.empty()) {
        const int number = std::max(next_constr_name, static_cast<int>(constrs.size()));
        added.constr.name = "R" + std::to_string(number);
        next_constr_name = number + 1;
    }
    if (added.is_range && added.lower <= -1e20) {
        added.is_range = false;
        added.constr.sense = '<';
    } else if (added.is_range && added.constr.rhs >= 1e20) {
        added.is_range = false;
        added.constr.sense = '>';
        added.constr.rhs = added.lower;
    } else if (added.is_range) {
        added.constr.sense = '=';
    }
    new_constrs.push_back(added);
}

void StoreReference::add_sos(Sos set)
{
    Entries &members = set.members;
    const auto up = [](const auto &a, const auto &b) { return a.second < b.second; };
    const auto down = [](const auto &a, const auto &b) { return a.second > b.second; };
    if (!std::is_sorted(members.begin(), members.end(), up) &&
        !std::is_sorted(members.begin(), members.end(), down)) {
        std::stable_sort(members.begin(), members.end(), up);
        std::set<double> weights;
        for (const auto &[j, weight] : members) weights.insert(weight);
        double gap = 1e10;
        for (auto w = weights.begin(); std::next(w) != weights.end(); w++)
            gap = std::min(gap, *std::next(w) - *w);
        double position = 0;
        if (weights.size() < members.size()) {
            const double step = gap / (2.0 * static_cast<double>(members.size()));
            for (auto &[j, weight] : members) weight += step * position++;
        }
    }
    new_sos.push_back(set);
}

std::string StoreReference::var_text(int j) const
{
    const std::string &text = vars[static_cast<size_t>(j)].name;
    return text.empty() ? "C" + std::to_string(j) : text;
}

std::string StoreReference::constr_text(int i) const
{
    const std::string &text = constrs[static_cast<size_t>(i)].name;
    return text.empty() ? "R" + std::to_string(i) : text;
}

template<class T> static T &at(std::vector<T> &list, int k)
{
    return list[static_cast<size_t>(k)];
}

void StoreReference::update_values()
{
    if (has_new_name) {
        name = new_name;
        has_name = true;
    }
    for (const auto &[j, text] : new_varname) at(vars, j).name = text;
    for (const auto &[i, text] : new_constrname) at(constrs, i).name = text;
    for (const auto &[i, value] : new_rhs) at(constrs, i).rhs = value;
    for (const auto &[i, value] : new_sense) at(constrs, i).sense = value;
    if (new_model_sense)
        sense = new_model_sense; // the caller's costs stay as they are stored
    for (const auto &[j, value] : new_obj) at(vars, j).obj = value;
    if (has_objcon) objcon = new_objcon;
    for (const auto &[j, value] : new_vtype) at(vars, j).vtype = value;
    for (const auto &[j, value] : new_lb) at(vars, j).lb = bounded(value);
    for (const auto &[j, value] : new_ub) at(vars, j).ub = bounded(value);
    for (Var &var : vars) round_to_type(&var);
}

void StoreReference::update_coefs()
{
    std::map<std::pair<int, int>, std::pair<size_t, double>>
        last; // var, row: when and what
    for (size_t k = 0; k < coefs.size(); k++)
        last[{coefs[k].var, coefs[k].row}] = {k, coefs[k].value};
    std::map<size_t, Coef> in_order;
    for (const auto &[place, what] : last)
        in_order[what.first] = {place.second, place.first, what.second};
    for (const auto &[k, change] : in_order) {
        Entries &column = at(vars, change.var).column;
        auto entry =
            std::find_if(column.begin(), column.end(),
                         [row = change.row](const auto &e) { return e.first == row; });
        const bool vanishes = std::fabs(change.value) < 1e-13;
        if (entry != column.end() && vanishes)
            column.erase(entry);
        else if (entry != column.end())
            entry->second = change.value;
        else if (!vanishes)
            column.emplace_back(change.row, change.value);
    }
}

// New index of each of n elements, -1 for those that are gone.
static std::vector<int> numbering(size_t n, const std::set<int> &gone)
{
    std::vector<int> map;
    int next = 0;
    for (size_t k = 0; k < n; k++)
        map.push_back(gone.count(static_cast<int>(k)) ? -1 : next++);
    return map;
}

static void renumber(Entries *entries, std::vector<int> &map)
{
    Entries kept;
    for (const auto &[k, value] : *entries)
        if (at(map, k) >= 0) kept.emplace_back(at(map, k), value);
    *entries = kept;
}

template<class T> static void erase_gone(std::vector<T> *list, const std::set<int> &gone)
{
    std::vector<T> kept;
    for (size_t k = 0; k < list->size(); k++)
        if (!gone.count(static_cast<int>(k))) kept.push_back((*list)[k]);
    *list = kept;
}

void StoreReference::update_deletions()
{
    std::vector<int> var_map = numbering(vars.size(), gone_vars);
    std::vector<int> constr_map = numbering(constrs.size(), gone_constrs);
    for (Var &var : vars) renumber(&var.column, constr_map);
    for (Var &var : new_vars) renumber(&var.column, constr_map);
    for (NewConstr &added : new_constrs) renumber(&added.row, var_map);
    for (Sos &set : sos) renumber(&set.members, var_map);
    for (Sos &set : new_sos) renumber(&set.members, var_map);
    erase_gone(&vars, gone_vars);
    erase_gone(&constrs, gone_constrs);
    erase_gone(&sos, gone_sos);
}

void StoreReference::update_additions()
{
    for (Var var : new_vars) {
        round_to_type(&var);
        vars.push_back(var);
    }
    std::vector<Var> ranges;
    for (const NewConstr &added : new_constrs) {
        const int i = static_cast<int>(constrs.size());
        for (const auto &[j, value] : added.row) at(vars, j).column.emplace_back(i, value);
        constrs.push_back(added.constr);
        if (!added.is_range) continue;
        Var range;
        range.name = "Rg" + added.constr.name;
        range.ub = bounded(added.constr.rhs - added.lower);
        range.column.emplace_back(i, 1.0);
        ranges.push_back(range);
    }
    vars.insert(vars.end(), ranges.begin(), ranges.end());
    sos.insert(sos.end(), new_sos.begin(), new_sos.end());
}

void StoreReference::clear()
{
    new_vars.clear();
    new_constrs.clear();
    new_sos.clear();
    gone_vars.clear();
    gone_constrs.clear();
    gone_sos.clear();
    new_obj.clear();
    new_lb.clear();
    new_ub.clear();
    new_rhs.clear();
    new_vtype.clear();
    new_sense.clear();
    new_varname.clear();
    new_constrname.clear();
    coefs.clear();
    new_model_sense = 0;
    has_objcon = has_new_name = false;
}

void StoreReference::update()
{
    update_values();
    update_coefs();
    update_deletions();
    update_additions();
    clear();
}

// ---- Comparing ----

namespace
{

struct Difference {
    std::ostringstream text;
    template<class A, class B>
    void expect(const A &is, const B &should, const std::string &what)
    {
        if (!(is == should))
            text << what << " is " << is << ", should be " << should << "\n";
    }
};

std::string place(const char *what, int k)
{
    return what + (" " + std::to_string(k));
}

void compare_vars(TVXmodel *model, const StoreReference &r, Difference *d)
{
    const ModelBody *body = model->body;
    char buffer[DEFAULT_NAME_LENGTH];
    for (int j = 0; j < body->numvars; j++) {
        const StoreReference::Var &var = r.vars[static_cast<size_t>(j)];
        d->expect(body->sense * body->obj[j], var.obj, place("obj", j));
        d->expect(body->lb[j], var.lb, place("lb", j));
        d->expect(body->ub[j], var.ub, place("ub", j));
        d->expect(body->vtypes.size ? body->vtypes[j] : 'C', var.vtype, place("vtype", j));
        d->expect(std::string(var_name(body, j, buffer)), r.var_text(j), place("name", j));
    }
}

void compare_constrs(TVXmodel *model, const StoreReference &r, Difference *d)
{
    const ModelBody *body = model->body;
    char buffer[DEFAULT_NAME_LENGTH];
    for (int i = 0; i < body->numconstrs; i++) {
        const StoreReference::Constr &constr = r.constrs[static_cast<size_t>(i)];
        const double rhs = body->senses[i] == '>' ? -body->rhs[i] : body->rhs[i];
        d->expect(body->senses[i], constr.sense, place("sense", i));
        d->expect(rhs, constr.rhs, place("rhs", i));
        d->expect(std::string(constr_name(body, i, buffer)), r.constr_text(i),
                  place("row name", i));
    }
}

using Query = int (*)(TVXmodel *, int *, int *, int *, double *, int, int);

// Element k's entries as a query gives them.
Entries read_vector(TVXmodel *model, Query query, int k, Difference *d)
{
    int count = 0;
    int beg = -1;
    d->expect(query(model, &count, nullptr, nullptr, nullptr, k, 1), 0, "query of size");
    std::vector<int> ind(static_cast<size_t>(count) + 1);
    std::vector<double> val(static_cast<size_t>(count) + 1);
    d->expect(query(model, &count, &beg, ind.data(), val.data(), k, 1), 0, "query");
    d->expect(beg, 0, "start of one vector");
    Entries entries;
    for (size_t p = 0; p < static_cast<size_t>(count); p++)
        entries.emplace_back(ind[p], val[p]);
    return entries;
}

std::string to_text(const Entries &entries)
{
    std::ostringstream text;
    for (const auto &[k, value] : entries) text << " (" << k << ", " << value << ")";
    return text.str();
}

void compare_matrix(TVXmodel *model, const StoreReference &r, Difference *d)
{
    std::vector<Entries> rows(r.constrs.size());
    for (int j = 0; j < model->body->numvars; j++) {
        const Entries &column = r.vars[static_cast<size_t>(j)].column;
        d->expect(to_text(read_vector(model, TVXgetvars, j, d)), to_text(column),
                  place("column", j));
        for (const auto &[i, value] : column)
            rows[static_cast<size_t>(i)].emplace_back(j, value);
    }
    for (int i = 0; i < model->body->numconstrs; i++) {
        const Entries &row = rows[static_cast<size_t>(i)];
        d->expect(to_text(read_vector(model, TVXgetconstrs, i, d)), to_text(row),
                  place("row", i));
        for (const auto &[j, value] : row) {
            double coeff = -1;
            d->expect(TVXgetcoeff(model, i, j, &coeff), 0, "coefficient query");
            d->expect(coeff, value, place("coefficient in row", i));
        }
    }
}

void compare_sos(TVXmodel *model, const StoreReference &r, Difference *d)
{
    for (int s = 0; s < model->body->numsos; s++) {
        const StoreReference::Sos &set = r.sos[static_cast<size_t>(s)];
        int count = 0;
        int type = 0;
        int beg = -1;
        const size_t room = set.members.size() + 1;
        std::vector<int> ind(room);
        std::vector<double> weight(room);
        TVXgetsos(model, &count, nullptr, nullptr, nullptr, nullptr, s, 1);
        d->expect(static_cast<size_t>(count), set.members.size(), place("size of SOS", s));
        if (static_cast<size_t>(count) != set.members.size()) continue;
        TVXgetsos(model, &count, &type, &beg, ind.data(), weight.data(), s, 1);
        d->expect(type, set.type, place("type of SOS", s));
        for (size_t p = 0; p < set.members.size(); p++) {
            d->expect(ind[p], set.members[p].first, place("member of SOS", s));
            d->expect(weight[p], set.members[p].second, place("weight in SOS", s));
        }
    }
}

} // namespace

std::string compare(TVXmodel *model, const StoreReference &r)
{
    Difference d;
    const ModelBody *body = model->body;
    const std::string text = body->modelname ? body->modelname : "";
    d.expect(text, r.name, "model name");
    d.expect(body->modelname != nullptr, r.has_name, "having a name");
    d.expect(body->sense, r.sense, "model sense");
    d.expect(body->sense * body->objcon, r.objcon, "constant");
    d.expect(static_cast<size_t>(body->numvars), r.vars.size(), "numvars");
    d.expect(static_cast<size_t>(body->numconstrs), r.constrs.size(), "numconstrs");
    d.expect(static_cast<size_t>(body->numsos), r.sos.size(), "numsos");
    if (!d.text.str().empty()) return d.text.str();
    compare_vars(model, r, &d);
    compare_constrs(model, r, &d);
    compare_matrix(model, r, &d);
    compare_sos(model, r, &d);
#ifdef TVX_DEBUG
    char where[BODY_CHECK_LENGTH];
    d.expect(body_check(body, model->env->TARV_PAR_INFBOUND, where), 0,
             std::string("broken invariants: ") + where);
#endif
    return d.text.str();
}
