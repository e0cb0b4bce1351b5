// model_query.cpp -- reading the matrix and the SOS in the caller's signs
//
// Pending changes never show. Counts come without arrays, so that a caller can ask twice: for the
// size, then for the content. Cost: O(entries read), plus once O(matrix) when the row-wise copy
// must be built.
#include "model/model_store.h"
#include <algorithm>

namespace
{
int read_coeff(TVXmodel *model, int row, int var, double *value_out)
{
    const ModelBody *body = model->body;
    if (!value_out) return TVX_ERROR_NULL_ARGUMENT;
    if (row < 0 || row >= body->numconstrs)
        return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                          "Row index %d out of range in coefficient query", row);
    if (var < 0 || var >= body->numvars)
        return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                          "Column index %d out of range in coefficient query", var);
    *value_out = 0;
    for (int p = body->vbeg[var]; p < body->vbeg[var + 1]; p++)
        if (body->vind[p] == row)
            *value_out = body->senses[row] == '>' ? -body->vval[p] : body->vval[p];
    return 0;
}
} // namespace

int TVXgetcoeff(TVXmodel *model, int row, int var, double *value_out)
{
    int error = TVXcheckmodel(model);
    if (error) return finish_model(model, error);
    error = read_coeff(model, row, var, value_out);
    fail_model(model, error, Report::KEEP_FIRST, "Failed to retrieve coefficient");
    return finish_model(model, error);
}

namespace
{
// start .. start + len - 1 must be a stretch of at least one of the `count` elements.
int check_range(TVXmodel *model, const char *what, int start, int len, int count)
{
    if (start >= 0 && len >= 1 && int64_t{start} + len <= count) return 0;
    const int64_t last =
        std::clamp<int64_t>(int64_t{start} + len - 1, INT32_MIN, INT32_MAX);
    return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::KEEP_FIRST,
                      "Invalid index range for %s query: [%d, %d]", what, start,
                      static_cast<int>(last));
}

// Where the entries of a stretch of columns or rows go; all arrays or none.
struct VectorsOut {
    int *numnz;
    int *beg, *ind;
    double *val;
};

// Copies vectors start .. start + len - 1 of a compressed matrix, signs as they stand.
void copy_vectors(const int *beg, const int *ind, const double *val, int start, int len,
                  const VectorsOut *out)
{
    const int first = beg[start];
    const int count = beg[start + len] - first;
    *out->numnz = count;
    if (!(out->beg && out->ind && out->val)) return;
    for (int k = 0; k < len; k++) out->beg[k] = beg[start + k] - first;
    std::copy_n(ind + first, count, out->ind);
    std::copy_n(val + first, count, out->val);
}

int read_vars(TVXmodel *model, const VectorsOut *out, int start, int len)
{
    const ModelBody *body = model->body;
    if (!out->numnz) return TVX_ERROR_NULL_ARGUMENT;
    TRY(check_range(model, "variable", start, len, body->numvars));
    copy_vectors(body->vbeg.data, body->vind.data, body->vval.data, start, len, out);
    if (!(out->beg && out->ind && out->val) || body->row_flipped < 0) return 0;
    for (int p = 0; p < *out->numnz; p++)
        if (body->senses[out->ind[p]] == '>') out->val[p] = -out->val[p];
    return 0;
}
} // namespace

// NOLINTNEXTLINE(readability-non-const-parameter): written through VectorsOut
int TVXgetvars(TVXmodel *model, int *numnz_out, int *vbeg, int *vind, double *vval,
               int start, int len)
{
    int error = TVXcheckmodel(model);
    if (error) return finish_model(model, error);
    const VectorsOut out = {.numnz = numnz_out, .beg = vbeg, .ind = vind, .val = vval};
    error = read_vars(model, &out, start, len);
    fail_model(model, error, Report::KEEP_FIRST, "Failed to retrieve variables");
    return finish_model(model, error);
}

namespace
{
int read_constrs(TVXmodel *model, const VectorsOut *out, int start, int len)
{
    ModelBody *body = model->body;
    if (!out->numnz) return TVX_ERROR_NULL_ARGUMENT;
    TRY(check_range(model, "constraint", start, len, body->numconstrs));
    TRY(body_build_rows(body));
    copy_vectors(body->row_beg.data, body->row_ind.data, body->row_val.data, start, len,
                 out);
    if (!(out->beg && out->ind && out->val)) return 0;
    for (int i = start; i < start + len; i++) {
        if (body->senses[i] != '>') continue;
        double *val = out->val + out->beg[i - start];
        for (int k = 0; k < body->row_beg[i + 1] - body->row_beg[i]; k++) val[k] = -val[k];
    }
    return 0;
}
} // namespace

// NOLINTNEXTLINE(readability-non-const-parameter): written through VectorsOut
int TVXgetconstrs(TVXmodel *model, int *numnz_out, int *cbeg, int *cind, double *cval,
                  int start, int len)
{
    int error = TVXcheckmodel(model);
    if (error) return finish_model(model, error);
    const VectorsOut out = {.numnz = numnz_out, .beg = cbeg, .ind = cind, .val = cval};
    error = read_constrs(model, &out, start, len);
    fail_model(model, error, Report::KEEP_FIRST, "Failed to retrieve constraints");
    return finish_model(model, error);
}

namespace
{
int read_sos(TVXmodel *model, int *types, const VectorsOut *out, int start, int len)
{
    const ModelBody *body = model->body;
    if (!out->numnz) return TVX_ERROR_NULL_ARGUMENT;
    TRY(check_range(model, "SOS", start, len, body->numsos));
    copy_vectors(body->sosbeg.data, body->sosind.data, body->soswt.data, start, len, out);
    if (types) std::copy_n(body->sostype.data + start, len, types);
    return 0;
}
} // namespace

// NOLINTBEGIN(readability-non-const-parameter): written through VectorsOut
int TVXgetsos(TVXmodel *model, int *nummembers_out, int *types, int *beg, int *ind,
              double *weight, int start, int len)
{
    int error = TVXcheckmodel(model);
    if (error) return finish_model(model, error);
    const VectorsOut out = {.numnz = nummembers_out, .beg = beg, .ind = ind, .val = weight};
    error = read_sos(model, types, &out, start, len);
    fail_model(model, error, Report::KEEP_FIRST, "Failed to retrieve SOS constraints");
    return finish_model(model, error);
}

// NOLINTEND(readability-non-const-parameter)
