// rounding.cpp -- points rounded to integers: LP rounding and shifted rounding
//
// Problem     Near the LP solution of a node, find a point with whole integers that satisfies all rows.
// Method      Rounding takes the nearest integers. Shifting repairs: as long as rows are violated one of them is drawn, and
//             the column of it that can do harm in the fewest rows moves by what the row needs, as far as its bounds
//             allow. Columns that the LP has left fractional, and continuous ones, are preferred; each move of a column
//             makes its next one less attractive. Members of sets and semi-continuous columns stay.
// In, out     The LP solution and the bounds of the node -> points offered to the search.
// Cost        The rows of the columns that move. Shifting ends after some moves without progress, and at a work limit.
// Literature  T. Achterberg, "Constraint integer programming", TU Berlin, 2007, chapter 9: rounding, shifting.
#include "heur/rounding.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double SAME =
    1e-9; // nearer than this to an integer: no row needs to be looked at
constexpr double NO_RANGE = 1e-10;
constexpr double NEARLY_ENOUGH =
    1e-6; // of a unit: the rest of a need that no unit is spent on

constexpr int MOST_IDLE = 50; // moves that leave no fewer rows violated
constexpr double WORK_PER_ENTRY =
    2; // limit of the work of one repair, in sizes of the model
constexpr double OTHER_INTEGER =
    10;                        // how much less an integer column attracts that was whole
constexpr double REPEATED = 2; // the same for each earlier move of a column

double nearest_within(const HeurCall &call, int j, double value)
{
    return std::clamp(std::floor(value + 0.5), DomLower(call.Bounds, j),
                      DomUpper(call.Bounds, j));
}

double otherwise(double bound, double value)
{
    return domain_is_infinite(bound) ? value : bound;
}

// Where an integer column begins, not yet whole.
double input_value(HeurState *h, const HeurCall &call, RoundingInput input, int j)
{
    const double x = call.X[j], lower = otherwise(DomLower(call.Bounds, j), x),
                 upper = otherwise(DomUpper(call.Bounds, j), x);
    const int down = h->DownLocks.data[j], up = h->UpLocks.data[j];
    switch (input) {
    case RoundingInput::LOWER:
        return lower;
    case RoundingInput::UPPER:
        return upper;
    case RoundingInput::LOCKS:
        return down < up ? lower : up < down ? upper : x;
    case RoundingInput::RANDOM: // up with a probability that is the fraction
        return std::floor(x) +
               (random_next(&h->Rng) < (x - std::floor(x)) * RANDOM_MAX ? 1 : 0);
    default:
        return x;
    }
}

// ---- Shifting ----
struct Move {
    int Col = -1;
    double Value = 0, Score = 0; // the lower the better
};

// Where column j with coefficient a goes so that the activity of a row changes by -excess, as far as it can.
double target(const HeurState *h, const HeurCall &call, int j, double a, double excess)
{
    const double at = h->At.X.data[j];
    double step = -excess / a;
    if (h->Model.IsInteger[j]) {
        const double units = std::max(1.0, std::ceil(std::fabs(step) - NEARLY_ENOUGH));
        step = step < 0 ? -units : units;
    }
    return std::clamp(at + step, DomLower(call.Bounds, j), DomUpper(call.Bounds, j));
}

double score(const HeurState *h, const HeurCall &call, int j, double step, double share)
{
    const int locks = step < 0 ? h->DownLocks.data[j] : h->UpLocks.data[j];
    const bool whole =
        h->Model.IsInteger[j] && std::fabs(call.X[j] - std::round(call.X[j])) <= SAME;
    return locks * (1 + REPEATED * h->Shifts.data[j]) * (whole ? OTHER_INTEGER : 1) / share;
}

// The best move for a violated row.
Move best_move(HeurState *h, const HeurCall &call, int i)
{
    const PropagationRows *rows = h->Model.Rows;
    const double excess = point_excess(&h->At, i);
    Move best;
    for (int64_t p = rows->RowBeg.data[i]; p < rows->RowBeg.data[i + 1]; p++) {
        const int j = rows->Entry.data[p].Col;
        const double a = rows->Entry.data[p].Val;
        if (h->Frozen.data[j]) continue;
        const double value = target(h, call, j, a, excess), step = value - h->At.X.data[j];
        // Bounds may lie on the wrong side of a point that is outside by rounding errors.
        if (std::fabs(step) <= NO_RANGE || (step < 0) != (excess / a > 0)) continue;
        const double share = std::min(1.0, std::fabs(a * step / excess));
        const double s = score(h, call, j, step, share);
        if (best.Col < 0 || s < best.Score) best = {j, value, s};
    }
    h->Work += static_cast<double>(rows->RowBeg.data[i + 1] - rows->RowBeg.data[i]);
    return best;
}

void shift(HeurState *h, const Move &move)
{
    if (h->Shifts.data[move.Col]++ == 0) array_push(&h->Shifted, move.Col);
    point_move(&h->At, move.Col, move.Value);
}

// Moves columns until no known row is violated, or no more is gained.
void shift_columns(HeurState *h, const HeurCall &call)
{
    const double limit = heur_work(h) + WORK_PER_ENTRY * h->NumEntries;
    int64_t fewest = h->At.Violated.size;
    for (int idle = 0; h->At.Violated.size > 0 && idle < MOST_IDLE && heur_work(h) < limit;
         idle++) {
        const int64_t drawn = random_next(&h->Rng) % h->At.Violated.size;
        const Move move = best_move(h, call, h->At.Violated.data[drawn]);
        if (move.Col < 0) return; // nothing can help this row
        shift(h, move);
        if (h->At.Violated.size >= fewest) continue;
        fewest = h->At.Violated.size;
        idle = 0;
    }
}
} // namespace

void point_round(HeurState *h, const HeurCall &call, RoundingInput input)
{
    heur_start_point(h, call);
    for (int j = 0; j < h->NumCols; j++) {
        if (!h->Model.IsInteger[j]) continue;
        const double value = nearest_within(call, j, input_value(h, call, input, j));
        if (std::fabs(value - call.X[j]) > SAME)
            point_move(&h->At, j, value);
        else
            h->At.X.data[j] = value;
    }
}

int lp_rounding(HeurState *h, const HeurCall &call)
{
    bool improved = false;
    point_round(h, call, RoundingInput::LP);
    return heur_offer(h, call, &improved);
}

int shifted_rounding(HeurState *h, const HeurCall &call, ShiftKind kind)
{
    if (point_is_feasible(&h->At)) return 0; // it has been offered
    bool improved = false;
    shift_columns(h, call);
    if (!point_is_feasible(&h->At) && kind == ShiftKind::REPAIR)
        TRY(repair_continuous(h, call));
    return heur_offer(h, call, &improved);
}
