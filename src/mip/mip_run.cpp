// mip_run.cpp -- mip_run: a search from its beginning, or where a limit has stopped it, to its result
#include "mip/mip_run.h"
#include "body/row_activity.h"
#include "body/signs.h"
#include "mip/node_select.h"
#include "mip/search_bounds.h"
#include "mip/search_log.h"
#include <algorithm>

namespace
{
void log_continuation(MIPState *state)
{
    TVXmsg(state->Env, "\nContinuing optimization\n\n");
    state->ForcedLine = state->Nodes;
}

// What the end of the tree means.
int final_status(const MIPState *state)
{
    int status = state->Status;
    const bool solved = state->Pool.Entries.size > 0;
    if (status == RUNNING) {
        if (open_nodes(state) > 0)
            TVXmsg(state->Env, "Unknown termination status!\n");
        else if (state->LostBound < state->Pool.PruneValue)
            status = TVX_NUMERIC; // some part of the tree could not be decided
        else
            status = solved ? TVX_OPTIMAL : TVX_INFEASIBLE;
    }
    if (status == TVX_INFEASIBLE && solved) status = TVX_OPTIMAL;
    const bool no_solution = status == TVX_OPTIMAL || status == TVX_INFEASIBLE;
    if (no_solution && !solved && state->Cutoff < UNDEFINED_VALUE) status = TVX_CUTOFF;
    return status;
}

void log_fixed_variables(const MIPState *state)
{
    const int fixed = state->Recursive ? 0 : fixed_columns(state);
    if (fixed > 0)
        TVXmsg(state->Env, "Fixed variables: %d of %d\n", fixed, state->Body->numvars);
}

int run(MIPState **search)
{
    for (;;) {
        MIPState *state = *search;
        if (!state->Root) return 0; // nothing is left
        if (state->RootIterations < 0) {
            TRY(search_root(state));
            log_fixed_variables(state);
        }
        if (state->Status == RUNNING) TRY(search_tree(state));
        if (!state->Restart.Wanted) return 0;
        TRY(search_restart(search));
    }
}

int close_lists(MIPState *state)
{
    for (SearchWorker *worker : state->Workers) TRY(put_back_nodes(worker));
    update_global_bound(state);
    return 0;
}
} // namespace

int mip_run(MIPState **search)
{
    MIPState *state = *search;
    if (state->Status == TVX_UNBOUNDED) return 0; // known, whatever the limits
    const bool resumed = state->RootIterations >= 0;
    state->Status = RUNNING;
    state->StartTime = state->Env->optimize_start;
    if (resumed && !state->Recursive) log_continuation(state);
    int code = run(search);
    state = *search;
    if (!code) code = close_lists(state);
    if (code && state->Status == RUNNING) state->Status = TVX_INTERRUPTED;
    if (!code) state->Status = final_status(state);
    return code;
}
