// dictionary.h -- the dictionary method for small LPs, over any number type
//
// Problem     min obj x over the ranges of columns and row activities (rational_lp.h).
// Method      Phase 1 repairs a violated basic variable by a nonbasic one that can move; phase 2 is the primal
//             simplex. Largest violation, cost and pivot first; after PATIENCE pivots per variable, and in rational
//             numbers from the start, Bland's order, which terminates.
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
    std::vector<int>
        place; // [n + m] 0 basic, -1 at its lower end, -2 at its upper end, -3 at 0 (no ends)
    int witness =
        -1; // INFEASIBLE: a basic variable that nothing repairs; UNBOUNDED: a nonbasic one
    int direction = 0; // UNBOUNDED: +1 or -1, where the witness moves
};

namespace dictionary
{

// Below this a number of the inexact type is rounding: 320 bits are 96 digits, the data have less than 30 decades.
inline constexpr double NOISE = 1e-45;
inline constexpr int PATIENCE = 3; // pivots per variable before Bland's order

inline int sign(const mpq_class &v)
{
    return sgn(v);
}
inline int sign(const mpf_class &v)
{
    return std::fabs(v.get_d()) < NOISE ? 0 : sgn(v);
}

template<class T> struct Bound {
    bool finite = false;
    T value;
};

// Row r reads  basic[r] = sum over k of coef[r][k] * nonbasic[k],  the objective = sum over k of cost[k] * nonbasic[k].
// Nonbasic variables keep within their bounds: at one of them, or at 0 when they have none.
template<class T> struct Dictionary {
    std::vector<int> basic, nonbasic;
    std::vector<std::vector<T>> coef;   // [rows][nonbasics]
    std::vector<T> cost;                // [nonbasics]
    std::vector<Bound<T>> lower, upper; // [n + m]
    std::vector<T> value;               // [n + m] current values
    int pivots_to_bland = 0;            // so many pivots by size before Bland's order
};

enum class Move { NONE, UP, DOWN };

template<class T> void set_range(Dictionary<T> *d, size_t v, const RationalRange &range)
{
    d->lower[v] = {range.has_low, T(range.low)};
    d->upper[v] = {range.has_high, T(range.high)};
}

template<class T> Dictionary<T> build(const LpModel *lp, double relax, bool by_size)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    Dictionary<T> d;
    d.lower.resize(n + m);
    d.upper.resize(n + m);
    d.value.resize(n + m);
    d.coef.assign(m, std::vector<T>(n));
    d.pivots_to_bland = by_size ? PATIENCE * static_cast<int>(n + m) : 0;
    for (size_t j = 0; j < n; j++) {
        d.nonbasic.push_back(static_cast<int>(j));
        d.cost.emplace_back(lp->obj[j] * lp->sense);
        set_range(&d, j, relaxed_column(lp, j, relax));
        if (d.lower[j].finite)
            d.value[j] = d.lower[j].value;
        else if (d.upper[j].finite)
            d.value[j] = d.upper[j].value;
        for (const LpEntry &e : lp->cols[j]) {
            d.coef[e.row][j] = e.value;
            d.value[n + static_cast<size_t>(e.row)] += e.value * d.value[j];
        }
    }
    for (size_t i = 0; i < m; i++) {
        d.basic.push_back(static_cast<int>(n + i));
        set_range(&d, n + i, relaxed_row(lp, i, relax));
    }
    return d;
}

// Nonbasic k moves by `step`; the basic variables follow.
template<class T> void shift(Dictionary<T> *d, size_t k, const T &step)
{
    d->value[d->nonbasic[k]] += step;
    for (size_t r = 0; r < d->basic.size(); r++)
        if (sgn(d->coef[r][k]) != 0) d->value[d->basic[r]] += d->coef[r][k] * step;
}

// target += target[k] * row, where basic[r] = row replaces nonbasic k.
template<class T>
void substitute(const std::vector<T> &row, size_t k, std::vector<T> *target)
{
    const T factor = (*target)[k];
    if (sgn(factor) == 0) return;
    (*target)[k] = 0;
    T product;
    for (size_t p = 0; p < row.size(); p++) {
        if (sgn(row[p]) == 0) continue;
        product = factor * row[p];
        (*target)[p] += product;
        if (sign((*target)[p]) == 0) (*target)[p] = 0;
    }
}

// basic[r] and nonbasic[k] change places; no value changes.
template<class T> void pivot(Dictionary<T> *d, size_t r, size_t k)
{
    std::vector<T> *row = &d->coef[r];
    const T inverse = 1 / (*row)[k];
    for (T &a : *row)
        if (sgn(a) != 0) a *= -inverse;
    (*row)[k] = inverse;
    for (size_t q = 0; q < d->coef.size(); q++)
        if (q != r) substitute(*row, k, &d->coef[q]);
    substitute(*row, k, &d->cost);
    std::swap(d->basic[r], d->nonbasic[k]);
    d->pivots_to_bland--;
}

template<class T> bool can_move(const Dictionary<T> *d, int variable, Move move)
{
    const size_t v = static_cast<size_t>(variable);
    if (move == Move::UP)
        return !d->upper[v].finite || sign(T(d->upper[v].value - d->value[v])) > 0;
    return !d->lower[v].finite || sign(T(d->value[v] - d->lower[v].value)) > 0;
}

// How far a variable is outside its bounds: negative below, positive above, 0 inside.
template<class T> T excess(const Dictionary<T> *d, int variable)
{
    const size_t v = static_cast<size_t>(variable);
    if (d->lower[v].finite) {
        T gap = d->value[v] - d->lower[v].value;
        if (sign(gap) < 0) return gap;
    }
    if (d->upper[v].finite) {
        T gap = d->value[v] - d->upper[v].value;
        if (sign(gap) > 0) return gap;
    }
    return T(0);
}

