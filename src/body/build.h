// build.h -- new bodies
#pragma once
#include "body/body.h"

// What a new model is made of; the arrays belong to the caller. Null members take their defaults.
struct ModelData {
    const char *name = nullptr;
    int numvars = 0, numconstrs = 0;
    int sense = 1; // +1 or -1; other values count by sign
    double objcon = 0;
    const double *obj = nullptr;
    const char *senses = nullptr;
    const double *rhs = nullptr;
    const int *vbeg = nullptr, *vlen = nullptr,
              *vind = nullptr; // vlen null: contiguous, vbeg has numvars + 1 entries
    const double *vval = nullptr;
    const double *lb = nullptr, *ub = nullptr;
    const char *vtype = nullptr;
    const char *const *varnames = nullptr, *const *constrnames = nullptr;
};
// Names of all variables and constraints (null: default names); null or empty texts become default names.
[[nodiscard]] int body_set_names(ModelBody *body, const char *const *varnames,
                                 const char *const *constrnames);
// Checks the data and makes a body of it. 0 or a code; *out is null on failure.
[[nodiscard]] int body_build(TVXenv *env, const ModelData *data, ModelBody **out);

// The same for arrays in the form that a body has (minimise, '>' rows negated, columns one behind the other), which
// move into it: for models that the library makes, which have no indices to check, and may be large. 0, OUT_OF_MEMORY,
// or TVX_ERROR_INVALID_ARGUMENT for a value that is no finite number.
struct ModelArrays {
    int sense = 1;
    double objcon = 0;
    Array<double> obj, lb, ub, rhs, vval;
    Array<char> senses;
    Array<int> vbeg, vind;
    // as in a body: types with integral bounds, or empty; sets with their members in weight order
    Array<char> vtypes;
    Array<int> sostype, sosbeg, sosind;
    Array<double> soswt;
};
[[nodiscard]] int body_adopt(TVXenv *env, ModelArrays *arrays, ModelBody **out);

// A copy with default names, and with other bounds or costs where they are given ([numvars]); integer variables need
// integral bounds. 0, or as body_adopt; *out is null on failure.
struct BodyChanges {
    const double *obj = nullptr, *lb = nullptr, *ub = nullptr;
};
[[nodiscard]] int body_copy_changed(const ModelBody *body, TVXenv *env,
                                    const BodyChanges &changes, ModelBody **out);
