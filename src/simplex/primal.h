// primal.h -- popt, what only the primal simplex needs, and the steps of its iteration
#pragma once
#include "simplex/price_list.h"
#include "simplex/sopt.h"

// Where a basic variable stands against its working bounds.
enum RowState : signed char { ROW_BELOW = -1, ROW_FEASIBLE = 0, ROW_ABOVE = 1 };

// Kinds of partial pricing, as TARV_PAR_PRIMALPARTIAL names them; 0 leaves the choice.
enum PartialKind { PARTIAL_ROTATING = 1, PARTIAL_MULTIPLE = 2, PARTIAL_BUCKET = 3 };
static constexpr int PRICE_CLASSES = 50; // of bucket pricing

template<class R> struct popt {
    // Column prices
    int PricingCur = PRICE_DEVEX; // pricing in force
    int PricingFixed = 0;         // the caller chose it
    int NewWeights = 0; // weights are to be made for the basis of the next refresh
    int WeightAge =
        -1; // BasisAge and Pivots of the basis to which exact Weights belong; -1 none
    double WeightPivots = -1;
    double PricingSince = 0; // iteration of the last change of pricing
    double AvgSpike = 0;     // length, in the last cycle between factorisations
    double AvgRow = 0;     // entries of the matrix that a pivot row would have touched then
    double RhoEntries = 0; // of rows of the inverse, and their number, in this cycle
    double RhoCount = 0;
    double NormWork = 0;   // effort spent on exact weights alone
    double WorkStart = 0;  // effort of the whole solve when that count began
    Array<R> Weights;      // [NumVars] weights of the nonbasics: squared lengths of edges
    Array<char> Reference; // [NumVars] variable belongs to the reference framework
    PriceList<R> Columns;  // [NumVars] nonbasics by reduced cost^2 / weight
    int BadWeights = 0;    // weights found far off since the framework was set

    // Partial pricing
    int PricingKind = PARTIAL_MULTIPLE;
    Array<R> Pi;        // [m] duals of the phase
    int PriceStart = 0; // where the next window begins
    Array<int> AuxList; // [NumVars] multiple: candidates, first AuxCount
    int AuxCount = 0;
    R ListMerit = 0;      // best merit when the list was made
    Array<int> ClassNext; // [NumVars] bucket: chains of the classes
    Array<char> InClass;  // [NumVars]
    int ClassHead[PRICE_CLASSES] = {}, ClassTail[PRICE_CLASSES] = {};
    int ClassAge = 0;     // choices
    double PriceWork = 0; // entries of priced columns

    // Phase 1 minimises the sum of infeasibilities (cost -1 below, +1 above) plus a share of the true costs
    int Phase1 = 0;
    double CostWeight = 0;       // that share; 0 once it stands in the way of feasibility
    Array<signed char> RowState; // [m] by position
    Array<double> PhaseCost;     // [NumVars] zero between uses
    SVec<R> CostChange;          // [m] change of phase-1 costs in this step

    // Ratio test: breakpoints
    Array<R> BreakStep;  // [2 m]
    Array<int> BreakRow; // [2 m] position; -1 - position: towards the upper bound
    int BreakCount = 0;

    // The iteration
    int PivotRow = -1;       // leaving position, -1 when the entering variable flips
    int PivotCol = -1;       // entering variable
    int Direction = 1;       // the entering variable rises (+1) or falls (-1)
    int ToUpper = 0;         // the leaving variable ends at its upper bound
    R Step = 0;              // of the entering variable, >= 0
    int Rejected = 0;        // columns set aside since the last factorisation
    Array<char> ColRejected; // [NumVars]
    double StallStart = 0;   // DegenCount and NPvt at the last look for stalling
    double StallIter = 0;
    double PerturbSize = 0; // of the next perturbation
    int PerturbPasses = 0;  // perturbations so far
    int SuperNext = 0;      // superbasics from here on are done
};

enum RatioResult { RATIO_PIVOT, RATIO_FLIP, RATIO_UNBOUNDED };

// primal.cpp
template<class R>
R primal_exact_cbar(const sopt *s,
                    const swork<R> *w); // of PivotCol, from its column in Alpha

// primal_super.cpp
template<class R> int primal_count_superbasics(sopt *s, swork<R> *w);
// PivotCol, Direction, Alpha of the next one; PivotCol -1 when none is left
template<class R> void primal_choose_superbasic(sopt *s, swork<R> *w);
template<class R>
void primal_settle_superbasic(sopt *s, swork<R> *w); // at a bound, whatever breaks

// primal_pricing.cpp
template<class R> void primal_choose_pricing(sopt *s, swork<R> *w); // at the start of a run
template<class R> void primal_review_pricing(sopt *s, swork<R> *w); // on fresh factors
template<class R> void primal_end_cycle(const sopt *s, swork<R> *w); // before they are made

// primal_price.cpp
template<class R>
void primal_start_weights(sopt *s, swork<R> *w); // needs factors; merits become stale
template<class R> void primal_list_reset(sopt *s, swork<R> *w);
template<class R> void primal_set_merit(sopt *s, swork<R> *w, int j);
template<class R>
void primal_update_weights(sopt *s, swork<R> *w, R pivot); // from Alpha and the packed row

// primal_partial.cpp
template<class R> void primal_partial_refresh(sopt *s, swork<R> *w); // from Cbar
template<class R> int primal_partial_choose(sopt *s, swork<R> *w);   // variable or -1
template<class R> void primal_partial_costs(sopt *s, swork<R> *w);   // Pi after CostChange
template<class R> void primal_partial_pivot(sopt *s, swork<R> *w, R pivot);

// primal_ratio.cpp
template<class R> RatioResult primal_ratio(sopt *s, swork<R> *w); // PivotRow, ToUpper, Step

// primal_update.cpp
template<class R>
int primal_classify(sopt *s,
                    swork<R> *w); // RowState of all rows; number of infeasible ones
template<class R>
void primal_move_basics(sopt *s, swork<R> *w); // Bbar, RowState and CostChange for the step
template<class R> void primal_apply_cost_change(sopt *s, swork<R> *w);

// primal_perturb.cpp
template<class R> bool primal_stalled(const sopt *s, popt<R> *p); // since the last look
template<class R> void primal_perturb(sopt *s, swork<R> *w);      // Bbar stays
void primal_remove_perturbation(sopt *s);
template<class R>
bool primal_shift_infeasible(sopt *s, swork<R> *w); // false: too far, nothing moved
template<class R> void primal_shift_blocking(sopt *s, swork<R> *w);
