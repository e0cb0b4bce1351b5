// rational_certificate.h -- the exact certificate of a basis
#pragma once
#include "support/dictionary.h"

// What the basis and witness of `end` say, in rational numbers: points, multipliers, Farkas row or ray, and the basis.
// False when the basis matrix is singular; otherwise the result still needs rational_verify.
bool rational_certificate(const LpModel *lp, double relax, const DictionaryEnd &end,
                          RationalResult *result);
