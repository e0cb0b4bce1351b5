// lp_model.cpp -- building, changing and printing the test's own copy of an LP
#include "support/lp_model.h"
#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <map>
#include <sstream>

LpModel lp_make(const std::vector<LpColumn> &columns, const std::vector<LpRow> &rows,
                int sense)
{
    LpModel lp;
    lp.sense = sense;
    for (const LpColumn &c : columns) lp_add_var(&lp, c.obj, c.lb, c.ub);
    for (const LpRow &r : rows) {
        const int i = lp_add_row(&lp, r.sense, r.rhs);
        for (size_t j = 0; j < r.coefs.size(); j++)
            lp_set_entry(&lp, i, int(j), r.coefs[j]);
    }
    return lp;
}

int lp_add_var(LpModel *lp, double obj, double lb, double ub, char type)
{
    if (type != 'C' || !lp->types.empty()) {
        lp->types.resize(lp->obj.size(), 'C');
        lp->types.push_back(type);
    }
    lp->obj.push_back(obj);
    lp->lb.push_back(lb);
    lp->ub.push_back(ub);
    lp->cols.emplace_back();
    return lp->num_vars() - 1;
}

int lp_add_row(LpModel *lp, char sense, double rhs)
{
    lp->senses.push_back(sense);
    lp->rhs.push_back(rhs);
    return lp->num_rows() - 1;
}

int lp_add_row_entries(LpModel *lp, const std::vector<std::pair<int, double>> &entries,
                       char sense, double rhs)
{
    const int row = lp_add_row(lp, sense, rhs);
    std::map<int, double> sums;
    for (const auto &[col, value] : entries) sums[col] += value;
    for (const auto &[col, value] : sums)
        if (value != 0) lp->cols[col].push_back({row, value});
    return row;
}

void lp_set_entry(LpModel *lp, int row, int col, double value)
{
    std::vector<LpEntry> *entries = &lp->cols[col];
    std::erase_if(*entries, [row](const LpEntry &e) { return e.row == row; });
    if (value != 0) entries->push_back({row, value});
}

double lp_get_entry(const LpModel *lp, int row, int col)
{
    for (const LpEntry &e : lp->cols[col])
        if (e.row == row) return e.value;
    return 0;
}

void TermSum::add(long double a, long double b)
{
    const long double term = a * b;
    value += term;
    size += std::fabs(term);
    largest = std::max(largest, std::fabs(term));
}

LpSums lp_sums(const LpModel *lp, const std::vector<double> &x,
               const std::vector<double> &pi)
{
    LpSums sums;
    sums.rows.resize(lp->rhs.size());
    sums.costs.resize(lp->obj.size());
    sums.objective.add(lp->objcon, 1);
    for (size_t j = 0; j < lp->obj.size(); j++) {
        sums.objective.add(lp->obj[j], x[j]);
        sums.costs[j].add(lp->obj[j], 1);
        for (const LpEntry &e : lp->cols[j]) {
            sums.rows[e.row].add(e.value, x[j]);
            if (!pi.empty()) sums.costs[j].add(-pi[e.row], e.value);
        }
    }
    return sums;
}

std::vector<long double> lp_activity(const LpModel *lp, const std::vector<double> &x)
{
    std::vector<long double> activity;
    for (const TermSum &sum : lp_sums(lp, x, {}).rows) activity.push_back(sum.value);
    return activity;
}

long double lp_objective(const LpModel *lp, const std::vector<double> &x)
{
    return lp_sums(lp, x, {}).objective.value;
}

static LpAmount row_violation(const LpModel *lp, size_t row, const TermSum &sum)
{
    if (lp_is_infinite(lp->rhs[row])) return {};
    const long double over = sum.value - lp->rhs[row];
    const char sense = lp->senses[row];
    return {sense == '<'   ? over
            : sense == '>' ? -over
                           : std::fabs(over),
            sum.size + std::fabs(lp->rhs[row])};
}

static LpAmount bound_violation(const LpModel *lp, size_t col, long double x)
{
    long double most = -LP_INFINITY;
    if (!lp_is_infinite(lp->lb[col])) most = lp->lb[col] - x;
    if (!lp_is_infinite(lp->ub[col])) most = std::max(most, x - lp->ub[col]);
    return {most, std::fabs(x)};
}

static LpPriced price(LpAmount force, bool exists, double end, long double stands)
{
    const long double distance = (stands - end) * (force.value > 0 ? 1 : -1);
    if (!exists || lp_is_infinite(end)) return {force, {HUGE_VALL, 0}, 0};
    return {force, {distance, 0}, std::fabs(end)};
}

static LpPriced price_row(const LpModel *lp, size_t row, double pi, const TermSum &sum)
{
    const long double y = pi * lp->sense;
    const bool equation = lp->senses[row] == '=';
    LpPriced p =
        price({y, std::fabs(y)}, equation || lp->senses[row] == (y > 0 ? '>' : '<'),
              lp->rhs[row], sum.value);
    if (equation) p.distance.value = std::fabs(p.distance.value);
    p.distance.terms = sum.size + std::fabs(lp->rhs[row]);
    p.end = std::max(p.end, sum.largest);
    return p;
}

