// parallel_equations.cpp -- equations that are parallel but for a column of their own
//
// Problem     v x + g z = b (or without g z) and s v x + h y = b' (an equation, or an inequality without h y), where z
//             and y stand in no other row.
// Method      The first, times s, is taken off the second. Then h y - s g z = b' - s b is left. With one of the two
//             columns this is a singleton row. With both, y = t + k z follows z: its bounds and its cost move to z, and
//             column and row go.
// Way back    Of y: when z stands at a bound that came from y, then y is what stands there, and z is basic; else y is
//             basic. The duals of the rows follow from reduced costs that are zero. Of the rows: row_combination.cpp.
#include "presolve/parallel_equations.h"
#include "presolve/postsolve.h"
#include "presolve/row_combination.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double LARGEST_FACTOR =
    1e3; // beyond it, or below one over it, errors would grow too much
constexpr double TIGHTER = 1e-10;   // least improvement of a bound
constexpr double LARGE_VALUE = 1e8; // constants and bounds beyond are not moved about
enum Mode { LOWER = 1, UPPER = 2 }; // bounds of z that came from y

bool is_moderate(double factor)
{
    const double size = std::fabs(factor);
    return size <= LARGEST_FACTOR && size >= 1 / LARGEST_FACTOR;
}

// y = t + k z, and what the bounds of y make of those of z.
struct Follows {
    double t, k, lb, ub;
    int mode;
};

bool bounds_fit(const PresolveWork *w, int y, int z, Follows *f)
{
    double lb = -w->INF, ub = w->INF;
    double *from_lower = f->k > 0 ? &lb : &ub, *from_upper = f->k > 0 ? &ub : &lb;
    if (has_lb(w, y)) *from_lower = (w->Lb.data[y] - f->t) / f->k;
    if (has_ub(w, y)) *from_upper = (w->Ub.data[y] - f->t) / f->k;
    f->lb = w->Lb.data[z];
    f->ub = w->Ub.data[z];
    f->mode = 0;
    if (lb > f->lb + TIGHTER) {
        f->lb = lb;
        f->mode |= LOWER;
    }
    if (ub < f->ub - TIGHTER) {
        f->ub = ub;
        f->mode |= UPPER;
    }
    if (std::fabs(f->t) > LARGE_VALUE) return false;
    if ((f->mode & LOWER) && std::fabs(f->lb) > LARGE_VALUE) return false;
    if ((f->mode & UPPER) && std::fabs(f->ub) > LARGE_VALUE) return false;
    return f->lb <= f->ub;
}

int remove_follower(PresolveWork *w, int base, int row, int p_y, int p_z, const Follows *f)
{
    const int y = w->Nodes.data[p_y].col, z = w->Nodes.data[p_z].col;
    UndoRecord *undo = undo_push(&w->Undo, UNDO_FOLLOWER, w->RowCnt.data[base]);
    if (!undo) return OUT_OF_MEMORY;
    record_row(w, base, undo);
    undo->split = base;
    undo->row = row;
    undo->col = y;
    undo->other = z;
    undo->mode = f->mode;
    undo->value = f->t;
    undo->factor = f->k;
    undo->cost = w->Obj.data[y];
    undo->bound[0] = w->Nodes.data[p_y].value;
    w->ObjCon += w->Obj.data[y] * f->t;
    w->Obj.data[z] += w->Obj.data[y] * f->k;
    w->Obj.data[y] = 0;
    delete_entry(w, p_y);
    delete_entry(w, p_z);
    w->RowHead.data[row] = w->ColHead.data[y] = -1;
    w->RowCnt.data[row] = ROW_PIVOT;
    w->ColCnt.data[y] = col_substituted(row);
    w->RowsRemoved++;
    w->ColsRemoved++;
    if (f->mode) {
        change_bounds(w, z, f->lb, f->ub);
        w->BoundsChanged++;
    }
    mark_col(w, z);
    mark_rows_of_col(w, z);
    return 0;
}

// What is left of two equations: h y + g z = b.
int try_follower(PresolveWork *w, int base, int row, int y)
{
    const int first = first_in_row(w, row), second = next_in_row(w, first);
    const bool y_first = w->Nodes.data[first].col == y;
    const int p_y = y_first ? first : second, p_z = y_first ? second : first;
    const int z = w->Nodes.data[p_z].col;
    const double h = w->Nodes.data[p_y].value, g = w->Nodes.data[p_z].value;
    Follows f = {w->Rhs.data[row] / h, -g / h, 0, 0, 0};
    if (!is_moderate(f.k) || w->ColFlags.data[z] || is_integer(w, z)) return 0;
    return bounds_fit(w, y, z, &f) ? remove_follower(w, base, row, p_y, p_z, &f) : 0;
}
} // namespace

int take_off(PresolveWork *w, const DupLine *base, const DupLine *l)
{
    const double factor = l->scale / base->scale;
    if (!is_moderate(factor)) return 0;
    if (base->skip >= 0 && w->FreeCount < 1) return 0;
    const int y = l->skip >= 0 ? w->Nodes.data[l->skip].col : -1;
    const int z = base->skip >= 0 ? w->Nodes.data[base->skip].col : -1;
    TRY(combine_rows(w, l->line, base->line, -factor, z));
    const bool both = y >= 0 && z >= 0;
    return both && w->RowCnt.data[l->line] == 2 ? try_follower(w, base->line, l->line, y)
                                                : 0;
}

void undo_follower(const UndoRecord *undo, PostPoint *point)
{
    const int y = undo->col, z = undo->other, row = point->n + undo->row;
    point->x[y] = undo->value + undo->factor * point->x[z];
    release_slack(undo, undo->split, -1, point);
    const double d = point->d[z];
    const int status = point->status ? point->status[z] : d > 0 ? -1 : d < 0 ? -2 : 0;
    const bool from_y =
        (status == -1 && (undo->mode & LOWER)) || (status == -2 && (undo->mode & UPPER));
    point->d[y] = from_y ? d / undo->factor : 0;
    if (from_y) point->d[z] = 0;
    point->d[row] = (undo->cost - point->d[y]) / undo->bound[0];
    if (!point->status) return;
    point->status[row] = -1;
    point->status[y] = !from_y ? 0 : undo->factor > 0 ? status : -3 - status;
    if (from_y) point->status[z] = 0;
}
