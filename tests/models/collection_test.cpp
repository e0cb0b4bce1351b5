// collection_test.cpp -- published models against their reference values
//
// TARVEX_INSTANCES=folder       with reference.csv and one folder per collection; without it nothing runs
// TARVEX_COLLECTIONS=a,b        collections to run (LPs: netlib,infeasible; MIPs: miplib3,sossc)
// TARVEX_SETTINGS=a=1,b=2       parameters to set
// TARVEX_COLLECTION_SEED=s      of the random changes (1)
// TARVEX_MIP_NODES=n            where the search of a MIP is stopped (20)
// TARVEX_MIP_NONZEROS=n         of the largest MIPs (20000)
// A MIP need not be solved: whatever is said of it when it is stopped must be true.
#include "files/files_support.h"
#include "models/changes.h"
#include "support/mip_check.h"
#include "support/quality_check.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

static constexpr double REFERENCE_TOL = 1e-6; // published values have more digits
static constexpr double POINT_TOL = 1e-6;     // unscaled violations
static constexpr double MIP_REFERENCE_TOL =
    2e-4;                                       // references are as good as the default gap
static constexpr double MIP_ITERATIONS = 50000; // so that a root comes to an end, too

namespace
{
struct Instance {
    std::string file;                     // full name
    std::string name;                     // collection/model
    std::string status;                   // optimal, infeasible, unbounded
    double value = 0;                     // NaN: not known
    int rows = 0, cols = 0, nonzeros = 0; // ranges are no columns there
};

// As the list of tests shows it.
void PrintTo(const Instance &instance, std::ostream *out)
{
    *out << instance.name;
}
} // namespace

static std::string from_environment(const char *name, const char *otherwise)
{
    const char *text = getenv(name);
    return text ? text : otherwise;
}

static std::vector<std::string> split(const std::string &line)
{
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, ',');) fields.push_back(field);
    return fields;
}

static Settings wanted_settings()
{
    Settings settings;
    for (const std::string &pair : split(from_environment("TARVEX_SETTINGS", ""))) {
        const size_t equals = pair.find('=');
        settings.emplace_back(pair.substr(0, equals), atof(pair.c_str() + equals + 1));
    }
    return settings;
}

// reference.csv: file, class, rows, cols, nonzeros, integers, status, objective, ...
static std::vector<Instance> collection_instances(const std::string &kind,
                                                  const char *collections)
{
    std::vector<Instance> all;
    const std::string folder = from_environment("TARVEX_INSTANCES", "");
    const std::vector<std::string> wanted =
        split(from_environment("TARVEX_COLLECTIONS", collections));
    std::ifstream csv(folder + "/reference.csv");
    for (std::string line; std::getline(csv, line);) {
        const std::vector<std::string> fields = split(line);
        if (fields.size() < 8 || fields[1] != kind || fields[6] == "open") continue;
        const std::string collection = fields[0].substr(0, fields[0].find('/'));
        if (std::find(wanted.begin(), wanted.end(), collection) == wanted.end()) continue;
        all.push_back({folder + "/" + fields[0], fields[0], fields[6],
                       fields[7].empty() ? NAN : atof(fields[7].c_str()),
                       atoi(fields[2].c_str()), atoi(fields[3].c_str()),
                       atoi(fields[4].c_str())});
    }
    return all;
}

class Collection : public testing::TestWithParam<Instance>
{
};

// The model under these settings has the answer of the reference.
static void expect_reference(const Instance &instance, const Settings &settings)
{
    const TestEnv env;
    TVXmodel *read = nullptr;
    ASSERT_EQ(TVXreadmodel(env.env, instance.file.c_str(), &read), 0);
    const TestModel model(read);
    ASSERT_EQ(settings_apply(TVXgetenv(model), settings), 0);
    LpModel lp;
    LpSolution s;
    ASSERT_EQ(lp_read_back(model, &lp), 0);
    ASSERT_EQ(lp_solve(model, &s), 0) << TVXgetmerrormsg(model);
    if (instance.status != "optimal") {
        const int expected =
            instance.status == "infeasible" ? TVX_INFEASIBLE : TVX_UNBOUNDED;
        EXPECT_TRUE(s.status == expected || s.status == TVX_INF_OR_UNBD) << s.status;
        return;
    }
    ASSERT_EQ(s.status, TVX_OPTIMAL);
    EXPECT_NEAR(s.objval, instance.value,
                REFERENCE_TOL * std::max(1.0, std::fabs(instance.value)));
    LpTolerances tolerances;
    tolerances.report = 1e-7; // sums of many terms of very different size
    EXPECT_EQ(lp_check_optimal(&lp, &s, tolerances), "");
    EXPECT_LE(lp_measure(&lp, s.x, {}).violation(), POINT_TOL);
    EXPECT_EQ(check_quality(model, &lp, &s), std::vector<std::string>{});
}

