// dive_tree.cpp -- plain depth-first branch and bound, most fractional variable, nearer side first
#include "dive_lp.h"
#include <cmath>
#include <cstdio>

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
        const std::vector<Bounds> changes = lp->changes_to(l, u);
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
            stack.back().bound = outcome.Bound;
        }
    }
    const double time = processor_time() - start;
    printf("\"nodes\": %.0f, \"iterations\": %.0f, \"seconds\": %.3f, "
           "\"nodes_per_second\": %.1f, \"best\": %.10g, "
           "\"complete\": %d, ",
           nodes, iterations, time, nodes / time, best, int(stack.empty()));
}
