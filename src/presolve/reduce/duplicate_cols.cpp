// duplicate_cols.cpp -- parallel columns: some are fixed at a bound, some are merged
//
// Method      Columns of one class are scale * v; X = scale * x is the multiple of v that a column contributes, at the
//             price c / scale per unit. A cheaper column can replace the contribution of another one as far as its
//             bounds allow. So if X of a cheaper column has no upper bound, all more expensive columns are at their
//             smallest X, and if X of a more expensive column has no lower bound, all cheaper ones are at their largest
//             X. Columns of equal price are merged (merged_columns.cpp). An implied bound is removed from the model
//             first if that allows a column to be fixed: then no other reduction can depend on it. With integers steps of
//             one column have to be whole steps of the other; bounds stay, and equal prices suffice.
// Postsolve   That of fixing and of merging. The difference of the prices gives the reduced cost of the fixed column
//             its sign.
// Cost        That of finding the classes, and O(class log class).
#include "presolve/claim.h"
#include "presolve/errors.h"
#include "presolve/reduce/aggregate.h"
#include "presolve/reduce/duplicates.h"
#include "presolve/reduce/merged_columns.h"

namespace
{
constexpr double SAME_PRICE = 1e-12; // relative difference of equal prices
constexpr double NO_COST = 1e-13;    // difference of costs that counts as a rounding error
// Largest ratio of the scales of two columns of which one replaces the other.
constexpr double LARGEST_FACTOR = 1e3;

double price(const PresolveWork *w, const DupLine *l)
{
    return w->Obj.data[l->line] / l->scale;
}
// True if X has an upper (side 1) or lower (side -1) bound.
bool is_bounded(const PresolveWork *w, const DupLine *l, int side)
{
    return side * l->scale > 0 ? has_ub(w, l->line) : has_lb(w, l->line);
}

bool is_implied(const PresolveWork *w, const DupLine *l, int side)
{
    const int which = side * l->scale > 0 ? UPPER_MATTERS : LOWER_MATTERS;
    return (bounds_that_matter(w, l->line) & which) == 0;
}

void take_bound_away(PresolveWork *w, const DupLine *l, int side)
{
    const int j = l->line;
    if (side * l->scale > 0)
        change_bounds(w, j, w->Lb.data[j], w->INF);
    else
        change_bounds(w, j, -w->INF, w->Ub.data[j]);
    w->BoundsChanged++;
    mark_col(w, j);
    mark_rows_of_col(w, j);
}

bool is_fit(const DupLine *a, const DupLine *b)
{
    const double factor = std::fabs(a->scale / b->scale);
    return factor <= LARGEST_FACTOR && factor >= 1 / LARGEST_FACTOR;
}

// True if whole steps of column l can be replaced by whole steps of `by`, where that is integer.
bool steps_fit(const PresolveWork *w, const DupLine *by, const DupLine *l)
{
    if (!is_integer(w, by->line)) return true;
    return is_integer(w, l->line) && std::fmod(l->scale, by->scale) == 0; // exactly
}

// True if the infinite bound of `by` fixes `l`: the reduced cost of l is at least the difference of prices.
bool is_strict(const PresolveWork *w, const DupLine *by, const DupLine *l)
{
    const double a = price(w, by), b = price(w, l);
    // Factor on an error of the other column's reduced cost.
    const double factor = std::fabs(l->scale / by->scale);
    const double zero = w->OptTol * (1 + factor) + cost_error(w, l->line) +
                        factor * cost_error(w, by->line);
    return steps_fit(w, by, l) &&
           std::fabs(a - b) > SAME_PRICE * std::max(std::fabs(a), std::fabs(b)) &&
           std::fabs(a - b) * std::fabs(l->scale) > zero && is_fit(by, l);
}

// True if column l can be fixed because of `by`, the cheaper one. Of equal ones too with integers, as no dual values are
// needed.
bool replaces(const PresolveWork *w, const DupLine *by, const DupLine *l, int side)
{
    if (is_strict(w, by, l)) return true;
    return w->IsMip && steps_fit(w, by, l) && is_fit(by, l) && is_bounded(w, l, -side);
}

// Fixes column l at the bound of its X on this side, as `by` can replace it. Unbounded if it has none.
int send(PresolveWork *w, const DupLine *by, const DupLine *l, int side)
{
    if (!is_bounded(w, l, side)) {
        w->InfeasCol = l->line;
        return claim_unbounded(w,
                               {{l->line, side / l->scale}, {by->line, -side / by->scale}});
    }
    return side * l->scale > 0 ? fix_at_upper(w, l->line) : fix_at_lower(w, l->line);
}

// Members are sorted by increasing price for upper bounds (side 1), by decreasing price for lower bounds (-1). The
// first one whose bound on this side is infinite, or implied and may be removed, or -1.
int first_open(PresolveWork *w, const DupLine *members, int count, int side, int *open)
{
    *open = -1;
    for (int k = 0; k + 1 < count; k++) {
        TRY(check_limits(w, members[k].length));
        if (!is_live_col(w, members[k].line)) continue;
        if (!is_bounded(w, &members[k], side) ||
            (replaces(w, &members[k], &members[count - 1], side) &&
             is_implied(w, &members[k], side))) {
            *open = k;
            break;
        }
    }
    return 0;
}

int dominate(PresolveWork *w, const DupLine *members, int count, int side)
{
    int best = -1;
    TRY(first_open(w, members, count, side, &best));
    if (best < 0) return 0;
    for (int k = count - 1; k > best; k--) {
        TRY(check_limits(w, members[k].length));
        if (!is_live_col(w, members[k].line)) continue;
        if (!replaces(w, &members[best], &members[k], side)) continue;
        if (!w->IsMip && is_bounded(w, &members[best], side))
            take_bound_away(w, &members[best], side);
        TRY(send(w, &members[best], &members[k], -side));
    }
    return 0;
}

bool may_merge(const PresolveWork *w, const DupLine *a, const DupLine *b)
{
    const double p = price(w, a), q = price(w, b);
    const double gap = std::fabs(p - q), size = std::max(std::fabs(p), std::fabs(q));
    if (gap > SAME_PRICE * size && gap * std::fabs(a->scale) > NO_COST) return false;
    const bool integer = is_integer(w, a->line);
    if (integer != is_integer(w, b->line) || !is_fit(a, b)) return false;
    return !integer || std::fabs(std::fabs(a->scale) - std::fabs(b->scale)) <=
                           SAME_PRICE * std::fabs(a->scale);
}

int merge_equals(PresolveWork *w, const DupLine *members, int count)
{
    const DupLine *last = nullptr;
    for (int k = 0; k < count; k++) {
        const DupLine *l = &members[k];
        TRY(check_limits(w, l->length));
        if (!is_live_col(w, l->line)) continue;
        if (!last || !may_merge(w, last, l)) {
            last = l;
            continue;
        }
        // The one with the larger scale is kept, so that postsolve does not enlarge errors of the other one's bounds.
        const DupLine *gone = l;
        if (std::fabs(l->scale) > std::fabs(last->scale)) std::swap(last, gone);
        TRY(merge_columns(w, last->line, gone->line, gone->scale / last->scale));
    }
    return 0;
}

int handle_cols(PresolveWork *w, DupLine *members, int count)
{
    // Prices are computed before, since fixing sets costs to zero.
    for (int k = 0; k < count; k++) members[k].values = price(w, &members[k]);
    TRY(check_limits(w, count));
    TRY(sort_members(w, members, count));
    TRY(dominate(w, members, count, 1));
    std::reverse(members, members + count);
    TRY(dominate(w, members, count, -1));
    return w->KeepCrush ? 0 : merge_equals(w, members, count);
}
} // namespace

int pre_duplicate_cols(PresolveWork *w)
{
    const int count = candidate_cols(w, w->IndexA.data);
    int kept = 0;
    for (int k = 0; k < count; k++) {
        const int j = w->IndexA.data[k];
        if (!w->ColFlags.data[j] && w->ColCnt.data[j] >= 1) w->IndexA.data[kept++] = j;
    }
    return duplicate_classes(w, Axis::COLS, w->IndexA.data, kept, nullptr, handle_cols);
}
