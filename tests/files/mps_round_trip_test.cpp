// mps_round_trip_test.cpp -- what is written is read back as the same model, whatever it holds, in LP format too
#include "files/files_support.h"
#include "support/dice.h"
#include <cmath>

namespace
{

// A model in the making, as TVXloadmodel wants it.
struct Draft {
    int n = 0, m = 0, sense = 1;
    double objcon = 0;
    std::vector<double> obj{}, lb{}, ub{}, rhs{}, val{}, sos_weight{};
    std::vector<int> beg{}, len{}, ind{}, sos_type{}, sos_beg{}, sos_ind{};
    std::string types{}, senses{};
    std::vector<std::string> varnames{}, constrnames{}; // empty: no names
};

double any_number(Dice *dice)
{
    const double numbers[] = {
        double(dice->nonzero(9)),
        dice->nonzero(1000000) / 1000.0,
        std::ldexp(dice->nonzero(1 << 30), dice->range(-60, 30)),
        dice->nonzero(1000000000) / 3.0,
        dice->chance(50) ? 5e-324 : 1.7976931348623157e308,
    };
    return numbers[dice->range(0, 4)];
}

double any_bound(Dice *dice, bool upper)
{
    if (dice->chance(30)) return upper ? 1e100 : -1e100;
    if (dice->chance(30)) return 0;
    if (dice->chance(5)) return upper ? -1e100 : 1e100; // nonsense, but a model
    return dice->chance(50) ? dice->nonzero(5) : dice->nonzero(1000) / 7.0;
}

std::string any_name(Dice *dice, int k, int style)
{
    static const char *const parts[] = {"x", "a b",      "#1", "RHS",    "$",
                                        "9", "\xc3\xa9", "'",  "MARKER", "a  b"};
    std::string name = style == 1 ? "v" + std::to_string(k) : "";
    if (style == 1) return name; // short
    const int count = dice->range(1, style == 2 ? 1 : 4);
    for (int c = 0; c < count; c++) name += parts[dice->range(0, 9)];
    if (style == 2)
        return name.substr(0, 3) + std::to_string(k); // short, often with blanks
    return name + "_" + std::to_string(k);
}

void draw_columns(Dice *dice, Draft *draft)
{
    for (int j = 0; j < draft->n; j++) {
        draft->obj.push_back(dice->chance(40) ? 0 : any_number(dice));
        draft->types += "CCCBISN"[dice->range(0, 6)];
        double lb = any_bound(dice, false);
        double ub = dice->chance(20) ? lb : any_bound(dice, true);
        if (draft->types.back() == 'B' && dice->chance(70)) lb = 0, ub = 1;
        draft->lb.push_back(lb);
        draft->ub.push_back(ub);
        draft->beg.push_back(static_cast<int>(draft->ind.size()));
        for (int i = 0; i < draft->m; i++)
            if (dice->chance(40)) {
                draft->ind.push_back(i);
                draft->val.push_back(dice->chance(3) ? 0 : any_number(dice));
            }
        draft->len.push_back(static_cast<int>(draft->ind.size()) - draft->beg.back());
    }
}

void draw_sets(Dice *dice, Draft *draft)
{
    const int count = dice->chance(30) ? dice->range(1, 3) : 0;
    for (int s = 0; s < count; s++) {
        draft->sos_type.push_back(dice->range(1, 2));
        draft->sos_beg.push_back(static_cast<int>(draft->sos_ind.size()));
        for (int j = 0; j < draft->n; j++)
            if (dice->chance(60)) {
                draft->sos_ind.push_back(j);
                draft->sos_weight.push_back(dice->chance(50) ? j : dice->nonzero(50) / 3.0);
            }
    }
}

Draft draw(Dice *dice)
{
    Draft draft;
    draft.n = dice->range(0, 8);
    draft.m = dice->range(0, 6);
    draft.sense = dice->chance(30) ? -1 : 1;
    draft.objcon = dice->chance(40) ? any_number(dice) : 0;
    draw_columns(dice, &draft);
    for (int i = 0; i < draft.m; i++) {
        draft.senses += "<>="[dice->range(0, 2)];
        draft.rhs.push_back(dice->chance(30) ? 0 : any_number(dice));
    }
    const int style = dice->range(0, 3);
    const int other = dice->chance(70) ? style : dice->range(0, 3);
    for (int j = 0; style && j < draft.n; j++)
        draft.varnames.push_back(any_name(dice, j, style));
    for (int i = 0; other && i < draft.m; i++)
        draft.constrnames.push_back(any_name(dice, i, other));
    if (other && draft.m && dice->chance(20)) draft.constrnames[0] = "OBJ";
    draw_sets(dice, &draft);
    return draft;
}

TVXmodel *build(TVXenv *env, Draft *d, const char *name)
{
    TVXmodel *model = nullptr;
    std::vector<char *> vars, rows;
    for (std::string &text : d->varnames) vars.push_back(text.data());
    for (std::string &text : d->constrnames) rows.push_back(text.data());
    d->ind.push_back(0); // so that no array is null
    d->val.push_back(0);
    EXPECT_EQ(TVXloadmodel(env, &model, name, d->n, d->m, d->sense, d->objcon,
                           d->obj.data(), d->senses.data(), d->rhs.data(), d->beg.data(),
                           d->len.data(), d->ind.data(), d->val.data(), d->lb.data(),
                           d->ub.data(), d->types.data(),
                           vars.empty() ? nullptr : vars.data(),
                           rows.empty() ? nullptr : rows.data()),
              0);
    EXPECT_EQ(TVXaddsos(model, static_cast<int>(d->sos_type.size()),
                        static_cast<int>(d->sos_ind.size()), d->sos_type.data(),
                        d->sos_beg.data(), d->sos_ind.data(), d->sos_weight.data()),
              0);
    EXPECT_EQ(TVXupdatemodel(model), 0);
    return model;
}

} // namespace

