// undo.cpp -- the arena of the undo stack
#include "presolve/undo.h"
#include <algorithm>
#include <cstddef>

namespace
{
constexpr int64_t ALIGNMENT = 16;

int new_block(UndoStack *stack, int64_t bytes)
{
    const int64_t size = std::max(stack->block_size, bytes) + ALIGNMENT;
    char *block = static_cast<char *>(MemAlloc(static_cast<size_t>(size)));
    if (!block) return OUT_OF_MEMORY;
    ArenaBlock *head = reinterpret_cast<ArenaBlock *>(block);
    head->next = stack->blocks;
    stack->blocks = head;
    stack->at = block + ALIGNMENT;
    stack->end = block + size;
    return 0;
}
} // namespace

UndoRecord *undo_push(UndoStack *stack, int kind, int count)
{
    const int64_t entries = std::max(count, 1);
    int64_t bytes = static_cast<int64_t>(offsetof(UndoRecord, entry)) +
                    entries * static_cast<int64_t>(sizeof(UndoEntry));
    bytes = (bytes + ALIGNMENT - 1) / ALIGNMENT * ALIGNMENT;
    if (stack->end - stack->at < bytes && new_block(stack, bytes)) return nullptr;
    UndoRecord *record = reinterpret_cast<UndoRecord *>(stack->at);
    stack->at += bytes;
    *record = UndoRecord{};
    record->next = stack->head;
    record->kind = kind;
    record->col = record->row = record->other = -1;
    record->count = record->split = count;
    stack->head = record;
    return record;
}

void undo_free(UndoStack *stack)
{
    for (ArenaBlock *block = stack->blocks; block;) {
        ArenaBlock *next = block->next;
        MemFree(block);
        block = next;
    }
    *stack = UndoStack{};
}
