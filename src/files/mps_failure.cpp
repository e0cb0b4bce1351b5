// mps_failure.cpp -- why an MPS file cannot be read: recorded where an attempt stops, reported for the one that counts
//
// In, out     A section stops with mps_stop; the driver gives the failure of the attempt that read the most lines to
//             mps_report, which writes it to the log and as the text of the error.
#include "env/env.h"
#include "files/file_number.h"
#include "files/mps_reader.h"
#include "runtime/text_number.h"
#include <climits>

// ---- Records ----

namespace
{
constexpr int FIELD_SHOWN = 60; // characters of a field in a reason

void failure_set(MpsReader *reader, MpsFault fault, const char *format, va_list arguments)
{
    MpsFailure *failure = &reader->failure;
    failure->fault = fault;
    failure->line = reader->text.line;
    failure->text = reader->line;
    text_format_v(failure->reason, MPS_REASON_LENGTH, format, arguments);
}
} // namespace

int mps_stop(MpsReader *reader, MpsFault fault, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    failure_set(reader, fault, format, arguments);
    va_end(arguments);
    return TVX_ERROR_FILE_READ;
}

int mps_stop_number(MpsReader *reader, TextSpan field)
{
    char shown[FIELD_SHOWN];
    text_printable(shown, FIELD_SHOWN, field);
    double value = 0.0;
    switch (number_read(field, &value)) {
    case NumberKind::INFINITE:
        return mps_stop(reader, MpsFault::CONTENT, "an infinite value cannot stand here\n");
    case NumberKind::TOO_LARGE:
        return mps_stop(reader, MpsFault::CONTENT, "the number %s is too large\n", shown);
    default:
        return mps_stop(reader, MpsFault::CONTENT, "'%s' is not a number\n", shown);
    }
}

int mps_finite(MpsReader *reader, TextSpan field, double *value)
{
    if (number_read(field, value) == NumberKind::FINITE) return 0;
    return mps_stop_number(reader, field);
}

int mps_unknown(MpsReader *reader, MpsWarning warning, TextSpan name)
{
    if (reader->form == MpsForm::CHECKED)
        return mps_stop(reader, MpsFault::SUSPECT, "unknown name\n");
    mps_warn(&reader->warnings, warning, reader->text.line, name);
    return 0;
}

// ---- Reports ----

namespace
{
constexpr int LINE_SHOWN = 256; // bytes of an offending line in a report

// Errors that belong to a line: the line with its number, then what is wrong with it.
int report_line(TVXenv *env, const MpsFailure *failure)
{
    char shown[LINE_SHOWN];
    const int size = failure->fault == MpsFault::BINARY ? FIELD_SHOWN : LINE_SHOWN;
    text_printable(shown, size, failure->text);
    const int line = failure->line < INT_MAX ? static_cast<int>(failure->line) : INT_MAX;
    if (failure->fault == MpsFault::FIELDS)
        TVXmsg(env, "Error: not free format mps file.\n");
    TVXmsg(env, "Error at line %d:\n%s\n", line, shown);
    TVXmsg(env, "%s", failure->reason);
    return fail(env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                "MPS read error at line %d:\n%s\n%s", line, shown, failure->reason);
}

// Errors about sections.
int report_section(TVXenv *env, const MpsFailure *failure, const char *log_text,
                   const char *message)
{
    const int line = failure->line < INT_MAX ? static_cast<int>(failure->line) : INT_MAX;
    char shown[LINE_SHOWN];
    text_printable(shown, LINE_SHOWN, failure->text);
    const char *indent = *shown ? "\n         " : ""; // no text after the last line
    const char *end = *shown ? "\n" : "";
    TVXmsg(env, "%s", log_text);
    TVXmsg(env, "         line %d: %s%s%s", line, shown, indent, failure->reason);
    return fail(env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST, "%sline %d: %s%s%s", message,
                line, shown, end, failure->reason);
}

int report_no_end(TVXenv *env, const MpsFailure *failure)
{
    char log_text[LINE_SHOWN];
    char message[LINE_SHOWN];
    const int line = failure->line < INT_MAX ? static_cast<int>(failure->line) : INT_MAX;
    text_format(log_text, LINE_SHOWN, "Error: line %d not right or no ENDATA.\n", line);
    text_format(message, LINE_SHOWN, "MPS reader: line %d not right or no ENDATA\n", line);
    return report_section(env, failure, log_text, message);
}

} // namespace

int mps_report(TVXenv *env, const MpsFailure *failure)
{
    switch (failure->fault) {
    case MpsFault::NO_ROWS:
        return report_section(env, failure, "Error: no row section.\n",
                              "MPS reader: no row section\n");
    case MpsFault::NO_COLUMNS:
        return report_section(env, failure, "Error: no column section.\n",
                              "MPS reader: no column section\n");
    case MpsFault::EMPTY:
        return report_section(env, failure, "Error: no columns or no nonzeros.\n",
                              "MPS reader: no columns or no nonzeros\n");
    case MpsFault::NO_END:
        return report_no_end(env, failure);
    default:
        return report_line(env, failure);
    }
}

int mps_report_memory(TVXenv *env)
{
    TVXmsg(env, "Error: out of memory.\n");
    return fail(env, OUT_OF_MEMORY, Report::KEEP_FIRST, "Out of memory in MPS reader\n");
}
