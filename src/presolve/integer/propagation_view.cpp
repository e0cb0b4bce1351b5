// propagation_view.cpp -- the presolve record as src/domain reads it
//
// Method      Live rows and columns are copied. Sides and bounds of continuous columns are relaxed by their errors, as
//             propagation allows for the tolerance only.
// Cost        O(columns + entries log(row length))
#include "presolve/integer/propagation_view.h"
#include "presolve/errors.h"

namespace
{
struct RowArrays {
    Array<int> beg, ind;
    Array<double> val, low, high;
};

int add_row(PresolveWork *w, int i, RowArrays *rows)
{
    const double side = w->Rhs.data[i], error = rhs_error(w, i);
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p)) {
        TRY(array_append(&rows->ind, w->Nodes.data[p].col));
        TRY(array_append(&rows->val, w->Nodes.data[p].value));
    }
    TRY(array_append(&rows->low, w->Sense.data[i] == '=' ? side - error : -INFINITE_VALUE));
    TRY(array_append(&rows->high, side + error));
    TRY(array_append(&rows->beg, static_cast<int>(rows->ind.size)));
    return check_limits(w, 1 + w->RowCnt.data[i]);
}

int collect_bounds(PresolveWork *w, PropagationView *view, Array<char> *is_int)
{
    TRY(array_assign(&view->Lower, w->NumCols, 0.0));
    TRY(array_assign(&view->Upper, w->NumCols, 0.0));
    TRY(array_assign(is_int, w->NumCols, char(0)));
    for (int j = 0; j < w->NumCols; j++) {
        if (!is_live_col(w, j)) continue;
        const double error = is_integer(w, j) ? 0 : bound_error(w, j);
        is_int->data[j] = is_integer(w, j);
        view->Lower.data[j] = w->Lb.data[j] - error;
        view->Upper.data[j] = w->Ub.data[j] + error;
    }
    return check_limits(w, w->NumCols);
}
} // namespace

int propagation_view_make(PresolveWork *w, PropagationView *view)
{
    RowArrays rows;
    Array<char> is_int;
    TRY(collect_bounds(w, view, &is_int));
    TRY(array_append(&rows.beg, 0));
    for (int i = 0; i < w->NumRows; i++)
        if (w->RowCnt.data[i] > 0) TRY(add_row(w, i, &rows));
    const ColumnSource cols = {w->NumCols, view->Lower.data, view->Upper.data, is_int.data};
    const RowSource source = {static_cast<int>(rows.low.size),
                              rows.beg.data,
                              rows.ind.data,
                              rows.val.data,
                              rows.low.data,
                              rows.high.data};
    TRY(propagation_rows_build(&view->Rows, &cols, &source));
    w->Work += 5.0 * static_cast<double>(rows.ind.size);
    return presolve_check(w);
}

void propagation_view_free(PropagationView *view)
{
    propagation_rows_free(view->Rows);
    *view = PropagationView{};
}
