// Attributes of the content: the caller's form, the queue before an update, texts, statistics, MIP start.
#include "support/lp_tarvex.h"
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace
{

// max 3 x0 - x1 + 7   x0 + 2 x1 <= 8,  x0 - x1 >= -2,  x0 + x1 = 4;  x0 >= 0, x1 free
LpModel caller_model()
{
    LpModel lp;
    lp.sense = -1;
    lp.objcon = 7;
    lp_add_var(&lp, 3, 0, LP_INFINITY);
    lp_add_var(&lp, -1, -LP_INFINITY, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 2}}, '<', 8);
    lp_add_row_entries(&lp, {{0, 1}, {1, -1}}, '>', -2);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '=', 4);
    return lp;
}

struct AttributeContent : testing::Test {
    TestEnv env;
    const LpModel lp = caller_model();
    TestModel model{lp_load(env.env, &lp)};

    double dbl(const char *name, int index)
    {
        double value = -12345;
        EXPECT_EQ(TVXgetdblattrelement(model, name, index, &value), 0) << name;
        return value;
    }
    double dbl(const char *name)
    {
        double value = -12345;
        EXPECT_EQ(TVXgetdblattr(model, name, &value), 0) << name;
        return value;
    }
    int integer(const char *name)
    {
        int value = -12345;
        EXPECT_EQ(TVXgetintattr(model, name, &value), 0) << name;
        return value;
    }
    char character(const char *name, int index)
    {
        char value = 0;
        EXPECT_EQ(TVXgetcharattrelement(model, name, index, &value), 0) << name;
        return value;
    }
    std::string text(const char *name, int index)
    {
        char *value = nullptr;
        EXPECT_EQ(TVXgetstrattrelement(model, name, index, &value), 0) << name;
        return value ? value : "(null)";
    }
    std::string text(const char *name)
    {
        char *value = nullptr;
        EXPECT_EQ(TVXgetstrattr(model, name, &value), 0) << name;
        return value ? value : "(null)";
    }
};

} // namespace

TEST_F(AttributeContent, is_read_in_the_callers_signs_and_infinities)
{
    EXPECT_EQ(integer("ModelSense"), -1);
    EXPECT_EQ(dbl("ObjCon"), 7);
    EXPECT_EQ(dbl("Obj", 0), 3);
    EXPECT_EQ(dbl("Obj", 1), -1);
    EXPECT_EQ(dbl("LB", 0), 0);
    EXPECT_EQ(dbl("UB", 0), 1e100);
    EXPECT_EQ(dbl("LB", 1), -1e100);
    EXPECT_EQ(dbl("RHS", 0), 8);
    EXPECT_EQ(dbl("RHS", 1), -2);
    EXPECT_EQ(character("Sense", 1), '>');
    EXPECT_EQ(character("VType", 0), 'C');
    EXPECT_EQ(integer("NumVars"), 2);
    EXPECT_EQ(integer("NumConstrs"), 3);
    EXPECT_EQ(integer("NumNZs"), 6);
    EXPECT_EQ(integer("NumSOS"), 0);
    EXPECT_EQ(integer("IsMIP"), 0);
    EXPECT_EQ(dbl("Runtime"), 0);
}

TEST_F(AttributeContent, zeros_of_turned_rows_and_costs_are_positive_zeros)
{
    ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 1, 0), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "Obj", 1, 0), 0);
    ASSERT_EQ(TVXsetdblattr(model, "ObjCon", 0), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_FALSE(std::signbit(dbl("RHS", 1)));
    EXPECT_FALSE(std::signbit(dbl("Obj", 1)));
    EXPECT_FALSE(std::signbit(dbl("ObjCon")));
}

