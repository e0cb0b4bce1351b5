// claim.cpp -- maps proofs of infeasibility and unboundedness of the current or reduced model to the original model
//
// Problem     A reduction, or the solver of the reduced model, finds a contradiction in a model that many reductions
//             have changed. To verify it, row multipliers of the original model are needed; for unboundedness a ray of
//             its columns.
// Method      A proof of infeasibility is a ray of the dual: with all costs zero, y <= 0 for inequalities and d = -A^T
//             y, the dual objective y b + sum of d_j times its bound increases without limit. A primal ray is a
//             direction of the model with all constants zero. So both are mapped by postsolve like a solution
//             (PostPoint).
// Limits      Reductions that keep an optimum, but not all feasible points, may cause a contradiction that the original
//             model does not have (it may be unbounded then). If the bounds of a column cross, the proof needs the
//             origins of both, but postsolve knows one. So a mapped proof has to be verified (body/certificate.h).
// Cost        That of postsolve, if there is a claim.
#include "presolve/claim.h"
#include "presolve/bound_propagation.h"
#include "presolve/postsolve.h"
#include <algorithm>
#include <cmath>

namespace
{
int begin_proof(PresolveWork *w)
{
    return array_assign(&w->Proof, int64_t{w->NumCols} + w->NumRows, 0.0);
}

void add_row(PresolveWork *w, int i, double y)
{
    w->Proof.data[w->NumCols + i] += y;
    for (int p = first_in_row(w, i); p >= 0; p = next_in_row(w, p))
        w->Proof.data[w->Nodes.data[p].col] -= y * w->Nodes.data[p].value;
}

// Row multipliers from a dual ray.
void farkas_of(const ModelBody *body, const PostPoint *point, double *farkas)
{
    for (int i = 0; i < point->m; i++) farkas[i] = -point->d[point->n + i];
    farkas_clean(body, point->INF, farkas);
}

void ray_of(const ModelBody *body, const PostPoint *point, double *ray)
{
    std::copy_n(point->x, point->n, ray);
    ray_clean(body, point->INF, ray);
}

// A ray of the model, zero at first.
struct Direction {
    Array<double> x, d;
    PostPoint point = {};
};

int direction_alloc(Direction *direction, int n, int m, double infinite)
{
    const int64_t size = int64_t{n} + m;
    TRY(array_assign(&direction->x, size, 0.0));
    TRY(array_assign(&direction->d, size, 0.0));
    direction->point = {n, m, direction->x.data, direction->d.data, nullptr, infinite, 0};
    return 0;
}
} // namespace

void farkas_clean(const ModelBody *body, double infinite, double *farkas)
{
    for (int i = 0; i < body->numconstrs; i++)
        if (body->senses.data[i] != '=' && (farkas[i] < 0 || body->rhs.data[i] >= infinite))
            farkas[i] = 0;
}

void ray_clean(const ModelBody *body, double infinite, double *ray)
{
    for (int j = 0; j < body->numvars; j++)
        if ((ray[j] < 0 && body->lb.data[j] > -infinite) ||
            (ray[j] > 0 && body->ub.data[j] < infinite))
            ray[j] = 0;
}

int claim_infeasible(PresolveWork *w, std::initializer_list<LineTerm> rows)
{
    if (!w->WantsProof) return END_INFEASIBLE;
    TRY(begin_proof(w));
    for (const LineTerm &term : rows) add_row(w, term.line, term.factor);
    return END_INFEASIBLE;
}

int claim_row_sum(PresolveWork *w, int i, const LineTerm *rows, int count, int sign)
{
    if (!w->WantsProof) return END_INFEASIBLE;
    TRY(begin_proof(w));
    add_row(w, i, sign);
    for (int k = 0; k < count; k++) add_row(w, rows[k].line, -sign * rows[k].factor);
    return END_INFEASIBLE;
}

int claim_unbounded(PresolveWork *w, std::initializer_list<LineTerm> cols)
{
    if (!w->WantsProof) return END_UNBOUNDED;
    TRY(begin_proof(w));
    for (const LineTerm &term : cols) w->Proof.data[term.line] = term.factor;
    return END_UNBOUNDED;
}

