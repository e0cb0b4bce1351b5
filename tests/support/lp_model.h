// lp_model.h -- LpModel, a linear or mixed-integer model as a test writes it down
//
//   min or max  objcon + obj x    subject to    a_i x  sense_i  rhs_i,    lb <= x <= ub
//
// The test's own copy of a model: the judges look at this, never at what the library holds. Judges of LPs see the
// relaxation of a model with types and sets; mip_check.h and mip_oracle.h judge the model itself.
#pragma once
#include <string>
#include <utility>
#include <vector>

static constexpr double LP_INFINITY = 1e100; // as attributes report it
inline bool lp_is_infinite(double bound)
{
    return bound <= -1e20 || bound >= 1e20;
}

struct LpEntry {
    int row;
    double value;
};

// A special ordered set: at most one member (type 1), or two neighbours (type 2), may differ from 0.
struct LpSet {
    int type = 1;
    std::vector<int> members; // columns, in their order
};

struct LpModel {
    int sense = 1;                          // +1 minimise, -1 maximise
    double objcon = 0;                      // constant of the objective
    std::vector<double> obj;                // [n]
    std::vector<double> lb, ub;             // [n], beyond 1e20 in magnitude: infinite
    std::vector<std::vector<LpEntry>> cols; // [n] entries, each row at most once per column
    std::vector<char> senses;               // [m] '<' '>' '='
    std::vector<double> rhs;                // [m]
    std::vector<char>
        types; // [n] 'C' 'B' 'I' 'S' 'N' as the library knows them, or none: all 'C'
    std::vector<LpSet> sets;

    int num_vars() const { return int(obj.size()); }
    int num_rows() const { return int(rhs.size()); }
    char type(size_t j) const { return types.empty() ? 'C' : types[j]; }
};

// A small model as a list of columns and one of dense rows; coefficients behind the last one given are 0.
struct LpColumn {
    double obj = 0, lb = 0, ub = LP_INFINITY;
};
struct LpRow {
    std::vector<double> coefs; // [up to n]
    char sense;
    double rhs;
};
LpModel lp_make(const std::vector<LpColumn> &columns, const std::vector<LpRow> &rows,
                int sense = 1);

// Their indices.
int lp_add_var(LpModel *lp, double obj, double lb, double ub, char type = 'C');
int lp_add_row(LpModel *lp, char sense, double rhs);
// A row with its entries (column, value); columns named twice are added up, zeros are left out.
int lp_add_row_entries(LpModel *lp, const std::vector<std::pair<int, double>> &entries,
                       char sense, double rhs);
void lp_set_entry(LpModel *lp, int row, int col, double value); // 0 removes the entry
double lp_get_entry(const LpModel *lp, int row, int col);

// A sum in long double with the size of its terms, by which a judge tells rounding from a fault.
struct TermSum {
    long double value = 0;
    long double size = 0;    // of the magnitudes of the terms
    long double largest = 0; // of these magnitudes
    void add(long double a, long double b);
};

// What every judge looks at: row activities, reduced costs c - pi A (costs without pi), and the objective.
struct LpSums {
    std::vector<TermSum> rows;  // [m]
    std::vector<TermSum> costs; // [n]
    TermSum objective;          // the constant included
};
LpSums lp_sums(const LpModel *lp, const std::vector<double> &x,
               const std::vector<double> &pi);
std::vector<long double> lp_activity(const LpModel *lp, const std::vector<double> &x);
long double lp_objective(const LpModel *lp, const std::vector<double> &x);

// An amount, and the magnitudes of the terms of the sum that it comes from.
struct LpAmount {
    long double value = 0, terms = 0;
};
// How the multiplier of a column or row fits where it stands; from an equation distances have no sign.
struct LpPriced {
    LpAmount force;    // as of a minimisation: > 0 prices the lower end, < 0 the upper one
    LpAmount distance; // from that end, < 0 beyond it; infinite without one
    long double end = 0; // largest of the numbers behind the distance
};
// What a point, and multipliers if there are any, miss of optimality.
struct LpMeasures {
    LpSums sums;
    std::vector<LpAmount> bound, constr; // [n], [m] violations, < 0: by how much kept
    std::vector<LpPriced> cols, rows;    // [n], [m]; none without multipliers
    double violation() const;            // the largest
};
LpMeasures lp_measure(const LpModel *lp, const std::vector<double> &x,
                      const std::vector<double> &pi);

bool all_finite(const std::vector<double> &values);
// As printf prints it.
__attribute__((format(printf, 1, 2))) std::string formatted(const char *format, ...);
// The model as free MPS, all digits, each line of `comment` behind a star.
std::string lp_to_mps(const LpModel *lp, const std::string &comment);
