// Building and querying models through the public interface: what holds after good calls, at the
// edges, and after misuse (code, exact text, nothing changed).
#include "support/model_text.h"
#include "support/scratch.h"
#include "tarvex.h"
#include <climits>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace
{

const double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();
const double INF = std::numeric_limits<double>::infinity();

// Texts in the form the interface takes.
struct Names {
    std::vector<std::string> texts;
    std::vector<char *> pointers;
    Names(std::initializer_list<const char *> list)
    {
        for (const char *text : list) texts.emplace_back(text ? text : "");
        size_t k = 0;
        for (const char *text : list) {
            pointers.push_back(text ? texts[k].data() : nullptr);
            k++;
        }
    }
    char **data() { return pointers.data(); }
};

class ModelBuild : public testing::Test
{
  protected:
    TVXenv *env = nullptr;
    TVXmodel *model = nullptr;

    void SetUp() override
    {
        ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
        TVXsetintparam(env, "OutputFlag", 0);
        ASSERT_EQ(
            TVXnewmodel(env, &model, "m", 0, nullptr, nullptr, nullptr, nullptr, nullptr),
            0);
    }
    void TearDown() override
    {
        TVXfreemodel(model);
        TVXfreeenv(env);
    }
    // x, y, z and rows  r: x + 2y >= 3,  s: 4x - z = 5
    void fill()
    {
        Names vars{"x", "y", "z"};
        ASSERT_EQ(TVXaddvars(model, 3, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, vars.data()),
                  0);
        ASSERT_EQ(TVXupdatemodel(model), 0);
        const int beg[] = {0, 2};
        const int ind[] = {0, 1, 0, 2};
        const double val[] = {1, 2, 4, -1};
        const double rhs[] = {3, 5};
        Names rows{"r", "s"};
        ASSERT_EQ(TVXaddconstrs(model, 2, 4, beg, ind, val, ">=", rhs, rows.data()), 0);
        ASSERT_EQ(TVXupdatemodel(model), 0);
    }
    int get_int(const char *name)
    {
        int value = -999;
        EXPECT_EQ(TVXgetintattr(model, name, &value), 0) << name;
        return value;
    }
    double get_dbl(const char *name, int index)
    {
        double value = NAN_VALUE;
        EXPECT_EQ(TVXgetdblattrelement(model, name, index, &value), 0) << name;
        return value;
    }
    char get_char(const char *name, int index)
    {
        char value = 0;
        EXPECT_EQ(TVXgetcharattrelement(model, name, index, &value), 0) << name;
        return value;
    }
    std::string get_str(const char *name, int index)
    {
        char *value = nullptr;
        EXPECT_EQ(TVXgetstrattrelement(model, name, index, &value), 0) << name;
        return value ? value : "(null)";
    }
    double coeff(int row, int var)
    {
        double value = NAN_VALUE;
        EXPECT_EQ(TVXgetcoeff(model, row, var, &value), 0);
        return value;
    }
    std::string message() { return TVXgetmerrormsg(model); }
    // The call fails with code and text; then and after an update the model is what it was.
    void refused(int code, const char *text, int returned)
    {
        EXPECT_EQ(returned, code);
        EXPECT_EQ(message(), text);
    }
};

// ---- TVXnewmodel ----

TEST_F(ModelBuild, NewModelTakesDefaultsForMissingArrays)
{
    TVXfreemodel(model);
    ASSERT_EQ(
        TVXnewmodel(env, &model, nullptr, 2, nullptr, nullptr, nullptr, nullptr, nullptr),
        0);
    EXPECT_EQ(get_int("NumVars"), 2);
    EXPECT_EQ(get_int("NumConstrs"), 0);
    EXPECT_EQ(get_int("ModelSense"), 1);
    EXPECT_EQ(get_int("Status"), TVX_LOADED);
    EXPECT_EQ(get_dbl("Obj", 1), 0);
    EXPECT_EQ(get_dbl("LB", 1), 0);
    EXPECT_EQ(get_dbl("UB", 1), 1e100);
    EXPECT_EQ(get_char("VType", 1), 'C');
    EXPECT_EQ(get_str("VarName", 1), "C1");
}

TEST_F(ModelBuild, NewModelRoundsBoundsOfIntegersAndCutsInfinities)
{
    TVXfreemodel(model);
    const double lb[] = {-1e20, 0.3, -7, 1.000001, 0.5, -2.5};
    const double ub[] = {1e20, 2.7, 7, 1.999999, 2.5, -0.5};
    Names names{"a", nullptr, "", "d", "e", "f"};
    ASSERT_EQ(TVXnewmodel(env, &model, "n", 6, nullptr, lb, ub, "CIBNsi", names.data()), 0);
    const double lowers[] = {-1e100, 1, 0, 1, 0.5, -2};
    const double uppers[] = {1e100, 2, 1, 2, 2.5, -1};
    for (int j = 0; j < 6; j++) {
        EXPECT_EQ(get_dbl("LB", j), lowers[j]) << j;
        EXPECT_EQ(get_dbl("UB", j), uppers[j]) << j;
    }
    EXPECT_EQ(get_char("VType", 4), 'S');
    EXPECT_EQ(get_str("VarName", 1), "C1");
    EXPECT_EQ(get_str("VarName", 2), "C2");
    EXPECT_EQ(get_int("NumIntVars"), 5);
    EXPECT_EQ(get_int("NumBinVars"), 1);
}

TEST_F(ModelBuild, NewModelRefusesBadArgumentsAndGivesNoModel)
{
    const double bad[] = {0, NAN_VALUE};
    const double infinite[] = {INF, 0};
    TVXmodel *made = model;
    EXPECT_EQ(
        TVXnewmodel(env, &made, nullptr, -1, nullptr, nullptr, nullptr, nullptr, nullptr),
        10003);
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(
        TVXnewmodel(env, nullptr, nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr),
        10002);
    EXPECT_STREQ(TVXgeterrormsg(env), "NULL argument for required parameter");
    EXPECT_EQ(TVXnewmodel(env, &made, nullptr, 2, bad, nullptr, nullptr, nullptr, nullptr),
              10003);
    EXPECT_STREQ(TVXgeterrormsg(env), "Element 1 of a double array is Nan or Inf.");
    EXPECT_EQ(
        TVXnewmodel(env, &made, nullptr, 2, nullptr, nullptr, infinite, nullptr, nullptr),
        10003);
    EXPECT_STREQ(TVXgeterrormsg(env), "Element 0 of a double array is Nan or Inf.");
    EXPECT_EQ(TVXnewmodel(env, &made, nullptr, 2, nullptr, nullptr, nullptr, "CQ", nullptr),
              10003);
    EXPECT_EQ(TVXnewmodel(nullptr, &made, nullptr, 0, nullptr, nullptr, nullptr, nullptr,
                          nullptr),
              10002);
    EXPECT_EQ(TVXnewmodel(env, &made, nullptr, INT_MAX, nullptr, nullptr, nullptr, nullptr,
                          nullptr),
              10003);
}

// ---- TVXloadmodel ----

struct Load {
    int numvars = 2, numconstrs = 2, objsense = 1;
    double objcon = 0;
    std::vector<double> obj{1, 2}, rhs{3, 4}, lb{0, 0}, ub{9, 9};
    std::string sense = "<>", vtype = "CC";
    std::vector<int> vbeg{0, 2}, vlen{2, 1}, vind{0, 1, 1};
    std::vector<double> vval{5, 6, 7};

    int operator()(TVXenv *env, TVXmodel **out)
    {
        return TVXloadmodel(env, out, "loaded", numvars, numconstrs, objsense, objcon,
                            obj.data(), sense.data(), rhs.data(), vbeg.data(), vlen.data(),
                            vind.data(), vval.data(), lb.data(), ub.data(), vtype.data(),
                            nullptr, nullptr);
    }
};

class ModelLoad : public ModelBuild
{
  protected:
    Load load;
    TVXmodel *loaded = nullptr;
    void TearDown() override
    {
        TVXfreemodel(loaded);
        ModelBuild::TearDown();
    }
    void fails(int code, const char *text)
    {
        loaded = model; // must be overwritten
        EXPECT_EQ(load(env, &loaded), code);
        EXPECT_EQ(loaded, nullptr);
        EXPECT_STREQ(TVXgeterrormsg(env), text);
    }
};

TEST_F(ModelLoad, ReadsBackInTheCallersSigns)
{
    load.objsense = -1;
    load.objcon = 8;
    load.sense = "lG";
    ASSERT_EQ(load(env, &loaded), 0);
    std::swap(model, loaded);
    EXPECT_EQ(get_int("ModelSense"), -1);
    EXPECT_EQ(get_dbl("Obj", 1), 2);
    EXPECT_EQ(get_dbl("RHS", 1), 4);
    EXPECT_EQ(get_char("Sense", 0), '<');
    EXPECT_EQ(get_char("Sense", 1), '>');
    EXPECT_EQ(coeff(1, 0), 6);
    EXPECT_EQ(coeff(1, 1), 7);
    EXPECT_EQ(coeff(0, 1), 0);
    double objcon = 0;
    EXPECT_EQ(TVXgetdblattr(model, "ObjCon", &objcon), 0);
    EXPECT_EQ(objcon, 8);
}

TEST_F(ModelLoad, ColumnsMayHaveGapsAndAnyOrder)
{
    load.vind = {1, 77, 0, 1, -5};
    load.vval = {7, NAN_VALUE, 5, 6, INF}; // what no column holds is not looked at
    load.vbeg = {2, 0};
    ASSERT_EQ(load(env, &loaded), 0);
    std::swap(model, loaded);
    EXPECT_EQ(get_int("NumNZs"), 3);
    EXPECT_EQ(coeff(0, 0), 5);
    EXPECT_EQ(coeff(1, 0), 6);
    EXPECT_EQ(coeff(1, 1), 7);
}

TEST_F(ModelLoad, RowIndicesAreFullyGuarded)
{
    load.vind = {0, 2, 1};
    fails(10006, "Row index 2 out of range in column 0");
    load.vind = {0, 1, -1};
    fails(10006, "Row index -1 out of range in column 1");
    load.vind = {1, 1, 1};
    fails(10018, "Row index 1 appears twice in column 0");
}

TEST_F(ModelLoad, StartsAndLengthsAreFullyGuarded)
{
    load.vlen = {3, 1}; // runs into column 1
    fails(10006, "Invalid start or length of column 0");
    load.vlen = {2, -1};
    fails(10006, "Invalid start or length of column 1");
    load.vlen = {2, 1};
    load.vbeg = {-1, 2};
    fails(10006, "Invalid start or length of column 0");
    load.vbeg = {0, INT_MAX};
    fails(10006, "Invalid start or length of column 1");
    load.vbeg = {1, 0}; // out of order and sharing an entry
    load.vlen = {1, 2};
    fails(10006, "Invalid start or length of column 1");
    load.vbeg = {0, INT_MAX}; // an empty column may stand anywhere
    load.vlen = {2, 0};
    EXPECT_EQ(load(env, &loaded), 0);
}

TEST_F(ModelLoad, NumbersMustBeFinite)
{
    load.objcon = NAN_VALUE;
    fails(10003, "Double value is Nan or Inf.");
    load.objcon = 0;
    load.rhs = {1, -INF};
    fails(10003, "Element 1 of a double array is Nan or Inf.");
    load.rhs = {1, 1};
    load.vval = {1, NAN_VALUE, 1};
    fails(10003, "Element 1 of a double array is Nan or Inf.");
}

TEST_F(ModelLoad, CountsAndRequiredArrays)
{
    load.numconstrs = -1;
    fails(10003, "Invalid argument value for required parameter");
    const double rhs[] = {0};
    const int beg[] = {0};
    const int ind[] = {0};
    const auto load_with = [&](const char *sense, const int *vbeg, const int *vlen,
                               const int *vind, const double *vval) {
        return TVXloadmodel(env, &loaded, nullptr, 1, 1, 1, 0, nullptr, sense, rhs, vbeg,
                            vlen, vind, vval, nullptr, nullptr, nullptr, nullptr, nullptr);
    };
    EXPECT_EQ(load_with(nullptr, beg, beg, ind, rhs), 10002);
    EXPECT_EQ(load_with("<", nullptr, beg, ind, rhs), 10002);
    EXPECT_EQ(load_with("<", beg, nullptr, ind, rhs), 10002);
    EXPECT_EQ(load_with("<", beg, beg, nullptr, rhs), 10002);
    EXPECT_EQ(load_with("<", beg, beg, ind, nullptr), 10002);
    EXPECT_EQ(load_with("<", beg, beg, ind, rhs), 0);
    TVXfreemodel(loaded);
    // Rows without variables, and nothing at all.
    EXPECT_EQ(TVXloadmodel(env, &loaded, nullptr, 0, 1, 1, 0, nullptr, "=", rhs, nullptr,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           nullptr),
              0);
    TVXfreemodel(loaded);
    EXPECT_EQ(TVXloadmodel(env, &loaded, nullptr, 0, 0, 1, 0, nullptr, nullptr, nullptr,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                           nullptr, nullptr),
              0);
}

// ---- Adding ----

TEST_F(ModelBuild, AddedVariablesShowOnlyAfterTheUpdate)
{
    const int first = 0;
    const double one = 1;
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 3, -1e20, 5, 'I', "v"), 0);
    EXPECT_EQ(get_int("NumVars"), 0);
    refused(10006, "Problem adding constraints",
            TVXaddconstr(model, 1, &first, &one, '<', 1, nullptr));
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("NumVars"), 1);
    EXPECT_EQ(get_int("NumConstrs"), 0);
    EXPECT_EQ(get_str("VarName", 0), "v");
    EXPECT_EQ(get_dbl("Obj", 0), 3);
    EXPECT_EQ(get_dbl("LB", 0), -1e100);
    EXPECT_EQ(TVXaddconstr(model, 1, &first, &one, '<', 1, nullptr), 0);
}

