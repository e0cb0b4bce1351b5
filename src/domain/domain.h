// domain.h -- Domain, bounds of the columns with propagation over rows, cliques and implications, and a trail
//
// A Domain is a set of column bounds that can be tightened, propagated and undone. Presolve, probing, the nodes of the
// search and heuristics use it. What it propagates over (PropagationRows, CliqueTable, ImplicationLog) is shared by
// several Domains and read only.
//
// States   consistent   Infeasible == false
//          infeasible   Infeasible == true: a row, a bound or a clique cannot be satisfied, and Conflict says which; only
//                       domain_undo (to a mark taken before) and domain_reset leave it; tightening changes nothing
// Sound    No point is lost that satisfies each row and each bound of a continuous column within the feasibility
//          tolerance, the bounds of integer columns exactly, and has integral values there: such a point is within the
//          tolerance of every bound that propagation finds, and a Domain that has one never becomes infeasible. Sides
//          are relaxed for that, by the tolerance times 1 plus the |a| of the continuous columns of the row.
// Trail    Each change of a bound is recorded with its old value and its reason. domain_mark gives a position,
//          domain_undo restores everything to it, at the cost of what was changed since.
// Activity Per directed row the least activity in double-double, with the count of infinite terms. Undo subtracts
//          exactly what was added: no drift beyond double-double rounding, for which sides are relaxed, too. It is
//          computed anew before a row is held to be infeasible.
// Memory   Everything is allocated at creation; only the trail may have to grow. When it cannot, Error is OUT_OF_MEMORY
//          and no bound changes any more, but what is there stays right: propagation misses something, no more.
#pragma once
#include "body/body.h"
#include "domain/clique_table.h"
#include "domain/implication_log.h"
#include "domain/propagation_rows.h"

static constexpr double DOMAIN_ZERO = 1e-10; // a column with a smaller range is fixed

// Why a bound holds: what conflict analysis follows, and what decides whether an LP has to be told.
enum class ReasonKind : char { DECISION, ROW, CLIQUE, IMPLICATION, REDUCED_COST, GLOBAL };
struct BoundReason {
    ReasonKind Kind;
    int Index; // ROW: the row. CLIQUE, IMPLICATION: the literal whose truth implies it. Else -1, or what the caller wants
};

struct TrailEntry {
    double Old; // the bound before
    double New;
    int Col;
    int Before; // the entry of the same column and side before this one, or -1
    BoundReason Reason;
    BoundSide Side;
};

// What made a Domain infeasible. Two forms: a row whose least activity is above its side (Col -1; Side UPPER: a x <= high
// of the row, LOWER: low <= a x), or a bound that its reason implies and that crosses the other bound of Col.
struct DomainConflict {
    double Value; // of the bound
    int Col;
    BoundReason Reason;
    BoundSide Side;
};

struct DomainTolerances {
    double Feasibility = 1e-6; // of rows, and of bounds of continuous columns
    double Integrality = 1e-5; // bounds of integer columns are rounded with it
};

// Least activity of a directed row, and what decides whether it is queued.
struct DirectedState {
    double High = 0, Low = 0; // the sum of the finite terms is High + Low
    double Trigger = 0;       // with an activity up to it the row implies nothing
    int Infinite = 0;         // infinite terms
    int Queued = 0;           // 1 while in the queue
};

struct Domain {
    const PropagationRows *Rows = nullptr;
    const CliqueTable *Cliques = nullptr; // or null
    const ImplicationLog *Log = nullptr;  // or null
    DomainTolerances Tol;

    // Read by callers.
    Array<double> Lower, Upper; // [n]
    Array<TrailEntry> Trail;    // in the order of the changes
    Array<int> Newest;          // [2 n] newest entry of the trail by 2 column + side, or -1
    int FixedCount = 0;         // columns with a range of at most DOMAIN_ZERO
    bool Infeasible = false;
    DomainConflict Conflict = {}; // valid while Infeasible
    int Error = 0;                // 0 or OUT_OF_MEMORY
    int64_t Effort = 0;           // entries looked at so far, deterministic

