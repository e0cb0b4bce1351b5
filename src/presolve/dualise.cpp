// dualise.cpp -- the dual of a linear model
//
// Problem     min c x,  rows a_i x <= b_i or = b_i,  lb <= x <= ub.
// Method      One variable y_i per row (<= 0 for '<', free for '='), one row per column that is not fixed:
//               max  b' y + const - sum range_j q_j
//               column with lower bound, none above   A_j y <= c_j
//               with upper bound only                 A_j y >= c_j
//               free                                  A_j y = c_j
//               boxed                                 A_j y - q_j <= c_j,  q_j >= 0 pays the range of the box
//             where x_j is measured from its bound, so b' = b - sum of a_j bound_j. Fixed columns only shift b'.
// Postsolve   The slack of row j (or q_j) is the reduced cost of column j: basic in the dual means nonbasic in the
//             model and conversely; y_i basic means that the slack of row i is nonbasic.
// Proofs      A ray of the dual has y <= 0 for inequalities, -A_j y of the sign of the bounds of column j and a
//             positive b' y - range q: the multipliers -y prove the model infeasible. Multipliers r of the dual's rows
//             that prove it infeasible have A r <= 0, or = 0, and c r < 0; q_j forbids them for boxed columns: a ray.
// Literature  V. Chvatal, Linear Programming, 1983, chapter 9.
#include "presolve/dualise.h"
#include "body/build.h"
#include "body/row_kind.h"
#include "env/limits.h"
#include "presolve/presolve.h"
#include <cmath>

namespace
{
enum Kind { LOWER, UPPER, FREE, BOXED, FIXED };

Kind kind_of(const ModelBody *body, double infinite, int j)
{
    const bool below = body->lb.data[j] > -infinite, above = body->ub.data[j] < infinite;
    if (below && above) return body->lb.data[j] == body->ub.data[j] ? FIXED : BOXED;
    return below ? LOWER : above ? UPPER : FREE;
}

// Bound from which column j is measured.
double base_of(const ModelBody *body, Kind kind, int j)
{
    return kind == FREE ? 0 : kind == UPPER ? body->ub.data[j] : body->lb.data[j];
}

struct DualForm {
    int n = 0,
        // variables (rows of the model, then boxed columns), rows (columns not fixed)
        m = 0;
    // The dual of a minimisation is a maximisation, written as the minimisation of -obj.
    ModelArrays arrays;
    Array<int> row_of; // [numvars] row of a column, or -1
    double constant = 0;
    LimitWatch watch = {nullptr};
};

int allocate(const ModelBody *body, double infinite, DualForm *d)
{
    int64_t boxed = 0;
    TRY(array_resize(&d->row_of, body->numvars));
    for (int j = 0; j < body->numvars; j++) {
        TRY(limits_watch(&d->watch, 1));
        const Kind kind = kind_of(body, infinite, j);
        if (kind != FIXED && std::fabs(body->obj.data[j]) >= INFINITE_VALUE)
            return TVX_ERROR_INVALID_ARGUMENT; // as a right-hand side it would be infinite
        d->row_of.data[j] = kind == FIXED ? -1 : d->m++;
        boxed += kind == BOXED;
    }
    const int64_t entries = body->numnz + boxed, vars = body->numconstrs + boxed;
    if (vars + d->m > MODEL_SIZE_LIMIT || entries > MODEL_ENTRY_LIMIT)
        return TVX_ERROR_INVALID_ARGUMENT;
    d->n = static_cast<int>(vars);
    ModelArrays *a = &d->arrays;
    for (Array<double> *vector : {&a->obj, &a->lb, &a->ub}) TRY(array_resize(vector, d->n));
    TRY(array_resize(&a->rhs, d->m));
    TRY(array_resize(&a->senses, d->m));
    TRY(array_assign(&a->vbeg, int64_t{d->n} + 1, 0));
    TRY(limits_reached(d->watch.env));
    TRY(array_resize(&a->vind, entries));
    TRY(array_resize(&a->vval, entries));
    return limits_reached(d->watch.env);
}

// Variables y: costs b', signs by the rows; counts their entries.
int fill_rows(const ModelBody *body, double infinite, DualForm *d)
{
    const int m = body->numconstrs;
    ModelArrays *a = &d->arrays;
    for (int i = 0; i < m; i++) {
        TRY(limits_watch(&d->watch, 1));
        const bool free_row = row_kind(body, i) == RowKind::FREE;
        a->obj.data[i] = free_row ? 0 : -body->rhs.data[i];
        a->lb.data[i] = free_row ? 0 : -INFINITE_BOUND;
        a->ub.data[i] = is_equation(body, i) ? INFINITE_BOUND : 0;
    }
    for (int j = 0; j < body->numvars; j++) {
        const double base = base_of(body, kind_of(body, infinite, j), j);
        d->constant += body->obj.data[j] * base;
        TRY(limits_watch(&d->watch, 1.0 + body->vlen.data[j]));
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
            const int i = body->vind.data[p];
            a->obj.data[i] += body->vval.data[p] * base;
            if (d->row_of.data[j] >= 0) a->vbeg.data[i + 1]++;
        }
    }
    for (int i = 0; i < m; i++) a->vbeg.data[i + 1] += a->vbeg.data[i];
    return 0;
}

