// scale_int_columns.h -- integer columns that an equation restricts to a residue class
#pragma once
#include "presolve/integer/integer_row.h"

// The columns of equation i, shifted and scaled where it allows multiples of a step only. A PresolveEnd or
// OUT_OF_MEMORY.
[[nodiscard]] int scale_columns_of(PresolveWork *w, int i, IntegerRow *row);
