// signs.h -- between the body's form and the caller's: minimise and "at most" inside, as given outside
#pragma once
#include "body/body.h"

// -1 for a row that the body holds negated, else 1.
inline int row_sign(const ModelBody *body, int i)
{
    return body->senses[i] == '>' ? -1 : 1;
}
// sign * value, never a negative zero: results are printed.
inline double turned(int sign, double value)
{
    return sign * value + 0.0;
}
