// probe.cpp -- probing: what follows from either value of a binary column
//
// Method      Columns with many implications and few earlier probes come first. Each is fixed at 0, then at 1, and both
//             are propagated (domain/): if one fails, the column has the other value; else probe_learn.cpp compares them.
//             At the end the bounds found become those of the record, and columns are replaced.
// Safety      Propagation loses no point that satisfies the rows within their tolerance (domain.h). Bounds of continuous
//             columns are taken over if they gain much, as they stop other reductions.
// Limits      Entries looked at; probes without gain, in a row and, in the quick form, in all. After a call that has found
//             nothing the model has to change first.
// Postsolve   That of fixing and of column_replace.cpp
// Literature  M. W. P. Savelsbergh, "Preprocessing and probing techniques for mixed integer programming problems", ORSA J.
//             Computing 6, 1994. T. Achterberg et al., "Presolve reductions in mixed integer programming", INFORMS J.
//             Computing 32, 2020.
#include "presolve/integer/probe.h"
#include "presolve/reduce/aggregate.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr BoundReason DECIDED = {ReasonKind::DECISION, -1},
                      FOUND = {ReasonKind::GLOBAL, -1};

struct Limits {
    int probes;       // of a call, those with gain not counted
    int useless;      // in a row
    double per_entry; // effort per entry of the model
    int64_t least;    // effort that is always allowed
};
constexpr Limits QUICK = {4000, 500, 20, 5000000}, FULL = {INT32_MAX, 1000, 50, 5000000};

constexpr int64_t LEAST_FACTS =
    10000; // edges and implications of a call, beyond the entries

constexpr double LARGEST_BOUND = 1e8; // larger bounds are of no use
constexpr double LARGE_GAIN = 0.3;    // share of the range of a continuous column
// Tolerances: propagation relaxes bounds by about one, so that a smaller range could be empty in fact.
constexpr double LEAST_RANGE = 1000;

int prepare(Probing *probing, PresolveWork *w, const Limits &limits)
{
    const int n = w->NumCols;
    probing->w = w;
    probing->Facts = w->Facts;
    TRY(propagation_view_make(w, &probing->View));
    TRY(domain_create(&probing->Bounds, probing->View.Rows, w->Facts->Found, w->Facts->Log,
                      probing->View.Lower.data, probing->View.Upper.data,
                      {w->FeasTol, w->IntTol}));
    for (ProbeSide &side : probing->Sides) {
        TRY(array_resize(&side.Lower, n));
        TRY(array_resize(&side.Upper, n));
        TRY(array_assign(&side.Stamp, n, 0));
        TRY(array_reserve(&side.Cols, n));
    }
    TRY(array_assign(&probing->IsReplaced, n, char(0)));
    const int64_t entries = probing->View.Rows->Entry.size;
    probing->Limit = limits.least +
                     static_cast<int64_t>(limits.per_entry * static_cast<double>(entries));
    probing->EdgesLeft = probing->EntriesLeft = entries + LEAST_FACTS;
    return presolve_check(w);
}

int64_t effort_left(const Probing *probing)
{
    return probing->Limit - probing->Bounds->Effort - probing->Tests;
}

// ---- the order ----
// Literals next to those of column j.
double implications(const CliqueTable *t, int j)
{
    double count = 0;
    for (const int u : {literal_of(j, 0), literal_of(j, 1)}) {
        count += t->Neighbours.Size.data[u];
        const int *list = lists_at(&t->CliquesOf, u);
        for (int k = 0; k < t->CliquesOf.Size.data[u]; k++)
            count += clique_size(t, list[k]) - 1;
    }
    return count;
}

int order_columns(PresolveWork *w, Array<int> *order)
{
    const MipFacts *facts = w->Facts;
    Array<double> score;
    TRY(array_assign(&score, w->NumCols, 0.0));
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_binary_now(w, j) || w->ColCnt.data[j] == 0) continue;
        score.data[j] = (implications(facts->OfRows, j) + w->ColCnt.data[j]) /
                        (1.0 + facts->Probes.data[j]);
        TRY(array_append(order, j));
    }
    const double *by = score.data;
    std::sort(order->begin(), order->end(),
              [by](int a, int b) { return by[a] > by[b] || (by[a] == by[b] && a < b); });
    return check_limits(w, w->NumCols);
}

// ---- one probe ----
void note_side(Probing *probing, int value, int64_t mark)
{
    const Domain *d = probing->Bounds;
    ProbeSide *side = &probing->Sides[value];
    side->Cols.size = 0;
    for (int64_t k = mark; k < d->Trail.size; k++) {
        const int j = d->Trail.data[k].Col;
        if (side->Stamp.data[j] == probing->Number) continue;
        side->Stamp.data[j] = probing->Number;
        side->Lower.data[j] = d->Lower.data[j];
        side->Upper.data[j] = d->Upper.data[j];
        array_push(&side->Cols, j);
    }
}

void set_value(Domain *d, int z, int value, BoundReason reason)
{
    domain_tighten(d, z, value ? BoundSide::LOWER : BoundSide::UPPER, value, reason);
}