TEST_F(AttributeContent, sets_show_after_the_update_and_not_before)
{
    ASSERT_EQ(TVXsetdblattrelement(model, "UB", 0, 5), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "LB", 0, -1e20), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "Obj", 0, 9), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "RHS", 1, 6), 0);
    ASSERT_EQ(TVXsetcharattrelement(model, "Sense", 0, 'G'), 0);
    ASSERT_EQ(TVXsetcharattrelement(model, "VType", 1, 'I'), 0);
    ASSERT_EQ(TVXsetintattr(model, "ModelSense", 17), 0);
    ASSERT_EQ(TVXsetdblattr(model, "ObjCon", -3), 0);
    ASSERT_EQ(TVXsetstrattr(model, "ModelName", "renamed"), 0);
    ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 1, "y"), 0);
    ASSERT_EQ(TVXsetstrattrelement(model, "ConstrName", 2, "balance"), 0);
    EXPECT_EQ(dbl("UB", 0), 1e100);
    EXPECT_EQ(dbl("LB", 0), 0);
    EXPECT_EQ(dbl("Obj", 0), 3);
    EXPECT_EQ(dbl("RHS", 1), -2);
    EXPECT_EQ(character("Sense", 0), '<');
    EXPECT_EQ(character("VType", 1), 'C');
    EXPECT_EQ(integer("ModelSense"), -1);
    EXPECT_EQ(dbl("ObjCon"), 7);
    EXPECT_EQ(text("ModelName"), "");
    EXPECT_EQ(text("VarName", 1), "C1");
    EXPECT_EQ(text("ConstrName", 2), "R2");

    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(dbl("UB", 0), 5);
    EXPECT_EQ(dbl("LB", 0), -1e100);
    EXPECT_EQ(dbl("Obj", 0), 9);
    EXPECT_EQ(dbl("RHS", 1), 6);
    EXPECT_EQ(dbl("RHS", 0), 8);
    EXPECT_EQ(character("Sense", 0), '>');
    EXPECT_EQ(character("VType", 1), 'I');
    EXPECT_EQ(integer("NumIntVars"), 1);
    EXPECT_EQ(integer("IsMIP"), 1);
    EXPECT_EQ(integer("ModelSense"), 1);
    EXPECT_EQ(dbl("ObjCon"), -3);
    EXPECT_EQ(text("ModelName"), "renamed");
    EXPECT_EQ(text("VarName", 1), "y");
    EXPECT_EQ(text("ConstrName", 2), "balance");
}

TEST_F(AttributeContent, the_model_sense_counts_by_sign)
{
    for (const auto &[given, stored] : {std::pair{0, -1}, {5, 1}, {-9, -1}, {1, 1}}) {
        ASSERT_EQ(TVXsetintattr(model, "ModelSense", given), 0);
        ASSERT_EQ(TVXupdatemodel(model), 0);
        EXPECT_EQ(integer("ModelSense"), stored);
        EXPECT_EQ(dbl("Obj", 0), 3) << "the objective itself stays";
    }
}

TEST_F(AttributeContent, lists_and_arrays_set_what_they_name)
{
    const int ind[] = {2, 0};
    const double rhs[] = {20, 10};
    ASSERT_EQ(TVXsetdblattrlist(model, "RHS", 2, ind, rhs), 0);
    char name_a[] = "a", name_b[] = "b";
    char *names[] = {name_a, name_b};
    ASSERT_EQ(TVXsetstrattrarray(model, "ConstrName", 1, 2, names), 0);
    name_a[0] = 'z'; // texts were copied
    ASSERT_EQ(TVXsetcharattrarray(model, "VType", 0, -1, "BB"), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(dbl("RHS", 0), 10);
    EXPECT_EQ(dbl("RHS", 1), -2);
    EXPECT_EQ(dbl("RHS", 2), 20);
    EXPECT_EQ(text("ConstrName", 0), "R0");
    EXPECT_EQ(text("ConstrName", 1), "a");
    EXPECT_EQ(text("ConstrName", 2), "b");
    EXPECT_EQ(integer("NumBinVars"), 2);
}

TEST_F(AttributeContent, an_empty_name_asks_for_the_default_one)
{
    ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 0, "x"), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(text("VarName", 0), "x");
    ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 0, ""), 0);
    ASSERT_EQ(TVXsetstrattrelement(model, "VarName", 1, nullptr), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(text("VarName", 0), "C0");
    EXPECT_EQ(text("VarName", 1), "C1");
}

