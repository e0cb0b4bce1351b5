// clique_test.cpp -- the clique table says neither more nor less than the cliques put into it
//
// All points of few binary columns are tried: those that satisfy the cliques as given must be those that satisfy what
// the table holds, after each operation on it.
#include "domain/domain_support.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace
{
constexpr int64_t NO_LIMIT = 1000000;

// A point of n binary columns in the bits of a number.
bool is_true(int literal, unsigned point)
{
    return static_cast<int>(point >> literal_col(literal) & 1) == literal_value(literal);
}

using Clique = std::vector<int>;

bool at_most_one(const Clique &clique, unsigned point)
{
    int count = 0;
    for (const int u : clique) count += is_true(u, point);
    return count <= 1;
}

// Cliques of the table, with its edges.
std::vector<Clique> all_cliques(const CliqueTable *t)
{
    std::vector<Clique> all;
    for (int c = 0; c < clique_count(t); c++)
        all.emplace_back(clique_literals(t, c), clique_literals(t, c) + clique_size(t, c));
    for (int u = 0; u < 2 * t->NumCols; u++)
        for (int k = 0; k < t->Neighbours.Size[u]; k++)
            if (lists_at(&t->Neighbours, u)[k] > u)
                all.push_back({u, lists_at(&t->Neighbours, u)[k]});
    return all;
}

// Points that satisfy a table with what it has shown.
std::set<unsigned> points_of(const CliqueTable *t)
{
    std::set<unsigned> points;
    const std::vector<Clique> cliques = all_cliques(t);
    for (unsigned x = 0; x < 1u << t->NumCols && !t->Infeasible; x++) {
        bool good = true;
        for (const Clique &c : cliques) good &= at_most_one(c, x);
        for (const int u : t->Fixed) good &= !is_true(u, x);
        for (const LiteralPair &pair : t->Equal)
            good &= is_true(pair.First, x) == is_true(pair.Second, x);
        if (good) points.insert(x);
    }
    return points;
}

std::set<unsigned> points_of(const std::vector<Clique> &cliques, int n)
{
    std::set<unsigned> points;
    for (unsigned x = 0; x < 1u << n; x++)
        if (std::all_of(cliques.begin(), cliques.end(),
                        [x](const Clique &c) { return at_most_one(c, x); }))
            points.insert(x);
    return points;
}

int is_sound(const CliqueTable *t)
{
#ifdef TVX_DEBUG
    return clique_table_check(t);
#else
    (void)t;
    return 0;
#endif
}

CliquesPtr empty_table(int n)
{
    CliqueTable *t = nullptr;
    if (clique_table_create(&t, n, NO_LIMIT)) abort();
    return CliquesPtr(t);
}

// Cliques of any literals; some hold one twice, or both of a column.
std::vector<Clique> random_cliques(Dice *dice, int n)
{
    std::vector<Clique> cliques(static_cast<size_t>(dice->range(1, 8)));
    const bool odd = dice->chance(30);
    for (Clique &clique : cliques) {
        const int size = dice->chance(50) ? 2 : dice->range(0, 5);
        for (int k = 0; k < size; k++) {
            const int u =
                dice->chance(70) ? 2 * dice->range(0, n - 1) : dice->range(0, 2 * n - 1);
            const auto same = [u](int v) { return literal_col(u) == literal_col(v); };
            if (!odd && std::any_of(clique.begin(), clique.end(), same)) continue;
            clique.push_back(u);
        }
    }
    return cliques;
}

CliquesPtr table_of(const std::vector<Clique> &cliques, int n)
{
    CliquesPtr t = empty_table(n);
    for (const Clique &c : cliques)
        EXPECT_EQ(clique_table_add(t.get(), c.data(), static_cast<int>(c.size())), 0);
    return t;
}
} // namespace

