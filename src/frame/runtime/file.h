// file.h -- opening plain and compressed files
//
// Names ending in ".gz" or ".bz2" go through the external commands gzip and bzip2, started directly with an
// argument list: no shell ever sees the name.
#pragma once
#include <cstdio>

struct FileHandle {
    FILE *stream = nullptr; // null when not open
    char kind = 0;          // 'f' plain file, 'p' pipe to a command
    char mode = 0;          // 'r' or 'w'
    int child = 0;          // process id behind a pipe
    int target = -1;        // descriptor of the output file behind a write pipe
};

// mode 'r' or 'w'. 0; or 1 when the file or the command cannot be opened, *file then holds no stream.
[[nodiscard]] int FileOpen(const char *name, char mode, FileHandle *file);
// Flushes and closes; a handle without stream is ignored. 0; or 1 when data could not be written, or the
// command behind a pipe failed (for reading only when the stream was read to its end).
int FileClose(FileHandle *file);
bool FileCanRead(
    const char *name); // it opens as a plain file for reading, and is not a directory
