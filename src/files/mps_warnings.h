// mps_warnings.h -- what an MPS read found odd and went on from: counted by kind, shown once at the end
#pragma once
#include "files/text_file.h"
#include "tarvex.h"

enum class MpsWarning {
    MORE_FREE_ROWS,
    NO_OBJECTIVE,
    MARKER,
    DUPLICATE_ENTRY,
    UNKNOWN_ROW_IN_COLUMNS,
    SPLIT_COLUMN,
    DUPLICATE_RHS,
    UNKNOWN_ROW_IN_RHS,
    NO_RHS,
    DUPLICATE_RANGE,
    UNKNOWN_ROW_IN_RANGES,
    RANGE_OF_INFINITE,
    UNKNOWN_COLUMN_IN_BOUNDS,
    DUPLICATE_BOUND,
    INTEGER_MINUS_INFINITY,
    MORE_RHS_SETS,
    MORE_RANGE_SETS,
    MORE_BOUND_SETS,
    NO_CONSTRAINTS,
    NO_COLUMNS,
    COUNT_
};
static constexpr int MPS_WARNING_KINDS = static_cast<int>(MpsWarning::COUNT_);
static constexpr int MPS_WARNING_SHOWN =
    5; // occurrences of a kind that are shown with line and name

struct MpsWarningPlace {
    int64_t line = 0; // 0: no single line
    TextSpan name;    // in the text of the file; may be empty
};
struct MpsWarnings {
    int64_t count[MPS_WARNING_KINDS] = {};
    MpsWarningPlace place[MPS_WARNING_KINDS][MPS_WARNING_SHOWN];
};
void mps_warn(MpsWarnings *warnings, MpsWarning kind, int64_t line, TextSpan name);
// Writes them to the log. The text of the file must still be there.
void mps_warnings_show(const MpsWarnings *warnings, TVXenv *env);
