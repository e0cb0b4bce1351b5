// model_edit.h -- the same random change to the test's own model and, through the public calls, to the library's
#pragma once
#include "support/dice.h"
#include "support/lp_model.h"
#include "tarvex.h"
#include <string>

// Makes one change (of one kind, to one or a few elements) in both; the library's model has it pending. Returns what
// was done, or a text that starts with "FAILED" when a call returned an error.
std::string edit_randomly(Dice *dice, LpModel *lp, TVXmodel *model);
