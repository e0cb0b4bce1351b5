// resolve_test.cpp -- a live record under random changes against fresh solves of the same LP
#include "runtime/memory.h"
#include "simplex/live_check.h"
#include "simplex/resolve.h"
#include "support/inside.h"
#include "support/settings.h"
#include "support/structured_gen.h"
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <utility>

namespace
{
constexpr double SAME = 1e-6;  // relative difference of objectives that counts as none
constexpr double NONE = 1e100; // no limit, and the value of an infeasible LP
constexpr int STEPS = 40;      // of a walk
#ifdef TVX_DEBUG
constexpr int PROBES = 4; // the kind of refuse() that is strong branching
#endif

// The LP as it should be, beside the live record that follows it.
struct Walk {
    Dice dice;
    TestEnv env; // of the record and of the fresh solves
    LpModel lp;
    std::vector<double> lb, ub; // of the root: bounds only tighten against these
    TestModel model;
    sopt *s = nullptr;
    std::vector<BoundChange> changes;
    std::vector<NodeBasis> saved;
    const NodeBasis *start = nullptr; // of the next solve
    int numeric = 0;                  // solves without an answer

    Walk(uint64_t seed, Family family, int size, const Settings &settings)
        : dice(seed), lp(turn_columns(&dice, family(&dice, size).lp)), lb(lp.lb), ub(lp.ub),
          model(lp_load(env.env, &lp))
    {
        EXPECT_EQ(settings_apply(TVXgetenv(model), settings), 0);
    }
    // Some columns change their sign, so that they have only an upper bound; few become free.
    static LpModel turn_columns(Dice *dice, LpModel lp)
    {
        for (size_t j = dice->chance(50) ? 0 : lp.cols.size(); j < lp.cols.size(); j++) {
            if (dice->chance(15)) lp.lb[j] = -(lp.ub[j] = LP_INFINITY);
            if (!dice->chance(30)) continue;
            for (LpEntry &e : lp.cols[j]) e.value = -e.value;
            lp.obj[j] = -lp.obj[j];
            lp.lb[j] = -std::exchange(lp.ub[j], -lp.lb[j]);
        }
        return lp;
    }
    ~Walk() { simplex_free(s); }

