// domain_test.cpp -- propagation keeps every point, undo restores everything, and nothing that follows is missed
#include "domain/domain_support.h"
#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace
{
// How many random systems a test tries; the variable asks for a campaign.
int tries(int few)
{
    const char *many = getenv("TARVEX_DOMAIN_COUNT");
    return many ? atoi(many) : few;
}

constexpr double TOL = 1e-6;

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
