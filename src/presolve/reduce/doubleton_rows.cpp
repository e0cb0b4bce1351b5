// doubleton_rows.cpp -- doubleton equations: one column is substituted out, its bounds are transferred to the other
//
// Problem     a x + b y = c. Then x = (c - b y) / a, and lx <= x <= ux gives two bounds on y.
// Method      Bounds of x that the rows do not imply are transferred to y if they are tighter; then x is free and is
//             substituted out. The number of entries does not increase. The column with fewer entries is x, unless its
//             pivot is so small that errors of y would grow in x. All doubleton equations of a remaining column y are
//             processed while it is mapped, also those that it gets by a substitution, so that stars and chains of
//             doubletons are reduced in one pass.
// Postsolve   The record is below that of the substitution, so x is basic when it is undone. If y is nonbasic at a
//             bound transferred from x, x is at its own bound: y becomes basic instead of x, and the dual value of the
//             row takes over the reduced cost d of y: y_r += d / b, d_x = -a d / b, whose sign is that of the bound of
//             x.
// Cost        O(length of y) per y, O(length of x) per x; O(length of y) if its bounds have changed.
#include "presolve/claim.h"
#include "presolve/integral.h"
#include "presolve/postsolve.h"
#include "presolve/reduce/aggregate.h"

namespace
{
constexpr double LEAST_PIVOT = 1e-6;

// largest ratio of the two coefficients if bounds are transferred
constexpr double MOST_RATIO = 1e3;

constexpr double FREE_RATIO = 1e4; // and if none is

constexpr double MOST_BOUND = 1e15; // a larger transferred bound counts as infinite

constexpr double TIGHTER = 1e-10; // smallest improvement of a bound

// range that counts as zero: the reduced cost decides which bound is active
constexpr double NO_RANGE = 1e-9;

// additional entries that are accepted for the larger pivot
constexpr int SAME_LENGTH = 2;

enum Mode { LOWER = 1, UPPER = 2 }; // sides of y whose bound x gave

// One way to use a doubleton row.
struct Step {
    int p, q;      // entries of x and y
    double a, b;   // their values
    double lb, ub; // of y afterwards
    int mode;      // Mode
    double at[2];  // where x stands when y is at its new lower, upper bound
    bool possible;
};

// Transfers the bound of x at `bound` to y. False if the result is too large to count as finite.
bool move_bound(const PresolveWork *w, Step *s, double bound, bool is_upper)
{
    const int i = w->Nodes.data[s->q].row, y = w->Nodes.data[s->q].col;
    double t = (w->Rhs.data[i] - s->a * bound) / s->b;
    if (std::fabs(t) > MOST_BOUND) return false;
    const bool gives_lower = is_upper == (s->a / s->b > 0);
    t = gives_lower ? lower_from_row(w, i, y, s->b, t) : upper_from_row(w, i, y, s->b, t);
    if (gives_lower && t > s->lb + TIGHTER) {
        s->lb = t;
        s->mode |= LOWER;
        s->at[0] = bound;
    }
    if (!gives_lower && t < s->ub - TIGHTER) {
        s->ub = t;
        s->mode |= UPPER;
        s->at[1] = bound;
    }
    return true;
}

// The remaining column with the bounds transferred to it since it was mapped. Activities are updated once, when all
// substitutions by this column are done.
struct Kept {
    int col;
    double lb, ub;
};

// The substitution of the column of entry p; q is the other entry of its row.
Step plan(const PresolveWork *w, int p, int q, const Kept *kept)
{
    const PresolveNode &px = w->Nodes.data[p], &py = w->Nodes.data[q];
    const int x = px.col, y = py.col;
    Step s = {p, q, px.value, py.value, w->Lb.data[y], w->Ub.data[y], 0, {0, 0}, false};
    const double ratio = std::fabs(s.b / s.a);
    if (y == kept->col) {
        s.lb = kept->lb;
        s.ub = kept->ub;
    }
    if (w->ColFlags.data[x] != 0 || std::fabs(s.a) < LEAST_PIVOT || ratio > FREE_RATIO ||
        !keeps_integers(w, p))
        return s;
    const int matters = bounds_that_matter(w, x);
    if (matters != 0 &&
        (ratio > MOST_RATIO || ratio < 1 / MOST_RATIO || w->ColFlags.data[y] != 0))
        return s;
    s.possible =
        (!(matters & LOWER_MATTERS) || move_bound(w, &s, w->Lb.data[x], false)) &&
        (!(matters & UPPER_MATTERS) || move_bound(w, &s, w->Ub.data[x], true)) &&
        (s.lb <= s.ub || !is_integer(w, y) || rounding_is_certain(w, px.row, s.b)) &&
        errors_allow(w, p, largest_in_col(w, x), std::max(std::fabs(s.a), std::fabs(s.b)));
    return s;
}

// True if the column of entry p should be substituted out rather than that of q.
bool leaves_rather(const PresolveWork *w, int p, int q)
{
    const PresolveNode &px = w->Nodes.data[p], &py = w->Nodes.data[q];
    const int more = w->ColCnt.data[px.col] - w->ColCnt.data[py.col];
    if (std::abs(more) > SAME_LENGTH) return more < 0;
    const double a = std::fabs(px.value), b = std::fabs(py.value);
    return a != b ? a > b : px.col < py.col; // as given
}

// The better way to use a doubleton row.
Step choose(const PresolveWork *w, int i, const Kept *kept)
{
    const int first = first_in_row(w, i), second = next_in_row(w, first);
    const bool swap = leaves_rather(w, second, first);
    const int p = swap ? second : first, q = swap ? first : second;
    const Step step = plan(w, p, q, kept);
    return step.possible ? step : plan(w, q, p, kept);
}

int transfer_bounds(PresolveWork *w, const Step *s, Kept *kept)
{
    const int x = w->Nodes.data[s->p].col, y = w->Nodes.data[s->q].col,
              i = w->Nodes.data[s->p].row;
    const double from_x = std::max(std::fabs(s->mode & LOWER ? s->at[0] : 0),
                                   std::fabs(s->mode & UPPER ? s->at[1] : 0));
    bound_from_row(w, i, y, s->b,
                   std::max(std::fabs(w->Rhs.data[i]), size_of_entry(w, s->p) * from_x));
    raise_to(&w->BoundErr.data[y], w->BoundErr.data[x] * std::fabs(s->a / s->b));
    if (s->lb > s->ub + 2 * w->FeasTol + bound_error(w, y)) {
        w->InfeasCol = y;
        return claim_infeasible(w, {{i, (s->mode & LOWER ? 1 : -1) / s->b}}); // d_y = -+1
    }
    UndoRecord *undo = undo_push(&w->Undo, UNDO_BOUND_TRANSFER, 0);
    if (!undo) return OUT_OF_MEMORY;
    undo->col = x;
    undo->other = y;
    undo->row = i;
    undo->mode = s->mode;
    undo->value = s->a;
    undo->factor = s->b;
    undo->bound[0] = s->at[0];
    undo->bound[1] = s->at[1];
    undo->bound[2] = s->ub - s->lb;
    kept->lb = s->lb;
    kept->ub = s->ub;
    w->BoundsChanged++;
    return 0;
}

bool is_doubleton(const PresolveWork *w, int i)
{
    return w->RowCnt.data[i] == 2 && w->Sense.data[i] == '=';
}

// Processes the row of entry q of the mapped column, if that column is the one to remain.
int try_entry(PresolveWork *w, int q, Kept *kept)
{
    const int i = w->Nodes.data[q].row;
    if (!is_doubleton(w, i)) return 0;
    const Step s = choose(w, i, kept);
    w->Work += w->ColCnt.data[w->Nodes.data[s.p].col];
    if (!s.possible || s.q != q || w->ColCnt.data[w->Nodes.data[s.p].col] > w->FreeCount)
        return 0;
    if (s.mode != 0) TRY(transfer_bounds(w, &s, kept));
    return substitute_by_mapped(w, s.p, q);
}

// All doubleton equations of column y in which it remains. New entries are at the head of its list and processed next.
int merge_into(PresolveWork *w, int y, double most_work)
{
    map_column(w, y);
    Kept kept = {y, w->Lb.data[y], w->Ub.data[y]};
    int error = 0, walked = -1;
    while (w->ColHead.data[y] != walked && !error) {
        const int head = w->ColHead.data[y];
        for (int q = head; q != walked && !error && w->Work < most_work;
             q = w->Nodes.data[q].next_in_col) {
            const double before = w->Work;
            if (w->Nodes.data[q].col == y) error = try_entry(w, q, &kept);
            if (!error) error = check_limits(w, 1 + w->Work - before);
        }
        walked = head;
    }
    unmap_column(w, y);
    if (error || (kept.lb == w->Lb.data[y] && kept.ub == w->Ub.data[y])) return error;
    change_bounds(w, y, kept.lb, kept.ub);
    w->Work += w->ColCnt.data[y];
    return check_limits(w, w->ColCnt.data[y]);
}
} // namespace

