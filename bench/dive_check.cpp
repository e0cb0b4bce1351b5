// dive_check.cpp -- re-solves of a live record against fresh solves of the same LP
#include "dive_lp.h"
#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{
constexpr double SAME = 1e-6;     // relative difference of objectives that counts as none
constexpr double BELOW = 1e-5;    // relative, of probes
constexpr int PROBED = 4;         // variables of a point for strong branching,
constexpr double INTEGRAL = 1e-5; // farther from an integer than this, the usual IntFeasTol

// Solves of one kind, those that disagree with the fresh one, and those without an answer.
struct Tally {
    const char *name;
    int solves = 0, wrong = 0, none = 0;
    void judge(const ResolveOutcome &out, int status, double objective)
    {
        solves++;
        const bool unanswered = out.Status == TVX_NUMERIC || status == TVX_NUMERIC;
        none += unanswered;
        const bool same = out.Status == status &&
                          (status != TVX_OPTIMAL || std::fabs(out.Value - objective) <=
                                                        SAME * (1 + std::fabs(objective)));
        if (!same && !unanswered) {
            wrong++;
            fprintf(stderr, "%s: %d %.10g, fresh %d %.10g\n", name, out.Status, out.Value,
                    status, objective);
        }
    }
    // At a limit the value is a bound.
    void judge_probe(const BranchOutcome &out, int status, double objective)
    {
        const double size = 1 + std::fabs(objective);
        const bool near = out.Status == TVX_OPTIMAL && status == TVX_OPTIMAL &&
                          out.Value >= objective - BELOW * size;
        if (out.Status == TVX_ITERATION_LIMIT || near) {
            solves++;
            const bool valid =
                status == TVX_INFEASIBLE || out.Value <= objective + SAME * size;
            if (valid) return;
            wrong++;
            fprintf(stderr, "%s: bound %.10g, fresh %d %.10g\n", name, out.Value, status,
                    objective);
        } else
            judge({out.Status, out.Value, out.Value, out.Iterations}, status, objective);
    }
};

// A fresh solve of a body within the bounds in force.
void fresh(Lp *lp, ModelBody *body, int *status, double *objective)
{
    sopt *s = nullptr;
    for (int j = 0; j < body->numvars; j++) {
        body->lb.data[j] = lp->lower[size_t(j)];
        body->ub.data[j] = lp->upper[size_t(j)];
    }
    if (int code = SimplexOptimize(&s, body, lp->env, {})) fail("fresh", code);
    *status = simplex_status(s);
    *objective = simplex_objective(s);
    simplex_free(s);
}

void check_bases(Lp *lp, double objective, std::mt19937 *rng, Tally *tally)
{
    const int n = lp->body->numvars, m = lp->body->numconstrs;
    for (int k = 0; k < 10; k++) {
        NodeBasis basis;
        if (simplex_save_basis(lp->record, &basis)) fail("save", 0);
        for (int v = 0; v < n + m; v++) basis.Statuses.data[v] = char(v < n);
        for (int i = 0; i < m; i++) basis.Weights.data[i] = 1;
        for (int c = pick(rng, std::min(m, n) + 1); c > 0; c--) {
            const int j = pick(rng, n), i = pick(rng, m);
            if (basis.Statuses.data[j] == 0 || basis.Statuses.data[n + i] != 0) continue;
            basis.Statuses.data[j] = 0;
            basis.Statuses.data[n + i] = 1;
        }
        tally->judge(lp->solve({}, nullptr, 1e100, &basis), TVX_OPTIMAL, objective);
    }
}

