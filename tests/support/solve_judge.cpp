// solve_judge.cpp -- see the header
#include "support/solve_judge.h"
#include <cmath>

std::string judge_optimal(const LpModel *lp, const LpSolution *solution)
{
    const std::string faults = lp_check_optimal(lp, solution, LpTolerances{});
    return faults.empty() ? "" : "not an optimal solution:\n" + faults;
}

LpSolution exact_solution(const LpModel *lp, const RationalResult &exact)
{
    LpSolution s;
    s.status = TVX_OPTIMAL;
    s.objval = exact.value.get_d();
    for (const mpq_class &v : exact.x) s.x.push_back(v.get_d());
    for (const mpq_class &v : exact.pi) s.pi.push_back(v.get_d());
    std::vector<mpq_class> slack(lp->rhs.begin(), lp->rhs.end());
    for (size_t j = 0; j < lp->obj.size(); j++) {
        mpq_class rc = lp->obj[j];
        for (const LpEntry &e : lp->cols[j]) {
            rc -= e.value * exact.pi[e.row];
            slack[e.row] -= e.value * exact.x[j];
        }
        s.rc.push_back(rc.get_d());
    }
    for (const mpq_class &v : slack) s.slack.push_back(v.get_d());
    s.has_basis = true;
    s.vbasis = exact.vbasis;
    s.cbasis = exact.cbasis;
    return s;
}

static std::string wrong_status(int status, LpStatus expected)
{
    return formatted("status %d, but the model is %s", status, lp_status_name(expected));
}

std::string judge_exact(const LpModel *lp, const RationalResult *truth, bool presolve,
                        const LpSolution *solution)
{
    if (truth->status != LpStatus::OPTIMAL) {
        bool zero = true;
        for (const double c : lp->obj) zero = zero && c == 0;
        const int expected =
            truth->status == LpStatus::INFEASIBLE ? TVX_INFEASIBLE : TVX_UNBOUNDED;
        const bool either = presolve && !zero && solution->status == TVX_INF_OR_UNBD;
        if (solution->status == expected || either) return "";
        return wrong_status(solution->status, truth->status);
    }
    if (solution->status != TVX_OPTIMAL)
        return wrong_status(solution->status, truth->status);
    const double value = truth->value.get_d();
    double size = 1 + std::fabs(value);
    for (size_t j = 0; j < lp->obj.size(); j++)
        size = std::max(size, std::fabs(lp->obj[j] * truth->x[j].get_d()));
    if (!(std::fabs(solution->objval - value) <= 1e-6 * size))
        return formatted("value %.9g, but it is %.9g", solution->objval, value);
    return judge_optimal(lp, solution);
}

// Of the last one with this name.
static double value_of(const Settings &settings, const char *wanted, double otherwise)
{
    for (const auto &[name, value] : settings)
        if (name == wanted) otherwise = value;
    return otherwise;
}

// A cutoff this near to the optimum, relatively, may go either way.
static constexpr double CLOSE = 1e-6;

std::string judge_outcome(const LpModel *lp, const RationalResult *truth,
                          const Settings &settings, const LpSolution *solution)
{
    const bool cut = solution->status == TVX_CUTOFF,
               presolve = value_of(settings, "Presolve", -1) != 0 &&
                          value_of(settings, "TARV_PAR_DUALREDUCTION", 1) != 0;
    const double optimum = truth->value.get_d(),
                 cutoff = value_of(settings, "Cutoff", lp->sense * LP_INFINITY),
                 excess = lp->sense * (optimum - cutoff) / (1 + std::fabs(optimum));
    if (truth->status == LpStatus::OPTIMAL && excess > CLOSE)
        return cut ? "" : wrong_status(solution->status, truth->status) + ", cut off";
    const bool open = truth->status == LpStatus::INFEASIBLE ||
                      (truth->status == LpStatus::OPTIMAL && std::fabs(excess) <= CLOSE);
    return cut && open ? "" : judge_exact(lp, truth, presolve, solution);
}

std::string solve_and_judge(TVXenv *env, const LpModel *lp, const RationalResult *truth,
                            const Settings &settings)
{
    const TestModel model(lp_load(env, lp, settings));
    LpSolution solution;
    if (!model || TVXsetdblparam(TVXgetenv(model), "IterationLimit", RUNAWAY_ITERATIONS))
        return std::string("not loaded, or settings refused: ") + TVXgeterrormsg(env);
    if (const int error = lp_solve(model, &solution))
        return formatted("error %d: %s", error, TVXgetmerrormsg(model));
    return judge_outcome(lp, truth, settings, &solution);
}

std::string same_outcome(const LpSolution *a, const LpSolution *b)
{
    const auto open = [](int status) {
        return status == TVX_INFEASIBLE || status == TVX_UNBOUNDED;
    };
    const bool compatible = a->status == b->status ||
                            (a->status == TVX_INF_OR_UNBD && open(b->status)) ||
                            (b->status == TVX_INF_OR_UNBD && open(a->status));
    if (!compatible) return formatted("status %d against %d", a->status, b->status);
    if (a->status != TVX_OPTIMAL) return "";
    const double size = 1 + std::max(std::fabs(a->objval), std::fabs(b->objval));
    if (std::fabs(a->objval - b->objval) <= 1e-6 * size) return "";
    return formatted("value %.9g against %.9g", a->objval, b->objval);
}