TEST_F(ModelBuild, DefaultNamesCountOnFromTheElementsThatExist)
{
    fill();
    Names names{nullptr, "given", ""};
    ASSERT_EQ(TVXaddvars(model, 3, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, names.data()),
              0);
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr), 0);
    ASSERT_EQ(TVXaddconstr(model, 0, nullptr, nullptr, '<', 1, ""), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_str("VarName", 3), "C3");
    EXPECT_EQ(get_str("VarName", 4), "given");
    EXPECT_EQ(get_str("VarName", 5), "C4");
    EXPECT_EQ(get_str("VarName", 6), "C5");
    EXPECT_EQ(get_str("ConstrName", 2), "R2");
    const int gone[] = {0, 1, 3};
    ASSERT_EQ(TVXdelvars(model, 3, gone), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_str("VarName", 2), "C4"); // kept its name
    EXPECT_EQ(get_str("VarName", 4), "C6");
}

TEST_F(ModelBuild, NewEntriesComeBehindTheOldOnes)
{
    fill();
    const int rows[] = {1, 0};
    const int vars[] = {1, 2};
    const double values[] = {8, 9};
    ASSERT_EQ(TVXchgcoeffs(model, 2, rows, vars, values), 0);
    const int ind[] = {2, 0};
    ASSERT_EQ(TVXaddconstr(model, 2, ind, values, '>', 1, nullptr), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    int count = 0;
    int beg[3];
    int row[8];
    double value[8];
    ASSERT_EQ(TVXgetvars(model, &count, beg, row, value, 0, 3), 0);
    ASSERT_EQ(count, 8);
    EXPECT_EQ(std::vector<int>(beg, beg + 3), (std::vector<int>{0, 3, 5}));
    EXPECT_EQ(std::vector<int>(row, row + 8), (std::vector<int>{0, 1, 2, 0, 1, 1, 0, 2}));
    EXPECT_EQ(std::vector<double>(value, value + 8),
              (std::vector<double>{1, 4, 9, 2, 8, -1, 9, 8}));
    ASSERT_EQ(TVXgetconstrs(model, &count, beg, row, value, 1, 2), 0);
    EXPECT_EQ(std::vector<int>(row, row + 5), (std::vector<int>{0, 1, 2, 0, 2}));
    EXPECT_EQ(std::vector<double>(value, value + 5), (std::vector<double>{4, 8, -1, 9, 8}));
}

TEST_F(ModelBuild, AddsThatFailQueueNothingAndSayWhy)
{
    fill();
    const std::string before = model_text(model);
    const int beg[] = {0, 1};
    const int back[] = {1, 0};
    const int twice[] = {0, 1, 1};
    const int far[] = {0, 1, 3};
    const double val[] = {1, 1, 1};
    const double bad[] = {1, NAN_VALUE, 1};
    const auto vars = [&](int numnz, const int *start, const int *ind,
                          const double *value) {
        return TVXaddvars(model, 2, numnz, start, ind, value, nullptr, nullptr, nullptr,
                          nullptr, nullptr);
    };
    const auto constrs = [&](int numnz, const int *start, const int *ind,
                             const double *value) {
        return TVXaddconstrs(model, 2, numnz, start, ind, value, nullptr, nullptr, nullptr);
    };
    refused(10018, "Problem adding variables", vars(3, beg, twice, val));
    refused(10006, "Problem adding variables", vars(3, beg, far, val));
    refused(10006, "Invalid start 1 of vector 0", vars(3, back, twice, val));
    refused(10003, "Problem adding variables", vars(-1, beg, twice, val));
    refused(10003, "Element 1 of a double array is Nan or Inf.", vars(3, beg, twice, bad));
    refused(10002, "Problem adding variables", vars(3, nullptr, twice, val));
    refused(10002, "Problem adding variables", vars(3, beg, nullptr, val));
    refused(10002, "Problem adding variables", vars(3, beg, twice, nullptr));
    refused(10018, "Problem adding constraints", constrs(3, beg, twice, val));
    refused(10006, "Problem adding constraints", constrs(3, beg, far, val));
    refused(10002, "Problem adding constraints", constrs(3, beg, twice, nullptr));
    refused(10003, "Element 0 of a double array is Nan or Inf.",
            TVXaddconstr(model, 0, nullptr, nullptr, '<', NAN_VALUE, nullptr));
    refused(
        10002, "Problem adding constraints",
        TVXaddrangeconstrs(model, 1, 0, nullptr, nullptr, nullptr, val, nullptr, nullptr));
    refused(10003, "Element 0 of a double array is Nan or Inf.",
            TVXaddrangeconstr(model, 0, nullptr, nullptr, -INF, 1, nullptr));
    refused(10003, "Variable 0 has an unknown type (character code 0)",
            TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, '\0', nullptr));
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(model_text(model), before);
}