LpMeasures lp_measure(const LpModel *lp, const std::vector<double> &x,
                      const std::vector<double> &pi)
{
    LpMeasures m;
    m.sums = lp_sums(lp, x, pi);
    const bool priced = pi.size() == lp->rhs.size();
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const TermSum &d = m.sums.costs[j];
        m.bound.push_back(bound_violation(lp, j, x[j]));
        if (priced)
            m.cols.push_back(price({d.value * lp->sense, d.size}, true,
                                   d.value * lp->sense > 0 ? lp->lb[j] : lp->ub[j], x[j]));
    }
    for (size_t i = 0; i < lp->rhs.size(); i++) {
        m.constr.push_back(row_violation(lp, i, m.sums.rows[i]));
        if (priced) m.rows.push_back(price_row(lp, i, pi[i], m.sums.rows[i]));
    }
    return m;
}

double LpMeasures::violation() const
{
    long double most = 0;
    for (const std::vector<LpAmount> *list : {&bound, &constr})
        for (const LpAmount &a : *list) most = std::max(most, a.value);
    return double(most);
}

bool all_finite(const std::vector<double> &values)
{
    return std::all_of(values.begin(), values.end(),
                       [](double v) { return std::isfinite(v); });
}

std::string formatted(const char *format, ...)
{
    char text[300];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

static std::string number(double value)
{
    const std::string brief = formatted("%g", value);
    return strtod(brief.c_str(), nullptr) == value ? brief : formatted("%.17g", value);
}

static bool is_integer(char type)
{
    return type == 'B' || type == 'I' || type == 'N';
}

// Every bound of a column that is not continuous is written: readers differ in the defaults of such columns.
static void print_bounds(const LpModel *lp, std::ostringstream *out)
{
    *out << "BOUNDS\n";
    for (size_t j = 0; j < lp->obj.size(); j++) {
        const char type = lp->type(j);
        const bool binary = type == 'B', semi = type == 'S' || type == 'N';
        const double lb = binary ? std::max(lp->lb[j], 0.0) : lp->lb[j],
                     ub = binary ? std::min(lp->ub[j], 1.0) : lp->ub[j];
        if (lp_is_infinite(lb))
            *out << " MI BND C" << j << "\n";
        else if (lb != 0 || ub < 0 || type != 'C')
            *out << " LO BND C" << j << " " << number(lb) << "\n";
        if (semi)
            *out << " SC BND C" << j << " " << number(lp_is_infinite(ub) ? 1e30 : ub)
                 << "\n";
        else if (!lp_is_infinite(ub))
            *out << " UP BND C" << j << " " << number(ub) << "\n";
        else if (type != 'C')
            *out << " PL BND C" << j << "\n";
    }
}

static void print_sets(const LpModel *lp, std::ostringstream *out)
{
    if (!lp->sets.empty()) *out << "SOS\n";
    for (size_t k = 0; k < lp->sets.size(); k++) {
        *out << " S" << lp->sets[k].type << " SOS SET" << k << "\n";
        int weight = 0;
        for (const int j : lp->sets[k].members)
            *out << "    C" << j << " " << ++weight << "\n";
    }
}

static void print_columns(const LpModel *lp, std::ostringstream *out)
{
    bool between = false; // markers
    const auto mark = [&](bool integers) {
        if (integers != between)
            *out << " MARKER 'MARKER' 'INT" << (integers ? "ORG" : "END") << "'\n";
        between = integers;
    };
    *out << "COLUMNS\n";
    for (size_t j = 0; j < lp->obj.size(); j++) {
        mark(is_integer(lp->type(j)));
        if (lp->obj[j] != 0 || lp->cols[j].empty())
            *out << " C" << j << " OBJ " << number(lp->obj[j]) << "\n";
        for (const LpEntry &e : lp->cols[j])
            *out << " C" << j << " R" << e.row << " " << number(e.value) << "\n";
    }
    mark(false);
}

std::string lp_to_mps(const LpModel *lp, const std::string &comment)
{
    std::ostringstream out;
    std::istringstream lines(comment);
    for (std::string line; std::getline(lines, line);) out << "* " << line << "\n";
    out << "NAME TEST\n";
    if (lp->sense < 0) out << "OBJSENSE\n    MAX\n";
    out << "ROWS\n N OBJ\n";
    for (size_t i = 0; i < lp->rhs.size(); i++) // the senses are neighbours in ASCII
        out << " "
            << "LEG"[lp->senses[i] - '<'] << " R" << i << "\n";
    print_columns(lp, &out);
    out << "RHS\n";
    if (lp->objcon != 0) out << " RHS OBJ " << number(-lp->objcon) << "\n";
    for (size_t i = 0; i < lp->rhs.size(); i++)
        if (lp->rhs[i] != 0) out << " RHS R" << i << " " << number(lp->rhs[i]) << "\n";
    print_bounds(lp, &out);
    print_sets(lp, &out);
    out << "ENDATA\n";
    return out.str();
}
