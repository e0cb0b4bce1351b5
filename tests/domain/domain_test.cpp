// domain_test.cpp -- propagation keeps every point, undo restores everything, and nothing that follows is missed
#include "domain/domain_support.h"
#include "runtime/memory.h"
#include "support/model_test.h"
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace
{
// How many random systems a test tries; the variable asks for a campaign.
int tries(int few)
{
    const char *many = getenv("TARVEX_DOMAIN_TRIES");
    return many ? atoi(many) : few;
}

constexpr double TOL = 1e-6;

int is_sound(const Domain *d)
{
#ifdef TVX_DEBUG
    return domain_check(d) + propagation_rows_check(d->Rows);
#else
    (void)d;
    return 0;
#endif
}

// A random value of odd size.
double odd_number(Dice *dice)
{
    static const std::vector<double> scales = {1, 1, 1, 1, 0.1, 10, 1e-3, 1e3, 1e-6, 1e5};
    const double value = dice->chance(60) ? dice->nonzero(9) : dice->real(-9, 9);
    return value * dice->pick(scales);
}

// A system with columns of all kinds, and a point that violates its rows and the bounds of its continuous columns by
// nearly the tolerance.
System system_around(Dice *dice, std::vector<double> *point)
{
    System s;
    const int n = dice->range(1, 8), m = dice->range(1, 6);
    for (int j = 0; j < n; j++) {
        const bool integer = dice->chance(50);
        double x = integer ? dice->range(-3, 3) : odd_number(dice);
        if (integer && dice->chance(10)) x = dice->range(-2000000, 2000000) * 400.0;
        const double room =
            dice->chance(70) ? dice->range(0, 3) : std::fabs(odd_number(dice));
        const double miss = integer ? 0 : TOL * dice->real(-1, 0.999);
        const double low = x - (dice->chance(40) ? 0 : room) + miss;
        const double high = x + room + (integer ? 0 : 1e-9);
        s.integer.push_back(integer);
        s.lower.push_back(dice->chance(10) ? -INFINITE_BOUND : low);
        s.upper.push_back(dice->chance(10) ? INFINITE_BOUND : high);
        point->push_back(x);
    }
    for (int i = 0; i < m; i++) {
        SystemRow row;
        for (int j = 0; j < n; j++)
            row.a.push_back(dice->chance(60) ? odd_number(dice) : 0);
        const double sum = static_cast<double>(s.activity(row, *point));
        const double miss = TOL * 0.999;
        const double gap = dice->chance(50) ? 0 : std::fabs(odd_number(dice));
        const int kind = dice->range(0, 3);
        if (kind != 0) row.low = sum + miss - gap;
        if (kind != 1) row.high = sum - miss + gap;
        if (kind == 2) row.low = row.high = sum + (dice->chance(50) ? miss : -miss);
        s.rows.push_back(row);
    }
    return s;
}

// Is the point still there, within the tolerance?
void expect_kept(const Domain *d, const std::vector<double> &x, const char *when)
{
    ASSERT_FALSE(d->Infeasible) << when;
    for (int j = 0; j < d->Rows->NumCols; j++) {
        const double tol = d->Rows->IsInteger[j] ? 0 : TOL * (1 + 1e-9);
        ASSERT_LE(d->Lower[j] - tol, x[j]) << when << ", column " << j;
        ASSERT_GE(d->Upper[j] + tol, x[j]) << when << ", column " << j;
    }
}

// A bound that x satisfies: for an integer column up to the value itself.
void tighten_around(Domain *d, Dice *dice, const std::vector<double> &x)
{
    const int j = dice->range(0, d->Rows->NumCols - 1);
    const bool lower = dice->chance(50);
    const double old = lower ? d->Lower[j] : d->Upper[j];
    double value = x[j];
    if (dice->chance(30) && std::fabs(old) < 1e9)
        value = x[j] + (old - x[j]) * dice->real(0, 1);
    domain_tighten(d, j, lower ? BoundSide::LOWER : BoundSide::UPPER, value, DECIDED);
}
} // namespace

