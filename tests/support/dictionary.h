// dictionary.h -- the dictionary method for small LPs, in numbers of the default precision
//
// Problem     min obj x over the ranges of columns and row activities (rational_lp.h).
// Method      Phase 1 repairs a violated basic variable by a nonbasic one that can move; phase 2 is the primal
//             simplex. Largest violation, cost and pivot first; after PATIENCE pivots per variable Bland's order.
// In, out     LpModel and relaxation -> DictionaryEnd: the basis and what it is said to prove.
// Trust       None: whoever calls computes the certificate of the basis and has it verified.
// Cost        O(m n) operations a pivot.
// Literature  R. G. Bland, "New finite pivoting rules for the simplex method", Math. Oper. Res. 2, 1977.
//             B. Dutertre, L. de Moura, "A fast linear-arithmetic solver for DPLL(T)", CAV 2006.
#pragma once
#include "support/rational_lp.h"
#include <cmath>

// Where the method stopped. Variables: columns 0 .. n-1, row activities n .. n+m-1.
struct DictionaryEnd {
    LpStatus status = LpStatus::OPTIMAL;
    std::vector<int> place; // [n + m] 0 basic, -1 at the lower end, -2 the upper, -3 no end
    int witness = -1;  // INFEASIBLE: a basic variable beyond repair; UNBOUNDED: a nonbasic
    int direction = 0; // UNBOUNDED: +1 or -1, where the witness moves
};

namespace dictionary
{
inline constexpr int PATIENCE = 3; // pivots per variable before Bland's order

using Number = mpf_class;

// Below 2^(-bits / 2) a number is rounding: of 320 bits, 96 digits, the data have less than 30 decades.
inline int sign(const Number &v)
{
    long power = 0;
    (void)mpf_get_d_2exp(&power, v.get_mpf_t());
    return 2 * power < -long(mpf_get_default_prec()) ? 0 : sgn(v);
}

struct Bound {
    bool finite = false;
    Number value;
};

// Row r reads  basic[r] = sum over k of coef[r][k] * nonbasic[k],  the objective = sum over k of cost[k] * nonbasic[k].
// Nonbasic variables keep within their bounds: at one of them, or at 0 when they have none.
struct Dictionary {
    std::vector<int> basic, nonbasic;
    std::vector<std::vector<Number>> coef; // [rows][nonbasics]
    std::vector<Number> cost;              // [nonbasics]
    std::vector<Bound> ends[2];            // [n + m] lower, upper
    std::vector<Number> value;             // [n + m] current values
    int pivots_to_bland = 0;               // so many pivots by size before Bland's order
};

inline void add_range(Dictionary *d, const RationalRange &range)
{
    d->ends[0].push_back({range.has_low, Number(range.low)});
    d->ends[1].push_back({range.has_high, Number(range.high)});
}

inline Dictionary build(const LpModel *lp, double relax)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    Dictionary d;
    d.value.resize(n + m);
    d.coef.assign(m, std::vector<Number>(n));
    d.pivots_to_bland = PATIENCE * int(n + m);
    for (size_t j = 0; j < n; j++) {
        d.nonbasic.push_back(int(j));
        d.cost.emplace_back(lp->obj[j] * lp->sense);
        add_range(&d, relaxed_column(lp, j, relax));
        const Bound &start = d.ends[d.ends[0][j].finite ? 0 : 1][j];
        if (start.finite) d.value[j] = start.value;
        for (const LpEntry &e : lp->cols[j]) {
            d.coef[e.row][j] = e.value;
            d.value[n + size_t(e.row)] += e.value * d.value[j];
        }
    }
    for (size_t i = 0; i < m; i++) {
        d.basic.push_back(int(n + i));
        add_range(&d, relaxed_row(lp, i, relax));
    }
    return d;
}

// Nonbasic k moves by `step`; the basic variables follow.
inline void shift(Dictionary *d, int k, const Number &step)
{
    d->value[d->nonbasic[k]] += step;
    for (size_t r = 0; r < d->basic.size(); r++)
        if (sgn(d->coef[r][k]) != 0) d->value[d->basic[r]] += d->coef[r][k] * step;
}

// target += target[k] * row, where basic[r] = row replaces nonbasic k.
inline void substitute(const std::vector<Number> &row, int k, std::vector<Number> *target)
{
    const Number factor = (*target)[k];
    if (sgn(factor) == 0) return;
    (*target)[k] = 0;
    Number product;
    for (size_t p = 0; p < row.size(); p++) {
        if (sgn(row[p]) == 0) continue;
        product = factor * row[p];
        (*target)[p] += product;
        if (sign((*target)[p]) == 0) (*target)[p] = 0;
    }
}

// basic[r] and nonbasic[k] change places; no value changes.
inline void pivot(Dictionary *d, int r, int k)
{
    std::vector<Number> *row = &d->coef[r];
    const Number inverse = 1 / (*row)[k];
    for (Number &a : *row)
        if (sgn(a) != 0) a *= -inverse;
    (*row)[k] = inverse;
    for (int q = 0; q < int(d->coef.size()); q++)
        if (q != r) substitute(*row, k, &d->coef[q]);
    substitute(*row, k, &d->cost);
    std::swap(d->basic[r], d->nonbasic[k]);
    d->pivots_to_bland--;
}

// The bound in a direction: +1 up, -1 down.
inline const Bound &bound_of(const Dictionary *d, int variable, int way)
{
    return d->ends[way > 0][variable];
}

