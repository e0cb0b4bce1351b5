// growth_families.h -- linear models of any size, each made to be hard on one part of presolve
#pragma once
#include "tarvex.h"
#include <cstdint>
#include <vector>

// A model being built: columns by number, entries in any order.
struct GrowthModel {
    std::vector<double> obj, lb, ub, rhs;
    std::vector<char> senses;
    std::vector<int> row, col;
    std::vector<double> value;
    double optimum = 0; // when `planted`
    bool planted = false;

    int add_col(double cost, double low, double high);
    int add_row(char sense, double right); // its entries come by `put`
    void put(int i, int j, double a);
    int num_cols() const { return static_cast<int>(obj.size()); }
    int num_rows() const { return static_cast<int>(rhs.size()); }
    // Row i becomes row m - 1 - i: what presolve meets first comes last.
    void reverse_rows();
};

struct GrowthFamily {
    const char *name;
    void (*make)(GrowthModel *model, int64_t entries); // about so many entries
    const char *parameter;                             // set for this family, or null
    int setting;
};
extern const GrowthFamily growth_families[]; // ends with a null name
