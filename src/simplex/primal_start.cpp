// primal_start.cpp -- crash basis for the primal simplex
//
// Problem     The slack of an equation is an artificial variable: in a slack basis it has to leave, which mostly takes
//             an iteration of phase 1, and until then it blocks every step.
// Method      Columns replace such slacks where the values follow without a factorisation. Columns are tried in one
//             order: free ones first, then by cost.
//             singletons  a column with one entry and no upper bound replaces the slack of its equation, first where
//                         its value is within its bounds, then anywhere. It also replaces the slack of a violated
//                         inequality.
//             triangle    a short column without entries in rows closed in this step enters in an equation that it can
//                         satisfy with a value within its bounds; of several equations in the one with the fewest
//                         candidate columns. This row is then closed: no later column changes it, so that all values
//                         are known at once.
//             If the sum of infeasibilities becomes too large, the slack basis is restored.
// In, out     VStat and BasisHead of a basis of slacks, no superbasics -> triangular basis. 0 or OUT_OF_MEMORY.
// Cost        O(nonzeros), and a sort of the columns.
// Literature  R. E. Bixby, "Implementing the simplex method: the initial basis", ORSA J. Comp. 4, 1992; N. I. M. Gould
//             and J. K. Reid, "New crash procedures for large systems of linear constraints", Math. Prog. 45, 1989.
#include "simplex/primal.h"
#include <algorithm>

namespace
{
constexpr int SHORT_LENGTH = 10; // only columns with fewer entries are tried

constexpr double VALUE_MOST = 1e8; // largest value of a variable that becomes basic

constexpr double PIVOT_LEAST = 1e-5; // smallest pivot

// smallest pivot as a share of the largest entry of its column
constexpr double PIVOT_SHARE = 0.1;

constexpr double BOUND_SLOP = 1e-9; // by which a value may be outside of its bounds

// Growth of the sum of infeasibilities from which the slack basis is restored.
constexpr double GROWTH_MOST = 1e4;

struct Crash {
    // [m] Rhs minus the nonbasics and the columns of the triangle.
    double *Residual = nullptr;
    Array<int> Order;      // columns that may enter, best first
    Array<int> Candidates; // [m] columns that may still close the row
    Array<char> Closed;    // [m] row belongs to the triangle
};

int length(const sopt *s, int j)
{
    return s->ColBeg.data[j + 1] - s->ColBeg.data[j];
}

bool is_equation(const sopt *s, int i)
{
    return s->Upper.data[s->NumCols + i] == 0; // assigned
}

bool is_open(const sopt *s, int i)
{
    return s->BasisHead.data[i] >= s->NumCols;
}

double start_value(const sopt *s, int j)
{
    const int status = s->VStat.data[j];
    return status == AT_FREE ? 0 : status == AT_UPPER ? s->Upper.data[j] : s->Lower.data[j];
}

void move_column(const sopt *s, Crash *c, int j, double step)
{
    if (step == 0) return;
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
        c->Residual[s->ColInd.data[p]] -= s->ColVal.data[p] * step;
}

double infeasibility(const sopt *s, const Crash *c)
{
    double sum = 0;
    for (int i = 0; i < s->NumRows; i++) {
        const int j = s->BasisHead.data[i];
        double value = c->Residual[i];
        if (c->Closed.data[i]) continue;
        if (is_open(s, i)) {
            sum += is_equation(s, i) ? std::fabs(value) : std::max(0.0, -value);
        } else if (has_lower(s, s->Lower.data[j])) { // a singleton above its lower bound
            sum += std::max(0.0, -value / s->ColVal.data[s->ColBeg.data[j]]);
        }
    }
    return sum;
}

void enter(sopt *s, int i, int j)
{
    s->VStat.data[j] = i;
    s->BasisHead.data[i] = j;
    s->VStat.data[s->NumCols + i] = is_equation(s, i) ? AT_FIXED : AT_LOWER;
}

int list_columns(const sopt *s, Crash *c)
{
    TRY(array_reserve(&c->Order, s->NumCols));
    for (int j = 0; j < s->NumCols; j++)
        if (s->VStat.data[j] != AT_FIXED && length(s, j) > 0 && length(s, j) < SHORT_LENGTH)
            array_push(&c->Order, j);
    std::sort(c->Order.data, c->Order.data + c->Order.size, [s](int a, int b) {
        const bool a_free = s->VStat.data[a] == AT_FREE,
                   b_free = s->VStat.data[b] == AT_FREE;
        if (a_free != b_free) return a_free;
        if (s->Cost.data[a] != s->Cost.data[b]) return s->Cost.data[a] < s->Cost.data[b];
        return a < b;
    });
    return 0;
}

enum class Where { IT_HELPS, ANY_EQUATION };

void enter_singletons(sopt *s, Crash *c, Where where)
{
    for (int64_t k = 0; k < c->Order.size; k++) {
        const int j = c->Order.data[k], p = s->ColBeg.data[j], status = s->VStat.data[j];
        if (length(s, j) != 1 || is_basic(s, j) || has_upper(s, s->Upper.data[j])) continue;
        const int i = s->ColInd.data[p];
        const double a = s->ColVal.data[p], step = c->Residual[i] / a;
        if (!is_open(s, i) || std::fabs(a) < PIVOT_LEAST || std::fabs(step) > VALUE_MOST)
            continue;
        const bool helps = status == AT_FREE || step >= 0;
        const bool needed = is_equation(s, i) ? helps || where == Where::ANY_EQUATION
                                              : helps && c->Residual[i] < 0;
        if (needed) enter(s, i, j);
    }
}

// The entry at which column j may close a row, or -1.
int closing_entry(const sopt *s, const Crash *c, int j)
{
    double largest = 0;
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        if (c->Closed.data[s->ColInd.data[p]]) return -1;
        largest = std::max(largest, std::fabs(s->ColVal.data[p]));
    }
    const double least = std::max(PIVOT_LEAST, PIVOT_SHARE * largest);
    int best = -1, fewest = s->NumCols + 1;
    for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++) {
        const int i = s->ColInd.data[p];
        const double a = s->ColVal.data[p];
        if (!is_open(s, i) || !is_equation(s, i) || std::fabs(a) < least) continue;
        const double value = start_value(s, j) + c->Residual[i] / a;
        if (value < s->Lower.data[j] - BOUND_SLOP ||
            value > s->Upper.data[j] + BOUND_SLOP || std::fabs(value) > VALUE_MOST ||
            c->Candidates.data[i] >= fewest)
            continue;
        fewest = c->Candidates.data[i];
        best = p;
    }
    return best;
}

