// rational_certificate.cpp -- points, multipliers and rays of a basis, exactly
//
// Problem     B are the basic columns, T the rows whose activity is nonbasic; |B| = |T| = k. With M = A_TB:
//               x       M x_B = b_T - A_TN x_N,  x_N and b_T at the ends of their ranges
//               pi      M' pi_T = c_B
//               ray     M r_B = -A_Tq r_q for a column q that moves, = direction e_q for a row activity
//               Farkas  M' y_T = -a_p,B with y_p = 1 for a row p that nothing repairs, = e_p for a column
// Method      One k x k system each, made integer and eliminated without fractions (all divisions are exact).
// Cost        O(k^3) integer operations on numbers of up to k times 60 bits.
// Literature  E. H. Bareiss, "Sylvester's identity and multistep integer-preserving Gaussian elimination", Math.
//             Comp. 22, 1968.
#include "support/rational_certificate.h"

namespace
{

using Vector = std::vector<mpq_class>;
using IntegerRow = std::vector<mpz_class>;

struct Basis {
    const LpModel *lp;
    double relax;
    const DictionaryEnd *end;
    std::vector<int> cols;     // B
    std::vector<int> rows;     // T
    std::vector<int> row_spot; // [m] position in T, or -1
    std::vector<int> col_spot; // [n] position in B, or -1
};

} // namespace

// Rows M_i | rhs_i times the least common denominator of M_i; rhs times one more for all. Returns that one.
static mpz_class make_integer(const std::vector<Vector> &matrix, const Vector &rhs,
                              std::vector<IntegerRow> *out)
{
    Vector right = rhs;
    mpz_class common = 1;
    for (size_t i = 0; i < matrix.size(); i++) {
        mpz_class factor = 1;
        for (const mpq_class &a : matrix[i]) factor = lcm(factor, a.get_den());
        IntegerRow row;
        for (const mpq_class &a : matrix[i])
            row.push_back(a.get_num() * (factor / a.get_den()));
        out->push_back(row);
        right[i] *= factor;
        common = lcm(common, right[i].get_den());
    }
    for (size_t i = 0; i < matrix.size(); i++) {
        right[i] *= common;
        (*out)[i].push_back(right[i].get_num());
    }
    return common;
}

// The row from `step` on with the shortest nonzero entry in column `step`, or -1.
static int choose_pivot(const std::vector<IntegerRow> &rows, size_t step)
{
    int best = -1;
    size_t best_bits = 0;
    for (size_t i = step; i < rows.size(); i++) {
        if (rows[i][step] == 0) continue;
        const size_t bits = mpz_sizeinbase(rows[i][step].get_mpz_t(), 2);
        if (best >= 0 && bits >= best_bits) continue;
        best = static_cast<int>(i);
        best_bits = bits;
    }
    return best;
}

// Upper triangular form in place; false when singular.
static bool eliminate(std::vector<IntegerRow> *rows)
{
    const size_t k = rows->size();
    mpz_class previous = 1, product;
    for (size_t step = 0; step < k; step++) {
        const int found = choose_pivot(*rows, step);
        if (found < 0) return false;
        std::swap((*rows)[step], (*rows)[found]);
        const IntegerRow &top = (*rows)[step];
        for (size_t i = step + 1; i < k; i++) {
            IntegerRow *row = &(*rows)[i];
            for (size_t c = step + 1; c <= k; c++) {
                mpz_class *a = &(*row)[c];
                *a *= top[step];
                product = (*row)[step] * top[c];
                *a -= product;
                mpz_divexact(a->get_mpz_t(), a->get_mpz_t(), previous.get_mpz_t());
            }
            (*row)[step] = 0;
        }
        previous = top[step];
    }
    return true;
}