TEST(CliqueTable, HoldsExactlyWhatWasAdded)
{
    int fixed = 0, equal = 0, infeasible = 0;
    for (int seed = 0; seed < 4000; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        const int n = dice.range(2, 7);
        const std::vector<Clique> cliques = random_cliques(&dice, n);
        const std::set<unsigned> truth = points_of(cliques, n);
        const CliquesPtr t = table_of(cliques, n);
        ASSERT_EQ(is_sound(t.get()), 0);
        ASSERT_EQ(points_of(t.get()), truth);
        ASSERT_EQ(clique_table_find_equal(t.get()), 0);
        ASSERT_EQ(points_of(t.get()), truth);
        ASSERT_EQ(clique_table_close(t.get()), 0);
        ASSERT_EQ(points_of(t.get()), truth);
        ASSERT_EQ(clique_table_clean(t.get()), 0);
        ASSERT_EQ(is_sound(t.get()), 0);
        ASSERT_EQ(points_of(t.get()), truth);
        for (const Clique &c : all_cliques(t.get()))
            for (const int u : c)
                ASSERT_TRUE(t->Infeasible ||
                            !(t->IsFixed[u] || t->IsFixed[literal_not(u)]));
        fixed += t->Fixed.size > 0;
        equal += t->Equal.size > 0;
        infeasible += t->Infeasible;
    }
    EXPECT_GT(fixed, 400);
    EXPECT_GT(equal, 100);
    EXPECT_GT(infeasible, 20);
}

// Each consequence alone, in all four sign patterns of two columns.
TEST(CliqueTable, SeesAtOnceWhatACliqueImplies)
{
    for (int signs = 0; signs < 4; signs++) {
        const int u = signs & 1, v = 2 + (signs >> 1);
        CliquesPtr t = table_of({{u, v}, {u, literal_not(v)}}, 3);
        EXPECT_EQ(t->Fixed.size, 1);
        EXPECT_TRUE(t->IsFixed[u]);
        t = table_of({{u, v}, {literal_not(u), literal_not(v)}}, 3);
        ASSERT_EQ(t->Equal.size, 1);
        EXPECT_EQ(t->Equal[0].First, 0);
        EXPECT_EQ(t->Equal[0].Second, v ^ 1 ^ (u & 1));
        t = table_of({{u, u, v}, {v, 4, literal_not(v)}}, 3);
        EXPECT_TRUE(t->IsFixed[u] && t->IsFixed[4]);
        t = table_of({{literal_not(u), literal_not(v)}, {u, v, 4}}, 3);
        EXPECT_TRUE(t->IsFixed[4]);
        EXPECT_EQ(t->Equal.size, 1);
    }
}

// x0 implies x1 implies x2 implies not ... implies x0, through edges and through a clique.
TEST(CliqueTable, FindsEqualLiteralsOnLongCycles)
{
    const CliquesPtr t = table_of({{0, 3, 8}, {2, 5}, {4, 6}, {7, 1}}, 5);
    EXPECT_EQ(t->Equal.size, 0);
    ASSERT_EQ(clique_table_find_equal(t.get()), 0);
    std::set<int> equal;
    for (const LiteralPair &pair : t->Equal) {
        EXPECT_EQ(pair.First, 0);
        equal.insert(pair.Second);
    }
    EXPECT_EQ(equal, (std::set<int>{2, 4, 7}));
    EXPECT_FALSE(t->Infeasible);
}

