// build.cpp -- creates bodies
//
// All data of the caller are checked first, and the message of an error names the first wrong element; then the body is
// filled. Columns may be in the caller's arrays in any order and with gaps, but not share entries. Cost: O(size of the
// model), plus a sort of the column starts if they are out of order.
// Rows with sense '>' and a maximise objective are stored negated from here on.
#include "body/build.h"
#include <algorithm>

// ---- Checks ----

namespace
{
int check_counts(TVXenv *env, const ModelData *data)
{
    if (data->numvars < 0 || data->numconstrs < 0) return TVX_ERROR_INVALID_ARGUMENT;
    if (int64_t{data->numvars} + data->numconstrs > MODEL_SIZE_LIMIT)
        return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                    "Model too large: %d variables and %d constraints", data->numvars,
                    data->numconstrs);
    return 0;
}

// Start and length of column j in the caller's arrays; length 0 without a matrix.
int column_length(const ModelData *data, int j)
{
    if (!data->vbeg) return 0;
    if (data->vlen) return data->vlen[j];
    const int64_t length = int64_t{data->vbeg[j + 1]} - data->vbeg[j];
    return length < 0 || length > INT32_MAX ? -1 : static_cast<int>(length);
}

int bad_column(TVXenv *env, int j)
{
    return fail(env, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                "Invalid start or length of column %d", j);
}

// Columns out of order: no two may share entries.
int check_overlap(TVXenv *env, const ModelData *data)
{
    Array<int> order; // columns that are not empty, by start
    TRY(array_resize(&order, data->numvars));
    order.size = 0;
    for (int j = 0; j < data->numvars; j++)
        if (column_length(data, j) > 0) array_push(&order, j);
    const int *vbeg = data->vbeg;
    std::sort(order.begin(), order.end(), [vbeg](int a, int b) {
        return vbeg[a] != vbeg[b] ? vbeg[a] < vbeg[b] : a < b;
    });
    for (int64_t k = 1; k < order.size; k++) {
        const int j = order[k - 1];
        if (vbeg[j] + column_length(data, j) > vbeg[order[k]]) return bad_column(env, j);
    }
    return 0;
}

int check_columns(TVXenv *env, const ModelData *data, int64_t *numnz)
{
    int64_t end = 0; // of the columns so far
    bool ordered = true;
    *numnz = 0;
    if (!data->vbeg) return 0;
    for (int j = 0; j < data->numvars; j++) {
        const int length = column_length(data, j);
        const int64_t start = data->vbeg[j];
        if (start < 0 || length < 0 || start + length > INT32_MAX)
            return bad_column(env, j);
        ordered = ordered && (length == 0 || start >= end);
        end = std::max(end, start + length);
        *numnz += length;
    }
    if (*numnz > MODEL_ENTRY_LIMIT)
        return fail(env, TVX_ERROR_INVALID_ARGUMENT, Report::KEEP_FIRST,
                    "Model too large: more than %lld coefficients",
                    static_cast<long long>(MODEL_ENTRY_LIMIT));
    return ordered ? 0 : check_overlap(env, data);
}

int check_entries(TVXenv *env, const ModelData *data)
{
    Array<int> met; // [numconstrs] last column that holds the row
    TRY(array_assign(&met, data->numconstrs, -1));
    for (int j = 0; j < data->numvars; j++) {
        const int length = column_length(data, j);
        if (length == 0) continue;
        const int *ind = data->vind + data->vbeg[j];
        for (int k = 0; k < length; k++) {
            const int i = ind[k];
            if (i < 0 || i >= data->numconstrs)
                return fail(env, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                            "Row index %d out of range in column %d", i, j);
            if (met[i] == j)
                return fail(env, TVX_ERROR_DUPLICATES, Report::KEEP_FIRST,
                            "Row index %d appears twice in column %d", i, j);
            met[i] = j;
        }
        TRY(check_values(env, length, data->vval + data->vbeg[j]));
    }
    return 0;
}