TEST_F(ModelBuild, CountsBelowOneAreSuccessesThatLookAtNothing)
{
    fill();
    const std::string before = model_text(model);
    for (const int count : {0, -3}) {
        EXPECT_EQ(TVXaddvars(model, count, 5, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr),
                  0);
        EXPECT_EQ(TVXaddconstrs(model, count, 5, nullptr, nullptr, nullptr, nullptr,
                                nullptr, nullptr),
                  0);
        EXPECT_EQ(TVXaddrangeconstrs(model, count, 5, nullptr, nullptr, nullptr, nullptr,
                                     nullptr, nullptr),
                  0);
        EXPECT_EQ(TVXaddsos(model, count, 5, nullptr, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(TVXdelvars(model, count, nullptr), 0);
        EXPECT_EQ(TVXdelconstrs(model, count, nullptr), 0);
        EXPECT_EQ(TVXdelsos(model, count, nullptr), 0);
        EXPECT_EQ(TVXchgcoeffs(model, count, nullptr, nullptr, nullptr), 0);
    }
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(model_text(model), before);
}

// ---- Ranges ----

TEST_F(ModelBuild, RangesWithAnInfiniteSideAreOrdinaryRows)
{
    fill();
    const int ind = 0;
    const double val = 1;
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &ind, &val, -1e27, 5, "a"), 0);
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &ind, &val, -1e20, 5, "b"), 0);
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &ind, &val, 2, 1e20, "c"), 0);
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &ind, &val, -1e100, 1e100, "d"), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("NumVars"), 3);
    for (const int i : {2, 3}) {
        EXPECT_EQ(get_char("Sense", i), '<');
        EXPECT_EQ(get_dbl("RHS", i), 5);
    }
    EXPECT_EQ(get_char("Sense", 4), '>');
    EXPECT_EQ(get_dbl("RHS", 4), 2);
    EXPECT_EQ(coeff(4, 0), 1);
    EXPECT_EQ(get_char("Sense", 5), '<');
}