TEST(Domain, APointWithinTheToleranceOfAllRowsAndBoundsIsNeverLost)
{
    for (int seed = 0; seed < tries(4000); seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        std::vector<double> x;
        const System s = system_around(&dice, &x);
        const RowsPtr rows = build_rows(s, dice.range(0, static_cast<int>(s.rows.size())));
        const DomainPtr d = build_domain(s, rows.get());
        expect_kept(d.get(), x, "at first");
        for (int round = 0; round < 6; round++) {
            domain_propagate(d.get(), -1);
            expect_kept(d.get(), x, "propagated");
            tighten_around(d.get(), &dice, x);
        }
        ASSERT_EQ(is_sound(d.get()), 0);
        if (HasFatalFailure()) return;
    }
}

// Plain propagation of an integer system to its end, or for `rounds` rounds; false when infeasible.
static bool propagate_plainly(System *s, int *rounds)
{
    for (int j = 0; j < s->n(); j++) { // terms of infinite bounds shall be infinite
        if (s->lower[j] <= -DOMAIN_INFINITE) s->lower[j] = -INFINITY;
        if (s->upper[j] >= DOMAIN_INFINITE) s->upper[j] = INFINITY;
    }
    const auto tighten = [s](const SystemRow &row, double sign, double side, int j) {
        double rest = 0; // least activity of the others
        for (int k = 0; k < s->n(); k++) {
            const double a = sign * row.a[k];
            if (k != j && a != 0) rest += a > 0 ? a * s->lower[k] : a * s->upper[k];
        }
        const double a = sign * row.a[j], bound = (side - rest) / a;
        double *upper = &s->upper[j], *lower = &s->lower[j];
        if (a > 0 && std::floor(bound) < *upper) return *upper = std::floor(bound), true;
        if (a < 0 && std::ceil(bound) > *lower) return *lower = std::ceil(bound), true;
        return false;
    };
    for (bool again = true; again && --*rounds > 0;) {
        again = false;
        for (const SystemRow &row : s->rows) {
            double least = 0, largest = 0;
            for (int j = 0; j < s->n(); j++) {
                if (row.a[j] == 0) continue;
                least += std::min(row.a[j] * s->lower[j], row.a[j] * s->upper[j]);
                largest += std::max(row.a[j] * s->lower[j], row.a[j] * s->upper[j]);
            }
            if (least > row.high || largest < row.low) return false;
            for (int j = 0; j < s->n(); j++) {
                if (row.a[j] == 0) continue;
                if (row.high < 1e20) again |= tighten(row, 1, row.high, j);
                if (row.low > -1e20) again |= tighten(row, -1, -row.low, j);
                if (s->lower[j] > s->upper[j]) return false;
            }
        }
    }
    return true;
}

static bool is_small(const System &s)
{
    const auto small = [](double bound) {
        return std::isinf(bound) || std::fabs(bound) <= 500;
    };
    return std::all_of(s.lower.begin(), s.lower.end(), small) &&
           std::all_of(s.upper.begin(), s.upper.end(), small);
}