// Rows, and the entries of y: vbeg[i] runs from the start of variable i to its end. '>' rows are negated, as in a body.
int fill_columns(const ModelBody *body, double infinite, DualForm *d)
{
    ModelArrays *a = &d->arrays;
    for (int j = 0; j < body->numvars; j++) {
        const int row = d->row_of.data[j];
        if (row < 0) continue;
        const Kind kind = kind_of(body, infinite, j);
        const double sign = kind == UPPER ? -1 : 1;
        a->rhs.data[row] = sign * body->obj.data[j];
        a->senses.data[row] = kind == FREE ? '=' : kind == UPPER ? '>' : '<';
        TRY(limits_watch(&d->watch, 1.0 + body->vlen.data[j]));
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
            const int at = a->vbeg.data[body->vind.data[p]]++;
            a->vind.data[at] = row;
            a->vval.data[at] = sign * body->vval.data[p];
        }
    }
    for (int i = body->numconstrs; i > 0; i--) a->vbeg.data[i] = a->vbeg.data[i - 1];
    a->vbeg.data[0] = 0;
    return 0;
}

int fill_boxes(const ModelBody *body, double infinite, DualForm *d)
{
    ModelArrays *a = &d->arrays;
    int k = body->numconstrs, at = a->vbeg.data[k];
    for (int j = 0; j < body->numvars; j++) {
        TRY(limits_watch(&d->watch, 1));
        if (kind_of(body, infinite, j) != BOXED) continue;
        a->obj.data[k] = body->ub.data[j] - body->lb.data[j];
        a->lb.data[k] = 0;
        a->ub.data[k] = INFINITE_BOUND;
        a->vind.data[at] = d->row_of.data[j];
        a->vval.data[at++] = -1;
        a->vbeg.data[++k] = at;
    }
    return 0;
}

// 0, OUT_OF_MEMORY, or why there is no dual: a limit or TVX_ERROR_INVALID_ARGUMENT.
int make_dual(const ModelBody *body, TVXenv *env, ModelBody **out)
{
    const double infinite = infinite_bound(env);
    DualForm d;
    d.watch.env = env;
    TRY(allocate(body, infinite, &d));
    TRY(fill_rows(body, infinite, &d));
    TRY(fill_columns(body, infinite, &d));
    TRY(fill_boxes(body, infinite, &d));
    // Fixed columns have no entries.
    d.arrays.vind.size = d.arrays.vval.size = d.arrays.vbeg.data[d.n];
    d.arrays.sense = -body->sense; // the caller's sense turns both
    d.arrays.objcon = -(body->objcon + d.constant);
    TRY(limits_reached(env));
    return body_adopt(env, &d.arrays, out);
}
} // namespace

int dualise(const ModelBody *body, TVXenv *env, ModelBody **out)
{
    *out = nullptr;
    return make_dual(body, env, out) == OUT_OF_MEMORY ? OUT_OF_MEMORY : 0;
}

void dual_basis_to_primal(const ModelBody *body, double infinite, const int *dual_status,
                          int *status)
{
    const int n = body->numvars, m = body->numconstrs;
    int vars = m;
    for (int j = 0; j < n; j++) vars += kind_of(body, infinite, j) == BOXED;
    int row = 0, box = m;
    for (int j = 0; j < n; j++) {
        const Kind kind = kind_of(body, infinite, j);
        status[j] = kind == FREE ? -3 : kind == UPPER ? -2 : -1;
        if (kind == FIXED) continue;
        const bool slack_basic = dual_status[vars + row++] >= 0;
        const bool box_basic = kind == BOXED && dual_status[box++] >= 0;
        if (box_basic) status[j] = -2;
        if (!slack_basic && !box_basic) status[j] = 0;
    }
    for (int i = 0; i < m; i++) status[n + i] = dual_status[i] >= 0 ? -1 : 0;
}

void dual_ray_to_farkas(const ModelBody *body, double infinite, const double *dual_ray,
                        double *farkas)
{
    for (int i = 0; i < body->numconstrs; i++) farkas[i] = -dual_ray[i];
    farkas_clean(body, infinite, farkas);
}

void dual_farkas_to_ray(const ModelBody *body, double infinite, const double *dual_farkas,
                        double *ray)
{
    int row = 0;
    for (int j = 0; j < body->numvars; j++) {
        const Kind kind = kind_of(body, infinite, j);
        ray[j] = kind == FIXED ? 0 : dual_farkas[row++];
        if (kind == UPPER) ray[j] = -ray[j]; // its row is held negated
    }
    ray_clean(body, infinite, ray);
}

void primal_basis_to_dual(const ModelBody *body, double infinite, const int *status,
                          int *dual_status)
{
    const int n = body->numvars, m = body->numconstrs;
    int vars = m;
    for (int j = 0; j < n; j++) vars += kind_of(body, infinite, j) == BOXED;
    for (int i = 0; i < m; i++)
        dual_status[i] = status[n + i] < 0 ? 0 : body->senses[i] == '=' ? -3 : -2;
    int row = vars, box = m;
    for (int j = 0; j < n; j++) {
        const Kind kind = kind_of(body, infinite, j);
        if (kind == FIXED) continue;
        const bool at_box = kind == BOXED && status[j] == -2;
        if (kind == BOXED) dual_status[box++] = at_box ? 0 : -1;
        dual_status[row++] = status[j] < 0 && !at_box ? 0 : -1;
    }
    presolve_mend_basis(vars, row - vars, dual_status);
}
