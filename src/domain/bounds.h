// bounds.h -- words of this folder: sides of bounds, infinite bounds, literals
//
// A literal is a binary column or its negation: 2 j is true when x_j = 1, 2 j + 1 when x_j = 0.
#pragma once

// Bounds of this size and above count as infinite in activities.
static constexpr double DOMAIN_INFINITE = 1e10;

inline bool domain_is_infinite(double bound)
{
    return bound <= -DOMAIN_INFINITE || bound >= DOMAIN_INFINITE;
}

enum class BoundSide : char { LOWER, UPPER };

inline int bound_number(int col, BoundSide side)
{
    return 2 * col + (side == BoundSide::UPPER);
}

inline int literal_of(int col, int value) // true when x_col = value, which is 0 or 1
{
    return 2 * col + (value == 0);
}
inline int literal_not(int literal)
{
    return literal ^ 1;
}
inline int literal_col(int literal)
{
    return literal >> 1;
}
inline int literal_value(int literal) // of its column when it is true
{
    return (literal & 1) == 0;
}
