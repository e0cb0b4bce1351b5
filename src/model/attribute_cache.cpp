// attribute_cache.cpp -- make, clear and free the derived values behind a model's attributes
//
// Invariant   A set bit of `have` means that its arrays have the size of the body. Clearing keeps their memory: the
//             next solve of the same model fills them again.
// Cost        Making and clearing O(1), but for the default names, whose texts are freed at a clear.
#include "model/attribute_cache.h"

int attributes_make(TVXmodel *model)
{
    if (model->attributes) return 0;
    model->attributes =
        static_cast<AttributeTable *>(MemAllocZero(1, sizeof(AttributeTable)));
    return model->attributes ? 0 : OUT_OF_MEMORY;
}

static void forget_names(AttributeTable *table)
{
    array_free(&table->varnames);
    array_free(&table->constrnames);
    PoolFree(&table->names);
}

void attributes_free(AttributeTable *table)
{
    if (!table) return;
    forget_names(table);
    *table = AttributeTable{};
    MemFree(table);
}

void attributes_clear(TVXmodel *model)
{
    if (!model->attributes) return;
    model->attributes->have = 0;
    forget_names(model->attributes);
}

void attributes_clear_solution(TVXmodel *model)
{
    if (model->attributes) model->attributes->have &= HAVE_STATISTICS;
}
