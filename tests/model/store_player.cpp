// store_player.cpp -- the moves; see the header
#include "model/store_player.h"
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace
{

// A list of vectors in the form that calls take.
struct Compressed {
    std::vector<int> beg, ind;
    std::vector<double> val;
    void push(const Entries &entries)
    {
        beg.push_back(static_cast<int>(ind.size()));
        for (const auto &[k, value] : entries) {
            ind.push_back(k);
            val.push_back(value);
        }
    }
    int size() const { return static_cast<int>(ind.size()); }
};

char upper(char vtype)
{
    return vtype >= 'a' ? static_cast<char>(vtype - 'a' + 'A') : vtype;
}
char symbol(char sense)
{
    if (strchr("Ll", sense)) return '<';
    if (strchr("Gg", sense)) return '>';
    return strchr("Ee", sense) ? '=' : sense;
}

std::vector<char *> pointers(std::vector<std::string> *texts)
{
    std::vector<char *> list;
    for (std::string &text : *texts) list.push_back(text.empty() ? nullptr : text.data());
    return list;
}

} // namespace

void StorePlayer::expect(int code, int returned, const char *call)
{
    if (code == returned) return;
    wrong += std::string(call) + " returned " + std::to_string(returned) + " for " +
             std::to_string(code) + ": " + TVXgetmerrormsg(model) + "\n";
}

int StorePlayer::room_for_vars() const
{
    const size_t used = reference.vars.size() + reference.queue.vars.size() +
                        reference.queue.constrs.size(); // that may be ranges
    return most_vars - static_cast<int>(used);
}

int StorePlayer::room_for_constrs() const
{
    return most_constrs -
           static_cast<int>(reference.constrs.size() + reference.queue.constrs.size());
}

// ---- Random things ----

double StorePlayer::number()
{
    return dice->chance(20) ? 0 : dice->nonzero(9) * 0.5;
}

double StorePlayer::bound(Side side)
{
    const bool low = dice->chance(10) ? side == Side::UPPER : side == Side::LOWER;
    if (dice->chance(25)) return (low ? -1 : 1) * (dice->chance(50) ? 1e100 : 1e20);
    return dice->nonzero(20) * 0.25;
}

void StorePlayer::uncross(double *low, double *up)
{
    if (*low > *up && dice->chance(80)) std::swap(*low, *up);
}

char StorePlayer::vtype()
{
    return linear ? "Cc"[dice->range(0, 1)] : "CCCCBISNcbi"[dice->range(0, 10)];
}

char StorePlayer::sense()
{
    return "<>=LGElge"[dice->range(0, 8)];
}

std::string StorePlayer::name()
{
    return dice->chance(30) ? "" : "n" + std::to_string(names_made++);
}

// Up to five of the elements, in any order.
Entries StorePlayer::entries(int n_elements)
{
    std::vector<int> all;
    for (int k = 0; k < n_elements; k++) all.push_back(k);
    const int count = dice->range(0, std::min(n_elements, 5));
    Entries list;
    for (int k = 0; k < count; k++) {
        std::swap(all[k], all[dice->range(k, n_elements - 1)]);
        list.emplace_back(all[k], number());
    }
    return list;
}

// ---- Moves ----

void StorePlayer::add_vars()
{
    const int count = std::min(dice->range(1, 4), room_for_vars());
    if (count <= 0) return;
    Compressed columns;
    std::vector<std::string> names;
    std::vector<double> obj, lb, ub;
    std::vector<char> types;
    const bool with_names = dice->chance(70);
    for (int k = 0; k < count; k++) {
        StoreReference::Var var;
        var.column = entries(n_constrs());
        columns.push(var.column);
        types.push_back(vtype());
        obj.push_back(number());
        lb.push_back(bound(Side::LOWER));
        ub.push_back(bound(Side::UPPER));
        uncross(&lb.back(), &ub.back());
        names.push_back(with_names ? name() : "");
        var.name = names.back();
        var.vtype = upper(types.back());
        var.obj = obj.back();
        var.lb = lb.back();
        var.ub = ub.back();
        reference.add_var(var);
    }
    std::vector<char *> texts = pointers(&names);
    if (count == 1) {
        expect(0,
               TVXaddvar(model, columns.size(), columns.ind.data(), columns.val.data(),
                         obj[0], lb[0], ub[0], types[0], texts[0]),
               "TVXaddvar");
        return;
    }
    expect(0,
           TVXaddvars(model, count, columns.size(), columns.beg.data(), columns.ind.data(),
                      columns.val.data(), obj.data(), lb.data(), ub.data(), types.data(),
                      with_names ? texts.data() : nullptr),
           "TVXaddvars");
}

