// store_player.cpp -- the moves; see the header
#include "model/store_player.h"
#include <algorithm>
#include <cctype>
#include <cstring>

namespace
{
// A list of vectors in the form that calls take.
struct Compressed {
    std::vector<int> beg, ind;
    std::vector<double> val;
    void push(const Entries &entries)
    {
        beg.push_back(int(ind.size()));
        for (const auto &[k, value] : entries) {
            ind.push_back(k);
            val.push_back(value);
        }
    }
    int size() const { return int(ind.size()); }
};

char upper(char vtype)
{
    return char(toupper(vtype));
}
char symbol(char sense)
{
    const char *const letters = "LlGgEe", *const found = strchr(letters, sense);
    return found ? "<>="[(found - letters) / 2] : sense;
}

std::vector<char *> pointers(std::vector<std::string> *texts)
{
    std::vector<char *> list;
    for (std::string &text : *texts) list.push_back(text.empty() ? nullptr : text.data());
    return list;
}
} // namespace

void StorePlayer::expect(int code, int returned, int line)
{
    if (code == returned) return;
    if (!failed) failed = returned;
    wrong += "the call of line " + std::to_string(line) + " returned " +
             std::to_string(returned) + " for " + std::to_string(code) + ": " +
             TVXgetmerrormsg(model) + "\n";
}

// How many variables may be added, or constraints; these may be ranges, with a variable each.
int StorePlayer::room(bool of_vars) const
{
    const StoreReference::Queue &queue = reference.queue;
    const size_t used =
        of_vars ? reference.vars.size() + queue.vars.size() : reference.constrs.size();
    return most_elements - int(used + queue.constrs.size());
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
    const int count = std::min(dice->range(1, 4), room(true));
    if (count <= 0) return;
    Compressed columns;
    std::vector<std::string> names;
    std::vector<double> obj, lb, ub;
    std::vector<char> types;
    const bool with_names = dice->chance(70);
    for (int k = 0; k < count; k++) {
        const Entries column = entries(n_constrs());
        columns.push(column);
        types.push_back(vtype());
        obj.push_back(number());
        lb.push_back(bound(Side::LOWER));
        ub.push_back(bound(Side::UPPER));
        uncross(&lb[k], &ub[k]);
        names.push_back(with_names ? name() : "");
        reference.add_var({names[k], obj[k], lb[k], ub[k], upper(types[k]), column});
    }
    std::vector<char *> texts = pointers(&names);
    auto &[beg, ind, val] = columns;
    if (count == 1)
        expect(0, TVXaddvar(model, columns.size(), ind.data(), val.data(), obj[0], lb[0],
                            ub[0], types[0], texts[0]));
    else
        expect(0, TVXaddvars(model, count, columns.size(), beg.data(), ind.data(),
                             val.data(), obj.data(), lb.data(), ub.data(), types.data(),
                             with_names ? texts.data() : nullptr));
}

void StorePlayer::add_rows(bool ranges)
{
    int count = std::min(dice->range(1, ranges ? 3 : 4), room(false));
    if (ranges) count = std::min(count, room(true));
    if (count <= 0) return;
    Compressed rows;
    std::vector<std::string> names;
    std::vector<double> lower, rhs;
    std::vector<char> senses;
    for (int k = 0; k < count; k++) {
        const Entries row = entries(n_vars());
        rows.push(row);
        senses.push_back(ranges ? '=' : sense());
        lower.push_back(ranges ? bound(Side::LOWER) : 0);
        rhs.push_back(ranges ? bound(Side::UPPER) : number());
        if (ranges) uncross(&lower.back(), &rhs.back());
        names.push_back(name());
        reference.add_constr(
            {{names[k], symbol(senses[k]), rhs[k], row}, ranges, lower[k]});
    }
    std::vector<char *> texts = pointers(&names);
    auto &[beg, ind, val] = rows;
    if (ranges)
        expect(0, TVXaddrangeconstrs(model, count, rows.size(), beg.data(), ind.data(),
                                     val.data(), lower.data(), rhs.data(), texts.data()));
    else
        expect(0, TVXaddconstrs(model, count, rows.size(), beg.data(), ind.data(),
                                val.data(), senses.data(), rhs.data(), texts.data()));
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
    expect(0, TVXaddsos(model, 1, list.size(), &set.type, list.beg.data(), list.ind.data(),
                        list.val.data()));
    reference.add_sos(set);
}

