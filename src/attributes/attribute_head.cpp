// attribute_head.cpp -- the tests at the start of every attribute call
//
// In, out   the arguments of a call -> the row of the table and the range of elements, or an error code
//           whose text describes what is wrong with the call. Nothing else is read or changed.
#include "attributes/attribute_access.h"
#include "attributes/attribute_texts.h"

namespace
{
constexpr int REFUSED = TVX_ERROR_UNKNOWN_ATTRIBUTE; // unknown, or not for this call

const char *type_word(AttrType type)
{
    return attribute_texts::types[static_cast<int>(type)];
}

int element_count(const ModelBody *body, AttrKind kind)
{
    switch (kind) {
    case AttrKind::VARIABLE:
        return body->numvars;
    case AttrKind::CONSTRAINT:
        return body->numconstrs;
    case AttrKind::SOS:
        return body->numsos;
    case AttrKind::MODEL:
        break;
    }
    return 1;
}

int index_failure(TVXmodel *model, const char *name, int index)
{
    return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::FORCE,
                      "Index %d out of range for attribute '%s'", index, name);
}

// Elements by list: each index, or without indices the count of the first ones.
int list_range(TVXmodel *model, const char *name, const AttrSelection &selection, int count,
               ElementRange *range)
{
    const int len = selection.len;
    if (len < 0)
        return fail_model(model, TVX_ERROR_INVALID_ARGUMENT, Report::FORCE,
                          "Negative length %d for attribute '%s'", len, name);
    if (!selection.ind && len > count)
        return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::FORCE,
                          "Index out of range for attribute '%s'", name);
    for (int k = 0; selection.ind && k < len; k++) {
        const int index = selection.ind[k];
        if (index < 0 || index >= count) return index_failure(model, name, index);
    }
    *range = {0, len, selection.ind};
    return 0;
}

int array_range(TVXmodel *model, const char *name, const AttrSelection &selection,
                int count, ElementRange *range)
{
    if (selection.len < 0) {
        *range = {0, count, nullptr};
        return 0;
    }
    if (selection.start < 0 || int64_t{selection.start} + selection.len > count)
        return fail_model(model, TVX_ERROR_INDEX_OUT_OF_RANGE, Report::FORCE,
                          "Index out of range for attribute '%s'", name);
    *range = {selection.start, selection.len, nullptr};
    return 0;
}

int select(TVXmodel *model, const char *name, const AttrSelection &selection, AttrKind kind,
           ElementRange *range)
{
    const int count = element_count(model->body, kind);
    switch (selection.shape) {
    case AttrShape::ARRAY:
        return array_range(model, name, selection, count, range);
    case AttrShape::LIST:
        return list_range(model, name, selection, count, range);
    case AttrShape::ELEMENT:
        if (selection.start < 0 || selection.start >= count)
            return index_failure(model, name, selection.start);
        break;
    case AttrShape::SCALAR:
        break;
    }
    *range = {selection.start, 1, nullptr};
    return 0;
}
} // namespace

int attribute_row(TVXmodel *model, const char *name, const AttributeRow **row)
{
    *row = nullptr;
    if (!name)
        return fail_model(model, TVX_ERROR_NULL_ARGUMENT, Report::FORCE,
                          "NULL 'name' argument supplied");
    *row = attribute_find(name);
    if (*row) return 0;
    return fail_model(model, REFUSED, Report::FORCE, "Unknown attribute '%s'", name);
}

int attribute_head(TVXmodel *model, const char *name, AttrType type, AttrAccess access,
                   const AttrSelection &selection, const AttributeRow **row,
                   ElementRange *range)
{
    const int code = attribute_row(model, name, row);
    if (code || !*row) return code;
    const AttrType row_type = (*row)->type;
    if (row_type != type)
        return fail_model(model, REFUSED, Report::FORCE,
                          "Requested %s attribute '%s' is of type %s", type_word(type),
                          name, type_word(row_type));
    const bool scalar_call = selection.shape == AttrShape::SCALAR;
    const bool scalar_row = (*row)->kind == AttrKind::MODEL;
    if (scalar_call && !scalar_row)
        return fail_model(model, REFUSED, Report::FORCE,
                          "You tried to access array attribute '%s' as a scalar", name);
    if (!scalar_call && scalar_row)
        return fail_model(model, REFUSED, Report::FORCE,
                          "You tried to access scalar attribute '%s' as an array", name);
    if (access == AttrAccess::SET && !(*row)->settable)
        return fail_model(model, REFUSED, Report::FORCE, "Attribute '%s' may not be set",
                          name);
    return select(model, name, selection, (*row)->kind, range);
}
