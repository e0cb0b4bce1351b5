// api_solve.cpp -- a solve of a fuzzed program, and the judgement of its outcome
//
// Method      What the solve says must be what the exact judge finds on the reference, and an optimal solution must
//             meet the optimality conditions. A limit that was set, a cutoff or a callback may end it otherwise, but
//             only in the way that belongs to it. Parameters must be as they were set.
#include "fuzz/api_model.h"
#include "support/quality_check.h"
#include "support/solve_judge.h"

namespace
{
constexpr int ORACLE_NODES = 300; // a solve of a program

// May the solve end with this status, whatever the model is?
bool stopped_rightly(const ApiModel *a, int status)
{
    const double limit = a->value("IterationLimit", RUNAWAY_ITERATIONS);
    switch (status) {
    case TVX_ITERATION_LIMIT:
        return limit < RUNAWAY_ITERATIONS;
    case TVX_TIME_LIMIT:
        return a->value("TimeLimit", 1e100) < 1e100;
    case TVX_INTERRUPTED:
        return a->watch.asked;
    default:
        return false;
    }
}

std::string judge(ApiModel *a, const LpModel *lp)
{
    const int status = a->solution.status;
    if (stopped_rightly(a, status)) return "";
    const RationalResult truth = rational_solve(lp);
    Settings settings; // a solve that was at its end before the cutoff came stays there
    for (const auto &[name, value] : a->values)
        if (name != "Cutoff" || status == TVX_CUTOFF) settings.emplace_back(name, value);
    return judge_outcome(lp, &truth, settings, &a->solution);
}

// A point is there under the statuses that have one; what was stopped may have come to none.
std::string check_available(ApiModel *a)
{
    const int status = a->solution.status;
    const bool may = status == TVX_OPTIMAL || status > TVX_UNBOUNDED;
    const bool must = may && !stopped_rightly(a, status);
    LpSolution point;
    const int code = lp_read_point(a->model, &point);
    const bool has = code == 0;
    if ((must && !has) || (has && !may))
        return formatted("status %d, the point answers %d", status, code);
    for (const auto *list : {&point.x, &point.rc, &point.pi, &point.slack})
        if (has && !all_finite(*list)) return "a point that is not finite";
    return "";
}

std::string check_parameters(const ApiModel *a)
{
    for (const auto &[name, value] : a->values) {
        int integer = 0;
        double number = 0;
        if (TVXgetparamtype(a->env(), name.c_str()) == 2)
            TVXgetdblparam(a->env(), name.c_str(), &number);
        else
            TVXgetintparam(a->env(), name.c_str(), &integer);
        if (number + integer != value) return "parameter " + name + " has changed";
    }
    return "";
}
} // namespace

std::string api_solve(ApiModel *a)
{
    a->watch = Watch{};
    a->solution = LpSolution{};
    if (a->watched) {
        a->watch.end = static_cast<Watch::End>(a->dice()->range(0, 2));
        a->watch.at_call = a->dice()->range(1, 40);
        a->watch.queues = a->dice()->chance(30);
    }
    a->player.reference.update(); // what the callback queues waits
    LpModel lp;
    const bool clear = a->to_lp(&lp), mip = a->is_mip();
    const MipTruth truth = clear && mip ? mip_truth(&lp, ORACLE_NODES) : MipTruth{};
    if (clear && mip) {
        a->watch.mip = &lp;
        a->watch.truth = &truth;
        a->watch.proposes = a->dice()->chance(50);
    }
    const int code = TVXoptimize(a->model);
    if (!a->watch.wrong.empty()) return a->watch.wrong;
    if (std::string wrong = check_parameters(a); !wrong.empty()) return wrong;
    const bool stopped = a->watch.asked && a->watch.end == Watch::End::CODE;
    if (code != (stopped ? WATCH_CODE : 0))
        return "optimize: " + std::to_string(code) + " " + TVXgetmerrormsg(a->model);
    if (mip) {
        const std::string wrong = clear && !code ? api_judge_mip(a, &lp, &truth) : "";
        return wrong.empty() ? "" : wrong + "\n" + lp_to_mps(&lp, a->settings());
    }
    if (lp_read_solution(a->model, &a->solution)) return "the solution cannot be read";
    std::string wrong = check_available(a);
    if (wrong.empty() && clear) wrong = judge(a, &lp);
    const bool measured = clear && !lp.obj.empty() && a->dice()->chance(50);
    if (wrong.empty() && measured && !lp_read_point(a->model, &a->solution)) {
        // Also where it was stopped.
        const auto found = check_quality(a->model, &lp, &a->solution);
        if (!found.empty()) wrong = found[0];
    }
    return wrong.empty() ? "" : wrong + "\n" + lp_to_mps(&lp, a->settings());
}
