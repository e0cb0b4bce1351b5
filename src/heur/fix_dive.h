// fix_dive.h -- fixing columns one by one under propagation, and searching what is left
#pragma once
#include "heur/heur_state.h"

// Fixes the first `count` columns of h->Order at floor(x + 0.5), those that propagation refuses left out, until `wanted` of
// them are fixed; with at least `least` fixed the rest is searched (HeurSearch::SubMip). Without a new incumbent this is
// tried again with fewer. The Domain is as before afterwards. 0 or a code.
[[nodiscard]] int FixAndDive(HeurState *h, const HeurCall &call, int count, double wanted,
                             double least);
// At the root: integer columns that the LP has made whole come first, in either part those whose two ways of branching
// differ most. `share` of the integer columns are to be fixed. 0 or a code.
[[nodiscard]] int FixPropagate(HeurState *h, const HeurCall &call, double share);
