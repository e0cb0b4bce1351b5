// presolve_test.cpp -- memory may end anywhere in presolve
//
// That answers are the same with presolve under all its settings as without, also where its limit stops it after a few
// reductions: models/differential_test.cpp.
#include "presolve/work.h"
#include "support/inside.h"
#include "support/memory_sweep.h"
#include "support/model_gen.h"
#include "support/structured_gen.h"

#ifdef TVX_DEBUG
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
    wanted &= ~(1U << 9); // models with integers only
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
