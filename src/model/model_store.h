// model_store.h -- what the files of the model store share
//
// Small rules that creation, adds and updates all follow, so that a body looks the same
// whichever way it was built: infinite bounds, integral bounds, letters, names, negated rows.
#pragma once
#include "model/model.h"
#include "model/pending.h"

// Most rows plus columns of a model, so that twice as many (two bounds each) still count in an
// int; and most matrix entries.
static constexpr int64_t MODEL_SIZE_LIMIT = 1000000000;
static constexpr int64_t MODEL_ENTRY_LIMIT = 2000000000;

// ---- Records ----
// A record in its initial state, or null when out of memory.
template<class T> [[nodiscard]] T *record_create()
{
    T *record =
        static_cast<T *>(MemAllocZero(1, sizeof(T))); // all zero: valid to assign to
    if (record) *record = T{};
    return record;
}
template<class T> void record_free(T *record) // null is ignored
{
    if (!record) return;
    *record = T{}; // releases every array
    MemFree(record);
}

// ---- Arrays ----
// Room for `need` entries, at least half as much again when it must grow, so that n appends
// cost O(n). 0 or OUT_OF_MEMORY; unchanged on failure.
template<class T> [[nodiscard]] int array_grow(Array<T> *a, int64_t need)
{
    if (need <= a->room) return 0;
    const int64_t ample = a->room + a->room / 2 + 16;
    return array_reserve(a, need > ample ? need : ample);
}
// Size at least n; new entries are `value`.
template<class T> [[nodiscard]] int array_extend(Array<T> *a, int64_t n, T value)
{
    if (n <= a->size) return 0;
    TRY(array_grow(a, n));
    while (a->size < n) array_push(a, value);
    return 0;
}
// Appends n entries of source, or n times `value` when source is null; the room must be there.
template<class T> void array_append_n(Array<T> *a, const T *source, int64_t n, T value)
{
    assert(a->size + n <= a->room);
    if (source && n > 0) {
        memcpy(a->data + a->size, source, static_cast<size_t>(n) * sizeof(T));
        a->size += n;
    } else {
        for (int64_t k = 0; k < n; k++) array_push(a, value);
    }
}

// ---- Letters and bounds ----
char normal_sense(char sense); // L, G, E in either case become <, >, =; others stay
char normal_vtype(char vtype); // upper case, or 0 for what is no variable type
// 0, or TVX_ERROR_INVALID_ARGUMENT with a message for what is no type; j is named in it.
int check_vtype(TVXenv *env, char vtype, int j);
inline double stored_bound(double bound)
{
    if (bound <= -INFINITE_VALUE) return -INFINITE_BOUND;
    return bound >= INFINITE_VALUE ? INFINITE_BOUND : bound;
}
// A variable that must be integral gets integral bounds, a binary one within 0 and 1.
void round_bounds(char vtype, double *lb, double *ub);
inline char bound_kind_of(double lb, double ub, double infinite)
{
    return static_cast<char>((lb <= -infinite ? 1 : 0) + (ub >= infinite ? 2 : 0));
}
static constexpr char KIND_FREE = 3; // bound_kind without either bound

// ---- Pending changes (pending.cpp) ----
// Room to flag n_new more elements. 0 or OUT_OF_MEMORY.
[[nodiscard]] int element_changes_reserve(ElementChanges *changes, int n_elements,
                                          int n_new);
void element_changes_flag(ElementChanges *changes, int k, PendingFlag flag);
// A number that no entry of `mark` holds.
int element_changes_stamp(ElementChanges *changes);

// ---- Names (model_names.cpp) ----
// A copy of text in the body's pool. 0 or OUT_OF_MEMORY.
[[nodiscard]] int body_store_name(ModelBody *body, const char *text, const char **stored);
// Two texts joined, likewise.
[[nodiscard]] int body_join_name(ModelBody *body, const char *head, const char *tail,
                                 const char **stored);
enum class NameKind : char { VAR = 'C', CONSTR = 'R' };
// The default name with that number, likewise.
[[nodiscard]] int body_number_name(ModelBody *body, NameKind kind, int number,
                                   const char **stored);
// Drops texts that nothing points at, when they have come to outweigh the others. Moves all
// names; leaves them when memory is short.
void body_compact_names(ModelBody *body);

// ---- Bodies ----
void body_free(ModelBody *body); // null is ignored
// Coefficients of the rows with marked[i] != 0 change sign. Cost: one pass over the matrix.
void body_negate_rows(ModelBody *body, const char *marked);
void body_count_types(ModelBody *body);  // numintvars, numbinvars
void body_find_flipped(ModelBody *body); // row_flipped
void body_drop_rows(ModelBody *body);    // the row-wise copy
// Holds coefficients or costs whose products may leave the range of a double. Cost: O(n + nonzeros)
bool body_is_extreme(const ModelBody *body);
// bound_kind of all variables, for another magnitude of infinite bounds.
void body_find_kinds(ModelBody *body, double infinite);
// Members of each SOS in weight order (model_sos.cpp). 0 or OUT_OF_MEMORY.
[[nodiscard]] int sos_sort_members(int n_sos, const int *beg, int *ind, double *weight);
void model_estimate_size(TVXmodel *model); // size_estimate

#ifdef TVX_DEBUG
// Counts broken invariants of a body (body_check.cpp); 0 for a sound one. The first one is described
// in where, which has BODY_CHECK_LENGTH characters.
static constexpr int BODY_CHECK_LENGTH = 100;
int body_check(const ModelBody *body, char *where);
#endif
