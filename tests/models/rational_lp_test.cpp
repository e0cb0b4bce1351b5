// rational_lp_test.cpp -- the exact judge against plain enumeration of all vertices
//
// The enumeration puts the model into a box so large that it holds a vertex of every face, takes every choice of n
// bounds and rows as equations, and looks at the feasible ones. A model is unbounded when a box twice as large
// gives a better value. It shares nothing with the judge but the model.
#include "support/model_gen.h"
#include "support/rational_lp.h"
#include <gtest/gtest.h>
#include <optional>

namespace
{

using Row = std::vector<mpq_class>; // n coefficients, then the right-hand side

struct Enumeration {
    int n = 0;
    std::vector<Row> planes;      // the equations to choose from
    std::vector<char> plane_kind; // '<' '>' '=': what a feasible point must satisfy
    Row cost;                     // minimisation
};

} // namespace

static void add_plane(Enumeration *e, int var, const mpq_class &bound, char kind)
{
    Row row(static_cast<size_t>(e->n) + 1);
    row[static_cast<size_t>(var)] = 1;
    row.back() = bound;
    e->planes.push_back(row);
    e->plane_kind.push_back(kind);
}

static Enumeration make_enumeration(const LpModel &lp, const mpq_class &box)
{
    Enumeration e;
    e.n = lp.num_vars();
    for (int j = 0; j < e.n; j++) {
        const size_t k = static_cast<size_t>(j);
        e.cost.emplace_back(lp.obj[k] * lp.sense);
        add_plane(&e, j, lp_is_infinite(lp.lb[k]) ? mpq_class(-box) : mpq_class(lp.lb[k]),
                  '>');
        add_plane(&e, j, lp_is_infinite(lp.ub[k]) ? box : mpq_class(lp.ub[k]), '<');
    }
    for (int i = 0; i < lp.num_rows(); i++) {
        Row row;
        for (int j = 0; j < e.n; j++) row.emplace_back(lp_get_entry(&lp, i, j));
        row.emplace_back(lp.rhs[static_cast<size_t>(i)]);
        e.planes.push_back(row);
        e.plane_kind.push_back(lp.senses[static_cast<size_t>(i)]);
    }
    return e;
}

// Gauss-Jordan on n equations; nothing when they are dependent.
static std::optional<Row> solve_equations(std::vector<Row> rows)
{
    const size_t n = rows.size();
    for (size_t k = 0; k < n; k++) {
        size_t p = k;
        while (p < n && rows[p][k] == 0) p++;
        if (p == n) return std::nullopt;
        std::swap(rows[p], rows[k]);
        for (size_t i = 0; i < n; i++) {
            if (i == k || rows[i][k] == 0) continue;
            const mpq_class factor = rows[i][k] / rows[k][k];
            for (size_t j = k; j <= n; j++) rows[i][j] -= factor * rows[k][j];
        }
    }
    Row x;
    for (size_t k = 0; k < n; k++) x.push_back(rows[k][n] / rows[k][k]);
    return x;
}

static bool point_allowed(const Enumeration &e, const Row &x)
{
    for (size_t p = 0; p < e.planes.size(); p++) {
        mpq_class left;
        for (size_t j = 0; j < x.size(); j++) left += e.planes[p][j] * x[j];
        const mpq_class &right = e.planes[p].back();
        if (e.plane_kind[p] != '<' && left < right) return false;
        if (e.plane_kind[p] != '>' && left > right) return false;
    }
    return true;
}

// The smallest cost over all vertices of the boxed model, or nothing when there is none.
static std::optional<mpq_class> best_vertex(const Enumeration &e)
{
    std::optional<mpq_class> best;
    const size_t n = static_cast<size_t>(e.n);
    std::vector<size_t> choice(n);
    for (size_t k = 0; k < n; k++) choice[k] = k;
    while (true) {
        std::vector<Row> rows;
        for (const size_t p : choice) rows.push_back(e.planes[p]);
        const std::optional<Row> x = solve_equations(rows);
        if (x && point_allowed(e, *x)) {
            mpq_class value;
            for (size_t j = 0; j < n; j++) value += e.cost[j] * (*x)[j];
            if (!best || value < *best) best = value;
        }
        size_t k = n; // next choice in lexicographic order
        while (k > 0 && choice[k - 1] == e.planes.size() - n + k - 1) k--;
        if (k == 0) return best;
        choice[k - 1]++;
        for (; k < n; k++) choice[k] = choice[k - 1] + 1;
    }
}

static RationalResult judge_by_enumeration(const LpModel &lp)
{
    RationalResult result;
    const mpq_class box = 10000000;
    const std::optional<mpq_class> value = best_vertex(make_enumeration(lp, box));
    if (!value) {
        result.status = LpStatus::INFEASIBLE;
        return result;
    }
    if (*value != *best_vertex(make_enumeration(lp, 2 * box))) {
        result.status = LpStatus::UNBOUNDED;
        return result;
    }
    result.value = *value * lp.sense + lp.objcon;
    return result;
}

