// resolve_test.cpp -- a live record under random changes against fresh solves of the same LP
#include "runtime/memory.h"
#include "simplex/live_check.h"
#include "simplex/resolve.h"
#include "support/inside.h"
#include "support/settings.h"
#include "support/structured_gen.h"
#include <cmath>
#include <gtest/gtest.h>
#include <utility>

namespace
{
constexpr double SAME = 1e-6; // relative difference of objectives that counts as none
constexpr int STEPS = 40;

// The LP as it should be, beside the live record that follows it.
struct Walk {
    Dice dice;
    TestEnv env;
    LpModel lp;
    std::vector<double> lb, ub; // of the root: bounds only tighten against these
    TestModel model;
    sopt *s = nullptr;
    std::vector<BoundChange> changes;
    std::vector<NodeBasis> saved;
    const NodeBasis *start = nullptr; // of the next solve
    int numeric = 0;                  // solves without an answer
    TestEnv usual;                    // of the fresh solves

    Walk(uint64_t seed, Family family, int size, const Settings &settings)
        : dice(seed), lp(turn_columns(&dice, family(&dice, size).lp)), lb(lp.lb), ub(lp.ub),
          model(set(&env, settings, &lp))
    {
    }
    static TVXmodel *set(TestEnv *env, const Settings &settings, const LpModel *lp)
    {
        EXPECT_EQ(settings_apply(env->env, settings), 0);
        return lp_load(env->env, lp);
    }
    // Some columns change their sign, so that they have only an upper bound; few become free.
    static LpModel turn_columns(Dice *dice, LpModel lp)
    {
        if (!dice->chance(50)) return lp;
        for (size_t j = 0; j < lp.cols.size(); j++) {
            if (dice->chance(15)) {
                lp.lb[j] = -LP_INFINITY;
                lp.ub[j] = LP_INFINITY;
            }
            if (!dice->chance(30)) continue;
            for (LpEntry &e : lp.cols[j]) e.value = -e.value;
            lp.obj[j] = -lp.obj[j];
            std::swap(lp.lb[j], lp.ub[j]);
            lp.lb[j] = -lp.lb[j];
            lp.ub[j] = -lp.ub[j];
        }
        return lp;
    }
    ~Walk() { simplex_free(s); }
    Walk(const Walk &) = delete;
    Walk &operator=(const Walk &) = delete;

    bool begin()
    {
        EXPECT_EQ(SimplexOptimize(&s, model.model->body, model.model->env, {}), 0);
        if (simplex_status(s) != TVX_OPTIMAL) return false;
        EXPECT_EQ(simplex_go_live(s), 0);
        return true;
    }
    double turned(double value) const { return lp.sense * value; }