void StorePlayer::add_constrs()
{
    const int count = std::min(dice->range(1, 4), room_for_constrs());
    if (count <= 0) return;
    Compressed rows;
    std::vector<std::string> names;
    std::vector<double> rhs;
    std::vector<char> senses;
    for (int k = 0; k < count; k++) {
        StoreReference::NewConstr added;
        added.row = entries(n_vars());
        rows.push(added.row);
        senses.push_back(sense());
        rhs.push_back(number());
        names.push_back(name());
        added.constr = {names.back(), symbol(senses.back()), rhs.back()};
        reference.add_constr(added);
    }
    std::vector<char *> texts = pointers(&names);
    expect(0,
           TVXaddconstrs(model, count, rows.size(), rows.beg.data(), rows.ind.data(),
                         rows.val.data(), senses.data(), rhs.data(), texts.data()),
           "TVXaddconstrs");
}

void StorePlayer::add_ranges()
{
    const int count = std::min({dice->range(1, 3), room_for_vars(), room_for_constrs()});
    if (count <= 0) return;
    Compressed rows;
    std::vector<std::string> names;
    std::vector<double> lower, upper_side;
    for (int k = 0; k < count; k++) {
        StoreReference::NewConstr added;
        added.row = entries(n_vars());
        rows.push(added.row);
        lower.push_back(bound(Side::LOWER));
        upper_side.push_back(bound(Side::UPPER));
        uncross(&lower.back(), &upper_side.back());
        names.push_back(name());
        added.constr = {names.back(), '=', upper_side.back()};
        added.is_range = true;
        added.lower = lower.back();
        reference.add_constr(added);
    }
    std::vector<char *> texts = pointers(&names);
    expect(0,
           TVXaddrangeconstrs(model, count, rows.size(), rows.beg.data(), rows.ind.data(),
                              rows.val.data(), lower.data(), upper_side.data(),
                              texts.data()),
           "TVXaddrangeconstrs");
}

void StorePlayer::add_sos()
{
    if (linear) return;
    StoreReference::Sos set;
    set.type = dice->range(1, 2);
    set.members = entries(n_vars());
    for (auto &[j, weight] : set.members) weight = dice->range(-9, 9);
    Compressed list;
    list.push(set.members);
    expect(0,
           TVXaddsos(model, 1, list.size(), &set.type, list.beg.data(), list.ind.data(),
                     list.val.data()),
           "TVXaddsos");
    reference.add_sos(set);
}

void StorePlayer::set_values()
{
    if (n_vars() > 0) {
        const int j = dice->range(0, n_vars() - 1);
        const double value = number();
        const char type = vtype();
        expect(0, TVXsetdblattrelement(model, "Obj", j, value), "TVXsetdblattrelement");
        expect(0, TVXsetcharattrelement(model, "VType", j, type), "TVXsetcharattrelement");
        reference.queue.obj[j] = value;
        reference.queue.vtype[j] = upper(type);
    }
    if (n_constrs() == 0) return;
    const int first = dice->range(0, n_constrs() - 1); // a stretch
    const int len = dice->range(1, n_constrs() - first);
    std::vector<double> rhs;
    std::vector<char> senses;
    for (int i = first; i < first + len; i++) {
        rhs.push_back(number());
        senses.push_back(sense());
        reference.queue.rhs[i] = rhs.back();
        reference.queue.sense[i] = symbol(senses.back());
    }
    expect(0, TVXsetdblattrarray(model, "RHS", first, len, rhs.data()),
           "TVXsetdblattrarray");
    expect(0, TVXsetcharattrarray(model, "Sense", first, len, senses.data()),
           "TVXsetcharattrarray");
}

void StorePlayer::set_bounds()
{
    if (n_vars() == 0) return;
    std::vector<int> list; // with repetitions: the last one counts
    std::vector<double> values;
    const bool lower = dice->chance(50);
    for (int k = dice->range(1, 6); k > 0; k--) {
        const int j = list.emplace_back(dice->range(0, n_vars() - 1));
        const StoreReference::Var &var = reference.vars[j];
        double value = bound(lower ? Side::LOWER : Side::UPPER),
               other = lower ? var.ub : var.lb;
        if (lower ? value > other : value < other)
            uncross(lower ? &value : &other, lower ? &other : &value);
        values.push_back(value);
        (lower ? reference.queue.lb : reference.queue.ub)[j] = value;
    }
    expect(0,
           TVXsetdblattrlist(model, lower ? "LB" : "UB", static_cast<int>(list.size()),
                             list.data(), values.data()),
           "TVXsetdblattrlist");
}

void StorePlayer::set_names()
{
    const std::string text = name();
    const char *given = text.empty() && dice->chance(50) ? nullptr : text.c_str();
    if (n_vars() > 0) {
        const int j = dice->range(0, n_vars() - 1);
        expect(0, TVXsetstrattrelement(model, "VarName", j, given), "TVXsetstrattrelement");
        reference.queue.varname[j] = text.empty() ? "C" + std::to_string(j) : text;
    }
    if (n_constrs() > 0) {
        const int i = dice->range(0, n_constrs() - 1);
        expect(0, TVXsetstrattrelement(model, "ConstrName", i, given),
               "TVXsetstrattrelement");
        reference.queue.constrname[i] = text.empty() ? "R" + std::to_string(i) : text;
    }
}

