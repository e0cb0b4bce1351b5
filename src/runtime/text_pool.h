// text_pool.h -- TextPool owns many short texts, freed at once
#pragma once
#include <cstddef>

struct TextPool;
// Chunks hold at least chunk_size bytes (and at least 64). Null when out of memory.
[[nodiscard]] TextPool *PoolCreate(size_t chunk_size);
// A block of that many bytes, unaligned, living until the pool is freed. Null when out of memory; the pool
// stays usable.
[[nodiscard]] char *PoolAlloc(TextPool *pool, size_t bytes);
// A terminated copy of text[0..length-1].
[[nodiscard]] char *PoolCopy(TextPool *pool, const char *text, size_t length);
void PoolFree(TextPool **pool); // frees all chunks and nulls the pointer; null is ignored
