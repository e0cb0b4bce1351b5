// names.cpp -- names of variables and constraints
//
// A name is a text in the body's pool, or null: then the name is formed from the index when needed, "C%d" or "R%d". The
// pool only grows; since renaming and deletion leave unused texts in it, an update calls body_compact_names, which
// copies the texts in use to a new pool when the pool has twice the size of those in use last time. Cost: O(1)
// amortised per byte stored.
#include "body/body.h"
#include <algorithm>

namespace
{
constexpr size_t NAME_CHUNK = 4096; // bytes; a few hundred names

constexpr int64_t DEAD_NAMES = 1 << 20; // smaller pools are not compacted

// Writes letter and number; returns the length.
size_t format_name(char letter, int number, char *buffer)
{
    char digits[DEFAULT_NAME_LENGTH];
    int n = 0;
    unsigned rest = static_cast<unsigned>(number);
    do {
        digits[n++] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest);
    size_t length = 0;
    buffer[length++] = letter;
    while (n > 0) buffer[length++] = digits[--n];
    buffer[length] = 0;
    return length;
}
} // namespace

const char *var_name(const ModelBody *body, int j, char *buffer)
{
    if (body->varnames.size > j && body->varnames[j]) return body->varnames[j];
    format_name('C', j, buffer);
    return buffer;
}

const char *constr_name(const ModelBody *body, int i, char *buffer)
{
    if (body->constrnames.size > i && body->constrnames[i]) return body->constrnames[i];
    format_name('R', i, buffer);
    return buffer;
}

namespace
{
// A block of the pool, which is made on first use; null when out of memory.
char *name_block(ModelBody *body, size_t bytes)
{
    if (!body->name_pool) body->name_pool = PoolCreate(NAME_CHUNK);
    char *block = body->name_pool ? PoolAlloc(body->name_pool, bytes) : nullptr;
    if (block) body->name_bytes += static_cast<int64_t>(bytes);
    return block;
}
} // namespace

int body_join_name(ModelBody *body, const char *head, const char *tail, const char **stored)
{
    const size_t head_length = strlen(head);
    const size_t tail_length = strlen(tail);
    char *block = name_block(body, head_length + tail_length + 1);
    if (!block) return OUT_OF_MEMORY;
    std::copy_n(head, head_length, block);
    std::copy_n(tail, tail_length + 1, block + head_length);
    *stored = block;
    return 0;
}

int body_store_name(ModelBody *body, const char *text, const char **stored)
{
    return body_join_name(body, "", text, stored);
}

int body_number_name(ModelBody *body, NameKind kind, int number, const char **stored)
{
    char buffer[DEFAULT_NAME_LENGTH];
    const size_t bytes = format_name(static_cast<char>(kind), number, buffer) + 1;
    char *block = name_block(body, bytes);
    if (!block) return OUT_OF_MEMORY;
    memcpy(block, buffer, bytes);
    *stored = block;
    return 0;
}

namespace
{
int64_t living_bytes(const Array<const char *> &names)
{
    int64_t bytes = 0;
    for (const char *name : names)
        if (name) bytes += static_cast<int64_t>(strlen(name)) + 1;
    return bytes;
}

// Copies *name to *place, which moves on.
void move_name(const char **name, char **place)
{
    if (!*name) return;
    const size_t bytes = strlen(*name) + 1;
    memcpy(*place, *name, bytes);
    *name = *place;
    *place += bytes;
}
} // namespace

void body_compact_names(ModelBody *body)
{
    if (body->name_bytes <= body->name_limit + DEAD_NAMES) return;
    int64_t bytes = living_bytes(body->varnames) + living_bytes(body->constrnames);
    if (body->modelname) bytes += static_cast<int64_t>(strlen(body->modelname)) + 1;
    body->name_limit = 2 * std::max(bytes, body->name_bytes / 2);
    if (2 * bytes > body->name_bytes) return;

    TextPool *pool = PoolCreate(NAME_CHUNK);
    char *place = pool ? PoolAlloc(pool, static_cast<size_t>(bytes) + 1) : nullptr;
    if (!place) { // benign: unused texts only cost memory
        PoolFree(&pool);
        return;
    }
    move_name(&body->modelname, &place);
    for (const char *&name : body->varnames) move_name(&name, &place);
    for (const char *&name : body->constrnames) move_name(&name, &place);
    PoolFree(&body->name_pool);
    body->name_pool = pool;
    body->name_bytes = bytes;
    body->name_limit = 2 * bytes;
}