int claim_col_sum(PresolveWork *w, int j, const LineTerm *cols, int count, int sign)
{
    if (!w->WantsProof) return END_UNBOUNDED;
    TRY(begin_proof(w));
    w->Proof.data[j] = sign;
    for (int k = 0; k < count; k++) w->Proof.data[cols[k].line] = -sign * cols[k].factor;
    return END_UNBOUNDED;
}

int claim_propagated(PresolveWork *w, BoundPropagation *p)
{
    const bool primal = p->kind == PROPAGATE_PRIMAL;
    const int status = primal ? END_INFEASIBLE : END_UNBOUNDED;
    if (!w->WantsProof) return status;
    Array<double> con, var;
    TRY(propagation_proof(p, &con, &var));
    TRY(begin_proof(w));
    if (primal) {
        std::copy_n(var.data, w->NumCols, w->Proof.data);
        std::copy_n(con.data, w->NumRows, w->Proof.data + w->NumCols);
    } else { // a column's inequality on the duals, with multiplier -r_j
        for (int j = 0; j < w->NumCols; j++) w->Proof.data[j] = -con.data[j];
    }
    return status;
}

int claim_finish(PresolveWork *w, int status, LpClaim *claim)
{
    if (w->Proof.size == 0) return 0;
    const ModelBody *body = w->Body;
    const int n = w->NumCols, m = w->NumRows;
    const bool infeasible = status == END_INFEASIBLE;
    Direction direction;
    TRY(direction_alloc(&direction, n, m, w->INF));
    std::copy_n(w->Proof.data, w->Proof.size,
                (infeasible ? direction.d : direction.x).data);
    TRY(undo_all(w->Undo.head, &direction.point, &w->Watch));
    TRY(array_resize(infeasible ? &claim->farkas : &claim->ray, infeasible ? m : n));
    if (infeasible)
        farkas_of(body, &direction.point, claim->farkas.data);
    else
        ray_of(body, &direction.point, claim->ray.data);
    return 0;
}

int postsolve_farkas(const PresolveResult *result, const double *reduced, double *full)
{
    const ModelBody *small = result->Reduced;
    const int n = result->NumCols, m = result->NumRows;
    Direction direction;
    Array<double> y, d; // of the reduced model
    TRY(direction_alloc(&direction, n, m, result->INF));
    TRY(array_assign(&y, small->numconstrs, 0.0));
    TRY(array_assign(&d, small->numvars, 0.0));
    for (int i = 0; i < small->numconstrs; i++) y.data[i] = -reduced[i];
    for (int j = 0; j < small->numvars; j++)
        for (int p = small->vbeg.data[j]; p < small->vbeg.data[j + 1]; p++)
            d.data[j] -= y.data[small->vind.data[p]] * small->vval.data[p];
    TRY(replace_given_bounds(result, y.data, d.data));
    for (int i = 0; i < m; i++) {
        const int k = result->RowMap.data[i];
        if (k >= 0) direction.d.data[n + i] = y.data[k];
    }
    for (int j = 0; j < n; j++) {
        const int k = result->ColMap.data[j];
        if (k >= 0) direction.d.data[j] = d.data[k];
    }
    LimitWatch watch = {nullptr};
    TRY(undo_all(result->Undo.head, &direction.point, &watch));
    farkas_of(result->Full, &direction.point, full);
    return 0;
}

int postsolve_ray(const PresolveResult *result, const double *reduced, double *full)
{
    Direction direction;
    TRY(direction_alloc(&direction, result->NumCols, result->NumRows, result->INF));
    for (int j = 0; j < result->NumCols; j++) {
        const int k = result->ColMap.data[j];
        if (k >= 0) direction.x.data[j] = reduced[k];
    }
    LimitWatch watch = {nullptr};
    TRY(undo_all(result->Undo.head, &direction.point, &watch));
    ray_of(result->Full, &direction.point, full);
    return 0;
}
