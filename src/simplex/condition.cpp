// condition.cpp -- estimate of the condition number of the scaled basis
//
// Problem     kappa = ||B|| ||B^-1|| tells how many digits solves with B can lose. B^-1 is available by solves only.
// Method      1-norm: ||B|| by columns; ||B^-1|| by Hager's method over unit vectors, with Higham's start vector,
//             stopping rule and final test vector. 2-norm: the largest eigenvalues of B^T B and of its inverse by the
//             Lanczos method. Both are lower bounds, usually within a factor of three; the second has several correct
//             digits.
// Cost        1-norm: at most 2 ASCENTS + 2 solves. 2-norm: 2 LANCZOS_STEPS solves and as many products.
// Literature  N. J. Higham, "Accuracy and stability of numerical algorithms", 2002, chapter 15.
//             G. H. Golub and C. F. Van Loan, "Matrix computations", chapter 10.
#include "simplex/sopt.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr int ASCENTS = 5; // more rarely improve the estimate (Higham)

constexpr int LANCZOS_STEPS = 40; // for the largest eigenvalue: a few digits at least

constexpr int BISECTIONS = 60;

constexpr uint64_t START_SEED = 101;

template<class R> double sum_of_magnitudes(const SVec<R> *x)
{
    R sum = 0;
    for (int i = 0; i < x->Dim; i++) sum += std::abs(x->Value.data[i]);
    return static_cast<double>(sum);
}

// x := a dense vector.
template<class R, class F> void fill(SVec<R> *x, F value)
{
    svec_clear(x);
    for (int i = 0; i < x->Dim; i++) x->Value.data[i] = R(value(i));
    x->Count = -1;
}

template<class R> void solve(swork<R> *w, SVec<R> *x)
{
    Ftran(&w->Lu, x, SOLVE_COSTS, Keep::VALUES);
    x->Count = -1;
}

template<class R> void solve_transposed(swork<R> *w, SVec<R> *x)
{
    Btran(&w->Lu, x, SOLVE_COSTS, Keep::NO);
    x->Count = -1;
}

// Index of the largest entry of B^-T sign(B^-1 ..): the unit vector of steepest ascent of the norm.
template<class R> int steepest_place(swork<R> *w, double size, SVec<R> *x, SVec<R> *y)
{
    fill(y, [x, size](int i) { return (x->Value.data[i] < R(0) ? -1 : 1) / size; });
    solve_transposed(w, y);
    int best = 0;
    for (int i = 1; i < y->Dim; i++)
        if (std::abs(y->Value.data[i]) > std::abs(y->Value.data[best])) best = i;
    return best;
}

template<class R> double inverse_norm(const sopt *s, swork<R> *w)
{
    const int m = s->NumRows;
    SVec<R> *x = &w->Work, *y = &w->Tau;
    // divided later: solves drop entries that are small against 1
    fill(x, [](int) { return 1; });
    solve(w, x);
    double norm = sum_of_magnitudes(x) / m;
    if (!(norm > 0)) return 0; // overflow
    int place = -1;
    for (int round = 0; round < ASCENTS; round++) {
        const double size = std::min(norm, 1.0); // solves drop no part of their result then
        const int next = steepest_place(w, size, x, y);
        if (next == place) break;
        place = next;
        svec_unit(x, place, R(1) / R(size));
        solve(w, x);
        const double risen = sum_of_magnitudes(x) * size;
        if (risen <= norm) break;
        norm = risen;
    }
    fill(x, [m](int i) { return (i % 2 ? -1 : 1) * (1 + i / std::max(1.0, m - 1.0)); });
    solve(w, x);
    norm = std::max(norm, 2 * sum_of_magnitudes(x) / (3.0 * m));
    svec_clear(x);
    svec_clear(y);
    return norm;
}

double basis_norm(const sopt *s)
{
    double norm = 0;
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        double sum = 1; // of a slack
        if (j < s->NumCols) {
            sum = 0;
            for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
                sum += std::fabs(s->ColVal.data[p]);
        }
        norm = std::max(norm, sum);
    }
    return norm;
}

enum class Operator { SQUARE, INVERSE }; // B^T B, (B B^T)^-1

template<class R>
void apply_square(const sopt *s, swork<R> *w, double size, const R *x, R *result)
{
    SVec<R> *y = &w->Work;
    R *value = y->Value.data;
    svec_clear(y);
    for (int k = 0; k < s->NumRows; k++) {
        const int j = s->BasisHead.data[k];
        if (j >= s->NumCols) {
            value[j - s->NumCols] += x[k] / R(size);
            continue;
        }
        for (int p = s->ColBeg.data[j]; p < s->ColBeg.data[j + 1]; p++)
            value[s->ColInd.data[p]] += R(s->ColVal.data[p]) / R(size) * x[k];
    }
    y->Count = -1;
    for (int k = 0; k < s->NumRows; k++)
        result[k] = column_dot(s, s->BasisHead.data[k], value) / R(size);
    svec_clear(y);
}

// Approximate norms of B and B^-1: operators are divided by their squares, which could overflow.
struct Sizes {
    double Basis, Inverse;
};

