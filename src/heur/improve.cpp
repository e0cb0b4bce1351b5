// improve.cpp -- one-opt: a better point next to a feasible one
//
// Problem     Heuristics find points whose integer columns could still move, one by one, towards a better objective.
// Method      Columns by descending |cost|, each as many whole units as its bound and its rows allow. Rows are tested
//             without any tolerance, so that the point is no less feasible than the one given.
// In, out     A feasible point -> a feasible one with a lower objective. Members of sets and semi-continuous columns stay.
// Cost        O(columns log columns + entries)
// Literature  T. Achterberg, "Constraint integer programming", TU Berlin, 2007, chapter 9: one-opt.
#include "body/row_kind.h"
#include "heur/heur_state.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double FULL_UNIT =
    1 - 1e-9; // of a step, before it is rounded down: rounding errors cost no unit
constexpr double LARGEST_STEP = 1e9; // of one column: beyond it the point is no real one

// Units that a column can move in this direction before row i is violated.
double room_in_row(HeurState *h, int i, double a, double direction)
{
    const double residual = point_residual(&h->Polished, i), change = a * direction;
    if (is_equation(h->Model.Body, i)) return 0;
    if (change <= 0) return LARGEST_STEP;
    return std::max(0.0, residual) / change;
}

double room(HeurState *h, int j, double direction, double range)
{
    const ModelBody *body = h->Model.Body;
    double units = std::min(range, LARGEST_STEP);
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1] && units >= FULL_UNIT; p++)
        if (body->vval.data[p] != 0)
            units = std::min(
                units, room_in_row(h, body->vind.data[p], body->vval.data[p], direction));
    h->Work += body->vbeg.data[j + 1] - body->vbeg.data[j];
    return std::floor(units + (1 - FULL_UNIT));
}

int list_columns(HeurState *h)
{
    const double *cost = h->Model.Body->obj.data;
    int count = 0;
    for (int j = 0; j < h->NumCols; j++)
        if (h->Model.IsInteger[j] && !h->Frozen.data[j] && cost[j] != 0)
            h->Order.data[count++] = j;
    std::sort(h->Order.data, h->Order.data + count, [&](int a, int b) {
        const double size_a = std::fabs(cost[a]), size_b = std::fabs(cost[b]);
        return size_a != size_b ? size_a > size_b : a < b;
    });
    return count;
}
} // namespace

const double *heur_improve(HeurState *h, const double *lower, const double *upper,
                           const double *x)
{
    bool better = false;
    point_start(&h->Polished, x, 0);
    const int count = list_columns(h);
    for (int k = 0; k < count; k++) {
        const int j = h->Order.data[k];
        const double direction = h->Model.Body->obj.data[j] > 0 ? -1 : 1,
                     at = h->Polished.X.data[j];
        const double range = direction < 0 ? at - lower[j] : upper[j] - at;
        const double units = range < FULL_UNIT ? 0 : room(h, j, direction, range);
        if (units < 1 || units >= LARGEST_STEP) continue;
        point_move(&h->Polished, j, at + direction * units);
        better = true;
    }
    return better ? h->Polished.X.data : nullptr;
}
