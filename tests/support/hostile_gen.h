// hostile_gen.h -- small LPs on which floating point goes wrong, by families, each from a seed
//
//   tall      5 to 40 columns, 3 to 10 times as many rows around one point, coefficients over 8 decades
//   bigm      coefficients from 1e5 to 1e12 on switches, chains, indicators and penalties
//   residue   equations whose substitution leaves rounding where exact arithmetic leaves nothing
//   wide      numbers over 12 and more decades, or over 6 with nearly parallel rows
//   wild      over up to 36 decades: nobody can be asked for much, but for an end and no wrong claim
//
// Three members of five are as the family makes them; one is made infeasible, by 1e-9 to 1, and one is given a ray.
// What the truth is, rational_solve tells: the right-hand sides are rounded, so it may differ from what was meant.
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

enum class HostileKind { PLAIN, INFEASIBLE, UNBOUNDED };

struct HostileModel {
    std::string name;                      // family-seed
    HostileKind kind = HostileKind::PLAIN; // what the maker had in mind
    LpModel lp;
};

struct HostileFamily {
    const char *name;
    LpModel (*generate)(Dice *dice);
};
const std::vector<HostileFamily> &hostile_families();
HostileModel hostile_generate(const HostileFamily &family, uint64_t seed);

// A row that excludes a sum of other rows, by a margin.
void contradict_rows(Dice *dice, LpModel *lp, double margin);
// Columns u, v >= 0 with u = v = t for all t >= 0 as ray: in each row the pair cancels or goes the harmless way.
void add_cancelling_pair(Dice *dice, LpModel *lp, double gain);

// The families, one file each (hostile_tall.cpp also has wide and wild).
LpModel hostile_tall(Dice *dice);
LpModel hostile_wide(Dice *dice);
LpModel hostile_wild(Dice *dice);
LpModel hostile_bigm(Dice *dice);
LpModel hostile_residue(Dice *dice);

// ---- What the families share ----

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
        for (const LpEntry &e : lp->cols[j]) rows[e.row].push_back({int(j), e.value});
    return rows;
}