    // Inside.
    Array<DirectedState>
        State; // [directed rows of Rows, or of its model only when Appended is false]
    Array<double> Limit;   // likewise: side, relaxed by the tolerance
    bool Appended = false; // State covers the appended rows
    Array<int>
        Queue; // [room for every directed row] ring of those to look at, first in first out
    int QueueHead = 0, QueueCount = 0;
    int64_t QueuedFrom =
        0; // length of the trail when the queue was last empty; -1: the queue of the creation
    int64_t NextLiteral =
        0; // trail entries before it have been followed through cliques and implications
    bool FreshLiterals = false; // columns fixed at creation have not
    int64_t InfeasibleAt =
        0;                 // length of the trail when it became infeasible; -1: at creation
    Array<int> Changed;    // [n] columns changed since last taken; the first NumChanged
    Array<char> IsChanged; // [n]
    int NumChanged = 0;
    Array<int64_t> FixMarks; // marks of the DomFix that are in force
};

// A new Domain with these bounds (rounded for integer columns) and every row queued; cliques and log may be null. 0 or
// OUT_OF_MEMORY; on failure *out is null. Cost: O(n + entries)
[[nodiscard]] int domain_create(Domain **out, const PropagationRows *rows,
                                const CliqueTable *cliques, const ImplicationLog *log,
                                const double *lower, const double *upper,
                                DomainTolerances tolerances);
void domain_free(Domain *d); // null is ignored
// As if new with other bounds; allocates nothing. All columns count as changed.
void domain_reset(Domain *d, const double *lower, const double *upper);
// After rows have been appended to Rows or dropped: their activities under the present bounds; new ones are queued.
// 0 or OUT_OF_MEMORY; then appended rows are not propagated.
[[nodiscard]] int domain_rows_changed(Domain *d);

// Tightens a bound (integers are rounded first); a bound that is not tighter changes nothing. May make it infeasible.
// Activities are updated, rows that may act are queued; domain_propagate runs the queue.
void domain_tighten(Domain *d, int j, BoundSide side, double value, BoundReason reason);
// Runs the queue to its end, or until `effort` entries have been looked at (negative: no limit); what is left stays
// queued. A chain of many small steps is cut off after a number of changes in proportion to n. True: consistent.
bool domain_propagate(Domain *d, double effort);

// A position in the trail. Take marks after propagation: rows queued then, and looked at later, are not queued again by
// undo.
inline int64_t domain_mark(const Domain *d)
{
    return d->Trail.size;
}
void domain_undo(Domain *d, int64_t mark);

// Columns whose bounds have changed since the last call, by tightening or by undo, each once: what a caller with a copy of
// the bounds (an LP) has to look at. `list` has room for n. Returns their number. Costs what changed. The same set may be
// read without taking it: Changed[0 .. NumChanged) and the marks IsChanged.
int domain_take_changed(Domain *d, int *list);

inline bool domain_is_fixed(const Domain *d, int j)
{
    return d->Upper[j] - d->Lower[j] <= DOMAIN_ZERO;
}
// Least and largest activity of a row under the bounds, infinite without a finite one. Cost: O(1), or the length of the row
// for the side that an inequality does not bound.
double domain_row_least(const Domain *d, int i);
double domain_row_largest(const Domain *d, int i);

// ---- The service of the heuristics (domain_service.cpp) ----
// Fixes (at a rounded value in an integer column) and propagates. 1 when infeasible, else 0.
int DomFix(Domain *d, int j, double value);
int DomPropagate(Domain *d, double effort); // -1: to the end. 1 when infeasible, else 0
void DomUndoLast(Domain *d); // the last DomFix in force, with all that came after it
double DomLower(const Domain *d, int j);
double DomUpper(const Domain *d, int j);
int DomFixedCount(const Domain *d);
bool DomIsInfeasible(const Domain *d);

#ifdef TVX_DEBUG
// Recomputes activities, counts, marks, the queue and the trail; the number of broken invariants (domain_check.cpp).
int domain_check(const Domain *d);
#endif
