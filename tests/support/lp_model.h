// lp_model.h -- LpModel, an LP as a test writes it down
//
//   min or max  objcon + obj x    subject to    a_i x  sense_i  rhs_i,    lb <= x <= ub
//
// The test's own copy of a model: the judges look at this, never at what the library holds.
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

struct LpModel {
    int sense = 1;                          // +1 minimise, -1 maximise
    double objcon = 0;                      // constant of the objective
    std::vector<double> obj;                // [n]
    std::vector<double> lb, ub;             // [n], beyond 1e20 in magnitude: infinite
    std::vector<std::vector<LpEntry>> cols; // [n] entries, each row at most once per column
    std::vector<char> senses;               // [m] '<' '>' '='
    std::vector<double> rhs;                // [m]

    int num_vars() const { return static_cast<int>(obj.size()); }
    int num_rows() const { return static_cast<int>(rhs.size()); }
};

int lp_add_var(LpModel *lp, double obj, double lb, double ub); // its index
int lp_add_row(LpModel *lp, char sense, double rhs);           // its index
// A row with its entries (column, value); columns named twice are added up, zeros are left out.
int lp_add_row_entries(LpModel *lp, const std::vector<std::pair<int, double>> &entries,
                       char sense, double rhs);
void lp_set_entry(LpModel *lp, int row, int col, double value); // 0 removes the entry
double lp_get_entry(const LpModel *lp, int row, int col);
bool lp_same(const LpModel *a, const LpModel *b); // up to the order inside columns

// Row activities a_i x, added up in long double.
std::vector<long double> lp_activity(const LpModel *lp, const std::vector<double> &x);
long double lp_objective(const LpModel *lp, const std::vector<double> &x);

// The model as free MPS, all digits, each line of `comment` behind a star.
std::string lp_to_mps(const LpModel *lp, const std::string &comment);
