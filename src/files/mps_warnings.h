// mps_warnings.h -- warnings of the MPS reader
#pragma once
#include "files/read_warnings.h"

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
    BINARY_CUT,
    MORE_RHS_SETS,
    MORE_RANGE_SETS,
    MORE_BOUND_SETS,
    NO_CONSTRAINTS,
    NO_COLUMNS,
    COUNT_
};
static_assert(static_cast<int>(MpsWarning::COUNT_) <= WARNING_KINDS);

inline void mps_warn(ReadWarnings *warnings, MpsWarning kind, int64_t line, TextSpan name)
{
    warning_note(warnings, static_cast<int>(kind), line, name);
}
// Writes them to the log. The text of the file must still be there.
void mps_warnings_show(const ReadWarnings *warnings, TVXenv *env);
