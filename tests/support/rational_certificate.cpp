// rational_certificate.cpp -- points, multipliers and rays of a basis, exactly
//
// Problem     B are the basic columns, T the rows whose activity is nonbasic; |B| = |T| = k. With M = A_TB:
//               x       M x_B = b_T - A_TN x_N,  x_N and b_T at the ends of their ranges
//               pi      M' pi_T = c_B
//               ray     what x changes by when the nonbasic variable that moves for ever does so by 1
//               Farkas  pi when a basic variable that nothing repairs is the objective
// Method      One k x k system each, made integer and eliminated without fractions (all divisions are exact).
// Cost        O(k^3) integer operations on numbers of up to k times 60 bits.
// Literature  E. H. Bareiss, "Sylvester's identity and multistep integer-preserving Gaussian elimination", Math.
//             Comp. 22, 1968.
#include "support/dictionary.h"

namespace
{

using Vector = std::vector<mpq_class>;
using IntegerRow = std::vector<mpz_class>;

struct Basis {
    const LpModel *lp;
    double relax;
    const DictionaryEnd *end;
    std::vector<int> cols;     // B
    std::vector<size_t> rows;  // T
    std::vector<int> row_spot; // [m] position in T, or -1
    std::vector<int> col_spot; // [n] position in B, or -1
};

} // namespace

// Integer rows M_i | rhs_i: each M_i times its least common denominator, all rhs times one factor more, the result.
static mpz_class make_integer(const std::vector<Vector> &matrix, Vector rhs,
                              std::vector<IntegerRow> *out)
{
    mpz_class common = 1;
    for (size_t i = 0; i < matrix.size(); i++) {
        mpz_class factor = 1;
        for (const mpq_class &a : matrix[i]) factor = lcm(factor, a.get_den());
        IntegerRow row;
        for (const mpq_class &a : matrix[i])
            row.push_back(a.get_num() * (factor / a.get_den()));
        out->push_back(row);
        rhs[i] *= factor;
        common = lcm(common, rhs[i].get_den());
    }
    for (size_t i = 0; i < matrix.size(); i++)
        (*out)[i].push_back(mpq_class(rhs[i] * common).get_num());
    return common;
}

// matrix * x = rhs by Gauss and Jordan without fractions; false when singular. Columns left of `step` are done with.
static bool solve_square(const std::vector<Vector> &matrix, const Vector &rhs, Vector *x)
{
    const size_t k = matrix.size();
    std::vector<IntegerRow> rows;
    const mpz_class common = make_integer(matrix, rhs, &rows);
    mpz_class determinant = 1;
    for (size_t step = 0; step < k; step++) {
        size_t pivot = step;
        while (pivot < k && rows[pivot][step] == 0) pivot++;
        if (pivot == k) return false;
        std::swap(rows[step], rows[pivot]);
        const IntegerRow &top = rows[step];
        for (size_t i = 0; i < k; i++)
            for (size_t c = step + 1; c <= k && i != step; c++) {
                mpz_class *a = &rows[i][c];
                *a = *a * top[step] - rows[i][step] * top[c];
                mpz_divexact(a->get_mpz_t(), a->get_mpz_t(), determinant.get_mpz_t());
            }
        determinant = top[step];
    }
    x->clear();
    for (const IntegerRow &row : rows) {
        x->emplace_back(row[k], determinant * common); // Cramer's rule
        x->back().canonicalize();
    }
    return true;
}

static std::vector<Vector> basis_matrix(const Basis *basis, bool transposed)
{
    const size_t k = basis->cols.size();
    std::vector<Vector> matrix(k, Vector(k));
    for (size_t c = 0; c < k; c++)
        for (const LpEntry &e : basis->lp->cols[basis->cols[c]]) {
            const int r = basis->row_spot[e.row];
            if (r >= 0) (transposed ? matrix[c][r] : matrix[r][c]) = e.value;
        }
    return matrix;
}

