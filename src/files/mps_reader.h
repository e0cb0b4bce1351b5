// mps_reader.h -- MpsReader, one MPS file while it is read: shared by the mps_ files of this folder
//
// A data line is first put into a card (mps_card.cpp: the fields of the fixed form, whatever the form of the file),
// then processed by its section (mps_rows.cpp, mps_columns.cpp, mps_rhs.cpp, mps_bounds.cpp, mps_sos.cpp). The driver
// (mps_read.cpp) handles the order of sections and the attempts; mps_build.cpp creates the model.
//
// Attempts   CHECKED   free form, but stops at the first line that free form cannot explain, or fixed form might
//                      explain better; nearly all files end here
//            FIXED     strictly by column positions: the only way to read names with blanks and blank fields
//            FREE      free form to the end, for files that stopped CHECKED and are not fixed either
#pragma once
#include "files/draft.h"
#include "files/mps_warnings.h"
#include "files/name_table.h"

enum class MpsForm { CHECKED, FIXED, FREE };
enum class MpsSection { HEAD, SENSE, OBJNAME, ROWS, COLUMNS, RHS, RANGES, BOUNDS, SOS };

// Why an attempt stopped. Each has its texts in mps_failure.cpp.
enum class MpsFault {
    NONE,
    SUSPECT,    // CHECKED only: an unknown name, or a line that fixed form explains too
    FIELDS,     // the number or places of the fields fit neither form
    CONTENT,    // a field has no sense where it stands
    BINARY,     // the line holds a control character
    NO_ROWS,    // something else stands where ROWS must
    NO_COLUMNS, // likewise COLUMNS
    EMPTY,      // every entry belongs to a row that was not declared
    NO_END      // a section line with an unknown or misplaced name, or no ENDATA
};
static constexpr int MPS_REASON_LENGTH = 160;
struct MpsFailure {
    MpsFault fault = MpsFault::NONE;
    int64_t line = 0;
    TextSpan text; // the line
    // what is wrong, for a reader of the log; may be empty
    char reason[MPS_REASON_LENGTH] = "";
};

// Field numbers of the fixed form in brackets.
struct MpsCard {
    TextSpan type;       // [1] row type, bound type
    TextSpan name;       // [2] column, or set; may be empty
    TextSpan entry[2];   // [3], [5] row, or column of a bound
    TextSpan value[2];   // [4], [6] empty where missing
    int entries = 0;     // pairs in use, 0 to 2
    bool marker = false; // COLUMNS: a marker line; value[0] says which
};

// The value of a row's `place` that is no constraint number.
enum { PLACE_OBJECTIVE = -1, PLACE_DROPPED = -2 };
// What an entry needs of its row, side by side.
struct MpsPlace {
    int place; // constraint number, or PLACE_
    // the row's latest entry, an index into entry_row, or -1; may be of an older column
    int mark;
};

struct MpsRows {
    NameTable names;       // every row of the section, N rows too
    Array<MpsPlace> place; // [names]
    Array<char> type;      // [m] 'L' 'G' 'E'
    Array<double> rhs;     // [m]
    Array<double> range;   // [m] 0 without
    Array<char> given;     // [m] bit 1: rhs given, bit 2: range given
    bool has_objective = false;
};
enum MpsRowGiven { RHS_GIVEN = 1, RANGE_GIVEN = 2 };

enum MpsColumnFlag {
    LOWER_GIVEN = 1,
    UPPER_GIVEN = 2,
    COST_GIVEN = 4,     // has an objective entry
    MARKED_INTEGER = 8, // stands between markers
    MINUS_INFINITY = 16 // lower bound from an MI line
};
// A column of the draft is one segment of its entries, or several when the file splits it.
struct MpsSegments {
    Array<int> column;         // [segments]
    Array<int> begin;          // [segments] first entry
    int64_t n_left_out = 0;    // entries of undeclared rows
    int current = -1;          // the column of the last line, or -1
    bool split = false;        // some column has two segments
    bool integer_mode = false; // between markers
};

// RHS, RANGES and BOUNDS may hold several named sets: the first counts.
struct MpsSet {
    TextSpan first;        // its name; empty until a line names one
    bool skipping = false; // the last line belonged to another set
};

