// branch_reliability.cpp -- reliability branching: pseudo-costs, with strong branching until they can be trusted
//
// Method      A pseudo-cost counts once both ways have been observed often enough; candidates whose are not are probed
//             by strong branching, which makes observations. The number that is asked for falls as strong branching takes
//             a larger part of all iterations. Then the best product of the two estimated gains decides; violated SOS
//             constraints and branch sets compete with the sums of their members.
// Literature  T. Achterberg, T. Koch, A. Martin, "Branching rules revisited", OR Letters 33, 2005.
#include "mip/branch.h"
#include "mip/branch_sets.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int MOST_TOPPED_UP = 20,
              TOP_UP_BELOW =
                  100; // candidates probed although they are trusted, and observations
constexpr double CHEAP_SO_FAR = 1e-5; // share of all iterations below which that is done

// Trusted less than that often, gains decide only if both ways have some that are a share of the gap.
constexpr int TRUSTED = 3;
constexpr double SHARE_OF_GAP = 0.01, NO_GAP = 1e97, GAIN_PER_OBSERVATION = 0.001;

double all_iterations(const MIPState *state)
{
    return state->Iterations;
}

// Observations that are asked for now.
int reliability(MIPState *state)
{
    const PseudoCostTable *costs = &state->Costs;
    if (costs->Reliability >= 0) return costs->Reliability;
    const int most = -costs->Reliability;
    if (costs->Iterations <= 0) return most;
    const double share = std::floor(all_iterations(state) / costs->Iterations);
    return static_cast<int>(std::clamp(share, 1.0, double{1} * most));
}

bool is_reliable(const MIPState *state, const TreeNode *node, int j, int needed)
{
    const int seen = pseudo_observations(&state->Costs, j);
    return seen >= needed || (!node->Parent && seen >= 1);
}

GainEstimate gains(const MIPState *state, const BranchCandidate &c)
{
    return pseudo_estimate(&state->Costs, c.Var, branch_fraction(state, c.Value));
}

double estimated_score(const MIPState *state, const BranchCandidate &c)
{
    const GainEstimate gain = gains(state, c);
    return branch_score(gain.Down, gain.Up);
}

// Candidates that are not reliable, in front, those with the best estimates first; some more where that is cheap.
int unreliable_first(MIPState *state, const TreeNode *node)
{
    Array<BranchCandidate> *list = &node->Data->Result->Candidates;
    const int needed = reliability(state);
    BranchCandidate *middle =
        std::partition(list->begin(), list->end(), [&](const BranchCandidate &c) {
            return !is_reliable(state, node, c.Var, needed);
        });
    int count = static_cast<int>(middle - list->begin());
    const bool cheap = state->Costs.Iterations < CHEAP_SO_FAR * all_iterations(state);
    if (count < MOST_TOPPED_UP && cheap && list->size > MOST_TOPPED_UP) {
        const auto fewer = [&](const BranchCandidate &a, const BranchCandidate &b) {
            const int in_a = pseudo_observations(&state->Costs, a.Var),
                      in_b = pseudo_observations(&state->Costs, b.Var);
            if (in_a != in_b) return in_a < in_b;
            const double score_a = estimated_score(state, a),
                         score_b = estimated_score(state, b);
            return score_a != score_b ? score_a > score_b : a.Var < b.Var;
        };
        std::sort(middle, list->end(), fewer);
        for (int added = 0; added < MOST_TOPPED_UP && count < list->size; added++, count++)
            if (pseudo_observations(&state->Costs, list->data[count].Var) >= TOP_UP_BELOW)
                break;
    }
    std::sort(list->begin(), list->begin() + count,
              [&](const BranchCandidate &a, const BranchCandidate &b) {
                  const double score_a = estimated_score(state, a),
                               score_b = estimated_score(state, b);
                  return score_a != score_b ? score_a > score_b : a.Var < b.Var;
              });
    return count;
}

// Are gains large enough for scores to mean something?
bool gains_are_significant(const MIPState *state, const NodeData *data)
{
    double limit = SHARE_OF_GAP * (state->Pool.PruneValue - data->LPObjective);
    if (limit > NO_GAP) limit = GAIN_PER_OBSERVATION * std::abs(state->Costs.Reliability);
    double down = 0, up = 0;
    for (const BranchCandidate &c : data->Result->Candidates) {
        down = std::max(down, c.DownGain);
        up = std::max(up, c.UpGain);
    }
    return down > limit && up > limit;
}

// Estimates into the candidates; the position of the best one.
int score_candidates(const MIPState *state, NodeLPResult *result, double base, double *best)
{
    int at = -1;
    *best = -1;
    for (int k = 0; k < result->Candidates.size; k++) {
        BranchCandidate *c = &result->Candidates.data[k];
        const GainEstimate gain = gains(state, *c);
        c->DownGain = std::max(gain.Down, c->Down - base);
        c->UpGain = std::max(gain.Up, c->Up - base);
        const double score = branch_score(c->DownGain, c->UpGain);
        if (score <= *best) continue;
        *best = score;
        at = k;
    }
    result->GainsValid = true;
    return at;
}

void drop_worse(NodeLPResult *result, int best)
{
    std::swap(result->Candidates.data[0], result->Candidates.data[best]);
    result->Candidates.size = std::min<int64_t>(result->Candidates.size, 1);
}
} // namespace

int branch_by_reliability(SearchWorker *worker, TreeNode **node, BranchChoice *choice,
                          bool *moved)
{
    MIPState *state = worker->State;
    NodeData *data = (*node)->Data;
    const int count = unreliable_first(state, *node);
    if (count > 0) TRY(branch_by_probes(worker, node, 0, count, moved));
    data = (*node)->Data; // the node may have moved
    if (*moved || data->Status != NODE_FRACTIONAL) return 0;
    double best = 0;
    const int at = score_candidates(state, data->Result, data->LPObjective, &best);
    choose_set(worker, data->Result, best, choice);
    if (choice->Sos >= 0 || choice->Set >= 0 || at < 0) return 0;
    const int needed = reliability(state);
    if (needed >= TRUSTED || gains_are_significant(state, data))
        drop_worse(data->Result, at);
    return 0;
}