    // Bounds around the value of the variable, as a branch or a fixing sets them, or those of the root again.
    void change_bound()
    {
        const int j = dice.range(0, lp.num_vars() - 1);
        // there need not be a point
        const double x = std::clamp(simplex_value(s, j), -1e6, 1e6),
                     whole = std::floor(x + dice.range(-1, 1));
        double *low = &lp.lb[size_t(j)], *high = &lp.ub[size_t(j)];
        switch (dice.range(0, 9)) {
        case 0:
            *high = std::max(lb[size_t(j)], std::min(ub[size_t(j)], whole));
            break;
        case 1:
            *low = std::min(ub[size_t(j)], std::max(lb[size_t(j)], whole + 1));
            break;
        case 2:
            *low = *high = std::clamp(whole, lb[size_t(j)], ub[size_t(j)]);
            break;
        default:
            *low = lb[size_t(j)];
            *high = ub[size_t(j)];
        }
        changes.push_back({j, *low, *high});
    }
    void append_rows()
    {
        const int count = dice.range(1, 4);
        std::vector<std::vector<int>> ind(size_t(count), std::vector<int>{});
        std::vector<std::vector<double>> val(size_t(count), std::vector<double>{});
        std::vector<LiveRow> rows;
        for (size_t k = 0; k < size_t(count); k++) {
            double activity = 0;
            std::vector<std::pair<int, double>> entries;
            for (int j = 0; j < lp.num_vars(); j++) {
                if (dice.range(0, 3) != 0) continue;
                const double a = dice.range(-4, 4);
                ind[k].push_back(j);
                val[k].push_back(a);
                if (a != 0) entries.emplace_back(j, a);
                activity += a * std::clamp(simplex_value(s, j), -1e6, 1e6);
            }
            const bool equation = dice.range(0, 5) == 0;
            const double rhs =
                equation ? activity
                         : activity + dice.range(-2, 2) * 0.25 * std::fabs(activity);
            rows.push_back({int(ind[k].size()), ind[k].data(), val[k].data(),
                            equation ? '=' : '<', rhs});
            lp_add_row_entries(&lp, entries, equation ? '=' : '<', rhs);
        }
        ASSERT_EQ(simplex_append_rows(s, rows.data(), count), 0);
    }
    // Some of the rows with a basic slack.
    void delete_rows()
    {
        std::vector<char> drop(size_t(lp.num_rows()), 0);
        LpModel left = lp;
        left.senses.clear();
        left.rhs.clear();
        std::vector<int> number(size_t(lp.num_rows()), -1);
        for (int i = 0; i < lp.num_rows(); i++) {
            drop[size_t(i)] =
                simplex_is_basic(s, lp.num_vars() + i) && dice.range(0, 2) == 0;
            if (!drop[size_t(i)])
                number[size_t(i)] =
                    lp_add_row(&left, lp.senses[size_t(i)], lp.rhs[size_t(i)]);
        }
        for (std::vector<LpEntry> &col : left.cols) {
            std::vector<LpEntry> kept;
            for (const LpEntry &e : col)
                if (number[size_t(e.row)] >= 0)
                    kept.push_back({number[size_t(e.row)], e.value});
            col = kept;
        }
        lp = left;
        ASSERT_EQ(simplex_delete_rows(s, drop.data()), 0);
        saved.clear();
        start = nullptr;
    }
    void step()
    {
        const int action = dice.range(0, 19);
        start = nullptr;
        if (action == 0) append_rows();
        if (action == 1) delete_rows();
        if (action == 2) {
            saved.emplace_back();
            ASSERT_EQ(simplex_save_basis(s, &saved.back()), 0);
        }
        if (action == 3 && !saved.empty()) {
            NodeBasis &basis = saved[size_t(dice.range(0, int(saved.size()) - 1))];
            // one that does not fit, as after rows were deleted carelessly
            if (dice.chance(20))
                basis.Statuses.data[dice.range(0, int(basis.Statuses.size) - 1)] = 1;
            if (dice.chance(50)) s->Env->Quad = -1; // back to double precision
            start = &basis;
        }
        if (action == 4) {
            bool same = false;
            ASSERT_EQ(simplex_clean(s, &same), 0);
        }
        if (action == 5) {
            const int j = dice.range(0, lp.num_vars() - 1);
            lp.obj[size_t(j)] = dice.range(-9, 9);
            simplex_change_cost(s, j, turned(lp.obj[size_t(j)]));
        }
        for (int k = dice.range(0, 3); k > 0; k--) change_bound();
    }
    // A fresh solve, with presolve if that tells.
    LpSolution fresh()
    {
        LpSolution solution;
        for (const int presolve : {-1, 0}) {
            TestModel other(lp_load(usual.env, &lp));
            EXPECT_EQ(TVXsetintparam(TVXgetenv(other), "Presolve", presolve), 0);
            EXPECT_EQ(lp_solve(other, &solution), 0);
            if (solution.status != TVX_INF_OR_UNBD) break;
        }
        return solution;
    }
    bool infeasible(const LpSolution &truth) const
    {
        return truth.status == TVX_INFEASIBLE;
    }
    void solve_and_compare()
    {
        const LpSolution truth = fresh();
        if (!infeasible(truth) && truth.status != TVX_OPTIMAL)
            return; // nothing to compare with
        const bool unbounded =
            truth.status == TVX_UNBOUNDED; // without the rows that were deleted
        const double optimum = infeasible(truth) ? 1e100
                               : unbounded       ? -1e100
                                                 : turned(truth.objval),
                     size = truth.status == TVX_OPTIMAL ? 1 + std::fabs(optimum) : 1;
        ResolveCall call;
        call.Changes = changes.data();
        call.NumChanges = int(changes.size());
        call.Basis = std::exchange(start, nullptr);
        const int kind = dice.range(0, 3);
        if (kind == 0) call.Iterations = dice.range(0, 4);
        if (kind == 1)
            call.Cutoff = (infeasible(truth) ? dice.range(-9, 9) : optimum) +
                          size * dice.range(-3, 3) * 0.1;
        ResolveOutcome out;
        ASSERT_EQ(simplex_resolve(s, call, &out), 0);
        changes.clear();
        switch (out.Status) {
        case TVX_NUMERIC: // the caller has to solve in another way; rare
            numeric++;
            break;
        case TVX_UNBOUNDED:
            EXPECT_TRUE(unbounded) << truth.status;
            break;
        case TVX_OPTIMAL:
            EXPECT_NEAR(out.Value, optimum, SAME * size);
            EXPECT_LE(out.Value, call.Cutoff + SAME * size);
            break;
        case TVX_INFEASIBLE:
            EXPECT_TRUE(infeasible(truth)) << optimum;
            check_proof();
            break;
        case TVX_CUTOFF:
            EXPECT_GE(optimum, call.Cutoff - SAME * size);
            break;
        default:
            EXPECT_EQ(out.Status, TVX_ITERATION_LIMIT);
            EXPECT_LE(out.Value, optimum + SAME * size);
            EXPECT_LE(out.Iterations, call.Iterations);
        }
        EXPECT_EQ(live_faults(s), "") << "status " << out.Status;
        if (out.Status == TVX_OPTIMAL) check_point();
        if (out.Status == TVX_OPTIMAL && simplex_has_factor(s)) check_tableau();
        if (out.Status == TVX_OPTIMAL && dice.chance(20)) probe();
        if (out.Status == TVX_OPTIMAL && dice.chance(20)) fix_and_release();
    }
    // A nonbasic variable is fixed where it is, and released: both without a pivot.
    void fix_and_release()
    {
        const int j = dice.range(0, lp.num_vars() - 1);
        if (simplex_is_basic(s, j) || s->Live != LIVE_FRESH) return;
        const double x = simplex_value(s, j);
        const BoundChange to[] = {{j, x, x}, {j, lp.lb[size_t(j)], lp.ub[size_t(j)]}};
        for (const BoundChange &change : to) {
            ResolveOutcome out;
            ASSERT_EQ(simplex_resolve(s, {&change, 1}, &out), 0);
            EXPECT_TRUE(out.Status == TVX_OPTIMAL && out.Iterations == 0)
                << out.Status << " " << out.Iterations << " of " << j;
        }
    }
    // The multipliers, if there are any, have no point within the bounds.
    void check_proof()
    {
        const LiveVector y = simplex_farkas_row(s);
        if (y.Count == 0) return;
        std::vector<double> pi(size_t(lp.num_rows()), 0.0);
        double low = 0, high = 0, size = 1; // range of y (A I) x - y b
        double largest = 0;
        for (int k = 0; k < y.Count; k++)
            largest = std::max(largest,
                               std::fabs(y.Val[y.Ind[k]] * y.Scale[y.Ind[k]] * y.Factor));
        for (int k = 0; k < y.Count; k++) {
            const size_t i = size_t(y.Ind[k]);
            pi[i] = y.Val[i] * y.Scale[i] * y.Factor;
            // a row with '>' is turned in the body
            const double turn = lp.senses[i] == '>' ? -1 : 1,
                         rhs = pi[i] * turn * lp.rhs[i];
            low -= rhs;
            high -= rhs;
            // the slack has no upper bound; entries that are rounding errors do not count
            if (lp.senses[i] != '=' && std::fabs(pi[i]) > 1e-9 * largest)
                (pi[i] > 0 ? high : low) = pi[i] > 0 ? 1e100 : -1e100;
            pi[i] *= turn;
            size += std::fabs(rhs);
        }
        for (size_t j = 0; j < lp.cols.size(); j++) {
            double g = 0, terms = 0;
            for (const LpEntry &e : lp.cols[j]) {
                g += pi[size_t(e.row)] * e.value;
                terms += std::fabs(pi[size_t(e.row)] * e.value);
            }
            if (std::fabs(g) <= 1e-9 * terms) continue;
            const double at_low = g * (g > 0 ? lp.lb[j] : lp.ub[j]),
                         at_high = g * (g > 0 ? lp.ub[j] : lp.lb[j]);
            low += at_low;
            high += at_high;
        }
        EXPECT_TRUE(low > -1e-9 * size || high < 1e-9 * size) << low << " " << high;
    }
    // A column solves its equations, and the rows have the same entries.
    void check_tableau()
    {
        const int n = lp.num_vars(), nv = n + lp.num_rows(), j = dice.range(0, nv - 1);
        if (simplex_is_basic(s, j)) return;
        std::vector<double> left(size_t(lp.num_rows()), 0), size(left);
        const auto add = [&](int k, double factor) { // column k of the body
            for (const LpEntry &e : k < n ? lp.cols[size_t(k)] : std::vector<LpEntry>{}) {
                const double a =
                    (lp.senses[size_t(e.row)] == '>' ? -e.value : e.value) * factor;
                left[size_t(e.row)] += a;
                size[size_t(e.row)] += std::fabs(a);
            }
            if (k >= n) {
                left[size_t(k - n)] += factor;
                size[size_t(k - n)] += std::fabs(factor);
            }
        };
        add(j, 1);
        const LiveEntries column = simplex_tableau_column(s, j);
        const int chosen = column.Count > 0 ? dice.range(0, column.Count - 1) : -1;
        for (int p = 0; p < column.Count; p++) add(column.Var[p], -column.Val[p]);
        for (size_t i = 0; i < left.size(); i++)
            EXPECT_LE(std::fabs(left[i]), 1e-7 * (1 + size[i])) << "row " << i;
        if (chosen < 0 || s->VStat.data[j] == AT_FIXED) return;
        const double entry = column.Val[chosen];
        const LiveEntries row = simplex_tableau_row(s, column.Var[chosen]);
        double held = 0;
        for (int p = 0; p < row.Count; p++)
            if (row.Var[p] == j) held = row.Val[p];
        EXPECT_NEAR(held, entry, 1e-6 * (1 + std::fabs(entry))) << j;
    }
#ifdef TVX_DEBUG
    // One call with its k-th request refused; false if it makes fewer.
    bool refuse(int kind, int64_t k, const NodeBasis &basis)
    {
        const int n = lp.num_vars();
        std::vector<int> ind(static_cast<size_t>(n));
        for (int j = 0; j < n; j++) ind[size_t(j)] = j;
        const std::vector<double> val(static_cast<size_t>(n), 1.0);
        const LiveRow row = {n, ind.data(), val.data(), '<', 1e6};
        std::vector<char> drop(size_t(lp.num_rows()), 0);
        for (int i = 0; i < lp.num_rows(); i++)
            drop[size_t(i)] = simplex_is_basic(s, n + i);
        change_bound();
        ResolveCall call;
        call.Changes = changes.data();
        call.NumChanges = int(changes.size());
        ResolveOutcome out;
        BranchOutcome branched;
        StrongBranch *branch = nullptr;
        bool same = false;
        if (kind == 5 && simplex_status(s) != TVX_OPTIMAL) return false;
        mem_fault_arm(k);
        int code = 0;
        switch (kind) {
        case 0:
            code = simplex_append_rows(s, &row, 1);
            break;
        case 1:
            code = simplex_delete_rows(s, drop.data());
            if (code == 0) code = simplex_resolve(s, call, &out);
            break;
        case 2:
            call.Basis = &basis;
            code = simplex_resolve(s, call, &out);
            break;
        case 3:
            code = simplex_clean(s, &same);
            if (code == 0) code = simplex_append_rows(s, &row, 1);
            if (code == 0) code = simplex_resolve(s, call, &out);
            break;
        case 4:
            code = simplex_go_live(s);
            if (code == 0) code = simplex_resolve(s, call, &out);
            break;
        default:
            code = strong_branch_open(s, &branch);
            for (int j = 0; code == 0 && j < n; j++)
                code = strong_branch_probe(branch, j, BranchSide::UP,
                                           std::floor(simplex_value(s, j)) + 1, 1e100,
                                           &branched);
            strong_branch_close(branch);
        }
        const bool hit = mem_fault_hits() > 0;
        mem_fault_arm(0);
        EXPECT_TRUE(code == 0 || (hit && code == TVX_ERROR_OUT_OF_MEMORY)) << code;
        return hit;
    }
#endif
    // Strong branching between two solves; the record is as before.
    void probe()
    {
        StrongBranch *branch = nullptr;
        ASSERT_EQ(strong_branch_open(s, &branch), 0);
        for (int k = dice.range(1, 4); k > 0; k--) {
            const int j = dice.range(0, lp.num_vars() - 1);
            const double bound = std::floor(simplex_value(s, j) + dice.range(-1, 1));
            const BranchSide side = dice.chance(50) ? BranchSide::DOWN : BranchSide::UP;
            const double low = lp.lb[size_t(j)], high = lp.ub[size_t(j)];
            if (side == BranchSide::DOWN)
                lp.ub[size_t(j)] = std::min(high, bound);
            else
                lp.lb[size_t(j)] = std::max(low, bound);
            BranchOutcome out;
            ASSERT_EQ(strong_branch_probe(branch, j, side, bound,
                                          dice.chance(50) ? 1e100 : dice.range(0, 4), &out),
                      0);
            judge_probe(out);
            lp.lb[size_t(j)] = low;
            lp.ub[size_t(j)] = high;
        }
        strong_branch_close(branch);
        EXPECT_EQ(live_faults(s), "") << "after strong branching";
    }
    void judge_probe(const BranchOutcome &out)
    {
        const LpSolution truth = fresh();
        if (truth.status != TVX_OPTIMAL && !infeasible(truth)) return;
        const double optimum = infeasible(truth) ? 1e100 : turned(truth.objval),
                     size = infeasible(truth) ? 1 : 1 + std::fabs(optimum);
        if (out.Status == TVX_OPTIMAL) {
            EXPECT_NEAR(out.Value, optimum, SAME * size) << "probe";
        } else if (out.Status == TVX_INFEASIBLE) {
            EXPECT_TRUE(infeasible(truth)) << "probe " << optimum;
        } else if (out.Status == TVX_CUTOFF) {
            EXPECT_GE(optimum, s->Cutoff + s->ObjOffset - SAME * size) << "probe";
        } else {
            EXPECT_LE(out.Value, optimum + SAME * size) << "probe";
        }
    }
    // The point is feasible and has the objective.
    void check_point() const
    {
        std::vector<double> x;
        for (int j = 0; j < lp.num_vars(); j++) {
            x.push_back(simplex_value(s, j));
            const double tol = 2 * s->FeasTol * std::max(1.0, user_unit(s, j));
            EXPECT_GE(x.back(), lp.lb[size_t(j)] - tol) << j;
            EXPECT_LE(x.back(), lp.ub[size_t(j)] + tol) << j;
        }
        EXPECT_NEAR(turned(double(lp_objective(&lp, x))), s->Obj + s->ObjOffset,
                    SAME * (1 + std::fabs(s->Obj)));
    }
};

void walk(uint64_t seed, Family family, int size, const Settings &settings)
{
    SCOPED_TRACE(seed);
    SCOPED_TRACE(settings_text(settings));
    Walk walk(seed, family, size, settings);
    if (!walk.begin()) return;
    for (int k = 0; k < STEPS && !testing::Test::HasFailure(); k++) {
        SCOPED_TRACE(k);
        walk.step();
        walk.solve_and_compare();
    }
    EXPECT_LE(walk.numeric, 1);
}

// Walks over LPs of every family, with drawn settings or the usual ones.
void walks(int usual_runs, bool drawn)
{
    const int runs = campaign("TARVEX_RESOLVE_RUNS", usual_runs),
              first = campaign("TARVEX_RESOLVE_SEED", 1);
    for (int k = first; k < first + runs && !testing::Test::HasFailure(); k++)
        for (const FamilyRow &row : all_families()) {
            // A violation within the tolerance of the working LP may move its objective far.
            if (row.generate == gen_badly_scaled) continue;
            SCOPED_TRACE(row.name);
            Dice dice(uint64_t(k) + 1000000);
            walk(uint64_t(k), row.generate, 5 + (k - 1) % 20,
                 drawn ? settings_draw(&dice) : Settings{});
        }
}
} // namespace

