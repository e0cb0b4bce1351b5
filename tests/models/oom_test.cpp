// oom_test.cpp -- every allocation of a whole solve fails once
#include "model/store_player.h"
#include "presolve/work.h"
#include "runtime/memory.h"
#include "support/inside.h"
#include "support/memory_sweep.h"
#include "support/model_gen.h"
#include "support/model_text.h"
#include "support/scratch.h"
#include "support/solve_judge.h"
#include "support/structured_gen.h"
#include <functional>

#ifdef TVX_DEBUG

static void load_example(Scene *scene)
{
    scene->lp = generated(gen_multi_period, 12, 5);
    scene->model = lp_load(scene->env.env, &scene->lp);
    ASSERT_TRUE(scene->model);
}

static void solve_example(Scene *scene)
{
    load_example(scene);
    ASSERT_EQ(TVXoptimize(scene->model), 0);
}

// Random calls that queue, updates with a basis to carry over, queries and a copy; the first code that is not 0.
static int build(Scene *s)
{
    constexpr std::nullptr_t NONE = nullptr;
    int count = 0;
    Dice dice(8);
    StorePlayer player;
    player.dice = &dice;
    int error =
        TVXnewmodel(s->env.env, &player.model, "m", 0, NONE, NONE, NONE, NONE, NONE);
    s->model = player.model;
    for (int k = 1; k <= 60 && !error; k++) {
        player.linear = k <= 30;
        player.step();
        error = player.failed;
        if (k % 5 != 0 || error) continue;
        error = TVXupdatemodel(s->model);
        player.reference.update();
        const int n = player.n_vars(), m = player.n_constrs();
        if (!error) error = TVXgetconstrs(s->model, &count, NONE, NONE, NONE, 0, m);
        const std::vector<int> vars(n, TVX_NONBASIC_LOWER), rows(m, TVX_BASIC);
        if (!error && player.linear) error = lp_set_basis(s->model, vars, rows);
    }
    if (error) return error;
    const TestModel copy(TVXcopymodel(s->model));
    return copy ? TVXresetmodel(s->model) : TVX_ERROR_OUT_OF_MEMORY;
}

// What was queued before a failure is all there or all lost, and the model goes on.
TEST(OutOfMemory, building_and_copying)
{
    Scene whole;
    ASSERT_EQ(build(&whole), 0);
    const std::string expected = model_text(whole.model);
    run_sweep({"build", [](Scene *) {}, build,
               [&](Scene *s, int) {
                   if (s->model) {
                       ASSERT_EQ(TVXupdatemodel(s->model), 0);
                       TVXmodel *copy = TVXcopymodel(s->model);
                       ASSERT_EQ(TVXfreemodel(s->model) + TVXfreemodel(copy), 0);
                       s->model = nullptr;
                   }
                   ASSERT_EQ(build(s), 0);
                   ASSERT_EQ(model_text(s->model), expected);
               }});
    run_sweep({"load", [](Scene *s) { s->lp = generated(gen_multi_period, 12, 5); },
               [](Scene *s) { // columns out of order, so that overlaps are looked for
                   const int at[] = {2, 0}, len[] = {1, 2}, ind[] = {0, 1, 1};
                   const double val[] = {1, 2, 3};
                   char name[] = "n0", *names[] = {name, nullptr};
                   return TVXloadmodel(s->env.env, &s->model, "m", 2, 2, -1, 1, nullptr,
                                       "<>", val, at, len, ind, val, nullptr, nullptr, "CI",
                                       names, names);
               },
               [](Scene *s, int code) { ASSERT_EQ(code != 0, s->model == nullptr); }});
}

