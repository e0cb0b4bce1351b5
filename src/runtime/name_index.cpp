// name_index.cpp -- NameIndex: a chained hash table from text to integer, and the name key
//
// Problem     Find the number of a parameter, attribute, row or column by its name, for up to millions of names.
// Method      Hash table with a prime number of buckets and chaining; entries are in one array in order of insertion,
//             their texts in a pool. A growing index doubles if it has more entries than buckets; the chains are
//             rebuilt in entry order, so that a newer entry is found before an older one with the same text.
//             Fixed indexes (short words chosen by the library) use a shift-and-fold hash. Growing ones hold names
//             from model files, which often are consecutive numbers: with the fold, in which characters six apart
//             cancel, a million names would have a few hundred hash values, so they use multiplication and mixing.
// Cost        O(length) expected for each operation.
// Literature  P. J. Weinberger's hash in Aho, Sethi, Ullman, "Compilers", 1986 (shift and fold).
//             G. Fowler, L. C. Noll, K.-P. Vo, FNV-1a; final mix after D. Stafford (SplitMix64).
#include "runtime/name_index.h"
#include "runtime/array.h"
#include "runtime/text_pool.h"
#include <climits>

namespace
{
// Bytes of text allocated at once: with its header less than a page.
constexpr size_t POOL_CHUNK = 4000;

struct NameEntry {
    const char *Text; // in the pool, terminated
    size_t Length;    // characters
    uint32_t Hash;    // of the text, before the modulus
    int Value;
    int Next; // next entry of the chain, or -1
};
} // namespace

struct NameIndex {
    NameGrowth Growth;
    TextPool *Texts;
    Array<int> Buckets; // [prime] first entry of each chain, or -1
    Array<NameEntry> Entries;
};

void name_key(const char *name, char *key)
{
    int k = 0;
    bool leading = true;
    for (int i = 0; i < NAME_KEY_LENGTH && name[i]; i++) {
        const char c = name[i];
        if (c != '_') leading = false;
        if (c == '_' && !leading) continue;
        key[k++] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    key[k] = '\0';
}

namespace
{
bool is_prime(int64_t n)
{
    if (n < 4) return n >= 2;
    if (n % 2 == 0) return false;
    for (int64_t d = 3; d * d <= n; d += 2)
        if (n % d == 0) return false;
    return true;
}

int64_t prime_from(int64_t n)
{
    while (!is_prime(n)) n++;
    return n;
}

uint32_t hash_fold(const char *text, size_t length)
{
    uint32_t h = 0;
    for (size_t k = 0; k < length; k++) {
        h = (h << 4) + static_cast<uint32_t>(static_cast<signed char>(text[k]));
        const uint32_t g = h & 0xf0000000u;
        if (g) h = ((g >> 24) & ~g) ^ (h & ~g);
    }
    return h;
}

uint32_t hash_mix(const char *text, size_t length)
{
    uint64_t h = 0xcbf29ce484222325u;
    for (size_t k = 0; k < length; k++)
        h = (h ^ static_cast<unsigned char>(text[k])) * 0x100000001b3u;
    h = (h ^ (h >> 30)) * 0xbf58476d1ce4e5b9u;
    return static_cast<uint32_t>(h >> 32);
}

uint32_t name_hash(const NameIndex *index, const char *text, size_t length)
{
    return index->Growth == NameGrowth::FIXED ? hash_fold(text, length)
                                              : hash_mix(text, length);
}
} // namespace

NameIndex *name_index_create(int buckets, NameGrowth growth)
{
    NameIndex *index = static_cast<NameIndex *>(MemAllocZero(1, sizeof(NameIndex)));
    if (!index) return nullptr;
    index->Growth = growth;
    index->Texts = PoolCreate(POOL_CHUNK);
    if (!index->Texts || array_assign(&index->Buckets, prime_from(buckets), -1))
        name_index_free(&index);
    return index;
}

void name_index_free(NameIndex **index)
{
    if (!index || !*index) return;
    PoolFree(&(*index)->Texts);
    array_free(&(*index)->Buckets);
    array_free(&(*index)->Entries);
    MemFree(*index);
    *index = nullptr;
}

namespace
{
void chain_entry(NameIndex *index, int k)
{
    NameEntry *entry = &index->Entries[k];
    int *head = &index->Buckets[entry->Hash % index->Buckets.size];
    entry->Next = *head;
    *head = k;
}

void index_grow(NameIndex *index)
{
    if (array_assign(&index->Buckets, prime_from(2 * index->Buckets.size), -1))
        return; // benign: the chains get longer
    for (int64_t k = 0; k < index->Entries.size; k++)
        chain_entry(index, static_cast<int>(k));
}
} // namespace

int name_index_insert_n(NameIndex *index, const char *text, size_t length, int value)
{
    const int64_t n = index->Entries.size;
    if (n == INT_MAX) return OUT_OF_MEMORY;
    const char *copy = PoolCopy(index->Texts, text, length);
    if (!copy) return OUT_OF_MEMORY;
    TRY(array_append(&index->Entries,
                     {copy, length, name_hash(index, text, length), value, -1}));
    chain_entry(index, static_cast<int>(n));
    if (index->Growth == NameGrowth::ALLOWED && n >= index->Buckets.size) index_grow(index);
    return 0;
}

int name_index_insert(NameIndex *index, const char *text, int value)
{
    return name_index_insert_n(index, text, strlen(text), value);
}

int name_index_find_n(const NameIndex *index, const char *text, size_t length)
{
    const uint32_t hash = name_hash(index, text, length);
    int k = index->Buckets[hash % index->Buckets.size];
    for (; k >= 0; k = index->Entries[k].Next) {
        const NameEntry *entry = &index->Entries[k];
        if (entry->Hash == hash && entry->Length == length &&
            !memcmp(entry->Text, text, length))
            return entry->Value;
    }
    return -1;
}

int name_index_find(const NameIndex *index, const char *text)
{
    return name_index_find_n(index, text, strlen(text));
}
