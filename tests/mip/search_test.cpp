// search_test.cpp -- searches as a whole: nothing is lost on the way, each is as the last one was, and limits end it
#include "support/mip_gen.h"
#include "support/mip_judge.h"
#include "support/model_test.h"
#include <atomic>
#include <cmath>
#include <cstring>
#include <regex>
#include <thread>

namespace
{
struct Search : ModelTest {
    // Two chains: one of two switches is 1, and its chain begins with 2 x_1 >= switch and goes on with
    // 2 x_k >= 2 x_(k-1) - 1: each x_k that is fixed at 1 makes the next one fractional. Least cost, or with y = 1 - x
    // greatest gain; one chain counts 3 / 4 of the other.
    LpModel chains(int length, int cheap, bool turned, double constant)
    {
        const char sense = turned ? '<' : '>';
        const double one = turned ? 1 : 0;
        LpModel lp;
        for (int k = 0; k < 2; k++) lp_add_var(&lp, 0, 0, 1, 'B');
        lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '=', 1);
        for (const int chain : {0, 1})
            for (int k = 0; k < length; k++) {
                const int x = lp_add_var(&lp, chain == cheap ? 0.75 : 1, 0, 1, 'B');
                if (k == 0)
                    lp_add_row_entries(&lp, {{x, 2}, {chain, turned ? 1 : -1}}, sense,
                                       2 * one);
                else
                    lp_add_row_entries(&lp, {{x, 2}, {x - 1, -2}}, sense, 2 * one - 1);
            }
        lp.sense = turned ? -1 : 1;
        lp.objcon = constant;
        return lp;
    }
    // A market split: equations over binaries that ask for half of the sum of large numbers; a search sees little but
    // nodes.
    LpModel split(int rows, int columns)
    {
        Dice dice(11);
        LpModel lp;
        for (int j = 0; j < columns; j++) lp_add_var(&lp, 0, 0, 1, 'B');
        for (int i = 0; i < rows; i++) {
            std::vector<std::pair<int, double>> entries;
            int sum = 0;
            for (int j = 0; j < columns; j++) {
                entries.push_back({j, dice.range(0, 99)});
                sum += static_cast<int>(entries.back().second);
            }
            for (const double sign : {1., -1.}) // what is missing and what is too much
                entries.push_back({lp_add_var(&lp, 1, 0, LP_INFINITY), sign});
            lp_add_row_entries(&lp, entries, '=', std::floor(sum / 2));
        }
        return lp;
    }
    // All that a solve tells, without times.
    std::string story(const LpModel &lp, const Settings &settings)
    {
        load(lp, settings);
        EXPECT_EQ(settings_apply(own(), {{"OutputFlag", 1}, {"DisplayInterval", 1e9}}), 0);
        Output output;
        const MipAnswer answer = mip_optimize(model);
        std::string text = output.text();
        text = std::regex_replace(text, std::regex("[0-9.]+(s| seconds)"), "TIME");
        text += formatted("%d %d %a %a %a %a", answer.code, answer.status, answer.nodes,
                          answer.objval, answer.objbound, dbl("IterCount"));
        for (const double x : answer.x) text += formatted(" %a", x);
        return text;
    }
};
} // namespace

// Strong branching closes one side after the other, more often than a node is looked at again.
TEST_F(Search, a_node_whose_sides_close_again_and_again_is_not_lost)
{
    constexpr int LENGTH = 40;
    for (const int cheap : {0, 1})
        for (const bool turned : {false, true})
            for (const double constant : {0., 100., -100.})
                for (const double rule : {-1., 0., 1., 2., 3.})
                    for (const double propagation : {0., 1.}) {
                        const double optimum = constant + LENGTH * (turned ? 1 : 0.75);
                        load(chains(LENGTH, cheap, turned, constant),
                             {{"Presolve", 0},
                              {"TARV_PAR_NODEPRE", propagation},
                              {"VarBranch", rule}});
                        ASSERT_EQ(solved(), TVX_OPTIMAL) << rule << turned << constant;
                        EXPECT_NEAR(dbl("ObjVal"), optimum, 1e-9) << rule << constant;
                        EXPECT_NEAR(dbl("ObjBound"), optimum, 1e-9) << rule << constant;
                    }
}

TEST_F(Search, the_same_model_gives_the_same_log_counts_and_bits)
{
    std::vector<LpModel> models = {chains(25, 0, true, 0)};
    for (int columns = 10; columns < 17; columns++) models.push_back(split(2, columns));
    for (uint64_t seed = 0; seed < 40; seed++) {
        Dice dice(seed);
        models.push_back(gen_mip(&dice, 14).lp);
    }
    int large = 0;
    for (const LpModel &lp : models)
        for (const double presolve : {0., -1.}) {
            Settings settings = {
                {"Presolve", presolve}, {"NodeLimit", 300}, {"Threads", 1}};
            const std::string first = story(lp, settings);
            large += dbl("NodeCount") > 20;
            EXPECT_EQ(story(lp, settings), first);
            settings.back().second = 2;
            EXPECT_EQ(story(lp, settings), first);
        }
    EXPECT_GT(large, 10);
}

