// cliques.cpp -- the clique table of the present rows, and what it shows
//
// Method      The cliques that rows imply and the edges that probing has found go into one table. Literals that are false in
//             every point are fixed, and literals that imply each other are replaced by one column.
// When        As long as the model has changed by less than a share since the table was built, it is built no anew.
// Cost        O(entries log(row length)), and the size of the table
#include "presolve/integer/facts.h"
#include "presolve/integer/propagation_view.h"

namespace
{
// The edges that probing has found.
int add_found(CliqueTable *t, const CliqueTable *found)
{
    for (int u = 0; u < 2 * found->NumCols; u++) {
        const int *list = lists_at(&found->Neighbours, u);
        for (int k = 0; k < found->Neighbours.Size.data[u]; k++) {
            const int pair[] = {u, list[k]};
            if (list[k] > u) TRY(clique_table_add(t, pair, 2));
        }
    }
    for (int c = 0; c < clique_count(found); c++)
        TRY(clique_table_add(t, clique_literals(found, c), clique_size(found, c)));
    return 0;
}

int fill_table(PresolveWork *w, CliqueTable *t)
{
    PropagationView view;
    int code = propagation_view_make(w, &view);
    if (!code) code = clique_table_add_rows(t, view.Rows, view.Lower.data, view.Upper.data);
    propagation_view_free(&view);
    TRY(code);
    TRY(add_found(t, w->Facts->Found));
    TRY(clique_table_close(t));
    if (!t->Infeasible) TRY(clique_table_find_equal(t));
    w->Work += static_cast<double>(t->Effort);
    return presolve_check(w);
}
} // namespace

int facts_build_table(PresolveWork *w)
{
    MipFacts *facts = w->Facts;
    clique_table_free(facts->OfRows);
    facts->OfRows = nullptr;
    TRY(clique_table_create(&facts->OfRows, w->NumCols, facts_limit(w)));
    facts->Built = counts_now(w);
    facts->IsNew = true;
    return fill_table(w, facts->OfRows);
}

int pre_cliques(PresolveWork *w)
{
    TRY(facts_refresh(w));
    MipFacts *facts = w->Facts;
    if (facts->OfRows && is_much_the_same(w, facts->Built)) return 0;
    TRY(facts_build_table(w));
    return apply_clique_facts(w, facts->OfRows);
}
