// Attribute calls used wrongly: each mistake has its code and its text, and changes nothing.
#include "frame/model.h"
#include "support/lp_tarvex.h"
#include <gtest/gtest.h>
#include <limits>

namespace
{

struct AttributeMisuse : testing::Test {
    TestEnv env;
    TVXmodel *model = nullptr;

    void SetUp() override
    {
        LpModel lp;
        lp_add_var(&lp, 1, 0, 10);
        lp_add_var(&lp, 2, 0, 10);
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 5);
        model = lp_load(env.env, &lp);
        ASSERT_NE(model, nullptr);
    }
    void TearDown() override { TVXfreemodel(model); }

    void expect_failure(int code, int expected, const char *text)
    {
        EXPECT_EQ(code, expected);
        EXPECT_STREQ(TVXgetmerrormsg(model), text);
    }
};

int i;
double d;
char c;
char *s;
int two[2];
double two_d[2];
const int ind[] = {1, 0};

constexpr double INFINITE = std::numeric_limits<double>::infinity();

} // namespace

TEST_F(AttributeMisuse, an_unknown_name_is_refused_by_every_family)
{
    const char *text = "Unknown attribute 'No_Such'";
    expect_failure(TVXgetintattr(model, "No_Such", &i), 10004, text);
    expect_failure(TVXsetdblattr(model, "No_Such", 1), 10004, text);
    expect_failure(TVXgetcharattrelement(model, "No_Such", 0, &c), 10004, text);
    expect_failure(TVXsetstrattrelement(model, "No_Such", 0, "a"), 10004, text);
    expect_failure(TVXgetdblattrarray(model, "No_Such", 0, 1, &d), 10004, text);
    expect_failure(TVXsetintattrlist(model, "No_Such", 1, ind, two), 10004, text);
    expect_failure(TVXgetintattr(model, nullptr, &i), 10002,
                   "NULL 'name' argument supplied");
}

TEST_F(AttributeMisuse, a_wrong_type_is_named_with_the_right_one)
{
    expect_failure(TVXgetintattr(model, "LB", &i), 10004,
                   "Requested int attribute 'LB' is of type double");
    expect_failure(TVXgetstrattrelement(model, "vtype", 0, &s), 10004,
                   "Requested string attribute 'vtype' is of type char");
    expect_failure(TVXgetcharattrarray(model, "VarName", 0, 1, &c), 10004,
                   "Requested char attribute 'VarName' is of type string");
    expect_failure(TVXsetdblattr(model, "ModelSense", 1), 10004,
                   "Requested double attribute 'ModelSense' is of type int");
}

TEST_F(AttributeMisuse, shapes_do_not_mix)
{
    expect_failure(TVXgetdblattr(model, "LB", &d), 10004,
                   "You tried to access array attribute 'LB' as a scalar");
    expect_failure(TVXsetdblattr(model, "LB", 0), 10004,
                   "You tried to access array attribute 'LB' as a scalar");
    const char *text = "You tried to access scalar attribute 'NumVars' as an array";
    expect_failure(TVXgetintattrelement(model, "NumVars", 0, &i), 10004, text);
    expect_failure(TVXgetintattrarray(model, "NumVars", 0, 1, &i), 10004, text);
    expect_failure(TVXgetintattrlist(model, "NumVars", 1, ind, &i), 10004, text);
    expect_failure(TVXsetintattrelement(model, "NumVars", 0, 1), 10004, text);
}

TEST_F(AttributeMisuse, what_may_not_be_set_is_not_set)
{
    expect_failure(TVXsetintattr(model, "NumVars", 3), 10004,
                   "Attribute 'NumVars' may not be set");
    expect_failure(TVXsetdblattrelement(model, "X", 0, 3), 10004,
                   "Attribute 'X' may not be set");
    expect_failure(TVXsetdblattrelement(model, "X", 99, 3), 10004,
                   "Attribute 'X' may not be set");
}

