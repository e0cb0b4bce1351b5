// dive_lp.cpp -- the relaxation of a MIP and the ways to solve it again
#include "dive_lp.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace
{
constexpr double FRACTION = 1e-6; // distance from an integer that counts as fractional
}

double processor_time()
{
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + 1e-9 * double(t.tv_nsec);
}

int pick(std::mt19937 *rng, int width)
{
    return int((*rng)() % unsigned(width));
}

void fail(const char *what, int code)
{
    fprintf(stderr, "%s: %d\n", what, code);
    exit(1);
}

void Kind::add(double iters, double factors, double time)
{
    calls++;
    iterations += iters;
    factored += factors;
    seconds += time;
    xx += iters * iters;
    xy += iters * time;
}

void Kind::print() const
{
    const double det = calls * xx - iterations * iterations;
    const double slope = det > 0 ? (calls * xy - iterations * seconds) / det : 0;
    const double fixed = calls > 0 ? (seconds - slope * iterations) / calls : 0;
    printf("\"%s\": {\"calls\": %.0f, \"iterations\": %.0f, \"factored\": %.0f, "
           "\"seconds\": %.6f, "
           "\"fixed_us\": %.3f, \"pivot_us\": %.3f}, ",
           name, calls, iterations, factored, seconds, 1e6 * fixed, 1e6 * slope);
}

ResolveOutcome Lp::solve(const std::vector<Bounds> &changes, Kind *kind, double cutoff,
                         const NodeBasis *basis)
{
    for (const Bounds &b : changes) {
        lower[size_t(b.var)] = b.lower;
        upper[size_t(b.var)] = b.upper;
    }
    const double before = simplex_factorizations(record), start = processor_time();
    ResolveOutcome outcome = live ? resolve(changes, cutoff, basis) : optimize(changes);
    const double factors = simplex_factorizations(record) - (live ? before : 0);
    if (kind) kind->add(outcome.Iterations, factors, processor_time() - start);
    return outcome;
}

ResolveOutcome Lp::resolve(const std::vector<Bounds> &changes, double cutoff,
                           const NodeBasis *basis)
{
    std::vector<BoundChange> list;
    for (const Bounds &b : changes) list.push_back({b.var, b.lower, b.upper});
    ResolveCall call;
    call.Changes = list.data();
    call.NumChanges = int(list.size());
    call.Cutoff = cutoff;
    call.Basis = basis;
    ResolveOutcome outcome;
    if (int code = simplex_resolve(record, call, &outcome)) fail("resolve", code);
    return outcome;
}

ResolveOutcome Lp::optimize(const std::vector<Bounds> &changes)
{
    for (const Bounds &b : changes)
        if (!simplex_change_bound(record, b.var, b.lower, b.upper)) fail("bound", b.var);
    SimplexCall call;
    call.Method = METHOD_DUAL;
    if (int code = SimplexOptimize(&record, body, env, call)) fail("optimize", code);
    const double value = simplex_objective(record);
    return {simplex_status(record), value, value, simplex_iterations(record)};
}

bool Lp::integer(int j) const
{
    return body->vtypes.size > 0 && body->vtypes.data[j] != 'C';
}

int Lp::most_fractional(double *x) const
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

Bounds Lp::branch(int j, double x, bool up) const
{
    return up ? Bounds{j, std::ceil(x), upper[size_t(j)]}
              : Bounds{j, lower[size_t(j)], std::floor(x)};
}

std::vector<Bounds> Lp::changes_to(const std::vector<double> &low,
                                   const std::vector<double> &high) const
{
    std::vector<Bounds> changes;
    for (int j = 0; j < body->numvars; j++)
        if (low[size_t(j)] != lower[size_t(j)] || high[size_t(j)] != upper[size_t(j)])
            changes.push_back({j, low[size_t(j)], high[size_t(j)]});
    return changes;
}