int check_arrays(TVXenv *env, const ModelData *data)
{
    TRY(check_value(env, data->objcon));
    TRY(check_values(env, data->numvars, data->obj));
    TRY(check_values(env, data->numvars, data->lb));
    TRY(check_values(env, data->numvars, data->ub));
    TRY(check_values(env, data->numconstrs, data->rhs));
    for (int j = 0; data->vtype && j < data->numvars; j++)
        TRY(check_vtype(env, data->vtype[j], j));
    return 0;
}

int check_data(TVXenv *env, const ModelData *data, int64_t *numnz)
{
    TRY(check_counts(env, data));
    TRY(check_arrays(env, data));
    TRY(check_columns(env, data, numnz));
    return *numnz > 0 ? check_entries(env, data) : 0;
}

// ---- Filling ----

int fill_vars(ModelBody *body, const ModelData *data, double infinite)
{
    const int n = data->numvars;
    body->numvars = n;
    TRY(array_resize(&body->obj, n));
    TRY(array_resize(&body->lb, n));
    TRY(array_resize(&body->ub, n));
    TRY(array_resize(&body->bound_kind, n));
    if (data->vtype)
        for (Array<double> *given : {&body->given_lb, &body->given_ub})
            TRY(array_resize(given, n));
    if (data->vtype) TRY(array_resize(&body->vtypes, n));
    body->kind_infinity = infinite;
    for (int j = 0; j < n; j++) {
        body->obj[j] = data->obj ? body->sense * data->obj[j] : 0;
        double lb = data->lb ? stored_bound(data->lb[j]) : 0;
        double ub = data->ub ? stored_bound(data->ub[j]) : INFINITE_BOUND;
        if (data->vtype) {
            body->vtypes[j] = normal_vtype(data->vtype[j]);
            body->given_lb[j] = lb;
            body->given_ub[j] = ub;
            round_bounds(body->vtypes[j], &lb, &ub);
        }
        body->lb[j] = lb;
        body->ub[j] = ub;
        body->bound_kind[j] = bound_kind_of(lb, ub, infinite);
    }
    body_count_types(body);
    return 0;
}

int fill_constrs(ModelBody *body, const ModelData *data)
{
    const int m = data->numconstrs;
    body->numconstrs = m;
    TRY(array_resize(&body->rhs, m));
    TRY(array_resize(&body->senses, m));
    for (int i = 0; i < m; i++) {
        const double rhs = data->rhs ? data->rhs[i] : 0;
        const char sense = data->senses ? normal_sense(data->senses[i]) : '<';
        body->senses[i] = sense;
        body->rhs[i] = sense == '>' ? -rhs : rhs;
    }
    body_find_flipped(body);
    return 0;
}

int fill_matrix(ModelBody *body, const ModelData *data, int64_t numnz)
{
    const int n = data->numvars;
    body->numnz = static_cast<int>(numnz);
    TRY(array_resize(&body->vbeg, int64_t{n} + 1));
    TRY(array_resize(&body->vlen, n));
    TRY(array_resize(&body->vind, numnz));
    TRY(array_resize(&body->vval, numnz));
    int p = 0;
    for (int j = 0; j < n; j++) {
        const int length = column_length(data, j);
        body->vbeg[j] = p;
        body->vlen[j] = length;
        for (int k = 0; k < length; k++, p++) {
            const int from = data->vbeg[j] + k;
            const int i = data->vind[from];
            body->vind[p] = i;
            body->vval[p] = body->senses[i] == '>' ? -data->vval[from] : data->vval[from];
        }
    }
    body->vbeg[n] = p;
    return 0;
}

int fill_names(ModelBody *body, NameKind kind, int count, const char *const *given,
               Array<const char *> *names)
{
    if (!given) return 0;
    TRY(array_resize(names, count));
    for (int k = 0; k < count; k++) {
        if (given[k] && *given[k])
            TRY(body_store_name(body, given[k], &(*names)[k]));
        else
            TRY(body_number_name(body, kind, k, &(*names)[k]));
    }
    return 0;
}
} // namespace

int body_set_names(ModelBody *body, const char *const *varnames,
                   const char *const *constrnames)
{
    TRY(fill_names(body, NameKind::VAR, body->numvars, varnames, &body->varnames));
    return fill_names(body, NameKind::CONSTR, body->numconstrs, constrnames,
                      &body->constrnames);
}