TEST(CliqueTable, MergingKeepsAllThatTheSetsSay)
{
    for (int seed = 0; seed < 2000; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        const int n = dice.range(2, 8);
        const CliquesPtr t = table_of(random_cliques(&dice, n), n);
        if (clique_table_clean(t.get()) || t->Infeasible) continue;
        const std::set<unsigned> truth = points_of(t.get());
        const std::vector<Clique> before = all_cliques(t.get());
        ASSERT_EQ(clique_table_merge(
                      t.get(), dice.chance(80) ? NO_LIMIT : dice.range(0, 60), NO_LIMIT),
                  0);
        ASSERT_EQ(is_sound(t.get()), 0);
        ASSERT_EQ(points_of(t.get()), truth);
        int64_t effort = 0;
        for (const Clique &c : before)
            for (const int u : c)
                for (const int v : c)
                    ASSERT_TRUE(u == v || clique_adjacent(t.get(), u, v, &effort));
        std::vector<int> place(static_cast<size_t>(2 * n)), group, literals;
        for (int u = 0; u < 2 * n; u++)
            if (dice.chance(60)) literals.push_back(u);
        group.resize(literals.size());
        const int count = static_cast<int>(literals.size());
        const int groups = clique_partition(t.get(), literals.data(), count, group.data(),
                                            place.data(), &effort);
        ASSERT_EQ(*std::max_element(place.begin(), place.end()), 0);
        for (int a = 0; a < count; a++) {
            ASSERT_TRUE(0 <= group[a] && group[a] < groups);
            for (int b = 0; b < a; b++)
                ASSERT_TRUE(group[a] != group[b] ||
                            clique_adjacent(t.get(), literals[a], literals[b], &effort));
        }
    }
}

// Three edges of a triangle: one of them becomes the triangle, the others lie inside. None may go without it.
TEST(CliqueTable, MergingATriangleLeavesTheTriangle)
{
    const CliquesPtr t = table_of({{0, 2}, {2, 4}, {0, 4}, {6, 8}}, 5);
    LiteralSets sets, merged;
    Array<int> inside_of;
    ASSERT_EQ(array_append<int64_t>(&sets.Beg, 0), 0);
    for (const Clique &c : {Clique{0, 2}, Clique{2, 4}, Clique{0, 4}, Clique{6, 8}}) {
        for (const int u : c) ASSERT_EQ(array_append(&sets.Lit, u), 0);
        ASSERT_EQ(array_append(&sets.Beg, sets.Lit.size), 0);
    }
    ASSERT_EQ(clique_merge(t.get(), &sets, NO_LIMIT, NO_LIMIT, &merged, &inside_of), 0);
    EXPECT_EQ(std::vector<int>(inside_of.begin(), inside_of.end()),
              (std::vector<int>{-1, 0, 0, -1}));
    EXPECT_EQ(std::vector<int>(merged.Lit.begin(), merged.Lit.end()),
              (std::vector<int>{0, 2, 4, 6, 8}));
    ASSERT_EQ(clique_table_merge(t.get(), NO_LIMIT, NO_LIMIT), 0);
    EXPECT_EQ(all_cliques(t.get()), (std::vector<Clique>{{0, 2, 4}, {6, 8}}));
}

TEST(CliqueTable, FollowsColumnsIntoAnotherModel)
{
    for (int seed = 0; seed < 2000; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        const int n = dice.range(2, 6), m = dice.range(1, 5);
        const std::vector<Clique> cliques = random_cliques(&dice, n);
        const CliquesPtr t = table_of(cliques, n);
        std::vector<int> image;
        for (int j = 0; j < n; j++)
            image.push_back(dice.chance(70) ? dice.range(0, 2 * m - 1)
                                            : dice.range(-3, -2));
        CliqueTable *raw = nullptr;
        ASSERT_EQ(clique_table_remap(t.get(), image.data(), m, &raw), 0);
        const CliquesPtr to(raw);
        ASSERT_EQ(is_sound(raw), 0);
        const std::set<unsigned> old = points_of(t.get()), now = points_of(raw);
        for (unsigned y = 0; y < 1u << m;
             y++) { // the point of the old model with these values
            unsigned x = 0;
            for (int j = 0; j < n; j++) {
                const bool one =
                    image[j] >= 0 ? is_true(image[j], y) : image[j] == IMAGE_ONE;
                x |= static_cast<unsigned>(one) << j;
            }
            ASSERT_TRUE(!old.count(x) || now.count(y));
            // What the old table says of columns that are fixed, and of equal ones, is not carried over.
            bool elsewhere = t->Equal.size > 0 || t->Infeasible;
            for (const int u : t->Fixed)
                elsewhere |= image[literal_col(u)] < 0 && is_true(u, x);
            for (const Clique &c : cliques) {
                int constant = 0;
                for (const int u : c)
                    constant += image[literal_col(u)] < 0 && is_true(u, x);
                elsewhere |= constant > 1;
            }
            ASSERT_TRUE(old.count(x) || elsewhere || !now.count(y));
        }
    }
}

