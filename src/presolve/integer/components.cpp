// components.cpp -- parts of the model that share no row with the rest are solved on their own
//
// Problem     A small part costs little to solve, but in the tree of the whole model its branches multiply.
// Method      Columns that share a row are joined (union-find). Each part with few columns, the largest apart, becomes a
//             body of its own. Who calls presolve says how that is solved (ComponentSolver); at an optimal point its columns
//             are fixed. What is not solved stays.
// Safety      Other optima are lost. The point has to satisfy the rows of the record within the tolerance. Parts with members
//             of sets or semi-continuous columns stay.
// Postsolve   That of fixing.
// Cost        O(entries), and the solves
#include "body/build.h"
#include "presolve/errors.h"
#include <algorithm>

namespace
{
constexpr int MOST_COLUMNS = 50; // of a part that counts as small
constexpr int MOST_PARTS = 1000; // solved in one call
constexpr int MOST_FAILURES =
    3; // parts that could not be solved, after which no others are tried

struct Parts {
    PresolveWork *w;
    Array<int> Parent; // [NumCols] union-find: another column of the part, or itself
    Array<int> Size;   // [NumCols] columns of the part, at its root; -1: not to be solved
    Array<int> Cols;   // [live columns] those of a part side by side
    Array<int> Place;  // [NumCols], [NumRows] number in the body of the present part
    Array<int> RowPlace;
    Array<int> Rows; // of the present part
};

int root_of(int *parent, int j)
{
    while (parent[j] != j) j = parent[j] = parent[parent[j]];
    return j;
}

int join_columns(Parts *parts)
{
    PresolveWork *w = parts->w;
    int *parent = parts->Parent.data;
    for (int j = 0; j < w->NumCols; j++) parent[j] = j;
    for (int i = 0; i < w->NumRows; i++) {
        if (!is_live_row(w, i) || w->RowCnt.data[i] < 2) continue;
        TRY(check_limits(w, w->RowCnt.data[i]));
        w->Work += w->RowCnt.data[i];
        const int p = first_in_row(w, i), first = root_of(parent, w->Nodes.data[p].col);
        for (int q = next_in_row(w, p); q >= 0; q = next_in_row(w, q))
            parent[root_of(parent, w->Nodes.data[q].col)] = first;
    }
    return 0;
}

// Sizes, and the columns sorted by part; returns the size of the largest.
int count_columns(Parts *parts)
{
    const PresolveWork *w = parts->w;
    int largest = 0, *parent = parts->Parent.data, *size = parts->Size.data;
    parts->Cols.size = 0;
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_live_col(w, j) || w->ColCnt.data[j] == 0) continue;
        array_push(&parts->Cols, j);
        largest = std::max(largest, ++size[root_of(parent, j)]);
    }
    for (const int j : parts->Cols)
        if (w->ColFlags.data[j] != 0) size[root_of(parent, j)] = -1;
    std::sort(parts->Cols.begin(), parts->Cols.end(), [parent](int a, int b) {
        const int of_a = root_of(parent, a), of_b = root_of(parent, b);
        return of_a < of_b || (of_a == of_b && a < b);
    });
    return largest;
}

void collect_rows(Parts *parts, const int *cols, int count)
{
    const PresolveWork *w = parts->w;
    parts->Rows.size = 0;
    for (int k = 0; k < count; k++) {
        parts->Place.data[cols[k]] = k;
        for (int p = first_in_col(w, cols[k]); p >= 0; p = next_in_col(w, p)) {
            const int i = w->Nodes.data[p].row;
            if (parts->RowPlace.data[i] >= 0) continue;
            parts->RowPlace.data[i] = static_cast<int>(parts->Rows.size);
            array_push(&parts->Rows, i);
        }
    }
}

