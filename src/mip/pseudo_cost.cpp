// pseudo_cost.cpp -- the table of pseudo-costs
#include "mip/pseudo_cost.h"
#include <algorithm>
#include <cmath>

namespace
{
constexpr double LEAST_GAIN = 1e-10; // of an observation
}

int pseudo_alloc(PseudoCostTable *table, int columns)
{
    for (Array<int> &count : table->Count) TRY(array_assign(&count, columns, 0));
    for (Array<double> &sum : table->Sum) TRY(array_assign(&sum, columns, 0.0));
    return 0;
}

void pseudo_update(PseudoCostTable *table, int j, double step, double gain)
{
    const int way = step > 0;
    const double observed = std::max(gain, LEAST_GAIN) / std::fabs(step);
    double *sum = &table->Sum[way].data[j];
    *sum = table->Count[way].data[j] == 0 ? std::max(*sum, observed) : *sum + observed;
    table->Count[way].data[j]++;
}

GainEstimate pseudo_estimate(const PseudoCostTable *table, int j, double fraction)
{
    const int down = table->Count[0].data[j], up = table->Count[1].data[j];
    return {down < 1 ? 0 : table->Sum[0].data[j] * fraction / down,
            up < 1 ? 0 : table->Sum[1].data[j] * (1 - fraction) / up};
}

int pseudo_observations(const PseudoCostTable *table, int j)
{
    return std::min(table->Count[0].data[j], table->Count[1].data[j]);
}
