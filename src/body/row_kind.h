// row_kind.h -- kinds of rows by sense and right-hand side: the one definition for the whole library
//
// Senses   '=' and '>'; every other character is stored as given by the caller and counts as '<'.
// Sides    A right-hand side of magnitude INFINITE_VALUE or more is infinite, as for bounds. In the body's form, where
//          a row is <= or =: a row <= plus infinity is free; a row <= minus infinity, or = with either, is infeasible.
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
