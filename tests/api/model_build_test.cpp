// model_build_test.cpp -- building and querying models: edges and misuse (code, exact text, nothing changed)
//
// That good calls in any order make the right model is what fuzz/corpus_test.cpp looks at.
#include "support/model_test.h"
#include "support/model_text.h"
#include <climits>
#include <cmath>

namespace
{
constexpr std::nullptr_t NONE = nullptr;
constexpr double INF = HUGE_VAL;

struct ModelBuild : ModelTest {
    void SetUp() override { load("max 5 x + y + 0 z + 3 st x + 2y >= 3 s: 4 x - z = 5"); }
    void made(int n, const double *lb, const double *ub, const char *types, char **names)
    {
        TVXfreemodel(model);
        ASSERT_EQ(TVXnewmodel(env.env, &model, NONE, n, NONE, lb, ub, types, names), 0);
    }
};

// ---- New models ----

TEST_F(ModelBuild, new_models_take_defaults_round_integers_and_cut_infinities)
{
    made(2, NONE, NONE, NONE, NONE);
    EXPECT_EQ(all("LB", 2), (std::vector<double>{0, 0}));
    EXPECT_EQ(all("UB", 2), (std::vector<double>{1e100, 1e100}));
    EXPECT_EQ(text("VarName", 1), "C1");
    const double lb[] = {-1e20, 0.3, -7, 1.000001, 0.5, -2.5};
    const double ub[] = {1e20, 2.7, 7, 1.999999, 2.5, -0.5};
    char given[] = "a", empty[] = "";
    char *names[] = {given, nullptr, empty, given, given, given};
    made(6, lb, ub, "CIBNsi", names);
    EXPECT_EQ(all("LB", 6), (std::vector<double>{-1e100, 1, 0, 1, 0.5, -2}));
    EXPECT_EQ(all("UB", 6), (std::vector<double>{1e100, 2, 1, 2, 2.5, -1}));
    EXPECT_EQ(text("VarName", 1) + text("VarName", 2), "C1C2");
    EXPECT_EQ(integer("NumIntVars"), 5);
    EXPECT_EQ(integer("NumBinVars"), 1);
}

TEST_F(ModelBuild, new_models_with_bad_arguments_are_refused)
{
    const double bad[] = {0, NAN}, infinite[] = {INF, 0};
    const auto make = [&](TVXenv *e, int n, const double *obj, const double *ub,
                          const char *types) {
        TVXmodel *out = model; // must be overwritten
        const int code = TVXnewmodel(e, &out, NONE, n, obj, NONE, ub, types, NONE);
        EXPECT_TRUE(!e || !out);
        return code;
    };
    EXPECT_EQ(make(env.env, -1, NONE, NONE, NONE), 10003);
    EXPECT_EQ(make(env.env, INT_MAX, NONE, NONE, NONE), 10003);
    EXPECT_EQ(make(env.env, 2, bad, NONE, NONE), 10003);
    EXPECT_EQ(make(env.env, 2, NONE, infinite, NONE), 10003);
    EXPECT_STREQ(TVXgeterrormsg(env.env), "Element 0 of a double array is Nan or Inf.");
    EXPECT_EQ(make(env.env, 2, NONE, NONE, "CQ"), 10003);
    EXPECT_EQ(make(NONE, 0, NONE, NONE, NONE), 10002);
    EXPECT_EQ(TVXnewmodel(env.env, NONE, NONE, 1, NONE, NONE, NONE, NONE, NONE), 10002);
}

// A model to load: two rows, two columns.
struct Load {
    std::string absent = ""; // the first letters of arrays that are not there
    std::vector<int> vbeg{0, 2}, vlen{2, 1}, vind{0, 1, 1};
    std::vector<double> vval{5, 6, 7}, rhs{3, 4};
    int numconstrs = 2, numvars = 2;
    double objcon = 0;
};

TEST_F(ModelBuild, loaded_columns_may_lie_anywhere_but_are_guarded_and_arrays_must_be_there)
{
    const std::string nan = "Element 1 of a double array is Nan or Inf.",
                      column = "Invalid start or length of column ",
                      invalid = "Invalid argument value for required parameter",
                      missing = "NULL argument for required parameter";
    const struct {
        int code;
        std::string text;
        Load l;
        // clang-format off
    } cases[] = { // gaps that hold anything, and any order; an empty column
        {0, "", {.vbeg = {2, 0}, .vind = {1, 77, 0, 1, -5}, .vval = {7, NAN, 5, 6, INF}}},
        {0, "", {.vbeg = {0, INT_MAX}, .vlen = {2, 0}}},
        {10006, "Row index 2 out of range in column 0", {.vind = {0, 2, 1}}},
        {10006, "Row index -1 out of range in column 1", {.vind = {0, 1, -1}}},
        {10018, "Row index 1 appears twice in column 0", {.vind = {1, 1, 1}}},
        {10006, column + "0", {.vlen = {3, 1}}}, {10006, column + "1", {.vlen = {2, -1}}}, // the first runs into column 1
        {10006, column + "0", {.vbeg = {-1, 2}}}, {10006, column + "1", {.vbeg = {0, INT_MAX}}},
        {10006, column + "1", {.vbeg = {1, 0}, .vlen = {1, 2}}}, // shared entry
        {10003, "Double value is Nan or Inf.", {.objcon = NAN}}, {10003, nan, {.rhs = {1, -INF}}},
        {10003, nan, {.vval = {1, NAN, 1}}}, {10003, invalid, {.numconstrs = -1}},
        {10002, missing, {.absent = "s"}}, {10002, missing, {.absent = "b"}}, {10002, missing, {.absent = "i"}},
        {10002, missing, {.absent = "v"}}, {0, "", {.absent = "biv", .numvars = 0}},
        {0, "", {.absent = "sbiv", .numconstrs = 0, .numvars = 0}}};
    // clang-format on
    for (const auto &[code, text, l] : cases) {
        TVXmodel *out = model; // must be overwritten
        const auto given = [&absent = l.absent](char letter, auto *array) {
            return absent.find(letter) == std::string::npos ? array : nullptr;
        };
        EXPECT_EQ(TVXloadmodel(env.env, &out, NONE, l.numvars, l.numconstrs, 1, l.objcon,
                               NONE, given('s', "<>"), l.rhs.data(),
                               given('b', l.vbeg.data()), l.vlen.data(),
                               given('i', l.vind.data()), given('v', l.vval.data()), NONE,
                               NONE, NONE, NONE, NONE),
                  code);
        EXPECT_EQ(TVXgeterrormsg(env.env), text);
        const TestModel loaded(out);
        EXPECT_EQ(out == nullptr, code != 0);
        const double expected[] = {5, 6, 0, l.vlen[1] ? 7.0 : 0.0};
        for (int k = 0; out && k < 2 * l.numvars; k++) {
            double value = -1;
            EXPECT_EQ(TVXgetcoeff(out, k % 2, k / 2, &value), 0);
            EXPECT_EQ(value, expected[k]);
        }
    }
}

// ---- Calls that fail ----

TEST_F(ModelBuild, adds_and_changes_that_fail_queue_nothing_and_say_why)
{
    const int beg[] = {0, 1}, back[] = {1, 0}, twice[] = {0, 1, 1}, types[] = {1, 3};
    const int vars[] = {0, 3}, rows[] = {0, 2}, *zero = beg, ind[] = {0, 1, 2},
              late[] = {3, 0};
    const double val[] = {1, 1, 1}, bad[] = {1, NAN, 1};
    const std::string no_vars = "Problem adding variables",
                      nan = "Element 1 of a double array is Nan or Inf.",
                      no_rows = "Problem adding constraints",
                      no_sos = "Problem adding SOS constraints",
                      no_change = "Problem changing coefficient";
    const auto add_vars = [&](int numnz, const int *start, const int *index,
                              const double *v) {
        return TVXaddvars(model, 2, numnz, start, index, v, NONE, NONE, NONE, NONE, NONE);
    };
    const auto add_rows = [&](const int *index, const double *value, const double *rhs) {
        return TVXaddconstrs(model, 2, 3, beg, index, value, NONE, rhs, NONE);
    };
    const auto add_sos = [&](const int *type, int members, const int *start,
                             const int *index, const double *w) {
        return TVXaddsos(model, 2, members, type, start, index, w);
    };
    const auto queue = [&] { // stays, whatever fails behind it
        ASSERT_EQ(TVXaddvar(model, 1, beg, val, 2, 0, 1, 'C', NONE), 0);
        ASSERT_EQ(TVXaddconstr(model, 1, beg, val, '<', 2, NONE), 0);
        ASSERT_EQ(TVXaddsos(model, 1, 1, types, beg, beg, val), 0);
        ASSERT_EQ(TVXchgcoeffs(model, 1, beg, beg, val), 0);
    };
    queue();
    update();
    const std::string before = model_text(model);
    SetUp();
    queue();
    refused(10018, no_vars, add_vars(3, beg, twice, val));
    refused(10006, "Invalid start 1 of vector 0", add_vars(3, back, twice, val));
    refused(10003, no_vars, add_vars(-1, beg, twice, val));
    refused(10003, nan, add_vars(3, beg, twice, bad));
    refused(10002, no_vars, add_vars(3, nullptr, twice, val));
    refused(10002, no_vars, add_vars(3, beg, nullptr, val));
    refused(10002, no_vars, add_vars(3, beg, twice, nullptr));
    refused(10003, "Variable 1 has an unknown type (character code 0)",
            TVXaddvars(model, 2, 0, NONE, NONE, NONE, NONE, NONE, NONE, "C", NONE));
    refused(10006, no_rows, TVXaddconstr(model, 1, vars + 1, val, '<', 1, NONE)); // not yet
    refused(10018, no_rows, add_rows(twice, val, nullptr));
    refused(10002, no_rows, add_rows(twice, nullptr, nullptr));
    refused(10003, nan, add_rows(twice, val, bad));
    refused(10002, no_rows,
            TVXaddrangeconstrs(model, 1, 0, NONE, NONE, NONE, val, NONE, NONE));
    refused(10003, "Element 0 of a double array is Nan or Inf.",
            TVXaddrangeconstr(model, 0, NONE, NONE, -INF, 1, NONE));
    refused(10003, "SOS 1 has type 3, not 1 or 2", add_sos(types, 3, beg, ind, val));
    refused(10002, no_sos, add_sos(nullptr, 3, beg, ind, val));
    refused(10002, no_sos, add_sos(ind + 1, 3, nullptr, ind, val));
    refused(10002, no_sos, add_sos(ind + 1, 3, beg, ind, nullptr));
    refused(10003, no_sos, add_sos(ind + 1, -3, beg, ind, val));
    refused(10006, "Invalid start 3 of SOS 0", add_sos(ind + 1, 3, late, ind, val));
    refused(10003, nan, add_sos(ind + 1, 3, beg, ind, bad));
    refused(10006, "Problem deleting variable", TVXdelvars(model, 2, vars));
    refused(10002, "Problem deleting variable", TVXdelvars(model, 1, nullptr));
    refused(10006, "Problem deleting constraint", TVXdelconstrs(model, 2, rows));
    refused(10006, "Problem deleting sos", TVXdelsos(model, 1, zero));
    refused(10006, no_change, TVXchgcoeffs(model, 2, rows, rows, val));
    refused(10002, no_change, TVXchgcoeffs(model, 1, zero, nullptr, val));
    refused(10002, no_change, TVXchgcoeffs(model, 1, nullptr, zero, val));
    refused(10002, no_change, TVXchgcoeffs(model, 1, zero, zero, nullptr));
    refused(10003, nan, TVXchgcoeffs(model, 2, beg, beg, bad));
    for (const int count : {0, -3}) // looks at nothing
        for (const int code :
             {TVXaddvars(model, count, 5, NONE, NONE, NONE, NONE, NONE, NONE, NONE, NONE),
              TVXaddconstrs(model, count, 5, NONE, NONE, NONE, NONE, NONE, NONE),
              TVXaddrangeconstrs(model, count, 5, NONE, NONE, NONE, NONE, NONE, NONE),
              TVXaddsos(model, count, 5, NONE, NONE, NONE, NONE),
              TVXdelvars(model, count, NONE), TVXdelconstrs(model, count, NONE),
              TVXdelsos(model, count, NONE), TVXchgcoeffs(model, count, NONE, NONE, NONE)})
            EXPECT_EQ(code, 0);
    update();
    EXPECT_EQ(model_text(model), before);
    EXPECT_EQ(TVXaddconstr(model, 1, vars + 1, val, '<', 1, NONE), 0); // but now
}

TEST_F(ModelBuild, queries_say_which_index_is_wrong)
{
    double value = 0;
    int count = 0;
    const auto vars = [&](int start, int len) {
        return TVXgetvars(model, &count, NONE, NONE, NONE, start, len);
    };
    const std::string range = "Invalid index range for variable query: ";
    refused(10006, "Row index 2 out of range in coefficient query",
            TVXgetcoeff(model, 2, 0, &value));
    refused(10006, "Column index -1 out of range in coefficient query",
            TVXgetcoeff(model, 0, -1, &value));
    refused(10002, "Failed to retrieve coefficient", TVXgetcoeff(model, 0, 0, nullptr));
    refused(10006, range + "[2, 3]", vars(2, 2));
    refused(10006, range + "[-1, 0]", vars(-1, 2));
    refused(10006, range + "[1, 0]", vars(1, 0));
    refused(10006, range + "[2147483647, 2147483647]", vars(INT_MAX, INT_MAX));
    refused(10002, "Failed to retrieve variables",
            TVXgetvars(model, NONE, NONE, NONE, NONE, 0, 1));
    refused(10006, "Invalid index range for constraint query: [0, 2]",
            TVXgetconstrs(model, &count, NONE, NONE, NONE, 0, 3));
    refused(10002, "Failed to retrieve constraints",
            TVXgetconstrs(model, NONE, NONE, NONE, NONE, 0, 1));
    refused(10006, "Invalid index range for SOS query: [0, 0]",
            TVXgetsos(model, &count, NONE, NONE, NONE, NONE, 0, 1));
    refused(10002, "Failed to retrieve SOS constraints",
            TVXgetsos(model, NONE, NONE, NONE, NONE, NONE, 0, 1));
}

TEST_F(ModelBuild, null_and_foreign_handles_are_refused)
{
    double value = 0;
    int count = 0;
    long long foreign[64] = {};
    EXPECT_EQ(TVXfreemodel(nullptr), 0);
    for (TVXmodel *bad :
         {static_cast<TVXmodel *>(nullptr), reinterpret_cast<TVXmodel *>(foreign)}) {
        EXPECT_EQ(TVXcopymodel(bad), nullptr);
        for (const int code :
             {TVXupdatemodel(bad), TVXresetmodel(bad), TVXoptimize(bad),
              TVXgetintattr(bad, "NumVars", &count), TVXsetintattr(bad, "ModelSense", 1),
              TVXgetattrinfo(bad, "LB", &count, NONE, NONE), TVXdelvars(bad, 0, NONE),
              TVXdelconstrs(bad, 0, NONE), TVXdelsos(bad, 0, NONE),
              TVXaddvar(bad, 0, NONE, NONE, 0, 0, 0, 'C', NONE),
              TVXaddconstr(bad, 0, NONE, NONE, '<', 0, NONE),
              TVXaddrangeconstr(bad, 0, NONE, NONE, 0, 0, NONE),
              TVXaddsos(bad, 0, 0, NONE, NONE, NONE, NONE),
              TVXchgcoeffs(bad, 0, NONE, NONE, NONE), TVXgetcoeff(bad, 0, 0, &value),
              TVXgetvars(bad, &count, NONE, NONE, NONE, 0, 1),
              TVXgetconstrs(bad, &count, NONE, NONE, NONE, 0, 1),
              TVXgetsos(bad, &count, NONE, NONE, NONE, NONE, 0, 1)})
            EXPECT_EQ(code, bad ? 10003 : 10002);
    }
    EXPECT_EQ(TVXfreemodel(reinterpret_cast<TVXmodel *>(foreign)), 10003);
}

TEST_F(ModelBuild, a_copy_leaves_queued_changes_behind_and_warns)
{
    TVXsetintparam(own(), "OutputFlag", 1);
    ASSERT_EQ(TVXaddvar(model, 0, NONE, NONE, 0, 0, 1, 'C', NONE), 0);
    for (const char *expected : {"Warning: model has pending changes.\n"
                                 "New model does not contain these changes.\n",
                                 ""}) {
        Output output;
        const TestModel copy(TVXcopymodel(model)); // its content: fuzz/corpus_test.cpp
        EXPECT_EQ(output.text(), expected);
        update();
    }
}
} // namespace
