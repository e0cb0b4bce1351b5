// name_table.h -- NameTable, a hash table of names, numbered in order of insertion
//
// For the millions of look-ups of a file reader; names keep their case and may be any bytes.
#pragma once
#include "runtime/array.h"

struct TableName {
    const char *text; // owned by the caller, lives as long as the table
    int length;       // bytes
};
// Names of up to 16 bytes are told apart by their slot alone.
struct TableSlot {
    uint32_t tag;  // 24 bits of hash, 8 bits of length (255 for more)
    int index;     // into entries, or -1: empty
    uint64_t head; // first 8 bytes of a name longer than 8, else 0
    uint64_t tail; // last 8 bytes, or all
};
// Invariant: slots is empty or has a power of two entries, at most 5/8 of them in use; linear probing.
struct NameTable {
    Array<TableName> entries; // in order of number
    Array<TableSlot> slots;
};

static constexpr int NAME_ABSENT = -1;
// A name prepared for a look-up in one table: its slot is on the way to the cache.
struct TableKey {
    TableSlot slot; // index unused
    uint64_t hash;
    const char *text;
    int64_t length;
};
TableKey name_table_key(const NameTable *table, const char *text, int64_t length);
int name_table_find_key(const NameTable *table, const TableKey *key);
// The number of the name, or NAME_ABSENT.
int name_table_find(const NameTable *table, const char *text, int64_t length);
// Appends a name that is not in the table as number entries.size. Text must stay where it is. 0 or OUT_OF_MEMORY; the
// table is unchanged on failure.
[[nodiscard]] int name_table_append(NameTable *table, const char *text, int64_t length);
