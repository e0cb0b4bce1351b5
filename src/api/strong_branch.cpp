// strong_branch.cpp -- TVXstrongbranch: the objective on both sides of each candidate, with the model left as it was
//
// Method      The simplex record does the work (simplex/strong_branch.cpp); here are arguments, integers and signs. A
//             candidate with value x is split at d = floor(x + IntFeasTol) into x <= d and x >= d + 1.
// Invariant   The model is busy meanwhile: TVXterminate stops it, other calls are refused.
#include "attributes/sensitivity.h"
#include "body/signs.h"
#include "model/attribute_cache.h"
#include "runtime/clock.h"
#include "simplex/simplex.h"
#include <cmath>
#include <limits>

namespace
{
struct Request {
    int count;
    const int *ind;
    double iterations; // of one side
    double *down, *up; // [count] or null
    int *status;
};

int check(TVXmodel *model, const Request &request)
{
    if (request.count < 0 || !(request.iterations >= 0)) // no number is no limit
        return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                          "Negative count or iteration limit");
    if (request.count > 0 && !request.ind) return TVX_ERROR_NULL_ARGUMENT;
    for (int k = 0; k < request.count; k++)
        if (request.ind[k] < 0 || request.ind[k] >= model->body->numvars)
            return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                              "Index %d out of range for strong branching", request.ind[k]);
    return 0;
}

bool is_stop(int status)
{
    return status == TVX_TIME_LIMIT || status == TVX_INTERRUPTED;
}

// What a caller reads of a side, in the form of a minimisation. Values of models with huge objectives may reach and
// pass the one that stands for no solution: then the largest number stands for it, and a value that meets it moves up
// by its last digit.
double shown(const BranchOutcome &outcome, double optimum)
{
    const bool huge = optimum >= UNDEFINED_VALUE;
    const double none = huge ? std::numeric_limits<double>::max() : UNDEFINED_VALUE;
    if (branch_is_closed(outcome)) return none;
    if (outcome.Value == UNDEFINED_VALUE) // met by chance
        return std::nextafter(UNDEFINED_VALUE, std::numeric_limits<double>::max());
    return outcome.Value;
}

// One candidate, or the optimum once a limit has stopped the call.
int try_candidate(const TVXmodel *model, StrongBranch *branch, const Request &request,
                  int k)
{
    const int j = request.ind[k], sense = model->body->sense;
    const double x = simplex_place(model->lp.simplex, j).Value,
                 below = std::floor(x + model->env->IntFeasTol),
                 optimum = simplex_objective(model->lp.simplex);
    for (const BranchSide side : {BranchSide::DOWN, BranchSide::UP}) {
        BranchOutcome outcome = {TVX_OPTIMAL, optimum, 0};
        double *place = side == BranchSide::DOWN ? request.down : request.up;
        if (place && !is_stop(*request.status)) {
            TRY(strong_branch_probe(branch, j, side,
                                    side == BranchSide::DOWN ? below : below + 1,
                                    request.iterations, &outcome));
            message_debug(model->env, "Strong branch result: %d\n", outcome.Status);
            if (is_stop(outcome.Status)) *request.status = outcome.Status;
        }
        if (place) place[k] = turned(sense, shown(outcome, optimum));
    }
    return 0;
}

int try_all(TVXmodel *model, const Request &request)
{
    StrongBranch *branch = nullptr;
    TRY(strong_branch_open(model->lp.simplex, &branch));
    int code = 0;
    for (int k = 0; k < request.count && !code; k++)
        code = try_candidate(model, branch, request, k);
    strong_branch_close(branch);
    return code;
}

int run(TVXmodel *model, const Request &request)
{
    TRY(check(model, request));
    TRY(SensitivityPrepare(model)); // an optimal basis with fresh factors
    model_open_solve(model, WallClock());
    *request.status = TVX_OPTIMAL;
    const int code = try_all(model, request);
    flag_store(&model->busy, 0);
    return code;
}
} // namespace

int TVXstrongbranch(TVXmodel *model, int numcands, const int *ind, double iterations,
                    double *down_out, double *up_out, int *status_out)
{
    int code = TVXcheckmodel(model);
    if (!code && model_is_occupied(model)) // called from a callback
        code = TVX_ERROR_OPTIMIZATION_IN_PROGRESS;
    int status = 0;
    if (!code) code = run(model, {numcands, ind, iterations, down_out, up_out, &status});
    if (status_out) *status_out = code ? 0 : status;
    return finish_model(model, code);
}