void StorePlayer::set_values()
{
    if (n_vars() > 0) {
        const int j = dice->range(0, n_vars() - 1);
        const double value = number();
        const char type = vtype();
        expect(0, TVXsetdblattrelement(model, "Obj", j, value));
        expect(0, TVXsetcharattrelement(model, "VType", j, type));
        reference.set([=](auto *r) { r->vars[j].obj = value; });
        reference.set([=](auto *r) { r->vars[j].vtype = upper(type); });
    }
    if (n_constrs() == 0) return;
    const int first = dice->range(0, n_constrs() - 1); // a stretch
    const int len = dice->range(1, n_constrs() - first);
    std::vector<double> rhs;
    std::vector<char> senses;
    for (int i = first; i < first + len; i++) {
        const double side = rhs.emplace_back(number());
        const char way = symbol(senses.emplace_back(sense()));
        reference.set([=](auto *r) { r->constrs[i].rhs = side; });
        reference.set([=](auto *r) { r->constrs[i].sense = way; });
    }
    expect(0, TVXsetdblattrarray(model, "RHS", first, len, rhs.data()));
    expect(0, TVXsetcharattrarray(model, "Sense", first, len, senses.data()));
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
        uncross(lower ? &value : &other, lower ? &other : &value);
        values.push_back(value);
        reference.set(
            [=](auto *r) { (lower ? r->vars[j].lb : r->vars[j].ub) = bounded(value); });
    }
    expect(0, TVXsetdblattrlist(model, lower ? "LB" : "UB", int(list.size()), list.data(),
                                values.data()));
}

void StorePlayer::set_names()
{
    const std::string text = name();
    const char *given = text.empty() && dice->chance(50) ? nullptr : text.c_str();
    for (const bool var : {true, false}) {
        const int n = var ? n_vars() : n_constrs();
        if (n == 0) continue;
        const int k = dice->range(0, n - 1);
        expect(0, TVXsetstrattrelement(model, var ? "VarName" : "ConstrName", k, given));
        const std::string name =
            text.empty() ? (var ? "C" : "R") + std::to_string(k) : text;
        reference.set(
            [=](auto *r) { (var ? r->vars[k].name : r->constrs[k].name) = name; });
    }
}

void StorePlayer::set_model()
{
    if (dice->chance(40)) {
        const int value = dice->range(-2, 2);
        expect(0, TVXsetintattr(model, "ModelSense", value));
        reference.set([=](auto *r) { r->sense = value < 1 ? -1 : 1; });
    }
    if (dice->chance(40)) {
        const double value = number();
        expect(0, TVXsetdblattr(model, "ObjCon", value));
        reference.set([=](auto *r) { r->objcon = value; });
    }
    if (dice->chance(40)) {
        const std::string text = name();
        expect(0, TVXsetstrattr(model, "ModelName", text.c_str()));
        reference.set([=](auto *r) { r->name = text; });
    }
}

void StorePlayer::change_coeffs()
{
    if (n_vars() == 0 || n_constrs() == 0) return;
    std::vector<int> rows, columns;
    std::vector<double> values;
    for (int k = dice->range(1, 8); k > 0; k--) {
        rows.push_back(dice->range(0, n_constrs() - 1));
        columns.push_back(dice->range(0, n_vars() - 1));
        values.push_back(dice->chance(5) ? 1e-14 : number());
        reference.queue.coefs.push_back({rows.back(), columns.back(), values.back()});
    }
    expect(0, TVXchgcoeffs(model, int(rows.size()), rows.data(), columns.data(),
                           values.data()));
}

void StorePlayer::remove()
{
    StoreReference::Queue *queue = &reference.queue;
    const struct {
        int n;
        int (*call)(TVXmodel *, int, const int *);
        std::set<int> *gone;
    } kinds[] = {{n_vars(), TVXdelvars, &queue->gone_vars},
                 {n_constrs(), TVXdelconstrs, &queue->gone_constrs},
                 {n_sos(), TVXdelsos, &queue->gone_sos}};
    const auto &kind = kinds[dice->range(0, 2)];
    if (kind.n == 0) return;
    std::vector<int> list;
    for (int k = dice->range(1, 3); k > 0; k--) list.push_back(dice->range(0, kind.n - 1));
    expect(0, kind.call(model, int(list.size()), list.data()));
    kind.gone->insert(list.begin(), list.end());
}

void StorePlayer::step()
{
    using P = StorePlayer;
    static constexpr void (P::*moves[])() = {
        &P::add_vars,  &P::add_vars,      &P::add_constrs, &P::add_constrs, &P::add_ranges,
        &P::add_sos,   &P::set_values,    &P::set_bounds,  &P::set_bounds,  &P::set_names,
        &P::set_model, &P::change_coeffs, &P::remove};
    (this->*moves[dice->range(0, 12)])();
}
