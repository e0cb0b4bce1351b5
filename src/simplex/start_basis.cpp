// start_basis.cpp -- start basis: slacks, given statuses or a given point; crash basis for the dual simplex
#include "simplex/sopt.h"
#include <algorithm>
#include <cmath>

namespace
{
// gain above which a column may replace a fixed slack
constexpr double CRASH_LOSS = -0.001;

constexpr int CRASH_LOOKS = 8; // candidates tried per row

// The status of a nonbasic if its true bounds allow it, else the nearest one that they allow.
int settled_status(const sopt *s, int j)
{
    const double lower = s->Lower.data[j], upper = s->Upper.data[j];
    const int status = s->VStat.data[j];
    if (lower == upper) return AT_FIXED; // assigned alike
    const double own = s->SuperVal.data[j];
    if (status == AT_FREE && (s->Superbasics > 0 || own != 0) && lower <= own &&
        own <= upper)
        return AT_FREE; // superbasic
    if (!has_lower(s, lower)) return has_upper(s, upper) ? AT_UPPER : AT_FREE;
    return status == AT_UPPER && has_upper(s, upper) ? AT_UPPER : AT_LOWER;
}
} // namespace

void settle_nonbasics(sopt *s)
{
    for (int j = 0; j < s->NumVars; j++)
        if (s->VStat.data[j] < 0) s->VStat.data[j] = settled_status(s, j);
}

void start_slack_basis(sopt *s)
{
    for (int j = 0; j < s->NumCols; j++) {
        s->VStat.data[j] = AT_LOWER;
        s->SuperVal.data[j] = 0;
    }
    for (int i = 0; i < s->NumRows; i++) {
        s->VStat.data[s->NumCols + i] = i;
        s->SuperVal.data[s->NumCols + i] = 0;
        s->BasisHead.data[i] = s->NumCols + i;
    }
    s->Superbasics = 0;
    settle_nonbasics(s);
    s->HasBasis = 1;
    s->BasisAge++;
}

bool is_slack_basis(const sopt *s)
{
    for (int k = 0; k < s->NumRows; k++)
        if (s->BasisHead.data[k] < s->NumCols) return false;
    return true;
}

namespace
{
// Decrease of the dual infeasibility of the other columns of row i if the column at slot p becomes basic there.
double crash_gain(const sopt *s, const double *cost, int i, int p)
{
    const int j = s->RowInd.data[p];
    const double price = cost[j] / s->RowVal.data[p];
    double gain = 0;
    for (int q = s->RowBeg.data[i]; q < s->RowBeg.data[i + 1]; q++) {
        const int k = s->RowInd.data[q];
        if (k == j || has_upper(s, s->Upper.data[k])) continue;
        gain += std::max(0.0, -cost[k]);
        gain -= std::max(0.0, -(cost[k] - s->RowVal.data[q] * price));
    }
    return gain;
}
} // namespace

// Columns that are slacks in the model itself: a column with one entry and no upper bound replaces the fixed slack of
// its equation, if the other reduced costs of the row stay about as dual feasible as they are.
int crash_equations(sopt *s)
{
    Array<double> cost;
    TRY(array_copy(&cost, s->Cost.data, s->NumCols));
    for (int i = 0; i < s->NumRows; i++) {
        if (s->Upper.data[s->NumCols + i] != 0) continue; // an inequality
        double best_gain = CRASH_LOSS;
        int best = -1, seen = 0;
        for (int p = s->RowBeg.data[i]; p < s->RowBeg.data[i + 1] && seen < CRASH_LOOKS;
             p++) {
            const int j = s->RowInd.data[p];
            if (s->ColBeg.data[j + 1] - s->ColBeg.data[j] != 1 ||
                has_upper(s, s->Upper.data[j]) || is_basic(s, j))
                continue;
            seen++;
            const double gain = crash_gain(s, cost.data, i, p);
            if (gain <= best_gain) continue;
            best_gain = gain;
            best = p;
        }
        if (best < 0) continue;
        const int j = s->RowInd.data[best];
        const double price = cost.data[j] / s->RowVal.data[best];
        for (int q = s->RowBeg.data[i]; q < s->RowBeg.data[i + 1]; q++)
            cost.data[s->RowInd.data[q]] -= s->RowVal.data[q] * price;
        s->VStat.data[j] = i;
        s->BasisHead.data[i] = j;
        s->VStat.data[s->NumCols + i] = AT_FIXED;
        s->BasisAge++;
    }
    return 0;
}

bool start_from_statuses(sopt *s, const int *statuses)
{
    int basics = 0;
    for (int j = 0; j < s->NumVars; j++) basics += statuses[j] >= 0;
    if (basics != s->NumRows) return false;
    int position = 0;
    for (int j = 0; j < s->NumVars; j++) {
        int status = statuses[j];
        s->SuperVal.data[j] = 0;
        if (status >= 0) {
            s->BasisHead.data[position] = j;
            status = position++;
        } else if (j < s->NumCols && s->ColScale.data[j] < 0 &&
                   (status == AT_LOWER || status == AT_UPPER)) {
            // the column is negated
            status = status == AT_LOWER ? AT_UPPER : AT_LOWER;
        }
        s->VStat.data[j] = status;
    }
    s->Superbasics = 0;
    settle_nonbasics(s);
    s->HasBasis = 1;
    s->BasisAge++;
    return true;
}

void start_from_point(sopt *s, const double *x, const double *slack)
{
    for (int j = 0; j < s->NumVars; j++) {
        const bool column = j < s->NumCols;
        if (is_basic(s, j) || (column ? !x : !slack)) continue;
        const double value = column
                                 ? x[j] / s->ColScale.data[j]
                                 : slack[j - s->NumCols] * s->RowScale.data[j - s->NumCols];
        const double lower = s->Lower.data[j], upper = s->Upper.data[j];
        s->SuperVal.data[j] = 0;
        if (lower == upper) { // assigned alike
            s->VStat.data[j] = AT_FIXED;
        } else if (std::fabs(value - lower) <= s->FeasTol) {
            s->VStat.data[j] = AT_LOWER;
        } else if (column && std::fabs(value - upper) <= s->FeasTol) {
            s->VStat.data[j] = AT_UPPER;
        } else if (column || value > 0) {
            s->VStat.data[j] = AT_FREE;
            s->SuperVal.data[j] = std::clamp(value, lower, upper);
        }
    }
    s->Superbasics = 0;
    for (int j = 0; j < s->NumVars; j++) s->Superbasics += is_superbasic(s, j);
    if (s->Superbasics > 0) TVXmsg(s->Env, "Superbasic variables: %d.\n", s->Superbasics);
}