class MpsRoundTrip : public Files
{
};

TEST_F(MpsRoundTrip, RandomModelsOfAllTypesAndBounds)
{
    Dice dice(3);
    for (int k = 0; k < 700; k++) {
        Draft draft = draw(&dice);
        const char *name = k % 3 == 0 ? nullptr : k % 3 == 1 ? "name" : "two words";
        TVXfreemodel(model);
        model = build(env, &draft, name);
        ASSERT_EQ(round_trip("t.mps", Names::IGNORE), "") << k << "\n" << file_get("t.mps");
        for (const char *other : {"t.rew", "t.lp", "t.rlp"})
            ASSERT_EQ(round_trip(other, Names::IGNORE), "") << k << "\n" << file_get(other);
        ASSERT_EQ(read_file("t.mps"), 0);
        ASSERT_EQ(round_trip("u.mps", Names::COMPARE), "") << k << "\n"
                                                           << file_get("u.mps");
        // The comments about what was converted go with the first copy.
        ASSERT_EQ(read_file("u.mps"), 0);
        ASSERT_EQ(round_trip("v.mps", Names::COMPARE), "");
        ASSERT_EQ(file_get("u.mps"), file_get("v.mps"))
            << "a second write gives the same text";
        ASSERT_EQ(read_file("t.lp"), 0);
        ASSERT_EQ(round_trip("u.lp", Names::COMPARE), "") << k << "\n" << file_get("u.lp");
        ASSERT_EQ(file_get("t.lp"), file_get("u.lp"));
    }
}

TEST_F(MpsRoundTrip, TheFileHasTheStoredForm)
{
    ASSERT_EQ(read("NAME plan\nOBJSENSE MAX\nROWS\n N C\n G R1\n L R2\n E R3\nCOLUMNS\n X "
                   "C 3 R1 2\n X R3 .1\n"
                   " M 'MARKER' 'INTORG'\n Y R2 1e-7 R1 1\n M 'MARKER' 'INTEND'\n Z R3 "
                   "0.333333333333333333\n"
                   "RHS\n R C -4 R1 5\n R R2 6\nRANGES\n R R2 2\nBOUNDS\n UP B Y 9\n LO B "
                   "Y -3\n FR B Z\n"
                   "SOS\n S2 a\n X 1\n Z 2\nENDATA\n"),
              0);
    ASSERT_EQ(round_trip("w.mps", Names::IGNORE), "");
    EXPECT_EQ(file_get("w.mps"), "NAME plan with objcon=          -4\n"
                                 "* Max problem is converted into Min one\n"
                                 "* All the >= constraints are converted into <= ones\n"
                                 "ROWS\n"
                                 " N  OBJ\n"
                                 " L  R1      \n"
                                 " E  R2      \n"
                                 " E  R3      \n"
                                 "COLUMNS\n"
                                 "    X         OBJ       -3\n"
                                 "    X         R1        -2\n"
                                 "    X         R3        0.1\n"
                                 "    MARKER    'MARKER'                 'INTORG'\n"
                                 "    Y         R2        1e-07\n"
                                 "    Y         R1        -1\n"
                                 "    MARKER    'MARKER'                 'INTEND'\n"
                                 "    Z         R3        3.3333333333333331e-01\n"
                                 "    RgR2      R2        1\n"
                                 "RHS\n"
                                 "    RHS1      OBJ       4\n"
                                 "    RHS1      R1        -5\n"
                                 "    RHS1      R2        6\n"
                                 "BOUNDS\n"
                                 " LI BND1      Y         -3\n"
                                 " UP BND1      Y         9\n"
                                 " FR BND1      Z       \n"
                                 " UP BND1      RgR2      2\n"
                                 "SOS\n"
                                 " S2 s0\n"
                                 "    X            1\n"
                                 "    Z            2\n"
                                 "ENDATA\n");
}

