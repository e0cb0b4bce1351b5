// status.cpp -- how a solve ended, in words, and numbers as text
#include "status.h"
#include "tarvex.h"
#include <charconv>
#include <cmath>

namespace
{
struct StatusName {
    int status;
    const char *text; // for people
    const char *word; // for programs
};
constexpr StatusName STATUS_NAMES[] = {
    {TVX_LOADED, "not solved", "loaded"},
    {TVX_OPTIMAL, "optimal", "optimal"},
    {TVX_INFEASIBLE, "infeasible", "infeasible"},
    {TVX_INF_OR_UNBD, "infeasible or unbounded", "infeasible_or_unbounded"},
    {TVX_UNBOUNDED, "unbounded", "unbounded"},
    {TVX_CUTOFF, "objective worse than Cutoff", "cutoff"},
    {TVX_ITERATION_LIMIT, "iteration limit", "iteration_limit"},
    {TVX_NODE_LIMIT, "node limit", "node_limit"},
    {TVX_TIME_LIMIT, "time limit", "time_limit"},
    {TVX_SOLUTION_LIMIT, "solution limit", "solution_limit"},
    {TVX_INTERRUPTED, "interrupted", "interrupted"},
    {TVX_NUMERIC, "numeric trouble", "numeric_trouble"},
    {TVX_SUBOPTIMAL, "suboptimal", "suboptimal"},
};

const StatusName &names_of(int status)
{
    static constexpr StatusName UNKNOWN = {0, "unknown status", "unknown"};
    for (const StatusName &name : STATUS_NAMES)
        if (name.status == status) return name;
    return UNKNOWN;
}
} // namespace

const char *status_text(int status)
{
    return names_of(status).text;
}

const char *status_word(int status)
{
    return names_of(status).word;
}

std::string number_text(double value)
{
    if (std::fabs(value) >= TVX_INFINITY) return value > 0 ? "inf" : "-inf";
    char text[32];
    const auto [end, code] = std::to_chars(text, text + sizeof text, value);
    return code == std::errc() ? std::string(text, end) : "?";
}
