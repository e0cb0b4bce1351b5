// Factors, solves and updates against the columns of the basis themselves: every result is put back into the equations.
#include "lu/lufact.h"
#include "support/dice.h"
#include "gtest/gtest.h"

namespace
{
// A pool of sparse columns, with 1.5 on place j of column j so that the first m of them are likely a basis.
struct Pool {
    int m, n;
    std::vector<int> beg, ind;
    std::vector<double> val;
    BasisMatrix matrix() const { return {m, n, beg.data(), ind.data(), val.data()}; }
};

Pool random_pool(int m, int n, int extra_percent, uint64_t seed)
{
    Dice dice(seed);
    Pool pool{m, n, {0}, {}, {}};
    for (int j = 0; j < n; j++) {
        std::vector<char> used(m, 0);
        const auto put = [&](int i, double v) {
            if (used[i]++) return;
            pool.ind.push_back(i);
            pool.val.push_back(v);
        };
        put(j % m, 1.5);
        while (dice.chance(extra_percent)) put(dice.range(0, m - 1), dice.real(-1, 1));
        pool.beg.push_back(int(pool.ind.size()));
    }
    return pool;
}

template<class R> struct Factored {
    Pool pool;
    lufact<R> lu;
    std::vector<int> head, bad_rows, bad_cols;

    explicit Factored(Pool p) : pool(std::move(p))
    {
        for (int k = 0; k < pool.m; k++) head.push_back(k);
        bad_rows.resize(head.size());
        bad_cols.resize(head.size());
        EXPECT_EQ(0, lu_alloc(&lu, pool.m, 100, 1e-13));
    }
    int factor(double tol = 0.01)
    {
        const BasisMatrix matrix = pool.matrix();
        return FactorBasis(&lu, &matrix, head.data(), tol, bad_rows.data(),
                           bad_cols.data());
    }
    void column(int var, SVec<R> *x) const
    {
        svec_clear(x);
        if (var >= pool.n) {
            svec_unit(x, var - pool.n, R(1));
            return;
        }
        for (int p = pool.beg[var]; p < pool.beg[var + 1]; p++)
            svec_add(x, pool.ind[p], R(pool.val[p]));
    }
    // Largest entry of B x - b, or of B^T x - b.
    double error(bool forward, const std::vector<R> &b, const SVec<R> &x) const
    {
        std::vector<R> rest(b);
        SVec<R> col;
        EXPECT_EQ(0, svec_alloc(&col, pool.m));
        for (int k = 0; k < pool.m; k++) {
            column(head[k], &col);
            for (int i = 0; i < pool.m; i++)
                rest[forward ? i : k] -= col.Value[i] * x.Value[forward ? k : i];
        }
        double most = 0;
        for (const R r : rest) most = std::max(most, double(std::abs(r)));
        return most;
    }
    bool tidy(const SVec<R> &x) const // the list holds exactly the nonzeros
    {
        int nonzeros = 0;
        for (int i = 0; i < pool.m; i++) nonzeros += x.Value[i] != R(0);
        return nonzeros == x.Count;
    }
};

// Right-hand sides with one, a few and all entries, with and without a list.
template<class R> void check_solves(Factored<R> *f, double limit, Dice *dice)
{
    const int m = f->pool.m;
    SVec<R> x;
    ASSERT_EQ(0, svec_alloc(&x, m));
    for (int kind = 0; kind < 12; kind++) {
        const int entries = kind / 4 == 0 ? 1 : kind / 4 == 1 ? 3 : m;
        const bool forward = kind % 2;
        std::vector<R> b(m, R(0));
        for (int k = 0; k < entries; k++)
            b[entries == m ? k : dice->range(0, m - 1)] = R(1 + k % 7);
        svec_clear(&x);
        for (int i = 0; i < m; i++)
            if (b[i] != R(0)) svec_add(&x, i, b[i]);
        if (kind / 2 % 2) x.Count = -1; // not listed
        if (forward)
            Ftran(&f->lu, &x, SOLVE_FLIPS, Keep::NO);
        else
            Btran(&f->lu, &x, SOLVE_COSTS, Keep::NO);
        EXPECT_LT(f->error(forward, b, x), limit) << "kind " << kind;
        EXPECT_TRUE(f->tidy(x));
    }
}

// Several FTRANs at once give, to the last bit, what each gives alone.
template<class R> void check_joint(Factored<R> *f, Dice *dice)
{
    const int m = f->pool.m;
    const Keep keeps[] = {Keep::YES, Keep::VALUES, Keep::NO};
    const SolveKind kinds[] = {SOLVE_COLUMN, SOLVE_NORM, SOLVE_FLIPS};
    SVec<R> alone[MAX_FTRANS], joint[MAX_FTRANS];
    for (int round = 0; round < 12; round++) {
        FtranTask<R> tasks[MAX_FTRANS];
        const int count = 1 + round % MAX_FTRANS;
        for (int k = 0; k < count; k++) {
            ASSERT_EQ(0, svec_alloc(&alone[k], m));
            ASSERT_EQ(0, svec_alloc(&joint[k], m));
            const int entries = round < 6 ? m : dice->range(0, 2);
            for (int e = 0; e < entries; e++)
                svec_add(&alone[k], dice->range(0, m - 1), R(1 + e % 7));
            svec_copy(&joint[k], &alone[k]);
            tasks[k] = {&joint[k], kinds[k], keeps[k]};
            Ftran(&f->lu, &alone[k], kinds[k], keeps[k]);
        }
        const int spike = f->lu.SpikeCount;
        FtranJoint(&f->lu, tasks, count);
        EXPECT_EQ(spike, f->lu.SpikeCount);
        for (int k = 0; k < count; k++) {
            for (int i = 0; i < m; i++)
                ASSERT_EQ(alone[k].Value[i], joint[k].Value[i]) << round << " " << k;
            EXPECT_TRUE(keeps[k] == Keep::VALUES || f->tidy(joint[k]));
        }
    }
}

// Random exchanges as a simplex would make them. Their number.
template<class R> int exchange(Factored<R> *f, int updates, Dice *dice)
{
    const int m = f->pool.m;
    SVec<R> alpha, rho;
    EXPECT_EQ(0, svec_alloc(&alpha, m) + svec_alloc(&rho, m));
    std::vector<char> basic(size_t(f->pool.n + m), 0);
    for (const int var : f->head) basic[var] = 1;
    int done = 0;
    for (int tries = 0; tries < 50 * updates && done < updates; tries++) {
        const int q = dice->range(0, f->pool.n + m - 1);
        if (basic[q]) continue;
        f->column(q, &alpha);
        Ftran(&f->lu, &alpha, SOLVE_COLUMN, Keep::YES);
        int r = -1; // a pivot of fair size
        for (int k = 0; k < alpha.Count; k++)
            if (std::abs(alpha.Value[alpha.Index[k]]) > R(0.1) && dice->chance(67))
                r = alpha.Index[k];
        if (r < 0) continue;
        svec_unit(&rho, r, R(1));
        Btran(&f->lu, &rho, SOLVE_ROW, Keep::YES);
        if (UpdateFactor(&f->lu, r, alpha.Value[r]) !=
            UPDATE_DONE) { // the old basis stands
            EXPECT_EQ(0, f->factor());
            continue;
        }
        std::swap(basic[f->head[r]], basic[q]);
        f->head[r] = q;
        done++;
    }
    return done;
}

template<class R> void check_updates(Factored<R> *f, int updates, double limit, Dice *dice)
{
    EXPECT_EQ(exchange(f, updates, dice), updates);
    check_joint(f, dice);
    check_solves(f, limit, dice);
}

// All of U that solves read, in order.
template<class R> std::vector<R> upper_of(const lufact<R> *lu)
{
    std::vector<R> all(lu->UDiag.data, lu->UDiag.data + lu->NumRows);
    const auto add = [&](const auto &ind, const auto &val, int from, int count) {
        for (int p = from; p < from + count; p++)
            all.insert(all.end(), {R(ind[p]), val[p]});
    };
    all.insert(all.end(), lu->Order.data, lu->Order.data + lu->NumPos);
    for (const auto *list : {&lu->PosOfRow, &lu->FirstEta})
        all.insert(all.end(), list->data, list->data + lu->NumRows);
    for (int i = 0; i < lu->NumRows; i++) {
        add(lu->UColInd, lu->UColVal, lu->UColBeg[i], lu->UColLen[i]);
        add(lu->URowInd, lu->URowVal, lu->URowBeg[i], lu->URowLen[i]);
    }
    return all;
}

// Recorded updates, and back to the factors before them, to the last bit.
template<class R> void check_journal(Factored<R> *f, double limit, Dice *dice)
{
    for (const int updates : {1, 5, 30}) {
        const std::vector<int> head = f->head;
        const std::vector<R> before = upper_of(&f->lu);
        const int etas = f->lu.NumEtas, count = f->lu.NumUpdates;
        ASSERT_EQ(0, lu_journal_begin(&f->lu));
        exchange(f, updates, dice);
        if (!f->lu.Journal) return; // an update was refused
        check_solves(f, limit, dice);
        lu_journal_undo(&f->lu);
        f->head = head;
        EXPECT_TRUE(before == upper_of(&f->lu));
        EXPECT_EQ(etas, f->lu.NumEtas);
        EXPECT_EQ(count, f->lu.NumUpdates);
        check_solves(f, limit, dice);
    }
}

// Rows with a basic slack are appended: every column may have entries in them.
template<class R> void check_appended(Factored<R> *f, int rows, double limit, Dice *dice)
{
    const Pool old = f->pool;
    Pool *pool = &f->pool;
    *pool = {old.m + rows, old.n, {0}, {}, {}};
    std::vector<std::vector<double>> entry(rows, std::vector<double>(old.n, 0.0));
    for (int j = 0; j < old.n; j++) {
        const int from = old.beg[j], to = old.beg[j + 1];
        pool->ind.insert(pool->ind.end(), old.ind.begin() + from, old.ind.begin() + to);
        pool->val.insert(pool->val.end(), old.val.begin() + from, old.val.begin() + to);
        for (int i = 0; i < rows; i++) {
            if (!dice->chance(30)) continue;
            pool->ind.push_back(old.m + i);
            pool->val.push_back(entry[i][j] = dice->nonzero(4));
        }
        pool->beg.push_back(int(pool->ind.size()));
    }
    ASSERT_EQ(0, lu_grow(&f->lu, pool->m));
    SVec<R> row;
    ASSERT_EQ(0, svec_alloc(&row, pool->m));
    for (int i = 0; i < rows; i++) {
        svec_clear(&row);
        for (int k = 0; k < old.m; k++) {
            const double a = f->head[k] < old.n ? entry[i][f->head[k]] : 0;
            if (a != 0) svec_add(&row, k, R(a));
        }
        ASSERT_EQ(0, lu_append_row(&f->lu, old.m + i, &row));
        f->head.push_back(pool->n + old.m + i);
    }
    f->bad_rows.resize(pool->m);
    f->bad_cols.resize(pool->m);
    check_solves(f, limit, dice);
    check_updates(f, std::min(old.m, 20), limit, dice);
}

// Rows whose slacks are basic in them are deleted. Where a slack is basic in another row, the factors refuse; fresh
// ones have all slacks in their rows.
template<class R> void check_deleted(Factored<R> *f, double limit, Dice *dice)
{
    const Pool old = f->pool;
    std::vector<int> number(old.m), head;
    int left = 0;
    const auto choose = [&] {
        left = 0;
        for (int i = 0; i < old.m; i++)
            number[i] = i > 0 && f->head[i] == old.n + i && dice->chance(60) ? -1 : left++;
    };
    choose();
    for (const int k : f->head)
        if (k >= old.n && f->head[k - old.n] != k) {
            std::vector<int> bad = number;
            bad[k - old.n] = -1;
            EXPECT_FALSE(lu_delete_rows(&f->lu, bad.data()));
        }
    if (!lu_delete_rows(&f->lu, number.data())) {
        ASSERT_EQ(0, f->factor());
        choose();
        ASSERT_TRUE(lu_delete_rows(&f->lu, number.data()));
    }
    f->pool = {left, old.n, {0}, {}, {}};
    for (int j = 0; j < old.n; j++) {
        for (int p = old.beg[j]; p < old.beg[j + 1]; p++) {
            if (number[old.ind[p]] < 0) continue;
            f->pool.ind.push_back(number[old.ind[p]]);
            f->pool.val.push_back(old.val[p]);
        }
        f->pool.beg.push_back(int(f->pool.ind.size()));
    }
    for (int i = 0; i < old.m; i++)
        if (const int k = f->head[i]; number[i] >= 0)
            head.push_back(k < old.n ? k : old.n + number[k - old.n]);
    f->head = head;
    check_solves(f, limit, dice);
    check_updates(f, std::min(left, 20), limit, dice);
}

template<class R> void check_random_bases(double limit)
{
    uint64_t seed = 1;
    const std::pair<int, int> shapes[] = {{1, 0},   {7, 50},   {60, 50},
                                          {60, 90}, {300, 66}, {120, 98}};
    for (const auto &[m, extra] : shapes)
        for (int round = 0; round < 4; round++, seed++) {
            SCOPED_TRACE(seed);
            Dice dice(seed);
            Factored<R> f(random_pool(m, 2 * m, extra, seed));
            for (int k = 0; k < m && round > 0; k += round + 1)
                f.head[k] += f.pool.n; // structurals and slacks mixed
            ASSERT_EQ(0, f.factor());
            check_solves(&f, limit, &dice);
            check_updates(&f, std::min(m, 40), limit * 100, &dice);
            check_journal(&f, limit * 1000, &dice);
            check_appended(&f, 1 + round, limit * 1000, &dice);
            check_deleted(&f, limit * 1000, &dice);
            check_appended(&f, 5, limit * 1000, &dice);
            check_deleted(&f, limit * 1000, &dice);
        }
}
} // namespace

