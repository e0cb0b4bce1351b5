// mps_warnings.cpp -- the texts of the warnings of the MPS reader
#include "files/mps_warnings.h"

namespace
{
constexpr char MORE_FREE_ROWS[] = "Warning: more than one unconstrainted rows,\n"
                                  "         the first one is used for objective.\n";

// In the order of MpsWarning.
const WarningText texts[] = {
    {MORE_FREE_ROWS},
    {"Warning: no objective.\n"},
    {"Warning: marker is wrong.\n"},
    {"Warning: duplicate nonzeros.\n"},
    {"Warning: row name in column section not defined.\n"},
    {"Warning: a column stands in two places.\n"},
    {"Warning: duplicate row in rhs section.\n"},
    {"Warning: row name in rhs section not defined.\n"},
    {"Warning: rhs section not found.\n"},
    {"Warning: duplicate range rows.\n"},
    {"Warning: row name in ranges section not defined.\n"},
    {"Warning: range of a row with infinite right-hand side ignored.\n"},
    {"Warning: column name in bound section not defined\n"},
    {"Warning: duplicate bounds for a column.\n"},
    {"Warning: integer column with lower bound MI keeps its default upper bound 1.\n"},
    {"Warning: bounds of a binary variable are cut to 0 and 1.\n"},
    {"Warning: more than one set in rhs section, the first one is used.\n"},
    {"Warning: more than one set in ranges section, the first one is used.\n"},
    {"Warning: more than one set in bounds section, the first one is used.\n"},
    {"Warning: no constraints.\n"},
    {"Warning: no columns.\n"}};
} // namespace

void mps_warnings_show(const ReadWarnings *warnings, TVXenv *env)
{
    static constexpr int KINDS = static_cast<int>(MpsWarning::COUNT_);
    static_assert(sizeof texts / sizeof *texts == KINDS);
    warnings_show(warnings, texts, KINDS, env);
}
