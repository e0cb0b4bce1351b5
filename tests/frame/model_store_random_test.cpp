// Random sequences of calls against the plain reference: after every update, copy and reset the
// model must read exactly as the reference says, and calls that fail must leave no trace.
#include "frame/store_reference.h"
#include "support/dice.h"
#include "support/lp_tarvex.h"
#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>

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

struct Player {
    Dice dice;
    TVXmodel *model = nullptr;
    StoreReference reference;
    int names_made = 0;
    const LpModel empty;

    explicit Player(uint64_t seed) : dice(seed) {}

    int n_vars() const { return static_cast<int>(reference.vars.size()); }
    int n_constrs() const { return static_cast<int>(reference.constrs.size()); }
    int n_sos() const { return static_cast<int>(reference.sos.size()); }

    double number() { return dice.chance(20) ? 0 : dice.nonzero(9) * 0.5; }
    double bound()
    {
        if (dice.chance(15)) return dice.chance(50) ? 1e100 : 1e20;
        if (dice.chance(15)) return dice.chance(50) ? -1e100 : -1e20;
        return dice.nonzero(20) * 0.3;
    }
    char vtype() { return "CCCCBISNcbi"[dice.range(0, 10)]; }
    char sense() { return "<>=LGElge"[dice.range(0, 8)]; }
    std::string name() { return dice.chance(30) ? "" : "n" + std::to_string(names_made++); }
    Entries entries(int n_elements)
    {
        std::vector<int> all;
        for (int k = 0; k < n_elements; k++) all.push_back(k);
        dice.shuffle(&all);
        all.resize(static_cast<size_t>(dice.range(0, std::min(n_elements, 5))));
        Entries list;
        for (const int k : all) list.emplace_back(k, number());
        return list;
    }

