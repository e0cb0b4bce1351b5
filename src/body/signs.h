// signs.h -- signs between the body's form (minimise, <=) and the form given by the caller
#pragma once
#include "body/body.h"

// -1 for a row that is stored negated, else 1.
inline int row_sign(const ModelBody *body, int i)
{
    return body->senses[i] == '>' ? -1 : 1;
}
// sign * value, never a negative zero: results are printed.
inline double turned(int sign, double value)
{
    return sign * value + 0.0;
}
