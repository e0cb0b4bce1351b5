// node_basis.cpp -- saves the basis of a live record for a node, and loads it again
//
// Method      Statuses as bytes, weights as floats. A basis that differs from the live one in a few variables is reached
//             by updates of the factors: each entering variable replaces the one of the leaving variables in whose
//             position its column is largest. Otherwise, or if the pivots become small, the next solve factors anew.
// Cost        O(n + m); an exchange costs an FTRAN, a BTRAN and an update.
#include "simplex/dual.h"
#include <algorithm>

namespace
{
// Exchanges up to which updates are tried; more cost about as much as a factorisation.
constexpr int MOST_EXCHANGES = 10;

constexpr int BASIC = 0; // status of a basic variable in a NodeBasis

// A pivot has to have this share of the largest entry of its column.
constexpr double PIVOT_SHARE = 1e-3;

// Larger weights would be infinite as floats, and rows with an infinite weight would never be chosen.
constexpr double LARGEST_WEIGHT = 1e38;

// What a loaded basis makes of the variables.
struct Target {
    const NodeBasis *Basis;
    int NumCols, RowsSaved;
    int status(int k) const // BASIC, or a BasisStatus
    {
        return k < NumCols + RowsSaved ? -Basis->Statuses.data[k] : BASIC;
    }
};

// The live basis against the loaded one: positions to give up, variables to take in. False if they are too many.
template<class R>
bool list_exchanges(const sopt *s, const swork<R> *w, const Target &target, int *positions,
                    int *entering, int *count)
{
    const int most = std::min(MOST_EXCHANGES, s->MaxUpdates - w->Lu.NumUpdates);
    int out = 0, in = 0;
    for (int k = 0; k < s->NumVars; k++) {
        const bool basic = is_basic(s, k), wanted = target.status(k) == BASIC;
        if (basic == wanted) continue;
        if ((basic ? out : in) >= most) return false;
        if (basic)
            positions[out++] = s->VStat.data[k];
        else
            entering[in++] = k;
    }
    *count = in;
    return in == out;
}

// One exchange; false if no pivot is large enough. positions[0..left-1]: those still to be given up.
template<class R>
bool exchange(sopt *s, swork<R> *w, const Target &target, int q, int *positions, int left)
{
    load_column(s, q, &w->Alpha);
    Ftran(&w->Lu, &w->Alpha, SOLVE_COLUMN, Keep::YES);
    R largest = 0;
    for (int k = 0; k < w->Alpha.Count; k++)
        largest = std::max(largest, std::abs(w->Alpha.Value.data[w->Alpha.Index.data[k]]));
    int best = 0;
    for (int k = 1; k < left; k++)
        if (std::abs(w->Alpha.Value.data[positions[k]]) >
            std::abs(w->Alpha.Value.data[positions[best]]))
            best = k;
    const int r = positions[best];
    const R pivot = w->Alpha.Value.data[r];
    if (std::abs(pivot) <= R(PIVOT_SHARE) * largest) return false;
    svec_unit(&w->Rho, r, R(1));
    Btran(&w->Lu, &w->Rho, SOLVE_ROW, Keep::YES);
    const int leaving = s->BasisHead.data[r];
    if (UpdateFactor(&w->Lu, r, pivot) != UPDATE_DONE) return false;
    swap_basis(s, r, q, target.status(leaving));
    std::swap(positions[best], positions[left - 1]);
    return true;
}

template<class R> bool follow(sopt *s, swork<R> *w, const Target &target)
{
    if (!has_factor(s, w)) return false;
    int positions[MOST_EXCHANGES], entering[MOST_EXCHANGES], count = 0;
    if (!list_exchanges(s, w, target, positions, entering, &count)) return false;
    for (int k = 0; k < count; k++)
        if (!exchange(s, w, target, entering[k], positions, count - k)) return false;
    return true;
}

// After a start from slacks a nonbasic variable may be a basic one of the target.
void take_statuses(sopt *s, const Target &target)
{
    for (int k = 0; k < s->NumVars; k++)
        if (!is_basic(s, k) && target.status(k) != BASIC)
            s->VStat.data[k] = target.status(k);
}

// A basis to be factored. False if it has not one variable per row.
bool replace_basis(sopt *s, const Target &target)
{
    int basics = 0;
    for (int k = 0; k < s->NumVars; k++) basics += target.status(k) == BASIC;
    if (basics != s->NumRows) return false;
    int position = 0;
    for (int k = 0; k < s->NumVars; k++) {
        s->VStat.data[k] = target.status(k);
        s->SuperVal.data[k] = 0;
        if (s->VStat.data[k] != BASIC) continue;
        s->BasisHead.data[position] = k;
        s->VStat.data[k] = position++;
    }
    s->BasisAge++;
    return true;
}

template<class R> void take_weights(const sopt *s, swork<R> *w, const NodeBasis &basis)
{
    int next = 0;
    for (int k = 0; k < s->NumVars; k++) {
        const bool saved = k < basis.NumCols + basis.NumRows && basis.Statuses.data[k] == 0;
        const float weight = saved ? basis.Weights.data[next++] : 1.0F;
        if (is_basic(s, k)) w->Dual->Weights.data[s->VStat.data[k]] = R(weight);
    }
}

template<class R> int load(sopt *s, swork<R> *w, const NodeBasis &basis)
{
    const Target target = {&basis, basis.NumCols, basis.NumRows};
    if (!follow(s, w, target) && !replace_basis(s, target)) start_slack_basis(s);
    take_statuses(s, target);
    settle_nonbasics(s);
    take_weights(s, w, basis);
    s->Live = LIVE_STALE;
    return 0;
}

template<class R> int save(const sopt *s, const swork<R> *w, NodeBasis *basis)
{
    basis->NumCols = s->NumCols;
    basis->NumRows = s->NumRows;
    TRY(array_resize(&basis->Statuses, s->NumVars));
    TRY(array_resize(&basis->Weights, s->NumRows));
    int next = 0;
    for (int k = 0; k < s->NumVars; k++) {
        const int status = s->VStat.data[k];
        basis->Statuses.data[k] = static_cast<char>(status >= 0 ? 0 : -status);
        if (status >= 0)
            basis->Weights.data[next++] = static_cast<float>(
                std::min(w->Dual->Weights.data[status], R(LARGEST_WEIGHT)));
    }
    return 0;
}
} // namespace

int simplex_save_basis(const sopt *s, NodeBasis *basis)
{
    return s->Quad ? save(s, s->Extended, basis) : save(s, s->Double, basis);
}

int simplex_load_basis(sopt *s, const NodeBasis &basis)
{
    assert(basis.NumCols == s->NumCols && basis.NumRows <= s->NumRows);
    return s->Quad ? load(s, s->Extended, basis) : load(s, s->Double, basis);
}
