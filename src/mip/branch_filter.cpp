// branch_filter.cpp -- cheap rules among candidates: the multipliers of their rows, and pseudo-costs of binaries
#include "mip/branch.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double LEAST_MULTIPLIER = 1e-4; // a row with a smaller one counts with this
constexpr double NEAR_BEST = 0.99;        // share of the best sum, that stays
constexpr double NEAR_SCORE = 0.1;        // below the best score, that stays
constexpr double FIXED_SCORE = 1e100;     // of a binary that is fixed already

// What moving the candidate costs by the multipliers of its rows: the smaller of the two ways.
double multiplier_sum(const SearchWorker *worker, const BranchCandidate &candidate)
{
    const ModelBody *body = worker->State->Body;
    const double fraction = branch_fraction(worker->State, candidate.Value);
    double down = 0, up = 0;
    const int j = candidate.Var;
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
        const int i = body->vind.data[p];
        const double a = body->vval.data[p],
                     y = std::max(LEAST_MULTIPLIER,
                                  std::fabs(simplex_pi(worker->Lp.simplex, i))),
                     size = std::fabs(a) * y;
        const bool equation = body->senses.data[i] == '=';
        if (a > 0 || equation) up += (1 - fraction) * size;
        if (a < 0 || equation) down += fraction * size;
    }
    return std::max(down, up);
}

// Candidates with a score of at least `limit` move to the front.
template<class Score>
int keep_from(NodeLPResult *result, int count, double limit, Score score)
{
    int kept = 0;
    for (int k = 0; k < count; k++)
        if (score(result->Candidates.data[k]) >= limit)
            std::swap(result->Candidates.data[kept++], result->Candidates.data[k]);
    return kept;
}
} // namespace

int filter_by_multipliers(SearchWorker *worker, NodeLPResult *result, int count)
{
    double best = 0;
    const auto score = [&](const BranchCandidate &c) { return multiplier_sum(worker, c); };
    for (int k = 0; k < count; k++)
        best = std::max(best, score(result->Candidates.data[k]));
    return keep_from(result, count, NEAR_BEST * best, score);
}

int filter_by_implications(SearchWorker *worker, NodeLPResult *result, int count)
{
    const MIPState *state = worker->State;
    const Domain *bounds = worker->Bounds;
    const auto score = [&](const BranchCandidate &c) {
        const int j = c.Var;
        if (bounds->Lower.data[j] > bounds->Upper.data[j] - 0.5) return FIXED_SCORE;
        if (state->Body->vtypes.data[j] != 'B' ||
            pseudo_observations(&state->Costs, j) == 0)
            return 0.0;
        const GainEstimate gain =
            pseudo_estimate(&state->Costs, j, branch_fraction(state, c.Value));
        return gain.Down * gain.Up;
    };
    double best = 0;
    for (int k = 0; k < count; k++)
        best = std::max(best, score(result->Candidates.data[k]));
    return best > 0 ? keep_from(result, count, best - NEAR_SCORE, score) : count;
}
