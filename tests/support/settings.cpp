// settings.cpp -- the choices; see the header
#include "support/settings.h"
#include <sstream>

namespace
{
struct Choice {
    const char *name;
    int percent; // how often it is drawn at all
    std::vector<double> values;
};
} // namespace

// clang-format off
static const std::vector<Choice> CHOICES = {
    {"LPMethod", 100, {0, 1}}, {"Presolve", 50, {-1, 0, 0, 0, 1, 2}}, {"SimplexPricing", 35, {-1, 0, 1, 2, 3}},
    {"NormAdjust", 20, {-1, 0, 1, 2, 3}}, {"ScaleFlag", 30, {0, 1}}, {"ObjScale", 25, {-1, -0.5, 0, 1, 8, 1000}},
    {"PerturbValue", 30, {0, 0, 1e-5, 0.0002, 0.01}}, {"Quad", 15, {-1, 0, 1}}, {"PreDual", 25, {-1, 0, 0, 1}},
    {"TARV_PAR_DUALREDUCTION", 15, {0}}, {"FeasibilityTol", 10, {1e-9, 1e-7}}, {"OptimalityTol", 10, {1e-9, 1e-7}},
    {"MarkowitzTol", 10, {0.0001, 0.1, 0.9}}, {"TARV_PAR_SIMPLEXPWRATIO", 25, {0, 1}},
    {"TARV_PAR_PRIMALPARTIAL", 25, {0, 1, 2, 3}}, {"TARV_PAR_EXACTNORM", 25, {-1, 0, 1}},
    {"TARV_PAR_NONDEGENFLIP", 25, {0, 1}}, {"TARV_PAR_ALTSCALE", 15, {0, 1}},
    {"TARV_PAR_PRIMDUALSWITCH", 15, {-1, 0, 1}}, {"TARV_PAR_STMPFIXES", 10, {0, 1, 100}},
    {"TARV_PAR_UNSCALEDVIO", 15, {-2, -1, 0, 1}}, {"TARV_PAR_SIMPLEXENDFAC", 10, {0, 1}},
    {"TARV_PAR_WARMBASIS", 10, {-1, 0, 1, 2, 3}}, {"TARV_PAR_SIMPLEXALLOCS", 10, {1, 5}},
    {"TARV_PAR_INTBASIS", 10, {0, 1, 2, 3}}, {"TARV_PAR_SDISPINTERVAL", 10, {0, 1, 10}}};
// clang-format on

static const std::vector<Choice> MIP_CHOICES = {
    {"Presolve", 60, {-1, 0, 0, 1, 2}},
    {"TARV_PAR_DUALREDUCTION", 15, {0}},
    {"TARV_PAR_PREPROBE", 20, {0, 1, 2}},
    {"TARV_PAR_PRECLIQUE", 15, {0, 1, 2}},
    {"TARV_PAR_PREDUALSLACK", 15, {0, 1}},
    {"TARV_PAR_PRETWOROWS", 15, {-1, 0, 1, 2}},
    {"TARV_PAR_PRESUBROW", 15, {0, 1}},
    {"TARV_PAR_PRECOEFFICIENT", 15, {0, 1}},
    {"TARV_PAR_PREPARALLEL", 10, {0, 1}},
    {"TARV_PAR_IMPLIEDINT", 15, {0, 1}},
    {"TARV_PAR_NETIMPLIED", 40, {1}},
    {"TARV_PAR_DISJOINT", 15, {0, 1}},
    {"Aggregate", 15, {0, 1}},
    {"PrePasses", 15, {0, 1, 3}},
    {"VarBranch", 40, {-1, 0, 1, 2, 3}},
    {"MIPFocus", 25, {0, 1, 2, 3}},
    {"TARV_PAR_NODEPRE", 40, {0, 1, 2}},
    {"TARV_PAR_INFPROP", 15, {0, 1}},
    {"Symmetry", 30, {-1, 0, 1, 2}},
    {"TARV_PAR_MIPLIM", 50, {0, 1, 2, 5, 20}}, // restarts happen in small trees
    {"Cuts", 50, {-1, 0, 1, 2, 3}},
    {"TARV_PAR_CUTPASS", 15, {0, 1, 10}},
    {"GomoryPasses", 15, {0, 1, 5}},
    {"Heuristics", 50, {0, 0.05, 0.5}},
    {"RINS", 15, {0, 1, 10}},
    {"PumpPasses", 15, {1, 5}},
    {"SubMIPNodes", 10, {0, 1, 50}},
    {"RootMethod", 20, {0, 1, 2}},
    {"Threads", 25, {1, 2, 4}},
    {"IntFeasTol", 20, {1e-9, 1e-7, 1e-5}},
    {"FeasibilityTol", 10, {1e-9, 1e-7}},
    {"MIPGap", 40, {0, 0, 1e-4, 0.05}},
    {"MIPGapAbs", 20, {0, 0.5}},
    {"NodefileStart", 5, {0}},
    {"Quad", 5, {0, 1}},
    {"ScaleFlag", 10, {0}},
    {"ObjScale", 10, {-0.5, 1}},
};

static Settings draw(Dice *dice, const std::vector<Choice> &choices)
{
    Settings settings;
    if (dice->chance(15)) return settings; // the defaults
    for (const Choice &choice : choices)
        if (dice->chance(choice.percent))
            settings.emplace_back(choice.name, dice->pick(choice.values));
    return settings;
}

Settings settings_draw(Dice *dice)
{
    return draw(dice, CHOICES);
}

Settings mip_settings_draw(Dice *dice)
{
    return draw(dice, MIP_CHOICES);
}

std::vector<Settings>
settings_product(const std::vector<std::pair<const char *, std::vector<double>>> &choices,
                 const Settings &more)
{
    std::vector<Settings> all = {more};
    for (const auto &[name, values] : choices) {
        std::vector<Settings> longer;
        for (const Settings &way : all)
            for (const double value : values)
                longer.emplace_back(way).emplace_back(name, value);
        all = longer;
    }
    return all;
}

int settings_apply(TVXenv *env, const Settings &settings)
{
    for (const auto &[name, value] : settings) {
        const bool is_int = TVXgetparamtype(env, name.c_str()) == 1;
        const int error = is_int ? TVXsetintparam(env, name.c_str(), int(value))
                                 : TVXsetdblparam(env, name.c_str(), value);
        if (error) return error;
    }
    return 0;
}

std::string settings_text(const Settings &settings)
{
    std::ostringstream out;
    for (const auto &[name, value] : settings) out << name << " " << value << "\n";
    return out.str();
}
