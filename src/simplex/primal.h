// primal.h -- popt, the record of the primal simplex method, and the steps of its iteration
#pragma once
#include "simplex/price_list.h"
#include "simplex/sopt.h"

// A basic variable against its working bounds.
enum RowState : signed char { ROW_BELOW = -1, ROW_FEASIBLE = 0, ROW_ABOVE = 1 };

// Kinds of partial pricing: the values of TARV_PAR_PRIMALPARTIAL, where 0 is an automatic choice.
enum PartialKind { PARTIAL_ROTATING = 1, PARTIAL_MULTIPLE = 2, PARTIAL_BUCKET = 3 };
// classes of bucket pricing: powers of two of the merit
static constexpr int PRICE_CLASSES = 50;

template<class R> struct popt {
    // Pricing of the columns
    int PricingCur = PRICE_DEVEX; // pricing in force
    int PricingFixed = 0;         // the pricing was set by the parameter SimplexPricing
    int NewWeights = 0;           // the next refresh has to compute start weights
    // BasisAge and Pivots of the basis to which exact Weights belong; -1 none.
    int WeightAge = -1;
    double WeightPivots = -1;
    double PricingSince = 0; // NPvt at the last change of pricing
    // Means over the last cycle between two refactorisations: spike length, and entries of the matrix in the rows that
    // a full pivot row combines.
    double AvgSpike = 0;
    double AvgRow = 0;
    double RhoEntries = 0; // entries of the rows of the inverse in this cycle
    double RhoCount = 0;   // number of these rows
    double NormWork = 0;   // work spent on exact weights alone
    double WorkStart = 0;  // total work when NormWork was set to 0
    Array<R> Weights;      // [NumVars] weights of the nonbasics: squared lengths of edges
    Array<char> Reference; // [NumVars] variable is in the reference framework
    PriceList<R> Columns;  // [NumVars] merits of the nonbasics: reduced cost^2 / weight
    int BadWeights = 0;    // weights found inaccurate since the framework was set

    // Partial pricing
    int PricingKind = PARTIAL_MULTIPLE;
    Array<R> Pi;        // [m] duals of the phase
    int PriceStart = 0; // first variable of the next window
    Array<int> AuxList; // [NumVars] multiple: candidates, in the first AuxCount entries
    int AuxCount = 0;
    R ListMerit = 0;      // best merit when the list was made
    Array<int> ClassNext; // [NumVars] bucket: next member of the class
    Array<char> InClass;  // [NumVars] variable is in a class
    int ClassHead[PRICE_CLASSES] = {}, ClassTail[PRICE_CLASSES] = {}; // first, last member
    int ClassAge = 0;     // choices since all classes last rose by one
    double PriceWork = 0; // entries of priced columns

    // Phase 1 minimises the sum of infeasibilities (cost -1 below, +1 above) plus a share of the true costs
    int Phase1 = 0;
    double CostWeight = 0;       // that share; 0 once it prevents feasibility
    Array<signed char> RowState; // [m] by position
    Array<double> PhaseCost;     // [NumVars] costs of phase 1; zero between uses
    SVec<R> CostChange;          // [m] change of phase-1 costs in this step

    // Ratio test: breakpoints
    Array<R> BreakStep; // [2 m] step length
    // [2 m] basis position, or -1 - position: it reaches its upper bound
    Array<int> BreakRow;
    int BreakCount = 0;

    // The iteration
    int PivotRow = -1;       // leaving position, -1 when the entering variable flips
    int PivotCol = -1;       // entering variable
    int Direction = 1;       // the entering variable rises (+1) or falls (-1)
    int ToUpper = 0;         // the leaving variable becomes nonbasic at its upper bound
    R Step = 0;              // step length of the entering variable, >= 0
    int Rejected = 0;        // columns set aside since the last refresh
    Array<char> ColRejected; // [NumVars] column is set aside
    double StallStart = 0;   // DegenCount when primal_stalled last tested for a stall
    double StallIter = 0;    // NPvt then
    double PerturbSize = 0;  // size of the next perturbation
    int PerturbPasses = 0;   // perturbations so far
    int SuperNext = 0; // variables from this number on have been treated as superbasics
};

enum RatioResult { RATIO_PIVOT, RATIO_FLIP, RATIO_UNBOUNDED };

// primal_record.cpp
template<class R> [[nodiscard]] int popt_create(const sopt *s, popt<R> **out);

// primal_end.cpp
// Each sets Status, or RefacReason: no column to enter; no row for column PivotCol; a pivot that is not reliable.
template<class R> void primal_no_column(sopt *s, swork<R> *w);
template<class R> void primal_no_row(sopt *s, swork<R> *w);
template<class R> void primal_reject_column(sopt *s, swork<R> *w);

// primal_super.cpp
template<class R> int primal_count_superbasics(sopt *s, swork<R> *w);
// PivotCol, Direction, Alpha of the next superbasic variable; PivotCol -1 if none is left
template<class R> void primal_choose_superbasic(sopt *s, swork<R> *w);
// PivotCol goes to its nearest bound without a ratio test; basic variables may become infeasible.
template<class R> void primal_settle_superbasic(sopt *s, swork<R> *w);

// primal_pricing.cpp
template<class R> void primal_choose_pricing(sopt *s, swork<R> *w); // at the start of a run
template<class R> void primal_review_pricing(sopt *s, swork<R> *w); // on fresh factors
template<class R> void primal_end_cycle(const sopt *s, swork<R> *w); // before a refresh

// primal_price.cpp
// Needs factors; the merits have to be recomputed afterwards.
template<class R> void primal_start_weights(sopt *s, swork<R> *w);
template<class R> void primal_list_reset(sopt *s, swork<R> *w);
template<class R> void primal_set_merit(sopt *s, swork<R> *w, int j);
// Reduced cost of PivotCol, from its column in Alpha.
template<class R> R primal_exact_cbar(const sopt *s, const swork<R> *w);
// From Alpha and the packed row.
template<class R> void primal_update_weights(sopt *s, swork<R> *w, R pivot);

// primal_partial.cpp
template<class R> void primal_partial_refresh(sopt *s, swork<R> *w); // from Cbar
template<class R> int primal_partial_choose(sopt *s, swork<R> *w);   // variable or -1
template<class R> void primal_partial_costs(sopt *s, swork<R> *w);   // Pi after CostChange
template<class R> void primal_partial_pivot(sopt *s, swork<R> *w, R pivot);

// primal_ratio.cpp
template<class R> RatioResult primal_ratio(sopt *s, swork<R> *w); // PivotRow, ToUpper, Step

// primal_update.cpp
// Sets RowState of all rows. The number of infeasible rows.
template<class R> int primal_classify(sopt *s, swork<R> *w);
// Bbar, RowState and CostChange for the step.
template<class R> void primal_move_basics(sopt *s, swork<R> *w);
template<class R> void primal_apply_cost_change(sopt *s, swork<R> *w);

// primal_perturb.cpp
// Nearly all iterations since the last test were degenerate.
template<class R> bool primal_stalled(const sopt *s, popt<R> *p);
template<class R> void primal_perturb(sopt *s, swork<R> *w); // does not change Bbar
void primal_remove_perturbation(sopt *s);
// False if an infeasibility is too large; then no bound is shifted.
template<class R> bool primal_shift_infeasible(sopt *s, swork<R> *w);
template<class R> void primal_shift_blocking(sopt *s, swork<R> *w);