TEST(Domain, FindsAllThatPlainPropagationFinds)
{
    int infeasible = 0, tightened = 0;
    for (int seed = 0; seed < tries(4000); seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        System s = integer_system(&dice);
        open_bounds(&s, &dice);
        const RowsPtr rows = build_rows(s, dice.range(0, static_cast<int>(s.rows.size())));
        const DomainPtr d = build_domain(s, rows.get());
        int rounds = 100;
        for (int round = 0; round < 3; round++) {
            const bool consistent = propagate_plainly(&s, &rounds);
            if (rounds <= 0 || !is_small(s))
                break; // steps too small for the range, or no end
            ASSERT_EQ(domain_propagate(d.get(), -1), consistent);
            infeasible += !consistent;
            if (!consistent) break;
            for (int j = 0; j < s.n(); j++) {
                ASSERT_EQ(d->Lower[j], std::max(s.lower[j], -INFINITE_BOUND)) << j;
                ASSERT_EQ(d->Upper[j], std::min(s.upper[j], INFINITE_BOUND)) << j;
            }
            tightened += d->Trail.size > 0;
            const int j = dice.range(0, s.n() - 1);
            const double value = dice.chance(50) ? s.lower[j] : s.upper[j];
            if (std::isinf(value)) continue;
            s.lower[j] = s.upper[j] = value;
            domain_tighten(d.get(), j, BoundSide::LOWER, s.lower[j], DECIDED);
            domain_tighten(d.get(), j, BoundSide::UPPER, s.upper[j], DECIDED);
        }
        ASSERT_EQ(is_sound(d.get()), 0);
    }
    EXPECT_GT(infeasible, tries(4000) / 20);
    EXPECT_GT(tightened, tries(4000) / 20);
}

TEST(Domain, APointThatSatisfiesAllRowsStaysToTheLastDigits)
{
    for (int seed = 0; seed < tries(2000); seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        System s = integer_system(&dice);
        for (char &integer : s.integer) integer = dice.chance(40);
        const System open = s;
        if (dice.chance(50)) open_bounds(&s, &dice);
        const RowsPtr rows = build_rows(s, s.rows.size());
        const DomainPtr d = build_domain(s, rows.get());
        const bool consistent = domain_propagate(d.get(), -1);
        each_point(open, [&](const std::vector<double> &x) {
            if (!s.satisfied(x, 0)) return;
            ASSERT_TRUE(consistent);
            for (int j = 0; j < s.n(); j++) {
                ASSERT_LE(d->Lower[j], x[j] + 1e-12);
                ASSERT_GE(d->Upper[j], x[j] - 1e-12);
            }
        });
    }
}

// Everything that undo must restore.
struct Snapshot {
    std::vector<double> lower, upper;
    int fixed = 0;
    int64_t mark = 0;
    bool infeasible = false;
    explicit Snapshot(const Domain *d)
        : lower(d->Lower.begin(), d->Lower.end()), upper(d->Upper.begin(), d->Upper.end()),
          fixed(d->FixedCount), mark(domain_mark(d)), infeasible(d->Infeasible)
    {
    }
    bool operator==(const Snapshot &) const = default;
};

TEST(Domain, UndoRestoresBoundsActivitiesAndConsistency)
{
    int undone_infeasible = 0;
    for (int seed = 0; seed < tries(2000); seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        std::vector<double> x;
        const System s = dice.chance(50) ? system_around(&dice, &x) : integer_system(&dice);
        const RowsPtr rows = build_rows(s, s.rows.size());
        const DomainPtr d = build_domain(s, rows.get());
        std::vector<double> copy_lower(d->Lower.begin(), d->Lower.end());
        std::vector<int> changed(s.n());
        domain_take_changed(d.get(), changed.data());
        if (!domain_propagate(d.get(), -1)) continue;
        std::vector<Snapshot> levels = {Snapshot(d.get())};
        for (int step = 0; step < 30; step++) {
            const int j = dice.range(0, s.n() - 1);
            if (dice.chance(40) && levels.size() > 1) {
                levels.erase(levels.begin() +
                                 dice.range(1, static_cast<int>(levels.size()) - 1),
                             levels.end());
                undone_infeasible += d->Infeasible;
                domain_undo(d.get(), levels.back().mark);
                ASSERT_TRUE(Snapshot(d.get()) == levels.back());
                ASSERT_EQ(is_sound(d.get()), 0);
            } else {
                const double value =
                    d->Rows->IsInteger[j] ? dice.range(-3, 4) : odd_number(&dice);
                domain_tighten(d.get(), j,
                               dice.chance(50) ? BoundSide::LOWER : BoundSide::UPPER, value,
                               DECIDED);
                domain_propagate(d.get(), -1);
                if (!d->Infeasible) levels.emplace_back(d.get());
            }
            for (int k = domain_take_changed(d.get(), changed.data()); k-- > 0;)
                copy_lower[changed[k]] = d->Lower[changed[k]];
            ASSERT_TRUE(std::equal(copy_lower.begin(), copy_lower.end(), d->Lower.begin()));
        }
    }
    EXPECT_GT(undone_infeasible, 100);
}