int enter_triangle(sopt *s, Crash *c)
{
    TRY(array_assign(&c->Candidates, s->NumRows, 0));
    for (int64_t k = 0; k < c->Order.size; k++) {
        const int j = c->Order.data[k];
        s->WorkUnits += length(s, j);
        if (is_basic(s, j)) continue;
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
            c->Candidates.data[s->ColInd.data[p]]++;
    }
    for (int64_t k = 0; k < c->Order.size; k++) {
        const int j = c->Order.data[k];
        const int p = is_basic(s, j) ? -1 : closing_entry(s, c, j);
        if (p < 0) continue;
        const int i = s->ColInd.data[p];
        move_column(s, c, j, c->Residual[i] / s->ColVal.data[p]);
        for (int q = s->ColBeg.data[j]; q < s->ColBeg.data[j + 1]; q++)
            c->Candidates.data[s->ColInd.data[q]]--;
        enter(s, i, j);
        c->Closed.data[i] = 1;
    }
    return 0;
}
} // namespace

int primal_start(sopt *s)
{
    Crash c;
    c.Residual = s->RowWork.data;
    TRY(array_assign(&c.Closed, s->NumRows, char(0)));
    TRY(list_columns(s, &c));
    std::copy_n(s->Rhs.data, s->NumRows, c.Residual);
    for (int j = 0; j < s->NumCols; j++) move_column(s, &c, j, start_value(s, j));
    const double before = infeasibility(s, &c);
    enter_singletons(s, &c, Where::IT_HELPS);
    enter_singletons(s, &c, Where::ANY_EQUATION);
    TRY(enter_triangle(s, &c));
    s->BasisAge++;
    if (infeasibility(s, &c) <= GROWTH_MOST * (1 + before)) return 0;
    start_slack_basis(s);
    TVXmsg(s->Env, "Warning: Primal crushed basis discarded.\n");
    return 0;
}
