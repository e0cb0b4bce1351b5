// binary_equation.cpp -- equations of two integer columns: one of them is replaced by the other
//
// Method      a x + b y = c. The columns are first restricted to the residue classes that the equation allows, x = r + s x'
//             and y = t + u y' (scale_int_columns.cpp), and the equation is divided by what is common then
//             (row_integrality.cpp): it becomes x' + y' = c' or x' - y' = c'. The doubleton stage of aggregation
//             substitutes one by the other, with its bounds.
// Cost        O(rows), and that of the steps
// Literature  T. Achterberg et al., "Presolve reductions in mixed integer programming", INFORMS J. Computing 32, 2020.
#include "presolve/integer/scale_int_columns.h"
#include "presolve/reduce/aggregate.h"

namespace
{
// limit of the effort of the substitutions of one call, per entry
constexpr double EFFORT_PER_ENTRY = 20;

bool is_integer_pair(const PresolveWork *w, int i)
{
    if (w->Sense.data[i] != '=' || w->RowCnt.data[i] != 2) return false;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        if (!is_integer(w, w->Nodes.data[p].col)) return false;
    return true;
}
} // namespace

int pre_binary_equation(PresolveWork *w)
{
    const WorkList *rows = rows_of_phase(w);
    IntegerRow row;
    int pairs = 0;
    const int count = rows->PendingCnt;
    for (int k = 0; k < count; k++) {
        const int i = rows->List.data[k];
        TRY(check_limits(w, 1));
        if (!is_integer_pair(w, i)) continue;
        pairs++;
        if (w->KeepCrush) continue;
        TRY(scale_columns_of(w, i, &row)); // one column, then the other
        TRY(scale_columns_of(w, i, &row));
        TRY(make_row_integral(w, i, &row));
    }
    if (pairs == 0) return 0;
    TRY(sweep_marked(w));
    return aggregate_doubletons(w,
                                w->Work + EFFORT_PER_ENTRY * static_cast<double>(w->NumNz));
}
