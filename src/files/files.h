// files.h -- the interface of src/files: models, bases, MIP starts and solutions as text files
//
// Readers fill plain data; writers take a body. All of these take a checked environment and record the message of a
// failure in it; the codes are those of the public header. A file that cannot be written completely is removed again
// where that is possible.
#pragma once
#include "body/body.h"
#include "files/draft.h"

// A model from an MPS file, plain or compressed, as a complete draft: the caller frees it, also after a failure.
[[nodiscard]] int mps_read(TVXenv *env, const char *file_name, ModelDraft *draft);
enum class WriteNames { OWN, NUMBERED };
[[nodiscard]] int mps_write(const ModelBody *body, TVXenv *env, const char *file_name,
                            WriteNames names);

// Likewise in the LP format; writing needs the rows of the body (body_build_rows).
[[nodiscard]] int lp_read(TVXenv *env, const char *file_name, ModelDraft *draft);
[[nodiscard]] int lp_write(const ModelBody *body, TVXenv *env, const char *file_name,
                           WriteNames names);

// Statuses in the form of the attributes VBasis [numvars] and CBasis [numconstrs]; empty on failure.
struct BasisCodes {
    Array<int> vbasis, cbasis;
};
[[nodiscard]] int basis_read(const ModelBody *body, TVXenv *env, const char *file_name,
                             BasisCodes *codes);
// Any basis with as many basic columns as rows that are not.
[[nodiscard]] int basis_write(const ModelBody *body, TVXenv *env, const int *vbasis,
                              const int *cbasis, const char *file_name);

// Values of the variables that a MIP start names; nothing on failure.
struct StartValues {
    Array<int> var;
    Array<double> value;
};
[[nodiscard]] int mip_start_read(const ModelBody *body, TVXenv *env, const char *file_name,
                                 StartValues *values);
[[nodiscard]] int mip_start_write(const ModelBody *body, TVXenv *env, const double *x,
                                  const char *file_name);

// comment: a further line at the head, or "".
[[nodiscard]] int solution_write(const ModelBody *body, TVXenv *env, const double *x,
                                 const char *comment, const char *file_name);
