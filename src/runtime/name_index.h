// name_index.h -- NameIndex, text to integer, and the keys under which parameters and attributes are known
#pragma once
#include <cstddef>
#include <cstdint>

static constexpr int NAME_KEY_LENGTH = 512; // characters of a name that count

// Key of a parameter or attribute name: the first 512 characters, leading underscores kept, later underscores
// dropped, the rest in lower case (ASCII, whatever the locale). key has room for NAME_KEY_LENGTH + 1 characters.
void name_key(const char *name, char *key);

struct NameIndex;
enum class NameGrowth { FIXED, ALLOWED };
// Buckets: the first prime at or above `buckets`. Null when out of memory.
[[nodiscard]] NameIndex *name_index_create(int buckets, NameGrowth growth);
void name_index_free(NameIndex **index); // nulls the pointer; null is ignored
// Puts a new entry at the head of its chain, hiding an older one of the same text. 0 or OUT_OF_MEMORY.
[[nodiscard]] int name_index_insert(NameIndex *index, const char *text, int value);
[[nodiscard]] int name_index_insert_n(NameIndex *index, const char *text, size_t length,
                                      int value);
// The value, or -1.
int name_index_find(const NameIndex *index, const char *text);
int name_index_find_n(const NameIndex *index, const char *text, size_t length);
