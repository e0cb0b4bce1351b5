// mip_judges_test.cpp -- the judges of MIPs: the exact one agrees with enumeration, and planted faults are seen
#include "support/mip_gen.h"
#include "support/mip_judge.h"
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace
{
constexpr double MOST_VALUES = 40;        // of an integer column that is enumerated
constexpr double MOST_COMBINATIONS = 600; // of a model

struct Fix {
    int col;
    double lb, ub;
};
using Choice = std::vector<std::vector<Fix>>; // the ways of a column or a set

Choice window_choice(const LpSet &set)
{
    Choice choice;
    const int width = set.type, count = static_cast<int>(set.members.size());
    for (int first = 0; first <= std::max(count - width, 0); first++) {
        std::vector<Fix> *fixes = &choice.emplace_back();
        for (int p = 0; p < count; p++)
            if (p < first || p >= first + width) fixes->push_back({set.members[p], 0, 0});
    }
    return choice;
}

// Each value of an integer column; 0 and the bounds of a semi-continuous one. None when there are too many.
Choice column_choice(const LpModel *lp, int j)
{
    Choice choice;
    const char type = lp->type(static_cast<size_t>(j));
    const double lb = lp->lb[j], ub = lp->ub[j];
    if (type == 'S' || type == 'N') choice.push_back({{j, 0, 0}});
    if (type == 'S' && lb <= ub) choice.push_back({{j, lb, ub}});
    if (type == 'S') return choice;
    if (lp_is_infinite(lb) || lp_is_infinite(ub) || ub - lb > MOST_VALUES) return {};
    for (double v = lb; v <= ub; v++) choice.push_back({{j, v, v}});
    if (choice.empty()) choice.push_back({{j, 1, 0}}); // crossed
    return choice;
}

// Every choice on its own; none when they are too many together.
std::vector<Choice> all_choices(const LpModel *lp)
{
    std::vector<Choice> choices;
    double combinations = 1;
    for (int j = 0; j < lp->num_vars(); j++)
        if (lp->type(static_cast<size_t>(j)) != 'C')
            choices.push_back(column_choice(lp, j));
    for (const LpSet &set : lp->sets) choices.push_back(window_choice(set));
    for (const Choice &c : choices) combinations *= static_cast<double>(c.size());
    return combinations == 0 || combinations > MOST_COMBINATIONS ? std::vector<Choice>{}
                                                                 : choices;
}

// The truth by all combinations, each an exact LP; UNKNOWN when there are too many.
MipTruth enumerated(const LpModel *given)
{
    LpModel lp = mip_rounded(given);
    const std::vector<Choice> choices = all_choices(&lp);
    MipTruth truth;
    if (choices.empty()) return truth;
    for (size_t j = 0; j < lp.obj.size(); j++)
        if (lp.type(j) != 'C') lp.lb[j] = -LP_INFINITY, lp.ub[j] = LP_INFINITY;
    truth.status = MipStatus::INFEASIBLE;
    std::vector<size_t> way(choices.size(), 0);
    for (size_t turned = 0; turned < way.size();) {
        LpModel one = lp;
        for (size_t k = 0; k < way.size(); k++)
            for (const Fix &fix : choices[k][way[k]]) {
                one.lb[fix.col] = std::max(one.lb[fix.col], fix.lb);
                one.ub[fix.col] = std::min(one.ub[fix.col], fix.ub);
            }
        const RationalResult r = rational_solve(&one);
        if (r.status == LpStatus::UNBOUNDED) return {MipStatus::UNBOUNDED, 0, {}, 0};
        const bool first = truth.status == MipStatus::INFEASIBLE;
        if (r.status == LpStatus::OPTIMAL &&
            (first || (truth.value - r.value) * lp.sense > 0))
            truth = {MipStatus::OPTIMAL, r.value, r.x, 0};
        for (turned = 0; turned < way.size() && ++way[turned] == choices[turned].size();)
            way[turned++] = 0;
    }
    return truth;
}

// The exact optimum as the library would report it.
MipAnswer exact_answer(const LpModel *lp, const MipTruth &truth)
{
    MipAnswer a;
    a.status = TVX_OPTIMAL;
    a.sol_count = 1;
    a.has_value = a.has_point = true;
    a.objval = a.objbound = truth.value.get_d();
    for (const mpq_class &v : truth.x) a.x.push_back(v.get_d());
    const std::vector<long double> activity = lp_activity(lp, a.x);
    for (size_t i = 0; i < lp->rhs.size(); i++)
        a.slack.push_back(static_cast<double>(lp->rhs[i] - activity[i]));
    return a;
}
} // namespace

TEST(MipTruth, is_that_of_all_combinations)
{
    int compared = 0, unknown = 0, by_status[3] = {};
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed);
        const GeneratedMip g = gen_mip(&dice, 4);
        const MipTruth truth = mip_truth(&g.lp);
        unknown += truth.status == MipStatus::UNKNOWN;
        const MipTruth plain = enumerated(&g.lp);
        if (plain.status == MipStatus::UNKNOWN) continue;
        compared++;
        by_status[static_cast<int>(plain.status)]++;
        ASSERT_EQ(mip_status_name(truth.status), mip_status_name(plain.status))
            << seed << " " << g.family << "\n"
            << lp_to_mps(&g.lp, "");
        if (plain.status != MipStatus::OPTIMAL) continue;
        ASSERT_EQ(truth.value, plain.value) << seed << lp_to_mps(&g.lp, "");
        const MipAnswer exact = exact_answer(&g.lp, truth);
        ASSERT_EQ(mip_judge(&g.lp, &plain, {}, &exact), "") << seed << lp_to_mps(&g.lp, "");
    }
    EXPECT_GT(compared, 1000);
    EXPECT_LT(unknown, 60);
    for (const int count : by_status) EXPECT_GT(count, 30);
}

