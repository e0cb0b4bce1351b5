// packed_basis.cpp -- a basis in 2 bits a column and 1 bit a row
#include "mip/packed_basis.h"

namespace
{
// Codes of columns. In a NodeBasis a status is 0 for basic, else minus a BasisStatus: 1 lower, 2 upper, 3 free, 4 fixed.
constexpr int AT_LOWER_CODE = 1, FIXED = 4;
constexpr float UNKNOWN_WEIGHT = 1; // weights are not packed

void put_bits(uint32_t *words, int64_t at, uint32_t bits)
{
    words[at / 32] |= bits << (at % 32);
}

uint32_t get_bits(const uint32_t *words, int64_t at, uint32_t mask)
{
    return (words[at / 32] >> (at % 32)) & mask;
}
} // namespace

int basis_pack(const NodeBasis *full, uint32_t **packed)
{
    const int n = full->NumCols, m = full->NumRows;
    const int64_t words = packed_words(n, m);
    *packed = nullptr;
    if (words == 0) return 0;
    uint32_t *block =
        static_cast<uint32_t *>(MemAllocZero(static_cast<size_t>(words), sizeof(uint32_t)));
    if (!block) return OUT_OF_MEMORY;
    for (int j = 0; j < n; j++) {
        const int status = full->Statuses.data[j];
        put_bits(block, 2 * int64_t{j},
                 static_cast<uint32_t>(status == FIXED ? AT_LOWER_CODE : status));
    }
    for (int i = 0; i < m; i++)
        put_bits(block, 2 * int64_t{n} + i, full->Statuses.data[n + i] == 0);
    *packed = block;
    return 0;
}

int basis_unpack(const uint32_t *packed, int columns, int rows, NodeBasis *full)
{
    const int64_t size = int64_t{columns} + rows;
    full->NumCols = columns;
    full->NumRows = rows;
    TRY(array_resize(&full->Statuses, size));
    for (int j = 0; j < columns; j++)
        full->Statuses.data[j] = static_cast<char>(get_bits(packed, 2 * int64_t{j}, 3));
    for (int i = 0; i < rows; i++) {
        const bool basic = get_bits(packed, 2 * int64_t{columns} + i, 1) != 0;
        full->Statuses.data[columns + i] = static_cast<char>(basic ? 0 : AT_LOWER_CODE);
    }
    return array_assign(&full->Weights, rows, UNKNOWN_WEIGHT);
}
