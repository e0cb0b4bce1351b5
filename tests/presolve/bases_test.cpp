// bases_test.cpp -- bases of the model in the reduced model and in the dual form, and the value of that form
#include "presolve/dualise.h"
#include "support/model_gen.h"
#include "support/model_test.h"
#include "support/structured_gen.h"
#include <cmath>

namespace
{
struct DualForm {
    ModelBody *body = nullptr;
    explicit DualForm(const TVXmodel *model)
    {
        EXPECT_EQ(dualise(model->body, model->env, &body), 0);
    }
    ~DualForm() { body_free(body); }
};

std::vector<bool> basics(const std::vector<int> &status)
{
    std::vector<bool> basic;
    for (const int code : status) basic.push_back(code >= 0);
    return basic;
}
using Dualise = ModelTest;
using Crush = ModelTest;
} // namespace

// An optimal basis of the dual form is one of the model: no iteration is left. And it leads back to where it came from.
TEST_F(Dualise, has_the_value_of_the_model_and_its_bases_serve)
{
    int compared = 0;
    for (uint64_t seed = 0; seed < 1500; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, TinyLimits{.max_vars = 5, .max_rows = 5});
        load(lp, {{"Presolve", 0}});
        LpSolution plain;
        ASSERT_EQ(lp_solve(model, &plain), 0);
        const DualForm form(model);
        const BodyView dual(model->env, form.body);
        ASSERT_EQ(simplex_alone(dual, {.Method = METHOD_PRIMAL}), 0);
        if (plain.status != TVX_OPTIMAL) {
            EXPECT_NE(dual.model->lp.status, TVX_OPTIMAL);
            continue;
        }
        ASSERT_EQ(dual.model->lp.status, TVX_OPTIMAL);
        const double value = -simplex_objective(dual.model->lp.simplex);
        EXPECT_NEAR(lp.sense * plain.objval, value, 1e-6 * (1 + std::fabs(value)));
        const size_t n = lp.obj.size(), m = lp.rhs.size();
        std::vector<int> own(n + m), there(form.body->numvars + form.body->numconstrs);
        std::vector<int> back = there;
        simplex_get_basis(dual.model->lp.simplex, there.data());
        dual_basis_to_primal(model->body, INFINITE_BOUND, there.data(), own.data());
        primal_basis_to_dual(model->body, INFINITE_BOUND, own.data(), back.data());
        if (basics(own).size() != n + m) continue;
        EXPECT_EQ(basics(back), basics(there));
        ASSERT_EQ(simplex_alone(model, {.Method = METHOD_DUAL, .Statuses = own.data()}), 0);
        EXPECT_EQ(model->lp.status, TVX_OPTIMAL);
        EXPECT_EQ(simplex_iterations(model->lp.simplex), 0);
        compared++;
    }
    EXPECT_GT(compared, 400);
}

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
        std::vector<int> full(n + m);
        for (int k = 0; k < n + m; k++) full[k] = k < m ? 0 : dice.range(-3, -1);
        dice.shuffle(&full);
        const int small_n = reduced.body()->numvars, small_m = reduced.body()->numconstrs;
        std::vector<int> crushed(small_n + small_m, -9);
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
