// row_bounds.cpp -- bounds that single rows imply become bounds of the model
//
// Problem     In a row a x_j + rest <= b the least activity of the rest bounds a x_j from above; in an equation its
//             largest activity also bounds it from below. Integer columns round such a bound, which the relaxation
//             cannot see; other reductions use bounds only.
// Method      One scan of the rows touched. A bound of a continuous column has to gain a visible share of its range, so
//             that no long sequence of small gains arises. If the least activity of a row exceeds its side, or bounds
//             cross, the model is infeasible. The activity of a row is summed anew before its bounds are derived, and at
//             the end that of each row with changed bounds: updates in many steps from huge bounds to small ones would
//             leave the rounding errors of the huge ones.
// Safety      Entries are not small, so that a violation of the row within its tolerance moves the bound by little.
//             Infeasible counts only beyond the tolerance of the row and the errors of all terms summed.
// Postsolve   None: a point that keeps the new bounds keeps the old ones.
// Cost        O(entries of the rows), and of the columns whose bounds change
// Literature  M. W. P. Savelsbergh, "Preprocessing and probing techniques for mixed integer programming problems",
//             ORSA J. Computing 6, 1994.
#include "presolve/integral.h"

namespace
{
constexpr double SMALL_ENTRY = 1e-3;   // smaller entries imply no bound
constexpr double LARGEST_BOUND = 1e8;  // larger bounds are of no use
constexpr double LEAST_GAIN = 1000;    // tolerances
constexpr double VISIBLE = 0.01;       // share of the range of a continuous column
constexpr double SUM_ROUNDING = 1e-13; // relative to the size of the terms

// Error of a sum over the row: tolerance, errors of its side and bounds, rounding.
double row_error(const PresolveWork *w, int i)
{
    double size = std::fabs(w->Rhs.data[i]), errors = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const int j = w->Nodes.data[p].col;
        const double a = std::fabs(w->Nodes.data[p].value);
        if (has_lb(w, j)) size += a * std::fabs(w->Lb.data[j]);
        if (has_ub(w, j)) size += a * std::fabs(w->Ub.data[j]);
        errors += a * bound_error(w, j);
    }
    return w->FeasTol + rhs_error(w, i) + errors + SUM_ROUNDING * size;
}

int infeasible(PresolveWork *w, int i)
{
    w->InfeasRow = i;
    return END_INFEASIBLE;
}

// Activities of all terms exclude the side.
bool is_violated(const PresolveWork *w, int i)
{
    const bool above = w->Rmincnt.data[i] == 0 && w->RMin.data[i] > w->FeasTol,
               below = w->Sense.data[i] == '=' && w->Rmaxcnt.data[i] == 0 &&
                       w->RMax.data[i] < -w->FeasTol;
    if (!above && !below) return false;
    return (above ? w->RMin.data[i] : -w->RMax.data[i]) > row_error(w, i);
}

bool is_gain(const PresolveWork *w, int j, double gain, double old)
{
    if (std::fabs(old) >= w->INF) return true;
    const bool bounded = has_lb(w, j) && has_ub(w, j);
    const double range = bounded ? w->Ub.data[j] - w->Lb.data[j] : std::fabs(old);
    return gain > LEAST_GAIN * w->FeasTol && (is_integer(w, j) || gain > VISIBLE * range);
}

// The activity of the row before its bounds change.
struct Activity {
    double least, largest;
    int infinite_least, infinite_largest;
};

// The rows whose bounds have changed, for which Flag is set.
struct Changed {
    int *rows, count;
};

void note_rows(PresolveWork *w, int j, Changed *changed)
{
    for (int p = first_in_col(w, j); p >= 0; p = next_in_col(w, p)) {
        const int i = w->Nodes.data[p].row;
        if (w->Flag.data[i]) continue;
        w->Flag.data[i] = 1;
        changed->rows[changed->count++] = i;
    }
}

// Column j of row i, where it has the entry a, is at most (upper) or at least t.
int tighten(PresolveWork *w, int i, int j, double a, double t, bool upper, Changed *changed)
{
    t = upper ? upper_from_row(w, i, j, a, t) : lower_from_row(w, i, j, a, t);
    const double lb = w->Lb.data[j], ub = w->Ub.data[j];
    const double gain = upper ? ub - t : t - lb, crossed = upper ? lb - t : t - ub;
    if (std::fabs(t) >= LARGEST_BOUND || !is_gain(w, j, gain, upper ? ub : lb)) return 0;
    if (crossed > 0) {
        const double error = row_error(w, i) / std::fabs(a) + bound_error(w, j);
        if (crossed > error) return infeasible(w, i);
        if (is_integer(w, j)) return 0;
        t = upper ? lb : ub;
    }
    if (!is_integer(w, j)) bound_from_row(w, i, j, a, std::fabs(a * t));
    change_bounds(w, j, upper ? lb : t, upper ? t : ub);
    w->BoundsChanged++;
    w->Work += w->ColCnt.data[j];
    mark_col(w, j);
    mark_rows_of_col(w, j);
    note_rows(w, j, changed);
    return check_limits(w, 3.0 * w->ColCnt.data[j]);
}

// The bound of the column of entry p from one side of its row: the least activity (least) or the largest one; `own` is
// the bound of the column in it.
int imply(PresolveWork *w, int p, const Activity *all, bool least, double own,
          Changed *changed)
{
    const PresolveNode node = w->Nodes.data[p];
    const double sum = least ? all->least : all->largest;
    const int infinite = least ? all->infinite_least : all->infinite_largest;
    const bool absent = std::fabs(own) >= w->INF;
    if (infinite != (absent ? 1 : 0)) return 0;
    const double t = (absent ? 0 : own) - sum / node.value;
    return tighten(w, node.row, node.col, node.value, t, (node.value > 0) == least,
                   changed);
}

int try_row(PresolveWork *w, int i, Changed *changed)
{
    const bool equation = w->Sense.data[i] == '=';
    if (w->Rmincnt.data[i] > 1 && (!equation || w->Rmaxcnt.data[i] > 1)) return 0;
    row_activity(w, i);
    if (is_violated(w, i)) return infeasible(w, i);
    const Activity all = {w->RMin.data[i], w->RMax.data[i], w->Rmincnt.data[i],
                          w->Rmaxcnt.data[i]};
    w->Work += 3.0 * w->RowCnt.data[i];
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const double a = w->Nodes.data[p].value;
        if (std::fabs(a) < SMALL_ENTRY) continue;
        const int j = w->Nodes.data[p].col;
        const double lb = w->Lb.data[j], ub = w->Ub.data[j];
        TRY(imply(w, p, &all, true, a > 0 ? lb : ub, changed));
        if (equation) TRY(imply(w, p, &all, false, a > 0 ? ub : lb, changed));
    }
    return 0;
}

int try_rows(PresolveWork *w, const int *list, int count, Changed *changed)
{
    for (int k = 0; k < count; k++) {
        TRY(check_limits(w, 1 + w->RowCnt.data[list[k]]));
        if (w->RowCnt.data[list[k]] > 1) TRY(try_row(w, list[k], changed));
    }
    return 0;
}
} // namespace

int pre_row_bounds(PresolveWork *w)
{
    int *list = w->IndexA.data;
    const int count = candidate_rows(w, list);
    Changed changed = {w->IndexB.data, 0};
    int status = try_rows(w, list, count, &changed);
    for (int k = 0; k < changed.count; k++) {
        const int i = changed.rows[k];
        w->Flag.data[i] = 0;
        if (status == 0) row_activity(w, i);
        if (status == 0) status = check_limits(w, w->RowCnt.data[i]);
    }
    return status;
}