TEST_F(ModelBuild, RangesBringAVariableBehindAllOthers)
{
    fill();
    const int ind = 0;
    const double val = 7;
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &ind, &val, 1, 5, "c"), 0);
    ASSERT_EQ(TVXaddrangeconstr(model, 1, &ind, &val, 4, 4, nullptr), 0);
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'I', "new"), 0);
    EXPECT_EQ(get_int("NumVars"), 3);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("NumVars"), 6);
    EXPECT_EQ(get_str("VarName", 3), "new");
    EXPECT_EQ(get_str("VarName", 4), "Rgc");
    EXPECT_EQ(get_str("VarName", 5), "RgR2");
    EXPECT_EQ(get_dbl("LB", 4), 0);
    EXPECT_EQ(get_dbl("UB", 4), 4);
    EXPECT_EQ(get_dbl("UB", 5), 0);
    EXPECT_EQ(get_dbl("Obj", 4), 0);
    EXPECT_EQ(get_char("VType", 4), 'C');
    EXPECT_EQ(get_char("Sense", 2), '=');
    EXPECT_EQ(get_dbl("RHS", 2), 5);
    EXPECT_EQ(coeff(2, 4), 1);
    EXPECT_EQ(coeff(2, 0), 7);
}

// Optimises 1 * x over the range and returns the objective, or -999 for an infeasible model.
class RangeSolve : public ModelBuild
{
  protected:
    double solve(double lower, double upper, int sense)
    {
        const int ind = 0;
        const double val = 1;
        TVXfreemodel(model);
        TVXnewmodel(env, &model, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr);
        TVXaddvar(model, 0, nullptr, nullptr, 1, -50, 50, 'C', "x");
        TVXupdatemodel(model);
        EXPECT_EQ(TVXaddrangeconstr(model, 1, &ind, &val, lower, upper, nullptr), 0);
        EXPECT_EQ(TVXsetintattr(model, "ModelSense", sense), 0);
        EXPECT_EQ(TVXoptimize(model), 0);
        if (get_int("Status") == TVX_INFEASIBLE) return -999;
        double value = NAN_VALUE;
        EXPECT_EQ(TVXgetdblattr(model, "ObjVal", &value), 0);
        return value;
    }
};

