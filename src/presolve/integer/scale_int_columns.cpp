// scale_int_columns.cpp -- integer columns that an equation restricts to a residue class
//
// Problem     In an equation sum of a_k x_k = b with integer coefficients, let g divide all a_k but a_j. Then
//             a_j x_j = b modulo g: x_j takes every (g / d)-th value only, d the greatest divisor of a_j and g.
// Method      x_j = r + (g / d) x', with the smallest r >= its lower bound (or the upper bound, or 0) that solves the
//             congruence; r / d comes from the extended Euclidean algorithm. Without a solution, or without one within
//             the bounds, the model is infeasible. The divisors of all others come from both ends of the row.
// Safety      The rows are those of integer_row.cpp: exact up to rounding, with tolerances small against 1.
// Postsolve   column_shift.cpp
// Cost        O(entries of the equations, and of the columns that are shifted)
// Literature  T. Achterberg et al., "Presolve reductions in mixed integer programming", INFORMS J. Computing 32, 2020.
#include "presolve/integer/scale_int_columns.h"
#include "presolve/errors.h"
#include "presolve/integer/column_shift.h"

namespace
{
constexpr int64_t LARGEST_STEP = 1000000;
constexpr double LARGEST_BOUND = 1e9; // columns with larger finite bounds stay as they are
constexpr int LONGEST_ROW = 1000;     // in longer equations common divisors are rare

// x with a x = b modulo m, 0 <= x < m; a and m have no common divisor.
int64_t solve_congruence(int64_t a, int64_t b, int64_t m)
{
    int64_t r0 = m, r1 = ((a % m) + m) % m, s0 = 0, s1 = 1;
    while (r1 != 0) { // r = s a modulo m
        const int64_t q = r0 / r1, r2 = r0 - q * r1, s2 = s0 - q * s1;
        r0 = r1;
        r1 = r2;
        s0 = s1;
        s1 = s2;
    }
    const int64_t inverse = ((s0 % m) + m) % m;
    return inverse * (((b % m) + m) % m) % m; // factors below 1e6
}

struct Residue {
    int64_t step = 1, value = 0; // x = value modulo step
    bool possible = true;
};

// Residue class of a column with coefficient a, where g divides all others.
Residue residue_of(int64_t a, int64_t g, int64_t side)
{
    Residue r;
    const int64_t d = greatest_divisor(a, g);
    r.possible = side % d == 0;
    r.step = g / d;
    if (r.possible && r.step > 1 && r.step <= LARGEST_STEP)
        r.value = solve_congruence(a / d, side / d, r.step);
    return r;
}

bool may_shift(const PresolveWork *w, int j)
{
    return w->ColFlags.data[j] == 0 &&
           (!has_lb(w, j) || std::fabs(w->Lb.data[j]) < LARGEST_BOUND) &&
           (!has_ub(w, j) || std::fabs(w->Ub.data[j]) < LARGEST_BOUND);
}

// Bounds of x' for x = r + step x'.
int shift_to(PresolveWork *w, int i, int j, const Residue &residue)
{
    const double step = static_cast<double>(residue.step),
                 value = static_cast<double>(residue.value);
    const double lb = w->Lb.data[j], ub = w->Ub.data[j];
    ColumnShift shift = {value, step, -w->INF, w->INF};
    if (has_lb(w, j))
        shift.offset += step * std::ceil((lb - value) / step);
    else if (has_ub(w, j))
        shift.offset += step * std::floor((ub - value) / step);
    if (has_lb(w, j)) shift.lb = 0;
    if (has_ub(w, j)) shift.ub = std::floor((ub - shift.offset) / step) + 0.0;
    if (shift.lb > shift.ub) {
        w->InfeasRow = i;
        return END_INFEASIBLE;
    }
    TRY(shift_column(w, j, shift));
    w->VType.data[j] = shift.lb == 0 && shift.ub == 1 ? 'B' : 'I'; // integral
    w->BoundsChanged++;
    return 0;
}

// Divisors of the coefficients behind each place.
void divisors_behind(const IntegerRow *row, int64_t *behind)
{
    behind[row->count - 1] = 0;
    for (int k = row->count - 1; k > 0; k--)
        behind[k - 1] = greatest_divisor(behind[k], row->coef.data[k]);
}
} // namespace

int scale_columns_of(PresolveWork *w, int i, IntegerRow *row)
{
    bool found = false;
    Array<int64_t> behind;
    TRY(integer_row(w, i, row, &found));
    if (!found || row->count < 2 || std::fabs(row->rest) > row->play) return 0;
    TRY(array_resize(&behind, row->count));
    divisors_behind(row, behind.data);
    int64_t before = 0;
    int k = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p), k++) {
        const int j = w->Nodes.data[p].col;
        const int64_t a = row->coef.data[k], g = greatest_divisor(before, behind.data[k]);
        const Residue residue = residue_of(a, g, row->side);
        if (!residue.possible) {
            w->InfeasRow = i;
            return END_INFEASIBLE;
        }
        before = greatest_divisor(before, a);
        if (residue.step <= 1 || residue.step > LARGEST_STEP || !may_shift(w, j)) continue;
        TRY(shift_to(w, i, j, residue));
        break; // the others have another equation now
    }
    return 0;
}

int pre_scale_int_columns(PresolveWork *w)
{
    if (w->KeepCrush) return 0;
    IntegerRow row;
    const int count = candidate_rows(w, w->IndexA.data);
    for (int k = 0; k < count; k++) {
        const int i = w->IndexA.data[k];
        if (w->Sense.data[i] != '=' || w->RowCnt.data[i] < 2 ||
            w->RowCnt.data[i] > LONGEST_ROW)
            continue;
        w->Work += 5.0 * w->RowCnt.data[i];
        TRY(check_limits(w, 5.0 * w->RowCnt.data[i]));
        TRY(scale_columns_of(w, i, &row));
    }
    return 0;
}
