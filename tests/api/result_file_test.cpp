// result_file_test.cpp -- ResultFile: the result of this solve or no file, and only for the caller's own model
#include "support/model_test.h"
#include <gmock/gmock.h>

namespace
{
struct ResultFile : ModelTest {
    Scratch scratch;

    // max x + y, x + 2y <= 4, 3x + y <= limit: infeasible with a limit below 0
    void load_with(int limit, const char *file)
    {
        load("max x + y st x + 2 y <= 4\n3 x + y <= " + std::to_string(limit));
        ASSERT_EQ(TVXsetstrparam(own(), "ResultFile", file), 0);
    }
    void expect_log(const std::string &text)
    {
        EXPECT_EQ(TVXsetintparam(own(), "OutputFlag", 1), 0);
        Output output;
        EXPECT_EQ(TVXoptimize(model), 0);
        EXPECT_THAT(output.text(), testing::HasSubstr(text));
    }
    static constexpr char OLD[] = "older\n";
};
} // namespace

TEST_F(ResultFile, an_older_file_does_not_pass_for_the_result_of_a_solve_without_one)
{
    for (const std::string file : {"x.sol", "x.SOL", "x.mst"}) {
        file_put(file, OLD);
        load_with(-1, file.c_str());
        expect_log("WARNING: unable to write requested result file '" + file +
                   "'\n         The solve ended without a solution\n"
                   "         The file of that name was older and is removed\n");
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_STREQ(TVXgetmerrormsg(model), "");
    }
    file_put("target.sol", OLD);
    std::filesystem::create_symlink("target.sol", "x.sol"); // cannot be removed
    load_with(-1, "x.sol");
    expect_log("The file of that name is older, not the result of this solve\n");
    EXPECT_EQ(file_get("target.sol"), OLD);
    file_put("x.prm", OLD); // this can be written after any solve
    load_with(-1, "x.prm");
    expect_log("Wrote requested result file 'x.prm'\n");
    EXPECT_NE(file_get("x.prm"), OLD);
}

TEST_F(ResultFile, a_solve_that_fails_leaves_none)
{
    file_put("x.sol", OLD);
    load_with(6, "x.sol");
    const TVXcallback fail_it = [](TVXmodel *, void *, int where, void *) {
        return where == TVX_WHERE_SIMPLEX || where == TVX_WHERE_PRESOLVE ? 77 : 0;
    };
    ASSERT_EQ(TVXsetcallbackfunc(model, fail_it, nullptr), 0);
    EXPECT_EQ(TVXoptimize(model), 77);
    EXPECT_FALSE(std::filesystem::exists("x.sol"));
}

TEST_F(ResultFile, a_point_that_is_not_optimal_is_called_so)
{
    load_with(6, "x.sol");
    ASSERT_EQ(TVXoptimize(model), 0);
    EXPECT_EQ(file_get("x.sol").find('#'), std::string::npos); // no name, and optimal
    ASSERT_EQ(TVXresetmodel(model), 0);
    ASSERT_EQ(settings_apply(own(), {{"Presolve", 0}, {"IterationLimit", 0}}), 0);
    ASSERT_EQ(solved(), TVX_ITERATION_LIMIT);
    EXPECT_THAT(
        file_get("x.sol"),
        testing::StartsWith("# Not optimal (iteration limit): violates bounds by 0, "
                            "constraints by 0, integrality by 0\nx "));
    std::filesystem::rename("x.sol", "x.mst"); // the comment is one to readers too
    EXPECT_EQ(TVXread(model, "x.mst"), 0);
    EXPECT_EQ(dbl("Start", 1), dbl("X", 1));
}

TEST_F(ResultFile, is_written_or_not_with_a_warning_and_derived_models_leave_it_alone)
{
    load_with(6, "x.sol");
    ASSERT_EQ(TVXsetintparam(own(), "TARV_PAR_DUMP", 1), 0);
    expect_log("\n\nWrote requested result file 'x.sol'\n\n");
    const char *const files[] = {"x.sol", "tarvex.rew", "tarvex.prm"};
    for (const char *file : files) EXPECT_TRUE(std::filesystem::exists(file)) << file;
    for (const auto make : {TVXfixedmodel, TVXconverttofixed, TVXrelaxmodel, TVXfeasibility,
                            TVXpresolvemodel}) {
        for (const char *file : files) file_put(file, OLD);
        const TestModel derived(make(model));
        ASSERT_TRUE(derived);
        ASSERT_EQ(TVXoptimize(derived), 0);
        for (const char *file : files) EXPECT_EQ(file_get(file), OLD) << file;
        EXPECT_STREQ(TVXgetenv(derived)->ResultFile, "");
    }
    EXPECT_STREQ(own()->ResultFile, "x.sol");
    load_with(6, "no/such/x.sol");
    expect_log("WARNING: unable to write requested result file 'no/such/x.sol'\n");
    EXPECT_STREQ(TVXgetmerrormsg(model), "");
}
