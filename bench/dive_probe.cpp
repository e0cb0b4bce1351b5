// dive_probe.cpp -- what a re-solve costs: the relaxation of a MIP under the changes that a search makes
//
//   tarvex_dive [Name=Value ...] [--seconds S] [--by optimize | --tree N | --check] MODEL
//
// The relaxation is solved without presolve. Then, with seeded choices: dives (one bound of the most fractional
// variable at a time, the other side where a branch is infeasible), between them calls that need no pivot, jumps back
// to a node of the dive with its basis and the other branch, and rounds of Gomory cuts that are appended and, when
// their slack is basic again, deleted. With `--by optimize` dives and jumps use SimplexOptimize on the record as an
// ordinary caller would, for comparison; there are no rounds of cuts then. Written is one line of JSON: for each kind
// of call the number of calls, iterations, factorisations and processor seconds, and the least squares fit seconds =
// fixed + pivot * iterations.
// With `--tree N` instead: a depth-first branch and bound without anything else, at most N nodes: nodes per second.
// With `--check` instead: ten random start bases, ten times random changes of bounds, probes of strong branching, rows
// appended: each is compared with a fresh solve of the same LP; their numbers, the disagreements, and solves without an
// answer are told.
// Exit code 0, or 1 with a line on standard error.
#include "dive_lp.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace
{
constexpr int DEPTH = 60; // levels of a dive
constexpr int JUMPS = 10; // jumps after a dive
constexpr double STEP =
    1e-13; // of a move that makes no pivot necessary, even with coefficients of 1e6
constexpr int ROUNDS = 5; // of cuts

struct Node { // before it was branched
    int var;
    double x;
    bool up; // the branch taken
    NodeBasis basis;
};

// A nonbasic variable is fixed a little beside its bound, and released: what a call costs without any pivot, with the
// FTRAN of its move.
void idle(Lp *lp, Kind *idles, std::mt19937 *rng)
{
    const int j = pick(rng, lp->body->numvars);
    if (!lp->live || simplex_is_basic(lp->record, j)) return;
    const Bounds before = {j, lp->lower[size_t(j)], lp->upper[size_t(j)]};
    const double value = simplex_value(lp->record, j),
                 x = value + (value >= before.upper ? -STEP : STEP);
    if (x < before.lower || x > before.upper) return;
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
        path.push_back({j, x, up, {}});
        if (lp->live && simplex_save_basis(lp->record, &path.back().basis)) fail("save", 0);
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
        const std::vector<Bounds> changes = lp->changes_to(low, high);
        lp->solve(changes, jumps, 1e100, &node.basis);
    }
    std::vector<Bounds> back;
    for (size_t u = undo.size(); u-- > 0;) back.push_back(undo[u]);
    lp->solve(back, nullptr);
}

void cut_rounds(Lp *lp, Kind *appends, Kind *deletes)
{
    for (int round = 0; round < ROUNDS; round++) {
        const std::vector<Cut> cuts = cuts_of_point(lp);
        if (cuts.empty()) return;
        const double start = processor_time();
        append_cuts(lp, cuts);
        const double time = processor_time() - start;
        if (lp->solve({}, appends).Status != TVX_OPTIMAL) return;
        appends->seconds += time;
    }
    const double start = processor_time();
    delete_slack_cuts(lp);
    const double time = processor_time() - start;
    lp->solve({}, deletes);
    deletes->seconds += time;
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
