// parameters.h -- the run-time table of parameters, and setting a value through it
//
// The table is built once by TVXloadenv, shared by all copies of the environment and never changed after that.
// The values are fields of TVXenv.
#pragma once
#include "env/env.h"
#include "runtime/name_index.h"

enum ParameterType {
    PARAMETER_DIVIDER = -1,
    PARAMETER_INT = 1,
    PARAMETER_DBL = 2,
    PARAMETER_STR = 3
};

struct ParameterRow {
    const char *name;         // as the table spells it
    size_t field;             // byte position in TVXenv; 0: no value (the divider)
    double minimum;           // numbers only
    double maximum;           // numbers only
    double default_value;     // numbers only
    const char *default_text; // strings; else empty
    ParameterType type;
    bool no_write; // never written to a parameter file
};

struct ParameterTable {
    NameIndex *index; // name key -> row
    Array<ParameterRow> rows;
    int n_public; // rows that can be listed, the first ones
};

[[nodiscard]] int
parameters_create(ParameterTable **table_out); // 0 or OUT_OF_MEMORY, *table_out then null
void parameters_free(ParameterTable **table);  // nulls the pointer; null is ignored
// Every number gets its default. The strings of a new (zeroed) environment too, but for those already set.
void parameters_set_defaults(TVXenv *env);

const ParameterRow *parameter_find(const TVXenv *env,
                                   const char *name); // or null; writes no message
inline int *parameter_int(TVXenv *env, const ParameterRow *row)
{
    return reinterpret_cast<int *>(reinterpret_cast<char *>(env) + row->field);
}
inline double *parameter_dbl(TVXenv *env, const ParameterRow *row)
{
    return reinterpret_cast<double *>(reinterpret_cast<char *>(env) + row->field);
}
inline char *parameter_text(TVXenv *env, const ParameterRow *row)
{
    return reinterpret_cast<char *>(env) + row->field;
}

// Set a value as a caller does: warning on a master with models, range, message. 0 or a code; unchanged on failure.
int parameter_set_int(TVXenv *env, const ParameterRow *row,
                      double value); // truncated to an integer; not NaN
int parameter_set_dbl(TVXenv *env, const ParameterRow *row, double value);
int parameter_set_text(TVXenv *env, const ParameterRow *row, const char *value);

// ---- parameter_file.cpp ----
// The workers of TVXreadparams and TVXwriteparams.
int parameters_read(TVXenv *env, const char *file_name);
int parameters_write(TVXenv *env, const char *file_name);
// The first two words of a line, at most PARAMETER_LINE characters. numeric: the second word is a number from
// start to end, and text is empty then. False when there are no words.
static constexpr int PARAMETER_LINE = 512;
struct ParameterLine {
    char name[PARAMETER_LINE + 1];
    char text[PARAMETER_LINE + 1];
    double number = 0;
    bool numeric = false;
};
bool parameter_line_scan(const char *line, ParameterLine *scanned);
