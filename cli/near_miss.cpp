// near_miss.cpp -- the name that somebody who mistyped probably meant
//
// Method   The number of letters to insert, delete, replace or swap with a neighbour, by the usual table; near is what
//          needs no more than one in three of them, and fewer than the word has. A name of which the word is a
//          beginning is near as well.
#include "near_miss.h"
#include "arguments.h"
#include "env/parameter_texts.h"
#include <algorithm>

namespace
{
constexpr size_t LETTERS_PER_SLIP = 3;
constexpr size_t LONGEST_WORD = 64;   // longer ones resemble no name
constexpr size_t LEAST_BEGINNING = 3; // shorter ones begin too many names

// cost[i][j] leads from the first i letters of a to the first j letters of b.
size_t slips(const std::string &a, const std::string &b)
{
    std::vector<std::vector<size_t>> cost(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); i++) {
        for (size_t j = 0; j <= b.size(); j++) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const size_t other = a[i - 1] != b[j - 1];
            cost[i][j] = std::min(
                {cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + other});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
        }
    }
    return cost[a.size()][b.size()];
}
} // namespace

std::string nearest_name(const std::string &word, const std::vector<std::string> &names)
{
    const std::string key = name_key(word);
    std::string best;
    if (key.size() > LONGEST_WORD) return best;
    size_t least = std::max<size_t>(1, key.size() / LETTERS_PER_SLIP) + 1;
    for (const std::string &name : names) {
        const std::string other = name_key(name);
        const bool begins = key.size() >= LEAST_BEGINNING && other.starts_with(key);
        const size_t count = begins ? 1 : slips(key, other);
        if (count >= least || count >= key.size()) continue;
        least = count;
        best = name;
    }
    return best;
}

std::string nearest_hint(const std::string &word, const std::vector<std::string> &names)
{
    const std::string near = nearest_name(word, names);
    return near.empty() ? "" : "; did you mean '" + near + "'?";
}

std::string unknown_name(const std::string &kind, const std::string &name,
                         const std::vector<std::string> &names)
{
    return "there is no " + kind + " '" + name + "'" + nearest_hint(name, names) +
           "; tarvex --" + kind + "s lists them";
}

const std::vector<std::string> &parameter_names()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const ParameterText &text : parameter_texts::rows)
            if (!std::string_view(text.name).starts_with("TARV_"))
                all.emplace_back(text.name);
        return all;
    }();
    return names;
}
