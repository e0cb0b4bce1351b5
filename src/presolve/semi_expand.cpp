// semi_expand.cpp -- semi-continuous columns of the reduced model get indicator columns and rows
//
// Method      Let [l, u] be the range of values other than 0 of the column x, and z a new binary column.
//             Finite range          x - u z <= 0 and l z - x <= 0: x is in the range at z = 1, and 0 at z = 0.
//             u infinite            -x - l z <= -l and an SOS1 of x and z: x >= l at z = 0, x = 0 at z = 1.
//             l infinite, u < 0     x + u z <= u, likewise.
//             Rows hold within tolerances only: a search has to branch on z while x is outside of its range.
// Order       New columns and rows stand behind all others, in the order of the semi-continuous columns.
// Cost        O(entries of the reduced model), as the columns get new entries
#include "presolve/semi_expand.h"
#include <algorithm>

namespace
{
struct Expansion {
    SemiColumn semi;
    int first_row;
};

int count_rows(const SemiColumn &semi)
{
    return semi.kind == SemiKind::ON_AT_ONE ? 2 : 1;
}

SemiColumn describe(const PresolveWork *w, const PresolveResult *result, int k)
{
    const int j = w->SemiCols.data[k];
    SemiColumn semi = {result->ColMap.data[j],
                       -1,
                       std::max(w->SemiLb.data[k], w->Lb.data[j]),
                       std::min(w->SemiUb.data[k], w->Ub.data[j]),
                       SemiKind::ON_AT_ONE,
                       is_integer(w, j)};
    if (semi.lower <= -w->INF || semi.upper >= w->INF) semi.kind = SemiKind::ON_AT_ZERO;
    return semi;
}

// The bound of the range that is nearer to 0, and its sign.
double near_bound(const SemiColumn &semi)
{
    return semi.lower > 0 ? semi.lower : semi.upper;
}

// Entries of column x in its row number `row` (0 or 1).
double entry_of_x(const SemiColumn &semi, int row)
{
    if (semi.kind == SemiKind::ON_AT_ONE) return row == 0 ? 1 : -1;
    return semi.lower > 0 ? -1 : 1;
}

double entry_of_z(const SemiColumn &semi, int row)
{
    if (semi.kind == SemiKind::ON_AT_ONE) return row == 0 ? -semi.upper : semi.lower;
    return semi.lower > 0 ? -semi.lower : semi.upper;
}

// Moves the entries so that the columns of `list` have room for their new rows, and adds these.
int add_entries_of_x(const Array<Expansion> &list, ModelArrays *r)
{
    int64_t more = 0;
    for (const Expansion &e : list) more += count_rows(e.semi);
    const int64_t old = r->vind.size;
    TRY(array_resize(&r->vind, old + more));
    TRY(array_resize(&r->vval, old + more));
    const int n = static_cast<int>(r->obj.size);
    int64_t to = old + more, next = list.size - 1;
    for (int j = n - 1; j >= 0; j--) {
        const int begin = r->vbeg.data[j], end = r->vbeg.data[j + 1];
        r->vbeg.data[j + 1] = static_cast<int>(to);
        if (next >= 0 && list.data[next].semi.col == j) {
            const Expansion &e = list.data[next--];
            for (int row = count_rows(e.semi) - 1; row >= 0; row--) {
                r->vind.data[--to] = e.first_row + row;
                r->vval.data[to] = entry_of_x(e.semi, row);
            }
        }
        for (int p = end - 1; p >= begin; p--) {
            r->vind.data[--to] = r->vind.data[p];
            r->vval.data[to] = r->vval.data[p];
        }
    }
    return 0;
}

int add_rows(const SemiColumn &semi, ModelArrays *r)
{
    const double side = semi.kind == SemiKind::ON_AT_ONE ? 0
                        : semi.lower > 0                 ? -near_bound(semi)
                                                         : near_bound(semi);
    for (int row = 0; row < count_rows(semi); row++) {
        TRY(array_append(&r->rhs, side));
        TRY(array_append(&r->senses, '<'));
    }
    return 0;
}

int add_indicator(const Expansion &e, ModelArrays *r)
{
    TRY(array_append(&r->obj, 0.0));
    TRY(array_append(&r->lb, 0.0));
    TRY(array_append(&r->ub, 1.0));
    TRY(array_append(&r->vtypes, 'B'));
    for (int row = 0; row < count_rows(e.semi); row++) {
        const double a = entry_of_z(e.semi, row);
        TRY(array_append(&r->vind, e.first_row + row));
        TRY(array_append(&r->vval, a));
    }
    return array_append(&r->vbeg, static_cast<int>(r->vind.size));
}

int add_set(const SemiColumn &semi, ModelArrays *r)
{
    if (semi.kind == SemiKind::ON_AT_ONE) return 0;
    TRY(array_append(&r->sostype, 1));
    TRY(array_append(&r->sosbeg, static_cast<int>(r->sosind.size)));
    TRY(array_append(&r->sosind, semi.col));
    TRY(array_append(&r->sosind, semi.indicator));
    TRY(array_append(&r->soswt, 1.0));
    return array_append(&r->soswt, 2.0);
}

// All semi-continuous columns that are left, with the places of what they get.
int list_semi(const PresolveWork *w, PresolveResult *result, int64_t rows, int64_t cols,
              Array<Expansion> *list)
{
    for (int k = 0; k < w->NumSemi; k++) {
        if (w->SemiCols.data[k] < 0) continue;
        Expansion e = {describe(w, result, k), static_cast<int>(rows)};
        e.semi.indicator = static_cast<int>(cols++);
        rows += count_rows(e.semi);
        if (rows + cols > MODEL_SIZE_LIMIT) return OUT_OF_MEMORY;
        TRY(array_append(list, e));
        TRY(array_append(&result->Semi, e.semi));
    }
    return 0;
}
} // namespace

int expand_semi(PresolveWork *w, PresolveResult *result, ModelArrays *arrays)
{
    Array<Expansion> list;
    TRY(list_semi(w, result, arrays->rhs.size, arrays->obj.size, &list));
    if (list.size == 0) return 0;
    TRY(add_entries_of_x(list, arrays));
    for (const Expansion &e : list) {
        TRY(add_rows(e.semi, arrays));
        TRY(add_indicator(e, arrays));
        TRY(add_set(e.semi, arrays));
    }
    return 0;
}
