// rational_verify.cpp -- proves an answer of the exact judge from its certificate
//
// Only the definitions: weak duality for an optimum, a row combination that no point within the bounds can meet
// for infeasibility, a feasible point and an improving direction for unboundedness.
// A vector is held as integers over one denominator, and a double as an integer times 2^-UNIT_BITS, so that no sum
// needs a common divisor: with thousands of digits that is all the difference.
#include "support/rational_lp.h"
#include <cmath>

namespace
{

constexpr int UNIT_BITS = 1074; // every double is an integer times 2^-1074
constexpr int MANTISSA_BITS = 53;

using Vector = std::vector<mpq_class>;
using Integers = std::vector<mpz_class>;

// value[k] = number[k] / denominator
struct Common {
    Integers number;
    mpz_class denominator = 1;
};

struct Range {
    bool has_low = false, has_high = false;
    mpz_class low, high; // in units of 2^-UNIT_BITS
};

} // namespace

// product = value * factor in units of 2^-UNIT_BITS
static mpz_class times(double value, const mpz_class &factor)
{
    int exponent = 0;
    const double mantissa = std::ldexp(std::frexp(value, &exponent), MANTISSA_BITS);
    mpz_class product = factor * mantissa;
    const int shift = exponent - MANTISSA_BITS + UNIT_BITS;
    if (shift >= 0)
        product <<= static_cast<mp_bitcnt_t>(shift);
    else // a subnormal number: the low bits of its mantissa are 0
        product >>= static_cast<mp_bitcnt_t>(-shift);
    return product;
}

static mpz_class units(double value)
{
    return times(value, 1);
}

static Common common_of(const Vector &values)
{
    Common c;
    for (const mpq_class &v : values) c.denominator = lcm(c.denominator, v.get_den());
    for (const mpq_class &v : values)
        c.number.push_back(v.get_num() * (c.denominator / v.get_den()));
    return c;
}

// [low, high] in units, wider by `relax`; a negative one narrows, but nothing that would cross.
static Range make_range(double low, double high, double relax)
{
    Range r;
    r.has_low = !lp_is_infinite(low);
    r.has_high = !lp_is_infinite(high);
    if (r.has_low) r.low = units(low);
    if (r.has_high) r.high = units(high);
    const mpz_class change = units(relax);
    if (relax < 0 && r.has_low && r.has_high && r.high - r.low + 2 * change < 0) return r;
    r.low -= change;
    r.high += change;
    return r;
}

static Range row_range(const LpModel *lp, size_t i, double relax)
{
    return make_range(lp->senses[i] == '<' ? -LP_INFINITY : lp->rhs[i],
                      lp->senses[i] == '>' ? LP_INFINITY : lp->rhs[i], relax);
}

static Range column_range(const LpModel *lp, size_t j, double relax)
{
    return make_range(lp->lb[j], lp->ub[j], relax);
}

// y A, one entry per column, over the denominator of y, in units.
static Integers combine_rows(const LpModel *lp, const Common &y)
{
    Integers sum(lp->obj.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j])
            if (y.number[e.row] != 0) sum[j] += times(e.value, y.number[e.row]);
    return sum;
}

// A x, one entry per row, over the denominator of x, in units.
static Integers activities(const LpModel *lp, const Common &x)
{
    Integers sum(lp->rhs.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j])
            if (x.number[j] != 0) sum[e.row] += times(e.value, x.number[j]);
    return sum;
}

static mpz_class shifted(const mpz_class &value)
{
    return value << UNIT_BITS;
}

static std::string verify_point(const LpModel *lp, const Vector &given, double relax)
{
    if (given.size() != lp->obj.size()) return "point of wrong length";
    const Common x = common_of(given);
    for (size_t j = 0; j < given.size(); j++) {
        const Range r = column_range(lp, j, relax);
        const mpz_class value = shifted(x.number[j]);
        if (r.has_low && value < r.low * x.denominator) return "point below a lower bound";
        if (r.has_high && value > r.high * x.denominator)
            return "point above an upper bound";
    }
    const Integers activity = activities(lp, x);
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const Range r = row_range(lp, i, relax);
        if ((r.has_low && activity[i] < r.low * x.denominator) ||
            (r.has_high && activity[i] > r.high * x.denominator))
            return "point breaks a row";
    }
    return "";
}

