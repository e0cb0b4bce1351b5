// presolve_test.cpp -- with presolve, under all its settings, a model has the same answer as without
//
// TARVEX_PRESOLVE_COUNT=n   generated models (130; a campaign takes some thousand)
// TARVEX_PRESOLVE_SEED=s    the first of them (0)
#include "model/model.h"
#include "presolve/work.h"
#include "simplex/sopt.h"
#include "support/inside.h"
#include "support/memory_sweep.h"
#include "support/model_gen.h"
#include "support/presolve_try.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <gtest/gtest.h>

static constexpr int SETTINGS_PER_MODEL = 5;

static Settings draw_presolve_settings(Dice *dice)
{
    const std::vector<std::pair<const char *, std::vector<double>>> table = {
        {"Presolve", {-1, 1, 2}},
        {"Aggregate", {0, 1, 1}},
        {"PrePasses", {0, 1, -1, -1}},
        {"TARV_PAR_DUALREDUCTION", {0, 1, 1}},
        {"TARV_PAR_PREBOUND", {0, 1, 1}},
        {"TARV_PAR_PREPARALLEL", {0, 1, 1}},
        {"PreDepRow", {-1, -1, 0, 1}},
        {"PreDual", {-1, -1, 0, 1, 2}},
        {"TARV_PAR_PRETWOROWS", {-1, 0, 1, 2}},
        {"TARV_PAR_PRESINGLECOL", {-1, -1, 0, 1}},
        {"LPMethod", {0, 1}},
    };
    Settings settings;
    for (const auto &[name, values] : table)
        settings.emplace_back(name, dice->pick(values));
    return settings;
}

namespace
{

struct Outcome {
    std::string wrong; // empty, or what is wrong with it by itself
    LpSolution solution;
    double clean_up = 0; // iterations on the model itself, behind the way back
};

} // namespace

static Outcome solve_under(TVXenv *env, const LpModel *lp, const Settings &settings)
{
    Outcome out;
    const TestModel model(lp_load(env, lp));
    if (!model || settings_apply(TVXgetenv(model), settings)) {
        out.wrong = "settings refused";
    } else if (const int error = lp_solve(model, &out.solution)) {
        out.wrong = "error " + std::to_string(error);
    } else if (out.solution.status == TVX_OPTIMAL) {
        out.wrong = judge_optimal(lp, &out.solution);
        const TVXmodel *inside = model;
        out.clean_up = inside->lp.simplex->NPvt;
    }
    return out;
}

static LpModel generated(uint64_t seed, Dice *dice)
{
    const size_t kinds = all_families().size() + 1;
    if (seed % kinds == kinds - 1) return gen_tiny(dice, TinyLimits{});
    const int size = dice->chance(80) ? dice->range(3, 30) : dice->range(30, 80);
    return all_families()[seed % kinds].generate(dice, size).lp;
}

TEST(Presolve, every_setting_gives_the_answer_of_the_model_itself)
{
    const TestEnv env;
    const int first = campaign("TARVEX_PRESOLVE_SEED", 0),
              count = campaign("TARVEX_PRESOLVE_COUNT", 130);
    double iterations = 0, clean_up = 0;
    for (int seed = first; seed < first + count; seed++) {
        Dice dice(seed + 20000000);
        const LpModel lp = generated(seed, &dice);
        const Outcome plain = solve_under(env.env, &lp, {{"Presolve", 0}});
        ASSERT_EQ(plain.wrong, "") << "seed " << seed;
        for (int k = 0; k < SETTINGS_PER_MODEL; k++) {
            const Settings settings = draw_presolve_settings(&dice);
            const Outcome reduced = solve_under(env.env, &lp, settings);
            ASSERT_EQ(reduced.wrong, "") << "seed " << seed << "\n"
                                         << lp_to_mps(&lp, settings_text(settings));
            ASSERT_EQ(same_outcome(&plain.solution, &reduced.solution), "")
                << "seed " << seed << "\n"
                << lp_to_mps(&lp, settings_text(settings));
            iterations += plain.solution.iterations;
            clean_up += reduced.clean_up;
        }
    }
    EXPECT_LE(clean_up, 0.001 * iterations + 1);
}