TEST_F(AttributeMisuse, indices_out_of_range_are_told)
{
    expect_failure(TVXgetdblattrelement(model, "LB", 2, &d), 10006,
                   "Index 2 out of range for attribute 'LB'");
    expect_failure(TVXgetdblattrelement(model, "LB", -1, &d), 10006,
                   "Index -1 out of range for attribute 'LB'");
    expect_failure(TVXsetdblattrelement(model, "RHS", 1, 0), 10006,
                   "Index 1 out of range for attribute 'RHS'");
    const char *array = "Index out of range for attribute 'UB'";
    expect_failure(TVXgetdblattrarray(model, "UB", 1, 2, two_d), 10006, array);
    expect_failure(TVXgetdblattrarray(model, "UB", -1, 1, two_d), 10006, array);
    expect_failure(TVXgetdblattrarray(model, "UB", 3, 0, two_d), 10006, array);
    expect_failure(TVXsetdblattrarray(model, "UB", std::numeric_limits<int>::max(),
                                      std::numeric_limits<int>::max(), two_d),
                   10006, array);
    const int bad[] = {0, 7};
    expect_failure(TVXgetdblattrlist(model, "UB", 2, bad, two_d), 10006,
                   "Index 7 out of range for attribute 'UB'");
    expect_failure(TVXgetdblattrlist(model, "UB", 3, nullptr, two_d), 10006, array);
    expect_failure(TVXgetdblattrlist(model, "UB", -1, bad, two_d), 10003,
                   "Negative length -1 for attribute 'UB'");
    // an SOS attribute of a model without SOS constraints
    expect_failure(TVXgetintattrelement(model, "IISSOS", 0, &i), 10006,
                   "Index 0 out of range for attribute 'IISSOS'");
}

