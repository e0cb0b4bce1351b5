// binary_coefficients.cpp -- coefficients of binary columns in inequalities that one of their values makes redundant
//
// Method      Let M be the largest activity of the row a z + rest <= b without z. If M < b the row is redundant at z = 0,
//             so that it may be replaced by (a - e) z + rest <= b - e with e = b - M: the same at z = 1, and just
//             redundant at z = 0. Likewise for a < 0, where z = 1 makes it redundant: a becomes b - M. No integer point
//             is lost or gained; the relaxation is tighter.
// Numbers     The largest activity is summed anew, without the outward rounding of the record, so that integral data stay
//             integral.
// Postsolve   None.
// Cost        O(entries of the rows touched)
// Literature  H. Crowder, E. L. Johnson, M. Padberg, "Solving large-scale zero-one linear programming problems", OR 31,
//             1983. M. W. P. Savelsbergh, ORSA J. Computing 6, 1994.
#include "presolve/errors.h"

namespace
{
constexpr double LEAST_GAIN = 1e-3;  // of the coefficient, relative
constexpr double LEAST_ENTRY = 1e-6; // smaller coefficients do not arise

bool is_binary(const PresolveWork *w, int j)
{
    return is_integer(w, j) && w->Lb.data[j] == 0 && w->Ub.data[j] == 1; // integral
}

// The largest activity minus the side; *size: the largest term.
double excess_of(const PresolveWork *w, int i, double *size)
{
    long double sum = -w->Rhs.data[i];
    *size = std::fabs(w->Rhs.data[i]);
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const PresolveNode &node = w->Nodes.data[p];
        const double bound = node.value > 0 ? w->Ub.data[node.col] : w->Lb.data[node.col];
        sum += static_cast<long double>(node.value) * bound;
        *size = std::max(*size, std::fabs(node.value * bound));
    }
    return static_cast<double>(sum);
}

// excess: the largest activity minus the side, which does not change.
void tighten(PresolveWork *w, int p, double excess, double size)
{
    PresolveNode *node = &w->Nodes.data[p];
    const int i = node->row;
    const double e = std::fabs(node->value) - excess;
    if (node->value > 0) {
        w->Rhs.data[i] -= e;
        node->value = excess;
    } else {
        node->value = -excess;
    }
    set_entry_size(w, p, size);
    add_to_rhs_error(w, i, size, 0);
    w->CoefsChanged++;
    mark_col(w, node->col);
}

void try_row(PresolveWork *w, int i)
{
    const double least = w->FeasTol + rhs_error(w, i);
    if (w->Rmaxcnt.data[i] > 0 || w->RMax.data[i] < least) return;
    double excess = -1, size = 0; // excess not known yet
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        const double a = std::fabs(w->Nodes.data[p].value);
        if (a <= least + w->RMax.data[i] || !is_binary(w, w->Nodes.data[p].col)) continue;
        if (excess < 0) excess = excess_of(w, i, &size);
        if (excess < std::max(least, LEAST_ENTRY)) break;
        if (a - excess > LEAST_GAIN * a) tighten(w, p, excess, size);
    }
    if (excess < 0) return;
    row_activity(w, i);
    mark_row(w, i);
}
} // namespace

int pre_binary_coefficients(PresolveWork *w)
{
    const WorkList *rows = rows_of_phase(w);
    const int count = rows->PendingCnt;
    for (int k = 0; k < count; k++) {
        const int i = rows->List.data[k];
        TRY(check_limits(w, 1 + std::max(0, w->RowCnt.data[i])));
        w->Work += std::max(0, w->RowCnt.data[i]);
        if (w->RowCnt.data[i] > 1 && w->Sense.data[i] == '<') try_row(w, i);
    }
    return 0;
}