TEST_F(RangeSolve, MeansBothSides)
{
    EXPECT_NEAR(solve(1, 5, 1), 1, 1e-9);
    EXPECT_NEAR(solve(1, 5, -1), 5, 1e-9);
    EXPECT_NEAR(solve(-1e100, 5, 1), -50, 1e-9);
    EXPECT_NEAR(solve(1, 1e100, -1), 50, 1e-9);
    EXPECT_NEAR(solve(-1e100, 1e100, -1), 50, 1e-9);
    EXPECT_NEAR(solve(3, 3, 1), 3, 1e-9);
    EXPECT_EQ(solve(5, 1, 1), -999) << "sides that cross leave no solution";
    EXPECT_EQ(solve(1e20, 1, 1), -999);
    EXPECT_EQ(solve(1, -1e20, 1), -999);
}

// ---- Deleting and changing ----

TEST_F(ModelBuild, DeletionsMoveWhatStandsBehind)
{
    fill();
    const int gone[] = {1, 1};
    ASSERT_EQ(TVXdelvars(model, 2, gone), 0);
    const int row = 0;
    ASSERT_EQ(TVXdelconstrs(model, 1, &row), 0);
    EXPECT_EQ(get_int("NumVars"), 3);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("NumVars"), 2);
    EXPECT_EQ(get_int("NumConstrs"), 1);
    EXPECT_EQ(get_int("NumNZs"), 2);
    EXPECT_EQ(get_str("VarName", 1), "z");
    EXPECT_EQ(get_str("ConstrName", 0), "s");
    EXPECT_EQ(coeff(0, 0), 4);
    EXPECT_EQ(coeff(0, 1), -1);
}

