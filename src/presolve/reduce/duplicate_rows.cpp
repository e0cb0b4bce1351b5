// duplicate_rows.cpp -- parallel rows: one row of each class is kept
//
// Method      Rows a = scale * v of one class all restrict v x. If one is an equation, the others are redundant or
//             contradict it. Otherwise the tightest upper and the tightest lower side are kept; if they are equal, one
//             row becomes an equation. An equation that contains a column singleton counts as parallel without that
//             column: it is subtracted from its parallel rows, which leaves a bound on that column, or, for two such
//             equations, an equation of their two columns.
// Postsolve   Redundant rows have a basic slack and dual value 0. Of two inequalities that became an equation, the one
//             with the matching sign gets the dual value.
// Cost        That of finding the classes, and O(class log class).
#include "presolve/claim.h"
#include "presolve/errors.h"
#include "presolve/postsolve.h"
#include "presolve/reduce/duplicates.h"
#include "presolve/reduce/row_combination.h"

namespace
{
constexpr double ROUNDING = 1e-9; // relative difference of equal right-hand sides
// a row may not replace another one whose scale is larger by this factor
constexpr double COARSE = 1e3;

double level(const PresolveWork *w, const DupLine *l)
{
    return w->Rhs.data[l->line] / l->scale;
}
bool is_equation(const PresolveWork *w, const DupLine *l)
{
    return w->Sense.data[l->line] == '=';
}
// True if the rows at these levels of v x contradict each other by more than the tolerances.
bool beyond_tolerance(const PresolveWork *w, const DupLine *a, const DupLine *b, double gap)
{
    const double allowed = 1 / std::fabs(a->scale) + 1 / std::fabs(b->scale);
    const double size = std::max(std::fabs(level(w, a)), std::fabs(level(w, b)));
    const double error = rhs_error(w, a->line) / std::fabs(a->scale) +
                         rhs_error(w, b->line) / std::fabs(b->scale);
    return gap > w->FeasTol * allowed + ROUNDING * size + error;
}
bool is_rounding(const PresolveWork *w, const DupLine *a, const DupLine *b, double gap)
{
    const double largest = std::max(std::fabs(a->scale), std::fabs(b->scale));
    const double size = std::max(std::fabs(level(w, a)), std::fabs(level(w, b)));
    return gap <= std::min(ROUNDING * (1 / largest + size), 0.1 * w->FeasTol / largest);
}
bool can_stand_for(const DupLine *kept, const DupLine *gone)
{
    return std::fabs(gone->scale) <= COARSE * std::fabs(kept->scale);
}

// v x cannot be at most the level of `low` and at least that of `high`.
int infeasible(PresolveWork *w, const DupLine *low, const DupLine *high)
{
    w->InfeasRow = low->line;
    return claim_infeasible(w,
                            {{low->line, -1 / low->scale}, {high->line, 1 / high->scale}});
}

// Row l against the equation eq of its class.
int judge_by_equation(PresolveWork *w, const DupLine *eq, const DupLine *l)
{
    double gap = level(w, eq) - level(w, l); // positive: an upper side is violated
    if (is_equation(w, l))
        gap = std::fabs(gap);
    else if (l->scale < 0)
        gap = -gap;
    if (beyond_tolerance(w, eq, l, gap))
        return level(w, eq) > level(w, l) ? infeasible(w, l, eq) : infeasible(w, eq, l);
    if (is_rounding(w, eq, l, gap) && can_stand_for(eq, l))
        remove_row(w, l->line, ROW_REDUNDANT);
    return 0;
}

// Subtracts the equation `base` from row `l` if that is accurate: only the entries outside of the common vector remain.
int take_off(PresolveWork *w, const DupLine *base, const DupLine *l)
{
    const double factor = l->scale / base->scale;
    if (!can_stand_for(base, l) || !can_stand_for(l, base)) return 0;
    if (base->skip >= 0 && w->FreeCount < 1) return 0;
    const int own = base->skip >= 0 ? w->Nodes.data[base->skip].col : -1;
    return combine_rows(w, l->line, base->line, -factor, own);
}

int classes_with_equation(PresolveWork *w, DupLine *eq, DupLine *members, int count)
{
    for (int k = 0; k < count; k++) {
        DupLine *l = &members[k];
        TRY(check_limits(w, l->length));
        if (l == eq || l->skip >= 0) continue;
        TRY(judge_by_equation(w, eq, l));
    }
    for (int k = 0; k < count; k++)
        if (members[k].skip >= 0) {
            TRY(check_limits(w, 2 * members[k].length));
            TRY(take_off(w, eq, &members[k]));
        }
    return 0;
}

// Equations first: postsolve undoes them last, when the slack of the base is nonbasic if necessary.
int classes_with_slack(PresolveWork *w, DupLine *base, DupLine *members, int count)
{
    for (const bool equations : {true, false})
        for (int k = 0; k < count; k++) {
            DupLine *l = &members[k];
            TRY(check_limits(w, 2 * l->length));
            if (l != base && is_equation(w, l) == equations) TRY(take_off(w, base, l));
        }
    return 0;
}

// Of two inequalities that bound v x from the same side, removes the weaker one. Returns the other.
DupLine *keep_tighter(PresolveWork *w, DupLine *a, DupLine *b)
{
    const double side = a->scale > 0 ? 1 : -1;
    const double gap = side * (level(w, b) - level(w, a)); // positive: a is tighter
    DupLine *kept = gap >= 0 ? a : b, *gone = gap >= 0 ? b : a;
    if (is_rounding(w, a, b, std::fabs(gap)) && !can_stand_for(kept, gone))
        std::swap(kept, gone);
    if (can_stand_for(kept, gone)) remove_row(w, gone->line, ROW_REDUNDANT);
    return kept;
}

int record_parallel(PresolveWork *w, const DupLine *kept, const DupLine *gone)
{
    UndoRecord *undo = undo_push(&w->Undo, UNDO_PARALLEL_ROWS, 0);
    if (!undo) return OUT_OF_MEMORY;
    undo->row = kept->line;
    undo->other = gone->line;
    undo->factor = gone->scale / kept->scale;
    return 0;
}

// v x lies between the levels of lower and upper.
int judge_range(PresolveWork *w, DupLine *upper, DupLine *lower)
{
    const double gap = level(w, upper) - level(w, lower);
    if (beyond_tolerance(w, upper, lower, -gap)) return infeasible(w, upper, lower);
    if (!is_rounding(w, upper, lower, std::fabs(gap))) return 0;
    DupLine *kept = upper, *gone = lower;
    if (std::fabs(lower->scale) > std::fabs(upper->scale)) std::swap(kept, gone);
    TRY(record_parallel(w, kept, gone));
    w->Sense.data[kept->line] = '=';
    w->IneqToEq++;
    mark_row(w, kept->line);
    mark_cols_of_row(w, kept->line);
    remove_row(w, gone->line, ROW_REDUNDANT);
    return 0;
}

int inequalities(PresolveWork *w, DupLine *members, int count)
{
    DupLine *upper = nullptr, *lower = nullptr;
    for (int k = 0; k < count; k++) {
        DupLine *l = &members[k];
        DupLine **side = l->scale > 0 ? &upper : &lower;
        TRY(check_limits(w, l->length));
        *side = *side ? keep_tighter(w, *side, l) : l;
    }
    return upper && lower ? judge_range(w, upper, lower) : 0;
}

int handle_rows(PresolveWork *w, DupLine *members, int count)
{
    DupLine *equation = nullptr, *with_slack = nullptr;
    for (int k = 0; k < count; k++) {
        DupLine *l = &members[k];
        if (!is_equation(w, l)) continue;
        DupLine **best = l->skip >= 0 ? &with_slack : &equation;
        if (!*best || std::fabs(l->scale) > std::fabs((*best)->scale)) *best = l;
    }
    if (equation) return classes_with_equation(w, equation, members, count);
    if (with_slack) return classes_with_slack(w, with_slack, members, count);
    return inequalities(w, members, count);
}

constexpr int NONE = -1, SEVERAL = -2;

// In IndexB, for each equation of the list: its entry in a column singleton, or NONE, or SEVERAL.
void find_slacks(PresolveWork *w, const int *list, int count)
{
    int *slack = w->IndexB.data;
    for (int k = 0; k < count; k++) w->Flag.data[list[k]] = w->Sense.data[list[k]] == '=';
    for (int k = 0; k < count; k++) slack[list[k]] = NONE;
    for (int j = 0; j < w->NumCols; j++) {
        if (w->ColCnt.data[j] != 1) continue;
        const int p = first_in_col(w, j), i = w->Nodes.data[p].row;
        if (!w->Flag.data[i]) continue;
        const bool fit = w->ColFlags.data[j] == 0 && !is_integer(w, j);
        slack[i] = slack[i] == NONE && fit ? p : SEVERAL;
    }
    for (int k = 0; k < count; k++) w->Flag.data[list[k]] = 0;
}
} // namespace

int pre_duplicate_rows(PresolveWork *w)
{
    const int count = candidate_rows(w, w->IndexA.data);
    find_slacks(w, w->IndexA.data, count);
    return duplicate_classes(w, Axis::ROWS, w->IndexA.data, count, w->IndexB.data,
                             handle_rows);
}

// The equation a x = b was a x <= b (the row kept) and factor * a x <= factor * b, factor < 0 (the other): a positive
// dual value belongs to the latter.
void undo_parallel_rows(const UndoRecord *undo, PostPoint *point)
{
    const int kept = point->n + undo->row, other = point->n + undo->other;
    if (point->d[kept] <= 0) return;
    point->d[other] = point->d[kept] / undo->factor;
    point->d[kept] = 0;
    if (!point->status) return;
    point->status[other] = point->status[kept];
    point->status[kept] = 0;
}
