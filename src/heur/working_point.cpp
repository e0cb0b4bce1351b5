// working_point.cpp -- the working point of the heuristics: moves, and which rows they violate
//
// Cost   Of a move: the entries of the column, and of its rows that were not known.
#include "heur/working_point.h"
#include "body/row_kind.h"
#include <algorithm>

namespace
{
void enter(WorkingPoint *point, int i)
{
    point->Place.data[i] = static_cast<int>(point->Violated.size);
    array_push(&point->Violated, i);
}

void leave(WorkingPoint *point, int i)
{
    const int place = point->Place.data[i],
              last = point->Violated.data[--point->Violated.size];
    point->Violated.data[place] = last;
    point->Place.data[last] = place;
    point->Place.data[i] = -1;
}

void judge(WorkingPoint *point, int i)
{
    const bool violated = point_excess(point, i) != 0, listed = point->Place.data[i] >= 0;
    if (violated && !listed) enter(point, i);
    if (!violated && listed) leave(point, i);
}

double activity(WorkingPoint *point, int i)
{
    const PropagationRows *rows = point->Rows;
    double sum = 0;
    for (int64_t p = rows->RowBeg.data[i]; p < rows->RowBeg.data[i + 1]; p++)
        sum += rows->Entry.data[p].Val * point->X.data[rows->Entry.data[p].Col];
    point->Work += static_cast<double>(rows->RowBeg.data[i + 1] - rows->RowBeg.data[i]);
    return sum;
}
} // namespace

int point_alloc(WorkingPoint *point, const ModelBody *body, const PropagationRows *rows,
                double tolerance)
{
    const int n = body->numvars, m = body->numconstrs;
    point->Body = body;
    point->Rows = rows;
    point->Tolerance = tolerance;
    TRY(array_assign(&point->X, n, 0.0));
    TRY(array_assign(&point->Residual, m, 0.0));
    TRY(array_assign(&point->IsKnown, m, char{0}));
    TRY(array_reserve(&point->Known, m));
    TRY(array_reserve(&point->Violated, m));
    return array_assign(&point->Place, m, -1);
}

void point_start(WorkingPoint *point, const double *x, double objective)
{
    for (const int i : point->Known) {
        point->IsKnown.data[i] = 0;
        point->Place.data[i] = -1;
    }
    point->Known.size = point->Violated.size = 0;
    std::copy_n(x, point->Body->numvars, point->X.data);
    point->Objective = objective;
    point->Work += point->Body->numvars;
}

double point_excess(const WorkingPoint *point, int i)
{
    const double residual = point->Residual.data[i];
    if (residual < -point->Tolerance) return -residual;
    return residual > point->Tolerance && is_equation(point->Body, i) ? -residual : 0;
}

double point_residual(WorkingPoint *point, int i)
{
    if (point->IsKnown.data[i]) return point->Residual.data[i];
    point->Residual.data[i] = point->Body->rhs.data[i] - activity(point, i);
    point->IsKnown.data[i] = 1;
    array_push(&point->Known, i);
    judge(point, i);
    return point->Residual.data[i];
}

void point_move(WorkingPoint *point, int j, double value)
{
    const ModelBody *body = point->Body;
    const double step = value - point->X.data[j];
    point->X.data[j] = value;
    point->Objective += body->obj.data[j] * step;
    point->Work += body->vbeg.data[j + 1] - body->vbeg.data[j];
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
        const int i = body->vind.data[p];
        if (point->IsKnown.data[i]) {
            point->Residual.data[i] -= body->vval.data[p] * step;
            judge(point, i);
        } else {
            (void)point_residual(point, i); // at the new point
        }
    }
}
