// lp_check_basis.cpp -- is the reported basis a basis, and do the nonbasic variables stand where it says?
//
// The matrix of basic columns (slack columns are unit columns) must be regular; skipped for more than MAX_FACTOR_ROWS
// rows.
#include "support/lp_check.h"
#include <algorithm>
#include <cmath>

static constexpr int MAX_FACTOR_ROWS = 400;
static constexpr double SINGULAR =
    1e-11; // largest entry left, relative to 1: rows and columns are scaled

Matrix basis_matrix(const LpModel *lp, const LpSolution *s)
{
    Matrix b(lp->rhs.size());
    const auto add = [&b](const std::vector<LpEntry> &column) {
        for (auto &row : b) row.push_back(0);
        for (const LpEntry &e : column) b[e.row].back() = e.value;
    };
    for (int j = 0; j < lp->num_vars(); j++)
        if (s->vbasis[j] == 0) add(lp->cols[j]);
    for (int i = 0; i < lp->num_rows(); i++)
        if (s->cbasis[i] == 0) add({{i, 1}});
    return b;
}

static bool is_regular(Matrix b)
{
    for (size_t c = 0; c < b.size(); c++) {
        long double largest = 0;
        for (const auto &row : b) largest = std::max(largest, std::fabs(row[c]));
        for (auto &row : b) row[c] /= largest;
    }
    for (auto &row : b) {
        long double largest = 0;
        for (const long double v : row) largest = std::max(largest, std::fabs(v));
        for (long double &v : row) v /= largest;
    }
    return b.empty() || !inverse(b, SINGULAR).empty();
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
    else if (m <= MAX_FACTOR_ROWS && !is_regular(basis_matrix(lp, solution)))
        faults->emplace_back("basis matrix is singular");
}
