// parameter_rows.h -- the rows of the tables of parameters that are numbers, as tests go through them
#pragma once
#include "env/parameter_table.h"
#include "tarvex.h"
#include <vector>

struct ParameterRow {
    const char *name;
    bool is_int;
    double minimum, maximum, value;

    int set(TVXenv *env, double to) const
    {
        return is_int ? TVXsetintparam(env, name, int(to)) : TVXsetdblparam(env, name, to);
    }
};

#define INT_ROW(name, minimum, maximum, value) {#name, true, minimum, maximum, value},
#define DBL_ROW(name, minimum, maximum, value) {#name, false, minimum, maximum, value},
#define NO_ROW(...)
inline const std::vector<ParameterRow> parameter_rows = {PUBLIC_PARAMETERS(
    INT_ROW, DBL_ROW, NO_ROW) HIDDEN_PARAMETERS(INT_ROW, DBL_ROW, NO_ROW)};
