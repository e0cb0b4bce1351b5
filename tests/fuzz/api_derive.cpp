// api_derive.cpp -- what is made of a fuzzed model: branches, presolved and fixed models, files
#include "files/files_support.h"
#include "fuzz/api_model.h"
#include "support/rational_lp.h"
#include <cmath>

namespace
{
constexpr double NEAR = 1e-6; // relative, of objectives

bool near(double a, double b)
{
    return std::fabs(a - b) <= NEAR * (1 + std::fabs(b));
}

// Results are those of this content and of an optimal solve.
bool is_solved(const ApiModel *a)
{
    int status = 0;
    TVXgetintattr(a->model, "Status", &status);
    return status == TVX_OPTIMAL && !a->is_mip();
}

// The best objective with variable j on one side of d, infinite when there is none.
double branch_value(LpModel lp, int j, double d, bool down)
{
    lp.lb[j] = down ? lp.lb[j] : std::fmax(lp.lb[j], d + 1);
    lp.ub[j] = down ? std::fmin(lp.ub[j], d) : lp.ub[j];
    const RationalResult side = rational_solve(&lp);
    return side.status == LpStatus::OPTIMAL ? side.value.get_d() : lp.sense * LP_INFINITY;
}

// The best value of a derived model must be that of its source. Its numbers are rounded, so that no exact judge can
// tell: the library solves it under default parameters.
std::string same_optimum(TVXmodel *made, const RationalResult *truth)
{
    LpSolution solution;
    TVXenv *env = TVXgetenv(made);
    if (TVXresetparams(env) || TVXsetintparam(env, "OutputFlag", 0)) return "is stubborn";
    if (lp_solve(made, &solution)) return "is not solved";
    if (solution.status == TVX_OPTIMAL && near(solution.objval, truth->value.get_d()))
        return "";
    LpModel lp;
    (void)lp_read_back(made, &lp);
    return formatted("has status %d value %.9g for %.9g\n", solution.status,
                     solution.objval, truth->value.get_d()) +
           lp_to_mps(&lp, "");
}

std::string derive_presolved(ApiModel *a, const RationalResult *truth)
{
    a->watch = Watch{}; // the callback is called, and does not stop it
    const TestModel made(TVXpresolvemodel(a->model));
    const bool optimal = truth->status == LpStatus::OPTIMAL; // else it may be found later
    if (made) return optimal ? same_optimum(made, truth) : "";
    const bool in_time = a->value("TimeLimit", 1e100) >= 1e100;
    return optimal && in_time ? std::string("is not made: ") + TVXgetmerrormsg(a->model)
                              : "";
}

std::string derive_fixed(ApiModel *a, const RationalResult *truth)
{
    const TestModel made(TVXconverttofixed(a->model));
    if (!is_solved(a)) return made ? "is made without a solution" : "";
    char *name = nullptr;
    if (!made || TVXgetstrattr(made, "ModelName", &name)) return "is not made";
    return std::string(name).ends_with("_fixed") ? same_optimum(made, truth)
                                                 : std::string("is called ") + name;
}
} // namespace

std::string api_branch(ApiModel *a)
{
    const int n = a->player.n_vars();
    LpModel lp;
    if (n == 0) return "";
    const int j = a->dice()->range(0, n - 1), outside = n;
    const double limit = a->dice()->chance(60) ? 1e9 : a->dice()->range(0, 3);
    double down = 0, up = 0, x = 0;
    int status = -1;
    const int code = TVXstrongbranch(a->model, 1, &j, limit, &down, &up, &status);
    if (!is_solved(a))
        return code == TVX_ERROR_DATA_NOT_AVAILABLE ? "" : "branched unsolved";
    if (TVXstrongbranch(a->model, 1, &outside, limit, &down, &up, nullptr) != 10006)
        return "branches on what does not exist";
    if (code) return "strong branching: " + std::to_string(code);
    if (a->value("TimeLimit", 1e100) < 1e100 || a->value("Cutoff", 1e100) < 1e100)
        return "";
    TVXgetdblattrelement(a->model, "X", j, &x);
    if (!a->to_lp(&lp)) return "";
    if (TVXstrongbranch(a->model, 1, &j, limit, &down, &up, &status))
        return "branches once";
    const double d = std::floor(x + 1e-5);
    for (const bool below : {true, false}) {
        const double found = below ? down : up, exact = branch_value(lp, j, d, below);
        const double over = lp.sense * (found - exact);
        const double slack = NEAR * (1 + std::fabs(exact));
        if (over > slack || (limit == 1e9 && over < -slack))
            return formatted("branch of %d at %.9g: %.9g, exact %.9g\n", j, x, found,
                             exact) +
                   lp_to_mps(&lp, "");
    }
    return "";
}

std::string api_derive(ApiModel *a)
{
    const bool presolved = a->dice()->chance(50);
    LpModel lp;
    if (a->is_mip() || !a->to_lp(&lp)) {
        const TestModel made(presolved ? TVXpresolvemodel(a->model)
                                       : TVXconverttofixed(a->model));
        return "";
    }
    const RationalResult truth = rational_solve(&lp);
    const std::string wrong =
        presolved ? derive_presolved(a, &truth) : derive_fixed(a, &truth);
    return wrong.empty() ? ""
                         : "derived model " + wrong + "\n" + lp_to_mps(&lp, a->settings());
}

std::string api_file(ApiModel *a)
{
    static constexpr const char *SUFFIXES[] = {".mps", ".lp",  ".rew", ".rlp", ".bas",
                                               ".sol", ".mst", ".prm", ".ilp"};
    const int kind = a->dice()->range(0, int(std::size(SUFFIXES)) - 1);
    const std::string suffix = SUFFIXES[kind], name = "f" + suffix;
    if (kind < 4) return round_trip(a->model, name, Names::IGNORE);
    const int code = TVXwrite(a->model, name.c_str());
    if (code == TVX_ERROR_DATA_NOT_AVAILABLE) return "";
    if (code) return suffix + " not written: " + TVXgetmerrormsg(a->model);
    if (suffix == ".sol") return "";
    if (suffix == ".prm" && // what is read is looked at after the next solve
        (TVXresetparams(a->env()) || TVXsetintparam(a->env(), "OutputFlag", 0)))
        return "the parameters are stubborn";
    return TVXread(a->model, name.c_str()) ? suffix + " is not read back" : "";
}