int fill_arrays(const Parts *parts, const int *cols, int count, ModelArrays *arrays)
{
    const PresolveWork *w = parts->w;
    for (const int i : parts->Rows) {
        TRY(array_append(&arrays->rhs, w->Rhs.data[i]));
        TRY(array_append(&arrays->senses, w->Sense.data[i]));
    }
    for (int k = 0; k < count; k++) {
        const int j = cols[k];
        const bool binary = w->Lb.data[j] == 0 && w->Ub.data[j] == 1; // integral
        TRY(array_append(&arrays->obj, w->Obj.data[j]));
        TRY(array_append(&arrays->lb, w->Lb.data[j]));
        TRY(array_append(&arrays->ub, w->Ub.data[j]));
        TRY(array_append(&arrays->vtypes, is_integer(w, j) ? (binary ? 'B' : 'I') : 'C'));
        TRY(array_append(&arrays->vbeg, static_cast<int>(arrays->vind.size)));
        for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
            TRY(array_append(&arrays->vind, parts->RowPlace.data[w->Nodes.data[p].row]));
            TRY(array_append(&arrays->vval, w->Nodes.data[p].value));
        }
    }
    return array_append(&arrays->vbeg, static_cast<int>(arrays->vind.size));
}

// Puts the point within bounds and on integers; false if it violates a row then.
bool mend_point(const Parts *parts, const int *cols, int count, double *x)
{
    const PresolveWork *w = parts->w;
    for (int k = 0; k < count; k++) {
        if (is_integer(w, cols[k])) x[k] = std::round(x[k]);
        x[k] = std::min(std::max(x[k], w->Lb.data[cols[k]]), w->Ub.data[cols[k]]);
    }
    for (const int i : parts->Rows) {
        double left = w->Rhs.data[i];
        for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
            left -= w->Nodes.data[p].value * x[parts->Place.data[w->Nodes.data[p].col]];
        if (!(left >= -w->FeasTol) || (w->Sense.data[i] == '=' && left > w->FeasTol))
            return false;
    }
    return true;
}

int solve_body(const Parts *parts, ModelArrays *arrays, double *x, bool *solved)
{
    const ComponentSolver *solver = parts->w->Components;
    ModelBody *body = nullptr;
    const int code = body_adopt(parts->w->Env, arrays, &body);
    if (code) return code == OUT_OF_MEMORY ? code : 0;
    const int end = solver->Solve(solver->Context, body, x, solved);
    body_free(body);
    return end;
}

// *solved: the columns are fixed.
int solve_part(Parts *parts, const int *cols, int count, bool *solved)
{
    PresolveWork *w = parts->w;
    double x[MOST_COLUMNS];
    ModelArrays arrays;
    *solved = false;
    collect_rows(parts, cols, count);
    TRY(fill_arrays(parts, cols, count, &arrays));
    TRY(solve_body(parts, &arrays, x, solved));
    *solved = *solved && mend_point(parts, cols, count, x);
    for (const int i : parts->Rows) parts->RowPlace.data[i] = -1;
    for (int k = 0; k < count && *solved; k++)
        TRY(fix_column(w, cols[k], x[k], STATUS_BY_SIGN));
    return presolve_check(w);
}

int solve_parts(Parts *parts, int largest)
{
    const int count = static_cast<int>(parts->Cols.size);
    int failures = 0, tried = 0;
    bool kept_largest = false;
    for (int begin = 0, end = 0; begin < count; begin = end) {
        const int root = root_of(parts->Parent.data, parts->Cols.data[begin]);
        const int size = parts->Size.data[root];
        for (end = begin; end < count; end++)
            if (root_of(parts->Parent.data, parts->Cols.data[end]) != root) break;
        const bool keep = size == largest && !kept_largest;
        kept_largest = kept_largest || keep;
        if (keep || size < 0 || size > MOST_COLUMNS) continue;
        bool solved = false;
        if (tried++ >= MOST_PARTS || failures >= MOST_FAILURES) return 0;
        TRY(solve_part(parts, parts->Cols.data + begin, size, &solved));
        failures += !solved;
    }
    return 0;
}
} // namespace

int pre_components(PresolveWork *w)
{
    if (!w->Components) return 0;
    Parts parts;
    parts.w = w;
    for (Array<int> *a : {&parts.Parent, &parts.Place}) TRY(array_resize(a, w->NumCols));
    TRY(array_assign(&parts.Size, w->NumCols, 0));
    TRY(array_reserve(&parts.Cols, w->NumCols));
    TRY(array_reserve(&parts.Rows, w->NumRows));
    TRY(array_assign(&parts.RowPlace, w->NumRows, -1));
    TRY(join_columns(&parts));
    return solve_parts(&parts, count_columns(&parts));
}
