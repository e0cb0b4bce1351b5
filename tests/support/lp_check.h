// lp_check.h -- the one checker that decides whether a solution of an LP is optimal
//
// Problem     Given the test's own copy of a model and what a solver reports (X, Pi, RC, Slack, basis, ObjVal): is
//             it an optimal basic solution?
// Method      The optimality conditions, each by itself, sums in long double:
//               primal    bounds and rows hold
//               dual      sense*Pi <= 0 in '<' rows, >= 0 in '>' rows; RC = obj - Pi A; sense*RC >= 0 unless the
//                         variable is at its upper bound, <= 0 unless at its lower bound
//               gap       primal value = dual value; Pi and RC are 0 away from the end that they price
//               reports   Slack = rhs - a x, ObjVal = objcon + obj x, nothing is NaN
//               basis     as many basics as rows, nonbasics at their bounds, the basis matrix is regular
// Tolerances  A violation passes within the tolerance in the units of the model, or relative to the bound or rhs.
// Out         One line of text per fault; none means optimal.
#pragma once
#include "support/dense.h"
#include "support/lp_model.h"
#include <string>
#include <vector>

struct LpSolution {
    int status = 0;                // Status attribute
    double objval = 0;             // ObjVal
    double iterations = 0;         // IterCount
    std::vector<double> x, rc;     // [n]
    std::vector<double> pi, slack; // [m]
    bool has_basis = false;
    std::vector<int> vbasis, cbasis; // [n], [m]: 0 basic, -1 lower, -2 upper, -3 superbasic
};

struct LpTolerances {
    double primal = 1e-6; // FeasibilityTol of the run
    double dual = 1e-6;   // OptimalityTol of the run
    double gap = 1e-6;    // relative to 1 + |value| + the largest term of the objective
    double report = 1e-9; // Slack, RC and ObjVal, relative to the largest term of their sum
};

std::string lp_check_optimal(const LpModel *lp, const LpSolution *solution,
                             const LpTolerances &tolerances);
// Basic columns, then those of basic slacks; signs do not matter.
Matrix basis_matrix(const LpModel *lp, const LpSolution *solution);
