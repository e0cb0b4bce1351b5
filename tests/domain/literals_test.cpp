// literals_test.cpp -- implications are kept, mapped and discarded rightly, and a Domain follows them and cliques
#include "domain/domain_support.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>

namespace
{
using LogPtr = std::unique_ptr<ImplicationLog, Freed<ImplicationLog, implication_log_free>>;

LogPtr empty_log(int n)
{
    ImplicationLog *log = nullptr;
    if (implication_log_create(&log, n)) abort();
    return LogPtr(log);
}

int is_sound(const ImplicationLog *log)
{
#ifdef TVX_DEBUG
    return implication_log_check(log);
#else
    (void)log;
    return 0;
#endif
}

// The points of a system within bounds, as they are enumerated.
using Points = std::vector<std::vector<double>>;

Points points_of(const System &s)
{
    Points points;
    each_point(s, [&](const std::vector<double> &x) {
        if (s.satisfied(x, 1e-9)) points.push_back(x);
    });
    return points;
}

struct Knowledge {
    CliquesPtr cliques;
    LogPtr log;
};

// What every feasible point satisfies: implications by each binary literal, and edges. Some are left out.
Knowledge learn(const System &s, const Points &points, Dice *dice)
{
    Knowledge all;
    CliqueTable *t = nullptr;
    if (clique_table_create(&t, s.n(), 1000)) abort();
    all.cliques.reset(t);
    all.log = empty_log(s.n());
    for (int u = 0; u < 2 * s.n(); u++) {
        const int z = literal_col(u);
        if (s.lower[z] != 0 || s.upper[z] != 1) continue;
        for (int j = 0; j < s.n(); j++) {
            if (j == z || dice->chance(50)) continue;
            double low = s.upper[j], high = s.lower[j];
            for (const std::vector<double> &x : points) {
                if (x[z] != literal_value(u)) continue;
                low = std::min(low, x[j]);
                high = std::max(high, x[j]);
            }
            if (low > high) continue; // the literal is false
            EXPECT_EQ(implication_log_add(all.log.get(),
                                          {high, s.upper[j], u, j, BoundSide::UPPER}),
                      0);
            EXPECT_EQ(implication_log_add(all.log.get(),
                                          {low, s.lower[j], u, j, BoundSide::LOWER}),
                      0);
            if (s.lower[j] != 0 || s.upper[j] != 1 || low != high) continue;
            const int edge[2] = {u, literal_of(j, high == 0)};
            EXPECT_EQ(clique_table_add(t, edge, 2), 0);
        }
    }
    return all;
}

void expect_point(const Domain *d, const std::vector<double> &x)
{
    ASSERT_FALSE(d->Infeasible);
    for (size_t j = 0; j < x.size(); j++) {
        ASSERT_LE(d->Lower[j], x[j]) << j;
        ASSERT_GE(d->Upper[j], x[j]) << j;
    }
}

// Is all applied that an edge, a clique or an implication says of the literals that are true?
void expect_followed(const Domain *d)
{
    for (int j = 0; j < d->Rows->NumCols; j++) {
        if (d->Lower[j] != d->Upper[j] || d->Lower[j] < 0 || d->Lower[j] > 1) continue;
        const int u = literal_of(j, static_cast<int>(d->Lower[j]));
        int64_t effort = 0;
        for (int v = 0; v < 2 * d->Rows->NumCols; v++) {
            if (!clique_adjacent(d->Cliques, u, v, &effort)) continue;
            ASSERT_EQ(d->Lower[literal_col(v)], !literal_value(v));
            ASSERT_EQ(d->Upper[literal_col(v)], !literal_value(v));
        }
        for (int k = 0; k < d->Log->ByTrigger.Size[u]; k++) {
            const Implication e = d->Log->Entry[lists_at(&d->Log->ByTrigger, u)[k]];
            if (e.Side == BoundSide::UPPER) {
                ASSERT_LE(d->Upper[e.Col], e.Value);
            } else {
                ASSERT_GE(d->Lower[e.Col], e.Value);
            }
        }
    }
}
} // namespace

TEST(DomainLiterals, CliquesAndImplicationsAreFollowedAndLoseNoPoint)
{
    int by_clique = 0, by_implication = 0;
    for (int seed = 0; seed < 3000; seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        const System s = integer_system(&dice);
        const Points points = points_of(s);
        if (points.empty()) continue;
        const Knowledge all = learn(s, points, &dice);
        ASSERT_EQ(is_sound(all.log.get()), 0);
        const RowsPtr rows = build_rows(s, s.rows.size());
        ASSERT_EQ(clique_table_add_rows(all.cliques.get(), rows.get(), s.lower.data(),
                                        s.upper.data()),
                  0);
        const DomainPtr d = build_domain(s, rows.get(), all.cliques.get(), all.log.get());
        const std::vector<double> &x = dice.pick(points);
        for (int round = 0; round < 4; round++) {
            domain_propagate(d.get(), -1);
            expect_point(d.get(), x);
            expect_followed(d.get());
            if (HasFatalFailure()) return;
            const int j = dice.range(0, s.n() - 1);
            domain_tighten(d.get(), j, BoundSide::LOWER, x[j], DECIDED);
            domain_tighten(d.get(), j, BoundSide::UPPER, x[j], DECIDED);
        }
        for (const TrailEntry &e : d->Trail) {
            by_clique += e.Reason.Kind == ReasonKind::CLIQUE;
            by_implication += e.Reason.Kind == ReasonKind::IMPLICATION;
        }
#ifdef TVX_DEBUG
        ASSERT_EQ(domain_check(d.get()), 0);
#endif
    }
    EXPECT_GT(by_clique, 100);
    EXPECT_GT(by_implication, 300);
}