TEST_F(AttributeContent, texts_stay_where_they_are_until_the_next_update)
{
    ASSERT_EQ(TVXsetstrattrelement(model, "ConstrName", 1, "named"), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    char *first[3] = {}, *again[3] = {};
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, first), 0);
    ASSERT_EQ(TVXgetstrattrarray(model, "ConstrName", 0, 3, again), 0);
    for (int i = 0; i < 3; i++) EXPECT_EQ(first[i], again[i]);
    EXPECT_STREQ(first[0], "R0");
    EXPECT_STREQ(first[1], "named");
    EXPECT_STREQ(first[2], "R2");
    ASSERT_EQ(TVXaddvar(model, 0, nullptr, nullptr, 0, 0, 1, 'C', "later"), 0);
    EXPECT_STREQ(first[2], "R2");
}

TEST_F(AttributeContent, default_names_follow_the_index_after_a_deletion)
{
    const int first = 0;
    EXPECT_EQ(text("ConstrName", 2), "R2");
    ASSERT_EQ(TVXdelconstrs(model, 1, &first), 0);
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(integer("NumConstrs"), 2);
    EXPECT_EQ(text("ConstrName", 1), "R1");
}

TEST_F(AttributeContent, statistics_pass_over_zeros_and_infinities)
{
    EXPECT_EQ(dbl("MaxCoeff"), 2);
    EXPECT_EQ(dbl("MinCoeff"), 1);
    EXPECT_EQ(dbl("MaxObjCoeff"), 3);
    EXPECT_EQ(dbl("MinObjCoeff"), 1);
    EXPECT_EQ(dbl("MaxRHS"), 8);
    EXPECT_EQ(dbl("MinRHS"), 2);
    EXPECT_EQ(dbl("MaxBound"), 0); // no finite upper bound
    EXPECT_EQ(dbl("MinBound"), 0);
    const double upper[] = {-3, -8}, obj[] = {0, 0};
    ASSERT_EQ(TVXsetdblattrarray(model, "UB", 0, 2, upper), 0);
    ASSERT_EQ(TVXsetdblattrelement(model, "LB", 0, -20), 0);
    ASSERT_EQ(TVXsetdblattrarray(model, "Obj", 0, 2, obj), 0);
    EXPECT_EQ(dbl("MaxBound"), 0) << "still that of the model before the update";
    ASSERT_EQ(TVXupdatemodel(model), 0);
    EXPECT_EQ(dbl("MaxBound"), -3);
    EXPECT_EQ(dbl("MinBound"), -20);
    EXPECT_EQ(dbl("MaxObjCoeff"), 0);
    EXPECT_EQ(dbl("MinObjCoeff"), 0);
}

TEST_F(AttributeContent, a_mip_start_is_taken_at_once_and_undefined_where_not_given)
{
    double value = 0;
    EXPECT_EQ(TVXgetdblattrelement(model, "Start", 0, &value), 10005);
    ASSERT_EQ(TVXsetdblattrelement(model, "Start", 1, 2.5), 0);
    EXPECT_EQ(dbl("Start", 1), 2.5);
    EXPECT_EQ(dbl("Start", 0), 1e101);
    ASSERT_EQ(TVXsetdblattrelement(model, "Start", 1, 1e100), 0);
    EXPECT_EQ(dbl("Start", 1), 1e101);
}

TEST(AttributeOfEmptyModel, empty_arrays_can_be_read_and_set)
{
    TestEnv env;
    const LpModel lp;
    TestModel model(lp_load(env.env, &lp));
    double d = 5;
    char c = 'x', *s = nullptr;
    EXPECT_EQ(TVXgetdblattrarray(model, "LB", 0, -1, &d), 0);
    EXPECT_EQ(TVXgetcharattrarray(model, "Sense", 0, 0, &c), 0);
    EXPECT_EQ(TVXgetstrattrarray(model, "VarName", 0, -1, &s), 0);
    EXPECT_EQ(TVXsetdblattrarray(model, "Obj", 0, -1, &d), 0);
    EXPECT_EQ(TVXsetdblattrlist(model, "RHS", 0, nullptr, &d), 0);
    EXPECT_EQ(TVXgetdblattrelement(model, "LB", 0, &d), 10006);
    EXPECT_EQ(TVXgetdblattr(model, "MaxCoeff", &d), 0);
    EXPECT_EQ(d, 0);
    EXPECT_EQ(c, 'x');
    EXPECT_EQ(s, nullptr);
}
