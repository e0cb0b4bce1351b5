// hostile_parts.h -- what the hostile families share
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>

using HostileTerms = std::vector<std::pair<int, double>>; // column, value

// 10^low .. 10^high, uniform in the logarithm.
inline double log_uniform(Dice *dice, double low, double high)
{
    return std::pow(10.0, dice->real(low, high));
}

// The same number with so many decimal digits, as people write it.
inline double with_digits(double value, int digits)
{
    char text[40];
    snprintf(text, sizeof text, "%.*g", digits, value);
    return strtod(text, nullptr);
}

inline double signed_log_uniform(Dice *dice, double low, double high)
{
    const double value = log_uniform(dice, low, high);
    return dice->chance(50) ? value : -value;
}

inline std::vector<HostileTerms> rows_of(const LpModel *lp)
{
    std::vector<HostileTerms> rows(lp->rhs.size());
    for (size_t j = 0; j < lp->cols.size(); j++)
        for (const LpEntry &e : lp->cols[j])
            rows[e.row].push_back({static_cast<int>(j), e.value});
    return rows;
}
