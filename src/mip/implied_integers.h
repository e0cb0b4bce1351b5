// implied_integers.h -- continuous columns that are integral anyway
#pragma once
#include "mip/mip_state.h"

// What is known of a column.
enum Implied : char {
    IMPLIED_NOT = 0,
    IMPLIED_ALWAYS = 1,  // at every feasible point
    IMPLIED_OPTIMAL = 2, // at some optimal point, with all columns of this kind together
};
// Fills state->Implied, as the parameters ask for. 0 or OUT_OF_MEMORY.
[[nodiscard]] int find_implied_integers(MIPState *state);
// A row that is none of the body's has come: IMPLIED_OPTIMAL holds no longer, nor what was concluded from it.
void drop_optimal_implied(MIPState *state);

// ---- What the two detections share ----
// A column that no bound, set or semi-continuous rule keeps from being integral, and that is not integer or fixed already.
bool may_be_implied(const MIPState *state, const Array<char> &barred, int j);
// value / unit is a whole number, and stays one within rounding when it is multiplied by numbers up to `reach`.
bool is_whole_multiple(double value, double unit, double reach);
// Size that column j can have; infinite without bounds.
double column_reach(const MIPState *state, int j);

// Networks of continuous columns (network_structure.cpp): IMPLIED_OPTIMAL. 0 or OUT_OF_MEMORY.
[[nodiscard]] int find_network(MIPState *state, const Array<char> &barred, int *count);
