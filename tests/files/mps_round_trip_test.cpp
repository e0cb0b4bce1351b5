// mps_round_trip_test.cpp -- what is written is read back as the same model, whatever it holds, in LP format too
#include "files/files_support.h"
#include "support/model_gen.h"
#include <cmath>
#include <set>

namespace
{
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
    static const char *const parts[] = {
        "x",      "a b",      "#1", "RHS",    "$",
        "9",      "\xc3\xa9", "'",  "MARKER", "a  b",
        "A R1 3", "12345678", "*y", "ENDATA", "'MARKER'",
        "1e5",    "-7",       "S1", "OBJ",    "C0000000",
        " ",      "\t",       "\n", "\xe9",   "a_long_name_of_thirty_characters"};
    if (style == 1) return "v" + std::to_string(k); // short
    std::string name;
    const int count = dice->range(1, style == 2 ? 1 : 3), number = dice->chance(95) ? k : 0;
    for (int c = 0; c < count; c++) name += parts[dice->range(0, std::size(parts) - 1)];
    if (style == 2) return name.substr(0, 7) + std::to_string(number); // often with blanks
    return name + (dice->chance(50) ? "" : "_" + std::to_string(number));
}

// Whether an MPS file can carry all these names: each once, and with blanks in one of them none has more than eight
// bytes.
bool fit_a_file(const std::vector<std::string> &vars, const std::vector<std::string> &rows)
{
    bool fit = true, blanks = false;
    size_t longest = 0;
    for (const auto *names : {&vars, &rows}) {
        const std::set<std::string> different(names->begin(), names->end());
        fit = fit && different.size() == names->size();
        for (const std::string &name : *names) {
            fit = fit && name.find_first_of("\t\n") == name.npos && name.front() != ' ' &&
                  name.back() != ' ';
            blanks = blanks || name.find(' ') != name.npos;
            longest = std::max(longest, name.size());
        }
    }
    return fit && (!blanks || longest <= 8);
}
} // namespace

struct MpsRoundTrip : Files {
    bool fit = false; // the names that were drawn can stand in a file

    // A tiny model with numbers, bounds, types, names and sets of all kinds in the place of its own.
    void draw(Dice *dice)
    {
        LpModel lp = gen_tiny(dice, {});
        const int n = lp.num_vars();
        lp.objcon = dice->chance(40) ? any_number(dice) : 0;
        for (double &cost : lp.obj) cost = dice->chance(40) ? 0 : any_number(dice);
        for (double &side : lp.rhs) side = dice->chance(30) ? 0 : any_number(dice);
        for (auto &column : lp.cols)
            for (LpEntry &e : column) e.value = dice->chance(3) ? 0 : any_number(dice);
        const int style = dice->range(0, 3),
                  other = dice->chance(70) ? style : dice->range(0, 3);
        std::vector<std::string> vars, rows;
        for (int j = 0; style && j < n; j++) vars.push_back(any_name(dice, j, style));
        for (int i = 0; other && i < lp.num_rows(); i++)
            rows.push_back(i == 0 && dice->chance(20) ? "OBJ" : any_name(dice, i, other));
        fit = style && other && fit_a_file(vars, rows);
        std::string types;
        for (int j = 0; j < n; j++) {
            types += "CCCBISN"[dice->range(0, 6)];
            lp.lb[j] = any_bound(dice, false);
            lp.ub[j] = dice->chance(20) ? lp.lb[j] : any_bound(dice, true);
            if (types.back() == 'B' && dice->chance(70)) lp.lb[j] = 0, lp.ub[j] = 1;
        }
        take(lp, vars, rows);
        ASSERT_EQ(TVXsetcharattrarray(model, "VType", 0, n, types.data()), 0);
        for (int sets = dice->chance(30) ? dice->range(1, 3) : 0; sets > 0; sets--) {
            const int type = dice->range(1, 2), begin = 0;
            std::vector<int> members;
            std::vector<double> weights;
            for (int j = 0; j < n; j++)
                if (dice->chance(60)) {
                    members.push_back(j);
                    weights.push_back(dice->chance(50) ? j : dice->nonzero(50) / 3.0);
                }
            ASSERT_EQ(TVXaddsos(model, 1, int(members.size()), &type, &begin,
                                members.data(), weights.data()),
                      0);
        }
        ASSERT_EQ(TVXupdatemodel(model), 0);
    }
};

