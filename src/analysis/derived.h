// derived.h -- what the calls that make a model from another one have in common
//
// Each of them copies its model under a new name and changes the copy. The source stays as it is.
#pragma once
#include "model/model.h"

// Changes the copy. 0 or a code, with a text where there is a specific one.
using Derivation = int (*)(TVXmodel *source, TVXmodel *copy);

// What every derived model gets: the name "NAME" + suffix, just the suffix for a model without name, and parameters
// that write no files. 0 or OUT_OF_MEMORY.
[[nodiscard]] int derived_finish(TVXmodel *copy, const TVXmodel *source,
                                 const char *suffix);
// The exported calls: check, copy with the names, "NAME" + suffix, change. Null on failure, with the error text set.
[[nodiscard]] TVXmodel *derive(TVXmodel *source, const char *suffix, Derivation change);

// Bounds of variable j, and their kind.
void derived_set_bounds(TVXmodel *copy, int j, double lb, double ub);
// All variables become continuous, with the bounds that they have; SOS constraints go.
void derived_make_linear(TVXmodel *copy);
