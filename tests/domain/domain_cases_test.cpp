// domain_cases_test.cpp -- a Domain at its edges: the calls of heuristics, chains, large numbers, waiting rows, memory
#include "domain/domain_support.h"
#include "runtime/memory.h"
#include "support/model_test.h"
#include <gtest/gtest.h>

TEST(DomainCases, ServesHeuristicsByTheirNames)
{
    System s = system_of({0, 0, 0}, {1, 1, 5}, 1);
    s.integer[2] = 0;
    s.rows = {{{1, 1, 0}, -INFINITE_BOUND, 1}, {{-5, 0, 1}, -INFINITE_BOUND, 0}};
    const RowsPtr rows = build_rows(s, 2);
    const DomainPtr d = build_domain(s, rows.get());
    EXPECT_EQ(DomPropagate(d.get(), -1), 0);
    EXPECT_EQ(DomFix(d.get(), 1, 0.9999999), 0); // then x0 = 0 and x2 <= 0
    EXPECT_EQ(DomUpper(d.get(), 2), 0);
    EXPECT_EQ(DomFixedCount(d.get()), 3);
    EXPECT_EQ(DomFix(d.get(), 0, 0), 0); // nothing new
    EXPECT_EQ(domain_row_least(d.get(), 0), 1);
    EXPECT_EQ(domain_row_largest(d.get(), 0), 1);
    EXPECT_EQ(DomFix(d.get(), 2, 1), 1);
    EXPECT_TRUE(DomIsInfeasible(d.get()));
    EXPECT_EQ(DomFix(d.get(), 0, 0), 1);
    DomUndoLast(d.get());
    DomUndoLast(d.get());
    EXPECT_FALSE(DomIsInfeasible(d.get()));
    EXPECT_EQ(DomFixedCount(d.get()), 3);
    DomUndoLast(d.get()); // the one without changes
    EXPECT_EQ(DomFixedCount(d.get()), 3);
    DomUndoLast(d.get());
    DomUndoLast(d.get()); // none is left
    EXPECT_EQ(DomFixedCount(d.get()), 0);
    EXPECT_EQ(DomUpper(d.get(), 2), 5);
    EXPECT_EQ(DomLower(d.get(), 1), 0);
}

// x <= y / 2, y <= x / 2 has the only point 0 but no end; integers walk in steps of 1; x >= y + 1, y >= x + 1 has none.
TEST(DomainCases, ChainsOfSmallStepsEnd)
{
    const auto changes = [](const System &s) {
        const RowsPtr rows = build_rows(s, 2);
        const DomainPtr d = build_domain(s, rows.get());
        domain_propagate(d.get(), -1);
        EXPECT_EQ(is_sound(d.get()), 0);
        return domain_mark(d.get());
    };
    System s = system_of({0, 0}, {1, 1}, 0);
    s.rows = {{{1, -0.5}, -INFINITE_BOUND, 0}, {{-0.5, 1}, -INFINITE_BOUND, 0}};
    EXPECT_LE(changes(s), 20);
    for (const char integer : {'\0', '\1'}) {
        System walk = system_of({0, 0}, {1e9, 1e9}, integer);
        walk.rows = {{{1, -1}, 1, INFINITE_BOUND}, {{-1, 1}, 1, INFINITE_BOUND}};
        EXPECT_LE(changes(walk), 1100);
        walk.upper = {INFINITE_BOUND, INFINITE_BOUND};
        EXPECT_LE(changes(walk), 1100);
    }
}

// Bounds of large integers: the tolerance is lost in the digits of 1e15, where it must not take a point away.
TEST(DomainCases, LargeIntegersAreNotRoundedInwards)
{
    System s = system_of({0}, {4e9}, 1);
    s.rows = {{{1}, -INFINITE_BOUND, 3000000000.5},
              {{1e-6}, -INFINITE_BOUND, 2999.9999995}};
    const RowsPtr rows = build_rows(s, 2);
    const DomainPtr d = build_domain(s, rows.get());
    domain_propagate(d.get(), -1);
    EXPECT_GE(d->Upper[0], 3000000000.0);
    EXPECT_LE(d->Upper[0], 3000000002.0);
    domain_tighten(d.get(), 0, BoundSide::LOWER, 2000000000.5, DECIDED);
    EXPECT_EQ(d->Lower[0], 2000000000.0);
    domain_undo(d.get(), 0);
    domain_tighten(d.get(), 0, BoundSide::UPPER, 2.5, DECIDED);
    domain_tighten(d.get(), 0, BoundSide::LOWER, 0.999999, DECIDED);
    EXPECT_EQ(d->Upper[0], 2);
    EXPECT_EQ(d->Lower[0], 1);
    domain_tighten(d.get(), 0, BoundSide::LOWER, NAN, DECIDED);
    domain_tighten(d.get(), 0, BoundSide::LOWER, 2.00002, DECIDED);
    EXPECT_TRUE(d->Infeasible);
}