TEST_F(ModelBuild, WhatRefersToADeletedElementGoesWithIt)
{
    fill();
    const int ind[] = {0, 1};
    const double val[] = {1, 2};
    ASSERT_EQ(TVXaddvar(model, 2, ind, val, 0, 0, 1, 'C', "column"), 0);
    ASSERT_EQ(TVXaddconstr(model, 2, ind, val, '<', 1, "row"), 0);
    const int type = 1;
    const int beg = 0;
    ASSERT_EQ(TVXaddsos(model, 1, 2, &type, &beg, ind, val), 0);
    ASSERT_EQ(TVXchgcoeffs(model, 2, ind, ind, val), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 3), 0);
    const int first = 0;
    ASSERT_EQ(TVXdelvars(model, 1, &first), 0);
    ASSERT_EQ(TVXdelconstrs(model, 1, &first), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("NumVars"), 3);    // y, z, column
    EXPECT_EQ(get_int("NumConstrs"), 2); // s, row
    EXPECT_EQ(coeff(0, 0), 2) << "the change in s of y";
    EXPECT_EQ(coeff(1, 0), 2) << "row keeps y";
    EXPECT_EQ(coeff(0, 2), 2) << "column keeps s";
    EXPECT_EQ(get_int("NumNZs"), 4);
    int count = 0;
    int start = -1;
    int member = -1;
    double weight = 0;
    ASSERT_EQ(TVXgetsos(model, &count, nullptr, &start, &member, &weight, 0, 1), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(member, 0);
    EXPECT_EQ(get_dbl("UB", 0), 1e100) << "the bound was that of the variable deleted";
}

TEST_F(ModelBuild, DeletionsAndChangesThatFailQueueNothing)
{
    fill();
    const std::string before = model_text(model);
    const int vars[] = {0, 3};
    const int rows[] = {0, 2};
    const int sets[] = {0};
    const double val[] = {1, 2};
    const double bad[] = {1, NAN_VALUE};
    refused(10006, "Problem deleting variable", TVXdelvars(model, 2, vars));
    refused(10002, "Problem deleting variable", TVXdelvars(model, 1, nullptr));
    refused(10006, "Problem deleting constraint", TVXdelconstrs(model, 2, rows));
    refused(10006, "Problem deleting sos", TVXdelsos(model, 1, sets));
    refused(10006, "Problem changing coefficient", TVXchgcoeffs(model, 2, rows, rows, val));
    refused(10006, "Problem changing coefficient",
            TVXchgcoeffs(model, 1, sets, vars + 1, val));
    refused(10002, "Problem changing coefficient",
            TVXchgcoeffs(model, 1, sets, nullptr, val));
    refused(10002, "Problem changing coefficient",
            TVXchgcoeffs(model, 1, nullptr, sets, val));
    refused(10002, "Problem changing coefficient",
            TVXchgcoeffs(model, 1, sets, sets, nullptr));
    const int zeros[] = {0, 0};
    refused(10003, "Element 1 of a double array is Nan or Inf.",
            TVXchgcoeffs(model, 2, zeros, zeros, bad));
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(model_text(model), before);
}

TEST_F(ModelBuild, CoefficientsAreReplacedRemovedAndInserted)
{
    fill();
    const int rows[] = {0, 1, 1, 0, 0, 0};
    const int vars[] = {0, 0, 1, 2, 2, 1};
    const double values[] = {0, 6, 0, 5, 1e-15, 9};
    ASSERT_EQ(TVXchgcoeffs(model, 6, rows, vars, values), 0);
    EXPECT_EQ(coeff(0, 0), 1);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(coeff(0, 0), 0) << "zero removes";
    EXPECT_EQ(coeff(1, 0), 6);
    EXPECT_EQ(coeff(0, 2), 0) << "the later of two changes counts";
    EXPECT_EQ(coeff(0, 1), 9) << "in a '>' row";
    EXPECT_EQ(get_int("NumNZs"), 3);
}

// ---- Signs ----

