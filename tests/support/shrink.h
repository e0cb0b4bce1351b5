// shrink.h -- make a failing case small while it still fails
//
// Greedy: drop settings, rows, columns and entries, then simplify numbers and bounds, until nothing more goes.
#pragma once
#include "support/lp_model.h"
#include "support/settings.h"
#include <functional>

using Fails = std::function<bool(const LpModel &lp, const Settings &settings)>;

// *lp and *settings fail on entry and on return.
void shrink(LpModel *lp, Settings *settings, const Fails &fails);
