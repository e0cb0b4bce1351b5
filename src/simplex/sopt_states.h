// sopt_states.h -- the states of the working LP and of a run on it, and what changes each
//
// Status: each transition with the functions that make it (file after the name; only one of a name per file)
//   any -> RUNNING          sopt_refresh: a new call. run_again, take_up (simplex.cpp): polishing, also back to the
//                           optimum before it. simplex_confirm (simplex_query.cpp): fresh factors show no optimum.
//                           live_begin, live_run_primal, go_live (resolve.cpp), open (strong_branch.cpp): a re-solve.
//                           load (node_basis.cpp), append (live_rows.cpp), simplex_change_cost: another LP or basis
//   RUNNING -> OPTIMAL      keep_optimal (simplex.cpp): the start basis is optimal. end_phase2 (dual.cpp,
//                           primal_end.cpp). open, bring_back, strong_branch_close (strong_branch.cpp): the optimum
//                           before the probe
//   RUNNING -> INFEASIBLE   no_column (dual.cpp), end_phase1 (primal_end.cpp): after proves_infeasible or, when live,
//                           proves_simply. resolve (resolve.cpp): crossed bounds.
//                           sopt_check_bounds: crossed bounds, or a lower bound +inf or upper bound -inf
//   RUNNING -> UNBOUNDED    primal_no_row: after proves_unbounded. sopt_check_bounds: an infinite bound on the
//                           wrong side towards which the cost of the variable improves without limit
//   RUNNING -> CUTOFF       dual_test_cutoff: a dual bound exceeds Cutoff
//   OPTIMAL -> CUTOFF       optimize (simplex.cpp), judge_cutoff (resolve.cpp): the optimal objective exceeds Cutoff
//   OPTIMAL -> SWITCH       run (resolve.cpp), solve_branch (strong_branch.cpp), after live_tighten_signs
//   RUNNING -> limits       limit_reached (simplex_log.cpp): INTERRUPTED, ITERATION_LIMIT, TIME_LIMIT. Called by solve
//                           (simplex.cpp), dual_pivots, dual_enter_free, exact_weights (dual_weights.cpp), PrimalRun,
//                           start_norms (primal_price.cpp)
//   RUNNING -> SWITCH       dual.cpp: watch_start (cycling), end_box_phase (not dual feasible), end_phase2 (not dual
//                           feasible for the true costs), no_row and set_row_aside (rows set aside for their pivots);
//                           primal_end.cpp: end_phase1 (infeasibility not proved), end_phase2 (not primal feasible for
//                           the true bounds), primal_no_column, set_column_aside (columns set aside);
//                           stall_look (STALL_SWITCH)
//   RUNNING -> NEED_QUAD    strike (values.cpp), for judge_residuals. stall_look (STALL_EXTENDED)
//   RUNNING -> RESTART      stall_look (STALL_STRICT)
//   any -> NUMERIC          Refactor (basis.cpp): a basis that repairs do not make regular. stall_look (STALL_END).
//                           iterate (primal.cpp): the ratio test finds no row because values are not finite
//   SWITCH -> RUNNING       hand_over (simplex.cpp): the other method, or the dual again without perturbation;
//                           -> NUMERIC after MAX_SWITCHES. live_run_primal (resolve.cpp)
//   RESTART -> RUNNING      restart (simplex.cpp)
//   NUMERIC, NEED_QUAD -> RUNNING   go_extended (simplex.cpp), once, if the parameter Quad is -1
//   NEED_QUAD -> NUMERIC    run_methods (simplex.cpp), if extended precision is not allowed or already in use
//   any -> a final status   simplex_declare: what the caller has found out after the run
// RefacReason
//   any -> START            setup (dual.cpp, primal.cpp)
//   NONE -> START           primal_no_row: perturbation removed; primal_settle_superbasic
//   NONE -> PASSES          stall_count_pass
//   NONE -> CLEAN           dual.cpp: begin_phase2, end_box_phase, no_row; primal_end.cpp: end_phase1,
//                           drop_phase_costs, primal_no_column; check_price (primal.cpp)
//   NONE -> CONFIRM         no_column (dual.cpp), primal_no_row
//   NONE -> PIVOT, ROOM     UpdateFactor, in apply_step (dual.cpp) and apply_pivot (primal.cpp); PIVOT also
//                           distrust_factors, for reject_pivot (dual.cpp) and primal_reject_column
//   NONE -> FILL            apply_step (dual.cpp), apply_pivot (primal.cpp), after wants_refactor
//   any -> VALUES           run (resolve.cpp): a stale record; no_row (dual.cpp): rounding errors of large steps,
//                           or wrong signs by entries that the ratio test ignored
//   any -> NONE             refresh (dual.cpp, primal.cpp); live_begin (resolve.cpp). bring_back (strong_branch.cpp)
//                           restores the value that the record had before strong branching
// BoxPhase
//   0 -> 1                  setup (dual.cpp), if dual infeasible nonbasics are left after dual_place_nonbasics
//   1 -> 0                  the same if none is left; begin_phase2 (dual.cpp); setup (primal.cpp); finish_values;
//                           sopt_refresh
// Perturbed
//   NONE -> SINGLE          dual_shift_cost, primal_shift_infeasible, primal_shift_blocking
//   NONE, SINGLE -> ALL     dual_perturb_start, dual_perturb_costs, primal_perturb, sopt_take_up_stop
//   SINGLE -> NONE          dual_remove_shifts (end_phase2 of dual.cpp)
//   any -> NONE             dual_remove_perturbation (setup, end_box_phase, end_phase2 of dual.cpp; take_true_lp
//                           of resolve.cpp, bring_back of strong_branch.cpp), primal_remove_perturbation (setup of
//                           primal.cpp; end_phase1, end_phase2, primal_no_row of primal_end.cpp), finish_values,
//                           sopt_refresh
#pragma once
#include "lu/lufact.h"

