// integer_row.cpp -- a row of integer columns with integer coefficients
//
// Problem     Conclusions from divisibility need a row whose activities are integers: sum of a_k x_k with a_k integer.
//             Data have rounding errors, such as 0.1 and 0.3.
// Method      Scales are tried: 1, powers of ten, small multiples of 1 / smallest entry. A scale fits if every scaled entry
//             is an integer up to rounding. The sum of the deviations times the largest values of the columns is the
//             error of a scaled activity; it has to be small against 1, and small against the tolerance of the row.
// Safety      The tolerance of the row, scaled, has to be small against 1 as well: no accepted point has another integer
//             activity than the one nearest to its own.
// Cost        O(scales tried * entries), most scales end at the first entries
#include "presolve/integer/integer_row.h"
#include "presolve/errors.h"

namespace
{
constexpr double LARGEST = 1e9;         // coefficient and side
constexpr double SAME = 1e-13;          // relative deviation from an integer
constexpr double UNBOUNDED_SIZE = 1e7;  // assumed largest value of a column without bounds
constexpr double MOST_PLAY = 0.01;      // of an integer activity
constexpr double MOST_DRIFT = 0.1;      // tolerances of the row
constexpr int TENS = 6, MULTIPLES = 12; // scales tried

double largest_value(const PresolveWork *w, int j)
{
    const double lb = has_lb(w, j) ? std::fabs(w->Lb.data[j]) : UNBOUNDED_SIZE,
                 ub = has_ub(w, j) ? std::fabs(w->Ub.data[j]) : UNBOUNDED_SIZE;
    return std::max(lb, ub);
}

// Largest error of a scaled activity, or below zero if some entry is not an integer.
double drift_of(const PresolveWork *w, int i, double scale)
{
    double drift = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const double v = scale * w->Nodes.data[p].value, whole = std::round(v);
        const double off = std::fabs(v - whole);
        if (off > SAME * std::fabs(v) || whole == 0 || std::fabs(v) > LARGEST) return -1;
        drift += off * largest_value(w, w->Nodes.data[p].col);
    }
    return drift;
}

// The smallest entry, or 0 if some column is not integer.
double smallest_entry(const PresolveWork *w, int i)
{
    double least = INFINITY;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        if (!is_integer(w, w->Nodes.data[p].col)) return 0;
        least = std::min(least, std::fabs(w->Nodes.data[p].value));
    }
    return least;
}

double find_scale(const PresolveWork *w, int i, double *drift)
{
    const double least = smallest_entry(w, i);
    if (least == 0) return 0; // a continuous column
    double scale = 1;
    for (int k = 0; k <= TENS; k++, scale *= 10)
        if ((*drift = drift_of(w, i, scale)) >= 0) return scale;
    for (int k = 1; k <= MULTIPLES; k++)
        if ((*drift = drift_of(w, i, k / least)) >= 0) return k / least;
    return 0;
}
} // namespace

int64_t greatest_divisor(int64_t a, int64_t b)
{
    a = std::llabs(a);
    b = std::llabs(b);
    while (b != 0) {
        const int64_t rest = a % b;
        a = b;
        b = rest;
    }
    return a;
}

int integer_row(const PresolveWork *w, int i, IntegerRow *row, bool *found)
{
    double drift = 0;
    row->scale = find_scale(w, i, &drift);
    const double side = row->scale * w->Rhs.data[i];
    *found = row->scale > 0 && std::fabs(side) < LARGEST &&
             drift <= MOST_DRIFT * w->FeasTol * row->scale;
    row->play = (w->FeasTol + rhs_error(w, i)) * row->scale + drift;
    if (!*found || row->play > MOST_PLAY) {
        *found = false;
        return 0;
    }
    row->side = static_cast<int64_t>(
        w->Sense.data[i] == '=' ? std::round(side) : std::floor(side + row->play));
    row->rest = side - static_cast<double>(row->side);
    row->count = 0;
    TRY(array_resize(&row->coef, w->RowCnt.data[i]));
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        row->coef.data[row->count++] =
            static_cast<int64_t>(std::round(row->scale * w->Nodes.data[p].value));
    return 0;
}

bool set_integer_row(PresolveWork *w, int i, const IntegerRow *row, int64_t divisor)
{
    bool changed = false;
    int k = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        PresolveNode *node = &w->Nodes.data[p];
        const int64_t quotient = row->coef.data[k++] / divisor; // exact
        const double value = static_cast<double>(quotient);
        if (node->value == value) continue;
        node->value = value;
        set_entry_size(w, p, std::fabs(value));
        mark_col(w, node->col);
        changed = true;
    }
    // Integer activities: rounding down loses no point.
    int64_t side = row->side / divisor;
    if (side * divisor > row->side) side--;
    changed = changed || w->Rhs.data[i] != static_cast<double>(side);
    if (!changed) return false;
    w->Rhs.data[i] = static_cast<double>(side);
    w->RhsErr.data[i] = std::max(w->DataErr, ROUNDING_UNIT * std::fabs(w->Rhs.data[i]));
    row_activity(w, i);
    mark_row(w, i);
    return true;
}