// The point of the basis, with one nonbasic variable off its end by a step.
static bool find_point(const Basis *basis, int moved, int step, Vector *x)
{
    const LpModel *lp = basis->lp;
    const size_t n = lp->obj.size();
    const auto place = [&](size_t v, const RationalRange &range) -> mpq_class {
        const int at = basis->end->place[v];
        return (at == -1   ? range.low
                : at == -2 ? range.high
                           : mpq_class(0)) +
               (static_cast<int>(v) == moved ? step : 0);
    };
    Vector rhs, basic;
    for (const size_t i : basis->rows)
        rhs.push_back(place(n + i, relaxed_row(lp, i, basis->relax)));
    x->assign(n, 0);
    for (size_t j = 0; j < n; j++) {
        if (basis->col_spot[j] >= 0) continue;
        (*x)[j] = place(j, relaxed_column(lp, j, basis->relax));
        for (const LpEntry &e : lp->cols[j])
            if (basis->row_spot[e.row] >= 0)
                rhs[basis->row_spot[e.row]] -= e.value * (*x)[j];
    }
    if (!solve_square(basis_matrix(basis, false), rhs, &basic)) return false;
    for (size_t c = 0; c < basic.size(); c++) (*x)[basis->cols[c]] = basic[c];
    return true;
}

// Multipliers of T from the costs of B, spread over all rows.
static bool find_multipliers(const Basis *basis, const Vector &costs, Vector *y)
{
    Vector tight;
    y->assign(basis->lp->rhs.size(), 0);
    if (!solve_square(basis_matrix(basis, true), costs, &tight)) return false;
    for (size_t r = 0; r < tight.size(); r++) (*y)[basis->rows[r]] = tight[r];
    return true;
}

static bool find_optimum(const Basis *basis, RationalResult *result)
{
    const LpModel *lp = basis->lp;
    Vector costs;
    for (const int j : basis->cols) costs.emplace_back(lp->obj[j]);
    result->value = lp->objcon;
    for (size_t j = 0; j < lp->obj.size(); j++) result->value += lp->obj[j] * result->x[j];
    result->vbasis.assign(basis->end->place.begin(),
                          basis->end->place.begin() + lp->num_vars());
    for (const int spot : basis->row_spot) result->cbasis.push_back(spot < 0 ? 0 : -1);
    return find_multipliers(basis, costs, &result->pi);
}

static bool find_farkas(const Basis *basis, RationalResult *result)
{
    const int n = basis->lp->num_vars(), witness = basis->end->witness;
    Vector costs;
    for (const int j : basis->cols)
        costs.emplace_back(witness < n ? double(j == witness)
                                       : lp_get_entry(basis->lp, witness - n, j));
    if (!find_multipliers(basis, costs, &result->farkas)) return false;
    if (witness >= n) result->farkas[witness - n] = -1;
    return true;
}

static bool find_ray(const Basis *basis, RationalResult *result)
{
    if (!find_point(basis, basis->end->witness, basis->end->direction, &result->ray))
        return false;
    for (size_t j = 0; j < result->x.size(); j++) result->ray[j] -= result->x[j];
    return true;
}

static Basis split_basis(const LpModel *lp, double relax, const DictionaryEnd *end)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    Basis basis{lp, relax, end, {}, {}, std::vector<int>(m, -1), std::vector<int>(n, -1)};
    for (size_t j = 0; j < n; j++) {
        if (end->place[j] != 0) continue;
        basis.col_spot[j] = static_cast<int>(basis.cols.size());
        basis.cols.push_back(static_cast<int>(j));
    }
    for (size_t i = 0; i < m; i++) {
        if (end->place[n + i] == 0) continue;
        basis.row_spot[i] = static_cast<int>(basis.rows.size());
        basis.rows.push_back(i);
    }
    return basis;
}

bool rational_certificate(const LpModel *lp, double relax, const DictionaryEnd &end,
                          RationalResult *result)
{
    const Basis basis = split_basis(lp, relax, &end);
    *result = RationalResult{};
    result->status = end.status;
    if (end.status == LpStatus::INFEASIBLE) return find_farkas(&basis, result);
    if (!find_point(&basis, -1, 0, &result->x)) return false;
    return end.status == LpStatus::UNBOUNDED ? find_ray(&basis, result)
                                             : find_optimum(&basis, result);
}
