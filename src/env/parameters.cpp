// parameters.cpp -- parameters by name: the run-time table, getting and setting
//
// Problem     Every parameter of parameter_table.h is read by solvers as a field of the environment and by callers
//             under its name, in any case and with or without underscores.
// Method      The rows are generated from the table with the position of each field; an index maps name keys to
//             rows. One setter per type checks the range and writes the message.
// Invariant   A value in an environment is within its row's range.
#include "env/parameters.h"
#include <algorithm>
#include <cstring>
#include <type_traits>

static_assert(std::is_standard_layout_v<TVXenv>);

namespace
{
constexpr size_t WARN_FIELD = offsetof(TVXenv, TARV_PAR_MASTERENVWARN);

constexpr int INDEX_BUCKETS = 1000;

constexpr double INT_LIMIT = 2e9; // larger values are taken as this one

constexpr double DBL_LIMIT = 1e100; // likewise
} // namespace

#define ROW_INT(name, minimum, maximum, value)                                             \
    {#name,         offsetof(TVXenv, name),                                                \
     minimum,       maximum,                                                               \
     value,         "",                                                                    \
     PARAMETER_INT, offsetof(TVXenv, name) == WARN_FIELD},

#define ROW_DBL(name, minimum, maximum, value)                                             \
    {#name, offsetof(TVXenv, name), minimum, maximum, value, "", PARAMETER_DBL, false},

#define ROW_STR(name, value)                                                               \
    {#name, offsetof(TVXenv, name), 0, 0, 0, value, PARAMETER_STR, false},

namespace
{
constexpr ParameterRow static_rows[] = {
    PUBLIC_PARAMETERS(ROW_INT, ROW_DBL, ROW_STR) //
    {"EndPublic", 0, 0, 0, 0, "", PARAMETER_DIVIDER, false},
    HIDDEN_PARAMETERS(ROW_INT, ROW_DBL, ROW_STR) //
};

constexpr int N_ROWS = static_cast<int>(std::size(static_rows));

constexpr int divider_row()
{
    int k = 0;
    while (static_rows[k].type != PARAMETER_DIVIDER) k++;
    return k;
}

// ---- The table ----

int table_fill(ParameterTable *table)
{
    table->n_public = divider_row();
    TRY(array_copy(&table->rows, static_rows, N_ROWS));
    table->index = name_index_create(INDEX_BUCKETS, NameGrowth::FIXED);
    if (!table->index) return OUT_OF_MEMORY;
    for (int k = 0; k < N_ROWS; k++) {
        ParameterRow *row = &table->rows[k];
        if (row->field == offsetof(TVXenv, Threads)) row->default_value = ProcessorCount();
        char key[NAME_KEY_LENGTH + 1];
        name_key(row->name, key);
        TRY(name_index_insert(table->index, key, k));
    }
    return 0;
}
} // namespace

int parameters_create(ParameterTable **table_out)
{
    *table_out = static_cast<ParameterTable *>(MemAllocZero(1, sizeof(ParameterTable)));
    if (!*table_out) return OUT_OF_MEMORY;
    const int error = table_fill(*table_out);
    if (error) parameters_free(table_out);
    return error;
}

void parameters_free(ParameterTable **table)
{
    if (!*table) return;
    name_index_free(&(*table)->index);
    array_free(&(*table)->rows);
    MemFree(*table);
    *table = nullptr;
}

namespace
{
// At most MESSAGE_LENGTH characters, into a buffer that has room for them. source may be target.
void copy_text(char *target, const char *source)
{
    const size_t length = strnlen(source, MESSAGE_LENGTH);
    memmove(target, source, length);
    target[length] = '\0';
}

void reset_numbers(TVXenv *env)
{
    for (const ParameterRow &row : env->params->rows) {
        if (row.type == PARAMETER_INT)
            *parameter_int(env, &row) = static_cast<int>(row.default_value);
        else if (row.type == PARAMETER_DBL)
            *parameter_dbl(env, &row) = row.default_value;
    }
}
} // namespace

void parameters_set_defaults(TVXenv *env)
{
    reset_numbers(env);
    for (const ParameterRow &row : env->params->rows)
        if (row.type == PARAMETER_STR && !*parameter_text(env, &row))
            copy_text(parameter_text(env, &row), row.default_text);
}

const ParameterRow *parameter_find(const TVXenv *env, const char *name)
{
    char key[NAME_KEY_LENGTH + 1];
    name_key(name, key);
    const int k = env->params ? name_index_find(env->params->index, key) : -1;
    return k < 0 ? nullptr : &env->params->rows[k];
}

namespace
{
// The row of a name; or null with *error set, and the message that callers see. TYPE_ANY: whatever has a value.
constexpr int TYPE_ANY = 0;

const ParameterRow *find_row(TVXenv *env, const char *name, int type, int *error)
{
    *error = TVX_ERROR_NULL_ARGUMENT;
    if (!name) return nullptr;
    *error = TVX_ERROR_UNKNOWN_PARAMETER;
    const ParameterRow *row = parameter_find(env, name);
    if (row && type != TYPE_ANY && row->type != type)
        fail(env, *error, Report::FORCE, "Wrong type for parameter: %s", name);
    else if (!row || row->field == 0)
        fail(env, *error, Report::FORCE, "Unknown parameter: %s", name);
    else
        *error = 0;
    return *error ? nullptr : row;
}

// ---- Setting ----

// Once: models made before keep the values they were made with.
void warn_master(TVXenv *env)
{
    if (env->master != env || !flag_load(&env->model_copies) ||
        !env->TARV_PAR_MASTERENVWARN || !env->OutputFlag)
        return;
    TVXmsg(env, "Warning: parameter changes on this environment will not affect existing "
                "models.\n");
    env->TARV_PAR_MASTERENVWARN = 0;
}
} // namespace

int parameter_set_int(TVXenv *env, const ParameterRow *row, double value)
{
    warn_master(env);
    const int number = static_cast<int>(std::clamp(value, -INT_LIMIT, INT_LIMIT));
    if (number < row->minimum)
        return fail(env, TVX_ERROR_VALUE_OUT_OF_RANGE, Report::FORCE,
                    "Unable to set parameter %s to value %d (minimum is %.0f)", row->name,
                    number, row->minimum);
    if (number > row->maximum)
        return fail(env, TVX_ERROR_VALUE_OUT_OF_RANGE, Report::FORCE,
                    "Unable to set parameter %s to value %d (maximum is %.0f)", row->name,
                    number, row->maximum);
    *parameter_int(env, row) = number;
    return 0;
}

int parameter_set_dbl(TVXenv *env, const ParameterRow *row, double value)
{
    warn_master(env);
    const double number = std::clamp(value, -DBL_LIMIT, DBL_LIMIT);
    if (!(number >= row->minimum)) // so that NaN ends here
        return fail(env, TVX_ERROR_VALUE_OUT_OF_RANGE, Report::FORCE,
                    "Unable to set parameter %s to value %g (minimum is %g)", row->name,
                    number, row->minimum);
    if (number > row->maximum)
        return fail(env, TVX_ERROR_VALUE_OUT_OF_RANGE, Report::FORCE,
                    "Unable to set parameter %s to value %g (maximum is %g)", row->name,
                    number, row->maximum);
    *parameter_dbl(env, row) = number;
    return 0;
}

namespace
{
// The parameter Dummy holds nothing: its value names a numeric parameter and a number for it.
int set_by_text(TVXenv *env, const char *value)
{
    ParameterLine line;
    if (!parameter_line_scan(value, &line) || !line.numeric)
        return TVX_ERROR_UNKNOWN_PARAMETER;
    int error = 0;
    const ParameterRow *row = find_row(env, line.name, TYPE_ANY, &error);
    if (!row) return error;
    if (row->type == PARAMETER_INT) return parameter_set_int(env, row, line.number);
    if (row->type == PARAMETER_DBL) return parameter_set_dbl(env, row, line.number);
    return TVX_ERROR_UNKNOWN_PARAMETER;
}
} // namespace

int parameter_set_text(TVXenv *env, const ParameterRow *row, const char *value)
{
    warn_master(env);
    if (row->field == offsetof(TVXenv, LogFile)) return env_open_log(env, value);
    if (row->field == offsetof(TVXenv, Dummy)) return set_by_text(env, value);
    copy_text(parameter_text(env, row), value);
    return 0;
}

// ---- Exported ----

int TVXsetintparam(TVXenv *env, const char *name, int value)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_INT, &error);
    if (row) error = parameter_set_int(env, row, value);
    return finish(env, error);
}

