// certificate.cpp -- verification of proofs that a model is infeasible or its objective unbounded
//
// Problem     Verify a claim that minimise c x, A x <= b or = b, l <= x <= u is infeasible or unbounded, independently
//             of the rounding errors of the solver that found it.
// Method      Infeasible: with g = y A and y_i >= 0 for inequalities every feasible x has g x <= y b, while the bounds
//             allow no g x below
//                 sum over g_j > 0 of g_j l_j  +  sum over g_j < 0 of g_j u_j.
//             The claim holds if that exceeds y b with every bound and right-hand side widened by PROOF_SLACK. An entry
//             on a side without a bound invalidates the proof, unless it is within the rounding error of its sum; then
//             PROOF_RANGE is used as bound on that side, and the proof says that no point up to that size is feasible.
//             Unbounded: r_j >= 0 if l_j is finite, r_j <= 0 if u_j is finite, A r <= 0 or = 0, c r < 0, where an
//             activity within the rounding error of its sum counts as zero, and c r must be outside of it.
//             All sums are computed in twofold doubles, with their remaining error counted against the claim.
// Invariant   A vector is scaled by a power of two, which is exact. Entries of a forbidden sign that are tiny relative
//             to the largest one count as zero; the proof is that of the remaining vector. A vector with entries that
//             are not finite proves nothing.
// Cost        O(nonzeros); two arrays over rows for a ray.
// Literature  J. Farkas, "Theorie der einfachen Ungleichungen", J. reine angew. Math. 124, 1902.
#include "body/certificate.h"
#include "body/double_double.h"
#include <algorithm>
#include <cmath>