void check_changes(Lp *lp, ModelBody *body, std::mt19937 *rng, Tally *tally)
{
    const std::vector<double> low = lp->lower, high = lp->upper;
    const int n = body->numvars;
    for (int k = 0; k < 10; k++) {
        std::vector<Bounds> changes, back;
        for (int c = pick(rng, 10); c >= 0; c--) {
            const int j = pick(rng, n);
            const double x = simplex_value(lp->record, j), step = pick(rng, 3) - 1;
            const Bounds b = {
                j, std::max(low[size_t(j)], std::floor(x + step)),
                std::min(high[size_t(j)], std::floor(x + step) + pick(rng, 2))};
            if (b.lower > b.upper) continue;
            changes.push_back(b);
            back.push_back({j, low[size_t(j)], high[size_t(j)]});
        }
        const ResolveOutcome out = lp->solve(changes, nullptr);
        int status = 0;
        double objective = 0;
        fresh(lp, body, &status, &objective);
        tally->judge(out, status, objective);
        if (k % 2) lp->solve(back, nullptr); // else the next changes come on top
    }
    lp->solve(lp->changes_to(low, high), nullptr);
}

// Strong branching of fractional variables at the point, with few iterations, more, and to the end.
void check_probes(Lp *lp, ModelBody *body, Tally *tally)
{
    StrongBranch *branch = nullptr;
    if (strong_branch_open(lp->record, &branch)) fail("open", 0);
    int left = PROBED;
    for (int j = 0; j < body->numvars && branch && left > 0; j++) {
        const double x = simplex_value(lp->record, j);
        if (!lp->integer(j) || std::fabs(x - std::round(x)) < INTEGRAL) continue;
        left--;
        for (const bool up : {false, true}) {
            const Bounds before = {j, lp->lower[size_t(j)], lp->upper[size_t(j)]},
                         changed = lp->branch(j, x, up);
            lp->lower[size_t(j)] = changed.lower;
            lp->upper[size_t(j)] = changed.upper;
            int status = 0;
            double objective = 0;
            fresh(lp, body, &status, &objective);
            lp->lower[size_t(j)] = before.lower;
            lp->upper[size_t(j)] = before.upper;
            for (const double limit : {5.0, 50.0, 1e100}) {
                BranchOutcome out;
                if (strong_branch_probe(branch, j, up ? BranchSide::UP : BranchSide::DOWN,
                                        up ? changed.lower : changed.upper, limit, &out))
                    fail("probe", j);
                tally->judge_probe(out, status, objective);
            }
        }
    }
    strong_branch_close(branch);
}

void check_rows(Lp *lp, TVXmodel *model, Tally *tally)
{
    for (int round = 0; round < 3; round++) {
        const std::vector<Cut> cuts = cuts_of_point(lp);
        if (cuts.empty()) return;
        for (const Cut &cut : cuts)
            if (TVXaddconstr(model, int(cut.ind.size()), cut.ind.data(), cut.val.data(),
                             '<', cut.rhs, nullptr))
                fail("row", 0);
        if (TVXupdatemodel(model)) fail("update", 0);
        append_cuts(lp, cuts);
        const ResolveOutcome out = lp->solve({}, nullptr);
        int status = 0;
        double objective = 0;
        fresh(lp, model->body, &status, &objective);
        tally->judge(out, status, objective);
        if (out.Status != TVX_OPTIMAL) return;
    }
    const double objective = lp->solve({}, nullptr).Value;
    delete_slack_cuts(lp);
    tally->judge(lp->solve({}, nullptr), TVX_OPTIMAL, objective);
}
} // namespace

void check(Lp *lp, TVXmodel *model)
{
    std::mt19937 rng(1);
    TVXmodel *copy = TVXcopymodel(model);
    if (!copy) fail("copy", 0);
    Tally bases{"bases"}, changes{"changes"}, probes{"probes"}, rows{"rows"};
    check_bases(lp, simplex_objective(lp->record), &rng, &bases);
    check_changes(lp, copy->body, &rng, &changes);
    check_probes(lp, copy->body, &probes);
    check_rows(lp, copy, &rows);
    for (const Tally *t : {&bases, &changes, &probes, &rows})
        printf("\"%s\": {\"solves\": %d, \"wrong\": %d, \"none\": %d}, ", t->name,
               t->solves, t->wrong, t->none);
    TVXfreemodel(copy);
}
