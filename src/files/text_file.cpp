// text_file.cpp -- TextFile, the whole text of a model or side file, handed out line by line
//
// Problem     Readers want lines of any length, numbered, and may want to start over (free form after fixed form),
//             also when the text comes out of a decompression command and cannot be read twice.
// Method      The text is read into one block that grows by half; lines are found by memchr and never copied. While
//             reading, each block is scanned for bytes that no text holds (control characters other than tab, line
//             ends and form feeds): reading stops at the first such block, so that a device or a binary file costs no
//             memory, and the line that holds the byte is refused when it is reached. Bytes of 128 and above are taken
//             as they are: UTF-8 and the older 8-bit codes need no distinction here.
// Line ends   "\n", "\r\n"; a text without any "\n" has its "\r" taken as line ends. A byte-order mark of UTF-8 is
//             skipped; the DOS end-of-file character (26) at the very end is cut.
// Cost        One pass at memory speed; the text stays in memory until the record goes.
#include "files/text_file.h"
#include "env/env.h"
#include "runtime/file.h"
#include <cctype>
#include <cstring>
#include <sys/stat.h>

namespace
{
constexpr int64_t READ_BLOCK = 1 << 20; // bytes asked for at a time

// Text bytes per compressed byte; grows when short.
constexpr int64_t COMPRESSION_ESTIMATE = 5;

// First allocation; grows only as data arrive.
constexpr int64_t LARGEST_ESTIMATE = 1 << 28;
} // namespace

bool span_is_word(TextSpan span, const char *word)
{
    const char *p = span.begin;
    for (; p < span.end && *word; p++, word++)
        if (capital(*p) != *word) return false;
    return p == span.end && !*word;
}

TextSpan span_trim(const char *begin, const char *end)
{
    while (begin < end && is_white(*begin)) begin++;
    while (begin < end && is_white(end[-1])) end--;
    return {begin, end};
}

namespace
{
bool is_binary(char c)
{
    const unsigned char u = static_cast<unsigned char>(c);
    return u < 9 || (u > 13 && u < 32);
}

// The first byte of [begin, end) that no text holds, or end. The first loop has no exit, so that it vectorises.
const char *find_binary(const char *begin, const char *end)
{
    unsigned found = 0;
    for (const char *p = begin; p < end; p++) found |= is_binary(*p);
    if (!found) return end;
    while (begin < end && !is_binary(*begin)) begin++;
    return begin;
}

// A guess at the length of the text, from the length of the file.
int64_t estimate_length(const char *file_name, const FileHandle *file)
{
    struct stat status {
    };
    if (stat(file_name, &status) || !S_ISREG(status.st_mode)) return READ_BLOCK;
    int64_t length = status.st_size;
    if (length > LARGEST_ESTIMATE)
        return length < 0 || file->kind == 'p' ? LARGEST_ESTIMATE : length;
    if (file->kind == 'p') length *= COMPRESSION_ESTIMATE;
    return length < LARGEST_ESTIMATE ? length : LARGEST_ESTIMATE;
}

// Reads to the end of the stream, or to the end of the first block with a binary byte; *bad is the offset of that byte
// or -1.
int read_all(FILE *stream, Array<char> *bytes, int64_t *bad)
{
    *bad = -1;
    for (;;) {
        if (bytes->room - bytes->size < READ_BLOCK + TEXT_PAD + 1)
            TRY(array_reserve(bytes,
                              bytes->room + bytes->room / 2 + READ_BLOCK + TEXT_PAD + 1));
        const int64_t room = bytes->room - bytes->size - TEXT_PAD - 1;
        char *block = bytes->data + bytes->size;
        const size_t n = fread(
            block, 1, static_cast<size_t>(room < READ_BLOCK ? room : READ_BLOCK), stream);
        const char *binary = find_binary(block, block + n);
        bytes->size += static_cast<int64_t>(n);
        if (binary < block + n) {
            *bad = binary - bytes->data;
            return 0;
        }
        if (n == 0) return 0;
    }
}

// Old texts end their lines in "\r" alone.
void unify_line_ends(Array<char> *bytes)
{
    const size_t length = static_cast<size_t>(bytes->size);
    if (memchr(bytes->data, '\n', length) || !memchr(bytes->data, '\r', length)) return;
    for (char &c : *bytes)
        if (c == '\r') c = '\n';
}

// Cuts the DOS end-of-file character where it is the last but line ends; the byte that stops the text, or -1.
int64_t cut_dos_end(Array<char> *bytes, int64_t bad)
{
    static constexpr char DOS_END = 26;
    if (bad < 0 || bytes->data[bad] != DOS_END) return bad;
    for (int64_t k = bad + 1; k < bytes->size; k++)
        if (bytes->data[k] != DOS_END && !is_white(bytes->data[k])) return bad;
    bytes->size = bad;
    return -1;
}
} // namespace

