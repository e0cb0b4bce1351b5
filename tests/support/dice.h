// dice.h -- Dice, the random choices of the generators
//
// One seed, one sequence, on every platform. Or the choices stand in bytes that a fuzzer makes up: one byte for up to
// 256 possibilities, two for up to 65536, else four, low byte first, and the remainder by their number counts. Behind
// the last byte the choices are those of seed 0.
#pragma once
#include "runtime/random.h"
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

struct Dice {
    Random stream;
    const uint8_t *next = nullptr, *end = nullptr; // the bytes to come

    explicit Dice(uint64_t seed) { random_seed(&stream, seed * 0x9e3779b97f4a7c15u + 1); }
    Dice(const uint8_t *bytes, size_t count) : Dice(0)
    {
        next = bytes;
        end = bytes + count;
    }
    bool used_up() const { return next == end; }
    int64_t draw(int64_t width) // in 0 .. width - 1
    {
        if (used_up()) return random_next(&stream) % width;
        int64_t value = 0;
        const int bytes = width <= 256 ? 1 : width <= 65536 ? 2 : 4;
        for (int k = 0; k < bytes && !used_up(); k++) value |= int64_t{*next++} << (8 * k);
        return value % width;
    }
    int range(int low, int high) // uniform in low .. high
    {
        return int(low + draw(int64_t{high} - low + 1));
    }
    bool chance(int percent) { return range(1, 100) <= percent; }
    int nonzero(int limit) // uniform in -limit .. limit without 0
    {
        const int value = range(1, limit);
        return range(0, 1) ? value : -value;
    }
    double real(double low, double high)
    {
        return low + (high - low) * (double(draw(int64_t{RANDOM_MAX} + 1)) / RANDOM_MAX);
    }
    template<class T> const T &pick(const std::vector<T> &list)
    {
        return list[range(0, int(list.size()) - 1)];
    }
    template<class T> void shuffle(std::vector<T> *list)
    {
        for (int k = int(list->size()) - 1; k > 0; k--)
            std::swap((*list)[k], (*list)[range(0, k)]);
    }
};
