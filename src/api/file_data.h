// file_data.h -- between a model and the files that belong to it
#pragma once
#include "model/model.h"

// Writers: what the attributes show, as a file. 0 or a code with its message.
[[nodiscard]] int write_mps(TVXmodel *model, const char *file_name);
[[nodiscard]] int write_rew(TVXmodel *model, const char *file_name); // numbered names
[[nodiscard]] int write_lp(TVXmodel *model, const char *file_name);
[[nodiscard]] int write_rlp(TVXmodel *model, const char *file_name); // numbered names
[[nodiscard]] int write_basis(TVXmodel *model, const char *file_name);
[[nodiscard]] int write_start(TVXmodel *model, const char *file_name);
[[nodiscard]] int write_solution(TVXmodel *model, const char *file_name);
// Sets VBasis and CBasis. Contents that cannot be understood leave the basis as it was and their message recorded; the
// code is TVX_ERROR_FILE_READ.
[[nodiscard]] int read_basis(TVXmodel *model, const char *file_name);
// Sets Start of the variables that the file names; all or none.
[[nodiscard]] int read_start(TVXmodel *model, const char *file_name);
