// lp_reader.h -- LpReader, one LP-format file while it is read: shared by the lp_ files of this folder
//
// The text is read in tokens; the "token in hand" is the current one (lp_token.cpp). The driver (lp_read.cpp) handles
// the sections; each has its file: sums of terms (lp_sum.cpp), objective and constraints (lp_constraints.cpp), bounds
// (lp_bounds.cpp), types and sets (lp_lists.cpp). lp_build.cpp creates the model.
#pragma once
#include "files/draft.h"
#include "files/read_warnings.h"

enum class LpKind : unsigned char {
    END,
    NUMBER, // without sign
    NAME,   // words of sections too
    PLUS,
    MINUS,
    TIMES,
    LESS, // the three comparisons, however they are spelled
    GREATER,
    EQUAL,
    COLON,
    DOUBLE_COLON,
    ODD // what no token is
};
// What a NAME may be beside a name.
enum class LpWord : unsigned char {
    NONE,
    MINIMIZE, // the sections, up to END
    MAXIMIZE,
    SUBJECT_TO,
    BOUNDS,
    BINARIES,
    GENERALS,
    SEMIS,
    SOS,
    END,
    INFINITE,
    FREE
};
struct LpToken {
    LpKind kind = LpKind::END;
    LpWord word = LpWord::NONE;
    bool fresh = true; // first of its line
    TextSpan text;
    double value = 0; // of a NUMBER; may be infinite
};

enum class LpWarning {
    UNKNOWN_IN_BOUNDS,
    UNKNOWN_IN_LIST,
    BOUND_TWICE,
    NEGATIVE_UPPER,
    NAME_TWICE,
    EMPTY_RANGE,
    BINARY_CUT,
    BEHIND_END,
    NO_END,
    COUNT_
};

static constexpr int LP_REASON_LENGTH = 160;
struct LpFailure {
    TextSpan at; // the offending text; empty at the end of the file
    char reason[LP_REASON_LENGTH] = "";
};

enum LpColumnFlag {
    LP_LOWER_GIVEN = 1,
    LP_UPPER_GIVEN = 2,
    LP_SET_TO_ONE = 4 // by a line "name = 1"
};

// Rows as they come; sense, rhs and names stand in the draft.
struct LpRows {
    NameTable names;      // those that the file gives
    Array<int> begin;     // [m] first entry
    Array<int> column;    // [entries]
    Array<double> value;  // [entries]
    Array<int> latest;    // [n] the column's latest entry, an index into column, or -1
    Array<int> range_row; // [ranges] ascending
    Array<double> width;  // [ranges] upper less lower side
};

struct LpReader {
    TextFile text;
    const char *next = nullptr; // behind the token in hand
    // the first byte that is not read; it is a control character
    const char *stop = nullptr;
    LpToken token;                 // in hand
    const char *counted = nullptr; // `line` is the number of the line that holds this byte
    int64_t line = 1;
    ModelDraft draft;
    LpRows rows;
    LpFailure failure;
    ReadWarnings warnings;
};

// ---- lp_read.cpp ----
// Records why the reading stops at that text. TVX_ERROR_FILE_READ.
int lp_stop(LpReader *reader, TextSpan at, const char *format, ...) TVX_PRINTF(3, 4);
// At the token in hand.
int lp_stop_here(LpReader *reader, const char *reason);
void lp_warn(LpReader *reader, LpWarning kind, TextSpan name);

// ---- lp_token.cpp ----
void lp_start(LpReader *reader); // the first token is in hand
void lp_next(LpReader *reader);  // at the end of the text END comes again and again
// Whether the token in hand begins a section: not as a name that is compared, multiplied or labels something.
bool lp_at_section(const LpReader *reader);
bool lp_before_colon(const LpReader *reader); // whether a colon follows the token in hand
bool lp_ends_line(const LpReader *reader); // nothing behind the token in hand but a comment
int64_t lp_indent(const LpReader *reader); // bytes before the token in hand on its line
bool lp_compared_ahead(const LpReader *reader); // on the line, without a label between
// A label, "anything without blanks :"; with one, *label is set and the token behind the colon is in hand.
bool lp_take_label(LpReader *reader, TextSpan *label);
inline bool lp_is_comparison(LpKind kind)
{
    return kind == LpKind::LESS || kind == LpKind::GREATER || kind == LpKind::EQUAL;
}

// ---- lp_sum.cpp ----
enum class LpPlace {
    OBJECTIVE,
    LEFT,   // of the first comparison
    MIDDLE, // behind the first comparison, with a plain number before it
    RIGHT, // likewise, with variables before it: a number, or a sum that ends with its line
    LIMIT  // behind the second comparison
};
struct LpSum {
    double constant = 0;    // +-1e30 when infinite
    bool infinite = false;  // the sum is an infinite word
    bool variables = false; // it has terms with variables
};
// Terms go into the last row, on the RIGHT with their signs turned, or into the objective. 0 or a code.
[[nodiscard]] int lp_sum(LpReader *reader, LpPlace place, LpSum *sum);
// A number with signs, or an infinite word. 0 or TVX_ERROR_FILE_READ.
[[nodiscard]] int lp_value(LpReader *reader, double *value, bool *infinite);
[[nodiscard]] int lp_comparison(LpReader *reader,
                                LpKind *sense); // 0 or TVX_ERROR_FILE_READ
// The factor of the signs in hand. *any says whether there was one.
double lp_signs(LpReader *reader, bool *any);

// ---- sections: from behind the section's word to the next one. 0 or a code ----
[[nodiscard]] int lp_objective(LpReader *reader);
[[nodiscard]] int lp_constraints(LpReader *reader);
[[nodiscard]] int lp_bounds(LpReader *reader);
[[nodiscard]] int lp_types(LpReader *reader, LpWord section);
[[nodiscard]] int lp_sets(LpReader *reader);

// ---- lp_build.cpp ----
// The model of a reader that came to the end; frees the text on the way. 0 or a code.
[[nodiscard]] int lp_build(TVXenv *env, LpReader *reader);
// Writes the warnings to the log. The text of the file must still be there.
void lp_warnings_show(const LpReader *reader, TVXenv *env);
