// crush_row.cpp -- maps a row over the model's columns to one over the reduced model's
//
// Method   The undo records are followed from the oldest to the newest. Each says which combination of other columns a
//          removed column stands for, and the row gets that combination in its place. Merged columns can only be mapped
//          where the row has them in the proportion in which they were merged, dominated ones only where it has none.
#include "presolve/work.h"
#include <cmath>

namespace
{
constexpr double SAME_PROPORTION = 1e-10; // relative, of merged columns

// The column is (value - the entries) / factor.
void replace(const UndoRecord *undo, int count, double *row, double *rhs)
{
    const double times = row[undo->col] / undo->factor;
    *rhs -= times * undo->value;
    for (int k = 0; k < count; k++)
        row[undo->entry[k].index] -= times * undo->entry[k].value;
}

// False if the row has no counterpart.
bool follow(const UndoRecord *undo, double *row, double *rhs)
{
    double *a = &row[undo->col >= 0 ? undo->col : 0];
    switch (undo->kind) {
    case UNDO_FIX:
        *rhs -= *a * undo->value;
        *a = 0;
        return true;
    case UNDO_SUBSTITUTE:
        replace(undo, undo->split, row, rhs);
        *a = 0;
        return true;
    case UNDO_SLACK_COLUMN:
        replace(undo, undo->count, row, rhs);
        *a = 0;
        return true;
    case UNDO_FREE_TO_SLACK: // x = (value - entries - its new self) / factor
        replace(undo, undo->count, row, rhs);
        *a = -*a / undo->factor;
        return true;
    case UNDO_COLUMN_SHIFT:
        *rhs -= *a * undo->value;
        *a *= undo->factor;
        return true;
    case UNDO_MERGE_COLS: {
        const double other = row[undo->other], wanted = undo->factor * *a;
        row[undo->other] = 0;
        return std::fabs(other - wanted) <=
               SAME_PROPORTION * (std::fabs(other) + std::fabs(wanted));
    }
    case UNDO_DOMINATED:
        return *a == 0; // not in the row
    default:
        return true;
    }
}
} // namespace

int presolve_crush_row(const PresolveResult *result, double *row, double *rhs,
                       double *reduced, bool *mapped)
{
    Array<const UndoRecord *> order;
    for (const UndoRecord *undo = result->Undo.head; undo; undo = undo->next)
        TRY(array_append(&order, undo));
    *mapped = true;
    for (int64_t k = order.size - 1; k >= 0 && *mapped; k--)
        *mapped = follow(order.data[k], row, rhs);
    const int n = result->Reduced ? result->Reduced->numvars : 0;
    for (int j = 0; j < n; j++) reduced[j] = 0;
    for (int j = 0; j < result->NumCols; j++)
        if (result->ColMap.data[j] >= 0) reduced[result->ColMap.data[j]] = row[j];
    return 0;
}
