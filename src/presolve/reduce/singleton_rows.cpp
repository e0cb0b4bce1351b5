// singleton_rows.cpp -- singleton rows become bounds
//
// Method      a x <= b gives x <= b / a (a > 0) or x >= b / a (a < 0); a x = b gives both, and the column is fixed. If
//             the bound is not tighter than the current one the row is redundant.
//             An equation whose entry is small relative to others of its column is processed after the better ones, as
//             in the choice of a pivot; one with a tiny entry is kept, as the error of the value would affect other
//             rows.
// Postsolve   If the column is nonbasic at the bound that the row gave, the row takes over its reduced cost as dual
//             value, and the column becomes basic instead of the slack of the row.
#include "presolve/claim.h"
#include "presolve/integral.h"
#include "presolve/postsolve.h"

namespace
{
constexpr double SMALL_ENTRY = 1e-8; // a bound from a smaller one would be too inaccurate

constexpr double TIGHTER = 1e-10; // least improvement

constexpr int LONG_COLUMN = 50;

constexpr double WAITS = 1e-3, STAYS = 1e-6; // entry beside the largest of its column

enum Mode { REDUNDANT = 0, LOWER = 1, UPPER = 2, BOTH = 3 };

// The bound of row i on its column: x = t, x <= t or x >= t. False if it cannot be satisfied.
bool judge(const PresolveWork *w, int i, double a, int j, double t, int *mode)
{
    const double lb = w->Lb.data[j], ub = w->Ub.data[j],
                 tol = w->FeasTol + rhs_error(w, i) / std::fabs(a) + bound_error(w, j);
    if (w->Sense.data[i] == '=') {
        *mode = BOTH;
        return lb - tol <= t && t <= ub + tol;
    }
    if (a > 0) {
        *mode = ub - TIGHTER > t ? UPPER : REDUNDANT;
        return *mode == REDUNDANT || lb - tol <= t;
    }
    *mode = t > lb + TIGHTER ? LOWER : REDUNDANT;
    return *mode == REDUNDANT || t <= ub + tol;
}

// New bounds, rounded for an integer column.
void new_bounds(const PresolveWork *w, int i, int p, int mode, double t, double *lb,
                double *ub)
{
    const int j = w->Nodes.data[p].col;
    const double a = w->Nodes.data[p].value;
    const bool integer = is_integer(w, j);
    *lb = w->Lb.data[j];
    *ub = w->Ub.data[j];
    const double low = lower_from_row(w, i, j, a, t), high = upper_from_row(w, i, j, a, t);
    if (mode & LOWER) *lb = integer ? std::fmax(*lb, low) : t;
    if (mode & UPPER) *ub = integer ? std::fmin(*ub, high) : t;
}

// The bounds of an integer column that the row leaves are crossed: infeasible if the nearest integers violate the row.
int judge_crossed(PresolveWork *w, int i, int p, double t)
{
    const int j = w->Nodes.data[p].col;
    const double a = w->Nodes.data[p].value, lb = w->Lb.data[j], ub = w->Ub.data[j];
    for (const double x : {std::floor(t), std::ceil(t)}) {
        const double nearest = std::fmin(std::fmax(x, lb), ub);
        double out = a * (nearest - t); // of the row, above its side
        if (w->Sense.data[i] == '=') out = std::fabs(out);
        if (out <= w->FeasTol + rhs_error(w, i)) return 0; // the row stays as it is
    }
    w->InfeasRow = i;
    return END_INFEASIBLE;
}

int make_bound(PresolveWork *w, int i, int p, int mode, double t)
{
    const int j = w->Nodes.data[p].col;
    double lb = 0, ub = 0;
    new_bounds(w, i, p, mode, t, &lb, &ub);
    if (lb > ub && is_integer(w, j)) return judge_crossed(w, i, p, t);
    UndoRecord *undo = undo_push(&w->Undo, UNDO_SINGLETON_ROW, 0);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = j;
    undo->row = i;
    undo->mode = mode;
    undo->value = w->Nodes.data[p].value;
    // If an equation gives the value of an existing bound, that side is attributed to the bound.
    bound_from_row(w, i, j, undo->value, std::fabs(w->Rhs.data[i]));
    delete_entry(w, p);
    w->RowHead.data[i] = -1;
    w->RowCnt.data[i] = ROW_EMPTY;
    w->RowsRemoved++;
    change_bounds(w, j, lb, ub);
    w->BoundsChanged++;
    mark_rows_of_col(w, j);
    mark_col(w, j);
    w->Work += 10.0 * w->ColCnt.data[j];
    TRY(check_limits(w, 2.0 * w->ColCnt.data[j]));
    if (mode != BOTH) return 0;
    return fix_column(w, j, is_integer(w, j) ? lb : t, STATUS_BY_SIGN);
}

int try_row(PresolveWork *w, int i)
{
    const int p = first_in_row(w, i);
    const double a = w->Nodes.data[p].value;
    w->Work += 3;
    if (std::fabs(a) < SMALL_ENTRY) return 0;
    const int j = w->Nodes.data[p].col;
    const double t = w->Rhs.data[i] / a;
    int mode = REDUNDANT;
    if (!judge(w, i, a, j, t, &mode)) {
        if (is_integer(w, j)) return judge_crossed(w, i, p, t);
        w->InfeasRow = i;
        // against the upper bound the multiplier has the sign of a, and the reduced cost the other one
        const double factor = t > w->Ub.data[j] ? 1 / a : -1 / a;
        return claim_infeasible(w, {{i, factor}});
    }
    if (mode != REDUNDANT) return make_bound(w, i, p, mode, t);
    mark_col(w, j);
    remove_row(w, i, ROW_EMPTY);
    return 0;
}

// Inequalities of a long column are collected, since every change of its bound costs a pass over the column.
bool is_of_long_column(const PresolveWork *w, int i)
{
    return w->Sense.data[i] != '=' &&
           w->ColCnt.data[w->Nodes.data[first_in_row(w, i)].col] > LONG_COLUMN;
}

// Stores row i if it is the tightest one of its column and side so far: Scratch and ScratchB hold the bounds, IndexA
// and IndexB the rows that give them, Flag which of them are set, cols the columns.
int note_tightest(PresolveWork *w, int i, Array<int> *cols)
{
    const PresolveNode &node = w->Nodes.data[first_in_row(w, i)];
    const int j = node.col, bit = node.value > 0 ? UPPER : LOWER;
    const double t = w->Rhs.data[i] / node.value;
    double *best = &(bit == UPPER ? w->Scratch : w->ScratchB).data[j];
    const bool is_first = !(w->Flag.data[j] & bit);
    if (!is_first && (bit == UPPER ? t >= *best : t <= *best)) return 0;
    if (w->Flag.data[j] == 0) TRY(array_append(cols, j));
    w->Flag.data[j] |= static_cast<char>(bit);
    *best = t;
    (bit == UPPER ? w->IndexA : w->IndexB).data[j] = i;
    return 0;
}

// Uses the tightest row of each column and side; the others are redundant then.
int take_tightest(PresolveWork *w, const int *list, int count)
{
    Array<int> cols;
    for (int k = 0; k < count; k++) {
        TRY(check_limits(w, 1));
        if (w->RowCnt.data[list[k]] == 1) TRY(note_tightest(w, list[k], &cols));
    }
    int status = 0;
    for (const int j : cols) {
        const bool upper = w->Flag.data[j] & UPPER, lower = w->Flag.data[j] & LOWER;
        w->Flag.data[j] = 0;
        w->Scratch.data[j] = w->ScratchB.data[j] = 0;
        if (upper && status == 0) status = try_row(w, w->IndexA.data[j]);
        if (lower && status == 0) status = try_row(w, w->IndexB.data[j]);
    }
    return status;
}

// Entry of the equation i relative to the largest of its column.
double pivot_share(PresolveWork *w, int i)
{
    const int own = first_in_row(w, i);
    double largest = 0;
    for (int p = first_in_col(w, w->Nodes.data[own].col); p >= 0; p = next_in_col(w, p))
        largest = std::max(largest, std::fabs(w->Nodes.data[p].value));
    w->Work += w->ColCnt.data[w->Nodes.data[own].col];
    return std::fabs(w->Nodes.data[own].value) / largest;
}

// Rows that are processed later.
struct Waiting {
    int *of_long, n_long = 0; // inequalities of long columns
    Array<int> weak;          // equations with small entries
};

int try_or_wait(PresolveWork *w, int i, Waiting *waiting)
{
    TRY(check_limits(w, 1));
    if (w->RowCnt.data[i] != 1) return 0;
    if (is_of_long_column(w, i)) {
        waiting->of_long[waiting->n_long++] = i;
        return 0;
    }
    if (w->Sense.data[i] == '=') {
        const double share = pivot_share(w, i);
        if (share < STAYS) return 0;
        if (share < WAITS) return array_append(&waiting->weak, i);
    }
    return try_row(w, i);
}
} // namespace

