// working_point.h -- WorkingPoint: a point that heuristics change, and the rows that it violates
//
// It starts as a copy of some point. Rows become known when a column of theirs moves: only then is their residual computed,
// and from then on it follows each move. Rows that are not known are as they were at the start.
#pragma once
#include "domain/propagation_rows.h"

struct WorkingPoint {
    const ModelBody *Body = nullptr;
    const PropagationRows *Rows = nullptr; // of Body
    double Tolerance = 1e-6;               // a row counts as violated beyond it
    Array<double> X;                       // [columns]
    double Objective = 0;                  // of it
    Array<double> Residual;                // [rows] side minus activity, of known rows
    Array<char> IsKnown;                   // [rows]
    Array<int> Known;                      // rows; room for all
    Array<int> Violated;                   // rows, of the known ones; room for all
    Array<int> Place;                      // [rows] in Violated, or -1
    double Work = 0;                       // entries looked at, since it was last taken
};
[[nodiscard]] int point_alloc(WorkingPoint *point, const ModelBody *body,
                              const PropagationRows *rows, double tolerance);
// A copy of x, whose objective is known. No row is known.
void point_start(WorkingPoint *point, const double *x, double objective);
// Column j moves to `value`; its rows become known.
void point_move(WorkingPoint *point, int j, double value);
// Residual of a row, which becomes known.
double point_residual(WorkingPoint *point, int i);
// By how much a known row is exceeded: above 0 its activity has to fall, below 0 it has to grow, 0: it holds.
double point_excess(const WorkingPoint *point, int i);
inline bool point_is_feasible(const WorkingPoint *point) // as far as rows are known
{
    return point->Violated.size == 0;
}
