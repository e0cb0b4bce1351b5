// quality_parts.h -- the measures that LP and MIP share
#pragma once
#include "body/quality.h"
#include "body/row_activity.h"

// Counts one amount; 0 and below are none.
void violation_add(Violation *violation, int index, double amount);
inline double scale_at(const double *factors, int k)
{
    return factors ? factors[k] : 1.0;
}

void quality_bounds(const ModelBody *body, const double *x, const QualityScale &scale,
                    Quality *result);
void quality_rows(const ModelBody *body, const RowActivity &rows, const QualityScale &scale,
                  Quality *result);
