// attribute_misuse_test.cpp -- attribute calls used wrongly: each mistake has its code and its text, and changes
// nothing
#include "support/model_test.h"
#include <climits>
#include <cmath>

namespace
{
struct AttributeMisuse : ModelTest {
    int i = 5;
    double d = 5;
    char c = 0;
    char *s = &c;
    int two[2];
    double two_d[2];
    const int ind[2] = {1, 0};

    void SetUp() override { load("min x + 2 y st x + y <= 5 bounds x <= 10 y <= 10"); }
};
} // namespace

TEST_F(AttributeMisuse, names_types_and_shapes_are_checked)
{
    const std::string unknown = "Unknown attribute 'No_Such'",
                      array = "You tried to access array attribute 'LB' as a scalar",
                      scalar = "You tried to access scalar attribute 'NumVars' as an array";
    refused(10004, unknown, TVXgetintattr(model, "No_Such", &i));
    refused(10004, unknown, TVXsetstrattrelement(model, "No_Such", 0, "a"));
    refused(10004, unknown, TVXgetdblattrarray(model, "No_Such", 0, 1, &d));
    refused(10004, unknown, TVXsetintattrlist(model, "No_Such", 1, ind, two));
    refused(10002, "NULL 'name' argument supplied", TVXgetintattr(model, nullptr, &i));
    refused(10004, "Requested int attribute 'LB' is of type double",
            TVXgetintattr(model, "LB", &i));
    refused(10004, "Requested string attribute 'vtype' is of type char",
            TVXgetstrattrelement(model, "vtype", 0, &s));
    refused(10004, "Requested char attribute 'VarName' is of type string",
            TVXgetcharattrarray(model, "VarName", 0, 1, &c));
    refused(10004, "Requested double attribute 'ModelSense' is of type int",
            TVXsetdblattr(model, "ModelSense", 1));
    refused(10004, array, TVXgetdblattr(model, "LB", &d));
    refused(10004, array, TVXsetdblattr(model, "LB", 0));
    refused(10004, scalar, TVXgetintattrelement(model, "NumVars", 0, &i));
    refused(10004, scalar, TVXgetintattrarray(model, "NumVars", 0, 1, &i));
    refused(10004, scalar, TVXgetintattrlist(model, "NumVars", 1, ind, &i));
    refused(10004, scalar, TVXsetintattrelement(model, "NumVars", 0, 1));
    refused(10004, "Attribute 'NumVars' may not be set",
            TVXsetintattr(model, "NumVars", 3));
    refused(10004, "Attribute 'X' may not be set", TVXsetdblattrelement(model, "X", 99, 3));
}

TEST_F(AttributeMisuse, indices_and_lengths_are_checked)
{
    refused(10006, "Index 2 out of range for attribute 'LB'",
            TVXgetdblattrelement(model, "LB", 2, &d));
    refused(10006, "Index -1 out of range for attribute 'LB'",
            TVXgetdblattrelement(model, "LB", -1, &d));
    refused(10006, "Index 1 out of range for attribute 'RHS'",
            TVXsetdblattrelement(model, "RHS", 1, 0));
    const std::string array = "Index out of range for attribute 'UB'";
    refused(10006, array, TVXgetdblattrarray(model, "UB", 1, 2, two_d));
    refused(10006, array, TVXgetdblattrarray(model, "UB", -1, 1, two_d));
    refused(10006, array, TVXgetdblattrarray(model, "UB", 3, 0, two_d));
    refused(10006, array, TVXsetdblattrarray(model, "UB", INT_MAX, INT_MAX, two_d));
    const int bad[] = {0, 7};
    refused(10006, "Index 7 out of range for attribute 'UB'",
            TVXgetdblattrlist(model, "UB", 2, bad, two_d));
    refused(10006, array, TVXgetdblattrlist(model, "UB", 3, nullptr, two_d));
    refused(10003, "Negative length -1 for attribute 'UB'",
            TVXgetdblattrlist(model, "UB", -1, bad, two_d));
    refused(10006, "Index 0 out of range for attribute 'IISSOS'", // there is no SOS
            TVXgetintattrelement(model, "IISSOS", 0, &i));
    const double upper[] = {4, 6}; // a negative length means all, no list the first ones
    ASSERT_EQ(TVXsetdblattrarray(model, "UB", 99, -1, upper), 0);
    update();
    EXPECT_EQ(all("UB", 2), (std::vector<double>{4, 6}));
    EXPECT_EQ(TVXgetdblattrlist(model, "UB", 1, nullptr, two_d), 0);
    EXPECT_EQ(two_d[0], 4);
    EXPECT_EQ(TVXgetdblattrarray(model, "UB", 2, 0, two_d), 0);
    EXPECT_EQ(TVXgetdblattrarray(model, "UB", 2, 0, nullptr), 0); // nothing needs no room
    EXPECT_EQ(TVXsetdblattrarray(model, "UB", 2, 0, nullptr), 0);
}

TEST_F(AttributeMisuse, values_are_checked_and_nothing_is_queued)
{
    const std::string text = "NULL 'value' argument supplied",
                      nan = "Element 0 of a double array is Nan or Inf.";
    refused(10002, text, TVXgetintattr(model, "NumVars", nullptr));
    refused(10002, text, TVXgetdblattrelement(model, "LB", 0, nullptr));
    refused(10002, text, TVXgetdblattrarray(model, "LB", 0, 1, nullptr));
    refused(10002, text, TVXsetdblattrarray(model, "LB", 0, 1, nullptr));
    refused(10002, text, TVXsetcharattrlist(model, "VType", 1, ind, nullptr));
    refused(10002, text, TVXsetstrattr(model, "ModelName", nullptr));
    const double values[] = {1, HUGE_VAL};
    refused(10003, "Element 1 of a double array is Nan or Inf.",
            TVXsetdblattrarray(model, "LB", 0, 2, values));
    refused(10003, nan, TVXsetdblattr(model, "ObjCon", NAN));
    refused(10003, nan, TVXsetdblattrelement(model, "Start", 0, -HUGE_VAL));
    EXPECT_EQ(TVXsetcharattrelement(model, "VType", 0, 'Q'), 10003);
    EXPECT_EQ(TVXsetintattrelement(model, "VBasis", 0, -7), 10003);
    update();
    EXPECT_EQ(dbl("LB", 0), 0);
}

TEST_F(AttributeMisuse, data_that_nobody_has_are_not_available_and_scalars_are_zeroed_first)
{
    for (const char *name : {"ObjVal", "Kappa"}) {
        d = 5;
        refused(10005, std::string("Unable to retrieve attribute '") + name + "'",
                TVXgetdblattr(model, name, &d));
        EXPECT_EQ(d, 0);
    }
    refused(10005, "Unable to retrieve attribute 'X'",
            TVXgetdblattrelement(model, "X", 0, &d));
    refused(10005, "Unable to retrieve attribute 'VBasis'",
            TVXgetintattrelement(model, "VBasis", 0, &i));
    EXPECT_EQ(integer("Status"), TVX_LOADED);
    EXPECT_STREQ(TVXgetmerrormsg(model), ""); // a success leaves no text
    EXPECT_EQ(TVXgetintattr(nullptr, "NumVars", &i), 10002);
    EXPECT_EQ(TVXgetstrattr(model, "Nothing", &s), 10004);
    EXPECT_TRUE(i == 0 && !s);
}
