// mps_warnings.cpp -- what an MPS read found odd and went on from: counted by kind, shown once at the end
//
// Problem     An attempt may be dropped and repeated in another form, and a damaged file may give a million warnings.
// Method      Warnings are counted, the first few of a kind with line and name, and shown when the reading is over.
#include "files/mps_warnings.h"

static constexpr char MORE_FREE_ROWS[] = "Warning: more than one unconstrainted rows,\n"
                                         "         the first one is used for objective.\n";
// In the order of MpsWarning.
static const char *const texts[MPS_WARNING_KINDS] = {
    MORE_FREE_ROWS,
    "Warning: no objective.\n",
    "Warning: marker is wrong.\n",
    "Warning: duplicate nonzeros.\n",
    "Warning: row name in column section not defined.\n",
    "Warning: a column stands in two places.\n",
    "Warning: duplicate row in rhs section.\n",
    "Warning: row name in rhs section not defined.\n",
    "Warning: rhs section not found.\n",
    "Warning: duplicate range rows.\n",
    "Warning: row name in ranges section not defined.\n",
    "Warning: range of a row with infinite right-hand side ignored.\n",
    "Warning: column name in bound section not defined\n",
    "Warning: duplicate bounds for a column.\n",
    "Warning: integer column with lower bound MI keeps its default upper bound 1.\n",
    "Warning: more than one set in rhs section, the first one is used.\n",
    "Warning: more than one set in ranges section, the first one is used.\n",
    "Warning: more than one set in bounds section, the first one is used.\n",
    "Warning: no constraints.\n",
    "Warning: no columns.\n"};

void mps_warn(MpsWarnings *warnings, MpsWarning kind, int64_t line, TextSpan name)
{
    const int k = static_cast<int>(kind);
    if (warnings->count[k] < MPS_WARNING_SHOWN)
        warnings->place[k][warnings->count[k]] = {line, name};
    warnings->count[k]++;
}

static void show_place(const MpsWarningPlace *place, TVXenv *env)
{
    static constexpr int NAME_SHOWN = 80;
    char name[NAME_SHOWN];
    text_printable(name, NAME_SHOWN, place->name);
    if (place->line)
        TVXmsg(env, "         line %lld: %s\n", static_cast<long long>(place->line), name);
    else if (*name)
        TVXmsg(env, "         %s\n", name);
}

void mps_warnings_show(const MpsWarnings *warnings, TVXenv *env)
{
    for (int k = 0; k < MPS_WARNING_KINDS; k++) {
        const int64_t count = warnings->count[k];
        if (count) TVXmsg(env, "%s", texts[k]);
        for (int64_t i = 0; i < count && i < MPS_WARNING_SHOWN; i++) {
            show_place(&warnings->place[k][i], env);
        }
        if (count > MPS_WARNING_SHOWN)
            TVXmsg(env, "         and %lld more\n",
                   static_cast<long long>(count - MPS_WARNING_SHOWN));
    }
}