// False when the value is impossible.
bool try_value(Probing *probing, int z, int value)
{
    Domain *d = probing->Bounds;
    const int64_t mark = domain_mark(d);
    set_value(d, z, value, DECIDED);
    const bool possible =
        domain_propagate(d, std::max(0.0, static_cast<double>(effort_left(probing))));
    if (possible) note_side(probing, value, mark);
    domain_undo(d, mark);
    return possible;
}

int probe_column(Probing *probing, int z)
{
    Domain *d = probing->Bounds;
    probing->Number++;
    probing->Facts->Probes.data[z]++;
    int code = 0;
    if (!try_value(probing, z, 0)) {
        set_value(d, z, 1, FOUND);
        probing->Useless = 0;
    } else if (!try_value(probing, z, 1)) {
        set_value(d, z, 0, FOUND);
        probing->Useless = 0;
    } else {
        code = probe_learn(probing, z);
    }
    domain_propagate(d, -1);
    return code ? code : d->Error;
}

int probe_columns(Probing *probing, const Array<int> &order, const Limits &limits)
{
    Domain *d = probing->Bounds;
    int probes = 0;
    domain_propagate(d, -1);
    for (const int z : order) {
        if (d->Infeasible) return END_INFEASIBLE;
        if (effort_left(probing) <= 0 || probes >= limits.probes ||
            probing->Useless >= limits.useless)
            return 0;
        if (domain_is_fixed(d, z) || probing->IsReplaced.data[z]) continue;
        const int64_t before = d->Effort + probing->Tests;
        TRY(probe_column(probing, z));
        probes += probing->Useless > 0;
        TRY(check_limits(probing->w,
                         static_cast<double>(d->Effort + probing->Tests - before)));
    }
    return d->Infeasible ? END_INFEASIBLE : 0;
}

// ---- the record ----
bool is_worth_taking(const PresolveWork *w, int j, double lower, double upper)
{
    const double lb = w->Lb.data[j], ub = w->Ub.data[j];
    if (is_integer(w, j))
        return (lower > lb && lower > -LARGEST_BOUND) ||
               (upper < ub && upper < LARGEST_BOUND);
    return has_lb(w, j) && has_ub(w, j) && upper - lower < (1 - LARGE_GAIN) * (ub - lb) &&
           upper - lower > LEAST_RANGE * w->FeasTol;
}

int take_bounds(PresolveWork *w, const Domain *d)
{
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_live_col(w, j)) continue;
        const double lower = std::max(d->Lower.data[j], w->Lb.data[j]),
                     upper = std::min(d->Upper.data[j], w->Ub.data[j]);
        if (lower > upper || !is_worth_taking(w, j, lower, upper)) continue;
        if (is_integer(w, j) && lower == upper) { // integral
            TRY(settle_integer(w, j, lower));
            continue;
        }
        change_bounds(w, j, lower, upper);
        w->BoundsChanged++;
        mark_col(w, j);
        mark_rows_of_col(w, j);
        TRY(check_limits(w, 1 + w->ColCnt.data[j]));
    }
    return 0;
}

// Bounds of a replaced column that were found after it are lost; the rows that gave them still imply them.
int replace_columns(Probing *probing)
{
    PresolveWork *w = probing->w;
    for (const ColumnReplacement &r : probing->Replacements) {
        bool there = false;
        if (!is_live_col(w, r.col) || !is_binary_now(w, r.by)) continue; // fixed since
        TRY(room_for_fill(w, w->ColCnt.data[r.col], &there));
        if (there) TRY(replace_column(w, r));
        TRY(check_limits(w, 1 + w->ColCnt.data[r.by]));
    }
    return 0;
}

int probe(Probing *probing, PresolveWork *w, const Limits &limits)
{
    Array<int> order;
    TRY(prepare(probing, w, limits));
    TRY(order_columns(w, &order));
    TRY(probe_columns(probing, order, limits));
    TRY(take_bounds(w, probing->Bounds));
    TRY(replace_columns(probing));
    TRY(apply_clique_facts(w, w->Facts->Found));
    return 0;
}

int run(PresolveWork *w, const Limits &limits)
{
    TRY(facts_refresh(w));
    MipFacts *facts = w->Facts;
    if (facts->WasIdle && is_much_the_same(w, facts->Probed)) return 0;
    if (!facts->OfRows) TRY(facts_build_table(w));
    const int cols = w->ColsRemoved, bounds = w->BoundsChanged;
    Probing probing;
    const int code = probe(&probing, w, limits);
    if (probing.Bounds)
        w->Work += static_cast<double>(probing.Bounds->Effort + probing.Tests);
    facts->WasIdle = cols == w->ColsRemoved && bounds == w->BoundsChanged;
    facts->Probed = counts_now(w);
    domain_free(probing.Bounds);
    propagation_view_free(&probing.View);
    return code;
}
} // namespace

int pre_probe_quick(PresolveWork *w)
{
    return run(w, QUICK);
}

int pre_probe(PresolveWork *w)
{
    return run(w, w->ProbeLevel <= 1 ? QUICK : FULL);
}
