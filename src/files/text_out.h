// text_out.h -- TextOut, a text file being written: complete, or reported and removed
#pragma once
#include "runtime/array.h"
#include "runtime/file.h"
#include "tarvex.h"

// States   closed   file.stream is null
//          open     writes are collected in buffer; the first failure is remembered in `failed`, later writes do
//                   nothing
// text_out_close is the only way out of open.
struct TextOut {
    FileHandle file;
    TVXenv *env = nullptr;      // for the message of a failure
    const char *name = nullptr; // of the file; the caller's
    Array<char> buffer;         // [room] text not yet written
    bool failed = false;
};

// 0, OUT_OF_MEMORY, or TVX_ERROR_FILE_WRITE when the file does not open; that has no message of its own unless the
// compression command is missing.
[[nodiscard]] int text_out_open(TextOut *out, TVXenv *env, const char *file_name);
void text_out_bytes(TextOut *out, const char *bytes, int64_t length);
void text_out(TextOut *out, const char *text);
void text_out_padded(TextOut *out, const char *text); // at least 8 characters, as "%-8s"
void text_out_number(TextOut *out, double value);     // as number_write
void text_out_int(TextOut *out, int64_t value);
// Control characters but tabs are replaced by blanks.
void text_out_line(TextOut *out, const char *text);
// Closes. With `failed` set by the caller or by a write, or when the close fails, the file is removed if it is a
// regular one. 0, or TVX_ERROR_FILE_WRITE with its message. A closed record is ignored.
[[nodiscard]] int text_out_close(TextOut *out);