// A failed update may leave the content half changed, but never a model that crashes or cannot be freed. A second solve
// starts from what the first left behind, as nothing of it is deleted.
TEST(OutOfMemory, update_and_second_solve)
{
    for (const int lp_method : {0, 1})
        for (const auto step : {TVXupdatemodel, TVXoptimize})
            run_sweep(
                {"changes",
                 [&](Scene *s) {
                     load_example(s);
                     TVXmodel *m = s->model;
                     ASSERT_EQ(TVXsetintparam(TVXgetenv(m), "LPMethod", lp_method), 0);
                     ASSERT_EQ(TVXoptimize(m), 0);
                     const double values[] = {1, 2};
                     const int rows[] = {2, 3}, cols[] = {0, 4};
                     ASSERT_EQ(TVXaddvar(m, 2, rows, values, 1, 0, 9, 'C', nullptr), 0);
                     ASSERT_EQ(TVXaddrangeconstr(m, 2, cols, values, 0, 90, nullptr), 0);
                     ASSERT_EQ(TVXaddconstr(m, 2, cols, values, '>', 1, nullptr), 0);
                     ASSERT_EQ(TVXsetdblattrelement(m, "LB", 5, 1), 0);
                     ASSERT_EQ(TVXsetcharattrelement(m, "Sense", 5, '>'), 0);
                     if (step == TVXoptimize) return;
                     ASSERT_EQ(TVXchgcoeffs(m, 2, rows, cols, values), 0);
                     ASSERT_EQ(TVXdelconstrs(m, 1, rows), 0);
                     ASSERT_EQ(TVXdelvars(m, 1, cols), 0);
                 },
                 [&](Scene *s) { return step(s->model); },
                 [](Scene *s, int) {
                     ASSERT_EQ(lp_read_back(s->model, &s->lp), 0);
                     expect_solves(s);
                 }});
}

TEST(OutOfMemory, solve)
{
    const Settings ways[] = {{{"LPMethod", 0}},
                             {{"LPMethod", 1}},
                             {{"LPMethod", 0}, {"Quad", 1}},
                             {{"LPMethod", 1}, {"Quad", 1}, {"Presolve", 0}}};
    for (const Settings &way : ways)
        for (const Family family : {gen_multi_period, gen_planted_infeasible,
                                    gen_planted_unbounded, gen_badly_scaled})
            sweep_solve(generated(family, 10, 5), way);
}

// A solve that fails behind the last pivot has made as many iterations as one that succeeds.
TEST(OutOfMemory, is_told_with_the_iterations_done)
{
    Scene s;
    int code = 0;
    load_example(&s);
    // The closing line of a solve whose request number `fail_at`, if not 0, fails, with all behind it.
    const auto closing = [&](int fail_at, const char *verb) {
        EXPECT_EQ(settings_apply(TVXgetenv(s.model), {{"Presolve", 0}, {"OutputFlag", 1}}),
                  0);
        EXPECT_EQ(TVXresetmodel(s.model), 0);
        Output output;
        mem_fault_arm(fail_at);
        code = TVXoptimize(s.model);
        mem_fault_arm(0);
        const std::string shown = output.text();
        const size_t at = shown.find(verb);
        if (at == std::string::npos) return std::string();
        return shown.substr(at, shown.find(" iterations", at) - at);
    };
    const std::string done = closing(0, "Solved in ").substr(6);
    ASSERT_NE(done, " in 0");
    bool told = false;
    for (int fail_at = 1;; fail_at++) {
        const std::string line = closing(fail_at, "Stopped in ");
        if (!code) break;
        told |= line == "Stopped" + done;
    }
    EXPECT_TRUE(told);
}

// Whatever can be asked of a solved model, written of it and read into it; the first code that is not 0.
static int ask_everything(Scene *s)
{
    TVXmodel *m = s->model;
    const size_t n = s->lp.obj.size();
    const std::vector<int> vbasis(n, -1), cbasis(s->lp.rhs.size(), 0), ind = {0, 1};
    std::vector<double> values(n), up(n);
    std::vector<char *> names(n);
    int error = 0;
    const auto call = [&error](int code) {
        if (!error && code != TVX_ERROR_DATA_NOT_AVAILABLE) error = code;
    };
    for (const char *name : {"X", "RC", "Xn", "SAObjLow"})
        call(TVXgetdblattrarray(m, name, 0, -1, values.data()));
    for (const char *name : {"DualVio", "MaxCoeff", "Kappa", "N2Kappa", "ObjVal"})
        call(TVXgetdblattr(m, name, values.data()));
    call(TVXstrongbranch(m, 2, ind.data(), 10, values.data(), up.data(), nullptr));
    call(TVXgetstrattrarray(m, "VarName", 0, -1, names.data()));
    for (const char *file : {"w.bas", "w.sol", "w.mst"}) call(TVXwrite(m, file));
    for (const char *file : {"w.bas", "read.mst"}) call(TVXread(m, file));
    call(lp_set_basis(m, vbasis, cbasis));
    return error;
}

