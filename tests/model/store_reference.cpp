// store_reference.cpp -- what each call means for the content; see the header
#include "model/store_reference.h"
#include "model/model.h"
#include "model/model_store.h"
#include <algorithm>
#include <cmath>
#include <map>

// The bounds that the type makes of those given, as the library shows them.
static void show_bounds(StoreReference::Var *var)
{
    if (var->vtype != 'C' && var->vtype != 'S') {
        var->lb = std::ceil(var->lb - 1e-5);
        var->ub = std::floor(var->ub + 1e-5);
    }
    if (var->vtype == 'B') {
        var->lb = std::max(var->lb, 0.0);
        var->ub = std::min(var->ub, 1.0);
    }
    for (double *bound : {&var->lb, &var->ub})
        if (std::fabs(*bound) >= 1e30) *bound = std::copysign(1e100, *bound);
}

double bounded(double value)
{
    if (value >= 1e20) return 1e30;
    return value <= -1e20 ? -1e30 : value;
}

void StoreReference::add_var(Var var)
{
    if (var.name.empty()) {
        const int number = std::max(next_var_name, int(vars.size()));
        var.name = "C" + std::to_string(number);
        next_var_name = number + 1;
    }
    var.lb = bounded(var.lb);
    var.ub = bounded(var.ub);
    queue.vars.push_back(var);
}

void StoreReference::add_constr(NewConstr added)
{
    if (added.constr.name.empty()) {
        const int number = std::max(next_constr_name, int(constrs.size()));
        added.constr.name = "R" + std::to_string(number);
        next_constr_name = number + 1;
    }
    if (added.is_range && added.lower <= -1e20)
        added.constr.sense = '<';
    else if (added.is_range && added.constr.rhs >= 1e20) {
        added.constr.sense = '>';
        added.constr.rhs = added.lower;
    }
    added.is_range = added.is_range && added.constr.sense == '=';
    queue.constrs.push_back(added);
}

void StoreReference::add_sos(Sos set)
{
    Entries &members = set.members;
    const auto up = [](const auto &a, const auto &b) { return a.second < b.second; };
    const auto down = [](const auto &a, const auto &b) { return a.second > b.second; };
    if (!std::is_sorted(members.begin(), members.end(), up) &&
        !std::is_sorted(members.begin(), members.end(), down)) {
        for (auto m = members.begin(); m != members.end(); m++) // ties keep their order
            std::rotate(std::upper_bound(members.begin(), m, *m, up), m, m + 1);
        std::set<double> weights;
        for (const auto &[j, weight] : members) weights.insert(weight);
        double gap = 1e10;
        for (auto w = weights.begin(); std::next(w) != weights.end(); w++)
            gap = std::min(gap, *std::next(w) - *w);
        double position = 0;
        if (weights.size() < members.size()) {
            const double step = gap / (2.0 * double(members.size()));
            for (auto &[j, weight] : members) weight += step * position++;
        }
    }
    queue.sos.push_back(set);
}

// The last change of a place counts, at the time it came.
void StoreReference::update_coefs()
{
    std::map<std::pair<int, int>, size_t> last; // var, row
    for (size_t k = 0; k < queue.coefs.size(); k++)
        last[{queue.coefs[k].var, queue.coefs[k].row}] = k;
    for (size_t k = 0; k < queue.coefs.size(); k++) {
        const Coef &change = queue.coefs[k];
        if (last[{change.var, change.row}] != k) continue;
        Entries &column = vars[change.var].column;
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
    for (size_t k = 0; k < n; k++) map.push_back(gone.count(int(k)) ? -1 : next++);
    return map;
}

static void renumber(Entries *entries, const std::vector<int> &map)
{
    std::erase_if(*entries, [&map](const auto &e) { return map[e.first] < 0; });
    for (auto &[k, value] : *entries) k = map[k];
}

template<class T> static void erase_gone(std::vector<T> *list, const std::set<int> &gone)
{
    for (auto k = gone.rbegin(); k != gone.rend(); k++) list->erase(list->begin() + *k);
}

void StoreReference::update_deletions()
{
    const std::vector<int> var_map = numbering(vars.size(), queue.gone_vars),
                           constr_map = numbering(constrs.size(), queue.gone_constrs);
    for (std::vector<Var> *list : {&vars, &queue.vars})
        for (Var &var : *list) renumber(&var.column, constr_map);
    for (NewConstr &added : queue.constrs) renumber(&added.constr.row, var_map);
    for (std::vector<Sos> *list : {&sos, &queue.sos})
        for (Sos &set : *list) renumber(&set.members, var_map);
    erase_gone(&vars, queue.gone_vars);
    erase_gone(&constrs, queue.gone_constrs);
    erase_gone(&sos, queue.gone_sos);
}

void StoreReference::update_additions()
{
    for (const Var &var : queue.vars) vars.push_back(var);
    std::vector<Var> ranges;
    for (const NewConstr &added : queue.constrs) {
        const int i = int(constrs.size());
        for (const auto &[j, value] : added.constr.row)
            vars[j].column.emplace_back(i, value);
        constrs.push_back(added.constr);
        constrs.back().row.clear();
        if (!added.is_range) continue;
        Var range;
        range.name = "Rg" + added.constr.name;
        range.ub = bounded(added.constr.rhs - added.lower);
        range.column.emplace_back(i, 1.0);
        ranges.push_back(range);
    }
    vars.insert(vars.end(), ranges.begin(), ranges.end());
    sos.insert(sos.end(), queue.sos.begin(), queue.sos.end());
}

void StoreReference::update()
{
    for (const auto &change : queue.values) change(this);
    update_coefs();
    update_deletions();
    update_additions();
    queue = Queue{};
}

// ---- Comparing ----

// What the library should show.
static ModelContent shown(const StoreReference &r)
{
    ModelContent c = r;
    int numnz = 0, integers = 0, binaries = 0;
    for (size_t j = 0; j < c.vars.size(); j++) {
        StoreReference::Var *var = &c.vars[j];
        show_bounds(var);
        for (const auto &[i, value] : var->column)
            c.constrs[i].row.emplace_back(int(j), value);
        numnz += int(var->column.size());
        integers += var->vtype != 'C';
        binaries += var->vtype == 'B';
    }
    c.counts = content_counts(numnz, integers, binaries);
    return c;
}

std::string compare(TVXmodel *model, const StoreReference &r)
{
    const std::string is = model_text(model), should = content_text(shown(r));
    std::string wrong = is == should ? "" : "is\n" + is + "should be\n" + should;
    for (size_t j = 0; j < r.vars.size(); j++)
        for (const auto &[i, value] : r.vars[j].column) {
            double coeff = NAN;
            if (TVXgetcoeff(model, i, int(j), &coeff) || coeff != value)
                wrong +=
                    "coefficient " + std::to_string(i) + " " + std::to_string(j) + "\n";
        }
#ifdef TVX_DEBUG
    char where[BODY_CHECK_LENGTH];
    if (body_check(model->body, where)) wrong += std::string("broken invariant: ") + where;
#endif
    return wrong;
}
