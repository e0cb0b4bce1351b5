// round_repair.cpp -- continuous values for a point whose integers are settled, where rows are violated
//
// Problem  Some rows are violated at the working point. Find new values of the continuous columns in these rows, and of
//          those that these are tied to, so that all rows hold.
// Method   An LP in the steps of these columns: rows are all that they touch, sides the residuals, bounds what the bounds
//          of the node leave, costs those of the model. Its solution is added to the point.
// Cost     An LP, of limited size and iterations; memory of its own. Due at few nodes.
#include "body/build.h"
#include "heur/rounding.h"
#include "lp/lp.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int MOST_COLUMNS = 2000;       // from which on the problem does not grow any more
constexpr double MOST_ITERATIONS = 2000; // of its LP

struct Repair {
    Array<int> Cols, Rows; // in the model
    LpSolve Lp;
    ModelBody *Body = nullptr;
    TVXenv *Env = nullptr;
    Array<double> Steps; // [Cols]
};

void repair_free(HeurState *h, Repair *repair)
{
    for (const int j : repair->Cols) h->ColPlace.data[j] = -1;
    for (const int i : repair->Rows) h->RowPlace.data[i] = -1;
    lp_drop(&repair->Lp);
    body_free(repair->Body);
    env_free(repair->Env);
}

bool can_move(const HeurState *h, const HeurCall &call, int j)
{
    return !h->Model.IsInteger[j] && !h->Frozen.data[j] && !domain_is_fixed(call.Bounds, j);
}

// The continuous columns of row i.
int add_columns_of(HeurState *h, const HeurCall &call, Repair *repair, int i)
{
    const PropagationRows *rows = h->Model.Rows;
    h->Work += static_cast<double>(rows->RowBeg.data[i + 1] - rows->RowBeg.data[i]);
    for (int64_t p = rows->RowBeg.data[i]; p < rows->RowBeg.data[i + 1]; p++) {
        const int j = rows->Entry.data[p].Col;
        if (h->ColPlace.data[j] >= 0 || !can_move(h, call, j)) continue;
        TRY(array_append(&repair->Cols, j));
        h->ColPlace.data[j] = static_cast<int>(repair->Cols.size) - 1;
    }
    return 0;
}

// The rows of the columns from `first` on.
int add_rows(HeurState *h, Repair *repair, int64_t first)
{
    const ModelBody *body = h->Model.Body;
    for (int64_t k = first; k < repair->Cols.size; k++) {
        const int j = repair->Cols.data[k];
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
            const int i = body->vind.data[p];
            if (h->RowPlace.data[i] >= 0) continue;
            TRY(array_append(&repair->Rows, i));
            h->RowPlace.data[i] = static_cast<int>(repair->Rows.size) - 1;
        }
        h->Work += body->vbeg.data[j + 1] - body->vbeg.data[j];
    }
    return 0;
}

// Columns of violated rows, then those that share a row with them, and so on up to the limit; and the rows of all these.
int collect(HeurState *h, const HeurCall &call, Repair *repair)
{
    int64_t done = 0;
    for (const int i : h->At.Violated) TRY(add_columns_of(h, call, repair, i));
    for (int64_t k = 0;; k++) {
        TRY(add_rows(h, repair, done));
        done = repair->Cols.size;
        if (k >= repair->Rows.size || done > MOST_COLUMNS) return 0;
        TRY(add_columns_of(h, call, repair, repair->Rows.data[k]));
    }
}

double step_bound(double bound, double at)
{
    return domain_is_infinite(bound) ? bound : bound - at;
}

int add_column(HeurState *h, const HeurCall &call, int j, ModelArrays *arrays)
{
    const ModelBody *body = h->Model.Body;
    const double at = h->At.X.data[j];
    TRY(array_append(&arrays->obj, body->obj.data[j]));
    TRY(array_append(&arrays->lb, std::min(0.0, step_bound(DomLower(call.Bounds, j), at))));
    TRY(array_append(&arrays->ub, std::max(0.0, step_bound(DomUpper(call.Bounds, j), at))));
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
        TRY(array_append(&arrays->vind, h->RowPlace.data[body->vind.data[p]]));
        TRY(array_append(&arrays->vval, body->vval.data[p]));
    }
    return array_append(&arrays->vbeg, static_cast<int>(arrays->vind.size));
}

// No body where numbers are not finite.
int build(HeurState *h, const HeurCall &call, Repair *repair)
{
    const ModelBody *body = h->Model.Body;
    ModelArrays arrays;
    TRY(array_append(&arrays.vbeg, 0));
    for (const int i : repair->Rows) {
        TRY(array_append(&arrays.senses, body->senses.data[i]));
        const double residual = point_residual(&h->At, i);
        if (!std::isfinite(residual)) return 0;
        TRY(array_append(&arrays.rhs, residual));
    }
    for (const int j : repair->Cols) TRY(add_column(h, call, j, &arrays));
    TRY(env_inner(&repair->Env, call.Env));
    repair->Env->IterationLimit = MOST_ITERATIONS;
    repair->Env->Cutoff = UNDEFINED_VALUE;
    return body_adopt(repair->Env, &arrays, &repair->Body);
}

int solve(HeurState *h, Repair *repair)
{
    TRY(lp_solve(&repair->Lp, repair->Body, repair->Env, {}));
    h->Work += repair->Lp.work;
    if (repair->Lp.status != TVX_OPTIMAL) return 0;
    TRY(array_resize(&repair->Steps, repair->Cols.size));
    lp_get_x(&repair->Lp, repair->Steps.data);
    for (int64_t k = 0; k < repair->Cols.size; k++) {
        const int j = repair->Cols.data[k];
        point_move(&h->At, j, h->At.X.data[j] + repair->Steps.data[k]);
    }
    return 0;
}

int run(HeurState *h, const HeurCall &call, Repair *repair)
{
    TRY(collect(h, call, repair));
    if (repair->Cols.size == 0) return 0;
    for (const int i : h->At.Violated)
        if (h->RowPlace.data[i] < 0) return 0; // no continuous column can help it
    TRY(build(h, call, repair));
    return repair->Body ? solve(h, repair) : 0;
}
} // namespace

int repair_continuous(HeurState *h, const HeurCall &call)
{
    Repair repair;
    const int code = run(h, call, &repair);
    repair_free(h, &repair);
    return code;
}
