// rational_lp.cpp -- the dictionary method in rational numbers, see the header
#include "support/rational_lp.h"
#include <cstdio>
#include <cstdlib>

const char *lp_status_name(LpStatus status)
{
    switch (status) {
    case LpStatus::OPTIMAL:
        return "optimal";
    case LpStatus::INFEASIBLE:
        return "infeasible";
    case LpStatus::UNBOUNDED:
        return "unbounded";
    }
    return "?";
}

namespace
{

// A bound that may be absent.
struct Bound {
    bool finite = false;
    mpq_class value;
};

// Variables: structurals 0 .. n-1, row activities n .. n+m-1. Row r of the dictionary reads
//     basic[r] = sum over k of coef[r][k] * nonbasic[k],       objective = sum over k of cost[k] * nonbasic[k]
// Nonbasic variables keep within their bounds: at one of them, or at 0 when they have none.
struct Dictionary {
    std::vector<int> basic, nonbasic;
    std::vector<std::vector<mpq_class>> coef; // [rows][nonbasics]
    std::vector<mpq_class> cost;              // [nonbasics]
    std::vector<Bound> lower, upper;          // [n + m]
    std::vector<mpq_class> value;             // [n + m] current values
};

// A direction for a variable: up or down.
enum class Move { NONE, UP, DOWN };

} // namespace

static Bound make_bound(double value)
{
    Bound bound;
    bound.finite = !lp_is_infinite(value);
    if (bound.finite) bound.value = mpq_class(value);
    return bound;
}

static bool at_most(const Bound &bound,
                    const mpq_class &value) // the bound exists and is <= value
{
    return bound.finite && bound.value <= value;
}

static bool at_least(const Bound &bound, const mpq_class &value)
{
    return bound.finite && bound.value >= value;
}

static Dictionary dictionary_build(const LpModel *lp)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    Dictionary d;
    d.lower.resize(n + m);
    d.upper.resize(n + m);
    d.value.resize(n + m);
    d.coef.assign(m, std::vector<mpq_class>(n));
    for (size_t j = 0; j < n; j++) {
        d.nonbasic.push_back(static_cast<int>(j));
        d.cost.emplace_back(lp->obj[j] * lp->sense);
        d.lower[j] = make_bound(lp->lb[j]);
        d.upper[j] = make_bound(lp->ub[j]);
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
        if (lp->senses[i] != '>') d.upper[n + i] = make_bound(lp->rhs[i]);
        if (lp->senses[i] != '<') d.lower[n + i] = make_bound(lp->rhs[i]);
    }
    return d;
}

// Nonbasic k moves by `step`; the basic variables follow.
static void dictionary_shift(Dictionary *d, size_t k, const mpq_class &step)
{
    d->value[d->nonbasic[k]] += step;
    for (size_t r = 0; r < d->basic.size(); r++)
        d->value[d->basic[r]] += d->coef[r][k] * step;
}

// basic[r] and nonbasic[k] change places; no value changes.
static void dictionary_pivot(Dictionary *d, size_t r, size_t k)
{
    std::vector<mpq_class> *row = &d->coef[r];
    const mpq_class pivot = (*row)[k];
    for (mpq_class &a : *row) a /= -pivot;
    (*row)[k] = 1 / pivot;
    const auto substitute = [&](std::vector<mpq_class> *target) {
        const mpq_class factor = (*target)[k];
        if (factor == 0) return;
        (*target)[k] = 0;
        for (size_t p = 0; p < row->size(); p++)
            if ((*row)[p] != 0) (*target)[p] += factor * (*row)[p];
    };
    for (size_t q = 0; q < d->coef.size(); q++)
        if (q != r) substitute(&d->coef[q]);
    substitute(&d->cost);
    std::swap(d->basic[r], d->nonbasic[k]);
}

static bool can_move(const Dictionary *d, int variable, Move move)
{
    const size_t v = static_cast<size_t>(variable);
    if (move == Move::UP) return !at_most(d->upper[v], d->value[v]);
    return !at_least(d->lower[v], d->value[v]);
}

// The smallest basic variable out of its bounds, as a row of the dictionary, or -1.
static int first_violated(const Dictionary *d)
{
    int best = -1;
    for (size_t r = 0; r < d->basic.size(); r++) {
        const size_t v = static_cast<size_t>(d->basic[r]);
        const bool low = d->lower[v].finite && d->value[v] < d->lower[v].value;
        const bool high = d->upper[v].finite && d->value[v] > d->upper[v].value;
        if ((low || high) && (best < 0 || d->basic[r] < d->basic[best]))
            best = static_cast<int>(r);
    }
    return best;
}

// Phase 1. Returns -1 when all variables are within bounds, else the row that proves infeasibility.
static int make_feasible(Dictionary *d)
{
    for (int found = first_violated(d); found >= 0; found = first_violated(d)) {
        const size_t r = static_cast<size_t>(found);
        const size_t v = static_cast<size_t>(d->basic[r]);
        const bool low = d->lower[v].finite && d->value[v] < d->lower[v].value;
        int entering = -1;
        for (size_t k = 0; k < d->nonbasic.size(); k++) {
            if (d->coef[r][k] == 0) continue;
            const Move move = (d->coef[r][k] > 0) == low ? Move::UP : Move::DOWN;
            if (!can_move(d, d->nonbasic[k], move)) continue;
            if (entering < 0 || d->nonbasic[k] < d->nonbasic[entering])
                entering = static_cast<int>(k);
        }
        if (entering < 0) return found;
        const size_t k = static_cast<size_t>(entering);
        const mpq_class gap = (low ? d->lower[v].value : d->upper[v].value) - d->value[v];
        dictionary_shift(d, k, gap / d->coef[r][k]);
        dictionary_pivot(d, r, k);
    }
    return -1;
}

