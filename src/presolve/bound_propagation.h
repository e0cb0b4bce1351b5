// bound_propagation.h -- bounds of variables implied by constraints, stored outside of the model, with their origins
//
// Two systems of inequalities are treated alike:
//   primal   variables are columns, constraints are rows:     a_i x  in [low, high] of row i, x in its bounds
//   dual     variables are row duals, constraints are columns: a_j y  in [low, high] of column j, y in its sign
// Each implied bound is a version: it stores its constraint, and by the order of versions the bounds that were in force
// when it was found. So the constraints and bounds that a conclusion depends on are known, and these must not be
// removed because of the conclusion (bound_origins.cpp).
#pragma once
#include "presolve/work.h"

enum PropagationKind { PROPAGATE_PRIMAL, PROPAGATE_DUAL };
enum Side { LOWER_SIDE = 0, UPPER_SIDE = 1 }; // of a variable or of a constraint

struct BoundVersion {
    double value;
    int place;  // 2 variable + Side
    int con;    // constraint that implies it
    int side;   // Side of the constraint that was used
    int before; // version of the same bound before this one, -1: the bound of the model
};

struct ConEntries {
    int begin, end; // in ConVar and ConVal; begin -1: not copied yet
};

struct BoundPropagation {
    PresolveWork *w = nullptr;
    PropagationKind kind = PROPAGATE_PRIMAL;
    int NumVars = 0, NumCons = 0;
    double Tol = 1e-6;   // bounds that cross by more are a contradiction
    Array<double> Limit; // [2 NumCons] low and high of each constraint, +-INF when absent
    Array<double> Start; // [2 NumVars] bounds of the model
    Array<double> Bound; // [2 NumVars] bounds now
    Array<int> Newest;   // [2 NumVars] version that gave the bound, -1: the model
    // Entries of the constraints, copied to consecutive memory at first use: the linked lists of the presolve matrix
    // cost a cache miss per entry.
    Array<ConEntries> Con; // [NumCons]
    Array<int> ConVar;     // [live entries] variable; the first NumCopied
    Array<double> ConVal;  // [live entries] coefficient
    int NumCopied = 0;
    Array<BoundVersion> Log; // versions in the order they were found; its room is fixed
    Array<int> ConList;      // [NumCons] constraints to process; the first NumListed
    // [NumVars] variables tightened in this round; the first NumTightened
    Array<int> VarList;
    Array<char> ConListed, VarListed; // [NumCons], [NumVars]
    int NumListed = 0, NumTightened = 0;
    bool Contradiction = false;       // no point satisfies the constraints
    int WrongCon = -1, WrongSide = 0; // constraint and side that showed the contradiction
    double Effort = 0;                // entries processed
    double NextCheck = 0;             // effort at which the limits are tested again
    // Origins of conclusions.
    Array<uint8_t> ConState; // [NumCons] bits CON_*
    Array<char> StartState;  // [2 NumVars] START_*
    Array<int> Seen;  // [room of Log] number of the claim that saw the version, or SETTLED
    Array<int> Trail; // [room of Log] versions a claim rests on
    Array<int> StartTrail; // [2 NumVars] bounds of the model it rests on
    int NumTrail = 0, NumStartTrail = 0, Claim = 0;
};
enum { CON_LOW_USED = 1, CON_HIGH_USED = 2, CON_GONE = 4 };
enum { START_FREE = 0, START_USED = 1, START_SEEN = 2, START_GONE = 3 };

// The bound of its variable that an entry contributes to the minimal activity of its constraint (side UPPER_SIDE:
// compared with the upper limit) or to the maximal activity (LOWER_SIDE).
inline int term_place(int var, double a, int side)
{
    return 2 * var + ((a > 0) == (side == UPPER_SIDE) ? LOWER_SIDE : UPPER_SIDE);
}

// ---- bound_propagation.cpp ----
void propagation_copy(BoundPropagation *p, int con); // its entries
inline ConEntries entries_of(BoundPropagation *p, int con)
{
    if (p->Con.data[con].begin < 0) propagation_copy(p, con);
    return p->Con.data[con];
}
// Arrays of a system; limits and bounds are absent. A PresolveEnd of the limits, or OUT_OF_MEMORY.
[[nodiscard]] int propagation_alloc(BoundPropagation *p, PresolveWork *w,
                                    PropagationKind kind);
// The system of the rows, each widened on its finite sides by `relax` or by its error, and the bounds of the columns.
void propagation_set_rows(BoundPropagation *p, double relax);
void propagation_list(BoundPropagation *p, int con); // to be processed in the first round
void propagation_list_all(BoundPropagation *p);
// Tightens bounds until none changes, for at most this number of rounds. A PresolveEnd of the limits.
[[nodiscard]] int propagation_run(BoundPropagation *p, int rounds);
// After a contradiction: multipliers of the constraints [NumCons], and minus their sum [NumVars] as multipliers of the
// bounds of the model, as in a direction of dual values. 0 or OUT_OF_MEMORY.
[[nodiscard]] int propagation_proof(BoundPropagation *p, Array<double> *con,
                                    Array<double> *var);
// Replaces multipliers of implied bounds in such a pair by multipliers of constraints and of bounds of the model.
void propagation_unfold(BoundPropagation *p, double *con, double *var);

// Tests the limits from time to time, as effort grows. A PresolveEnd.
[[nodiscard]] int propagation_check(BoundPropagation *p);

// ---- bound_origins.cpp ----
// Minimal (UPPER_SIDE) or maximal (LOWER_SIDE) activity of a constraint over bounds that it did not imply itself,
// rounded outwards; may be infinite.
double activity_of_others(BoundPropagation *p, int con, int side);
// Asks to remove constraint `con` because of activity_of_others(con, side) for each of the sides (a mask, 1 << side):
// true if nothing that this depends on is removed or would be removed with it. Then `con` counts as removed, and the
// origins cannot be removed any more.
[[nodiscard]] bool claim_con(BoundPropagation *p, int con, int sides);
// Asks to remove the bound `place` of the model because of its newest version.
[[nodiscard]] bool claim_start(BoundPropagation *p, int place);
