// attribute_names.cpp -- attributes that are texts: names of the model, its variables and constraints
//
// Method      For a stored name the pointer to its text is returned. A default name ("C5", "R5") is
//             created when it is first asked for, in a pool of the attribute table, so that every
//             returned text is valid until the next update of the model.
// Cost        The elements asked for, and once one pointer per element.
#include "attributes/attribute_routines.h"

namespace
{
constexpr size_t NAME_CHUNK = 4096; // bytes of pool taken at a time
} // namespace

int get_modelname(TVXmodel *model, int, ElementRange, void *values)
{
    const char *name = model->body->modelname;
    *static_cast<const char **>(values) = name ? name : "";
    return 0;
}

int set_modelname(TVXmodel *model, int, ElementRange, const void *values)
{
    return pending_set_modelname(model, *static_cast<const char *const *>(values));
}

namespace
{
// The text of a default name, kept in *kept. 0 or OUT_OF_MEMORY.
int keep_default(AttributeTable *table, const char *text, const char **kept)
{
    if (!table->names) table->names = PoolCreate(NAME_CHUNK);
    if (!table->names) return OUT_OF_MEMORY;
    *kept = PoolCopy(table->names, text, strlen(text));
    return *kept ? 0 : OUT_OF_MEMORY;
}
} // namespace

int get_names(TVXmodel *model, int part, ElementRange range, void *values)
{
    const bool of_vars = part == PART_OF_VARS;
    const ModelBody *body = model->body;
    TRY(attributes_make(model));
    AttributeTable *table = model->attributes;
    Array<const char *> *defaults = of_vars ? &table->varnames : &table->constrnames;
    for (int k = 0; k < range.len; k++) {
        const int e = element_at(range, k);
        char buffer[DEFAULT_NAME_LENGTH];
        const char *name =
            of_vars ? var_name(body, e, buffer) : constr_name(body, e, buffer);
        if (name == buffer) {
            const int count = of_vars ? body->numvars : body->numconstrs;
            if (!defaults->size) TRY(array_assign<const char *>(defaults, count, nullptr));
            const char **kept = &(*defaults)[e];
            if (!*kept) TRY(keep_default(table, buffer, kept));
            name = *kept;
        }
        static_cast<const char **>(values)[k] = name;
    }
    return 0;
}

int set_names(TVXmodel *model, int part, ElementRange range, const void *values)
{
    const auto *names = static_cast<const char *const *>(values);
    return part == PART_OF_VARS ? pending_set_varnames(model, range, names)
                                : pending_set_constrnames(model, range, names);
}
