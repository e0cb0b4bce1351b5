// propagation_view.h -- the presolve record as src/domain reads it
#pragma once
#include "domain/domain.h"
#include "presolve/work.h"

// Columns have their indices of the record; those removed are 0 and in no row. Rows are numbered anew.
struct PropagationView {
    PropagationRows *Rows = nullptr;
    Array<double> Lower, Upper; // [NumCols]
};
// 0, OUT_OF_MEMORY or a PresolveEnd of the limits; to be freed in any case.
[[nodiscard]] int propagation_view_make(PresolveWork *w, PropagationView *view);
void propagation_view_free(PropagationView *view);