namespace
{
System system_of(std::vector<double> lower, std::vector<double> upper, char integer)
{
    const size_t n = lower.size();
    return {std::move(lower), std::move(upper), std::vector<char>(n, integer), {}};
}
} // namespace

// What comes back and what stays queued when rows come and go under a Domain with a trail.
TEST(Domain, RowsMayBeAppendedAndDroppedUnderATrail)
{
    for (int seed = 0; seed < tries(1000); seed++) {
        SCOPED_TRACE(seed);
        Dice dice(static_cast<uint64_t>(seed));
        const System all = integer_system(&dice);
        const size_t first =
            static_cast<size_t>(dice.range(0, static_cast<int>(all.rows.size())));
        System model = all;
        model.rows.resize(first);
        const RowsPtr rows = build_rows(model, first);
        const DomainPtr d = build_domain(model, rows.get());
        domain_propagate(d.get(), -1);
        const Snapshot before(d.get());
        const int j = dice.range(0, all.n() - 1);
        domain_tighten(d.get(), j, BoundSide::LOWER, all.upper[j], DECIDED);
        if (dice.chance(50)) domain_propagate(d.get(), -1);
        const Compressed more(all, first, all.rows.size());
        for (int time = 0; time < 2; time++) {
            ASSERT_EQ(propagation_rows_append(rows.get(), &more.source, all.lower.data(),
                                              all.upper.data()),
                      0);
            ASSERT_EQ(domain_rows_changed(d.get()), 0);
            ASSERT_EQ(is_sound(d.get()), 0);
            if (time == 0) propagation_rows_drop_appended(rows.get());
            ASSERT_EQ(time == 0 ? domain_rows_changed(d.get()) : 0, 0);
        }
        System plain = all;
        int rounds = 1000;
        plain.lower[j] = all.upper[j];
        const bool consistent = propagate_plainly(&plain, &rounds);
        domain_propagate(d.get(), -1);
        ASSERT_EQ(!d->Infeasible, consistent);
        for (int k = 0; k < all.n() && consistent; k++)
            ASSERT_EQ(d->Lower[k], plain.lower[k]);
        domain_undo(d.get(), before.mark);
        ASSERT_TRUE(before.infeasible || Snapshot(d.get()) == before);
        ASSERT_EQ(is_sound(d.get()), 0);
        domain_reset(d.get(), all.lower.data(), all.upper.data());
        plain = all;
        ASSERT_EQ(domain_propagate(d.get(), -1), propagate_plainly(&plain, &rounds));
    }
}

TEST(Domain, ServesHeuristicsByTheirNames)
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
TEST(Domain, ChainsOfSmallStepsEnd)
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
TEST(Domain, LargeIntegersAreNotRoundedInwards)
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
TEST(Domain, HugeTermsThatCancelDoNotHideSmallOnes)
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

TEST(Domain, RowsWithoutSideAndRowsThatNoPointSatisfiesAreKnown)
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
TEST(Domain, RowsThatWaitBeforeAMarkWaitAfterUndo)
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
TEST(Domain, IntegersAreRoundedWithTheIntegralityTolerance)
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

TEST(Domain, EveryRefusedRequestOfMemoryIsToldAndLeavesItSound)
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
TEST(Domain, ATrailThatCannotGrowStopsChangesAndNothingElse)
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
