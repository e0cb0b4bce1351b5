// mps_round_trip_test.cpp -- what is written is read back as the same model, whatever it holds
#include "files/files_support.h"
#include "support/dice.h"
#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

// A model in the making, as TVXloadmodel wants it.
struct Draft {
    int n = 0, m = 0, sense = 1;
    double objcon = 0;
    std::vector<double> obj, lb, ub, rhs, val;
    std::vector<int> beg, len, ind;
    std::string types, senses;
    std::vector<std::string> varnames, constrnames; // empty: no names
    std::vector<int> sos_type, sos_beg, sos_ind;
    std::vector<double> sos_weight;
};

double any_number(Dice *dice)
{
    switch (dice->range(0, 5)) {
    case 0:
        return dice->nonzero(9);
    case 1:
        return dice->nonzero(1000000) / 1000.0;
    case 2:
        return std::ldexp(dice->nonzero(1 << 30), dice->range(-60, 30));
    case 3:
        return dice->nonzero(1000000000) / 3.0;
    case 4:
        return dice->chance(50) ? 5e-324 : 1.7976931348623157e308;
    default:
        return dice->nonzero(1000000);
    }
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

std::vector<char *> pointers(std::vector<std::string> *names)
{
    std::vector<char *> result;
    for (std::string &name : *names) result.push_back(name.data());
    return result;
}

TVXmodel *build(TVXenv *env, Draft *draft, const char *name)
{
    TVXmodel *model = nullptr;
    std::vector<char *> vars = pointers(&draft->varnames);
    std::vector<char *> constrs = pointers(&draft->constrnames);
    draft->ind.push_back(0); // so that no array is null
    draft->val.push_back(0);
    const int code = TVXloadmodel(
        env, &model, name, draft->n, draft->m, draft->sense, draft->objcon,
        draft->obj.data(), draft->senses.data(), draft->rhs.data(), draft->beg.data(),
        draft->len.data(), draft->ind.data(), draft->val.data(), draft->lb.data(),
        draft->ub.data(), draft->types.data(), vars.empty() ? nullptr : vars.data(),
        constrs.empty() ? nullptr : constrs.data());
    EXPECT_EQ(code, 0) << TVXgeterrormsg(env);
    if (!draft->sos_type.empty()) {
        EXPECT_EQ(TVXaddsos(model, static_cast<int>(draft->sos_type.size()),
                            static_cast<int>(draft->sos_ind.size()), draft->sos_type.data(),
                            draft->sos_beg.data(), draft->sos_ind.data(),
                            draft->sos_weight.data()),
                  0);
        EXPECT_EQ(TVXupdatemodel(model), 0);
    }
    return model;
}

} // namespace

class MpsRoundTrip : public Files
{
};

TEST_F(MpsRoundTrip, RandomModelsOfAllTypesAndBounds)
{
    Dice dice(3);
    for (int k = 0; k < 1500; k++) {
        Draft draft = draw(&dice);
        const char *name = k % 3 == 0 ? nullptr : k % 3 == 1 ? "name" : "two words";
        TVXfreemodel(model);
        model = build(env, &draft, name);
        // Names are kept when both kinds have them, short or without blanks.
        ASSERT_EQ(round_trip("t.mps", Names::IGNORE), "") << k << "\n" << file_get("t.mps");
        ASSERT_EQ(round_trip("t.rew", Names::IGNORE), "") << k << "\n" << file_get("t.rew");
        ASSERT_EQ(read_file("t.mps"), 0);
        ASSERT_EQ(round_trip("u.mps", Names::COMPARE), "") << k << "\n"
                                                           << file_get("u.mps");
        // The comments about what was converted go with the first copy.
        ASSERT_EQ(read_file("u.mps"), 0);
        ASSERT_EQ(round_trip("v.mps", Names::COMPARE), "");
        ASSERT_EQ(file_get("u.mps"), file_get("v.mps"))
            << "a second write gives the same text";
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
    for (const char *name :
         {"plan", "a b", "with objcon=5", "", "x with objcon=           1"}) {
        ASSERT_EQ(read(std::string("NAME ") + name +
                       "\nROWS\n N C\nCOLUMNS\n X C 1\nRHS\n R C -2.5\nENDATA\n"),
                  0);
        EXPECT_EQ(round_trip("w.mps", Names::COMPARE), "") << name;
    }
}

// ---- Names ----

class MpsNames : public Files
{
  protected:
    // Two columns and two rows of these names.
    void make(std::vector<std::string> vars, std::vector<std::string> constrs)
    {
        TVXfreemodel(model);
        Draft draft;
        draft.n = draft.m = 2;
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
        draft.varnames = std::move(vars);
        draft.constrnames = std::move(constrs);
        model = build(env, &draft, "m");
    }
    std::string first_names()
    {
        char one[DEFAULT_NAME_LENGTH];
        char two[DEFAULT_NAME_LENGTH];
        if (read_file("w.mps")) return message();
        return std::string(var_name(model->body, 0, one)) + "|" +
               constr_name(model->body, 0, two);
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
            const bool blanks = vars[1] == "c  d" || vars[0] == "A R1 3" ||
                                vars[1] == "b 345 78" || rows[1] == "c  d" ||
                                rows[0] == "A R1 3" || rows[1] == "b 345 78";
            const bool longer = vars[0] == long_name || rows[0] == long_name;
            make(vars, rows);
            ASSERT_EQ(
                round_trip("w.mps", blanks && longer ? Names::IGNORE : Names::COMPARE), "")
                << vars[0] << " " << rows[0] << "\n"
                << file_get("w.mps");
        }
}

TEST_F(MpsNames, NumberedWhereAFileCannotCarryThem)
{
    const std::vector<std::vector<std::string>> bad = {
        {"x", "x"},  {"x\ny", "z"}, {" x", "y"},
        {"x ", "y"}, {"a\tb", "y"}, {"a b and more", "y"}};
    for (const std::vector<std::string> &names : bad) {
        make(names, {"r", "s"});
        Output output;
        ASSERT_EQ(TVXwrite(model, "w.mps"), 0);
        EXPECT_NE(output.text().find("Warning: variable names"), std::string::npos)
            << names[0];
        EXPECT_EQ(round_trip("w.mps", Names::IGNORE), "") << names[0];
        EXPECT_EQ(first_names(), names[0].size() > 8 ? "C0|r" : "C0000000|r");
        make({"x", "y"}, names);
        EXPECT_EQ(round_trip("w.mps", Names::IGNORE), "") << names[0];
        EXPECT_EQ(first_names(), names[0].size() > 8 ? "x|R0" : "x|R0000000");
    }
}

TEST_F(MpsNames, NumberedWhereThereAreNone)
{
    make({}, {"r", "s"});
    ASSERT_EQ(round_trip("w.mps", Names::IGNORE), "");
    EXPECT_EQ(first_names(), "C0000000|r");
    make({"a_long_name", "b"}, {"r", "s"});
    ASSERT_EQ(round_trip("t.rew", Names::IGNORE), "");
    EXPECT_NE(file_get("t.rew").find("    C0000000  R0000000  7\n"), std::string::npos)
        << file_get("t.rew");
}

// A column with an empty name among named ones has its number, unless another bears that name.
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