int TVXsetdblparam(TVXenv *env, const char *name, double value)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_DBL, &error);
    if (row) error = parameter_set_dbl(env, row, value);
    return finish(env, error);
}

int TVXsetstrparam(TVXenv *env, const char *name, const char *value)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_STR, &error);
    if (row) error = value ? parameter_set_text(env, row, value) : TVX_ERROR_NULL_ARGUMENT;
    return finish(env, error);
}

int TVXgetintparam(TVXenv *env, const char *name, int *value_out)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_INT, &error);
    if (row && !value_out) error = TVX_ERROR_NULL_ARGUMENT;
    if (row && value_out) *value_out = *parameter_int(env, row);
    return finish(env, error);
}

int TVXgetdblparam(TVXenv *env, const char *name, double *value_out)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_DBL, &error);
    if (row && !value_out) error = TVX_ERROR_NULL_ARGUMENT;
    if (row && value_out) *value_out = *parameter_dbl(env, row);
    return finish(env, error);
}

int TVXgetstrparam(TVXenv *env, const char *name, char *value_out)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_STR, &error);
    if (row && !value_out) error = TVX_ERROR_NULL_ARGUMENT;
    if (row && value_out) copy_text(value_out, parameter_text(env, row));
    return finish(env, error);
}

int TVXgetintparaminfo(TVXenv *env, const char *name, int *current, int *minimum,
                       int *maximum, int *default_value)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_INT, &error);
    if (!row) return finish(env, error);
    if (current) *current = *parameter_int(env, row);
    if (minimum) *minimum = static_cast<int>(row->minimum);
    if (maximum) *maximum = static_cast<int>(row->maximum);
    if (default_value) *default_value = static_cast<int>(row->default_value);
    return finish(env, 0);
}

