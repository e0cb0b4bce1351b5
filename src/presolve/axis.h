// axis.h -- routines for rows or columns alike: a line is either, and the indices of its entries are its places
#pragma once
#include "presolve/work.h"

enum class Axis { ROWS, COLS };

inline int first_of(const PresolveWork *w, Axis axis, int line)
{
    return axis == Axis::ROWS ? first_in_row(w, line) : first_in_col(w, line);
}
inline int next_of(const PresolveWork *w, Axis axis, int p)
{
    return axis == Axis::ROWS ? next_in_row(w, p) : next_in_col(w, p);
}
inline int place_of(const PresolveWork *w, Axis axis, int p)
{
    return axis == Axis::ROWS ? w->Nodes.data[p].col : w->Nodes.data[p].row;
}
inline int line_of(const PresolveWork *w, Axis axis, int p)
{
    return axis == Axis::ROWS ? w->Nodes.data[p].row : w->Nodes.data[p].col;
}
inline int length_of(const PresolveWork *w, Axis axis, int line)
{
    return axis == Axis::ROWS ? w->RowCnt.data[line] : w->ColCnt.data[line];
}
