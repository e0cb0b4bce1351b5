// Random sequences of calls against the plain reference: after every update, copy and reset the
// model must read exactly as the reference says, and calls that fail must leave no trace.
#include "frame/pending.h"
#include "frame/store_reference.h"
#include "support/dice.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <limits>

namespace
{

const double INF = std::numeric_limits<double>::infinity();
const double BAD_NUMBER = std::numeric_limits<double>::quiet_NaN();

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
    void misuse_vectors();
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
        ASSERT_EQ(pending_set_obj(model, {.start = j, .len = 1}, &value), 0);
        reference.new_obj[j] = value;
        const char type = vtype();
        ASSERT_EQ(pending_set_vtype(model, {.start = j, .len = 1}, &type), 0);
        reference.new_vtype[j] = upper(type);
    }
    if (n_constrs() == 0) return;
    const int first = dice.range(0, n_constrs() - 1); // a stretch
    const int len = dice.range(1, n_constrs() - first);
    std::vector<double> rhs;
    std::vector<char> senses;
    for (int i = first; i < first + len; i++) {
        rhs.push_back(number());
        senses.push_back(sense());
        reference.new_rhs[i] = rhs.back();
        reference.new_sense[i] = symbol(senses.back());
    }
    ASSERT_EQ(pending_set_rhs(model, {.start = first, .len = len}, rhs.data()), 0);
    ASSERT_EQ(pending_set_senses(model, {.start = first, .len = len}, senses.data()), 0);
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
        (lower ? reference.new_lb : reference.new_ub)[list.back()] = values.back();
    }
    ASSERT_EQ(pending_set_bounds(model, lower ? BoundSide::LOWER : BoundSide::UPPER,
                                 {.len = static_cast<int>(list.size()), .ind = list.data()},
                                 values.data()),
              0);
}

void Player::set_names()
{
    const std::string text = name();
    const char *given = text.c_str();
    if (n_vars() > 0) {
        const int j = dice.range(0, n_vars() - 1);
        ASSERT_EQ(pending_set_varnames(model, {.start = j, .len = 1}, &given), 0);
        reference.new_varname[j] = text.empty() ? "C" + std::to_string(j) : text;
    }
    if (n_constrs() > 0) {
        const int i = dice.range(0, n_constrs() - 1);
        ASSERT_EQ(pending_set_constrnames(model, {.start = i, .len = 1}, &given), 0);
        reference.new_constrname[i] = text.empty() ? "R" + std::to_string(i) : text;
    }
}

