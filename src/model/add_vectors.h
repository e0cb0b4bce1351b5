// add_vectors.h -- what adding variables and adding constraints have in common
//
// Both add sparse vectors whose indices refer to elements of the other dimension that exist in the
// body now, and names. One set of checks and one way to append serves both.
#pragma once
#include "model/model_store.h"

// What one call adds, the part common to both dimensions.
struct NewVectors {
    int count = 0;
    int numnz = 0;
    const int *beg = nullptr; // [count] starts; a vector ends where the next starts
    const int *ind = nullptr; // [numnz]
    const double *val = nullptr;
    const char *const *names = nullptr; // [count], or null: default names
};

// Counts, arrays, values, growth, starts and indices of a call; n_new is the number of rows and
// columns that it will bring. Makes the pending record.
// 0, or a code with its message where there is a specific one.
[[nodiscard]] int new_vectors_check(TVXmodel *model, NameKind kind, const NewVectors *v,
                                    int64_t n_new);
// Room in the batch for them, and their names behind the last one (not yet counted). The next
// default number to use goes to *next. 0 or OUT_OF_MEMORY.
[[nodiscard]] int new_vectors_prepare(ModelBody *body, NameKind kind, PendingVectors *batch,
                                      const NewVectors *v, int *next);
// Appends what was prepared; cannot fail.
void new_vectors_append(PendingVectors *batch, const NewVectors *v);
