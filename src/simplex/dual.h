// dual.h -- dopt, the record of the dual simplex method, and the steps of its iteration
#pragma once
#include "simplex/price_list.h"
#include "simplex/sopt.h"
#include <algorithm>
#include <cmath>

template<class R> struct dopt {
    // Pricing of the rows
    Array<R> Weights;  // [m] by position
    Array<R> WeightOf; // [NumVars] weights by variable, kept while positions change
    // BasisAge and Pivots of the basis to which WeightOf belongs; -1 none.
    int WeightAge = -1;
    double WeightPivots = -1;
    int PricingCur = PRICE_STEEPEST; // or PRICE_DEVEX
    int PricingFinal = 0;            // the pricing is no longer changed automatically
    Array<char> Reference;    // [NumVars] Devex: variable is in the reference framework
    double FrameworkWork = 0; // entries updated since the framework was set
    double NormWork = 0, RowWork = 0; // work for weights alone, work for pivot rows
    PriceList<R> Rows;                // [m] merits of the rows: infeasibility^2 / weight

    // Ratio test, over candidates k < CandCount
    Array<int> CandPlace; // [NumVars] position in the packed row
    Array<R> CandAlpha;   // [NumVars] pivot row entry, signs turned so that it is > 0
    Array<R> CandDual;    // [NumVars] reduced cost, signs turned so that it is >= -OptTol
    Array<R> CandRange;   // [NumVars] decrease of the slope at the breakpoint
    int CandCount = 0;
    Array<int> GroupEnd; // [NumVars + 1] end of the candidates of group g
    Array<int> Flips;    // [NumVars] variables that flip to their other bound in this step
    int FlipCount = 0;

    // The iteration
    int PivotRow = -1; // leaving position
    int PivotCol = -1; // entering variable
    R Delta = 0; // infeasibility of the leaving variable: below lower < 0, above upper > 0
    R AlphaRow = 0;                   // pivot from the row
    R AlphaCol = 0;                   // pivot from the column
    R ThetaDual = 0, ThetaPrimal = 0; // dual and primal step length
    int FreeCount = 0;                // nonbasics at AT_FREE
    // Cycle detection: NPvt at its start, iterations between two entries of CycleVar.
    double CycleIter = 0, CycleLen = 0;
    int CycleVar = -1,
        CycleHits = 0; // watched entering variable, its entries at multiples of CycleLen
    int Rejected = 0;  // rows set aside since the last refresh because of their pivots
    Array<char> RowRejected; // [m] row is set aside
};

// dual_record.cpp
template<class R> [[nodiscard]] int dopt_create(const sopt *s, dopt<R> **out);

// dual.cpp
// Iterates until Status is no longer SIMPLEX_RUNNING, from a dual feasible basis with weights and merits. 0 or a code.
template<class R> [[nodiscard]] int dual_pivots(sopt *s, swork<R> *w);

// dual_start.cpp
void dual_set_true_bounds(sopt *s);
void dual_set_box_bounds(sopt *s);
// Boxed nonbasics move to the bound that the sign of Cbar asks for. The number of dual infeasibilities that remain.
template<class R> int dual_place_nonbasics(sopt *s, swork<R> *w);
template<class R> void dual_perturb_start(sopt *s, swork<R> *w); // needs Cbar
template<class R> void dual_perturb_stalled(sopt *s, swork<R> *w);
template<class R> void dual_perturb_costs(sopt *s, swork<R> *w);
void dual_remove_perturbation(sopt *s);
// The same by what single shifts have changed, in DualObj and Cbar too; Rho and the packed row are used. False, and
// nothing done, if it does not apply. *feasible: the reduced costs that changed keep their signs.
template<class R> bool dual_remove_shifts(sopt *s, swork<R> *w, bool *feasible);
template<class R> void dual_shift_cost(sopt *s, swork<R> *w, int j, R new_cbar);

// live_bounds.cpp
bool live_crosses(const sopt *s, int j); // its bounds exclude every value
// Reduced cost of nonbasic column j from the multipliers. That of a fixed column is not kept.
template<class R> R live_reduced_cost(const sopt *s, const swork<R> *w, int j);
// Nonbasic j, at `before`, goes to the bound that its reduced cost asks for, or takes status `wish` if that has no
// sign. The change of its value is added to Work, live_move_values then changes the basic values.
template<class R>
void live_move_nonbasic(sopt *s, swork<R> *w, int j, int wish, double before);
// New bounds of column j in units of the working LP, as live_move_nonbasic. Work has to be empty before the first one.
template<class R>
void live_set_bounds(sopt *s, swork<R> *w, int j, double lower, double upper);
template<class R> void live_move_values(sopt *s, swork<R> *w);
// node_basis.cpp
// Whether the live basis differs from this one in a few variables only.
bool live_is_near(const sopt *s, const NodeBasis &basis);
// Takes it over, after the bounds were changed. The record is fresh after that only if it was and the bases are near.
[[nodiscard]] int live_load_basis(sopt *s, const NodeBasis &basis);
// live_negate.cpp. Column j changes its sign; the LP stays the same.
template<class R> void live_negate(sopt *s, swork<R> *w, int j);
// resolve.cpp, also for strong branching
// Whether reduced costs of the wrong sign within OptTol put the objective visibly above the optimum. OptTol is then
// reduced, for this and later solves of the record, and the primal simplex has to continue.
template<class R> bool live_tighten_signs(sopt *s, swork<R> *w);
template<class R>
void live_begin(sopt *s, swork<R> *w,
                double iteration_limit); // counters and guards of a solve
