// double_double.h -- Twofold, a number as the sum of two doubles, for sums whose own rounding must not matter
//
// Method      The error of a sum or a product of two doubles is itself a double, which can be had exactly (Knuth's
//             two-sum, a fused multiply-add for the product); it is kept as the low part.
// Invariant   |low| is at most half a unit in the last place of high, so that high is the nearest double.
// Accuracy    The error of a sum of n terms is at most n TWOFOLD_ROUNDING times the sum of their magnitudes. After
//             overflow the sum stays infinite or NaN.
// Literature  D. E. Knuth, "The Art of Computer Programming 2", section 4.2.2.
//             T. J. Dekker, "A floating-point technique for extending the available precision", Numer. Math. 18, 1971.
#pragma once
#include <cmath>

static constexpr double TWOFOLD_ROUNDING = 0x1p-102; // of one operation, with a margin

struct Twofold {
    double high = 0, low = 0;
};

inline Twofold two_sum(double a, double b) // exact
{
    const double sum = a + b, part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}
inline Twofold two_product(double a, double b) // exact but for underflow
{
    const double product = a * b;
    return {product, std::fma(a, b, -product)};
}
inline void twofold_add(Twofold *sum, Twofold term)
{
    const Twofold high = two_sum(sum->high, term.high), low = two_sum(sum->low, term.low);
    const Twofold middle = two_sum(high.high, high.low + low.high);
    *sum = two_sum(middle.high, middle.low + low.low);
}
inline Twofold twofold_times(Twofold a, double b)
{
    const Twofold product = two_product(a.high, b);
    return two_sum(product.high, product.low + a.low * b);
}

// A sum with the magnitudes of its terms, for an error bound.
struct TwofoldSum {
    Twofold value;
    double size = 0;  // of all terms together
    double terms = 0; // how many
    void add(Twofold term)
    {
        twofold_add(&value, term);
        size += std::fabs(term.high);
        terms++;
    }
    double error() const { return (terms + 4) * TWOFOLD_ROUNDING * size; } // at most
};