// The smallest nonbasic variable that improves the objective by moving, as a place, or -1.
static int first_improving(const Dictionary *d, Move *move_out)
{
    int best = -1;
    for (size_t k = 0; k < d->nonbasic.size(); k++) {
        if (d->cost[k] == 0) continue;
        const Move move = d->cost[k] < 0 ? Move::UP : Move::DOWN;
        if (!can_move(d, d->nonbasic[k], move)) continue;
        if (best >= 0 && d->nonbasic[k] > d->nonbasic[best]) continue;
        best = static_cast<int>(k);
        *move_out = move;
    }
    return best;
}

// How far variable v can go in its direction before its bound; false when there is none.
static bool room_of(const Dictionary *d, int variable, Move move, mpq_class *room)
{
    const size_t v = static_cast<size_t>(variable);
    const Bound &bound = move == Move::UP ? d->upper[v] : d->lower[v];
    if (!bound.finite) return false;
    *room = abs(bound.value - d->value[v]);
    return true;
}

// Phase 2. Returns -1 at an optimum, else the place of the nonbasic variable that improves for ever.
static int make_optimal(Dictionary *d, Move *move_out)
{
    Move move = Move::NONE;
    for (int found = first_improving(d, &move); found >= 0;
         found = first_improving(d, &move)) {
        const size_t k = static_cast<size_t>(found);
        mpq_class step, room;
        bool limited = room_of(d, d->nonbasic[k], move, &step);
        int leaving = -1, leaving_variable = d->nonbasic[k];
        for (size_t r = 0; r < d->basic.size(); r++) {
            if (d->coef[r][k] == 0) continue;
            const bool up = (d->coef[r][k] > 0) == (move == Move::UP);
            if (!room_of(d, d->basic[r], up ? Move::UP : Move::DOWN, &room)) continue;
            room /= abs(d->coef[r][k]);
            if (limited && room > step) continue;
            if (limited && room == step && d->basic[r] > leaving_variable) continue;
            limited = true;
            step = room;
            leaving = static_cast<int>(r);
            leaving_variable = d->basic[r];
        }
        *move_out = move;
        if (!limited) return found;
        dictionary_shift(d, k, move == Move::UP ? step : mpq_class(-step));
        if (leaving >= 0) dictionary_pivot(d, static_cast<size_t>(leaving), k);
    }
    return -1;
}

static void export_basis(const Dictionary *d, size_t n, RationalResult *result)
{
    result->vbasis.assign(n, 0);
    result->cbasis.assign(d->basic.size(), 0);
    for (const int variable : d->nonbasic) {
        const size_t v = static_cast<size_t>(variable);
        if (v >= n)
            result->cbasis[v - n] = -1;
        else if (at_least(d->lower[v], d->value[v]))
            result->vbasis[v] = -1;
        else
            result->vbasis[v] = d->upper[v].finite ? -2 : -3;
    }
}

static RationalResult solve_unverified(const LpModel *lp)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    RationalResult result;
    for (size_t j = 0; j < n; j++) {
        const bool absurd = lp->lb[j] >= 1e20 || lp->ub[j] <= -1e20;
        if (absurd) abort();
        if (lp->lb[j] > lp->ub[j]) {
            result.status = LpStatus::INFEASIBLE;
            result.crossed = static_cast<int>(j);
            result.farkas.assign(m, 0);
            return result;
        }
    }
    Dictionary d = dictionary_build(lp);
    if (const int r = make_feasible(&d); r >= 0) {
        // basic[r] - sum coef * nonbasic = 0 is a combination of "activity_i - a_i x = 0".
        const size_t row = static_cast<size_t>(r);
        result.status = LpStatus::INFEASIBLE;
        result.farkas.assign(m, 0);
        if (d.basic[row] >= static_cast<int>(n))
            result.farkas[static_cast<size_t>(d.basic[row]) - n] = 1;
        for (size_t k = 0; k < n; k++)
            if (d.nonbasic[k] >= static_cast<int>(n))
                result.farkas[static_cast<size_t>(d.nonbasic[k]) - n] = -d.coef[row][k];
        return result;
    }
    Move move = Move::NONE;
    const int endless = make_optimal(&d, &move);
    result.x.assign(d.value.begin(), d.value.begin() + static_cast<std::ptrdiff_t>(n));
    if (endless >= 0) {
        const size_t k = static_cast<size_t>(endless);
        const int direction = move == Move::UP ? 1 : -1;
        result.status = LpStatus::UNBOUNDED;
        result.ray.assign(n, 0);
        if (d.nonbasic[k] < static_cast<int>(n)) result.ray[d.nonbasic[k]] = direction;
        for (size_t r = 0; r < m; r++)
            if (d.basic[r] < static_cast<int>(n))
                result.ray[d.basic[r]] = d.coef[r][k] * direction;
        return result;
    }
    result.pi.assign(m, 0);
    for (size_t k = 0; k < n; k++)
        if (d.nonbasic[k] >= static_cast<int>(n))
            result.pi[static_cast<size_t>(d.nonbasic[k]) - n] = d.cost[k] * lp->sense;
    result.value = lp->objcon;
    for (size_t j = 0; j < n; j++) result.value += lp->obj[j] * result.x[j];
    export_basis(&d, n, &result);
    return result;
}

RationalResult rational_solve(const LpModel *lp)
{
    RationalResult result = solve_unverified(lp);
    const std::string wrong = rational_verify(lp, &result);
    if (!wrong.empty()) {
        fprintf(stderr, "exact judge contradicts itself: %s\n%s", wrong.c_str(),
                lp_to_mps(lp, "").c_str());
        abort();
    }
    return result;
}