namespace
{
// Relative rounding error of a sum of products of numbers from a solver.
constexpr double ROUNDING = 1e-13;

constexpr double COST_ROUNDING = 1e-12; // the same for c r, with a larger margin

// The power of two that scales the largest magnitude to 1 .. 2, or 0 if it is zero or not finite.
double unit_of(const double *v, int n)
{
    double largest = 0;
    for (int k = 0; k < n; k++) {
        if (std::isnan(v[k])) return 0;
        largest = std::max(largest, std::fabs(v[k]));
    }
    if (!(largest > 0) || std::isinf(largest)) return 0;
    int exponent = 0;
    (void)std::frexp(largest, &exponent);
    return std::ldexp(1.0, std::clamp(1 - exponent, -1000, 1000));
}

// Row i is satisfied by every point: its multiplier counts as zero.
bool is_absent_row(const ModelBody *body, double infinity, int i)
{
    return body->senses[i] != '=' && body->rhs[i] >= infinity;
}

// Sets the multiplier to 0 for rows that are absent and for a wrong sign by rounding. False if the sign is wrong by
// more.
bool usable_multiplier(const ModelBody *body, double infinity, int i, double *y)
{
    if (body->senses[i] == '=') return true;
    if (*y < -ROUNDING) return false;
    if (*y < 0 || is_absent_row(body, infinity, i)) *y = 0;
    return true;
}

// The minimum of (y A) x - y b over the bounds, with everything widened by PROOF_SLACK.
struct Gap {
    TwofoldSum sum;
    bool open = false;          // there is no minimum
    double slack = PROOF_SLACK; // amount of the widening
};

// Subtracts y b from the gap. False if y has a wrong sign.
bool subtract_rhs(const ModelBody *body, double infinity, const double *y, double unit,
                  Gap *gap)
{
    for (int i = 0; i < body->numconstrs; i++) {
        double v = unit * y[i];
        if (!usable_multiplier(body, infinity, i, &v)) return false;
        if (v == 0) continue;
        gap->sum.add(two_product(-v, body->rhs[i]));
        gap->sum.add({-gap->slack * std::fabs(v)});
    }
    return true;
}

// (y A)_j, of usable multipliers.
TwofoldSum column_sum(const ModelBody *body, double infinity, const double *y, double unit,
                      int j)
{
    TwofoldSum g;
    const int *row = body->vind.data;
    for (int p = body->vbeg[j], end = p + body->vlen[j]; p < end; p++) {
        if (y[row[p]] == 0) continue; // usually most are zero
        double v = unit * y[row[p]];
        if (!usable_multiplier(body, infinity, row[p], &v) || v == 0) continue;
        g.add(two_product(v, body->vval[p]));
    }
    return g;
}

void add_column(const ModelBody *body, double infinity, const TwofoldSum &g, int j,
                Gap *gap)
{
    const double value = g.value.high;
    if (g.size == 0 || (value == 0 && g.error() == 0)) return;
    const double bound = value > 0 ? body->lb[j] : body->ub[j];
    const bool absent = value > 0 ? bound <= -infinity : bound >= infinity;
    const double force = std::fabs(value);
    const bool rounding = force <= ROUNDING * g.size;
    if (absent && !rounding) {
        gap->open = true;
        return;
    }
    // A bound beyond the range of the proof counts as infinite.
    const double outward = value > 0 ? -bound : bound;
    if (absent || (rounding && outward > PROOF_RANGE) || force <= g.error()) {
        gap->sum.add({-PROOF_RANGE * (force + g.error())});
        return;
    }
    gap->sum.add(twofold_times(g.value, bound));
    gap->sum.add({-gap->slack * force - g.error() * std::fabs(bound)});
}

// ---- rays ----
bool bound_in_the_way(const ModelBody *body, double infinity, int j, double r)
{
    return r < 0 ? body->lb[j] > -infinity : r > 0 && body->ub[j] < infinity;
}

// Sets the step to 0 for a wrong sign by rounding, as for multipliers.
bool usable_step(const ModelBody *body, double infinity, int j, double *r)
{
    if (!bound_in_the_way(body, infinity, j, *r)) return true;
    if (std::fabs(*r) > ROUNDING) return false;
    *r = 0;
    return true;
}

bool rows_allow(const ModelBody *body, double infinity, const TwofoldSum *activity)
{
    for (int i = 0; i < body->numconstrs; i++) {
        if (is_absent_row(body, infinity, i)) continue;
        const double a = activity[i].value.high, zero = ROUNDING * activity[i].size;
        const bool rises = !(a <= zero), falls = !(a >= -zero);
        if (rises || (falls && body->senses[i] == '=')) return false;
    }
    return true;
}
} // namespace

bool farkas_holds(const ModelBody *body, double infinity, const double *y, double slack)
{
    const double unit = unit_of(y, body->numconstrs);
    Gap gap;
    gap.slack = slack;
    if (unit == 0 || !subtract_rhs(body, infinity, y, unit, &gap)) return false;
    for (int j = 0; j < body->numvars && !gap.open; j++)
        add_column(body, infinity, column_sum(body, infinity, y, unit, j), j, &gap);
    return !gap.open && gap.sum.value.high > gap.sum.error();
}

int ray_holds(const ModelBody *body, double infinity, const double *ray, bool *holds)
{
    *holds = false;
    const double unit = unit_of(ray, body->numvars);
    if (unit == 0) return 0;
    Array<TwofoldSum> activity;
    TRY(array_assign(&activity, body->numconstrs, TwofoldSum{}));
    TwofoldSum cost;
    for (int j = 0; j < body->numvars; j++) {
        double r = unit * ray[j];
        if (!usable_step(body, infinity, j, &r)) return 0;
        if (r == 0) continue;
        cost.add(two_product(r, body->obj[j]));
        for (int p = body->vbeg[j]; p < body->vbeg[j] + body->vlen[j]; p++)
            activity[body->vind[p]].add(two_product(r, body->vval[p]));
    }
    *holds = cost.value.high < -COST_ROUNDING * cost.size &&
             rows_allow(body, infinity, activity.data);
    return 0;
}