TEST(RationalLp, agrees_with_enumeration_on_random_models)
{
    int seen[3] = {0, 0, 0};
    TinyLimits limits;
    limits.max_vars = 3;
    limits.max_rows = 4;
    limits.scaled_percent = 0;
    for (uint64_t seed = 0; seed < 20000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, limits);
        const RationalResult exact = rational_solve(&lp), plain = judge_by_enumeration(lp);
        ASSERT_EQ(exact.status, plain.status)
            << lp_to_mps(&lp, "seed " + std::to_string(seed));
        if (exact.status == LpStatus::OPTIMAL) {
            ASSERT_EQ(exact.value, plain.value) << lp_to_mps(&lp, "");
        }
        seen[static_cast<int>(exact.status)]++;
    }
    for (const int count : seen) EXPECT_GE(count, 2000); // each verdict is well represented
}

TEST(RationalLp, dual_verdict_of_feasible_models_follows_from_the_primal_one)
{
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, TinyLimits{});
        const RationalResult exact = rational_solve(&lp);
        if (exact.status == LpStatus::INFEASIBLE) continue;
        ASSERT_EQ(rational_has_ray(&lp), exact.status == LpStatus::UNBOUNDED) << seed;
    }
}

// The dual written down as an LP of its own has the same value.
static LpModel write_dual(const LpModel &lp)
{
    // max  rhs y + lb l - ub u    with  A'y + l - u = obj,   y by sense, l, u >= 0 where the bound exists.
    LpModel dual;
    dual.sense = -1;
    for (size_t i = 0; i < lp.rhs.size(); i++)
        lp_add_var(&dual, lp.rhs[i], lp.senses[i] == '>' ? 0 : -LP_INFINITY,
                   lp.senses[i] == '<' ? 0 : LP_INFINITY);
    for (size_t j = 0; j < lp.obj.size(); j++) {
        const int row = lp_add_row(&dual, '=', lp.obj[j] * lp.sense);
        for (const LpEntry &e : lp.cols[j]) lp_set_entry(&dual, row, e.row, e.value);
        if (!lp_is_infinite(lp.lb[j]))
            lp_set_entry(&dual, row, lp_add_var(&dual, lp.lb[j], 0, LP_INFINITY), 1);
        if (!lp_is_infinite(lp.ub[j]))
            lp_set_entry(&dual, row, lp_add_var(&dual, -lp.ub[j], 0, LP_INFINITY), -1);
    }
    return dual;
}

TEST(RationalLp, agrees_with_its_own_dual)
{
    for (uint64_t seed = 0; seed < 3000; seed++) {
        Dice dice(seed);
        const LpModel lp = gen_tiny(&dice, TinyLimits{});
        const LpModel dual = write_dual(lp);
        const RationalResult p = rational_solve(&lp), d = rational_solve(&dual);
        if (p.status == LpStatus::OPTIMAL) {
            ASSERT_EQ(d.status, LpStatus::OPTIMAL) << seed;
            ASSERT_EQ(d.value * lp.sense + lp.objcon, p.value) << seed;
        } else if (p.status == LpStatus::UNBOUNDED) {
            ASSERT_EQ(d.status, LpStatus::INFEASIBLE) << seed;
        } else {
            ASSERT_EQ(d.status == LpStatus::INFEASIBLE, rational_has_ray(&lp)) << seed;
        }
    }
}

TEST(RationalLp, verifier_refuses_wrong_claims)
{
    // min -x - y,  x + y <= 3,  0 <= x <= 2,  0 <= y: value -3
    LpModel lp;
    lp_add_var(&lp, -1, 0, 2);
    lp_add_var(&lp, -1, 0, LP_INFINITY);
    lp_add_row_entries(&lp, {{0, 1}, {1, 1}}, '<', 3);
    const RationalResult right = rational_solve(&lp);
    ASSERT_EQ(right.value, -3);
    RationalResult wrong = right;
    wrong.value = -4;
    EXPECT_NE(rational_verify(&lp, &wrong), "");
    wrong = right;
    wrong.x[0] += 1;
    EXPECT_NE(rational_verify(&lp, &wrong), "");
    wrong = right;
    wrong.pi[0] = 1;
    EXPECT_NE(rational_verify(&lp, &wrong), "");
    wrong = right;
    wrong.pi[0] /= 2;
    EXPECT_NE(rational_verify(&lp, &wrong), "");
    wrong = right;
    wrong.status = LpStatus::UNBOUNDED;
    wrong.ray = {0, 1};
    EXPECT_NE(rational_verify(&lp, &wrong), "");
    wrong.status = LpStatus::INFEASIBLE;
    wrong.farkas = {1};
    EXPECT_NE(rational_verify(&lp, &wrong), "");
    wrong.crossed = 0;
    EXPECT_NE(rational_verify(&lp, &wrong), "");
}
