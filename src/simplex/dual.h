// dual.h -- dopt, what only the dual simplex needs, and the steps of its iteration
#pragma once
#include "simplex/price_list.h"
#include "simplex/sopt.h"

template<class R> struct dopt {
    // Row weights and the list of rows worth looking at
    Array<R> Weights;  // [m] by position
    Array<R> WeightOf; // [NumVars] carries weights over a change of positions
    int WeightAge =
        -1; // BasisAge and Pivots of the basis to which WeightOf belongs; -1 none
    double WeightPivots = -1;
    int PricingCur = PRICE_STEEPEST;  // or PRICE_DEVEX
    int PricingFinal = 0;             // no more changes by itself
    Array<char> Reference;            // [NumVars] Devex: variable belongs to the framework
    double FrameworkWork = 0;         // entries updated since it was set
    double NormWork = 0, RowWork = 0; // effort for weights alone, for pivot rows
    PriceList<R> Rows;                // [m] rows by infeasibility^2 / weight

    // Ratio test, over candidates k < CandCount
    Array<int> CandPlace; // [NumVars] place in the packed row
    Array<R> CandAlpha; // [NumVars] pivot row entry with the sign that makes it block: > 0
    Array<R>
        CandDual; // [NumVars] reduced cost with the sign that makes it feasible: >= -OptTol
    Array<R> CandRange; // [NumVars] what passing the breakpoint takes from the slope
    int CandCount = 0;
    Array<int> GroupEnd; // [NumVars + 1] candidates of group g end here
    Array<int> Flips;    // [NumVars] variables that change bound in this step
    int FlipCount = 0;

    // The iteration
    int PivotRow = -1; // leaving position
    int PivotCol = -1; // entering variable
    R Delta = 0; // infeasibility of the leaving variable: below lower < 0, above upper > 0
    R AlphaRow = 0; // pivot from the row
    R AlphaCol = 0; // pivot from the column
    R ThetaDual = 0, ThetaPrimal = 0;
    int FreeCount = 0; // nonbasics at AT_FREE
    double CycleIter = 0,
           CycleLen = 0; // cycle watch: pivot of its start, length of the round
    int CycleVar = -1, CycleHits = 0; // entering variable that is watched, rounds seen
    int Rejected = 0; // rows set aside since the last factorisation because of their pivots
    Array<char> RowRejected; // [m]
};

template<class R> [[nodiscard]] int dopt_create(const sopt *s, dopt<R> **out);
// Pivots until Status is no longer SIMPLEX_RUNNING: a dual feasible basis with weights and merits. 0 or a code.
template<class R> [[nodiscard]] int dual_pivots(sopt *s, swork<R> *w);

// dual_start.cpp
void dual_set_true_bounds(sopt *s);
void dual_set_box_bounds(sopt *s);
template<class R>
int dual_place_nonbasics(
    sopt *s, swork<R> *w); // bounds by sign of Cbar; count of dual infeasibilities
template<class R> void dual_perturb_start(sopt *s, swork<R> *w); // needs Cbar
template<class R> void dual_perturb_stalled(sopt *s, swork<R> *w);
template<class R> void dual_perturb_costs(sopt *s, swork<R> *w);
void dual_remove_perturbation(sopt *s);
template<class R> void dual_shift_cost(sopt *s, swork<R> *w, int j, R new_cbar);

// dual_free.cpp
template<class R> [[nodiscard]] int dual_enter_free(sopt *s, swork<R> *w); // needs Cbar

// dual_row.cpp
template<class R> void dual_list_reset(sopt *s, swork<R> *w); // all merits anew
template<class R> void dual_set_merit(sopt *s, swork<R> *w, int i);
template<class R>
void dual_set_merits(sopt *s, swork<R> *w, const SVec<R> *changed); // of the listed rows

// dual_weights.cpp
template<class R>
void dual_weights_start(sopt *s, swork<R> *w); // needs factors; a limit may stop it
template<class R> void dual_weights_save(sopt *s, swork<R> *w); // positions will change
template<class R> void dual_weights_restore(sopt *s, swork<R> *w);
template<class R> void dual_weights_keep(sopt *s, swork<R> *w); // for the next run
template<class R>
bool dual_weights_kept(const sopt *s, const dopt<R> *d); // WeightOf belongs to the basis
template<class R>
R dual_true_weight(const swork<R> *w); // steepest edge: of row PivotRow, from Rho
template<class R>
void dual_update_weights(sopt *s, swork<R> *w); // before the basis changes
template<class R> void dual_change_pricing(sopt *s, swork<R> *w); // between factorisations

// dual_ratio.cpp
template<class R>
bool dual_ratio(
    sopt *s, swork<R> *w,
    R floor); // PivotCol, Flips by entries above floor; false when nothing blocks

// dual_update.cpp
template<class R> void dual_load_flips(sopt *s, swork<R> *w); // into Work, before its FTRAN
template<class R> void dual_apply_flips(sopt *s, swork<R> *w);   // Work after it
template<class R> void dual_update_values(sopt *s, swork<R> *w); // Bbar, merits, Cbar
