// model_store.h -- what the files of the model store share
//
// Small rules that creation, adds and updates all follow, so that a body looks the same
// whichever way it was built: infinite bounds, integral bounds, letters, names, negated rows.
#pragma once
#include "model/model.h"
#include "model/pending.h"

// ---- Pending changes (pending.cpp) ----
// Room to flag n_new more elements. 0 or OUT_OF_MEMORY.
[[nodiscard]] int element_changes_reserve(ElementChanges *changes, int n_elements,
                                          int n_new);
void element_changes_flag(ElementChanges *changes, int k, PendingFlag flag);
// A number that no entry of `mark` holds.
int element_changes_stamp(ElementChanges *changes);

void model_estimate_size(TVXmodel *model); // size_estimate
