// domain_support.h -- small random systems low <= A x <= high for the tests of propagation, and their Domain
#pragma once
#include "domain/domain.h"
#include "support/dice.h"
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

template<class T, void (*FREE)(T *)> struct Freed {
    void operator()(T *record) const { FREE(record); }
};
using RowsPtr =
    std::unique_ptr<PropagationRows, Freed<PropagationRows, propagation_rows_free>>;
using DomainPtr = std::unique_ptr<Domain, Freed<Domain, domain_free>>;
using CliquesPtr = std::unique_ptr<CliqueTable, Freed<CliqueTable, clique_table_free>>;

struct SystemRow {
    std::vector<double> a; // [columns]
    double low = -INFINITE_BOUND, high = INFINITE_BOUND;
};

struct System {
    std::vector<double> lower, upper;
    std::vector<char> integer;
    std::vector<SystemRow> rows;

    int n() const { return static_cast<int>(lower.size()); }
    long double activity(const SystemRow &row, const std::vector<double> &x) const
    {
        long double sum = 0;
        for (int j = 0; j < n(); j++) sum += static_cast<long double>(row.a[j]) * x[j];
        return sum;
    }
    // Is x within `tol` of every row?
    bool satisfied(const std::vector<double> &x, double tol) const
    {
        for (const SystemRow &row : rows) {
            const long double sum = activity(row, x);
            if (sum < row.low - tol || sum > row.high + tol) return false;
        }
        return true;
    }
};

// The rows in compressed form, as long as this stands.
struct Compressed {
    std::vector<int> beg = {0}, ind;
    std::vector<double> val, low, high;
    RowSource source;
    Compressed(const System &s, size_t first, size_t end)
    {
        for (size_t i = first; i < end; i++) {
            for (int j = 0; j < s.n(); j++)
                if (s.rows[i].a[j] != 0) {
                    ind.push_back(j);
                    val.push_back(s.rows[i].a[j]);
                }
            beg.push_back(static_cast<int>(ind.size()));
            low.push_back(s.rows[i].low);
            high.push_back(s.rows[i].high);
        }
        source = {static_cast<int>(end - first),
                  beg.data(),
                  ind.data(),
                  val.data(),
                  low.data(),
                  high.data()};
    }
};

// The first n_model rows at build time, the others appended.
inline RowsPtr build_rows(const System &s, size_t n_model)
{
    const ColumnSource cols = {s.n(), s.lower.data(), s.upper.data(), s.integer.data()};
    const Compressed model(s, 0, n_model), more(s, n_model, s.rows.size());
    PropagationRows *rows = nullptr;
    if (propagation_rows_build(&rows, &cols, &model.source)) abort();
    if (n_model < s.rows.size() &&
        propagation_rows_append(rows, &more.source, s.lower.data(), s.upper.data()))
        abort();
    return RowsPtr(rows);
}
inline DomainPtr build_domain(const System &s, const PropagationRows *rows,
                              const CliqueTable *cliques = nullptr,
                              const ImplicationLog *log = nullptr)
{
    Domain *d = nullptr;
    if (domain_create(&d, rows, cliques, log, s.lower.data(), s.upper.data(), {})) abort();
    if (domain_rows_changed(d)) abort();
    return DomainPtr(d);
}

// Broken invariants of a Domain and its rows, where they can be counted.
inline int is_sound(const Domain *d)
{
#ifdef TVX_DEBUG
    return domain_check(d) + propagation_rows_check(d->Rows);
#else
    (void)d;
    return 0;
#endif
}

constexpr BoundReason DECIDED = {ReasonKind::DECISION, -1};

// Columns of one kind; rows come later.
inline System system_of(std::vector<double> lower, std::vector<double> upper, char integer)
{
    const size_t n = lower.size();
    return {std::move(lower), std::move(upper), std::vector<char>(n, integer), {}};
}

// Few integers of small range with small coefficients: everything about it is exact.
inline System integer_system(Dice *dice)
{
    System s;
    const int n = dice->range(1, 6), m = dice->range(1, 5);
    for (int j = 0; j < n; j++) {
        const int low = dice->chance(60) ? 0 : dice->range(-4, 3);
        s.lower.push_back(low);
        s.upper.push_back(dice->chance(60) ? low + 1 : low + dice->range(0, 5));
        s.integer.push_back(1);
    }
    const bool planted = dice->chance(70); // the lower bounds satisfy all rows
    for (int i = 0; i < m; i++) {
        SystemRow row;
        for (int j = 0; j < n; j++)
            row.a.push_back(dice->chance(60) ? dice->nonzero(dice->chance(20) ? 20 : 4)
                                             : 0);
        const int sum = static_cast<int>(s.activity(row, s.lower));
        const int side = planted ? sum + dice->range(0, 4) : dice->range(-6, 12);
        if (!dice->chance(20)) row.high = side;
        if (dice->chance(40)) row.low = planted ? sum : side - dice->range(0, 5);
        s.rows.push_back(row);
    }
    return s;
}

// Some bounds away.
inline void open_bounds(System *s, Dice *dice)
{
    for (int j = 0; j < s->n(); j++) {
        if (dice->chance(15)) s->lower[j] = -INFINITE_BOUND;
        if (dice->chance(15)) s->upper[j] = INFINITE_BOUND;
    }
}

// All points of the box of an integer system, one call of `visit` each.
template<class Visit> void each_point(const System &s, Visit visit)
{
    std::vector<double> x = s.lower;
    for (int j = 0; j < s.n();) {
        visit(x);
        for (j = 0; j < s.n(); j++) {
            if (x[j] < s.upper[j]) {
                x[j] += 1;
                break;
            }
            x[j] = s.lower[j];
        }
    }
}
