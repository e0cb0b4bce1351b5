// coefficients.cpp -- coefficients of integer columns in inequalities that all but their last value make redundant
//
// Method      Let M be the largest activity of the row a x + rest <= b, and l <= x <= u. If a > 0 and M - a < b, the row is
//             redundant for x <= u - 1. With d = b - (M - a) it may be replaced by (a - d) x + rest <= b - d u: the same
//             at x = u, just redundant at u - 1 and redundant below. Likewise for a < 0, where the row is redundant for
//             x >= l + 1: (a + d) x + rest <= b + d l. No integer point is lost or gained; the relaxation is tighter.
//             pre_binary_coefficients looks at binary columns, pre_coef_rows at all integer ones.
// Numbers     The largest activity is summed anew, without the outward rounding of the record, so that integral data stay
//             integral.
// Postsolve   None.
// Cost        O(entries of the rows touched)
// Literature  H. Crowder, E. L. Johnson, M. Padberg, "Solving large-scale zero-one linear programming problems", OR 31,
//             1983. M. W. P. Savelsbergh, ORSA J. Computing 6, 1994.
#include "presolve/integer/coefficients.h"

namespace
{
constexpr double LEAST_GAIN = 1e-3;  // of the coefficient, relative
constexpr double LEAST_ENTRY = 1e-6; // smaller coefficients do not arise

enum class Which { BINARY, INTEGER };

bool is_meant(const PresolveWork *w, int j, Which which)
{
    return is_integer(w, j) &&
           (which == Which::INTEGER || (w->Lb.data[j] == 0 && w->Ub.data[j] == 1));
}

// The largest activity minus the side; *size: the largest term. Large terms may cancel, so that doubles do not do.
Twofold excess_of(const PresolveWork *w, int i, double *size)
{
    Twofold sum = {-w->Rhs.data[i], 0};
    *size = std::fabs(w->Rhs.data[i]);
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const double bound = node.value > 0 ? w->Ub.data[node.col] : w->Lb.data[node.col];
        const Twofold term = two_product(node.value, bound);
        twofold_add(&sum, term);
        *size = std::max(*size, std::fabs(term.high));
    }
    return sum;
}

void try_row(PresolveWork *w, int i, Which which)
{
    const double least = w->FeasTol + rhs_error(w, i);
    if (w->Rmaxcnt.data[i] > 0 || w->RMax.data[i] < least) return;
    Twofold excess = {-1, 0}; // not known yet
    double size = 0;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const double a = std::fabs(w->Nodes.data[p].value);
        if (a <= least + w->RMax.data[i] || !is_meant(w, w->Nodes.data[p].col, which))
            continue;
        if (excess.high < 0) excess = excess_of(w, i, &size);
        tighten_coefficient(w, p, excess, size);
    }
    if (excess.high < 0) return;
    row_activity(w, i);
    mark_row(w, i);
}

int try_rows(PresolveWork *w, const int *list, int count, Which which)
{
    for (int k = 0; k < count; k++) {
        const int i = list[k];
        TRY(check_limits(w, 1 + std::max(0, w->RowCnt.data[i])));
        w->Work += std::max(0, w->RowCnt.data[i]);
        if (w->RowCnt.data[i] > 1 && w->Sense.data[i] == '<') try_row(w, i, which);
    }
    return 0;
}
} // namespace

// With the coefficient a and the bound u that it meets in the largest activity, the new side is b - a u + a' u.
bool tighten_coefficient(PresolveWork *w, int p, const Twofold &excess, double size)
{
    PresolveNode *node = &w->Nodes.data[p];
    const int i = node->row;
    const double a = std::fabs(node->value), sign = node->value > 0 ? 1 : -1;
    if (excess.high < std::max(w->FeasTol + rhs_error(w, i), LEAST_ENTRY) ||
        a - excess.high <= LEAST_GAIN * a)
        return false;
    const double u = node->value > 0 ? w->Ub.data[node->col] : w->Lb.data[node->col];
    Twofold side = two_product(-node->value, u);
    twofold_add(&side, {w->Rhs.data[i], 0});
    twofold_add(&side, twofold_times(excess, sign * u));
    w->Rhs.data[i] = side.high;
    node->value = sign * excess.high;
    set_entry_size(w, p, size);
    add_to_rhs_error(w, i, size, 0);
    w->CoefsChanged++;
    mark_col(w, node->col);
    return true;
}

int pre_binary_coefficients(PresolveWork *w)
{
    const WorkList *rows = rows_of_phase(w);
    return try_rows(w, rows->List.data, rows->PendingCnt, Which::BINARY);
}

int pre_coef_rows(PresolveWork *w)
{
    const int count = candidate_rows(w, w->IndexA.data);
    return try_rows(w, w->IndexA.data, count, Which::INTEGER);
}