// The smallest of multiplier * value over the range, for a minimisation (sense +1) or the largest (-1); false when it
// has no limit. A multiplier of 0 adds nothing.
static bool add_least(const mpz_class &multiplier, int sense, const Range &range,
                      mpz_class *sum)
{
    const int sign = sgn(multiplier) * sense;
    if (sign == 0) return true;
    if (sign > 0 ? !range.has_low : !range.has_high) return false;
    *sum += multiplier * (sign > 0 ? range.low : range.high);
    return true;
}

// For a minimisation: with these multipliers no feasible point is below the dual value, and x attains it.
static std::string verify_optimum(const LpModel *lp, const RationalResult *result,
                                  double relax)
{
    const std::string wrong = verify_point(lp, result->x, relax);
    if (!wrong.empty()) return wrong;
    if (result->pi.size() != lp->rhs.size()) return "multipliers of wrong length";
    const Common x = common_of(result->x), pi = common_of(result->pi);
    mpz_class primal = times(lp->objcon, x.denominator);
    mpz_class dual = shifted(times(lp->objcon, pi.denominator));
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (!add_least(shifted(pi.number[i]), lp->sense, row_range(lp, i, relax), &dual))
            return "multiplier of wrong sign in a row";
    const Integers covered = combine_rows(lp, pi);
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const mpz_class rc = times(lp->obj[j], pi.denominator) - covered[j];
        primal += times(lp->obj[j], x.number[j]);
        if (!add_least(rc, lp->sense, column_range(lp, j, relax), &dual))
            return "reduced cost needs a bound that is infinite";
    }
    const mpz_class &number = result->value.get_num(),
                    &denominator = result->value.get_den();
    if (primal * denominator != shifted(number) * x.denominator)
        return "value is not that of the point";
    return shifted(primal) * pi.denominator == dual * x.denominator
               ? ""
               : "primal and dual value differ";
}

// The multipliers combine the rows to (yA) x, which the rows hold within a range; when even the smallest (yA) x - y
// (activities) over all ranges is positive, no x has these activities.
static std::string verify_farkas(const LpModel *lp, const Vector &given, double relax)
{
    if (given.size() != lp->rhs.size()) return "Farkas multipliers of wrong length";
    const Common y = common_of(given);
    const Integers left = combine_rows(lp, y);
    for (const int sign : {1, -1}) {
        mpz_class smallest = 0;
        bool holds = true;
        for (size_t j = 0; j < left.size() && holds; j++)
            holds = add_least(sign * left[j], 1, column_range(lp, j, relax), &smallest);
        for (size_t i = 0; i < given.size() && holds; i++)
            holds = add_least(shifted(-sign * y.number[i]), 1, row_range(lp, i, relax),
                              &smallest);
        if (holds && smallest > 0) return "";
    }
    return "Farkas multipliers prove nothing";
}

static std::string verify_ray(const LpModel *lp, const RationalResult *result, double relax)
{
    const std::string wrong = verify_point(lp, result->x, relax);
    if (!wrong.empty()) return wrong;
    if (result->ray.size() != lp->obj.size()) return "ray of wrong length";
    const Common ray = common_of(result->ray);
    mpz_class gain;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        if (ray.number[j] < 0 && !lp_is_infinite(lp->lb[j]))
            return "ray meets a lower bound";
        if (ray.number[j] > 0 && !lp_is_infinite(lp->ub[j]))
            return "ray meets an upper bound";
        gain += times(lp->obj[j] * lp->sense, ray.number[j]);
    }
    const Integers activity = activities(lp, ray);
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        const Range r = row_range(lp, i, relax);
        if ((r.has_low && activity[i] < 0) || (r.has_high && activity[i] > 0))
            return "ray meets a row";
    }
    return gain < 0 ? "" : "ray does not improve";
}

std::string rational_verify(const LpModel *lp, const RationalResult *result, double relax)
{
    switch (result->status) {
    case LpStatus::OPTIMAL:
        return verify_optimum(lp, result, relax);
    case LpStatus::UNBOUNDED:
        return verify_ray(lp, result, relax);
    case LpStatus::INFEASIBLE:
        break;
    }
    if (result->crossed < 0) return verify_farkas(lp, result->farkas, relax);
    const Range r = column_range(lp, static_cast<size_t>(result->crossed), relax);
    return r.has_low && r.has_high && r.low > r.high ? ""
                                                     : "bounds said to be crossed are not";
}