// Presolve may stop behind each of its reductions: what stands then is a model like any other.
TEST(Presolve, it_may_stop_after_any_reduction)
{
    for (const Family family : {gen_multi_period, gen_blending, gen_network, gen_cone})
        for (int limit = 0; limit < 40; limit++) {
            const TestEnv env;
            set_parameters(env.env, {{"TARV_PAR_PRELIMIT", limit}, {"Presolve", 2}});
            Dice dice(3);
            const LpModel lp = family(&dice, 15).lp;
            const PresolveTry t = presolve_try_all(env.env, &lp);
            ASSERT_EQ(t.faults, "") << "limit " << limit;
        }
}

// Kinds of the records that presolve leaves behind, as bits.
static unsigned undo_kinds(TVXenv *env, const LpModel *lp)
{
    const TestModel model(lp_load(env, lp));
    unsigned kinds = 0;
    const Reduced reduced(model);
    if (!reduced.result) return 0;
    for (const UndoRecord *undo = reduced.result->Undo.head; undo; undo = undo->next)
        kinds |= 1U << undo->kind;
    return kinds;
}

static void append_block(LpModel *lp, const LpModel &block)
{
    const int first = lp->num_rows();
    for (int i = 0; i < block.num_rows(); i++)
        lp_add_row(lp, block.senses[i], block.rhs[i]);
    for (int j = 0; j < block.num_vars(); j++) {
        const int k = lp_add_var(lp, block.sense * block.obj[j], block.lb[j], block.ub[j]);
        for (const LpEntry &e : block.cols[j]) lp_set_entry(lp, first + e.row, k, e.value);
    }
}

// Small models side by side, until presolve needs every kind of record for them.
[[maybe_unused]] static LpModel model_of_all_kinds(TVXenv *env, unsigned wanted)
{
    LpModel lp;
    for (uint64_t seed = 0; seed < 20000; seed++) {
        Dice dice(seed);
        const LpModel block = gen_tiny(&dice, TinyLimits{});
        const unsigned kinds = undo_kinds(env, &block);
        if ((kinds & wanted) == 0 || rational_solve(&block).status != LpStatus::OPTIMAL)
            continue;
        append_block(&lp, block);
        wanted &= ~kinds;
        if (wanted == 0) break;
    }
    return lp;
}

#ifdef TVX_DEBUG
static void sweep(const LpModel &lp, const Settings &settings, int stride)
{
    run_sweep({"presolve",
               [&](Scene *s) {
                   ASSERT_EQ(settings_apply(s->env.env, settings), 0);
                   s->lp = lp;
                   s->model = lp_load(s->env.env, &lp);
                   ASSERT_TRUE(s->model);
               },
               [](Scene *s) { return TVXoptimize(s->model); },
               [](Scene *s, int) { expect_solves(s); }, stride});
}

TEST(Presolve, memory_may_end_anywhere)
{
    unsigned all_kinds = 0;
    for (const int kind :
         {UNDO_FIX, UNDO_SUBSTITUTE, UNDO_DOMINATED, UNDO_MERGE_COLS, UNDO_PARALLEL_ROWS,
          UNDO_BOUND_TRANSFER, UNDO_SINGLETON_ROW, UNDO_FORCING_ROW, UNDO_FREE_TO_SLACK,
          UNDO_SLACK_COLUMN, UNDO_ROW_COMBINATION})
        all_kinds |= 1U << kind;
    const TestEnv env;
    set_parameters(env.env, {{"Presolve", 2}});
    const LpModel lp = model_of_all_kinds(env.env, all_kinds);
    ASSERT_EQ(undo_kinds(env.env, &lp), all_kinds); // else the sweep has gaps
    for (const Settings &settings :
         {Settings{{"Presolve", 2}}, {{"PreDual", 1}}, {{"PreDual", 2}, {"Threads", 2}}})
        sweep(lp, settings, settings[0].first == "Presolve" ? 1 : 5);
    for (const Family family : {gen_multi_period, gen_planted_infeasible}) {
        Dice dice(9);
        sweep(family(&dice, 8).lp, {{"Presolve", 2}}, 1);
    }
}
#endif
