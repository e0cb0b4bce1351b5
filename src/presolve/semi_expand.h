// semi_expand.h -- semi-continuous columns of the reduced model
#pragma once
#include "body/build.h"
#include "presolve/work.h"

// Adds an indicator column, rows and SOS for each semi-continuous column, and lists them in the result. 0 or
// OUT_OF_MEMORY.
[[nodiscard]] int expand_semi(PresolveWork *w, PresolveResult *result, ModelArrays *arrays);