void text_rewind(TextFile *text)
{
    const char *begin = text->bytes.data;
    if (text->end - begin >= 3 && !memcmp(begin, "\xef\xbb\xbf", 3)) begin += 3;
    text->next = begin;
    text->line = 0;
}

namespace
{
TextLoad load_stream(const char *file_name, FileHandle *file, TextFile *text)
{
    Array<char> *bytes = &text->bytes;
    int64_t bad = -1;
    if (array_reserve(bytes,
                      estimate_length(file_name, file) + READ_BLOCK + TEXT_PAD + 1) ||
        read_all(file->stream, bytes, &bad)) {
        FileClose(file);
        return TextLoad::NO_MEMORY;
    }
    if (FileClose(file)) return TextLoad::BROKEN;
    bad = cut_dos_end(bytes, bad);
    unify_line_ends(bytes);
    if (bytes->size == 0 || bytes->data[bytes->size - 1] != '\n') array_push(bytes, '\n');
    memset(bytes->data + bytes->size, 0, TEXT_PAD);
    text->end = bytes->data + bytes->size;
    text->bad = bad < 0 ? text->end : bytes->data + bad;
    text_rewind(text);
    return TextLoad::OK;
}
} // namespace

TextLoad text_load(const char *file_name, TextFile *text)
{
    *text = TextFile{};
    FileHandle file;
    if (const int fault = FileOpen(file_name, 'r', &file))
        return fault == FILE_NO_COMMAND ? TextLoad::NO_COMMAND : TextLoad::NOT_FOUND;
    const TextLoad result = load_stream(file_name, &file, text);
    if (result != TextLoad::OK) *text = TextFile{};
    return result;
}

int text_load_failed(TVXenv *env, const char *file_name, TextLoad result)
{
    static constexpr int CODE = TVX_ERROR_FILE_READ;
    const char *command = FileCommand(file_name);
    switch (result) {
    case TextLoad::OK:
        return 0;
    case TextLoad::NO_MEMORY:
        return OUT_OF_MEMORY;
    case TextLoad::NOT_FOUND:
        TVXmsg(env, "Error: file %s not found\n", file_name);
        return fail(env, CODE, Report::KEEP_FIRST, "File %s not found\n", file_name);
    case TextLoad::NO_COMMAND:
        TVXmsg(env, "Error: file %s needs the command %s, which cannot be started\n",
               file_name, command);
        return fail(env, CODE, Report::KEEP_FIRST,
                    "File %s needs the command %s, which cannot be started\n", file_name,
                    command);
    default: // TextLoad::BROKEN
        TVXmsg(env, "Error: file %s cannot be read to its end%s\n", file_name,
               command ? ": it is cut short or damaged" : "");
        return fail(env, CODE, Report::KEEP_FIRST, "File %s cannot be read to its end%s\n",
                    file_name, command ? ": it is cut short or damaged" : "");
    }
}

TextStep text_next(TextFile *text, TextSpan *line)
{
    const char *begin = text->next;
    if (begin == text->end) return TextStep::END;
    const char *newline = static_cast<const char *>(
        memchr(begin, '\n', static_cast<size_t>(text->end - begin)));
    const char *end = newline;
    while (end > begin && is_white(end[-1])) end--;
    text->next = newline + 1;
    text->line++;
    *line = {begin, end};
    return newline > text->bad ? TextStep::BINARY : TextStep::LINE;
}

namespace
{
// The length of the UTF-8 character at p, or 0 when none stands there or it is a control character.
int utf8_length(const char *p, const char *end)
{
    const unsigned char lead = static_cast<unsigned char>(*p);
    if (lead < 0x80) return lead >= ' ' && lead != 0x7f;
    if (lead < 0xc2 || lead > 0xf4) return 0;
    const int length = lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
    if (end - p < length) return 0;
    for (int k = 1; k < length; k++)
        if ((static_cast<unsigned char>(p[k]) & 0xc0) != 0x80) return 0;
    if (lead == 0xc2 && static_cast<unsigned char>(p[1]) < 0xa0) return 0;
    return length;
}
} // namespace

void text_printable(char *buffer, int size, TextSpan span)
{
    static constexpr int DOTS = 3;
    int used = 0;
    for (const char *p = span.begin; p < span.end;) {
        const int length = utf8_length(p, span.end);
        const int step = length ? length : 1;
        // Each byte is shown as at most one character.
        const bool all_fits = span.end - p < size - used;
        if (!all_fits && used + step + DOTS >= size) {
            for (int k = 0; k < DOTS && used < size - 1; k++) buffer[used++] = '.';
            break;
        }
        if (length)
            memcpy(buffer + used, p, static_cast<size_t>(length));
        else
            buffer[used] = *p == '\t' ? ' ' : '?';
        used += step;
        p += step;
    }
    buffer[used] = '\0';
}