// 5e10 x - 5e10 y + z <= 0.5 with x = y, integers; with larger coefficients nothing is sure, and nothing may be said.
TEST(DomainCases, HugeTermsThatCancelDoNotHideSmallOnes)
{
    System s = system_of({0, 0, 0}, {1000, 1000, 1}, 1);
    s.rows = {{{1e13, -1e13, 1}, -INFINITE_BOUND, 0.5}};
    for (const double scale : {5e-3, 1.0, 1e40}) {
        SCOPED_TRACE(scale);
        System scaled = s;
        for (double &a : scaled.rows[0].a) a *= scale;
        scaled.rows[0].a[2] = 1;
        const RowsPtr rows = build_rows(scaled, 1);
        const DomainPtr d = build_domain(scaled, rows.get());
        Dice dice(1);
        for (int k = 0; k < 100; k++) {
            domain_undo(d.get(), 0);
            const int x = dice.range(0, 1000);
            for (const int j : {0, 1}) {
                domain_tighten(d.get(), j, BoundSide::LOWER, x, DECIDED);
                domain_tighten(d.get(), j, BoundSide::UPPER, x, DECIDED);
            }
            ASSERT_TRUE(domain_propagate(d.get(), -1));
            ASSERT_EQ(d->Upper[2], scale < 1 ? 0 : 1) << x; // beyond, rounding counts
        }
    }
}

TEST(DomainCases, RowsWithoutSideAndRowsThatNoPointSatisfiesAreKnown)
{
    System s = system_of({0}, {1}, 0);
    s.rows = {{{1}, -INFINITE_BOUND, INFINITE_BOUND}, {{1e200}, 1, 1}, {{0}, -1, 1}};
    RowsPtr rows = build_rows(s, 3);
    DomainPtr d = build_domain(s, rows.get());
    EXPECT_TRUE(domain_propagate(d.get(), -1));
    EXPECT_EQ(domain_mark(d.get()), 0);
    for (const SystemRow &row :
         {SystemRow{{1}, INFINITE_BOUND, INFINITE_BOUND},
          SystemRow{{1}, -INFINITE_BOUND, -INFINITE_BOUND}, SystemRow{{0}, 1, 2}}) {
        s.rows = {row};
        rows = build_rows(s, 1);
        d = build_domain(s, rows.get());
        EXPECT_FALSE(domain_propagate(d.get(), -1));
        EXPECT_EQ(d->Conflict.Reason.Index, 0);
    }
    s.rows.clear();
    s.lower[0] = 2;
    rows = build_rows(s, 0);
    d = build_domain(s, rows.get());
    domain_undo(d.get(), 0);
    EXPECT_TRUE(d->Infeasible); // from the start
}

// Undo forgets rows that wait because of what it takes back, and no others.
TEST(DomainCases, RowsThatWaitBeforeAMarkWaitAfterUndo)
{
    System s = system_of({0, 0, 0}, {1, 1, 1}, 1);
    s.rows = {{{1, 1, 0}, -INFINITE_BOUND, 1}, {{0, 1, 1}, 1, INFINITE_BOUND}};
    const RowsPtr rows = build_rows(s, 2);
    const DomainPtr d = build_domain(s, rows.get());
    EXPECT_TRUE(domain_propagate(d.get(), 0)); // without effort nothing happens
    domain_tighten(d.get(), 0, BoundSide::LOWER, 1, DECIDED);
    const int64_t mark = domain_mark(d.get());
    domain_tighten(d.get(), 2, BoundSide::UPPER, 0, DECIDED);
    domain_undo(d.get(), mark);
    EXPECT_TRUE(domain_propagate(d.get(), -1));
    EXPECT_EQ(d->Upper[1], 0);
    EXPECT_EQ(d->Lower[2], 1);
    domain_undo(d.get(), 0);
    domain_tighten(d.get(), 0, BoundSide::LOWER, 1, DECIDED);
    domain_undo(d.get(), 0);
    EXPECT_EQ(d->QueueCount, 0);
}

// 2.99999 counts as 3 in an integer column, 2.9 does not.
TEST(DomainCases, IntegersAreRoundedWithTheIntegralityTolerance)
{
    System s = system_of({0}, {10}, 1);
    s.rows = {{{1000}, -INFINITE_BOUND, 2999.991}, {{1000}, 1000.009, INFINITE_BOUND}};
    const RowsPtr rows = build_rows(s, 2);
    const DomainPtr d = build_domain(s, rows.get());
    EXPECT_TRUE(domain_propagate(d.get(), -1));
    EXPECT_EQ(d->Upper[0], 3);
    EXPECT_EQ(d->Lower[0], 1);
}

struct DomainOfModel : ModelTest {
};

