// singleton_knapsack.cpp -- column singletons that relax the same row: the cheapest ones suffice
//
// Problem     A row with sign s (s a x <= s b, or an equation) contains several column singletons with cost >= 0. Those
//             with s a < 0 relax the row; the other columns of the row require at most a known relaxation.
// Method      Sorted by cost per unit of relaxation, the first ones together give all that may be required. A later one
//             above its lower bound could be exchanged for an earlier one, so it is fixed at its lower bound.
// Postsolve   That of fixing. If the dual value made a fixed column attractive, all earlier ones would be at their
//             upper bounds; then the row would not be tight, since they give more than is required, and its dual value
//             zero.
// Cost        O(entries + candidates log candidates)
#include "presolve/work.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double LARGE_BOUND = 1e10; // a lower bound beyond counts as infinite

// tolerances by which the relaxation must exceed the need
constexpr double SPARE = 10;

struct Relief {
    double price, amount; // per unit of relief; at most
    int col;
};

// Data of the row.
struct RowNeed {
    // Relaxation that the row may need, with all candidates at their lower bounds.
    double need = 0;
    double cap = 0;  // relief that the candidates can give
    double size = 0; // of the terms of the need
    int candidates = 0, integers = 0;
    bool others_integral = true;
    bool bounded = true;
    bool whole = false,
         divisible = false; // integer, continuous candidates, those with s a > 0 too
};

bool is_candidate(const PresolveWork *w, int j, double t)
{
    if (w->ColCnt.data[j] != 1 || w->Obj.data[j] < 0 || w->ColFlags.data[j]) return false;
    if (w->Lb.data[j] <= -LARGE_BOUND) return false;
    return !is_integer(w, j) || std::fabs(std::fabs(t) - 1) <= INTEGRAL;
}

void add_candidate(const PresolveWork *w, int j, double t, RowNeed *row)
{
    const double term = t * w->Lb.data[j];
    row->need += term;
    row->size = std::max(row->size, std::fabs(term));
    (is_integer(w, j) ? row->whole : row->divisible) = true;
    if (t > 0) return;
    row->candidates++;
    row->integers += is_integer(w, j);
    row->cap += has_ub(w, j) ? (w->Ub.data[j] - w->Lb.data[j]) * -t : w->INF;
}

void add_other(const PresolveWork *w, int j, double t, RowNeed *row)
{
    const bool there = t > 0 ? has_ub(w, j) : has_lb(w, j);
    const double term = t * (t > 0 ? w->Ub.data[j] : w->Lb.data[j]);
    row->bounded = row->bounded && there;
    row->need += term;
    row->size = std::max(row->size, std::fabs(term));
    row->others_integral = row->others_integral && is_integer(w, j) && is_integral(t);
}

bool judge_row(const PresolveWork *w, int i, double sign, RowNeed *row)
{
    row->need = -sign * w->Rhs.data[i];
    row->size = std::fabs(row->need);
    for (int p = first_in_row(w, i); p >= 0 && row->bounded; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        const double t = sign * w->Nodes.data[p].value;
        if (is_candidate(w, j, t))
            add_candidate(w, j, t, row);
        else
            add_other(w, j, t, row);
    }
    if (!row->bounded || row->candidates < 1) return false;
    row->need += SPARE * w->FeasTol + INTEGRAL * row->size;
    // In an equation candidates on both sides fall together, which one in whole units and one that is not cannot.
    if (w->Sense.data[i] == '=' && row->whole && row->divisible) return false;
    // Relaxations by integer columns can be exchanged in whole units only.
    if (row->integers > 0 && (!row->others_integral || row->integers < row->candidates))
        return false;
    return row->need < row->cap;
}

bool is_cheaper(const Relief &a, const Relief &b)
{
    return a.price < b.price || (a.price == b.price && a.col < b.col);
}

int collect(const PresolveWork *w, int i, double sign, Relief *list)
{
    int count = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        const double t = sign * w->Nodes.data[p].value;
        if (t > 0 || !is_candidate(w, j, t)) continue;
        const double range = has_ub(w, j) ? w->Ub.data[j] - w->Lb.data[j] : w->INF;
        list[count++] = {w->Obj.data[j] / -t, range * -t, j};
    }
    std::sort(list, list + count, is_cheaper);
    return count;
}

int try_row(PresolveWork *w, int i, double sign, Relief *list)
{
    RowNeed row;
    w->Work += 3.0 * w->RowCnt.data[i];
    if (!judge_row(w, i, sign, &row)) return 0;
    const int count = collect(w, i, sign, list);
    int k = 0;
    for (double relief = 0; k < count && relief < row.need; k++) relief += list[k].amount;
    for (; k < count; k++) TRY(fix_at_lower(w, list[k].col));
    return 0;
}

// Active rows that contain a column singleton.
int rows_with_singletons(PresolveWork *w, int *list)
{
    int *active = w->IndexB.data;
    const int count = active_rows(w, active);
    for (int k = 0; k < count; k++) w->Flag.data[active[k]] = 1;
    int kept = 0;
    for (int j = 0; j < w->NumCols; j++) {
        if (w->ColCnt.data[j] != 1) continue;
        const int i = w->Nodes.data[first_in_col(w, j)].row;
        if (!w->Flag.data[i]) continue;
        w->Flag.data[i] = 0;
        list[kept++] = i;
    }
    for (int k = 0; k < count; k++) w->Flag.data[active[k]] = 0;
    return kept;
}
} // namespace

int pre_singleton_knapsack(PresolveWork *w)
{
    const TVXenv *env = w->Env;
    const bool interior = w->Method == LP_BARRIER && env->Crossover == 0;
    if (!env->TARV_PAR_DUALREDUCTION || (interior && !w->IsMip)) return 0;
    int *rows = w->IndexA.data;
    const int count = rows_with_singletons(w, rows);
    Array<Relief> list;
    TRY(array_resize(&list, w->NumCols));
    for (int k = 0; k < count; k++) {
        const int i = rows[k];
        TRY(check_limits(w, 1 + std::max(0, w->RowCnt.data[i])));
        if (w->RowCnt.data[i] < 2) continue;
        TRY(try_row(w, i, 1, list.data));
        if (w->Sense.data[i] == '=' && w->RowCnt.data[i] >= 2)
            TRY(try_row(w, i, -1, list.data));
    }
    return 0;
}
