// rounding.h -- points rounded to integers: LP rounding and shifted rounding
#pragma once
#include "heur/heur_state.h"

// The working point becomes the LP solution with each integer column at the nearest integer within the bounds of the node,
// and is offered. 0 or a code.
[[nodiscard]] int lp_rounding(HeurState *h, const HeurCall &call);

enum class ShiftKind {
    MOVES, // kind 0: columns of violated rows move one by one
    REPAIR, // kind 1: and where rows stay violated, an LP over their continuous columns is solved
};
// Repairs the working point as a rounding has left it, and offers it. 0 or a code.
[[nodiscard]] int shifted_rounding(HeurState *h, const HeurCall &call, ShiftKind kind);

// What the integer columns of a rounding start from.
enum class RoundingInput { LP, LOWER, UPPER, LOCKS, RANDOM };
static constexpr int ROUNDING_INPUTS = 5;
// The working point becomes the LP solution with integer columns rounded as the input says. Does not offer it.
void point_round(HeurState *h, const HeurCall &call, RoundingInput input);

// The LP of ShiftKind::REPAIR (round_repair.cpp): the best continuous values near violated rows for which all rows hold,
// if there are any. 0 or a code.
[[nodiscard]] int repair_continuous(HeurState *h, const HeurCall &call);
