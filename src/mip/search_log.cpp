// search_log.cpp -- the lines of a search: nodes, solutions, progress
#include "mip/search_log.h"
#include "mip/search_callback.h"
#include "runtime/clock.h"
#include "runtime/text_number.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int COLUMN = 10, WIDE_COLUMN = 12; // characters of a number
constexpr int FIELD = 40;                    // bytes for one, with the longest number
constexpr double SAME_VALUE = 1e-10;         // incumbent and bound that meet
// Nodes explored after a restart until an open node of before counts no more.
constexpr double NODES_PER_OPEN = 3;
constexpr int NO_SAMPLE_DEPTH = 9;       // shown where no open node is known
constexpr double NO_RELATIVE_GAP = 1e-6; // incumbent too close to 0 for a percentage

double elapsed(const MIPState *state)
{
    return WallClock() - state->StartTime;
}

double tick(const MIPState *state)
{
    return std::floor(elapsed(state) / state->Env->DisplayInterval);
}

// Digits before the decimal point.
int digits_of(double value)
{
    return static_cast<int>(std::log10(std::fabs(value))) + 1;
}

// As many digits as the column has room for.
const char *number(double value, int width, char *text)
{
    const int few = width == WIDE_COLUMN ? 7 : 5, exponent = width == WIDE_COLUMN ? 5 : 3;
    const int digits = value == 0 ? 1 : digits_of(value);
    if (digits <= 3)
        text_format(text, FIELD, "%.*f", few, value);
    else if (digits <= 7)
        text_format(text, FIELD, "%.*f", width - 1 - digits - (value < 0), value);
    else if (text_format(text, FIELD, "%.*e", exponent, value) < width)
        text_format(text, FIELD, "%.*e", exponent + 1, value);
    return text;
}

const char *incumbent_text(const MIPState *state, int width, char *text)
{
    if (state->Pool.Incumbent >= UNDEFINED_VALUE) return "";
    return number(state->Body->sense * state->Pool.Incumbent, width, text);
}

const char *bound_text(const MIPState *state, char *text)
{
    const double bound = search_bound(state, true);
    if (bound >= UNDEFINED_VALUE) return "infeasible";
    if (bound <= -UNDEFINED_VALUE) return "";
    return number(state->Body->sense * bound, COLUMN, text);
}

const char *gap_text(const MIPState *state, char *text)
{
    const double incumbent = state->Pool.Incumbent, bound = search_bound(state, true);
    if (incumbent >= UNDEFINED_VALUE) return "- ";
    if (std::fabs(incumbent - bound) < SAME_VALUE) return "0.0%";
    if (std::fabs(incumbent) < NO_RELATIVE_GAP || bound <= -UNDEFINED_VALUE) return "- ";
    const double ratio = std::fabs((incumbent - bound) / incumbent);
    const int decimals = ratio >= 0.995 ? 0 : ratio >= 0.0995 ? 1 : 2; // three digits
    text_format(text, FIELD, "%.*f%%", decimals, 100 * ratio);
    return text;
}

const char *iterations_text(const MIPState *state, char *text)
{
    if (state->Nodes == 0) return "";
    const double mean =
        (state->Iterations - std::max(0.0, state->RootIterations)) / state->Nodes;
    text_format(text, FIELD, mean >= 99.5 ? "%.0f" : "%.1f", mean);
    return text;
}

const char *time_text(const MIPState *state, char *text)
{
    text_format(text, FIELD, "%.0fs", elapsed(state));
    return text;
}

const char *objective_text(const MIPState *state, const NodeData *data, char *text)
{
    switch (data->Status) {
    case NODE_FAILED:
        return "failed";
    case NODE_INFEASIBLE:
        return "infeasible";
    case NODE_CUTOFF:
        return "cutoff";
    case NODE_EXPLODED:
        return "exploded";
    default:
        return number(state->Body->sense *
                          std::max(data->LPObjective, search_bound(state, false)),
                      COLUMN, text);
    }
}

void print_header(MIPState *state)
{
    if (state->HeaderPrinted) return;
    state->HeaderPrinted = true;
    TVXmsg(state->Env,
           "\n    Nodes    |    Current Node    |     Objective Bounds      |     Work\n");
    TVXmsg(
        state->Env,
        " Expl Unexpl |  Obj  Depth IntInf | Incumbent    BestBd   Gap | It/Node Time\n\n");
}

// The last five columns, which all lines share.
struct Tail {
    char Incumbent[FIELD], Bound[FIELD], Gap[FIELD], Iterations[FIELD], Time[FIELD];
};

