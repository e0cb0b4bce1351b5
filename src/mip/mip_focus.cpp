// mip_focus.cpp -- MIPFocus as presets of other parameters, for the length of one solve
//
// Method   A preset changes a parameter only where it still has its default, so that what a caller has
//          chosen stands.
#include "mip/mip.h"

template<class T> struct Preset {
    int focus;        // value of MIPFocus
    T TVXenv::*field; // the parameter
    T default_value;  // changed only from this
    T preset;
};

// clang-format off
static constexpr Preset<int> int_presets[] = {
    {1, &TVXenv::Cuts,             -1, 1},
    {1, &TVXenv::TARV_PAR_CUTPASS, -1, 5},
    {1, &TVXenv::VarBranch,        -1, 1},
    {1, &TVXenv::RINS,             -1, 100},
    {2, &TVXenv::Cuts,             -1, 2},
    {2, &TVXenv::Presolve,         -1, 2},
    {3, &TVXenv::Cuts,             -1, 3},
    {3, &TVXenv::CutAggPasses,     -1, 20},
    {3, &TVXenv::Presolve,         -1, 2},
};
static constexpr Preset<double> double_presets[] = {
    {1, &TVXenv::Heuristics,          0.05, 0.2},
    {1, &TVXenv::TARV_PAR_CUTORTHTOL, 0.95, 0.8},
    {2, &TVXenv::TARV_PAR_CUTORTHTOL, 0.95, 0.99},
    {3, &TVXenv::TARV_PAR_ASPIRE,     1.0,  0.2},
    {3, &TVXenv::TARV_PAR_CUTORTHTOL, 0.95, 0.99},
};
// clang-format on

static constexpr int AGGRESSIVE_CUTS =
    2; // Cuts from which without focus cuts may be more alike
static constexpr Preset<double> aggressive_cuts_preset = {0, &TVXenv::TARV_PAR_CUTORTHTOL,
                                                          0.95, 0.99};

template<class T> static void apply(TVXenv *env, const Preset<T> &preset)
{
    if (preset.focus != env->MIPFocus) return;
    T *value = &(env->*preset.field);
    if (*value == preset.default_value)
        *value = preset.preset; // was assigned, compares exactly
}

void mip_focus_apply(TVXenv *env)
{
    if (env->Cuts >= AGGRESSIVE_CUTS) apply(env, aggressive_cuts_preset);
    for (const Preset<int> &preset : int_presets) apply(env, preset);
    for (const Preset<double> &preset : double_presets) apply(env, preset);
}