TEST_F(MpsRoundTrip, TheConstantShownInTheNameIsNoPartOfIt)
{
    for (const std::string name :
         {"plan", "a b", "with objcon=5", "", "x with objcon=           1"}) {
        ASSERT_EQ(read("NAME " + name +
                       "\nROWS\n N C\nCOLUMNS\n X C 1\nRHS\n R C -2.5\n"
                       "ENDATA\n"),
                  0);
        EXPECT_EQ(round_trip("w.mps", Names::COMPARE), "") << name;
    }
}

// ---- Names ----

class MpsNames : public Files
{
  protected:
    // Two columns and two rows of these names.
    void make(const std::vector<std::string> &vars, const std::vector<std::string> &constrs)
    {
        TVXfreemodel(model);
        Draft draft{.n = 2, .m = 2};
        draft.obj = {1, 2};
        draft.lb = {0, 1};
        draft.ub = {3, 4};
        draft.rhs = {5, 6};
        draft.types = "CI";
        draft.senses = "<=";
        draft.beg = {0, 2};
        draft.len = {2, 1};
        draft.ind = {0, 1, 1};
        draft.val = {7, 8, 9};
        draft.varnames = vars;
        draft.constrnames = constrs;
        model = build(env, &draft, "m");
    }
};

TEST_F(MpsNames, KeptWhereAFileCanCarryThem)
{
    const std::string long_name(300, 'n');
    const std::vector<std::vector<std::string>> pairs = {
        {"x", "y"},        {"a b", "c  d"},        {"12345678", "b 345 78"},
        {"A R1 3", "B"},   {long_name, "y"},       {"$x", "*y"},
        {"RHS", "ENDATA"}, {"'MARKER'", "MARKER"}, {"1e5", "-7"},
        {"S1", "S2"},      {"OBJ", "C0000000"},    {"\xc3\xa9t\xc3\xa9", "\xe9"}};
    for (const std::vector<std::string> &vars : pairs)
        for (const std::vector<std::string> &rows : pairs) {
            const std::string all = vars[0] + vars[1] + rows[0] + rows[1];
            const bool fits = all.size() < 300 || all.find(' ') == std::string::npos;
            make(vars, rows);
            ASSERT_EQ(round_trip("w.mps", fits ? Names::COMPARE : Names::IGNORE), "")
                << vars[0] << " " << rows[0] << "\n"
                << file_get("w.mps");
        }
}

TEST_F(MpsNames, NumberedWhereAFileCannotCarryThem)
{
    const std::vector<std::vector<std::string>> bad = {
        {"x", "x"},    {"x\ny", "z"},         {" x", "y"}, {"x ", "y"},
        {"a\tb", "y"}, {"a b and more", "y"}, {}};
    for (const std::vector<std::string> &names : bad)
        for (const bool of_rows : {false, true}) {
            const std::vector<std::string> good = {"r", "s"};
            make(of_rows ? good : names, of_rows ? names : good);
            Output output;
            ASSERT_EQ(TVXwrite(model, "w.mps"), 0);
            EXPECT_EQ(output.text().find("Warning: ") == std::string::npos, names.empty());
            EXPECT_EQ(round_trip("w.mps", Names::IGNORE), "");
            ASSERT_EQ(read_file("w.mps"), 0);
            const bool short_numbers = !names.empty() && names[0].size() > 8;
            EXPECT_EQ(column(of_rows ? "r" : short_numbers ? "C0" : "C0000000"), 0);
            EXPECT_EQ(row(!of_rows ? "r" : short_numbers ? "R0" : "R0000000"), 0);
        }
}

TEST_F(MpsNames, PendingChangesAreNotWritten)
{
    make({"x", "y"}, {"r", "s"});
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 99), 0);
    Output output;
    ASSERT_EQ(TVXwrite(model, "w.mps"), 0);
    EXPECT_EQ(output.text(), "Warning: model has pending changes.\n"
                             "File 'w.mps' does not contain these changes.\n");
    ASSERT_EQ(read_file("w.mps"), 0);
    EXPECT_EQ(domain("x"), "C [0,3]");
}
