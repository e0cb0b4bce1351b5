// facts.h -- MipFacts, cliques and implications of the columns of the presolve record
//
// Valid       What is said of columns holds in each point that satisfied the model when it was found. Reductions only
//             remove points, replace columns or leave out what others imply, so that it holds for the columns that are
//             left; which those are in terms of the older ones is read from the undo records pushed since (Mark).
// Columns     Indices of the record.
#pragma once
#include "domain/clique_table.h"
#include "domain/implication_log.h"
#include "presolve/work.h"

// Counts of the record at some time.
struct ChangeCounts {
    int Rows = 0, Cols = 0, Coefs = 0; // removed, removed, changed
};

struct MipFacts {
    CliqueTable *Found = nullptr; // edges found by probing that no row says
    CliqueTable *OfRows =
        nullptr; // those and the cliques of the rows, when last built; or null
    ImplicationLog *Log = nullptr; // found by probing
    const UndoRecord *Mark =
        nullptr;          // top of the undo stack for which columns they are stated
    Array<int> Probes;    // [NumCols] how often a column was probed
    ChangeCounts Built;   // when OfRows was built
    ChangeCounts Probed;  // at the end of the last probing,
    bool WasIdle = false; // which found nothing
    bool IsNew = false;   // OfRows was built and its cliques not merged yet
};

// ---- facts.cpp ----
// w->Facts, created when there are none, in terms of the present columns. 0 or OUT_OF_MEMORY.
[[nodiscard]] int facts_refresh(PresolveWork *w);
void facts_free(MipFacts *facts);           // null is ignored
int64_t facts_limit(const PresolveWork *w); // of literals in a table
ChangeCounts counts_now(const PresolveWork *w);
// Has less of the model changed since than what makes it worth to look again? Share of rows, columns and coefficients.
bool is_much_the_same(const PresolveWork *w, const ChangeCounts &then);
// Is this column binary under its present bounds?
inline bool is_binary_now(const PresolveWork *w, int j)
{
    return is_live_col(w, j) && is_integer(w, j) && w->Lb.data[j] == 0 &&
           w->Ub.data[j] == 1; // integral
}
// Adds cliques of the final rows and gives everything to the result, in terms of the reduced model. 0 or OUT_OF_MEMORY.
[[nodiscard]] int facts_to_result(PresolveWork *w, PresolveResult *result);

// ---- cliques.cpp ----
// OfRows anew. A PresolveEnd or OUT_OF_MEMORY.
[[nodiscard]] int facts_build_table(PresolveWork *w);

// ---- facts_apply.cpp ----
// Fixes and replaces columns by what the table has shown. A PresolveEnd or OUT_OF_MEMORY.
[[nodiscard]] int apply_clique_facts(PresolveWork *w, const CliqueTable *t);
// Fixes an integer column at an integral value within its bounds.
[[nodiscard]] int settle_integer(PresolveWork *w, int j, double value);
