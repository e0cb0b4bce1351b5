// packed_basis.h -- a basis in 2 bits a column and 1 bit a row
//
// Column   0 basic, 1 at lower, 2 at upper, 3 free or superbasic. Row   1 its slack is basic, else at its bound.
// A nonbasic column that is fixed is packed as at lower; the simplex tells fixed variables by their bounds.
#pragma once
#include "simplex/resolve.h"

inline int64_t packed_words(int columns, int rows)
{
    return (int64_t{rows} + 2 * int64_t{columns} + 31) / 32;
}
// *packed is a new block. 0 or OUT_OF_MEMORY.
[[nodiscard]] int basis_pack(const NodeBasis *full, uint32_t **packed);
// Into a basis of `columns` and `rows`, without weights. 0 or OUT_OF_MEMORY.
[[nodiscard]] int basis_unpack(const uint32_t *packed, int columns, int rows,
                               NodeBasis *full);
