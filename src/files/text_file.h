// text_file.h -- TextFile, the whole text of a model or side file, handed out line by line
#pragma once
#include "runtime/array.h"
#include "tarvex.h"

// A stretch of bytes inside a larger text; not terminated.
struct TextSpan {
    const char *begin = nullptr;
    const char *end = nullptr;
};
inline int64_t span_length(TextSpan span)
{
    return span.end - span.begin;
}
inline bool span_empty(TextSpan span)
{
    return span.begin == span.end;
}
inline bool is_white(char c)
{
    return static_cast<unsigned char>(c) <= ' ';
}
// What a text of one line may hold: control characters but tabs become blanks.
inline char line_char(char c)
{
    return static_cast<unsigned char>(c) < ' ' && c != '\t' ? ' ' : c;
}
// Of ASCII letters, whatever the locale.
inline char capital(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
// To the next white space, or end.
inline const char *skip_word(const char *p, const char *end)
{
    while (p < end && !is_white(*p)) p++;
    return p;
}
bool span_is_word(TextSpan span, const char *word);     // the same but for case; CAPITALS
TextSpan span_trim(const char *begin, const char *end); // without white space at both ends

// Invariant: [bytes.data, end) ends in a newline; at least TEXT_PAD readable bytes follow end.
static constexpr int TEXT_PAD = 16;
struct TextFile {
    Array<char> bytes;          // content, a newline if the last was missing, and the pad
    const char *next = nullptr; // start of the line to be handed out next
    const char *end = nullptr;  // behind the last newline
    const char *bad = nullptr;  // the first byte that no text holds, or end
    int64_t line = 0;           // number of the line handed out last, from 1
};

enum class TextLoad {
    OK,
    NOT_FOUND,  // cannot be opened
    NO_COMMAND, // the decompression command cannot be started
    BROKEN,     // reading failed, or the command reported a failure
    NO_MEMORY
};
// Reads all of a plain or compressed file. On failure *text is empty.
[[nodiscard]] TextLoad text_load(const char *file_name, TextFile *text);
// Tells the log and the error message why a load failed. The code; NO_MEMORY has no text of its own.
int text_load_failed(TVXenv *env, const char *file_name, TextLoad result);
void text_rewind(TextFile *text); // the next line is the first

enum class TextStep {
    LINE,
    END,
    BINARY // the line holds a control character: this is no text file
};
// The next line without its end and without trailing white space. Cannot fail otherwise.
TextStep text_next(TextFile *text, TextSpan *line);

// Writes the span for a message: cut to the room (size counts the terminator) with "..." behind, control characters
// and bytes that are not UTF-8 as '?'.
void text_printable(char *buffer, int size, TextSpan span);