// The rows of a model mean the same as rows given one by one; '>' rows stand negated in the body.
TEST_F(DomainOfModel, RowsOfAModelActLikeItsConstraints)
{
    load("Minimize\n x\nSubject To\n c1: 2 x + 3 y >= 5\n c2: x + y - z = 1\n c3: 4 x - w "
         "<= 2\n"
         "Bounds\n x <= 9\n y <= 1\n 2 <= w <= 6\nGenerals\n x\nSemi-Continuous\n w");
    PropagationRows *raw = nullptr;
    ASSERT_EQ(propagation_rows_of_body(&raw, model->body), 0);
    const RowsPtr rows(raw);
    const double lower[4] = {0, 0, 0, 0}, upper[4] = {9, 1, 100, 6}; // w may be 0
    Domain *d = nullptr;
    ASSERT_EQ(domain_create(&d, raw, nullptr, nullptr, lower, upper, {}), 0);
    const DomainPtr own(d);
    ASSERT_TRUE(domain_propagate(d, -1));
    EXPECT_EQ(d->Lower[0], 1); // by c1
    EXPECT_EQ(d->Upper[0], 2); // by c3
    EXPECT_NEAR(d->Upper[2], 2, 1e-5);
    EXPECT_NEAR(d->Lower[1], 1.0 / 3, 1e-5);
    EXPECT_DOUBLE_EQ(domain_row_least(d, 1), 1 + d->Lower[1] - d->Upper[2]);
    EXPECT_EQ(is_sound(d), 0);
}

#ifdef TVX_DEBUG
// A use of everything, with the k-th request of memory and all after it refused.
static int use_all(Dice *dice)
{
    const System s = integer_system(dice);
    const ColumnSource cols = {s.n(), s.lower.data(), s.upper.data(), s.integer.data()};
    const Compressed source(s, 0, s.rows.size());
    PropagationRows *rows = nullptr;
    TRY(propagation_rows_build(&rows, &cols, &source.source));
    const RowsPtr own_rows(rows);
    TRY(propagation_rows_append(rows, &source.source, s.lower.data(), s.upper.data()));
    CliqueTable *t = nullptr, *to = nullptr;
    TRY(clique_table_create(&t, s.n(), 1000));
    const CliquesPtr cliques(t);
    TRY(clique_table_add_rows(t, rows, s.lower.data(), s.upper.data()));
    TRY(clique_table_find_equal(t));
    TRY(clique_table_clean(t));
    TRY(clique_table_merge(t, 1000, 1000));
    std::vector<int> image(static_cast<size_t>(s.n()), 0);
    TRY(clique_table_remap(t, image.data(), 1, &to));
    clique_table_free(to);
    Domain *d = nullptr;
    TRY(domain_create(&d, rows, t, nullptr, s.lower.data(), s.upper.data(), {}));
    const DomainPtr own(d);
    const int error = domain_rows_changed(d);
    for (int round = 0; round < 20; round++) {
        domain_propagate(d, -1);
        if (domain_check(d)) return -1;
        DomFix(d, dice->range(0, s.n() - 1), dice->range(-2, 3));
        if (domain_check(d)) return -1;
        if (dice->chance(40)) DomUndoLast(d);
    }
    return error ? error : d->Error;
}

TEST(DomainCases, EveryRefusedRequestOfMemoryIsToldAndLeavesItSound)
{
    for (uint64_t seed = 0; seed < 20; seed++) {
        bool refused = true;
        for (int64_t k = 1; refused; k++) {
            Dice dice(seed);
            const int64_t before = mem_blocks_held();
            mem_fault_arm(k);
            const int code = use_all(&dice);
            refused = mem_fault_hits() > 0;
            mem_fault_arm(0);
            ASSERT_EQ(code, refused ? OUT_OF_MEMORY : 0) << seed << ", request " << k;
            ASSERT_EQ(mem_blocks_held(), before);
        }
    }
}

// The trail has room for 2 n + 16 changes at first.
TEST(DomainCases, ATrailThatCannotGrowStopsChangesAndNothingElse)
{
    System s = system_of({0}, {1000}, 1);
    const RowsPtr rows = build_rows(s, 0);
    const DomainPtr d = build_domain(s, rows.get());
    mem_fault_arm(1);
    for (int k = 1; k <= 100; k++) domain_tighten(d.get(), 0, BoundSide::LOWER, k, DECIDED);
    mem_fault_arm(0);
    EXPECT_EQ(d->Error, OUT_OF_MEMORY);
    EXPECT_EQ(d->Lower[0], static_cast<double>(d->Trail.size));
    EXPECT_LT(d->Lower[0], 100);
    domain_undo(d.get(), 3);
    EXPECT_EQ(d->Lower[0], 3);
    EXPECT_EQ(domain_check(d.get()), 0);
}
#endif