struct MpsReader {
    TextFile text;
    MpsForm form = MpsForm::CHECKED;
    MpsSection section = MpsSection::HEAD;
    MpsSection back = MpsSection::HEAD; // section to return to after OBJSENSE or OBJNAME
    TextSpan line;                      // in work
    TextSpan model_name;                // in text
    TextSpan objective_name;            // from OBJNAME, empty without
    bool objcon_given = false;
    bool seen_rows = false, seen_columns = false, seen_rhs = false;
    MpsRows rows;
    ModelDraft draft;
    MpsSegments segments;
    MpsSet rhs_set, range_set, bound_set;
    MpsFailure failure;
    ReadWarnings warnings;
};

// ---- mps_failure.cpp ----
// Records why the attempt stops at the line in work. TVX_ERROR_FILE_READ.
int mps_stop(MpsReader *reader, MpsFault fault, const char *format, ...) TVX_PRINTF(3, 4);
// Likewise for a field that should be a number; names the field.
int mps_stop_number(MpsReader *reader, TextSpan field);
// A finite number, else a failure. 0 or TVX_ERROR_FILE_READ.
[[nodiscard]] int mps_finite(MpsReader *reader, TextSpan field, double *value);
// An unknown name: in CHECKED form a reason to try fixed form, else a warning. 0 or TVX_ERROR_FILE_READ.
[[nodiscard]] int mps_unknown(MpsReader *reader, MpsWarning warning, TextSpan name);
// Writes the failure to the log and records its text. TVX_ERROR_FILE_READ.
int mps_report(TVXenv *env, const MpsFailure *failure);
int mps_report_memory(TVXenv *env); // the same for OUT_OF_MEMORY

// ---- mps_read.cpp ----
// Whether a line with this set name counts.
bool mps_set_counts(MpsReader *reader, MpsSet *set, TextSpan name, MpsWarning warning);

// ---- mps_card.cpp ----
static constexpr int MPS_TOKENS = 6; // more than any line needs
struct MpsTokens {
    TextSpan token[MPS_TOKENS];
    int count = 0; // MPS_TOKENS + 1 when there are more
};
void mps_split(TextSpan line, MpsTokens *tokens); // at white space
int mps_stop_fields(MpsReader *reader); // the wrong number of fields. TVX_ERROR_FILE_READ
// The line in work as a card of the section in work. 0 or TVX_ERROR_FILE_READ. Not for SOS.
[[nodiscard]] int mps_card(MpsReader *reader, MpsCard *card);
// Strictly by column positions; false when the line does not fit them, then *card is undefined.
bool mps_fixed_fields(TextSpan line, MpsCard *card);

// ---- sections: take up the line in work. 0, TVX_ERROR_FILE_READ or OUT_OF_MEMORY ----
[[nodiscard]] int mps_rows_line(MpsReader *reader);
[[nodiscard]] int mps_columns_line(MpsReader *reader);
[[nodiscard]] int mps_rhs_line(MpsReader *reader);
[[nodiscard]] int mps_ranges_line(MpsReader *reader);
[[nodiscard]] int mps_bounds_line(MpsReader *reader);
[[nodiscard]] int mps_sos_line(MpsReader *reader);
// The objective row is the one that OBJNAME names. 0 or TVX_ERROR_FILE_READ.
[[nodiscard]] int mps_rows_choose_objective(MpsReader *reader);
inline int mps_find_column(const MpsReader *reader, TextSpan name)
{
    return draft_find(&reader->draft, name);
}
inline int mps_find_row(const MpsReader *reader, TextSpan name)
{
    return name_table_find(&reader->rows.names, name.begin, span_length(name));
}
// Bound types that never carry a value, may, or must; or the type is unknown. (mps_bounds.cpp)
enum class MpsBoundValue { UNKNOWN, NONE, OPTIONAL, REQUIRED };
MpsBoundValue mps_bound_value(TextSpan type);

// ---- mps_build.cpp ----
// The model of a reader that came to the end; frees the text on the way. 0 or a code, with the message recorded.
[[nodiscard]] int mps_build(TVXenv *env, MpsReader *reader);