void StorePlayer::set_model()
{
    if (dice->chance(40)) {
        const int value = dice->range(-2, 2);
        expect(0, TVXsetintattr(model, "ModelSense", value), "TVXsetintattr");
        reference.queue.model_sense = value < 1 ? -1 : 1;
    }
    if (dice->chance(40)) {
        reference.queue.objcon = number();
        expect(0, TVXsetdblattr(model, "ObjCon", *reference.queue.objcon), "TVXsetdblattr");
    }
    if (dice->chance(40)) {
        reference.queue.name = name();
        expect(0, TVXsetstrattr(model, "ModelName", reference.queue.name->c_str()),
               "TVXsetstrattr");
    }
}

void StorePlayer::change_coeffs()
{
    if (n_vars() == 0 || n_constrs() == 0) return;
    std::vector<int> rows, columns;
    std::vector<double> values;
    for (int k = dice->range(1, 8); k > 0; k--) {
        const StoreReference::Coef change = {dice->range(0, n_constrs() - 1),
                                             dice->range(0, n_vars() - 1),
                                             dice->chance(5) ? 1e-14 : number()};
        rows.push_back(change.row);
        columns.push_back(change.var);
        values.push_back(change.value);
        reference.queue.coefs.push_back(change);
    }
    expect(0,
           TVXchgcoeffs(model, static_cast<int>(rows.size()), rows.data(), columns.data(),
                        values.data()),
           "TVXchgcoeffs");
}

void StorePlayer::remove()
{
    const int what = dice->range(0, 2);
    const int n = what == 0 ? n_vars() : what == 1 ? n_constrs() : n_sos();
    if (n == 0) return;
    std::vector<int> list;
    for (int k = dice->range(1, 3); k > 0; k--) list.push_back(dice->range(0, n - 1));
    const int count = static_cast<int>(list.size());
    const auto call = what == 0 ? TVXdelvars : what == 1 ? TVXdelconstrs : TVXdelsos;
    expect(0, call(model, count, list.data()), "delete");
    auto &gone = what == 0   ? reference.queue.gone_vars
                 : what == 1 ? reference.queue.gone_constrs
                             : reference.queue.gone_sos;
    gone.insert(list.begin(), list.end());
}

// Two vectors, a good one and a bad one: nothing of either may be queued. api/model_build_test.cpp has the texts.
void StorePlayer::misuse()
{
    constexpr std::nullptr_t NONE = nullptr;
    const int beg[] = {0, 1}, zeros[] = {0, 0, 0}, types[] = {1, 2};
    const double val[] = {1, 1, 1}, bad[] = {1, dice->chance(50) ? NAN : -HUGE_VAL, 1};
    const int outside[] = {0, 0, dice->chance(50) ? -1 : n_vars()};
    const int outside_rows[] = {0, 0, dice->chance(50) ? -1 : n_constrs()};
    const int rows[] = {0, n_constrs()}, columns[] = {0, n_vars()}, sets[] = {n_sos()};
    const auto add_rows = [&](const int *ind) {
        return TVXaddconstrs(model, 2, 3, beg, ind, val, NONE, NONE, NONE);
    };
    const auto add_columns = [&](const int *ind) {
        return TVXaddvars(model, 2, 3, beg, ind, val, NONE, NONE, NONE, NONE, NONE);
    };
    if (n_vars() > 0) {
        expect(10018, add_rows(zeros), "misuse");
        expect(10006, add_rows(outside), "misuse");
        expect(10003, TVXaddrangeconstrs(model, 2, 3, beg, zeros, bad, val, val, NONE),
               "misuse");
        expect(10018, TVXaddsos(model, 2, 3, types, beg, zeros, val), "misuse");
        expect(10006, TVXaddsos(model, 2, 3, types, beg, outside, val), "misuse");
    }
    if (n_constrs() > 0) {
        expect(10018, add_columns(zeros), "misuse");
        expect(10006, add_columns(outside_rows), "misuse");
    }
    if (n_vars() > 0 && n_constrs() > 0) {
        expect(10003, TVXchgcoeffs(model, 2, zeros, zeros, bad), "misuse");
    }
    expect(10006, TVXdelvars(model, 2, columns), "misuse");
    expect(10006, TVXdelconstrs(model, 2, rows), "misuse");
    expect(10006, TVXdelsos(model, 1, sets), "misuse");
    expect(10006, TVXchgcoeffs(model, 2, rows, columns, val), "misuse");
    expect(10003, TVXaddvars(model, 2, 0, NONE, NONE, NONE, NONE, NONE, NONE, "CX", NONE),
           "misuse");
}

void StorePlayer::step()
{
    static constexpr void (StorePlayer::*moves[])() = {
        &StorePlayer::add_vars,    &StorePlayer::add_vars,   &StorePlayer::add_constrs,
        &StorePlayer::add_constrs, &StorePlayer::add_ranges, &StorePlayer::add_sos,
        &StorePlayer::set_values,  &StorePlayer::set_bounds, &StorePlayer::set_bounds,
        &StorePlayer::set_names,   &StorePlayer::set_model,  &StorePlayer::change_coeffs,
        &StorePlayer::remove,      &StorePlayer::misuse};
    (this->*moves[dice->range(0, 13)])();
}
