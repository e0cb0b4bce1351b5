// probe_simple.cpp -- equations in which a binary column decides the value of all others
//
// Problem     In a_z x_z + rest = b let [least, most] be the range of the rest. If b - a_z = least and b = most (or b - a_z =
//             most and b = least), the rest is at one end of its range for x_z = 1 and at the other one for x_z = 0.
// Method      Each other column is at the end of its bounds that gives the end of the range: x_k = e0 + (e1 - e0) x_z. All are
//             replaced and the equation is removed.
// Postsolve   column_replace.cpp
// Cost        O(entries of the equations, and of the columns replaced)
// Literature  T. Achterberg et al., "Presolve reductions in mixed integer programming", INFORMS J. Computing 32, 2020.
#include "presolve/errors.h"
#include "presolve/integer/column_replace.h"
#include "presolve/reduce/aggregate.h"

namespace
{
constexpr double SAME = 1e-10;       // relative difference of sums that are equal
constexpr double LEAST_RANGE = 1e-9; // columns with less are fixed by other reductions

// Activity of the row without its side.
struct Range {
    long double least, most;
    double size; // of the largest term
};

bool has_range(const PresolveWork *w, int i, Range *range)
{
    *range = {0, 0, std::fabs(w->Rhs.data[i])};
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        if (!has_lb(w, node.col) || !has_ub(w, node.col)) return false;
        const long double a = node.value, lb = w->Lb.data[node.col],
                          ub = w->Ub.data[node.col];
        range->least += a > 0 ? a * lb : a * ub;
        range->most += a > 0 ? a * ub : a * lb;
        range->size = std::max({range->size, std::fabs(static_cast<double>(a * lb)),
                                std::fabs(static_cast<double>(a * ub))});
    }
    return true;
}

bool is_binary(const PresolveWork *w, int j)
{
    return is_integer(w, j) && w->Lb.data[j] == 0 && w->Ub.data[j] == 1; // integral
}

// The entry of a binary column that decides, or -1.
int find_deciding(const PresolveWork *w, int i, const Range &range)
{
    const long double side = w->Rhs.data[i], zero = SAME * range.size;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const long double a = std::fabs(node.value);
        if (is_binary(w, node.col) && std::fabs(a - (side - range.least)) <= zero &&
            std::fabs(a - (range.most - side)) <= zero)
            return p;
    }
    return -1;
}

// Column of entry p as a multiple of the deciding column.
ColumnReplacement replacement(const PresolveWork *w, int p, int z, double a_z)
{
    const PresolveNode &node = w->Nodes.data[p];
    const double lb = w->Lb.data[node.col], ub = w->Ub.data[node.col];
    // rest at its least end for x_z = 1 if a_z > 0
    const bool low_at_one = (a_z > 0) == (node.value > 0);
    return {node.col, z, low_at_one ? ub : lb, low_at_one ? lb - ub : ub - lb};
}

int try_row(PresolveWork *w, int i)
{
    Range range = {0, 0, 0};
    if (!has_range(w, i, &range)) return 0;
    const int at = find_deciding(w, i, range);
    if (at < 0) return 0;
    const int z = w->Nodes.data[at].col;
    const double a_z = w->Nodes.data[at].value;
    Array<ColumnReplacement> list;
    int64_t fill = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const ColumnReplacement r = replacement(w, p, z, a_z);
        if (p == at) continue;
        if (!may_replace(w, r) || std::fabs(r.factor) <= LEAST_RANGE) return 0;
        fill += w->ColCnt.data[r.col];
        TRY(array_append(&list, r));
    }
    bool there = false;
    TRY(room_for_fill(w, fill, &there));
    if (!there) return 0;
    remove_row(w, i, ROW_REDUNDANT);
    for (const ColumnReplacement &r : list) TRY(replace_column(w, r));
    return 0;
}
} // namespace

int pre_probe_simple(PresolveWork *w)
{
    const int count = candidate_rows(w, w->IndexA.data);
    Array<int> rows; // compression and marks leave it alone
    TRY(array_copy(&rows, w->IndexA.data, count));
    for (const int i : rows) {
        if (w->Sense.data[i] != '=' || w->RowCnt.data[i] < 2) continue;
        w->Work += 2.0 * w->RowCnt.data[i];
        TRY(check_limits(w, 2.0 * w->RowCnt.data[i]));
        if (w->Rmincnt.data[i] > 0 || w->Rmaxcnt.data[i] > 0) continue;
        TRY(try_row(w, i));
    }
    return 0;
}
