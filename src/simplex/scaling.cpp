// scaling.cpp -- scaling of the working LP
//
// Method      One pass: each row is divided by its largest magnitude, then each column of the result by its largest.
//             Factors are powers of two, so that scaling has no rounding errors; rows and columns whose largest entry
//             is between 1/2 and 2 are not scaled. If very small entries remain, geometric scaling passes are used
//             instead: each row and column is divided by the geometric mean of its smallest and largest entry. The
//             objective is divided by the geometric mean of its smallest and largest cost.
// In, out     The unscaled arrays of sopt become scaled; RowScale, ColScale (sign: reversed column), ObjScale.
// Cost        O(nonzeros).
// Literature  R. Fourer, "Solving staircase linear programs by the simplex method", Math. Prog. 23, 1982 (geometric
//             scaling).
#include "simplex/sopt.h"
#include <algorithm>
#include <cfloat>
#include <cmath>

namespace
{
// sqrt(max / min) of costs that are not centred any more
constexpr double WIDE_COSTS = 10000;

// costs from here on may be artificial: look at their decades
constexpr double HUGE_COST = 1e7;

constexpr double VANISHING = 1e-9; // smaller entries are no usable pivots (pivot_floor)

constexpr int CENTRE_PASSES = 10; // geometric passes; more change little

constexpr double ROUND_UP = 1.4142135623730951; // to the nearest power of two

// Geometric scaling is used only if the smallest entry grows by this factor. Rounding of the factors to powers of two
// can alone give a factor of 8: those by the largest entry are rounded down by up to 2, for row and column, those by
// the geometric mean to the nearest power by up to ROUND_UP.
constexpr double CLEAR_GAIN = 10;

constexpr double MOST = DBL_MAX; // coefficients are not bounded by INFINITE_BOUND

constexpr double LEAST_FACTOR = 0x1p-1000,
                 MOST_FACTOR = 0x1p1000; // its inverse is finite too

constexpr int DECADES = 16;

constexpr int DECADE_GAP = 3; // empty decades between usual costs and penalties (big-M)

double usable(double factor)
{
    return std::clamp(factor, LEAST_FACTOR, MOST_FACTOR);
}

double power_of_two(double v)
{
    return std::exp2(std::floor(std::log2(usable(v))));
}

// Power of two that scales `largest` to about 1.
double line_factor(sopt *s, double largest)
{
    if (largest == 0) return 1; // an empty row or column
    if (s->Env->TARV_PAR_ALTSCALE)
        return usable((double(random_next(&s->Rng)) / RANDOM_MAX + 1) / largest);
    if (largest > 0.5 && largest < 2) return 1;
    return power_of_two(1 / largest);
}

// ---- One pass: rows, then columns, by their largest magnitude ----

void size_rows_by_largest(sopt *s)
{
    double *scale = s->RowScale.data;
    std::fill_n(scale, s->NumRows, 0.0);
    for (int p = 0; p < s->ColBeg.data[s->NumCols]; p++) {
        double *largest = &scale[s->ColInd.data[p]];
        *largest = std::max(*largest, std::fabs(s->ColVal.data[p]));
    }
    for (int i = 0; i < s->NumRows; i++) scale[i] = line_factor(s, scale[i]);
}

// Returns the smallest entry after scaling.
double size_columns_by_largest(sopt *s)
{
    double all = MOST;
    for (int j = 0; j < s->NumCols; j++) {
        double largest = 0, least = MOST;
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
            const double a =
                std::fabs(s->ColVal.data[p]) * s->RowScale.data[s->ColInd.data[p]];
            largest = std::max(largest, a);
            least = std::min(least, a);
        }
        s->ColScale.data[j] = line_factor(s, largest);
        all = std::min(all, least * s->ColScale.data[j]);
    }
    return all;
}

// ---- Geometric passes ----

// Smallest and largest magnitude of a row or column.
struct Spread {
    double Least = MOST, Most = 0;
};

void extend(Spread *line, double a)
{
    line->Least = std::min(line->Least, a);
    line->Most = std::max(line->Most, a);
}

// Smallest and largest entry with the current factors.
Spread spread_of_matrix(const sopt *s)
{
    Spread all;
    for (int j = 0; j < s->NumCols; j++)
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
            extend(&all, std::fabs(s->ColVal.data[p]) *
                             s->RowScale.data[s->ColInd.data[p]] * s->ColScale.data[j]);
    return all;
}

// Roots first: the product of the two entries may overflow.
double middle_factor(const Spread &line)
{
    if (line.Most == 0) return 1; // an empty row or column
    return usable(1 / (std::sqrt(line.Least) * std::sqrt(line.Most)));
}

void centre_rows(sopt *s, Array<Spread> *rows)
{
    for (Spread &row : *rows) row = Spread{};
    for (int j = 0; j < s->NumCols; j++)
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
            extend(&rows->data[s->ColInd.data[p]],
                   std::fabs(s->ColVal.data[p]) * s->ColScale.data[j]);
    for (int i = 0; i < s->NumRows; i++) s->RowScale.data[i] = middle_factor(rows->data[i]);
}

void centre_columns(sopt *s)
{
    for (int j = 0; j < s->NumCols; j++) {
        Spread column;
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
            extend(&column,
                   std::fabs(s->ColVal.data[p]) * s->RowScale.data[s->ColInd.data[p]]);
        s->ColScale.data[j] = middle_factor(column);
    }
}

// False if scaling makes a finite bound count as infinite, which would change the model.
bool bounds_stay_finite(const sopt *s)
{
    for (int j = 0; j < s->NumCols; j++)
        for (const double bound : {s->Lower.data[j], s->Upper.data[j]})
            if (std::fabs(bound) < s->Infinity &&
                std::fabs(bound / s->ColScale.data[j]) >= s->Infinity)
                return false;
    return true;
}