TEST(Lu, solves_and_updates_satisfy_the_equations)
{
    check_random_bases<double>(1e-8);
    check_random_bases<long double>(1e-11); // more accurate
}

// A deficient basis names as many rows as columns; slacks of those rows in those positions repair it.
TEST(Lu, singular_basis_is_mended_by_the_slacks_it_names)
{
    for (uint64_t seed = 1; seed <= 20; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        Factored<double> f(random_pool(40, 80, 60, seed));
        for (int k = 3; k < 40; k += 7) f.head[k] = 40 + k - 1;
        for (int k = 5; k < 40; k += 9) f.head[k] = f.head[k - 1]; // twice
        const std::vector<int> before = f.head;
        const int missing = f.factor();
        ASSERT_GT(missing, 0);
        EXPECT_EQ(before, f.head);
        EXPECT_EQ(1, f.lu.NeedBasis);
        for (int k = 0; k < missing; k++) f.head[f.bad_cols[k]] = f.pool.n + f.bad_rows[k];
        ASSERT_EQ(0, f.factor());
        check_solves(&f, 1e-7, &dice);
    }
}

TEST(Lu, update_refuses_a_vanishing_pivot_and_leaves_the_factors)
{
    Dice dice(3);
    Factored<double> f(random_pool(30, 60, 50, 3));
    ASSERT_EQ(0, f.factor());
    SVec<double> alpha, rho;
    ASSERT_EQ(0, svec_alloc(&alpha, 30) + svec_alloc(&rho, 30));
    f.column(f.head[4], &alpha); // basic elsewhere: entry 5 of the result is 0
    Ftran(&f.lu, &alpha, SOLVE_COLUMN, Keep::YES);
    svec_unit(&rho, 5, 1.0);
    Btran(&f.lu, &rho, SOLVE_ROW, Keep::YES);
    EXPECT_EQ(UPDATE_UNSTABLE, UpdateFactor(&f.lu, 5, alpha.Value[5]));
    EXPECT_EQ(1, f.lu.NeedBasis) << "the caller's basis is another one";
    EXPECT_EQ(0, f.lu.NumUpdates);
    check_solves(&f, 1e-8, &dice);
}
