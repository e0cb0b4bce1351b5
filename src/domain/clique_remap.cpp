// clique_remap.cpp -- the table for other columns, and without literals that are false
//
// Method   Every edge and clique is translated and added to a new table, which finds literals that have become equal or
//          opposite, and what follows from a member that is true.
// Cost     O(entries) additions
#include "domain/clique_parts.h"
#include <algorithm>

namespace
{
// A clique on its way to the new table.
struct Translation {
    const int *Image; // [columns]
    CliqueTable *To;
    Array<int> Literals; // of the new table; room for the largest clique
    bool HasTrue;        // a member is fixed at its true value
};

void translate(Translation *t, int literal)
{
    const int image = t->Image[literal_col(literal)], negated = literal & 1;
    if (image >= 0) array_push(&t->Literals, image ^ negated);
    if (image == (negated ? IMAGE_ZERO : IMAGE_ONE)) t->HasTrue = true;
}

int add_translation(Translation *t, const int *literals, int count)
{
    t->Literals.size = 0;
    t->HasTrue = false;
    TRY(array_reserve(&t->Literals, count));
    for (int k = 0; k < count; k++) translate(t, literals[k]);
    if (!t->HasTrue)
        return clique_table_add(t->To, t->Literals.data,
                                static_cast<int>(t->Literals.size));
    for (const int u : t->Literals) TRY(clique_table_fix(t->To, u));
    return 0;
}

int translate_all(const CliqueTable *from, Translation *t)
{
    for (const int u : from->Fixed) {
        const int image = t->Image[literal_col(u)];
        if (image >= 0) TRY(clique_table_fix(t->To, image ^ (u & 1)));
    }
    for (int c = 0; c < clique_count(from); c++)
        TRY(add_translation(t, clique_literals(from, c), clique_size(from, c)));
    for (int u = 0; u < 2 * from->NumCols; u++) {
        const int *list = lists_at(&from->Neighbours, u);
        for (int k = 0; k < from->Neighbours.Size.data[u]; k++) {
            const int edge[2] = {u, list[k]};
            if (u < list[k]) TRY(add_translation(t, edge, 2));
        }
    }
    t->To->Infeasible |= from->Infeasible;
    return 0;
}

// The literals of `from` join those of `to`.
int take_fixed(CliqueTable *to, const CliqueTable *from)
{
    for (const int u : from->Fixed) TRY(clique_table_fix(to, u));
    return 0;
}
} // namespace

int clique_table_remap(const CliqueTable *t, const int *image, int n_cols,
                       CliqueTable **out)
{
    CliqueTable *to = nullptr;
    *out = nullptr;
    TRY(clique_table_create(&to, n_cols, t->EntryLimit));
    Translation translation = {image, to, {}, false};
    if (const int error = translate_all(t, &translation)) {
        clique_table_free(to);
        return error;
    }
    *out = to;
    return 0;
}

int clique_table_clean(CliqueTable *t)
{
    TRY(clique_table_close(t));
    if (t->Infeasible) return 0;
    Array<int> image;
    TRY(array_resize(&image, t->NumCols));
    for (int j = 0; j < t->NumCols; j++) {
        image[j] = 2 * j;
        if (t->IsFixed[literal_of(j, 1)]) image[j] = IMAGE_ZERO;
        if (t->IsFixed[literal_of(j, 0)]) image[j] = IMAGE_ONE;
    }
    CliqueTable *clean = nullptr;
    TRY(clique_table_remap(t, image.data, t->NumCols, &clean));
    int error = take_fixed(t, clean); // what adding again has shown
    if (!error) clique_swap_cliques(t, clean);
    clique_table_free(clean);
    return error;
}