    bool begin()
    {
        EXPECT_EQ(SimplexOptimize(&s, model.model->body, model.model->env, {}), 0);
        if (simplex_status(s) != TVX_OPTIMAL) return false;
        EXPECT_EQ(simplex_go_live(s), 0);
        return true;
    }
    double value_of(int j) const // there need not be a point
    {
        return std::clamp(simplex_value(s, j), -1e6, 1e6);
    }
    // Bounds around the value of the variable, as a branch or a fixing sets them, or those of the root again.
    void change_bound()
    {
        const int j = dice.range(0, lp.num_vars() - 1);
        const double whole = std::floor(value_of(j) + dice.range(-1, 1));
        const int kind = dice.range(0, 9); // 0 below, 1 above, 2 fixed, others the root's
        if (kind != 1) lp.ub[j] = kind > 2 ? ub[j] : std::clamp(whole, lb[j], ub[j]);
        if (kind != 0)
            lp.lb[j] = kind > 2 ? lb[j] : std::clamp(whole + (kind == 1), lb[j], ub[j]);
        changes.push_back({j, lp.lb[j], lp.ub[j]});
    }
    void append_rows()
    {
        std::vector<std::vector<int>> ind(dice.range(1, 4));
        std::vector<std::vector<double>> val(ind.size());
        std::vector<LiveRow> rows;
        for (size_t k = 0; k < ind.size(); k++) {
            double activity = 0;
            std::vector<std::pair<int, double>> entries; // zeros, too
            for (int j = 0; j < lp.num_vars(); j++) {
                if (!dice.chance(25)) continue;
                ind[k].push_back(j);
                val[k].push_back(dice.range(-4, 4));
                entries.emplace_back(j, val[k].back());
                activity += val[k].back() * value_of(j);
            }
            const char sense = dice.chance(17) ? '=' : '<';
            double rhs = activity;
            if (sense == '<') rhs += dice.range(-2, 2) * 0.25 * std::fabs(activity);
            rows.push_back({int(ind[k].size()), ind[k].data(), val[k].data(), sense, rhs});
            lp_add_row_entries(&lp, entries, sense, rhs);
        }
        ASSERT_EQ(simplex_append_rows(s, rows.data(), int(rows.size())), 0);
    }
    // Some of the rows with a basic slack.
    void delete_rows()
    {
        std::vector<char> drop;
        std::vector<int> number; // of a row that stays
        const int share = dice.chance(50) ? 33 : 5;
        LpModel left = lp;
        left.senses.clear();
        left.rhs.clear();
        for (int i = 0; i < lp.num_rows(); i++) {
            drop.push_back(simplex_is_basic(s, lp.num_vars() + i) && dice.chance(share));
            number.push_back(drop[i] ? -1 : lp_add_row(&left, lp.senses[i], lp.rhs[i]));
        }
        for (std::vector<LpEntry> &col : left.cols) {
            std::erase_if(col, [&](const LpEntry &e) { return number[e.row] < 0; });
            for (LpEntry &e : col) e.row = number[e.row];
        }
        lp = left;
        ASSERT_EQ(simplex_delete_rows(s, drop.data()), 0);
        saved.clear();
    }
    // A point to be accepted; in the end there is none better.
    void clean()
    {
        CleanOutcome outcome = CleanOutcome::SOLVE_AGAIN;
        ResolveOutcome again;
        for (int k = 0; k < 8 && outcome == CleanOutcome::SOLVE_AGAIN; k++) {
            ASSERT_EQ(simplex_clean(s, &outcome), 0);
            if (outcome == CleanOutcome::OPTIMAL) check_point();
            if (outcome == CleanOutcome::SOLVE_AGAIN) {
                ASSERT_EQ(simplex_resolve(s, {}, &again), 0);
            }
        }
        EXPECT_NE(outcome, CleanOutcome::SOLVE_AGAIN);
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
            NodeBasis &basis = saved[dice.range(0, int(saved.size()) - 1)];
            // one that does not fit, as after rows were deleted carelessly
            if (dice.chance(20))
                basis.Statuses[dice.range(0, int(basis.Statuses.size) - 1)] = 1;
            if (dice.chance(50)) s->Env->Quad = -1; // back to double precision
            start = &basis;
        }
        if (action == 4) clean();
        if (action == 5) {
            const int j = dice.range(0, lp.num_vars() - 1);
            lp.obj[j] = dice.range(-9, 9);
            simplex_change_cost(s, j, lp.sense * lp.obj[j]);
        }
        for (int k = dice.range(0, 3); k > 0; k--) change_bound();
    }
    // The least value by a fresh solve, with presolve if that tells: 1e100 when infeasible, -1e100 when unbounded, NAN
    // when there is nothing to compare with.
    double optimum()
    {
        for (const int presolve : {-1, 0}) {
            TestModel other(lp_load(env.env, &lp));
            LpSolution solution;
            EXPECT_EQ(TVXsetintparam(TVXgetenv(other), "Presolve", presolve), 0);
            EXPECT_EQ(lp_solve(other, &solution), 0);
            if (solution.status == TVX_INFEASIBLE) return NONE;
            if (solution.status == TVX_UNBOUNDED) return -NONE;
            if (solution.status == TVX_OPTIMAL) return lp.sense * solution.objval;
        }
        return NAN;
    }
    // What a re-solve or a probe says.
    void judge(int status, double value, double optimum, double cutoff)
    {
        const double noise =
            SAME * (std::fabs(optimum) < NONE ? 1 + std::fabs(optimum) : 1);
        switch (status) {
        case TVX_NUMERIC: // the caller has to solve in another way; rare
            numeric++;
            break;
        case TVX_UNBOUNDED: // without the rows that were deleted
            EXPECT_EQ(optimum, -NONE);
            break;
        case TVX_OPTIMAL:
            EXPECT_NEAR(value, optimum, noise);
            EXPECT_LE(value, cutoff + noise);
            break;
        case TVX_INFEASIBLE:
            EXPECT_EQ(optimum, NONE);
            break;
        case TVX_CUTOFF:
            EXPECT_GE(optimum, cutoff - noise);
            break;
        default:
            EXPECT_EQ(status, TVX_ITERATION_LIMIT);
            EXPECT_LE(value, optimum + noise);
        }
    }
    ResolveCall call_with_changes() const
    {
        ResolveCall call;
        call.Changes = changes.data();
        call.NumChanges = int(changes.size());
        call.Basis = start;
        return call;
    }
    void solve_and_compare()
    {
        const double truth = optimum();
        if (std::isnan(truth)) return;
        ResolveCall call = call_with_changes();
        const int kind = dice.range(0, 3);
        if (kind == 0) call.Iterations = dice.range(0, 4);
        if (kind == 1) {
            const double from = truth == NONE ? dice.range(-9, 9) : truth;
            call.Cutoff = from + (1 + std::fabs(from)) * dice.range(-3, 3) * 0.1;
        }
        ResolveOutcome out;
        ASSERT_EQ(simplex_resolve(s, call, &out), 0);
        changes.clear();
        judge(out.Status, out.Value, truth, call.Cutoff);
        if (out.Status == TVX_ITERATION_LIMIT) {
            EXPECT_LE(out.Iterations, call.Iterations);
        }
        EXPECT_EQ(live_faults(s), "") << "status " << out.Status;
        if (out.Status == TVX_INFEASIBLE) check_proof();
        if (out.Status != TVX_OPTIMAL) return;
        check_point();
        if (simplex_has_factor(s)) check_tableau();
        if (dice.chance(20)) probe();
        if (dice.chance(20)) fix_and_release();
    }
    // A nonbasic variable is fixed where it is, and released: both without a pivot.
    void fix_and_release()
    {
        const int j = dice.range(0, lp.num_vars() - 1);
        if (simplex_is_basic(s, j) || s->Live != LIVE_FRESH) return;
        const double x = simplex_value(s, j);
        for (const BoundChange &change : {BoundChange{j, x, x}, {j, lp.lb[j], lp.ub[j]}}) {
            ResolveOutcome out;
            ASSERT_EQ(simplex_resolve(s, {&change, 1}, &out), 0);
            EXPECT_TRUE(out.Status == TVX_OPTIMAL && out.Iterations == 0)
                << out.Status << " " << out.Iterations << " of " << j;
        }
    }
    // A column of the tableau solves its equations, and the rows have the same entries.
    void check_tableau()
    {
        const int n = lp.num_vars(), j = dice.range(0, n + lp.num_rows() - 1);
        if (simplex_is_basic(s, j)) return;
        std::vector<double> left(lp.rhs.size(), 0), size(left);
        const auto add = [&](int k, double factor) { // column k of the body
            std::vector<LpEntry> column = {{k - n, 1}};
            if (k < n) column = lp.cols[k];
            for (const LpEntry &e : column) {
                const bool turned = k < n && lp.senses[e.row] == '>';
                left[e.row] += (turned ? -e.value : e.value) * factor;
                size[e.row] += std::fabs(e.value * factor);
            }
        };
        add(j, 1);
        const LiveEntries column = simplex_tableau_column(s, j);
        for (int p = 0; p < column.Count; p++) add(column.Var[p], -column.Val[p]);
        for (size_t i = 0; i < left.size(); i++)
            EXPECT_LE(std::fabs(left[i]), 1e-7 * (1 + size[i])) << "row " << i;
        if (column.Count == 0 || s->VStat[j] == AT_FIXED) return;
        const int chosen = dice.range(0, column.Count - 1);
        const double entry = column.Val[chosen];
        const LiveEntries row = simplex_tableau_row(s, column.Var[chosen]);
        const int *end = row.Var + row.Count, *at = std::find(row.Var, end, j);
        const double held = at < end ? row.Val[at - row.Var] : 0;
        EXPECT_NEAR(held, entry, 1e-6 * (1 + std::fabs(entry))) << j;
    }
    // The multipliers, if there are any, have no point within the bounds: y (A x - a) with activities a is not 0.
    void check_proof()
    {
        const LiveVector y = simplex_farkas_row(s);
        if (y.Count == 0) return;
        double low = 0, high = 0, size = 1, largest = 0; // the range, and of its terms
        const auto add = [&](double factor, double from, double to) {
            low += factor * (factor > 0 ? from : to);
            high += factor * (factor > 0 ? to : from);
        };
        std::vector<double> pi(lp.rhs.size());
        for (int k = 0; k < y.Count; k++) {
            const int i = y.Ind[k]; // a row with '>' is turned in the body
            pi[i] = y.Val[i] * y.Scale[i] * y.Factor * (lp.senses[i] == '>' ? -1 : 1);
            largest = std::max(largest, std::fabs(pi[i]));
        }
        for (double &value : pi) // what is rounding does not count
            if (std::fabs(value) < 1e-12 * largest) value = 0;
        for (size_t i = 0; i < pi.size(); i++) {
            const bool open = lp.senses[i] != '=' && std::fabs(pi[i]) > 1e-9 * largest;
            const double rhs = lp.rhs[i];
            add(-pi[i], open && lp.senses[i] == '<' ? -NONE : rhs,
                open && lp.senses[i] == '>' ? NONE : rhs);
            size += std::fabs(pi[i] * rhs);
        }
        LpModel free_of_cost = lp;
        free_of_cost.obj.assign(lp.obj.size(), 0);
        const LpSums sums = lp_sums(&free_of_cost, lp.obj, pi);
        for (size_t j = 0; j < lp.obj.size(); j++) {
            const double g = -double(sums.costs[j].value);
            if (std::fabs(g) > 1e-9 * double(sums.costs[j].size))
                add(g, lp.lb[j], lp.ub[j]);
        }
        EXPECT_TRUE(low > -1e-9 * size || high < 1e-9 * size) << low << " " << high;
    }
#ifdef TVX_DEBUG
    // Calls with their k-th request refused; false if they make fewer.
    bool refuse(int kind, int64_t k, const NodeBasis &basis)
    {
        const int n = lp.num_vars();
        std::vector<int> ind(n);
        std::iota(ind.begin(), ind.end(), 0);
        const std::vector<double> val(ind.size(), 1.0);
        const LiveRow row = {n, ind.data(), val.data(), '<', 1e6};
        std::vector<char> drop;
        for (int i = 0; i < lp.num_rows(); i++) drop.push_back(simplex_is_basic(s, n + i));
        change_bound();
        ResolveOutcome out;
        BranchOutcome branched;
        StrongBranch *branch = nullptr;
        CleanOutcome cleaned;
        int code = 0;
        if (kind == PROBES && simplex_status(s) != TVX_OPTIMAL) return false;
        mem_fault_arm(k);
        if (kind == 0) code = simplex_delete_rows(s, drop.data());
        start = kind == 1 ? &basis : nullptr;
        if (kind == 2) code = simplex_clean(s, &cleaned);
        if (kind == 2 && !code) code = simplex_append_rows(s, &row, 1);
        if (kind == 3) code = simplex_go_live(s);
        if (kind == PROBES) {
            code = strong_branch_open(s, &branch);
            for (int j = 0; code == 0 && j < n; j++)
                code = strong_branch_probe(branch, j, BranchSide::UP,
                                           std::floor(simplex_value(s, j)) + 1, NONE,
                                           &branched);
            strong_branch_close(branch);
        } else if (!code) {
            code = simplex_resolve(s, call_with_changes(), &out);
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
            const double bound = std::floor(simplex_value(s, j) + dice.range(-1, 1)),
                         most = dice.chance(50) ? NONE : dice.range(0, 4);
            const bool down = dice.chance(50);
            double *side = down ? &lp.ub[j] : &lp.lb[j];
            const double before = std::exchange(*side, down ? std::min(*side, bound)
                                                            : std::max(*side, bound));
            BranchOutcome out;
            ASSERT_EQ(strong_branch_probe(branch, j,
                                          down ? BranchSide::DOWN : BranchSide::UP, bound,
                                          most, &out),
                      0);
            if (const double truth = optimum(); !std::isnan(truth))
                judge(out.Status, out.Value, truth, s->Cutoff + s->ObjOffset);
            *side = before;
        }
        strong_branch_close(branch);
        EXPECT_EQ(live_faults(s), "") << "after strong branching";
    }
    // The point is feasible and has the objective, the multipliers give the reduced costs.
    void check_point() const
    {
        std::vector<double> x;
        for (int j = 0; j < lp.num_vars(); j++) x.push_back(simplex_value(s, j));
        const LpMeasures m = lp_measure(&lp, x, {});
        for (int j = 0; j < lp.num_vars(); j++)
            EXPECT_LE(m.bound[j].value, 2 * s->FeasTol * std::max(1.0, user_unit(s, j)))
                << j;
        EXPECT_NEAR(lp.sense * double(m.sums.objective.value), s->Obj + s->ObjOffset,
                    SAME * (1 + std::fabs(s->Obj)));
        std::vector<double> pi;
        for (int i = 0; i < lp.num_rows(); i++)
            pi.push_back(lp.sense * simplex_pi(s, i) * (lp.senses[i] == '>' ? -1 : 1));
        const LpSums sums = lp_sums(&lp, x, pi);
        for (int j = 0; j < lp.num_vars(); j++)
            EXPECT_NEAR(lp.sense * double(sums.costs[j].value), simplex_reduced_cost(s, j),
                        SAME * (1 + double(sums.costs[j].size)))
                << "reduced cost " << j;
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
    const int64_t held = mem_blocks_held();
    for (int kind = 0; kind <= PROBES; kind++) {
        SCOPED_TRACE(kind);
        int finished = 0; // runs in double and in extended precision
        for (int64_t k = 1; finished < 2 && !HasFailure(); k++) {
            Walk walk(3, gen_multi_period, 10, {{"Quad", finished}});
            ASSERT_TRUE(walk.begin());
            for (int step = 0; step < 4; step++) {
                walk.change_bound();
                walk.solve_and_compare();
            }
            NodeBasis basis;
            ASSERT_EQ(simplex_save_basis(walk.s, &basis), 0);
            if (walk.refuse(kind, k, basis)) continue;
            finished++;
            k = 0;
        }
        EXPECT_EQ(mem_blocks_held(), held);
    }
}
#endif