    void add_vars();
    void add_constrs();
    void add_ranges();
    void add_sos();
    void set_values();
    void set_bounds();
    void set_names();
    void set_model();
    void change_coeffs();
    void remove();
    void misuse();
    void check_copy();
    void step();
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

void Player::add_vars()
{
    const int count = dice.range(1, 4);
    Compressed columns;
    std::vector<std::string> names;
    std::vector<double> obj, lb, ub;
    std::vector<char> types;
    const bool with_names = dice.chance(70);
    for (int k = 0; k < count; k++) {
        StoreReference::Var var;
        var.column = entries(n_constrs());
        columns.push(var.column);
        types.push_back(vtype());
        obj.push_back(number());
        lb.push_back(bound());
        ub.push_back(bound());
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
        ASSERT_EQ(TVXaddvar(model, columns.size(), columns.ind.data(), columns.val.data(),
                            obj[0], lb[0], ub[0], types[0], texts[0]),
                  0);
        return;
    }
    ASSERT_EQ(TVXaddvars(model, count, columns.size(), columns.beg.data(),
                         columns.ind.data(), columns.val.data(), obj.data(), lb.data(),
                         ub.data(), types.data(), with_names ? texts.data() : nullptr),
              0);
}

void Player::add_constrs()
{
    const int count = dice.range(1, 4);
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
    ASSERT_EQ(TVXaddconstrs(model, count, rows.size(), rows.beg.data(), rows.ind.data(),
                            rows.val.data(), senses.data(), rhs.data(), texts.data()),
              0);
}

void Player::add_ranges()
{
    const int count = dice.range(1, 3);
    Compressed rows;
    std::vector<std::string> names;
    std::vector<double> lower, upper_side;
    for (int k = 0; k < count; k++) {
        StoreReference::NewConstr added;
        added.row = entries(n_vars());
        rows.push(added.row);
        lower.push_back(bound());
        upper_side.push_back(bound());
        names.push_back(name());
        added.constr = {names.back(), '=', upper_side.back()};
        added.is_range = true;
        added.lower = lower.back();
        reference.add_constr(added);
    }
    std::vector<char *> texts = pointers(&names);
    ASSERT_EQ(TVXaddrangeconstrs(model, count, rows.size(), rows.beg.data(),
                                 rows.ind.data(), rows.val.data(), lower.data(),
                                 upper_side.data(), texts.data()),
              0);
}

void Player::add_sos()
{
    StoreReference::Sos set;
    set.type = dice.range(1, 2);
    set.members = entries(n_vars());
    for (auto &[j, weight] : set.members) weight = dice.range(-9, 9);
    Compressed list;
    list.push(set.members);
    ASSERT_EQ(TVXaddsos(model, 1, list.size(), &set.type, list.beg.data(), list.ind.data(),
                        list.val.data()),
              0);
    reference.add_sos(set);
}

void Player::set_values()
{
    if (n_vars() > 0) {
        const int j = dice.range(0, n_vars() - 1);
        const double value = number();
        const char type = vtype();
        ASSERT_EQ(TVXsetdblattrelement(model, "Obj", j, value), 0);
        ASSERT_EQ(TVXsetcharattrelement(model, "VType", j, type), 0);
        reference.queue.obj[j] = value;
        reference.queue.vtype[j] = upper(type);
    }
    if (n_constrs() == 0) return;
    const int first = dice.range(0, n_constrs() - 1); // a stretch
    const int len = dice.range(1, n_constrs() - first);
    std::vector<double> rhs;
    std::vector<char> senses;
    for (int i = first; i < first + len; i++) {
        rhs.push_back(number());
        senses.push_back(sense());
        reference.queue.rhs[i] = rhs.back();
        reference.queue.sense[i] = symbol(senses.back());
    }
    ASSERT_EQ(TVXsetdblattrarray(model, "RHS", first, len, rhs.data()), 0);
    ASSERT_EQ(TVXsetcharattrarray(model, "Sense", first, len, senses.data()), 0);
}

void Player::set_bounds()
{
    if (n_vars() == 0) return;
    std::vector<int> list; // with repetitions: the last one counts
    std::vector<double> values;
    const bool lower = dice.chance(50);
    for (int k = dice.range(1, 6); k > 0; k--) {
        list.push_back(dice.range(0, n_vars() - 1));
        values.push_back(bound());
        (lower ? reference.queue.lb : reference.queue.ub)[list.back()] = values.back();
    }
    ASSERT_EQ(TVXsetdblattrlist(model, lower ? "LB" : "UB", static_cast<int>(list.size()),
                                list.data(), values.data()),
              0);
}

void Player::set_names()
{
    const std::string text = name();
    const char *given = text.empty() && dice.chance(50) ? nullptr : text.c_str();
    if (n_vars() > 0) {
        const int j = dice.range(0, n_vars() - 1);
        ASSERT_EQ(TVXsetstrattrelement(model, "VarName", j, given), 0);
        reference.queue.varname[j] = text.empty() ? "C" + std::to_string(j) : text;
    }
    if (n_constrs() > 0) {
        const int i = dice.range(0, n_constrs() - 1);
        ASSERT_EQ(TVXsetstrattrelement(model, "ConstrName", i, given), 0);
        reference.queue.constrname[i] = text.empty() ? "R" + std::to_string(i) : text;
    }
}

void Player::set_model()
{
    if (dice.chance(40)) {
        const int value = dice.range(-2, 2);
        ASSERT_EQ(TVXsetintattr(model, "ModelSense", value), 0);
        reference.queue.model_sense = value < 1 ? -1 : 1;
    }
    if (dice.chance(40)) {
        reference.queue.objcon = number();
        ASSERT_EQ(TVXsetdblattr(model, "ObjCon", *reference.queue.objcon), 0);
    }
    if (dice.chance(40)) {
        reference.queue.name = name();
        ASSERT_EQ(TVXsetstrattr(model, "ModelName", reference.queue.name->c_str()), 0);
    }
}

void Player::change_coeffs()
{
    if (n_vars() == 0 || n_constrs() == 0) return;
    std::vector<int> rows, columns;
    std::vector<double> values;
    for (int k = dice.range(1, 8); k > 0; k--) {
        const StoreReference::Coef change = {dice.range(0, n_constrs() - 1),
                                             dice.range(0, n_vars() - 1),
                                             dice.chance(5) ? 1e-14 : number()};
        rows.push_back(change.row);
        columns.push_back(change.var);
        values.push_back(change.value);
        reference.queue.coefs.push_back(change);
    }
    ASSERT_EQ(TVXchgcoeffs(model, static_cast<int>(rows.size()), rows.data(),
                           columns.data(), values.data()),
              0);
}

void Player::remove()
{
    const int what = dice.range(0, 2);
    const int n = what == 0 ? n_vars() : what == 1 ? n_constrs() : n_sos();
    if (n == 0) return;
    std::vector<int> list;
    for (int k = dice.range(1, 3); k > 0; k--) list.push_back(dice.range(0, n - 1));
    const int count = static_cast<int>(list.size());
    const auto call = what == 0 ? TVXdelvars : what == 1 ? TVXdelconstrs : TVXdelsos;
    ASSERT_EQ(call(model, count, list.data()), 0);
    auto &gone = what == 0   ? reference.queue.gone_vars
                 : what == 1 ? reference.queue.gone_constrs
                             : reference.queue.gone_sos;
    gone.insert(list.begin(), list.end());
}

// Two vectors, a good one and a bad one: nothing of either may be queued. api/model_build_test.cpp has the texts.
void Player::misuse()
{
    constexpr std::nullptr_t NONE = nullptr;
    const int beg[] = {0, 1}, zeros[] = {0, 0, 0}, types[] = {1, 2};
    const double val[] = {1, 1, 1}, bad[] = {1, dice.chance(50) ? NAN : -HUGE_VAL, 1};
    const int outside[] = {0, 0, dice.chance(50) ? -1 : n_vars()};
    const int outside_rows[] = {0, 0, dice.chance(50) ? -1 : n_constrs()};
    const int rows[] = {0, n_constrs()}, columns[] = {0, n_vars()}, sets[] = {n_sos()};
    const auto add_rows = [&](const int *ind) {
        return TVXaddconstrs(model, 2, 3, beg, ind, val, NONE, NONE, NONE);
    };
    const auto add_columns = [&](const int *ind) {
        return TVXaddvars(model, 2, 3, beg, ind, val, NONE, NONE, NONE, NONE, NONE);
    };
    if (n_vars() > 0) {
        EXPECT_EQ(add_rows(zeros), 10018);
        EXPECT_EQ(add_rows(outside), 10006);
        EXPECT_EQ(TVXaddrangeconstrs(model, 2, 3, beg, zeros, bad, val, val, NONE), 10003);
        EXPECT_EQ(TVXaddsos(model, 2, 3, types, beg, zeros, val), 10018);
        EXPECT_EQ(TVXaddsos(model, 2, 3, types, beg, outside, val), 10006);
    }
    if (n_constrs() > 0) {
        EXPECT_EQ(add_columns(zeros), 10018);
        EXPECT_EQ(add_columns(outside_rows), 10006);
    }
    if (n_vars() > 0 && n_constrs() > 0) {
        EXPECT_EQ(TVXchgcoeffs(model, 2, zeros, zeros, bad), 10003);
    }
    EXPECT_EQ(TVXdelvars(model, 2, columns), 10006);
    EXPECT_EQ(TVXdelconstrs(model, 2, rows), 10006);
    EXPECT_EQ(TVXdelsos(model, 1, sets), 10006);
    EXPECT_EQ(TVXchgcoeffs(model, 2, rows, columns, val), 10006);
    EXPECT_EQ(TVXaddvars(model, 2, 0, NONE, NONE, NONE, NONE, NONE, NONE, "CX", NONE),
              10003);
}

void Player::check_copy()
{
    TVXmodel *copy = TVXcopymodel(model);
    ASSERT_NE(copy, nullptr);
    StoreReference expected = reference;
    expected.name = reference.name.value_or("(null)") + "_copy";
    EXPECT_EQ(compare(copy, expected), "");
    EXPECT_EQ(TVXfreemodel(copy), 0);
}

void Player::step()
{
    static constexpr void (Player::*moves[])() = {
        &Player::add_vars,    &Player::add_vars,   &Player::add_constrs,
        &Player::add_constrs, &Player::add_ranges, &Player::add_sos,
        &Player::set_values,  &Player::set_bounds, &Player::set_bounds,
        &Player::set_names,   &Player::set_model,  &Player::change_coeffs,
        &Player::remove,      &Player::misuse};
    (this->*moves[dice.range(0, 13)])();
}

TEST(StoreRandom, reads_as_the_reference_says)
{
    const TestEnv env;
    for (uint64_t game = 0; game < 1000; game++) {
        SCOPED_TRACE(game);
        Player player(game);
        const TestModel model(lp_load(env.env, &player.empty));
        player.model = model;
        for (int round = 0; round < 12; round++) {
            for (int k = player.dice.range(0, 9); k > 0; k--) player.step();
            ASSERT_EQ(compare(model, player.reference), "") << "pending changes show";
            if (player.dice.chance(25)) player.check_copy();
            const auto make_real = player.dice.chance(10) ? TVXresetmodel : TVXupdatemodel;
            ASSERT_EQ(make_real(model), 0);
            player.reference.update();
            ASSERT_EQ(compare(model, player.reference), "") << "round " << round;
            ASSERT_FALSE(HasFailure());
        }
    }
}

} // namespace