// The best candidate so far: by size, or the smaller number under Bland's order.
template<class T> struct Choice {
    int place = -1, variable = -1;
    T size;
    bool offer(const Dictionary<T> *d, const T &offered, int at, int v)
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
template<class T> int make_feasible(Dictionary<T> *d)
{
    for (;;) {
        Choice<T> leaving, entering;
        for (size_t r = 0; r < d->basic.size(); r++) {
            const T out = excess(d, d->basic[r]);
            if (sgn(out) != 0) leaving.offer(d, abs(out), static_cast<int>(r), d->basic[r]);
        }
        if (leaving.place < 0) return -1;
        const size_t r = static_cast<size_t>(leaving.place);
        const T gap = -excess(d, leaving.variable);
        for (size_t k = 0; k < d->nonbasic.size(); k++) {
            const int turn = sgn(d->coef[r][k]) * sgn(gap);
            if (turn == 0 || !can_move(d, d->nonbasic[k], turn > 0 ? Move::UP : Move::DOWN))
                continue;
            entering.offer(d, abs(d->coef[r][k]), static_cast<int>(k), d->nonbasic[k]);
        }
        if (entering.place < 0) return leaving.place;
        const size_t k = static_cast<size_t>(entering.place);
        shift(d, k, T(gap / d->coef[r][k]));
        pivot(d, r, k);
    }
}

// The nonbasic variable that improves the objective by moving, as a place, or -1.
template<class T> int choose_improving(const Dictionary<T> *d, Move *move_out)
{
    Choice<T> best;
    for (size_t k = 0; k < d->nonbasic.size(); k++) {
        const int turn = sgn(d->cost[k]);
        const Move move = turn < 0 ? Move::UP : Move::DOWN;
        if (turn == 0 || !can_move(d, d->nonbasic[k], move)) continue;
        if (best.offer(d, abs(d->cost[k]), static_cast<int>(k), d->nonbasic[k]))
            *move_out = move;
    }
    return best.place;
}

// How far a variable can go in its direction before its bound; false when there is none.
template<class T> bool room_of(const Dictionary<T> *d, int variable, Move move, T *room)
{
    const size_t v = static_cast<size_t>(variable);
    const Bound<T> &bound = move == Move::UP ? d->upper[v] : d->lower[v];
    if (!bound.finite) return false;
    *room = abs(bound.value - d->value[v]);
    return true;
}

// The step of nonbasic k and the row that stops it (-1: its own bound). False when nothing does.
template<class T>
bool ratio_test(const Dictionary<T> *d, size_t k, Move move, T *step, int *leaving)
{
    T room;
    Choice<T> best;
    bool limited = room_of(d, d->nonbasic[k], move, step);
    if (limited) best.offer(d, T(0), -1, d->nonbasic[k]);
    for (size_t r = 0; r < d->basic.size(); r++) {
        const int turn = sgn(d->coef[r][k]);
        const bool up = (turn > 0) == (move == Move::UP);
        if (turn == 0 || !room_of(d, d->basic[r], up ? Move::UP : Move::DOWN, &room))
            continue;
        const T size = abs(d->coef[r][k]);
        room /= size;
        const int order = limited ? sign(T(room - *step)) : -1;
        if (order > 0) continue;
        if (order < 0) best = Choice<T>{};
        if (best.offer(d, size, static_cast<int>(r), d->basic[r])) *step = room;
        limited = true;
    }
    *leaving = best.place;
    return limited;
}

// Phase 2. Returns -1 at an optimum, else the place of the nonbasic variable that improves for ever.
template<class T> int make_optimal(Dictionary<T> *d, Move *move)
{
    T step;
    int leaving = -1;
    for (int found = choose_improving(d, move); found >= 0;
         found = choose_improving(d, move)) {
        const size_t k = static_cast<size_t>(found);
        if (!ratio_test(d, k, *move, &step, &leaving)) return found;
        shift(d, k, *move == Move::UP ? step : T(-step));
        if (leaving >= 0) pivot(d, static_cast<size_t>(leaving), k);
    }
    return -1;
}

} // namespace dictionary

// No range may be crossed. T: mpq_class (exact), or mpf_class in its default precision.
template<class T>
DictionaryEnd dictionary_solve(const LpModel *lp, double relax, bool by_size)
{
    using namespace dictionary;
    Dictionary<T> d = build<T>(lp, relax, by_size);
    DictionaryEnd end;
    Move move = Move::NONE;
    if (const int r = make_feasible(&d); r >= 0) {
        end.status = LpStatus::INFEASIBLE;
        end.witness = d.basic[r];
    } else if (const int k = make_optimal(&d, &move); k >= 0) {
        end.status = LpStatus::UNBOUNDED;
        end.witness = d.nonbasic[k];
        end.direction = move == Move::UP ? 1 : -1;
    }
    end.place.assign(d.value.size(), 0);
    for (const int variable : d.nonbasic) {
        const size_t v = static_cast<size_t>(variable);
        const bool low = d.lower[v].finite && sign(T(d.value[v] - d.lower[v].value)) == 0;
        end.place[v] = low ? -1 : d.upper[v].finite ? -2 : -3;
    }
    return end;
}

// rational_certificate.cpp: what the basis and witness of `end` say, in rational numbers: points, multipliers, Farkas
// row or ray, and the basis. False when the basis matrix is singular; otherwise the result still needs rational_verify.
bool rational_certificate(const LpModel *lp, double relax, const DictionaryEnd &end,
                          RationalResult *result);