TEST_F(MpsRoundTrip, RandomModelsOfAllTypesAndBounds)
{
    Dice dice(3);
    const char *const names[] = {"name", "two words", "with objcon=5", "",
                                 "x with objcon=           1"};
    for (int k = 0; k < 700; k++) {
        draw(&dice);
        if (k % 3) { // the constant is shown in the name and is no part of it
            ASSERT_EQ(TVXsetstrattr(model, "ModelName", names[k % std::size(names)]), 0);
            ASSERT_EQ(TVXupdatemodel(model), 0);
        }
        const Names kept = fit ? Names::COMPARE : Names::IGNORE;
        ASSERT_EQ(round_trip("t.mps", kept), "") << k << "\n" << file_get("t.mps");
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
    EXPECT_EQ(file_get("w.mps"),
              "NAME plan with objcon=          -4\n"
              "* Max problem is converted into Min one\n"
              "* All the >= constraints are converted into <= ones\n"
              "ROWS\n N  OBJ\n L  R1      \n E  R2      \n E  R3      \n"
              "COLUMNS\n"
              "    X         OBJ       -3\n    X         R1        -2\n"
              "    X         R3        0.1\n"
              "    MARKER    'MARKER'                 'INTORG'\n"
              "    Y         R2        1e-07\n    Y         R1        -1\n"
              "    MARKER    'MARKER'                 'INTEND'\n"
              "    Z         R3        3.3333333333333331e-01\n"
              "    RgR2      R2        1\n"
              "RHS\n"
              "    RHS1      OBJ       4\n    RHS1      R1        -5\n"
              "    RHS1      R2        6\n"
              "BOUNDS\n"
              " LI BND1      Y         -3\n UP BND1      Y         9\n"
              " FR BND1      Z       \n UP BND1      RgR2      2\n"
              "SOS\n S2 s0\n    X            1\n    Z            2\nENDATA\n");
}

TEST_F(MpsRoundTrip, NamesThatCannotBeCarriedAreNumberedAndPendingChangesAreWarnedOf)
{
    const LpModel lp =
        lp_make({{1, 0, 3}, {2, 1, 4}}, {{{7, 0}, '<', 5}, {{8, 9}, '=', 6}});
    const std::vector<std::vector<std::string>> bad = {
        {"x", "x"}, {"x ", "y"}, {"a\tb", "y"}, {"a b and more", "y"}, {}};
    const std::vector<std::string> good = {"r", "s"};
    for (const std::vector<std::string> &names : bad)
        for (const bool of_rows : {false, true}) {
            take(lp, of_rows ? good : names, of_rows ? names : good);
            Output output;
            ASSERT_EQ(TVXwrite(model, "w.mps"), 0);
            EXPECT_EQ(output.text().find("Warning: ") == std::string::npos, names.empty());
            ASSERT_EQ(read_file("w.mps"), 0);
            const bool short_numbers = !names.empty() && names[0].size() > 8;
            EXPECT_EQ(column(of_rows ? "r" : short_numbers ? "C0" : "C0000000"), 0);
            EXPECT_EQ(row(!of_rows ? "r" : short_numbers ? "R0" : "R0000000"), 0);
        }
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 99), 0);
    Output output;
    ASSERT_EQ(TVXwrite(model, "w.mps"), 0);
    EXPECT_EQ(output.text(), "Warning: model has pending changes.\n"
                             "File 'w.mps' does not contain these changes.\n");
}
