// implied_integers.cpp -- continuous columns that are integral anyway
//
// Method   always   An equation in which every other column is integral, with coefficients and side that are whole
//                   multiples of this column's: its value follows from the others.
//          optimal  In all rows of the column every other one is integral, and coefficients, sides and bounds are whole
//                   in its unit. With the others settled it has an interval with integral ends, and the better end is as
//                   good as any point. Such columns share no row, so that this holds for all of them together.
//          Rows are counted by their columns that are not integral; a row that comes down to one is looked at.
// Why      The objective of integer points has a grid when all its columns are integral. Branching does not need these.
// Cost     O(columns + entries)
#include "mip/implied_integers.h"
#include "body/row_kind.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double LEAST_UNIT =
    1e-3; // of a coefficient: a smaller one lets the row's tolerance move the column by too much
constexpr double MULTIPLE_ERROR = 1e-10, MOVED = 1e-9; // of a ratio; and of a column by it
constexpr double ROUNDING = 4 * 2.2e-16; // relative, of a ratio of two rounded numbers
constexpr double LARGEST_MULTIPLE = 1e9;

struct Search {
    MIPState *State;
    Array<char> Barred; // [columns] in sets, or semi-continuous
    Array<int> Open;    // [rows] columns that are not known to be integral
    Array<int> Queue;   // equations with one such column
};

bool is_open(const Search &s, int j)
{
    const MIPState *state = s.State;
    return !state->IsInteger.data[j] && state->Implied.data[j] != IMPLIED_ALWAYS &&
           state->Body->lb.data[j] < state->Body->ub.data[j];
}

// All but column j are whole multiples of its coefficient a in row i, and so is the side.
bool row_is_whole(const MIPState *state, int i, int j, double a)
{
    double side = state->Body->rhs.data[i];
    if (std::fabs(a) < LEAST_UNIT) return false;
    for (int64_t p = state->Rows->RowBeg.data[i]; p < state->Rows->RowBeg.data[i + 1];
         p++) {
        const RowEntry &entry = state->Rows->Entry.data[p];
        const double lower = state->Body->lb.data[entry.Col];
        if (entry.Col == j) continue;
        if (lower == state->Body->ub.data[entry.Col]) // fixed: a part of the side
            side -= entry.Val * lower;
        else if (!is_whole_multiple(entry.Val, a, column_reach(state, entry.Col)))
            return false;
    }
    return is_whole_multiple(side, a, 1);
}

const RowEntry *open_entry(const Search &s, int i)
{
    const PropagationRows *rows = s.State->Rows;
    for (int64_t p = rows->RowBeg.data[i]; p < rows->RowBeg.data[i + 1]; p++)
        if (is_open(s, rows->Entry.data[p].Col)) return &rows->Entry.data[p];
    return nullptr;
}

bool is_candidate_row(const Search &s, int i)
{
    return s.Open.data[i] == 1 && is_equation(s.State->Body, i) &&
           row_kind(s.State->Body, i) == RowKind::ORDINARY;
}

// Column j is integral at every point: its rows have one open column fewer.
void close_column(Search *s, int j)
{
    const ModelBody *body = s->State->Body;
    s->State->Implied.data[j] = IMPLIED_ALWAYS;
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
        const int i = body->vind.data[p];
        if (body->vval.data[p] == 0) continue;
        s->Open.data[i]--;
        if (is_candidate_row(*s, i))
            array_push(&s->Queue, i); // once per row: there is room
    }
}

int start(Search *s)
{
    const MIPState *state = s->State;
    const ModelBody *body = state->Body;
    TRY(array_assign(&s->Barred, body->numvars, char{0}));
    TRY(array_assign(&s->Open, body->numconstrs, 0));
    TRY(array_reserve(&s->Queue, body->numconstrs));
    for (const int j : body->sosind) s->Barred.data[j] = 1;
    for (int k = 0; k < state->NumSemis; k++) s->Barred.data[state->Semis[k].col] = 1;
    for (int j = 0; j < body->numvars; j++)
        for (int p = body->vbeg.data[j]; is_open(*s, j) && p < body->vbeg.data[j + 1]; p++)
            s->Open.data[body->vind.data[p]] += body->vval.data[p] != 0;
    for (int i = 0; i < body->numconstrs; i++)
        if (is_candidate_row(*s, i)) array_push(&s->Queue, i);
    return 0;
}

void find_always(Search *s)
{
    while (s->Queue.size > 0) {
        const int i = s->Queue.data[--s->Queue.size];
        const RowEntry *entry = open_entry(*s, i);
        if (entry && !s->Barred.data[entry->Col] &&
            row_is_whole(s->State, i, entry->Col, entry->Val))
            close_column(s, entry->Col);
    }
}

bool is_optimal(const Search &s, int j)
{
    const MIPState *state = s.State;
    const ModelBody *body = state->Body;
    if (!is_open(s, j) || !may_be_implied(state, s.Barred, j)) return false;
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
        const int i = body->vind.data[p];
        const double a = body->vval.data[p];
        if (a == 0 || row_kind(body, i) == RowKind::FREE) continue;
        if (s.Open.data[i] != 1 || !row_is_whole(state, i, j, a)) return false;
    }
    return true;
}

bool is_whole_bound(double bound)
{
    return domain_is_infinite(bound) || bound == std::round(bound);
}
} // namespace

bool may_be_implied(const MIPState *state, const Array<char> &barred, int j)
{
    const double lower = state->Body->lb.data[j], upper = state->Body->ub.data[j];
    return !state->IsInteger.data[j] && !state->Implied.data[j] && !barred.data[j] &&
           lower < upper && is_whole_bound(lower) && is_whole_bound(upper);
}

bool is_whole_multiple(double value, double unit, double reach)
{
    const double ratio = std::fabs(value / unit),
                 error = std::fabs(ratio - std::round(ratio));
    if (!(ratio <= LARGEST_MULTIPLE)) return false;
    return error <= ROUNDING * ratio || (error <= MULTIPLE_ERROR && error * reach <= MOVED);
}

double column_reach(const MIPState *state, int j)
{
    return std::max(std::fabs(state->Body->lb.data[j]), std::fabs(state->Body->ub.data[j]));
}

int find_implied_integers(MIPState *state)
{
    const TVXenv *env = state->Env;
    Search s = {state, {}, {}, {}};
    TRY(array_assign(&state->Implied, state->Body->numvars, char{IMPLIED_NOT}));
    if (!env->TARV_PAR_IMPLIEDINT && !env->TARV_PAR_NETIMPLIED) return 0;
    TRY(start(&s));
    if (env->TARV_PAR_IMPLIEDINT) find_always(&s);
    if (!env->TARV_PAR_DUALREDUCTION) return 0; // all optimal points shall be kept
    if (env->TARV_PAR_IMPLIEDINT)
        for (int j = 0; j < state->Body->numvars; j++)
            if (is_optimal(s, j)) state->Implied.data[j] = IMPLIED_OPTIMAL;
    int count = 0;
    if (env->TARV_PAR_NETIMPLIED) TRY(find_network(state, s.Barred, &count));
    if (count > 0 && !state->Recursive)
        TVXmsg(state->Env, "Network structure: %d continuous variables\n", count);
    return 0;
}

void drop_optimal_implied(MIPState *state)
{
    if (!state->Grid.Loose) return;
    for (char &implied : state->Implied)
        if (implied == IMPLIED_OPTIMAL) implied = IMPLIED_NOT;
    state->Grid = objective_grid(state->Body, state->Implied.data);
    state->IncumbentGone = true; // nodes may have been cut off by the grid
}
