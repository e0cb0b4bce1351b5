// attribute_get.cpp -- reads attributes, for all exported calls
//
// Method   After the tests of the call, either the compute routine of the attribute returns a pointer to the
//          values, which are copied, or its getter writes them. No temporary memory is needed.
// Cost     The elements asked for, and once per solve or update that of the compute routine.
#include "attributes/attribute_access.h"

namespace
{
size_t value_size(AttrType type)
{
    switch (type) {
    case AttrType::CHAR:
        return sizeof(char);
    case AttrType::INT:
        return sizeof(int);
    case AttrType::DOUBLE:
        return sizeof(double);
    case AttrType::STRING:
        break;
    }
    return sizeof(char *);
}

// values[k] = place[element k of the range], for values of any type.
void copy_out(const void *place, size_t size, const ElementRange &range, void *values)
{
    const char *from = static_cast<const char *>(place);
    char *to = static_cast<char *>(values);
    if (range.len == 0 || !to) return;
    if (!range.ind) {
        memcpy(to, from + static_cast<size_t>(range.start) * size,
               static_cast<size_t>(range.len) * size);
        return;
    }
    for (int k = 0; k < range.len; k++)
        memcpy(to + static_cast<size_t>(k) * size,
               from + static_cast<size_t>(range.ind[k]) * size, size);
}

int retrieve(TVXmodel *model, const AttributeRow *row, const ElementRange &range,
             void *values)
{
    if (row->compute) {
        const void *place = nullptr;
        TRY(row->compute(model, row->part, &place));
        copy_out(place, value_size(row->type), range, values);
        return 0;
    }
    if (row->get) return row->get(model, row->part, range, values);
    return TVX_ERROR_DATA_NOT_AVAILABLE;
}

int get_values(TVXmodel *model, const char *name, AttrType type,
               const AttrSelection &selection, void *values)
{
    const AttributeRow *row = nullptr;
    ElementRange range;
    TRY(attribute_head(model, name, type, AttrAccess::GET, selection, &row, &range));
    if (!values && range.len > 0)
        return fail_model(model, TVX_ERROR_NULL_ARGUMENT, Report::FORCE,
                          "NULL 'value' argument supplied");
    return fail_model(model, retrieve(model, row, range, values), Report::KEEP_FIRST,
                      "Unable to retrieve attribute '%s'", name);
}
} // namespace

int attribute_get(TVXmodel *model, const char *name, AttrType type,
                  const AttrSelection &selection, void *values)
{
    if (selection.shape == AttrShape::SCALAR && values) memset(values, 0, value_size(type));
    int code = TVXcheckmodel(model);
    if (!code) code = get_values(model, name, type, selection, values);
    return finish_model(model, code);
}