TEST_F(AttributeMisuse, a_negative_length_means_all_and_a_null_list_the_first)
{
    const double upper[] = {4, 6};
    ASSERT_EQ(TVXsetdblattrarray(model, "UB", 99, -1, upper), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(TVXgetdblattrarray(model, "UB", -5, -1, two_d), 0);
    EXPECT_EQ(two_d[0], 4);
    EXPECT_EQ(two_d[1], 6);
    EXPECT_EQ(TVXgetdblattrlist(model, "UB", 2, ind, two_d), 0);
    EXPECT_EQ(two_d[0], 6);
    EXPECT_EQ(two_d[1], 4);
    EXPECT_EQ(TVXgetdblattrlist(model, "UB", 1, nullptr, two_d), 0);
    EXPECT_EQ(two_d[0], 4);
    EXPECT_EQ(TVXgetdblattrarray(model, "UB", 2, 0, two_d), 0);
}

TEST_F(AttributeMisuse, missing_values_are_told)
{
    const char *text = "NULL 'value' argument supplied";
    expect_failure(TVXgetintattr(model, "NumVars", nullptr), 10002, text);
    expect_failure(TVXgetdblattrelement(model, "LB", 0, nullptr), 10002, text);
    expect_failure(TVXgetdblattrarray(model, "LB", 0, 1, nullptr), 10002, text);
    expect_failure(TVXsetdblattrarray(model, "LB", 0, 1, nullptr), 10002, text);
    expect_failure(TVXsetcharattrlist(model, "VType", 1, ind, nullptr), 10002, text);
    expect_failure(TVXsetstrattr(model, "ModelName", nullptr), 10002, text);
}

TEST_F(AttributeMisuse, nan_and_infinity_are_refused_and_nothing_is_queued)
{
    const double values[] = {1, INFINITE};
    expect_failure(TVXsetdblattrarray(model, "LB", 0, 2, values), 10003,
                   "Element 1 of a double array is Nan or Inf.");
    expect_failure(TVXsetdblattr(model, "ObjCon", INFINITE - INFINITE), 10003,
                   "Element 0 of a double array is Nan or Inf.");
    expect_failure(TVXsetdblattrelement(model, "Start", 0, -INFINITE), 10003,
                   "Element 0 of a double array is Nan or Inf.");
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(TVXgetdblattrelement(model, "LB", 0, &d), 0);
    EXPECT_EQ(d, 0);
}

TEST_F(AttributeMisuse, characters_and_codes_without_meaning_are_refused)
{
    EXPECT_EQ(TVXsetcharattrelement(model, "VType", 0, 'Q'), 10003);
    EXPECT_EQ(TVXsetintattrelement(model, "VBasis", 0, -7), 10003);
    EXPECT_EQ(TVXsetintattrelement(model, "CBasis", 0, -7), 10003);
}

TEST_F(AttributeMisuse, scalar_results_are_zeroed_before_anything_else)
{
    i = 5, d = 5, s = &c;
    EXPECT_EQ(TVXgetintattr(nullptr, "NumVars", &i), 10002);
    EXPECT_EQ(TVXgetdblattr(model, "NumVars", &d), 10004);
    EXPECT_EQ(TVXgetstrattr(model, "Nothing", &s), 10004);
    EXPECT_EQ(i, 0);
    EXPECT_EQ(d, 0);
    EXPECT_EQ(s, nullptr);
}

TEST_F(AttributeMisuse, data_that_nobody_produces_yet_are_not_available)
{
    expect_failure(TVXgetdblattr(model, "ObjVal", &d), 10005,
                   "Unable to retrieve attribute 'ObjVal'");
    expect_failure(TVXgetdblattrelement(model, "X", 0, &d), 10005,
                   "Unable to retrieve attribute 'X'");
    expect_failure(TVXgetintattr(model, "IISMinimal", &i), 10005,
                   "Unable to retrieve attribute 'IISMinimal'");
    expect_failure(TVXgetdblattr(model, "Kappa", &d), 10005,
                   "Unable to retrieve attribute 'Kappa'");
    expect_failure(TVXgetintattrelement(model, "VBasis", 0, &i), 10005,
                   "Unable to retrieve attribute 'VBasis'");
    EXPECT_EQ(TVXgetintattr(model, "Status", &i), 0);
    EXPECT_EQ(i, TVX_LOADED);
    EXPECT_STREQ(TVXgetmerrormsg(model), ""); // a success leaves no text
}

TEST_F(AttributeMisuse, dead_and_busy_models_are_told_apart)
{
    EXPECT_EQ(TVXgetintattr(nullptr, "NumVars", &i), 10002);
    EXPECT_EQ(TVXoptimize(nullptr), 10002);
    TVXmodel fake; // no magic word
    EXPECT_EQ(TVXgetintattr(&fake, "NumVars", &i), 10003);
    EXPECT_EQ(TVXsetintattr(&fake, "ModelSense", 1), 10003);
    EXPECT_EQ(TVXoptimize(&fake), 10003);

    model->busy = 1; // as during a solve
    EXPECT_EQ(TVXgetintattr(model, "NumVars", &i), 10017);
    EXPECT_EQ(TVXoptimize(model), 10017);
    model->in_callback = 1; // as inside its callback
    EXPECT_EQ(TVXgetintattr(model, "NumVars", &i), 0);
    EXPECT_EQ(TVXoptimize(model), 10017);
    model->busy = model->in_callback = 0;
    EXPECT_EQ(TVXgetintattr(model, "NumVars", &i), 0);
}

// That nothing stays behind is seen by the leak check of a sanitizer build.
TEST(AttributeOfOrphan, a_model_whose_environment_was_freed_refuses_every_call_and_is_freed)
{
    TVXenv *env = nullptr;
    ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
    ASSERT_EQ(TVXsetintparam(env, "OutputFlag", 0), 0);
    LpModel lp;
    lp_add_var(&lp, 1, 0, 10);
    TVXmodel *model = lp_load(env, &lp);
    TVXfreeenv(env);
    EXPECT_EQ(TVXgetintattr(model, "NumVars", &i), 10003);
    EXPECT_EQ(TVXsetdblattrelement(model, "LB", 0, 1), 10003);
    EXPECT_EQ(TVXgetattrinfo(model, "LB", &i, nullptr, nullptr), 10003);
    EXPECT_EQ(TVXoptimize(model), 10003);
    EXPECT_EQ(TVXfreemodel(model), 10003);
}
