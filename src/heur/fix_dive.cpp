// fix_dive.cpp -- fixing columns one by one under propagation, and searching what is left
//
// Problem  At the root, find a point by a search that is much smaller than the whole one.
// Method   Columns are fixed in an order, each near its LP value, and what follows from that is propagated. A column that
//          makes the bounds infeasible is left free. What then is free is presolved and searched under a node limit. When
//          that finds nothing, fewer columns are fixed.
// In, out  The LP solution and the bounds of the root -> a point that the search inside has offered, or nothing.
// Cost     Of propagation: the rows that change, within a limit; then the search inside.
// Literature  T. Achterberg, "Constraint integer programming", TU Berlin, 2007, chapter 9: diving with propagation.
#include "heur/fix_dive.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int MOST_TRIES = 3;
constexpr double FEWER = 0.75; // of the columns, in the next try
// Of the work of the search: tries that took more in vain are not followed by others.
constexpr double MOST_WORK = 0.2;
constexpr double LEAST_SHARE =
    0.5; // of the integer columns: with fewer fixed the search would not be small
constexpr double WHOLE = 1e-6;          // distance from an integer
constexpr double WORK_PER_ENTRY = 20;   // limit of the propagation, in sizes of the model
constexpr double PROPAGATION_PARTS = 4; // one fixing may take this part of the limit

bool is_free_integer(const HeurState *h, const HeurCall &call, int j)
{
    return h->Model.IsInteger[j] && !domain_is_fixed(call.Bounds, j);
}

// One column. True if it stays fixed.
bool fix(const HeurState *h, const HeurCall &call, int j)
{
    Domain *bounds = call.Bounds;
    if (domain_is_fixed(bounds, j)) return true;
    const double value =
        std::clamp(std::floor(call.X[j] + 0.5), DomLower(bounds, j), DomUpper(bounds, j));
    const double effort = WORK_PER_ENTRY / PROPAGATION_PARTS * (h->NumEntries + h->NumCols);
    const BoundReason reason = {ReasonKind::DECISION, -1};
    const int64_t mark = domain_mark(bounds);
    domain_tighten(bounds, j, BoundSide::LOWER, value, reason);
    domain_tighten(bounds, j, BoundSide::UPPER, value, reason);
    if (domain_propagate(bounds, effort)) return true;
    domain_undo(bounds, mark);
    return false;
}

// The number of columns of the list that are fixed.
int fix_columns(HeurState *h, const HeurCall &call, int count, double wanted)
{
    const int64_t before = call.Bounds->Effort;
    const double limit = WORK_PER_ENTRY * (h->NumEntries + h->NumCols);
    int fixed = 0;
    for (int k = 0; k < count && fixed < wanted; k++) {
        if (static_cast<double>(call.Bounds->Effort - before) > limit) break;
        fixed += fix(h, call, h->Order.data[k]);
    }
    h->Work += static_cast<double>(call.Bounds->Effort - before);
    return fixed;
}

int search_rest(HeurState *h, const HeurCall &call, bool *improved)
{
    double work = 0;
    const int code = call.Search.SubMip(call.Search.Owner, call.Bounds->Lower.data,
                                        call.Bounds->Upper.data, improved, &work);
    h->Work += work;
    return code;
}
} // namespace

int FixAndDive(HeurState *h, const HeurCall &call, int count, double wanted, double least)
{
    bool improved = false;
    const double limit = h->Work + MOST_WORK * call.SearchWork;
    for (int k = 0; k < MOST_TRIES && !improved && wanted >= least && h->Work <= limit;
         k++) {
        if (!call.Search.GoOn(call.Search.Owner)) return 0;
        const int64_t mark = domain_mark(call.Bounds);
        const int fixed = fix_columns(h, call, count, wanted);
        const int code =
            fixed >= least ? search_rest(h, call, &improved) : call.Bounds->Error;
        domain_undo(call.Bounds, mark);
        TRY(code);
        if (fixed < least) return 0;
        wanted = std::min<double>(fixed, wanted) * FEWER;
    }
    return 0;
}

int FixPropagate(HeurState *h, const HeurCall &call, double share)
{
    if (!call.Search.SubMip) return 0;
    int count = 0;
    double *key = h->Keys.data;
    for (int j = 0; j < h->NumCols; j++) {
        if (!is_free_integer(h, call, j)) continue;
        h->Order.data[count++] = j;
        const bool whole = std::fabs(call.X[j] - std::round(call.X[j])) <= WHOLE;
        key[j] =
            (whole ? 1 : -1) * (1 + call.Search.BranchDifference(call.Search.Owner, j));
    }
    // The sign says whether a column is whole, the size by how much its ways differ.
    std::sort(h->Order.data, h->Order.data + count, [key](int a, int b) {
        const bool whole_a = key[a] > 0, whole_b = key[b] > 0;
        if (whole_a != whole_b) return whole_a;
        const double size_a = std::fabs(key[a]), size_b = std::fabs(key[b]);
        return size_a != size_b ? size_a > size_b : a < b;
    });
    h->Work += h->NumCols + count;
    if (count == 0) return 0;
    return FixAndDive(h, call, count, share * count, LEAST_SHARE * count);
}
