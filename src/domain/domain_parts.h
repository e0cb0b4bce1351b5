// domain_parts.h -- what the files of Domain share; not for other folders
#pragma once
#include "body/double_double.h"
#include "domain/domain.h"

// ---- domain_activity.cpp ----
// A x exactly, without a fused multiply-add, which is a call on processors that need not have one. Both factors are
// below 1e150 in size.
struct SplitNumber {
    double High, Low; // 26 bits each: products of two parts are exact
};
inline SplitNumber split_number(double a)
{
    constexpr double SPLITTER = 0x1p27 + 1; // Veltkamp
    const double c = SPLITTER * a, high = c - (c - a);
    return {high, a - high};
}
inline Twofold split_product(double a, double b, SplitNumber part_b)
{
    const double product = a * b;
    const SplitNumber part_a = split_number(a);
    const double error = ((part_a.High * part_b.High - product) + part_a.High * part_b.Low +
                          part_a.Low * part_b.High) +
                         part_a.Low * part_b.Low;
    return {product, error};
}
// The column j has changed a bound: the activities of all directed rows that have it follow, and those that may act
// are queued if `queue` says so.
enum class RowsMay : char { ACT, NOT };
void activity_change(Domain *d, int j, BoundSide side, double from, double to, RowsMay act);
// Activity, count and limit of a directed row from the bounds alone. Cost: the length of the row
void activity_compute(Domain *d, int directed);

inline double activity_of(const DirectedState *r)
{
    return r->High + r->Low;
}

// ---- domain.cpp ----
// The rounding error of a computed number as a margin, by the size of its terms: what double-double loses is far below
// it, what a point in doubles cannot avoid is about this. Errors far below the tolerance do not count, so that simple
// rows give exact bounds.
inline double rounding_margin(double size, double tol)
{
    constexpr double ROUNDING = 1e-15, COUNTED = 1e-3;
    return ROUNDING * size > COUNTED * tol ? ROUNDING * size : 0;
}
inline void queue_row(Domain *d, int directed)
{
    if (d->QueueCount == 0) d->QueuedFrom = d->Trail.size;
    int at = d->QueueHead + d->QueueCount++;
    if (at >= d->Queue.size) at -= static_cast<int>(d->Queue.size);
    d->Queue.data[at] = directed;
    d->State.data[directed].Queued = 1;
}
void domain_refuse(Domain *d, DomainConflict conflict); // makes it infeasible

// ---- domain_literals.cpp ----
// Follows the literals that have become true through cliques and implications.
void domain_follow_literals(Domain *d);
