// parameter_table.h -- every parameter, once: name, range, default, in table order
//
// The environment's fields, the run-time table and the reference pages are all generated from these rows.
//   INT(name, minimum, maximum, default)   DBL(name, minimum, maximum, default)   STR(name, default)
// The default of Threads is replaced by the processor count when the table is built.
#pragma once

// clang-format off
#define PUBLIC_PARAMETERS(INT, DBL, STR)                                                  \
    DBL(Cutoff, -1e100, 1e100, 1e100)                                                     \
    DBL(IterationLimit, 0, 1e100, 1e100)                                                  \
    DBL(NodeLimit, 0, 1e100, 1e100)                                                       \
    INT(SolutionLimit, 1, 2000000000, 2000000000)                                         \
    DBL(TimeLimit, 0, 1e100, 1e100)                                                       \
    DBL(FeasibilityTol, 1e-09, 0.01, 1e-06)                                               \
    DBL(IntFeasTol, 1e-09, 0.1, 1e-05)                                                    \
    DBL(MarkowitzTol, 0.0001, 0.999, 0.0078125)                                           \
    DBL(MIPGap, 0, 1e100, 0.0001)                                                         \
    DBL(MIPGapAbs, 0, 1e100, 1e-10)                                                       \
    DBL(OptimalityTol, 1e-09, 0.01, 1e-06)                                                \
    INT(LPMethod, 0, 2, 1)                                                                \
    DBL(PerturbValue, 0, 0.01, 0.0002)                                                    \
    DBL(ObjScale, -1, 1e100, 0)                                                           \
    INT(ScaleFlag, 0, 1, 1)                                                               \
    INT(SimplexPricing, -1, 3, -1)                                                        \
    INT(Quad, -1, 1, -1)                                                                  \
    INT(NormAdjust, -1, 3, -1)                                                            \
    INT(BarIterLimit, 0, 2000000000, 2000000000)                                          \
    DBL(BarConvTol, 1e-10, 1, 1e-08)                                                      \
    INT(BarCorrectors, -1, 2000000000, -1)                                                \
    INT(BarOrder, -1, 1, -1)                                                              \
    INT(Crossover, -1, 4, -1)                                                             \
    INT(CrossoverBasis, 0, 1, 0)                                                          \
    DBL(Heuristics, 0, 1, 0.05)                                                           \
    INT(PumpPasses, 0, 2000000000, 0)                                                     \
    INT(RINS, -1, 2000000000, -1)                                                         \
    INT(SubMIPNodes, 0, 2000000000, 500)                                                  \
    DBL(NodefileStart, 0, 1e100, 1e100)                                                   \
    STR(NodefileDir, ".")                                                                 \
    INT(VarBranch, -1, 3, -1)                                                             \
    INT(RootMethod, 0, 2, 1)                                                              \
    INT(Symmetry, -1, 2, -1)                                                              \
    INT(MIPFocus, 0, 3, 0)                                                                \
    INT(SolutionNumber, 0, 2000000000, 0)                                                 \
    INT(Cuts, -1, 3, -1)                                                                  \
    INT(CliqueCuts, -1, 2, -1)                                                            \
    INT(CoverCuts, -1, 2, -1)                                                             \
    INT(CutAggPasses, -1, 2000000000, -1)                                                 \
    INT(FlowCoverCuts, -1, 2, -1)                                                         \
    INT(FlowPathCuts, -1, 2, -1)                                                          \
    INT(GomoryPasses, -1, 2000000000, -1)                                                 \
    INT(GUBCoverCuts, -1, 2, -1)                                                          \
    INT(ImpliedCuts, -1, 2, -1)                                                           \
    INT(MIPSepCuts, -1, 2, -1)                                                            \
    INT(MIRCuts, -1, 2, -1)                                                               \
    INT(NetworkCuts, -1, 2, -1)                                                           \
    INT(SubMIPCuts, -1, 2, -1)                                                            \
    INT(ZeroHalfCuts, -1, 2, -1)                                                          \
    INT(Aggregate, 0, 1, 1)                                                               \
    INT(AggFill, 0, 2000000000, 10)                                                       \
    INT(PreDual, -1, 2, -1)                                                               \
    INT(DisplayInterval, 1, 2000000000, 5)                                                \
    INT(IISMethod, -1, 1, -1)                                                             \
    STR(LogFile, "")                                                                      \
    INT(PreCrush, 0, 1, 0)                                                                \
    INT(PreDepRow, -1, 1, -1)                                                             \
    INT(PrePasses, -1, 2000000000, -1)                                                    \
    INT(Presolve, -1, 2, -1)                                                              \
    STR(ResultFile, "")                                                                   \
    INT(Threads, -1, 1024, 0)                                                             \
    STR(Dummy, "")                                                                        \
    INT(OutputFlag, 0, 1, 1)