TEST_P(Collection, is_read_whole_and_written_the_same)
{
    const Scratch scratch;
    const TestEnv env;
    const Instance &instance = GetParam();
    TVXmodel *read = nullptr;
    ASSERT_EQ(TVXreadmodel(env.env, instance.file.c_str(), &read), 0);
    const TestModel model(read);
    const int ranges = read->body->numvars - instance.cols;
    EXPECT_EQ(read->body->numconstrs, instance.rows);
    if (instance.name != "infeasible/gas11.mps.gz") { // twelve tiny ones are not counted
        EXPECT_EQ(read->body->numnz - ranges, instance.nonzeros);
    }
    for (const auto &[file, names] :
         {std::pair{"w.mps", Names::COMPARE}, {"w.lp", Names::IGNORE}}) {
        TVXmodel *back = nullptr;
        ASSERT_EQ(TVXwrite(model, file), 0);
        ASSERT_EQ(TVXreadmodel(env.env, file, &back), 0);
        EXPECT_TRUE(stored_text(read, names) == stored_text(back, names)) << file;
        TVXfreemodel(back);
    }
}

// The answer does not depend on what presolve does: by default, off, and on at levels and with parts that are not the
// default.
TEST_P(Collection, reference_answer_whatever_presolve_does)
{
    const Settings ways[] = {
        {},
        {{"Presolve", 0}},
        {{"Presolve", 1}, {"TARV_PAR_DUALREDUCTION", 0}},
        {{"Presolve", 2}},
        {{"Presolve", 2}, {"Aggregate", 0}, {"PrePasses", 1}},
        {{"Presolve", 2}, {"PreDual", 1}},
    };
    for (Settings way : ways) {
        const Settings wanted = wanted_settings();
        way.insert(way.end(), wanted.begin(), wanted.end());
        SCOPED_TRACE(settings_text(way));
        ASSERT_NO_FATAL_FAILURE(expect_reference(GetParam(), way));
    }
}

TEST_P(Collection, solves_after_changes_agree_with_fresh_ones)
{
    const TestEnv env;
    TVXmodel *read = nullptr;
    ASSERT_EQ(TVXreadmodel(env.env, GetParam().file.c_str(), &read), 0);
    Dice dice(
        strtoull(from_environment("TARVEX_COLLECTION_SEED", "1").c_str(), nullptr, 10));
    expect_agreement_through_changes(&dice, read, {});
}

// ---- MIPs ----

static std::vector<Instance> mip_instances()
{
    std::vector<Instance> all = collection_instances("mip", "miplib3,sossc");
    const int most = campaign("TARVEX_MIP_NONZEROS", 20000);
    std::erase_if(all, [most](const Instance &one) { return one.nonzeros > most; });
    return all;
}

class MipCollection : public testing::TestWithParam<Instance>
{
};

// What the answer says against the reference, wherever the search has ended.
static void expect_not_wrong(const Instance &instance, const LpModel *lp,
                             const MipAnswer *answer)
{
    const bool none = answer->status >= TVX_INFEASIBLE && answer->status <= TVX_UNBOUNDED;
    ASSERT_EQ(none, none && instance.status != "optimal") << answer->status;
    ASSERT_TRUE(instance.status == "optimal" || answer->sol_count == 0);
    if (instance.status != "optimal" || std::isnan(instance.value)) return;
    const double allowed = MIP_REFERENCE_TOL * std::max(1.0, std::fabs(instance.value)),
                 dearer = lp->sense * (answer->objval - instance.value);
    EXPECT_LE(lp->sense * (answer->objbound - instance.value), allowed);
    EXPECT_TRUE(answer->sol_count == 0 || dearer >= -allowed) << answer->objval;
    EXPECT_TRUE(answer->status != TVX_OPTIMAL || dearer <= allowed) << answer->objval;
}

TEST_P(MipCollection, what_is_said_when_the_search_is_stopped_is_true)
{
    const TestEnv env;
    TVXmodel *read = nullptr;
    ASSERT_EQ(TVXreadmodel(env.env, GetParam().file.c_str(), &read), 0);
    const TestModel model(read);
    Settings settings = {{"NodeLimit", campaign("TARVEX_MIP_NODES", 20)},
                         {"IterationLimit", MIP_ITERATIONS}};
    const Settings wanted = wanted_settings();
    settings.insert(settings.end(), wanted.begin(), wanted.end());
    LpModel lp;
    ASSERT_EQ(settings_apply(TVXgetenv(model), settings), 0);
    ASSERT_EQ(lp_read_back(model, &lp), 0);
    const MipAnswer answer = mip_optimize(model);
    MipTolerances tolerances = mip_tolerances(settings);
    tolerances.report = 1e-7; // sums of many terms of very different size
    ASSERT_EQ(mip_check(&lp, &answer, tolerances), "");
    expect_not_wrong(GetParam(), &lp, &answer);
}

static std::string instance_name(const testing::TestParamInfo<Instance> &info)
{
    std::string name = info.param.name.substr(0, info.param.name.find(".mps"));
    for (char &c : name)
        if (!isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
}

TEST(CollectionList, is_at_hand)
{
    if (collection_instances("lp", "netlib,infeasible").empty())
        GTEST_SKIP() << "published models are not solved: no reference.csv in the folder "
                        "TARVEX_INSTANCES='"
                     << from_environment("TARVEX_INSTANCES", "") << "'";
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Collection);
INSTANTIATE_TEST_SUITE_P(Lp, Collection,
                         testing::ValuesIn(collection_instances("lp", "netlib,infeasible")),
                         instance_name);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(MipCollection);
INSTANTIATE_TEST_SUITE_P(Mip, MipCollection, testing::ValuesIn(mip_instances()),
                         instance_name);
