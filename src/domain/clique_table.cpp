// clique_table.cpp -- the record CliqueTable
#include "domain/clique_table.h"
#include "runtime/record.h"

int clique_table_create(CliqueTable **out, int n_cols, int64_t entry_limit)
{
    *out = nullptr;
    CliqueTable *t = record_create<CliqueTable>();
    if (!t) return OUT_OF_MEMORY;
    t->NumCols = n_cols;
    t->EntryLimit = entry_limit;
    const int64_t literals = 2 * int64_t{n_cols};
    int error = lists_create(&t->Neighbours, literals);
    if (!error) error = lists_create(&t->CliquesOf, literals);
    if (!error) error = array_assign<int64_t>(&t->Beg, 1, 0);
    if (!error) error = array_assign<char>(&t->IsFixed, literals, 0);
    if (error) {
        clique_table_free(t);
        return error;
    }
    *out = t;
    return 0;
}

void clique_table_free(CliqueTable *t)
{
    record_free(t);
}
