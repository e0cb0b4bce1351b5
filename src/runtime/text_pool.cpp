// text_pool.cpp -- TextPool: chunks in a list, blocks cut from the current one
//
// Invariant   Used <= size of the current chunk. Chunks made for one large block lie in the list behind the head
//             and are never current, so that a large block does not waste the rest of the chunk in use.
// Cost        O(1) per block, O(chunks) to free.
#include "runtime/text_pool.h"
#include "runtime/memory.h"
#include <cstdint>
#include <cstring>

namespace
{
// With smaller chunks their headers would take most of the memory.
constexpr size_t SMALLEST_CHUNK = 64;

struct PoolChunk { // followed by its bytes
    PoolChunk *Next;
};
} // namespace

struct TextPool {
    size_t ChunkSize; // bytes of a usual chunk
    size_t Used;      // bytes taken from the head chunk
    PoolChunk *Head;  // the chunk in use, or null
};

namespace
{
char *chunk_bytes(PoolChunk *chunk)
{
    return reinterpret_cast<char *>(chunk + 1);
}
} // namespace

TextPool *PoolCreate(size_t chunk_size)
{
    TextPool *pool = static_cast<TextPool *>(MemAlloc(sizeof(TextPool)));
    if (!pool) return nullptr;
    *pool = {.ChunkSize = chunk_size < SMALLEST_CHUNK ? SMALLEST_CHUNK : chunk_size,
             .Used = 0,
             .Head = nullptr};
    return pool;
}

char *PoolAlloc(TextPool *pool, size_t bytes)
{
    if (pool->Head && bytes <= pool->ChunkSize - pool->Used) {
        char *block = chunk_bytes(pool->Head) + pool->Used;
        pool->Used += bytes;
        return block;
    }
    const bool large = bytes > pool->ChunkSize;
    const size_t room = large ? bytes : pool->ChunkSize;
    if (room > SIZE_MAX - sizeof(PoolChunk)) return nullptr;
    PoolChunk *chunk = static_cast<PoolChunk *>(MemAlloc(sizeof(PoolChunk) + room));
    if (!chunk) return nullptr;
    if (large && pool->Head) {
        chunk->Next = pool->Head->Next;
        pool->Head->Next = chunk;
        return chunk_bytes(chunk);
    }
    chunk->Next = pool->Head;
    pool->Head = chunk;
    pool->Used = large ? pool->ChunkSize : bytes; // a large first chunk counts as full
    return chunk_bytes(chunk);
}

char *PoolCopy(TextPool *pool, const char *text, size_t length)
{
    if (length == SIZE_MAX) return nullptr;
    char *copy = PoolAlloc(pool, length + 1);
    if (!copy) return nullptr;
    memcpy(copy, text, length);
    copy[length] = '\0';
    return copy;
}

void PoolFree(TextPool **pool)
{
    if (!pool || !*pool) return;
    for (PoolChunk *chunk = (*pool)->Head; chunk;) {
        PoolChunk *next = chunk->Next;
        MemFree(chunk);
        chunk = next;
    }
    MemFree(*pool);
    *pool = nullptr;
}
