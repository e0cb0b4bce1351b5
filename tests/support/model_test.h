// model_test.h -- ModelTest, a fixture with a silent environment, one model, and short words for its attributes
#pragma once
#include "support/inside.h"
#include "support/scratch.h"
#include <unistd.h>

struct ModelTest : testing::Test {
    TestEnv env;
    TVXmodel *model = nullptr;

    void TearDown() override { TVXfreemodel(model); }

    void load(const LpModel &lp, const Settings &settings = {})
    {
        TVXfreemodel(model);
        model = lp_load(env.env, &lp, settings);
        ASSERT_NE(model, nullptr);
    }
    // The model of an LP text without its end, for tests that do not look at how models are built.
    void load(const std::string &text)
    {
        std::string name = testing::TempDir() + "tarvexXXXXXX.lp";
        close(mkstemps(name.data(), 3));
        file_put(name, text + "\nend\n");
        TVXfreemodel(model);
        ASSERT_EQ(TVXreadmodel(env.env, name.c_str(), &model), 0)
            << TVXgeterrormsg(env.env);
        remove(name.c_str());
    }
    TVXenv *own() { return TVXgetenv(model); }
    void update() { ASSERT_EQ(TVXupdatemodel(model), 0); }
    int integer(const char *name)
    {
        int value = -12345;
        EXPECT_EQ(TVXgetintattr(model, name, &value), 0) << name;
        return value;
    }
    double dbl(const char *name)
    {
        double value = -12345;
        EXPECT_EQ(TVXgetdblattr(model, name, &value), 0) << name;
        return value;
    }
    double dbl(const char *name, int index)
    {
        double value = -12345;
        EXPECT_EQ(TVXgetdblattrelement(model, name, index, &value), 0) << name;
        return value;
    }
    std::vector<double> all(const char *name, size_t count)
    {
        std::vector<double> values(count, -12345);
        EXPECT_EQ(TVXgetdblattrarray(model, name, 0, -1, values.data()), 0) << name;
        return values;
    }
    std::string text(const char *name, int index)
    {
        char *value = nullptr;
        EXPECT_EQ(TVXgetstrattrelement(model, name, index, &value), 0) << name;
        return value ? value : "(null)";
    }
    int solved() // the status
    {
        EXPECT_EQ(TVXoptimize(model), 0);
        return integer("Status");
    }
    double objective()
    {
        EXPECT_EQ(TVXoptimize(model), 0);
        return dbl("ObjVal");
    }
    // A call that failed: its code, and its text.
    void refused(int code, const std::string &text, int returned)
    {
        EXPECT_EQ(returned, code) << text;
        EXPECT_EQ(TVXgetmerrormsg(model), text);
    }
};