// Solves drop entries that are small against 1: vectors are divided before a solve that makes them smaller, otherwise
// after it, and between the two solves by their largest entry.
template<class R>
void apply_inverse(const sopt *s, swork<R> *w, double size, const R *x, R *result)
{
    SVec<R> *y = &w->Work;
    const R small = R(std::min(size, 1.0)), large = R(std::max(size, 1.0));
    fill(y, [x, small](int i) { return x[i] / small; });
    solve(w, y);
    R largest = 0;
    for (int i = 0; i < s->NumRows; i++)
        largest = std::max(largest, std::abs(y->Value.data[i]));
    if (largest > R(0))
        for (int i = 0; i < s->NumRows; i++)
            y->Value.data[i] = y->Value.data[i] / largest / small;
    solve_transposed(w, y);
    const R factor = largest / large / large;
    for (int i = 0; i < s->NumRows; i++) result[i] = y->Value.data[i] * factor;
    svec_clear(y);
}

// How many eigenvalues of the tridiagonal matrix with this diagonal and these squared neighbours exceed x (Sturm).
int count_above(const double *diagonal, const double *square, int n, double x)
{
    int count = 0;
    double q = 1;
    for (int k = 0; k < n; k++) {
        q = diagonal[k] - x - (k > 0 ? square[k] / q : 0);
        if (q == 0) q = -1e-300; // on an eigenvalue of a leading part
        count += q > 0;
    }
    return count;
}

double largest_eigenvalue(const double *diagonal, const double *square, int n)
{
    double low = 0, high = 0; // by Gershgorin; the matrix is positive
    for (int k = 0; k < n; k++)
        high = std::max(high, diagonal[k] + (k > 0 ? std::sqrt(square[k]) : 0) +
                                  (k + 1 < n ? std::sqrt(square[k + 1]) : 0));
    for (int round = 0; round < BISECTIONS; round++) {
        const double middle = low + (high - low) / 2;
        (count_above(diagonal, square, n, middle) > 0 ? low : high) = middle;
    }
    return high;
}

// Vectors of the recurrence: beta v+ = A v - alpha v - beta v-
template<class R> struct Lanczos {
    Array<R> Now, Before, Next;
};

template<class R> R normalise(R *x, int n)
{
    R sum = 0;
    for (int i = 0; i < n; i++) sum += x[i] * x[i];
    const R length = std::sqrt(sum);
    for (int i = 0; i < n && length > R(0); i++) x[i] /= length;
    return length;
}

template<class R>
double spectral_radius(const sopt *s, swork<R> *w, Operator kind, const Sizes &sizes,
                       Lanczos<R> *l)
{
    const int m = s->NumRows, steps = std::min(m, LANCZOS_STEPS);
    double diagonal[LANCZOS_STEPS], square[LANCZOS_STEPS] = {};
    Random rng;
    random_seed(&rng, START_SEED);
    R *now = l->Now.data, *before = l->Before.data, *next = l->Next.data;
    for (int i = 0; i < m; i++) {
        now[i] = R(1) + R(random_next(&rng)) / R(RANDOM_MAX);
        before[i] = R(0);
    }
    normalise(now, m);
    R beta = 0;
    int n = 0;
    for (;;) {
        if (kind == Operator::SQUARE)
            apply_square(s, w, sizes.Basis, now, next);
        else
            apply_inverse(s, w, sizes.Inverse, now, next);
        R alpha = 0;
        for (int i = 0; i < m; i++) alpha += now[i] * next[i];
        for (int i = 0; i < m; i++) next[i] -= alpha * now[i] + beta * before[i];
        diagonal[n++] = static_cast<double>(alpha);
        beta = normalise(next, m);
        if (n == steps || !(beta > std::abs(alpha) * R(1e-12))) break; // an invariant space
        square[n] = static_cast<double>(beta * beta);
        R *spare = before;
        before = now;
        now = next;
        next = spare;
    }
    return largest_eigenvalue(diagonal, square, n);
}

// The estimate, at least 1, and at most UNDEFINED_VALUE, which also stands for values that are not finite.
double sound_kappa(double estimate)
{
    return estimate < UNDEFINED_VALUE ? std::max(estimate, 1.0) : UNDEFINED_VALUE;
}

template<class R> int condition(const sopt *s, swork<R> *w, KappaNorm norm, double *kappa)
{
    *kappa = 1; // an empty basis
    if (s->NumRows == 0) return 0;
    const Sizes sizes = {basis_norm(s), inverse_norm(s, w)};
    *kappa = sound_kappa(sizes.Inverse > 0 ? sizes.Basis * sizes.Inverse : HUGE_VAL);
    if (norm == KappaNorm::ONE || *kappa == UNDEFINED_VALUE) return 0; // assigned
    Lanczos<R> l;
    for (Array<R> *v : {&l.Now, &l.Before, &l.Next}) TRY(array_resize(v, s->NumRows));
    const double square = spectral_radius(s, w, Operator::SQUARE, sizes, &l),
                 inverse = spectral_radius(s, w, Operator::INVERSE, sizes, &l);
    *kappa =
        sound_kappa(std::sqrt(square) * sizes.Basis * std::sqrt(inverse) * sizes.Inverse);
    return 0;
}
} // namespace

int simplex_kappa(sopt *s, KappaNorm norm, double *kappa)
{
    return s->Quad ? condition(s, s->Extended, norm, kappa)
                   : condition(s, s->Double, norm, kappa);
}
