// lp_check_basis.cpp -- is the reported basis a basis, and do the nonbasic variables stand where it says?
//
// The matrix of basic columns (slack columns are unit columns) must be regular: sparse elimination with a map
// per row, pivots by fewest entries among those of good size. Slow and plain; skipped for more than
// MAX_FACTOR_ROWS rows.
#include "support/lp_check.h"
#include <algorithm>
#include <cmath>
#include <map>

static constexpr int MAX_FACTOR_ROWS = 400;
static constexpr double SINGULAR =
    1e-11; // largest entry left, relative to 1: rows and columns are scaled

using SparseRow = std::map<int, long double>;

// The basis matrix by rows, each row scaled to largest entry 1.
static std::vector<SparseRow> basis_rows(const LpModel *lp, const LpSolution *s)
{
    std::vector<SparseRow> rows(lp->rhs.size());
    int position = 0;
    for (size_t j = 0; j < lp->obj.size(); j++) {
        if (s->vbasis[j] != 0) continue;
        long double largest = 0;
        for (const LpEntry &e : lp->cols[j])
            largest = std::max(largest, std::fabs(static_cast<long double>(e.value)));
        for (const LpEntry &e : lp->cols[j]) rows[e.row][position] = e.value / largest;
        position++;
    }
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (s->cbasis[i] == 0) rows[i][position++] = 1;
    for (SparseRow &row : rows) {
        long double largest = 0;
        for (const auto &[col, value] : row) largest = std::max(largest, std::fabs(value));
        for (auto &[col, value] : row) value /= largest;
    }
    return rows;
}

// The next pivot row is the shortest one; its largest entry is the pivot.
static bool is_regular(std::vector<SparseRow> rows)
{
    while (!rows.empty()) {
        const auto shorter = [](const SparseRow &a, const SparseRow &b) {
            return a.size() < b.size();
        };
        std::iter_swap(std::min_element(rows.begin(), rows.end(), shorter), rows.end() - 1);
        const SparseRow top = rows.back();
        rows.pop_back();
        std::pair<int, long double> pivot = {-1, 0};
        for (const auto &entry : top)
            if (std::fabs(entry.second) > std::fabs(pivot.second)) pivot = entry;
        if (std::fabs(pivot.second) < static_cast<long double>(SINGULAR)) return false;
        for (SparseRow &row : rows) {
            const auto entry = row.find(pivot.first);
            if (entry == row.end()) continue;
            const long double factor = entry->second / pivot.second;
            for (const auto &[col, value] : top) row[col] -= factor * value;
            row.erase(pivot.first);
        }
    }
    return true;
}

static std::string at_place(const LpModel *lp, size_t j, int status, double x, double tol)
{
    const double lb = lp->lb[j], ub = lp->ub[j];
    const auto apart = [&](double bound) {
        return std::fabs(x - bound) > tol * std::max(1.0, std::fabs(bound));
    };
    const std::string name = "C" + std::to_string(j);
    if (status == -1 && lp_is_infinite(lb))
        return name + " nonbasic at an infinite lower bound";
    if (status == -2 && lp_is_infinite(ub))
        return name + " nonbasic at an infinite upper bound";
    if (status == -1 && apart(lb)) return name + " nonbasic at lower, but not there";
    if (status == -2 && apart(ub)) return name + " nonbasic at upper, but not there";
    if (status == -3 && !(lp_is_infinite(lb) && lp_is_infinite(ub)))
        return name + " superbasic though it has a bound";
    if (status < -3 || status > 0) return name + " has a VBasis that does not exist";
    return "";
}

void lp_check_basis(const LpModel *lp, const LpSolution *solution, double tol_primal,
                    std::vector<std::string> *faults)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    if (solution->vbasis.size() != n || solution->cbasis.size() != m) {
        faults->emplace_back("basis has the wrong size");
        return;
    }
    const std::vector<long double> activity = lp_activity(lp, solution->x);
    size_t basics = 0;
    for (size_t j = 0; j < n; j++) {
        if (solution->vbasis[j] == 0) basics++;
        const std::string wrong =
            at_place(lp, j, solution->vbasis[j], solution->x[j], tol_primal);
        if (!wrong.empty()) faults->push_back(wrong);
    }
    for (size_t i = 0; i < m; i++) {
        if (solution->cbasis[i] == 0) basics++;
        const long double gap = std::fabs(activity[i] - lp->rhs[i]);
        const std::string name = "R" + std::to_string(i);
        if (solution->cbasis[i] != 0 && solution->cbasis[i] != -1)
            faults->push_back(name + " has a CBasis that does not exist");
        else if (solution->cbasis[i] == -1 &&
                 gap > tol_primal * std::max(1.0, std::fabs(lp->rhs[i])))
            faults->push_back(name + " nonbasic, but its slack is not 0");
    }
    if (basics != m)
        faults->push_back(std::to_string(basics) + " basics for " + std::to_string(m) +
                          " rows");
    else if (m <= MAX_FACTOR_ROWS && !is_regular(basis_rows(lp, solution)))
        faults->emplace_back("basis matrix is singular");
}