void Player::set_model()
{
    if (dice.chance(40)) {
        const int value = dice.range(-2, 2);
        ASSERT_EQ(pending_set_model_sense(model, value), 0);
        reference.new_model_sense = value < 1 ? -1 : 1;
    }
    if (dice.chance(40)) {
        reference.new_objcon = number();
        reference.has_objcon = true;
        ASSERT_EQ(pending_set_objcon(model, reference.new_objcon), 0);
    }
    if (dice.chance(40)) {
        reference.new_name = name();
        reference.has_new_name = true;
        ASSERT_EQ(pending_set_modelname(model, reference.new_name.c_str()), 0);
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
        reference.coefs.push_back(change);
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
    auto &gone = what == 0   ? reference.gone_vars
                 : what == 1 ? reference.gone_constrs
                             : reference.gone_sos;
    gone.insert(list.begin(), list.end());
}

// Two vectors, a good one and a bad one: nothing of either may be queued.
void Player::misuse_vectors()
{
    const int beg[] = {0, 1};
    const double val[] = {1, 1, 1};
    const double bad[] = {1, dice.chance(50) ? BAD_NUMBER : -INF, 1};
    const int twice[] = {0, 0, 0};
    const int outside[] = {0, 0, dice.chance(50) ? -1 : n_vars()};
    const int outside_rows[] = {0, 0, dice.chance(50) ? -1 : n_constrs()};
    const int far_beg[] = {0, 4};
    if (n_vars() > 0) {
        EXPECT_EQ(TVXaddconstrs(model, 2, 3, beg, twice, val, nullptr, nullptr, nullptr),
                  10018);
        EXPECT_EQ(TVXaddconstrs(model, 2, 3, beg, outside, val, nullptr, nullptr, nullptr),
                  10006);
        EXPECT_EQ(
            TVXaddconstrs(model, 2, 3, far_beg, twice, val, nullptr, nullptr, nullptr),
            10006);
        EXPECT_EQ(TVXaddrangeconstrs(model, 2, 3, beg, twice, bad, val, val, nullptr),
                  10003);
        const int types[] = {1, 2};
        EXPECT_EQ(TVXaddsos(model, 2, 3, types, beg, twice, val), 10018);
        EXPECT_EQ(TVXaddsos(model, 2, 3, types, beg, outside, val), 10006);
        EXPECT_EQ(TVXaddsos(model, 2, 3, types, beg, twice, bad), 10003);
    }
    if (n_constrs() > 0) {
        EXPECT_EQ(TVXaddvars(model, 2, 3, beg, twice, val, nullptr, nullptr, nullptr,
                             nullptr, nullptr),
                  10018);
        EXPECT_EQ(TVXaddvars(model, 2, 3, beg, outside_rows, val, nullptr, nullptr, nullptr,
                             nullptr, nullptr),
                  10006);
    }
    EXPECT_EQ(TVXaddvars(model, 2, 0, nullptr, nullptr, nullptr, bad, nullptr, nullptr,
                         nullptr, nullptr),
              10003);
    EXPECT_EQ(TVXaddvars(model, 1, 3, beg, nullptr, val, nullptr, nullptr, nullptr, nullptr,
                         nullptr),
              10002);
}

void Player::misuse()
{
    misuse_vectors();
    const int rows[] = {0, n_constrs()};
    const int columns[] = {0, n_vars()};
    const double values[] = {1, 1};
    EXPECT_EQ(TVXdelvars(model, 2, columns), 10006);
    EXPECT_EQ(TVXdelconstrs(model, 2, rows), 10006);
    const int sets[] = {n_sos()};
    EXPECT_EQ(TVXdelsos(model, 1, sets), 10006);
    EXPECT_EQ(TVXchgcoeffs(model, 2, rows, columns, values), 10006);
    const int zeros[] = {0, 0};
    const double bad[] = {1, BAD_NUMBER};
    if (n_vars() > 0 && n_constrs() > 0) {
        EXPECT_EQ(TVXchgcoeffs(model, 2, zeros, zeros, bad), 10003);
    }
    EXPECT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'X', nullptr), 10003);
}

void Player::check_copy()
{
    TVXmodel *copy = TVXcopymodel(model);
    ASSERT_NE(copy, nullptr);
    StoreReference expected = reference;
    expected.name = (reference.has_name ? reference.name : "(null)") + "_copy";
    expected.has_name = true;
    EXPECT_EQ(compare(copy, expected), "");
    EXPECT_EQ(TVXfreemodel(copy), 0);
}

void Player::step()
{
    switch (dice.range(0, 13)) {
    case 0:
    case 1:
        add_vars();
        break;
    case 2:
    case 3:
        add_constrs();
        break;
    case 4:
        add_ranges();
        break;
    case 5:
        add_sos();
        break;
    case 6:
        set_values();
        break;
    case 7:
    case 8:
        set_bounds();
        break;
    case 9:
        set_names();
        break;
    case 10:
        set_model();
        break;
    case 11:
        change_coeffs();
        break;
    case 12:
        remove();
        break;
    default:
        misuse();
        break;
    }
}

class StoreRandom : public testing::TestWithParam<int>
{
};

TEST_P(StoreRandom, ReadsAsTheReferenceSays)
{
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
    TVXsetintparam(env, "OutputFlag", 0);
    for (int game = 0; game < 100; game++) {
        Player player(static_cast<uint64_t>(GetParam() * 1000 + game));
        ASSERT_EQ(TVXnewmodel(env, &player.model, nullptr, 0, nullptr, nullptr, nullptr,
                              nullptr, nullptr),
                  0);
        for (int round = 0; round < 12; round++) {
            const int steps = player.dice.range(0, 9);
            for (int k = 0; k < steps; k++) player.step();
            ASSERT_EQ(compare(player.model, player.reference), "")
                << "pending changes show";
            if (player.dice.chance(25)) player.check_copy();
            if (player.dice.chance(10))
                ASSERT_EQ(TVXresetmodel(player.model), 0);
            else
                ASSERT_EQ(TVXupdatemodel(player.model), 0);
            player.reference.update();
            ASSERT_EQ(compare(player.model, player.reference), "")
                << "game " << game << ", round " << round;
            ASSERT_FALSE(HasFailure());
        }
        TVXfreemodel(player.model);
    }
    TVXfreeenv(env);
}

INSTANTIATE_TEST_SUITE_P(Seeds, StoreRandom, testing::Range(0, 10));

} // namespace
