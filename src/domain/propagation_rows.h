// propagation_rows.h -- PropagationRows, rows and columns in the layout that bound propagation reads
//
// Built once and shared by any number of Domains, which only read it. A row low <= a x <= high becomes up to two directed
// rows: a x <= high, and -a x <= -low. The least activity is all that a directed row needs, so that an equation costs
// twice what an inequality costs, and a change of a bound reaches only directed rows that get tighter by it.
//
// Entries  A row's entries stand by descending key = |a| (upper - lower) of the bounds at build time, infinite ranges
//          first: a scan for columns that can move ends at the first key that is not above the slack. Bounds of a
//          Domain that are wider than those at build time are allowed; some propagation is missed then.
// Columns  Per column the directed rows in which its coefficient is positive (its lower bound is in their least
//          activity), and those where it is negative (its upper bound is). The rows of the model and those
//          appended later have a block each, so that appending costs no pass over the model.
// Left out Rows that bound nothing, and rows with numbers beyond LARGEST_NUMBER, whose sums could overflow.
#pragma once
#include "body/body.h"
#include "domain/bounds.h"

struct RowEntry {
    double Val; // coefficient, not 0
    int Col;
    float Key; // |Val| (upper - lower) at build time, rounded up
};

struct DirectedEntry {
    double Val;   // coefficient in the directed row: Sign times that of the row
    int Directed; // number of the directed row
};

// Sign a x <= Side for the entries a of row Row.
struct DirectedRow {
    int Row;
    int Sibling; // the directed row of the other side, or -1
    double Sign; // +1 or -1
    double Side; // Sign times the side
    double Soft; // sum of |a| of continuous columns: what violated bounds of size 1 add
    double Size; // |Side| plus the sum of the largest |a x| within the bounds at build time
    double Reach; // largest key: no column moves the activity by more
};

// Entries of column j with a positive coefficient: Entry[Beg[2 j] .. Beg[2 j + 1]), negative: from there to
// Beg[2 j + 2].
struct ColumnBlock {
    Array<int64_t> Beg;         // [2 NumCols + 1], or empty without rows
    Array<DirectedEntry> Entry; // by column, sign and directed row
};

struct PropagationRows {
    int NumCols = 0;
    int NumRows = 0;      // with those appended
    int NumModelRows = 0; // without them
    int NumModelDirected = 0;
    int Impossible = -1;      // a row that no point satisfies, whatever the bounds, or -1
    Array<char> IsInteger;    // [NumCols]
    Array<int64_t> RowBeg;    // [NumRows + 1] in Entry
    Array<RowEntry> Entry;    // by row, then by descending Key, then by column
    Array<int> FirstDirected; // [NumRows + 1] the directed rows of a row: 0, 1 or 2
    Array<DirectedRow> Directed;
    ColumnBlock ModelCols;    // columns of the rows of the model
    ColumnBlock AppendedCols; // and of those appended
};

// Rows for a build: low <= a x <= high, sides of size INFINITE_VALUE and above are infinite. Zeros are left out. No
// column stands twice in a row.
struct RowSource {
    int NumRows = 0;
    const int *Beg = nullptr;                     // [NumRows + 1]
    const int *Ind = nullptr;                     // columns
    const double *Val = nullptr;                  // coefficients
    const double *Low = nullptr, *High = nullptr; // [NumRows]
};
struct ColumnSource {
    int NumCols = 0;
    const double *Lower = nullptr, *Upper = nullptr; // [NumCols]
    const char *IsInteger = nullptr;                 // [NumCols]
};

// All: 0 or OUT_OF_MEMORY; on failure *out is null.
[[nodiscard]] int propagation_rows_build(PropagationRows **out, const ColumnSource *cols,
                                         const RowSource *source);
[[nodiscard]] int propagation_rows_of_body(PropagationRows **out, const ModelBody *body);
void propagation_rows_free(PropagationRows *rows); // null is ignored

// Appends rows, with keys by these bounds, which hold for all Domains. Unchanged on failure. Each Domain over `rows` must
// call domain_rows_changed before its next use. Cost: O(n + entries of all appended rows)
[[nodiscard]] int propagation_rows_append(PropagationRows *rows, const RowSource *source,
                                          const double *lower, const double *upper);
// Removes all appended rows; the same holds for the Domains. Cannot fail.
void propagation_rows_drop_appended(PropagationRows *rows);

#ifdef TVX_DEBUG
int propagation_rows_check(const PropagationRows *rows); // number of broken invariants
#endif
