// facts_apply.cpp -- columns fixed or replaced because of what the clique table has shown
//
// Method      Literals that are false fix their columns. Of two equal literals the column of one is replaced by that of the
//             other. Columns that are no longer binary, by an earlier step, are left alone: bounds say it then.
// Cost        O(facts + entries of the columns)
#include "presolve/integer/column_replace.h"
#include "presolve/integer/facts.h"
#include "presolve/reduce/aggregate.h"
#include <algorithm>
#include <utility>

int settle_integer(PresolveWork *w, int j, double value)
{
    w->Work += 2.0 * w->ColCnt.data[j];
    TRY(check_limits(w, 1 + w->ColCnt.data[j]));
    if (!w->ColFlags.data[j]) return fix_column(w, j, value, STATUS_BY_SIGN);
    // sets and semi-continuous columns look at its bounds
    change_bounds(w, j, value, value);
    w->BoundsChanged++;
    mark_col(w, j);
    mark_rows_of_col(w, j);
    return 0;
}

namespace
{
int make_false(PresolveWork *w, int literal)
{
    const int j = literal_col(literal), value = !literal_value(literal);
    if (!is_live_col(w, j)) return 0;
    if (is_binary_now(w, j)) return settle_integer(w, j, value);
    if (w->Lb.data[j] <= value && value <= w->Ub.data[j]) return 0;
    w->InfeasCol = j;
    return END_INFEASIBLE;
}

int make_equal(PresolveWork *w, LiteralPair pair)
{
    int z = literal_col(pair.First), j = literal_col(pair.Second);
    if (z == j || !is_binary_now(w, z) || !is_binary_now(w, j)) return 0;
    if (w->ColFlags.data[j] != 0) std::swap(z, j);
    const bool same = ((pair.First ^ pair.Second) & 1) == 0;
    const ColumnReplacement r = {j, z, same ? 0.0 : 1.0, same ? 1.0 : -1.0};
    bool there = false;
    if (!may_replace(w, r)) return 0;
    TRY(room_for_fill(w, w->ColCnt.data[j], &there));
    TRY(check_limits(w, 1 + w->ColCnt.data[j]));
    return there ? replace_column(w, r) : 0;
}
} // namespace

int apply_clique_facts(PresolveWork *w, const CliqueTable *t)
{
    if (t->Infeasible) return END_INFEASIBLE;
    for (const int literal : t->Fixed) TRY(make_false(w, literal));
    for (const LiteralPair &pair : t->Equal) TRY(make_equal(w, pair));
    return 0;
}
