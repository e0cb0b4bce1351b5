// tiny_coefficients.cpp -- at the end, entries whose total effect on their row is negligible
//
// Method      Such an entry is replaced by its value at the lower bound of its column. The ranges of all terms that go add
//             up to a small share of the tolerance of the row.
// Postsolve   None.
// Cost        O(entries)
#include "presolve/errors.h"

namespace
{
// Largest total effect, as a share of the tolerance: more could move an optimum whose duals are large.
constexpr double SHARE = 1e-3;

void try_row(PresolveWork *w, int i)
{
    double moved = 0;
    const int before = w->RowCnt.data[i];
    for (int p = first_in_row(w, i); p >= 0;) {
        const int next = next_in_row(w, p), j = w->Nodes.data[p].col;
        const double a = w->Nodes.data[p].value;
        if (has_lb(w, j) && has_ub(w, j)) {
            const double effect = std::fabs(a) * (w->Ub.data[j] - w->Lb.data[j]);
            if (moved + effect < SHARE * w->FeasTol) {
                moved += effect;
                w->Rhs.data[i] -= a * w->Lb.data[j];
                add_to_rhs_error(w, i, size_of_entry(w, p) * std::fabs(w->Lb.data[j]),
                                 moved);
                mark_col(w, j);
                delete_entry(w, p);
            }
        }
        p = next;
    }
    if (w->RowCnt.data[i] == before) return;
    w->CoefsChanged += before - w->RowCnt.data[i];
    row_activity(w, i);
    mark_row(w, i);
}
} // namespace

int pre_tiny_coefficients(PresolveWork *w)
{
    for (int i = 0; i < w->NumRows; i++) {
        TRY(check_limits(w, 1 + std::max(0, w->RowCnt.data[i])));
        if (w->RowCnt.data[i] > 0) try_row(w, i);
    }
    return 0;
}