// Each limit by itself, from small to none: its status, its count, an answer that holds, and the optimum in the end.
TEST_F(Search, limits_end_it_in_time_and_the_next_call_goes_on)
{
    const LpModel lp = split(2, 12);
    const MipTruth truth = mip_truth(&lp, 100000);
    ASSERT_EQ(truth.status, MipStatus::OPTIMAL);
    const struct {
        const char *limit;
        int status;
        double least, none;
        const char *count; // what it limits, or null
    } rows[] = {{"NodeLimit", TVX_NODE_LIMIT, 0, 1e100, "NodeCount"},
                {"IterationLimit", TVX_ITERATION_LIMIT, 0, 1e100, "IterCount"},
                {"TARV_PAR_VTIMELIMIT", TVX_TIME_LIMIT, 0, 1e100, nullptr},
                {"TimeLimit", TVX_TIME_LIMIT, 0, 1e100, nullptr},
                {"SolutionLimit", TVX_SOLUTION_LIMIT, 1, 2e9, "SolCount"}};
    for (const auto &row : rows) {
        int stops = 0;
        load(lp, {{"Presolve", 0}, {"MIPGap", 0}, {"MIPGapAbs", 0}});
        for (double limit = row.least; limit < 2000 && stops < 40;
             limit = 1.3 * limit + 1) {
            if (row.limit == std::string("TimeLimit")) limit = stops < 2 ? 0 : 2000;
            limit = std::floor(limit);
            ASSERT_EQ(settings_apply(own(), {{row.limit, limit}}), 0);
            const MipAnswer answer = mip_optimize(model);
            EXPECT_EQ(mip_judge(&lp, &truth, {{row.limit, limit}, {"MIPGap", 0}}, &answer),
                      "")
                << row.limit << limit;
            if (answer.status == TVX_OPTIMAL) break;
            stops++;
            EXPECT_EQ(answer.status, row.status) << row.limit << limit;
            const bool counted = row.count && answer.sol_count + answer.nodes > 0;
            if (counted && row.status == TVX_NODE_LIMIT) {
                EXPECT_EQ(answer.nodes, limit);
            }
            if (counted && row.status == TVX_SOLUTION_LIMIT) {
                EXPECT_EQ(answer.sol_count, limit);
            }
        }
        EXPECT_GT(stops, 1) << row.limit;
        ASSERT_EQ(settings_apply(own(), {{row.limit, row.none}}), 0);
        const MipAnswer answer = mip_optimize(model);
        EXPECT_EQ(answer.status, TVX_OPTIMAL);
        EXPECT_EQ(mip_judge(&lp, &truth, {}, &answer), "") << row.limit;
    }
    // A tree that a cutoff has shaped does not go on without it.
    load(lp, {{"Cutoff", truth.value.get_d()}, {"NodeLimit", 3}, {"Presolve", 0}});
    EXPECT_EQ(solved(), TVX_NODE_LIMIT);
    ASSERT_EQ(settings_apply(own(), {{"Cutoff", 1e100}, {"NodeLimit", 1e100}}), 0);
    EXPECT_NEAR(objective(), truth.value.get_d(), 1e-6);
    load(lp, {{"Cutoff", truth.value.get_d()}});
    EXPECT_EQ(solved(), TVX_CUTOFF);
    EXPECT_EQ(integer("SolCount"), 0);
}

// From another thread, while the tree is searched: a second node is never far.
TEST_F(Search, another_thread_may_end_it)
{
    static std::atomic<int> nodes;
    nodes = 0;
    load(split(4, 40), {{"Presolve", 0}, {"NodeLimit", 1e6}});
    ASSERT_EQ(TVXsetcallbackfunc(
                  model,
                  [](TVXmodel *, void *, int where, void *) {
                      nodes += where == TVX_WHERE_NODE;
                      return 0;
                  },
                  nullptr),
              0);
    std::thread other([this] {
        while (nodes == 0) std::this_thread::yield();
        TVXterminate(model);
    });
    EXPECT_EQ(solved(), TVX_INTERRUPTED);
    other.join();
    EXPECT_EQ(integer("Status"), TVX_INTERRUPTED);
    ASSERT_EQ(settings_apply(own(), {{"NodeLimit", dbl("NodeCount") + 5}}), 0);
    EXPECT_EQ(solved(), TVX_NODE_LIMIT); // and on
}