// Points that integers cannot reach, rays along which there is none, and one that the relaxation does not show.
TEST(MipTruth, knows_when_a_ray_of_the_relaxation_matters)
{
    const auto status = [](const LpModel &lp) {
        return mip_status_name(mip_truth(&lp).status);
    };
    LpModel lp = lp_make({{-1, 0}, {0, 0}}, {{{2, -2}, '=', 1}});
    EXPECT_EQ(status(lp), std::string("unbounded")); // x grows with y
    lp.types = {'I', 'I'};
    lp.ub[1] = 1e6;
    EXPECT_EQ(status(lp),
              std::string("unknown")); // no integers, but that takes long to see
    lp.ub[1] = 10;
    EXPECT_EQ(status(lp), std::string("infeasible"));
    lp = lp_make({{-1, 0}, {0, 0}}, {{{1, -1}, '=', 0}});
    lp.sets = {{1, {0, 1}}};
    EXPECT_EQ(mip_truth(&lp).value, 0); // the ray needs both
    lp.types = {'S', 'C'};
    lp.sets.clear();
    lp.lb[0] = 3;
    EXPECT_EQ(status(lp), std::string("unbounded"));
    lp.ub[1] = 2;
    EXPECT_EQ(mip_truth(&lp).value, 0); // 0 is left of {0} and [3, inf)
}

TEST(MipJudge, sees_each_planted_fault)
{
    // max 3x + 2y + s, x + y + s <= 4.5, x <= 2 integer, y <= 2 continuous, s in {0} or [1, 3], y or s
    LpModel lp = lp_make({{3, 0, 2}, {2, 0, 2}, {1, 1, 3}}, {{{1, 1, 1}, '<', 4.5}}, -1);
    lp.types = {'I', 'C', 'S'};
    lp.sets = {{1, {1, 2}}};
    const MipTruth truth = mip_truth(&lp);
    ASSERT_EQ(truth.value, 10);
    const MipAnswer good = exact_answer(&lp, truth);
    const auto judge = [&](const MipAnswer &a, const Settings &settings = {}) {
        return mip_judge(&lp, &truth, settings, &a);
    };
    ASSERT_EQ(judge(good), "");
    const auto move = [&](MipAnswer *a, std::vector<double> x) {
        a->x = x;
        a->slack = {4.5 - x[0] - x[1] - x[2]};
        a->objval = a->objbound = 3 * x[0] + 2 * x[1] + x[2];
    };
    const std::function<void(MipAnswer *)> faults[] = {
        [](MipAnswer *a) { a->code = TVX_ERROR_NUMERIC; },
        [](MipAnswer *a) { a->status = TVX_INFEASIBLE; },
        [](MipAnswer *a) {
            a->status = TVX_INF_OR_UNBD, a->has_value = a->has_point = false,
            a->sol_count = 0;
        },
        [](MipAnswer *a) {
            a->status = TVX_CUTOFF, a->has_point = false, a->sol_count = 0;
        },
        [](MipAnswer *a) { a->status = TVX_NODE_LIMIT; },
        [](MipAnswer *a) { a->sol_count = 0; },
        [](MipAnswer *a) { a->has_value = false; },
        [](MipAnswer *a) { a->objval += 1e-3; },
        [](MipAnswer *a) { a->objval = NAN; },
        [](MipAnswer *a) { a->objbound -= 1e-3; },
        [](MipAnswer *a) { a->objbound += 0.1; },
        [](MipAnswer *a) { a->slack[0] += 1e-3; },
        [](MipAnswer *a) { a->x.pop_back(); },
        [](MipAnswer *a) {
            a->others.push_back({1, 0, 0.5});
        },
        [](MipAnswer *a) {
            a->others.push_back({1, 0, 0});
        }, // SolCount says one
        [](MipAnswer *a) {
            a->sol_count = 3, a->others = {{0, 0, 0}, {1, 0, 0}};
        },
        [&](MipAnswer *a) {
            move(a, {1.5, 2, 0});
        }, // fraction
        [&](MipAnswer *a) {
            move(a, {2, 1, 1});
        }, // both members of the set
        [&](MipAnswer *a) {
            move(a, {2, 0, 0.5});
        }, // in the gap
        [&](MipAnswer *a) {
            move(a, {2, 3, 0});
        }, // bound
        [&](MipAnswer *a) {
            move(a, {2, 0, 3});
        }, // row
        [&](MipAnswer *a) {
            move(a, {2, 1, 0});
        }, // not optimal
    };
    for (const auto &plant : faults) {
        MipAnswer wrong = good;
        plant(&wrong);
        EXPECT_NE(judge(wrong), "") << &plant - faults;
    }
    MipAnswer stopped = good;
    stopped.status = TVX_NODE_LIMIT;
    move(&stopped, {1, 2, 0});
    stopped.objbound = 11;
    EXPECT_EQ(judge(stopped, {{"NodeLimit", 1}}), "");
    stopped.objbound = 9.5;
    EXPECT_NE(judge(stopped, {{"NodeLimit", 1}}), "");
    MipAnswer none;
    none.status = TVX_CUTOFF;
    none.has_value = true;
    EXPECT_EQ(judge(none, {{"Cutoff", 11}}), "");
    EXPECT_NE(judge(none, {{"Cutoff", 9.5}}), "");
    EXPECT_NE(judge(good, {{"Cutoff", 11}}), "");
}