namespace
{
int fill_body(ModelBody *body, const ModelData *data, int64_t numnz, double infinite)
{
    body->sense = data->sense < 0 ? -1 : 1;
    body->objcon = body->sense * data->objcon;
    TRY(fill_vars(body, data, infinite));
    TRY(fill_constrs(body, data));
    TRY(fill_matrix(body, data, numnz));
    if (data->name) TRY(body_store_name(body, data->name, &body->modelname));
    return body_set_names(body, data->varnames, data->constrnames);
}
} // namespace

int body_build(TVXenv *env, const ModelData *data, ModelBody **out)
{
    *out = nullptr;
    int64_t numnz = 0;
    TRY(check_data(env, data, &numnz));
    ModelBody *body = record_create<ModelBody>();
    if (!body) return OUT_OF_MEMORY;
    if (const int error = fill_body(body, data, numnz, infinite_bound(env))) {
        body_free(body);
        return error;
    }
    *out = body;
    return 0;
}

// ---- Bodies from arrays of the library ----

namespace
{
int check_adopted(TVXenv *env, const ModelArrays *arrays)
{
    for (const Array<double> *a : {&arrays->obj, &arrays->lb, &arrays->ub, &arrays->rhs,
                                   &arrays->vval, &arrays->soswt})
        TRY(check_values(env, a->size, a->data));
    return check_value(env, arrays->objcon);
}

int adopt_types(ModelBody *body, ModelArrays *arrays)
{
    body->numsos = static_cast<int>(arrays->sostype.size);
    body->sos_sorted = body->numsos > 0;
    body->sostype = static_cast<Array<int> &&>(arrays->sostype);
    body->sosbeg = static_cast<Array<int> &&>(arrays->sosbeg);
    body->sosind = static_cast<Array<int> &&>(arrays->sosind);
    body->soswt = static_cast<Array<double> &&>(arrays->soswt);
    body->vtypes = static_cast<Array<char> &&>(arrays->vtypes);
    if (body->vtypes.size == 0) return 0;
    TRY(array_copy(&body->given_lb, body->lb.data, body->numvars));
    return array_copy(&body->given_ub, body->ub.data, body->numvars);
}

int adopt_arrays(ModelBody *body, ModelArrays *arrays, double infinite)
{
    const int n = static_cast<int>(arrays->obj.size);
    TRY(array_resize(&body->vlen, n));
    TRY(array_resize(&body->bound_kind, n));
    body->numvars = n;
    body->numconstrs = static_cast<int>(arrays->rhs.size);
    body->numnz = arrays->vbeg[n];
    body->sense = arrays->sense;
    body->objcon = arrays->objcon;
    body->obj = static_cast<Array<double> &&>(arrays->obj);
    body->lb = static_cast<Array<double> &&>(arrays->lb);
    body->ub = static_cast<Array<double> &&>(arrays->ub);
    body->rhs = static_cast<Array<double> &&>(arrays->rhs);
    body->senses = static_cast<Array<char> &&>(arrays->senses);
    body->vbeg = static_cast<Array<int> &&>(arrays->vbeg);
    body->vind = static_cast<Array<int> &&>(arrays->vind);
    body->vval = static_cast<Array<double> &&>(arrays->vval);
    body->kind_infinity = infinite;
    for (int j = 0; j < n; j++) {
        body->vlen[j] = body->vbeg[j + 1] - body->vbeg[j];
        body->lb[j] = stored_bound(body->lb[j]);
        body->ub[j] = stored_bound(body->ub[j]);
        body->bound_kind[j] = bound_kind_of(body->lb[j], body->ub[j], body->kind_infinity);
    }
    TRY(adopt_types(body, arrays));
    body_count_types(body);
    body_find_flipped(body);
    return 0;
}
} // namespace

int body_adopt(TVXenv *env, ModelArrays *arrays, ModelBody **out)
{
    *out = nullptr;
    TRY(check_adopted(env, arrays));
    ModelBody *body = record_create<ModelBody>();
    if (!body) return OUT_OF_MEMORY;
    if (const int error = adopt_arrays(body, arrays, infinite_bound(env))) {
        body_free(body);
        return error;
    }
    *out = body;
    return 0;
}
