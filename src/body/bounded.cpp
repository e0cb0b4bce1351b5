// bounded.cpp -- is the objective bounded by the bounds of the variables alone?
//
// Method   The objective of the body's form is at least the sum of c_j * (lower bound if c_j > 0, upper
//          bound if c_j < 0). When all those bounds are finite, it is bounded over any rows.
// Cost     O(n)
#include "body/body.h"
#include <algorithm>

bool objective_is_bounded(const TVXenv *env, const ModelBody *body)
{
    const double infinity = infinite_bound(env);
    for (int j = 0; j < body->numvars; j++) {
        const double cost = body->obj[j];
        if (cost > 0 && body->lb[j] <= -infinity) return false;
        if (cost < 0 && body->ub[j] >= infinity) return false;
    }
    return true;
}
