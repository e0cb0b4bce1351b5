// text_out.cpp -- TextOut, a text file being written: complete, or reported and removed
//
// Problem     A file cut short by a full disk looks like a model. Every write and the close must count, and what is
//             left of a failed file must go.
// Method      A buffer of our own in front of the stream: no formatted printing per field, so a number costs what its
//             conversion costs. The file appears under its name when it is complete (runtime/file.h).
#include "files/text_out.h"
#include "env/env.h"
#include "files/file_number.h"
#include "files/text_file.h"
#include "runtime/text_number.h"
#include <charconv>
#include <cstring>

namespace
{
constexpr int64_t OUT_BUFFER = 1 << 16; // bytes
} // namespace

int text_out_open(TextOut *out, TVXenv *env, const char *file_name)
{
    *out = TextOut{};
    out->env = env;
    out->name = file_name;
    TRY(array_reserve(&out->buffer, OUT_BUFFER));
    const int fault = FileOpen(file_name, 'w', &out->file);
    if (fault == FILE_NO_COMMAND)
        return fail(env, TVX_ERROR_FILE_WRITE, Report::KEEP_FIRST,
                    "File %s needs the command %s, which cannot be started\n", file_name,
                    FileCommand(file_name));
    return fault ? TVX_ERROR_FILE_WRITE : 0;
}

namespace
{
void write_through(TextOut *out, const char *bytes, int64_t length)
{
    const size_t n = static_cast<size_t>(length);
    if (out->failed || n == 0) return;
    if (fwrite(bytes, 1, n, out->file.stream) != n) out->failed = true;
}

void flush(TextOut *out)
{
    write_through(out, out->buffer.data, out->buffer.size);
    out->buffer.size = 0;
}
} // namespace

void text_out_bytes(TextOut *out, const char *bytes, int64_t length)
{
    if (out->buffer.room - out->buffer.size < length) flush(out);
    if (length > out->buffer.room) {
        write_through(out, bytes, length);
        return;
    }
    memcpy(out->buffer.data + out->buffer.size, bytes, static_cast<size_t>(length));
    out->buffer.size += length;
}

void text_out(TextOut *out, const char *text)
{
    text_out_bytes(out, text, static_cast<int64_t>(strlen(text)));
}

void text_out_padded(TextOut *out, const char *text)
{
    static constexpr int64_t WIDTH = 8;
    static constexpr char BLANKS[] = "        ";
    const int64_t length = static_cast<int64_t>(strlen(text));
    text_out_bytes(out, text, length);
    if (length < WIDTH) text_out_bytes(out, BLANKS, WIDTH - length);
}

void text_out_number(TextOut *out, double value)
{
    char buffer[NUMBER_LENGTH];
    text_out_bytes(out, buffer, number_write(buffer, value));
}

void text_out_int(TextOut *out, int64_t value)
{
    char buffer[NUMBER_LENGTH];
    const std::to_chars_result result =
        std::to_chars(buffer, buffer + NUMBER_LENGTH, value);
    text_out_bytes(out, buffer, result.ptr - buffer);
}

void text_out_line(TextOut *out, const char *text)
{
    for (; *text; text++) {
        const char c = line_char(*text);
        text_out_bytes(out, &c, 1);
    }
}

int text_out_close(TextOut *out)
{
    if (!out->file.stream) return 0;
    flush(out);
    if (FileClose(&out->file)) out->failed = true;
    int error = 0;
    if (out->failed) {
        error = fail(out->env, TVX_ERROR_FILE_WRITE, Report::KEEP_FIRST,
                     "File %s cannot be written to its end\n", out->name);
    }
    *out = TextOut{};
    return error;
}
