// probe.h -- what the files of probing share
#pragma once
#include "presolve/integer/column_replace.h"
#include "presolve/integer/facts.h"
#include "presolve/integer/propagation_view.h"

// Bounds of the columns that a value of the probed column implies.
struct ProbeSide {
    Array<double> Lower, Upper; // [NumCols] where Stamp says so
    Array<int> Stamp;           // [NumCols] number of the probe that has changed the column
    Array<int> Cols;            // columns changed by the last probe
};

struct Probing {
    PresolveWork *w = nullptr;
    MipFacts *Facts = nullptr;
    PropagationView View;
    Domain *Bounds = nullptr;
    ProbeSide Sides[2];                     // by the value of the column
    Array<ColumnReplacement> Replacements;  // in the order found
    Array<char> IsReplaced;                 // [NumCols]
    int Number = 0;                         // of the present probe, from 1
    int64_t Limit = 0;                      // of the effort
    int64_t Tests = 0;                      // effort of tests in the clique table
    int64_t EdgesLeft = 0, EntriesLeft = 0; // that may still be noted
    int Useless = 0;                        // probes in a row without gain
};

// ---- probe_learn.cpp ----
// What both sides of the last probe of column z say. Adds to Useless, or clears it. 0 or OUT_OF_MEMORY.
[[nodiscard]] int probe_learn(Probing *probing, int z);
