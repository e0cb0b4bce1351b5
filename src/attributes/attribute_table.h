// attribute_table.h -- the constant table of all attributes: one row each, and finding a row by name
//
// A row says how its value is reached. Exactly one of these ways is there:
//   compute   points at the value, or at the array over all elements, as it stands in a record;
//             it may first fill that record
//   get       writes the values asked for, because they are stored in another form
//   neither   the data have no producer: every query is answered "not available"
// `set` takes over values from a caller; all of them only queue or write into start records,
// none changes the model body. Adding an attribute is adding a row and its routines
// (attribute_routines.h).
#pragma once
#include "model/model.h"
#include "model/pending.h"

enum class AttrType { CHAR = 0, INT = 1, DOUBLE = 2, STRING = 3 };
enum class AttrKind { MODEL = 0, VARIABLE = 1, CONSTRAINT = 2, SOS = 3 };

// `part` tells the routine of a family which of its members is meant. Values are arrays of
// the row's type (char, int, double, const char *). All return 0 or a code, OUT_OF_MEMORY and
// TVX_ERROR_DATA_NOT_AVAILABLE without text, others with their own.
using AttrCompute = int (*)(TVXmodel *model, int part, const void **place);
using AttrGetter = int (*)(TVXmodel *model, int part, ElementRange range, void *values);
using AttrSetter = int (*)(TVXmodel *model, int part, ElementRange range,
                           const void *values);

struct AttributeRow {
    const char *name;    // as documented
    AttrType type;       // of one value
    AttrKind kind;       // what it belongs to: the model, or each element of a kind
    AttrCompute compute; // or null
    AttrGetter get;      // or null
    AttrSetter set;      // or null: not settable
    bool settable;       // a caller may set it
    bool solution;       // lost when the content changes
    int part;            // handed to the routines
};

static constexpr int ATTRIBUTE_COUNT = 96;
// NOLINTNEXTLINE(bugprone-dynamic-static-initializers): its definition is constexpr
extern const AttributeRow attribute_rows[ATTRIBUTE_COUNT];

// The row of a name, found by its key (name_index.h), or null.
const AttributeRow *attribute_find(const char *name);
