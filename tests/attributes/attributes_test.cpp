// attributes_test.cpp -- attributes are what docs/attributes.md says, row by row; texts that stay, statistics; calls
// used wrongly: each mistake has its code and its text, and changes nothing
//
// That what is set is what is read is looked at by fuzz/corpus_test.cpp.
#include "attributes/attribute_table.h"
#include "support/model_test.h"
#include <cctype>
#include <climits>
#include <cmath>
#include <fstream>
#include <set>
#include <sstream>

struct AttributeTableTest : ModelTest {
    void SetUp() override
    {
        load("max 3 x - y + 7 st x + 2 y <= 8  R1: x - y >= -2  R2: x + y = 4 "
             "bounds y free");
    }
};

// The rows of the page: "| `A`, `B` | type | of | set | meaning |".
TEST_F(AttributeTableTest, every_attribute_is_what_the_page_says)
{
    const std::vector<std::string> types = {"char", "int", "double", "string"};
    const std::vector<std::string> kinds = {"model", "variable", "constraint", "SOS"};
    std::ifstream page(std::string(TARVEX_SOURCE_DIR) + "/docs/attributes.md");
    std::set<std::string> names;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with("| `")) continue;
        std::istringstream cells(line);
        std::string list, of_type, of_kind, set, bar, name;
        std::getline(cells.ignore(2), list, '|');
        cells >> of_type >> bar >> of_kind >> bar >> set;
        std::istringstream quoted(list);
        while (std::getline(quoted, bar, '`') && std::getline(quoted, name, '`')) {
            SCOPED_TRACE(name);
            EXPECT_TRUE(names.insert(name).second) << "stands twice";
            int type = 0, kind = 0, settable = 0;
            ASSERT_EQ(TVXgetattrinfo(model, name.c_str(), &type, &kind, &settable), 0);
            EXPECT_EQ(types[type], of_type);
            EXPECT_EQ(kinds[kind], of_kind);
            EXPECT_EQ(settable != 0, set != "no");
        }
    }
    EXPECT_EQ(names.size(), size_t(ATTRIBUTE_COUNT));
    int type = 7, kind = 7, settable = 7;
    refused(10004, "Unknown attribute 'Nothing'",
            TVXgetattrinfo(model, "Nothing", &type, &kind, &settable));
    EXPECT_EQ(type + kind + settable, -3);
    EXPECT_EQ(TVXgetattrinfo(model, "X", nullptr, nullptr, nullptr), 0);
}

TEST_F(AttributeTableTest, case_and_inner_underscores_of_a_name_do_not_matter)
{
    for (const AttributeRow &row : attribute_rows) {
        std::string spread;
        for (const char *c = row.name; *c; c++) spread += {char(tolower(*c)), '_'};
        EXPECT_EQ(attribute_find(row.name), &row);
        EXPECT_EQ(attribute_find(spread.c_str()), &row);
    }
    for (const char *name :
         {"", "_NumVars", "NumVar", "NumVarss", "A", "zzz", "End", "X ", "\xff"})
        EXPECT_EQ(attribute_find(name), nullptr) << name;
    EXPECT_EQ(attribute_find(std::string(100000, 'x').c_str()), nullptr);
}

TEST_F(AttributeTableTest, texts_are_copied_and_stay_where_they_are_until_the_next_update)
{
    char name_a[] = "a", name_b[] = "b", *names[] = {name_a, name_b};
    ASSERT_EQ(TVXsetstrattrarray(model, "ConstrName", 1, 2, names), 0);
    name_a[0] = 'z';
    update();
    char *first[3] = {}, *again[3] = {};
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, first), 0);
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, again), 0);
    for (int i = 0; i < 3; i++) EXPECT_EQ(first[i], again[i]);
    EXPECT_EQ(std::string(first[0]) + first[1] + first[2], "R0ab");
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', "later"), 0);
    EXPECT_STREQ(first[0], "R0");
}

TEST_F(AttributeTableTest, statistics_pass_over_zeros_and_infinities)
{
    const auto statistics = [this] {
        std::vector<double> found;
        for (const char *name : {"MaxCoeff", "MinCoeff", "MaxObjCoeff", "MinObjCoeff",
                                 "MaxRHS", "MinRHS", "MaxBound", "MinBound"})
            found.push_back(dbl(name));
        return found;
    };
    const std::vector<double> before{2, 1, 3, 1, 8, 2, 0, 0}; // no finite upper bound
    EXPECT_EQ(statistics(), before);
    const double upper[] = {-3, -8}, obj[] = {0, 9};
    ASSERT_EQ(TVXsetdblattrarray(model, "UB", 0, 2, upper), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "LB", 0, -20), 0);
    ASSERT_EQ(TVXsetdblattrarray(model, "Obj", 0, 2, obj), 0);
    EXPECT_EQ(statistics(), before) << "still those of the model before the update";
    update();
    EXPECT_EQ(statistics(), (std::vector<double>{2, 1, 9, 9, 8, 2, -3, -20}));
}

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
