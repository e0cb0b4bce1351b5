// rational_verify.cpp -- proves an answer of the exact judge from its certificate
//
// Only the definitions: weak duality for an optimum, a row combination that no point within the bounds can meet
// for infeasibility, a feasible point and an improving direction for unboundedness.
#include "support/rational_lp.h"

using Vector = std::vector<mpq_class>;

// y A, one entry per column.
static Vector combine_rows(const LpModel *lp, const Vector &y)
{
    Vector sum(lp->obj.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j]) sum[j] += e.value * y[e.row];
    return sum;
}

// A x, one entry per row.
static Vector activities(const LpModel *lp, const Vector &x)
{
    Vector sum(lp->rhs.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j]) sum[e.row] += e.value * x[j];
    return sum;
}

static bool sense_holds(char sense, const mpq_class &left, const mpq_class &right)
{
    return sense == '<' ? left <= right : sense == '>' ? left >= right : left == right;
}

static std::string verify_point(const LpModel *lp, const Vector &x)
{
    if (x.size() != lp->obj.size()) return "point of wrong length";
    for (size_t j = 0; j < x.size(); j++) {
        if (!lp_is_infinite(lp->lb[j]) && x[j] < lp->lb[j])
            return "point below a lower bound";
        if (!lp_is_infinite(lp->ub[j]) && x[j] > lp->ub[j])
            return "point above an upper bound";
    }
    const Vector activity = activities(lp, x);
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (!sense_holds(lp->senses[i], activity[i], lp->rhs[i]))
            return "point breaks a row";
    return "";
}

// For a minimisation: with these multipliers no feasible point is below the dual value, and x attains it.
static std::string verify_optimum(const LpModel *lp, const RationalResult *result)
{
    std::string wrong = verify_point(lp, result->x);
    if (!wrong.empty()) return wrong;
    if (result->pi.size() != lp->rhs.size()) return "multipliers of wrong length";
    mpq_class primal = lp->objcon, dual = lp->objcon;
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const mpq_class y = result->pi[i] * lp->sense;
        if (lp->senses[i] == '<' && y > 0) return "multiplier of wrong sign in a '<' row";
        if (lp->senses[i] == '>' && y < 0) return "multiplier of wrong sign in a '>' row";
        dual += result->pi[i] * lp->rhs[i];
    }
    const Vector covered = combine_rows(lp, result->pi);
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const mpq_class rc = lp->obj[j] - covered[j];
        primal += lp->obj[j] * result->x[j];
        if (rc == 0) continue;
        const double bound = rc * lp->sense > 0 ? lp->lb[j] : lp->ub[j];
        if (lp_is_infinite(bound)) return "reduced cost needs a bound that is infinite";
        dual += rc * bound;
    }
    if (primal != result->value) return "value is not that of the point";
    return primal == dual ? "" : "primal and dual value differ";
}

// y with y_i >= 0 in '<' rows and <= 0 in '>' rows gives (yA) x <= y rhs for every feasible x; proves
// infeasibility when even the smallest (yA) x within the bounds is larger.
static std::string verify_farkas(const LpModel *lp, const Vector &given)
{
    if (given.size() != lp->rhs.size()) return "Farkas multipliers of wrong length";
    for (const int sign : {1, -1}) {
        Vector y = given;
        mpq_class right;
        bool holds = true;
        for (size_t i = 0; i < y.size(); i++) {
            y[i] *= sign;
            right += y[i] * lp->rhs[i];
            holds = holds && (lp->senses[i] != '<' || y[i] >= 0) &&
                    (lp->senses[i] != '>' || y[i] <= 0);
        }
        const Vector left = combine_rows(lp, y);
        mpq_class smallest;
        for (size_t j = 0; j < left.size() && holds; j++) {
            if (left[j] == 0) continue;
            const double bound = left[j] > 0 ? lp->lb[j] : lp->ub[j];
            holds = !lp_is_infinite(bound);
            if (holds) smallest += left[j] * bound;
        }
        if (holds && smallest > right) return "";
    }
    return "Farkas multipliers prove nothing";
}

static std::string verify_ray(const LpModel *lp, const RationalResult *result)
{
    std::string wrong = verify_point(lp, result->x);
    if (!wrong.empty()) return wrong;
    if (result->ray.size() != lp->obj.size()) return "ray of wrong length";
    mpq_class gain;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        if (result->ray[j] < 0 && !lp_is_infinite(lp->lb[j]))
            return "ray meets a lower bound";
        if (result->ray[j] > 0 && !lp_is_infinite(lp->ub[j]))
            return "ray meets an upper bound";
        gain += lp->obj[j] * lp->sense * result->ray[j];
    }
    const Vector activity = activities(lp, result->ray);
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (!sense_holds(lp->senses[i], activity[i], 0)) return "ray meets a row";
    return gain < 0 ? "" : "ray does not improve";
}

std::string rational_verify(const LpModel *lp, const RationalResult *result)
{
    switch (result->status) {
    case LpStatus::OPTIMAL:
        return verify_optimum(lp, result);
    case LpStatus::UNBOUNDED:
        return verify_ray(lp, result);
    case LpStatus::INFEASIBLE:
        break;
    }
    if (result->crossed < 0) return verify_farkas(lp, result->farkas);
    const size_t j = static_cast<size_t>(result->crossed);
    return lp->lb[j] > lp->ub[j] ? "" : "bounds said to be crossed are not";
}
