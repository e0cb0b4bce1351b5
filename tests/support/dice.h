// dice.h -- Dice, the random choices of the generators
//
// One seed, one sequence, on every platform.
#pragma once
#include "frame/runtime/random.h"
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

struct Dice {
    Random stream;

    explicit Dice(uint64_t seed) { random_seed(&stream, seed * 0x9e3779b97f4a7c15u + 1); }
    int range(int low, int high) // uniform in low .. high
    {
        const int64_t width = int64_t{high} - low + 1;
        return static_cast<int>(low + random_next(&stream) % width);
    }
    bool chance(int percent) { return range(1, 100) <= percent; }
    int nonzero(int limit) // uniform in -limit .. limit without 0
    {
        const int value = range(1, limit);
        return range(0, 1) ? value : -value;
    }
    double real(double low, double high)
    {
        return low +
               (high - low) * (random_next(&stream) / static_cast<double>(RANDOM_MAX));
    }
    template<class T> const T &pick(const std::vector<T> &list)
    {
        return list[static_cast<size_t>(range(0, static_cast<int>(list.size()) - 1))];
    }
    template<class T> void shuffle(std::vector<T> *list)
    {
        for (int k = static_cast<int>(list->size()) - 1; k > 0; k--)
            std::swap((*list)[k], (*list)[range(0, k)]);
    }
};
