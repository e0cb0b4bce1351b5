// presolve_try.cpp -- see the header
#include "support/presolve_try.h"
#include "body/certificate.h"
#include "body/signs.h"
#include "lp/lp_form.h"
#include "presolve/claim.h"
#include "presolve/presolve.h"
#include "support/inside.h"
#include <cstdlib>
#include <gtest/gtest.h>

static int broken_invariants(const PresolveWork *w)
{
#ifdef TVX_DEBUG
    return presolve_verify(w);
#else
    return w->Work < 0;
#endif
}

static int reduce(PresolveWork *w, TVXmodel *model,
                  std::initializer_list<Reduction> reductions, PresolveTry *out,
                  PresolveResult **result)
{
    w->Method = static_cast<LpMethod>(model->env->LPMethod);
    if (const int error = work_load(w, model->body, model->env)) return error;
    if (const int stop = mark_everything(w)) return stop;
    for (const Reduction reduction : reductions) {
        if (const int stop = pre_activity(w)) return stop;
        out->status = reduction(w);
        if (out->status != 0) return 0;
        if (broken_invariants(w)) out->faults += "the record is broken\n";
        if (const int stop = compress(w)) return stop;
    }
    return build_reduced(w, result);
}

static int solve_reduced(TVXmodel *reduced, PresolveTry *out, LpPoint *point)
{
    out->rows = reduced->body->numconstrs;
    out->cols = reduced->body->numvars;
    out->nonzeros = reduced->body->numnz;
    if (const int error = lp_read_back(reduced, &out->reduced)) return error;
    if (const int error = simplex_alone(reduced, {.Method = METHOD_DUAL})) return error;
    out->reduced_status = reduced->lp.status;
    if (reduced->lp.status != TVX_OPTIMAL) return 0;
    if (const int error = lp_point_alloc(point, reduced->body, true)) return error;
    simplex_get_primal(reduced->lp.simplex, point->x.data);
    simplex_get_dual(reduced->lp.simplex, point->dual.data + out->cols, point->dual.data);
    simplex_get_basis(reduced->lp.simplex, point->status.data);
    return 0;
}

// Where a start would put a column: a free one whose bounds come back, at the one on which it stands.
static int settled(const ModelBody *body, const LpPoint *point, int j)
{
    const int status = point->status[j];
    if (status != -3) return status >= 0 ? 0 : status;
    return point->x[j] == body->lb[j] ? -1 : point->x[j] == body->ub[j] ? -2 : -3;
}

// As attributes would show the point.
static LpSolution as_caller_sees(const TVXmodel *model, const LpModel *lp,
                                 const LpPoint *point)
{
    const ModelBody *body = model->body;
    const int n = body->numvars, m = body->numconstrs;
    LpSolution s;
    s.status = TVX_OPTIMAL;
    s.has_basis = true;
    for (int j = 0; j < n; j++) {
        s.x.push_back(point->x[j]);
        s.rc.push_back(body->sense * point->dual[j]);
        s.vbasis.push_back(settled(body, point, j));
    }
    for (int i = 0; i < m; i++) {
        s.pi.push_back(body->sense * row_sign(body, i) * point->dual[n + i]);
        s.slack.push_back(row_sign(body, i) * point->x[n + i]);
        s.cbasis.push_back(point->status[n + i] >= 0 ? 0 : -1);
    }
    s.objval = double(lp_objective(lp, s.x));
    return s;
}

static int solve_and_return(TVXmodel *model, const PresolveResult *result,
                            const LpModel *lp, PresolveTry *out)
{
    LpPoint reduced, full;
    const ModelBody *body = presolve_reduced(result);
    if (body) {
        const BodyView small(model->env, body);
        if (const int error = solve_reduced(small, out, &reduced)) return error;
        if (out->reduced_status != TVX_OPTIMAL) return 0;
    }
    if (const int error = postsolve_lp(result, body ? &reduced : nullptr, &full))
        return error;
    out->solution = as_caller_sees(model, lp, &full);
    out->faults += lp_check_optimal(lp, &out->solution, LpTolerances{});
    return 0;
}

static void finish(TVXmodel *model, const PresolveResult *result, const LpModel *lp,
                   int error, PresolveTry *out)
{
    if (!error && out->status == 0) error = solve_and_return(model, result, lp, out);
    if (error) out->faults += "error " + std::to_string(error) + "\n";
}

bool claim_proved(const ModelBody *body, const LpClaim *claim)
{
    bool holds = false;
    if (claim->farkas.size > 0) return farkas_holds(body, 1e30, claim->farkas.data);
    if (claim->ray.size > 0 && ray_holds(body, 1e30, claim->ray.data, &holds)) abort();
    return holds;
}

PresolveTry reduced_by(const LpModel &lp, std::initializer_list<Reduction> reductions,
                       const Settings &settings)
{
    PresolveTry out;
    LpClaim claim;
    const TestEnv env;
    const TestModel model(lp_load(env.env, &lp, settings));
    if (!model) abort();
    PresolveWork work;
    PresolveResult *result = nullptr;
    work.WantsProof = true;
    const int error = reduce(&work, model, reductions, &out, &result);
    if (out.status != 0 && claim_finish(&work, out.status, &claim)) abort();
    out.proved = claim_proved(model->body, &claim);
    out.infeas_col = work.InfeasCol;
    out.coefs_changed = work.CoefsChanged;
    out.effect = work.RowsRemoved + work.ColsRemoved + work.IneqToEq + work.CoefsChanged +
                 work.BoundsChanged;
    work_free(&work);
    finish(model, result, &lp, error, &out);
    presolve_free(result);
    return out;
}

PresolveTry expect_left(const LpModel &lp, std::initializer_list<Reduction> reductions,
                        int rows, int cols, const Settings &settings)
{
    PresolveTry t = reduced_by(lp, reductions, settings);
    EXPECT_EQ(t.status, 0) << lp_to_mps(&lp, "");
    EXPECT_EQ(t.faults, "") << lp_to_mps(&lp, "");
    EXPECT_EQ(t.rows, rows == -1 ? t.rows : rows);
    EXPECT_EQ(t.cols, cols == -1 ? t.cols : cols);
    return t;
}

PresolveTry expect_end(const LpModel &lp, std::initializer_list<Reduction> reductions,
                       int status)
{
    PresolveTry t = reduced_by(lp, reductions);
    EXPECT_EQ(t.status, status) << lp_to_mps(&lp, "");
    return t;
}