int aggregate_doubletons(PresolveWork *w, double most_work)
{
    for (int i = 0; i < w->NumRows && w->Work < most_work; i++) {
        TRY(check_limits(w, 1));
        if (!is_doubleton(w, i)) continue;
        const Kept none = {-1, 0, 0};
        const Step s = choose(w, i, &none);
        bool room = false;
        if (s.possible)
            TRY(room_for_fill(w, w->ColCnt.data[w->Nodes.data[s.p].col], &room));
        if (room) TRY(merge_into(w, w->Nodes.data[s.q].col, most_work));
    }
    w->Work += w->NumRows;
    return 0;
}

void undo_bound_transfer(const UndoRecord *undo, PostPoint *point)
{
    const int x = undo->col, y = undo->other, i = point->n + undo->row;
    const double d = point->d[y], a = undo->value, b = undo->factor;
    int side = d > 0 ? LOWER : d < 0 ? UPPER : 0;
    if (point->status) {
        if (point->status[y] != -1 && point->status[y] != -2) return;
        if (side == 0 || undo->bound[2] > NO_RANGE)
            side = point->status[y] == -1 ? LOWER : UPPER;
        point->status[y] = side == LOWER ? -1 : -2;
    }
    if (!(undo->mode & side)) return;
    point->d[i] += d / b;
    point->d[y] = 0;
    point->d[x] = -a * d / b;
    point->x[x] = point->constants * undo->bound[side == LOWER ? 0 : 1];
    if (!point->status) return;
    point->status[y] = 0;
    point->status[x] = (side == LOWER) == (a / b > 0) ? -2 : -1;
}
