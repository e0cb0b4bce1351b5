// heur_node.cpp -- which heuristics run at a node, and in which order
//
// Method   By the number of nodes explored and by the share of the work that heuristics have taken:
//            1  LP rounding
//            2  shifted rounding by moves
//            3  shifted rounding with repair: at the root, and at few nodes
//          Between two steps the search is asked whether to go on. At the root 1 to 3 run once more from other inputs, as
//          long as there is no incumbent and the model is not too large. At its end most columns are fixed, and the rest
//          is searched (fix_dive.cpp).
// Budget   Two shares of the work, for heuristics that search (3) and for others. They grow with the parameter, and while
//          the bound makes little progress. In the tree steps 1 and 2 keep to the second share, too: they are cheap, but on
//          a model where a node costs a few pivots they would still be felt.
#include "heur/fix_dive.h"
#include "heur/rounding.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double NO_INCUMBENT = 5e99;   // an objective above it
constexpr double LARGE_MODEL = 1000000; // entries from which other inputs are not tried
constexpr double EARLY_NODES = 1000; // up to here repairs run at every REPAIR_EVERY-th node
constexpr double REPAIR_EVERY = 91;  // prime to the numbers of other heuristics
constexpr double FIXED_AT_ROOT = 0.9; // of the integer columns, before the rest is searched
constexpr double LARGE_SHARE = 0.25;  // of Heuristics
constexpr double LATE_NODES = 10000;  // the second share shrinks behind them
constexpr double LATE_BONUS = 0.05;

struct Budget {
    double Searching, Others; // shares of the work
};

Budget budget_of(const HeurCall &call)
{
    const double share = call.Share, closed = call.GapClosed;
    if (share >= LARGE_SHARE) {
        const double left = share - call.HeurWork / std::max(1.0, call.SearchWork);
        return {0.5 * share, std::max(0.5 * share, left)};
    }
    if (closed < 0.01) return {share, 4 * share};
    if (closed < 0.05) return {share, 2 * share};
    if (closed < 0.1) return {share, share};
    if (call.Nodes > LATE_NODES)
        return {0.5 * share, 0.5 * share + LATE_BONUS * LATE_NODES / call.Nodes};
    return {0.5 * share, 0.5 * share + LATE_BONUS};
}

bool divides(double number, double nodes)
{
    return std::fmod(nodes, number) == 0;
}

bool within(const HeurState *h, const HeurCall &call, double share)
{
    return call.HeurWork + heur_work(h) < share * call.SearchWork;
}

bool is_root(const HeurCall &call)
{
    return call.Stage != HeurStage::NODE;
}

bool goes_on(const HeurCall &call)
{
    return call.Search.GoOn(call.Search.Owner);
}

int roundings(HeurState *h, const HeurCall &call, Budget budget)
{
    TRY(lp_rounding(h, call));
    if (!goes_on(call)) return 0;
    TRY(shifted_rounding(h, call, ShiftKind::MOVES));
    if (!goes_on(call)) return 0;
    const bool repair = is_root(call) || heur_is_due(call.Nodes);
    if (!repair || !within(h, call, budget.Searching)) return 0;
    point_round(h, call, RoundingInput::LP);
    return shifted_rounding(h, call, ShiftKind::REPAIR);
}

// From other inputs, for a first incumbent.
int other_inputs(HeurState *h, const HeurCall &call)
{
    for (int k = 0; k < ROUNDING_INPUTS; k++) {
        if (*call.Incumbent < NO_INCUMBENT || h->NumEntries > LARGE_MODEL || !goes_on(call))
            return 0;
        bool improved = false;
        point_round(h, call, static_cast<RoundingInput>(k));
        TRY(heur_offer(h, call, &improved));
        TRY(shifted_rounding(h, call, ShiftKind::REPAIR));
    }
    return 0;
}
} // namespace

bool heur_is_due(double nodes)
{
    return nodes <= EARLY_NODES && divides(REPAIR_EVERY, nodes);
}

int HeurNode(HeurState *h, const HeurCall &call)
{
    const Budget budget = budget_of(call);
    if (!is_root(call) && !within(h, call, budget.Others)) return 0;
    return roundings(h, call, budget);
}

int HeurRoot(HeurState *h, const HeurCall &call)
{
    TRY(HeurNode(h, call));
    TRY(other_inputs(h, call));
    if (call.Stage != HeurStage::ROOT_END || !goes_on(call)) return 0;
    return FixPropagate(h, call, FIXED_AT_ROOT);
}
