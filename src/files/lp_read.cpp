// lp_read.cpp -- the driver of the LP-format reader: sections and failures
//
// Problem     Read an algebraic text into a model, or report where and why that is not possible. Nothing is guessed:
//             text that is ambiguous or looks like another format is an error.
// Order       The objective, the constraints, then bounds, types and sets in any order, also repeatedly; "end" or the
//             end of the file closes it.
// Cost        One pass over the text, then a counting sort of the entries into columns.
#include "env/env.h"
#include "files/files.h"
#include "files/lp_names.h"
#include "runtime/text_number.h"
#include <climits>
#include <utility>

// ---- Failures and warnings ----

int lp_stop(LpReader *reader, TextSpan at, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    reader->failure.at = at;
    text_format_v(reader->failure.reason, LP_REASON_LENGTH, format, arguments);
    va_end(arguments);
    return TVX_ERROR_FILE_READ;
}

namespace
{
// What is wrong with a token that cannot stand anywhere.
const char *odd_reason(TextSpan text)
{
    if (lp_has_foreign_sign(text)) return "a blank or dash that is not the one of ASCII";
    switch (*text.begin) {
    case '^':
    case '[':
        return "quadratic terms cannot be read";
    case '(':
    case ')':
        return "brackets cannot be read";
    default:
        return "this is no name and no number";
    }
}
} // namespace

int lp_stop_here(LpReader *reader, const char *reason)
{
    const LpToken *token = &reader->token;
    if (token->kind == LpKind::ODD) reason = odd_reason(token->text);
    if (token->kind == LpKind::END && reader->stop != reader->text.end)
        reason = "a control character: this is no text file";
    return lp_stop(reader, token->text, "%s", reason);
}

namespace
{
// The number of the line that holds p; places must come in order.
int64_t line_of(LpReader *reader, const char *p)
{
    for (; reader->counted < p; reader->counted++)
        if (*reader->counted == '\n') reader->line++;
    return reader->line;
}
} // namespace

void lp_warn(LpReader *reader, LpWarning kind, TextSpan name)
{
    const int k = static_cast<int>(kind);
    const bool shown = warning_is_shown(&reader->warnings, k);
    warning_note(&reader->warnings, k, shown ? line_of(reader, name.begin) : 0, name);
}

namespace
{
// Characters of UTF-8 before p on its line, plus 1.
int64_t column_of(const LpReader *reader, const char *p)
{
    static constexpr unsigned CONTINUATION = 0x80;
    static constexpr unsigned CONTINUATION_MASK = 0xc0;
    int64_t column = 1;
    while (p > reader->text.bytes.data && p[-1] != '\n') {
        p--;
        column += (static_cast<unsigned char>(*p) & CONTINUATION_MASK) != CONTINUATION;
    }
    return column;
}

int report(TVXenv *env, const char *file_name, LpReader *reader)
{
    static constexpr int SHOWN = 60; // bytes of the offending text
    static constexpr int TEXT_LENGTH = 320;
    const LpFailure *failure = &reader->failure;
    char shown[SHOWN];
    char text[TEXT_LENGTH];
    reader->counted = reader->text.bytes.data;
    reader->line = 1;
    const char *place = failure->at.begin;
    if (place == reader->text.end) place--; // to the last line
    const int64_t line = line_of(reader, place);
    const int line_shown = line < INT_MAX ? static_cast<int>(line) : INT_MAX;
    text_printable(shown, SHOWN, failure->at);
    const bool ends = span_empty(failure->at);
    text_format(text, TEXT_LENGTH, "column %lld: %s%s%s: %s\n",
                static_cast<long long>(column_of(reader, place)), ends ? "" : "'",
                ends ? "the end of the file" : shown, ends ? "" : "'", failure->reason);
    TVXmsg(env, "Unexpected symbol at line %d\n", line_shown);
    TVXmsg(env, "         %s", text);
    return fail(env, TVX_ERROR_FILE_READ, Report::KEEP_FIRST,
                "Trouble reading file %s at line %d, %s", file_name, line_shown, text);
}

int report_memory(TVXenv *env)
{
    TVXmsg(env, "Error: out of memory.\n");
    return fail(env, OUT_OF_MEMORY, Report::KEEP_FIRST, "Out of memory in LP reader\n");
}

// ---- Sections ----

// And the constraints behind it, if there are any.
int take_objective(LpReader *reader, bool *constraints)
{
    const LpWord word = reader->token.word;
    if (word != LpWord::MINIMIZE && word != LpWord::MAXIMIZE)
        return lp_stop_here(reader, "the file must begin with minimize or maximize");
    reader->draft.sense = word == LpWord::MAXIMIZE ? -1 : 1;
    lp_next(reader);
    TRY(lp_objective(reader));
    if (reader->token.word != LpWord::SUBJECT_TO) return 0;
    *constraints = true;
    lp_next(reader);
    return lp_constraints(reader);
}

int take_section(LpReader *reader, LpWord section)
{
    switch (section) {
    case LpWord::BOUNDS:
        return lp_bounds(reader);
    case LpWord::BINARIES:
    case LpWord::GENERALS:
    case LpWord::SEMIS:
        return lp_types(reader, section);
    default:
        return lp_sets(reader);
    }
}

// Where text follows, the word must be alone on its line: "end + x >= 1" and "3 x + 2 end" may be meant as terms.
int take_end(LpReader *reader)
{
    const LpToken end = reader->token;
    const bool alone = end.fresh && lp_ends_line(reader);
    lp_next(reader);
    if (reader->token.kind == LpKind::END) return 0;
    if (!alone)
        return lp_stop(reader, end.text, "this ends the file, but more text follows");
    lp_warn(reader, LpWarning::BEHIND_END, reader->token.text);
    return 0;
}

int parse(LpReader *reader)
{
    bool sections = false;
    TRY(take_objective(reader, &sections));
    while (reader->token.kind != LpKind::END) {
        const LpWord word = reader->token.word;
        if (!lp_at_section(reader)) return lp_stop_here(reader, "this cannot stand here");
        if (word == LpWord::END) return take_end(reader);
        if (word < LpWord::BOUNDS)
            return lp_stop_here(reader, "this section must stand before the others");
        lp_next(reader);
        TRY(take_section(reader, word));
        sections = true;
    }
    if (reader->stop != reader->text.end) return lp_stop_here(reader, "");
    if (!sections) return lp_stop_here(reader, "no constraints and no End: is this all?");
    lp_warn(reader, LpWarning::NO_END, {reader->stop, reader->stop});
    return 0;
}

int read_loaded(TVXenv *env, LpReader *reader)
{
    TRY(draft_open(&reader->draft));
    lp_start(reader);
    TRY(parse(reader));
    return lp_build(env, reader);
}
} // namespace

int lp_read(TVXenv *env, const char *file_name, ModelDraft *draft)
{
    LpReader reader;
    int error = 0;
    if (const TextLoad result = text_load(file_name, &reader.text); result != TextLoad::OK)
        error = text_load_failed(env, file_name, result);
    else
        error = read_loaded(env, &reader);
    if (error == OUT_OF_MEMORY) report_memory(env);
    if (error == TVX_ERROR_FILE_READ && reader.failure.at.begin) {
        lp_warnings_show(&reader, env);
        report(env, file_name, &reader);
    }
    *draft = std::exchange(reader.draft, ModelDraft{});
    return error;
}