TEST(OutOfMemory, queries_and_side_files)
{
    const Scratch folder;
    file_put("read.mst", "C0 1\nC3 2\n");
    run_sweep({"queries", solve_example, ask_everything,
               [](Scene *s, int) { expect_solves(s); }});
}

// A derived model is there or not; its source stays what it is.
TEST(OutOfMemory, derived_models)
{
    using Derive = TVXmodel *(*)(TVXmodel *);
    for (const Derive derive : {TVXpresolvemodel, TVXconverttofixed, TVXfixedmodel,
                                TVXrelaxmodel, TVXfeasibility})
        run_sweep({"derive", solve_example,
                   [&](Scene *s) {
                       const TestModel derived(derive(s->model));
                       if (derived) return 0;
                       const std::string why = TVXgetmerrormsg(s->model);
                       return why == "Out of memory" ? TVX_ERROR_OUT_OF_MEMORY : -1;
                   },
                   [](Scene *s, int) { expect_solves(s); }});
}

// Files with everything in them: what was read is what is written, and the model in memory stays as it is.
TEST(OutOfMemory, model_files)
{
    const Scratch folder;
    file_put("full.lp",
             "max 2x + y + 3 st a: 1 <= x + y <= 3 x - 2z >= 1 bounds x <= 9 none free "
             "gen y semi z sos one: S1:: x:1 y:2 end");
    file_put("full.mps", "ROWS\n N C\n G R1\n L R2\nCOLUMNS\n X C 1 R1 1\n Y R1 1 NONE 3\n"
                         " M 'MARKER' 'INTORG'\n Z R1 1\n X R2 3\nRHS\n R R1 4\nRANGES\n"
                         " R R1 4\nBOUNDS\n UP B X 9\nSOS\n S1 one\n X 1\n Y 2\nENDATA\n");
    std::string expected;
    const char *file = nullptr;
    const auto read = [&](Scene *s) { return TVXreadmodel(s->env.env, file, &s->model); };
    const auto same = [&](Scene *s, int code) {
        ASSERT_EQ(code != 0, s->model == nullptr);
        if (code) {
            ASSERT_EQ(read(s), 0);
        }
        ASSERT_EQ(model_text(s->model), expected);
    };
    for (const char *name : {"full.lp", "full.mps"}) {
        Scene whole;
        file = name;
        ASSERT_EQ(read(&whole), 0);
        expected = model_text(whole.model);
        run_sweep({name, [](Scene *) {}, read, same});
    }
    for (const char *name : {"w.mps", "w.rew.gz", "w.lp"})
        run_sweep({name, [&](Scene *s) { ASSERT_EQ(read(s), 0); },
                   [&](Scene *s) { return TVXwrite(s->model, name); },
                   [&](Scene *s, int) { same(s, 0); }});
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

// On small models whose records are of all kinds together, and on larger ones.
TEST(Presolve, memory_may_end_anywhere)
{
    unsigned wanted = (2U << UNDO_ROW_COMBINATION) - (1U << UNDO_FIX); // first to last kind
    wanted &= ~(1U << 9); // a number without a kind
    const TestEnv env;
    ASSERT_EQ(TVXsetintparam(env.env, "Presolve", 2), 0);
    for (uint64_t seed = 0; seed < 20000 && wanted != 0; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, TinyLimits{});
        const unsigned kinds = undo_kinds(env.env, &lp);
        if ((kinds & wanted) == 0) continue;
        wanted &= ~kinds;
        for (const Settings &settings : {Settings{{"Presolve", 2}},
                                         {{"PreDual", 1}},
                                         {{"PreDual", 2}, {"Threads", 2}}})
            sweep_solve(lp, settings);
    }
    EXPECT_EQ(wanted, 0U); // else the sweep has gaps
    for (const Family family : {gen_multi_period, gen_planted_infeasible}) {
        Dice dice(9);
        sweep_solve(family(&dice, 8).lp, {{"Presolve", 2}});
    }
}

#endif