TEST_F(ModelBuild, SensesAndMaximiseNeverShowInWhatIsRead)
{
    fill();
    ASSERT_EQ(TVXsetdblattrelement(model, "Obj", 0, 5), 0);
    ASSERT_EQ(TVXsetdblattr(model, "ObjCon", 3), 0);
    ASSERT_EQ(TVXsetintattr(model, "ModelSense", -1), 0);
    ASSERT_EQ(TVXsetcharattrelement(model, "Sense", 0, 'L'), 0);
    ASSERT_EQ(TVXsetcharattrelement(model, "Sense", 1, '>'), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 1, 6), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    const auto holds = [this](int sense) {
        double objcon = 0;
        TVXgetdblattr(model, "ObjCon", &objcon);
        EXPECT_EQ(get_int("ModelSense"), sense);
        EXPECT_EQ(objcon, 3);
        EXPECT_EQ(get_dbl("Obj", 0), 5);
        EXPECT_EQ(get_dbl("RHS", 0), 3);
        EXPECT_EQ(get_dbl("RHS", 1), 6);
        EXPECT_EQ(get_char("Sense", 0), '<');
        EXPECT_EQ(coeff(0, 1), 2);
        EXPECT_EQ(coeff(1, 0), 4);
    };
    holds(-1);
    ASSERT_EQ(TVXsetintattr(model, "ModelSense", 1), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    holds(1);
}

// ---- SOS ----

TEST_F(ModelBuild, SosMembersStandInWeightOrder)
{
    fill();
    const int types[] = {2, 1, 2};
    const int beg[] = {0, 3, 6};
    const int ind[] = {0, 1, 2, 2, 1, 0, 0, 2};
    const double weight[] = {3, 1, 2, 9, 5, 5, 4, 1};
    ASSERT_EQ(TVXaddsos(model, 3, 8, types, beg, ind, weight), 0);
    EXPECT_EQ(get_int("NumSOS"), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("IsMIP"), 1);
    int count = 0;
    int type[3];
    int start[3];
    int member[8];
    double value[8];
    ASSERT_EQ(TVXgetsos(model, &count, type, start, member, value, 0, 3), 0);
    EXPECT_EQ(std::vector<int>(type, type + 3), (std::vector<int>{2, 1, 2}));
    EXPECT_EQ(std::vector<int>(start, start + 3), (std::vector<int>{0, 3, 6}));
    EXPECT_EQ(std::vector<int>(member, member + 8),
              (std::vector<int>{1, 2, 0, 2, 1, 0, 0, 2}))
        << "the first is sorted, the others are monotone and stay";
    EXPECT_EQ(std::vector<double>(value, value + 8),
              (std::vector<double>{1, 2, 3, 9, 5, 5, 4, 1}));
    const int second = 1;
    ASSERT_EQ(TVXdelsos(model, 1, &second), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    ASSERT_EQ(TVXgetsos(model, &count, type, start, member, value, 0, 2), 0);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(start[1], 3);
}

TEST_F(ModelBuild, SosThatFailQueueNothing)
{
    fill();
    const int types[] = {1, 3};
    const int good[] = {1, 2};
    const int beg[] = {0, 1};
    const int far_beg[] = {0, 9};
    const int ind[] = {0, 1, 2};
    const int twice[] = {0, 1, 1};
    const int far[] = {0, 1, -1};
    const double weight[] = {1, 2, 3};
    const double bad[] = {1, 2, -INF};
    const auto add = [&](const int *type, int members, const int *start, const int *index,
                         const double *w) {
        return TVXaddsos(model, 2, members, type, start, index, w);
    };
    refused(10003, "SOS 1 has type 3, not 1 or 2", add(types, 3, beg, ind, weight));
    refused(10002, "Problem adding SOS constraints", add(nullptr, 3, beg, ind, weight));
    refused(10002, "Problem adding SOS constraints", add(good, 3, nullptr, ind, weight));
    refused(10002, "Problem adding SOS constraints", add(good, 3, beg, ind, nullptr));
    refused(10003, "Problem adding SOS constraints", add(good, -3, beg, ind, weight));
    refused(10018, "Problem adding SOS constraints", add(good, 3, beg, twice, weight));
    refused(10006, "Problem adding SOS constraints", add(good, 3, beg, far, weight));
    refused(10006, "Invalid start 0 of SOS 0", add(good, 3, far_beg, ind, weight));
    refused(10003, "Element 2 of a double array is Nan or Inf.",
            add(good, 3, beg, ind, bad));
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("NumSOS"), 0);
    EXPECT_EQ(add(good, 0, nullptr, nullptr, nullptr), 0) << "sets without members";
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(get_int("NumSOS"), 2);
}

// ---- Queries ----

TEST_F(ModelBuild, QueriesSayWhichIndexIsWrong)
{
    fill();
    double value = 0;
    int count = 0;
    refused(10006, "Row index 2 out of range in coefficient query",
            TVXgetcoeff(model, 2, 0, &value));
    refused(10006, "Column index -1 out of range in coefficient query",
            TVXgetcoeff(model, 0, -1, &value));
    refused(10002, "Failed to retrieve coefficient", TVXgetcoeff(model, 0, 0, nullptr));
    const auto vars = [&](int start, int len) {
        return TVXgetvars(model, &count, nullptr, nullptr, nullptr, start, len);
    };
    refused(10006, "Invalid index range for variable query: [2, 3]", vars(2, 2));
    refused(10006, "Invalid index range for variable query: [-1, 0]", vars(-1, 2));
    refused(10006, "Invalid index range for variable query: [1, 0]", vars(1, 0));
    refused(10006, "Invalid index range for variable query: [2147483647, 2147483647]",
            vars(INT_MAX, INT_MAX));
    refused(10002, "Failed to retrieve variables",
            TVXgetvars(model, nullptr, nullptr, nullptr, nullptr, 0, 1));
    refused(10006, "Invalid index range for constraint query: [0, 2]",
            TVXgetconstrs(model, &count, nullptr, nullptr, nullptr, 0, 3));
    refused(10002, "Failed to retrieve constraints",
            TVXgetconstrs(model, nullptr, nullptr, nullptr, nullptr, 0, 1));
    refused(10006, "Invalid index range for SOS query: [0, 0]",
            TVXgetsos(model, &count, nullptr, nullptr, nullptr, nullptr, 0, 1));
    refused(10002, "Failed to retrieve SOS constraints",
            TVXgetsos(model, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 1));
}

// ---- Copy, reset, free ----

TEST_F(ModelBuild, ACopyIsTheSameModelUnderAnotherName)
{
    fill();
    const int ind[] = {0, 2, 1};
    const double weight[] = {1, 3, 2};
    const int type = 2;
    const int beg = 0;
    ASSERT_EQ(TVXaddsos(model, 1, 3, &type, &beg, ind, weight), 0);
    ASSERT_EQ(TVXsetintattr(model, "ModelSense", -1), 0);
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 2, 'B'), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    std::string expected = model_text(model);
    expected.replace(0, 1, "m_copy");
    TVXmodel *copy = TVXcopymodel(model);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(model_text(copy), expected);
    // Each goes its own way.
    ASSERT_EQ(TVXsetdblattrelement(copy, "UB", 0, 7), 0);
    ASSERT_EQ(TVXupdatemodel(copy), 0);
    EXPECT_EQ(get_dbl("UB", 0), 1e100);
    EXPECT_NE(TVXgetenv(copy), TVXgetenv(model));
    EXPECT_EQ(TVXfreemodel(copy), 0);
}