// Positive values up to 12 are those of TVX_OPTIMAL and the other public statuses.
enum SimplexStatus {
    SIMPLEX_RUNNING = 1,
    SIMPLEX_OPTIMAL = 2,
    SIMPLEX_INFEASIBLE = 3,
    SIMPLEX_UNBOUNDED = 5,
    SIMPLEX_CUTOFF = 6, // the objective cannot be better than Cutoff
    SIMPLEX_ITERATION_LIMIT = 7,
    SIMPLEX_TIME_LIMIT = 9,
    SIMPLEX_INTERRUPTED = 11,
    SIMPLEX_NUMERIC = 12,      // numeric trouble
    SIMPLEX_SWITCH = 101,      // the other method has to continue
    SIMPLEX_NEED_QUAD = -1002, // continue in extended precision
    SIMPLEX_RESTART = -1003,   // no progress: start again from slacks (STALL_STRICT)
};

// Entries of VStat below zero; entries at or above zero are the basis position of a basic variable.
enum BasisStatus {
    AT_LOWER = -1,
    AT_UPPER = -2,
    AT_FREE = -3,  // free at zero, or superbasic at a value of its own
    AT_FIXED = -4, // lower = upper, or kept out of the basis for the rest of a run
};

// The stall guard (stall.cpp). Values and reduced costs are refreshed after at most PASSES_PER_UPDATE * MaxUpdates +
// PASSES_LEAST passes of the loop, also when all of them are bound flips or rejected pivots, which update no factors.
static constexpr int PASSES_PER_UPDATE = 2, PASSES_LEAST = 100;
// The box problem and phase 2 of the dual simplex, phases 1 and 2 of the primal simplex.
enum StallPhase { STALL_BOX, STALL_DUAL, STALL_PRIMAL_1, STALL_PRIMAL_2, STALL_PHASES };
// Remedies against a stall, in the order in which they are taken.
enum StallRemedy {
    STALL_NONE,
    // phase 1 of the primal simplex no longer contains a share of the true costs
    STALL_COSTS,
    STALL_PERTURB,  // costs (dual) or bounds (primal) are perturbed
    STALL_SWITCH,   // the other method continues
    STALL_EXTENDED, // extended precision from the same basis
    STALL_STRICT,   // start again from slacks, with strict pivots in the factors
    STALL_END,      // the run ends in numeric trouble
};
struct StallGuard {
    double Best[STALL_PHASES];      // smallest value of each phase since the last remedy
    int Looks = 0;                  // refreshes of factors and values in this run
    int IdleLooks = 0;              // refreshes since the value of the phase last improved
    double Iter = 0;                // NPvt at that improvement
    double Begin = 0;               // NPvt at the last remedy
    int Passes = 0;                 // passes of the loop since the last refresh
    StallRemedy Taken = STALL_NONE; // last remedy of this run
};

// Which costs (dual) or bounds (primal) are perturbed. The value 2 has no meaning.
enum Perturbation { PERTURBED_NONE = 0, PERTURBED_SINGLE = 1, PERTURBED_ALL = 3 };

// What proves an infeasible or unbounded status: nothing, row multipliers, a ray.
// PROOF_ROW: row multipliers in Rho, until the next solve with the factors.
enum ProofKind { PROOF_NONE, PROOF_FARKAS, PROOF_RAY, PROOF_ROW };

enum LiveState { LIVE_NO, LIVE_STALE, LIVE_FRESH }; // see resolve.h

// Why factors, values and reduced costs are to be computed afresh. What an update returns is such a reason.
enum RefacReason {
    REFAC_NONE = 0,
    // start of a method, or basic values no longer belong to the nonbasic ones
    REFAC_START = 1,
    REFAC_PASSES = 2, // many passes of the loop since the last refresh (stall_count_pass)
    // Costs, bounds or phase changed, or a result is to be confirmed on fresh factors.
    REFAC_CLEAN = 4,
    REFAC_CONFIRM = 5,             // infeasible or unbounded according to updated factors
    REFAC_PIVOT = UPDATE_UNSTABLE, // or the pivots from row and column differ
    REFAC_VALUES = 7, // values and reduced costs alone: the factors stand (live records)
    REFAC_FILL = 10,  // update limit reached, or solves have become slow by fill
    REFAC_ROOM = UPDATE_NO_ROOM, // the update ran out of memory in its pools
};