// How far a variable can go in its direction before its bound; false when there is none.
inline bool room_of(const Dictionary *d, int variable, int way, Number *room)
{
    const Bound &bound = bound_of(d, variable, way);
    if (bound.finite) *room = abs(bound.value - d->value[variable]);
    return bound.finite;
}

inline bool can_move(const Dictionary *d, int variable, int way)
{
    Number room;
    return !room_of(d, variable, way, &room) || sign(room) > 0;
}

// How far a variable is outside its bounds: negative below, positive above, 0 inside.
inline Number excess(const Dictionary *d, int variable)
{
    for (const int way : {-1, 1}) {
        const Bound &bound = bound_of(d, variable, way);
        const Number gap = d->value[variable] - bound.value;
        if (bound.finite && sign(gap) * way > 0) return gap;
    }
    return Number(0);
}

// The best candidate so far: by size, or the smaller number under Bland's order.
struct Choice {
    int place = -1, variable = -1;
    Number size;
    bool offer(const Dictionary *d, const Number &offered, int at, int v)
    {
        const bool better = d->pivots_to_bland > 0 ? offered > size : v < variable;
        if (variable >= 0 && !better) return false;
        place = at;
        variable = v;
        size = offered;
        return true;
    }
};

// Phase 1. Returns -1 when all variables are within bounds, else the row that proves infeasibility.
inline int make_feasible(Dictionary *d)
{
    for (;;) {
        Choice leaving, entering;
        for (size_t r = 0; r < d->basic.size(); r++) {
            const Number out = excess(d, d->basic[r]);
            if (sgn(out) != 0) leaving.offer(d, abs(out), int(r), d->basic[r]);
        }
        if (leaving.place < 0) return -1;
        const int r = leaving.place;
        const Number gap = -excess(d, leaving.variable);
        for (size_t k = 0; k < d->nonbasic.size(); k++) {
            const int way = sgn(d->coef[r][k]) * sgn(gap);
            if (way == 0 || !can_move(d, d->nonbasic[k], way)) continue;
            entering.offer(d, abs(d->coef[r][k]), int(k), d->nonbasic[k]);
        }
        const int k = entering.place;
        if (k < 0) return r;
        shift(d, k, Number(gap / d->coef[r][k]));
        pivot(d, r, k);
    }
}

// The nonbasic variable that improves the objective by moving, as a place, or -1.
inline int choose_improving(const Dictionary *d, int *way_out)
{
    Choice best;
    for (size_t k = 0; k < d->nonbasic.size(); k++) {
        const int way = -sgn(d->cost[k]);
        if (way == 0 || !can_move(d, d->nonbasic[k], way)) continue;
        if (best.offer(d, abs(d->cost[k]), int(k), d->nonbasic[k])) *way_out = way;
    }
    return best.place;
}

// The step of nonbasic k and the row that stops it (-1: its own bound). False when nothing does.
inline bool ratio_test(const Dictionary *d, int k, int way, Number *step, int *leaving)
{
    Number room;
    Choice best;
    bool limited = room_of(d, d->nonbasic[k], way, step);
    if (limited) best.offer(d, Number(0), -1, d->nonbasic[k]);
    for (size_t r = 0; r < d->basic.size(); r++) {
        const int turn = sgn(d->coef[r][k]) * way;
        if (turn == 0 || !room_of(d, d->basic[r], turn, &room)) continue;
        const Number size = abs(d->coef[r][k]);
        room /= size;
        const int order = limited ? sign(Number(room - *step)) : -1;
        if (order > 0) continue;
        if (order < 0) best = Choice{};
        if (best.offer(d, size, int(r), d->basic[r])) *step = room;
        limited = true;
    }
    *leaving = best.place;
    return limited;
}

// Phase 2. Returns -1 at an optimum, else the place of the nonbasic variable that improves for ever.
inline int make_optimal(Dictionary *d, int *way)
{
    Number step;
    int leaving = -1, k = -1;
    while ((k = choose_improving(d, way)) >= 0) {
        if (!ratio_test(d, k, *way, &step, &leaving)) return k;
        shift(d, k, Number(*way * step));
        if (leaving >= 0) pivot(d, leaving, k);
    }
    return -1;
}
} // namespace dictionary

// No range may be crossed.
inline DictionaryEnd dictionary_solve(const LpModel *lp, double relax)
{
    using namespace dictionary;
    Dictionary d = build(lp, relax);
    DictionaryEnd end;
    if (const int r = make_feasible(&d); r >= 0) {
        end.status = LpStatus::INFEASIBLE;
        end.witness = d.basic[r];
    } else if (const int k = make_optimal(&d, &end.direction); k >= 0) {
        end.status = LpStatus::UNBOUNDED;
        end.witness = d.nonbasic[k];
    }
    end.place.assign(d.value.size(), 0);
    for (const int variable : d.nonbasic) {
        const bool low = d.ends[0][variable].finite && !can_move(&d, variable, -1);
        end.place[variable] = low ? -1 : d.ends[1][variable].finite ? -2 : -3;
    }
    return end;
}

// rational_certificate.cpp: what the basis and witness of `end` say, in rational numbers: points, multipliers, Farkas
// row or ray, and the basis. False when the basis matrix is singular; otherwise the result still needs rational_verify.
bool rational_certificate(const LpModel *lp, double relax, const DictionaryEnd &end,
                          RationalResult *result);
