// search_log.h -- the lines of a search: nodes, solutions, progress
#pragma once
#include "mip/mip_state.h"

void node_log_line(MIPState *state, const TreeNode *node); // when one is due
void periodic_log_line(MIPState *state);  // between the passes of a root after a restart
void heuristic_log_line(MIPState *state); // a solution that no node's LP has given
// Objective bound as it is reported: not above the incumbent, on the grid of objectives if `rounded`.
double search_bound(const MIPState *state, bool rounded);
double open_nodes(const MIPState *state);
