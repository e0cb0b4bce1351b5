// settings.h -- parameter settings drawn at random, each recorded so that a failing run can be repeated
#pragma once
#include "support/dice.h"
#include "tarvex.h"
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

using Settings = std::vector<std::pair<std::string, double>>; // name, value

// Settings an LP solve must give the same answer under; most parameters stay at their default.
Settings settings_draw(Dice *dice);
// The same for a MIP solve: presolve, branching, cuts, heuristics, restarts, tolerances and gaps. No limits.
Settings mip_settings_draw(Dice *dice);
// Every combination of these values, in front of those in `more`.
std::vector<Settings>
settings_product(const std::vector<std::pair<const char *, std::vector<double>>> &choices,
                 const Settings &more = {});
int settings_apply(TVXenv *env, const Settings &settings); // 0 or the first code
std::string settings_text(const Settings &settings);       // one "name value" per line

// How long a random test runs, or its first seed: an environment variable of that name, for campaigns.
inline int campaign(const char *name, int otherwise)
{
    const char *text = getenv(name);
    return text ? atoi(text) : otherwise;
}
