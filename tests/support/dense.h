// dense.h -- dense matrices, to compare with what the library computes from sparse factors
#pragma once
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

using Matrix = std::vector<std::vector<long double>>; // by rows

// Gauss and Jordan with the largest pivot of each column. Empty when one is below `least`.
inline Matrix inverse(Matrix b, long double least = 0)
{
    const size_t m = b.size();
    for (size_t i = 0; i < m; i++)
        for (size_t k = 0; k < m; k++) b[i].push_back(i == k);
    for (size_t k = 0; k < m; k++) {
        size_t best = k;
        for (size_t i = k; i < m; i++)
            if (std::fabs(b[i][k]) > std::fabs(b[best][k])) best = i;
        if (std::fabs(b[best][k]) < least) return {};
        std::swap(b[k], b[best]);
        const long double pivot = b[k][k];
        for (long double &v : b[k]) v /= pivot;
        for (size_t i = 0; i < m; i++) {
            const long double factor = b[i][k];
            if (i == k || factor == 0) continue;
            for (size_t c = 0; c < 2 * m; c++) b[i][c] -= factor * b[k][c];
        }
    }
    for (auto &row : b) row.erase(row.begin(), row.begin() + long(m));
    return b;
}