int TVXgetdblparaminfo(TVXenv *env, const char *name, double *current, double *minimum,
                       double *maximum, double *default_value)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_DBL, &error);
    if (!row) return finish(env, error);
    if (current) *current = *parameter_dbl(env, row);
    if (minimum) *minimum = row->minimum;
    if (maximum) *maximum = row->maximum;
    if (default_value) *default_value = row->default_value;
    return finish(env, 0);
}

int TVXgetstrparaminfo(TVXenv *env, const char *name, char *current, char *default_value)
{
    TRY(env_enter(env));
    int error = 0;
    const ParameterRow *row = find_row(env, name, PARAMETER_STR, &error);
    if (!row) return finish(env, error);
    if (current) copy_text(current, parameter_text(env, row));
    if (default_value) copy_text(default_value, row->default_text);
    return finish(env, 0);
}

int TVXgetparamtype(TVXenv *env, const char *name)
{
    if (env_enter(env)) return -1;
    int error = 0;
    const ParameterRow *row = find_row(env, name, TYPE_ANY, &error);
    finish(env, error);
    return row ? row->type : -1;
}

int TVXgetnumparams(TVXenv *env)
{
    if (env_enter(env)) return 0;
    finish(env, 0);
    return env->params->n_public;
}

int TVXgetparamname(TVXenv *env, int index, char **name_out)
{
    if (name_out) *name_out = nullptr;
    TRY(env_enter(env));
    if (!name_out) return finish(env, TVX_ERROR_NULL_ARGUMENT);
    if (index < 0 || index >= env->params->n_public)
        return finish(env, TVX_ERROR_INVALID_ARGUMENT);
    *name_out = const_cast<char *>(env->params->rows[index].name);
    return finish(env, 0);
}

int TVXresetparams(TVXenv *env)
{
    TRY(env_enter(env));
    reset_numbers(env);
    return finish(env, 0);
}

int TVXreadparams(TVXenv *env, const char *file_name)
{
    TRY(env_enter(env));
    return finish(env,
                  file_name ? parameters_read(env, file_name) : TVX_ERROR_NULL_ARGUMENT);
}

int TVXwriteparams(TVXenv *env, const char *file_name)
{
    TRY(env_enter(env));
    return finish(env,
                  file_name ? parameters_write(env, file_name) : TVX_ERROR_NULL_ARGUMENT);
}