TEST_F(ModelBuild, ACopyLeavesQueuedChangesBehindAndWarns)
{
    fill();
    TVXsetintparam(TVXgetenv(model), "OutputFlag", 1);
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', nullptr), 0);
    Output output;
    TVXmodel *copy = TVXcopymodel(model);
    EXPECT_EQ(output.text(), "Warning: model has pending changes.\n"
                             "New model does not contain these changes.\n");
    int count = 0;
    TVXgetintattr(copy, "NumVars", &count);
    EXPECT_EQ(count, 3);
    TVXfreemodel(copy);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    Output quiet;
    copy = TVXcopymodel(model);
    EXPECT_EQ(quiet.text(), "");
    TVXfreemodel(copy);
}

TEST_F(ModelBuild, ACopyOfAModelWithoutName)
{
    TVXfreemodel(model);
    ASSERT_EQ(
        TVXnewmodel(env, &model, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr),
        0);
    TVXmodel *copy = TVXcopymodel(model);
    ASSERT_NE(copy, nullptr);
    char *name = nullptr;
    EXPECT_EQ(TVXgetstrattr(copy, "ModelName", &name), 0);
    EXPECT_STREQ(name, "(null)_copy");
    TVXfreemodel(copy);
}

TEST_F(ModelBuild, NullAndForeignHandlesAreRefused)
{
    double value = 0;
    int count = 0;
    long long foreign[64] = {};
    EXPECT_EQ(TVXfreemodel(nullptr), 0);
    for (TVXmodel *bad :
         {static_cast<TVXmodel *>(nullptr), reinterpret_cast<TVXmodel *>(foreign)}) {
        const int code = bad ? 10003 : 10002;
        EXPECT_EQ(TVXupdatemodel(bad), code);
        EXPECT_EQ(TVXresetmodel(bad), code);
        EXPECT_EQ(TVXcopymodel(bad), nullptr);
        EXPECT_EQ(TVXaddvar(bad, 0, nullptr, nullptr, 0, 0, 0, 'C', nullptr), code);
        EXPECT_EQ(TVXaddconstr(bad, 0, nullptr, nullptr, '<', 0, nullptr), code);
        EXPECT_EQ(TVXaddrangeconstr(bad, 0, nullptr, nullptr, 0, 0, nullptr), code);
        EXPECT_EQ(TVXaddsos(bad, 0, 0, nullptr, nullptr, nullptr, nullptr), code);
        EXPECT_EQ(TVXdelvars(bad, 0, nullptr), code);
        EXPECT_EQ(TVXdelconstrs(bad, 0, nullptr), code);
        EXPECT_EQ(TVXdelsos(bad, 0, nullptr), code);
        EXPECT_EQ(TVXchgcoeffs(bad, 0, nullptr, nullptr, nullptr), code);
        EXPECT_EQ(TVXgetcoeff(bad, 0, 0, &value), code);
        EXPECT_EQ(TVXgetvars(bad, &count, nullptr, nullptr, nullptr, 0, 1), code);
        EXPECT_EQ(TVXgetconstrs(bad, &count, nullptr, nullptr, nullptr, 0, 1), code);
        EXPECT_EQ(TVXgetsos(bad, &count, nullptr, nullptr, nullptr, nullptr, 0, 1), code);
    }
    EXPECT_EQ(TVXfreemodel(reinterpret_cast<TVXmodel *>(foreign)), 10003);
}

} // namespace
