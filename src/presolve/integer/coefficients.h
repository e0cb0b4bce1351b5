// coefficients.h -- the step of tightening a coefficient
#pragma once
#include "body/double_double.h"
#include "presolve/errors.h"

// excess: the largest activity of the row of entry p minus its side; size: the largest term of this sum. If it is below
// the coefficient of p, that of an integer column, by enough, the coefficient becomes +-excess and the side follows; the
// excess stays as it is. Returns whether it has done so; then the caller recomputes the activity and marks the row.
bool tighten_coefficient(PresolveWork *w, int p, const Twofold &excess, double size);