bool is_due(const MIPState *state, const TreeNode *node)
{
    if (!node->Parent && state->Nodes > 0) return false;
    return state->Nodes == 0 || state->Nodes == state->ForcedLine ||
           node->Data->Status == NODE_INTEGRAL || tick(state) != state->LastTick;
}

// Open nodes. After a restart in the tree those that were given up count too, as many fewer as nodes have been explored
// since: the column does not fall to nothing and rise again.
double shown_open_nodes(const MIPState *state)
{
    const RestartRecord *last = &state->Restart;
    const double since = state->Nodes - last->Nodes, open = open_nodes(state);
    if (last->Open <= 0 || since >= NODES_PER_OPEN * last->Open) return open;
    return std::trunc(open + last->Open - std::trunc(since / NODES_PER_OPEN));
}

void print_node(MIPState *state, const TreeNode *node)
{
    const NodeData *data = node->Data;
    Tail t;
    char objective[FIELD], fractional[FIELD] = "";
    const int depth = data->Depth + state->DepthOffset;
    if (data->Status == NODE_INTEGRAL) {
        TVXmsg(state->Env, "*%5.0f %5.0f %10s %4d    %12s %10s %6s %5s %5s\n", state->Nodes,
               shown_open_nodes(state), "", depth,
               incumbent_text(state, WIDE_COLUMN, t.Incumbent), bound_text(state, t.Bound),
               gap_text(state, t.Gap), iterations_text(state, t.Iterations),
               time_text(state, t.Time));
        return;
    }
    if (data->Status == NODE_FRACTIONAL && data->Result)
        text_format(fractional, FIELD, "%3d",
                    data->Result->Fractionals + data->Result->SosViolated);
    TVXmsg(state->Env, " %5.0f %5.0f %10s %4d %4s %10s %10s %6s %5s %5s\n", state->Nodes,
           shown_open_nodes(state), objective_text(state, data, objective), depth,
           fractional, incumbent_text(state, COLUMN, t.Incumbent),
           bound_text(state, t.Bound), gap_text(state, t.Gap),
           iterations_text(state, t.Iterations), time_text(state, t.Time));
}
} // namespace

double search_bound(const MIPState *state, bool rounded)
{
    const double bound = std::min(state->Store.GlobalBound, state->Pool.Incumbent);
    return rounded ? std::min(rounded_bound(state->Grid, bound), state->Pool.Incumbent)
                   : bound;
}

double open_nodes(const MIPState *state)
{
    double count = static_cast<double>(state->Store.Heap.size);
    for (const SearchWorker *worker : state->Workers)
        count += static_cast<double>(worker->Active.size);
    return count;
}

void node_log_line(MIPState *state, const TreeNode *node)
{
    if (state->Recursive || !is_due(state, node)) return;
    print_header(state);
    print_node(state, node);
    state->LastTick = tick(state);
    log_callback(state);
}

void periodic_log_line(MIPState *state)
{
    if (state->Recursive || state->Nodes == 0 || tick(state) == state->LastTick) return;
    const double bound = search_bound(state, false);
    OpenSample shown = {NO_SAMPLE_DEPTH, bound};
    if (state->Restart.SampleSize > 0) {
        Random chance;
        random_seed(&chance, static_cast<uint64_t>(state->Nodes));
        shown = state->Restart.Sample[random_next(&chance) % state->Restart.SampleSize];
    }
    const double objective =
        std::clamp(shown.Bound, bound, std::max(bound, state->Pool.Incumbent));
    Tail t;
    char text[FIELD];
    print_header(state);
    TVXmsg(state->Env, " %5.0f %5.0f %10s %4d %4s %10s %10s %6s %5s %5s\n", state->Nodes,
           shown_open_nodes(state), number(state->Body->sense * objective, COLUMN, text),
           shown.Depth, "", incumbent_text(state, COLUMN, t.Incumbent),
           bound_text(state, t.Bound), gap_text(state, t.Gap),
           iterations_text(state, t.Iterations), time_text(state, t.Time));
    state->LastTick = tick(state);
    log_callback(state);
}

void heuristic_log_line(MIPState *state)
{
    if (state->Recursive) return;
    Tail t;
    if (state->RootIterations < 0) {
        TVXmsg(state->Env, "Found heuristic solution: objective %s\n",
               incumbent_text(state, WIDE_COLUMN, t.Incumbent));
        return;
    }
    print_header(state);
    TVXmsg(state->Env, "H%5.0f %5.0f                    %12s %10s %6s %5s %5s\n",
           state->Nodes, shown_open_nodes(state),
           incumbent_text(state, WIDE_COLUMN, t.Incumbent), bound_text(state, t.Bound),
           gap_text(state, t.Gap), iterations_text(state, t.Iterations),
           time_text(state, t.Time));
    log_callback(state);
}
