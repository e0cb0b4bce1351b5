// mip_check.h -- the judge of a MIP answer, by the model as the caller gave it and the public interface alone
//
// Problem     What does the library say of a model with types and sets, and can it be true?
// Method      Each statement by itself, sums in long double:
//               point     rows and bounds hold, integers are integers, a semi-continuous value is 0 or within its
//                         bounds, members outside the window of a set are 0; so for every further solution
//               reports   ObjVal and Slack are what X makes them; values exist under the statuses that have them
//               bound     ObjBound is on its side of ObjVal; under status 2 within the gap
// Bounds      Those that count: of B, I and N rounded inwards, a fraction of 1e-5 forgiven; of B cut to 0 and 1.
// Out         One line of text per fault; none means that nothing speaks against the answer. Whether it is the right
//             one is for mip_judge.h to say, which knows the truth.
#pragma once
#include "support/lp_tarvex.h"
#include <string>
#include <vector>

struct MipAnswer {
    int code = 0;           // of TVXoptimize, or of a query that must not fail
    int status = 0;         // Status
    int sol_count = 0;      // SolCount
    double nodes = 0;       // NodeCount
    bool has_value = false; // ObjVal and ObjBound exist
    double objval = 0, objbound = 0;
    bool has_point = false;       // X and Slack exist
    std::vector<double> x, slack; // [n], [m]
    std::vector<std::vector<double>>
        others; // further solutions, by SolutionNumber 1, 2, ...
};

struct MipTolerances {
    double rows =
        1e-6; // FeasibilityTol of the run: rows and bounds, and what counts as 0 in a set
    double integer = 1e-5;  // IntFeasTol of the run
    double report = 1e-9;   // ObjVal and Slack, relative to the largest term of their sum
    double gap = 1e-4;      // MIPGap of the run
    double gap_abs = 1e-10; // MIPGapAbs of the run
};
MipTolerances mip_tolerances(const Settings &settings);

// Of the last setting with this name.
double setting_value(const Settings &settings, const char *wanted, double otherwise);
// The bounds that count; types and sets stay.
LpModel mip_rounded(const LpModel *lp);

// TVXoptimize, and everything about its outcome.
MipAnswer mip_optimize(TVXmodel *model);
MipAnswer mip_read(TVXmodel *model);

std::string mip_check_point(const LpModel *lp, const std::vector<double> &x,
                            const MipTolerances &tolerances);
std::string mip_check(const LpModel *lp, const MipAnswer *answer,
                      const MipTolerances &tolerances);
