// collection_test.cpp -- published LPs against their reference values
//
// TARVEX_INSTANCES=folder       with reference.csv and one folder per collection; without it nothing runs
// TARVEX_COLLECTIONS=a,b        collections to run (netlib,infeasible)
// TARVEX_SETTINGS=a=1,b=2       parameters to set
// TARVEX_COLLECTION_SEED=s      of the random changes (1)
// TARVEX_GENERATED=folder       further .mps files whose comments tell "status:" and "optimum:"
#include "support/lp_tarvex.h"
#include "support/model_edit.h"
#include "support/quality_check.h"
#include "support/solve_judge.h"
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

static constexpr double REFERENCE_TOL =
    1e-6; // published values are good to more digits than that
static constexpr int CHANGE_ROUNDS = 6;
static constexpr double POINT_TOL = 1e-6; // unscaled violations

namespace
{

struct Instance {
    std::string file;   // full name
    std::string name;   // collection/model
    std::string status; // optimal, infeasible, unbounded
    double value = 0;
};

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
static std::vector<Instance> collection_instances()
{
    std::vector<Instance> all;
    const std::string folder = from_environment("TARVEX_INSTANCES", "");
    const std::vector<std::string> wanted =
        split(from_environment("TARVEX_COLLECTIONS", "netlib,infeasible"));
    std::ifstream csv(folder + "/reference.csv");
    for (std::string line; std::getline(csv, line);) {
        const std::vector<std::string> fields = split(line);
        if (fields.size() < 8 || fields[1] != "lp" || fields[6] == "open") continue;
        const std::string collection = fields[0].substr(0, fields[0].find('/'));
        if (std::find(wanted.begin(), wanted.end(), collection) == wanted.end()) continue;
        all.push_back(
            {folder + "/" + fields[0], fields[0], fields[6], atof(fields[7].c_str())});
    }
    return all;
}

// Comments of a generated file: "* status: optimal", "* optimum: 12".
static bool generated_instance(const std::filesystem::path &path, Instance *instance)
{
    std::ifstream in(path);
    bool known = false;
    for (std::string line; std::getline(in, line) && line[0] == '*';) {
        std::istringstream words(line);
        std::string star, key, rest;
        words >> star >> key >> rest;
        if (key == "integers:" && rest != "0") return false;
        if (key == "status:") instance->status = rest;
        if (key == "optimum:") instance->value = atof(rest.c_str());
        known = known || key == "optimum:";
    }
    instance->file = path.string();
    instance->name = "generated/" + path.filename().string();
    return known || instance->status == "infeasible" || instance->status == "unbounded";
}

static std::vector<Instance> all_instances()
{
    std::vector<Instance> all = collection_instances();
    std::error_code none;
    const std::string generated = from_environment("TARVEX_GENERATED", "");
    for (const auto &entry : std::filesystem::directory_iterator(generated, none)) {
        Instance instance;
        if (entry.path().extension() == ".mps" &&
            generated_instance(entry.path(), &instance))
            all.push_back(instance);
    }
    return all;
}

class Collection : public testing::TestWithParam<Instance>
{
};

static void expect_optimal(const Instance &instance, const LpModel &lp, const LpSolution &s)
{
    ASSERT_EQ(s.status, TVX_OPTIMAL);
    EXPECT_LE(std::fabs(s.objval - instance.value),
              REFERENCE_TOL * std::max(1.0, std::fabs(instance.value)))
        << s.objval << " against " << instance.value;
    const PointReport point = lp_check_point(&lp, s.x);
    EXPECT_LE(point.bound_vio, POINT_TOL);
    EXPECT_LE(point.row_vio, POINT_TOL);
    LpTolerances tolerances;
    tolerances.report = 1e-7; // sums of many terms of very different size
    const LpReport report = lp_check_optimal(&lp, &s, tolerances);
    EXPECT_TRUE(report.ok()) << report.text();
}

// The model under these settings has the answer of the reference.
static void expect_reference(const Instance &instance, const Settings &settings,
                             bool quality)
{
    const TestEnv env;
    TVXmodel *read = nullptr;
    ASSERT_EQ(TVXreadmodel(env.env, instance.file.c_str(), &read), 0)
        << TVXgeterrormsg(env.env);
    const TestModel model(read);
    ASSERT_EQ(settings_apply(TVXgetenv(model), settings), 0);
    LpModel lp;
    ASSERT_EQ(lp_read_back(model, &lp), 0);
    LpSolution solution;
    ASSERT_EQ(lp_solve(model, &solution), 0) << TVXgetmerrormsg(model);
    if (instance.status == "optimal") {
        ASSERT_NO_FATAL_FAILURE(expect_optimal(instance, lp, solution));
        if (!quality) return;
        EXPECT_EQ(check_quality(model, &lp, &solution, QualityScaling::SCALED),
                  std::vector<std::string>{});
        return;
    }
    const int expected = instance.status == "infeasible" ? TVX_INFEASIBLE : TVX_UNBOUNDED;
    EXPECT_TRUE(solution.status == expected || solution.status == TVX_INF_OR_UNBD)
        << "status " << solution.status;
}

TEST_P(Collection, reference_answer)
{
    expect_reference(GetParam(), wanted_settings(), true);
}

// The answer does not depend on what presolve does: off, and on at levels and with parts that are not the default.
TEST_P(Collection, reference_answer_whatever_presolve_does)
{
    const Settings roads[] = {
        {{"Presolve", 0}},
        {{"Presolve", 1}, {"TARV_PAR_DUALREDUCTION", 0}},
        {{"Presolve", 2}},
        {{"Presolve", 2}, {"Aggregate", 0}, {"PrePasses", 1}},
        {{"Presolve", 2}, {"PreDual", 1}},
    };
    for (Settings road : roads) {
        const Settings wanted = wanted_settings();
        road.insert(road.end(), wanted.begin(), wanted.end());
        SCOPED_TRACE(settings_text(road));
        ASSERT_NO_FATAL_FAILURE(expect_reference(GetParam(), road, false));
    }
}

// An optimum whose point violates something by nearly the tolerance: another run may rightly prove infeasibility.
static bool lives_on_tolerance(TVXmodel *model)
{
    double bound = 0, constraint = 0;
    return TVXgetdblattr(model, "BoundVio", &bound) == 0 &&
           TVXgetdblattr(model, "ConstrVio", &constraint) == 0 &&
           std::max(bound, constraint) > 1e-7;
}

// Random changes to a live model, a few at a time; then it must agree with a fresh copy by the other method.
TEST_P(Collection, solves_after_changes_agree_with_fresh_ones)
{
    const TestEnv env;
    TVXmodel *read = nullptr;
    ASSERT_EQ(TVXreadmodel(env.env, GetParam().file.c_str(), &read), 0);
    const TestModel model(read);
    LpModel lp;
    ASSERT_EQ(lp_read_back(model, &lp), 0);
    Dice dice(
        strtoull(from_environment("TARVEX_COLLECTION_SEED", "1").c_str(), nullptr, 10));
    std::string story;
    for (int round = 0; round < CHANGE_ROUNDS; round++) {
        const int lp_method = dice.range(0, 1);
        LpSolution warm, fresh;
        ASSERT_EQ(TVXsetintparam(TVXgetenv(model), "LPMethod", lp_method), 0);
        ASSERT_EQ(lp_solve(model, &warm), 0) << story;
        const TestModel copy(TVXcopymodel(model));
        ASSERT_TRUE(copy);
        ASSERT_EQ(TVXsetintparam(TVXgetenv(copy), "LPMethod", 1 - lp_method), 0);
        ASSERT_EQ(lp_solve(copy, &fresh), 0) << story;
        if (lives_on_tolerance(model) || lives_on_tolerance(copy)) break;
        ASSERT_EQ(same_outcome(&warm, &fresh), "") << story << "method " << lp_method;
        for (int k = dice.range(1, 3); k > 0; k--) {
            const std::string done = edit_randomly(&dice, &lp, model);
            ASSERT_EQ(done.find("FAILED"), std::string::npos) << done;
            story += done + "\n";
            ASSERT_EQ(TVXupdatemodel(model), 0);
        }
    }
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
    if (all_instances().empty())
        GTEST_SKIP() << "published models are not solved: no reference.csv in the folder "
                        "TARVEX_INSTANCES='"
                     << from_environment("TARVEX_INSTANCES", "") << "'";
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(Collection);
INSTANTIATE_TEST_SUITE_P(Lp, Collection, testing::ValuesIn(all_instances()), instance_name);
