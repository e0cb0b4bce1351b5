// solve_judge.h -- solve a model under settings and say what is wrong with the outcome
#pragma once
#include "support/lp_tarvex.h"
#include "support/rational_lp.h"
#include <string>

static constexpr double RUNAWAY_ITERATIONS = 20000; // tiny models that take more cycle

// What is wrong with an outcome of a model whose truth the exact judge knows; empty when all is right. With
// presolve on, status 4 is right for models without optimum (unless the objective is zero: then they can only
// be infeasible).
std::string judge_exact(const LpModel *lp, const RationalResult *truth, bool presolve,
                        const LpSolution *solution);
// The same under these settings, a cutoff among them perhaps.
std::string judge_outcome(const LpModel *lp, const RationalResult *truth,
                          const Settings &settings, const LpSolution *solution);
// An exact optimum as a solver would report it.
LpSolution exact_solution(const LpModel *lp, const RationalResult &exact);
// The checker's opinion of status 2, under the tolerances of the default parameters.
std::string judge_optimal(const LpModel *lp, const LpSolution *solution);
// A fresh model, the settings and one solve, judged exactly.
std::string solve_and_judge(TVXenv *env, const LpModel *lp, const RationalResult *truth,
                            const Settings &settings);

// Do two outcomes of the same model agree? Status 4 goes with 3 and 5. Empty, or the difference.
std::string same_outcome(const LpSolution *a, const LpSolution *b);
