// attribute_access.h -- the two functions that read and set attributes, for all exported calls
//
// The exported calls differ in the value type and in the way of selecting elements. Both are
// arguments here, so that every exported call is one line (attribute_calls.cpp).
#pragma once
#include "attributes/attribute_table.h"

enum class AttrShape { SCALAR, ELEMENT, ARRAY, LIST };

// Selection of elements in a call.
struct AttrSelection {
    AttrShape shape = AttrShape::SCALAR;
    int start = 0;            // ELEMENT: the index; ARRAY: the first
    int len = 1;              // ARRAY: negative for all; LIST: entries of ind
    const int *ind = nullptr; // LIST: null for the first len elements
};
inline AttrSelection attr_scalar()
{
    return {};
}
inline AttrSelection attr_element(int index)
{
    return {AttrShape::ELEMENT, index, 1, nullptr};
}
inline AttrSelection attr_array(int start, int len)
{
    return {AttrShape::ARRAY, start, len, nullptr};
}
inline AttrSelection attr_list(int len, const int *ind)
{
    return {AttrShape::LIST, 0, len, ind};
}

// The row of a name, or a code with its text.
[[nodiscard]] int attribute_row(TVXmodel *model, const char *name,
                                const AttributeRow **row);

enum class AttrAccess { GET, SET };
// Everything that is tested before a value is touched: name, type, shape, whether it
// may be set, and the indices. 0 with the row and the elements, or a code with its text.
[[nodiscard]] int attribute_head(TVXmodel *model, const char *name, AttrType type,
                                 AttrAccess access, const AttrSelection &selection,
                                 const AttributeRow **row, ElementRange *range);

// `values` is an array of the type with one entry per element named. 0 or a code with its
// text; values are unspecified after a failure, and nothing is set by a failed set.
int attribute_get(TVXmodel *model, const char *name, AttrType type,
                  const AttrSelection &selection, void *values);
int attribute_set(TVXmodel *model, const char *name, AttrType type,
                  const AttrSelection &selection, const void *values);
