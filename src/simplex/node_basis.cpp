// node_basis.cpp -- saves the basis of a live record for a node, and loads it again
//
// Method      Statuses as bytes, weights as floats. A basis that differs from the live one in a few variables is
//             reached by pivots: each entering variable replaces the one of the leaving variables in whose position
//             its column is largest. Otherwise, or if the pivots become small, the next solve factors anew.
// Cost        O(n + m), and that of the pivots; else a factorisation, and values and reduced costs from the matrix.
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

// From the body's sign of column k to that of the working LP, and back.
int sign_status(const sopt *s, int k, int status)
{
    if (k >= s->NumCols || s->ColScale.data[k] > 0) return status;
    return status == AT_LOWER ? AT_UPPER : status == AT_UPPER ? AT_LOWER : status;
}

// What a loaded basis makes of the variables.
struct Target {
    const sopt *Record;
    const NodeBasis *Basis;
    int NumCols, RowsSaved;
    int status(int k) const // BASIC, or a BasisStatus
    {
        if (k >= NumCols + RowsSaved) return BASIC;
        return sign_status(Record, k, -Basis->Statuses.data[k]);
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

// Status of a variable that leaves the basis: as wished if its bounds allow that.
int nonbasic_status(const sopt *s, int k, int wish)
{
    const double lower = s->WorkLower.data[k], upper = s->WorkUpper.data[k];
    if (lower == upper) return AT_FIXED; // assigned alike
    if (!has_lower(s, lower)) return AT_FREE;
    return wish == AT_UPPER && has_upper(s, upper) ? AT_UPPER : AT_LOWER;
}

// Values, reduced costs and objective follow the pivot of Alpha and Rho, before the basis changes.
template<class R> void pivot_values(sopt *s, swork<R> *w, int r, int q, int status)
{
    dopt<R> *d = w->Dual;
    const int leaving = s->BasisHead.data[r];
    const double bound = status == AT_FREE    ? 0
                         : status == AT_UPPER ? s->WorkUpper.data[leaving]
                                              : s->WorkLower.data[leaving];
    if (s->VStat.data[q] == AT_FIXED && q < s->NumCols)
        w->Cbar.data[q] = live_reduced_cost(s, w, q);
    d->FreeCount += (status == AT_FREE) - (s->VStat.data[q] == AT_FREE);
    d->PivotRow = r;
    d->PivotCol = q;
    const R pivot = w->Alpha.Value.data[r];
    d->ThetaPrimal = (w->Bbar.data[r] - R(bound)) / pivot;
    d->ThetaDual = w->Cbar.data[q] / pivot;
    compute_row(s, w);
    dual_update_values(s, w);
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
    const int leaving = s->BasisHead.data[r],
              status = nonbasic_status(s, leaving, target.status(leaving));
    if (s->Live == LIVE_FRESH) pivot_values(s, w, r, q, status);
    if (UpdateFactor(&w->Lu, r, pivot) != UPDATE_DONE) return false;
    swap_basis(s, r, q, status);
    std::swap(positions[best], positions[left - 1]);
    return true;
}

template<class R> bool is_near(const sopt *s, const swork<R> *w, const Target &target)
{
    int positions[MOST_EXCHANGES], entering[MOST_EXCHANGES], count = 0;
    return has_factor(s, w) && list_exchanges(s, w, target, positions, entering, &count);
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

// All nonbasics of a fresh record whose basis has become that of the target.
template<class R> void move_nonbasics(sopt *s, swork<R> *w, const Target &target)
{
    svec_clear(&w->Work);
    for (int k = 0; k < s->NumVars; k++)
        if (!is_basic(s, k) && s->VStat.data[k] != AT_FIXED)
            live_move_nonbasic(s, w, k, target.status(k), nonbasic_value(s, k));
    live_move_values(s, w);
}

template<class R> int load(sopt *s, swork<R> *w, const NodeBasis &basis)
{
    const Target target = {s, &basis, basis.NumCols, basis.NumRows};
    const bool followed = follow(s, w, target);
    if (followed && s->Live == LIVE_FRESH) {
        move_nonbasics(s, w, target);
        take_weights(s, w, basis);
        dual_list_reset(s, w);
    } else {
        if (!followed && !replace_basis(s, target)) start_slack_basis(s);
        take_statuses(s, target);
        settle_nonbasics(s);
        take_weights(s, w, basis);
        s->Live = LIVE_STALE;
    }
    s->Status = SIMPLEX_RUNNING;
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
        basis->Statuses.data[k] =
            static_cast<char>(status >= 0 ? 0 : -sign_status(s, k, status));
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

bool live_is_near(const sopt *s, const NodeBasis &basis)
{
    const Target target = {s, &basis, basis.NumCols, basis.NumRows};
    return s->Quad ? is_near(s, s->Extended, target) : is_near(s, s->Double, target);
}

int live_load_basis(sopt *s, const NodeBasis &basis)
{
    assert(basis.NumCols == s->NumCols && basis.NumRows <= s->NumRows);
    if (s->Quad && s->Env->Quad != 1 && !s->Tuning.Extended) {
        // the trouble that asked for extended precision was that of another basis
        TRY(switch_precision(s, 0));
        for (double *tol : {&s->FeasTol, &s->OptTol, &s->UsualOptTol})
            *tol = std::max(*tol, tolerance_floor(s));
        if (!s->Double->Dual) TRY(dopt_create(s, &s->Double->Dual));
    }
    return s->Quad ? load(s, s->Extended, basis) : load(s, s->Double, basis);
}
