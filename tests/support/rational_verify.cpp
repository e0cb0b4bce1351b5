// rational_verify.cpp -- proves an answer of the exact judge from its certificate
//
// Only the definitions: weak duality for an optimum, a row combination that no point within the bounds can meet
// for infeasibility, a feasible point and an improving direction for unboundedness.
// A vector is first multiplied by its common denominator: sums of doubles times integers need no long common divisors,
// and with thousands of digits that is all the difference.
#include "support/rational_lp.h"

namespace
{
using Vector = std::vector<mpq_class>;

// An integer vector, and what it was multiplied by.
struct Scaled {
    Vector number;
    mpq_class factor = 1;
};

Scaled scale(const Vector &values)
{
    Scaled s;
    mpz_class common = 1;
    for (const mpq_class &v : values) common = lcm(common, v.get_den());
    s.factor = common;
    for (const mpq_class &v : values) s.number.push_back(v * s.factor);
    return s;
}

// y A, one entry per column.
Vector combine_rows(const LpModel *lp, const Vector &y)
{
    Vector sum(lp->obj.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j])
            if (y[e.row] != 0) sum[j] += e.value * y[e.row];
    return sum;
}

// A x, one entry per row.
Vector activities(const LpModel *lp, const Vector &x)
{
    Vector sum(lp->rhs.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j])
            if (x[j] != 0) sum[e.row] += e.value * x[j];
    return sum;
}

// value / factor is outside the range
bool outside(const mpq_class &value, const mpq_class &factor, const RationalRange &range)
{
    return (range.has_low && value < range.low * factor) ||
           (range.has_high && value > range.high * factor);
}

// The smallest of multiplier * value over the range, for a minimisation (sense +1) or the largest (-1); false when it
// has no limit. A multiplier of 0 adds nothing.
bool add_least(const mpq_class &multiplier, int sense, const RationalRange &range,
               mpq_class *sum)
{
    const int sign = sgn(multiplier) * sense;
    if (sign == 0) return true;
    if (sign > 0 ? !range.has_low : !range.has_high) return false;
    *sum += multiplier * (sign > 0 ? range.low : range.high);
    return true;
}

// For a minimisation: with these multipliers no feasible point is below the dual value, and x attains it.
std::string verify_optimum(const LpModel *lp, const RationalResult *result, double relax)
{
    if (result->pi.size() != lp->rhs.size()) return "multipliers of wrong length";
    const Scaled x = scale(result->x), pi = scale(result->pi);
    mpq_class primal = lp->objcon * x.factor, dual = lp->objcon * pi.factor;
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (!add_least(pi.number[i], lp->sense, relaxed_row(lp, i, relax), &dual))
            return "multiplier of wrong sign in a row";
    const Vector covered = combine_rows(lp, pi.number);
    for (size_t j = 0; j < lp->obj.size(); j++) {
        primal += lp->obj[j] * x.number[j];
        if (!add_least(lp->obj[j] * pi.factor - covered[j], lp->sense,
                       relaxed_column(lp, j, relax), &dual))
            return "reduced cost needs a bound that is infinite";
    }
    if (primal != result->value * x.factor) return "value is not that of the point";
    return primal * pi.factor == dual * x.factor ? "" : "primal and dual value differ";
}

// The multipliers combine the rows to (yA) x, which the rows hold within a range; when even the smallest (yA) x - y
// (activities) over all ranges is positive, no x has these activities.
std::string verify_farkas(const LpModel *lp, const Vector &given, double relax)
{
    if (given.size() != lp->rhs.size()) return "Farkas multipliers of wrong length";
    const Vector y = scale(given).number, left = combine_rows(lp, y);
    for (const int sign : {1, -1}) {
        mpq_class smallest = 0;
        bool holds = true;
        for (size_t j = 0; j < left.size() && holds; j++)
            holds = add_least(sign * left[j], 1, relaxed_column(lp, j, relax), &smallest);
        for (size_t i = 0; i < y.size() && holds; i++)
            holds = add_least(-sign * y[i], 1, relaxed_row(lp, i, relax), &smallest);
        if (holds && smallest > 0) return "";
    }
    return "Farkas multipliers prove nothing";
}

std::string verify_ray(const LpModel *lp, const RationalResult *result, double relax)
{
    if (result->ray.size() != lp->obj.size()) return "ray of wrong length";
    const Vector ray = scale(result->ray).number, activity = activities(lp, ray);
    const auto meets = [](const mpq_class &way, const RationalRange &range) {
        return (range.has_low && way < 0) || (range.has_high && way > 0);
    };
    mpq_class gain;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        if (meets(ray[j], relaxed_column(lp, j, relax))) return "ray meets a bound";
        gain += lp->obj[j] * lp->sense * ray[j];
    }
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (meets(activity[i], relaxed_row(lp, i, relax))) return "ray meets a row";
    return gain < 0 ? "" : "ray does not improve";
}
} // namespace

std::string rational_verify_point(const LpModel *lp, const std::vector<mpq_class> &given,
                                  double relax)
{
    if (given.size() != lp->obj.size()) return "point of wrong length";
    const Scaled x = scale(given);
    for (size_t j = 0; j < given.size(); j++)
        if (outside(x.number[j], x.factor, relaxed_column(lp, j, relax)))
            return "point breaks a bound";
    const Vector activity = activities(lp, x.number);
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (outside(activity[i], x.factor, relaxed_row(lp, i, relax)))
            return "point breaks a row";
    return "";
}

std::string rational_verify(const LpModel *lp, const RationalResult *result, double relax)
{
    if (result->status == LpStatus::INFEASIBLE) {
        if (result->crossed < 0) return verify_farkas(lp, result->farkas, relax);
        const RationalRange r = relaxed_column(lp, size_t(result->crossed), relax);
        return r.has_low && r.has_high && r.low > r.high
                   ? ""
                   : "bounds said to be crossed are not";
    }
    const std::string wrong = rational_verify_point(lp, result->x, relax);
    if (!wrong.empty()) return wrong;
    return result->status == LpStatus::OPTIMAL ? verify_optimum(lp, result, relax)
                                               : verify_ray(lp, result, relax);
}
