// dive_cuts.cpp -- Gomory mixed-integer cuts for a live record
#include "dive_lp.h"
#include <cmath>

namespace
{
constexpr size_t CUTS = 10; // of one point

constexpr double ZERO = 1e-12;          // entries of the row up to this are rounding errors
constexpr double FRACTION_LEAST = 0.01; // of the right-hand side, and as far from 1
constexpr double VALUE_FRACTION = 0.05; // of a variable whose row is used
// Coefficients of a cut below DROPPED of the largest are left out; one below KEPT makes the cut useless, as it ranges
// too far.
constexpr double DROPPED = 1e-11, KEPT = 1e-6;

// The Gomory mixed-integer cut of the row of basic integer variable k, on the columns, or an empty one.
Cut gomory_cut(const Lp *lp, int k)
{
    const ModelBody *body = lp->body;
    const int n = body->numvars, m = simplex_num_rows(lp->record);
    const LiveVector y = simplex_inverse_row(lp->record, k);
    std::vector<double> g(size_t(n), 0.0), rows(size_t(m), 0.0);
    double rhs = 0;
    for (int p = 0; p < y.Count; p++) {
        const int i = y.Ind[p];
        if (i >= body->numconstrs) return {}; // a cut: its row is not in the body
        rows[size_t(i)] = y.Val[i] * y.Scale[i] * y.Factor;
        rhs += rows[size_t(i)] * body->rhs.data[i];
    }
    for (int j = 0; j < n; j++)
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            g[size_t(j)] += rows[size_t(body->vind.data[p])] * body->vval.data[p];
    // shifted to the bounds at which the nonbasics are: x = l + t or u - t
    std::vector<char> upper(size_t(n), 0);
    for (int j = 0; j < n; j++) {
        if (simplex_is_basic(lp->record, j) || std::fabs(g[size_t(j)]) < ZERO) continue;
        const double x = simplex_value(lp->record, j);
        upper[size_t(j)] = x == lp->upper[size_t(j)] && x != lp->lower[size_t(j)];
        rhs -= g[size_t(j)] * x;
    }
    const double f0 = rhs - std::floor(rhs);
    if (f0 < FRACTION_LEAST || f0 > 1 - FRACTION_LEAST) return {};
    const auto weight = [&](double a, bool integral) { // of t in  sum weight t >= 1
        if (!integral) return a > 0 ? a / f0 : -a / (1 - f0);
        const double f = a - std::floor(a);
        return f <= f0 ? f / f0 : (1 - f) / (1 - f0);
    };
    Cut cut; // - sum weight t <= -1, in x
    cut.rhs = -1;
    std::vector<double> c(size_t(n), 0.0);
    for (int j = 0; j < n; j++) {
        if (simplex_is_basic(lp->record, j) || std::fabs(g[size_t(j)]) < ZERO) continue;
        const double sign = upper[size_t(j)] ? -1 : 1, bound = simplex_value(lp->record, j);
        const double w = weight(sign * g[size_t(j)], lp->integer(j));
        c[size_t(j)] -= w * sign;
        cut.rhs -= w * sign * bound;
    }
    for (int i = 0; i < m; i++) { // slack = rhs - row
        if (rows[size_t(i)] == 0 || body->senses.data[i] == '=') continue;
        const double w = weight(rows[size_t(i)], false);
        cut.rhs += w * body->rhs.data[i];
        rows[size_t(i)] = w;
    }
    for (int j = 0; j < n; j++)
        for (int p = body->vbeg.data[j]; p < body->vbeg.data[j + 1]; p++)
            if (body->senses.data[body->vind.data[p]] != '=')
                c[size_t(j)] += rows[size_t(body->vind.data[p])] * body->vval.data[p];
    double most = 0;
    for (const double v : c) most = std::max(most, std::fabs(v));
    for (int j = 0; j < n; j++) {
        if (std::fabs(c[size_t(j)]) < DROPPED * most) continue;
        if (std::fabs(c[size_t(j)]) < KEPT * most) return {};
        cut.ind.push_back(j);
        cut.val.push_back(c[size_t(j)]);
    }
    return cut;
}
} // namespace

// Of the first basic integer variables with a fractional value.
std::vector<Cut> cuts_of_point(const Lp *lp)
{
    std::vector<Cut> cuts;
    for (int j = 0; j < lp->body->numvars && cuts.size() < CUTS; j++) {
        if (!lp->integer(j) || !simplex_is_basic(lp->record, j)) continue;
        const double x = simplex_value(lp->record, j);
        if (std::fabs(x - std::round(x)) < VALUE_FRACTION) continue;
        Cut cut = gomory_cut(lp, j);
        if (!cut.ind.empty()) cuts.push_back(cut);
    }
    return cuts;
}

void append_cuts(Lp *lp, const std::vector<Cut> &cuts)
{
    std::vector<LiveRow> rows;
    for (const Cut &cut : cuts)
        rows.push_back({int(cut.ind.size()), cut.ind.data(), cut.val.data(), '<', cut.rhs});
    if (int code = simplex_append_rows(lp->record, rows.data(), int(rows.size())))
        fail("append", code);
}

void delete_slack_cuts(Lp *lp)
{
    const int m = simplex_num_rows(lp->record), n = lp->body->numvars;
    std::vector<char> drop(size_t(m), 0);
    for (int i = lp->body->numconstrs; i < m; i++)
        drop[size_t(i)] = simplex_is_basic(lp->record, n + i);
    if (int code = simplex_delete_rows(lp->record, drop.data())) fail("delete", code);
}
