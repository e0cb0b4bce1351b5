// text_model.h -- a model from an LP text, for tests that do not look at how models are built
#pragma once
#include "support/scratch.h"
#include "tarvex.h"
#include <unistd.h>

inline TVXmodel *model_of_text(TVXenv *env, const std::string &text)
{
    std::string name = testing::TempDir() + "tarvexXXXXXX.lp";
    close(mkstemps(name.data(), 3));
    file_put(name, text + "\nend\n");
    TVXmodel *model = nullptr;
    EXPECT_EQ(TVXreadmodel(env, name.c_str(), &model), 0) << TVXgeterrormsg(env);
    remove(name.c_str());
    return model;
}
