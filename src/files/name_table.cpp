// name_table.cpp -- NameTable, a hash table of names, numbered in order of insertion
//
// Method      Open addressing with linear probing. A slot holds 16 bytes of the name itself, so that a look-up in a
//             large table costs one cache miss, and not one more for the entry and one for its text: with 300,000 names
//             that was most of the time of a reader. The hash folds 8 bytes at a time through a 64 by 64 bit
//             multiplication whose high and low halves are mixed.
// Cost        O(length) per look-up.
// Literature  D. E. Knuth, The Art of Computer Programming 3, section 6.4 (algorithm L).
#include "files/name_table.h"
#include <climits>
#include <cstring>

namespace
{
constexpr int64_t FIRST_SLOTS = 64;

constexpr uint64_t MULTIPLIER = 0x9e3779b97f4a7c15u; // 2^64 / golden ratio, odd

constexpr uint64_t SEED = 0xd6e8feb86659fd93u; // an odd number with mixed bits

uint64_t fold(uint64_t a, uint64_t b)
{
    const unsigned __int128 product = static_cast<unsigned __int128>(a) * b;
    return static_cast<uint64_t>(product) ^ static_cast<uint64_t>(product >> 64);
}

template<class Word> uint64_t load(const char *text)
{
    Word word;
    memcpy(&word, text, sizeof word);
    return word;
}

// The last 0 to 8 bytes of a name as one word; different tails of one length give different words.
uint64_t load_tail(const char *text, int64_t length)
{
    if (length >= 8) return load<uint64_t>(text + length - 8);
    if (length >= 4) return load<uint32_t>(text) | load<uint32_t>(text + length - 4) << 32;
    uint64_t word = 0;
    for (int64_t k = 0; k < length; k++)
        word = word << 8 | static_cast<unsigned char>(text[k]);
    return word;
}

constexpr int64_t SLOT_BYTES = 16; // of a name that its slot holds

constexpr int64_t LENGTH_MASK = 255;

// What a slot of the name would hold, and the full hash.
uint64_t slot_of_name(const char *text, int64_t length, TableSlot *slot)
{
    slot->tail = load_tail(text, length);
    slot->head = length > 8 ? load<uint64_t>(text) : 0;
    uint64_t h = fold(SEED ^ static_cast<uint64_t>(length) ^ slot->tail, MULTIPLIER);
    h = fold(h ^ slot->head, MULTIPLIER);
    for (int64_t k = 8; k + 8 < length; k += 8)
        h = fold(h ^ load<uint64_t>(text + k), MULTIPLIER);
    const int64_t shown = length < LENGTH_MASK ? length : LENGTH_MASK;
    slot->tag = static_cast<uint32_t>(h >> 40) << 8 | static_cast<uint32_t>(shown);
    return h;
}

void slot_fill(NameTable *table, const TableSlot *slot, uint64_t hash)
{
    const int64_t mask = table->slots.size - 1;
    int64_t k = static_cast<int64_t>(hash) & mask;
    while (table->slots.data[k].index >= 0) k = (k + 1) & mask;
    table->slots.data[k] = *slot;
}

bool same_text(const NameTable *table, int index, const char *text, int64_t length)
{
    const TableName *name = &table->entries.data[index];
    return name->length == length && !memcmp(name->text, text, static_cast<size_t>(length));
}
} // namespace

TableKey name_table_key(const NameTable *table, const char *text, int64_t length)
{
    TableKey key;
    key.hash = slot_of_name(text, length, &key.slot);
    key.text = text;
    key.length = length;
    if (table->slots.size)
        __builtin_prefetch(table->slots.data +
                           (static_cast<int64_t>(key.hash) & (table->slots.size - 1)));
    return key;
}

int name_table_find_key(const NameTable *table, const TableKey *key)
{
    if (!table->slots.size) return NAME_ABSENT;
    const int64_t mask = table->slots.size - 1;
    const TableSlot *slots = table->slots.data;
    int64_t k = static_cast<int64_t>(key->hash) & mask;
    for (; slots[k].index >= 0; k = (k + 1) & mask) {
        const TableSlot *slot = &slots[k];
        if (slot->tag != key->slot.tag || slot->tail != key->slot.tail ||
            slot->head != key->slot.head)
            continue;
        if (key->length <= SLOT_BYTES ||
            same_text(table, slot->index, key->text, key->length))
            return slot->index;
    }
    return NAME_ABSENT;
}

int name_table_find(const NameTable *table, const char *text, int64_t length)
{
    const TableKey key = name_table_key(table, text, length);
    return name_table_find_key(table, &key);
}

namespace
{
void add_slot(NameTable *table, int index)
{
    TableSlot slot;
    const TableName *name = &table->entries.data[index];
    const uint64_t hash = slot_of_name(name->text, name->length, &slot);
    slot.index = index;
    slot_fill(table, &slot, hash);
}

// Twice the slots. A failure leaves the table as it is.
int table_grow(NameTable *table)
{
    Array<TableSlot> slots;
    const int64_t n = table->slots.size ? 2 * table->slots.size : FIRST_SLOTS;
    TRY(array_assign(&slots, n, TableSlot{0, -1, 0, 0}));
    table->slots = static_cast<Array<TableSlot> &&>(slots);
    for (int64_t k = 0; k < table->entries.size; k++) add_slot(table, static_cast<int>(k));
    return 0;
}
} // namespace

int name_table_append(NameTable *table, const char *text, int64_t length)
{
    if (length > INT_MAX || table->entries.size >= INT_MAX) return OUT_OF_MEMORY;
    if (8 * (table->entries.size + 1) > 5 * table->slots.size) TRY(table_grow(table));
    TRY(array_append(&table->entries, TableName{text, static_cast<int>(length)}));
    add_slot(table, static_cast<int>(table->entries.size - 1));
    return 0;
}
