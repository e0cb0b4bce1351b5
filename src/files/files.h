// files.h -- the face of src/files: models and what belongs to them as text files
//
// All of these take a checked environment or model and record the message of a failure; the codes are those of the
// public header. A file that cannot be written completely is removed again where that is possible.
#pragma once
#include "tarvex.h"

// A model from an MPS file, plain or compressed. *model_out is null on failure.
[[nodiscard]] int mps_read(TVXenv *env, const char *file_name, TVXmodel **model_out);
enum class WriteNames { OWN, NUMBERED };
[[nodiscard]] int mps_write(TVXmodel *model, const char *file_name, WriteNames names);
// Likewise in the LP format.
[[nodiscard]] int lp_read(TVXenv *env, const char *file_name, TVXmodel **model_out);
[[nodiscard]] int lp_write(TVXmodel *model, const char *file_name, WriteNames names);

// Sets VBasis and CBasis. Contents that cannot be understood leave the basis as it was and their message recorded; the
// code is TVX_ERROR_FILE_READ.
[[nodiscard]] int basis_read(TVXmodel *model, const char *file_name);
[[nodiscard]] int basis_write(TVXmodel *model, const char *file_name);
// Any basis in the form of the attributes, with as many basic columns as rows that are not.
[[nodiscard]] int basis_write_statuses(TVXmodel *model, const int *vbasis,
                                       const int *cbasis, const char *file_name);

// Sets Start of the variables that the file names; all or none.
[[nodiscard]] int mip_start_read(TVXmodel *model, const char *file_name);
[[nodiscard]] int mip_start_write(TVXmodel *model, const char *file_name);

[[nodiscard]] int solution_write(TVXmodel *model, const char *file_name);
