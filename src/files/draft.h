// draft.h -- ModelDraft, the model data that the readers of model files collect
//
// Columns and sets grow while a file is read. At its end the reader completes the matrix by columns and the rows, and
// adds the variables of ranges.
#pragma once
#include "files/name_table.h"
#include "files/text_file.h"
#include "runtime/text_pool.h"
#include "tarvex.h"

static constexpr double DRAFT_INFINITY = 1e30; // an infinite bound or side
static constexpr double DRAFT_HUGE = 1e20;     // a side of this magnitude is infinite, too

struct DraftColumns {
    NameTable names;            // texts in the draft's pool, terminated
    Array<double> obj;          // [n]
    Array<double> lb;           // [n] +-1e30 when infinite
    Array<double> ub;           // [n]
    Array<char> type;           // [n] 'C' 'I' 'B' 'S' 'N'
    Array<unsigned char> flags; // [n] bits, each reader's own
    Array<int> entry_row;       // [entries]
    Array<double> entry_value;  // [entries]
};

struct DraftSets {
    Array<int> type;      // [sets] 1 or 2
    Array<int> begin;     // [sets]
    Array<int> member;    // column numbers
    Array<double> weight; // [members]
    Array<int> mark;      // [columns, or fewer] the last set that holds the column, or -1
};

struct ModelDraft {
    TextPool *pool = nullptr; // texts of names
    int sense = 1;            // -1 maximise
    double objcon = 0;
    DraftColumns columns;
    DraftSets sets;
    int64_t range_number = 0; // the last that made a range variable's name unique
    // Set at the end of the file:
    const char *name = nullptr;
    Array<int> vbeg;               // [n + 1] of the entries; grows with range variables
    Array<char> row_sense;         // [m] '<' '>' '=', or 'L' 'G' 'E'
    Array<double> rhs;             // [m]
    Array<const char *> row_names; // [m] null: by number
};

[[nodiscard]] int draft_open(ModelDraft *draft); // 0 or OUT_OF_MEMORY
void draft_free(ModelDraft *draft);              // twice is harmless

// A new column without bounds given: [0, ub]. 0 or OUT_OF_MEMORY, then the draft may only be freed.
[[nodiscard]] int draft_column(ModelDraft *draft, TextSpan name, char type, double ub);
inline int draft_find(const ModelDraft *draft, TextSpan name) // or NAME_ABSENT
{
    return name_table_find(&draft->columns.names, name.begin, span_length(name));
}

[[nodiscard]] int draft_set_begin(DraftSets *sets, int type); // 0 or OUT_OF_MEMORY
// A member of the last set; *twice, and nothing added, when the set holds the column. 0 or OUT_OF_MEMORY.
[[nodiscard]] int draft_set_member(DraftSets *sets, int column, double weight, bool *twice);

// Turns row i, whose rhs is its upper side, into a range of that width: an equation with one more variable between 0
// and the width, named "Rg" and the row's name. 0 or OUT_OF_MEMORY.
[[nodiscard]] int draft_range(ModelDraft *draft, int i, double width);
