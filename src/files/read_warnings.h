// read_warnings.h -- ReadWarnings, warnings of a reader: counted by kind, written to the log at the end
#pragma once
#include "files/text_file.h"
#include "tarvex.h"

static constexpr int WARNING_KINDS = 24; // room for those of any reader
// occurrences of a kind that are shown with line and name
static constexpr int WARNING_SHOWN = 5;

struct WarningPlace {
    int64_t line = 0; // 0: no single line
    TextSpan name;    // in the text of the file; may be empty
};
struct ReadWarnings {
    int64_t count[WARNING_KINDS] = {};
    WarningPlace place[WARNING_KINDS][WARNING_SHOWN];
};
// Kinds are each reader's own, from 0.
void warning_note(ReadWarnings *warnings, int kind, int64_t line, TextSpan name);
inline bool warning_is_shown(const ReadWarnings *warnings,
                             int kind) // the next of this kind
{
    return warnings->count[kind] < WARNING_SHOWN;
}

struct WarningText {
    const char *text;
    // if given, `text`, the name and this are printed for each occurrence
    const char *behind = nullptr;
};
// Writes them to the log in the order of kinds. The text of the file must still be there.
void warnings_show(const ReadWarnings *warnings, const WarningText *texts, int kinds,
                   TVXenv *env);
