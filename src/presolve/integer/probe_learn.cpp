// probe_learn.cpp -- what the bounds implied by z = 0 and by z = 1 say
//
// Method      Of each column that changes on both sides the weaker of the two bounds holds in general. An integer column
//             that is fixed on both sides at different values v0 and v1 is v0 + (v1 - v0) z. A binary column that one side
//             fixes is an edge of the clique graph, unless the rows imply that already; a bound of another column that
//             one side tightens is an implication.
// Exactness   Continuous columns are never replaced: their bounds allow for the tolerance of rows.
// Cost        O(columns changed, and the tests of edges)
#include "presolve/integer/probe.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr BoundReason FOUND = {ReasonKind::GLOBAL, -1};
// An implication has to tighten a bound by this number of tolerances and this share of the range.
constexpr double LEAST_GAIN = 1000, VISIBLE = 0.01;
constexpr double LARGEST_BOUND = 1e6; // of an implied bound where there is none without it

// Both sides change column k.
bool both_change(const Probing *probing, int k)
{
    return probing->Sides[0].Stamp.data[k] == probing->Number &&
           probing->Sides[1].Stamp.data[k] == probing->Number;
}

// x_k = v0 + (v1 - v0) z?
bool find_replacement(const Probing *probing, int z, int k, ColumnReplacement *r)
{
    const PresolveWork *w = probing->w;
    const double v0 = probing->Sides[0].Lower.data[k], v1 = probing->Sides[1].Lower.data[k];
    *r = {k, z, v0, v1 - v0};
    return is_integer(w, k) && v0 == probing->Sides[0].Upper.data[k] && // integral
           v1 == probing->Sides[1].Upper.data[k] && v0 != v1 &&
           !probing->IsReplaced.data[k] && may_replace(w, *r);
}

int tighten_both(Probing *probing, int z, int k, bool *gain)
{
    Domain *d = probing->Bounds;
    ColumnReplacement r = {};
    if (k == z) return 0;
    if (find_replacement(probing, z, k, &r)) {
        TRY(array_append(&probing->Replacements, r));
        probing->IsReplaced.data[k] = 1;
        *gain = true;
    }
    const ProbeSide *sides = probing->Sides;
    const double lower = std::min(sides[0].Lower.data[k], sides[1].Lower.data[k]);
    const double upper = std::max(sides[0].Upper.data[k], sides[1].Upper.data[k]);
    const int64_t before = d->Trail.size;
    if (lower > d->Lower.data[k]) domain_tighten(d, k, BoundSide::LOWER, lower, FOUND);
    if (upper < d->Upper.data[k]) domain_tighten(d, k, BoundSide::UPPER, upper, FOUND);
    *gain = *gain || (d->Trail.size > before && is_integer(probing->w, k));
    return 0;
}

bool is_open_binary(const Domain *d, int k)
{
    return d->Rows->IsInteger.data[k] && d->Lower.data[k] == 0 && d->Upper.data[k] == 1;
}

// The literal `trigger` fixes the binary column k at this value.
int note_edge(Probing *probing, int trigger, int k, double value)
{
    MipFacts *facts = probing->Facts;
    const int pair[] = {trigger, literal_of(k, value == 0)}; // assigned 0 or 1
    if (probing->EdgesLeft <= 0 || probing->IsReplaced.data[k]) return 0;
    const int64_t before = facts->OfRows->Effort;
    const bool known =
        clique_adjacent(facts->OfRows, pair[0], pair[1], &facts->OfRows->Effort);
    probing->Tests += facts->OfRows->Effort - before + 1;
    if (known) return 0;
    probing->EdgesLeft--;
    TRY(clique_table_add(facts->OfRows, pair, 2));
    return clique_table_add(facts->Found, pair, 2);
}

int note_bound(Probing *probing, int trigger, int k, BoundSide side, double value)
{
    const Domain *d = probing->Bounds;
    const double lower = d->Lower.data[k], upper = d->Upper.data[k];
    const double global = side == BoundSide::LOWER ? lower : upper;
    const double gain = std::fabs(global - value);
    const bool bounded = !domain_is_infinite(lower) && !domain_is_infinite(upper);
    if (probing->EntriesLeft <= 0 || gain < LEAST_GAIN * probing->w->FeasTol) return 0;
    if (bounded ? gain < VISIBLE * (upper - lower) : std::fabs(value) > LARGEST_BOUND)
        return 0;
    probing->EntriesLeft--;
    return implication_log_add(probing->Facts->Log, {value, global, trigger, k, side});
}

int note_implied(Probing *probing, const ProbeSide *side, int trigger, int k)
{
    const Domain *d = probing->Bounds;
    const double lower = side->Lower.data[k], upper = side->Upper.data[k];
    if (k == literal_col(trigger) || domain_is_fixed(d, k)) return 0;
    if (is_open_binary(d, k))
        return lower == upper ? note_edge(probing, trigger, k, lower) : 0;
    if (lower > d->Lower.data[k])
        TRY(note_bound(probing, trigger, k, BoundSide::LOWER, lower));
    if (upper < d->Upper.data[k])
        TRY(note_bound(probing, trigger, k, BoundSide::UPPER, upper));
    return 0;
}
} // namespace

int probe_learn(Probing *probing, int z)
{
    bool gain = false;
    for (const int k : probing->Sides[0].Cols)
        if (both_change(probing, k)) TRY(tighten_both(probing, z, k, &gain));
    if (probing->Bounds->Infeasible) return 0;
    for (const int value : {0, 1})
        for (const int k : probing->Sides[value].Cols)
            TRY(note_implied(probing, &probing->Sides[value], literal_of(z, value), k));
    probing->Useless = gain ? 0 : probing->Useless + 1;
    return 0;
}
