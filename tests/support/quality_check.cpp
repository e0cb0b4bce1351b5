// quality_check.cpp -- see the header
#include "support/quality_check.h"
#include <cmath>

namespace
{
constexpr double RELATIVE = 1e-12; // of an amount: conversions to double
constexpr double ROUNDING = 2e-17; // of the terms of two sums in long double with 64 bits
constexpr double PLACE_RELATIVE = 1e-9; // of the numbers behind a distance: see the page

struct Amount {
    double value = 0;
    double noise = 0; // by how much the library may differ
};
using Amounts = std::vector<Amount>;
} // namespace

static Amount positive(const LpAmount &amount)
{
    const double value = double(std::max(amount.value, 0.0L));
    return {value, RELATIVE * value + ROUNDING * double(amount.terms)};
}

static Amount size_of(const LpAmount &amount)
{
    return positive({std::fabs(amount.value), amount.terms});
}

// Optimality wants the force of a multiplier to be 0, or its column or row to stand at the end that it prices.
struct Priced {
    Amounts dual, complementarity;
    void judge(const LpPriced &p, double tol)
    {
        const Amount force = size_of(p.force), away = size_of(p.distance);
        const bool open = std::isinf(away.value);
        dual.push_back(p.distance.value > tol + PLACE_RELATIVE * p.end ? force : Amount{});
        if (open) return complementarity.push_back({});
        const double value = force.value * away.value;
        complementarity.push_back({value, force.noise * away.value +
                                              force.value * away.noise + RELATIVE * value});
    }
};

static std::string differs(const std::string &name, double said, double found)
{
    return formatted("%s is %.17g, found %.17g", name.c_str(), said, found);
}

static void compare(TVXmodel *model, const std::string &name, const Amounts &amounts,
                    std::vector<std::string> *faults)
{
    double max = 0, sum = 0, max_noise = 0, sum_noise = 0;
    for (const Amount &a : amounts) {
        max = std::max(max, a.value);
        max_noise = std::max(max_noise, a.noise);
        sum += a.value;
        sum_noise += a.noise + RELATIVE * a.value;
    }
    double said_max = -1, said_sum = -1;
    int place = -2;
    if (TVXgetdblattr(model, name.c_str(), &said_max) ||
        TVXgetdblattr(model, (name + "Sum").c_str(), &said_sum) ||
        TVXgetintattr(model, (name + "Index").c_str(), &place)) {
        faults->push_back(name + " cannot be read");
        return;
    }
    if (std::fabs(said_max - max) > max_noise)
        faults->push_back(differs(name, said_max, max));
    if (std::fabs(said_sum - sum) > sum_noise)
        faults->push_back(differs(name + "Sum", said_sum, sum));
    const bool none = place == -1;
    if (none ? max > max_noise : place < 0 || place >= int(amounts.size()))
        faults->push_back(differs(name + "Index", place, max));
    else if (!none && amounts[place].value < max - 2 * max_noise)
        faults->push_back(differs(name + " at its place", max, amounts[place].value));
}

std::vector<std::string> check_quality(TVXmodel *model, const LpModel *lp,
                                       const LpSolution *solution)
{
    const LpMeasures m = lp_measure(lp, solution->x, solution->pi);
    Amounts bound, constr, residual, dual_residual;
    Priced priced;
    double tol = 0;
    TVXgetdblparam(TVXgetenv(model), "FeasibilityTol", &tol);
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const TermSum &d = m.sums.costs[j];
        bound.push_back(positive(m.bound[j]));
        dual_residual.push_back(size_of({d.value - solution->rc[j], d.size}));
        priced.judge(m.cols[j], tol);
    }
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const bool equation = lp->senses[i] == '=';
        LpPriced p = m.rows[i];
        if (equation) p.force = {}; // free
        constr.push_back(positive(m.constr[i]));
        residual.push_back(equation || solution->cbasis[i] < 0 ? size_of(m.constr[i])
                                                               : Amount{});
        priced.judge(p, tol);
    }
    const Amounts none;
    // clang-format off
    const std::pair<const char *, const Amounts &> rows[] = {
        {"BoundVio", bound}, {"ConstrVio", constr}, {"ConstrResidual", residual}, {"DualVio", priced.dual},
        {"DualResidual", dual_residual}, {"ComplVio", priced.complementarity}, {"IntVio", none}};
    // clang-format on
    std::vector<std::string> faults;
    for (const auto &[name, amounts] : rows) compare(model, name, amounts, &faults);
    return faults;
}
