// dive_probe.cpp -- what a re-solve costs: the relaxation of a MIP under the changes that a search makes
//
//   tarvex_dive [Name=Value ...] [--seconds S] [--by optimize] MODEL
//
// The relaxation is solved without presolve. Then, with seeded choices: dives (one bound of the most fractional variable
// at a time, the other side where a branch is infeasible), between them calls that need no pivot, jumps back to a node of the dive with its basis and the other
// branch, and rounds of Gomory cuts that are appended and, when their slack is basic again, deleted. With
// `--by optimize` dives and jumps use SimplexOptimize on the record as an ordinary caller would, for comparison; there are
// no rounds of cuts then. Written is one line of JSON: for each kind of call the number of calls, iterations,
// factorisations and processor seconds, and the least squares fit seconds = fixed + pivot * iterations over its calls.
// With `--tree N` instead: a depth-first branch and bound without anything else, at most N nodes: nodes per second.
// With `--check` instead: ten random start bases, ten times random changes of bounds, rows appended: each re-solve is
// compared with a fresh solve of the same LP; their numbers, the disagreements, and solves without an answer are told.
// Exit code 0, or 1 with a line on standard error.
#include "model/model.h"
#include "simplex/resolve.h"
#include "tarvex.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

namespace
{
constexpr double FRACTION = 1e-6; // distance from an integer that counts as fractional
constexpr int DEPTH = 60;         // levels of a dive
constexpr int JUMPS = 10;         // jumps after a dive
constexpr int ROUNDS = 5, CUTS = 10;

double processor_time()
{
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

// Calls of one kind, with the sums for the fit.
struct Kind {
    const char *name = "";
    explicit Kind(const char *n) : name(n) {}
    double calls = 0, iterations = 0, factored = 0, seconds = 0;
    double xx = 0, xy = 0;

    void add(double iters, double factors, double time)
    {
        calls++;
        iterations += iters;
        factored += factors;
        seconds += time;
        xx += iters * iters;
        xy += iters * time;
    }
    void print() const
    {
        const double det = calls * xx - iterations * iterations;
        const double slope = det > 0 ? (calls * xy - iterations * seconds) / det : 0;
        const double fixed = calls > 0 ? (seconds - slope * iterations) / calls : 0;
        printf("\"%s\": {\"calls\": %.0f, \"iterations\": %.0f, \"factored\": %.0f, "
               "\"seconds\": %.6f, "
               "\"fixed_us\": %.3f, \"pivot_us\": %.3f}, ",
               name, calls, iterations, factored, seconds, 1e6 * fixed, 1e6 * slope);
    }
};

struct Bounds {
    int var;
    double lower, upper;
};

// The relaxation and the ways to solve it again.
struct Lp {
    const ModelBody *body = nullptr;
    TVXenv *env = nullptr;
    sopt *record = nullptr;
    bool live = true;
    std::vector<double> lower, upper; // bounds in force
    double factored = 0;

    int fail(const char *what, int code) const
    {
        fprintf(stderr, "%s: %d\n", what, code);
        exit(1);
    }
    ResolveOutcome solve(const std::vector<Bounds> &changes, Kind *kind,
                         double cutoff = 1e100)
    {
        for (const Bounds &b : changes) {
            lower[size_t(b.var)] = b.lower;
            upper[size_t(b.var)] = b.upper;
        }
        const double before = simplex_factorizations(record), start = processor_time();
        ResolveOutcome outcome = live ? resolve(changes, cutoff) : optimize(changes);
        const double factors = simplex_factorizations(record) - (live ? before : 0);
        if (kind) kind->add(outcome.Iterations, factors, processor_time() - start);
        return outcome;
    }
    ResolveOutcome resolve(const std::vector<Bounds> &changes, double cutoff)
    {
        std::vector<BoundChange> list;
        for (const Bounds &b : changes) list.push_back({b.var, b.lower, b.upper});
        ResolveCall call;
        call.Changes = list.data();
        call.NumChanges = int(list.size());
        call.Cutoff = cutoff;
        ResolveOutcome outcome;
        if (int code = simplex_resolve(record, call, &outcome)) fail("resolve", code);
        return outcome;
    }
    ResolveOutcome optimize(const std::vector<Bounds> &changes)
    {
        for (const Bounds &b : changes)
            if (!simplex_change_bound(record, b.var, b.lower, b.upper))
                fail("bound", b.var);
        SimplexCall call;
        call.Method = METHOD_DUAL;
        if (int code = SimplexOptimize(&record, body, env, call)) fail("optimize", code);
        return {simplex_status(record), simplex_objective(record),
                simplex_iterations(record)};
    }
    bool integer(int j) const
    {
        return body->vtypes.size > 0 && body->vtypes.data[j] != 'C';
    }
    // The integer variable farthest from an integer, or -1.
    int most_fractional(double *x) const
    {
        int best = -1;
        double most = FRACTION;
        for (int j = 0; j < body->numvars; j++) {
            if (!integer(j) || !simplex_is_basic(record, j)) continue;
            const double value = simplex_value(record, j),
                         gap = std::fabs(value - std::round(value));
            if (gap <= most) continue;
            most = gap;
            best = j;
            *x = value;
        }
        return best;
    }
    Bounds branch(int j, double x, bool up) const
    {
        return up ? Bounds{j, std::ceil(x), upper[size_t(j)]}
                  : Bounds{j, lower[size_t(j)], std::floor(x)};
    }
};

int pick(std::mt19937 *rng, int width)
{
    return int((*rng)() % unsigned(width));
}

// ---- Dives and jumps ----

struct Node { // before it was branched
    int var;
    double x;
    bool up; // the branch taken
    NodeBasis basis;
    std::vector<int> statuses; // of all variables, for SimplexOptimize
};

// A nonbasic variable is fixed where it is, and released: what a call costs without any pivot.
void idle(Lp *lp, Kind *idles, std::mt19937 *rng)
{
    const int j = pick(rng, lp->body->numvars);
    if (!lp->live || simplex_is_basic(lp->record, j)) return;
    const Bounds before = {j, lp->lower[size_t(j)], lp->upper[size_t(j)]};
    const double x = simplex_value(lp->record, j);
    lp->solve({{j, x, x}}, idles);
    lp->solve({before}, idles);
}

void dive(Lp *lp, Kind *dives, Kind *jumps, Kind *idles, std::mt19937 *rng)
{
    std::vector<Node> path;
    std::vector<Bounds> undo;
    for (int level = 0; level < DEPTH; level++) {
        double x = 0;
        const int j = lp->most_fractional(&x);
        if (j < 0) break;
        const bool up = x - std::floor(x) > 0.5;
        undo.push_back({j, lp->lower[size_t(j)], lp->upper[size_t(j)]});
        path.push_back({j, x, up, {}, {}});
        if (lp->live && simplex_save_basis(lp->record, &path.back().basis))
            lp->fail("save", 0);
        ResolveOutcome outcome = lp->solve({lp->branch(j, x, up)}, dives);
        if (outcome.Status != TVX_OPTIMAL) {
            lp->lower[size_t(j)] = undo.back().lower;
            lp->upper[size_t(j)] = undo.back().upper;
            path.back().up = !up;
            outcome = lp->solve({lp->branch(j, x, !up)}, dives);
            if (outcome.Status != TVX_OPTIMAL) break;
        }
        idle(lp, idles, rng);
    }
    // back to nodes of the dive, the other branch there
    std::vector<Bounds> own; // bounds of the path, by level
    for (const Node &node : path)
        own.push_back({node.var, lp->lower[size_t(node.var)], lp->upper[size_t(node.var)]});
    for (int k = 0; k < JUMPS && !path.empty(); k++) {
        const size_t level = (*rng)() % path.size();
        std::vector<double> low = lp->lower, high = lp->upper;
        for (size_t u = undo.size(); u-- > 0;) {
            low[size_t(undo[u].var)] = undo[u].lower;
            high[size_t(undo[u].var)] = undo[u].upper;
        }
        for (size_t u = 0; u < level; u++) {
            const Bounds b = {path[u].var,
                              path[u].up ? std::ceil(path[u].x) : undo[u].lower,
                              path[u].up ? undo[u].upper : std::floor(path[u].x)};
            low[size_t(b.var)] = b.lower;
            high[size_t(b.var)] = b.upper;
        }
        const Node &node = path[level];
        (node.up ? high : low)[size_t(node.var)] =
            node.up ? std::floor(node.x) : std::ceil(node.x);
        std::vector<Bounds> changes;
        for (int j = 0; j < lp->body->numvars; j++)
            if (low[size_t(j)] != lp->lower[size_t(j)] ||
                high[size_t(j)] != lp->upper[size_t(j)])
                changes.push_back({j, low[size_t(j)], high[size_t(j)]});
        const double start = processor_time();
        if (lp->live && simplex_load_basis(lp->record, node.basis)) lp->fail("load", 0);
        const double load = processor_time() - start;
        lp->solve(changes, jumps);
        jumps->seconds += load;
    }
    std::vector<Bounds> back;
    for (size_t u = undo.size(); u-- > 0;) back.push_back(undo[u]);
    lp->solve(back, nullptr);
}

// ---- Rounds of cuts ----

struct Cut {
    std::vector<int> ind;
    std::vector<double> val;
    double rhs = 0;
};

// The Gomory mixed-integer cut of the row of basic integer variable k, on the columns, or an empty one.
Cut gomory_cut(const Lp *lp, int k)
{
    const ModelBody *body = lp->body;
    const int n = body->numvars, m = simplex_num_rows(lp->record);
    const LiveVector y = simplex_inverse_row(lp->record, k);
    std::vector<double> g(size_t(n), 0.0), rows(size_t(m), 0.0);
    double rhs = 0;
    for (int p = 0; p < y.Count; p++) {
        const int i = y.Ind[p];
        if (i >= body->numconstrs) return {}; // a cut: its row is not in the body
        rows[size_t(i)] = y.Val[i] * y.Scale[i] * y.Factor;
        rhs += rows[size_t(i)] * body->rhs.data[i];
    }
    for (int j = 0; j < n; j++)
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            g[size_t(j)] += rows[size_t(body->vind.data[p])] * body->vval.data[p];
    // shifted to the bounds at which the nonbasics are: x = l + t or u - t
    std::vector<char> upper(size_t(n), 0);
    for (int j = 0; j < n; j++) {
        if (simplex_is_basic(lp->record, j) || std::fabs(g[size_t(j)]) < 1e-12) continue;
        const double x = simplex_value(lp->record, j);
        upper[size_t(j)] = x == lp->upper[size_t(j)] && x != lp->lower[size_t(j)];
        rhs -= g[size_t(j)] * x;
    }
    const double f0 = rhs - std::floor(rhs);
    if (f0 < 0.01 || f0 > 0.99) return {};
    const auto weight = [&](double a, bool integral) { // of t in  sum weight t >= 1
        if (!integral) return a > 0 ? a / f0 : -a / (1 - f0);
        const double f = a - std::floor(a);
        return f <= f0 ? f / f0 : (1 - f) / (1 - f0);
    };
    Cut cut; // - sum weight t <= -1, in x
    cut.rhs = -1;
    std::vector<double> c(size_t(n), 0.0);
    for (int j = 0; j < n; j++) {
        if (simplex_is_basic(lp->record, j) || std::fabs(g[size_t(j)]) < 1e-12) continue;
        const double sign = upper[size_t(j)] ? -1 : 1, bound = simplex_value(lp->record, j);
        const double w = weight(sign * g[size_t(j)], lp->integer(j));
        c[size_t(j)] -= w * sign;
        cut.rhs -= w * sign * bound;
    }
    for (int i = 0; i < m; i++) { // slack = rhs - row
        if (rows[size_t(i)] == 0 || body->senses.data[i] == '=') continue;
        const double w = weight(rows[size_t(i)], false);
        cut.rhs += w * body->rhs.data[i];
        rows[size_t(i)] = w;
    }
    for (int j = 0; j < n; j++)
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            if (body->senses.data[body->vind.data[p]] != '=')
                c[size_t(j)] += rows[size_t(body->vind.data[p])] * body->vval.data[p];
    double most = 0;
    for (const double v : c) most = std::max(most, std::fabs(v));
    for (int j = 0; j < n; j++) {
        if (std::fabs(c[size_t(j)]) < 1e-11 * most) continue;
        if (std::fabs(c[size_t(j)]) < 1e-6 * most) return {}; // bad dynamism
        cut.ind.push_back(j);
        cut.val.push_back(c[size_t(j)]);
    }
    return cut;
}

// Of the first basic integer variables with a fractional value.
std::vector<Cut> cuts_of_point(const Lp *lp)
{
    std::vector<Cut> cuts;
    for (int j = 0; j < lp->body->numvars && cuts.size() < CUTS; j++) {
        if (!lp->integer(j) || !simplex_is_basic(lp->record, j)) continue;
        const double x = simplex_value(lp->record, j);
        if (std::fabs(x - std::round(x)) < 0.05) continue;
        Cut cut = gomory_cut(lp, j);
        if (!cut.ind.empty()) cuts.push_back(cut);
    }
    return cuts;
}

void cut_rounds(Lp *lp, Kind *appends, Kind *deletes)
{
    for (int round = 0; round < ROUNDS; round++) {
        const std::vector<Cut> cuts = cuts_of_point(lp);
        if (cuts.empty()) return;
        std::vector<LiveRow> rows;
        for (const Cut &cut : cuts)
            rows.push_back(
                {int(cut.ind.size()), cut.ind.data(), cut.val.data(), '<', cut.rhs});
        const double start = processor_time();
        if (int code = simplex_append_rows(lp->record, rows.data(), int(rows.size())))
            lp->fail("append", code);
        const double time = processor_time() - start;
        if (lp->solve({}, appends).Status != TVX_OPTIMAL) return;
        appends->seconds += time;
    }
    const int m = simplex_num_rows(lp->record), n = lp->body->numvars;
    std::vector<char> drop(size_t(m), 0);
    for (int i = lp->body->numconstrs; i < m; i++)
        drop[size_t(i)] = simplex_is_basic(lp->record, n + i);
    const double start = processor_time();
    if (int code = simplex_delete_rows(lp->record, drop.data())) lp->fail("delete", code);
    const double time = processor_time() - start;
    lp->solve({}, deletes);
    deletes->seconds += time;
}

// ---- Branch and bound ----

void tree(Lp *lp, double most, double seconds)
{
    struct Open {
        std::vector<Bounds> bounds; // of the path
        double bound;
    };
    std::vector<Open> stack{{{}, -1e100}};
    double nodes = 0, iterations = 0, best = 1e100;
    const std::vector<double> low = lp->lower, high = lp->upper;
    const double start = processor_time();
    while (!stack.empty() && nodes < most && processor_time() - start < seconds) {
        const Open node = stack.back();
        stack.pop_back();
        if (node.bound >= best - 1e-9 * (1 + std::fabs(best))) continue;
        std::vector<double> l = low, u = high;
        for (const Bounds &b : node.bounds) {
            l[size_t(b.var)] = b.lower;
            u[size_t(b.var)] = b.upper;
        }
        std::vector<Bounds> changes;
        for (int j = 0; j < lp->body->numvars; j++)
            if (l[size_t(j)] != lp->lower[size_t(j)] ||
                u[size_t(j)] != lp->upper[size_t(j)])
                changes.push_back({j, l[size_t(j)], u[size_t(j)]});
        const ResolveOutcome outcome = lp->solve(changes, nullptr, best);
        nodes++;
        iterations += outcome.Iterations;
        if (outcome.Status != TVX_OPTIMAL || outcome.Value >= best) continue;
        double x = 0;
        const int j = lp->most_fractional(&x);
        if (j < 0) {
            best = outcome.Value;
            continue;
        }
        const bool up = x - std::floor(x) > 0.5;
        for (const bool side : {!up, up}) {
            stack.push_back(node);
            stack.back().bounds.push_back(lp->branch(j, x, side));
            stack.back().bound = outcome.Value;
        }
    }
    const double time = processor_time() - start;
    printf("\"nodes\": %.0f, \"iterations\": %.0f, \"seconds\": %.3f, "
           "\"nodes_per_second\": %.1f, \"best\": %.10g, "
           "\"complete\": %d, ",
           nodes, iterations, time, nodes / time, best, int(stack.empty()));
}

// ---- Checks ----

constexpr double SAME = 1e-6; // relative difference of objectives that counts as none

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
};

// A fresh solve of a body within the bounds in force.
void fresh(Lp *lp, ModelBody *body, int *status, double *objective)
{
    sopt *s = nullptr;
    for (int j = 0; j < body->numvars; j++) {
        body->lb.data[j] = lp->lower[size_t(j)];
        body->ub.data[j] = lp->upper[size_t(j)];
    }
    if (int code = SimplexOptimize(&s, body, lp->env, {})) lp->fail("fresh", code);
    *status = simplex_status(s);
    *objective = simplex_objective(s);
    simplex_free(s);
}

void check_bases(Lp *lp, double objective, std::mt19937 *rng, Tally *tally)
{
    const int n = lp->body->numvars, m = lp->body->numconstrs;
    for (int k = 0; k < 10; k++) {
        NodeBasis basis;
        if (simplex_save_basis(lp->record, &basis)) lp->fail("save", 0);
        for (int v = 0; v < n + m; v++) basis.Statuses.data[v] = char(v < n);
        for (int i = 0; i < m; i++) basis.Weights.data[i] = 1;
        for (int c = pick(rng, std::min(m, n) + 1); c > 0; c--) {
            const int j = pick(rng, n), i = pick(rng, m);
            if (basis.Statuses.data[j] == 0 || basis.Statuses.data[n + i] != 0) continue;
            basis.Statuses.data[j] = 0;
            basis.Statuses.data[n + i] = 1;
        }
        if (simplex_load_basis(lp->record, basis)) lp->fail("load", 0);
        tally->judge(lp->solve({}, nullptr), TVX_OPTIMAL, objective);
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
    std::vector<Bounds> back;
    for (int j = 0; j < n; j++)
        if (lp->lower[size_t(j)] != low[size_t(j)] ||
            lp->upper[size_t(j)] != high[size_t(j)])
            back.push_back({j, low[size_t(j)], high[size_t(j)]});
    lp->solve(back, nullptr);
}

void check_rows(Lp *lp, TVXmodel *model, Tally *tally)
{
    for (int round = 0; round < 3; round++) {
        const std::vector<Cut> cuts = cuts_of_point(lp);
        if (cuts.empty()) return;
        std::vector<LiveRow> rows;
        for (const Cut &cut : cuts) {
            rows.push_back(
                {int(cut.ind.size()), cut.ind.data(), cut.val.data(), '<', cut.rhs});
            if (TVXaddconstr(model, int(cut.ind.size()), cut.ind.data(), cut.val.data(),
                             '<', cut.rhs, nullptr))
                lp->fail("row", 0);
        }
        if (TVXupdatemodel(model)) lp->fail("update", 0);
        if (int code = simplex_append_rows(lp->record, rows.data(), int(rows.size())))
            lp->fail("append", code);
        const ResolveOutcome out = lp->solve({}, nullptr);
        int status = 0;
        double objective = 0;
        fresh(lp, model->body, &status, &objective);
        tally->judge(out, status, objective);
        if (out.Status != TVX_OPTIMAL) return;
    }
    const int m = simplex_num_rows(lp->record), n = lp->body->numvars;
    std::vector<char> drop(size_t(m), 0);
    for (int i = lp->body->numconstrs; i < m; i++)
        drop[size_t(i)] = simplex_is_basic(lp->record, n + i);
    const double objective = lp->solve({}, nullptr).Value;
    if (int code = simplex_delete_rows(lp->record, drop.data())) lp->fail("delete", code);
    tally->judge(lp->solve({}, nullptr), TVX_OPTIMAL, objective);
}

void check(Lp *lp, TVXmodel *model)
{
    std::mt19937 rng(1);
    TVXmodel *copy = TVXcopymodel(model);
    if (!copy) lp->fail("copy", 0);
    Tally bases{"bases"}, changes{"changes"}, rows{"rows"};
    check_bases(lp, simplex_objective(lp->record), &rng, &bases);
    check_changes(lp, copy->body, &rng, &changes);
    check_rows(lp, copy, &rows);
    for (const Tally *t : {&bases, &changes, &rows})
        printf("\"%s\": {\"solves\": %d, \"wrong\": %d, \"none\": %d}, ", t->name,
               t->solves, t->wrong, t->none);
    TVXfreemodel(copy);
}

void set_parameter(TVXenv *env, char *word, char *equals)
{
    *equals = 0;
    const int type = TVXgetparamtype(env, word);
    if (type == 1 ? TVXsetintparam(env, word, atoi(equals + 1))
                  : TVXsetdblparam(env, word, strtod(equals + 1, nullptr)))
        exit(1);
}
} // namespace

int main(int argc, char **argv)
{
    TVXenv *env = nullptr;
    TVXmodel *model = nullptr;
    if (TVXloadenv(&env, nullptr)) return 1;
    TVXsetintparam(env, "OutputFlag", 0);
    double seconds = 2, nodes = 0;
    bool checks = false;
    Lp lp;
    const char *file = nullptr;
    for (int k = 1; k < argc; k++) {
        char *equals = strchr(argv[k], '=');
        if (!strcmp(argv[k], "--seconds") && k + 1 < argc)
            seconds = atof(argv[++k]);
        else if (!strcmp(argv[k], "--tree") && k + 1 < argc)
            nodes = atof(argv[++k]);
        else if (!strcmp(argv[k], "--check"))
            checks = true;
        else if (!strcmp(argv[k], "--by") && k + 1 < argc)
            lp.live = strcmp(argv[++k], "optimize") != 0;
        else if (equals)
            set_parameter(env, argv[k], equals);
        else
            file = argv[k];
    }
    if (!file || TVXreadmodel(env, file, &model)) {
        fprintf(stderr, "cannot read %s\n", file ? file : "");
        return 1;
    }
    lp.body = model->body;
    lp.env = model->env;
    lp.lower.assign(lp.body->lb.data, lp.body->lb.data + lp.body->numvars);
    lp.upper.assign(lp.body->ub.data, lp.body->ub.data + lp.body->numvars);
    const double start = processor_time();
    if (SimplexOptimize(&lp.record, lp.body, lp.env, {})) return 1;
    const double root = processor_time() - start;
    printf("{\"model\": \"%s\", \"rows\": %d, \"columns\": %d, \"root_status\": %d, "
           "\"root_objective\": %.12g, "
           "\"root_iterations\": %.0f, \"root_seconds\": %.4f, ",
           file, lp.body->numconstrs, lp.body->numvars, simplex_status(lp.record),
           simplex_objective(lp.record), simplex_iterations(lp.record), root);
    Kind dives{"dive"}, idles{"idle"}, jumps{"jump"}, appends{"append"}, deletes{"delete"};
    if (simplex_status(lp.record) == TVX_OPTIMAL) {
        if (lp.live && simplex_go_live(lp.record)) return 1;
        if (lp.live) lp.solve({}, nullptr);
        std::mt19937 rng(1);
        if (checks)
            check(&lp, model);
        else if (nodes > 0)
            tree(&lp, nodes, seconds);
        else
            for (int k = 0; k < 20 && processor_time() - start - root < seconds; k++)
                dive(&lp, &dives, &jumps, &idles, &rng);
        if (nodes == 0 && !checks && lp.live) cut_rounds(&lp, &appends, &deletes);
    }
    if (nodes == 0 && !checks) {
        dives.print();
        idles.print();
        jumps.print();
        appends.print();
        deletes.print();
    }
    printf("\"done\": 1}\n");
    simplex_free(lp.record);
    TVXfreemodel(model);
    TVXfreeenv(env);
    return 0;
}
