// network_structure.cpp -- networks of continuous columns, whose solutions are integral
//
// Problem     Continuous columns whose rows are those of a network have integral optimal values when everything else is
//             integral. Which are they?
// Method      A row qualifies when its continuous columns have coefficients of one size, and its side and its integer
//             coefficients are whole multiples of that size. A column belongs to the network when it is in at most two
//             rows, all of which qualify. A column that does not belong disqualifies its rows, and so on, until nothing
//             changes. The rows that are left need signs such that each column with two rows has opposite coefficients in
//             them: a walk gives them, and where two ways contradict each other there is no network.
// Why         After dividing rows by their size, and with signs, a column has at most one 1 and one -1: the matrix is
//             totally unimodular, and sides and bounds are integral (columns with one row are edges to a ground node).
// Cost        O(columns + entries)
// Literature  A. J. Hoffman and J. B. Kruskal, "Integral boundary points of convex polyhedra", 1956.
#include "body/row_kind.h"
#include "mip/implied_integers.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double SAME_SIZE = 1e-10, LEAST_SIZE = 1e-6; // of coefficients

struct Network {
    MIPState *State;
    Array<char> Belongs; // [columns] as far as is known
    Array<char> Sign;    // [rows] 0: none yet, 1 or -1
    Array<int> Queue;    // columns that do not belong, then rows on the walk
};

bool is_active(const MIPState *state, int j)
{
    return !state->IsInteger.data[j] && state->Implied.data[j] != IMPLIED_ALWAYS &&
           state->Body->lb.data[j] < state->Body->ub.data[j];
}

// The common size of the continuous coefficients of row i; 0: it has none, -1: they differ.
double common_size(const MIPState *state, int i)
{
    double size = 0;
    for (int64_t p = state->Rows->RowBeg.data[i]; p < state->Rows->RowBeg.data[i + 1];
         p++) {
        const RowEntry &entry = state->Rows->Entry.data[p];
        if (!is_active(state, entry.Col)) continue;
        const double a = std::fabs(entry.Val);
        if (a < LEAST_SIZE || (size > 0 && std::fabs(a - size) > SAME_SIZE)) return -1;
        if (size == 0) size = a;
    }
    return size;
}

bool row_qualifies(const MIPState *state, int i)
{
    const ModelBody *body = state->Body;
    if (row_kind(body, i) == RowKind::FREE) return true;
    const double size = common_size(state, i);
    if (size <= 0) return size == 0;
    double side = body->rhs.data[i];
    for (int64_t p = state->Rows->RowBeg.data[i]; p < state->Rows->RowBeg.data[i + 1];
         p++) {
        const RowEntry &entry = state->Rows->Entry.data[p];
        if (body->lb.data[entry.Col] == body->ub.data[entry.Col]) // fixed
            side -= entry.Val * body->lb.data[entry.Col];
        else if (!is_whole_multiple(entry.Val, size, column_reach(state, entry.Col)))
            return false;
    }
    return is_whole_multiple(side, size, 1);
}

void exclude(Network *net, int j)
{
    if (!net->Belongs.data[j]) return;
    net->Belongs.data[j] = 0;
    array_push(&net->Queue, j); // once per column
}

void exclude_row(Network *net, int i)
{
    const PropagationRows *rows = net->State->Rows;
    for (int64_t p = rows->RowBeg.data[i]; p < rows->RowBeg.data[i + 1]; p++)
        exclude(net, rows->Entry.data[p].Col);
}

// Sign doubles as the mark of rows that have been excluded already.
void spread_exclusion(Network *net)
{
    const ModelBody *body = net->State->Body;
    while (net->Queue.size > 0) {
        const int j = net->Queue.data[--net->Queue.size];
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
            const int i = body->vind.data[p];
            if (net->Sign.data[i] || body->vval.data[p] == 0) continue;
            net->Sign.data[i] = 1;
            exclude_row(net, i);
        }
    }
}

int number_of_rows(const ModelBody *body, int j)
{
    int count = 0;
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
        count +=
            body->vval.data[p] != 0 && row_kind(body, body->vind.data[p]) != RowKind::FREE;
    return count;
}

int find_members(Network *net, const Array<char> &barred)
{
    const MIPState *state = net->State;
    const ModelBody *body = state->Body;
    TRY(array_assign(&net->Belongs, body->numvars, char{0}));
    TRY(array_assign(&net->Sign, body->numconstrs, char{0}));
    TRY(array_reserve(&net->Queue, std::max(body->numvars, body->numconstrs)));
    for (int j = 0; j < body->numvars; j++) net->Belongs.data[j] = is_active(state, j);
    for (int j = 0; j < body->numvars; j++)
        // What is implied on its own stays continuous in the rows of others.
        if ((net->State->Implied.data[j] != IMPLIED_OPTIMAL &&
             !may_be_implied(state, barred, j)) ||
            number_of_rows(body, j) > 2)
            exclude(net, j);
    for (int i = 0; i < body->numconstrs; i++)
        if (!row_qualifies(state, i)) exclude_row(net, i);
    spread_exclusion(net);
    return array_assign(&net->Sign, body->numconstrs, char{0});
}

// The sign that the other row of a column needs; false: it has another one.
bool sign_other_row(Network *net, int i, int j)
{
    const ModelBody *body = net->State->Body;
    int other = -1;
    double here = 0, there = 0;
    for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++) {
        const double a = body->vval.data[p];
        if (body->vind.data[p] == i) {
            here = a;
        } else if (a != 0 && row_kind(body, body->vind.data[p]) != RowKind::FREE) {
            other = body->vind.data[p];
            there = a;
        }
    }
    if (other < 0) return true;
    const char wanted = static_cast<char>((here > 0) == (there > 0) ? -net->Sign.data[i]
                                                                    : net->Sign.data[i]);
    if (net->Sign.data[other]) return net->Sign.data[other] == wanted;
    net->Sign.data[other] = wanted;
    array_push(&net->Queue, other); // once per row
    return true;
}

bool walk_from(Network *net, int i)
{
    const PropagationRows *rows = net->State->Rows;
    net->Sign.data[i] = 1;
    array_push(&net->Queue, i);
    while (net->Queue.size > 0) {
        const int at = net->Queue.data[--net->Queue.size];
        for (int64_t p = rows->RowBeg.data[at]; p < rows->RowBeg.data[at + 1]; p++) {
            const int j = rows->Entry.data[p].Col;
            if (net->Belongs.data[j] && !sign_other_row(net, at, j)) return false;
        }
    }
    return true;
}
} // namespace

int find_network(MIPState *state, const Array<char> &barred, int *count)
{
    Network net = {state, {}, {}, {}};
    *count = 0;
    TRY(find_members(&net, barred));
    for (int i = 0; i < state->Body->numconstrs; i++)
        if (!net.Sign.data[i] && row_kind(state->Body, i) != RowKind::FREE &&
            !walk_from(&net, i))
            return 0; // a contradiction
    for (int j = 0; j < state->Body->numvars; j++) {
        if (!net.Belongs.data[j]) continue;
        state->Implied.data[j] = IMPLIED_OPTIMAL;
        ++*count;
    }
    return 0;
}