TEST(Resolve, a_live_record_follows_every_change)
{
    walks(30, false);
}

TEST(Resolve, a_live_record_follows_under_every_setting)
{
    walks(20, true);
}

#ifdef TVX_DEBUG
// Every request of a call is refused once: the call says so or gets by, and the record can be freed.
TEST(Resolve, memory_refused_leaves_a_record_that_can_be_freed)
{
    const int kinds = 6;
    for (const double quad : {0.0, 1.0}) {
        for (int kind = 0; kind < kinds; kind++) {
            SCOPED_TRACE(kind);
            const int64_t held = mem_blocks_held();
            bool refused = true;
            for (int64_t k = 1; refused; k++) {
                Walk walk(3, gen_multi_period, 10, {{"Quad", quad}});
                ASSERT_TRUE(walk.begin());
                for (int step = 0; step < 4; step++) {
                    walk.change_bound();
                    walk.solve_and_compare();
                }
                NodeBasis basis;
                ASSERT_EQ(simplex_save_basis(walk.s, &basis), 0);
                refused = walk.refuse(kind, k, basis);
                if (HasFailure()) return;
            }
            EXPECT_EQ(mem_blocks_held(), held);
        }
    }
}
#endif

// min x + w    x + w + 1e-10 y >= 5    y - z <= 0    0 <= x <= 1,  0 <= w <= 10,  0 <= y, z
TEST(Resolve, a_tiny_entry_of_a_variable_without_bound_allows_no_proof)
{
    const double none = LP_INFINITY;
    const LpModel lp = lp_make({{1, 0, 1}, {1, 0, 10}, {0, 0, none}, {0, 0, none}},
                               {{{1, 1, 1e-10}, '>', 5}, {{0, 0, 1, -1}, '<', 0}});
    TestEnv env;
    ASSERT_EQ(TVXsetintparam(env.env, "ScaleFlag", 0), 0);
    TestModel model(lp_load(env.env, &lp));
    sopt *s = nullptr;
    ASSERT_EQ(SimplexOptimize(&s, model.model->body, model.model->env, {}), 0);
    ASSERT_EQ(simplex_go_live(s), 0);
    const BoundChange fixed = {1, 0, 0};
    ResolveOutcome out;
    ASSERT_EQ(simplex_resolve(s, {&fixed, 1}, &out), 0);
    EXPECT_EQ(out.Status, TVX_OPTIMAL) << "with y = 4e10";
    simplex_free(s);
}