// A clique with two members at 1 is a contradiction, and its literal the reason.
TEST(DomainLiterals, AViolatedCliqueIsAContradictionWithItsReason)
{
    System s;
    s.lower = {0, 0, 0};
    s.upper = {1, 1, 1};
    s.integer = {1, 1, 1};
    const RowsPtr rows = build_rows(s, 0);
    CliqueTable *t = nullptr;
    ASSERT_EQ(clique_table_create(&t, 3, 100), 0);
    const CliquesPtr cliques(t);
    const int clique[3] = {0, 3, 4};
    ASSERT_EQ(clique_table_add(t, clique, 3), 0);
    const DomainPtr d = build_domain(s, rows.get(), t);
    EXPECT_EQ(DomFix(d.get(), 0, 1), 0);
    EXPECT_EQ(DomLower(d.get(), 1), 1);
    EXPECT_EQ(DomUpper(d.get(), 2), 0);
    EXPECT_EQ(d->Trail[1].Reason.Index, 0);
    DomUndoLast(d.get());
    EXPECT_EQ(DomFixedCount(d.get()), 0);
    domain_tighten(d.get(), 0, BoundSide::LOWER, 1, DECIDED);
    domain_tighten(d.get(), 2, BoundSide::LOWER, 1, DECIDED);
    EXPECT_FALSE(domain_propagate(d.get(), -1));
    EXPECT_EQ(d->Conflict.Reason.Kind, ReasonKind::CLIQUE);
    EXPECT_EQ(d->Conflict.Col, 2);
    EXPECT_EQ(d->Conflict.Reason.Index, 0);
}

TEST(ImplicationLog, KeepsTheTighterOfTwoAndAtMostSoManyForABound)
{
    const LogPtr log = empty_log(MOST_PER_BOUND + 3);
    const auto add = [&](int trigger, double value, BoundSide side) {
        EXPECT_EQ(
            implication_log_add(log.get(), {value, side == BoundSide::UPPER ? 10.0 : 0.0,
                                            trigger, 0, side}),
            0);
    };
    add(2, 5, BoundSide::UPPER);
    add(2, 7, BoundSide::UPPER);  // weaker
    add(2, 10, BoundSide::UPPER); // says nothing
    add(0, 1, BoundSide::UPPER);  // of the column itself
    add(2, 5, BoundSide::LOWER);
    add(2, 3, BoundSide::UPPER); // tighter
    ASSERT_EQ(log->Entry.size, 2);
    EXPECT_EQ(log->Entry[0].Value, 3);
    for (int j = 2; j < MOST_PER_BOUND + 3; j++) add(2 * j, 4, BoundSide::UPPER);
    EXPECT_EQ(log->ByBound.Size[bound_number(0, BoundSide::UPPER)], MOST_PER_BOUND);
    EXPECT_EQ(is_sound(log.get()), 0);
}

TEST(ImplicationLog, DiscardsWhatOtherBoundsMakeUselessOrUnproved)
{
    const LogPtr log = empty_log(3);
    std::vector<double> lower = {0, 0, -5}, upper = {1, 1, 10};
    ASSERT_EQ(implication_log_add(log.get(), {4, 10, 0, 2, BoundSide::UPPER}), 0);
    ASSERT_EQ(implication_log_add(log.get(), {8, 10, 3, 2, BoundSide::UPPER}), 0);
    ASSERT_EQ(implication_log_add(log.get(), {0, -5, 3, 2, BoundSide::LOWER}), 0);
    upper[2] = 8; // makes the second one useless, the first one is one of 8 now
    ASSERT_EQ(implication_log_revalidate(log.get(), lower.data(), upper.data()), 0);
    ASSERT_EQ(log->Entry.size, 2);
    EXPECT_EQ(log->Entry[0].Global, 8);
    lower[2] = -6; // the third one was derived under -5
    ASSERT_EQ(implication_log_revalidate(log.get(), lower.data(), upper.data()), 0);
    ASSERT_EQ(log->Entry.size, 1);
    lower[0] = 1; // its trigger is fixed
    ASSERT_EQ(implication_log_revalidate(log.get(), lower.data(), upper.data()), 0);
    EXPECT_EQ(log->Entry.size, 0);
    EXPECT_EQ(is_sound(log.get()), 0);
}

// x = 20 - 2 y and z = 1 - w: z = 1 => x <= 4 becomes w = 0 => y >= 8.
TEST(ImplicationLog, FollowsColumnsIntoAnotherModel)
{
    const LogPtr log = empty_log(3);
    ASSERT_EQ(implication_log_add(log.get(), {4, INFINITE_BOUND, 0, 2, BoundSide::UPPER}),
              0);
    ASSERT_EQ(implication_log_add(log.get(), {4, 10, 3, 2, BoundSide::UPPER}), 0);
    const int image[3] = {5, IMAGE_ZERO, IMAGE_GONE};
    const ColumnMap map[3] = {{2, -1, 1}, {-1, 1, 0}, {0, -2, 20}};
    ImplicationLog *raw = nullptr;
    ASSERT_EQ(implication_log_remap(log.get(), image, map, 3, &raw), 0);
    const LogPtr to(raw);
    ASSERT_EQ(to->Entry.size, 1);
    EXPECT_EQ(to->Entry[0].Trigger, 5);
    EXPECT_EQ(to->Entry[0].Col, 0);
    EXPECT_EQ(to->Entry[0].Side, BoundSide::LOWER);
    EXPECT_EQ(to->Entry[0].Value, 8);
    EXPECT_EQ(to->Entry[0].Global, -INFINITE_BOUND);
    EXPECT_EQ(is_sound(raw), 0);
}