// matrix * x = rhs; false when singular.
static bool solve_square(const std::vector<Vector> &matrix, const Vector &rhs, Vector *x)
{
    const size_t k = matrix.size();
    x->assign(k, 0);
    if (k == 0) return true;
    std::vector<IntegerRow> rows;
    const mpz_class common = make_integer(matrix, rhs, &rows);
    if (!eliminate(&rows)) return false;
    const mpz_class determinant = rows[k - 1][k - 1];
    IntegerRow scaled(k); // x * determinant, integer by Cramer's rule
    for (size_t i = k; i-- > 0;) {
        mpz_class sum = determinant * rows[i][k];
        for (size_t c = i + 1; c < k; c++) sum -= rows[i][c] * scaled[c];
        mpz_divexact(scaled[i].get_mpz_t(), sum.get_mpz_t(), rows[i][i].get_mpz_t());
    }
    for (size_t i = 0; i < k; i++) {
        (*x)[i] = mpq_class(scaled[i], determinant * common);
        (*x)[i].canonicalize();
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

static mpq_class end_value(const RationalRange &range, int place)
{
    return place == -1 ? range.low : place == -2 ? range.high : mpq_class(0);
}

static bool find_point(const Basis *basis, Vector *x)
{
    const LpModel *lp = basis->lp;
    const size_t n = lp->obj.size();
    Vector rhs(basis->rows.size());
    x->assign(n, 0);
    for (size_t r = 0; r < rhs.size(); r++) {
        const size_t row = static_cast<size_t>(basis->rows[r]);
        rhs[r] = end_value(relaxed_row(lp, row, basis->relax), basis->end->place[n + row]);
    }
    for (size_t j = 0; j < n; j++) {
        if (basis->col_spot[j] >= 0) continue;
        (*x)[j] = end_value(relaxed_column(lp, j, basis->relax), basis->end->place[j]);
        for (const LpEntry &e : lp->cols[j])
            if (basis->row_spot[e.row] >= 0)
                rhs[basis->row_spot[e.row]] -= e.value * (*x)[j];
    }
    Vector basic;
    if (!solve_square(basis_matrix(basis, false), rhs, &basic)) return false;
    for (size_t c = 0; c < basic.size(); c++) (*x)[basis->cols[c]] = basic[c];
    return true;
}

// Multipliers of T from a right-hand side over B, spread over all rows.
static bool find_multipliers(const Basis *basis, const Vector &rhs, Vector *y)
{
    Vector tight;
    y->assign(basis->lp->rhs.size(), 0);
    if (!solve_square(basis_matrix(basis, true), rhs, &tight)) return false;
    for (size_t r = 0; r < tight.size(); r++) (*y)[basis->rows[r]] = tight[r];
    return true;
}

static bool find_optimum(const Basis *basis, RationalResult *result)
{
    const LpModel *lp = basis->lp;
    Vector cost;
    for (const int j : basis->cols) cost.emplace_back(lp->obj[j]);
    if (!find_multipliers(basis, cost, &result->pi)) return false;
    result->value = lp->objcon;
    for (size_t j = 0; j < lp->obj.size(); j++) result->value += lp->obj[j] * result->x[j];
    return true;
}

static bool find_farkas(const Basis *basis, RationalResult *result)
{
    const LpModel *lp = basis->lp;
    const int n = lp->num_vars(), witness = basis->end->witness;
    Vector rhs(basis->cols.size());
    if (witness < n)
        rhs[basis->col_spot[witness]] = 1;
    else
        for (size_t c = 0; c < rhs.size(); c++)
            rhs[c] = -lp_get_entry(lp, witness - n, basis->cols[c]);
    if (!find_multipliers(basis, rhs, &result->farkas)) return false;
    if (witness >= n) result->farkas[witness - n] = 1;
    return true;
}

static bool find_ray(const Basis *basis, RationalResult *result)
{
    const LpModel *lp = basis->lp;
    const int n = lp->num_vars(), witness = basis->end->witness;
    Vector rhs(basis->rows.size()), basic;
    result->ray.assign(lp->obj.size(), 0);
    if (witness < n) {
        result->ray[witness] = basis->end->direction;
        for (const LpEntry &e : lp->cols[witness])
            if (basis->row_spot[e.row] >= 0)
                rhs[basis->row_spot[e.row]] = -e.value * basis->end->direction;
    } else {
        rhs[basis->row_spot[witness - n]] = basis->end->direction;
    }
    if (!solve_square(basis_matrix(basis, false), rhs, &basic)) return false;
    for (size_t c = 0; c < basic.size(); c++) result->ray[basis->cols[c]] = basic[c];
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
        basis.rows.push_back(static_cast<int>(i));
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
    if (!find_point(&basis, &result->x)) return false;
    if (end.status == LpStatus::UNBOUNDED) return find_ray(&basis, result);
    for (size_t v = 0; v < end.place.size(); v++)
        if (v < lp->obj.size())
            result->vbasis.push_back(end.place[v]);
        else
            result->cbasis.push_back(end.place[v] == 0 ? 0 : -1);
    return find_optimum(&basis, result);
}
