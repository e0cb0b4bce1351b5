// row_kind.h -- what a row asks for, by its sense and its right-hand side: decided here for every part of the library
//
// Senses   '=' and '>' are what they are; every other character stands as the caller gave it and counts as '<'.
// Sides    A right-hand side of magnitude INFINITE_VALUE and more is infinite, as a bound of that size is. In the body's
//          form, where a row is "at most" or an equation: at most plus infinity asks for nothing; at most minus infinity
//          asks for what no point has, and so does an equation with either.
#pragma once
#include "body/body.h"

inline char counted_sense(char sense)
{
    return sense == '=' || sense == '>' ? sense : '<';
}
inline bool is_equation(const ModelBody *body, int i)
{
    return body->senses[i] == '=';
}

enum class RowKind { ORDINARY, FREE, IMPOSSIBLE };

// `rhs` in the body's form: negated for a '>' row.
inline RowKind row_kind(bool equation, double rhs)
{
    if (rhs > -INFINITE_VALUE && rhs < INFINITE_VALUE) return RowKind::ORDINARY;
    return equation || rhs < 0 ? RowKind::IMPOSSIBLE : RowKind::FREE;
}
inline RowKind row_kind(const ModelBody *body, int i)
{
    return row_kind(is_equation(body, i), body->rhs[i]);
}

inline bool all_rows_ordinary(const ModelBody *body)
{
    for (int i = 0; i < body->numconstrs; i++)
        if (row_kind(body, i) != RowKind::ORDINARY) return false;
    return true;
}

// The first row of this kind, or -1. Cost: O(rows)
inline int find_row(const ModelBody *body, RowKind kind)
{
    for (int i = 0; i < body->numconstrs; i++)
        if (row_kind(body, i) == kind) return i;
    return -1;
}