namespace
{
// The row's entries that are not 0, as clique_table_add_row takes them.
struct RowArrays {
    std::vector<int> col;
    std::vector<double> val;
    CliqueRow row;
    RowArrays(const SystemRow &from, double side)
    {
        for (size_t j = 0; j < from.a.size(); j++)
            if (from.a[j] != 0) {
                col.push_back(static_cast<int>(j));
                val.push_back(from.a[j]);
            }
        row = {static_cast<int>(col.size()), col.data(), val.data(), side, 1e-6};
    }
};

// The least activity of the row with some literals true.
double least_with(const System &s, const RowArrays &r, const std::vector<int> &literals)
{
    double sum = 0;
    for (size_t k = 0; k < r.col.size(); k++) {
        double low = s.lower[r.col[k]], high = s.upper[r.col[k]];
        for (const int u : literals)
            if (literal_col(u) == r.col[k]) low = high = literal_value(u);
        sum += std::min(r.val[k] * low, r.val[k] * high);
    }
    return sum;
}
} // namespace

TEST(CliqueTable, ARowGivesExactlyThePairsThatItExcludes)
{
    int pairs = 0;
    for (int seed = 0; seed < 3000; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        System s;
        SystemRow entries;
        for (int j = dice.range(2, 9); j > 0; j--) {
            s.lower.push_back(0);
            s.upper.push_back(dice.chance(85) ? 1 : 2);
            s.integer.push_back(dice.chance(90));
            entries.a.push_back(dice.nonzero(9));
        }
        RowArrays r(entries, 0);
        r.row.Side = least_with(s, r, {}) + dice.range(0, 14);
        const CliquesPtr t = empty_table(s.n());
        ASSERT_EQ(clique_table_add_row(t.get(), &r.row, s.lower.data(), s.upper.data(),
                                       s.integer.data()),
                  0);
        int64_t effort = 0;
        for (int u = 0; u < 2 * s.n(); u++) {
            const auto binary = [&](int w) {
                return s.upper[literal_col(w)] == 1 && s.integer[literal_col(w)];
            };
            if (!binary(u)) continue;
            ASSERT_EQ(t->IsFixed[u], least_with(s, r, {u}) > r.row.Side) << u;
            for (int v = 0; v < u && !t->IsFixed[u]; v++) {
                if (!binary(v) || literal_col(u) == literal_col(v) || t->IsFixed[v])
                    continue;
                const bool excluded = least_with(s, r, {u, v}) > r.row.Side;
                ASSERT_EQ(clique_adjacent(t.get(), u, v, &effort), excluded)
                    << u << " " << v;
                pairs += excluded;
            }
        }
    }
    EXPECT_GT(pairs, 5000);
}

// 3x + 3y - 10z <= 5: with z = 1 both x and y may be 1, so there is no clique {x, y}.
TEST(CliqueTable, ALargeCoefficientOfTheOtherSignLeavesNoClique)
{
    const double lower[3] = {0, 0, 0}, upper[3] = {1, 1, 1}, val[3] = {3, 3, -10};
    const int col[3] = {0, 1, 2};
    const char is_integer[3] = {1, 1, 1};
    const CliquesPtr t = empty_table(3);
    const CliqueRow row = {3, col, val, 5, 1e-6};
    ASSERT_EQ(clique_table_add_row(t.get(), &row, lower, upper, is_integer), 0);
    EXPECT_TRUE(all_cliques(t.get()).empty());
    EXPECT_EQ(t->Fixed.size, 0);
}