void round_to_powers(Array<double> *factors)
{
    for (double &factor : *factors) factor = power_of_two(factor * ROUND_UP);
}

// Geometric scaling, if scaling by the largest entry leaves entries too small for a pivot (example: a row y <= 1e9 z),
// and if it makes the smallest entry clearly larger. 0 or OUT_OF_MEMORY.
int keep_entries_alive(sopt *s, double least)
{
    if (least >= VANISHING) return 0;
    Array<double> rows, columns;
    Array<Spread> line;
    TRY(array_copy(&rows, s->RowScale.data, s->NumRows));
    TRY(array_copy(&columns, s->ColScale.data, s->NumCols));
    TRY(array_resize(&line, s->NumRows));
    for (int pass = 0; pass < CENTRE_PASSES; pass++) {
        centre_rows(s, &line);
        centre_columns(s);
    }
    round_to_powers(&s->RowScale);
    round_to_powers(&s->ColScale);
    const Spread all = spread_of_matrix(s);
    if (all.Least > CLEAR_GAIN * least && std::isfinite(all.Most) && bounds_stay_finite(s))
        return 0;
    s->RowScale = static_cast<Array<double> &&>(rows);
    s->ColScale = static_cast<Array<double> &&>(columns);
    return 0;
}

// ---- Applying factors ----

void scale_column(sopt *s, int j)
{
    const double factor = s->ColScale.data[j];
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        s->ColVal.data[p] =
            s->ColVal.data[p] * s->RowScale.data[s->ColInd.data[p]] * factor;
    s->Cost.data[j] *= factor;
    for (double *bound : {&s->Lower.data[j], &s->Upper.data[j]})
        if (std::fabs(*bound) < s->Infinity) *bound /= factor;
}

// A column with only an upper bound is negated, so that every variable has a lower bound or is free.
void flip_column(sopt *s, int j)
{
    double *lower = &s->Lower.data[j], *upper = &s->Upper.data[j];
    if (has_lower(s, *lower) || !has_upper(s, *upper)) return;
    s->ColScale.data[j] = -s->ColScale.data[j];
    s->Cost.data[j] = -s->Cost.data[j];
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        s->ColVal.data[p] = -s->ColVal.data[p];
    *lower = -*upper;
    *upper = s->Infinity;
}

double centre(double largest, double smallest)
{
    return std::sqrt(largest / smallest) <= WIDE_COSTS
               ? std::sqrt(largest) * std::sqrt(smallest)
               : largest / WIDE_COSTS;
}

// Costs far above all others (big-M penalties) should not determine the scale: the largest of the other costs, or 0.
double largest_ordinary_cost(const sopt *s)
{
    int count[DECADES] = {};
    for (int j = 0; j < s->NumCols; j++) {
        const double c = std::fabs(s->Cost.data[j]);
        if (c == 0) continue;
        const int decade = static_cast<int>(std::floor(std::log10(c))) + 1;
        count[std::clamp(decade, 0, DECADES - 1)]++;
    }
    int top = DECADES - 1;
    while (top >= 0 && count[top] == 0) top--;
    int below = top;
    while (below >= 0 && count[below] > 0) below--;
    const int first = below + 1; // first bucket of the top run
    while (below >= 0 && count[below] == 0) below--;
    return below >= 0 && first - below > DECADE_GAP ? std::pow(10.0, below) : 0;
}

double objective_factor(const sopt *s)
{
    const double wish = s->Env->ObjScale;
    if (wish == 1) return 1; // 1: no scaling
    if (wish > 0) return power_of_two(1 / wish);
    double largest = 0, smallest = MOST;
    for (int j = 0; j < s->NumCols; j++) {
        const double c = std::fabs(s->Cost.data[j]);
        largest = std::max(largest, c);
        if (c > 0) smallest = std::min(smallest, c);
    }
    if (largest == 0) return 1;
    if (wish < 0) return power_of_two(std::pow(largest, wish));
    double g = centre(largest, smallest);
    if (largest >= HUGE_COST) {
        const double ordinary = largest_ordinary_cost(s);
        if (ordinary > 0) g = centre(std::max(ordinary, smallest), smallest);
    }
    return g > 0.5 && g < 2 ? 1 : power_of_two(1 / g);
}
} // namespace

int scale_working_lp(sopt *s)
{
    TRY(array_assign(&s->RowScale, s->NumRows, 1.0));
    TRY(array_assign(&s->ColScale, s->NumCols, 1.0));
    s->ObjScale = 1;
    const SimplexTuning::Scaling wish = s->Tuning.Scale;
    if (wish == SimplexTuning::SCALED ||
        (wish == SimplexTuning::BY_PARAMETER && s->Env->ScaleFlag)) {
        size_rows_by_largest(s);
        const double least = size_columns_by_largest(s);
        TRY(keep_entries_alive(s, least));
        for (int i = 0; i < s->NumRows; i++) s->Rhs.data[i] *= s->RowScale.data[i];
        for (int j = 0; j < s->NumCols; j++) scale_column(s, j);
        s->ObjScale = objective_factor(s);
        for (int j = 0; j < s->NumCols; j++) s->Cost.data[j] *= s->ObjScale;
    }
    for (int j = 0; j < s->NumCols; j++) flip_column(s, j);
    s->Scaled = s->ObjScale != 1;
    for (int i = 0; i < s->NumRows; i++) s->Scaled |= s->RowScale.data[i] != 1;
    for (int j = 0; j < s->NumCols; j++) s->Scaled |= std::fabs(s->ColScale.data[j]) != 1;
    return 0;
}
