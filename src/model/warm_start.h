// warm_start.h -- the start basis that a caller gave or an update carried over
//
// States of model->warm_start (null counts as none)
//   WARM_NONE       count < 0 or kind 0: nothing usable, the arrays are kept for reuse
//   WARM_UNCHECKED  a caller set entries; warm_start_validate() decides at the next update
//   WARM_CHECKED    a caller's basis with exactly numconstrs basic entries and none unset
//   WARM_CARRIED    built by an update from the basis of the previous solve
// Deletions and additions of a later update rebuild the record or turn it stale.
#pragma once
#include "model/pending.h"

// VBasis and CBasis: basis codes of a caller (TVX_BASIC, TVX_NONBASIC_LOWER; of variables also TVX_NONBASIC_UPPER,
// TVX_SUPERBASIC) go into the record at once. The first set makes it with all entries unset.
// 0, OUT_OF_MEMORY, or TVX_ERROR_INVALID_ARGUMENT with its message for another code; nothing is set on failure.
[[nodiscard]] int warm_start_set_vars(TVXmodel *model, ElementRange range,
                                      const int *codes);
[[nodiscard]] int warm_start_set_constrs(TVXmodel *model, ElementRange range,
                                         const int *codes);
// VDualNorm and CDualNorm: norms start as zeros. TVX_ERROR_INVALID_ARGUMENT without a record of the present size.
[[nodiscard]] int warm_start_set_var_norms(TVXmodel *model, ElementRange range,
                                           const double *norms);
[[nodiscard]] int warm_start_set_constr_norms(TVXmodel *model, ElementRange range,
                                              const double *norms);

// A record that a solve may start from (checked or carried over, of the model's present size), or
// null.
const WarmStart *warm_start_usable(const TVXmodel *model);
// Decides on an unchecked record: checked, and then a simplex record of an earlier solve goes with
// its results; or unchanged with a warning on the log.
void warm_start_validate(TVXmodel *model);
// The basis of the live record becomes one that is carried over; none when memory is short.
void warm_start_from_simplex(TVXmodel *model);
void warm_start_drop(TVXmodel *model);       // turns it stale; memory stays
void warm_start_free(WarmStart *warm_start); // null is ignored