// From SIMPLEX_SWITCH on; after an optimum again, as long as live_tighten_signs asks for it.
template<class R> [[nodiscard]] int live_run_primal(sopt *s, swork<R> *w);

// dual_free.cpp
template<class R> [[nodiscard]] int dual_enter_free(sopt *s, swork<R> *w); // needs Cbar

// dual_row.cpp
template<class R> void dual_list_reset(sopt *s, swork<R> *w); // recomputes all merits
template<class R> void dual_set_merit(sopt *s, swork<R> *w, int i);
// Merits of the rows listed in `changed`.
template<class R> void dual_set_merits(sopt *s, swork<R> *w, const SVec<R> *changed);

// dual_weights.cpp
// Start weights; needs factors, and a limit may stop it.
template<class R> void dual_weights_start(sopt *s, swork<R> *w);
// Weights by variable before a refactorisation changes positions, and back after it.
template<class R> void dual_weights_save(sopt *s, swork<R> *w);
template<class R> void dual_weights_restore(sopt *s, swork<R> *w);
template<class R> void dual_weights_keep(sopt *s, swork<R> *w); // for the next run
// WeightOf belongs to the current basis.
template<class R> bool dual_weights_kept(const sopt *s, const dopt<R> *d);
// Steepest edge weight of row PivotRow, computed from Rho.
template<class R> R dual_true_weight(const swork<R> *w);
// Called before the basis changes.
template<class R> void dual_update_weights(sopt *s, swork<R> *w);
template<class R> void dual_change_pricing(sopt *s, swork<R> *w); // between factorisations

// dual_ratio.cpp
// PivotCol, AlphaRow and Flips, from row entries above floor; false if no breakpoint makes the slope negative.
template<class R> bool dual_ratio(sopt *s, swork<R> *w, R floor);

// dual_bound.cpp
// Lower bound of the optimum for the true costs, in user units without ObjOffset; -HUGE_VAL: none. dual_bound uses the
// multipliers for the costs in force, the other those for the true costs (RowVal, Work, Tau are used).
template<class R> double dual_bound(sopt *s, swork<R> *w);
template<class R> double dual_bound_true_costs(sopt *s, swork<R> *w);
// By how much the reduced cost of j has the wrong sign; not positive if it has none.
template<class R> double dual_sign_gap(const sopt *s, const swork<R> *w, int j)
{
    const double d = static_cast<double>(w->Cbar.data[j]);
    switch (s->VStat.data[j]) {
    case AT_LOWER:
        return -d;
    case AT_UPPER:
        return d;
    case AT_FREE:
        return std::fabs(d);
    default:
        return 0;
    }
}
// Counts the gap of one more reduced cost in SignError or SignOpen.
inline void dual_count_sign(sopt *s, int j, double gap)
{
    if (gap <= 0) return;
    const double range = s->WorkUpper.data[j] - s->WorkLower.data[j];
    if (counts_range(s, j, range, s->ValueSize))
        s->SignError += gap * range;
    else
        s->SignOpen += gap;
}
// By how much DualObj may exceed the optimum through reduced costs of the wrong sign; 0 if nobody would see it.
constexpr double SIGN_TRUST = 1e-7; // share of 1 + |objective|
inline double dual_error_limit(const sopt *s)
{
    return SIGN_TRUST * (s->ObjScale + std::fabs(s->DualObj));
}
inline double dual_visible_error(const sopt *s)
{
    const double error = s->SignError + (s->SignOpen > 0 ? s->SignOpen * s->ValueSize : 0);
    return error > dual_error_limit(s) ? error : 0;
}
// Rounding errors of a live record's values or reduced costs above this share of the tolerance: they are computed anew
// before an optimum is reported.
constexpr double NOISE_SHARE = 0.01;
inline bool dual_is_noisy(const sopt *s)
{
    return s->Live && (s->ValueNoise > NOISE_SHARE * s->FeasTol ||
                       s->DualNoise > NOISE_SHARE * s->OptTol);
}
// SignError, SignOpen and ValueSize of the reduced costs and values as they are.
template<class R> void dual_count_signs(sopt *s, const swork<R> *w);
template<class R>
void dual_set_objective(sopt *s, const swork<R> *w); // DualObj, SignError, CutoffFrom
template<class R> void dual_test_cutoff(sopt *s, swork<R> *w); // sets Status, or CutoffFrom

// dual_update.cpp
inline void dual_add_objective(sopt *s, double term)
{
    s->DualObj += term;
    s->DualObjSum += std::fabs(term);
}
// Cbar -= theta times the packed row, for the slacks of equations times Rho.
template<class R> void dual_subtract_row(const sopt *s, swork<R> *w, R theta);
template<class R>
void dual_add_column(const sopt *s, SVec<R> *x, int j, R factor); // x += factor * column j
template<class R>
void dual_move_values(sopt *s, swork<R> *w); // Bbar -= Work, which is cleared; merits
template<class R> void dual_load_flips(sopt *s, swork<R> *w); // into Work, before its FTRAN
template<class R> void dual_apply_flips(sopt *s, swork<R> *w);   // Bbar, from Work after it
template<class R> void dual_update_values(sopt *s, swork<R> *w); // Bbar, merits, Cbar
