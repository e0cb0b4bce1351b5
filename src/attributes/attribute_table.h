// attribute_table.h -- the constant table of all attributes: one row each, and finding a row by name
//
// A row names the routine that returns its values. Exactly one of these cases holds:
//   compute   returns a pointer to the value, or to the array over all elements, in a record; may
//             first fill that record
//   get       writes the values asked for, because they are stored in another form
//   neither   the library does not compute them: every query returns "not available"
// `set` takes values from a caller. Setters add to the pending changes or write start records;
// none changes the model body. A new attribute needs a row, its routines
// (attribute_routines.h) and a text (attribute_texts.h).
#pragma once
#include "model/model.h"
#include "model/pending.h"

enum class AttrType { CHAR = 0, INT = 1, DOUBLE = 2, STRING = 3 };
enum class AttrKind { MODEL = 0, VARIABLE = 1, CONSTRAINT = 2, SOS = 3 };

// `part` selects the member if a routine serves several attributes. Values are arrays of the row's type (char, int,
// double, const char *). All return 0 or a code: OUT_OF_MEMORY and TVX_ERROR_DATA_NOT_AVAILABLE without an error text,
// others with one.
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
