// file.h -- opening plain and compressed files
//
// Names ending in ".gz" or ".bz2" go through the external commands gzip and bzip2, started directly with an
// argument list: no shell ever sees the name. The endings count in any case.
#pragma once
#include <cstdio>

struct FileHandle {
    FILE *stream = nullptr; // null when not open
    char kind = 0;          // 'f' plain file, 'p' pipe to a command
    char mode = 0;          // 'r' or 'w'
    int child = 0;          // process id behind a pipe
    int target = -1;        // descriptor of the output file behind a write pipe
};

enum FileFault {
    FILE_UNREACHABLE = 1, // the file does not open
    FILE_NO_COMMAND = 2   // it does, but the command cannot be started
};
// mode 'r' or 'w'. 0 or a FileFault, *file then holds no stream. A file for writing is truncated only if everything
// else succeeded.
[[nodiscard]] int FileOpen(const char *name, char mode, FileHandle *file);
const char *FileCommand(const char *name); // "gzip", "bzip2", or null for a plain file
// Flushes and closes; a handle without stream is ignored. 0; or 1 when data could not be written, or the
// command behind a pipe failed (for reading only when the stream was read to its end).
int FileClose(FileHandle *file);
bool FileRemove(
    const char
        *name); // if it is a regular file: a device or a link stays. Whether it is gone now
bool FileCanRead(
    const char *name); // it opens as a plain file for reading, and is not a directory
