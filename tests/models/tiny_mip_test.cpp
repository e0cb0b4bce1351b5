// tiny_mip_test.cpp -- many tiny MIPs under random settings, against the exact judge
//
// TARVEX_TINY_COUNT=n     how many models (3000; a campaign takes some 100000)
// TARVEX_TINY_SEED=s      the first of them (0)
// TARVEX_TINY_SIZE=n      about the most columns (6)
// TARVEX_TINY_WRITE=dir   solves nothing: writes dir/tiny/SEED.mps and dir/reference.csv with the exact answers, on which
//                         bench/run can try this solver and others (TARVEX_INSTANCES=dir bench/run tiny)
// Settings, a cutoff near the optimum, a start (the optimum, a part of it, nonsense), data scaled by tens, and solves that
// stop at a node limit and go on are drawn with the model. A failing case is printed as MPS with its settings and seed.
#include "support/mip_gen.h"
#include "support/mip_judge.h"
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

static constexpr int MAX_FAILURES = 5;
static constexpr double RUNAWAY_NODES = 20000;       // of a tiny model whose truth is known
static constexpr double RUNAWAY_ITERATIONS = 300000; // the same
static constexpr double UNDEFINED = 1e101;           // in a start

namespace
{
struct Case {
    Dice dice;
    GeneratedMip generated;
    LpModel lp; // as the library gets it
    MipTruth truth;
    double factor = 1; // of the objective, scaled after the truth was found
    Settings settings;

    explicit Case(uint64_t seed);
    std::string solve(TVXenv *env);
    std::string set_start(TVXmodel *model);
    std::string solve_in_steps(TVXmodel *model);
    std::string judge(const MipAnswer &answer, const Settings &more = {}) const;
};
} // namespace

Case::Case(uint64_t seed)
    : dice(seed), generated(gen_mip(&dice, campaign("TARVEX_TINY_SIZE", 6))),
      lp(generated.lp), truth(mip_truth(&lp))
{
    if (dice.chance(30)) factor = scale_by_tens(&dice, &lp);
}

std::string Case::judge(const MipAnswer &answer, const Settings &more) const
{
    Settings all = settings;
    all.insert(all.end(), more.begin(), more.end());
    if (truth.status == MipStatus::UNKNOWN)
        for (const char *limit : {"NodeLimit", "IterationLimit"})
            all.emplace_back(limit, 0);
    return mip_judge(&lp, &truth, all, &answer, factor);
}

// A start never makes an answer wrong, whatever it says.
std::string Case::set_start(TVXmodel *model)
{
    std::vector<double> start;
    const int kind = dice.range(0, 2); // the optimum, a part of it, nonsense
    for (size_t j = 0; j < lp.obj.size(); j++) {
        const bool known = kind < 2 && truth.status == MipStatus::OPTIMAL;
        const double value = known ? truth.x[j].get_d() : dice.range(-6, 12) * 0.5;
        start.push_back(kind == 1 && dice.chance(50) ? UNDEFINED : value);
    }
    if (start.empty()) return "";
    return TVXsetdblattrarray(model, "Start", 0, lp.num_vars(), start.data())
               ? "the start is refused\n"
               : "";
}

// At a node limit, and on from there.
std::string Case::solve_in_steps(TVXmodel *model)
{
    for (const int limit : {dice.range(0, 2), dice.range(3, 30)}) {
        TVXsetdblparam(TVXgetenv(model), "NodeLimit", limit);
        const std::string wrong = judge(mip_optimize(model), {{"NodeLimit", limit}});
        if (!wrong.empty()) return formatted("at node limit %d: ", limit) + wrong;
    }
    TVXsetdblparam(TVXgetenv(model), "NodeLimit", RUNAWAY_NODES);
    return "";
}

std::string Case::solve(TVXenv *env)
{
    settings = mip_settings_draw(&dice);
    if (dice.chance(20)) {
        const double optimum = truth.status == MipStatus::OPTIMAL
                                   ? truth.value.get_d() * factor
                                   : dice.range(-9, 9),
                     step = dice.pick<double>({-1, -1e-3, 0, 1e-3, 0.1, 1});
        settings.emplace_back("Cutoff", optimum + step * (1 + std::fabs(optimum)));
    }
    const TestModel model(lp_load(env, &lp, settings));
    if (!model || TVXsetdblparam(TVXgetenv(model), "NodeLimit", RUNAWAY_NODES) ||
        TVXsetdblparam(TVXgetenv(model), "IterationLimit", RUNAWAY_ITERATIONS))
        return std::string("not loaded, or settings refused: ") + TVXgeterrormsg(env);
    std::string wrong;
    if (dice.chance(30)) wrong = set_start(model);
    if (wrong.empty() && dice.chance(25)) wrong = solve_in_steps(model);
    if (wrong.empty()) wrong = judge(mip_optimize(model));
    if (!wrong.empty() || !dice.chance(20)) return wrong;
    wrong = judge(mip_optimize(model)); // once more, as it stands
    return wrong.empty() ? "" : "solved again: " + wrong;
}

// One case; the text of a failure, or empty.
static std::string try_seed(TVXenv *env, uint64_t seed)
{
    Case c(seed);
    const std::string wrong = c.solve(env);
    if (wrong.empty()) return "";
    return wrong + "TARVEX_TINY_SEED=" + std::to_string(seed) + " " + c.generated.family +
           ", " + mip_status_name(c.truth.status) +
           formatted(" %.12g\n", c.truth.value.get_d() * c.factor) +
           lp_to_mps(&c.lp, settings_text(c.settings));
}

static void write_models(const std::string &folder, uint64_t first, uint64_t count)
{
    std::filesystem::create_directories(folder + "/tiny");
    std::ofstream csv(folder + "/reference.csv");
    csv << "file,class,rows,cols,nonzeros,integers,status,objective,source,difficulty,"
           "note\n";
    for (uint64_t seed = first; seed < first + count; seed++) {
        const Case c(seed);
        if (c.truth.status == MipStatus::UNKNOWN) continue;
        const bool optimal = c.truth.status == MipStatus::OPTIMAL;
        LpModel lp = c.lp; // to be minimised: not every reader knows OBJSENSE
        lp.objcon *= lp.sense;
        for (double &cost : lp.obj) cost = cost * lp.sense + 0.0;
        lp.sense = 1;
        std::string text = lp_to_mps(&lp, c.generated.family);
        text.insert(text.find("NAME TEST") + 9, " FREE"); // some readers ask for that
        const std::string file = formatted("tiny/%07llu.mps", (unsigned long long)seed);
        std::ofstream(folder + "/" + file) << text;
        csv << file << ",mip,,,,," << mip_status_name(c.truth.status) << ","
            << (optimal ? formatted("%.15g", c.truth.value.get_d() * c.factor * c.lp.sense)
                        : "")
            << ",exact,0," << c.generated.family << "\n";
    }
}

TEST(TinyMip, status_value_point_and_bound_are_right_under_any_settings)
{
    const TestEnv env;
    const uint64_t first = campaign("TARVEX_TINY_SEED", 0),
                   count = campaign("TARVEX_TINY_COUNT", 3000);
    if (const char *folder = getenv("TARVEX_TINY_WRITE"))
        return write_models(folder, first, count);
    int failures = 0;
    for (uint64_t seed = first; seed < first + count && failures < MAX_FAILURES; seed++) {
        const std::string wrong = try_seed(env.env, seed);
        failures += !wrong.empty();
        EXPECT_EQ(wrong, "");
    }
}