int pre_singleton_rows(PresolveWork *w)
{
    const WorkList *rows = rows_of_phase(w);
    Waiting waiting_rows = {w->IndexC.data, 0, {}};
    int next_weak = 0;
    for (int k = 0;;) { // the list grows, so that chains are reduced in one pass
        if (k < rows->PendingCnt) {
            TRY(try_or_wait(w, rows->List.data[k++], &waiting_rows));
        } else if (next_weak < waiting_rows.weak.size) {
            const int i = waiting_rows.weak.data[next_weak++];
            if (w->RowCnt.data[i] == 1) TRY(try_row(w, i));
        } else {
            break;
        }
    }
    const int *waiting = waiting_rows.of_long, n_waiting = waiting_rows.n_long;
    TRY(take_tightest(w, waiting, n_waiting));
    for (int k = 0; k < n_waiting; k++) {
        TRY(check_limits(w, 1));
        if (w->RowCnt.data[waiting[k]] == 1) TRY(try_row(w, waiting[k]));
    }
    return 0;
}

void undo_singleton_row(const UndoRecord *undo, PostPoint *point)
{
    const int j = undo->col, i = point->n + undo->row;
    const double d = point->d[j];
    const bool at_lower = point->status ? point->status[j] == -1 : d > 0,
               at_upper = point->status ? point->status[j] == -2 : d < 0;
    if (!((undo->mode & LOWER) && at_lower) && !((undo->mode & UPPER) && at_upper)) return;
    point->d[i] = d / undo->value;
    point->d[j] = 0;
    if (!point->status) return;
    point->status[j] = 0;
    point->status[i] = -1;
}
