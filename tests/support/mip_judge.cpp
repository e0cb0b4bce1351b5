// mip_judge.cpp -- see the header
#include "support/mip_judge.h"
#include <algorithm>
#include <cmath>

// Relative error of a value. Points may use the tolerances of rows and integers, 1e-6 and 1e-5, and gain by them.
static constexpr double CLOSE = 1e-5;
static constexpr double CLOSE_CUTOFF =
    1e-6; // a cutoff this near to the optimum may go either way

namespace
{
struct Judge {
    const LpModel *lp;
    const MipTruth *truth;
    const Settings &settings;
    const MipAnswer *a;
    double optimum = 0; // of the model as given
    double size = 1;    // what errors are relative to

    double setting(const char *name, double otherwise) const
    {
        return setting_value(settings, name, otherwise);
    }
    std::string wrong_status() const
    {
        return formatted("status %d, but the model is %s (%.12g)\n", a->status,
                         mip_status_name(truth->status), optimum);
    }
    bool limit_reached() const;
    std::string without_optimum() const;
    std::string values() const;
    std::string run() const;
};
} // namespace

// May a limit have ended the solve with this status?
bool Judge::limit_reached() const
{
    switch (a->status) {
    case TVX_ITERATION_LIMIT:
        return setting("IterationLimit", 1e100) < 1e100;
    case TVX_NODE_LIMIT:
        return setting("NodeLimit", 1e100) < 1e100;
    case TVX_TIME_LIMIT:
        return std::min(setting("TimeLimit", 1e100),
                        setting("TARV_PAR_VTIMELIMIT", 1e100)) < 1e100;
    case TVX_SOLUTION_LIMIT:
        return a->sol_count >= setting("SolutionLimit", 2e9);
    default:
        return false;
    }
}

// Status 4 goes with both; but a model without costs can only be infeasible.
std::string Judge::without_optimum() const
{
    const bool free_of_cost =
        std::all_of(lp->obj.begin(), lp->obj.end(), [](double c) { return c == 0; });
    const bool infeasible = truth->status == MipStatus::INFEASIBLE,
               cutoff = std::fabs(setting("Cutoff", 1e100)) < 1e100;
    const int status = a->status;
    if (status == (infeasible ? TVX_INFEASIBLE : TVX_UNBOUNDED)) return "";
    if (status == TVX_INF_OR_UNBD && !free_of_cost) return "";
    if (status == TVX_CUTOFF && infeasible && cutoff) return "";
    if (limit_reached() && (!infeasible || a->sol_count == 0)) return "";
    return wrong_status();
}

// The true value lies between the bound and the solution; an optimal solution has it.
std::string Judge::values() const
{
    const MipTolerances tol = mip_tolerances(settings);
    const double better = lp->sense * (optimum - a->objval),
                 beyond = lp->sense * (a->objbound - optimum),
                 gap = std::max(tol.gap * std::fabs(optimum), tol.gap_abs);
    if (a->sol_count > 0 && better > CLOSE * size)
        return formatted("value %.12g, better than the optimum %.12g\n", a->objval,
                         optimum);
    if (a->status == TVX_OPTIMAL && -better > gap + CLOSE * size)
        return formatted("value %.12g, but the optimum is %.12g\n", a->objval, optimum);
    if (beyond > CLOSE * size)
        return formatted("bound %.12g, beyond the optimum %.12g\n", a->objbound, optimum);
    return "";
}

std::string Judge::run() const
{
    if (truth->status == MipStatus::UNKNOWN) return "";
    if (truth->status != MipStatus::OPTIMAL) return without_optimum();
    // A maximise model has its cutoff below; a value of the other infinity is none.
    const double cutoff = setting("Cutoff", lp->sense * LP_INFINITY),
                 excess = std::fabs(cutoff) >= LP_INFINITY
                              ? -LP_INFINITY
                              : lp->sense * (optimum - cutoff) / size;
    const bool good = a->status == TVX_OPTIMAL || limit_reached();
    if (a->status == TVX_CUTOFF) return excess > -CLOSE_CUTOFF ? "" : wrong_status();
    if (!good || (excess > CLOSE && a->sol_count > 0)) return wrong_status();
    return excess > -CLOSE_CUTOFF ? ""
                                  : values(); // else the bound may be that of the cutoff
}

std::string mip_judge(const LpModel *lp, const MipTruth *truth, const Settings &settings,
                      const MipAnswer *answer, double factor, bool interrupted)
{
    std::string faults = mip_check(lp, answer, mip_tolerances(settings));
    if (!faults.empty() || (interrupted && answer->status == TVX_INTERRUPTED))
        return faults;
    Judge judge = {lp, truth, settings, answer};
    if (truth->status == MipStatus::OPTIMAL) {
        judge.optimum = truth->value.get_d() * factor;
        judge.size = 1 + std::fabs(judge.optimum);
        for (size_t j = 0; j < lp->obj.size(); j++)
            judge.size = std::max(judge.size, std::fabs(lp->obj[j] * truth->x[j].get_d()));
    }
    return judge.run();
}
