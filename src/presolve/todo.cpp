// todo.cpp -- reductions that are being written; nothing of this file stays
#include "presolve/postsolve.h"
int pre_columns(PresolveWork *)
{
    return 0;
}
int pre_ineq_to_eq(PresolveWork *)
{
    return 0;
}
int pre_two_rows(PresolveWork *)
{
    return 0;
}
void undo_slack_column(const UndoRecord *, PostPoint *) {}
void undo_dominated(const UndoRecord *, PostPoint *) {}
ImpliedBounds implied_bounds(const PresolveWork *w, int)
{
    return {-w->INF, w->INF};
}
