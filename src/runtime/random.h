// random.h -- Random, a deterministic pseudorandom number generator
#pragma once
#include <cstdint>

static constexpr int32_t RANDOM_MAX = 2147483647; // largest value returned

struct Random {
    uint64_t State = 0;
};
inline void random_seed(Random *random, uint64_t seed)
{
    random->State = seed;
}
// Uniform in 0 .. RANDOM_MAX. SplitMix64 (Steele, Lea, Flood, OOPSLA 2014): any seed gives a good stream.
inline int32_t random_next(Random *random)
{
    uint64_t z = (random->State += 0x9e3779b97f4a7c15u);
    z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9u;
    z = (z ^ (z >> 27)) * 0x94d049bb133111ebu;
    return static_cast<int32_t>((z ^ (z >> 31)) >> 33);
}
