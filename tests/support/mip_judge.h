// mip_judge.h -- is the answer to a MIP whose truth is known the right one, under these settings?
#pragma once
#include "support/mip_check.h"
#include "support/mip_oracle.h"

// What is wrong, or "". `factor`: the objective given is that of the truth times this number (data scaled after the truth
// was found). Limits among the settings, and `interrupted`, allow their statuses; whatever the status, ObjVal and
// ObjBound must enclose the truth. Of an unknown truth only mip_check speaks.
std::string mip_judge(const LpModel *lp, const MipTruth *truth, const Settings &settings,
                      const MipAnswer *answer, double factor = 1, bool interrupted = false);