// Tuning knobs for experts and inner solves; reached by full name only, never listed.
#define HIDDEN_PARAMETERS(INT, DBL, STR)                                                  \
    DBL(TARV_PAR_VTIMELIMIT, 0, 1e100, 1e100)                                             \
    INT(TARV_PAR_PRELIMIT, 0, 2000000000, 2000000000)                                     \
    INT(TARV_PAR_DUMP, 0, 1, 0)                                                           \
    DBL(TARV_PAR_INFBOUND, 1000000, 1e100, 1e+30)                                         \
    INT(TARV_PAR_PRIMDUALSWITCH, -1, 1, 1)                                                \
    DBL(TARV_PAR_ZERO, 1e-16, 1e-10, 1e-13)                                               \
    DBL(TARV_PAR_PIVOTTOL, 1e-10, 1e-06, 3e-08)                                           \
    DBL(TARV_PAR_ASPIRE, 0, 1, 1)                                                         \
    DBL(TARV_PAR_BIGTOL, 1e-09, 0.0001, 3e-06)                                            \
    DBL(TARV_PAR_BIGM, 10000, 10000000000000, 1000000)                                    \
    DBL(TARV_PAR_SOSBRRAT, 0, 1e100, 1)                                                   \
    INT(TARV_PAR_DUALREDUCTION, 0, 1, 1)                                                  \
    INT(TARV_PAR_SIMPLEXPWRATIO, 0, 1, 1)                                                 \
    INT(TARV_PAR_PRIMALPARTIAL, 0, 3, 0)                                                  \
    INT(TARV_PAR_SIMPLEXENDFAC, 0, 1, 1)                                                  \
    INT(TARV_PAR_EXACTNORM, -1, 1, -1)                                                    \
    INT(TARV_PAR_WARMBASIS, -1, 3, -1)                                                    \
    INT(TARV_PAR_SUBMIP, 0, 1, 0)                                                         \
    INT(TARV_PAR_MIPLIM, 0, 2000000000, 510)                                              \
    INT(TARV_PAR_NODEPRE, 0, 2, 2)                                                        \
    INT(TARV_PAR_CUTPASS, -1, 2000000000, -1)                                             \
    DBL(TARV_PAR_CUTGROWTH, 1, 1e100, 5)                                                  \
    DBL(TARV_PAR_CUTORTHTOL, 0, 1, 0.95)                                                  \
    INT(TARV_PAR_DEGENMOVES, 0, 2000000000, 5)                                            \
    INT(TARV_PAR_IMPLIEDINT, 0, 1, 1)                                                     \
    INT(TARV_PAR_NETIMPLIED, 0, 1, 0)                                                     \
    INT(TARV_PAR_PREPROBE, 0, 2, 1)                                                       \
    INT(TARV_PAR_PREPROBE0, 0, 1, 1)                                                      \
    INT(TARV_PAR_PRETWOROWS, -1, 2, -1)                                                   \
    INT(TARV_PAR_PREBOUND, 0, 1, 1)                                                       \
    INT(TARV_PAR_PRECOEFFICIENT, 0, 1, 1)                                                 \
    INT(TARV_PAR_PRECLIQUE, 0, 2, 1)                                                      \
    INT(TARV_PAR_PRECLIQSUB, 0, 1, 0)                                                     \
    INT(TARV_PAR_PREDUALSLACK, 0, 1, 0)                                                   \
    INT(TARV_PAR_PREPARALLEL, 0, 1, 1)                                                    \
    INT(TARV_PAR_RELAXPREP, -1, 2, 0)                                                     \
    INT(TARV_PAR_PRESINGLECOL, -1, 3, -1)                                                 \
    INT(TARV_PAR_SIMPLEXALLOCS, 1, 2000000000, 5)                                         \
    INT(TARV_PAR_NONDEGENFLIP, 0, 1, 0)                                                   \
    INT(TARV_PAR_UNSCALEDVIO, -2, 1, -2)                                                  \
    INT(TARV_PAR_STMPFIXES, 0, 2000000000, 100)                                           \
    INT(TARV_PAR_WRITEPREMODEL, 0, 1, 0)                                                  \
    INT(TARV_PAR_INTBASIS, 0, 3, 0)                                                       \
    INT(TARV_PAR_SDISPINTERVAL, 0, 2000000000, 0)                                         \
    INT(TARV_PAR_TVXCUT1, -1, 2, -1)                                                      \
    INT(TARV_PAR_ALTSCALE, 0, 1, 0)                                                       \
    INT(TARV_PAR_PRESUBROW, 0, 1, 0)                                                      \
    INT(TARV_PAR_DISJOINT, 0, 1, 1)                                                       \
    INT(TARV_PAR_PREPOWER, 0, 1, 0)                                                       \
    INT(TARV_PAR_GREEDYHEUR, 0, 2000000000, 0)                                            \
    INT(TARV_PAR_QUICKDIVE, 0, 1, 0)                                                      \
    INT(TARV_PAR_NOIMPLIED, 0, 1, 0)                                                      \
    INT(TARV_PAR_BARLOOSE, 0, 1, 1)                                                       \
    INT(TARV_PAR_BARDENSEGS, 0, 1, 0)                                                     \
    INT(TARV_PAR_BARSTART, 0, 2, 0)                                                       \
    DBL(TARV_PAR_BARSAFE, 0, 1e100, 0)                                                    \
    INT(TARV_PAR_MASTERENVWARN, 0, 1, 1)                                                  \
    INT(TARV_PAR_INFPROP, 0, 1, 1)                                                        \
    INT(TARV_PAR_ITEST, -2000000000, 2000000000, 0)
// clang-format on
