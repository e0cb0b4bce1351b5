// branch_sets.cpp -- branch sets, and the choice between single variables, SOS constraints and sets
//
// Problem  A row "exactly one of these n binaries" whose members each switch rows of their own is a choice among n
//          things. Fixing one member to 0 hardly changes the LP; excluding half of the members does.
// Method   A set or a violated SOS constraint is split in the middle of its members; each part is worth the sum of the
//          gains that its members promise, and the product of both sums competes with that of the best variable.
#include "mip/branch_sets.h"
#include "mip/sos_window.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int LEAST_MEMBERS = 10, MOST_ROWS = 6, SMALL_ROW = 4, SMALL_ROWS = 2;

constexpr double HALF = 0.5;     // fraction at which gains of SOS members are taken
constexpr double SOS_WEIGHT = 2; // of the score of an SOS constraint

bool is_binary(const MIPState *state, int j)
{
    return state->IsInteger.data[j] && state->Body->lb.data[j] == 0 &&
           state->Body->ub.data[j] == 1; // whole numbers
}

int row_length(const MIPState *state, int i)
{
    return static_cast<int>(state->Rows->RowBeg.data[i + 1] - state->Rows->RowBeg.data[i]);
}

const RowEntry *row_entries(const MIPState *state, int i)
{
    return state->Rows->Entry.data + state->Rows->RowBeg.data[i];
}

// Rows of a member besides the set's: exactly SMALL_ROWS of them are short, with rhs 0, binary others, and the member
// on the side that releases them. They are marked.
bool drives_small_rows(const MIPState *state, int member, int set_row, Array<char> *touched,
                       int *distinct)
{
    const ModelBody *body = state->Body;
    if (body->vlen.data[member] > MOST_ROWS) return false;
    int small = 0;
    for (int p = body->vbeg.data[member]; p < body->vbeg.data[member + 1]; p++) {
        const int i = body->vind.data[p];
        const int length = row_length(state, i);
        if (i == set_row || length >= SMALL_ROW || body->rhs.data[i] != 0 ||
            body->vval.data[p] >= 0)
            continue;
        int binaries = 0;
        for (int q = 0; q < length; q++)
            binaries += is_binary(state, row_entries(state, i)[q].Col);
        if (binaries != length - 1) continue;
        small++;
        *distinct += !touched->data[i];
        touched->data[i] = 1;
    }
    return small == SMALL_ROWS;
}

bool is_choice_row(const MIPState *state, int i)
{
    const ModelBody *body = state->Body;
    const int length = row_length(state, i);
    const RowEntry *row = row_entries(state, i);
    if (body->senses.data[i] != '=' || body->rhs.data[i] != 1 || length < LEAST_MEMBERS)
        return false;
    for (int p = 0; p < length; p++)
        if (row[p].Val != 1 || !is_binary(state, row[p].Col)) return false;
    return true;
}

int add_set(MIPState *state, int i)
{
    const int count = row_length(state, i), at = static_cast<int>(state->SetMembers.size);
    const RowEntry *row = row_entries(state, i);
    TRY(array_grow(&state->SetMembers, at + int64_t{count}));
    for (int p = 0; p < count; p++) array_push(&state->SetMembers, row[p].Col);
    std::sort(state->SetMembers.begin() + at, state->SetMembers.end());
    return array_append(&state->Sets, {at, at + count});
}

// Sums over both parts of a set, weighted by the values of the members.
struct Parts {
    double Left, Right;
};

template<class Value>
Parts sos_parts(const MIPState *state, const SosWindow &window, int type, Value value)
{
    const int split = (window.First + window.Last + (type == 2 ? 0 : 1)) / 2;
    Parts parts = {LEAST_SCORE_GAIN, LEAST_SCORE_GAIN};
    for (int p = window.First; p <= window.Last; p++) {
        const int j = state->Body->sosind.data[p];
        const GainEstimate gain = pseudo_estimate(&state->Costs, j, HALF);
        const double x = std::fabs(value(j));
        if (p < split) parts.Left += x * gain.Down;
        if (type == 2 ? p > split : p >= split) parts.Right += x * gain.Down;
    }
    return parts;
}

// Members with a value above 0, for a set whose members are not all whole.
bool set_parts(const SearchWorker *worker, const BranchSet &set, Parts *parts)
{
    const MIPState *state = worker->State;
    const double tolerance = state->Env->IntFeasTol;
    const int middle = (set.Beg + set.End) / 2;
    bool fractional = false;
    *parts = {0, 0};
    for (int p = set.Beg; p < set.End; p++) {
        const int j = state->SetMembers.data[p];
        const double x = simplex_value(worker->Lp.simplex, j);
        if (x <= tolerance || x >= 1 - tolerance) continue;
        fractional = true;
        const double gain =
            std::max(pseudo_estimate(&state->Costs, j, x).Down, LEAST_SCORE_GAIN);
        (p < middle ? parts->Left : parts->Right) += gain;
    }
    return fractional && parts->Left > 0 && parts->Right > 0;
}
} // namespace

int find_branch_sets(MIPState *state)
{
    const ModelBody *body = state->Body;
    Array<char> touched;
    state->Sets.size = state->SetMembers.size = 0;
    for (int i = 0; i < body->numconstrs; i++) {
        if (!is_choice_row(state, i)) continue;
        TRY(array_assign(&touched, body->numconstrs, char{0}));
        const int length = row_length(state, i);
        int distinct = 0;
        bool all = true;
        for (int p = 0; p < length && all; p++)
            all = drives_small_rows(state, row_entries(state, i)[p].Col, i, &touched,
                                    &distinct);
        if (all && distinct == length + 1) TRY(add_set(state, i));
    }
    return 0;
}

void choose_set(const SearchWorker *worker, const NodeLPResult *result, double best,
                BranchChoice *choice)
{
    const MIPState *state = worker->State;
    const auto value = [&](int j) { return simplex_value(worker->Lp.simplex, j); };
    for (int k = 0; k < state->Sets.size; k++) {
        Parts parts;
        if (!set_parts(worker, state->Sets.data[k], &parts)) continue;
        const double score = parts.Left * parts.Right;
        if (score <= best) continue;
        best = score;
        *choice = {-1, -1, k};
    }
    for (const int k : result->Sos) {
        const int type = state->Body->sostype.data[k];
        const SosWindow window = sos_branch_window(state, k, value);
        if (window.fits(type)) continue;
        const Parts parts = sos_parts(state, window, type, value);
        const double score =
            SOS_WEIGHT * parts.Left * parts.Right * state->Env->TARV_PAR_SOSBRRAT;
        if (score <= best) continue;
        best = score;
        *choice = {-1, k, -1};
    }
}
