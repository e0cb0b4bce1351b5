// locale_test.cpp -- files, parameters and messages do not depend on the caller's locale
//
// A host program may run under a locale whose decimal point is a comma.
#include "support/comma_locale.h"
#include "tarvex.h"
#include <gtest/gtest.h>

namespace
{

class Locale : public testing::Test
{
  public:
    void SetUp() override
    {
        if (!comma.in_force)
            GTEST_SKIP() << "the C library does not take the locale made for this test";
        ASSERT_EQ(TVXloadenv(&env, nullptr), 0);
        ASSERT_EQ(TVXsetintparam(env, "OutputFlag", 0), 0);
    }
    void TearDown() override { TVXfreeenv(env); }

    CommaLocale comma;
    TVXenv *env = nullptr;
};

TEST_F(Locale, ParametersAndMessagesHaveAPoint)
{
    double value = 0;
    file_put("in.prm", "TimeLimit 2.5\n");
    ASSERT_EQ(TVXreadparams(env, "in.prm"), 0);
    ASSERT_EQ(TVXgetdblparam(env, "TimeLimit", &value), 0);
    EXPECT_EQ(value, 2.5);
    ASSERT_EQ(TVXwriteparams(env, "out.prm"), 0);
    EXPECT_NE(file_get("out.prm").find("TimeLimit  2.5\n"), std::string::npos);
    EXPECT_EQ(TVXsetdblparam(env, "Heuristics", 1.5), TVX_ERROR_VALUE_OUT_OF_RANGE);
    EXPECT_STREQ(TVXgeterrormsg(env),
                 "Unable to set parameter Heuristics to value 1.5 (maximum is 1)");
}

TEST_F(Locale, ModelsAndSolutionsKeepTheirNumbers)
{
    file_put(
        "half.mps",
        "ROWS\n N obj\n G c\nCOLUMNS\n x obj 0.5 c 1\n y obj 1.25 c 2\nRHS\n r c 3.75\n"
        "BOUNDS\n UP b x 1.5\nENDATA\n");
    TVXmodel *model = nullptr;
    ASSERT_EQ(TVXreadmodel(env, "half.mps", &model), 0);
    ASSERT_EQ(TVXwrite(model, "copy.mps"), 0);
    ASSERT_EQ(TVXfreemodel(model), 0);
    ASSERT_EQ(TVXreadmodel(env, "copy.mps", &model), 0);
    double objective = 0;
    ASSERT_EQ(TVXoptimize(model), 0);
    ASSERT_EQ(TVXgetdblattr(model, "ObjVal", &objective), 0);
    EXPECT_DOUBLE_EQ(objective, 0.5 * 1.5 + 1.25 * 1.125);
    ASSERT_EQ(TVXwrite(model, "half.sol"), 0);
    EXPECT_NE(file_get("half.sol").find("y 1.125\n"), std::string::npos);
    ASSERT_EQ(TVXfreemodel(model), 0);
}

} // namespace
