// crush_test.cpp -- a basis of the model in the reduced model
#include "support/model_test.h"
#include "support/structured_gen.h"

using Crush = ModelTest;

// It is one there, what is left keeps its status, and no more than needed enters or leaves.
TEST_F(Crush, a_basis_of_the_model_gives_one_of_the_reduced_model)
{
    int compared = 0;
    for (uint64_t seed = 0; seed < 200; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const LpModel lp = dice.pick(all_families()).generate(&dice, 20).lp;
        load(lp);
        const Reduced reduced(model);
        if (!reduced.body()) continue;
        compared++;
        const int n = lp.num_vars(), m = lp.num_rows();
        std::vector<int> full(static_cast<size_t>(n + m));
        for (int k = 0; k < n + m; k++) full[k] = k < m ? 0 : dice.range(-3, -1);
        dice.shuffle(&full);
        const int small_n = reduced.body()->numvars, small_m = reduced.body()->numconstrs;
        std::vector<int> crushed(static_cast<size_t>(small_n + small_m), -9);
        presolve_crush_basis(reduced.result, full.data(), crushed.data());
        int basic = 0, basic_before = 0, changed = 0;
        const auto count = [&](int before, int place) {
            if (place < 0) return;
            basic_before += before >= 0;
            basic += crushed[place] >= 0;
            changed += (before >= 0) != (crushed[place] >= 0);
            if (before < 0 && crushed[place] < 0) {
                EXPECT_EQ(crushed[place], before);
            }
        };
        for (int j = 0; j < n; j++) count(full[j], presolved_var(reduced.result, j));
        for (int i = 0; i < m; i++) {
            const int place = presolved_constr(reduced.result, i);
            count(full[n + i], place < 0 ? -1 : small_n + place);
        }
        EXPECT_EQ(basic, small_m);
        EXPECT_EQ(changed, std::abs(basic_before - small_m));
    }
    EXPECT_GT(compared, 50);
}
