// rational_certificate.cpp -- points, multipliers and rays of a basis, exactly
//
// Problem     B are the basic columns, T the rows whose activity is nonbasic; |B| = |T| = k. With M = A_TB:
//               x       M x_B = b_T - A_TN x_N,  x_N and b_T at the ends of their ranges
//               pi      M' pi_T = c_B
//               ray     what x changes by when the nonbasic variable that moves for ever does so by 1
//               Farkas  pi when a basic variable that nothing repairs is the objective
// Method      M, made integer row by row, is inverted without fractions (all divisions are exact).
// Cost        O(k^3) integer operations on numbers of up to k times 60 bits.
// Literature  E. H. Bareiss, "Sylvester's identity and multistep integer-preserving Gaussian elimination", Math.
//             Comp. 22, 1968.
#include "support/dictionary.h"

namespace
{
using Vector = std::vector<mpq_class>;

struct Basis {
    const LpModel *lp;
    std::vector<size_t> cols, rows;             // B and T
    std::vector<std::vector<mpz_class>> matrix; // [k][2 k] M | 1, in the end 1 | inverse
    mpz_class determinant = 1;                  // by which all that is multiplied
};
} // namespace

static Basis split_basis(const LpModel *lp, const std::vector<int> &place)
{
    const size_t n = lp->obj.size(), m = lp->rhs.size();
    Basis basis{lp, {}, {}, {}};
    for (size_t j = 0; j < n; j++)
        if (place[j] == 0) basis.cols.push_back(j);
    for (size_t i = 0; i < m; i++)
        if (place[n + i] != 0) basis.rows.push_back(i);
    const size_t k = basis.rows.size();
    for (size_t t = 0; t < k; t++) {
        Vector row;
        mpz_class factor = 1;
        for (const size_t j : basis.cols) {
            row.emplace_back(lp_get_entry(lp, int(basis.rows[t]), int(j)));
            factor = lcm(factor, row.back().get_den());
        }
        std::vector<mpz_class> integers(2 * k);
        for (size_t c = 0; c < k; c++) integers[c] = mpq_class(row[c] * factor).get_num();
        integers[k + t] = factor;
        basis.matrix.push_back(integers);
    }
    return basis;
}

// By Gauss and Jordan without fractions; false when singular. Columns left of `step` are done with.
static bool invert(Basis *basis)
{
    const size_t k = basis->rows.size();
    std::vector<std::vector<mpz_class>> *rows = &basis->matrix;
    for (size_t step = 0; step < k; step++) {
        size_t pivot = step;
        while (pivot < k && (*rows)[pivot][step] == 0) pivot++;
        if (pivot == k) return false;
        std::swap((*rows)[step], (*rows)[pivot]);
        const std::vector<mpz_class> &top = (*rows)[step];
        for (size_t i = 0; i < k; i++)
            for (size_t c = step + 1; c < 2 * k && i != step; c++) {
                mpz_class *a = &(*rows)[i][c];
                *a = *a * top[step] - (*rows)[i][step] * top[c];
                mpz_divexact(a->get_mpz_t(), a->get_mpz_t(),
                             basis->determinant.get_mpz_t());
            }
        basis->determinant = top[step];
    }
    return true;
}

// The columns when the nonbasic variables have these values, [n + m]; those of basic ones are 0.
static Vector find_point(const Basis &basis, const Vector &values)
{
    const size_t n = basis.lp->obj.size(), k = basis.rows.size();
    Vector x(values.begin(), values.begin() + basis.lp->num_vars()), left = values;
    for (size_t j = 0; j < n; j++)
        for (const LpEntry &e : basis.lp->cols[j]) left[n + e.row] -= e.value * x[j];
    for (size_t c = 0; c < k; c++) {
        mpq_class *sum = &x[basis.cols[c]];
        for (size_t t = 0; t < k; t++)
            *sum += basis.matrix[c][k + t] * left[n + basis.rows[t]];
        *sum /= basis.determinant;
    }
    return x;
}

// The multipliers of all rows that make these costs, [n], zero in the basic columns.
static Vector find_multipliers(const Basis &basis, const Vector &costs)
{
    const size_t k = basis.rows.size();
    Vector pi(basis.lp->rhs.size());
    for (size_t t = 0; t < k; t++) {
        mpq_class *sum = &pi[basis.rows[t]];
        for (size_t c = 0; c < k; c++)
            *sum += costs[basis.cols[c]] * basis.matrix[c][k + t];
        *sum /= basis.determinant;
    }
    return pi;
}

bool rational_certificate(const LpModel *lp, double relax, const DictionaryEnd &end,
                          RationalResult *result)
{
    Basis basis = split_basis(lp, end.place);
    const int n = lp->num_vars(), m = lp->num_rows(), witness = end.witness;
    Vector values, costs(lp->obj.begin(), lp->obj.end());
    if (!invert(&basis)) return false;
    *result = RationalResult{};
    result->status = end.status;
    if (end.status == LpStatus::INFEASIBLE) {
        for (int j = 0; j < n; j++)
            costs[j] = witness < n ? j == witness : lp_get_entry(lp, witness - n, j);
        result->farkas = find_multipliers(basis, costs);
        if (witness >= n) result->farkas[witness - n] = -1;
        return true;
    }
    for (int v = 0; v < n + m; v++) {
        const RationalRange range =
            v < n ? relaxed_column(lp, v, relax) : relaxed_row(lp, v - n, relax);
        values.push_back(end.place[v] == -1 ? range.low : range.high);
        if (end.place[v] == 0 || end.place[v] == -3) values.back() = 0;
    }
    result->x = find_point(basis, values);
    if (end.status == LpStatus::UNBOUNDED) {
        values.assign(values.size(), 0);
        values[witness] = end.direction;
        result->ray = find_point(basis, values);
        return true;
    }
    result->value = lp->objcon;
    for (int j = 0; j < n; j++) result->value += costs[j] * result->x[j];
    result->pi = find_multipliers(basis, costs);
    result->vbasis.assign(end.place.begin(), end.place.begin() + n);
    for (int i = 0; i < m; i++) result->cbasis.push_back(end.place[n + i] ? -1 : 0);
    return true;
}
