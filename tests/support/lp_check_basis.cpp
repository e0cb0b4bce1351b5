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

// Nonbasic at `bound`, the sum or value being x.
static std::string wrong_place(double bound, long double x, double tol)
{
    if (lp_is_infinite(bound)) return " nonbasic at an infinite bound\n";
    const long double apart = std::fabs(x - bound);
    return apart > tol * std::max(1.0, std::fabs(bound)) ? " nonbasic, but not there\n"
                                                         : "";
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
    const auto add = [&](char kind, size_t k, const std::string &wrong) {
        if (!wrong.empty()) faults->push_back(kind + std::to_string(k) + wrong);
    };
    for (size_t j = 0; j < n; j++) {
        const int status = solution->vbasis[j];
        const double lb = lp->lb[j], ub = lp->ub[j];
        basics += status == 0;
        if (status == -1 || status == -2)
            add('C', j, wrong_place(status == -1 ? lb : ub, solution->x[j], tol_primal));
        if (status == -3 && !(lp_is_infinite(lb) && lp_is_infinite(ub)))
            add('C', j, " superbasic though it has a bound");
        if (status < -3 || status > 0) add('C', j, " has a VBasis that does not exist");
    }
    for (size_t i = 0; i < m; i++) {
        const int status = solution->cbasis[i];
        basics += status == 0;
        if (status == -1) add('R', i, wrong_place(lp->rhs[i], activity[i], tol_primal));
        if (status < -1 || status > 0) add('R', i, " has a CBasis that does not exist");
    }
    if (basics != m)
        faults->push_back(std::to_string(basics) + " basics for " + std::to_string(m) +
                          " rows");
    else if (m <= MAX_FACTOR_ROWS && !is_regular(basis_matrix(lp, solution)))
        faults->emplace_back("basis matrix is singular");
}
